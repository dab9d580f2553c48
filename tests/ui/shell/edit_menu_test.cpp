#include "support/program_fixture_qt.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

/// The Edit menu with the keyboard in a text field.
class EditMenu : public ProgramFixture {
protected:
    void OpenMaster() {
        StartDemo();
        QApplication::clipboard()->setText("789");
        Choose("File/New/Exerciser/Master");
        Frame().activateWindow();
        field = Frame().Area().activeSubWindow()->findChild<QLineEdit*>("Repeat");
        ASSERT_NE(field, nullptr);
        field->setFocus();
        field->setText("12345");
        field->setSelection(1, 2);
        ASSERT_TRUE(QTest::qWaitFor([&] { return field->hasFocus(); }));
    }
    /// Opens the menu by its key, as the user does, and presses the key of an entry.
    void ChooseByKeys(Qt::Key entry) {
        QTest::keyClick(field, Qt::Key_E, Qt::AltModifier);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr) << "no menu has opened";
        EXPECT_EQ(field->selectedText(), "23") << "the menu has taken the selection";
        QTest::keyClick(menu, entry);
        QApplication::processEvents();
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }
    static std::string Clipboard() { return QApplication::clipboard()->text().toStdString(); }
    bool Enabled(const QString& name) { return Entry("Edit/" + name).isEnabled(); }

    QLineEdit* field = nullptr;
};

TEST_F(EditMenu, CopiesTheSelectionOfAField) {
    OpenMaster();
    ChooseByKeys(Qt::Key_C);
    EXPECT_EQ(Clipboard(), "23");
    EXPECT_EQ(field->text(), "12345");
    EXPECT_EQ(Frame().focusWidget(), field);
    EXPECT_EQ(field->selectedText(), "23");
}

TEST_F(EditMenu, CutsTheSelectionOfAField) {
    OpenMaster();
    ChooseByKeys(Qt::Key_T);
    EXPECT_EQ(Clipboard(), "23");
    EXPECT_EQ(field->text(), "145");
}

TEST_F(EditMenu, PastesOverTheSelectionOfAField) {
    OpenMaster();
    ChooseByKeys(Qt::Key_P);
    EXPECT_EQ(field->text(), "178945");
}

TEST_F(EditMenu, ButtonsOfTheToolBarWorkOnTheField) {
    OpenMaster();
    auto& bar = *Frame().findChild<QToolBar*>("Toolbar");
    QTest::mouseClick(bar.widgetForAction(&Entry("Edit/Copy")), Qt::LeftButton);
    EXPECT_EQ(Clipboard(), "23");
    EXPECT_EQ(field->selectedText(), "23");
}

TEST_F(EditMenu, OffersWhatTheFieldCanDo) {
    OpenMaster();
    EXPECT_TRUE(Enabled("Cut"));
    EXPECT_TRUE(Enabled("Copy"));
    EXPECT_TRUE(Enabled("Paste"));
    field->deselect();
    EXPECT_FALSE(Enabled("Cut"));
    EXPECT_FALSE(Enabled("Copy"));
    field->setSelection(1, 2);
    field->setReadOnly(true);
    EXPECT_FALSE(Enabled("Cut"));
    EXPECT_TRUE(Enabled("Copy"));
    EXPECT_FALSE(Enabled("Paste"));
}

TEST_F(EditMenu, FollowsTheKeyboardToACapture) {
    OpenMaster();
    Choose("File/New/Capture/Waveform");
    EXPECT_TRUE(Enabled("Copy"));
    EXPECT_FALSE(Enabled("Cut"));
    EXPECT_FALSE(Enabled("Paste"));
    QTest::keyClick(Frame().focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(QApplication::clipboard()->image().isNull());
}

TEST_F(EditMenu, WithoutAWindowHasNothingToDo) {
    StartDemo();
    EXPECT_FALSE(Enabled("Cut"));
    EXPECT_FALSE(Enabled("Copy"));
    EXPECT_FALSE(Enabled("Paste"));
}

TEST_F(EditMenu, AFieldThatHasGoneIsNotMeant) {
    OpenMaster();
    Choose("File/Close");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(Enabled("Copy"));
    EXPECT_FALSE(Enabled("Paste"));
}

} // namespace
} // namespace busquill::test
