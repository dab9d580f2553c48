// The sheet of colours and names over a live capture, against the simulated board.

#include "support/live_frame_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "ui/controls/color_button.h"
#include "ui/display/display_properties.h"

#include <QColorDialog>
#include <QTabBar>

namespace busquill::test {
namespace {

class LiveDisplayProperties : public LiveFrameFixture {
protected:
    void Rename(const QString& name) {
        ChooseDialog<CDisplayProperties>("Edit/Display/Name", [&](CDisplayProperties& sheet) {
            auto* field = sheet.findChild<QLineEdit*>("Name");
            ASSERT_TRUE(field->isEnabled());
            field->clear();
            QTest::keyClicks(field, name);
            QTest::keyClick(field, Qt::Key_Return);
        });
    }
};

TEST_F(LiveDisplayProperties, ANameIsSavedWithTheCapture) {
    Connect({"--buffer", "1"});
    OpenFrame("State");
    Rename("Slot 7");
    EXPECT_EQ(frame->windowTitle(), "Trace - New (Slot 7)");
    Go();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(frame->windowTitle(), "Trace - New (Slot 7)") << "a run keeps the name";
    SaveTraceUnder(dir.File("named.tra"), [&] { Choose("File/Save As..."); });
    const auto* stored =
        dynamic_cast<CTesselDoc*>(program->App().OpenDocumentFile(dir.File("named.tra")));
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->comment, "Slot 7");
    ChooseDialog<CDisplayProperties>("Edit/Display/Name", [&](CDisplayProperties& sheet) {
        EXPECT_FALSE(sheet.findChild<QLineEdit*>("Name")->isEnabled());
    });
}

TEST_F(LiveDisplayProperties, ColorsChangeWhileSamplesArrive) {
    Connect({"--buffer", "64"});
    OpenFrame("State");
    Go();
    ASSERT_TRUE(RunUntil([&] { return Trace().IsUploading() || !Running(); }));
    ChooseDialog<CDisplayProperties>("Edit/Display/Colors", [&](CDisplayProperties& sheet) {
        auto* button = sheet.findChild<ColorButton*>("State Background");
        AnswerDialog<QColorDialog>([&] { QTest::mouseClick(button, Qt::LeftButton); },
                                   [&](QColorDialog& dialog) {
                                       dialog.setCurrentColor(QColor(1, 2, 3));
                                       Press(dialog, "OK");
                                   });
        Press(sheet, "OK");
    });
    ASSERT_TRUE(Complete());
    EXPECT_TRUE(Trace().IsRealTime());
    EXPECT_GT(Trace().SampleCount(false), 0);
    // The corner of the SAMPLE title's row, left of its edge.
    EXPECT_EQ(frame->TraceView().grab().toImage().pixelColor(0, 19), QColor(1, 2, 3));
}

} // namespace
} // namespace busquill::test
