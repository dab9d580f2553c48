#include "bus_states.h"

#include "lines.h"

#include <bit>

namespace boardsim {

namespace {

/// Codes of the cycles that a row of a setup can be limited to.
enum CycleCode : unsigned {
    codeAll = 0,
    codeMem = 1, // the system space on a VSB
    codeMemRead = 2,
    codeMemWrite = 3,
    codeIo = 4,
    codeIoRead = 5,
    codeIoWrite = 6,
    codeConfig = 7, // the alternate space on a VSB
    codeConfigRead = 8,
    codeConfigWrite = 9,
    codeMemReadMultiple = 10,
    codeDualAddress = 11,
    codeMemReadLine = 12,
    codeMemWriteInvalidate = 13,
    codeIntAck = 14,
    codeSpecial = 15,
    codeExternal = 16, // the first of 8
};

constexpr std::uint32_t Codes(auto... codes) {
    return 1U << codeAll | (0U | ... | (1U << codes));
}

bool Asserted(const Record& record, int line) {
    return !GetBit(record, line);
}

std::uint32_t ExternalCodes(const Record& record, int first, int count) {
    return static_cast<std::uint32_t>(GetField(record, first, count)) << codeExternal;
}

std::uint32_t PciCodes(std::uint64_t command) {
    switch (command) {
    case pci::cmdIntAck:
        return Codes(codeIntAck);
    case pci::cmdSpecial:
        return Codes(codeSpecial);
    case pci::cmdIoRead:
        return Codes(codeIo, codeIoRead);
    case pci::cmdIoWrite:
        return Codes(codeIo, codeIoWrite);
    case pci::cmdMemRead:
        return Codes(codeMem, codeMemRead);
    case pci::cmdMemWrite:
        return Codes(codeMem, codeMemWrite);
    case pci::cmdConfigRead:
        return Codes(codeConfig, codeConfigRead);
    case pci::cmdConfigWrite:
        return Codes(codeConfig, codeConfigWrite);
    case pci::cmdMemReadMultiple:
        return Codes(codeMem, codeMemReadMultiple);
    case pci::cmdDualAddress:
        return Codes(codeDualAddress);
    case pci::cmdMemReadLine:
        return Codes(codeMem, codeMemReadLine);
    case pci::cmdMemWriteInvalidate:
        return Codes(codeMem, codeMemWriteInvalidate);
    default:
        return Codes();
    }
}

class PciFollower final : public BusFollower {
public:
    PciFollower(bool wide, bool pciX) : wide_(wide), pciX_(pciX) {}

    BusState Take(const Record& record) override {
        BusState state;
        const bool owned = Asserted(record, pci::bitFrame) || Asserted(record, pci::bitIrdy);
        if (GetBit(record, pci::bitAddress)) {
            Begin(record, state);
        } else if (open_ && owned) {
            Data(record, state);
        } else if (open_) {
            state.ending = claimed_ ? Ending::None : Ending::MasterAbort;
            open_ = false;
        } else if (Asserted(record, pci::bitReq)) {
            state.phase = Phase::Request;
        }
        return state;
    }

private:
    void Begin(const Record& record, BusState& state) {
        open_ = true;
        claimed_ = stopped_ = false;
        moved_ = false;
        state.begins = true;
        state.phase = Phase::Address;
        state.codes = PciCodes(GetField(record, pci::bitCbe, 4)) |
                      ExternalCodes(record, pci::bitExt, pci::extBits);
        state.address = GetField(record, pci::bitAd, wide_ ? 64 : 32);
    }

    void Data(const Record& record, BusState& state) {
        if (pciX_ && GetBit(record, pci::bitAttribute)) {
            state.phase = Phase::Address;
            return;
        }
        const bool claims = Asserted(record, pci::bitDevsel);
        const bool moves = Asserted(record, pci::bitIrdy) && Asserted(record, pci::bitTrdy);
        state.phase = moves ? Phase::Transfer : Phase::Wait;
        state.bytes = !moves ? 0 : wide_ && Asserted(record, pci::bitAck64) ? 8 : 4;
        const bool stops = Asserted(record, pci::bitStop);
        const bool splits = pciX_ && moves && !claims && !stops;
        if (!stopped_ && (stops || splits)) {
            state.ending = splits    ? Ending::SplitResponse
                           : !claims ? Ending::TargetAbort
                           : moves   ? Ending::DisconnectWithData
                           : moved_  ? Ending::DisconnectWithoutData
                                     : Ending::TargetRetry;
            stopped_ = true;
        }
        claimed_ = claimed_ || claims || stops || splits;
        moved_ = moved_ || moves;
    }

    const bool wide_;
    const bool pciX_;
    bool open_ = false;
    bool claimed_ = false; // a target has answered
    bool moved_ = false;   // data
    bool stopped_ = false;
};

class VmeFollower final : public BusFollower {
public:
    explicit VmeFollower(const vme::VmeBits& bits) : bits_(bits) {}

    BusState Take(const Record& record) override {
        BusState state;
        const auto requests = ~GetField(record, bits_.br, 4) & 0xF;
        const auto grants = static_cast<unsigned>(~GetField(record, bits_.bg, 4) & 0xF);
        if (grants != 0) {
            grant_ = static_cast<unsigned>(std::countr_zero(grants));
        }
        const bool strobed = Asserted(record, bits_.ds) || Asserted(record, bits_.ds + 1);
        const bool answered = Asserted(record, bits_.dtack);
        if (!Asserted(record, bits_.as)) {
            open_ = failed_ = inData_ = false;
            state.phase = requests != 0 ? Phase::Request : Phase::Idle;
        } else {
            if (!open_) {
                Begin(record, state);
            }
            inData_ = inData_ || strobed;
            state.phase = !inData_              ? Phase::Address
                          : strobed && answered ? Phase::Transfer
                                                : Phase::Wait;
            if (strobed && answered && !answered_) {
                state.bytes = Asserted(record, bits_.lword) ? 4 : 2;
            }
            if (Asserted(record, bits_.berr) && !failed_) {
                state.ending = Ending::TargetAbort;
                failed_ = true;
            }
        }
        answered_ = answered;
        return state;
    }

private:
    void Begin(const Record& record, BusState& state) {
        open_ = true;
        state.begins = true;
        const bool read = GetBit(record, bits_.write);
        state.codes = (Asserted(record, bits_.iack) ? Codes(codeIntAck)
                       : read                       ? Codes(codeMem, codeMemRead)
                                                    : Codes(codeMem, codeMemWrite)) |
                      ExternalCodes(record, bits_.ext, bits_.extWidth);
        state.address = GetField(record, vme::bitAddress, 32);
        state.grant = grant_;
    }

    const vme::VmeBits& bits_;
    unsigned grant_ = 0;
    bool open_ = false;
    bool inData_ = false;
    bool failed_ = false;
    bool answered_ = false;
};

class VsbFollower final : public BusFollower {
public:
    BusState Take(const Record& record) override {
        BusState state;
        const bool strobed = Asserted(record, vsb::bitDs);
        const bool answered = Asserted(record, vsb::bitAck);
        if (!Asserted(record, vsb::bitPas)) {
            open_ = failed_ = false;
            state.phase = Asserted(record, vsb::bitBreq) ? Phase::Request : Phase::Idle;
        } else {
            if (!open_) {
                Begin(record, state);
            }
            const bool moves = strobed && answered;
            state.phase = GetBit(record, vsb::bitAddress) ? Phase::Address
                          : moves                         ? Phase::Transfer
                                                          : Phase::Wait;
            state.bytes = moves && !answered_ ? 4 : 0;
            if (Asserted(record, vsb::bitErr) && !failed_) {
                state.ending = Ending::TargetAbort;
                failed_ = true;
            }
        }
        answered_ = answered;
        return state;
    }

private:
    void Begin(const Record& record, BusState& state) {
        open_ = true;
        state.begins = true;
        const bool read = GetBit(record, vsb::bitWr);
        const auto space = GetField(record, vsb::bitSpace, 2);
        const auto of = [read](unsigned any, unsigned reads, unsigned writes) {
            return Codes(any, read ? reads : writes);
        };
        state.codes =
            (space == vsb::spaceSystem      ? of(codeMem, codeMemRead, codeMemWrite)
             : space == vsb::spaceIo        ? of(codeIo, codeIoRead, codeIoWrite)
             : space == vsb::spaceAlternate ? of(codeConfig, codeConfigRead, codeConfigWrite)
                                            : Codes()) |
            ExternalCodes(record, vsb::bitExt, vsb::extBits);
        state.address = GetField(record, vsb::bitAd, 32);
    }

    bool open_ = false;
    bool failed_ = false;
    bool answered_ = false;
};

} // namespace

std::unique_ptr<BusFollower> MakeBusFollower(Family family) {
    switch (family) {
    case Family::Pci32:
        return std::make_unique<PciFollower>(false, false);
    case Family::Pci64:
        return std::make_unique<PciFollower>(true, false);
    case Family::PciX:
        return std::make_unique<PciFollower>(true, true);
    case Family::Vme:
        return std::make_unique<VmeFollower>(vme::plainBits);
    case Family::Lark:
        return std::make_unique<VmeFollower>(vme::larkBits);
    case Family::Vsb:
        return std::make_unique<VsbFollower>();
    case Family::ConnectorP2:
    case Family::ConnectorP0:
        break;
    }
    return nullptr;
}

} // namespace boardsim
