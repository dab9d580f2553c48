#include "support/paths.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string demo = SourceFile("data/Trigger1.tra");

struct WrongUse {
    const char* name;
    std::vector<std::string> arguments;
    const char* says;
};

class UsedWrongly : public testing::TestWithParam<WrongUse> {};

TEST_P(UsedWrongly, ExitsWithTwoAndOneLineThatSaysWhatIsValid) {
    const ProgramRun run = RunTrace(GetParam().arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("busquill-trace: "));
    EXPECT_THAT(run.err, HasSubstr(GetParam().says));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    CommandLine, UsedWrongly,
    testing::Values(
        WrongUse{"Nothing", {}, "which command?"},
        WrongUse{"UnknownCommand", {"show", demo}, "no command \"show\"; there are info, list, search"},
        WrongUse{"UnknownOption", {"info", "--loud", demo}, "no option --loud"},
        WrongUse{"UnknownLetter", {"info", "-x", demo}, "no option -x"},
        WrongUse{"OptionOfAnotherCommand", {"info", "--from", "3", demo}, "info takes no --from"},
        WrongUse{"NoFile", {"list"}, "list needs FILE"},
        WrongUse{"TooManyFiles", {"list", demo, "b.tra"}, "not also \"b.tra\""},
        WrongUse{"ValueMissing", {"list", demo, "--from"}, "--from needs a value: N"},
        WrongUse{"ValueForAFlag", {"list", demo, "--zoom=1"}, "--zoom takes no value"},
        WrongUse{"NoNumber", {"list", demo, "--from", "7x"}, "--from takes a whole number, not \"7x\""},
        WrongUse{"EmptyNumber", {"list", demo, "--from", ""}, "whole number"},
        WrongUse{"HugeNumber", {"list", demo, "--from", "99999999999999999999"}, "whole number"},
        WrongUse{"RangeBackward", {"list", demo, "--from", "7", "--to", "3"}, "--from 7 lies behind --to 3"},
        WrongUse{"UnknownFormat", {"list", demo, "--format", "xml"}, "--format is one of text, csv, json"},
        WrongUse{"Contradiction", {"list", demo, "--format", "csv", "--json"}, "contradict"},
        WrongUse{"UnknownModel", {"info", demo, "--model", "Heron"}, "no model \"Heron\"; there are"},
        WrongUse{"UnknownBus", {"info", demo, "--bus", "ISA"}, "no bus \"ISA\"; there are PCI, PCI-X, VME"},
        WrongUse{"BusOfAnotherModel", {"info", demo, "--model", "VMEKite", "--bus", "PCI"}, "VMEKite has no bus PCI"},
        WrongUse{"UnknownWidth", {"info", demo, "--width", "16"}, "--width is one of 32, 64"},
        WrongUse{"UnknownColumn", {"list", demo, "--columns", "AD[63:0],NOPE"}, "no column \"NOPE\"; there are"},
        WrongUse{"NoPattern", {"search", demo}, "search needs -p NAME=VALUE or --where EXPR; see busquill-trace search -h"},
        WrongUse{"PatternWithoutValue", {"search", demo, "-p", "FRAME"}, "a pattern is NAME=VALUE"},
        WrongUse{"PatternWithoutName", {"search", demo, "-p", "=1"}, "a pattern is NAME=VALUE"},
        WrongUse{"UnknownSignal", {"search", demo, "-p", "AM=09"}, "no signal \"AM\" on this bus; there are AD[63:0], FRAME"},
        WrongUse{"NoDigits", {"search", demo, "-p", "AD[31:0]=FEBG"}, "takes 8 hexadecimal digits, x for any; not \"FEBG\""},
        WrongUse{"TooManyDigits", {"search", demo, "-p", "AD[31:0]=123456789"}, "takes 8 hexadecimal digits"},
        WrongUse{"DigitTooLarge", {"search", demo, "-p", "FRAME=2"}, "takes 1 hexadecimal digit"},
        WrongUse{"UnknownLabel", {"search", demo, "-p", "COMMAND=Mem R"}, "or a label: Mem Rd, Mem Rd Mult"},
        WrongUse{"FilterOfWhat", {"filter", demo, "-o", "a.tra"}, "filter needs -p NAME=VALUE or --where EXPR"},
        WrongUse{"FilterToNowhere", {"filter", demo, "-p", "FRAME=0"}, "filter needs -o FILE"},
        WrongUse{"ConvertToNowhere", {"convert", demo}, "convert needs -o FILE"},
        WrongUse{"ConvertToWhat", {"convert", demo, "-o", "a.dat"}, ".vcd, .csv or .sr"},
        WrongUse{"ChangesOfADump", {"convert", demo, "-o", "a.vcd", "--changes"}, "--changes is for .csv"},
        WrongUse{"TwoStandardInputs", {"compare", "-", "-"}, "only one of the captures"},
        WrongUse{"IgnoreUnknown", {"compare", demo, demo, "--ignore", "NOPE"}, "no signal \"NOPE\""},
        WrongUse{"UnknownAlignment", {"compare", demo, demo, "--align", "end"}, "--align is one of trigger, start"},
        WrongUse{"NoPort", {"board"}, "board needs --port"},
        WrongUse{"NameOfNoPort", {"board", "--port", "COM9"}, "there is no port COM9; ports are COM1 to COM8"},
        WrongUse{"PortInLowerCase", {"board", "--port", "com1"}, "there is no port com1; ports are COM1 to COM8"},
        WrongUse{"CaptureWithoutPort", {"capture", "--setup", "s", "-o", "a.tra"}, "capture needs --port PORT"},
        WrongUse{"CaptureWithoutAnything", {"capture"}, "capture needs --port PORT, --setup FILE, -o FILE"},
        WrongUse{"UnknownRate", {"board", "--port", "/dev/null", "--baud", "1200"}, "--baud is one of 9600, 19200, 38400, 57600"},
        WrongUse{"CaptureWithoutSetup", {"capture", "--port", "x", "-o", "a.tra"}, "capture needs --setup"},
        WrongUse{"RepeatToStandardOutput", {"capture", "--port", "x", "--setup", "s", "-o", "-", "--repeat", "2"}, "several files"},
        WrongUse{"NoTime", {"capture", "--port", "x", "--setup", "s", "-o", "a", "--timeout", "0"}, "--timeout is a number of seconds"},
        WrongUse{"SummaryAsCsv", {"transactions", "a.tra", "--summary", "--format", "csv"}, "--summary is printed as text or JSON"},
        WrongUse{"TransactionsOfAConnector", {"transactions", "a.tra", "--model", "VMEKiteP2"}, "--model VMEKiteP2 is a connector, which has pins but no transactions"},
        WrongUse{"TransactionsOfAConnectorBus", {"transactions", "a.tra", "--bus", "vmep0"}, "--bus VMEP0 is a connector, which has pins but no transactions"},
        WrongUse{"ModelWithNoRevision", {"info", "a.tra", "--model", "PCIKite-"}, "knows no model \"PCIKite-\""},
        WrongUse{"WrongCondition", {"transactions", "a.tra", "--where", "wait > 4 and adress == 1"}, "--where is wrong at \"adress == 1\": there is no field \"adress\": address, "},
        WrongUse{"ConditionOnAnUnknownCommand", {"transactions", "a.tra", "--where", "command == \"Mem Raed\""}, "--where is wrong at \"\"Mem Raed\"\": command has no label \"Mem Raed\": \"Mem Rd\", "},
        WrongUse{"ConditionOnACommandOfAnotherBus", {"transactions", "a.tra", "--bus", "VME", "--where", "command == \"Mem Rd\""}, "command has no label \"Mem Rd\": "},
        WrongUse{"ConditionWithoutEnd", {"transactions", "a.tra", "--where", "wait >"}, "--where is wrong at its end: expected a number"},
        WrongUse{"UnitOfACount", {"transactions", "a.tra", "--where", "words > 5ns"}, "--where is wrong at \"ns\": words is not a time and takes no unit"},
        WrongUse{"UnitOfWaitsInClocks", {"transactions", "a.tra", "--where", "wait > 5ns"}, "wait is not a time and takes no unit"},
        WrongUse{"TransactionsHaveNoSignals", {"transactions", "a.tra", "--where", "FRAME falls"}, "\"FRAME\" is a signal of samples; transactions have fields"},
        WrongUse{"SamplesHaveNoFields", {"search", demo, "--where", "end == retry"}, "--where is wrong at \"end == retry\": \"end\" belongs to transactions"},
        WrongUse{"ExpressionOfUnknownSignal", {"filter", demo, "--where", "FRAME falls and IRDDY == 0", "-o", "a.tra"}, "--where is wrong at \"IRDDY == 0\": there is no signal \"IRDDY\": IRDY, "},
        WrongUse{"ExpressionOfUnknownLabel", {"search", demo, "--where", "COMMAND == \"Mem R\""}, "COMMAND has no label \"Mem R\": \"Mem Rd\", "},
        WrongUse{"NegativeWords", {"transactions", "a.tra", "--words", "-1"}, "--words takes a whole number from 0 to 1048576"},
        WrongUse{"NoJobs", {"stats", demo, "-j", "0"}, "--jobs takes a whole number from 1 to 128"},
        WrongUse{"NegativeRuns", {"capture", "--port", "x", "--setup", "s", "-o", "a", "--repeat", "-1"}, "--repeat is a number of runs"}),
    [](const auto& use) { return use.param.name; });
// clang-format on

TEST(CommandLine, HelpListsCommandsAndTheOptionsOfACommand) {
    const ProgramRun all = RunTrace({"-h"});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.err, "");
    for (const char* command : {"info", "list", "search", "filter", "convert", "compare", "stats",
                                "transactions", "setup", "board", "capture", "names"}) {
        EXPECT_THAT(all.out, HasSubstr(command));
        const ProgramRun one = RunTrace({command, "--help"});
        EXPECT_EQ(one.status, 0);
        EXPECT_THAT(one.out, StartsWith(std::string("Usage: busquill-trace ") + command));
        EXPECT_THAT(one.out, HasSubstr("--output FILE"));
    }
}

TEST(CommandLine, UsageNamesTheRequiredArguments) {
    const auto usage = [](const char* command) {
        const std::string help = RunTrace({command, "-h"}).out;
        return help.substr(0, help.find('\n'));
    };
    EXPECT_EQ(usage("list"), "Usage: busquill-trace list [OPTION...] FILE");
    EXPECT_EQ(usage("search"), "Usage: busquill-trace search [OPTION...] FILE...");
    EXPECT_EQ(usage("filter"), "Usage: busquill-trace filter [OPTION...] -o FILE FILE");
    EXPECT_EQ(usage("convert"), "Usage: busquill-trace convert [OPTION...] -o FILE FILE");
    EXPECT_EQ(usage("board"), "Usage: busquill-trace board [OPTION...] --port PORT");
    EXPECT_EQ(usage("capture"),
              "Usage: busquill-trace capture [OPTION...] --port PORT --setup FILE "
              "-o FILE");
    EXPECT_EQ(usage("names"), "Usage: busquill-trace names [OPTION...] [FILE]");
}

TEST(CommandLine, ListsOfNamesBeginWithTheClosest) {
    const auto says = [](const std::vector<std::string>& arguments) {
        return RunTrace(arguments).err;
    };
    EXPECT_THAT(says({"serch", demo}), HasSubstr("there are search, info, list"));
    EXPECT_THAT(says({"info", demo, "--model", "VSBKit"}), HasSubstr("there are VSBKite, "));
    EXPECT_THAT(says({"info", demo, "--bus", "PC104"}), HasSubstr("there are PC/104, "));
    EXPECT_THAT(says({"search", demo, "-p", "COMAND=1"}), HasSubstr("there are COMMAND, "));
    EXPECT_THAT(says({"search", demo, "-p", "DATA=1"}), HasSubstr("there are DATA32, "));
    EXPECT_THAT(says({"search", demo, "-p", "AD[64]=1"}), HasSubstr("there are AD[63:0], "));
    EXPECT_THAT(says({"list", demo, "--columns", "DEVSL"}), HasSubstr("there are DEVSEL, "));
    EXPECT_THAT(says({"list", demo, "--columns", "COMAND"}), HasSubstr("there are COMMAND, "));
    EXPECT_THAT(says({"compare", demo, demo, "--ignore", "RULE"}),
                HasSubstr("there are RULE CHECK, "));
    EXPECT_THAT(says({"search", demo, "-p", "RULE CHECK=Retry"}),
                HasSubstr("or a label: Target Retry, "));
}

TEST(CommandLine, ListsOfNamesAreCompleteOrMarkedAsCut) {
    const std::string names = RunTrace({"names"}).out + "ACCUM\nDELTA\nSAMPLE\n=<>\n";
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"search", demo, "-p", "NOPE=1"},
                                               {"list", demo, "--columns", "NOPE"},
                                               {"compare", demo, demo, "--ignore", "NOPE"},
                                               {"search", demo, "-p", "RULE CHECK=zz"}}) {
        const std::string says = RunTrace(arguments).err;
        const bool isLabel = arguments.back() == "RULE CHECK=zz";
        const std::string before = isLabel ? "label: " : "there are ";
        const auto begin = says.find(before) + before.size();
        const auto end = says.find_first_of(";\n", begin);
        std::string list = says.substr(begin, end - begin);
        if (list.ends_with(", ...")) {
            EXPECT_GT(list.size(), 300U);
            list.resize(list.size() - 5);
        }
        std::istringstream each(list + ", ");
        int count = 0;
        for (std::string name; std::getline(each, name, ',') && each.get() == ' '; ++count) {
            EXPECT_THAT("\n" + names, HasSubstr(std::string("\n") + (isLabel ? "RULE CHECK=" : "") +
                                                name + "\n"));
        }
        EXPECT_GT(count, 5) << says;
    }
}

TEST(CommandLine, VersionIsOneLine) {
    const ProgramRun run = RunTrace({"-V"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, testing::MatchesRegex("busquill-trace [0-9.]+\n"));
}

TEST(CommandLine, OptionsMayBeAnywhereAndJoinedToTheirValues) {
    const ProgramRun apart = RunTrace({"list", "--from", "0", "--to", "2", demo});
    EXPECT_EQ(apart.status, 0);
    EXPECT_EQ(RunTrace({"--from=0", "list", demo, "--to=2"}).out, apart.out);
    EXPECT_EQ(RunTrace({"search", "-pCOMMAND=Mem Wr", demo}).out,
              RunTrace({"search", demo, "--pattern", "COMMAND=Mem Wr"}).out);
    // After "--" there are only files.
    EXPECT_THAT(RunTrace({"info", "--", "-V"}).err, HasSubstr("Error opening file -V."));
}

TEST(CommandLine, ModelsAndBusesAreNamedInAnyCase) {
    EXPECT_EQ(RunTrace({"info", demo, "--model", "vmelark"}).status, 0);
    EXPECT_EQ(RunTrace({"info", demo, "--bus", "pci-x", "--width", "64"}).status, 0);
}

} // namespace
} // namespace busquill::test
