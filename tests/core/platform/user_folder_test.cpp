#include "platform/user_folder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace busquill::test {
namespace {

namespace fs = std::filesystem;

class FillingAFolder : public testing::Test {
protected:
    FillingAFolder() {
        fs::create_directory(dir.File("installed"));
        dir.Write("installed/a.tra", "first");
        dir.Write("installed/b.txt", "second");
    }
    bool Fill() { return FillFolder(dir.File("installed"), dir.File("share/busquill"), Record()); }
    std::string Record() { return dir.File("state/busquill/copied"); }
    std::string Mine(const std::string& name) { return dir.File("share/busquill/" + name); }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& file : fs::directory_iterator(dir.File("share/busquill"))) {
            names.push_back(file.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    const TempDir dir;
};

TEST_F(FillingAFolder, CopiesWhatIsInstalled) {
    ASSERT_TRUE(Fill());
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.tra", "b.txt"}));
    EXPECT_EQ(ReadWholeFile(Mine("a.tra")), "first");
}

TEST_F(FillingAFolder, KeepsAFileThatIsThere) {
    fs::create_directories(dir.File("share/busquill"));
    dir.Write("share/busquill/a.tra", "mine");
    ASSERT_TRUE(Fill());
    EXPECT_EQ(ReadWholeFile(Mine("a.tra")), "mine");
    EXPECT_EQ(ReadWholeFile(Mine("b.txt")), "second");
}

TEST_F(FillingAFolder, ASecondTimeChangesNothing) {
    ASSERT_TRUE(Fill());
    dir.Write("share/busquill/a.tra", "changed");
    fs::remove(Mine("b.txt"));
    ASSERT_TRUE(Fill());
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.tra"}));
    EXPECT_EQ(ReadWholeFile(Mine("a.tra")), "changed");
}

TEST_F(FillingAFolder, ALaterVersionAddsItsNewFilesOnly) {
    ASSERT_TRUE(Fill());
    fs::remove(Mine("b.txt"));
    dir.Write("installed/c.tsp", "third");
    ASSERT_TRUE(Fill());
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.tra", "c.tsp"}));
}

TEST_F(FillingAFolder, AReadOnlyFileIsWritableInTheFolder) {
    fs::permissions(dir.File("installed/a.tra"), fs::perms::owner_read);
    ASSERT_TRUE(Fill());
    EXPECT_NE(fs::status(Mine("a.tra")).permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST_F(FillingAFolder, AFolderThatCannotBeCreatedIsReported) {
    dir.Write("share", "a file where the folder should be");
    EXPECT_FALSE(Fill());
    EXPECT_FALSE(fs::exists(Record()));
}

TEST_F(FillingAFolder, WhatCouldNotBeCopiedIsCopiedTheNextTime) {
    fs::create_directories(Mine("b.txt.part/in the way"));
    EXPECT_FALSE(Fill());
    EXPECT_EQ(ReadWholeFile(Mine("a.tra")), "first");
    fs::remove_all(Mine("b.txt.part"));
    ASSERT_TRUE(Fill());
    EXPECT_EQ(ReadWholeFile(Mine("b.txt")), "second");
}

TEST_F(FillingAFolder, WithoutInstalledFilesItStaysEmpty) {
    fs::remove_all(dir.File("installed"));
    ASSERT_TRUE(Fill());
    EXPECT_TRUE(Names().empty());
}

TEST(UserFolders, FollowTheBaseDirectories) {
    ::setenv("HOME", "/home/me", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    ::setenv("XDG_STATE_HOME", "/state", 1);
    EXPECT_EQ(UserDataFolder(), "/data/busquill");
    EXPECT_EQ(UserStateFolder(), "/state/busquill");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    ::unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(UserDataFolder(), "/home/me/.local/share/busquill");
    EXPECT_EQ(UserStateFolder(), "/home/me/.local/state/busquill");
}

} // namespace
} // namespace busquill::test
