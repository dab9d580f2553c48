#include "support/link_fixture.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// Message boxes of the link's thread, which holds the queue lock, while the main thread waits. The
/// prompts are those of the main thread; a presenter stands in for the user.
class LinkBoxesTest : public testing::Test {
protected:
    LinkBoxesTest()
        : line(std::make_shared<ScriptedLine>(clock)),
          link(std::make_unique<CAnalyzerLink>(CAnalyzerLink::Services{
              settings, mainThread, clock, mainThread,
              [this](const std::string&) { return std::make_unique<ScriptedSerialPort>(line); },
              usb})) {
        settings.WriteProfileString("Setup", "ComPort", "COM1");
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
        line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
        mainThread.SetPresenter(
            [this](const Box& box) {
                EXPECT_EQ(std::this_thread::get_id(), mainId);
                shown.push_back(box.text);
                if (onBox) {
                    onBox();
                }
                return Answer::Ok;
            },
            [this] { ++arrived; });
        static_cast<void>(link->Open(ReadPortSetting(settings)));
    }
    ~LinkBoxesTest() override { link.reset(); }

    const std::thread::id mainId = std::this_thread::get_id();
    ManualClock clock;
    MemorySettings settings;
    MainThread mainThread;
    std::shared_ptr<ScriptedLine> line;
    WireBoard board;
    ScriptedUsb usb;
    std::vector<std::string> shown; // main thread
    std::function<void()> onBox;    // main thread
    std::atomic<int> arrived = 0;
    std::unique_ptr<CAnalyzerLink> link;
};

TEST_F(LinkBoxesTest, ABoxIsAnsweredWhileTheMainThreadWaitsForAnExchange) {
    line->SetErrors({.write = 5});
    // The main thread writes the first try, the link's thread the other four.
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_THAT(shown,
                testing::AllOf(testing::SizeIs(5), testing::Each("Error writing to COM1, err 5")));
    EXPECT_EQ(arrived, 4);
}

TEST_F(LinkBoxesTest, ABoxIsAnsweredWhileTheMainThreadWaitsForTheQueueToBeIdle) {
    line->SetErrors({.write = 5});
    link->Submit(RunCommand(CmdStartTrace));
    const auto begin = std::chrono::steady_clock::now();
    link->WaitIdle();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
    EXPECT_EQ(shown.size(), 5U);
    EXPECT_EQ(arrived, 4);
}

TEST_F(LinkBoxesTest, ABoxIsAnsweredWhileTheMainThreadWaitsForTheQueueLock) {
    line->SetErrors({.write = 5});
    link->Submit(RunCommand(CmdStartTrace));
    // The link's thread now waits for its answer with the lock held.
    ASSERT_TRUE(Eventually([&] { return arrived == 1; }));
    EXPECT_EQ(shown.size(), 1U) << "the box of the main thread";
    onBox = [&] { line->SetErrors({}); };
    std::atomic<bool> done = false;
    link->Submit(NewRequest(CmdStopTrace, [&](const LinkRequestPtr&) { done = true; }));
    EXPECT_EQ(shown.size(), 2U) << "answered before the lock was free";
    EXPECT_TRUE(Eventually([&] { return done.load(); }));
    EXPECT_THAT(board.functions, ElementsAre(11, 12));
}

TEST_F(LinkBoxesTest, TheDemoModeBoxIsAnsweredWhileTheLinkIsOpenedAgain) {
    line->SetAnswer([](const Bytes&, int) { return Bytes{}; });
    link->ReadIdentity();
    ASSERT_TRUE(Eventually([&] { return arrived == 1; }));
    line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
    link->Connect(ReadPortSetting(settings));
    EXPECT_THAT(shown, ElementsAre(demoModeMessage));
    EXPECT_FALSE(link->IsDemoMode()) << "Demo Mode belonged to the previous port";
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(LinkBoxesTest, TheDestructorAnswersABoxThatIsStillOpen) {
    line->SetErrors({.write = 5});
    link->Submit(RunCommand(CmdStartTrace));
    ASSERT_TRUE(Eventually([&] { return arrived == 1; }));
    link.reset();
    EXPECT_EQ(shown.size(), 2U);
}

} // namespace
} // namespace busquill::test
