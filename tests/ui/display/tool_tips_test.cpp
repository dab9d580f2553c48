#include "support/trace_view_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/wave_window.h"

#include <QHelpEvent>
#include <QToolTip>
#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace busquill::test {
namespace {

/// What the tool tip says over listing and waveforms.
class ToolTips : public TraceViewFixture {
protected:
    void Open(bool isState, bool isZoom = false) {
        view = MakeView(isState, isZoom);
        window = view->findChild<TraceDisplay*>();
    }
    ~ToolTips() override { QToolTip::hideText(); }

    /// Rests the pointer at a place; empty if there is no tip.
    std::string TipAt(QPoint place) {
        for (QWidget* shown : QApplication::topLevelWidgets()) {
            if (shown->inherits("QTipLabel")) {
                shown->hide(); // at once, without fading
            }
        }
        QHelpEvent rest(QEvent::ToolTip, place, window->mapToGlobal(place));
        QApplication::sendEvent(window, &rest);
        return Tip();
    }
    static std::string Tip() { return QToolTip::isVisible() ? QToolTip::text().toStdString() : ""; }
    static CSignal& Named(CSignalList& list, const std::string& name) {
        for (const auto& signal : list.All()) {
            if (signal->RowName() == name && (!signal->grouped || signal->IsGroupStart())) {
                return *signal;
            }
        }
        throw std::runtime_error("no " + name);
    }

    // In a listing:

    [[nodiscard]] int ColumnOf(const std::string& name) const {
        int x = dynamic_cast<CStateWnd*>(window)->SampleColumnWidth() + 1;
        for (const auto& signal : document->stateList.All()) {
            if (signal->RowName() == name && signal->VisibleWidth() > 0) {
                return x + signal->VisibleWidth() / 2;
            }
            x += signal->VisibleWidth();
        }
        throw std::runtime_error("no column " + name);
    }
    static int RowY(int n) { return 19 + 15 * n + 7; }

    // In waveforms:

    [[nodiscard]] CWaveformWnd& Waves() const { return dynamic_cast<CWaveformWnd&>(*window); }
    /// A pixel of the waves, and the middle of the band of a signal.
    [[nodiscard]] int WaveX(int d) const {
        return Waves().NameWidth() + Waves().ValueWidth() + 1 + d;
    }
    [[nodiscard]] int BandY(const std::string& name, bool isZoom = false) const {
        int y = 18;
        for (const auto& signal : (isZoom ? document->zoomList : document->waveformList).All()) {
            if (signal->VisibleHeight() > 0) {
                if (signal->RowName() == name) {
                    return y + signal->VisibleHeight() / 2;
                }
                y += signal->VisibleHeight() + 1;
            }
        }
        throw std::runtime_error("no band " + name);
    }

    std::unique_ptr<CTraceView> view;
    TraceDisplay* window = nullptr;
};

TEST_F(ToolTips, InAListingTellValueNumberAndTime) {
    Load(-500, 499);
    Open(true);
    view->ScrollToSample(490);
    EXPECT_EQ(TipAt({ColumnOf("DATA32"), RowY(3)}),
              "DATA32: 000001ED\nSample -7\nTime since the trigger: -210ns");
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(12)}),
              "FRAME: 0\nSample 2\nTime since the trigger: 60ns");
    EXPECT_EQ(TipAt({5, RowY(3)}), "Sample -7\nTime since the trigger: -210ns");
    EXPECT_EQ(TipAt({ColumnOf("ADDRESS32"), RowY(3)}), "Sample -7\nTime since the trigger: -210ns")
        << "a data sample has no address";
}

TEST_F(ToolTips, InWaveformsTellTheSampleThatIsDrawnAtThePointer) {
    Load(-500, 499);
    Open(false);
    view->ScrollToSample(490);
    // A click at 59 would mark the sample that begins next.
    for (const int x : {40, 59}) {
        EXPECT_EQ(TipAt({WaveX(x), BandY("AD[63:0]")}),
                  "AD[63:0]: 00000000 000001EC\nSample -8\nTime since the trigger: -240ns");
    }
    EXPECT_EQ(TipAt({WaveX(60), BandY("TIME")}),
              "TIME: 30ns\nSample -7\nTime since the trigger: -210ns");
    EXPECT_EQ(TipAt({WaveX(60), BandY("DELTA")}), "Sample -7\nTime since the trigger: -210ns");
    EXPECT_EQ(TipAt({WaveX(60), 5}), "Sample -7\nTime since the trigger: -210ns")
        << "the header has no signal";
}

TEST_F(ToolTips, OfSeveralSamplesInAPixelTellAllOfThem) {
    Load(-500, 499);
    Open(false);
    Waves().SetZoom(-3);
    view->ScrollToSample(0);
    EXPECT_EQ(TipAt({WaveX(10), BandY("AD[63:0]")}),
              "AD[63:0]: several values\nSamples -460 to -457\n"
              "Time since the trigger: -13.80us to -13.71us");
    EXPECT_EQ(TipAt({WaveX(10), BandY("FRAME")}), "FRAME: 0\nSamples -460 to -457\n"
                                                  "Time since the trigger: -13.80us to -13.71us");
}

TEST_F(ToolTips, EndWithTheCapture) {
    Load(0, 9);
    Open(true);
    EXPECT_THAT(TipAt({ColumnOf("FRAME"), RowY(9)}), testing::HasSubstr("Sample 9\n"));
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(10)}), "");
    EXPECT_EQ(TipAt({5, RowY(10)}), "");
    Open(false);
    EXPECT_THAT(TipAt({WaveX(199), BandY("FRAME")}), testing::HasSubstr("Sample 9\n"));
    EXPECT_EQ(TipAt({WaveX(200), BandY("FRAME")}), "");
    Waves().SetZoom(-3);
    EXPECT_THAT(TipAt({WaveX(2), BandY("FRAME")}), testing::HasSubstr("Samples 8 to 9\n"));
    EXPECT_EQ(TipAt({WaveX(3), BandY("FRAME")}), "");
}

TEST_F(ToolTips, OfAnEmptyCaptureSayNothing) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    Open(true);
    EXPECT_EQ(TipAt({200, RowY(2)}), "");
    Open(false);
    EXPECT_EQ(TipAt({WaveX(40), 100}), "");
}

TEST_F(ToolTips, SayThatASampleHasNotArrived) {
    Load(0, 1999);
    document->RebuildMaps(0, 1999);
    const std::vector<SampleRecord> block(32);
    document->AddBlock(0, block, false);
    document->AddBlock(64, block, false);
    document->FlushBlockUpdates();
    Open(true);
    view->ScrollToSample(28);
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(4)}), "Sample 32 has not arrived from the board");
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(3)}),
              "FRAME: 0\nSample 31\nTime since the trigger: 0ns");
    view->ScrollToSample(64);
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(0)}), "FRAME: 0\nSample 64")
        << "the time would leave out the samples that are missing";
    Open(false);
    Waves().SetZoom(-3);
    view->ScrollToSample(0);
    EXPECT_EQ(TipAt({WaveX(8), BandY("FRAME")}),
              "Samples 32 to 35 have not all arrived from the board");
}

TEST_F(ToolTips, LeaveTheTimeOutWhereTheFileHasGaps) {
    Load(0, 99, "", [](int n) { return n < 10 || n > 20; });
    Open(true);
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(9)}),
              "FRAME: 0\nSample 9\nTime since the trigger: 270ns");
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(10)}), "FRAME: 0\nSample 21");
    Open(false);
    Waves().SetZoom(-3);
    view->ScrollToSample(0);
    EXPECT_EQ(TipAt({WaveX(2), BandY("FRAME")}), "FRAME: 0\nSamples 8 to 22")
        << "the first one has a time, the last one has none";
}

TEST_F(ToolTips, OfPowerZoomSamplesThatTheBoardHasNotTakenSaySo) {
    Load(0, 99);
    Open(false, true);
    EXPECT_EQ(TipAt({WaveX(40), 5}), "Sample " + std::to_string(view->TopSample() + 2 - 255) +
                                         " has not arrived from the board");
}

TEST_F(ToolTips, TellTheWholeNameOfACutHeading) {
    Load(0, 99);
    document->stateList[0].width = 300;
    Open(true);
    const std::string whole = "AD[63:0]";
    const QPoint heading(ColumnOf(whole), 9);
    EXPECT_EQ(TipAt(heading), "") << "it shows whole";
    Named(document->stateList, whole).width = 20;
    window->Render();
    EXPECT_EQ(TipAt({ColumnOf(whole), 9}), whole);
    Open(false);
    Named(document->waveformList, "FRAME").name = "a name that is longer than the column";
    EXPECT_EQ(TipAt({20, BandY("a name that is longer than the column")}),
              "a name that is longer than the column");
    EXPECT_EQ(TipAt({20, BandY("IRDY")}), "");
    EXPECT_EQ(TipAt({20, 5}), "");
}

TEST_F(ToolTips, ANameThatLooksLikeMarkupIsShownAsItIs) {
    Load(0, 99);
    const std::string name = "<b>a name that is longer than the column</b>";
    Named(document->waveformList, "FRAME").name = name;
    Open(false);
    EXPECT_THAT(TipAt({20, BandY(name)}), testing::HasSubstr("&lt;b&gt;a name"));
}

TEST_F(ToolTips, TellTheValueAtMarker1) {
    Load(0, 99);
    Open(false);
    const QPoint value(Waves().NameWidth() + 10, BandY("AD[63:0]"));
    EXPECT_EQ(TipAt(value), "");
    document->SetMarker(1, 7);
    EXPECT_EQ(TipAt(value), "AD[63:0]: 00000000 00000007\nSample 7\nTime since the trigger: 210ns");
}

TEST_F(ToolTips, GoWhenWhatTheyTellHasMoved) {
    Load(0, 999);
    Open(true);
    ASSERT_NE(TipAt({ColumnOf("FRAME"), RowY(3)}), "");
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    QTest::qWait(400); // a tip fades
    EXPECT_EQ(Tip(), "");
}

TEST_F(ToolTips, OfAFilteredListingTellTheRowsThatShow) {
    Load(0, 99);
    Open(true);
    Filter(*view, [](std::uint32_t sample) { return sample % 10 == 0; });
    EXPECT_THAT(TipAt({ColumnOf("FRAME"), RowY(3)}), testing::HasSubstr("Sample 30"));
    EXPECT_EQ(TipAt({ColumnOf("FRAME"), RowY(10)}), "");
}

} // namespace
} // namespace busquill::test
