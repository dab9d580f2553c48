#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

#include <set>
#include <sys/stat.h>
#include <thread>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string demo = SourceFile("data/Trigger1.tra");
const std::string header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";
const std::string zeros = ",0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";

class TraceFiles : public testing::Test {
protected:
    ProgramRun Run(const std::vector<std::string>& arguments, const std::string& in = "") {
        return RunTrace(arguments, {.folder = dir.Path(), .standardInput = in});
    }
    /// The names in the folder, hidden ones included.
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
    void ExpectFailure(const std::vector<std::string>& arguments, const std::string& says) {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 3) << arguments[0];
        EXPECT_EQ(run.err, "busquill-trace: " + says + "\n") << arguments[0];
    }

    const TempDir dir;
};

TEST_F(TraceFiles, EveryCommandReportsAFileThatCannotBeRead) {
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"info", "gone.tra"},
             {"list", "gone.tra"},
             {"search", "gone.tra", "-p", "FRAME=0"},
             {"filter", "gone.tra", "-p", "FRAME=0", "-o", "out.tra"},
             {"convert", "gone.tra", "-o", "out.csv"},
             {"compare", demo, "gone.tra"},
             {"stats", "gone.tra"},
             {"transactions", "gone.tra"},
             {"setup", "gone.tra"}}) {
        ExpectFailure(command, "Error opening file gone.tra. No such file or directory.");
    }
    ExpectFailure({"capture", "--port", "x", "--setup", "gone.tsp", "-o", "out.tra"},
                  "Error opening file gone.tsp. No such file or directory.");
    EXPECT_TRUE(Names().empty());
    std::filesystem::create_directory(dir.File("folder"));
    ExpectFailure({"info", "folder"}, "Error opening file folder. Is a directory.");
}

struct BadFile {
    const char* name;
    std::string content;
    const char* says;
};
class BadFiles : public TraceFiles, public testing::WithParamInterface<BadFile> {};

TEST_P(BadFiles, GetOneLineAndLeaveNoFile) {
    dir.Write("bad.tra", GetParam().content);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"info", "bad.tra"},
                                               {"list", "bad.tra"},
                                               {"search", "bad.tra", "-p", "AD=1", "--all"},
                                               {"filter", "bad.tra", "-p", "AD=1", "-o", "out.tra"},
                                               {"convert", "bad.tra", "-o", "out.vcd"},
                                               {"convert", "bad.tra", "-o", "out.sr"},
                                               {"compare", "bad.tra", demo},
                                               {"stats", "bad.tra"},
                                               {"transactions", "bad.tra"}}) {
        const ProgramRun run = Run(command);
        EXPECT_EQ(run.status, 3) << command[0];
        EXPECT_THAT(run.err, HasSubstr(std::string("busquill-trace: bad.tra: ") + GetParam().says));
        EXPECT_EQ(run.out, "") << command[0];
    }
    EXPECT_THAT(Names(), ElementsAre("bad.tra"));
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadFiles,
    testing::Values(BadFile{"Empty", "", "Error: File type of 'Trace Data File' not found."},
                    BadFile{"Junk",
                            std::string("\x7f"
                                        "ELF\0\xff\n\n\"",
                                        9),
                            "Error: File type of"},
                    BadFile{"Setup", "\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n",
                            "Error: File type of 'Trace Data File' not found."},
                    BadFile{"LaterVersion",
                            "\"FileType\",\"Trace Data File\"\n\"Version\",\"2.0\"\n",
                            "Error: File version of 1.0 not found."},
                    BadFile{"HugeRange", header + "\"Trace Data\",-2000000000,2000000000\n",
                            "no capture has so many samples"}),
    [](const auto& file) { return file.param.name; });

/// Files with the same content in another order than the program writes it.
struct OddFile {
    const char* name;
    std::string content;
};
class OddFiles : public TraceFiles, public testing::WithParamInterface<OddFile> {};

std::string Sample(int number, int byte) {
    return std::to_string(number) + "," + std::to_string(byte) + zeros.substr(2);
}
const std::string endOfData = "\"End of Trace Data\"\n";
const std::string inOrder = "\"Trace Data\",0,9\n" + Sample(1, 7) + Sample(4, 5) + Sample(5, 6);

TEST_P(OddFiles, AreReadLikeInAWindow) {
    dir.Write("good.tra", header + inOrder + endOfData);
    dir.Write("odd.tra", GetParam().content);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"list", "--format", "csv"},
                                               {"search", "-p", "AD[7:0]=0x", "--all"},
                                               {"search", "-p", "AD[7:0]=06"},
                                               {"convert", "-o", "-", "--format", "csv"},
                                               {"convert", "-o", "-", "--format", "vcd"},
                                               {"stats"},
                                               {"transactions", "--format", "csv"}}) {
        std::vector<std::string> good = command;
        std::vector<std::string> odd = command;
        good.insert(good.begin() + 1, "good.tra");
        odd.insert(odd.begin() + 1, "odd.tra");
        const ProgramRun run = Run(odd);
        EXPECT_EQ(run.status, 0) << command[0] << run.err;
        EXPECT_EQ(run.out, Run(good).out) << command[0];
    }
    EXPECT_EQ(Run({"compare", "good.tra", "odd.tra"}).status, 0);
    EXPECT_THAT(Run({"info", "odd.tra"}).out, HasSubstr("Samples:           3\n"));
    // The filter of such a file works too, and does not copy the block that does not count.
    EXPECT_EQ(Run({"filter", "odd.tra", "-p", "AD[7:0]=05", "-o", "out.tra"}).status, 0);
    EXPECT_EQ(Run({"search", "out.tra", "-p", "AD[7:0]=xx", "--all"}).out, "4\n");
    EXPECT_THAT(ReadWholeFile(dir.File("out.tra")), testing::Not(HasSubstr("\n2,")));
}

INSTANTIATE_TEST_SUITE_P(
    Files, OddFiles,
    testing::Values(OddFile{"Descending", header + "\"Trace Data\",0,9\n" + Sample(5, 6) +
                                              Sample(4, 5) + Sample(1, 7) + endOfData},
                    OddFile{"Repeated", header + "\"Trace Data\",0,9\n" + Sample(1, 7) +
                                            Sample(4, 5) + Sample(5, 1) + Sample(5, 6) + endOfData},
                    OddFile{"HeaderAfterTheSamples", inOrder + endOfData + header},
                    OddFile{"TwoBlocks", header + "\"Trace Data\",0,2\n" + Sample(0, 1) +
                                             Sample(2, 5) + endOfData + inOrder + endOfData}),
    [](const auto& file) { return file.param.name; });

TEST_F(TraceFiles, ACaptureThatExceedsTheMemoryIsReportedWithAdvice) {
    dir.Write("a.tra", header + "\"Trace Data\",-16000000,16000000\n5" + zeros + "4" + zeros);
    const ProgramRun run =
        RunTrace({"list", "a.tra"}, {.folder = dir.Path(), .memoryBytes = std::size_t{256} << 20});
    if (!livesOnAddresses) {
        EXPECT_EQ(run.status, 3);
        EXPECT_THAT(run.err, HasSubstr("put its lines in order"));
        EXPECT_THAT(run.out, testing::IsEmpty());
    }
    EXPECT_EQ(Run({"list", "a.tra"}).status, 0);
}

TEST_F(TraceFiles, EveryCommandReadsStandardInput) {
    const std::string text = ReadWholeFile(demo);
    for (const std::vector<std::string>& rest :
         std::vector<std::vector<std::string>>{{"list", "--to", "-4100"},
                                               {"search", "-p", "COMMAND=Mem Wr", "--all"},
                                               {"filter", "-p", "COMMAND=Mem Wr", "-o", "-"},
                                               {"convert", "-o", "-", "--format", "csv"},
                                               {"stats"},
                                               {"transactions", "--format", "csv"}}) {
        std::vector<std::string> piped = rest;
        std::vector<std::string> named = rest;
        piped.insert(piped.begin() + 1, "-");
        named.insert(named.begin() + 1, demo);
        const ProgramRun run = Run(piped, text);
        EXPECT_EQ(run.status, 0) << rest[0] << run.err;
        EXPECT_EQ(run.out, Run(named).out) << rest[0];
    }
    EXPECT_THAT(Run({"info", "-"}, text).out, HasSubstr("File:              standard input\n"));
    EXPECT_EQ(Run({"compare", "-", demo}, text).status, 0);
    EXPECT_EQ(Run({"compare", demo, "-"}, text).status, 0);
    EXPECT_EQ(Run({"info", "-"}, "").err,
              "busquill-trace: standard input: Error: File type of 'Trace Data File' not found.\n");
}

TEST_F(TraceFiles, EveryCommandWritesToAFile) {
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"info", demo},
                                               {"list", demo, "--to", "-4100"},
                                               {"search", demo, "-p", "FRAME=0"},
                                               {"compare", demo, demo},
                                               {"stats", demo},
                                               {"transactions", demo, "--json"},
                                               {"setup", SourceFile("data/MemoryWrite.tsp")}}) {
        std::vector<std::string> toFile = command;
        toFile.insert(toFile.end(), {"-o", "out"});
        const ProgramRun run = Run(toFile);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(ReadWholeFile(dir.File("out")), Run(command).out) << command[0];
        EXPECT_THAT(Names(), ElementsAre("out"));
    }
}

TEST_F(TraceFiles, TargetsThatCannotBeCreated) {
    ExpectFailure({"list", demo, "-o", "no/such/out"}, "Error creating file no/such/out.");
    ExpectFailure({"convert", demo, "-o", "no/out.sr"}, "Error creating file no/out.sr.");
    std::filesystem::create_directory(dir.File("folder"));
    ExpectFailure({"list", demo, "-o", "folder"}, "Error creating file folder.");
}

TEST_F(TraceFiles, AFullDiskIsReported) {
    dir.Write("out.csv", "precious");
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"list", demo, "-o", "out.csv"},
             {"convert", demo, "-o", "out.csv"},
             {"convert", demo, "-o", "out.csv", "--format", "sr"},
             {"filter", demo, "-p", "FRAME=1", "-o", "out.csv"}}) {
        const ProgramRun run = RunTrace(command, {.folder = dir.Path(), .diskBytes = 10'000});
        EXPECT_EQ(run.status, 3) << command[0];
        EXPECT_EQ(run.err, "busquill-trace: Error writing file out.csv.\n") << command[0];
    }
    EXPECT_EQ(ReadWholeFile(dir.File("out.csv")), "precious");
    EXPECT_THAT(Names(), ElementsAre("out.csv"));
}

/// A named pipe and its reader.
class NamedPipe {
public:
    explicit NamedPipe(const std::string& path) {
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        reader_ = std::thread([this, path] { text_ = ReadWholeFile(path); });
    }
    ~NamedPipe() { static_cast<void>(Text()); }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    /// What has arrived when its writer is done.
    std::string Text() {
        if (reader_.joinable()) {
            reader_.join();
        }
        return text_;
    }

private:
    std::string text_;
    std::thread reader_;
};

TEST_F(TraceFiles, APipeIsWrittenAndNotReplaced) {
    NamedPipe pipe(dir.File("pipe"));
    EXPECT_EQ(Run({"convert", demo, "--format", "vcd", "-o", "pipe"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_fifo(dir.File("pipe")));
    EXPECT_THAT(Names(), ElementsAre("pipe")); // and no file for the viewer
    if (std::filesystem::is_fifo(dir.File("pipe"))) {
        EXPECT_EQ(pipe.Text(), Run({"convert", demo, "--format", "vcd", "-o", "-"}).out);
    }
}

TEST_F(TraceFiles, AnExistingFileIsUnchangedWhenTheCommandFails) {
    dir.Write("out.csv", "precious");
    dir.Write("a.tra", header + "\"Trace Data\",-2000000000,2000000000\n5" + zeros);
    EXPECT_EQ(Run({"convert", "a.tra", "-o", "out.csv"}).status, 3);
    EXPECT_EQ(Run({"convert", demo, "-o", "out.csv", "--from", "9999"}).status, 1);
    EXPECT_EQ(ReadWholeFile(dir.File("out.csv")), "precious");
    EXPECT_EQ(Run({"convert", demo, "-o", "out.csv", "--to", "-4147"}).status, 0);
    EXPECT_THAT(ReadWholeFile(dir.File("out.csv")), testing::StartsWith("SAMPLE,"));
}

TEST_F(TraceFiles, ASymbolicLinkRemainsALink) {
    dir.Write("real", "old");
    std::filesystem::create_symlink("real", dir.File("link"));
    EXPECT_EQ(Run({"search", demo, "-p", "FRAME=0", "-o", "link"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(dir.File("link")));
    EXPECT_EQ(ReadWholeFile(dir.File("real")), Run({"search", demo, "-p", "FRAME=0"}).out);
}

TEST_F(TraceFiles, ADanglingLinkCreatesItsTarget) {
    std::filesystem::create_symlink("real", dir.File("link"));
    EXPECT_EQ(Run({"search", demo, "-p", "FRAME=0", "-o", "link"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(dir.File("link")));
    EXPECT_THAT(Names(), ElementsAre("link", "real"));
    std::filesystem::create_symlink("round", dir.File("round"));
    EXPECT_EQ(Run({"search", demo, "-p", "FRAME=0", "-o", "round"}).status, 3);
}

TEST_F(TraceFiles, AFileKeepsItsPermissionsAndItsNeighboursAreUntouched) {
    dir.Write("out", "old");
    dir.Write("out.part", "precious");
    std::filesystem::permissions(dir.File("out"), std::filesystem::perms::owner_read |
                                                      std::filesystem::perms::owner_write);
    EXPECT_EQ(Run({"search", demo, "-p", "FRAME=0", "-o", "out"}).status, 0);
    EXPECT_EQ(std::filesystem::status(dir.File("out")).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_EQ(ReadWholeFile(dir.File("out.part")), "precious");
    EXPECT_THAT(Names(), ElementsAre("out", "out.part"));
}

TEST_F(TraceFiles, TheViewersFileDoesNotReplaceTheDump) {
    const ProgramRun run = Run({"convert", demo, "--format", "vcd", "-o", "dump.gtkw"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Names().empty());
}

TEST_F(TraceFiles, InfoReportsTheOtherFilesWhenOneIsBad) {
    dir.Write("bad.tra", "");
    const ProgramRun run = Run({"info", "bad.tra", demo, "gone.tra"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, testing::StartsWith("File:              " + demo));
    EXPECT_THAT(run.err, HasSubstr("bad.tra: Error: File type"));
    EXPECT_THAT(run.err, HasSubstr("Error opening file gone.tra."));
    EXPECT_EQ(Run({"info", "--json", "bad.tra"}).out, "[]\n");
}

TEST_F(TraceFiles, ATruncatedFileIsReadAndReported) {
    dir.Write("cut.tra", header + "\"Trace Data\",0,9\n0" + zeros + "1" + zeros + "2,0,0");
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"info", "cut.tra"},
                                               {"list", "cut.tra"},
                                               {"search", "cut.tra", "-p", "AD=0", "--all"},
                                               {"convert", "cut.tra", "-o", "-", "--format", "csv"},
                                               {"filter", "cut.tra", "-p", "AD=0", "-o", "-"}}) {
        const ProgramRun run = Run(command);
        EXPECT_EQ(run.status, 0) << command[0];
        EXPECT_EQ(run.err, "busquill-trace: cut.tra ends before its samples do\n") << command[0];
        EXPECT_NE(run.out, "");
    }
    for (const char* command : {"stats", "transactions"}) {
        EXPECT_THAT(Run({command, "cut.tra"}).err,
                    testing::StartsWith("busquill-trace: cut.tra ends before its samples do\n"))
            << command;
        EXPECT_THAT(Run({command, demo, "cut.tra"}).err,
                    HasSubstr("cut.tra ends before its samples do\n"))
            << command;
    }
}

TEST_F(TraceFiles, SumsOfATruncatedFileSayThatSamplesAreMissing) {
    dir.Write("cut.tra", header + "\"Trace Data\",0,9\n0" + zeros + "1" + zeros + "2,0,0");
    for (const char* const command : {"stats", "transactions"}) {
        const ProgramRun run = Run({command, "cut.tra"});
        EXPECT_THAT(run.err, HasSubstr("busquill-trace: cut.tra ends before its samples do\n"))
            << command;
        EXPECT_THAT(run.err, HasSubstr("cut.tra: samples of the capture are missing")) << command;
    }
}

TEST_F(TraceFiles, AFileThatEndsBeforeTheSamplesIsReportedAsEmpty) {
    dir.Write("cut.tra", header);
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"stats"}, {"transactions"}, {"search", "-p", "AD=0"}}) {
        std::vector<std::string> words = command;
        words.emplace_back("cut.tra");
        EXPECT_THAT(Run(words).err, testing::StartsWith("busquill-trace: cut.tra has no samples\n"))
            << command[0];
    }
}

TEST_F(TraceFiles, APipeIsReadLikeStandardInput) {
    const std::string pipe = dir.File("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const ProgramRun reader = [&] {
        std::thread writer([&] { std::ofstream(pipe) << ReadWholeFile(demo); });
        ProgramRun run = Run({"stats", "pipe"});
        writer.join();
        return run;
    }();
    EXPECT_EQ(reader.status, 0) << reader.err;
    EXPECT_EQ(reader.out, Run({"stats", demo}).out);
}

TEST_F(TraceFiles, AnInputFileIsNotOverwritten) {
    const std::string capture = ReadWholeFile(demo);
    const std::string setup = ReadWholeFile(SourceFile("data/MemoryWrite.tsp"));
    dir.Write("a.tra", capture);
    dir.Write("a.tsp", setup);
    dir.Write("dump.gtkw", capture);
    std::filesystem::create_symlink("a.tra", dir.File("link"));
    const auto before = Names();
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"info", demo, "a.tra", "-o", "a.tra"},
             {"list", "a.tra", "-o", "./a.tra"},
             {"search", "a.tra", "-p", "FRAME=0", "-o", dir.File("a.tra")},
             {"filter", "a.tra", "-p", "FRAME=0", "-o", "a.tra"},
             {"filter", "link", "-p", "FRAME=0", "-o", "a.tra"},
             {"filter", "a.tra", "-p", "FRAME=0", "-o", "link"},
             {"convert", "a.tra", "--format", "csv", "-o", "a.tra"},
             {"compare", demo, "a.tra", "-o", "a.tra"},
             {"stats", "a.tra", "-o", "a.tra"},
             {"names", "a.tra", "-o", "a.tra"},
             {"setup", "a.tsp", "-o", "a.tsp"},
             {"capture", "--port", "COM1", "--setup", "a.tsp", "-o", "a.tsp"}}) {
        const ProgramRun run = Run(command);
        EXPECT_EQ(run.status, 2) << command[0];
        EXPECT_EQ(run.err, "busquill-trace: " + command.back() +
                               " is read, and would be replaced; --overwrite allows that\n");
    }
    // Nor by the file that is written beside the target.
    EXPECT_EQ(Run({"convert", "dump.gtkw", "-o", "dump.vcd"}).status, 2);
    EXPECT_EQ(ReadWholeFile(dir.File("dump.gtkw")), capture);
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra")), capture);
    EXPECT_EQ(ReadWholeFile(dir.File("a.tsp")), setup);
    EXPECT_EQ(Names(), before);
}

TEST_F(TraceFiles, StandardInputIsNotOverwrittenEither) {
    dir.Write("a.tra", ReadWholeFile(demo));
    const std::string command = "cd '" + dir.Path() + "' && '" + TraceProgramPath() +
                                "' filter - -p FRAME=0 -o a.tra <a.tra 2>said";
    EXPECT_NE(std::system(command.c_str()), 0);
    EXPECT_THAT(ReadWholeFile(dir.File("said")), HasSubstr("a.tra is read, and would be replaced"));
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra")), ReadWholeFile(demo));
}

TEST_F(TraceFiles, ACaptureCanBeFilteredInPlace) {
    dir.Write("a.tra", ReadWholeFile(demo));
    EXPECT_EQ(Run({"filter", "a.tra", "-p", "COMMAND=Mem Wr", "-o", "a.tra", "--overwrite"}).status,
              0);
    EXPECT_EQ(Run({"filter", demo, "-p", "COMMAND=Mem Wr", "-o", "b.tra"}).status, 0);
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra")), ReadWholeFile(dir.File("b.tra")));
}

TEST_F(TraceFiles, AFilteredCaptureHasTheBookmarksOfItsSource) {
    const std::string notes = "Busquill bookmarks 1\n-3\tnote\n";
    const std::string others = "Busquill bookmarks 1\n7\tof another capture\n";
    dir.Write("a.tra", ReadWholeFile(demo));
    dir.Write("a.tra.bookmarks", notes);
    dir.Write("b.tra.bookmarks", others);
    dir.Write("c.tra.bookmarks", others);
    const std::vector<std::string> writes = {"filter", "-p", "COMMAND=Mem Wr"};
    const auto filter = [&](const std::vector<std::string>& files) {
        std::vector<std::string> all = writes;
        all.insert(all.end(), files.begin(), files.end());
        return RunTrace(all, {.folder = dir.Path(), .standardInput = ReadWholeFile(demo)});
    };
    EXPECT_EQ(filter({"a.tra", "-o", "b.tra"}).status, 0);
    EXPECT_EQ(ReadWholeFile(dir.File("b.tra.bookmarks")), notes);
    EXPECT_EQ(filter({"-", "-o", "c.tra"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(dir.File("c.tra.bookmarks")));
    EXPECT_EQ(filter({"a.tra", "-o", "a.tra", "--overwrite"}).status, 0);
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra.bookmarks")), notes);
    // Standard output is no file, whatever a file is called.
    dir.Write("-", "mine");
    dir.Write("-.bookmarks", others);
    EXPECT_EQ(filter({"a.tra", "-o", "-"}).err, "");
    EXPECT_EQ(ReadWholeFile(dir.File("-.bookmarks")), others);
    // What is not understood is not written elsewhere, and costs nothing that is there.
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 9\n");
    EXPECT_THAT(filter({"a.tra", "-o", "b.tra"}).err, HasSubstr("none were written to this file"));
    EXPECT_EQ(ReadWholeFile(dir.File("b.tra.bookmarks")), notes);
}

TEST_F(TraceFiles, AClosedPipeEndsTheCommandQuietly) {
    const ProgramRun run =
        RunTrace({"list", demo, "--format", "csv"}, {.folder = dir.Path(), .readAtMost = 1000});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, testing::StartsWith("SAMPLE,"));
    const ProgramRun session = RunTrace({"convert", demo, "-o", "-", "--format", "vcd"},
                                        {.folder = dir.Path(), .readAtMost = 1});
    EXPECT_EQ(session.err, "");
    EXPECT_EQ(session.status, 0);
}

TEST_F(TraceFiles, TextsThatAreNotUnicodeBecomeUnicodeInJson) {
    dir.Write("a.tra", header + "\"Description\",\"5 \xB5s \\ \"\n\"Trace Data\",0,0\n0" + zeros);
    EXPECT_THAT(Run({"info", "--json", "a.tra"}).out,
                HasSubstr("\"description\": \"5 \xC2\xB5s \\\\ \""));
    dir.Write("b.tra", header + "\"Description\",\"5 \xC2\xB5s\ttab\"\n");
    EXPECT_THAT(Run({"info", "--json", "b.tra"}).out,
                HasSubstr("\"description\": \"5 \xC2\xB5s\\ttab\""));
}

TEST_F(TraceFiles, CarriageReturnsMakeNoDifference) {
    std::string text = ReadWholeFile(demo);
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, 1, '\r');
    }
    dir.Write("crlf.tra", text);
    EXPECT_EQ(Run({"list", "crlf.tra", "--to", "-3900"}).out,
              Run({"list", demo, "--to", "-3900"}).out);
    EXPECT_EQ(Run({"compare", "crlf.tra", demo}).status, 0);
}

} // namespace
} // namespace busquill::test
