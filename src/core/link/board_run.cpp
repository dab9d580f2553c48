#include "link/board_run.h"

#include "link/analyzer_link.h"

namespace busquill {

BoardRun::BoardRun(Parts parts) : parts_(std::move(parts)) {}

BoardRun::~BoardRun() = default;

void BoardRun::PollEvery(std::chrono::milliseconds period) {
    if (parts_.timer) {
        parts_.timer->Start(period, [this] { Poll(); });
    }
}

void BoardRun::StopPolling() {
    if (parts_.timer) {
        parts_.timer->Stop();
    }
}

void BoardRun::StopPollingIfGone() {
    if (Link().IsBoardGone()) {
        StopPolling();
    }
}

} // namespace busquill
