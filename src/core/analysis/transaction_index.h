#pragma once

#include "analysis/transaction_follower.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace busquill {

/// The samples of a capture as a store holds them.
struct CapturedSamples {
    std::span<const SampleRecord> records;
    std::int64_t first = 0;                // the number of the first record
    std::span<const std::uint32_t> absent; // a bit for each missing sample; may be empty

    [[nodiscard]] bool Has(std::size_t index) const noexcept {
        return index < records.size() && !TestBit(absent, index);
    }
};

/// Where each transaction of a capture begins: four bytes for each, so that a table of millions of
/// rows fits beside the samples. What else a row tells is found by following it once more.
///
/// All functions take the samples anew, since a store may move them. One thread at a time.
class TransactionIndex {
public:
    TransactionIndex(const BoardTraits& board, const SignalTables& tables);

    /// Follows the samples that were added since the last call. The earlier ones have not changed.
    void Extend(const CapturedSamples& samples);

    /// Transactions, including one in progress at the last sample.
    [[nodiscard]] std::size_t Size() const noexcept {
        return starts_.size() + (openStart_ ? 1U : 0U);
    }
    /// Where a transaction begins: the index of a record.
    [[nodiscard]] std::size_t StartOf(std::size_t row) const {
        return row < starts_.size() ? starts_[row] : openStart_.value();
    }
    /// All about a transaction, with its first `words` data words.
    [[nodiscard]] Transaction Row(std::size_t row, const CapturedSamples& samples,
                                  std::size_t words);
    /// The transaction to which a sample belongs, if any.
    [[nodiscard]] std::optional<std::size_t> RowAt(std::size_t index,
                                                   const CapturedSamples& samples);
    /// Memory in use, about.
    [[nodiscard]] std::size_t Bytes() const noexcept;
    /// For the names of commands; null for a connector.
    [[nodiscard]] const BusTraffic* Traffic() const noexcept { return reader_.Traffic(); }

private:
    static constexpr std::size_t stride = 1024; // records between two known states
    /// What is known of the records before a stride.
    struct Known {
        std::int64_t time = 0;                 // of the last sample
        std::optional<std::uint32_t> absentAt; // the last missing one
    };

    [[nodiscard]] std::int64_t TimeBefore(std::size_t index, const CapturedSamples& samples) const;
    [[nodiscard]] bool HasAll(std::size_t first, std::size_t end,
                              const CapturedSamples& samples) const;
    void StartAt(std::size_t row, std::optional<std::int64_t> lastEnd,
                 const CapturedSamples& samples);
    [[nodiscard]] Transaction Follow(std::size_t row, std::optional<std::int64_t> lastEnd,
                                     const CapturedSamples& samples);
    [[nodiscard]] std::optional<std::int64_t> EndBefore(std::size_t row,
                                                        const CapturedSamples& samples);

    TransactionFollower follower_; // at the last sample
    TransactionFollower reader_;   // for rows
    std::optional<SampleTime> sampleTime_;
    std::size_t followed_ = 0; // records
    std::deque<std::uint32_t> starts_;
    std::optional<std::size_t> openStart_;     // of the one in progress
    std::optional<std::uint64_t> openRequest_; // that it completes
    /// Rows of split completions and of their requests, ascending.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> splits_;
    std::vector<Known> known_; // at the beginning of each stride
    std::optional<std::size_t> firstPresent_;
    std::optional<std::uint32_t> absentAt_; // the last missing record
};

} // namespace busquill
