#include "link/hex_records.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Step = HexRecords::Step;

TEST(HexRecords, HaveCountAddressTypeAndData) {
    HexRecords records(":03123400A1b2C3FF\r\n:00000001FF\r\n");
    EXPECT_EQ(records.Colons(), 2U);
    HexRecord record;
    ASSERT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.type, HexRecord::Data);
    EXPECT_EQ(record.address, 0x1234);
    EXPECT_EQ(record.data, (Bytes{0xA1, 0xB2, 0xC3}));
    ASSERT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.type, HexRecord::End);
    EXPECT_TRUE(record.data.empty());
    EXPECT_EQ(records.Next(record), Step::EndOfFile);
    EXPECT_EQ(records.Next(record), Step::EndOfFile);
}

TEST(HexRecords, AnEndRecordEndsNothing) {
    HexRecords records(":00000001FF:0100000055AA");
    HexRecord record;
    EXPECT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.data, Bytes{0x55});
}

TEST(HexRecords, TextBetweenThemIsSkipped) {
    HexRecords records("; comment\n\n\n:0100000055AA trailing\n\nmore\n:0100010066\n");
    HexRecord record;
    EXPECT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.data, Bytes{0x55});
    EXPECT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.data, Bytes{0x66});
    EXPECT_EQ(records.Next(record), Step::EndOfFile);
}

TEST(HexRecords, NoColonNoRecord) {
    HexRecords records("no record at all");
    HexRecord record;
    EXPECT_EQ(records.Colons(), 0U);
    EXPECT_EQ(records.Next(record), Step::EndOfFile);
}

TEST(HexRecords, TypesAboveTwoAreInvalid) {
    for (const char* text : {":020000040800F2", ":00000003FD", ":000000FF01"}) {
        HexRecords records(text);
        HexRecord record;
        EXPECT_EQ(records.Next(record), Step::Invalid) << text;
    }
}

TEST(HexRecords, ChecksumsAreNotRead) {
    HexRecords records(":0100000055ZZ\n:0100000066");
    HexRecord record;
    EXPECT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(records.Next(record), Step::Record) << "not even whether there is one";
    EXPECT_EQ(record.data, Bytes{0x66});
}

TEST(HexRecords, CutOffOnesAreInvalid) {
    for (const char* text : {":", ":0", ":02", ":020", ":0200", ":020000", ":0200000", ":02000000",
                             ":020000001", ":0200000012", ":02000000123"}) {
        HexRecords records(text);
        HexRecord record;
        EXPECT_EQ(records.Next(record), Step::Invalid) << text;
        EXPECT_EQ(records.Next(record), Step::EndOfFile) << text;
    }
}

TEST(HexRecords, AnyCharacterIsADigit) {
    // Its code less the code of "0": ":" is 10, "G" is 23, a blank is -16.
    HexRecords records(":040000000:G0 0:::0100010077");
    HexRecord record;
    ASSERT_EQ(records.Next(record), Step::Record);
    EXPECT_EQ(record.data, (Bytes{0x0A, 0x70, 0x00, 0xAA})) << "low bytes of 10, 368, -256, 170";
    ASSERT_EQ(records.Next(record), Step::Record) << "a colon among the data begins no record";
    EXPECT_EQ(record.data, Bytes{0x77});
    EXPECT_EQ(records.Colons(), 5U) << "but counts in the progress";
}

} // namespace
} // namespace busquill::test
