#include "capture/trace_document.h"
#include "support/capture_fixture.h"
#include "support/modal_qt.h"
#include "support/temp_dir.h"
#include "ui/capture/print_trace_dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PrintTrace : public CaptureFixture {
protected:
    /// A file with samples from one number to another.
    void Load(int first, int last) {
        OpenBoard("PCIWren");
        context.newDocRealTime = false;
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\"," +
            std::to_string(first) + "," + std::to_string(last) + "\n";
        for (int i = first; i <= last; ++i) {
            text += std::to_string(i) + ",0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
        }
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnOpenDocument(dir.Write("a.tra", text)));
    }
    void Open(bool isState = true, bool isZoom = false) {
        dialog = std::make_unique<CPrintTraceDlg>(nullptr, *document, isState, isZoom, settings,
                                                  prompts, mainThread);
        dialog->show();
    }
    void Enter(const QString& start, const QString& end) {
        Field("Start").setText(start);
        Field("End").setText(end);
    }
    QLineEdit& Field(const char* name) { return *dialog->findChild<QLineEdit*>(name); }
    QCheckBox& Box() { return *dialog->findChild<QCheckBox*>(); }
    QString Percent() { return dialog->findChild<QLabel*>("Percent")->text(); }
    bool Ends() {
        return QTest::qWaitFor([&] { return !dialog->isVisible(); }, 10000);
    }
    std::pair<std::int64_t, std::int64_t> Chosen() { return {dialog->First(), dialog->Last()}; }

    MemorySettings settings;
    const TempDir dir;
    std::unique_ptr<CPrintTraceDlg> dialog;
};

using Range = std::pair<std::int64_t, std::int64_t>;

TEST_F(PrintTrace, OpensWithTheWholeRange) {
    Capture(100, 120);
    Open();
    EXPECT_EQ(dialog->windowTitle(), "Print Trace");
    EXPECT_EQ(Field("Start").text(), "-100");
    EXPECT_EQ(Field("End").text(), "120");
    EXPECT_EQ(Percent(), "0%");
    Enter("7", "8");
    Press(*dialog, "All");
    EXPECT_EQ(Field("Start").text(), "-100");
    EXPECT_EQ(Field("End").text(), "120");
}

TEST_F(PrintTrace, OneTickWalksThroughACaptureThatIsUploaded) {
    Capture(100, 120);
    Open();
    Enter("-5", "10");
    Press(*dialog, "OK");
    for (const char* control : {"OK", "All"}) {
        EXPECT_FALSE(ButtonOf(*dialog, control).isEnabled());
    }
    EXPECT_FALSE(Field("Start").isEnabled());
    EXPECT_FALSE(Field("End").isEnabled());
    EXPECT_TRUE(ButtonOf(*dialog, "Cancel").isEnabled());
    EXPECT_TRUE(dialog->isVisible()) << "the first tick comes later";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog->isVisible(); }, 900));
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(Chosen(), Range(95, 110));
}

TEST_F(PrintTrace, AnInvalidRangeKeepsTheDialogOpen) {
    Capture(100, 120);
    Open();
    Enter("-101", "0");
    Press(*dialog, "OK");
    Enter("0", "121");
    Press(*dialog, "OK");
    Enter("1", "0");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Start sample of -101 must be between -100 and 120.",
                                             "End sample of 121 must be between -100 and 120.",
                                             "End sample must be >= start sample."));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(Field("Start").isEnabled());
}

TEST_F(PrintTrace, TheBoxOfAListingIsKept) {
    Load(0, 5);
    Open();
    EXPECT_EQ(Box().text(), "Scale Width to Page");
    EXPECT_TRUE(Box().isVisible());
    EXPECT_FALSE(Box().isChecked());
    Tick(*dialog, "Scale Width to Page");
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleWidthToPage", -1), -1);
    Press(*dialog, "OK");
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleWidthToPage", -1), 1);
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleHeightToPage", -1), -1);
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(dialog->ScalesToPage());
    Open();
    EXPECT_TRUE(Box().isChecked());
}

TEST_F(PrintTrace, TheBoxIsKeptEvenIfTheRangeIsWrong) {
    Load(0, 5);
    Open();
    Tick(*dialog, "Scale Width to Page");
    Enter("0", "6");
    Press(*dialog, "OK");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleWidthToPage", -1), 1);
    Press(*dialog, "Cancel");
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(PrintTrace, CancelKeepsNothing) {
    Load(0, 5);
    Open();
    Tick(*dialog, "Scale Width to Page");
    Press(*dialog, "Cancel");
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleWidthToPage", -1), -1);
}

TEST_F(PrintTrace, PowerZoomChecksItsOwnRange) {
    Load(0, 5);
    Open(false, true);
    Enter("-256", "0");
    Press(*dialog, "OK");
    Enter("0", "257");
    Press(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Start sample of -256 must be between -255 and 256.",
                                             "End sample of 257 must be between -255 and 256."));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(PrintTrace, TheBoxOfAWaveformIsHiddenAndHasASettingOfItsOwn) {
    Load(0, 5);
    settings.WriteProfileInt("Print", "ScaleHeightToPage", 1);
    Open(false);
    EXPECT_EQ(Box().text(), "Scale Height To Page");
    EXPECT_FALSE(Box().isVisible());
    EXPECT_TRUE(Box().isChecked());
    Press(*dialog, "OK");
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleHeightToPage", -1), 1);
    EXPECT_EQ(settings.GetProfileInt("Print", "ScaleWidthToPage", -1), -1);
}

TEST_F(PrintTrace, PowerZoomEndsAtOnceWithTheLastSampleThatThereIs) {
    Load(0, 5);
    Open(false, true);
    EXPECT_EQ(Field("Start").text(), "-255");
    EXPECT_EQ(Field("End").text(), "256");
    Press(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(Chosen(), Range(0, 510));
    Open(false, true);
    Enter("-5", "7");
    Press(*dialog, "OK");
    EXPECT_EQ(Chosen(), Range(250, 262));
}

TEST_F(PrintTrace, ACaptureWithoutSamplesEndsAtOnce) {
    OpenBoard("PCIWren");
    NewDocument();
    Open();
    Press(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_LT(dialog->Last(), dialog->First());
}

TEST_F(PrintTrace, FilesKeepTheirNumbersAndEndAtTheirLastSample) {
    for (const auto& [first, last] : {std::pair(1, 9), std::pair(-20, -10), std::pair(0, 0)}) {
        Load(first, last);
        Open();
        EXPECT_EQ(Field("Start").text(), QString::number(first));
        EXPECT_EQ(Field("End").text(), QString::number(last));
        Press(*dialog, "OK");
        ASSERT_TRUE(Ends()) << first;
        EXPECT_EQ(Chosen(), Range(0, last - first));
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

class PrintDuringUpload : public PrintTrace {
protected:
    Gate gate;
};

TEST_F(PrintDuringUpload, WaitsForTheSamplesOfTheRangeAndFetchesThemNext) {
    BeginHeldUpload(gate);
    Open();
    Enter("-500", "-400");
    Press(*dialog, "OK");
    QTest::qWait(700);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Percent(), "0%");
    gate.Open();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(BlockOrder()[1], 0) << "the block that it waits for is read next";
}

TEST_F(PrintDuringUpload, PowerZoomDoesNotWait) {
    BeginHeldUpload(gate);
    Open(false, true);
    Press(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    gate.Open();
}

TEST_F(PrintDuringUpload, CancelEndsTheWaitAndNothingIsPrinted) {
    BeginHeldUpload(gate);
    Open();
    Press(*dialog, "OK");
    QTest::qWait(700);
    Press(*dialog, "Cancel");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    gate.Open();
    QTest::qWait(700);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(PrintTrace, SamplesThatCannotArriveAreReportedAndAnotherRangeCanBeTried) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return board.sampleReads.size() == 3 ? Bytes{} : board.Answer(sent, baud);
    });
    upload.BeginUpload();
    ASSERT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    prompts.Forget();
    NewDocument();
    document->OnCaptureStopped();
    Open();
    Press(*dialog, "OK");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !prompts.Texts().empty(); }, 10000));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Sample -500 has not come from the analyzer, and the "
                                             "upload has ended."));
    EXPECT_TRUE(dialog->isVisible());
    Enter("-52", "11");
    Press(*dialog, "OK");
    ASSERT_TRUE(Ends());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

} // namespace
} // namespace busquill::test
