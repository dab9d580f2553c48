#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "ui/levels/occurrence_dialog.h"

#include <QLabel>
#include <QLineEdit>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OccurrenceDialog : public testing::Test {
protected:
    void Open(std::int32_t count, std::uint32_t limit) {
        dialog = std::make_unique<COccurrenceCountDialog>(nullptr, count, limit, prompts);
        dialog->show();
    }
    void Type(const char* text) {
        auto* edit = dialog->findChild<QLineEdit*>();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        if (*text == '\0') {
            QTest::keyClick(edit, Qt::Key_Delete);
        }
        Press(*dialog, "OK");
    }

    RecordingPrompts prompts;
    std::unique_ptr<COccurrenceCountDialog> dialog;
};

TEST_F(OccurrenceDialog, AcceptsANumberUpToItsLimit) {
    for (const std::uint32_t limit : {65535U, 256U}) {
        Open(7, limit);
        EXPECT_EQ(dialog->windowTitle(), "Occurrence Count");
        EXPECT_EQ(dialog->findChild<QLabel*>()->text(),
                  QString("Enter a value between 1 and %1:").arg(limit));
        EXPECT_EQ(dialog->findChild<QLineEdit*>()->text(), "7");
        Type(std::to_string(limit).c_str());
        EXPECT_EQ(dialog->Count(), static_cast<std::int32_t>(limit));
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
    }
    Open(7, 65535);
    Type("1");
    EXPECT_EQ(dialog->Count(), 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(OccurrenceDialog, RefusesNumbersOutsideItsLimits) {
    for (const char* text : {"0", "65536", "-1", "", "many", "5x", "99999999999999999999"}) {
        Open(7, 65535);
        Type(text);
        EXPECT_THAT(prompts.Texts(), ElementsAre("Occurence value must be between 1 and 65535."))
            << text;
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(dialog->Count(), 7);
        prompts.Forget();
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), "8"); // replaces the refused number
        Press(*dialog, "OK");
        EXPECT_EQ(dialog->Count(), 8);
    }
}

} // namespace
} // namespace busquill::test
