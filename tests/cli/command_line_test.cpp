#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/output.h"
#include "cli/session.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>
#include <optional>

namespace busquill::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

enum class Colour { Red, Green };

/// A program with a command that takes everything.
class CommandLineOptions : public testing::Test {
protected:
    CommandLineOptions() {
        CLI::App& paint =
            AddCommand(*program, "paint", "paints files", [this] { return ++runs, status; });
        AddOutput(paint, output);
        AddOverwrite(paint, output);
        AddFlag(paint, "-j,--json", json, "print JSON");
        AddNumber(paint, "--from", from, "N", {}, "begin here");
        AddNumber(paint, "--layers", layers, "N", {1, 9, nullptr}, "how thick");
        AddHexNumber(
            paint, "--at", [this](std::uint64_t number) { at = number; }, "ADDRESS", 0xFFFF,
            "where");
        AddChoice<Colour>(paint, "--colour", {{"red", Colour::Red}, {"green", Colour::Green}},
                          colour, "red|green", "in which colour");
        AddTexts(paint, "-p,--pattern", patterns, "NAME", "what");
        AddOperands(paint, "FILE", files);
        CLI::App& look = AddCommand(*program, "look", "looks", [] { return 0; });
        AddPortOptions(look, port);
    }

    /// What the program says and returns.
    std::string Say(const std::vector<std::string>& words) {
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        const int result = RunProgram(*program, words);
        out = testing::internal::GetCapturedStdout();
        return std::to_string(result) + " " + testing::internal::GetCapturedStderr();
    }

    std::shared_ptr<CLI::App> program = MakeProgram("easel", "Paints.", "Bye.\n");
    std::string out;
    int runs = 0;
    int status = 0;
    OutputOptions output;
    bool json = false;
    std::optional<std::int64_t> from;
    int layers = 0;
    std::uint64_t at = 0;
    Colour colour = Colour::Red;
    std::vector<std::string> patterns;
    std::vector<std::string> files;
    PortOptions port;
};

TEST_F(CommandLineOptions, RunsTheCommandWithItsTypedOptions) {
    status = 7;
    EXPECT_EQ(Say({"paint", "-o", "x", "--overwrite", "--from=-5", "--layers", "3", "--at", "0xFe0",
                   "--colour", "green", "-pa b", "--pattern=c", "-j", "one", "two"}),
              "7 ");
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(output.path, "x");
    EXPECT_TRUE(output.overwrite);
    EXPECT_TRUE(json);
    EXPECT_EQ(from, -5);
    EXPECT_EQ(layers, 3);
    EXPECT_EQ(at, 0xFE0U);
    EXPECT_EQ(colour, Colour::Green);
    EXPECT_THAT(patterns, ElementsAre("a b", "c"));
    EXPECT_THAT(files, ElementsAre("one", "two"));
}

TEST_F(CommandLineOptions, OptionsStandAnywhereAndTheLastValueHolds) {
    EXPECT_EQ(Say({"--from", "-1", "-o", "-", "paint", "one", "--json", "--json", "--from", "+2"}),
              "0 ");
    EXPECT_EQ(from, 2);
    EXPECT_EQ(output.path, "-");
    EXPECT_THAT(files, ElementsAre("one"));
}

TEST_F(CommandLineOptions, NumbersAreDecimalWithZerosInFront) {
    EXPECT_EQ(Say({"paint", "--from", "-010", "one"}), "0 ");
    EXPECT_EQ(from, -10);
}

TEST_F(CommandLineOptions, WordsThatLookLikeOthersAreOperands) {
    EXPECT_EQ(Say({"paint", "-", "look", "++", "[a]", "{}", "--", "-j", "--", "--from"}), "0 ");
    EXPECT_THAT(files, ElementsAre("-", "look", "++", "[a]", "{}", "-j", "--", "--from"));
    EXPECT_FALSE(json);
}

TEST_F(CommandLineOptions, AValueMayLookLikeAnOption) {
    EXPECT_EQ(Say({"paint", "-p", "--json", "--pattern", "-x", "-p", "[a,b]", "one"}), "0 ");
    EXPECT_THAT(patterns, ElementsAre("--json", "-x", "[a,b]"));
    EXPECT_FALSE(json);
    EXPECT_THAT(files, ElementsAre("one"));
}

TEST_F(CommandLineOptions, SaysWhatIsWrongAndWhatWouldBeRight) {
    EXPECT_EQ(Say({}), "2 easel: which command? See easel -h\n");
    EXPECT_EQ(Say({"--json"}), "2 easel: which command? See easel -h\n");
    EXPECT_EQ(Say({"--loud"}), "2 easel: no option --loud\n");
    EXPECT_EQ(Say({"pain"}), "2 easel: no command \"pain\"; there are paint, look\n");
    EXPECT_EQ(Say({"paint"}), "2 easel: paint needs FILE...\n");
    EXPECT_EQ(Say({"paint", "--loud=3", "one"}), "2 easel: no option --loud\n");
    EXPECT_EQ(Say({"paint", "-jx", "one"}), "2 easel: no option -x\n");
    EXPECT_EQ(Say({"paint", "--port", "x", "one"}), "2 easel: paint takes no --port\n");
    EXPECT_EQ(Say({"look", "--port", "x", "one"}),
              "2 easel: look takes no file, not also \"one\"\n");
    EXPECT_EQ(Say({"look"}), "2 easel: look needs --port PORT; see easel look -h\n");
    EXPECT_EQ(Say({"look", "--port="}), "2 easel: --port needs a value: PORT\n");
    EXPECT_EQ(Say({"paint", "--pattern=", "one"}), "2 easel: --pattern needs a value: NAME\n");
    EXPECT_EQ(Say({"paint", "-o", "", "one"}), "2 easel: --output needs a value: FILE\n");
    EXPECT_EQ(Say({"paint", "one", ""}), "2 easel: FILE is empty\n");
    EXPECT_EQ(Say({"look", "--port", "x", "--baud", "1200"}),
              "2 easel: --baud is one of 9600, 19200, 38400, 57600; not \"1200\"\n");
    EXPECT_EQ(Say({"paint", "one", "--from"}), "2 easel: --from needs a value: N\n");
    EXPECT_EQ(Say({"paint", "one", "--from", "0x5"}),
              "2 easel: --from takes a whole number, not \"0x5\"\n");
    EXPECT_EQ(Say({"paint", "one", "--from", "--", "-5"}),
              "2 easel: --from takes a whole number, not \"--\"\n");
    EXPECT_EQ(Say({"paint", "one", "--layers", "10"}),
              "2 easel: --layers takes a whole number from 1 to 9, not 10\n");
    EXPECT_EQ(Say({"paint", "one", "--at", "10000"}),
              "2 easel: --at takes a hexadecimal number up to FFFF, not \"10000\"\n");
    EXPECT_EQ(Say({"paint", "one", "--colour", "blue"}),
              "2 easel: --colour is one of red, green; not \"blue\"\n");
    EXPECT_EQ(Say({"paint", "one", "--overwrite=1"}), "2 easel: --overwrite takes no value\n");
    EXPECT_EQ(runs, 0);
}

TEST_F(CommandLineOptions, HelpAndVersionComeBeforeComplaints) {
    EXPECT_EQ(Say({"paint", "--from", "x", "--loud", "-h"}), "0 ");
    EXPECT_THAT(out, HasSubstr("Usage: easel paint [OPTION...] FILE...\n\nPaints files.\n"));
    EXPECT_THAT(out, HasSubstr("\n  -o, --output FILE                write to FILE;"));
    EXPECT_EQ(Say({"-h"}), "0 ");
    EXPECT_THAT(out, HasSubstr("\n  paint  FILE...  paints files\n  look            looks\n"));
    EXPECT_THAT(out, HasSubstr("\nBye.\n"));
    EXPECT_EQ(Say({"look", "-V"}), "0 ");
    EXPECT_THAT(out, testing::MatchesRegex("easel [0-9.]+\n"));
    EXPECT_EQ(runs, 0);
}

TEST_F(CommandLineOptions, OptionsKeepWhatCompletesThem) {
    CLI::App& paint = *CommandsOf(*program).front();
    const auto completion = [&](const char* name) { return CompletionOf(*paint.get_option(name)); };
    EXPECT_THAT(completion("--colour").words, ElementsAre("red", "green"));
    EXPECT_EQ(completion("--output").kind, Completion::Kind::Files);
    EXPECT_THAT(completion("--output").words, IsEmpty());
    EXPECT_EQ(completion("--from").kind, Completion::Kind::Nothing);
    EXPECT_EQ(ValueName(*paint.get_option("--colour")), "red|green");
    EXPECT_EQ(ValueName(*paint.get_option("--json")), "");
}

} // namespace
} // namespace busquill::cli
