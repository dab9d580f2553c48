// Every entry of the menus, in each kind of window: it is in the table of commands, has a text for
// the message line, and is chosen with mouse and keys. Then it does something that shows, or it is
// disabled for a reason that stands here.

#include "capture/trace_document.h"
#include "support/program_fixture_qt.h"
#include "ui/display/trace_view.h"
#include "ui/framework/commands.h"
#include "ui/trace/child_frame.h"

#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QImage>
#include <QStatusBar>
#include <QToolBar>

#include <map>
#include <ostream>

namespace busquill::test {
namespace {

enum class Shows { Nothing, Listing, Waveforms, PowerZoom, Report, Form };

struct Window {
    const char* name;
    const char* opens; // an entry of File > New, or a stored capture
    Shows shows;
};

/// The name that the list of tests shows.
void PrintTo(const Window& window, std::ostream* out) {
    *out << window.name;
}

constexpr Window windows[] = {
    {"None", "", Shows::Nothing},
    {"Listing", "Trigger2.tra", Shows::Listing},
    {"Waveforms", "Trigger1.tra", Shows::Waveforms},
    {"PowerZoom", "Trigger1.tra", Shows::PowerZoom},
    {"Performance", "Performance/Utilization", Shows::Form},
    {"Master", "Exerciser/Master", Shows::Form},
    {"Configuration", "Exerciser/Configuration", Shows::Form},
    {"Stimulus", "Exerciser/Stimulus", Shows::Form},
    {"Target", "Target", Shows::Form},
    {"Compliance", "Compliance Tests", Shows::Report},
    {"Anomaly", "Anomaly Detection", Shows::Form},
    {"Backplane", "Backplane Test", Shows::Form},
};

/// Why an entry is disabled in a window; null if it is enabled. The captures are from files.
const char* ReasonAgainst(CommandId id, Shows shows) {
    const bool isTrace =
        shows == Shows::Listing || shows == Shows::Waveforms || shows == Shows::PowerZoom;
    switch (id) {
    case CommandId::Copy:
        return isTrace ? nullptr : "nothing is marked";
    case CommandId::Cut:
    case CommandId::Paste:
        return "no text field has the keyboard";
    case CommandId::ZoomToFit:
    case CommandId::Compare:
    case CommandId::ZoomIncrement:
        return "the program does not have it";
    case CommandId::FileSave:
        return shows == Shows::Nothing ? "there is no document"
               : isTrace               ? "a saved capture does not change"
                                       : nullptr;
    case CommandId::FileClose:
    case CommandId::FileSaveAs:
    case CommandId::Cascade:
    case CommandId::Tile:
        return shows == Shows::Nothing ? "there is no window" : nullptr;
    case CommandId::Print:
    case CommandId::PrintPreview:
        return isTrace || shows == Shows::Report ? nullptr : "nothing of it is printed";
    case CommandId::ZoomIn:
    case CommandId::ZoomOut:
        return shows == Shows::Waveforms || shows == Shows::PowerZoom ? nullptr : "it has no scale";
    case CommandId::Filter:
        return shows == Shows::Listing || shows == Shows::Waveforms ? nullptr
                                                                    : "it has no rows to hide";
    case CommandId::GoToTrigger:
    case CommandId::GoToMarker1:
    case CommandId::GoToMarker2:
    case CommandId::GoToStart:
    case CommandId::GoToEnd:
    case CommandId::GoToSample:
    case CommandId::FindPattern:
    case CommandId::FindNext:
    case CommandId::FindPrevious:
        return isTrace ? nullptr : "it has no samples";
    case CommandId::Transactions:
    case CommandId::Findings:
    case CommandId::Interval:
    case CommandId::ShowBookmarks:
        return isTrace ? nullptr : "it shows no capture";
    case CommandId::ShowOnlyHits:
        return "there is no expression yet";
    case CommandId::AddBookmark:
        return shows == Shows::Listing || shows == Shows::Waveforms
                   ? nullptr
                   : "it has no samples of a capture";
    case CommandId::NextBookmark:
    case CommandId::PreviousBookmark:
        return "there are no bookmarks";
    default:
        return nullptr;
    }
}

class Menus : public ProgramFixture, public testing::WithParamInterface<Window> {
protected:
    Menus() {
        StartDemo();
        Frame().resize(1000, 700);
        Frame().show();
    }
    /// Closes all windows and opens the one that is tested, with both markers set.
    void OpenAgain() {
        for (QMdiSubWindow* window : Windows()) {
            window->close();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QString opens = GetParam().opens;
        if (opens.endsWith(".tra")) {
            ASSERT_NE(program->App().OpenDocumentFile(dir.File(opens.toStdString())), nullptr);
            const bool isZoom = GetParam().shows == Shows::PowerZoom;
            Frame().Area().setActiveSubWindow(isZoom ? Windows().last() : Windows().first());
            CTesselDoc& trace = View()->Trace();
            for (const int which : {1, 2}) {
                const std::int64_t place = trace.SampleCount(isZoom) * which / 4;
                isZoom ? trace.SetZoomMarker(which, place) : trace.SetMarker(which, place);
            }
            View()->ScrollToSample(trace.SampleCount(isZoom) * 3 / 4);
        } else if (!opens.isEmpty()) {
            Choose("File/New/" + opens);
        }
        QApplication::processEvents();
        QApplication::clipboard()->clear();
        prompts.Forget();
    }
    CTraceView* View() {
        auto* frame = dynamic_cast<CChildFrame*>(Frame().Area().activeSubWindow());
        return frame != nullptr ? &frame->TraceView() : nullptr;
    }
    QMenu* MenuOf(const QString& path) {
        QList<QAction*> actions = Frame().menuBar()->actions();
        QMenu* menu = nullptr;
        for (const QString& part : path.split('>')) {
            menu = nullptr;
            for (const QAction* action : actions) {
                menu = action->menu() != nullptr && action->text() == part ? action->menu() : menu;
            }
            if (menu == nullptr) {
                return nullptr;
            }
            actions = menu->actions();
        }
        return menu;
    }
    static QAction* EntryIn(const QMenu& menu, const QString& text) {
        for (QAction* action : menu.actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }
    /// Moves the mark of an open menu to an entry with the Down key.
    static bool Mark(QMenu& menu, const QAction& entry) {
        for (int i = 0; i < 40 && menu.activeAction() != &entry; ++i) {
            QTest::keyClick(&menu, Qt::Key_Down);
        }
        return menu.activeAction() == &entry;
    }
    /// Chooses an entry as the user does: a click on the bar, then keys.
    void ChooseByHand(const Command& command) {
        QMenuBar& bar = *Frame().menuBar();
        QString path;
        QMenu* menu = nullptr;
        for (const QString& part : QString(command.menu).split('>')) {
            path += (path.isEmpty() ? "" : ">") + part;
            QMenu* const next = MenuOf(path);
            ASSERT_NE(next, nullptr) << path.toStdString();
            if (menu == nullptr) {
                QTest::mouseClick(&bar, Qt::LeftButton, {},
                                  bar.actionGeometry(next->menuAction()).center());
            } else {
                ASSERT_TRUE(Mark(*menu, *next->menuAction())) << path.toStdString();
                QTest::keyClick(menu, Qt::Key_Right);
            }
            ASSERT_TRUE(next->isVisible()) << path.toStdString();
            menu = next;
        }
        ASSERT_TRUE(Mark(*menu, *EntryIn(*menu, command.text))) << command.text;
        QTest::keyClick(menu, Qt::Key_Return);
    }
    /// What the user sees: windows and their places, bars, the position and the scale of a capture,
    /// its markers, boxes, and what can be pasted.
    std::string Sight() {
        const QClipboard& clipboard = *QApplication::clipboard();
        std::string sight = clipboard.text().toStdString();
        sight += clipboard.image().isNull() ? "" : "picture;";
        for (QWidget* window : QApplication::topLevelWidgets()) {
            sight += window->isVisible() ? window->windowTitle().toStdString() + ";" : "";
        }
        for (const QMdiSubWindow* window : Windows()) {
            const QRect place = window->geometry();
            sight += window->windowTitle().toStdString() + std::to_string(place.x()) + "," +
                     std::to_string(place.y()) + "," + std::to_string(place.width()) + ";";
        }
        sight += Frame().findChild<QToolBar*>("Toolbar")->isVisible() ? "bar;" : "";
        sight += Frame().statusBar()->isVisible() ? "status;" : "";
        for (const QDockWidget* dock : Frame().findChildren<QDockWidget*>()) {
            sight += dock->isVisible() ? dock->windowTitle().toStdString() + ";" : "";
        }
        if (const CTraceView* view = View()) {
            sight += std::to_string(view->TopSample()) + "," +
                     std::to_string(view->CenterSample()) + "," +
                     // A search always sets the marker of the capture, also in Power Zoom.
                     std::to_string(view->Trace().Marker(1, false)) + ";";
        }
        for (const std::string& text : prompts.Texts()) {
            sight += text;
        }
        return sight;
    }
};

TEST_P(Menus, HaveTheEntriesOfTheTableInItsOrder) {
    OpenAgain();
    std::map<QString, QStringList> wanted;
    for (const Command& command : Commands()) {
        const bool isMark =
            command.id == CommandId::RecentFile || command.id == CommandId::WindowList;
        if (command.id != CommandId::None && *command.menu != '\0' && !isMark) {
            wanted[command.menu] << command.text;
        }
    }
    for (const auto& [path, texts] : wanted) {
        const QMenu* const menu = MenuOf(path);
        ASSERT_NE(menu, nullptr) << path.toStdString();
        emit const_cast<QMenu*>(menu)->aboutToShow();
        QStringList found;
        for (const QAction* action : menu->actions()) {
            const bool isNumbered = action->text().startsWith('&') && action->text()[1].isDigit();
            if (!action->isSeparator() && action->menu() == nullptr && action->isVisible() &&
                !isNumbered) {
                found << action->text();
                EXPECT_FALSE(action->statusTip().isEmpty()) << action->text().toStdString();
            }
        }
        EXPECT_EQ(found, texts) << path.toStdString();
    }
}

TEST_P(Menus, AnEntryActsOrIsDisabledForAReason) {
    int chosen = 0;
    for (const Command& command : Commands()) {
        if (*command.menu == '\0' || command.id == CommandId::None ||
            command.id == CommandId::RecentFile || command.id == CommandId::WindowList ||
            command.id == CommandId::Exit) {
            continue;
        }
        SCOPED_TRACE(std::string(command.menu) + ">" + command.text);
        OpenAgain();
        Frame().RefreshCommands();
        const QMenu* const menu = MenuOf(command.menu);
        ASSERT_NE(menu, nullptr);
        const QAction* const entry = EntryIn(*menu, command.text);
        ASSERT_NE(entry, nullptr);
        const char* const reason = ReasonAgainst(command.id, GetParam().shows);
        EXPECT_EQ(entry->isEnabled(), reason == nullptr) << (reason != nullptr ? reason : "");
        if (!entry->isEnabled()) {
            continue;
        }
        const std::string before = Sight();
        std::string dialog;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialog = modal->windowTitle().toStdString() + " ";
                modal->reject();
            }
        });
        watch.start(1);
        ChooseByHand(command);
        QApplication::processEvents();
        EXPECT_FALSE(dialog.empty() && Sight() == before) << "nothing shows";
        ++chosen;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window != &Frame() && window->isVisible()) {
                window->close(); // the help
            }
        }
    }
    EXPECT_GT(chosen, 25);
}

TEST_P(Menus, ExitEndsTheProgram) {
    OpenAgain();
    prompts.AnswerNext(Answer::No); // nothing is saved
    for (const Command& command : Commands()) {
        if (command.id == CommandId::Exit) {
            ChooseByHand(command);
        }
    }
    EXPECT_FALSE(Frame().isVisible());
}

INSTANTIATE_TEST_SUITE_P(In, Menus, testing::ValuesIn(windows),
                         [](const auto& each) { return std::string(each.param.name); });

} // namespace
} // namespace busquill::test
