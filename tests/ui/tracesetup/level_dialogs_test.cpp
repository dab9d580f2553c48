#include "support/modal_qt.h"
#include "ui/tracesetup/condition_dialog.h"
#include "ui/tracesetup/expression_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

// Expressions

class ExpressionDialog : public testing::Test {
protected:
    void Open(const char* text) {
        dialog = std::make_unique<CTraceExpressionDialog>(nullptr, ParseExpression(text));
        dialog->show();
    }
    void Press(const char* button) { test::Press(*dialog, button); }
    QString Text() { return dialog->findChild<QLineEdit*>()->text(); }
    bool Enabled(const char* button) { return ButtonOf(*dialog, button).isEnabled(); }

    std::unique_ptr<CTraceExpressionDialog> dialog;
};

TEST_F(ExpressionDialog, IsBuiltByClicks) {
    Open("None");
    EXPECT_EQ(dialog->windowTitle(), "Trace Expression");
    EXPECT_EQ(Text(), "None");
    for (const char* button :
         {"~ (NOT)", "(", "E1", ". (AND)", "E2", "+ (OR)", "E3", ")", "x (XOR)", "E8"}) {
        Press(button);
    }
    EXPECT_EQ(Text(), "~(E1.E2+E3)xE8");
    Press("Backspace");
    EXPECT_EQ(Text(), "~(E1.E2+E3)x");
    Press("E7");
    Press("OK");
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(FormatExpression(dialog->Result()), "~(E1.E2+E3)xE7");
}

TEST_F(ExpressionDialog, EnablesTheTokensThatMayFollow) {
    const std::vector<const char*> operands = {"E1", "E2", "E3", "E4",      "E5",
                                               "E6", "E7", "E8", "~ (NOT)", "("};
    const std::vector<const char*> operators = {". (AND)", "+ (OR)", "x (XOR)", ")"};
    struct Row {
        const char* text;
        bool operandFollows;
    };
    for (const Row& row : {Row{"None", true}, Row{"All", true}, Row{"E1.", true}, Row{"E1+", true},
                           Row{"~", true}, Row{"E1x", true}, Row{"(", true}, Row{"E1", false},
                           Row{"E8", false}, Row{"(E1)", false}}) {
        Open(row.text);
        for (const char* button : operands) {
            EXPECT_EQ(Enabled(button), row.operandFollows) << row.text << " " << button;
        }
        for (const char* button : operators) {
            EXPECT_EQ(Enabled(button), !row.operandFollows) << row.text << " " << button;
        }
        for (const char* button : {"ALL", "NONE", "OK", "Cancel"}) {
            EXPECT_TRUE(Enabled(button)) << row.text << " " << button;
        }
        const bool filled = std::string(row.text) != "None";
        EXPECT_EQ(Enabled("Clear"), filled) << row.text;
        EXPECT_EQ(Enabled("Backspace"), filled) << row.text;
    }
}

TEST_F(ExpressionDialog, AllAndNone) {
    Open("E1.E2");
    Press("ALL");
    EXPECT_EQ(Text(), "All");
    Press("E1");
    EXPECT_EQ(Text(), "E1");
    Press("NONE");
    EXPECT_EQ(Text(), "None");
    EXPECT_FALSE(Enabled("Clear"));
    Press("E2");
    Press("Clear");
    EXPECT_EQ(Text(), "None");
    Press("ALL");
    Press("Backspace");
    EXPECT_EQ(Text(), "None");
}

TEST_F(ExpressionDialog, ASeventeenthTokenIsIgnored) {
    Open("None");
    for (int i = 0; i < 8; ++i) {
        Press("E1");
        Press("+ (OR)");
    }
    const QString full = "E1+E1+E1+E1+E1+E1+E1+E1+";
    EXPECT_EQ(Text(), full);
    EXPECT_TRUE(Enabled("E1"));
    Press("E1");
    Press("(");
    EXPECT_EQ(Text(), full);
    Press("Backspace");
    EXPECT_EQ(Text(), full.chopped(1));
}

TEST_F(ExpressionDialog, MnemonicsAndEnter) {
    Open("None");
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    QTest::keyClick(dialog.get(), Qt::Key_3, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Text() == "E3"; })); // the button is animated
    QTest::keyClick(dialog.get(), Qt::Key_A, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Text() == "All"; }));
    for (const char* button : {"&ALL", "&NONE", "&Clear", "&Backspace", "E&1", "E&8"}) {
        EXPECT_EQ(ButtonOf(*dialog, QString(button).remove('&')).text(), button);
    }
    QTest::keyClick(dialog.get(), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

// Conditions

TEST(ConditionDialog, SelectsALevel) {
    CTraceConditionDialog dialog(nullptr, 2, false);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "Trace Condition");
    auto& box = *dialog.findChild<QComboBox*>();
    ASSERT_EQ(box.count(), 8);
    EXPECT_EQ(box.itemText(0), "Goto L1");
    EXPECT_EQ(box.itemText(7), "Goto L8");
    EXPECT_EQ(box.currentText(), "Goto L3");
    EXPECT_FALSE(dialog.Trigger());
    QTest::keyClick(&box, Qt::Key_Down);
    EXPECT_EQ(ButtonOf(dialog, "Trigger").text(), "&Trigger");
    Tick(dialog, "Trigger");
    Press(dialog, "OK");
    EXPECT_EQ(dialog.Level(), 3);
    EXPECT_TRUE(dialog.Trigger());
    EXPECT_TRUE(CTraceConditionDialog(nullptr, 0, true).Trigger());
}

} // namespace
} // namespace busquill::test
