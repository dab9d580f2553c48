#include "support/paths.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

class BashCompletion : public testing::Test {
protected:
    /// The completions of the last of some words. The words are split as bash does it: "=" and ":"
    /// are separate words.
    std::vector<std::string> Offered(const std::vector<std::string>& words) const {
        const std::string program = TraceProgramPath();
        std::string script = "PATH=" + program.substr(0, program.rfind('/')) + ":$PATH\nsource '" +
                             SourceFile("packaging/completions/busquill-trace.bash") +
                             "'\nCOMP_WORDS=(";
        for (const std::string& word : words) {
            script += "'" + word + "' ";
        }
        script += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) +
                  "\n_busquill_trace\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
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
}

} // namespace
} // namespace busquill::test
