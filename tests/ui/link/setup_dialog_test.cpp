#include "support/board_line_fixture_qt.h"
#include "ui/link/setup_dialog.h"

#include <QComboBox>
#include <QPushButton>
#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string refused = "Serial communications error setting baud rate.";

QStringList ItemsOf(const QComboBox& box) {
    QStringList items;
    for (int i = 0; i < box.count(); ++i) {
        items << box.itemText(i);
    }
    return items;
}

struct Controls {
    explicit Controls(QDialog& owner)
        : dialog(owner), port(*owner.findChild<QComboBox*>("Port")),
          device(*owner.findChild<QComboBox*>("Device")),
          baud(*owner.findChild<QComboBox*>("Baud Rate")) {}
    void Ok() { Press(dialog, "OK"); }
    void Cancel() { Press(dialog, "Cancel"); }
    void TypeDevice(const QString& path) {
        device.setFocus();
        device.lineEdit()->selectAll();
        QTest::keyClicks(device.lineEdit(), path);
    }

    QDialog& dialog;
    QComboBox& port;
    QComboBox& device;
    QComboBox& baud;
};

class BoardSetup : public BoardLineFixture {
protected:
    void Open(std::function<void(Controls&)> act) {
        ChooseDialog<CSetupDialog>("Utilities/Board Setup", [&](CSetupDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Setup");
            Controls controls(dialog);
            act(controls);
        });
    }
    std::string StoredPort() { return settings.GetProfileString("Setup", "ComPort", "?"); }
    int StoredRate() { return settings.GetProfileInt("Setup", "BaudRate", 0); }
    /// The rates to which the board was set.
    std::vector<int> RatesTold() {
        std::vector<int> rates;
        line->Do([&] {
            for (const WireBoard::Write& write : board.writes) {
                for (const int rate : {9600, 19200, 28800, 38400, 57600}) {
                    if (write.bytes == Bytes{BaudCode(rate)}) {
                        rates.push_back(rate);
                    }
                }
            }
        });
        return rates;
    }
};

TEST_F(BoardSetup, OffersPortsAndRatesAndShowsTheStoredOnes) {
    StartOnLine();
    settings.WriteProfileInt("Setup", "BaudRate", 28800);
    const std::pair<const char*, const char*> shown[] = {
        {"USB", "USB1"}, {"USB2", "USB2"}, {"COM8", "COM8"}, {"<None>", "<None>"}, {"LPT1", ""}};
    for (const auto& [stored, text] : shown) {
        settings.WriteProfileString("Setup", "ComPort", stored);
        Open([&, text = text](Controls& controls) {
            EXPECT_EQ(ItemsOf(controls.port),
                      (QStringList{"USB1", "USB2", "COM1", "COM2", "COM3", "COM4", "COM5", "COM6",
                                   "COM7", "COM8", "<None>"}));
            EXPECT_EQ(ItemsOf(controls.baud),
                      (QStringList{"9600", "19200", "28800", "38400", "57600"}));
            EXPECT_EQ(controls.port.currentText(), text);
            EXPECT_EQ(controls.baud.currentText(), "28800");
        });
    }
}

TEST_F(BoardSetup, WithoutSettingsIsTheFirstUsbBoardAt57600) {
    StartOnLine();
    settings = MemorySettings();
    Open([](Controls& controls) {
        EXPECT_EQ(controls.port.currentText(), "USB1");
        EXPECT_EQ(controls.baud.currentText(), "57600");
    });
}

TEST_F(BoardSetup, UsbHasNeitherRateNorDevice) {
    StartOnLine();
    settings.WriteProfileString("Setup", "ComPort", "USB");
    Open([](Controls& controls) {
        const std::tuple<const char*, bool, bool> ports[] = {{"USB1", false, false},
                                                             {"COM1", true, true},
                                                             {"USB2", false, false},
                                                             {"COM8", true, true},
                                                             {"<None>", true, false}};
        for (const auto& [port, rate, device] : ports) {
            controls.port.setCurrentText(port);
            EXPECT_EQ(controls.baud.isEnabled(), rate) << port;
            EXPECT_EQ(controls.device.isEnabled(), device) << port;
        }
    });
}

TEST_F(BoardSetup, CancelNeitherStoresNorReconnects) {
    StartOnLine();
    line->ForgetLog();
    Open([](Controls& controls) {
        controls.port.setCurrentText("COM2");
        controls.baud.setCurrentText("9600");
        controls.TypeDevice("/dev/elsewhere");
        controls.Cancel();
    });
    EXPECT_EQ(StoredPort(), "COM1");
    EXPECT_EQ(StoredRate(), 0);
    EXPECT_EQ(settings.GetProfileString("Setup", "ComDevice2", "?"), "?");
    EXPECT_THAT(opened, ElementsAre("/dev/ttyS0"));
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_EQ(line->OpenPorts(), 1);
}

TEST_F(BoardSetup, OkConnectsAgainWhateverWasChanged) {
    StartOnLine();
    Open([](Controls& controls) { controls.Ok(); });
    EXPECT_THAT(opened, ElementsAre("/dev/ttyS0", "/dev/ttyS0"));
    EXPECT_EQ(settings.GetProfileString("Setup", "ComDevice1", "?"), "?"); // the usual one
    EXPECT_EQ(line->OpenPorts(), 1);
    Open([](Controls& controls) {
        controls.port.setCurrentText("COM4");
        controls.Ok();
    });
    EXPECT_EQ(StoredPort(), "COM4");
    EXPECT_EQ(opened.back(), "/dev/ttyS3");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardSetup, LeavesDemoMode) {
    openError = ENOENT;
    StartOnLine();
    ASSERT_TRUE(program->Link().IsDemoMode());
    EXPECT_EQ(Frame().PaneText(1), "Demo Mode");
    prompts.Forget();
    openError = 0;
    board.contents[0] = {'V', 'M', 'E', 'L', 'a', 'r', 'k'};
    Open([](Controls& controls) { controls.Ok(); });
    EXPECT_FALSE(program->Link().IsDemoMode());
    EXPECT_TRUE(Frame().PaneText(1).startsWith("VMELark")) << Frame().PaneText(1).toStdString();
    // The signals are those of the new board.
    EXPECT_NE(program->Tables().busSignals.FindByName("AM"), nullptr);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardSetup, NoPortIsChosenWithoutAMessage) {
    StartOnLine();
    Open([](Controls& controls) {
        controls.port.setCurrentText("<None>");
        controls.Ok();
    });
    EXPECT_EQ(StoredPort(), "<None>");
    EXPECT_EQ(line->OpenPorts(), 0);
    EXPECT_FALSE(program->Link().IsDemoMode());
    EXPECT_EQ(Frame().PaneText(1), "-0");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    Open([](Controls& controls) {
        EXPECT_EQ(controls.port.currentText(), "<None>");
        controls.port.setCurrentText("USB1");
    });
}

TEST_F(BoardSetup, AStoredPortThatIsNotOfferedIsKept) {
    StartOnLine();
    settings.WriteProfileString("Setup", "ComPort", "LPT1");
    Open([](Controls& controls) { controls.Ok(); });
    EXPECT_EQ(StoredPort(), "LPT1");
}

TEST_F(BoardSetup, UsbOneIsStoredByItsOldName) {
    StartOnLine();
    for (const auto& [shown, stored] : {std::pair("USB1", "USB"), std::pair("USB2", "USB2")}) {
        Open([shown = shown](Controls& controls) {
            controls.port.setCurrentText(shown);
            controls.Ok();
        });
        EXPECT_EQ(StoredPort(), stored);
    }
}

TEST_F(BoardSetup, TheBoardIsToldANewRateBeforeThePortIsReopened) {
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    board.baud = 9600; // it follows only when it is told
    StartOnLine();
    line->ForgetLog();
    Open([&](Controls& controls) {
        controls.baud.setCurrentText("38400");
        controls.Ok();
        ASSERT_TRUE(RunUntil([&] { return !RatesTold().empty(); }));
        line->Do([&] { board.baud = 38400; });
        EXPECT_EQ(opened.size(), 1U);
        ASSERT_TRUE(RunUntil([&] { return !controls.dialog.isVisible(); }));
    });
    EXPECT_EQ(opened.size(), 2U);
    EXPECT_EQ(StoredRate(), 38400);
    EXPECT_THAT(RatesTold(), ElementsAre(38400));
    EXPECT_FALSE(program->Link().IsDemoMode());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

// Only where the board answers at another rate than the stored one.
TEST_F(BoardSetup, ABoardAtAnotherRateIsMovedTo57600WhateverIsStored) {
    settings.WriteProfileInt("Setup", "BaudRate", 19200);
    board.baud = 19200;
    StartOnLine();
    line->Do([&] { board.baud = 9600; }); // set to that by something else
    Open([](Controls& controls) { controls.Ok(); });
    EXPECT_THAT(RatesTold(), ElementsAre(57600));
    EXPECT_EQ(line->Rates().back(), 57600);
    EXPECT_EQ(StoredRate(), 19200);
}

TEST_F(BoardSetup, ARefusedRateIsStoredAndTheDialogStays) {
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    StartOnLine();
    UseRefusal();
    Open([&](Controls& controls) {
        controls.port.setCurrentText("COM2");
        controls.baud.setCurrentText("57600");
        controls.Ok();
        ASSERT_TRUE(RunUntil([&] { return !prompts.Texts().empty(); }));
        QApplication::processEvents();
        EXPECT_TRUE(controls.dialog.isVisible());
        EXPECT_EQ(StoredRate(), 57600);
        EXPECT_EQ(opened.size(), 1U);
        ASSERT_EQ(prompts.Boxes().size(), 1U);
        EXPECT_EQ(prompts.Boxes()[0].text, refused);
        EXPECT_TRUE(prompts.Boxes()[0].topmost);
        UseBoard();
        controls.Ok(); // the rate is the stored one now
        EXPECT_FALSE(controls.dialog.isVisible());
    });
    EXPECT_EQ(opened.size(), 2U);
    EXPECT_EQ(prompts.Texts().size(), 1U);
}

TEST_F(BoardSetup, CanBeCancelledWhileTheBoardIsSilent) {
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    StartOnLine();
    UseSilence();
    line->SetClockRuns(false); // no time-out
    Open([&](Controls& controls) {
        controls.baud.setCurrentText("19200");
        controls.Ok();
        QTest::qWait(250);
        EXPECT_TRUE(controls.dialog.isVisible());
        EXPECT_FALSE(controls.port.isEnabled());
        EXPECT_FALSE(controls.baud.isEnabled());
        EXPECT_FALSE(ButtonOf(controls.dialog, "OK").isEnabled());
        controls.Cancel();
        EXPECT_FALSE(controls.dialog.isVisible());
    });
    EXPECT_EQ(opened.size(), 1U);
    line->SetClockRuns(true);
    ASSERT_TRUE(RunUntil([&] { return program->Link().IsIdle(); }));
    EXPECT_THAT(prompts.Texts(), IsEmpty()); // nobody waits for it any more
}

TEST_F(BoardSetup, InDemoModeANewRateIsTakenAtOnce) {
    openError = ENOENT;
    StartOnLine();
    prompts.Forget();
    Open([](Controls& controls) {
        controls.baud.setCurrentText("9600");
        controls.Ok();
        EXPECT_FALSE(controls.dialog.isVisible());
    });
    EXPECT_EQ(StoredRate(), 9600);
    EXPECT_EQ(opened.size(), 2U);
}

TEST_F(BoardSetup, ANewRateForUsbIsOnlyStored) {
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    StartOnLine();
    line->ForgetLog();
    Open([](Controls& controls) {
        controls.baud.setCurrentText("19200");
        controls.port.setCurrentText("USB1");
        controls.Ok();
        EXPECT_FALSE(controls.dialog.isVisible());
    });
    EXPECT_EQ(StoredRate(), 19200);
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(BoardSetup, TiesAPortToADeviceThatIsTyped) {
    StartOnLine();
    Open([](Controls& controls) {
        controls.port.setCurrentText("COM3");
        EXPECT_EQ(controls.device.currentText(), "/dev/ttyS2");
        controls.TypeDevice(" /dev/ttyUSB0 ");
        controls.Ok();
    });
    EXPECT_EQ(settings.GetProfileString("Setup", "ComDevice3", ""), "/dev/ttyUSB0");
    EXPECT_EQ(opened.back(), "/dev/ttyUSB0");
    Open([](Controls& controls) {
        EXPECT_EQ(controls.device.currentText(), "/dev/ttyUSB0");
        controls.TypeDevice("");
        QTest::keyClick(controls.device.lineEdit(), Qt::Key_Delete);
        controls.Ok(); // an empty name changes nothing
    });
    EXPECT_EQ(opened.back(), "/dev/ttyUSB0");
}

class DevicesOfSetup : public BoardSetup {
protected:
    void SetUp() override { StartOnLine(); }
    std::unique_ptr<CSetupDialog> Make() {
        auto dialog = std::make_unique<CSetupDialog>(
            nullptr, CSetupDialog::Parts{program->Link(), settings, prompts, mainThread},
            std::vector<SerialDevice>{{"/dev/ttyACM0", "Evaluation Kit"}, {"/dev/ttyUSB7", ""}});
        dialog->show();
        return dialog;
    }
};

TEST_F(DevicesOfSetup, AreOfferedWithWhatTheSystemKnowsOfThem) {
    const auto dialog = Make();
    Controls controls(*dialog);
    EXPECT_EQ(ItemsOf(controls.device),
              (QStringList{"/dev/ttyACM0  Evaluation Kit", "/dev/ttyUSB7"}));
    EXPECT_EQ(controls.device.currentText(), "/dev/ttyS0"); // stored, not present
    controls.device.setCurrentIndex(0);
    controls.Ok();
    EXPECT_EQ(settings.GetProfileString("Setup", "ComDevice1", ""), "/dev/ttyACM0");
    const auto again = Make();
    EXPECT_EQ(Controls(*again).device.currentText(), "/dev/ttyACM0  Evaluation Kit");
}

TEST_F(DevicesOfSetup, AreShownButNotChangedWhereTheEnvironmentChooses) {
    ::setenv("BUSQUILL_COM1", "/dev/chosen", 1);
    {
        const auto dialog = Make();
        Controls controls(*dialog);
        EXPECT_EQ(controls.device.currentText(), "/dev/chosen");
        EXPECT_FALSE(controls.device.isEnabled());
        EXPECT_EQ(controls.device.toolTip(), "Chosen by the environment variable BUSQUILL_COM1");
        controls.port.setCurrentText("COM2");
        EXPECT_TRUE(controls.device.isEnabled());
        controls.port.setCurrentText("COM1");
        controls.Ok();
    }
    ::unsetenv("BUSQUILL_COM1");
    EXPECT_EQ(settings.GetProfileString("Setup", "ComDevice1", "?"), "?");
}

TEST(SerialPortsOfTheMachine, AreSortedAndHavePaths) {
    const std::vector<SerialDevice> devices = SerialDevices();
    for (const SerialDevice& device : devices) {
        EXPECT_TRUE(device.path.starts_with("/dev/")) << device.path;
    }
    EXPECT_TRUE(std::ranges::is_sorted(devices, {}, &SerialDevice::path));
}

} // namespace
} // namespace busquill::test
