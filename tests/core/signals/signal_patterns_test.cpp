#include "signals/signal_list.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint32_t>;

/// A pattern table: KIND over the bits 0 and 2 of AD, the buses AD and BG (reversed), FRAME twice.
class PatternTest : public testing::Test {
protected:
    void SetUp() override {
        tables_.Bus("AD", 0, 3, 0);
        tables_.Bus("BG", 3, 0, 80);
        const auto frame = tables_.Bus("FRAME", 0, 0, 72);
        tables_.Decoded("KIND", {0, 2}, {{"All", "XX", 3}, {"Two", "10"}, {"Odd", "X1"}},
                        "AD[3:0]");
        list_.BuildFromTables(8, ModeEvents);
        list_.AddSignal(nullptr, frame, 8, 0, 0, 0, Radix::Hex, false);
    }
    CSignal& Row(const char* name) { return *FindRow(list_, name); }
    /// The `k`th member of a row.
    CSignal& Member(const char* name, std::size_t k) {
        return list_[list_.IndexOf(FindRow(list_, name)) + k];
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
};

TEST_F(PatternTest, CopiesTheRowsOfAGroupToEverySignalWithItsBits) {
    CSignal& ad = Row("AD[3:0]");
    ad.groupData[0] = 0b0101;
    ad.groupMask[0] = 0b0111;
    ad.groupData[7] = 0b1000;
    ad.groupMask[7] = 0b1000;
    list_.UnpackGroup(&ad);
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0x01});
    EXPECT_EQ(Member("AD[3:0]", 2).data, Words{0x01});
    EXPECT_EQ(Member("AD[3:0]", 3).data, Words{0x80});
    EXPECT_EQ(Member("AD[3:0]", 1).mask, Words{0x01});
    EXPECT_EQ(Member("AD[3:0]", 3).mask, Words{0x80});
    // The decoded row over bits 0 and 2 shows the same.
    EXPECT_EQ(Row("KIND").groupData[0], 0b11);
    EXPECT_EQ(Row("KIND").groupMask[0], 0b11);
    EXPECT_EQ(Row("KIND").Label(0), nullptr);
    EXPECT_STREQ(Row("KIND").Label(7), "All");
}

TEST_F(PatternTest, ClearsOldBitsWhenRowsAreCopied) {
    CSignal& ad = Row("AD[3:0]");
    ad.groupData[3] = ad.groupMask[3] = 0b1111;
    list_.UnpackGroup(&ad);
    ad.groupData[3] = 0b0010;
    ad.groupMask[3] = 0b0011;
    list_.UnpackGroup(&ad);
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0});
    EXPECT_EQ(Member("AD[3:0]", 1).data, Words{0x08});
    EXPECT_EQ(Member("AD[3:0]", 3).mask, Words{0});
    EXPECT_EQ(Row("KIND").groupMask[3], 0b01);
}

TEST_F(PatternTest, ClearsTheColumnsAfterTheRows) {
    CSignal& other = list_[list_.Size() - 1];
    other.dataIndex = 1;
    SetSamples(other, Words{0xFFFFFFFF, 0xFFFFFFFF}, 64);
    list_.UnpackGroup(&Row("AD[3:0]"));
    EXPECT_EQ(other.data, (Words{0, 0}));
}

TEST_F(PatternTest, CopiesAReversedBusDownward) {
    CSignal& bg = Row("BG[3:0]");
    ASSERT_EQ(bg.dataIndex, 83);
    bg.groupData[1] = 0b0011;
    bg.groupMask[1] = 0b1111;
    list_.UnpackGroup(&bg);
    EXPECT_EQ(Member("BG[3:0]", 0).data, Words{0x2});
    EXPECT_EQ(Member("BG[3:0]", 1).data, Words{0x2});
    EXPECT_EQ(Member("BG[3:0]", 2).data, Words{0});
    EXPECT_EQ(bg.groupData[1], 0b0011);
    EXPECT_EQ(bg.groupMask[1], 0b1111);
}

TEST_F(PatternTest, CopiesADecodedGroupByThePositionsOfItsDefinition) {
    CSignal& kind = Row("KIND");
    kind.groupData[2] = 0b10;
    kind.groupMask[2] = 0b11;
    list_.UnpackDecoded(&kind);
    EXPECT_EQ(Member("AD[3:0]", 0).mask, Words{0x4});
    EXPECT_EQ(Member("AD[3:0]", 1).mask, Words{0});
    EXPECT_EQ(Member("AD[3:0]", 2).data, Words{0x4});
    EXPECT_EQ(Row("AD[3:0]").groupData[2], 0b0100);
    EXPECT_EQ(Row("AD[3:0]").groupMask[2], 0b0101);
    EXPECT_STREQ(kind.Label(2), "Two");
}

TEST_F(PatternTest, CopiesNothingForABlankOrASingleSignal) {
    CSignal* blank = list_.InsertBlank(nullptr);
    blank->groupWidth = 2;
    blank->groupData = {3};
    list_.UnpackGroup(blank);
    list_.UnpackDecoded(blank);
    list_.UnpackGroup(&Row("FRAME"));
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0});
}

TEST_F(PatternTest, AppliesAValueToOneColumn) {
    CSignal& kind = Row("KIND");
    list_.ApplyDecodedValue(&kind, 1, 1); // "Two"
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0});
    EXPECT_EQ(Member("AD[3:0]", 0).mask, Words{0x2});
    EXPECT_EQ(Member("AD[3:0]", 2).data, Words{0x2});
    EXPECT_EQ(Member("AD[3:0]", 2).mask, Words{0x2});
    EXPECT_EQ(Member("AD[3:0]", 1).mask, Words{0});
    EXPECT_STREQ(kind.Label(1), "Two");
    EXPECT_STREQ(kind.Label(0), "All");
    EXPECT_EQ(Row("AD[3:0]").groupMask[1], 0b0101);

    list_.ApplyDecodedValue(&kind, 1, 99); // the last one, "Odd"
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0x2});
    EXPECT_EQ(Member("AD[3:0]", 2).data, Words{0});
    EXPECT_EQ(Member("AD[3:0]", 2).mask, Words{0});
    EXPECT_STREQ(kind.Label(1), "Odd");

    list_.ApplyDecodedValue(&kind, 1, 0); // "All"
    EXPECT_EQ(Member("AD[3:0]", 0).data, Words{0});
    EXPECT_EQ(Member("AD[3:0]", 0).mask, Words{0});
    EXPECT_STREQ(kind.Label(1), "All");
}

TEST_F(PatternTest, AppliesNothingOutsideTheColumnsOrWithoutADefinition) {
    list_.ApplyDecodedValue(&Row("KIND"), 32, 1);
    list_.ApplyDecodedValue(&Row("FRAME"), 0, 1);
    EXPECT_EQ(Member("AD[3:0]", 2).data, Words{0});
}

TEST_F(PatternTest, CopiesABitToTheOtherSignalsWithIt) {
    CSignal& bit = Member("AD[3:0]", 2);
    bit.data[0] = bit.mask[0] = 0x21;
    list_.SpreadBit(&bit, 5);
    EXPECT_EQ(Member("KIND", 1).data, Words{0x20}) << "only that column";
    EXPECT_EQ(Member("KIND", 1).mask, Words{0x20});
    EXPECT_EQ(Row("KIND").groupData[5], 0b10);
    EXPECT_EQ(Row("AD[3:0]").groupData[5], 0b0100);

    CSignal& frame = Row("FRAME");
    CSignal& second = list_[list_.Size() - 1];
    ASSERT_NE(&frame, &second);
    second.mask[0] = 0xFF;
    second.data[0] = 0xFF;
    list_.SpreadBit(&frame, 1);
    EXPECT_EQ(second.mask, Words{0xFD});
    EXPECT_EQ(second.data, Words{0xFD});
}

TEST_F(PatternTest, DoesNotCopyABlankRow) {
    CSignal* blank = list_.InsertBlank(nullptr);
    CSignal* other = list_.InsertBlank(nullptr);
    SetSamples(*blank, Words{1}, 8);
    SetSamples(*other, Words{0}, 8);
    list_.SpreadBit(blank, 0);
    EXPECT_EQ(other->data, Words{0});
}

} // namespace
} // namespace busquill::test
