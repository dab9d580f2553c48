#pragma once

#include "traffic.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace boardsim {

/// One transaction, written down by whoever made it.
struct Deed {
    /// A data phase that moved something.
    struct Transfer {
        std::size_t sample = 0;
        std::string text; // hexadecimal, "--" for a byte that did not move
        unsigned bytes = 0;
        std::optional<std::size_t> strobe; // the sample of its strobe, if someone waited for it
        std::size_t settledBy = 0;         // the sample from which on the lines show it
        std::string early = {};            // what they show before
    };

    /// What becomes of the command at a later sample.
    struct Change {
        std::size_t sample = 0;
        std::string command;
    };

    std::string command;
    std::optional<Change> modifies;
    std::string address;
    std::string end;
    std::size_t first = 0; // samples
    std::size_t last = 0;
    std::size_t commandToldBy = 0; // the sample by which the command is on the bus
    std::size_t addressToldBy = 0;
    std::optional<std::size_t> secondHalf; // of a dual address; alone it looks like an address
    bool showsItsEnd = false;              // the last sample alone shows that it is the last
    std::optional<std::size_t> endToldBy;  // the sample in which a target signals the end
    std::vector<Transfer> transfers;
    std::vector<std::size_t> waits;          // clocks of the target
    std::vector<std::size_t> initiatorWaits; // clocks of the initiator
    std::optional<unsigned> tag;
    std::size_t tagSample = 0;
    std::optional<std::size_t> request; // the deed that this one completes, by its place
};

/// Makes transactions of every kind and way to end, and writes down what it does.
class Doer {
public:
    explicit Doer(std::uint32_t seed) : random_(seed) {}
    virtual ~Doer() = default;

    /// Appends the samples of some transactions.
    virtual void Act() = 0;
    /// Whether a transaction cannot be told from an earlier one without the sample before it.
    [[nodiscard]] virtual bool NeedsSampleBefore() const = 0;

    struct Sample {
        Record record{};
        unsigned nanoseconds = 0; // since the sample before
        bool hasFinding = false;
    };
    [[nodiscard]] const std::vector<Sample>& Samples() const { return samples_; }
    [[nodiscard]] const std::vector<Deed>& Deeds() const { return deeds_; }

protected:
    /// Returns the place of the sample.
    std::size_t Put(Record record, unsigned nanoseconds, unsigned rule = 0);
    [[nodiscard]] unsigned Pick(unsigned limit) { return random_() % limit; }
    [[nodiscard]] bool Seldom() { return Pick(8) == 0; }
    [[nodiscard]] std::uint32_t Word() { return random_(); }
    [[nodiscard]] std::uint64_t Words() { return std::uint64_t{Word()} << 32 | Word(); }

    std::vector<Sample> samples_;
    std::vector<Deed> deeds_;

private:
    std::mt19937 random_;
};

[[nodiscard]] std::unique_ptr<Doer> MakePciDoer(std::uint32_t seed, bool wide, bool pciX);
[[nodiscard]] std::unique_ptr<Doer> MakeVmeDoer(std::uint32_t seed, bool lark);
[[nodiscard]] std::unique_ptr<Doer> MakeVsbDoer(std::uint32_t seed);

/// Digits of a value, with "--" for the bytes that are not in `lanes`.
[[nodiscard]] std::string HexText(std::uint64_t value, unsigned bytes, unsigned lanes = 0xFF);
/// With "0x".
[[nodiscard]] std::string AddressText(std::uint64_t value, unsigned digits);

/// A capture with its transactions.
struct DeedRecording {
    std::vector<Record> samples;
    std::vector<bool> missing; // not in the file
    /// The transactions that the capture shows, as a table of comma separated values. Samples
    /// are numbered from the trigger.
    std::string table;
};

/// Records `count` samples of transactions, from somewhere inside them on, and leaves samples out
/// at `gaps` places. Only for families that have transactions.
[[nodiscard]] DeedRecording RecordDeeds(Family family, std::uint32_t seed, std::size_t count,
                                        std::size_t trigger, unsigned gaps);

} // namespace boardsim
