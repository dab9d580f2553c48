#include "platform/text_file.h"
#include "platform/working_directory.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "testsuites/check_list.h"
#include "testsuites/test_result.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

CheckList ListOf(const std::string& text) {
    const TempDir dir;
    TextReader file;
    EXPECT_TRUE(file.Open(dir.Write("list.txt", text)));
    return ReadCheckList(file);
}

std::vector<std::string> Texts(const CheckList& list) {
    std::vector<std::string> texts;
    for (const CheckItem& item : list) {
        texts.push_back((item.isGroup ? "group " : "test ") + item.text);
    }
    return texts;
}

TEST(CheckList, HasGroupsAndTestsInTheirOrder) {
    EXPECT_THAT(
        Texts(ListOf("CF0. Alone\n[Configuration]\nCF1. One\nCF2. Two\r\n[Open\n MS1. x\n")),
        ElementsAre("test CF0. Alone", "group Configuration", "test CF1. One", "test CF2. Two",
                    "group Open", "test  MS1. x"));
}

TEST(CheckList, OnlyATrailingBracketIsCut) {
    EXPECT_THAT(Texts(ListOf("[A]b]\n[A] \n[]\n")),
                ElementsAre("group A]b", "group A] ", "group "));
}

TEST(CheckList, AnEmptyLineIsNoTest) {
    EXPECT_THAT(Texts(ListOf("\nCF1. One\n\r\n\nCF2. Two")),
                ElementsAre("test CF1. One", "test CF2. Two"));
}

TEST(CheckList, InstructionsBelongToTheItemBeforeThem) {
    const CheckList list =
        ListOf("<Dropped>\n[Group]\n<Of the group>\nCF1. One\nCF2. Two\n<Of two>");
    ASSERT_THAT(list, SizeIs(3));
    EXPECT_EQ(list[0].instructions, "Of the group");
    EXPECT_EQ(list[1].instructions, "");
    EXPECT_EQ(list[2].instructions, "Of two");
}

TEST(CheckList, TheLastInstructionsWin) {
    EXPECT_EQ(ListOf("CF1. One\n<First>\n<Second>\n")[0].instructions, "Second");
    EXPECT_EQ(ListOf("CF1. One\n<First>\n<>\n")[0].instructions, "") << "empty ones are none";
}

TEST(CheckList, TheLastClosingBracketOfInstructionsIsCutAlone) {
    EXPECT_EQ(ListOf("CF1. One\n<a > b>>\n")[0].instructions, "a > b>");
    EXPECT_EQ(ListOf("CF1. One\n<a> \n")[0].instructions, "a ");
    EXPECT_EQ(ListOf("CF1. One\n<open\n")[0].instructions, "open");
}

TEST(CheckList, ALongLineIsReadAsSeveral) {
    const std::string longest = "CF1. " + std::string(506, 'x');
    EXPECT_THAT(Texts(ListOf(longest + "\nCF2. Two\n")),
                ElementsAre("test " + longest, "test CF2. Two"));
    EXPECT_THAT(Texts(ListOf(longest + "[rest]\n")), ElementsAre("test " + longest, "group rest"));
}

TEST(CheckList, TheShortFormOfATestStandsBeforeItsFirstDot) {
    const CheckList list = ListOf("CF1. A. B\nNo dot\nCF2.\n. Dot first\n[G. Group]\n");
    ASSERT_THAT(list, SizeIs(5));
    EXPECT_EQ(list[0].ShortForm(), "CF1");
    EXPECT_EQ(list[0].Title(), "A. B");
    EXPECT_EQ(list[0].Key(), "CF1");
    EXPECT_EQ(list[1].ShortForm(), "");
    EXPECT_EQ(list[1].Key(), "No dot");
    EXPECT_EQ(list[2].Title(), "");
    EXPECT_EQ(list[3].Key(), "Dot first");
    EXPECT_EQ(list[4].ShortForm(), "");
    EXPECT_EQ(list[4].Key(), "[G. Group]");
}

TEST(CheckList, IsEmptyWithoutItsFile) {
    EXPECT_THAT(LoadCheckList(WorkingDirectory("/nonexistent")), IsEmpty());
}

TEST(CheckListOfTheProgram, HasTestsThatTheBoardAndFilesTellApart) {
    const CheckList list = LoadCheckList(WorkingDirectory(SourceFile("data")));
    ASSERT_FALSE(list.empty());
    EXPECT_TRUE(list[0].isGroup);
    std::set<std::string> ids;
    int attended = 0;
    for (const CheckItem& item : list) {
        if (item.isGroup) {
            continue;
        }
        const TestId id = TestIdOf(item.text);
        EXPECT_EQ(TestIdText(id), item.ShortForm());
        EXPECT_EQ(TestIdOf(item.ShortForm()), id) << "a file holds the short form";
        EXPECT_TRUE(ids.insert(TestIdText(id)).second) << item.line;
        EXPECT_FALSE(item.Title().empty() || item.Title().ends_with('"')) << item.line;
        attended += item.instructions.empty() ? 0 : 1;
    }
    EXPECT_GE(ids.size(), 60U);
    EXPECT_GE(attended, 8);
    EXPECT_LE(list.size(), 500U);
}

} // namespace
} // namespace busquill::test
