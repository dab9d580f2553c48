/// Finds samples by pattern in the records of a capture.
#pragma once

#include "signals/signal.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

class CSignalList;

/// What samples are compared with: the bits of a record, and which of them are compared.
class RecordPattern {
public:
    /// Takes the first column of a pattern list. Bits of the record past the first 120 are never
    /// compared, since the board cannot compare them either.
    explicit RecordPattern(const CSignalList& list);
    RecordPattern(const SampleRecord& value, const SampleRecord& care);

    [[nodiscard]] bool Matches(const SampleRecord& record) const noexcept;
    /// A bit for each of at most `blockSize` records, set where it matches.
    [[nodiscard]] std::uint32_t MatchesOf(std::span<const SampleRecord> records) const noexcept;
    static constexpr std::size_t blockSize = 32;

private:
    template <bool Low, bool High, bool Top>
    [[nodiscard]] std::uint32_t MatchBit(const SampleRecord& record) const noexcept;
    template <bool Low, bool High, bool Top>
    [[nodiscard]] std::uint32_t MatchesBy(std::span<const SampleRecord> records) const noexcept;

    // Bytes 0 to 7, 8 to 15, and 16 and 17 of the record.
    std::array<std::uint64_t, 3> value_{};
    std::array<std::uint64_t, 3> care_{};
};

/// The first match at or after `start`.
[[nodiscard]] std::optional<std::int64_t> FindForward(std::span<const SampleRecord> records,
                                                      const RecordPattern& pattern,
                                                      std::int64_t start) noexcept;
/// The last match at or before `start`. Sample 0 is never found; users are used to that.
[[nodiscard]] std::optional<std::int64_t> FindBackward(std::span<const SampleRecord> records,
                                                       const RecordPattern& pattern,
                                                       std::int64_t start) noexcept;

/// Sets `samples` to the matching samples in ascending order, and the bits of these samples in
/// `bits`. Samples whose bit in `excluded` is set are left out; it may be empty.
void FindAll(std::span<const SampleRecord> records, const RecordPattern& pattern,
             std::span<const std::uint32_t> excluded, std::vector<std::uint32_t>& samples,
             std::vector<std::uint32_t>& bits);

} // namespace busquill
