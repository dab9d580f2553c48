#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "ui/tracesetup/setup_wizard_dialog.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

class SetupWizardDialog : public testing::Test {
protected:
    void Open(const std::string& model, std::int32_t mode = BusPci) {
        board = std::make_unique<BoardTables>(model, mode);
        setup = std::make_unique<TraceSetup>(board->tables);
        setup->name = "as before";
        dialog =
            std::make_unique<CSetupWizardDialog>(nullptr, *setup, prompts, [this] { ++helpShown; });
        dialog->show();
    }
    QGroupBox& Question(int which) { return *dialog->findChildren<QGroupBox*>()[which]; }
    QStringList Choices(int question) {
        QStringList texts;
        for (const auto* button : Question(question).findChildren<QRadioButton*>()) {
            texts << (button->isChecked() ? "*" : "") + button->text();
        }
        return texts;
    }
    QLineEdit& Field(int question, int which) {
        return *Question(question).findChildren<QLineEdit*>()[which];
    }
    void Type(int question, int field, const char* text) {
        QTest::mouseClick(&Field(question, field), Qt::LeftButton);
        Field(question, field).selectAll();
        QTest::keyClicks(&Field(question, field), text);
    }
    /// The command in the column of an event.
    std::string Command(std::size_t column) {
        for (const auto& signal : setup->events.All()) {
            if (signal->decoded && signal->decoded->name == "COMMAND") {
                return signal->Label(column);
            }
        }
        return "";
    }
    std::string If() { return FormatExpression(setup->levels[0].ifExpr); }
    std::string Store() { return FormatExpression(setup->levels[0].storeExpr); }

    RecordingPrompts prompts;
    std::unique_ptr<BoardTables> board;
    std::unique_ptr<TraceSetup> setup;
    std::unique_ptr<CSetupWizardDialog> dialog;
    int helpShown = 0;
};

TEST_F(SetupWizardDialog, UsesTheTermsOfPci) {
    Open("PCIKite-1");
    EXPECT_EQ(dialog->windowTitle(), "Setup WIzard - Trace");
    EXPECT_EQ(Question(0).title(), "What do you want to trigger on?");
    EXPECT_EQ(Question(1).title(), "What do you want to store?");
    const QStringList choices = {"Memory", "I/O",   "Configuration", "*All",
                                 "Read",   "Write", "*Both"};
    EXPECT_EQ(Choices(0), choices);
    EXPECT_EQ(Choices(1), choices);
    QStringList labels;
    for (const auto* label : dialog->findChildren<QLabel*>()) {
        labels << label->text();
    }
    const QStringList question = {"Cycle:", "Direction:", "Address:", "Data:"};
    EXPECT_EQ(labels,
              question + question +
                  QStringList{"You can specify an address or data range as follows: 100 to 200"});
}

TEST_F(SetupWizardDialog, UsesTheTermsOfVme) {
    Open("VMEKite", BusVme);
    const QStringList choices = {"*Memory", "Read", "Write", "Interrupt", "*All"};
    EXPECT_EQ(Choices(0), choices);
    EXPECT_EQ(Choices(1), choices);
}

TEST_F(SetupWizardDialog, WritesTheProgram) {
    Open("PCIKite-1");
    Tick(Question(0), "Memory");
    Tick(Question(0), "Write");
    Type(0, 0, "1000");
    Type(0, 1, "5 to 9");
    Tick(Question(1), "I/O");
    Type(1, 0, "100 to 200");
    Press(*dialog, "OK");
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(If(), "E1");
    EXPECT_EQ(FormatExpression(setup->levels[1].ifExpr), "E3.E4");
    EXPECT_EQ(Store(), "E5.E6");
    EXPECT_EQ(Command(0), "Mem Wr");
    EXPECT_EQ(Command(4), "I/O");
}

TEST_F(SetupWizardDialog, UsesTheChoicesOfVme) {
    Open("VMEKite", BusVme);
    Tick(Question(0), "Interrupt");
    Tick(Question(1), "Write");
    Type(1, 1, "1 to 2");
    Press(*dialog, "OK");
    EXPECT_EQ(Store(), "E3.E4");
    EXPECT_EQ(Command(0), "Interrupt");
    EXPECT_EQ(Command(2), "Write");
}

TEST_F(SetupWizardDialog, StopsAtTheFirstTextThatCannotBeRead) {
    Open("PCIKite-1");
    Type(0, 0, "12z");
    Type(0, 1, "q");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid value string '12z'."));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(Field(0, 0).hasSelectedText());
    EXPECT_EQ(setup->name, "as before");
    Type(0, 0, "12");
    Type(0, 1, "3");
    Type(1, 0, "4");
    Type(1, 1, "5 to 6g");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Invalid value string '12z'.", "Invalid value string '5 to 6g'."));
    EXPECT_EQ(setup->name, "as before");
    Type(1, 1, "5 to 6");
    Press(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(setup->name, "");
    EXPECT_EQ(Store(), "E7.E8+E5");
}

TEST_F(SetupWizardDialog, ReadsTheTextsInOrder) {
    const char* const bad[] = {"ta", "tb", "tc", "td"}; // "t" is not a digit
    Open("PCIKite-1");
    for (int field = 0; field < 4; ++field) {
        Type(field / 2, field % 2, bad[field]);
    }
    for (int field = 0; field < 4; ++field) {
        prompts.Forget();
        Press(*dialog, "OK");
        EXPECT_THAT(prompts.Texts(),
                    ElementsAre("Invalid value string '" + std::string(bad[field]) + "'."));
        Type(field / 2, field % 2, "1");
    }
    Press(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(SetupWizardDialog, UsesTheTermsOfEachFamily) {
    Open("VMELark", BusVme);
    EXPECT_EQ(Choices(0), QStringList({"*Memory", "Read", "Write", "Interrupt", "*All"}));
    Open("VSBKite", BusVsb);
    EXPECT_EQ(Choices(0).size(), 7);
}

TEST_F(SetupWizardDialog, CancelAndHelpChangeNothing) {
    Open("PCIKite-1");
    Type(0, 0, "12");
    Press(*dialog, "Help");
    EXPECT_EQ(helpShown, 1);
    Press(*dialog, "Cancel");
    EXPECT_EQ(setup->name, "as before");
}

} // namespace
} // namespace busquill::test
