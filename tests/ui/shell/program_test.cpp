#include "support/program_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "support/scroll_bar_qt.h"
#include "ui/capture/position_gauge.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_view.h"
#include "ui/display/wave_window.h"
#include "ui/shell/help_window.h"
#include "ui/trace/child_frame.h"
#include "ui/trace/help_topics.h"
#include "ui/trace/trace_bar.h"

#include <QComboBox>
#include <QEventLoop>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QLabel>
#include <QRadioButton>
#include <QStatusBar>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QWindow>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

class InDemoMode : public ProgramFixture {
protected:
    InDemoMode() { StartDemo(); }
    CChildFrame& Active() { return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow()); }
    CTesselDoc& Trace() { return Active().TraceView().Trace(); }
};

TEST(WithoutAPort, NoMessageAppearsAndTheModelHasNoSuffix) {
    class NoPort : public ProgramFixture {
    public:
        void TestBody() override {
            settings.WriteProfileString("Setup", "ComPort", "<None>");
            Start(clock, [](const std::string&) { return nullptr; });
            EXPECT_TRUE(prompts.Boxes().empty());
            EXPECT_FALSE(program->Link().IsDemoMode());
            EXPECT_EQ(Frame().PaneText(1), "-0");
        }
    } test;
    test.TestBody();
}

TEST(KeepAlive, BeginsOnTheSixthTickOnUsb) {
    class OnUsb : public ProgramFixture {
    public:
        void TestBody() override {
            settings.WriteProfileString("Setup", "ComPort", "USB");
            Start(clock, [](const std::string&) { return nullptr; });
            usb.ForgetCalls();
            QTest::qWait(5500);
            EXPECT_EQ(Frames(), 0);
            QTest::qWait(2000);
            EXPECT_EQ(Frames(), 2);
        }
        /// The number of frames (4, 0) that were sent.
        std::ptrdiff_t Frames() {
            const auto calls = usb.Calls();
            return std::count(calls.begin(), calls.end(), "write 2: 4 0");
        }
    } test;
    test.TestBody();
}

TEST(Startup, PaintsTheMainWindowBeforeItConnects) {
    class Slow : public ProgramFixture {
    public:
        void TestBody() override {
            struct Watch : QObject {
                bool painted = false;
                bool eventFilter(QObject* watched, QEvent* event) override {
                    painted |= event->type() == QEvent::Paint && watched->inherits("QMenuBar");
                    return false;
                }
            } watch;
            qApp->installEventFilter(&watch);
            bool paintedBefore = false;
            bool exposedBefore = false;
            Start(clock, [&](const std::string&) {
                paintedBefore = watch.painted;
                exposedBefore = Frame().windowHandle()->isExposed();
                return nullptr;
            });
            EXPECT_TRUE(paintedBefore);
            EXPECT_TRUE(exposedBefore);
        }
    } test;
    test.TestBody();
}

TEST(ApplicationNames, AddNothingToTitles) {
    const QString organisationBefore = QApplication::organizationName();
    const QString nameBefore = QApplication::applicationName();
    NameApplication("Busquill!-bench2");
    EXPECT_EQ(QApplication::applicationName(), "Busquill!-bench2");
    EXPECT_EQ(QApplication::organizationName(), "Tarnlight Labs");
    EXPECT_EQ(QApplication::applicationDisplayName(), QApplication::applicationName())
        << "the application's name would follow every title";
    QApplication::setOrganizationName(organisationBefore);
    QApplication::setApplicationName(nameBefore);
}

TEST_F(InDemoMode, AMaximisedCaptureDoesNotChangeTheMainTitle) {
    Choose("File/New/Capture/State");
    const QString title = Active().windowTitle();
    Active().showMaximized();
    QApplication::processEvents();
    EXPECT_EQ(Frame().windowTitle(), "Busquill!");
    Choose("File/New/Capture/Waveform"); // maximised like the previous one
    EXPECT_EQ(Frame().windowTitle(), "Busquill!");
    Active().SetComment("Another comment");
    EXPECT_EQ(Frame().windowTitle(), "Busquill!");
    Windows()[0]->showNormal();
    Choose("File/Close");
    EXPECT_EQ(Frame().windowTitle(), "Busquill!");
    EXPECT_EQ(Windows()[0]->windowTitle(), title);
}

TEST_F(InDemoMode, DialogsAreAtLeastAsWideAsTheirTitles) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::TitleFont);
    font.setBold(true);
    const auto wide = [&](const QDialog& dialog) {
        return dialog.width() >= QFontMetrics(font).horizontalAdvance(dialog.windowTitle()) + 100;
    };
    Choose("File/New/Capture/State");
    AnswerDialog<QDialog>([&] { Active().Bar().DisplayButton().click(); },
                          [&](QDialog& dialog) {
                              EXPECT_EQ(dialog.windowTitle(), "New Trace Window");
                              EXPECT_TRUE(wide(dialog));
                          });
    ChooseDialog<QDialog>("Search/Go to/Sample #",
                          [&](QDialog& dialog) { EXPECT_TRUE(wide(dialog)); });
    ChooseDialog<QDialog>("Utilities/Board Info",
                          [&](QDialog& dialog) { EXPECT_TRUE(wide(dialog)); });
}

/// A capture's window that extends past the workspace on all sides.
class AWindowPastTheWorkspace : public InDemoMode {
protected:
    void Open(const QString& kind) {
        Choose("File/New/Capture/" + kind);
        const QSize room = Frame().Area().viewport()->size();
        Active().setGeometry(-50, -50, room.width() + 100, room.height() + 100);
        QApplication::processEvents();
        place = Active().pos();
    }
    void ExpectThatItStays(QWidget& focused, std::initializer_list<Qt::Key> keys) {
        focused.setFocus();
        for (const Qt::Key key : keys) {
            QTest::keyClick(&focused, key);
            EXPECT_EQ(Active().pos(), place) << key;
        }
    }
    QPoint place;
};

TEST_F(AWindowPastTheWorkspace, StaysInPlaceForKeysThatAListingIgnores) {
    Open("State");
    ExpectThatItStays(Active().TraceView(), {Qt::Key_Right, Qt::Key_Left, Qt::Key_Down, Qt::Key_Up,
                                             Qt::Key_PageDown, Qt::Key_PageUp});
}

TEST_F(AWindowPastTheWorkspace, StaysInPlaceForKeysThatWaveformsIgnore) {
    Open("Waveform");
    ExpectThatItStays(Active().TraceView(), {Qt::Key_Down, Qt::Key_Up, Qt::Key_Right, Qt::Key_Left,
                                             Qt::Key_PageDown, Qt::Key_PageUp});
}

TEST_F(AWindowPastTheWorkspace, StaysInPlaceForKeysThatItsBarIgnores) {
    Open("State");
    ExpectThatItStays(Active().Bar().SetupBox(), {Qt::Key_Right, Qt::Key_Left});
    ExpectThatItStays(Active().Bar().GoButton(), {Qt::Key_PageDown, Qt::Key_PageUp});
    TurnWheel(Active().Bar().Gauge(), {0, -120});
    EXPECT_EQ(Active().pos(), place);
}

TEST_F(InDemoMode, TheStatusBarShowsIt) {
    EXPECT_EQ(Frame().PaneText(1), "Demo Mode");
    EXPECT_EQ(Frame().PaneText(2), "PCI");
    EXPECT_EQ(Frame().PaneText(3), "0 MHz");
    EXPECT_EQ(Frame().PaneText(4), "");
}

TEST_F(InDemoMode, TheMainWindowIsEmptyAtFirst) {
    EXPECT_TRUE(Windows().isEmpty());
    EXPECT_EQ(Frame().windowTitle(), "Busquill!");
    EXPECT_LE(Frame().width(), 900);
    EXPECT_LE(Frame().height(), 600);
}

TEST_F(InDemoMode, StateOpensItsStoredCapture) {
    Choose("File/New/Capture/State");
    ASSERT_EQ(Windows().size(), 1);
    EXPECT_TRUE(Active().IsStateFrame());
    EXPECT_EQ(Trace().GetPathName(), dir.File("Trigger2.tra"));
    EXPECT_FALSE(Trace().IsRealTime());
    EXPECT_TRUE(Active().windowTitle().startsWith("Trace - Trigger2 ("));
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(InDemoMode, WaveformOpensItsStoredCapture) {
    Choose("File/New/Capture/Waveform");
    EXPECT_FALSE(Active().IsStateFrame());
    EXPECT_FALSE(Active().IsZoomFrame());
    EXPECT_EQ(Trace().GetPathName(), dir.File("Trigger1.tra"));
}

TEST_F(InDemoMode, ThePointerIsBusyWhileAFileIsOpened) {
    bool isBusy = false;
    const QObject here; // ends the connection
    QObject::connect(&Frame().Area(), &QMdiArea::subWindowActivated, &here,
                     [&] { isBusy = isBusy || QGuiApplication::overrideCursor() != nullptr; });
    program->App().OpenDocumentFile(dir.File("Trigger1.tra"));
    EXPECT_TRUE(isBusy);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(InDemoMode, AFileWithPowerZoomSamplesOpensTheirWindowToo) {
    // Trigger2 has a state list; with Power Zoom samples, it has two lists to show.
    const std::string zoom = ReadWholeFile(dir.File("Trigger1.tra"));
    const std::string both = ReadWholeFile(dir.File("Trigger2.tra")) + "\n" +
                             zoom.substr(zoom.find("\"Power Zoom Data\""));
    dir.Write("both.tra", both);
    struct Case {
        std::function<void()> open;
        bool isState;
    };
    const Case cases[] = {
        {[&] { program->App().OpenDocumentFile(dir.File("Trigger1.tra")); }, false},
        {[&] { program->App().OpenDocumentFile(dir.File("both.tra")); }, true},
        {[&] { Choose("File/New/Capture/Waveform"); }, false}};
    for (const Case& each : cases) {
        const auto before = Windows().size();
        each.open();
        ASSERT_EQ(Windows().size(), before + 2);
        EXPECT_FALSE(Active().IsZoomFrame()) << "the capture's own window is the active one";
        EXPECT_EQ(Active().IsStateFrame(), each.isState);
        auto& other = dynamic_cast<CChildFrame&>(*Windows().last());
        EXPECT_TRUE(other.IsZoomFrame());
        EXPECT_EQ(&other.Trace(), &Trace());
        EXPECT_EQ(other.size(), QSize(560, 360));
        EXPECT_EQ(other.Bar().findChild<QLabel*>("Before")->text(), "0000255");
        EXPECT_EQ(other.Bar().findChild<QLabel*>("After")->text(), "0000255");
    }
    // A file that is already open has its windows.
    program->App().OpenDocumentFile(dir.File("both.tra"));
    EXPECT_EQ(Windows().size(), 6);
    // The active window keeps its size.
    Active().showMaximized();
    dir.Write("third.tra", both);
    program->App().OpenDocumentFile(dir.File("third.tra"));
    EXPECT_TRUE(Active().windowTitle().startsWith("Trace - third"));
    EXPECT_TRUE(Active().isMaximized());
    EXPECT_FALSE(Windows().last()->isMaximized());
    EXPECT_EQ(Windows().last()->size(), QSize(560, 360));
}

TEST_F(InDemoMode, AFileWithoutPowerZoomSamplesHasOneWindow) {
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    EXPECT_EQ(Windows().size(), 1);
    // Nor because of an earlier file that could not be read completely.
    program->App().OpenDocumentFile(dir.Write("bad.tra", "\"Power Zoom Data\",255,256\n"
                                                         "\"End of Power Zoom Data\"\n"));
    Choose("File/New/Capture/State");
    EXPECT_EQ(Windows().size(), 2);
}

TEST_F(InDemoMode, ACaptureFromAFileCanBeSavedAsACopy) {
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    EXPECT_FALSE(Entry("File/Save").isEnabled());
    const std::string copy = dir.File("copy.tra");
    const QString title = Active().windowTitle();
    EXPECT_EQ(SaveTraceUnder(
                  copy, [&] { Choose("File/Save As..."); },
                  [](CSaveTraceDialog& dialog) { SetSaveRange(dialog, "10", "60"); }),
              "Trigger2.tra");
    // The window shows the whole file that was opened.
    EXPECT_EQ(Trace().GetPathName(), dir.File("Trigger2.tra"));
    EXPECT_EQ(Active().windowTitle(), title);
    CTesselDoc& whole = Trace();
    ASSERT_NE(program->App().OpenDocumentFile(copy), nullptr);
    ASSERT_NE(&Trace(), &whole);
    EXPECT_EQ(Trace().SampleCount(false), 51);
    EXPECT_EQ(Trace().FirstSampleNumber(false), 10);
    for (int i = 0; i < 51; ++i) {
        EXPECT_EQ(Trace().GetSample(i, false),
                  whole.GetSample(whole.Marker(0, false) + 10 + i, false));
    }
    // A copy of the copy, in which not even the trigger is left.
    SaveTraceUnder(
        dir.File("again.tra"), [&] { Choose("File/Save As..."); },
        [](CSaveTraceDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QLineEdit*>("Start")->text(), "10");
            EXPECT_EQ(dialog.findChild<QLineEdit*>("End")->text(), "60");
        });
    EXPECT_TRUE(ReadWholeFile(dir.File("again.tra")) == ReadWholeFile(copy));
    EXPECT_NE(FindEntry(*Frame().menuBar(), "File/1 again.tra"), nullptr);
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(InDemoMode, AFilteredCaptureFromAFileIsCopiedAsShown) {
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    CTesselDoc& whole = Trace();
    // Only the samples that match the pattern of one line.
    for (const auto& signal : whole.filterPattern.All()) {
        if (signal->RowName() == "FRAME") {
            signal->data[0] = 0;
            signal->mask[0] = 1;
        }
    }
    whole.ApplyFilter(0);
    ASSERT_TRUE(whole.IsFiltered());
    SaveTraceUnder(dir.File("copy.tra"), [&] { Choose("File/Save As..."); });
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("copy.tra")), nullptr);
    ASSERT_NE(&Trace(), &whole);
    ASSERT_EQ(Trace().RowCount(false), whole.RowCount(false));
    for (std::int64_t row = 0; row < Trace().RowCount(false); ++row) {
        ASSERT_EQ(Trace().RowToSample(row, false), whole.RowToSample(row, false));
    }
}

TEST_F(InDemoMode, BlanksOfACommentAreKeptInTheTitle) {
    std::string text = ReadWholeFile(dir.File("Trigger2.tra"));
    const auto at = text.find("\"Description\"");
    text.replace(at, text.find('\n', at) - at, "\"Description\",\"two  blanks\nand a line\"");
    program->App().OpenDocumentFile(dir.Write("blanks.tra", text));
    EXPECT_EQ(Active().windowTitle(), "Trace - blanks (two  blanks and a line)");
}

TEST_F(InDemoMode, TheSameCommandOpensTheCaptureAgain) {
    Choose("File/New/Capture/State");
    Choose("File/New/Capture/State");
    EXPECT_EQ(Windows().size(), 2);
    EXPECT_TRUE(Entry("File/New/Capture/State").isEnabled());
}

TEST_F(InDemoMode, MissingStoredCaptureIsReportedAndAnEmptyTraceOpens) {
    std::filesystem::remove(dir.File("Trigger2.tra"));
    Choose("File/New/Capture/State");
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"Error opening file " + dir.File("Trigger2.tra") + "."});
    ASSERT_EQ(Windows().size(), 1);
    EXPECT_TRUE(Trace().IsRealTime());
    EXPECT_EQ(Active().windowTitle(), "Trace - New");
    EXPECT_FALSE(Entry("File/New/Capture/State").isEnabled());
}

TEST_F(InDemoMode, OneRealTimeTraceHasAFrameOfEachKind) {
    std::filesystem::remove(dir.File("Trigger1.tra"));
    std::filesystem::remove(dir.File("Trigger2.tra"));
    Choose("File/New/Capture/Waveform");
    Choose("File/New/Capture/State");
    ASSERT_EQ(Windows().size(), 2);
    EXPECT_EQ(program->App().Templates().front()->Documents().size(), 1U);
    EXPECT_FALSE(Entry("File/New/Capture/State").isEnabled());
    EXPECT_FALSE(Entry("File/New/Capture/Waveform").isEnabled());
}

TEST_F(InDemoMode, ACloneBesideARealTimeTraceIsRefused) {
    std::filesystem::remove(dir.File("Trigger2.tra"));
    Choose("File/New/Capture/State");
    Choose("File/New/Capture/Waveform"); // a stored one
    prompts.Forget();
    Active().Bar().GoButton().click();
    Active().SwitchDisplay(true);
    Active().Bar().GoButton().click();
    const std::string refused = "A real-time view already exists. Close the real-time view before "
                                "creating a new one.";
    EXPECT_EQ(prompts.Texts(), (std::vector<std::string>{refused, refused}));
    EXPECT_EQ(Windows().size(), 3);      // one is the stored capture's Power Zoom window
    Choose("File/New/Capture/Waveform"); // a clone is no longer requested
    EXPECT_EQ(prompts.Texts().size(), 2U);
    EXPECT_EQ(Windows().size(), 5);
}

TEST_F(InDemoMode, OpeningAFileShowsItsOwnKind) {
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    EXPECT_TRUE(Active().IsStateFrame());
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger1.tra")), nullptr);
    EXPECT_FALSE(Active().IsStateFrame());
    EXPECT_EQ(Active().TraceView().Trace().GetPathName(), dir.File("Trigger1.tra"));
}

TEST_F(InDemoMode, AnOpenFileIsRaised) {
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    program->App().OpenDocumentFile(dir.File("Trigger1.tra"));
    const auto windows = Windows().size();
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    EXPECT_EQ(Windows().size(), windows);
    EXPECT_TRUE(Active().windowTitle().startsWith("Trace - Trigger2"));
}

TEST_F(InDemoMode, AFileThatCannotBeReadDoesNotAffectTheOthers) {
    program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    const auto rows = Trace().RowCount(false);
    EXPECT_EQ(program->App().OpenDocumentFile(dir.Write("bad.tra", "no capture")), nullptr);
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"Error: File type of 'Trace Data File' not found."});
    EXPECT_EQ(Windows().size(), 1);
    EXPECT_EQ(Trace().RowCount(false), rows);
}

TEST_F(InDemoMode, FileOfAnotherKindIsRefusedInOneMessage) {
    EXPECT_EQ(program->App().OpenDocumentFile(dir.Write("a.txt", "x")), nullptr);
    EXPECT_EQ(prompts.Boxes().size(), 1U);
}

TEST_F(InDemoMode, TheLastFourFilesAreInTheFileMenu) {
    for (const char* name : {"a.tra", "b.tra", "c.tra", "d.tra", "e.tra"}) {
        std::filesystem::copy(dir.File("Trigger2.tra"), dir.File(name));
        program->App().OpenDocumentFile(dir.File(name));
    }
    const QStringList files = program->App().RecentFiles();
    ASSERT_EQ(files.size(), 4);
    EXPECT_TRUE(files[0].endsWith("e.tra"));
    EXPECT_NE(FindEntry(*Frame().menuBar(), "File/1 e.tra"), nullptr);
    EXPECT_NE(FindEntry(*Frame().menuBar(), "File/4 b.tra"), nullptr);
}

TEST_F(InDemoMode, RecentFilesWithTheSameNameShowTheirFolders) {
    for (const char* name : {"monday", "tuesday"}) {
        std::filesystem::create_directory(dir.File(name));
        std::filesystem::copy(dir.File("Trigger2.tra"), dir.File(name + std::string("/run.tra")));
        program->App().OpenDocumentFile(dir.File(name + std::string("/run.tra")));
    }
    std::filesystem::copy(dir.File("Trigger2.tra"), dir.File("a&b.tra"));
    program->App().OpenDocumentFile(dir.File("a&b.tra"));
    QStringList texts;
    Entry("File/Exit"); // the menu has been opened
    for (const QAction* action : Frame().menuBar()->actions().first()->menu()->actions()) {
        texts << action->text();
    }
    const QString folder = QString::fromStdString(dir.Path());
    EXPECT_TRUE(texts.contains("&1 a&&b.tra"));
    EXPECT_TRUE(texts.contains("&2 run.tra (" + folder + "/tuesday)"));
    EXPECT_TRUE(texts.contains("&3 run.tra (" + folder + "/monday)"));
}

TEST_F(InDemoMode, ClosingTheLastFrameClosesTheDocument) {
    Choose("File/New/Capture/State");
    AnswerDialog<QDialog>([&] { Active().Bar().DisplayButton().click(); },
                          [](QDialog& dialog) {
                              dialog.findChildren<QRadioButton*>()[1]->click();
                              dialog.accept();
                          });
    EXPECT_EQ(Windows().size(), 2);
    Choose("File/Close");
    EXPECT_EQ(program->App().Templates().front()->Documents().size(), 1U);
    Choose("File/Close");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(program->App().Templates().front()->Documents().empty());
    EXPECT_FALSE(Entry("File/Close").isEnabled());
}

TEST_F(InDemoMode, PowerZoomFrameHasItsSizeAndName) {
    Choose("File/New/Capture/Waveform");
    Active().Bar().ZoomButton().click();
    ASSERT_EQ(Windows().size(), 3) << "one was opened with the file";
    const auto& zoom = dynamic_cast<CChildFrame&>(*Windows().last());
    EXPECT_TRUE(zoom.IsZoomFrame());
    EXPECT_TRUE(zoom.windowTitle().startsWith("Power Zoom - Trigger1"));
    EXPECT_EQ(zoom.size(), QSize(560, 360));
    EXPECT_EQ(zoom.TraceView().CenterSample(), 255);
}

TEST_F(InDemoMode, SwitchedDisplayKeepsTheCentreSample) {
    Choose("File/New/Capture/State");
    Active().TraceView().ShowSample(1000);
    const auto center = Active().TraceView().CenterSample();
    Active().SwitchDisplay(false);
    EXPECT_FALSE(Active().IsStateFrame());
    EXPECT_EQ(Active().TraceView().CenterSample(), center);
    EXPECT_EQ(Trace().Views().size(), 1U);
    const GaugeState& gauge = Active().GetGauge().State();
    EXPECT_EQ(gauge.windowFirst, Active().TraceView().TopSample());
    EXPECT_EQ(gauge.windowLast, Active().TraceView().findChild<CWaveformWnd*>()->LastSample());
}

TEST_F(InDemoMode, ZoomChangesTheScaleOfWaveforms) {
    Choose("File/New/Capture/State");
    EXPECT_FALSE(Entry("View/Zoom In").isEnabled());
    EXPECT_FALSE(Entry("View/Zoom Out").isEnabled());
    Choose("File/New/Capture/Waveform");
    auto& waves = *Active().TraceView().findChild<CWaveformWnd*>();
    Choose("View/Zoom In");
    EXPECT_EQ(waves.Zoom(), 25);
    Choose("View/Zoom Out");
    Choose("View/Zoom Out");
    EXPECT_EQ(waves.Zoom(), 15);
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Equal}) { // "+" needs Shift on many keyboards
        const int before = waves.Zoom();
        QTest::keyClick(&Frame(), key, Qt::ControlModifier);
        EXPECT_EQ(waves.Zoom(), before + 5) << key;
    }
    waves.SetZoom(400);
    EXPECT_FALSE(Entry("View/Zoom In").isEnabled());
    EXPECT_TRUE(Entry("View/Zoom Out").isEnabled());
    EXPECT_FALSE(Entry("View/Zoom to Fit").isEnabled());
}

TEST_F(InDemoMode, CommandsFollowEveryChange) {
    Choose("File/New/Capture/State");
    const auto* go = Frame().findChild<QToolBar*>()->actions().value(0);
    for (const QAction* action : Frame().findChild<QToolBar*>()->actions()) {
        go = action->text() == "Marker &1" ? action : go;
    }
    ASSERT_EQ(go->text(), "Marker &1");
    EXPECT_FALSE(go->isEnabled());
    auto& listing = *Active().TraceView().findChild<CStateWnd*>();
    QTest::mouseClick(&listing, Qt::LeftButton, {}, {100, 60});
    QEventLoop loop;
    QTimer::singleShot(10, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_TRUE(go->isEnabled());
}

TEST_F(InDemoMode, GoToMovesTheView) {
    Choose("File/New/Capture/State");
    Choose("Search/Go to/End");
    EXPECT_GT(Active().TraceView().TopSample(), 4000);
    Choose("Search/Go to/Start");
    EXPECT_EQ(Active().TraceView().TopSample(), 0);
    Choose("Search/Go to/Trigger");
    EXPECT_EQ(Active().TraceView().CenterSample(), Trace().Marker(0, false));
    EXPECT_FALSE(Entry("Search/Go to/Marker 1").isEnabled());
    Trace().SetMarker(1, 77);
    Choose("Search/Go to/Marker 1");
    EXPECT_EQ(Active().TraceView().CenterSample(), 77);
}

TEST_F(InDemoMode, BoardInfoShowsTheModelOnly) {
    ChooseDialog<QDialog>("Utilities/Board Info", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), " Board Info");
        EXPECT_EQ(dialog.findChild<QLabel*>("Model")->text(), "Demo Mode");
        for (const char* row :
             {"Buffer Size", "Firmware Version", "Hardware Version", "Serial Number"}) {
            EXPECT_EQ(dialog.findChild<QLabel*>(row)->text(), "") << row;
        }
    });
}

TEST_F(InDemoMode, ToolBarAndStatusBarCanBeHidden) {
    Choose("View/Toolbar");
    EXPECT_FALSE(Frame().findChild<QToolBar*>("Toolbar")->isVisible());
    Choose("View/Status Bar");
    EXPECT_FALSE(Frame().statusBar()->isVisible());
    Choose("View/Toolbar");
    EXPECT_TRUE(Frame().findChild<QToolBar*>("Toolbar")->isVisible());
}

TEST_F(InDemoMode, HelpOpensTheManual) {
    Choose("Help/Contents");
    const auto* help = Frame().findChild<HelpWindow*>();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->findChild<QTextBrowser*>()->toPlainText().startsWith("Busquill! manual"));
}

TEST_F(InDemoMode, AHelpTopicWithoutAPageOpensTheContents) {
    const auto& topics = program->App().HelpTopics();
    EXPECT_EQ(HelpPage(topics, HelpTopic::State), "listing.md");
    EXPECT_EQ(HelpPage(topics, HelpTopic::Waveform), "waveforms.md");
    EXPECT_EQ(HelpPage(topics, HelpTopic::Contents), "index.md");
    EXPECT_EQ(HelpPage(topics, 999), "index.md");
}

TEST_F(InDemoMode, TemplatesAreInTheirOrder) {
    std::vector<std::string> names;
    for (const auto& each : program->App().Templates()) {
        names.push_back(each->Strings().documentName);
        EXPECT_EQ(program->App().TemplateNamed(names.back()), each.get());
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"Trace", "Performance", "Master", "Config", "Compliance",
                                        "AnDet", "Target", "Stimulus", "Backplane Test"}));
    EXPECT_EQ(program->App().TemplateNamed("Other"), nullptr);
}

TEST_F(InDemoMode, TheWindowMenuShowsAnAmpersandInAName) {
    std::filesystem::copy(dir.File("Trigger2.tra"), dir.File("a&b.tra"));
    program->App().OpenDocumentFile(dir.File("a&b.tra"));
    Entry("Window/Cascade"); // the menu has been opened
    QStringList texts;
    for (const QAction* menu : Frame().menuBar()->actions()) {
        if (menu->text() == "&Window") {
            for (const QAction* action : menu->menu()->actions()) {
                texts << action->text();
            }
        }
    }
    ASSERT_TRUE(Active().windowTitle().startsWith("Trace - a&b ("));
    EXPECT_TRUE(texts.contains("&1 " + Active().windowTitle().replace('&', "&&")))
        << texts.join('\n').toStdString();
}

TEST_F(InDemoMode, WindowMenuListsAndActivatesWindows) {
    Choose("File/New/Capture/State");
    Choose("File/New/Capture/Waveform");
    Choose("Window/Cascade");
    Choose("Window/Tile");
    const QString first = "Window/1 " + Windows()[0]->windowTitle();
    Choose(first);
    EXPECT_EQ(Frame().Area().activeSubWindow(), Windows()[0]);
}

} // namespace
} // namespace busquill::test
