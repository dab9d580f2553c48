#pragma once

#include "comparators.h"
#include "wire.h"

#include <array>
#include <cstdint>
#include <span>

namespace boardsim {

constexpr std::size_t stimulusEventBytes = 240;
constexpr std::size_t stimulusPatternBytes = 480;
constexpr std::size_t stimulusControlBytes = 80;

/// The board's pattern generator: runs a downloaded program over traffic.
///
///   for each sample, in the level that is active:
///     its event occurs    one occurrence more; after the last one its pattern is driven for as
///                         many samples as its duration, nothing happens for as many as its wait,
///                         and the "then" branch is taken
///     it does not occur   the "else" branch is taken
///   a branch leads to a level or ends the program; another level begins with no occurrences
///
/// Only the bits of a pattern that are compared are driven.
class Stimulus {
public:
    explicit Stimulus(Comparators comparators = {}) : comparators_(std::move(comparators)) {}

    /// Takes the program from the bytes of its registers.
    void Start(std::span<const std::uint8_t> events, std::span<const std::uint8_t> patterns,
               std::span<const std::uint8_t> control);
    void Stop() noexcept { running_ = false; }
    [[nodiscard]] bool IsRunning() const noexcept { return running_; }

    /// Takes one sample of the bus, in order, and returns it with what the board drives.
    [[nodiscard]] Record Feed(const Record& record);

private:
    static constexpr unsigned stop = 15;
    struct Level {
        unsigned condition = 0; // 1 to 8: an event, 15: any sample, others: none
        unsigned pattern = 0;   // 0: none
        unsigned onSuccess = 0;
        unsigned onFailure = 0;
        unsigned occurs = 0;
        unsigned duration = 0;
        unsigned wait = 0;
    };
    struct Pattern {
        std::array<std::uint8_t, 15> value{};
        std::array<std::uint8_t, 15> driven{};
    };

    [[nodiscard]] static bool Holds(unsigned condition, unsigned matches) noexcept;
    [[nodiscard]] Record Drive(unsigned pattern, const Record& record) const;
    void GoTo(unsigned level);

    Comparators comparators_;
    std::array<Pattern, 16> patterns_; // the first one is empty
    std::array<Level, 15> levels_;
    bool running_ = false;
    unsigned level_ = 0;
    unsigned occurrences_ = 0;
    unsigned spent_ = 0;  // samples since the last occurrence
    bool acting_ = false; // the level's condition has been met
};

} // namespace boardsim
