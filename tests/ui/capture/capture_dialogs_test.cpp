#include "capture/trace_document.h"
#include "support/capture_fixture.h"
#include "support/temp_dir.h"
#include "ui/capture/new_window_dialog.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/capture/trace_status_dialog.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <gmock/gmock.h>

#include <filesystem>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void Click(QDialog& dialog, const QString& text) {
    for (auto* button : dialog.findChildren<QPushButton*>()) {
        if (button->text().remove('&') == text) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    FAIL() << "no button " << text.toStdString();
}

template <typename Condition>
bool RunUntil(Condition holds) {
    return QTest::qWaitFor(holds, 10000);
}

// Trace Status.

class TraceStatus : public testing::Test {
protected:
    QString Text(const char* field) { return dialog.findChild<QLabel*>(field)->text(); }
    QString Lamp(const char* field) {
        return dialog.findChild<QLabel*>(field)->accessibleDescription();
    }

    BoardTables board{"PCIKite-1"};
    TraceSetup setup{board.tables};
    CTraceStatusDialog dialog{nullptr, setup};
};

TEST_F(TraceStatus, ShowsCountsLampsAndTheActiveLevel) {
    setup.levels[2].storeExpr = ParseExpression("E1+E2");
    setup.levels[2].ifExpr = ParseExpression("~E3");
    setup.levels[2].occurs = 17;
    setup.levels[2].thenGoto = 3;
    setup.levels[2].thenTrigger = true;
    setup.levels[2].elseGoto = 2;
    EXPECT_EQ(dialog.windowTitle(), "Trace Status");
    EXPECT_EQ(Lamp("Trace Active"), "lit");
    RunState state;
    state.before = 1234;
    state.after = 5;
    state.occurrences = 16;
    state.level = 2;
    state.triggered = true;
    dialog.Follow(state);
    EXPECT_EQ(Text("Samples Before Trigger"), "1234");
    EXPECT_EQ(Text("Samples After Trigger"), "5");
    EXPECT_EQ(Text("Event Occurrences"), "16");
    EXPECT_EQ(Text("Active Level"), "3");
    EXPECT_EQ(Lamp("Triggered"), "lit");
    EXPECT_EQ(Lamp("Buffer Full"), "dark");
    EXPECT_EQ(Text("Store"), "E1+E2");
    EXPECT_EQ(Text("If Event"), "~E3");
    EXPECT_EQ(Text("Occurs"), "17");
    EXPECT_EQ(Text("Then"), "Goto L4, Trigger");
    EXPECT_EQ(Text("Else"), "Goto L3");
}

TEST_F(TraceStatus, WritesOnlyWhatHasChanged) {
    RunState state;
    dialog.Follow(state);
    dialog.findChild<QLabel*>("Samples Before Trigger")->setText("untouched");
    dialog.findChild<QLabel*>("Occurs")->setText("untouched");
    state.after = 3;
    dialog.Follow(state);
    EXPECT_EQ(Text("Samples After Trigger"), "3");
    EXPECT_EQ(Text("Samples Before Trigger"), "untouched");
    EXPECT_EQ(Text("Occurs"), "untouched");
    state.level = 1;
    dialog.Follow(state);
    EXPECT_EQ(Text("Occurs"), "1");
}

// New Trace Window.

TEST(NewWindow, KeepsTheAnswer) {
    MemorySettings settings;
    CNewWindowDialog first(nullptr, settings);
    EXPECT_EQ(first.windowTitle(), "New Trace Window");
    const auto buttons = first.findChildren<QRadioButton*>();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons[0]->text() + "/" + buttons[1]->text(),
              "Switch existing window/Open new window");
    EXPECT_FALSE(first.OpensNewWindow());
    first.show();
    buttons[1]->click();
    Click(first, "Cancel");
    EXPECT_EQ(settings.GetProfileInt("Setup", "NewTraceWindow", -1), -1);
    Click(first, "OK");
    EXPECT_EQ(settings.GetProfileInt("Setup", "NewTraceWindow", -1), 1);
    EXPECT_TRUE(CNewWindowDialog(nullptr, settings).OpensNewWindow());
}

// Save Trace.

class SaveTrace : public CaptureFixture {
protected:
    void Open() {
        dialog =
            std::make_unique<CSaveTraceDialog>(nullptr, *document, Path(), prompts, mainThread);
        dialog->show();
    }
    void Enter(const QString& start, const QString& end) {
        Field("Start").setText(start);
        Field("End").setText(end);
    }
    QLineEdit& Field(const char* name) { return *dialog->findChild<QLineEdit*>(name); }
    QString Percent() { return dialog->findChild<QLabel*>("Percent")->text(); }
    bool Ends() {
        return RunUntil([&] { return !dialog->isVisible(); });
    }
    std::string Path() const { return dir.File("a.tra"); }
    std::unique_ptr<CTesselDoc> Load() {
        context.newDocRealTime = false;
        auto loaded = std::make_unique<CTesselDoc>(context, prompts);
        EXPECT_TRUE(loaded->OnOpenDocument(Path()));
        return loaded;
    }

    const TempDir dir;
    std::unique_ptr<CSaveTraceDialog> dialog;
};

TEST_F(SaveTrace, OpensWithTheWholeRange) {
    Capture(100, 120);
    Open();
    EXPECT_EQ(dialog->windowTitle(), "Save Trace");
    EXPECT_EQ(Field("Save File").text().toStdString(), Path());
    EXPECT_TRUE(Field("Save File").isReadOnly());
    EXPECT_EQ(Field("Start").text(), "-100");
    EXPECT_EQ(Field("End").text(), "120");
    EXPECT_EQ(Percent(), "100%");
    Enter("7", "8");
    Click(*dialog, "All");
    EXPECT_EQ(Field("Start").text(), "-100");
    EXPECT_EQ(Field("End").text(), "120");
}

TEST_F(SaveTrace, SavesTheRange) {
    Capture(100, 120);
    Open();
    Enter("-5", "10");
    Click(*dialog, "OK");
    EXPECT_FALSE(Field("Start").isEnabled());
    EXPECT_FALSE(Field("End").isEnabled());
    ASSERT_TRUE(Ends());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    const auto loaded = Load();
    EXPECT_EQ(loaded->SampleCount(false), 16);
    EXPECT_EQ(loaded->FirstSampleNumber(false), -5);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(SaveTrace, AnInvalidRangeKeepsTheDialogOpen) {
    Capture(100, 120);
    Open();
    Enter("-101", "0");
    Click(*dialog, "OK");
    Enter("0", "121");
    Click(*dialog, "OK");
    Enter("1", "0");
    Click(*dialog, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Start sample of -101 must be between -100 and 120.",
                                             "End sample of 121 must be between -100 and 120.",
                                             "End sample must be >= start sample."));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(Field("Start").isEnabled());
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

TEST_F(SaveTrace, AFileThatCannotBeCreatedKeepsTheDialogOpen) {
    Capture(10, 10);
    CSaveTraceDialog nowhere(nullptr, *document, "/nonexistent/a.tra", prompts, mainThread);
    nowhere.show();
    Click(nowhere, "OK");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error creating file /nonexistent/a.tra."));
    EXPECT_TRUE(nowhere.isVisible());
    EXPECT_TRUE(nowhere.findChild<QLineEdit*>("Start")->isEnabled());
}

TEST_F(SaveTrace, WithoutSamplesItClosesAtOnce) {
    OpenBoard("PCIWren");
    NewDocument();
    Open();
    Click(*dialog, "OK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(Load()->SampleCount(false), 0);
}

class SaveDuringUpload : public SaveTrace {
protected:
    Gate gate;
};

TEST_F(SaveDuringUpload, WaitsForTheSamples) {
    BeginHeldUpload(gate);
    Open();
    Click(*dialog, "OK");
    QTest::qWait(700);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Percent(), "0%");
    gate.Open();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(BlockOrder()[1], 0) << "the block that it waits for is read next";
    EXPECT_EQ(Load()->SampleCount(false), 1001);
}

TEST_F(SaveDuringUpload, CancelKeepsTheRowsWrittenSoFar) {
    BeginHeldUpload(gate);
    Open();
    Click(*dialog, "OK");
    QTest::qWait(700);
    Click(*dialog, "Cancel");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    gate.Open();
    ASSERT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    EXPECT_EQ(Load()->RowCount(false), 0);
}

TEST_F(SaveTrace, SamplesThatCannotArriveAreReportedAndAnotherRangeCanBeTried) {
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
    Click(*dialog, "OK");
    ASSERT_TRUE(RunUntil([&] { return !prompts.Texts().empty(); }));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Sample -500 has not come from the analyzer, and the "
                                             "upload has ended."));
    EXPECT_FALSE(std::filesystem::exists(Path()));
    Enter("-52", "11");
    Click(*dialog, "OK");
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Load()->SampleCount(false), 64);
}

} // namespace
} // namespace busquill::test
