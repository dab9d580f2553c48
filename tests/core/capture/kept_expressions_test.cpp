#include "capture/kept_expressions.h"
#include "platform/user_folder.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeptExpressionsFile : public testing::Test {
protected:
    void Fill(const std::string& text) { std::ofstream(file) << text; }
    [[nodiscard]] std::string Content() const {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    TempDir folder;
    const std::filesystem::path file{folder.File("mine/expressions.txt")};
};

TEST_F(KeptExpressionsFile, IsWrittenWithItsFolderAndReadAgain) {
    KeptExpressions kept;
    kept.Keep("slow", "  wait > 8\nor latency >= 1.5us ");
    kept.Keep("config", "command == \"Cfg*\"");
    ASSERT_TRUE(kept.Write(file));
    EXPECT_EQ(Content(), "slow: wait > 8 or latency >= 1.5us\nconfig: command == \"Cfg*\"\n");

    KeptExpressions read;
    ASSERT_TRUE(read.Read(file));
    EXPECT_THAT(read.Names(), ElementsAre("@slow", "@config"));
    ASSERT_NE(read.Find("SLOW"), nullptr);
    EXPECT_EQ(read.Find("SLOW")->text, "wait > 8 or latency >= 1.5us");
    EXPECT_EQ(read.Find("slo"), nullptr);
    EXPECT_EQ(read.Find(""), nullptr);
}

TEST_F(KeptExpressionsFile, KeepsWhatTheUserWroteAroundThem) {
    std::filesystem::create_directories(file.parent_path());
    Fill("# mine\r\n\nslow : wait > 8\nnot a line\nSlow: wait > 9\n2nd: wait > 1\nempty:\n"
         "label: command == \"a: b\"");
    KeptExpressions kept;
    ASSERT_TRUE(kept.Read(file));
    EXPECT_THAT(kept.Names(), ElementsAre("@slow", "@label"));
    EXPECT_EQ(kept.Find("label")->text, "command == \"a: b\"");
    EXPECT_THAT(kept.WrongLines(), ElementsAre(4U, 5U, 6U, 7U));

    kept.Keep("SLOW", "wait > 16");
    kept.Keep("more", "bytes > 4");
    EXPECT_TRUE(kept.Remove("Label"));
    EXPECT_FALSE(kept.Remove("label"));
    EXPECT_FALSE(kept.Remove(""));
    ASSERT_TRUE(kept.Write(file));
    EXPECT_EQ(Content(), "# mine\n\nSLOW: wait > 16\nnot a line\nSlow: wait > 9\n2nd: wait > 1\n"
                         "empty:\nmore: bytes > 4\n");
}

TEST_F(KeptExpressionsFile, MayBeginWithTheMarkThatSomeEditorsWrite) {
    std::filesystem::create_directories(file.parent_path());
    Fill("\xEF\xBB\xBFslow: wait > 8\nmore: bytes > 4\n");
    KeptExpressions kept;
    ASSERT_TRUE(kept.Read(file));
    EXPECT_THAT(kept.Names(), ElementsAre("@slow", "@more"));
    EXPECT_THAT(kept.WrongLines(), IsEmpty());
}

TEST_F(KeptExpressionsFile, MayBeMissingButNotUnreadable) {
    KeptExpressions kept;
    kept.Keep("slow", "wait > 8");
    EXPECT_TRUE(kept.Read(file));
    EXPECT_THAT(kept.All(), IsEmpty());
    EXPECT_FALSE(kept.Read(folder.Path())) << "a folder";
    EXPECT_FALSE(kept.Write(folder.Path()));
}

TEST(KeptExpressionNames, AreWords) {
    for (const char* name : {"a", "Slow_2", "late-read"}) {
        EXPECT_TRUE(KeptExpressions::IsName(name)) << name;
    }
    for (const char* name : {"", "2nd", "_a", "two words", "a:b", "@a", "\xC3\xA4"}) {
        EXPECT_FALSE(KeptExpressions::IsName(name)) << name;
    }
}

TEST(KeptExpressionNames, LieInTheUsersFolder) {
    EXPECT_EQ(KeptExpressions::UsualFile(), UserDataFolder() / "expressions.txt");
}

} // namespace
} // namespace busquill::test
