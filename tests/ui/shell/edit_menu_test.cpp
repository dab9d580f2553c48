#include "capture/trace_document.h"
#include "support/program_fixture_qt.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QClipboard>
#include <QComboBox>
#include <QCursor>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenuBar>
#include <QTableView>
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

/// The Edit menu while a panel floats, whose window loses the keyboard to the menu bar.
class EditMenuBesideAPanel : public ProgramFixture {
protected:
    void FloatTransactions() {
        StartDemo();
        ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
        view = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow()).TraceView();
        view->Trace().ToggleMarker(1, 100, false); // so that there are samples to copy
        view->Trace().ToggleMarker(2, 120, false);
        Choose("Analyze/Transactions");
        dock = Frame().findChild<QDockWidget*>("Transactions");
        table = dock->findChild<QTableView*>("TransactionTable");
        ASSERT_TRUE(QTest::qWaitFor([&] { return table->model()->rowCount() > 0; }));
        dock->setFloating(true);
        dock->move(Frame().geometry().bottomLeft() - QPoint(0, dock->height()));
        dock->activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == dock; }));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, {20, 5});
    }
    /// A press on a window activates it before the window gets the press.
    void Click(QWidget& widget, const QPoint& place) {
        QCursor::setPos(widget.mapToGlobal(place));
        widget.activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return widget.window()->isActiveWindow(); }));
        Frame().RefreshCommands();
        QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    }
    void ClickCopy() {
        Click(*Frame().menuBar(), Frame().menuBar()->actionGeometry(MenuOf("Edit")).center());
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr) << "no menu has opened";
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(&Entry("Edit/Copy")).center());
        QApplication::processEvents();
        Frame().activateWindow(); // without a screen the menu has been a window of its own
        QApplication::processEvents();
    }
    QAction* MenuOf(const QString& title) { return FindEntry(*Frame().menuBar(), title); }
    /// What has been copied; it is forgotten.
    static std::string Copied() {
        const QString text = QApplication::clipboard()->text();
        QApplication::clipboard()->clear();
        return text.startsWith("Number\t") ? "rows"
               : text.size() > 100         ? "listing"
                                           : text.toStdString();
    }

    QDockWidget* dock = nullptr;
    QTableView* table = nullptr;
    CTraceView* view = nullptr;
};

TEST_F(EditMenuBesideAPanel, CopiesTheSelectedRowsAlthoughTheClickActivatesTheMainWindow) {
    FloatTransactions();
    ClickCopy();
    EXPECT_EQ(Copied(), "rows");
    EXPECT_TRUE(Frame().isActiveWindow());
    // The keyboard is in the capture now.
    QTest::keyClick(Frame().focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "listing");
}

TEST_F(EditMenuBesideAPanel, TheToolBarCopiesTheSelectedRowsToo) {
    FloatTransactions();
    auto& bar = *Frame().findChild<QToolBar*>("Toolbar");
    Click(*bar.widgetForAction(&Entry("Edit/Copy")), {5, 5});
    EXPECT_EQ(Copied(), "rows");
}

TEST_F(EditMenuBesideAPanel, CopiesWhatIsSelectedInItsField) {
    FloatTransactions();
    auto* const filter = dock->findChild<QComboBox*>("TransactionFilter");
    QTest::mouseClick(filter->lineEdit(), Qt::LeftButton, {}, {5, 5});
    QTest::keyClicks(filter, "wait > ");
    ASSERT_EQ(QApplication::activePopupWidget(), nullptr);
    filter->lineEdit()->selectAll();
    ClickCopy();
    EXPECT_EQ(Copied(), "wait > ");
}

TEST_F(EditMenuBesideAPanel, CopiesFromTheCaptureOnceThatHasBeenClicked) {
    FloatTransactions();
    Click(*view, {50, 50});
    ClickCopy();
    EXPECT_EQ(Copied(), "listing");
    // Back into the panel, and by Esc to the capture.
    Click(*table->viewport(), {20, 5});
    ClickCopy();
    EXPECT_EQ(Copied(), "rows");
    Click(*table->viewport(), {20, 5});
    QTest::keyClick(table, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Frame().isActiveWindow(); }));
    ClickCopy();
    EXPECT_EQ(Copied(), "listing");
}

} // namespace
} // namespace busquill::test
