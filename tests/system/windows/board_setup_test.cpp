// Port, firmware and raw bytes through the program's dialogs, against the simulated board.

#include "support/live_frame_fixture_qt.h"
#include "ui/link/firmware_dialog.h"
#include "ui/link/serial_test_dialog.h"
#include "ui/link/setup_dialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QStatusBar>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class BoardAndDialogs : public LiveFrameFixture {
protected:
    /// Accepts the Setup dialog after `change`, and waits until it is closed.
    void SetUpPort(const std::function<void(QDialog&)>& change = [](QDialog&) {}) {
        ChooseDialog<CSetupDialog>("Utilities/Board Setup", [&](CSetupDialog& dialog) {
            change(dialog);
            Press(dialog, "OK");
            EXPECT_TRUE(RunUntil([&] { return !dialog.isVisible(); }));
        });
    }
    static QComboBox& BoxOf(QDialog& dialog, const char* name) {
        return *dialog.findChild<QComboBox*>(name);
    }
    QStringList StatusTexts() {
        QStringList texts;
        for (const QLabel* label : Frame().statusBar()->findChildren<QLabel*>()) {
            texts << label->text();
        }
        return texts;
    }
    std::string Model() { return Frame().PaneText(1).toStdString(); }
    /// A short capture from Go to its last sample.
    void CaptureOnce() {
        Go();
        ASSERT_TRUE(Running());
        ASSERT_TRUE(Complete());
        EXPECT_GT(Trace().GetStore().SamplesAfter(), 0);
    }
};

TEST_F(BoardAndDialogs, TheBoardHoldsTheDownloadedFirmware) {
    Connect();
    settings.WriteProfileString("Setup", "DownloadFile",
                                dir.Write("firmware.hex",
                                          "; release 2.1\n"
                                          ":10000000000102030405060708090a0b0c0d0e0f78\n"
                                          "\n"
                                          ":020000021000EC\n"
                                          ":03FFFE00AABBCC00\n" // a wrong checksum
                                          ":00000001FF\n"));
    ChooseDialog<CFirmwareDialog>("Utilities/Download Firmware", [&](CFirmwareDialog& dialog) {
        Press(dialog, "Download");
        EXPECT_TRUE(RunUntil([&] { return !dialog.isVisible(); }));
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Download complete."));
    EXPECT_EQ(board->Firmware(), ":10000000000102030405060708090A0B0C0D0E0F78\n"
                                 ":020000021000EC\n"
                                 ":02FFFE00AABB9C\n"
                                 ":020000022000DC\n"
                                 ":01000000CC33\n"
                                 ":00000001FF\n");
}

TEST_F(BoardAndDialogs, ABoardThatWasPulledOutIsFoundAgainThroughTheDialog) {
    Connect({"--buffer", "1"});
    const std::string model = Model();
    OpenFrame("State");
    CaptureOnce();
    program->App().OpenDocumentFile(dir.File("Trigger1.tra"));
    const auto windows = Windows().size();

    board->Unplug();
    frame->activateWindow();
    Frame().Area().setActiveSubWindow(frame);
    prompts.Forget();
    Go();
    EXPECT_TRUE(RunUntil([&] { return !Running() && program->Link().IsIdle(); }));
    EXPECT_EQ(std::ranges::count_if(prompts.Texts(),
                                    [](const std::string& text) {
                                        return text.starts_with("Error writing to COM1");
                                    }),
              1);
    const std::string hint = prompts.Boxes().front().hint;
    EXPECT_THAT(hint, HasSubstr(" was unplugged. Plug it in again"));
    EXPECT_TRUE(RunUntil([&] { return StatusTexts().contains(QString::fromStdString(hint)); }));
    prompts.Forget();
    SetUpPort(); // still without its cable
    EXPECT_TRUE(program->Link().IsDemoMode());
    ASSERT_EQ(prompts.Boxes().size(), 1U);
    EXPECT_THAT(prompts.Texts()[0], StartsWith("Unable to establish communications"));
    EXPECT_EQ(prompts.Boxes()[0].hint,
              "The port COM1 (" + board->Terminal() +
                  ") does not exist. The manual page \"Connecting a "
                  "board\" tells more.\nUtilities/Board Setup connects again without a restart.");
    EXPECT_EQ(Model(), "Demo Mode");
    EXPECT_FALSE(StatusTexts().contains(QString::fromStdString(hint)));

    board->PlugIn();
    prompts.Forget();
    SetUpPort();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_FALSE(program->Link().IsDemoMode());
    EXPECT_EQ(Model(), model);
    EXPECT_EQ(Windows().size(), windows);
    CaptureOnce();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardAndDialogs, ACaptureGoesOnWhenThePortIsOpenedAgain) {
    Connect({"--buffer", "4", "--rate", "700"});
    OpenFrame("State");
    ChooseSetup("Read after 100 writes");
    Go();
    ASSERT_TRUE(Running());
    SetUpPort();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Trace().GetStore().SamplesAfter(), 1023);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardAndDialogs, TheBoardFollowsToTheNewRate) {
    Connect({"--buffer", "1"});
    SetUpPort([](QDialog& dialog) { BoxOf(dialog, "Baud Rate").setCurrentText("38400"); });
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_FALSE(program->Link().IsDemoMode());
    const auto functions = board->Functions();
    EXPECT_EQ(std::ranges::count_if(
                  functions, [](const auto& f) { return f.find("apply new baud") != f.npos; }),
              1);
    OpenFrame("State");
    CaptureOnce();
}

TEST_F(BoardAndDialogs, ARefusedRateLeavesTheBoardWhereItWas) {
    Connect({"--refuse-rate"});
    ChooseDialog<CSetupDialog>("Utilities/Board Setup", [&](CSetupDialog& dialog) {
        BoxOf(dialog, "Baud Rate").setCurrentText("19200");
        Press(dialog, "OK");
        ASSERT_TRUE(RunUntil([&] { return !prompts.Texts().empty(); }));
        EXPECT_THAT(prompts.Texts(), ElementsAre("Serial communications error setting baud rate."));
        EXPECT_TRUE(dialog.isVisible());
        Press(dialog, "Cancel");
    });
    EXPECT_EQ(settings.GetProfileInt("Setup", "BaudRate", 0), 19200);
    std::uint8_t serial = 0;
    EXPECT_TRUE(program->Link().Exchange(ReadRegisters(16, {&serial, 1})));
}

TEST_F(BoardAndDialogs, RawBytesReachTheBoardAndItsAnswersAreShown) {
    Connect();
    ChooseDialog<CSerialTestDialog>("Utilities/Serial Test", [&](CSerialTestDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), "4 10");
        Press(dialog, "Send");
        auto& read = *dialog.findChild<QListWidget*>("Read");
        ASSERT_TRUE(RunUntil([&] { return read.count() == 1; }));
        EXPECT_EQ(read.item(0)->text().toStdString(),
                  "2a " + std::string(21, ' ') + "   '*" + std::string(7, ' ') + "'");
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), "");
    });
    EXPECT_THAT(board->Log(), Contains(StartsWith("host  04 10")));
}

} // namespace
} // namespace busquill::test
