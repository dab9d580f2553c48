/// Bits kept in arrays of words. Bit n is bit n mod w of word n / w, where words have w bits.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <numeric>
#include <ranges>
#include <span>
#include <vector>

namespace busquill {

/// Bits in a word of a row of bits.
constexpr std::size_t wordBits = 32;

/// Words that hold `bits` bits.
[[nodiscard]] constexpr std::size_t WordsFor(std::size_t bits) noexcept {
    return bits / wordBits + (bits % wordBits != 0 ? 1 : 0);
}

/// Bytes that hold `bits` bits.
[[nodiscard]] constexpr std::size_t BytesFor(std::size_t bits) noexcept {
    return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

/// A word with its lowest `count` bits set; all bits if it has no more than that.
template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word LowBits(std::size_t count) noexcept {
    constexpr std::size_t width = std::numeric_limits<Word>::digits;
    return count >= width ? static_cast<Word>(~Word{0})
                          : static_cast<Word>((std::uint64_t{1} << count) - 1);
}

/// The numbers of a word's set bits, in ascending order: `for (const std::size_t bit :
/// EachSetBit(word))`.
template <std::unsigned_integral Word>
class EachSetBit {
public:
    class Iterator {
    public:
        explicit constexpr Iterator(Word left) noexcept : left_(left) {}
        [[nodiscard]] constexpr std::size_t operator*() const noexcept {
            return static_cast<std::size_t>(std::countr_zero(left_));
        }
        constexpr Iterator& operator++() noexcept {
            left_ = static_cast<Word>(left_ & (left_ - 1U));
            return *this;
        }
        [[nodiscard]] constexpr bool operator==(std::default_sentinel_t) const noexcept {
            return left_ == 0;
        }

    private:
        Word left_;
    };

    explicit constexpr EachSetBit(Word word) noexcept : word_(word) {}
    [[nodiscard]] constexpr Iterator begin() const noexcept { return Iterator(word_); }
    [[nodiscard]] constexpr std::default_sentinel_t end() const noexcept { return {}; }

private:
    Word word_;
};

// Operations on words that the caller owns. A bit past their end reads as unset; writing it does
// nothing.

template <typename Words>
concept BitWords = std::ranges::contiguous_range<Words> && std::ranges::sized_range<Words> &&
    std::unsigned_integral<std::ranges::range_value_t<Words>>;

template <BitWords Words>
[[nodiscard]] constexpr bool TestBit(const Words& words, std::size_t bit) noexcept {
    constexpr std::size_t width = std::numeric_limits<std::ranges::range_value_t<Words>>::digits;
    const std::size_t word = bit / width;
    return word < std::ranges::size(words) &&
           (std::ranges::data(words)[word] >> (bit % width) & 1U) != 0;
}

template <BitWords Words>
constexpr void AssignBit(Words&& words, std::size_t bit, bool value) noexcept {
    using Word = std::ranges::range_value_t<Words>;
    constexpr std::size_t width = std::numeric_limits<Word>::digits;
    if (bit / width < std::ranges::size(words)) {
        Word& word = std::ranges::data(words)[bit / width];
        const auto mask = static_cast<Word>(Word{1} << (bit % width));
        word = static_cast<Word>(value ? word | mask : word & ~mask);
    }
}

template <BitWords Words>
constexpr void SetBit(Words&& words, std::size_t bit) noexcept {
    AssignBit(words, bit, true);
}

template <BitWords Words>
constexpr void UnsetBit(Words&& words, std::size_t bit) noexcept {
    AssignBit(words, bit, false);
}

/// The first unset bit at or after `from`; where there is none, the number of bits.
[[nodiscard]] constexpr std::size_t FirstUnset(std::span<const std::uint32_t> words,
                                               std::size_t from = 0) noexcept {
    for (std::size_t word = from / wordBits; word < words.size(); ++word) {
        const std::size_t before = word == from / wordBits ? from % wordBits : 0;
        const std::uint32_t set = words[word] | LowBits<std::uint32_t>(before);
        if (set != ~0U) {
            return word * wordBits + static_cast<std::size_t>(std::countr_one(set));
        }
    }
    return words.size() * wordBits;
}

/// The first set bit at or after `from`; where there is none, the number of bits.
[[nodiscard]] constexpr std::size_t FirstSet(std::span<const std::uint32_t> words,
                                             std::size_t from = 0) noexcept {
    for (std::size_t word = from / wordBits; word < words.size(); ++word) {
        const std::size_t before = word == from / wordBits ? from % wordBits : 0;
        const std::uint32_t set = words[word] & ~LowBits<std::uint32_t>(before);
        if (set != 0) {
            return word * wordBits + static_cast<std::size_t>(std::countr_zero(set));
        }
    }
    return words.size() * wordBits;
}

[[nodiscard]] constexpr std::size_t CountBits(std::span<const std::uint32_t> words) noexcept {
    return std::accumulate(words.begin(), words.end(), std::size_t{0},
                           [](std::size_t sum, std::uint32_t word) {
                               return sum + static_cast<std::size_t>(std::popcount(word));
                           });
}

/// The bits `first` to `first + count - 1`, at most 64, as a number; those past the end are 0.
[[nodiscard]] inline std::uint64_t BitsAt(std::span<const std::uint8_t> bytes, std::size_t first,
                                          std::size_t count) noexcept {
    static_assert(std::endian::native == std::endian::little);
    const std::size_t from = first / 8;
    const std::size_t shift = first % 8;
    if (from >= bytes.size()) {
        return 0;
    }
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + from, std::min(sizeof value, bytes.size() - from));
    value >>= shift;
    if (shift != 0 && from + sizeof value < bytes.size()) {
        value |= std::uint64_t{bytes[from + sizeof value]} << (64 - shift);
    }
    return value & LowBits<std::uint64_t>(count);
}

/// Transposes an 8 by 8 matrix of bits: bit j of byte i becomes bit i of byte j.
constexpr std::uint64_t Transpose8(std::uint64_t x) noexcept {
    std::uint64_t t = (x ^ (x >> 7)) & 0x00AA00AA00AA00AAU;
    x ^= t ^ (t << 7);
    t = (x ^ (x >> 14)) & 0x0000CCCC0000CCCCU;
    x ^= t ^ (t << 14);
    t = (x ^ (x >> 28)) & 0x00000000F0F0F0F0U;
    return x ^ t ^ (t << 28);
}
static_assert(Transpose8(0xFF) == 0x0101010101010101U);
static_assert(Transpose8(0x8000000000000000U) == 0x8000000000000000U);
static_assert(Transpose8(0x80) == 0x0100000000000000U);

/// A row of bits. A bit past the end reads as unset; writing it does nothing.
class Bits {
public:
    Bits() = default;
    explicit Bits(std::size_t size, bool value = false) { Reset(size, value); }

    /// Replaces the content by `size` bits, all of one value.
    void Reset(std::size_t size, bool value = false) {
        words_.assign(WordsFor(size), value ? ~0U : 0U);
        size_ = size;
        ClearBitsPastSize();
    }
    /// Keeps the bits up to the new size; added bits are unset.
    void Resize(std::size_t size) {
        words_.resize(WordsFor(size));
        size_ = size;
        ClearBitsPastSize();
    }

    [[nodiscard]] std::size_t Size() const noexcept { return size_; }
    [[nodiscard]] bool Test(std::size_t bit) const noexcept { return TestBit(words_, bit); }
    /// The number of set bits.
    [[nodiscard]] std::size_t Count() const noexcept { return CountBits(words_); }
    /// The number of set bits among `first` to `end - 1`.
    [[nodiscard]] std::size_t CountIn(std::size_t first, std::size_t end) const noexcept {
        std::size_t count = 0;
        ForEachPart(first, end, [&](std::size_t word, std::uint32_t part) {
            count += static_cast<std::size_t>(std::popcount(words_[word] & part));
        });
        return count;
    }
    /// The first unset bit at or after `from`; where there is none, Size().
    [[nodiscard]] std::size_t FirstUnset(std::size_t from = 0) const noexcept {
        return std::min(busquill::FirstUnset(words_, from), size_);
    }
    /// Calls `take` with the number of each set bit, in ascending order.
    template <typename Take>
    void ForEachSet(Take take) const {
        for (std::size_t word = 0; word < words_.size(); ++word) {
            for (const std::size_t bit : EachSetBit(words_[word])) {
                take(word * wordBits + bit);
            }
        }
    }
    /// Bits past the size are unset.
    [[nodiscard]] std::span<const std::uint32_t> Words() const noexcept { return words_; }

    void Assign(std::size_t bit, bool value) noexcept {
        if (bit < size_) {
            AssignBit(words_, bit, value);
        }
    }
    void Set(std::size_t bit) noexcept { Assign(bit, true); }
    void Unset(std::size_t bit) noexcept { Assign(bit, false); }
    /// Sets the bits `first` to `end - 1` to `value`.
    void AssignIn(std::size_t first, std::size_t end, bool value) noexcept {
        ForEachPart(first, end, [&](std::size_t word, std::uint32_t part) {
            words_[word] = value ? words_[word] | part : words_[word] & ~part;
        });
    }

    friend bool operator==(const Bits&, const Bits&) = default;

private:
    /// Calls `take` with each word that holds some of the bits `first` to `end - 1`, and a mask of
    /// those bits.
    template <typename Take>
    void ForEachPart(std::size_t first, std::size_t end, Take take) const {
        end = std::min(end, size_);
        for (std::size_t at = first; at < end; at = (at / wordBits + 1) * wordBits) {
            const std::size_t word = at / wordBits;
            take(word, LowBits<std::uint32_t>(end - word * wordBits) &
                           ~LowBits<std::uint32_t>(at % wordBits));
        }
    }
    void ClearBitsPastSize() noexcept {
        if (size_ % wordBits != 0) {
            words_.back() &= LowBits<std::uint32_t>(size_ % wordBits);
        }
    }

    std::vector<std::uint32_t> words_;
    std::size_t size_ = 0;
};

} // namespace busquill
