#include "boardsim/firmware_image.h"

#include <gtest/gtest.h>

#include <vector>

namespace boardsim {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(FirmwareImage, EmptyImageIsTheEndRecord) {
    EXPECT_EQ(FirmwareImage().HexText(), ":00000001FF\n");
}

TEST(FirmwareImage, RowsEndWhereTheyAreFullAndWhereAnAddressIsEmpty) {
    FirmwareImage image;
    image.Write(0x100E, Bytes{0xA0, 0xA1, 0xA2, 0xA3});
    image.Write(0x1015, Bytes{0xB0});
    EXPECT_EQ(image.HexText(), ":02100E00A0A19F\n"
                               ":02101000A2A399\n"
                               ":01101500B02A\n"
                               ":00000001FF\n");
}

TEST(FirmwareImage, AFullRowHas16Bytes) {
    FirmwareImage image;
    image.Write(0x20, Bytes(17, 0xFF));
    EXPECT_EQ(image.HexText(), ":10002000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFE0\n"
                               ":01003000FFD0\n"
                               ":00000001FF\n");
}

TEST(FirmwareImage, RecordsMayComeInAnyOrderAndTheLastOneHolds) {
    FirmwareImage image;
    image.Write(2, Bytes{3, 4});
    image.Write(0, Bytes{1, 2, 5});
    EXPECT_EQ(image.HexText(), ":0400000001020504F0\n"
                               ":00000001FF\n");
}

TEST(FirmwareImage, ASegmentRecordPrecedesTheRowsOfEachSegment) {
    FirmwareImage image;
    image.Write(0xFFFE, Bytes{1, 2, 3});
    image.Write(0x20010, Bytes{4});
    EXPECT_EQ(image.HexText(), ":02FFFE000102FE\n"
                               ":020000021000EC\n"
                               ":0100000003FC\n"
                               ":020000022000DC\n"
                               ":0100100004EB\n"
                               ":00000001FF\n");
}

TEST(FirmwareImage, ItEndsWhereSegmentRecordsEnd) {
    FirmwareImage image;
    image.Write(0x0FFFFF, Bytes{1, 2});
    image.Write(0x10FFEF, Bytes{3, 4});
    image.Write(0xFFFFFF, Bytes{5, 6});
    EXPECT_EQ(image.HexText(), ":02000002F0000C\n"
                               ":01FFFF000100\n"
                               ":02000002FFFFFE\n"
                               ":0100100002ED\n"
                               ":01FFFF0003FE\n"
                               ":00000001FF\n");
}

} // namespace
} // namespace boardsim
