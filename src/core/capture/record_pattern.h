/// Finding samples by pattern in the records of a capture.
#pragma once

#include "signals/signal.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

class CSignalList;

/// What a sample is compared with: the bits of one record and those of them that count.
class RecordPattern {
public:
    /// From the first column of a pattern list. Bits of the record past the first 120 are never
    /// compared, since the board compares no more.
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

    // The first and the second eight bytes of a record, and the two after them.
    std::array<std::uint64_t, 3> value_{};
    std::array<std::uint64_t, 3> care_{};
};

/// The first match at or after `start`.
[[nodiscard]] std::optional<std::int64_t> FindForward(std::span<const SampleRecord> records,
                                                      const RecordPattern& pattern,
                                                      std::int64_t start) noexcept;
/// The last match at or before `start`. Sample 0 is not looked at, which users know.
[[nodiscard]] std::optional<std::int64_t> FindBackward(std::span<const SampleRecord> records,
                                                       const RecordPattern& pattern,
                                                       std::int64_t start) noexcept;

/// The matching samples in ascending order, and a bit for each record that is set for those. Sets
/// bits of `excluded` are left out; empty means none.
void FindAll(std::span<const SampleRecord> records, const RecordPattern& pattern,
             std::span<const std::uint32_t> excluded, std::vector<std::uint32_t>& samples,
             std::vector<std::uint32_t>& bits);

} // namespace busquill
