#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/fill_template.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>

namespace busquill::cli {
namespace {

using testing::HasSubstr;

class Template : public testing::Test {
protected:
    Template() {
        CLI::App& paint = AddCommand(*program, "paint", "it's [quick]", [] { return 0; });
        CompletedWithFiles(AddOperand(paint, "FILE", file), ".pic");
        Required(AddText(paint, "-b,--brush", brush, "NAME", "which brush"));
        AddChoice<int>(paint, "--hue", {{"red", 0}, {"dark red", 1}, {"blue", 2}}, hue, "HUE",
                       "as");
        AddFlag(paint, "--dry", dry, "costs $5");
    }

    std::string Fill(const std::string& text) { return FillTemplate(*program, text); }
    std::string Failure(const std::string& text) {
        try {
            static_cast<void>(Fill(text));
        } catch (const ExitRequest& request) {
            return request.message;
        }
        return {};
    }

    std::shared_ptr<CLI::App> program = MakeProgram("easel-2", "Paints.", "");
    std::string file;
    std::string brush;
    int hue = 0;
    bool dry = false;
};

TEST_F(Template, KeepsWhatIsNoPart) {
    EXPECT_EQ(Fill("a@b.c \"${words[@]}\" @program@ _@function@ ${x[@]:1}@"),
              "a@b.c \"${words[@]}\" easel-2 _easel_2 ${x[@]:1}@");
}

TEST_F(Template, RefusesWhatTheProgramDoesNotHave) {
    EXPECT_THAT(Failure("@option colour@"), HasSubstr("--colour, which does not exist"));
    EXPECT_THAT(Failure("@synopsis draw@"), HasSubstr("draw, which does not exist"));
    EXPECT_THAT(Failure("@words brush@"), HasSubstr("which has none"));
    EXPECT_THAT(Failure("@nonsense@"), HasSubstr("unknown part @nonsense@"));
}

TEST_F(Template, LeavesOutWhatTheProgramDoesNotNeed) {
    EXPECT_EQ(Fill("a\n@if names@\nb @program@\n@end@\nc\n"), "a\nc\n");
    Completed(AddText(*CommandsOf(*program).front(), "--of", brush, "NAME", "of"),
              Completion::Kind::Names);
    EXPECT_EQ(Fill("a\n@if names@\nb @program@\n@end@\nc\n"), "a\nb easel-2\nc\n");
    EXPECT_THAT(Failure("@if colours@\nb\n@end@\n"), HasSubstr("unknown condition"));
    EXPECT_THAT(Failure("@if names@\nb\n"), HasSubstr("without an end"));
}

TEST_F(Template, FillsAManPage) {
    EXPECT_EQ(Fill("@synopsis paint@"), ".B easel\\-2 paint\n"
                                        "\\fB\\-\\-brush\\fR \\fINAME\\fR\n"
                                        "[\\fB\\-\\-hue\\fR \\fIHUE\\fR]\n"
                                        "[\\fB\\-\\-dry\\fR]\n"
                                        "\\fIFILE\\fR");
    EXPECT_EQ(Fill("@option brush@"), ".TP\n\\fB\\-b\\fR, \\fB\\-\\-brush\\fR \\fINAME\\fR");
    EXPECT_EQ(Fill("@words hue@"), "red, dark red or blue");
}

TEST_F(Template, FillsCompletions) {
    EXPECT_EQ(Fill("@bash options@"), "    paint) options=\"help version brush hue dry\" "
                                      "valued=\"--brush -b --hue\" ;;");
    EXPECT_EQ(Fill("@bash values@"), "    paint,--brush | paint,-b) : ;;\n"
                                     "    paint,--hue) _easel_2_words $'red\\ndark red\\nblue' ;;");
    EXPECT_EQ(Fill("@bash operands@"), "    paint,0) _easel_2_files '*.pic' ;;");
    EXPECT_EQ(Fill("@zsh commands@"), "    'paint:it'\\''s [quick]'");
    EXPECT_THAT(Fill("@zsh arguments@"),
                HasSubstr("'(-b --brush)'{-b+,--brush=}'[which brush]:NAME: '\n"));
    EXPECT_THAT(Fill("@zsh arguments@"), HasSubstr("'--hue=[as]:HUE:(red dark\\ red blue)'\n"));
    EXPECT_THAT(Fill("@zsh arguments@"), HasSubstr("'1:FILE:_files -g \"*.pic\"'\n"));
    EXPECT_THAT(Fill("@fish arguments@"), HasSubstr(" -l hue -x -a \"red dark\\ red blue\" -d"));
    EXPECT_THAT(Fill("@fish arguments@"), HasSubstr(" -l dry -d \"costs \\$5\""));
}

} // namespace
} // namespace busquill::cli
