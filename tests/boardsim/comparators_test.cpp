#include "boardsim/comparators.h"

#include <gtest/gtest.h>

namespace boardsim {
namespace {

/// One event; the other seven match everything.
class ComparatorsTest : public testing::Test {
protected:
    void Use(Family family) { comparators = Comparators(family); }
    /// Compares bits of the event with a value.
    void Compare(int first, int width, std::uint64_t value) {
        for (int i = 0; i < width; ++i) {
            const int bit = first + i;
            const auto at = static_cast<std::size_t>(bit / 8 * 2);
            const auto one = static_cast<std::uint8_t>(1U << (bit % 8));
            rows[at] = static_cast<std::uint8_t>(rows[at] | ((value >> i & 1) != 0 ? one : 0));
            rows[at + 1] = static_cast<std::uint8_t>(rows[at + 1] | one);
        }
    }
    bool Matches(const Record& record) { return (comparators.Matches(record) & 1) != 0; }
    bool MatchesBus(std::uint64_t value) {
        Record record{};
        SetField(record, 0, 64, value);
        return Matches(record);
    }
    void Load() { comparators.Load(rows); }

    std::array<std::uint8_t, 240> rows{};
    Comparators comparators;
};

constexpr int range = 110;
constexpr int dataRange = 118;
constexpr std::uint64_t above = 1;
constexpr std::uint64_t below = 2;

TEST_F(ComparatorsTest, ComparesBitByBit) {
    Compare(3, 2, 2);
    Load();
    EXPECT_TRUE(MatchesBus(0x10));
    EXPECT_TRUE(MatchesBus(0xF7));
    EXPECT_FALSE(MatchesBus(0x18));
    EXPECT_EQ(comparators.Matches(Record{}), 0xFEU) << "seven events without compare bits";
}

TEST_F(ComparatorsTest, ComparesAFieldAsANumber) {
    struct Row {
        std::uint64_t order;
        bool less, same, more;
    };
    for (const Row& row : {Row{above, false, false, true}, Row{below, true, false, false},
                           Row{0, false, true, false}, Row{3, false, true, false}}) {
        rows.fill(0);
        Use(Family::Pci64);
        Compare(0, 64, 0x1'0000'0100);
        Compare(range, 2, row.order);
        Load();
        EXPECT_EQ(MatchesBus(0x1'0000'00FF), row.less) << row.order;
        EXPECT_EQ(MatchesBus(0x1'0000'0100), row.same) << row.order;
        EXPECT_EQ(MatchesBus(0x2'0000'0000), row.more) << row.order;
    }
}

TEST_F(ComparatorsTest, ARangeUsesOnlyTheComparedBits) {
    Use(Family::Pci64);
    Compare(8, 56, 0x1); // 01xx
    Compare(range, 2, above);
    Load();
    EXPECT_FALSE(MatchesBus(0x1FF));
    EXPECT_TRUE(MatchesBus(0x200));
}

TEST_F(ComparatorsTest, TheRangeBitsAreNotComparedWithTheTime) {
    Use(Family::Pci32);
    Compare(range, 2, 0);
    Load();
    Record record{};
    SetField(record, bitTime, timeBits, 0x3FFFF);
    EXPECT_TRUE(Matches(record));
}

TEST_F(ComparatorsTest, ABusOf32BitsHasNoUpperHalf) {
    Use(Family::Pci32);
    Compare(0, 64, 0x100);
    Load();
    EXPECT_TRUE(MatchesBus(0xFFFFFFFF'00000100));
    EXPECT_FALSE(MatchesBus(0x101));
}

TEST_F(ComparatorsTest, VmeHasARangeForTheAddressAndOneForTheData) {
    Use(Family::Vme);
    Compare(0, 32, 0x100);
    Compare(32, 32, 0x20);
    Compare(range, 2, above);
    Compare(dataRange, 2, below);
    Load();
    EXPECT_TRUE(MatchesBus(0x1F'0000'0101));
    EXPECT_FALSE(MatchesBus(0x1F'0000'0100));
    EXPECT_FALSE(MatchesBus(0x20'0000'0101));
}

/// A sample of a PCI bus; lines are asserted when 0.
Record Clock(std::uint64_t command, bool address, bool busy = true) {
    Record record{};
    SetField(record, 64, 4, command);
    SetBit(record, 95, address);
    SetBit(record, 72, !busy);
    SetBit(record, 74, !busy);
    return record;
}

TEST_F(ComparatorsTest, DataAreComparedWithTheCommandOfTheirTransfer) {
    Use(Family::Pci32);
    Compare(64, 4, 7);
    Compare(95, 1, 0);
    Load();
    EXPECT_FALSE(Matches(Clock(7, false))) << "byte enables, before any address";
    EXPECT_FALSE(Matches(Clock(7, true)));
    EXPECT_TRUE(Matches(Clock(0, false)));
    EXPECT_FALSE(Matches(Clock(7, false, false))) << "the bus is idle";
    EXPECT_FALSE(Matches(Clock(0, false)));
    EXPECT_FALSE(Matches(Clock(6, true)));
    EXPECT_FALSE(Matches(Clock(0, false))) << "data of a read";
    EXPECT_FALSE(Matches(Clock(7, true)));
    Load(); // another run
    EXPECT_FALSE(Matches(Clock(0, false)));
}

TEST_F(ComparatorsTest, AnAddressIsComparedWithItsOwnCommand) {
    Use(Family::Pci32);
    Compare(64, 4, 7);
    Compare(95, 1, 1);
    Load();
    EXPECT_TRUE(Matches(Clock(7, true)));
    EXPECT_FALSE(Matches(Clock(0, false)));
}

TEST_F(ComparatorsTest, ByteEnablesAreComparedWhereThePhaseIsNot) {
    Use(Family::Pci32);
    Compare(64, 4, 3);
    Load();
    EXPECT_FALSE(Matches(Clock(7, true)));
    EXPECT_TRUE(Matches(Clock(3, false)));
}

} // namespace
} // namespace boardsim
