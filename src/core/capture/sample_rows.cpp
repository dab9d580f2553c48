#include "capture/sample_rows.h"

#include "platform/text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace busquill {

namespace {

constexpr std::size_t recordBytes = sizeof(SampleRecord);
constexpr std::size_t rowFields = 1 + recordBytes;
constexpr unsigned maxNumberDigits = 9; // fits 32 bits

/// ",0" to ",255".
class ByteTexts {
public:
    ByteTexts() {
        for (std::size_t value = 0; value < texts_.size(); ++value) {
            texts_[value] = "," + std::to_string(value);
        }
    }
    [[nodiscard]] const std::string& operator[](std::uint8_t value) const { return texts_[value]; }

private:
    std::array<std::string, 256> texts_;
};

#if defined(__SSE2__)

/// The kinds of the first 96 bytes of a row, a bit for each byte.
struct RowMasks {
    using Bits = std::array<std::uint64_t, 2>;
    Bits ends = {};   // not digits
    Bits others = {}; // neither digit nor comma
};

constexpr unsigned rowBytes = 96; // longer than any plain row

RowMasks MasksOf(const char* text) noexcept {
    constexpr int pieces = rowBytes / 16;
    RowMasks masks;
    for (int piece = 0; piece < pieces; ++piece) {
        const __m128i bytes =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + std::size_t{16} * piece));
        const auto bits = [](__m128i found) {
            return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(found)));
        };
        const std::uint64_t comma = bits(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(',')));
        // Bytes above 127 are negative, so they do not count as digits.
        const std::uint64_t digit = bits(_mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('/')),
                                                       _mm_cmplt_epi8(bytes, _mm_set1_epi8(':'))));
        const std::size_t half = static_cast<std::size_t>(piece) / 4;
        const int shift = piece % 4 * 16;
        masks.ends[half] |= (~digit & 0xFFFF) << shift;
        masks.others[half] |= (~(comma | digit) & 0xFFFF) << shift;
    }
    return masks;
}

/// 64 of the bits from one on, which is neither the first nor above 64.
std::uint64_t From(const RowMasks::Bits& bits, unsigned first) noexcept {
    return bits[0] >> first | bits[1] << (64 - first);
}

/// A byte of the record from one to three digits that end before `end`; values above 255 wrap.
std::uint8_t ByteBefore(const char* end, unsigned digits) noexcept {
    constexpr std::uint32_t kept[4] = {0, 0x0F000000, 0x0F0F0000, 0x0F0F0F00};
    std::uint32_t word = 0;
    std::memcpy(&word, end - sizeof word, sizeof word);
    word &= kept[digits];
    constexpr std::uint32_t weights =
        1U | 10U << 8 | 100U << 16; // of the last digit, the one before it, and so on
    return static_cast<std::uint8_t>((word * weights) >> 24);
}

/// Parses a row at the beginning of `text`, which has `length` bytes. Returns the length of the row
/// with its line end, or 0 when it is not plain.
std::size_t ParsePlainRowAt(const char* text, std::size_t length, SampleRows& rows) {
    RowMasks masks = MasksOf(text);
    const bool negative = text[0] == '-';
    masks.ends[0] &= ~std::uint64_t{negative};
    masks.others[0] &= ~std::uint64_t{negative};
    const auto comma = static_cast<unsigned>(std::countr_zero(masks.ends[0]));
    const unsigned digits = comma - (negative ? 1U : 0U);
    // ByteBefore reads the four characters up to a field's end.
    if (digits - 1 >= maxNumberDigits || comma < 2 || text[comma] != ',') {
        return 0;
    }
    // Half of the fields fit 64 bits, wherever they begin. A loop of a fixed length costs no wrong
    // predictions of its end.
    constexpr std::size_t half = recordBytes / 2;
    static_assert(recordBytes == 2 * half && half * 4 <= 64);
    SampleRecord record;
    unsigned begin = comma + 1;
    for (const std::size_t first : {std::size_t{0}, half}) {
        std::uint64_t ends = From(masks.ends, begin);
        unsigned field = 0;
        unsigned wrong = 0;
        for (std::size_t i = 0; i < half; ++i) {
            const auto end = static_cast<unsigned>(std::countr_zero(ends));
            const unsigned count = end - field;
            wrong |= static_cast<unsigned>(count - 1 > 2);
            record.bytes[first + i] = ByteBefore(text + begin + end, count & 3);
            ends &= ends - 1;
            field = end + 1;
        }
        if (wrong != 0) {
            return 0;
        }
        // Nothing but commas, until the line ends.
        const bool isLast = first != 0;
        const std::uint64_t others = From(masks.others, begin) & LowBits<std::uint64_t>(field);
        if (others != (isLast ? std::uint64_t{1} << (field - 1) : 0)) {
            return 0;
        }
        begin += field;
    }
    if (begin > length || text[begin - 1] != '\n') {
        return 0;
    }
    std::int32_t number = 0;
    for (const char* at = text + (negative ? 1 : 0); *at != ','; ++at) {
        number = number * 10 + (*at - '0');
    }
    rows.Add(negative ? -number : number, record);
    return begin;
}

#endif

} // namespace

std::size_t ParsePlainRows(std::string_view text, std::size_t limit, SampleRows& rows) {
    std::size_t taken = 0;
    while (rows.Size() < limit && taken < text.size()) {
#if defined(__SSE2__)
        const std::size_t row = ParsePlainRowAt(text.data() + taken, text.size() - taken, rows);
#else
        const std::size_t feed = text.find('\n', taken);
        const bool whole = feed != std::string_view::npos;
        const std::size_t row =
            whole && ParsePlainRow(text.substr(taken, feed - taken), rows) ? feed + 1 - taken : 0;
#endif
        if (row == 0) {
            break;
        }
        taken += row;
    }
    return taken;
}

std::size_t SkipAscendingRows(std::string_view text, std::int64_t& last) noexcept {
    text = text.substr(0, text.find('"')); // a quoted value may span lines
    std::size_t taken = 0;
    while (taken < text.size()) {
        std::size_t at = taken;
        const bool negative = text[at] == '-';
        at += negative ? 1 : 0;
        const std::size_t digits = at;
        std::int64_t number = 0;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9' &&
               at - digits < maxNumberDigits) {
            number = number * 10 + (text[at++] - '0');
        }
        const bool plain = at > digits && at < text.size() && text[at] == ',';
        number = negative ? -number : number;
        const std::size_t feed =
            plain && number > last ? text.find('\n', at) : std::string_view::npos;
        if (feed == std::string_view::npos) {
            break;
        }
        last = number;
        taken = feed + 1;
    }
    return taken;
}

bool ParsePlainRow(std::string_view line, SampleRows& rows) {
    const char* at = line.data();
    const char* const end = at + line.size();
    std::int32_t number = 0;
    SampleRecord record;
    for (std::size_t field = 0; field < rowFields; ++field) {
        const bool negative = at != end && *at == '-';
        at += negative ? 1 : 0;
        const char* const digits = at;
        std::int32_t value = 0;
        while (at != end && *at >= '0' && *at <= '9' &&
               static_cast<unsigned>(at - digits) < maxNumberDigits) {
            value = value * 10 + (*at++ - '0');
        }
        const bool last = field == rowFields - 1;
        if (at == digits || (last ? at != end : at == end || *at != ',')) {
            return false;
        }
        ++at;
        value = negative ? -value : value;
        if (field == 0) {
            number = value;
        } else {
            record.bytes[field - 1] = static_cast<std::uint8_t>(value);
        }
    }
    rows.Add(number, record);
    return true;
}

bool ParseRow(const std::vector<std::string>& fields, SampleRows& rows) {
    if (fields.size() < rowFields) {
        return false;
    }
    SampleRecord record;
    for (std::size_t i = 1; i < rowFields; ++i) {
        record.bytes[i - 1] = static_cast<std::uint8_t>(ParseInt(fields[i]));
    }
    rows.Add(ParseInt(fields[0]), record);
    return true;
}

void AppendRow(std::string& text, std::int64_t number, const SampleRecord& record) {
    static const ByteTexts texts;
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
    for (const std::uint8_t byte : record.bytes) {
        text += texts[byte];
    }
    text += '\n';
}

} // namespace busquill
