#include "capture/bookmarks.h"
#include "support/full_disk.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace busquill::test {
namespace {

class BookmarksInAFile : public testing::Test {
protected:
    [[nodiscard]] std::string Path() const { return dir.File("capture.tra.bookmarks"); }
    [[nodiscard]] BookmarkFile Read(const std::string& content) const {
        return ReadBookmarks(dir.Write("capture.tra.bookmarks", content));
    }

    const TempDir dir;
};

const Bookmarks threeBookmarks{{-12, "First read"}, {0, "Trigger"}, {57, ""}};

TEST_F(BookmarksInAFile, LieBesideTheCapture) {
    EXPECT_EQ(BookmarkPathOf("/a/capture.tra"), "/a/capture.tra.bookmarks");
}

TEST_F(BookmarksInAFile, AreALineEachInTheOrderOfTheSamples) {
    ASSERT_TRUE(WriteBookmarks(Path(), threeBookmarks));
    EXPECT_EQ(ReadWholeFile(Path()), "Busquill bookmarks 1\n"
                                     "-12\tFirst read\n"
                                     "0\tTrigger\n"
                                     "57\t\n");
}

TEST_F(BookmarksInAFile, AreReadAsTheyWereWritten) {
    ASSERT_TRUE(WriteBookmarks(Path(), threeBookmarks));
    const BookmarkFile file = ReadBookmarks(Path());
    EXPECT_EQ(file.bookmarks, threeBookmarks);
    EXPECT_EQ(file.failure, "");
}

TEST_F(BookmarksInAFile, KeepNotesWithLineBreaksTabsAndBackslashesInOneLine) {
    const Bookmarks odd{{1, "two\nlines\r\n\tC:\\new \\x41 \x7F"}, {2, "Grün – 読み"}};
    ASSERT_TRUE(WriteBookmarks(Path(), odd));
    EXPECT_EQ(ReadWholeFile(Path()), "Busquill bookmarks 1\n"
                                     "1\ttwo\\nlines\\x0D\\n\\x09C:\\\\new \\\\x41 \\x7F\n"
                                     "2\tGrün – 読み\n");
    EXPECT_EQ(ReadBookmarks(Path()).bookmarks, odd);
}

TEST_F(BookmarksInAFile, AreNoneWithoutTheFile) {
    const BookmarkFile file = ReadBookmarks(Path());
    EXPECT_TRUE(file.bookmarks.empty());
    EXPECT_EQ(file.failure, "");
}

TEST_F(BookmarksInAFile, NeedNoOrderAndMayHaveBeenEditedElsewhere) {
    const BookmarkFile file = Read("\xEF\xBB\xBF"
                                   "Busquill bookmarks 1\r\n57\t\r\n\r\n0\tTrigger\r\n"
                                   "-12\tFirst read");
    EXPECT_EQ(file.failure, "");
    EXPECT_EQ(file.bookmarks, threeBookmarks);
}

TEST_F(BookmarksInAFile, WithAMistakeNameItsLine) {
    const std::string begin = "Busquill bookmarks 1\n3\tgood\n";
    const std::pair<std::string, std::string> mistakes[] = {
        {"x\tnote\n", "Line 3: A line begins with the number of a sample and a tab."},
        {"\tnote\n", "Line 3: A line begins with the number of a sample and a tab."},
        {"5x\tnote\n", "Line 3: A line begins with the number of a sample and a tab."},
        {"99999999999\tnote\n",
         "Line 3: The number of a sample is from -4294967296 to 4294967296."},
        {"-99999999999999999999\t\n",
         "Line 3: The number of a sample is from -4294967296 to 4294967296."},
        {"99999999999x\t\n", "Line 3: A line begins with the number of a sample and a tab."},
        {"+5\t\n", "Line 3: A line begins with the number of a sample and a tab."},
        {"5\n", "Line 3: There is no tab after the number of the sample."},
        {"5\tC:\\temp\n", "Line 3: A backslash in a note is written \\\\."},
        {"5\tend\\\n", "Line 3: A backslash in a note is written \\\\."},
        {"5\t\\x4\n", "Line 3: A backslash in a note is written \\\\."},
        {"5\t\xFF\n", "Line 3: The note is not UTF-8."},
        {"\n3\ttwice\n", "Line 4: Sample 3 has a bookmark already."},
        {"5\t" + std::string(longestNote + 1, 'a') + "\n",
         "Line 3: The note is longer than 4096 bytes."},
    };
    for (const auto& [line, failure] : mistakes) {
        const BookmarkFile file = Read(begin + line + "7\tafter\n");
        EXPECT_EQ(file.failure, failure) << line;
        EXPECT_EQ(file.bookmarks, (Bookmarks{{3, "good"}, {7, "after"}})) << line;
    }
}

TEST_F(BookmarksInAFile, OfAnotherKindAreRefused) {
    EXPECT_EQ(Read("\"FileType\",\"Trace Data File\"\n1\ta\n").failure,
              "Line 1: A file of bookmarks begins with \"Busquill bookmarks 1\".");
    EXPECT_EQ(Read("Busquill bookmarks 2\n1\ta\n").failure,
              "Line 1: The file was written by a newer version of the program.");
    EXPECT_TRUE(Read("Busquill bookmarks 2\n1\ta\n").bookmarks.empty());
}

TEST_F(BookmarksInAFile, ThatIsADirectoryCannotBeRead) {
    std::filesystem::create_directory(Path());
    EXPECT_EQ(ReadBookmarks(Path()).failure, "The file cannot be read.");
}

TEST_F(BookmarksInAFile, AreNotReadWithoutEnd) {
    std::string text = "Busquill bookmarks 1\n";
    for (std::size_t i = 0; i <= mostBookmarks + 5; ++i) {
        text += std::to_string(i) + "\t\n";
    }
    const BookmarkFile file = Read(text);
    EXPECT_EQ(file.failure, "Line 10002: There are more than 10000 bookmarks.");
    EXPECT_EQ(file.bookmarks.size(), mostBookmarks);
}

TEST_F(BookmarksInAFile, AreGoneWithTheLastOfThem) {
    ASSERT_TRUE(WriteBookmarks(Path(), threeBookmarks));
    ASSERT_TRUE(WriteBookmarks(Path(), {}));
    EXPECT_FALSE(std::filesystem::exists(Path()));
    EXPECT_TRUE(WriteBookmarks(Path(), {})) << "there was no file";
}

TEST_F(BookmarksInAFile, ThatIsALinkAreWrittenWhereItLeads) {
    std::filesystem::create_directory(dir.File("notes"));
    dir.Write("notes/kept", "Busquill bookmarks 1\n0\told\n");
    std::filesystem::create_symlink("notes/kept", Path());
    ASSERT_TRUE(WriteBookmarks(Path(), threeBookmarks));
    EXPECT_EQ(ReadBookmarks(dir.File("notes/kept")).bookmarks, threeBookmarks);
    ASSERT_TRUE(WriteBookmarks(Path(), {}));
    EXPECT_EQ(ReadWholeFile(dir.File("notes/kept")), "Busquill bookmarks 1\n");
    EXPECT_TRUE(std::filesystem::is_symlink(Path()));
    EXPECT_EQ(ReadBookmarks(Path()).failure, "");
}

TEST_F(BookmarksInAFile, ThatIsALinkToNothingCannotBeRead) {
    std::filesystem::create_symlink("missing", Path());
    EXPECT_EQ(ReadBookmarks(Path()).failure, "The file cannot be read.");
}

TEST_F(BookmarksInAFile, AreInOneFileWhateverPathLeadsToTheCapture) {
    namespace fs = std::filesystem;
    const std::string folder = fs::canonical(dir.Path()).string();
    const std::string own = folder + "/data/capture.tra.bookmarks";
    fs::create_directory(folder + "/data");
    dir.Write("data/capture.tra", "a capture");
    fs::create_symlink("data/capture.tra", folder + "/link.tra");
    fs::create_symlink("link.tra", folder + "/second.tra");
    fs::create_directory_symlink("data", folder + "/folder");
    const std::string relative = fs::proximate(folder + "/data/capture.tra").string();
    for (const std::string& name :
         {folder + "/data/capture.tra", folder + "/link.tra", folder + "/second.tra",
          folder + "/folder/capture.tra", folder + "/data/../data/./capture.tra", relative}) {
        EXPECT_EQ(BookmarkPathOf(name), own) << name;
    }
    EXPECT_EQ(BookmarkPathOf(folder + "/folder/later.tra"), folder + "/data/later.tra.bookmarks")
        << "before the capture is written";
}

TEST_F(BookmarksInAFile, StayAsTheyAreWhenTheDiskIsFull) {
    ASSERT_TRUE(WriteBookmarks(Path(), threeBookmarks));
    const std::string before = ReadWholeFile(Path());
    {
        const FullDisk full(8);
        EXPECT_FALSE(WriteBookmarks(Path(), {{1, "another"}}));
    }
    EXPECT_EQ(ReadWholeFile(Path()), before);
}

TEST_F(BookmarksInAFile, CannotBeWrittenIntoAFolderThatIsNotThere) {
    EXPECT_FALSE(WriteBookmarks(dir.File("missing/a.tra.bookmarks"), threeBookmarks));
}

/// Random files that look more or less like files of bookmarks.
TEST_F(BookmarksInAFile, ReadFromAnyBytesAreWrittenAndReadAgainAlike) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string pieces[] = {"1",
                                  "-",
                                  "42",
                                  "\t",
                                  "\n",
                                  "\\",
                                  "\\n",
                                  "\\x0",
                                  "\\x41",
                                  "a b",
                                  "ü",
                                  "\xFF",
                                  std::string(1, '\0'),
                                  "\r",
                                  "Busquill bookmarks 1\n"};
    for (int round = 0; round < 500; ++round) {
        std::string text = random() % 8 != 0 ? "Busquill bookmarks 1\n" : "";
        const unsigned lines = random() % 8;
        for (unsigned line = 0; line < lines; ++line) {
            text += random() % 8 != 0 ? std::to_string(random() % 100) + "\t" : "";
            const unsigned length = random() % 8;
            for (unsigned i = 0; i < length; ++i) {
                text += random() % 10 == 0 ? std::string(1, static_cast<char>(random()))
                                           : pieces[random() % std::size(pieces)];
            }
            text += '\n';
        }
        const BookmarkFile file = Read(text);
        const std::string copy = dir.File("copy");
        ASSERT_TRUE(WriteBookmarks(copy, file.bookmarks));
        const BookmarkFile again = ReadBookmarks(copy);
        ASSERT_EQ(again.failure, "") << text;
        ASSERT_EQ(again.bookmarks, file.bookmarks) << text;
    }
}

} // namespace
} // namespace busquill::test
