// F1 in each window, and its Help button, lead to the page that describes it.

#include "support/help_fixture_qt.h"

namespace busquill::test {
namespace {

class HelpByKey : public HelpFixture {};

TEST_F(HelpByKey, InTheEmptyMainWindowOpensTheContents) {
    EXPECT_EQ(PageOfF1(Frame()), "index.md");
}

TEST_F(HelpByKey, InTheWindowOfAFunctionOpensItsPageLikeItsHelpButton) {
    const std::pair<const char*, const char*> windows[] = {
        {"File/New/Capture/State", "listing.md"},
        {"File/New/Capture/Waveform", "waveforms.md"},
        {"File/New/Performance/Utilization", "performance.md"},
        {"File/New/Performance/Transfer Rate", "performance.md"},
        {"File/New/Performance/Latency", "performance.md"},
        {"File/New/Performance/Burst Distribution", "performance.md"},
        {"File/New/Performance/Statistics", "performance.md"},
        {"File/New/Exerciser/Master", "master.md"},
        {"File/New/Exerciser/Configuration", "configuration.md"},
        {"File/New/Exerciser/Stimulus", "stimulus.md"},
        {"File/New/Target", "target.md"},
        {"File/New/Compliance Tests", "compliance.md"},
        {"File/New/Anomaly Detection", "anomaly-detection.md"},
        {"File/New/Backplane Test", "backplane.md"},
    };
    for (const auto& [path, page] : windows) {
        SCOPED_TRACE(path);
        Choose(path);
        EXPECT_EQ(PageOfF1(Active()), page);
        EXPECT_EQ(PageOfF1(*Frame().menuBar()), page) << "the active window counts";
        Press(Active(), "Help");
        EXPECT_EQ(ShownPage(), page);
        ExpectToExist(page);
        Active().close();
        QTest::qWait(10); // until it is closed
    }
}

TEST_F(HelpByKey, FollowsTheDisplayOfACapture) {
    Choose("File/New/Capture/State");
    AnswerDialog<QDialog>([&] { Press(Active(), "Display"); },
                          [&](QDialog& question) {
                              ExpectDialogPage(question, "capture.md#new-trace-window");
                              Press(question, "OK"); // in the same window
                          });
    EXPECT_EQ(PageOfF1(Active()), "waveforms.md");
    Press(Active(), "Power Zoom");
    EXPECT_EQ(PageOfF1(*Windows().last()), "waveforms.md#power-zoom");
    ExpectToExist("waveforms.md#power-zoom");
}

TEST_F(HelpByKey, InAFileDialogTellsAboutFiles) {
    const auto expect = [&](const std::function<void()>& open) {
        AnswerDialog<QFileDialog>(
            open, [&](QFileDialog& files) { ExpectDialogPage(files, "file-types.md"); });
    };
    Choose("File/New/Capture/State");
    expect([&] { Choose("File/Save As..."); });
    Choose("File/New/Performance/Utilization");
    expect([&] { Press(Active(), "Load"); });
}

TEST_F(HelpByKey, InsideTheHelpExplainsTheHelp) {
    Choose("Help/Contents");
    ManualBrowser* browser = FindBrowser();
    ASSERT_NE(browser, nullptr);
    QTest::keyClick(browser, Qt::Key_F1);
    EXPECT_EQ(browser->Page(), "index.md#using-the-help");
    ExpectToExist("index.md#using-the-help");
}

TEST_F(HelpByKey, OtherKeysWithF1AreLeftAlone) {
    QTest::keyClick(&Frame(), Qt::Key_F1, Qt::ControlModifier);
    EXPECT_EQ(ShownPage(), "(none)");
}

} // namespace
} // namespace busquill::test
