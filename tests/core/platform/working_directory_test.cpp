#include "platform/working_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace busquill::test {
namespace {

TEST(WorkingDirectory, AtStartIsThatOfTheProcess) {
    EXPECT_EQ(WorkingDirectory::AtStart().Path(), std::filesystem::current_path().string());
}

TEST(WorkingDirectory, AddsAMissingSeparator) {
    EXPECT_EQ(WorkingDirectory("/data").FilePath("Trigger1.tra"), "/data/Trigger1.tra");
    EXPECT_EQ(WorkingDirectory("/data/").FilePath("Trigger1.tra"), "/data/Trigger1.tra");
    EXPECT_EQ(WorkingDirectory("C:\\data\\").FilePath("a"), "C:\\data\\a");
    EXPECT_EQ(WorkingDirectory("/").FilePath("a"), "/a");
}

TEST(WorkingDirectory, AnEmptyOneIsNotTheRoot) {
    EXPECT_EQ(WorkingDirectory("").FilePath("a"), "a");
}

TEST(FileName, IsThePartAfterTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(FileNameOf("/data/a.tra"), "a.tra");
    EXPECT_EQ(FileNameOf("C:\\data\\a.tra"), "a.tra");
    EXPECT_EQ(FileNameOf("C:\\data/a.tra"), "a.tra");
    EXPECT_EQ(FileNameOf("a.tra"), "a.tra");
    EXPECT_EQ(FileNameOf("/data/"), "");
    EXPECT_EQ(FileNameOf(""), "");
}

TEST(Folder, IsThePartUpToTheLastSeparator) {
    EXPECT_EQ(FolderOf("/data/a.tra"), "/data/");
    EXPECT_EQ(FolderOf("C:\\data\\a.tra"), "C:\\data\\");
    EXPECT_EQ(FolderOf("a.tra"), "");
    EXPECT_EQ(FolderOf(""), "");
}

TEST(BaseName, IsTheFileNameUpToItsLastDot) {
    EXPECT_EQ(BaseNameOf("/data/a.b.tra"), "a.b");
    EXPECT_EQ(BaseNameOf("/data.d/a"), "a");
    EXPECT_EQ(BaseNameOf(".tra"), "");
    EXPECT_EQ(BaseNameOf(""), "");
}

} // namespace
} // namespace busquill::test
