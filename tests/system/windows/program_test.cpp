// The whole program against the simulated board, over a real pseudo terminal.

#include "support/board_program_fixture_qt.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

class WithBoard : public BoardProgramFixture {
protected:
    void ConfigureBus(const QString& mode, const QString& frequency, bool save) {
        ChooseDialog<QDialog>("Utilities/Bus Configuration", [&](QDialog& dialog) {
            dialog.findChildren<QComboBox*>()[0]->setCurrentText(mode);
            auto* edit = dialog.findChild<QLineEdit*>();
            edit->selectAll();
            QTest::keyClicks(edit, frequency);
            dialog.findChild<QCheckBox*>()->setChecked(save);
            for (auto* button : dialog.findChildren<QPushButton*>()) {
                if (button->text().contains("OK")) {
                    QTest::mouseClick(button, Qt::LeftButton);
                }
            }
        });
    }
};

TEST_F(WithBoard, StatusBarShowsModelModeAndFrequency) {
    Connect({"--mhz", "66"});
    EXPECT_TRUE(prompts.Boxes().empty());
    EXPECT_EQ(Frame().PaneText(1), "PCIKite-3");
    EXPECT_EQ(Frame().PaneText(2), "PCI");
    EXPECT_EQ(Frame().PaneText(3), "66 MHz");
    EXPECT_EQ(Frame().PaneText(4), "");
}

TEST_F(WithBoard, BoardInfoShowsTheBoardsData) {
    Connect();
    ChooseDialog<QDialog>("Utilities/Board Info", [](QDialog& dialog) {
        const std::pair<const char*, const char*> rows[] = {{"Model", "PCIKite-3"},
                                                            {"Buffer Size", "1024K"},
                                                            {"Firmware Version", "1.7"},
                                                            {"Hardware Version", "1.0"},
                                                            {"Serial Number", "1234"}};
        for (const auto& [row, value] : rows) {
            EXPECT_EQ(dialog.findChild<QLabel*>(row)->text(), value) << row;
        }
    });
}

TEST_F(WithBoard, BusConfigurationReachesTheBoardAndTheStatusBar) {
    Connect();
    ConfigureBus("PCI-X", "133", false);
    EXPECT_EQ(Frame().PaneText(2), "PCI-X");
    EXPECT_EQ(Frame().PaneText(3), "133 MHz");
    const auto log = board->Log();
    EXPECT_NE(std::find(log.begin(), log.end(), "host  01 85 payload for write memory"), log.end());
}

TEST_F(WithBoard, SavedBusConfigurationIsRestoredAtTheNextStart) {
    Connect();
    ConfigureBus("PCI-X", "100", true);
    Connect(); // a board without the earlier configuration
    EXPECT_EQ(Frame().PaneText(2), "PCI-X");
    EXPECT_EQ(Frame().PaneText(3), "100 MHz");
}

TEST_F(WithBoard, MasterLockIsShown) {
    Connect({"--bus-byte", "0x80"});
    EXPECT_EQ(Frame().PaneText(4), "Master Lock");
}

TEST_F(WithBoard, SignalTablesFollowTheModel) {
    Connect({"--model", "VMELark"});
    EXPECT_EQ(program->Tables().busSignals.FindByName("AM")->dataIndex, 88);
    EXPECT_EQ(Frame().PaneText(2), "VME");
}

TEST_F(WithBoard, LiveTraceOpensOnceForEachKind) {
    Connect();
    Choose("File/New/Capture/State");
    Choose("File/New/Capture/Waveform");
    EXPECT_EQ(Windows().size(), 2);
    EXPECT_EQ(program->App().Templates().front()->Documents().size(), 1U);
    EXPECT_FALSE(Entry("File/New/Capture/State").isEnabled());
    EXPECT_EQ(Windows()[0]->windowTitle(), "Trace - New");
}

TEST_F(WithBoard, FilesOpenBesideALiveTrace) {
    Connect();
    Choose("File/New/Capture/State");
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    auto& frame = dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    EXPECT_TRUE(frame.IsStateFrame());
    const auto top = frame.TraceView().TopSample();
    QTest::keyClick(&frame.TraceView(), Qt::Key_PageDown);
    EXPECT_GT(frame.TraceView().TopSample(), top);
}

} // namespace
} // namespace busquill::test
