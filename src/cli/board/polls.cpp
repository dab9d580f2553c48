#include "cli/board/polls.h"

#include "cli/board/line_output.h"

#include <algorithm>

namespace busquill::cli::board {

namespace {

/// Within such a time an interrupt is noticed.
constexpr Milliseconds glance(50);
/// A single failure may be that of the line. In front of a window somebody would notice more.
constexpr int mostFailures = 3;

} // namespace

struct Polls::Schedule {
    std::function<void()> tick; // empty: polling is off
    Milliseconds period{};
    BoardSession::Time::time_point next;

    [[nodiscard]] Milliseconds Left() const {
        return std::chrono::ceil<Milliseconds>(next - BoardSession::Time::now());
    }
    void Begin() { next = BoardSession::Time::now() + period; }
};

class Polls::Timer final : public RepeatingTimer {
public:
    explicit Timer(std::shared_ptr<Schedule> schedule) : schedule_(std::move(schedule)) {}
    ~Timer() override { Timer::Stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void Start(std::chrono::milliseconds period, std::function<void()> tick) override {
        schedule_->tick = std::move(tick);
        schedule_->period = period;
        schedule_->Begin();
    }
    void Stop() override { schedule_->tick = nullptr; }

private:
    const std::shared_ptr<Schedule> schedule_;
};

Polls::Polls(BoardSession& session) : session_(session), schedule_(std::make_shared<Schedule>()) {}

BoardRun::Parts Polls::Parts() {
    return {session_.Link(), session_.Boxes(), std::make_unique<Timer>(schedule_)};
}

bool Polls::AreOn() const noexcept {
    return schedule_->tick != nullptr;
}

WaitEnd Polls::Follow(const LineOutput& output) {
    while (AreOn() && output.IsOpen() && !isBoardLost_) {
        WaitEnd end = session_.WaitUntil([this] { return schedule_->Left() <= Milliseconds(0); },
                                         std::clamp(schedule_->Left(), Milliseconds(0), glance));
        end = end == WaitEnd::Done ? session_.EndAsked() : end;
        if (end != WaitEnd::Done) {
            return end;
        }
        Poll();
    }
    return WaitEnd::Done;
}

void Polls::Finish() {
    while (AreOn() && !isBoardLost_) {
        session_.Boxes().WaitUntil(schedule_->Left(), [] { return false; });
        Poll();
    }
}

void Polls::Poll() {
    const auto tick = schedule_->tick; // it may start the timer anew
    schedule_->Begin();
    tick();
    failures_ = session_.PrintMessages() ? failures_ + 1 : 0;
    isBoardLost_ = failures_ >= mostFailures || session_.Link().IsBoardGone();
}

} // namespace busquill::cli::board
