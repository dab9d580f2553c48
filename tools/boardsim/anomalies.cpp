#include "anomalies.h"

#include <vector>

namespace boardsim {

void Anomalies::Stop() noexcept {
    running_ = false;
    found_.clear();
}

std::uint8_t Anomalies::TakeResult(std::span<const std::uint8_t, checklistBytes> checklist) {
    if (!running_) {
        return 0;
    }
    if (!found_.empty()) {
        const std::uint8_t check = found_.front();
        found_.pop_front();
        return check;
    }
    part_ += rate;
    if (part_ < 100) {
        return 0;
    }
    part_ -= 100;
    return Any(checklist);
}

/// A check that is switched on; 0 if there is none.
std::uint8_t Anomalies::Any(std::span<const std::uint8_t, checklistBytes> checklist) {
    std::vector<std::uint8_t> on;
    for (int check = 1; check <= checks_; ++check) {
        const int bit = check - 1;
        if ((checklist[static_cast<std::size_t>(bit / 8)] >> (bit % 8) & 1) == 0) {
            on.push_back(static_cast<std::uint8_t>(check));
        }
    }
    return on.empty() ? std::uint8_t{0} : on[random_() % on.size()];
}

} // namespace boardsim
