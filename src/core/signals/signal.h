#pragma once

#include "platform/bits.h"
#include "platform/zeroed_array.h"
#include "signals/signal_tables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace busquill {

/// One captured sample: bit n is bit n mod 8 of byte n / 8.
struct SampleRecord {
    static constexpr int bitCount = 144;

    std::array<std::uint8_t, 18> bytes{};

    /// False for a bit that the record does not have.
    [[nodiscard]] bool Bit(int n) const noexcept {
        return TestBit(bytes, static_cast<std::size_t>(n));
    }
    void SetBit(int n, bool value = true) noexcept {
        AssignBit(bytes, static_cast<std::size_t>(n), value);
    }
    /// At most 64 neighbouring bits as a number.
    [[nodiscard]] std::uint64_t Field(int first, std::size_t width) const noexcept {
        const auto from = static_cast<std::size_t>(first) / 8;
        const auto shift = static_cast<std::size_t>(first) % 8;
        // Most fields lie inside a byte or a word, whose size the compiler knows.
        if (shift + width <= 8 && from < bytes.size()) {
            return (bytes[from] >> shift) & LowBits<std::uint64_t>(width);
        }
        if (shift + width <= wordBits && from + sizeof(std::uint32_t) <= bytes.size()) {
            std::uint32_t word = 0;
            std::memcpy(&word, bytes.data() + from, sizeof word);
            return (word >> shift) & LowBits<std::uint64_t>(width);
        }
        return BitsAt(bytes, static_cast<std::size_t>(first), width);
    }
    friend bool operator==(const SampleRecord&, const SampleRecord&) = default;
};
static_assert(sizeof(SampleRecord) == 18, "records lie 18 bytes apart");

/// How a value is printed; files may hold other numbers, for which nothing is printed.
namespace Radix {
enum : std::int32_t { Binary = 0, Hex = 1, Octal = 2, Time = 3 };
}

namespace GroupAttribute {
enum : std::uint8_t { Start = 1, End = 2, NoUngroup = 4 };
}

/// One bit of the sample record over a run of samples; the first member of a group also holds the
/// group's samples packed as rows. In a setup the samples are the columns of a pattern table and
/// each bit has a mask.
class CSignal {
public:
    std::string name;
    std::string baseName;
    std::string groupName; // on the group's first member
    std::int32_t bitIndex = -1;
    std::int32_t dataIndex = -1; // -1: a blank row without a bit
    ZeroedArray<std::uint32_t> data;
    ZeroedArray<std::uint32_t> mask; // only in setups; bit 1: compare
    /// Number of samples. A file may announce more than `data` has room for, see Room.
    std::uint32_t numSamples = 0;
    std::int32_t height = 20;
    std::int32_t width = 30;
    std::uint32_t color = 0; // 0x00BBGGRR
    bool selected = false;
    bool showValue = false;
    bool grouped = false;
    std::uint8_t groupAttribute = 0;
    ZeroedArray<std::uint8_t> groupData; // packed rows, on the Start member
    ZeroedArray<std::uint8_t> groupMask;
    /// Per sample of a decoded signal: 0, or 1 + the index of the value whose label it shows.
    ZeroedArray<std::uint8_t> labelTable;
    std::shared_ptr<const CDecodedSignalDef> decoded; // on the Start member
    std::uint32_t groupWidth = 0;                     // on the Start member
    std::int32_t radix = Radix::Hex;
    bool hidden = false;
    bool permanent = false;
    bool bitReverse = false;

    /// The name of the row: the group's for a grouped signal, else the signal's.
    [[nodiscard]] const std::string& RowName() const noexcept { return grouped ? groupName : name; }
    /// 0 for a member of a group other than the first, and for a hidden signal.
    [[nodiscard]] std::int32_t VisibleHeight() const noexcept;
    [[nodiscard]] std::int32_t VisibleWidth() const noexcept;
    /// Whether the row has no bit, so that it never shows anything.
    [[nodiscard]] bool IsBlank() const noexcept { return !grouped && dataIndex < 0; }
    [[nodiscard]] bool IsGroupStart() const noexcept {
        return grouped && (groupAttribute & GroupAttribute::Start) != 0;
    }
    /// Number of samples that `data` has room for.
    [[nodiscard]] std::uint32_t Room() const noexcept;
    /// The bit of one sample; false where there is no data.
    [[nodiscard]] bool Bit(std::size_t sample) const noexcept;
    /// Whether one sample's bit is compared; true where there is no mask.
    [[nodiscard]] bool MaskBit(std::size_t sample) const noexcept;
    /// The packed row of one sample, or empty.
    [[nodiscard]] std::span<const std::uint8_t> GroupRow(std::size_t sample) const noexcept;
    /// The packed mask row of one sample, or empty.
    [[nodiscard]] std::span<const std::uint8_t> GroupMaskRow(std::size_t sample) const noexcept;
    /// Bytes of one packed row; 0 for a signal that does not start a group.
    [[nodiscard]] std::size_t RowBytes() const noexcept;
    /// The label of one sample, or null.
    [[nodiscard]] const char* Label(std::size_t sample) const noexcept;

    /// Resets data, group rows and labels (where the signal has them) to zeros for `count` samples.
    /// Masks are unchanged.
    void ResizeSamples(std::uint32_t count);
    /// Creates a mask that compares nothing, for `count` samples.
    void AllocateMask(std::uint32_t count);
    void CopyFrom(const CSignal& other) { *this = other; }
};

} // namespace busquill
