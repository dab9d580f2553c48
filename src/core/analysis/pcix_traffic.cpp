#include "analysis/pci_traffic.h"

#include <algorithm>
#include <array>
#include <bit>

namespace busquill {

namespace {

constexpr std::uint32_t memoryWrite = 0x7;
constexpr std::uint32_t splitCompletion = 0xC;
constexpr std::uint32_t fullByteCount = 4096; // encoded as 0

// Tag, bus, device and function of the requester, and the marks of a completion.
constexpr unsigned requesterShift = 8;
constexpr std::uint32_t requesterMask = 0x1FFFFF;
constexpr std::uint32_t messageBit = 1U << 29;
constexpr std::uint32_t countModifiedBit = 1U << 31; // of a split completion
constexpr std::uint32_t dwordCount = 4;

/// Commands whose C/BE lines carry no byte enables in data phases: the attributes give the byte
/// count.
bool AnnouncesBytes(std::uint32_t command) {
    constexpr std::array<std::uint32_t, 5> block = {0x8, 0x9, 0xC, 0xE, 0xF};
    return std::find(block.begin(), block.end(), command) != block.end();
}

/// Commands that move one word. Their attributes have byte enables instead of a byte count.
bool IsOneWord(std::uint32_t command) {
    return command != memoryWrite && !AnnouncesBytes(command);
}

/// PCI-X: an attribute phase after the address, more target responses, and a FRAME that is
/// deasserted before the last data.
class PciXTraffic final : public PciTraffic {
public:
    explicit PciXTraffic(const SignalTables& tables)
        : PciTraffic(tables, "COMMAND(PCI-X)"),
          attributeBit_(tables.decodedSignals.FindByName("ADR/ATR/DATA")->Positions().front()) {}

private:
    bool IsAddressPhase(const SampleRecord& record) const override {
        return addressPhase_.IsHigh(record) && !record.Bit(attributeBit_);
    }

    bool TakeAttributes(const SampleRecord& record, PciTransaction& open) const override {
        if (!record.Bit(attributeBit_)) {
            return false;
        }
        open.attributeEnables = enables_.Asserted(record) & 0xF;
        const std::uint32_t count =
            (enables_.Value(record) & 0xF) << 8 | (ad_.Value(record) & 0xFF);
        open.bytesAnnounced = count == 0 ? fullByteCount : count;
        TakeSequence(ad_.Word(record), open);
        return true;
    }

    PciAnswer AnswerOf(const PciClock& clock, const PciTransaction& open) const override {
        if (clock.devsel) {
            return PciTraffic::AnswerOf(clock, open);
        }
        if (clock.stop) {
            return clock.trdy ? PciAnswer::LastData : PciAnswer::TargetAbort;
        }
        if (clock.trdy) {
            return PciAnswer::SplitResponse;
        }
        return open.claimed ? PciAnswer::Over : PciAnswer::Wait;
    }

    std::uint32_t TakeLanes(const PciClock& clock, PciTransaction& open) const override {
        const std::uint32_t command = CommandOf(open.sum.command);
        if (AnnouncesBytes(command)) {
            return TakeAnnouncedLanes(Width(open), open);
        }
        if (command == memoryWrite) {
            TakeAnnouncedLanes(Width(open), open);
        }
        if (command == memoryWrite || !open.attributeEnables) {
            return PciTraffic::TakeLanes(clock, open);
        }
        return *open.attributeEnables;
    }

    bool HasMovedAll(const PciTransaction& open) const override {
        return IsOneWord(CommandOf(open.sum.command)) || open.bytesAnnounced == 0U;
    }

    /// The attributes of a split completion are those of the completer; the requester is in its
    /// address.
    static void TakeSequence(std::uint64_t attributes, PciTransaction& open) {
        Transaction& sum = open.sum;
        if (sum.isHeadless) {
            return;
        }
        const std::uint32_t command = CommandOf(sum.command);
        const bool isCompletion = command == splitCompletion;
        const std::uint64_t lines = isCompletion ? *sum.address : attributes;
        sum.sequence =
            SplitSequence{static_cast<std::uint32_t>(lines >> requesterShift) & requesterMask,
                          IsOneWord(command) ? dwordCount : *open.bytesAnnounced, isCompletion,
                          isCompletion && (attributes & messageBit) != 0,
                          isCompletion && (attributes & countModifiedBit) != 0};
    }

    /// All lanes from the first byte of the address on, up to the bytes left of the announced
    /// count. Without an attribute phase there is no count.
    static std::uint32_t TakeAnnouncedLanes(std::uint32_t lanes, PciTransaction& open) {
        if (!open.bytesAnnounced || !open.sum.address) {
            return lanes;
        }
        const auto width = static_cast<std::uint32_t>(std::popcount(lanes));
        const std::uint32_t offset = open.sum.dataPhases == 0 ? *open.sum.address & (width - 1) : 0;
        const std::uint32_t bytes = std::min(width - offset, *open.bytesAnnounced);
        *open.bytesAnnounced -= bytes;
        return ((1U << bytes) - 1) << offset;
    }

    bool IsLast(const PciClock& /*clock*/) const override { return false; }

    int attributeBit_;
};

} // namespace

std::unique_ptr<BusTraffic> MakePciXTraffic(const SignalTables& tables) {
    return std::make_unique<PciXTraffic>(tables);
}

} // namespace busquill
