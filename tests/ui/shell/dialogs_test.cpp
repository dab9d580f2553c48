// Every dialog of the program, opened as the user does: Tab goes round, there is a default button,
// and F1 and the Help button lead to its page.

#include "capture/trace_document.h"
#include "support/help_fixture_qt.h"
#include "support/pattern_grid_qt.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/framework/mdi_child.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/patterns/pattern_grid.h"
#include "ui/testsuites/instructions_dialog.h"

#include <QAbstractSpinBox>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>
#include <set>

namespace busquill::test {
namespace {

std::string NameOf(const QWidget& widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    return (QString(widget.metaObject()->className()) + " " + widget.objectName() + " " +
            (button != nullptr ? button->text() : ""))
        .toStdString();
}

/// What Tab stops at: of radio buttons that exclude each other it stops at one, and the arrows go
/// to the others. Here the first one stands for them.
QWidget* StopOf(QWidget* widget) {
    auto* radio = qobject_cast<QRadioButton*>(widget);
    if (radio == nullptr) {
        return widget;
    }
    return radio->group() != nullptr ? radio->group()->buttons().first()
                                     : radio->parentWidget()->findChildren<QRadioButton*>().first();
}

/// Whether it is a control by its kind, or because it takes the focus.
bool IsControl(const QWidget& widget) {
    const auto is = [&](auto... kinds) {
        return ((qobject_cast<decltype(kinds)>(&widget) != nullptr) || ...);
    };
    const bool byKind =
        is(static_cast<const QPushButton*>(nullptr), static_cast<const QCheckBox*>(nullptr),
           static_cast<const QRadioButton*>(nullptr), static_cast<const QLineEdit*>(nullptr),
           static_cast<const QComboBox*>(nullptr), static_cast<const QAbstractSpinBox*>(nullptr));
    return byKind || (widget.focusPolicy() & Qt::TabFocus) != 0;
}

/// The stops of a dialog that Tab is to reach.
std::set<QWidget*> StopsOf(const QDialog& dialog) {
    std::set<QWidget*> stops;
    for (auto* widget : dialog.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr &&
            widget->window() == &dialog && IsControl(*widget)) {
            stops.insert(StopOf(widget));
        }
    }
    return stops;
}

/// After the buttons along the edge, Tab comes to the uppermost control.
void ExpectButtonsLast(const QDialog& dialog, const QList<QWidget*>& reached) {
    const auto isInBox = [&](const QWidget* widget) {
        return qobject_cast<QDialogButtonBox*>(widget->parentWidget()) != nullptr;
    };
    const auto topOf = [&](const QWidget* widget) { return widget->mapTo(&dialog, QPoint()).y(); };
    int top = dialog.height();
    for (const QWidget* each : reached) {
        top = isInBox(each) ? top : std::min(top, topOf(each));
    }
    for (qsizetype i = 0; i < reached.size(); ++i) {
        const QWidget* const next = reached[(i + 1) % reached.size()];
        if (isInBox(reached[i]) && !isInBox(next)) {
            EXPECT_LE(topOf(next), top + 5) << NameOf(*next) << " comes after the buttons";
        }
    }
}

/// Tab reaches each control once before the first comes again; Shift+Tab goes back.
void ExpectTabGoesRound(QDialog& dialog) {
    const std::set<QWidget*> stops = StopsOf(dialog);
    QWidget* const first = dialog.focusWidget();
    ASSERT_NE(first, nullptr) << "a key has no receiver";
    QList<QWidget*> reached;
    QWidget* at = first;
    while (at != nullptr && !reached.contains(StopOf(at))) {
        reached << StopOf(at);
        QTest::keyClick(at, Qt::Key_Tab);
        at = dialog.focusWidget();
    }
    EXPECT_EQ(at, first) << "Tab came back to " << (at != nullptr ? NameOf(*at) : "nothing");
    for (QWidget* stop : stops) {
        EXPECT_TRUE(reached.contains(stop)) << "Tab does not reach " << NameOf(*stop);
    }
    for (QWidget* each : reached) {
        EXPECT_TRUE(stops.contains(each)) << "Tab stops at " << NameOf(*each);
    }
    if (at == first && reached.size() > 1) {
        QTest::keyClick(first, Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(StopOf(dialog.focusWidget()), reached.last());
    }
    ExpectButtonsLast(dialog, reached);
}

/// The default button; null if there is none.
const QPushButton* DefaultOf(const QDialog& dialog) {
    for (const auto* button : dialog.findChildren<QPushButton*>()) {
        if (button->isVisible() && button->isDefault()) {
            return button;
        }
    }
    return nullptr;
}

class Dialogs : public HelpFixture {
protected:
    Dialogs() { Frame().show(); }

    /// Waits for a dialog other than `outer`. A menu on the way to it has the dialog as its first
    /// entry.
    static void WhenOpen(const QWidget* outer, int tries,
                         const std::function<void(QDialog&)>& act) {
        QTimer::singleShot(10, [=] {
            QWidget* const modal = QApplication::activeModalWidget();
            if (auto* dialog = qobject_cast<QDialog*>(modal); dialog != nullptr && modal != outer) {
                act(*dialog);
                return;
            }
            if (tries > 0) {
                WhenOpen(outer, tries - 1, act);
            }
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                QTest::keyClick(menu, Qt::Key_Down);
                QTest::keyClick(menu, Qt::Key_Return);
            }
        });
    }
    /// Opens a dialog and examines it; `inside` opens others from it.
    void Expect(
        const std::function<void()>& open, const QString& page, const QString& defaultButton,
        const std::function<void(QDialog&)>& inside = [](QDialog&) {}) {
        bool met = false;
        WhenOpen(QApplication::activeModalWidget(), 50, [&](QDialog& dialog) {
            met = true;
            SCOPED_TRACE(dialog.windowTitle().toStdString());
            QApplication::setActiveWindow(&dialog); // no window manager does
            const QPushButton* const button = DefaultOf(dialog);
            EXPECT_EQ(button != nullptr ? button->text().remove('&') : "(none)", defaultButton);
            ExpectTabGoesRound(dialog);
            ExpectDialogPage(dialog, page);
            inside(dialog);
            if (dialog.isVisible()) {
                dialog.reject();
            }
        });
        open();
        EXPECT_TRUE(met) << "no dialog has opened: " << page.toStdString();
    }
    void ExpectOf(const QString& path, const QString& page, const QString& defaultButton = "OK") {
        SCOPED_TRACE(path.toStdString());
        Expect([&] { Choose(path); }, page, defaultButton);
    }
    void ExpectOfButton(const QString& button, const QString& page) {
        SCOPED_TRACE(button.toStdString());
        Expect([&] { Press(Active(), button); }, page, "OK");
    }
    void Type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QApplication::setActiveWindow(&Frame());
        Frame().RefreshCommands(); // the program does so before it waits for the next key
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
};

TEST_F(Dialogs, OfTheUtilities) {
    ExpectOf("Utilities/Define Signals", "listing.md#define-signals", "Ok");
    ExpectOf("Utilities/Board Setup", "connecting.md");
    ExpectOf("Utilities/Board Info", "board-info.md");
    ExpectOf("Utilities/Download Firmware", "firmware.md", "Download");
    ExpectOf("Utilities/Serial Test", "serial-test.md", "Send");
    ExpectOf("Utilities/Bus Configuration", "bus-configuration.md");
    ExpectOf("Help/About Busquill!", "index.md");
}

TEST_F(Dialogs, OfTheDisplayOnEachPage) {
    for (const char* page : {"Name", "Markers", "Grid", "Scale", "Colors"}) {
        ExpectOf(QString("Edit/Display/") + page, "display-properties.md");
    }
    Choose("File/New/Capture/State");
    ExpectOf("Edit/Display/Name", "display-properties.md");
}

TEST_F(Dialogs, OfACapture) {
    for (const char* kind : {"State", "Waveform"}) {
        Choose(QString("File/New/Capture/") + kind);
        ExpectOf("Search/Go to/Sample #", "search.md#go-to-a-sample");
        ExpectOf("Search/Filter", "search.md#filter");
        ExpectOf("File/Print...", "printing.md");
        Expect([&] { Type(Qt::Key_F9); }, "capture.md#new-trace-window", "OK");
        Expect([&] { Type(Qt::Key_F10, Qt::ShiftModifier); }, "listing.md#changing-the-columns",
               "OK");
        Active().close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(Dialogs, OfThePatternsThatAreSearchedFor) {
    Choose("File/New/Capture/State");
    Expect([&] { Choose("Search/Find Pattern"); }, "search.md#find", "OK",
           [&](QDialog& dialog) {
               auto& grid = *dialog.findChild<CPatternGrid*>();
               const PatternGeometry geometry = grid.Geometry();
               std::set<QString> titles;
               for (const auto& column : geometry.columns.Visible()) {
                   const QPoint cell = geometry.CellRect({geometry.topRow, column.signal}).center();
                   WhenOpen(&dialog, 3, [&](QDialog& opened) {
                       QApplication::setActiveWindow(&opened);
                       if (titles.insert(opened.windowTitle()).second) {
                           SCOPED_TRACE(opened.windowTitle().toStdString());
                           const QPushButton* const button = DefaultOf(opened);
                           EXPECT_EQ(button != nullptr ? button->text() : "(none)", "OK");
                           ExpectTabGoesRound(opened);
                           ExpectDialogPage(opened, "search.md#patterns");
                       }
                       opened.reject();
                   });
                   QTest::mouseClick(&grid, Qt::LeftButton, {}, cell);
                   QTest::qWait(60);
               }
               EXPECT_EQ(titles, (std::set<QString>{"Command", "Value"}));
           });
}

TEST_F(Dialogs, OfATraceSetup) {
    Choose("File/New/Capture/State");
    Expect([&] { Press(Active(), "Setup"); }, "trace-setup.md", "OK",
           [&](QDialog& setup) {
               EXPECT_EQ(PageOfF1(ButtonOf(setup, "If1")), "trace-setup.md#levels");
               Expect([&] { Press(setup, "Setup Wizard"); }, "setup-wizard.md", "OK");
               Expect([&] { Press(setup, "If1"); }, "trace-setup.md#expressions", "OK");
               Expect([&] { Press(setup, "Occurs1"); }, "trace-setup.md#levels", "OK");
               Expect([&] { Press(setup, "Then1"); }, "trace-setup.md#levels", "OK");
           });
}

TEST_F(Dialogs, OfACaptureThatIsSaved) {
    Choose("File/New/Capture/State");
    auto& trace = dynamic_cast<CTesselDoc&>(dynamic_cast<CMDIChildWnd&>(Active()).GetDocument());
    Expect(
        [&] { CSaveTraceDialog(&Frame(), trace, dir.File("a.tra"), prompts, mainThread).exec(); },
        "capture.md#saving", "OK");
}

TEST_F(Dialogs, OfALiveTrace) {
    std::filesystem::remove(dir.File("Trigger2.tra"));
    Choose("File/New/Capture/State");
    Expect([&] { Type(Qt::Key_F6); }, "trace-setup.md", "OK");
    ExpectOf("Edit/Display/Name", "display-properties.md");
}

TEST_F(Dialogs, OfTheFunctionsOfTheBoard) {
    Choose("File/New/Performance/Utilization");
    ExpectOfButton("Setup", "performance.md#setups");
    Choose("File/New/Exerciser/Stimulus");
    ExpectOfButton("Occurs1", "stimulus.md#levels");
    ExpectOfButton("Then1", "stimulus.md#levels");
    Choose("File/New/Exerciser/Master");
    Expect(
        [&] {
            for (auto* edit : Active().findChildren<CPatternEdit*>()) {
                if (edit->isVisible() && edit->isEnabled()) {
                    edit->setFocus();
                    QTest::keyClick(edit, Qt::Key_Space);
                    return;
                }
            }
        },
        "search.md#patterns", "OK");
    Choose("File/New/Compliance Tests");
    ExpectOfButton("Options", "compliance.md#options");
    Choose("File/New/Backplane Test");
    ExpectOfButton("Options", "backplane.md#options");
}

TEST_F(Dialogs, OfAMasterOnVme) {
    Choose("File/New/Exerciser/Master");
    ChooseDialog<QDialog>("Utilities/Bus Configuration", [](QDialog& bus) {
        bus.findChild<QComboBox*>()->setCurrentText("VME");
        Press(bus, "OK");
    });
    ExpectOfButton("Options", "master.md#options");
}

TEST_F(Dialogs, OfATestThatAsksTheOperator) {
    Expect([&] { CInstructionsDialog(&Frame(), "Press the button of the device.").exec(); },
           "compliance.md#instructions", "Continue");
}

/// The open list of keys, or null.
QDialog* ListOfKeys() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->windowTitle() == "Keys" && window->isVisible()) {
            return qobject_cast<QDialog*>(window);
        }
    }
    return nullptr;
}

TEST_F(Dialogs, OfTheKeys) {
    Type(Qt::Key_F1, Qt::ShiftModifier);
    QDialog* keys = ListOfKeys();
    ASSERT_NE(keys, nullptr);
    ExpectTabGoesRound(*keys);
    EXPECT_EQ(DefaultOf(*keys)->text(), "Close");
    ExpectDialogPage(*keys, "keys.md");
}

TEST_F(Dialogs, TheKeysAreListedBesideADialogAndStayAfterIt) {
    ChooseDialog<QDialog>("Utilities/Bus Configuration", [](QDialog& bus) {
        QTest::keyClick(bus.findChild<QComboBox*>(), Qt::Key_F1, Qt::ShiftModifier);
        QDialog* keys = ListOfKeys();
        ASSERT_NE(keys, nullptr);
        EXPECT_EQ(keys->parentWidget(), &bus) << "only what belongs to the dialog can be reached";
        EXPECT_TRUE(bus.isVisible());
        Press(bus, "Cancel");
    });
    QDialog* keys = ListOfKeys();
    ASSERT_NE(keys, nullptr);
    EXPECT_EQ(keys->parentWidget(), &Frame());
    Press(*keys, "Close");
    EXPECT_EQ(ListOfKeys(), nullptr);
}

} // namespace
} // namespace busquill::test
