#include "signals/value_text.h"

#include "platform/text.h"
#include "signals/signal_list.h"

#include <algorithm>

namespace busquill {

namespace {

bool BitAt(std::span<const std::uint8_t> bytes, unsigned bit) noexcept {
    return bit / 8 < bytes.size() && (bytes[bit / 8] >> (bit % 8) & 1) != 0;
}

/// One digit of `bits` bits from bit `low` up: 'X' when all are masked out, '?' when some are.
char Digit(std::span<const std::uint8_t> data, std::span<const std::uint8_t> mask, unsigned low,
           unsigned bits) noexcept {
    unsigned value = 0;
    unsigned known = 0;
    for (unsigned b = 0; b < bits; ++b) {
        value |= static_cast<unsigned>(BitAt(data, low + b)) << b;
        known += mask.empty() || BitAt(mask, low + b) ? 1U : 0U;
    }
    if (known == 0) {
        return 'X';
    }
    return known < bits ? '?' : "0123456789ABCDEF"[value];
}

std::string Digits(std::span<const std::uint8_t> data, std::span<const std::uint8_t> mask,
                   unsigned width, unsigned bitsPerDigit) {
    std::string text;
    for (unsigned digit = width == 0 ? 0 : (width - 1) / bitsPerDigit + 1; digit-- > 0;) {
        const unsigned low = digit * bitsPerDigit;
        text += Digit(data, mask, low, std::min(bitsPerDigit, width - low));
    }
    return text;
}

std::string InEights(const std::string& digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && i % 8 == 0) {
            text += ' ';
        }
        text += digits[i];
    }
    return text;
}

/// A whole part and its thousandths with about three digits: "%d.%01d", "%d.%02d" or "%d.%03d".
std::string ThreeDigits(std::int64_t whole, std::int64_t thousandths, const char* unit) {
    const auto w = static_cast<long long>(whole);
    const auto t = static_cast<int>(thousandths);
    if (whole > 99) {
        return Printf("%lld.%01d%s", w, t / 100, unit);
    }
    return whole > 9 ? Printf("%lld.%02d%s", w, t / 10, unit) : Printf("%lld.%03d%s", w, t, unit);
}

std::string FormatNanoseconds(std::int64_t t) {
    const std::int64_t ns = t % 1000;
    const std::int64_t us = t / 1000 % 1000;
    const std::int64_t ms = t / 1000000 % 1000;
    const std::int64_t s = t / 1000000000;
    if (s > 999) {
        return Printf("%llds", static_cast<long long>(s));
    }
    if (s > 0) {
        return ThreeDigits(s, ms, "s");
    }
    if (ms > 0) {
        return ThreeDigits(ms, us, "ms");
    }
    return us > 0 ? ThreeDigits(us, ns, "us") : Printf("%dns", static_cast<int>(ns));
}

std::string FormatPicoseconds(std::int64_t t) {
    const std::int64_t ps = t % 1000;
    const std::int64_t ns = t / 1000 % 1000;
    const std::int64_t us = t / 1000000 % 1000;
    const std::int64_t ms = t / 1000000000;
    if (ms > 0) {
        return ThreeDigits(ms, us, "ms");
    }
    return us > 0 ? ThreeDigits(us, ns, "us") : ThreeDigits(ns, ps, "ns");
}

std::string PlainValue(const CSignal& signal, std::int64_t sample, std::int32_t radix, bool zoom) {
    const auto index = static_cast<std::size_t>(sample);
    if (!signal.grouped) {
        const std::uint8_t bit = signal.Bit(index) ? 1 : 0;
        return signal.data.empty() ? "" : FormatValue({&bit, 1}, 1, radix, {}, zoom);
    }
    const auto row = signal.GroupRow(index);
    return row.empty() ? "" : FormatValue(row, signal.groupWidth, radix, {}, zoom);
}

/// Blanks the digits of the byte lanes that C/BE disables.
void BlankDisabledLanes(std::string& text, const SampleRecord& record) {
    int j = 0;
    for (auto c = text.rbegin(); c != text.rend() && j < 16; ++c) {
        if (*c == ' ') {
            continue;
        }
        if (record.Bit(64 + j / 2)) {
            *c = ' ';
        }
        ++j;
    }
}

int VmeAddressWidth(unsigned modifier) noexcept {
    switch (modifier) {
    case 0x2D:
    case 0x2C:
    case 0x29:
        return 16;
    case 0x34:
    case 0x35:
        return 40;
    default:
        return modifier == 0x32 || modifier >= 0x38 ? 24 : 32;
    }
}

/// Blanks the leading digits that the cycle's address width does not have.
void BlankUnusedAddress(std::string& text, const SampleRecord& record, bool lark) {
    const int width = VmeAddressWidth(record.bytes[lark ? 11 : 8] & 0x3F);
    int blanks = text.size() >= 9 && width == 40 ? 6 : std::max(0, (32 - width) / 4);
    for (char& c : text) {
        if (blanks == 0) {
            break;
        }
        if (c != ' ') {
            c = ' ';
            --blanks;
        }
    }
}

} // namespace

std::string FormatValue(std::span<const std::uint8_t> data, unsigned width, std::int32_t radix,
                        std::span<const std::uint8_t> mask, bool zoom) {
    switch (radix) {
    case Radix::Binary:
        return InEights(Digits(data, mask, width, 1));
    case Radix::Hex:
        return InEights(Digits(data, mask, width, 4));
    case Radix::Octal:
        return Digits(data, mask, width, 3);
    case Radix::Time:
        return FormatTime(TimeField(data, width), zoom);
    default:
        return {};
    }
}

// One bit more than the field's width is taken; files and boards leave it 0.
std::int64_t TimeField(std::span<const std::uint8_t> data, unsigned width) noexcept {
    if (width > 32) {
        return 0;
    }
    std::uint32_t bits = 0;
    for (unsigned b = 0; b < std::min(width + 1, 32U); ++b) {
        bits |= static_cast<std::uint32_t>(BitAt(data, b)) << b;
    }
    constexpr std::int64_t units[] = {1, 1000, 1000000, 1000000000};
    return (static_cast<std::int32_t>(bits) >> 2) * units[bits & 3];
}

std::string FormatTime(std::int64_t t, bool zoom) {
    return zoom ? FormatPicoseconds(t) : FormatNanoseconds(t);
}

std::string TimeBetween(std::int64_t a, std::int64_t b, const CSignalList& list, bool zoom) {
    if (a == -1 || b == -1) {
        return {};
    }
    const auto found = std::find_if(list.All().begin(), list.All().end(), [](const auto& signal) {
        return signal->IsGroupStart() && signal->baseName == "TIME" && signal->permanent;
    });
    if (found == list.All().end() || (*found)->groupData.empty()) {
        return {};
    }
    const CSignal& time = **found;
    std::int64_t sum = 0;
    for (std::int64_t s = std::min(a, b) + 1; s <= std::max(a, b); ++s) {
        sum += TimeField(time.GroupRow(static_cast<std::size_t>(s)), time.groupWidth);
    }
    return FormatTime(sum, zoom);
}

std::string FormatDecodedValue(const BoardTraits& board, const CSignal& signal, std::int64_t sample,
                               std::int64_t firstSample, const CDecodedSignalDef& def,
                               const char* label, const SampleRecord& record, bool zoom) {
    const bool pciX = board.IsPciXMode();
    const bool address = record.Bit(95);
    const bool attribute = pciX && record.Bit(93);
    const bool split = pciX && !attribute && (record.bytes[8] & 0x0F) == 12 && address;
    const bool vme = board.IsVmeFamily();
    const bool vsb = board.IsVsbFamily();
    const std::string labelText = label == nullptr ? "" : label;
    const auto plain = [&] { return PlainValue(signal, sample, signal.radix, zoom); };

    switch (def.decodeKind) {
    case DecodeKind::Data:
    case DecodeKind::DataVme:
    case DecodeKind::DataVsb: {
        if (!vme && !vsb && (attribute || address)) {
            return {};
        }
        std::string text = plain();
        if (!vme && !vsb && signal.radix == Radix::Hex) {
            BlankDisabledLanes(text, record);
        }
        return text;
    }
    case DecodeKind::Address:
    case DecodeKind::AddressVme:
    case DecodeKind::AddressVsb: {
        if (!vsb && !vme && (attribute || !address)) {
            return {};
        }
        std::string text = plain();
        if (!vsb && vme && signal.radix == Radix::Hex) {
            BlankUnusedAddress(text, record, board.IsVmeLark());
        }
        return text;
    }
    case DecodeKind::Command:
        return !vme && !vsb && (attribute || !address) ? std::string() : labelText;
    case DecodeKind::Time:
        return PlainValue(signal, sample, Radix::Time, zoom);
    case DecodeKind::Sample:
        return Printf("%lld", static_cast<long long>(firstSample + sample));
    case DecodeKind::Tag:
    case DecodeKind::BusNumber:
    case DecodeKind::DeviceFunction:
    case DecodeKind::ByteCount:
    case DecodeKind::Attribute:
        return attribute || split ? plain() : std::string();
    case DecodeKind::Plain:
        return plain();
    default:
        return labelText;
    }
}

unsigned DigitsFor(unsigned width, std::int32_t radix) noexcept {
    if (width == 0) {
        return 0;
    }
    switch (radix) {
    case Radix::Binary:
        return width;
    case Radix::Hex: {
        const unsigned n = (width - 1) / 4;
        return n + n / 8 + 1;
    }
    case Radix::Octal:
        return (width - 1) / 3 + 1;
    default:
        return 0;
    }
}

} // namespace busquill
