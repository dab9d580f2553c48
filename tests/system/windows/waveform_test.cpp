// Waveforms of a live capture through the program's windows, against the simulated board.

#include "support/live_frame_fixture_qt.h"
#include "ui/display/wave_window.h"

#include <QRadioButton>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class LiveWaveforms : public LiveFrameFixture {
protected:
    void OpenWaveform() {
        OpenFrame("Waveform");
        Take(*frame);
    }
    void Take(QMdiSubWindow& window) {
        frame = &dynamic_cast<CChildFrame&>(window);
        waves = frame->TraceView().findChild<CWaveformWnd*>();
    }
    void Key(Qt::Key key) { QTest::keyClick(&frame->TraceView(), key); }
    void ClickSample(std::int64_t sample, Qt::MouseButton button) {
        const WaveScale scale{waves->Zoom(), waves->Place().subPixel,
                              waves->NameWidth() + waves->ValueWidth() + 1, waves->width()};
        const std::int64_t row = Trace().SampleToRow(sample, frame->IsZoomFrame());
        const auto x = static_cast<int>(scale.MarkOf(row - waves->Place().row));
        QTest::mouseClick(waves, button, {}, {x, 120});
    }
    /// Whether anything is drawn in the bands.
    bool WavesAreEmpty() {
        const QImage image = waves->grab().toImage();
        const int left = waves->NameWidth() + waves->ValueWidth() + 1;
        for (int y = 18; y < image.height() - 1; ++y) {
            for (int x = left; x < image.width() - 1; ++x) {
                if (image.pixelColor(x, y) != QColor(0xC0, 0xC0, 0xC0)) {
                    return false;
                }
            }
        }
        return true;
    }

    CWaveformWnd* waves = nullptr;
};

TEST_F(LiveWaveforms, FromGoToPowerZoomAndTheListing) {
    Connect({"--buffer", "4", "--rate", "20000"});
    OpenWaveform();
    EXPECT_EQ(frame->windowTitle(), "Trace - New");
    ChooseSetup("Read after 100 writes");
    Go();
    ASSERT_TRUE(Complete());
    const std::int64_t trigger = Trace().Marker(0, false);
    EXPECT_EQ(frame->TraceView().CenterSample(), trigger);
    EXPECT_FALSE(WavesAreEmpty());

    // By menu, keys and wheel.
    const std::int64_t first = frame->TraceView().TopSample();
    Choose("View/Zoom In");
    EXPECT_EQ(waves->Zoom(), 25);
    EXPECT_EQ(frame->TraceView().TopSample(), first);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(frame->TraceView().TopSample(), first + waves->VisibleSampleCount());
    Key(Qt::Key_PageUp);

    // Markers, their times and the value at marker 1.
    const QImage before = waves->grab().toImage();
    ClickSample(first + 3, Qt::LeftButton);
    ClickSample(first + 9, Qt::RightButton);
    EXPECT_EQ(Trace().Marker(1, false), first + 3);
    EXPECT_EQ(Trace().Marker(2, false), first + 9);
    EXPECT_NE(waves->grab().toImage(), before);
    EXPECT_THAT(Text("time-markers").toStdString(), HasSubstr("ns"));
    Choose("Search/Go to/Marker 2");
    EXPECT_EQ(frame->TraceView().CenterSample(), first + 9);

    // The display, with its centre kept.
    Choose("Search/Go to/Trigger");
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->findChildren<QRadioButton*>()[0]->click();
        dialog->accept();
    });
    QTest::mouseClick(&frame->Bar().DisplayButton(), Qt::LeftButton);
    EXPECT_TRUE(frame->IsStateFrame());
    EXPECT_EQ(frame->TraceView().CenterSample(), trigger);
    frame->SwitchDisplay(false);
    EXPECT_EQ(frame->TraceView().CenterSample(), trigger);

    // Power Zoom, whose samples were read before all others.
    QTest::mouseClick(&frame->Bar().ZoomButton(), Qt::LeftButton);
    Take(*Windows().last());
    ASSERT_TRUE(frame->IsZoomFrame());
    EXPECT_EQ(frame->TraceView().CenterSample(), 255);
    EXPECT_FALSE(WavesAreEmpty());
    ClickSample(250, Qt::LeftButton);
    ClickSample(252, Qt::RightButton);
    EXPECT_EQ(Trace().Marker(1, true), 250);
    EXPECT_EQ(Trace().Marker(2, true), 252);
    EXPECT_EQ(Trace().Marker(1, false), first + 3) << "the other markers are unchanged";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveWaveforms, AreEmptyUntilTheirSamplesHaveArrived) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenWaveform();
    StopALongRun();
    const std::int64_t far = Trace().SampleCount(false) - 5000;
    ASSERT_FALSE(Trace().IsValidSample(far, false));
    frame->TraceView().ShowSample(far);
    EXPECT_TRUE(WavesAreEmpty());
    ASSERT_TRUE(RunUntil([&] { return !WavesAreEmpty(); }));
    EXPECT_TRUE(Trace().IsUploading()) << "long before their turn";
    EXPECT_EQ(frame->TraceView().CenterSample(), far);
}

} // namespace
} // namespace busquill::test
