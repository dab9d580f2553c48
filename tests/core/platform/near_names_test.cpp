#include "platform/near_names.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

TEST(NearNames, KeepTheirOrderWhereNoneIsSimilar) {
    EXPECT_EQ(ListNearest("ISA", {"PCI", "VME", "VSB"}), "PCI, VME, VSB");
    EXPECT_EQ(ListNearest("", {"A", "B"}), "A, B");
    EXPECT_EQ(ListNearest("A", {}), "");
}

TEST(NearNames, TheMostSimilarAreFirst) {
    const std::vector<std::string> names = {"CLK", "AD[63:0]", "ADDRESS32", "COMMAND(PCI-X)",
                                            "FRAME"};
    EXPECT_EQ(ListNearest("ad", names), "AD[63:0], ADDRESS32, CLK, COMMAND(PCI-X), FRAME");
    EXPECT_EQ(ListNearest("AD[99]", names), "AD[63:0], ADDRESS32, CLK, COMMAND(PCI-X), FRAME");
    EXPECT_EQ(ListNearest("FRAM", names), "FRAME, CLK, AD[63:0], ADDRESS32, COMMAND(PCI-X)");
    EXPECT_EQ(ListNearest("FRMAE", {"CLK", "FRAME", "FRAMES"}), "CLK, FRAME, FRAMES");
    EXPECT_EQ(ListNearest("FRXME", {"CLK", "FRAMES", "FRAME"}), "FRAME, CLK, FRAMES");
    EXPECT_EQ(ListNearest("comand", names), "COMMAND(PCI-X), CLK, AD[63:0], ADDRESS32, FRAME");
    EXPECT_EQ(ListNearest("CLOCK", names), "CLK, AD[63:0], ADDRESS32, COMMAND(PCI-X), FRAME");
    EXPECT_EQ(ListNearest("Abort", {"Retry", "Target Abort"}), "Target Abort, Retry");
}

TEST(NearNames, ALongWordIsComparedInNoTime) {
    const std::vector<std::string> names(1000, "NAME");
    const std::string word(1000000, 'n');
    EXPECT_TRUE(ListNearest(word, names).starts_with("NAME, NAME, "));
}

TEST(NearNames, AListThatIsCutSaysSo) {
    const std::vector<std::string> names(100, "NAME");
    const std::string list = ListNearest("X", names);
    EXPECT_LE(list.size(), 500U);
    EXPECT_TRUE(list.starts_with("NAME, NAME, "));
    EXPECT_TRUE(list.ends_with("NAME, ..."));
    EXPECT_FALSE(ListNearest("X", {60, "NAME"}).ends_with("..."));
}

} // namespace
} // namespace busquill::test
