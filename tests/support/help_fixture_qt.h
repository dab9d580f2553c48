#pragma once

#include "support/program_fixture_qt.h"
#include "ui/shell/help_window.h"
#include "ui/shell/manual_browser.h"

#include <QTextBlock>

namespace busquill::test {

/// The whole program in Demo Mode, and the pages of the manual that its windows lead to.
class HelpFixture : public ProgramFixture {
protected:
    HelpFixture() { StartDemo(); }

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
    QMdiSubWindow& Active() { return *Frame().Area().activeSubWindow(); }
};

} // namespace busquill::test
