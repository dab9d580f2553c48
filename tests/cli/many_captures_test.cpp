// transactions, stats and search over many captures.

#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace busquill::test {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string noTraceFile = "Error: File type of 'Trace Data File' not found.";

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::size_t Count(const std::string& text, const std::string& word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        ++count;
    }
    return count;
}

using Command = std::vector<std::string>;
const Command transactions = {"transactions"};
const Command stats = {"stats"};
const Command search = {"search", "-p", "COMMAND=Mem Rd", "--all"};

class ManyCaptures : public testing::Test {
protected:
    /// A folder "year" with captures of different lengths.
    void SetUp() override {
        for (const auto& [name, samples] :
             std::vector<std::pair<std::string, int>>{{"year/b.tra", 3000},
                                                      {"year/10/first.tra", 20000},
                                                      {"year/10/second.TRA", 500},
                                                      {"year/11/deep/a.tra", 8000}}) {
            Record(name, samples);
        }
        dir.Write("year/10/notes.txt", "no capture");
    }
    void Record(const std::string& name, int samples) {
        std::filesystem::create_directories(std::filesystem::path(dir.File(name)).parent_path());
        const ProgramRun run = RunSystemProgram(
            BoardSimulator(), {"record", "--family", "pci32", "--samples", std::to_string(samples),
                               "--seed", std::to_string(++seed_), "-o", dir.File(name)});
        ASSERT_EQ(run.status, 0) << run.err;
    }
    static Command Joined(Command command, const Command& more) {
        command.insert(command.end(), more.begin(), more.end());
        return command;
    }
    ProgramRun Run(const Command& command, const Command& more, const std::string& in = "") {
        return RunTrace(Joined(command, more), {.folder = dir.Path(), .standardInput = in});
    }
    /// Each row of single captures, with the file before it.
    std::string RowsOf(const Command& command, const std::vector<std::string>& files) {
        std::string rows;
        for (const std::string& file : files) {
            std::vector<std::string> lines = LinesOf(Run(command, {file, "--format", "csv"}).out);
            rows = rows.empty() ? "file," + lines.at(0) + "\n" : rows;
            for (std::size_t i = 1; i < lines.size(); ++i) {
                rows += file + "," + lines[i] + "\n";
            }
        }
        return rows;
    }

    const std::vector<std::string> inOrder = {"year/10/first.tra", "year/10/second.TRA",
                                              "year/11/deep/a.tra", "year/b.tra"};
    const TempDir dir;

private:
    int seed_ = 0;
};

TEST_F(ManyCaptures, OfAFolderAreFoundBelowItInTheOrderOfTheirPaths) {
    for (const Command& command : {transactions, stats, search}) {
        const ProgramRun run = Run(command, {"year", "--format", "csv"});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_TRUE(run.out == RowsOf(command, inOrder)) << command[0];
        EXPECT_GT(Count(run.out, "\n"), 4U);
    }
}

TEST_F(ManyCaptures, KeepTheOrderOfTheOperands) {
    const ProgramRun run = Run(stats, {"year/b.tra", "year/10", "year/11", "--format", "csv"});
    EXPECT_EQ(run.out, RowsOf(stats, {"year/b.tra", "year/10/first.tra", "year/10/second.TRA",
                                      "year/11/deep/a.tra"}));
}

TEST_F(ManyCaptures, AreReportedAlikeByAnyNumberOfJobs) {
    for (const char* format : {"text", "csv", "json"}) {
        for (const Command& command : {transactions, stats, search}) {
            const std::string alone = Run(command, {"year", "--format", format, "-j", "1"}).out;
            EXPECT_NE(alone, "");
            for (const char* jobs : {"2", "3", "16"}) {
                EXPECT_TRUE(Run(command, {"year", "--format", format, "--jobs", jobs}).out == alone)
                    << command[0] << format << jobs;
            }
        }
    }
}

TEST_F(ManyCaptures, NameTheirFileInEachObjectOfJson) {
    for (const Command& command : {transactions, stats, search}) {
        std::vector<std::string> files;
        for (const std::string& line : LinesOf(Run(command, {"year", "--json"}).out)) {
            const auto object = nlohmann::ordered_json::parse(line);
            EXPECT_EQ(object.begin().key(), "file");
            const std::string file = object.at("file");
            if (files.empty() || files.back() != file) {
                files.push_back(file);
            }
        }
        EXPECT_EQ(files, inOrder) << command[0];
    }
}

TEST_F(ManyCaptures, HaveTheFieldsOfASingleOneInJson) {
    const std::string file = "year/10/second.TRA";
    const auto lines = LinesOf(Run(transactions, {"year/10", "--json"}).out);
    const auto alone = LinesOf(Run(transactions, {file, "--json"}).out);
    ASSERT_GT(alone.size(), 10U);
    ASSERT_GT(lines.size(), alone.size());
    for (std::size_t i = 0; i < alone.size(); ++i) {
        EXPECT_EQ(lines[lines.size() - alone.size() + i],
                  "{\"file\": \"" + file + "\", " + alone[i].substr(1));
    }
    EXPECT_EQ(Run(stats, {file, file, "--json"}).out,
              "{\"file\": \"" + file + "\", " + Run(stats, {file, "--json"}).out.substr(1) +
                  "{\"file\": \"" + file + "\", " + Run(stats, {file, "--json"}).out.substr(1));
    EXPECT_THAT(LinesOf(Run({"search", "-p", "COMMAND=Mem Rd"}, {file, file, "--json"}).out),
                ElementsAre("{\"file\": \"" + file + "\", \"sample\": " +
                                LinesOf(Run({"search", "-p", "COMMAND=Mem Rd"}, {file}).out)[0] +
                                "}",
                            testing::_));
}

TEST_F(ManyCaptures, HaveAHeadingInTheTextForm) {
    for (const Command& command : {transactions, stats, search}) {
        std::string wanted;
        for (const std::string& file : inOrder) {
            wanted +=
                (wanted.empty() ? "File: " : "\nFile: ") + file + "\n" + Run(command, {file}).out;
        }
        EXPECT_TRUE(Run(command, {"year"}).out == wanted) << command[0];
    }
    // No heading without something below it.
    const std::string longest = Run(transactions, {"year", "--where", "sample > 8000"}).out;
    EXPECT_THAT(longest, StartsWith("File: year/10/first.tra\n  NUMBER"));
    EXPECT_EQ(Count(longest, "File: "), 1U);
}

TEST_F(ManyCaptures, OneFileIsNotNamed) {
    for (const Command& command : {transactions, stats, search}) {
        for (const char* format : {"text", "csv", "json"}) {
            const ProgramRun run = Run(command, {"year/10/second.TRA", "--format", format});
            EXPECT_EQ(run.status, 0);
            EXPECT_THAT(run.out, Not(HasSubstr("second.TRA")));
        }
    }
    // A folder names its only one.
    EXPECT_THAT(Run(stats, {"year/11"}).out, StartsWith("File: year/11/deep/a.tra\n"));
}

TEST_F(ManyCaptures, GoOnAfterOneThatCannotBeRead) {
    dir.Write("year/10/broken.tra", "no capture");
    for (const Command& command : {transactions, stats, search}) {
        const ProgramRun run = Run(command, {"year", "gone.tra", "--format", "csv"});
        EXPECT_EQ(run.status, 3);
        EXPECT_THAT(run.err, HasSubstr("busquill-trace: year/10/broken.tra: " + noTraceFile));
        EXPECT_THAT(run.err, HasSubstr("Error opening file gone.tra. No such file or directory."));
        EXPECT_EQ(Count(run.err, "\n"), 2U);
        EXPECT_TRUE(run.out == RowsOf(command, inOrder)) << command[0];
    }
    const ProgramRun summary = Run(transactions, {"year", "--summary"});
    EXPECT_EQ(summary.status, 3);
    EXPECT_EQ(summary.out, Run(transactions, {"year/10/first.tra", "year/10/second.TRA", "year/11",
                                              "year/b.tra", "--summary"})
                               .out);
}

TEST_F(ManyCaptures, ThatAllCannotBeReadLeaveNoFile) {
    dir.Write("bad/a.tra", "");
    for (const Command& command : {transactions, stats, search}) {
        const ProgramRun run = Run(command, {"gone.tra", "gone too.tra", "-o", "out"});
        EXPECT_EQ(run.status, 3);
        EXPECT_FALSE(std::filesystem::exists(dir.File("out")));
    }
    EXPECT_EQ(Run(transactions, {"gone.tra", "gone too.tra", "--summary"}).out, "");
}

TEST_F(ManyCaptures, NothingFoundInAnyIsSaidOnce) {
    const ProgramRun none = Run(transactions, {"year", "--where", "bytes > 100000"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "busquill-trace: there are no such transactions\n");
    EXPECT_EQ(none.out, "");
    const ProgramRun noMatch =
        Run({"search", "-p", "COMMAND=Mem Rd", "--from", "1000000"}, {"year", "-o", "out"});
    EXPECT_EQ(noMatch.status, 1);
    EXPECT_EQ(noMatch.err, "busquill-trace: No match found. out is not written.\n");
    EXPECT_FALSE(std::filesystem::exists(dir.File("out")));
    EXPECT_EQ(Run(transactions, {"year", "--where", "bytes > 100000", "-o", "out"}).err,
              "busquill-trace: there are no such transactions; out is not written\n");
    // One is enough.
    EXPECT_EQ(Run({"search", "-p", "COMMAND=Mem Rd", "--from", "5000"}, {"year"}).status, 0);
}

TEST_F(ManyCaptures, AMistakeInAllIsReportedOnceAndBeforeAnyRow) {
    for (const Command& wanted : {Command{"-p", "FRAMES=0"}, Command{"--where", "FRAMES == 0"}}) {
        const ProgramRun run =
            Run({"search", "--all", wanted[0], wanted[1]}, {"year", "--format", "csv"});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(Count(run.err, "\n"), 1U);
        EXPECT_THAT(run.err, HasSubstr("no signal \"FRAMES\""));
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(Count(Run({"search", "-p", "FRAME=x2"}, {"year"}).err, "\n"), 1U);
    EXPECT_EQ(Count(Run({"search", "--where", "FRAME =="}, {"year"}).err, "\n"), 1U);
    EXPECT_EQ(Count(Run(transactions, {"year", "--where", "bites == 1"}).err, "\n"), 1U);
}

TEST_F(ManyCaptures, ANameThatOnlySomeHaveIsReportedForTheOthers) {
    std::string text = ReadWholeFile(dir.File("year/b.tra"));
    const std::string line = "\"State Signals\"\n\"Signal\",\"MYLINE\",\"INTA\",\"\",\"\","
                             "\"\",-1,88,0,20,30,0,\"\",\"Hex\",\"\",\"\",\"\",\"\",\"\"\n";
    const std::size_t samples = text.find("\"Trace Data\"");
    ASSERT_NE(samples, std::string::npos);
    dir.Write("year/b.tra", text.insert(samples, line));
    dir.Write("year/broken.tra", "");
    for (const Command& wanted : {Command{"-p", "MYLINE=1"}, Command{"--where", "MYLINE == 1"}}) {
        const Command named = {"search", wanted[0], wanted[1]};
        const ProgramRun run = Run(named, {"year", "--format", "csv"});
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, RowsOf(named, {"year/b.tra"}));
        EXPECT_EQ(Count(run.err, "\n"), 4U) << run.err;
        for (const char* without :
             {"year/10/first.tra", "year/10/second.TRA", "year/11/deep/a.tra"}) {
            EXPECT_THAT(run.err, HasSubstr("busquill-trace: " + std::string(without) + ": "));
        }
    }
}

TEST_F(ManyCaptures, ThatWereNotStoredWholeAreCountedInOneLine) {
    const std::string all = "\"Goto L1\",\"All\"";
    const auto storeSome = [&](const std::string& name) {
        std::string text = ReadWholeFile(dir.File(name));
        const std::size_t level = text.find(all);
        ASSERT_NE(level, std::string::npos);
        dir.Write(name, text.replace(level, all.size(), "\"Goto L1\",\"E1\""));
    };
    storeSome("year/11/deep/a.tra");
    for (const Command& command : {transactions, stats, Command{"transactions", "--summary"}}) {
        EXPECT_EQ(Run(command, {"year"}).err,
                  "busquill-trace: year/11/deep/a.tra: its setup does not store every sample; what "
                  "was not stored is missing in the result\n");
    }
    storeSome("year/10/second.TRA");
    for (const Command& command : {transactions, stats}) {
        EXPECT_EQ(Run(command, {"year"}).err,
                  "busquill-trace: the setups of 2 of 4 captures, such as year/10/second.TRA, do "
                  "not store every sample; what was not stored is missing in the result\n");
    }
    EXPECT_EQ(Run(search, {"year"}).err, ""); // finds samples, and makes no figures of them
}

TEST_F(ManyCaptures, OneInterruptLeavesAPipeThatNobodyWrites) {
    ASSERT_EQ(::mkfifo(dir.File("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(dir.File("other").c_str(), 0600), 0);
    for (const Command& files :
         {Command{"pipe"}, Command{"pipe", "other", "year"}, Command{"year", "pipe", "-j", "3"}}) {
        const auto start = std::chrono::steady_clock::now();
        const auto isWaiting = [&] {
            return std::chrono::steady_clock::now() - start > std::chrono::seconds(1);
        };
        const ProgramRun run = RunTrace(
            Joined(stats, files),
            {.folder = dir.Path(), .interruptWhen = isWaiting, .limit = std::chrono::seconds(20)});
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.err, "busquill-trace: interrupted\n");
    }
}

TEST_F(ManyCaptures, FollowLinksToFilesButNotToFolders) {
    namespace fs = std::filesystem;
    fs::create_directory(dir.File("links"));
    fs::create_symlink("../year/b.tra", dir.File("links/b.tra"));
    fs::create_symlink("..", dir.File("links/loop"));
    fs::create_symlink("nowhere.tra", dir.File("links/dead.tra"));
    ASSERT_EQ(::mkfifo(dir.File("links/pipe.tra").c_str(), 0600), 0);
    fs::create_directory(dir.File("links/folder.tra"));
    const ProgramRun run = Run(stats, {"links", "--format", "csv"});
    EXPECT_EQ(run.err, "busquill-trace: Error opening file links/dead.tra. "
                       "No such file or directory.\n");
    EXPECT_EQ(run.out, RowsOf(stats, {"links/b.tra"}));
    // As an operand, a link to a folder is a folder.
    fs::create_directory_symlink("year", dir.File("this"));
    EXPECT_EQ(Count(Run(stats, {"this", "--format", "csv"}).out, "\nthis/"), 4U);
}

TEST_F(ManyCaptures, AFolderThatCannotBeReadIsReported) {
    // So deep that its path is too long for the system. Permissions would not stop root.
    const std::string name(200, 'd');
    const int top = ::open(dir.File("year").c_str(), O_RDONLY | O_DIRECTORY);
    int at = ::dup(top);
    for (int i = 0; i < 25; ++i) {
        ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
        const int next = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(at);
        at = next;
    }
    ::close(at);
    ::close(top);
    const ProgramRun run = Run(stats, {"year", "--format", "csv"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, StartsWith("busquill-trace: Error opening folder year/ddd"));
    EXPECT_THAT(run.err, testing::EndsWith("d. File name too long.\n"));
    EXPECT_EQ(run.out, RowsOf(stats, inOrder));
}

TEST_F(ManyCaptures, AFolderWithoutCapturesIsReported) {
    std::filesystem::create_directory(dir.File("empty"));
    const ProgramRun run = Run(stats, {"empty"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "busquill-trace: empty: no file in this folder ends in .tra\n");
    const ProgramRun both = Run(stats, {"empty", "year", "--format", "csv"});
    EXPECT_EQ(both.status, 0);
    EXPECT_EQ(both.out, RowsOf(stats, inOrder));
}

TEST_F(ManyCaptures, StandardInputIsReadAlone) {
    const std::string text = ReadWholeFile(dir.File("year/b.tra"));
    EXPECT_EQ(Run(stats, {"-"}, text).out, Run(stats, {"year/b.tra"}).out);
    const ProgramRun both = Run(stats, {"-", "year/b.tra"}, text);
    EXPECT_EQ(both.status, 2);
    EXPECT_EQ(both.err,
              "busquill-trace: standard input is read alone, not beside other captures\n");
}

TEST_F(ManyCaptures, AreNotReplacedByTheResult) {
    const std::string before = ReadWholeFile(dir.File("year/b.tra"));
    const ProgramRun run = Run(stats, {"year", "-o", "year/b.tra"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(ReadWholeFile(dir.File("year/b.tra")), before);
}

TEST_F(ManyCaptures, AddUpInTheSummary) {
    std::uint64_t wanted = 0;
    std::uint64_t named = 0;
    for (const std::string& file : inOrder) {
        const std::string alone = Run(transactions, {file, "--summary", "--json"}).out;
        wanted += nlohmann::json::parse(alone).at("transactions").get<std::uint64_t>();
        EXPECT_THAT(Run(transactions, {"year", "--summary", "--json"}).out,
                    HasSubstr("{\"file\": \"" + file + "\", " + alone.substr(1)));
    }
    const std::string text = Run(transactions, {"year", "--summary"}).out;
    EXPECT_THAT(text, StartsWith("COMMAND "));
    std::istringstream ends(text.substr(text.find("\nEND")));
    std::string word;
    while (ends >> word) {
        named += word.find_first_not_of("0123456789") == std::string::npos ? std::stoull(word) : 0;
    }
    EXPECT_EQ(named, wanted);
}

TEST_F(ManyCaptures, NamesWithCommasAndQuotesAreQuoted) {
    std::filesystem::create_directory(dir.File("odd"));
    std::filesystem::copy(dir.File("year/10/second.TRA"), dir.File("odd/a,\"b\".tra"));
    EXPECT_THAT(LinesOf(Run(stats, {"odd", "--format", "csv"}).out)[1],
                StartsWith("\"odd/a,\"\"b\"\".tra\",500,"));
    EXPECT_THAT(Run(stats, {"odd", "--json"}).out,
                StartsWith("{\"file\": \"odd/a,\\\"b\\\".tra\", \"samples\": 500, "));
}

TEST_F(ManyCaptures, AClosedPipeEndsAllQuietly) {
    for (int i = 0; i < 6; ++i) {
        Record("more/" + std::to_string(i) + ".tra", 30000);
    }
    const ProgramRun run = RunTrace({"transactions", "more", "--json", "-j", "3"},
                                    {.folder = dir.Path(), .readAtMost = 1000});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("{\"file\": \"more/0.tra\""));
}

TEST_F(ManyCaptures, AnInterruptEndsAllAndLeavesNoFile) {
    for (int i = 0; i < 8; ++i) {
        Record("more/" + std::to_string(i) + ".tra", 100000);
    }
    std::filesystem::create_directory(dir.File("temporary"));
    const auto isWriting = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
            if (entry.path().filename().string().find("out") != std::string::npos &&
                entry.file_size() > 100'000) {
                return true;
            }
        }
        return false;
    };
    const ProgramRun run = RunTrace({"transactions", "more", "-j", "3", "-o", "out"},
                                    {.folder = dir.Path(),
                                     .temporaryFolder = dir.File("temporary"),
                                     .interruptWhen = isWriting});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, "busquill-trace: interrupted\n");
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("out")));
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.File("temporary")));
}

TEST_F(ManyCaptures, ShowTheirProgressOnATerminalUnlessTheResultAppearsThere) {
    dir.Write("year/bad.tra", "");
    // Standard error is the terminal of `script`.
    const auto run = [&](const std::string& rest) {
        const std::string command = "'" + TraceProgramPath() + "' stats year --format csv" + rest;
        return RunSystemProgram("/usr/bin/script", {"-qec", command, dir.File("log")},
                                {.folder = dir.Path()})
            .out;
    };
    const std::string toFile = run(" >out");
    EXPECT_THAT(toFile, HasSubstr("\rCaptures 20%"));
    EXPECT_THAT(toFile, HasSubstr("\rCaptures 100%\r\033[K"));
    EXPECT_THAT(run(" -o out"), HasSubstr("\rCaptures 100%"));
    // A message begins on a line of its own.
    EXPECT_THAT(run(" -j 1 -o out"),
                HasSubstr("\r\033[Kbusquill-trace: year/bad.tra: " + noTraceFile));
    const std::string toTerminal = run("");
    EXPECT_THAT(toTerminal, HasSubstr("year/b.tra,3000,"));
    EXPECT_THAT(toTerminal, Not(HasSubstr("Captures")));
}

TEST_F(ManyCaptures, AFullDiskEndsAllAndKeepsTheOldFile) {
    dir.Write("out", "the old one");
    const ProgramRun run = RunTrace({"transactions", "year", "-j", "2", "-o", "out"},
                                    {.folder = dir.Path(), .diskBytes = 10'000});
    EXPECT_EQ(run.status, 3);
    // Of two threads, one writes the result, and one what waits for its turn.
    EXPECT_THAT(run.err, AnyOf("busquill-trace: Error writing file out.\n",
                               "busquill-trace: a temporary file cannot be written\n"));
    EXPECT_EQ(ReadWholeFile(dir.File("out")), "the old one");
    const auto names = std::filesystem::directory_iterator(dir.Path());
    EXPECT_EQ(std::distance(begin(names), end(names)), 2); // and the folder
}

TEST_F(ManyCaptures, TakeNoMoreMemoryWhenTheyAreMany) {
    if (livesOnAddresses) {
        GTEST_SKIP() << "memory cannot be limited under this sanitizer";
    }
    // The results take more than the address space that is allowed.
    Record("more/0.tra", 300000);
    for (int i = 1; i < 8; ++i) {
        std::filesystem::copy(dir.File("more/0.tra"),
                              dir.File("more/" + std::to_string(i) + ".tra"));
    }
    const ProgramRun run = RunTrace({"transactions", "more", "--json", "-j", "2", "-o", "out"},
                                    {.folder = dir.Path(), .memoryBytes = std::size_t{192} << 20});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_GT(std::filesystem::file_size(dir.File("out")), std::size_t{40} << 20);
}

} // namespace
} // namespace busquill::test
