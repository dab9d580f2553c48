#include "signals/signal_list.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Texts = std::vector<std::string>;

/// Two bits, with a decoded definition over them as the first row of a list.
class LabelsTest : public testing::Test {
protected:
    void Build(const std::vector<ValueRow>& rows, std::uint32_t mode, std::uint32_t samples = 4) {
        tables_.Bus("AD", 0, 1, 0);
        tables_.Decoded("KIND", {0, 1}, rows, "AD[1:0]");
        list_.BuildFromTables(samples, mode);
    }
    /// Labels of the samples 00, 01, 10 and 11.
    Texts LabelsOfCounting() {
        list_.LoadSamples(
            0, std::vector{RecordOf({}), RecordOf({0}), RecordOf({1}), RecordOf({0, 1})});
        return FirstLabels(4);
    }
    Texts FirstLabels(std::size_t count) {
        Texts labels;
        for (std::size_t sample = 0; sample < count; ++sample) {
            const char* label = list_[0].Label(sample);
            labels.emplace_back(label != nullptr ? label : "-");
        }
        return labels;
    }
    void SetColumn(std::uint32_t sample, const char* bits) {
        for (std::size_t k = 0; k < 2; ++k) {
            const char c = bits[1 - k];
            CSignal& signal = list_[k];
            const std::uint32_t bit = 1U << sample;
            signal.data[0] = (signal.data[0] & ~bit) | (c == '1' ? bit : 0);
            signal.mask[0] = (signal.mask[0] & ~bit) | (c != 'X' ? bit : 0);
        }
        list_.RebuildGroupRows(sample, 1);
        list_.RebuildLabels(sample, 1);
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
};

TEST_F(LabelsTest, TakeTheFirstValueThatMatches) {
    Build({{"Zero", "00"}, {"Odd", "X1"}, {"Three", "11"}}, ModeState);
    EXPECT_EQ(LabelsOfCounting(), (Texts{"Zero", "Odd", "-", "Odd"}));
}

TEST_F(LabelsTest, SkipValuesOfOtherModes) {
    Build({{"All", "XX", 3}, {"Odd", "X1"}}, ModeState);
    EXPECT_EQ(LabelsOfCounting(), (Texts{"-", "Odd", "-", "Odd"}));
    list_.BuildFromTables(4, ModeWaveform);
    EXPECT_EQ(LabelsOfCounting(), (Texts{"-", "Odd", "-", "Odd"}));
}

TEST_F(LabelsTest, AnyMatchesEverySampleOfACapture) {
    Build({{"Zero", "00"}, {"Any", "XX"}}, ModeState);
    EXPECT_EQ(LabelsOfCounting(), (Texts{"Zero", "Any", "Any", "Any"}));
}

TEST_F(LabelsTest, AnyIsNotALabelWhenASignalGetsTheDefinition) {
    Build({{"Any", "XX"}, {"Zero", "00"}}, ModeState);
    EXPECT_EQ(FirstLabels(2), (Texts{"Zero", "Zero"}));
    list_.RebuildLabels(1, 1);
    EXPECT_EQ(FirstLabels(3), (Texts{"Zero", "Any", "Zero"}));
}

TEST_F(LabelsTest, OfAPatternDistinguishKnownFromUnknownBits) {
    Build({{"All", "XX", 3}, {"Zero", "00"}, {"Odd", "X1"}, {"Three", "11"}}, ModeEvents);
    EXPECT_EQ(list_[0].labelTable.size(), 32U);
    EXPECT_STREQ(list_[0].Label(0), "All") << "a new pattern compares nothing";
    SetColumn(0, "00");
    SetColumn(1, "X1");
    SetColumn(2, "11");
    SetColumn(3, "01");
    EXPECT_EQ(FirstLabels(5), (Texts{"Zero", "Odd", "Three", "-", "All"}));
    SetColumn(0, "X0");
    SetColumn(1, "XX");
    EXPECT_EQ(FirstLabels(2), (Texts{"-", "All"}));
}

TEST_F(LabelsTest, AreTheSameFromATableOfAllRows) {
    Build({{"All", "XX", 3}, {"Zero", "00"}, {"Odd", "X1"}}, ModeState, 1000);
    std::vector<SampleRecord> records(1000);
    records[500] = RecordOf({0, 1});
    records[999] = RecordOf({1});
    list_.LoadSamples(0, records);
    EXPECT_STREQ(list_[0].Label(499), "Zero");
    EXPECT_STREQ(list_[0].Label(500), "Odd");
    EXPECT_EQ(list_[0].Label(999), nullptr);
}

TEST_F(LabelsTest, OfFullPatternModesSkipValuesThatTheModeExcludes) {
    Build({{"Not in events", "00", ModeEvents}, {"Zero", "00"}}, ModeEvents);
    SetColumn(0, "00");
    EXPECT_STREQ(list_[0].Label(0), "Zero");
}

TEST_F(LabelsTest, OutsideTheGivenSamplesAreUnchanged) {
    Build({{"Zero", "00"}, {"Odd", "X1"}}, ModeState);
    LabelsOfCounting();
    list_[0].groupData = {1, 1, 1, 1};
    list_.RebuildLabels(1, 1);
    EXPECT_EQ(FirstLabels(4), (Texts{"Zero", "Odd", "-", "Odd"}));
    list_.RebuildLabels(2, 1);
    EXPECT_EQ(FirstLabels(4), (Texts{"Zero", "Odd", "Odd", "Odd"}));
    list_.RebuildLabels(0xFFFFFFFF, 0xFFFFFFFF);
}

/// A decoded signal of one bit, which is the only row.
class BitLabelsTest : public testing::Test {
protected:
    void Build(const std::vector<ValueRow>& rows, std::uint32_t mode) {
        const auto line = tables_.Bus("LINE", 0, 0, 94);
        list_.mode = mode;
        bit_ = list_.AddSignal(nullptr, tables_.Decoded("ANOMALY", {94}, rows), 2, 0, 0, 0,
                               Radix::Hex, true);
    }
    std::string Label(std::size_t sample) const {
        const char* label = bit_->Label(sample);
        return label != nullptr ? label : "-";
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
    CSignal* bit_ = nullptr;
};

TEST_F(BitLabelsTest, TakeTheLastValueOfEachState) {
    Build({{"Low", "0"}, {"None", "X"}, {"High", "1"}, {"Still low", "0"}}, ModeState);
    EXPECT_EQ(Label(0), "Still low") << "labels exist at once";
    list_.LoadSamples(0, std::vector{RecordOf({}), RecordOf({94})});
    EXPECT_EQ(Label(0), "Still low");
    EXPECT_EQ(Label(1), "High");
}

TEST_F(BitLabelsTest, LeaveAStateWithoutAValueUnlabelled) {
    Build({{"None", "X"}, {"Use Checklist", "1"}}, ModeState);
    list_.LoadSamples(0, std::vector{RecordOf({}), RecordOf({94})});
    EXPECT_EQ(Label(0), "-");
    EXPECT_EQ(Label(1), "Use Checklist");
}

TEST_F(BitLabelsTest, ShowTheAnyValueForAnUnknownBit) {
    Build({{"None", "X"}, {"Use Checklist", "1"}}, ModeEvents);
    EXPECT_EQ(Label(0), "None");
    bit_->data[0] = bit_->mask[0] = 0x1;
    list_.RebuildLabels(0, 2);
    EXPECT_EQ(Label(0), "Use Checklist");
    EXPECT_EQ(Label(1), "None");
    bit_->data[0] = 0;
    list_.RebuildLabels(0, 1);
    EXPECT_EQ(Label(0), "-");
}

} // namespace
} // namespace busquill::test
