#pragma once

#include "comparators.h"
#include "wire.h"

#include <bitset>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace boardsim {

/// The board's trigger sequencer and its sample memory: runs a downloaded program over traffic.
///
///   for each sample, in the level that is active:
///     stored when the level's store expression holds, and always when the trigger falls on it
///     the condition holds   one occurrence more; at the last one the "then" branch is taken
///     it does not hold      the "else" branch is taken
///   a branch leads to a level and may trigger; another level begins with no occurrences
///
/// An operator binds in the order NOT, AND, XOR, OR.
class Sequencer {
public:
    /// A memory that already holds samples, as after a run.
    Sequencer(std::vector<Record> samples, std::size_t trigger, std::vector<Record> zoom,
              Comparators comparators = {});

    /// Takes the program from the bytes of its registers: event rows, level rows, parameters.
    /// `bufferSamples` is the size of the sample memory; a board without Power Zoom has no zoom
    /// memory.
    void Start(std::span<const std::uint8_t> events, std::span<const std::uint8_t> control,
               std::span<const std::uint8_t> parameters, std::size_t bufferSamples, bool hasZoom);
    void Stop();

    /// One sample of the bus, in order. Ignored if no run is active or the memory is full.
    void Feed(const Record& record);
    [[nodiscard]] bool WantsSamples() const noexcept { return active_ && !full_; }

    /// The nine bytes of the live status.
    [[nodiscard]] std::array<std::uint8_t, 9> LiveStatus() const;

    /// The sample at a distance from the trigger, and that of the zoom memory; all zeros where
    /// there is none.
    [[nodiscard]] Record At(std::int64_t distance) const;
    /// The distances of the first and the last stored sample.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> Range() const;
    [[nodiscard]] Record ZoomAt(std::int64_t distance) const;

private:
    /// The result of an expression for each set of events that a sample matches.
    using Truth = std::bitset<256>;
    struct Branch {
        int level = 0;
        bool trigger = false;
    };
    struct Level {
        Truth condition;
        Truth store;
        unsigned occurs = 0;
        Branch onSuccess;
        Branch onFailure;
    };

    [[nodiscard]] static Truth Compile(std::span<const std::uint8_t, 8> expression);
    void Take(const Branch& branch, Record record);
    void Store(const Record& record);
    void Trigger(const Record& record);
    void NoteForZoom(const Record& record);

    Comparators comparators_;
    std::vector<Level> levels_;
    bool active_ = false;
    bool triggered_ = false;
    bool full_ = false;
    int level_ = 0;
    unsigned occurrences_ = 0;
    std::uint64_t unstoredTime_ = 0; // nanoseconds of the samples since the last stored one

    std::size_t beforeLimit_ = 0;
    std::size_t afterLimit_ = 0;
    std::deque<Record> before_; // the oldest first
    std::vector<Record> after_; // the trigger's sample first

    std::deque<Record> recent_; // samples of the bus around the trigger, for the zoom memory
    std::size_t recentTrigger_ = 0;
    unsigned zoomPicoseconds_ = 0; // 0: the board has none
    std::vector<Record> zoom_;
};

} // namespace boardsim
