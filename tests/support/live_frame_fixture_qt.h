#pragma once

#include "capture/trace_document.h"
#include "support/board_program_fixture_qt.h"
#include "support/paths.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"
#include "ui/trace/trace_bar.h"

#include <QComboBox>
#include <QLabel>
#include <QToolButton>
#include <QtTest/QTest>

namespace busquill::test {

/// One trace frame of the program against the simulated board, with the setups that are shipped
/// with the program.
class LiveFrameFixture : public BoardProgramFixture {
protected:
    LiveFrameFixture() {
        for (const char* name : {"MemoryWrite.tsp", "ReadAfterWrites.tsp"}) {
            std::filesystem::copy(SourceFile("data/" + std::string(name)), dir.File(name));
        }
    }
    /// "State" or "Waveform".
    void OpenFrame(const QString& kind) {
        Choose("File/New/Capture/" + kind);
        frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    }
    CTraceBar& Bar() { return frame->Bar(); }
    CTesselDoc& Trace() { return frame->Trace(); }
    void ChooseSetup(const QString& name) {
        QComboBox& box = Bar().SetupBox();
        const int index = box.findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        box.setCurrentIndex(index);
        emit box.activated(index);
    }
    void Go() { QTest::mouseClick(&Bar().GoButton(), Qt::LeftButton); }
    void Stop() { QTest::mouseClick(&Bar().StopButton(), Qt::LeftButton); }
    /// A capture of many blocks that the board delivers slowly. Needs a board with a large buffer
    /// that does not fill at once.
    void StopALongRun() {
        Go(); // the default setup triggers at once
        ASSERT_TRUE(RunUntil([&] { return Text("After").toInt() > 20000; }));
        board->Fault("delay 2");
        Stop();
    }
    bool Running() { return Trace().CaptureActive(); }
    template <typename Condition>
    bool RunUntil(Condition holds) {
        return QTest::qWaitFor(holds, 60000);
    }
    bool Complete() {
        return RunUntil([&] { return !Running() && !Trace().IsUploading(); }) &&
               (QTest::qWait(450), true); // and the timer has polled
    }
    QString Text(const char* name) { return Bar().findChild<QLabel*>(name)->text(); }

    CChildFrame* frame = nullptr;
};

} // namespace busquill::test
