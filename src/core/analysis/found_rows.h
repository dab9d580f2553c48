#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

/// The rows of a list of findings and hits, in the order of the capture. A sample with both has two
/// rows, the finding first. A row is found by counting bits: there may be millions.
class FoundRows {
public:
    struct Row {
        std::size_t sample = 0; // index
        bool isHit = false;     // or a finding

        friend bool operator==(const Row&, const Row&) = default;
    };

    FoundRows() = default;
    /// A bit for each sample, set for those with a finding and for hits. Only samples whose bit in
    /// `shown` is set have rows.
    FoundRows(std::span<const std::uint32_t> findings, std::span<const std::uint32_t> hits);
    FoundRows(std::span<const std::uint32_t> findings, std::span<const std::uint32_t> hits,
              std::span<const std::uint32_t> shown);

    [[nodiscard]] std::size_t Size() const noexcept {
        return rowsBefore_.empty() ? 0 : rowsBefore_.back();
    }
    [[nodiscard]] Row At(std::size_t row) const noexcept;
    /// Nothing if there is no such row.
    [[nodiscard]] std::optional<std::size_t> Find(const Row& row) const noexcept;
    /// Rows of samples before one.
    [[nodiscard]] std::size_t CountBefore(std::size_t sample) const noexcept;

    friend bool operator==(const FoundRows&, const FoundRows&) = default;

private:
    [[nodiscard]] std::size_t CountIn(std::size_t word) const noexcept;

    std::vector<std::uint32_t> findings_;
    std::vector<std::uint32_t> hits_;
    std::vector<std::size_t> rowsBefore_; // before each stride of words, and all at the end
};

} // namespace busquill
