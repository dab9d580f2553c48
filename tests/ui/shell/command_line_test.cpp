#include "ui/shell/command_line.h"

#include <gtest/gtest.h>

namespace busquill {
namespace {

TEST(CommandLineSwitch, LastSwitchCounts) {
    EXPECT_EQ(CommandLineSwitch({}), "");
    EXPECT_EQ(CommandLineSwitch({"-abc"}), "abc");
    EXPECT_EQ(CommandLineSwitch({"/abc", "-def"}), "def");
}

TEST(CommandLineSwitch, FileNamesAreNotSwitches) {
    EXPECT_EQ(CommandLineSwitch({"capture.tra"}), "");
    EXPECT_EQ(CommandLineSwitch({"/tmp/capture.tra", "-x", "other.tra"}), "x");
    EXPECT_EQ(CommandLineSwitch({"-", "/"}), "");
}

TEST(ApplicationName, AppendsTheSwitchAfterAHyphen) {
    EXPECT_EQ(ApplicationName(""), "Busquill!");
    EXPECT_EQ(ApplicationName("abc"), "Busquill!-abc");
}

} // namespace
} // namespace busquill
