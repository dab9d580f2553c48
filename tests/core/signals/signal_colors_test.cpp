#include "support/board_tables.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

TEST(ColorFile, AMissingOrEmptyFileLeavesTheColoursOfTheTables) {
    const TempDir dir;
    EXPECT_EQ(BoardTables("PCIKite-1", 0, 0, dir.Path()).tables.busSignals.FindByName("AD")->color,
              0U);
    dir.Write("BusSignalColors.dat", "");
    EXPECT_EQ(
        BoardTables("PCIKite-1", 0, 0, dir.Path()).tables.busSignals.FindByName("TIME")->color,
        0x00FF00U);
}

TEST(ColorFile, AChosenColourIsUsedAtTheNextStart) {
    const TempDir dir;
    {
        BoardTables board("PCIKite-1", 0, 0, dir.Path());
        board.tables.busSignals.SetColor("IRDY", 0x123456);
        board.tables.decodedSignals.SetColor("COMMAND", 0xABCDEF);
        EXPECT_EQ(board.tables.busSignals.FindByName("IRDY")->color, 0x123456U);
    }
    const BoardTables again("PCIKite-1", 0, 0, dir.Path());
    EXPECT_EQ(again.tables.busSignals.FindByName("IRDY")->color, 0x123456U);
    EXPECT_EQ(again.tables.decodedSignals.FindByName("COMMAND")->color, 0xABCDEFU);
}

TEST(ColorFile, HasALineForEachDefinitionInOrder) {
    const TempDir dir;
    BoardTables board("VSBKite-1", BusVsb, 0, dir.Path());
    board.tables.decodedSignals.SetColor("DATA32", 0x10);
    EXPECT_EQ(ReadWholeFile(dir.File("DecodedSignalColors.dat")),
              "COMMAND 0\nADDRESS32 0\nDATA32 10\nTIME ff00\nDELTA ff00\nACCUM ff00\n=<> 0\n"
              "SAMPLE ff0000\n");
}

TEST(ColorFile, ANameWithABlankIsWrittenButNotFoundAgain) {
    const TempDir dir;
    BoardTables(std::string("PCIKite-1"), 0, 0, dir.Path())
        .tables.decodedSignals.SetColor("RULE CHECK", 0x00FFFF);
    EXPECT_NE(ReadWholeFile(dir.File("DecodedSignalColors.dat")).find("RULE CHECK ffff\n"),
              std::string::npos);
    const BoardTables again("PCIKite-1", 0, 0, dir.Path());
    EXPECT_EQ(again.tables.decodedSignals.FindByName("RULE CHECK")->color, 0x0000FFU);
}

TEST(ColorFile, ReadingIgnoresCaseAndWritingDoesNot) {
    const TempDir dir;
    dir.Write("BusSignalColors.dat", "  irdy\tff\r\n");
    BoardTables board("PCIKite-1", 0, 0, dir.Path());
    EXPECT_EQ(board.tables.busSignals.FindByName("IRDY")->color, 0xFFU);
    board.tables.busSignals.SetColor("irdy", 0x11);
    EXPECT_EQ(board.tables.busSignals.FindByName("IRDY")->color, 0xFFU);
}

TEST(ColorFile, NamesOfAnotherFamilyAreIgnoredAndDroppedWhenWritten) {
    const TempDir dir;
    dir.Write("BusSignalColors.dat", "DTACK ff\nIRDY 11\n");
    BoardTables board("PCIKite-1", 0, 0, dir.Path());
    EXPECT_EQ(board.tables.busSignals.FindByName("IRDY")->color, 0x11U);
    board.tables.busSignals.SetColor("TRDY", 0x22);
    EXPECT_EQ(ReadWholeFile(dir.File("BusSignalColors.dat")).find("DTACK"), std::string::npos);
}

TEST(ColorFile, AColourIsUsedInThisRunEvenIfTheFileCannotBeWritten) {
    BoardTables board("PCIKite-1");
    board.tables.busSignals.SetColor("IRDY", 0x55);
    EXPECT_EQ(board.tables.busSignals.FindByName("IRDY")->color, 0x55U);
}

} // namespace
} // namespace busquill::test
