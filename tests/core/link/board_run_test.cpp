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
    void Start() { LookEvery(200ms); }
    void Look() override { ++looks; }
    void Stop() override { LookNoMore(); }

    int looks = 0;
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
    EXPECT_EQ(run.looks, 2);
    run.Stop();
    EXPECT_FALSE(timer->runs);
}

TEST_F(BoardRuns, StopPollingWhenTheyAreDestroyed) {
    {
        CountedRun run(Parts());
        run.Start();
    }
    EXPECT_FALSE(timer->runs);
}

TEST_F(BoardRuns, RunWithoutATimerToo) {
    CountedRun run({*link, prompts, nullptr});
    run.Start();
    run.Look();
    run.Stop();
    EXPECT_EQ(run.looks, 1);
}

} // namespace
} // namespace busquill::test
