// The keys of the windows, through real key events.

#include "support/program_fixture_qt.h"
#include "ui/display/trace_display.h"
#include "ui/display/trace_view.h"
#include "ui/display/wave_window.h"
#include "ui/framework/bar_button.h"
#include "ui/framework/go_stop_child.h"
#include "ui/shell/key_list.h"
#include "ui/shell/keys_window.h"
#include "ui/trace/child_frame.h"
#include "ui/trace/trace_bar.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>

namespace busquill::test {
namespace {

class Keys : public ProgramFixture {
protected:
    Keys() {
        StartDemo();
        Frame().show();
    }
    QMdiSubWindow& Active() { return *Frame().Area().activeSubWindow(); }
    CChildFrame& TraceFrame() { return dynamic_cast<CChildFrame&>(Active()); }
    CTesselDoc& Trace() { return TraceFrame().Trace(); }
    CTraceView& View() { return TraceFrame().TraceView(); }
    void OpenFile(const char* name) {
        ASSERT_NE(program->App().OpenDocumentFile(dir.File(name)), nullptr);
        QApplication::processEvents();
    }
    /// An empty trace that is connected to the board, without stored captures.
    void OpenLive(const QString& kind = "State") {
        std::filesystem::remove(dir.File("Trigger1.tra"));
        std::filesystem::remove(dir.File("Trigger2.tra"));
        Choose("File/New/Capture/" + kind);
        ASSERT_TRUE(Trace().IsRealTime());
    }
    /// Types a key where the focus is.
    void Type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QApplication::setActiveWindow(&Frame()); // no window manager does so after a dialog
        Frame().RefreshCommands(); // the program does so before it waits for the next key
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &Frame(), key, modifiers);
        QApplication::processEvents();
    }
    QString TipOf(const QString& button) { return ButtonOf(Active(), button).toolTip(); }
};

constexpr const char* goStopWindows[] = {
    "File/New/Performance/Utilization", "File/New/Exerciser/Master",
    "File/New/Exerciser/Stimulus",      "File/New/Target",
    "File/New/Compliance Tests",        "File/New/Anomaly Detection",
    "File/New/Backplane Test"};

TEST_F(Keys, F5IsGoAndShiftF5IsStopInEachWindowThatHasThem) {
    for (const char* path : goStopWindows) {
        SCOPED_TRACE(path);
        Choose(path);
        auto& window = dynamic_cast<CGoStopChild&>(Active());
        std::string done;
        window.go = [&] { done += "go "; };
        window.stop = [&] { done += "stop "; };
        Type(Qt::Key_F5);
        Type(Qt::Key_F5, Qt::ShiftModifier);
        Press(window, "Go");
        Press(window, "Stop");
        EXPECT_EQ(done, "go stop go stop ");
        EXPECT_EQ(TipOf("Go"), "Go (F5)");
        EXPECT_EQ(TipOf("Stop"), "Stop (Shift+F5)");
    }
}

TEST_F(Keys, F5ReachesTheActiveWindowOnlyAlsoFromAFieldOfItsForm) {
    Choose("File/New/Target");
    auto& other = dynamic_cast<CGoStopChild&>(Active());
    Choose("File/New/Exerciser/Master");
    auto& window = dynamic_cast<CGoStopChild&>(Active());
    int goes = 0;
    int others = 0;
    window.go = [&] { ++goes; };
    other.go = [&] { ++others; };
    for (auto* field : window.findChildren<QLineEdit*>()) {
        if (field->isVisible() && field->isEnabled()) {
            field->setFocus();
            Type(Qt::Key_F5);
            EXPECT_EQ(QApplication::focusWidget(), field) << "typing goes on there";
            break;
        }
    }
    EXPECT_EQ(goes, 1);
    EXPECT_EQ(others, 0);
}

TEST_F(Keys, F5ThatIsHeldDownStartsOneRun) {
    Choose("File/New/Target");
    auto& window = dynamic_cast<CGoStopChild&>(Active());
    int goes = 0;
    window.go = [&] { ++goes; };
    Type(Qt::Key_F5);
    for (int i = 0; i < 3; ++i) {
        QTest::simulateEvent(QApplication::focusWidget(), true, Qt::Key_F5, {}, "", true, 0);
    }
    EXPECT_EQ(goes, 1);
}

TEST_F(Keys, InACheckListSpaceChecksAndTheArrowsFold) {
    Choose("File/New/Anomaly Detection");
    auto& list = *Active().findChild<QTreeWidget*>();
    QTreeWidgetItem* group = nullptr;
    for (int i = 0; i < list.topLevelItemCount() && group == nullptr; ++i) {
        group = list.topLevelItem(i)->childCount() > 0 ? list.topLevelItem(i) : nullptr;
    }
    ASSERT_NE(group, nullptr);
    list.setFocus();
    list.setCurrentItem(group);
    const Qt::CheckState before = group->checkState(0);
    Type(Qt::Key_Space);
    EXPECT_NE(group->checkState(0), before);
    ASSERT_TRUE(group->isExpanded());
    Type(Qt::Key_Left);
    EXPECT_FALSE(group->isExpanded());
    Type(Qt::Key_Right);
    EXPECT_TRUE(group->isExpanded());
}

TEST_F(Keys, WithoutAWindowTheyDoNothing) {
    for (const Qt::Key key : {Qt::Key_F5, Qt::Key_F6, Qt::Key_F7, Qt::Key_F9}) {
        Type(key);
        Type(key, Qt::ShiftModifier);
    }
    EXPECT_TRUE(Windows().isEmpty());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Keys, F6OpensTheSetupOfTheWindow) {
    OpenLive();
    AnswerDialog<CTraceSetupDialog>([&] { Type(Qt::Key_F6); }, [](CTraceSetupDialog&) {});
    EXPECT_EQ(TipOf("Setup"), "Edit the trace setup (F6)");
    Choose("File/New/Performance/Statistics");
    AnswerDialog<QDialog>([&] { Type(Qt::Key_F6); },
                          [](QDialog& dialog) { Press(dialog, "Cancel"); });
    EXPECT_EQ(TipOf("Setup"), "Edit the setup (F6)");
}

TEST_F(Keys, ShiftF6OpensTheListOfSetupsWhichEnterChoosesFrom) {
    std::filesystem::copy(SourceFile("data/MemoryWrite.tsp"), dir.File("MemoryWrite.tsp"));
    OpenLive();
    QComboBox& box = TraceFrame().Bar().SetupBox();
    ASSERT_EQ(box.count(), 2);
    QWidget* const before = QApplication::focusWidget();
    Type(Qt::Key_F6, Qt::ShiftModifier);
    ASSERT_TRUE(box.view()->isVisible());
    QTest::keyClick(box.view(), Qt::Key_Escape);
    EXPECT_FALSE(box.view()->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), before);
    Type(Qt::Key_F6, Qt::ShiftModifier);
    QTest::keyClick(box.view(), Qt::Key_End);
    QTest::keyClick(box.view(), Qt::Key_Return);
    EXPECT_EQ(QString::fromStdString(Trace().setupName), box.itemText(1));
    EXPECT_EQ(box.toolTip(), "The setup of the next capture (Shift+F6)");
    Choose("File/New/Performance/Statistics");
    Type(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_TRUE(Active().findChild<QComboBox*>("Setup Box")->view()->isVisible());
}

TEST_F(Keys, TheSetupOfASavedTraceCannotBeExchanged) {
    OpenFile("Trigger2.tra");
    Type(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_FALSE(TraceFrame().Bar().SetupBox().view()->isVisible());
}

TEST_F(Keys, F7AndF8PutTheMarkersInTheMiddleOfTheDisplay) {
    for (const char* file : {"Trigger1.tra", "Trigger2.tra"}) {
        SCOPED_TRACE(file);
        OpenFile(file);
        Type(Qt::Key_End, Qt::ControlModifier);
        const std::int64_t middle = View().CenterSample();
        ASSERT_GT(middle, 0);
        Type(Qt::Key_F7);
        EXPECT_EQ(Trace().Marker(1, false), middle);
        EXPECT_EQ(Trace().Marker(2, false), -1);
        Type(Qt::Key_Home, Qt::ControlModifier);
        const std::int64_t first = View().CenterSample();
        ASSERT_NE(first, middle);
        Type(Qt::Key_F8);
        EXPECT_EQ(Trace().Marker(2, false), first);
        EXPECT_EQ(Trace().Marker(1, false), middle);
        Type(Qt::Key_F8); // removes it, as a second click does
        EXPECT_EQ(Trace().Marker(2, false), -1);
    }
}

TEST_F(Keys, TheMiddleOfAShortCaptureIsThatOfItsRows) {
    const std::string row = ",1,2,3,0,0,0,0,0,0,0,0,0,0,30,0,0,0,0\n";
    std::string text =
        "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0,4\n";
    for (int number = 0; number <= 4; ++number) {
        text += std::to_string(number) + row;
    }
    ASSERT_NE(
        program->App().OpenDocumentFile(dir.Write("short.tra", text + "\"End of Trace Data\"\n")),
        nullptr);
    Type(Qt::Key_F7);
    EXPECT_EQ(Trace().Marker(1, false), 2);
}

TEST_F(Keys, AltAndTheArrowsMoveMarker1AndWithShiftMarker2) {
    OpenFile("Trigger1.tra");
    Trace().SetMarker(1, 20);
    Trace().SetMarker(2, 30);
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers with = {}) {
        Type(key, Qt::AltModifier | with);
        return std::pair(Trace().Marker(1, false), Trace().Marker(2, false));
    };
    EXPECT_EQ(press(Qt::Key_Right), std::pair(21L, 30L));
    EXPECT_EQ(press(Qt::Key_Left), std::pair(20L, 30L));
    EXPECT_EQ(press(Qt::Key_Left), std::pair(19L, 30L));
    EXPECT_EQ(press(Qt::Key_Right, Qt::ShiftModifier), std::pair(19L, 31L));
    EXPECT_EQ(press(Qt::Key_Left, Qt::ShiftModifier), std::pair(19L, 30L));
}

TEST_F(Keys, AMarkerThatLeavesTheDisplayTakesItAlong) {
    OpenFile("Trigger2.tra");
    Type(Qt::Key_Home, Qt::ControlModifier);
    ASSERT_EQ(View().TopSample(), 0);
    Type(Qt::Key_F7);
    int presses = 0;
    while (View().TopSample() == 0 && presses < 200) {
        Type(Qt::Key_Right, Qt::AltModifier);
        ++presses;
    }
    EXPECT_GT(presses, 2);
    EXPECT_LT(presses, 200);
    EXPECT_EQ(View().CenterSample(), Trace().Marker(1, false));
}

TEST_F(Keys, InPowerZoomTheyMoveItsOwnMarkers) {
    OpenFile("Trigger1.tra");
    ASSERT_EQ(Windows().size(), 2) << "the file has Power Zoom samples";
    Frame().Area().setActiveSubWindow(Windows().last());
    ASSERT_TRUE(TraceFrame().IsZoomFrame());
    Type(Qt::Key_F7);
    const std::int64_t marker = Trace().Marker(1, true);
    EXPECT_EQ(marker, View().CenterSample());
    Type(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(Trace().Marker(1, true), marker + 1);
    EXPECT_EQ(Trace().Marker(1, false), -1);
    // It has no Go, no setup and no other display.
    for (const Qt::Key key : {Qt::Key_F5, Qt::Key_F6, Qt::Key_F9}) {
        Type(key);
        Type(key, Qt::ShiftModifier);
    }
    EXPECT_EQ(Windows().size(), 2);
}

TEST_F(Keys, F9SwitchesTheDisplayAndShiftF9OpensPowerZoom) {
    OpenFile("Trigger2.tra");
    ASSERT_TRUE(TraceFrame().IsStateFrame());
    EXPECT_EQ(TipOf("Display"), "Show a Waveform window (F9)");
    AnswerDialog<QDialog>([&] { Type(Qt::Key_F9); },
                          [](QDialog& question) { Press(question, "OK"); }); // the same window
    EXPECT_FALSE(TraceFrame().IsStateFrame());
    EXPECT_EQ(TipOf("Display"), "Show a State window (F9)");
    const qsizetype windows = Windows().size();
    EXPECT_EQ(TipOf("Power Zoom"), "Show the Power Zoom samples (Shift+F9)");
    Type(Qt::Key_F9, Qt::ShiftModifier);
    ASSERT_EQ(Windows().size(), windows + 1);
    EXPECT_TRUE(dynamic_cast<CChildFrame&>(*Windows().last()).IsZoomFrame());
}

TEST_F(Keys, TheToolBarNamesTheKeys) {
    auto* bar = Frame().findChild<QToolBar*>("Toolbar");
    int keys = 0;
    for (const CommandId id : ToolbarButtons()) {
        const QStringList names = id == CommandId::None ? QStringList() : KeysOf(id);
        if (!names.isEmpty()) {
            const QString& key = names.first();
            bool named = false;
            for (const QAction* action : bar->actions()) {
                named |= action->toolTip().endsWith(" (" + key + ")");
            }
            EXPECT_TRUE(named) << key.toStdString();
            ++keys;
        }
    }
    EXPECT_GT(keys, 10);
}

/// The names of the selected signals.
std::string Selected(const CSignalList& list) {
    std::string names;
    for (const auto& signal : list.All()) {
        if (signal->selected && signal->VisibleWidth() > 0) {
            names += signal->RowName() + ";";
        }
    }
    return names;
}

/// The names of the signals that show, in order.
std::vector<std::string> Shown(const CSignalList& list) {
    std::vector<std::string> names;
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            names.push_back(signal->RowName() + ";");
        }
    }
    return names;
}

TEST_F(Keys, CtrlAndTheArrowsSelectASignalAndScrollToIt) {
    for (const char* file : {"Trigger2.tra", "Trigger1.tra"}) {
        SCOPED_TRACE(file);
        OpenFile(file);
        const bool isState = TraceFrame().IsStateFrame();
        const CSignalList& list = isState ? Trace().stateList : Trace().waveformList;
        const std::vector<std::string> names = Shown(list);
        ASSERT_GT(names.size(), 10U);
        auto& display = *Active().findChild<TraceDisplay*>();
        const Qt::Key on = isState ? Qt::Key_Right : Qt::Key_Down;
        const Qt::Key back = isState ? Qt::Key_Left : Qt::Key_Up;
        Type(on, Qt::ControlModifier);
        EXPECT_EQ(Selected(list), names[0]);
        Type(on, Qt::ControlModifier);
        EXPECT_EQ(Selected(list), names[1]);
        Type(back, Qt::ControlModifier);
        Type(back, Qt::ControlModifier);
        EXPECT_EQ(Selected(list), names[0]) << "there is none before it";
        EXPECT_EQ(display.SignalBar().position, 0);
        for (std::size_t i = 0; i < names.size(); ++i) {
            Type(on, Qt::ControlModifier);
        }
        EXPECT_EQ(Selected(list), names.back());
        const BarState bar = display.SignalBar();
        EXPECT_GT(bar.position, 0);
        EXPECT_GE(bar.position, bar.maximum - 20) << "the last one shows";
    }
}

TEST_F(Keys, ASelectedBandIsWhollyInTheWindow) {
    OpenFile("Trigger1.tra");
    const CSignalList& list = Trace().waveformList;
    auto& display = *Active().findChild<CWaveformWnd*>();
    const std::size_t count = Shown(list).size();
    for (std::size_t i = 0; i < 2 * count; ++i) {
        Type(i < count ? Qt::Key_Down : Qt::Key_Up, Qt::ControlModifier);
        SCOPED_TRACE(Selected(list));
        int top = 18;
        std::int64_t at = display.Top().signal;
        for (; at < static_cast<std::int64_t>(list.Size()); ++at) {
            const CSignal& signal = list[static_cast<std::size_t>(at)];
            if (signal.VisibleHeight() < 1) {
                continue;
            }
            const int offset = at == display.Top().signal ? display.Top().offset : 0;
            if (signal.selected) {
                EXPECT_EQ(offset, 0);
                EXPECT_LE(top + signal.VisibleHeight(), display.height());
                break;
            }
            top += signal.VisibleHeight() + 1 - offset;
        }
        EXPECT_LT(at, static_cast<std::int64_t>(list.Size())) << "it is above the window";
    }
}

TEST_F(Keys, OnlyStepsRepeatWhileAKeyIsHeld) {
    QStringList repeating;
    for (const QAction* action : Frame().findChildren<QAction*>()) {
        if (!action->shortcuts().isEmpty() && action->autoRepeat()) {
            repeating << action->text().remove('&');
        }
    }
    repeating.sort();
    EXPECT_EQ(repeating, QStringList({"Find Next", "Find Previous", "Marker 1 Back",
                                      "Marker 1 Forward", "Marker 2 Back", "Marker 2 Forward",
                                      "Next Bookmark", "Next Signal", "Paste", "Previous Bookmark",
                                      "Previous Signal", "Zoom In", "Zoom Out"}));
}

TEST_F(Keys, ShiftF10OpensTheMenuOnTheSelectedSignal) {
    for (const char* file : {"Trigger2.tra", "Trigger1.tra"}) {
        SCOPED_TRACE(file);
        OpenFile(file);
        const bool isState = TraceFrame().IsStateFrame();
        const CSignalList& list = isState ? Trace().stateList : Trace().waveformList;
        const std::vector<std::string> names = Shown(list);
        EXPECT_TRUE(
            AnswerMenu([&] { Type(Qt::Key_F10, Qt::ShiftModifier); }).contains("Change Signal..."));
        EXPECT_EQ(Selected(list), names[0]) << "the first one if none was selected";
        Type(Qt::Key_Right, Qt::ControlModifier);
        AnswerMenu([&] { Type(Qt::Key_F10, Qt::ShiftModifier); }, "Insert Blank");
        EXPECT_EQ(Shown(list).size(), names.size() + 1);
        prompts.AnswerNext(Answer::Yes);
        AnswerMenu([&] { Type(Qt::Key_Menu); }, "Delete Signal");
        EXPECT_EQ(Shown(list).size(), names.size());
        EXPECT_EQ(Shown(list)[2], names[2]);
        EXPECT_NE(Shown(list)[1], names[1]) << "the blank one has taken its place";
    }
}

TEST_F(Keys, CtrlTabAndCtrlF4AreForTheWindows) {
    OpenFile("Trigger2.tra");
    QMdiSubWindow* const first = &Active();
    Choose("File/New/Target");
    QMdiSubWindow* const second = &Active();
    ASSERT_NE(first, second);
    Type(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(&Active(), first);
    Type(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(&Active(), second);
    Type(Qt::Key_F4, Qt::ControlModifier);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(Windows().size(), 1);
}

/// The list of keys.
class ListOfKeys : public Keys {
protected:
    static KeysWindow* Window() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* keys = qobject_cast<KeysWindow*>(window)) {
                return keys;
            }
        }
        return nullptr;
    }
    /// Its lines, "place: keys: what they do".
    static QStringList Lines() {
        QStringList lines;
        const auto& list = *Window()->findChild<QTreeWidget*>("Keys");
        for (int i = 0; i < list.topLevelItemCount(); ++i) {
            const QTreeWidgetItem& place = *list.topLevelItem(i);
            for (int k = 0; k < place.childCount(); ++k) {
                lines << place.text(0) + ": " + place.child(k)->text(0) + ": " +
                             place.child(k)->text(1);
            }
        }
        return lines;
    }
};

TEST_F(ListOfKeys, ShiftF1OpensItAndEscClosesIt) {
    EXPECT_EQ(Window(), nullptr);
    Type(Qt::Key_F1, Qt::ShiftModifier);
    ASSERT_NE(Window(), nullptr);
    EXPECT_TRUE(Window()->isVisible());
    EXPECT_FALSE(Window()->isModal()) << "the keys are tried beside it";
    QTest::keyClick(Window(), Qt::Key_Escape);
    EXPECT_FALSE(Window()->isVisible());
    OpenFile("Trigger2.tra");
    Type(Qt::Key_F1, Qt::ShiftModifier);
    EXPECT_TRUE(Window()->isVisible());
}

TEST_F(ListOfKeys, HasTheKeyOfEachCommand) {
    Type(Qt::Key_F1, Qt::ShiftModifier);
    const QStringList lines = Lines();
    EXPECT_TRUE(lines.contains("Menu File: Ctrl+S: Save the active document"));
    EXPECT_TRUE(lines.contains("Menu View: Ctrl++, Ctrl+=: Show fewer samples"));
    EXPECT_TRUE(lines.contains("Windows: Shift+F5: Stop the run of the window"));
    EXPECT_TRUE(lines.contains("Waveforms: Page Up, Page Down: As many samples as fit"));
    // Whatever action has a key is in it.
    int keys = 0;
    for (const QAction* action : Frame().findChildren<QAction*>()) {
        for (const QKeySequence& key : action->shortcuts()) {
            if (action->statusTip().isEmpty()) {
                continue; // of a window's own menu
            }
            const QString name = key.toString(QKeySequence::NativeText);
            EXPECT_EQ(lines.filter(action->statusTip()).filter(name).size(), 1)
                << name.toStdString();
            ++keys;
        }
    }
    EXPECT_GT(keys, 30);
}

TEST_F(ListOfKeys, NamesThePathOfAnEntry) {
    for (const KeyLine& line : AllKeys()) {
        QString path = line.entry;
        path.replace(" > ", "/");
        if (!path.isEmpty()) {
            EXPECT_TRUE(FindEntry(*Frame().menuBar(), path) != nullptr ||
                        FindEntry(*Frame().menuBar(), path + "...") != nullptr)
                << path.toStdString();
        }
    }
}

} // namespace
} // namespace busquill::test
