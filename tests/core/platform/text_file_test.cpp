#include "platform/text_file.h"
#include "support/disk_sync.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t bufferSize = std::size_t{1} << 18;

std::vector<std::string> LinesOf(std::string_view content) {
    const TempDir dir;
    TextReader file;
    EXPECT_TRUE(file.Open(dir.Write("text", content)));
    std::vector<std::string> lines;
    while (const auto line = file.ReadLine()) {
        lines.emplace_back(*line);
    }
    return lines;
}

TEST(TextReader, EndsALineAtALineFeed) {
    EXPECT_THAT(LinesOf("one\ntwo\n"), ElementsAre("one", "two"));
}

TEST(TextReader, RemovesACarriageReturnBeforeTheLineFeed) {
    EXPECT_THAT(LinesOf("one\r\ntwo\r\n"), ElementsAre("one", "two"));
}

TEST(TextReader, KeepsACarriageReturnInsideALine) {
    EXPECT_THAT(LinesOf("a\rb\r\r\n"), ElementsAre("a\rb\r"));
}

TEST(TextReader, ReadsALastLineWithoutALineFeed) {
    EXPECT_THAT(LinesOf("one\ntwo"), ElementsAre("one", "two"));
    EXPECT_THAT(LinesOf("one\ntwo\r"), ElementsAre("one", "two"));
}

TEST(TextReader, AnEmptyFileHasNoLines) {
    EXPECT_THAT(LinesOf(""), IsEmpty());
}

TEST(TextReader, EmptyLinesAreLines) {
    EXPECT_THAT(LinesOf("\n\r\n\n"), ElementsAre("", "", ""));
}

TEST(TextReader, KeepsNulBytes) {
    EXPECT_THAT(LinesOf(std::string_view("a\0b\n\0\n", 6)),
                ElementsAre(std::string("a\0b", 3), std::string(1, '\0')));
}

TEST(TextReader, KeepsBytesThatAreNotUtf8) {
    EXPECT_THAT(LinesOf("\xFF\xFE\n"), ElementsAre("\xFF\xFE"));
}

TEST(TextReader, ReadsALineAcrossTheEndOfTheBuffer) {
    const std::string before(bufferSize - 3, 'x');
    EXPECT_THAT(LinesOf(before + "\nacross\nafter\n"), ElementsAre(before, "across", "after"));
}

TEST(TextReader, ALineMayEndOnEitherSideOfTheEndOfTheBuffer) {
    const std::string last(bufferSize - 1, 'x');
    EXPECT_THAT(LinesOf(last + "\nnext"), ElementsAre(last, "next"));
    const std::string full(bufferSize, 'x');
    EXPECT_THAT(LinesOf(full + "\nnext"), ElementsAre(full, "next"));
}

TEST(TextReader, ALineEndMayLieAcrossTheEndOfTheBuffer) {
    const std::string last(bufferSize - 1, 'x');
    EXPECT_THAT(LinesOf(last + "\r\nnext"), ElementsAre(last, "next"));
}

TEST(TextReader, CutsALineThatIsTooLongAndGoesOnWithTheNext) {
    const std::string longest(TextReader::maxLine, 'x');
    EXPECT_THAT(LinesOf(longest + "\nnext\n"), ElementsAre(longest, "next"));
    EXPECT_THAT(LinesOf(longest + "y\nnext\n"), ElementsAre(longest, "next"));
    EXPECT_THAT(LinesOf(longest + std::string(3 * bufferSize + 5, 'y') + "\r\nnext"),
                ElementsAre(longest, "next"));
    EXPECT_THAT(LinesOf(longest + longest), ElementsAre(longest));
}

TEST(TextReader, DoesNotOpenAMissingFile) {
    const TempDir dir;
    TextReader file;
    EXPECT_FALSE(file.Open(dir.File("absent")));
    EXPECT_FALSE(file.Open(""));
    EXPECT_EQ(file.ReadLine(), std::nullopt);
}

TEST(TextReader, DoesNotOpenADirectory) {
    const TempDir dir;
    TextReader file;
    EXPECT_FALSE(file.Open(dir.Path()));
    EXPECT_EQ(file.ReadLine(), std::nullopt);
}

TEST(TextReader, DoesNotOpenEndlessFiles) {
    const TempDir dir;
    ASSERT_EQ(::mkfifo(dir.File("pipe").c_str(), 0600), 0);
    TextReader file;
    EXPECT_FALSE(file.Open(dir.File("pipe")));
    EXPECT_FALSE(file.Open("/dev/zero"));
}

TEST(TextReader, HasNoLineBeforeItIsOpened) {
    EXPECT_EQ(TextReader().ReadLine(), std::nullopt);
}

TEST(TextReader, StaysAtTheEnd) {
    const TempDir dir;
    TextReader file;
    ASSERT_TRUE(file.Open(dir.Write("text", "one")));
    EXPECT_EQ(file.ReadLine(), "one");
    EXPECT_EQ(file.ReadLine(), std::nullopt);
    EXPECT_EQ(file.ReadLine(), std::nullopt);
}

TEST(TextReader, RestartsWithAnotherFile) {
    const TempDir dir;
    TextReader file;
    ASSERT_TRUE(file.Open(dir.Write("first", "one\ntwo\n")));
    EXPECT_EQ(file.ReadLine(), "one");
    ASSERT_TRUE(file.Open(dir.Write("second", "three\n")));
    EXPECT_EQ(file.ReadLine(), "three");
    EXPECT_FALSE(file.Open(dir.File("absent")));
    EXPECT_EQ(file.ReadLine(), std::nullopt);
}

TEST(TextWriter, WritesBytesAsTheyAre) {
    const TempDir dir;
    TextWriter file;
    ASSERT_TRUE(file.Create(dir.File("text")));
    file.Write("one\r\n");
    file.Write(std::string_view("\0\xFF\n", 3));
    file.Write("");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadWholeFile(dir.File("text")), std::string("one\r\n\0\xFF\n", 8));
}

TEST(TextWriter, ReplacesAnExistingFile) {
    const TempDir dir;
    const std::string path = dir.Write("text", "a long text from before");
    TextWriter file;
    ASSERT_TRUE(file.Create(path));
    file.Write("new");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(TextWriter, ReportsThatAFileCannotBeCreated) {
    const TempDir dir;
    TextWriter file;
    EXPECT_FALSE(file.Create(dir.File("absent/text")));
    EXPECT_FALSE(file.Create(dir.Path()));
    file.Write("lost");
    EXPECT_FALSE(file.Close());
}

TEST(TextWriter, RemembersAFailureUntilItIsClosed) {
    TextWriter file;
    ASSERT_TRUE(file.Create("/dev/full"));
    file.Write("short"); // stays in the buffer, so only Close detects it
    EXPECT_FALSE(file.Close());

    ASSERT_TRUE(file.Create("/dev/full"));
    file.Write(std::string(1'000'000, 'x'));
    file.Write("");
    EXPECT_FALSE(file.Close());
}

TEST(TextWriter, ForgetsAFailureWithTheNextFile) {
    const TempDir dir;
    TextWriter file;
    ASSERT_TRUE(file.Create("/dev/full"));
    file.Write(std::string(1'000'000, 'x'));
    EXPECT_FALSE(file.Close());
    ASSERT_TRUE(file.Create(dir.File("text")));
    file.Write("fine");
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.Close());
}

std::size_t FilesIn(const TempDir& dir) {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(dir.Path()), {}));
}

TEST(TextWriter, IsOnTheDiskBeforeItReplacesTheOldFile) {
    const TempDir dir;
    const std::string path = dir.Write("text", "old");
    DiskSync disk;
    disk.before = [&](int descriptor) {
        struct stat written {};
        ASSERT_EQ(fstat(descriptor, &written), 0);
        EXPECT_EQ(written.st_size, 3) << "the rest is still in the buffer";
        EXPECT_EQ(ReadWholeFile(path), "old");
    };
    TextWriter file;
    ASSERT_TRUE(file.CreateBeside(path));
    file.Write("new");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(disk.Count(), 1);
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(TextWriter, KeepsTheOldFileIfTheDiskFails) {
    const TempDir dir;
    const std::string path = dir.Write("text", "old");
    const DiskSync disk(EIO);
    TextWriter file;
    ASSERT_TRUE(file.CreateBeside(path));
    file.Write("new");
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_EQ(FilesIn(dir), 1U) << "no temporary file is left";
}

TEST(TextWriter, AcceptsAFileThatCannotBeSynchronised) {
    const TempDir dir;
    const std::string path = dir.Write("text", "old");
    const DiskSync disk(EINVAL);
    TextWriter file;
    ASSERT_TRUE(file.CreateBeside(path));
    file.Write("new");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(TextWriter, ADeviceIsNotSynchronised) {
    const DiskSync disk(EIO);
    TextWriter file;
    ASSERT_TRUE(file.CreateBeside("/dev/null"));
    file.Write("new");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(disk.Count(), 0);
}

} // namespace
} // namespace busquill::test
