#include "support/board_line_fixture_qt.h"
#include "ui/link/firmware_dialog.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QProgressBar>
#include <QWindow>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string complete = "Download complete.";

struct Controls {
    explicit Controls(QDialog& owner)
        : dialog(owner), file(*owner.findChild<QLineEdit*>()),
          progress(*owner.findChild<QProgressBar*>()) {}
    void Download() { Press(dialog, "Download"); }

    QDialog& dialog;
    QLineEdit& file;
    QProgressBar& progress;
};

class DownloadFirmware : public BoardLineFixture {
protected:
    void Open(std::function<void(Controls&)> act) {
        ChooseDialog<CFirmwareDialog>("Utilities/Download Firmware", [&](CFirmwareDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Download Firmware");
            Controls controls(dialog);
            act(controls);
        });
    }
    void UseFile(const std::string& text) {
        path = dir.Write("firmware.hex", text);
        settings.WriteProfileString("Setup", "DownloadFile", path);
    }
    std::vector<std::uint32_t> Addresses() {
        std::vector<std::uint32_t> addresses;
        line->Do([&] {
            for (const WireBoard::Write& write : board.writes) {
                addresses.push_back(write.address);
            }
        });
        return addresses;
    }

    std::string path;
};

TEST_F(DownloadFirmware, SendsTheFileAndCloses) {
    UseFile(":01000100AA00\n\n; text\n:01000200bb00\n:00000001FF\n");
    StartOnLine();
    Open([&](Controls& controls) {
        EXPECT_EQ(controls.file.text().toStdString(), path);
        controls.Download();
        ASSERT_TRUE(RunUntil([&] { return !controls.dialog.isVisible(); }));
        EXPECT_EQ(controls.progress.maximum(), 3);
        EXPECT_EQ(controls.progress.value(), 3);
    });
    EXPECT_THAT(Addresses(), ElementsAre(1U, 2U));
    EXPECT_THAT(prompts.Texts(), ElementsAre(complete));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
}

TEST_F(DownloadFirmware, TheEnterKeyStartsIt) {
    UseFile("nothing");
    StartOnLine();
    Open([&](Controls& controls) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&controls.dialog));
        QTest::keyClick(controls.dialog.windowHandle(), Qt::Key_Return);
        ASSERT_TRUE(RunUntil([&] { return !controls.dialog.isVisible(); }));
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre(complete));
}

TEST_F(DownloadFirmware, BrowsingPutsThePathInTheBoxAndInTheSettings) {
    UseFile("old");
    const std::string other = dir.Write("other.hex", "new");
    StartOnLine();
    Open([&](Controls& controls) {
        AnswerDialog<QFileDialog>([&] { Press(controls.dialog, "Browse..."); },
                                  [&](QFileDialog& files) {
                                      EXPECT_EQ(files.directory().absolutePath().toStdString(),
                                                dir.Path());
                                      EXPECT_EQ(files.selectedFiles().value(0).toStdString(), path);
                                      GiveFileName(files, "other.hex");
                                  });
        EXPECT_EQ(controls.file.text().toStdString(), other);
        EXPECT_EQ(settings.GetProfileString("Setup", "DownloadFile", ""), other);
        AnswerDialog<QFileDialog>([&] { Press(controls.dialog, "Browse..."); },
                                  [](QFileDialog& files) { files.reject(); });
        EXPECT_EQ(controls.file.text().toStdString(), other);
    });
}

TEST_F(DownloadFirmware, ATypedPathIsUsedAndNotStored) {
    UseFile("old");
    StartOnLine();
    Open([&](Controls& controls) {
        controls.file.selectAll();
        QTest::keyClicks(&controls.file, "/nonexistent/firmware.hex");
        controls.Download();
        EXPECT_TRUE(controls.dialog.isVisible());
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file /nonexistent/firmware.hex."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(settings.GetProfileString("Setup", "DownloadFile", ""), path);
}

TEST_F(DownloadFirmware, AnInvalidRecordLeavesTheDialogForAnotherTry) {
    UseFile(":01000100AA00\n:02000004FFFFFC\n:01000200BB00\n");
    StartOnLine();
    Open([&](Controls& controls) {
        controls.Download();
        ASSERT_TRUE(RunUntil([&] { return prompts.Texts().size() == 1; }));
        EXPECT_TRUE(RunUntil([&] { return ButtonOf(controls.dialog, "Download").isEnabled(); }));
        EXPECT_TRUE(controls.dialog.isVisible());
        EXPECT_EQ(prompts.Texts()[0], "Invalid hex record 1 in file " + path + ".");
        UseFile(":01000200CC00\n");
        controls.Download();
        ASSERT_TRUE(RunUntil([&] { return !controls.dialog.isVisible(); }));
        EXPECT_EQ(controls.progress.value(), controls.progress.maximum());
    });
    EXPECT_THAT(Addresses(), ElementsAre(1U, 2U));
}

TEST_F(DownloadFirmware, ARecordThatTheBoardRefusesIsNamed) {
    UseFile(":01000100AA00\n:00000001FF\n");
    StartOnLine();
    UseRefusal();
    Open([&](Controls& controls) {
        controls.Download();
        ASSERT_TRUE(RunUntil([&] { return !prompts.Texts().empty(); }));
        EXPECT_TRUE(controls.dialog.isVisible());
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Serial connection error sending firmware record 1."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
}

// The record that is under way arrives, the rest of the file does not.
TEST_F(DownloadFirmware, CancelEndsItInTheMiddle) {
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text += ":01000100AA00\n";
    }
    UseFile(text);
    StartOnLine();
    Open([&](Controls& controls) {
        controls.Download();
        EXPECT_FALSE(ButtonOf(controls.dialog, "Download").isEnabled());
        EXPECT_FALSE(controls.file.isEnabled());
        EXPECT_FALSE(ButtonOf(controls.dialog, "Browse...").isEnabled());
        EXPECT_EQ(controls.progress.maximum(), 5000);
        ASSERT_TRUE(RunUntil([&] { return controls.progress.value() > 0; }));
        Press(controls.dialog, "Cancel");
        EXPECT_FALSE(controls.dialog.isVisible());
        EXPECT_TRUE(program->Link().IsIdle());
    });
    EXPECT_LT(Addresses().size(), 5000U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(DownloadFirmware, InDemoModeIsCompleteAtOnce) {
    UseFile(":01000100AA00\n");
    openError = ENOENT;
    StartOnLine();
    prompts.Forget();
    Open([&](Controls& controls) {
        controls.Download();
        EXPECT_FALSE(controls.dialog.isVisible());
    });
    EXPECT_THAT(prompts.Texts(), ElementsAre(complete));
}

} // namespace
} // namespace busquill::test
