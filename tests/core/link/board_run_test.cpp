#include "link/board_run.h"
#include "support/link_fixture.h"
#include "support/manual_timer.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;

class CountedRun final : public BoardRun {
public:
    using BoardRun::BoardRun;
    void Start() { PollEvery(200ms); }
    void Poll() override { ++polls; }
    void Stop() override { StopPolling(); }

    int polls = 0;
};

class BoardRuns : public LinkFixture {
protected:
    BoardRun::Parts Parts() { return {*link, prompts, std::make_unique<ManualTimer>(timer)}; }

    std::shared_ptr<TimerState> timer = std::make_shared<TimerState>();
};

TEST_F(BoardRuns, PollFromStartToStop) {
    CountedRun run(Parts());
    EXPECT_FALSE(timer->runs);
    run.Start();
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 200ms);
    timer->tick();
    timer->tick();
    EXPECT_EQ(run.polls, 2);
    run.Stop();
    EXPECT_FALSE(timer->runs);
}

TEST_F(BoardRuns, PollNoMoreOnceDestroyed) {
    {
        CountedRun run(Parts());
        run.Start();
    }
    EXPECT_FALSE(timer->runs);
}

TEST_F(BoardRuns, RunWithoutATimerToo) {
    CountedRun run({*link, prompts, nullptr});
    run.Start();
    run.Poll();
    run.Stop();
    EXPECT_EQ(run.polls, 1);
}

} // namespace
} // namespace busquill::test
