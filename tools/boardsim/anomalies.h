#pragma once

#include "wire.h"

#include <cstdint>
#include <deque>
#include <random>
#include <span>

namespace boardsim {

constexpr std::size_t checklistBytes = 16;

/// The checks for anomalies of the bus. The board has no time of its own: a part of the readings of
/// the result find something.
class Anomalies {
public:
    /// The checks of the board's family are numbered from 1 to `checks`.
    explicit Anomalies(int checks) : checks_(checks) {}

    /// The part of the readings that report a check, in percent.
    int rate = 50;
    /// Finds a check, whatever the check list says.
    void Find(std::uint8_t check) { found_.push_back(check); }

    void Start() noexcept { running_ = true; }
    /// What was found is forgotten.
    void Stop() noexcept;

    /// The result, as the host reads it: the number of a check, or 0. A set bit of the check list
    /// switches a check off.
    [[nodiscard]] std::uint8_t TakeResult(std::span<const std::uint8_t, checklistBytes> checklist);

private:
    [[nodiscard]] std::uint8_t Any(std::span<const std::uint8_t, checklistBytes> checklist);

    int checks_;
    bool running_ = false;
    int part_ = 0; // of the next finding, in percent
    std::deque<std::uint8_t> found_;
    std::minstd_rand random_;
};

} // namespace boardsim
