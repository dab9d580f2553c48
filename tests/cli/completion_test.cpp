#include "support/paths.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <regex>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

/// A page that is made beside the program.
std::string PageOf(const std::string& program, const std::string& name) {
    return program.substr(0, program.rfind('/')) + "/pages/" + name;
}

class BashCompletion : public testing::Test {
protected:
    /// The completions of the last of some words, of which the first is the program. The words are
    /// split as bash does it: "=" and ":" are separate words.
    std::vector<std::string> Offered(const std::vector<std::string>& words) const {
        const bool isTrace = words.front() == "busquill-trace";
        const std::string program = isTrace ? TraceProgramPath() : BoardProgramPath();
        const std::string function = isTrace ? "_busquill_trace" : "_busquill_board";
        std::string script = "PATH=" + program.substr(0, program.rfind('/')) + ":$PATH\nsource '" +
                             PageOf(program, words.front() + ".bash") + "'\nCOMP_WORDS=(";
        for (const std::string& word : words) {
            script += "'" + word + "' ";
        }
        script += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) + "\n" + function +
                  "\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
        dir.Write("script", script);
        EXPECT_EQ(std::system(("cd '" + dir.Path() + "' && bash script >offered 2>&1").c_str()), 0);
        std::istringstream lines(ReadWholeFile(dir.File("offered")));
        std::vector<std::string> offered;
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) {
                offered.push_back(line);
            }
        }
        return offered;
    }

    const TempDir dir;
};

TEST_F(BashCompletion, OffersNamesAndLabelsToAPattern) {
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "COMM"}), ElementsAre("COMMAND="));
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "fram"}), ElementsAre("FRAME="));
    EXPECT_THAT(Offered({"busquill-trace", "filter", "--pattern", "COMMAND", "=", "Mem\\ R"}),
                IsSupersetOf({"Mem\\ Rd"}));
    EXPECT_THAT(Offered({"busquill-trace", "filter", "--pattern", "=", "COMMAND", "=", "Spc"}),
                ElementsAre("Spc\\ Cyc"));
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "RULE\\ CHECK", "="}),
                Contains("Target\\ Abort"));
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "\"RULE CHECK=Target A"}),
                Contains("RULE CHECK=Target Abort"));
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "AD\\[63", ":", "0"}),
                ElementsAre("0\\]="));
    EXPECT_THAT(Offered({"busquill-trace", "search", "-p", "NOPE"}), IsEmpty());
}

TEST_F(BashCompletion, OffersTheNamesOfTheBusOnTheLine) {
    const auto vme = Offered({"busquill-trace", "search", "--bus", "VME", "-p", ""});
    EXPECT_THAT(vme, Contains("AS="));
    EXPECT_THAT(vme, Not(Contains("FRAME=")));
    EXPECT_THAT(Offered({"busquill-trace", "search", "--model", "=", "VMELark", "-p", "AS"}),
                ElementsAre("AS="));
    EXPECT_THAT(Offered({"busquill-trace", "search", "--bus", "VME", "-p", "FRAM"}), IsEmpty());
}

TEST_F(BashCompletion, OffersNamesInLists) {
    EXPECT_THAT(Offered({"busquill-trace", "list", "--columns", "COMM"}), ElementsAre("COMMAND"));
    EXPECT_THAT(Offered({"busquill-trace", "list", "--columns", "COMMAND,FRA"}),
                ElementsAre("COMMAND,FRAME"));
    EXPECT_THAT(Offered({"busquill-trace", "compare", "--ignore", "TRD"}), ElementsAre("TRDY"));
}

TEST_F(BashCompletion, StillOffersOtherValues) {
    EXPECT_THAT(Offered({"busquill-trace", "list", "--format", "=", "c"}), ElementsAre("csv"));
    EXPECT_THAT(Offered({"busquill-trace", "list", "--width", ""}), ElementsAre("32", "64"));
    EXPECT_THAT(Offered({"busquill-trace", "na"}), ElementsAre("names"));
    EXPECT_THAT(Offered({"busquill-trace", "filter", "--over"}), ElementsAre("--overwrite"));
    EXPECT_THAT(Offered({"busquill-trace", "info", "--model", "Demo"}), ElementsAre("Demo\\ Mode"));
    EXPECT_THAT(Offered({"busquill-trace", "board", "--port", "COM8"}), ElementsAre("COM8"));
    EXPECT_THAT(Offered({"busquill-trace", "board", "--port", "/dev/nul"}),
                ElementsAre("/dev/null"));
}

TEST_F(BashCompletion, OffersFilesWithTheEndingThatTheirPlaceTakes) {
    for (const char* name : {"a.tra", "b.tsp", "c.txt"}) {
        dir.Write(name, "");
    }
    EXPECT_THAT(Offered({"busquill-trace", "list", ""}), ElementsAre("a.tra"));
    EXPECT_THAT(Offered({"busquill-trace", "setup", ""}), ElementsAre("b.tsp"));
    EXPECT_THAT(Offered({"busquill-trace", "capture", "--setup", ""}), ElementsAre("b.tsp"));
    EXPECT_THAT(Offered({"busquill-trace", "list", "-o", "c"}), ElementsAre("c.txt"));
    EXPECT_THAT(Offered({"busquill-trace", "info", "a.tra", "--json", ""}), ElementsAre("a.tra"));
    EXPECT_THAT(Offered({"busquill-trace", "compare", "-o", "x", "a.tra", ""}),
                ElementsAre("a.tra"));
    EXPECT_THAT(Offered({"busquill-trace", "list", "--from", ""}), IsEmpty());
    // No second capture, and no file for a board.
    EXPECT_THAT(Offered({"busquill-trace", "list", "--from", "1", "a.tra", ""}), IsEmpty());
    EXPECT_THAT(Offered({"busquill-trace", "board", ""}), IsEmpty());
}

TEST_F(BashCompletion, OffersWhatTheBoardsFunctionsTake) {
    for (const char* name : {"a.mst", "b.bpt", "c.psu"}) {
        dir.Write(name, "");
    }
    EXPECT_THAT(Offered({"busquill-board", "ba"}), ElementsAre("backplane"));
    EXPECT_THAT(Offered({"busquill-board", "compliance", "--no"}), ElementsAre("--no-operator"));
    EXPECT_THAT(Offered({"busquill-board", "info", "--port", "COM8"}), ElementsAre("COM8"));
    EXPECT_THAT(Offered({"busquill-board", "backplane", "--sensitivity", "=", "h"}),
                ElementsAre("high"));
    EXPECT_THAT(Offered({"busquill-board", "performance", "la"}), ElementsAre("latency"));
    EXPECT_THAT(Offered({"busquill-board", "performance", "latency", ""}), ElementsAre("c.psu"));
    EXPECT_THAT(Offered({"busquill-board", "master", ""}), ElementsAre("a.mst"));
    EXPECT_THAT(Offered({"busquill-board", "backplane", "--port", "COM1", ""}),
                ElementsAre("b.bpt"));
    EXPECT_THAT(Offered({"busquill-board", "ports", ""}), IsEmpty());
}

TEST(ShellCompletion, EveryFunctionIsCalled) {
    const std::regex definition(R"((?:^|\n)(?:function )?(_[\w-]+)(?:\(\)|\n))");
    for (const std::string& program : {TraceProgramPath(), BoardProgramPath()}) {
        const std::string name = program.substr(program.rfind('/') + 1);
        for (const std::string& page : {name + ".bash", "_" + name, name + ".fish"}) {
            const std::string text = ReadWholeFile(PageOf(program, page));
            const std::sregex_iterator end;
            int functions = 0;
            for (std::sregex_iterator at(text.begin(), text.end(), definition); at != end; ++at) {
                const std::regex use((*at)[1].str() + R"((?![\w-]))");
                EXPECT_GT(std::distance(std::sregex_iterator(text.begin(), text.end(), use), end),
                          1)
                    << page << ": " << (*at)[1];
                ++functions;
            }
            EXPECT_TRUE(functions > 0 || page == "busquill-board.fish") << page;
        }
    }
}

/// The completions of zsh and fish are sourced, and asked as those shells allow it.
TEST(ShellCompletion, ZshAndFishAcceptTheirs) {
    const std::string program = TraceProgramPath();
    const auto accepts = [](const std::string& of, const std::string& shell,
                            const std::string& page) {
        return std::system((shell + " -c '' 2>/dev/null").c_str()) != 0 ||
               std::system((shell + " -n '" + PageOf(of, page) + "'").c_str()) == 0;
    };
    EXPECT_TRUE(accepts(program, "zsh", "_busquill-trace"));
    EXPECT_TRUE(accepts(program, "fish", "busquill-trace.fish"));
    EXPECT_TRUE(accepts(BoardProgramPath(), "zsh", "_busquill-board"));
    EXPECT_TRUE(accepts(BoardProgramPath(), "fish", "busquill-board.fish"));
    const TempDir dir;
    dir.Write("a.tra", "");
    dir.Write("c.txt", "");
    const auto offered = [&](const std::string& line) {
        const std::string command =
            "cd '" + dir.Path() + "' && HOME=. PATH=" + program.substr(0, program.rfind('/')) +
            ":$PATH fish --no-config -c 'source " + PageOf(program, "busquill-trace.fish") +
            "; complete -C \"" + line + "\"' >offered 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return ReadWholeFile(dir.File("offered"));
    };
    if (std::system("fish -c '' 2>/dev/null") == 0) {
        EXPECT_THAT(offered("busquill-trace conv"), testing::StartsWith("convert\ta value change"));
        EXPECT_THAT(offered("busquill-trace list --format "), testing::HasSubstr("csv\t"));
        EXPECT_THAT(offered("busquill-trace search -p COMM"), testing::HasSubstr("COMMAND="));
        EXPECT_THAT(offered("busquill-trace compare --al"), testing::StartsWith("--align"));
    }
}

} // namespace
} // namespace busquill::test
