#include "signals/value_text.h"

#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr unsigned groupDigits = 8; // digits between two blanks

/// One digit: "X" when none of its bits is known, "?" when only some are.
char Digit(std::uint64_t value, std::uint64_t known, std::uint64_t significant) noexcept {
    if (known == 0) {
        return 'X';
    }
    return known == significant ? "0123456789ABCDEF"[value] : '?';
}

std::string Digits(std::span<const std::uint8_t> data, unsigned width,
                   std::span<const std::uint8_t> mask, unsigned digitBits) {
    std::string text;
    if (width == 0) {
        return text;
    }
    for (unsigned digit = (width - 1) / digitBits + 1; digit-- > 0;) {
        const unsigned first = digit * digitBits;
        const unsigned count = std::min(digitBits, width - first);
        const auto significant = LowBits<unsigned>(count);
        const std::uint64_t known = mask.empty() ? significant : BitsAt(mask, first, count);
        text += Digit(BitsAt(data, first, count), known, significant);
    }
    return text;
}

std::string WithBlanks(const std::string& digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && i % groupDigits == 0) {
            text += ' ';
        }
        text += digits[i];
    }
    return text;
}

/// A whole number and its thousandths: three decimals up to 9, two up to 99, then one.
std::string Scaled(std::int64_t whole, std::int64_t thousandths, const char* unit) {
    const auto digit = [&](std::int64_t weight) {
        return static_cast<char>('0' + thousandths / weight % 10);
    };
    std::string text = std::to_string(whole) + '.' + digit(100);
    if (whole <= 99) {
        text += digit(10);
    }
    if (whole <= 9) {
        text += digit(1);
    }
    return text + unit;
}

std::string FormatZoomTime(std::int64_t t) {
    const std::int64_t ps = t % 1000;
    const std::int64_t ns = t / 1000 % 1000;
    const std::int64_t us = t / 1000000 % 1000;
    const std::int64_t ms = t / 1000000000;
    if (ms > 0) {
        return Scaled(ms, us, "ms");
    }
    return us > 0 ? Scaled(us, ns, "us") : Scaled(ns, ps, "ns");
}

constexpr int attributeBit = 93;
constexpr int addressBit = 95;
constexpr int byteEnableBit = 64;
constexpr int commandBit = 64;  // the same lines in another phase
constexpr int modifierBit = 64; // as well
constexpr int modifierBitOfLark = 88;
constexpr unsigned splitCompletion = 12;

/// In which phase of a PCI transfer a sample was taken.
struct PciPhase {
    bool attribute = false;
    bool split = false;
    bool address = false;

    PciPhase(const BoardTraits& board, const SampleRecord& record)
        : address(record.Bit(addressBit)) {
        if (board.IsPciXMode()) {
            attribute = record.Bit(attributeBit);
            split = !attribute && address && record.Field(commandBit, 4) == splitCompletion;
        }
    }
};

std::string PlainValue(const CSignal& signal, std::int64_t sample, std::int32_t radix, bool zoom) {
    if (sample < 0) {
        return {};
    }
    const auto index = static_cast<std::size_t>(sample);
    if (signal.groupWidth != 0) {
        const auto row = signal.GroupRow(index);
        return row.empty()
                   ? std::string()
                   : FormatValue(row, signal.groupWidth, radix, signal.GroupMaskRow(index), zoom);
    }
    if (index >= signal.numSamples) {
        return {};
    }
    const std::uint8_t bit = signal.Bit(index) ? 1 : 0;
    const std::uint8_t known = signal.MaskBit(index) ? 1 : 0;
    return FormatValue({&bit, 1}, 1, radix, {&known, 1}, zoom);
}

/// Blanks the digits of byte lanes whose byte enable, active low, is off.
void BlankDisabledLanes(std::string& text, const SampleRecord& record) {
    constexpr int digitsOfLanes = 16;
    int digit = 0;
    for (auto c = text.rbegin(); c != text.rend() && digit < digitsOfLanes; ++c) {
        if (*c == ' ') {
            continue;
        }
        if (record.Bit(byteEnableBit + digit / 2)) {
            *c = ' ';
        }
        ++digit;
    }
}

/// Blanks the leading digits beyond an address of this width.
void BlankBeyondAddress(std::string& text, int addressWidth) {
    constexpr std::size_t longText = 9;
    int blanks = std::max(0, (32 - addressWidth) / 4);
    if (addressWidth == 40 && text.size() >= longText) {
        blanks = 6;
    }
    for (char& c : text) {
        if (blanks == 0) {
            return;
        }
        if (c != ' ') {
            c = ' ';
            --blanks;
        }
    }
}

std::string DataText(const BoardTraits& board, const CSignal& signal, const SampleRecord& record,
                     std::string value) {
    if (board.IsVmeFamily() || board.IsVsbFamily()) {
        return value;
    }
    const PciPhase phase(board, record);
    if (phase.attribute || phase.address) {
        return {};
    }
    if (signal.radix == Radix::Hex) {
        BlankDisabledLanes(value, record);
    }
    return value;
}

std::string AddressText(const BoardTraits& board, const CSignal& signal, const SampleRecord& record,
                        std::string value) {
    if (board.IsVsbFamily()) {
        return value;
    }
    if (board.IsVmeFamily()) {
        if (signal.radix == Radix::Hex) {
            const int first = board.IsVmeLark() ? modifierBitOfLark : modifierBit;
            BlankBeyondAddress(value, VmeAddressWidth(record.Field(first, 6)));
        }
        return value;
    }
    const PciPhase phase(board, record);
    return phase.attribute || !phase.address ? std::string() : value;
}

std::string CommandText(const BoardTraits& board, const SampleRecord& record, std::string label) {
    if (board.IsVmeFamily() || board.IsVsbFamily()) {
        return label;
    }
    const PciPhase phase(board, record);
    return phase.attribute || !phase.address ? std::string() : label;
}

} // namespace

int VmeAddressWidth(std::uint64_t addressModifier) noexcept {
    if (addressModifier == 0x32 || addressModifier >= 0x38) {
        return 24;
    }
    if (addressModifier == 0x2D || addressModifier == 0x2C || addressModifier == 0x29) {
        return 16;
    }
    return addressModifier == 0x34 || addressModifier == 0x35 ? 40 : 32;
}

std::string FormatValue(std::span<const std::uint8_t> data, unsigned width, std::int32_t radix,
                        std::span<const std::uint8_t> mask, bool zoom) {
    switch (radix) {
    case Radix::Binary:
        return WithBlanks(Digits(data, width, mask, 1));
    case Radix::Hex:
        return WithBlanks(Digits(data, width, mask, 4));
    case Radix::Octal:
        return Digits(data, width, mask, 3);
    case Radix::Time:
        return FormatTime(TimeField(data, width), zoom);
    default:
        return {};
    }
}

std::int64_t TimeField(std::span<const std::uint8_t> data, unsigned width) noexcept {
    constexpr unsigned maxWidth = 32;
    if (width > maxWidth) {
        return 0;
    }
    // One bit more than the field has; existing captures depend on it.
    return TimeOfBits(static_cast<std::uint32_t>(BitsAt(data, 0, std::min(width + 1, maxWidth))));
}

std::string FormatTime(std::int64_t t, bool zoom) {
    if (zoom) {
        return FormatZoomTime(t);
    }
    const std::int64_t ns = t % 1000;
    const std::int64_t us = t / 1000 % 1000;
    const std::int64_t ms = t / 1000000 % 1000;
    const std::int64_t s = t / 1000000000;
    if (s > 999) {
        return Printf("%llds", static_cast<long long>(s));
    }
    if (s > 0) {
        return Scaled(s, ms, "s");
    }
    if (ms > 0) {
        return Scaled(ms, us, "ms");
    }
    return us > 0 ? Scaled(us, ns, "us") : std::to_string(ns) + "ns";
}

std::uint16_t SurroundingsOf(const SampleRecord& record) noexcept {
    return static_cast<std::uint16_t>(record.Field(modifierBit, 8) |
                                      record.Field(modifierBitOfLark, 8) << 8);
}

std::string FormatDecodedValue(const BoardTraits& board, const CSignal& signal, std::int64_t sample,
                               std::int64_t firstSample, const CDecodedSignalDef& def,
                               const char* label, const SampleRecord& record, bool zoom) {
    const auto plain = [&] { return PlainValue(signal, sample, signal.radix, zoom); };
    switch (def.decodeKind) {
    case DecodeKind::Data:
    case DecodeKind::DataVme:
    case DecodeKind::DataVsb:
        return DataText(board, signal, record, plain());
    case DecodeKind::Address:
    case DecodeKind::AddressVme:
    case DecodeKind::AddressVsb:
        return AddressText(board, signal, record, plain());
    case DecodeKind::Command:
        return CommandText(board, record, label != nullptr ? label : "");
    case DecodeKind::Time:
        return PlainValue(signal, sample, Radix::Time, zoom);
    case DecodeKind::Sample:
        return std::to_string(firstSample + sample);
    case DecodeKind::Tag:
    case DecodeKind::BusNumber:
    case DecodeKind::DeviceFunction:
    case DecodeKind::ByteCount:
    case DecodeKind::Attribute: {
        const PciPhase phase(board, record);
        return phase.attribute || phase.split ? plain() : std::string();
    }
    case DecodeKind::Plain:
        return plain();
    default:
        return label != nullptr ? label : "";
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
        const unsigned digits = (width - 1) / 4;
        return digits + digits / groupDigits + 1;
    }
    case Radix::Octal:
        return (width - 1) / 3 + 1;
    default:
        return 0;
    }
}

} // namespace busquill
