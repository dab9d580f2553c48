#include "lines.h"
#include "traffic.h"

namespace boardsim {

namespace {

using namespace vme;

enum Modifier : unsigned {
    amA16 = 0x29,
    amA24 = 0x39,
    amA24Block = 0x3B,
    amA32 = 0x09,
};

constexpr unsigned ruleNoAcknowledge = 67;
constexpr unsigned ruleAcknowledgeEarly = 31;

class VmeTraffic final : public Traffic {
public:
    VmeTraffic(std::uint32_t seed, const VmeBits& bits, bool checked)
        : Traffic(seed), bits_(bits), checked_(checked) {
        idle_.fill(0xFF);
        SetField(idle_, bits.ext, bits.extWidth, 0);
        SetField(idle_, 136, 8, 0);
    }

private:
    void Cycle() override {
        Put(idle_, 60 + Pick(900));
        switch (Pick(10)) {
        case 0:
            Interrupt(1 + Pick(7));
            break;
        case 1:
            Access(amA16, 0xFFFF8000U | Pick(64) * 2, Pick(2) == 0, 1);
            break;
        case 2:
        case 3:
            Access(amA24Block, 0xFF200000U + Pick(16) * 64, Pick(2) == 0, 8);
            break;
        case 4:
            BusError(amA32, 0xC0000000U + Pick(256) * 4);
            break;
        case 5:
        case 6:
            Access(amA24, 0xFF100000U + Pick(1024) * 4, true, 1);
            break;
        default:
            Access(amA32, 0x08000000U + Pick(4096) * 4, Pick(3) != 0, 1);
        }
    }

    Record Granted() {
        Record record = idle_;
        SetBit(record, bits_.br + 3, false);
        Put(record, 40 + Pick(100));
        SetBit(record, bits_.bg + 3, false);
        Put(record, 40);
        record = idle_;
        SetBit(record, bits_.bbsy, false);
        return record;
    }

    Record Addressed(unsigned modifier, std::uint32_t address, bool read) {
        Record record = Granted();
        SetField(record, bitAddress, 32, address);
        SetField(record, bits_.am, 6, modifier);
        SetBit(record, bits_.lword, false);
        SetBit(record, bits_.write, read);
        Put(record, 40);
        SetBit(record, bits_.as, false);
        Put(record, 35);
        return record;
    }

    void Strobe(Record& record, bool read, unsigned rule) {
        if (!read) {
            SetField(record, bitData, 32, Data());
        }
        SetField(record, bits_.ds, 2, 0);
        Put(record, 15);
        if (read) {
            SetField(record, bitData, 32, Data());
        }
        SetBit(record, bits_.dtack, false);
        Put(record, 60 + Pick(200), rule);
        SetField(record, bits_.ds, 2, 3);
        Put(record, 30);
        SetBit(record, bits_.dtack, true);
        SetField(record, bitData, 32, 0xFFFFFFFF);
        Put(record, 25);
    }

    void Access(unsigned modifier, std::uint32_t address, bool read, unsigned transfers) {
        Record record = Addressed(modifier, address, read);
        for (unsigned i = 0; i < transfers; ++i) {
            Strobe(record, read, checked_ && Pick(40) == 0 ? ruleAcknowledgeEarly : 0);
        }
        Put(idle_, 40);
    }

    void BusError(unsigned modifier, std::uint32_t address) {
        Record record = Addressed(modifier, address, true);
        SetField(record, bits_.ds, 2, 0);
        Put(record, 15);
        SetBit(record, bits_.berr, false);
        Put(record, 16000, checked_ ? ruleNoAcknowledge : 0);
        Put(idle_, 60);
    }

    void Interrupt(unsigned level) {
        Record record = idle_;
        SetBit(record, bits_.irq + static_cast<int>(level) - 1, false);
        Put(record, 200 + Pick(300));
        record = Granted();
        SetField(record, bitAddress, 32, 0xFFFFFFF0U | level << 1);
        SetBit(record, bits_.iack, false);
        SetBit(record, bits_.as, false);
        Put(record, 40);
        SetBit(record, bits_.iacki, false);
        Put(record, 40);
        Strobe(record, true, 0);
        Put(idle_, 40);
    }

    std::uint32_t Data() { return Pick(2) == 0 ? Word() : 0x4B495445; }

    const VmeBits& bits_;
    bool checked_;
    Record idle_{};
};

} // namespace

std::unique_ptr<Traffic> MakeVmeTraffic(std::uint32_t seed, bool lark) {
    return std::make_unique<VmeTraffic>(seed, lark ? larkBits : plainBits, !lark);
}

} // namespace boardsim
