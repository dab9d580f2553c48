// F1 in each window and dialog, and its Help button, lead to the page that describes it.

#include "support/program_fixture_qt.h"
#include "ui/shell/help_window.h"
#include "ui/shell/manual_browser.h"

#include <QMessageBox>
#include <QTextBlock>
#include <QToolButton>

namespace busquill::test {
namespace {

class HelpByKey : public ProgramFixture {
protected:
    HelpByKey() { StartDemo(); }

    /// The page that F1 opens where the focus is, or in a widget.
    QString PageOfF1(QWidget& focus) {
        QTest::keyClick(&focus, Qt::Key_F1);
        return ShownPage();
    }
    /// The page that is shown, in a window that the user can reach. Closes the window.
    QString ShownPage() {
        auto* page = FindBrowser();
        if (page == nullptr || !page->window()->isVisible()) {
            return "(none)";
        }
        const QWidget* modal = QApplication::activeModalWidget();
        EXPECT_TRUE(modal == nullptr || page->window()->parentWidget() == modal);
        const QString shown = page->Page();
        page->window()->close();
        return shown;
    }
    static ManualBrowser* FindBrowser() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* help = qobject_cast<HelpWindow*>(window)) {
                return help->findChild<ManualBrowser*>();
            }
        }
        return nullptr;
    }
    /// The page exists, and has the section.
    static void ExpectToExist(const QString& page) {
        ManualBrowser browser;
        browser.resize(600, 400);
        browser.ShowPage(page);
        const QString section = page.section('#', 1);
        bool found = section.isEmpty();
        for (QTextBlock block = browser.document()->begin(); block.isValid();
             block = block.next()) {
            found = found ||
                    (block.blockFormat().headingLevel() > 1 && AnchorOf(block.text()) == section);
        }
        EXPECT_FALSE(browser.toPlainText().isEmpty()) << page.toStdString();
        EXPECT_TRUE(found) << page.toStdString();
    }
    /// F1 in the dialog opens the page. So does its Help button, if it has one, but without the
    /// section.
    void ExpectDialogPage(QDialog& dialog, const QString& page) {
        EXPECT_EQ(PageOfF1(dialog), page) << dialog.windowTitle().toStdString();
        ExpectToExist(page);
        for (auto* button : dialog.findChildren<QAbstractButton*>()) {
            if (button->text().remove('&') == "Help") {
                QTest::mouseClick(button, Qt::LeftButton);
                EXPECT_EQ(ShownPage(), page.section('#', 0, 0));
            }
        }
    }
    void ExpectDialog(
        const std::function<void()>& open, const QString& page,
        const std::function<void(QDialog&)>& inside = [](QDialog&) {}) {
        AnswerDialog<QDialog>(open, [&](QDialog& dialog) {
            ExpectDialogPage(dialog, page);
            inside(dialog);
        });
    }
    void ExpectDialogOf(const QString& path, const QString& page) {
        SCOPED_TRACE(path.toStdString());
        ExpectDialog([&] { Choose(path); }, page);
    }
    QMdiSubWindow& Active() { return *Frame().Area().activeSubWindow(); }
};

TEST_F(HelpByKey, InTheEmptyMainWindowOpensTheContents) {
    EXPECT_EQ(PageOfF1(Frame()), "index.md");
}

TEST_F(HelpByKey, InTheWindowOfAFunctionOpensItsPageLikeItsHelpButton) {
    const std::pair<const char*, const char*> windows[] = {
        {"File/New/Capture/State", "listing.md"},
        {"File/New/Capture/Waveform", "waveforms.md"},
        {"File/New/Performance/Utilization", "performance.md"},
        {"File/New/Performance/Transfer Rate", "performance.md"},
        {"File/New/Performance/Latency", "performance.md"},
        {"File/New/Performance/Burst Distribution", "performance.md"},
        {"File/New/Performance/Statistics", "performance.md"},
        {"File/New/Exerciser/Master", "master.md"},
        {"File/New/Exerciser/Configuration", "configuration.md"},
        {"File/New/Exerciser/Stimulus", "stimulus.md"},
        {"File/New/Target", "target.md"},
        {"File/New/Compliance Tests", "compliance.md"},
        {"File/New/Anomaly Detection", "anomaly-detection.md"},
        {"File/New/Backplane Test", "backplane.md"},
    };
    for (const auto& [path, page] : windows) {
        SCOPED_TRACE(path);
        Choose(path);
        EXPECT_EQ(PageOfF1(Active()), page);
        EXPECT_EQ(PageOfF1(*Frame().menuBar()), page) << "the active window counts";
        Press(Active(), "Help");
        EXPECT_EQ(ShownPage(), page);
        ExpectToExist(page);
        Active().close();
        QTest::qWait(10); // until it is closed
    }
}

TEST_F(HelpByKey, FollowsTheDisplayOfACapture) {
    Choose("File/New/Capture/State");
    AnswerDialog<QDialog>([&] { Press(Active(), "Display"); },
                          [&](QDialog& question) {
                              ExpectDialogPage(question, "capture.md#new-trace-window");
                              Press(question, "OK"); // in the same window
                          });
    EXPECT_EQ(PageOfF1(Active()), "waveforms.md");
    Press(Active(), "Power Zoom");
    EXPECT_EQ(PageOfF1(*Windows().last()), "waveforms.md#power-zoom");
    ExpectToExist("waveforms.md#power-zoom");
}

TEST_F(HelpByKey, InADialogOfTheMenusOpensItsPage) {
    ExpectDialogOf("Utilities/Define Signals", "listing.md#define-signals");
    ExpectDialogOf("Utilities/Board Setup", "connecting.md");
    ExpectDialogOf("Utilities/Board Info", "board-info.md");
    ExpectDialogOf("Utilities/Download Firmware", "firmware.md");
    ExpectDialogOf("Utilities/Serial Test", "serial-test.md");
    ExpectDialogOf("Utilities/Bus Configuration", "bus-configuration.md");
    ExpectDialogOf("Edit/Display/Colors", "display-properties.md");
    ExpectDialogOf("Help/About Busquill!", "index.md");
    Choose("File/New/Capture/State");
    ExpectDialogOf("Edit/Display/Name", "display-properties.md");
    ExpectDialogOf("Search/Go to/Sample #", "search.md#go-to-a-sample");
    ExpectDialogOf("Search/Find Pattern", "search.md#find");
    ExpectDialogOf("Search/Filter", "search.md#filter");
    ExpectDialogOf("File/Print...", "printing.md");
    ExpectDialogOf("File/Save As...", "file-types.md");
}

TEST_F(HelpByKey, InTheDialogsOfATraceSetup) {
    Choose("File/New/Capture/State");
    ExpectDialog([&] { Press(Active(), "Setup"); }, "trace-setup.md",
                 [&](QDialog& setup) {
                     EXPECT_EQ(PageOfF1(ButtonOf(setup, "If1")), "trace-setup.md#levels");
                     ExpectDialog([&] { Press(setup, "Setup Wizard"); }, "setup-wizard.md");
                     ExpectDialog([&] { Press(setup, "If1"); }, "trace-setup.md#expressions");
                     ExpectDialog([&] { Press(setup, "Occurs1"); }, "trace-setup.md#levels");
                     ExpectDialog([&] { Press(setup, "Then1"); }, "trace-setup.md#levels");
                     ExpectDialog([&] { Press(setup, "Open"); }, "file-types.md");
                 });
}

TEST_F(HelpByKey, InTheDialogsOfTheFunctions) {
    Choose("File/New/Performance/Utilization");
    ExpectDialog([&] { Press(Active(), "Setup"); }, "performance.md#setups");
    ExpectDialog([&] { Press(Active(), "Load"); }, "file-types.md");
    Choose("File/New/Exerciser/Stimulus");
    ExpectDialog([&] { Press(Active(), "Occurs1"); }, "stimulus.md#levels");
    ExpectDialog([&] { Press(Active(), "Then1"); }, "stimulus.md#levels");
    Choose("File/New/Compliance Tests");
    ExpectDialog([&] { Press(Active(), "Options"); }, "compliance.md#options");
    Choose("File/New/Backplane Test");
    ExpectDialog([&] { Press(Active(), "Options"); }, "backplane.md#options");
}

TEST_F(HelpByKey, InsideTheHelpExplainsTheHelp) {
    Choose("Help/Contents");
    ManualBrowser* browser = FindBrowser();
    ASSERT_NE(browser, nullptr);
    QTest::keyClick(browser, Qt::Key_F1);
    EXPECT_EQ(browser->Page(), "index.md#using-the-help");
    ExpectToExist("index.md#using-the-help");
}

TEST_F(HelpByKey, OtherKeysWithF1AreLeftAlone) {
    QTest::keyClick(&Frame(), Qt::Key_F1, Qt::ControlModifier);
    EXPECT_EQ(ShownPage(), "(none)");
}

} // namespace
} // namespace busquill::test
