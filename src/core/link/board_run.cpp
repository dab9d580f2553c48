#include "link/board_run.h"

namespace busquill {

BoardRun::BoardRun(Parts parts) : parts_(std::move(parts)) {}

BoardRun::~BoardRun() = default;

void BoardRun::LookEvery(std::chrono::milliseconds period) {
    if (parts_.timer) {
        parts_.timer->Start(period, [this] { Look(); });
    }
}

void BoardRun::LookNoMore() {
    if (parts_.timer) {
        parts_.timer->Stop();
    }
}

} // namespace busquill
