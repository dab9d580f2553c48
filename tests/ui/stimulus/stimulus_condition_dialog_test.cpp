#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "ui/stimulus/stimulus_condition_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StimulusConditionDialog : public testing::Test {
protected:
    void Open(const StimulusBranch& branch = {}) {
        dialog = std::make_unique<CStimulusConditionDialog>(nullptr, branch, prompts);
        dialog->show();
    }
    QLineEdit& Field(const char* name) { return *dialog->findChild<QLineEdit*>(name); }
    void Type(const char* field, const QString& text) {
        Field(field).selectAll();
        QTest::keyClick(&Field(field), Qt::Key_Delete);
        QTest::keyClicks(&Field(field), text);
    }
    bool Accepted() { return dialog->result() == QDialog::Accepted; }

    RecordingPrompts prompts;
    std::unique_ptr<CStimulusConditionDialog> dialog;
};

TEST_F(StimulusConditionDialog, OffersEveryLevelAndStop) {
    Open({4, 17, 33});
    EXPECT_EQ(dialog->windowTitle(), "Stimulus Condition");
    auto& box = *dialog->findChild<QComboBox*>();
    ASSERT_EQ(box.count(), 16);
    EXPECT_EQ(box.itemText(0), "Goto SL1");
    EXPECT_EQ(box.itemText(14), "Goto SL15");
    EXPECT_EQ(box.itemText(15), "STOP");
    EXPECT_EQ(box.currentText(), "Goto SL5");
    EXPECT_EQ(Field("Duration").text(), "17");
    EXPECT_EQ(Field("Wait").text(), "33");
    QStringList labels;
    for (const auto* label : dialog->findChildren<QLabel*>()) {
        labels << label->text();
    }
    EXPECT_EQ(labels, (QStringList{"Duration", "Wait"}));
}

TEST_F(StimulusConditionDialog, ReturnsWhatWasEntered) {
    Open({14, 1, 1});
    QTest::keyClick(dialog->findChild<QComboBox*>(), Qt::Key_Down);
    Type("Duration", "255");
    Type("Wait", " 2 ");
    QTest::keyClick(&Field("Wait"), Qt::Key_Return);
    ASSERT_TRUE(Accepted());
    EXPECT_EQ(dialog->Result().level, 15);
    EXPECT_EQ(dialog->Result().duration, 255);
    EXPECT_EQ(dialog->Result().wait, 2);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(StimulusConditionDialog, RefusesADurationOutOfRange) {
    for (const char* text : {"0", "256", "-1", "", "long", "5x", "99999999999"}) {
        Open();
        Type("Duration", text);
        Type("Wait", "0");
        Press(*dialog, "OK");
        EXPECT_THAT(prompts.Texts(), ElementsAre("Duration must be between 1 and 255")) << text;
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(Accepted());
        prompts.Forget();
    }
}

TEST_F(StimulusConditionDialog, RefusesAWaitOutOfRange) {
    for (const char* text : {"0", "256", ""}) {
        Open();
        Type("Wait", text);
        Press(*dialog, "OK");
        EXPECT_THAT(prompts.Texts(), ElementsAre("Wait must be between 1 and 255.")) << text;
        EXPECT_TRUE(dialog->isVisible());
        prompts.Forget();
        QTest::keyClicks(&Field("Wait"), "9"); // replaces the refused number
        Press(*dialog, "OK");
        EXPECT_TRUE(Accepted());
        EXPECT_EQ(dialog->Result().wait, 9);
    }
}

TEST_F(StimulusConditionDialog, NumbersOfAFileOutOfRangeAreShownAndRefused) {
    Open({0, 300, 1});
    EXPECT_EQ(Field("Duration").text(), "300");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Duration must be between 1 and 255"));
}

} // namespace
} // namespace busquill::test
