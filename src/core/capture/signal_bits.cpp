#include "capture/signal_bits.h"

namespace busquill {

namespace {

constexpr int commandBits = 4;
// Bits of a PCI sample that mark its phase.
constexpr int attributeBit = 93;
constexpr int addressBit = 95;
constexpr int commandBit = 64;
constexpr unsigned splitCompletion = 12;

/// The PCI phase in which a decoded value is shown.
enum class Phase { Any, Address, Data, AttributeOrSplit };

Phase PhaseOf(const NamedSignal& signal, const BoardTraits& board) {
    if (!signal.decoded || board.IsVmeFamily() || board.IsVsbFamily()) {
        return Phase::Any;
    }
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Command:
    case DecodeKind::Address:
        return Phase::Address;
    case DecodeKind::Data:
        return Phase::Data;
    case DecodeKind::Tag:
    case DecodeKind::BusNumber:
    case DecodeKind::DeviceFunction:
    case DecodeKind::ByteCount:
    case DecodeKind::Attribute:
        return board.IsPciXMode() ? Phase::AttributeOrSplit : Phase::Any;
    default:
        return Phase::Any;
    }
}

} // namespace

void RecordBits::Set(int position, bool bit) noexcept {
    care.SetBit(position);
    value.SetBit(position, bit);
}

bool RecordBits::Join(const RecordBits& other) noexcept {
    for (std::size_t i = 0; i < value.bytes.size(); ++i) {
        const unsigned shared = care.bytes[i] & other.care.bytes[i];
        if (((value.bytes[i] ^ other.value.bytes[i]) & shared) != 0) {
            return false;
        }
        care.bytes[i] |= other.care.bytes[i];
        value.bytes[i] |= other.value.bytes[i];
    }
    return true;
}

RecordBits BitsOf(const CDecodedValue& value) {
    RecordBits bits;
    for (int p = 0; p < SampleRecord::bitCount; ++p) {
        const std::uint8_t code = value.pattern[static_cast<std::size_t>(p)];
        if (code == CodeZero || code == CodeOne) {
            bits.Set(p, code == CodeOne);
        }
    }
    return bits;
}

bool IsShownInPhase(const NamedSignal& signal, const BoardTraits& board) {
    return PhaseOf(signal, board) != Phase::Any;
}

std::vector<RecordBits> InPhase(const std::vector<RecordBits>& ways, const NamedSignal& signal,
                                const BoardTraits& board) {
    const Phase phase = PhaseOf(signal, board);
    if (phase == Phase::Any) {
        return ways;
    }
    std::vector<RecordBits> found;
    for (RecordBits way : ways) {
        if (phase == Phase::AttributeOrSplit) {
            RecordBits split = way;
            way.Set(attributeBit, true);
            split.Set(attributeBit, false);
            split.Set(addressBit, true);
            RecordBits command;
            for (int i = 0; i < commandBits; ++i) {
                command.Set(commandBit + i, (splitCompletion >> i & 1) != 0);
            }
            if (split.Join(command)) {
                found.push_back(split);
            }
        } else {
            way.Set(addressBit, phase == Phase::Address);
            if (board.IsPciXMode()) {
                way.Set(attributeBit, false);
            }
        }
        found.push_back(way);
    }
    return found;
}

bool IsBeyondBus(int position, const BoardTraits& board) {
    constexpr int upperData = 32;
    constexpr int upperEnables = 68;
    const bool isNarrow = board.bus.busWidth == 0 && !board.IsVmeFamily() && !board.IsVsbFamily();
    return isNarrow && ((position >= upperData && position < commandBit) ||
                        (position >= upperEnables && position < upperEnables + 4));
}

} // namespace busquill
