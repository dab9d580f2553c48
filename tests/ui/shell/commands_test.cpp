#include "support/program_fixture_qt.h"
#include "ui/display/wave_geometry.h"
#include "ui/display/wave_window.h"
#include "ui/trace/child_frame.h"

namespace busquill::test {
namespace {

/// Which menu entries are enabled in which state.
class Commands : public ProgramFixture {
protected:
    Commands() { StartDemo(); }
    CTesselDoc& Trace() {
        return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow()).Trace();
    }
    /// An empty trace that is connected to the board, without stored captures.
    void OpenLive(const QString& kind) {
        std::filesystem::remove(dir.File("Trigger1.tra"));
        std::filesystem::remove(dir.File("Trigger2.tra"));
        Choose("File/New/Capture/" + kind);
        ASSERT_TRUE(Trace().IsRealTime());
    }
    void OpenFile(const char* name = "Trigger2.tra") {
        ASSERT_NE(program->App().OpenDocumentFile(dir.File(name)), nullptr);
    }
    bool Enabled(const QString& path) { return Entry(path).isEnabled(); }
    /// All entries of a menu and its submenus.
    static QList<QAction*> Entries(const QMenu& menu) {
        QList<QAction*> entries;
        for (QAction* action : menu.actions()) {
            entries << (action->menu() != nullptr ? Entries(*action->menu()) : QList{action});
        }
        return entries;
    }
};

TEST_F(Commands, WithoutTheirDocumentNothingOpens) {
    const QMenu& menu = *Entry("File/New").menu();
    EXPECT_TRUE(Enabled("File/New/Capture/State"));
    Frame().SetApplication(nullptr);
    EXPECT_EQ(Entries(menu).size(), 14);
    for (const QAction* action : Entries(menu)) {
        EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
    }
}

TEST_F(Commands, OneRealTimeViewOfEachKind) {
    OpenLive("State");
    EXPECT_FALSE(Enabled("File/New/Capture/State"));
    EXPECT_TRUE(Enabled("File/New/Capture/Waveform"));
    Choose("File/Close");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    OpenLive("Waveform");
    EXPECT_TRUE(Enabled("File/New/Capture/State"));
    EXPECT_FALSE(Enabled("File/New/Capture/Waveform"));
}

constexpr const char* targets[] = {"Trigger", "Marker 1", "Marker 2", "Start", "End"};

TEST_F(Commands, GoToNeedsATraceAndItsTarget) {
    const auto expect = [&](std::array<bool, 5> enabled) {
        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_EQ(Enabled(QString("Search/Go to/") + targets[i]), enabled[i]) << targets[i];
        }
    };
    expect({});
    OpenFile();
    expect({true, false, false, true, true});
    Trace().SetMarker(2, 5);
    expect({true, false, true, true, true});
    Trace().SetMarker(1, 5);
    Trace().SetMarker(2, -1);
    expect({true, true, false, true, true});
    Trace().SetMarker(0, -1);
    expect({false, true, false, true, true});
    OpenLive("State"); // no samples
    expect({});
}

TEST_F(Commands, SearchesNeedATraceThatIsNotRunning) {
    const auto expect = [&](bool find, bool others) {
        EXPECT_EQ(Enabled("Search/Find Pattern"), find);
        for (const char* path : {"Search/Find Next", "Search/Find Previous",
                                 "Search/Go to/Sample #", "Search/Filter"}) {
            EXPECT_EQ(Enabled(path), others) << path;
        }
    };
    expect(false, false);
    OpenFile();
    expect(true, true);
    OpenLive("State");
    expect(true, true);
    Trace().OnCaptureStarted();
    expect(true, false);
    Trace().OnCaptureStopped();
    expect(true, true);
}

TEST_F(Commands, PowerZoomSamplesAreSearchedButNotFiltered) {
    OpenFile("Trigger1.tra");
    EXPECT_TRUE(Enabled("Search/Filter"));
    Frame().Area().setActiveSubWindow(Windows().last());
    EXPECT_TRUE(Enabled("Search/Find Next"));
    EXPECT_FALSE(Enabled("Search/Filter"));
}

TEST_F(Commands, ZoomIsEnabledUpToItsLimits) {
    const auto expect = [&](bool in, bool out) {
        EXPECT_EQ(Enabled("View/Zoom In"), in);
        EXPECT_EQ(Enabled("View/Zoom Out"), out);
    };
    expect(false, false);
    OpenFile("Trigger1.tra");
    expect(true, true);
    auto& waves = *Windows().first()->findChild<CWaveformWnd*>();
    waves.SetZoom(largestZoom);
    expect(false, true);
    waves.SetZoom(smallestZoom);
    expect(true, false);
    OpenFile("Trigger2.tra"); // a listing
    expect(false, false);
}

TEST_F(Commands, AvailableUtilitiesAreAlwaysEnabled) {
    for (const char* path : {"Utilities/Bus Configuration", "Utilities/Board Info", "File/Open...",
                             "Help/Contents", "Help/About Busquill!"}) {
        EXPECT_TRUE(Enabled(path)) << path;
    }
}

TEST_F(Commands, AnyDocumentCanBeSavedUnderAnotherName) {
    EXPECT_FALSE(Enabled("File/Save") || Enabled("File/Save As..."));
    OpenFile();
    EXPECT_FALSE(Enabled("File/Save"));
    EXPECT_TRUE(Enabled("File/Save As..."));
    OpenLive("State");
    EXPECT_TRUE(Enabled("File/Save"));
    EXPECT_TRUE(Enabled("File/Save As..."));
}

TEST_F(Commands, WindowsAreArrangedAndClosedIfThereAreAny) {
    const auto expect = [&](bool enabled) {
        for (const char* path : {"File/Close", "Window/Cascade", "Window/Tile"}) {
            EXPECT_EQ(Enabled(path), enabled) << path;
        }
    };
    expect(false);
    OpenFile();
    expect(true);
}

TEST_F(Commands, WithoutAHandlerStayDisabled) {
    OpenFile("Trigger1.tra");
    for (const char* path : {"View/Zoom to Fit", "Search/Compare", "Search/Zoom Increment"}) {
        EXPECT_FALSE(Enabled(path)) << path;
    }
}

} // namespace
} // namespace busquill::test
