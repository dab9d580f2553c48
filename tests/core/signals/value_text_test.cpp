#include "signals/cell_text.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string Text(const Bytes& data, unsigned width, std::int32_t radix, const Bytes& mask = {}) {
    return FormatValue(data, width, radix, mask, false);
}

struct ValueCase {
    Bytes data;
    unsigned width;
    std::int32_t radix;
    Bytes mask;
    const char* text;
};

const Bytes counting = {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE, 0x01};
const Bytes allKnown = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

TEST(FormatValue, PrintsDigitsOfEveryRadixAndWidth) {
    // clang-format off
    const std::vector<ValueCase> cases = {
        {{0x01}, 1, Radix::Binary, {}, "1"},
        {{0x00}, 1, Radix::Hex, {}, "0"},
        {{0x01}, 1, Radix::Octal, {}, "1"},
        {{0xD5}, 7, Radix::Binary, {}, "1010101"},
        {{0xD5}, 7, Radix::Hex, {}, "55"},
        {{0xD5}, 7, Radix::Octal, {}, "125"},
        {{0xA5}, 8, Radix::Binary, {}, "10100101"},
        {{0xA5}, 8, Radix::Hex, {}, "A5"},
        {{0xA5}, 8, Radix::Octal, {}, "245"},
        {{0xA5, 0x03}, 9, Radix::Binary, {}, "11010010 1"},
        {{0xA5, 0x03}, 9, Radix::Hex, {}, "1A5"},
        {{0xA5, 0x03}, 9, Radix::Octal, {}, "645"},
        {{0xBC, 0xFA}, 12, Radix::Binary, {}, "10101011 1100"},
        {{0xBC, 0xFA}, 12, Radix::Hex, {}, "ABC"},
        {{0xBC, 0xFA}, 12, Radix::Octal, {}, "5274"},
        {{0xEF, 0xBE, 0xAD, 0xDE}, 31, Radix::Hex, {}, "5EADBEEF"},
        {{0xEF, 0xBE, 0xAD, 0xDE}, 32, Radix::Hex, {}, "DEADBEEF"},
        {{0xEF, 0xBE, 0xAD, 0xDE}, 32, Radix::Octal, {}, "33653337357"},
        {{0xEF, 0xBE, 0xAD, 0xDE}, 32, Radix::Binary, {}, "11011110 10101101 10111110 11101111"},
        {{0xEF, 0xBE, 0xAD, 0xDE, 0x01}, 33, Radix::Hex, {}, "1DEADBEE F"},
        {{0xEF, 0xBE, 0xAD, 0xDE, 0x0C}, 36, Radix::Hex, {}, "CDEADBEE F"},
        {counting, 64, Radix::Hex, {}, "FEDCBA98 76543210"},
        {counting, 64, Radix::Octal, {}, "1773345651416625031020"},
        {counting, 65, Radix::Hex, {}, "1FEDCBA9 87654321 0"},
        {counting, 48, Radix::Hex, {}, "BA987654 3210"},
    };
    // clang-format on
    for (const ValueCase& each : cases) {
        EXPECT_EQ(Text(each.data, each.width, each.radix), each.text)
            << "width " << each.width << " radix " << each.radix;
    }
}

TEST(FormatValue, PrintsXForUnknownAndQuestionMarkForPartlyKnownDigits) {
    // clang-format off
    const std::vector<ValueCase> cases = {
        {{0x01}, 1, Radix::Binary, {0x00}, "X"},
        {{0xA5}, 8, Radix::Binary, {0xF1}, "1010XXX1"},
        {{0xA5}, 8, Radix::Hex, {0xF0}, "AX"},
        {{0xA5}, 8, Radix::Hex, {0x3F}, "?5"},
        {{0xA5}, 8, Radix::Hex, {0xF3}, "A?"},
        {{0x55}, 7, Radix::Hex, {0x70}, "5X"},
        {{0x55}, 7, Radix::Hex, {0x0F}, "X5"},
        {{0x55}, 7, Radix::Hex, {0x1F}, "?5"},
        {{0xA5, 0x01}, 9, Radix::Hex, {0xFF, 0x01}, "1A5"},
        {{0xA5, 0x01}, 9, Radix::Hex, {0xFF, 0xFE}, "XA5"},
        {{0xA5}, 8, Radix::Octal, {0xF8}, "24X"},
        {{0xA5}, 8, Radix::Octal, {0x7F}, "?45"},
        {{0xA5}, 8, Radix::Octal, {0x3F}, "X45"},
        {{0xBC, 0x0A}, 12, Radix::Octal, {0xC0, 0x01}, "X2XX"},
        {{0xBC, 0x0A}, 12, Radix::Octal, {0x40, 0x00}, "X?XX"},
        {counting, 65, Radix::Hex, allKnown, "1FEDCBA9 87654321 0"},
        {counting, 36, Radix::Hex, {0, 0, 0, 0, 0}, "XXXXXXXX X"},
    };
    // clang-format on
    for (const ValueCase& each : cases) {
        EXPECT_EQ(Text(each.data, each.width, each.radix, each.mask), each.text)
            << "width " << each.width << " radix " << each.radix;
    }
}

TEST(FormatValue, PrintsNothingInAnUnknownRadixOrWithoutBits) {
    EXPECT_EQ(Text({0xFF}, 8, 4), "");
    EXPECT_EQ(Text({0xFF}, 8, -1), "");
    EXPECT_EQ(Text({0xFF}, 0, Radix::Hex), "");
    EXPECT_EQ(Text({0xFF}, 0, Radix::Binary), "");
}

TEST(FormatValue, TreatsBitsAfterTheBytesAsZero) {
    EXPECT_EQ(Text({0xFF}, 16, Radix::Hex), "00FF");
    EXPECT_EQ(Text({0xFF}, 16, Radix::Hex, {0xFF}), "XXFF");
}

TEST(FormatValue, PrintsATimeFieldInItsScale) {
    const Bytes thirty = {30 * 4, 0, 0};
    EXPECT_EQ(FormatValue(thirty, 18, Radix::Time, {}, false), "30ns");
    EXPECT_EQ(FormatValue(thirty, 18, Radix::Time, {}, true), "0.030ns");
}

TEST(FormatValue, FillsTheNumberOfPlacesThatDigitsForGives) {
    for (const unsigned width : {1U, 7U, 8U, 9U, 12U, 31U, 32U, 36U, 64U}) {
        EXPECT_EQ(Text(counting, width, Radix::Octal).size(), DigitsFor(width, Radix::Octal));
    }
    // One place more than the text where the digits fill their last group.
    EXPECT_EQ(DigitsFor(32, Radix::Hex), 8U);
    EXPECT_EQ(DigitsFor(33, Radix::Hex), 10U);
    EXPECT_EQ(DigitsFor(64, Radix::Hex), 17U);
    EXPECT_EQ(DigitsFor(1, Radix::Hex), 1U);
    EXPECT_EQ(DigitsFor(64, Radix::Binary), 64U);
    EXPECT_EQ(DigitsFor(1, Radix::Octal), 1U);
    EXPECT_EQ(DigitsFor(18, Radix::Time), 0U);
    EXPECT_EQ(DigitsFor(18, 9), 0U);
}

struct TimeCase {
    Bytes data;
    unsigned width;
    std::int64_t value;
};

TEST(TimeField, MultipliesTheCountByItsUnit) {
    const std::vector<TimeCase> cases = {
        {{0x0C, 0x00, 0x00}, 18, 3},          // unit 0
        {{0x0D, 0x00, 0x00}, 18, 3000},       // unit 1
        {{0x0E, 0x00, 0x00}, 18, 3000000},    // unit 2
        {{0x0F, 0x00, 0x00}, 18, 3000000000}, // unit 3
        {{0xFF, 0xFF, 0x03}, 18, 65535000000000},
    };
    for (const TimeCase& each : cases) {
        EXPECT_EQ(TimeField(each.data, each.width), each.value);
    }
}

TEST(TimeField, UsesOneBitMoreThanTheFieldHas) {
    EXPECT_EQ(TimeField(Bytes{0x00, 0x00, 0x04}, 18), 0x10000);
    EXPECT_EQ(TimeField(Bytes{0x00, 0x00, 0x08}, 18), 0);
    EXPECT_EQ(TimeField(Bytes{0x04}, 2), 1);
    EXPECT_EQ(TimeField(Bytes{0x02}, 1), 0);
}

TEST(TimeField, ShiftsTheCountArithmetically) {
    EXPECT_EQ(TimeField(Bytes{0xFC, 0xFF, 0xFF, 0xFF}, 31), -1);
    EXPECT_EQ(TimeField(Bytes{0xFD, 0xFF, 0xFF, 0xFF}, 32), -1000);
    EXPECT_EQ(TimeField(Bytes{0x00, 0x00, 0x00, 0x80}, 32), -0x20000000);
    EXPECT_EQ(TimeField(Bytes{0xFC, 0xFF, 0xFF, 0xFF}, 30), 0x1FFFFFFF);
}

TEST(TimeField, IsEmptyForAFieldWiderThanAWord) {
    EXPECT_EQ(TimeField(Bytes{0xFC, 0xFF, 0xFF, 0xFF, 0xFF}, 33), 0);
    EXPECT_EQ(TimeField({}, 18), 0);
}

struct ScaleCase {
    std::int64_t time;
    const char* text;
};

TEST(FormatTime, ChoosesTheTierByNanoseconds) {
    constexpr std::int64_t us = 1000;
    constexpr std::int64_t ms = 1000 * us;
    constexpr std::int64_t s = 1000 * ms;
    const std::vector<ScaleCase> cases = {
        {0, "0ns"},
        {1, "1ns"},
        {999, "999ns"},
        {us, "1.000us"},
        {1 * us + 5, "1.005us"},
        {9 * us + 999, "9.999us"},
        {10 * us, "10.00us"},
        {10 * us + 59, "10.05us"},
        {99 * us + 999, "99.99us"},
        {100 * us, "100.0us"},
        {999 * us + 999, "999.9us"},
        {ms, "1.000ms"},
        {9 * ms + 999 * us, "9.999ms"},
        {10 * ms, "10.00ms"},
        {99 * ms + 991 * us, "99.99ms"},
        {100 * ms + 50 * us, "100.0ms"},
        {999 * ms + 900 * us, "999.9ms"},
        {s, "1.000s"},
        {s + 30 * ms, "1.030s"},
        {9 * s + 999 * ms, "9.999s"},
        {10 * s + 10 * ms, "10.01s"},
        {99 * s + 990 * ms, "99.99s"},
        {100 * s, "100.0s"},
        {999 * s + 900 * ms, "999.9s"},
        {1000 * s + 900 * ms, "1000s"},
        {196605 * s, "196605s"},
    };
    for (const ScaleCase& each : cases) {
        EXPECT_EQ(FormatTime(each.time, false), each.text) << each.time;
    }
}

TEST(FormatTime, MovesEachTierDownForPowerZoom) {
    constexpr std::int64_t ns = 1000;
    constexpr std::int64_t us = 1000 * ns;
    constexpr std::int64_t ms = 1000 * us;
    const std::vector<ScaleCase> cases = {
        {0, "0.000ns"},
        {5, "0.005ns"},
        {999, "0.999ns"},
        {9 * ns + 999, "9.999ns"},
        {10 * ns, "10.00ns"},
        {99 * ns + 990, "99.99ns"},
        {100 * ns, "100.0ns"},
        {999 * ns + 999, "999.9ns"},
        {us, "1.000us"},
        {9 * us + 999 * ns, "9.999us"},
        {10 * us + 10 * ns, "10.01us"},
        {100 * us + 100 * ns, "100.1us"},
        {999 * us + 999 * ns, "999.9us"},
        {ms, "1.000ms"},
        {10 * ms + 10 * us, "10.01ms"},
        {100 * ms + 100 * us, "100.1ms"},
        {1500 * ms, "1500.0ms"},
    };
    for (const ScaleCase& each : cases) {
        EXPECT_EQ(FormatTime(each.time, true), each.text) << each.time;
    }
}

/// A list whose TIME holds a count of nanoseconds for each sample.
class TimeBetweenTest : public testing::Test {
protected:
    void SetUp() override {
        tables_.Bus("TIME", 0, 17, 110, flagPermanent);
        list_.BuildFromTables(0, ModeState);
    }
    void Load(const std::vector<int>& counts, int unit = 0) {
        std::vector<SampleRecord> records;
        for (const int count : counts) {
            SampleRecord record;
            const int field = count * 4 + unit;
            for (int bit = 0; bit < 18; ++bit) {
                record.bytes[static_cast<std::size_t>(110 + bit) / 8] |=
                    static_cast<std::uint8_t>((field >> bit & 1) << (110 + bit) % 8);
            }
            records.push_back(record);
        }
        list_.ResizeSamples(static_cast<std::uint32_t>(records.size()));
        list_.LoadSamples(0, records);
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
};

TEST_F(TimeBetweenTest, SumsTheTimesAfterTheEarlierSample) {
    Load({5, 10, 20, 40});
    EXPECT_EQ(TimeBetween(0, 3, list_, false), "70ns");
    EXPECT_EQ(TimeBetween(3, 0, list_, false), "70ns");
    EXPECT_EQ(TimeBetween(1, 2, list_, false), "20ns");
    EXPECT_EQ(TimeBetween(2, 2, list_, false), "0ns");
    EXPECT_EQ(TimeBetween(1, 2, list_, true), "0.020ns");
}

TEST_F(TimeBetweenTest, SumsBeyondThirtyTwoBits) {
    Load(std::vector<int>(100, 65535), 3);
    EXPECT_EQ(TimeBetween(0, 99, list_, false), "6487965s");
}

TEST_F(TimeBetweenTest, StaysAtTheLongestTimeIfAFileIsDamaged) {
    HandMadeTables tables;
    tables.Bus("TIME", 0, 29, 96, flagPermanent);
    CSignalList list(tables.Tables());
    list.BuildFromTables(0, ModeState);
    SampleRecord longest; // 2^28 - 1 seconds
    std::fill_n(longest.bytes.begin() + 12, 4, std::uint8_t{0xFF});
    const std::vector<SampleRecord> records(100, longest);
    list.ResizeSamples(100);
    list.LoadSamples(0, records);
    EXPECT_EQ(TimeBetween(0, 34, list, false), "9126805470s");
    EXPECT_EQ(TimeBetween(0, 35, list, false), "9223372036s");
    EXPECT_EQ(TimeBetween(99, 0, list, false), "9223372036s");
    EXPECT_EQ(TimeBetween(98, 99, list, false), "268435455s") << "after an overflowing sum";
    EXPECT_EQ(TimeBetween(65, 99, list, false), "9126805470s");
    const std::int64_t all = list.TimeFrom(0, 99).value();
    EXPECT_EQ(list.TimeFrom(99, 0), -all);
    EXPECT_EQ(FormatTimeSince(all, false, false), "9223372036s");
    EXPECT_EQ(FormatTimeSince(-all, true, false), "-9223372036s");
}

TEST(AddTimes, StaysAtTheLongestTimeOfEitherSign) {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(AddTimes(40, 2), 42);
    EXPECT_EQ(AddTimes(40, -42), -2);
    EXPECT_EQ(AddTimes(longest - 1, 1), longest);
    EXPECT_EQ(AddTimes(longest - 1, 2), longest);
    EXPECT_EQ(AddTimes(-longest, -1), -longest) << "the negation of this minimum does not overflow";
    EXPECT_EQ(AddTimes(-longest, longest), 0);
}

TEST_F(TimeBetweenTest, MissingSamplesCountAsZero) {
    Load({5, 10});
    EXPECT_EQ(TimeBetween(0, 1000000000000, list_, false), "10ns");
    EXPECT_EQ(TimeBetween(50, 60, list_, false), "0ns");
}

/// Compares with a sum over all samples in between, in any order of loading.
TEST_F(TimeBetweenTest, IsTheSumOverAllSamplesInBetweenInAnyOrderOfLoading) {
    constexpr std::uint32_t seed = 5;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    constexpr std::size_t count = 1000;
    std::vector<std::int64_t> times(count);
    list_.ResizeSamples(count);
    const auto place = [&] { return static_cast<std::size_t>(random() % count); };
    for (int round = 0; round < 300; ++round) {
        const std::size_t first = place();
        std::vector<SampleRecord> records(std::min<std::size_t>(random() % 90, count - first));
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (times[first + i] == 0) { // samples arrive once
                times[first + i] = static_cast<std::int64_t>(random() % 256);
                records[i].bytes[14] = static_cast<std::uint8_t>(times[first + i]); // bits 112 on
            }
        }
        list_.LoadSamples(static_cast<std::uint32_t>(first), records);
        if (round == 150) {
            list_.ResizeSamples(count);
            times.assign(count, 0);
        }
        for (int question = 0; question < 10; ++question) {
            const auto [a, b] = std::minmax({place(), place()});
            const auto sum = std::accumulate(times.begin() + static_cast<std::ptrdiff_t>(a) + 1,
                                             times.begin() + static_cast<std::ptrdiff_t>(b) + 1,
                                             std::int64_t{0});
            const auto from = static_cast<std::int64_t>(a);
            const auto to = static_cast<std::int64_t>(b);
            ASSERT_EQ(list_.TimeFrom(from, to), a == b ? 0 : sum) << round << " " << a << " " << b;
            ASSERT_EQ(list_.TimeFrom(to, from), a == b ? 0 : -sum);
        }
    }
}

TEST_F(TimeBetweenTest, FollowsAListWhoseTimeIsReplaced) {
    Load(std::vector<int>(200, 10));
    EXPECT_EQ(TimeBetween(0, 199, list_, false), "1.990us");
    Load(std::vector<int>(200, 20));
    EXPECT_EQ(TimeBetween(0, 199, list_, false), "3.980us");
    CSignalList copy(tables_.Tables());
    copy.CopyFrom(list_);
    list_.RemoveAllSignals();
    list_.BuildFromTables(0, ModeState);
    Load(std::vector<int>(200, 30));
    EXPECT_EQ(TimeBetween(0, 199, list_, false), "5.970us");
    EXPECT_EQ(TimeBetween(0, 199, copy, false), "3.980us");
    copy.CopyFrom(list_);
    EXPECT_EQ(TimeBetween(0, 199, copy, false), "5.970us");
    for (const auto& signal : list_.All()) {
        signal->data[0] = signal->data[1] = 0;
    }
    list_.RebuildGroupRows(0, 64);
    EXPECT_EQ(TimeBetween(0, 199, list_, false), "4.080us") << "64 samples without time";
}

TEST_F(TimeBetweenTest, IsEmptyWithoutAMarkerOrATime) {
    Load({5, 10});
    EXPECT_EQ(TimeBetween(-1, 1, list_, false), "");
    EXPECT_EQ(TimeBetween(0, -1, list_, false), "");
    list_[0].permanent = false;
    EXPECT_EQ(TimeBetween(0, 1, list_, false), "");
    list_[0].permanent = true;
    list_[0].groupData.clear();
    EXPECT_EQ(TimeBetween(0, 1, list_, false), "");
    list_.RemoveAllSignals();
    EXPECT_EQ(TimeBetween(0, 1, list_, false), "");
}

/// A decoded group of 32 or more bits in a listing of one sample.
class DecodedTextTest : public testing::Test {
protected:
    /// The text of a cell with this value in a group of this width.
    std::string Cell(const BoardTraits& board, DecodeKind kind, const Bytes& value, unsigned width,
                     const SampleRecord& record, const char* label = nullptr) {
        CSignal signal;
        signal.grouped = true;
        signal.groupAttribute = GroupAttribute::Start;
        signal.groupWidth = width;
        signal.groupData = value;
        signal.radix = radix_;
        CDecodedSignalDef def;
        def.decodeKind = kind;
        return FormatDecodedValue(board, signal, 0, firstSample_, def, label, record, false);
    }
    std::int32_t radix_ = Radix::Hex;
    std::int64_t firstSample_ = 0;
};

const Bytes word = {0x78, 0x56, 0x34, 0x12};
const Bytes longWord = {0xEF, 0xCD, 0xAB, 0x90, 0x78, 0x56, 0x34, 0x12};
const SampleRecord dataPhase;
const SampleRecord addressPhase = RecordOf({95});
const SampleRecord attributePhase = RecordOf({93});

TEST_F(DecodedTextTest, PciDataIsShownInDataPhasesOnly) {
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Data, word, 32, dataPhase), "12345678");
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Data, word, 32, addressPhase), "");
    // Outside PCI-X, bit 93 is another line.
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Data, word, 32, attributePhase), "12345678");
    EXPECT_EQ(Cell(Board::PciX(), DecodeKind::Data, word, 32, attributePhase), "");
}

TEST_F(DecodedTextTest, PciDataBlanksTheDigitsOfDisabledLanes) {
    const auto board = Board::Pci64();
    EXPECT_EQ(Cell(board, DecodeKind::Data, word, 32, RecordOf({64})), "123456  ");
    EXPECT_EQ(Cell(board, DecodeKind::Data, word, 32, RecordOf({65, 67})), "  34  78");
    // The blank between the halves is not a digit: C/BE[4] is the lane to its left.
    EXPECT_EQ(Cell(board, DecodeKind::Data, longWord, 64, RecordOf({68, 64})), "123456   90ABCD  ");
    EXPECT_EQ(Cell(board, DecodeKind::Data, longWord, 64, RecordOf({71})), "  345678 90ABCDEF");
    radix_ = Radix::Octal;
    EXPECT_EQ(Cell(board, DecodeKind::Data, word, 32, RecordOf({64})), "02215053170");
}

TEST_F(DecodedTextTest, VmeAndVsbDataIsPlain) {
    const SampleRecord anyLanes = RecordOf({64, 65, 93, 95});
    EXPECT_EQ(Cell(Board::Vme(), DecodeKind::DataVme, word, 32, anyLanes), "12345678");
    EXPECT_EQ(Cell(Board::VmeLark(), DecodeKind::DataVme, word, 32, anyLanes), "12345678");
    EXPECT_EQ(Cell(Board::Vsb(), DecodeKind::DataVsb, word, 32, anyLanes), "12345678");
}

TEST_F(DecodedTextTest, PciAddressIsShownInAddressPhasesOnly) {
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Address, word, 32, addressPhase), "12345678");
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Address, word, 32, dataPhase), "");
    EXPECT_EQ(Cell(Board::PciX(), DecodeKind::Address, word, 32, addressPhase), "12345678");
    EXPECT_EQ(Cell(Board::PciX(), DecodeKind::Address, word, 32, RecordOf({93, 95})), "");
    EXPECT_EQ(Cell(Board::Vsb(), DecodeKind::AddressVsb, word, 32, dataPhase), "12345678");
}

std::string Blanked(unsigned blanks) {
    return std::string(blanks, ' ') + std::string("12345678").substr(blanks);
}

TEST_F(DecodedTextTest, VmeAddressBlanksTheDigitsThatItsModifierExcludes) {
    const auto blanksOf = [](unsigned modifier) -> unsigned {
        switch (modifier) {
        case 0x29:
        case 0x2C:
        case 0x2D:
            return 4;
        case 0x32:
        case 0x38:
        case 0x39:
        case 0x3A:
        case 0x3B:
        case 0x3C:
        case 0x3D:
        case 0x3E:
        case 0x3F:
            return 2;
        default:
            return 0;
        }
    };
    for (unsigned modifier = 0; modifier < 64; ++modifier) {
        SampleRecord vme;
        vme.bytes[8] = static_cast<std::uint8_t>(0xC0 | modifier); // other lines above the six bits
        EXPECT_EQ(Cell(Board::Vme(), DecodeKind::AddressVme, word, 32, vme),
                  Blanked(blanksOf(modifier)))
            << modifier;
        SampleRecord lark;
        lark.bytes[8] = 0x3F;
        lark.bytes[11] = static_cast<std::uint8_t>(0x80 | modifier);
        EXPECT_EQ(Cell(Board::VmeLark(), DecodeKind::AddressVme, word, 32, lark),
                  Blanked(blanksOf(modifier)))
            << modifier;
    }
}

TEST_F(DecodedTextTest, VmeAddressOfFortyBitsBlanksSixDigitsOfALongText) {
    SampleRecord a40;
    a40.bytes[8] = 0x34;
    EXPECT_EQ(Cell(Board::Vme(), DecodeKind::Address, longWord, 64, a40), "      78 90ABCDEF");
    a40.bytes[8] = 0x35;
    EXPECT_EQ(Cell(Board::Vme(), DecodeKind::Address, longWord, 64, a40), "      78 90ABCDEF");
    EXPECT_EQ(Cell(Board::Vme(), DecodeKind::AddressVme, word, 32, a40), "12345678");
    radix_ = Radix::Octal;
    a40.bytes[8] = 0x29;
    EXPECT_EQ(Cell(Board::Vme(), DecodeKind::AddressVme, word, 32, a40), "02215053170");
}

TEST_F(DecodedTextTest, PciCommandShowsItsLabelInAddressPhases) {
    const char* label = "Mem Rd";
    const auto cell = [&](const BoardTraits& board, const SampleRecord& record) {
        return Cell(board, DecodeKind::Command, {0x06}, 8, record, label);
    };
    EXPECT_EQ(cell(Board::Pci32(), addressPhase), "Mem Rd");
    EXPECT_EQ(cell(Board::Pci32(), dataPhase), "");
    EXPECT_EQ(cell(Board::PciX(), RecordOf({93, 95})), "");
    EXPECT_EQ(cell(Board::Vme(), dataPhase), "Mem Rd");
    EXPECT_EQ(cell(Board::Vsb(), dataPhase), "Mem Rd");
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Command, {0x06}, 8, addressPhase), "");
}

TEST_F(DecodedTextTest, TimeIgnoresTheRadix) {
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Time, {30 * 4, 0, 0}, 18, dataPhase), "30ns");
}

TEST_F(DecodedTextTest, SampleIsItsNumberFromTheTrigger) {
    firstSample_ = -12;
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Sample, {0}, 2, dataPhase), "-12");
    firstSample_ = 7;
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Sample, {0}, 2, dataPhase), "7");
}

TEST_F(DecodedTextTest, AttributeFieldsAreShownInAttributeAndSplitPhases) {
    SampleRecord split = RecordOf({95});
    split.bytes[8] = 0xAC; // only the low nibble matters
    SampleRecord splitWithoutAddress;
    splitWithoutAddress.bytes[8] = 0x0C;
    for (const DecodeKind kind :
         {DecodeKind::Tag, DecodeKind::BusNumber, DecodeKind::DeviceFunction, DecodeKind::ByteCount,
          DecodeKind::Attribute}) {
        EXPECT_EQ(Cell(Board::PciX(), kind, {0x1A}, 5, attributePhase), "1A");
        EXPECT_EQ(Cell(Board::PciX(), kind, {0x1A}, 5, split), "1A");
        EXPECT_EQ(Cell(Board::PciX(), kind, {0x1A}, 5, splitWithoutAddress), "");
        EXPECT_EQ(Cell(Board::PciX(), kind, {0x1A}, 5, addressPhase), "");
        EXPECT_EQ(Cell(Board::PciX(), kind, {0x1A}, 5, dataPhase), "");
        EXPECT_EQ(Cell(Board::Pci64(), kind, {0x1A}, 5, attributePhase), "");
        EXPECT_EQ(Cell(Board::Pci64(), kind, {0x1A}, 5, split), "");
    }
}

TEST_F(DecodedTextTest, PlainKindShowsTheValueAndOthersTheirLabel) {
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Plain, word, 32, addressPhase), "12345678");
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Label, word, 32, dataPhase, "Reserved (102)"),
              "Reserved (102)");
    EXPECT_EQ(Cell(Board::Pci32(), DecodeKind::Label, word, 32, dataPhase), "");
    EXPECT_EQ(Cell(Board::Pci32(), static_cast<DecodeKind>(99), word, 32, dataPhase, "x"), "x");
}

TEST(FormatDecodedValue, PrintsASingleBitAndNothingOutsideTheSamples) {
    CSignal bit;
    SetSamples(bit, {0x2}, 2);
    CDecodedSignalDef def;
    def.decodeKind = DecodeKind::Plain;
    const auto cell = [&](std::int64_t sample) {
        return FormatDecodedValue(Board::Pci32(), bit, sample, 0, def, nullptr, dataPhase, false);
    };
    EXPECT_EQ(cell(0), "0");
    EXPECT_EQ(cell(1), "1");
    EXPECT_EQ(cell(-1), "");
    EXPECT_EQ(cell(2), "");
    bit.groupWidth = 8;
    bit.groupData = {0xA5};
    EXPECT_EQ(cell(0), "A5");
    EXPECT_EQ(cell(1), "");
}

} // namespace
} // namespace busquill::test
