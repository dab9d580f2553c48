#include "lines.h"
#include "traffic.h"

#include <bit>

namespace boardsim {

namespace {

using namespace pci;

enum Rule : unsigned {
    ruleFrameWithoutReady = 2,
    ruleNoTrdyIn8 = 24,
    ruleTargetRetry = 112,
    ruleTargetDisconnect = 113,
    ruleTargetAbort = 114,
};

struct Access {
    unsigned command = cmdMemRead;
    std::uint32_t address = 0;
    unsigned words = 1;
    unsigned waits = 1; // clocks before the first data
};

class PciTraffic final : public Traffic {
public:
    PciTraffic(std::uint32_t seed, bool wide, bool pciX)
        : Traffic(seed), wide_(wide), pciX_(pciX), clock_(pciX ? 15 : 30) {
        idle_.fill(0xFF);
        SetField(idle_, bitAd, 32, 0x00001F40);
        SetField(idle_, bitIdsel, 1, 0);
        SetField(idle_, 94, 2, 0); // no anomaly, no address
        SetField(idle_, bitAttribute, 1, pciX ? 0 : 1);
        SetField(idle_, bitExt, 8, 0);
        SetField(idle_, bitTms - 3, 5, 0x1B);
        SetField(idle_, 136, 8, 0);
        last_ = idle_;
    }

private:
    void Cycle() override {
        Idle(2 + Pick(4));
        switch (Pick(20)) {
        case 0:
            Transfer({cmdConfigRead, 0x00010000U | Pick(16) * 4, 1, 2});
            break;
        case 1:
            Transfer({cmdIoWrite, 0x000003F8 + Pick(8), 1, 2});
            break;
        case 2:
            Transfer({cmdIoRead, 0x00000060 + Pick(4), 1, 3});
            break;
        case 3:
            Interrupt();
            break;
        case 4:
            Refused({cmdMemRead, MemoryAddress()}, true);
            break;
        case 5:
            Refused({cmdMemWrite, MemoryAddress()}, false);
            break;
        case 6:
            SpecialCycle();
            break;
        case 7:
        case 8:
        case 9:
        case 10:
            Transfer({cmdMemWrite, MemoryAddress(), 4 + Pick(13), Pick(2)});
            break;
        case 11:
        case 12:
            Transfer({cmdMemReadLine, MemoryAddress(), 8, 2 + Pick(3)});
            break;
        case 13:
            Idle(12 + Pick(30));
            break;
        case 14:
        case 15:
        case 16:
            Transfer({cmdMemWrite, MemoryAddress(), 1, Pick(3)});
            break;
        default:
            Transfer({cmdMemRead, MemoryAddress(), 1 + Pick(2), 2 + Pick(9)});
        }
    }

    std::uint32_t MemoryAddress() {
        // A few buffers in memory and the registers of a device, as a driver uses them.
        constexpr std::uint32_t regions[] = {0x00100000, 0x01F40000, 0xFEBF0000};
        return regions[Pick(3)] + Pick(64) * 16;
    }

    /// Puts a clock; parity is one clock later than what it covers.
    void Clock(Record record, unsigned rule = 0) {
        SetBit(record, bitPar, Odd(GetField(last_, bitAd, 32)) != Odd(GetField(last_, bitCbe, 4)));
        if (wide_) {
            SetBit(record, bitPar64,
                   Odd(GetField(last_, bitAd + 32, 32)) != Odd(GetField(last_, bitCbe + 4, 4)));
        }
        SetBit(record, bitIntA, !interrupt_);
        Put(record, clock_, rule);
        last_ = record;
    }

    static bool Odd(std::uint64_t value) { return std::popcount(value) % 2 != 0; }

    void Idle(unsigned clocks) {
        for (unsigned i = 0; i < clocks; ++i) {
            Clock(idle_);
        }
    }

    /// Arbitration, address phase and, on PCI-X, the attributes. Returns the record of the next
    /// clock.
    Record Begin(const Access& access) {
        Record request = idle_;
        SetBit(request, bitReq, false);
        Clock(request);
        SetBit(request, bitGnt, false);
        Clock(request);

        Record address = idle_;
        SetField(address, bitAd, 32, access.address);
        SetField(address, bitCbe, 4, access.command);
        SetBit(address, bitFrame, false);
        SetBit(address, bitGnt, false);
        SetBit(address, bitAddress, true);
        const bool config = access.command == cmdConfigRead || access.command == cmdConfigWrite;
        SetBit(address, bitIdsel, config);
        if (wide_) {
            SetField(address, bitAd + 32, 32, 0);
            SetBit(address, bitReq64, config);
        }
        Clock(address);
        if (pciX_) {
            Record attribute = address;
            SetBit(attribute, bitAddress, false);
            SetBit(attribute, bitAttribute, true);
            SetBit(attribute, bitIdsel, false);
            // Tag, bus, device, function and the low byte of the byte count.
            SetField(attribute, bitAd, 32,
                     Pick(32) << 24 | 1U << 16 | 2U << 11 | 0U << 8 | (access.words * 4 & 0xFF));
            SetField(attribute, bitCbe, 4, 0);
            Clock(attribute);
        }
        Record data = idle_;
        SetBit(data, bitIrdy, false);
        SetBit(data, bitFrame, access.words == 1);
        SetField(data, bitCbe, wide_ ? 8 : 4, 0);
        SetBit(data, bitReq64, !wide_ || config || access.words == 1);
        return data;
    }

    void Transfer(const Access& access) {
        const bool write = (access.command & 1) != 0;
        Record data = Begin(access);
        SetField(data, bitAd, 32, write ? NextData() : access.address);
        if (!write) {
            Clock(data); // turnaround: nobody drives AD
        }
        SetBit(data, bitDevsel, false);
        SetBit(data, bitAck64, !wide_);
        for (unsigned i = 0; i < access.waits; ++i) {
            Clock(data, i == 8 ? unsigned{ruleNoTrdyIn8} : 0);
        }
        for (unsigned word = 0; word < access.words; ++word) {
            const bool last = word + 1 == access.words;
            Record now = data;
            SetField(now, bitAd, 32, write && word == 0 ? GetField(data, bitAd, 32) : NextData());
            if (wide_) {
                SetField(now, bitAd + 32, 32, NextData());
            }
            SetBit(now, bitTrdy, false);
            SetBit(now, bitFrame, last);
            SetBit(now, bitReq64, last || !wide_);
            if (word != 0 && Pick(8) == 0) {
                Record wait = now;
                SetBit(wait, bitTrdy, true);
                Clock(wait);
            }
            Clock(now);
        }
        Clock(idle_);
        if (access.command == cmdIoRead && Pick(4) == 0) {
            Record odd = idle_;
            SetBit(odd, bitFrame, false);
            Clock(odd, ruleFrameWithoutReady);
        }
    }

    /// A target that requests a retry, or disconnects.
    void Refused(const Access& access, bool retry) {
        Record data = Begin(access);
        Clock(data);
        SetBit(data, bitDevsel, false);
        SetBit(data, bitFrame, true);
        SetBit(data, bitStop, false);
        if (retry) {
            Clock(data, ruleTargetRetry);
        } else if (Pick(3) == 0) {
            SetBit(data, bitDevsel, true);
            Clock(data, ruleTargetAbort);
        } else {
            SetField(data, bitAd, 32, NextData());
            SetBit(data, bitTrdy, false);
            Clock(data, ruleTargetDisconnect);
        }
        Clock(idle_);
        Idle(Pick(4));
        if (retry) {
            Transfer({access.command, access.address, 1, 1});
        }
    }

    void Interrupt() {
        interrupt_ = true;
        Idle(6);
        Transfer({cmdIntAck, 0, 1, 2});
        Transfer({cmdMemRead, 0xFEBF0010, 1, 2});
        interrupt_ = false;
        Idle(3);
    }

    /// A special cycle: no target answers, and the master ends it.
    void SpecialCycle() {
        Record data = Begin({cmdSpecial, 0, 1, 0});
        SetField(data, bitAd, 32, 0x00000001);
        for (int i = 0; i < 4; ++i) {
            Clock(data);
        }
        Clock(idle_);
    }

    std::uint32_t NextData() {
        data_ = Pick(3) == 0 ? Word() : data_ + 1;
        return data_;
    }

    bool wide_;
    bool pciX_;
    unsigned clock_; // nanoseconds
    bool interrupt_ = false;
    std::uint32_t data_ = 0x12340000;
    Record idle_{};
    Record last_{};
};

} // namespace

std::unique_ptr<Traffic> MakePciTraffic(std::uint32_t seed, bool wide, bool pciX) {
    return std::make_unique<PciTraffic>(seed, wide, pciX);
}

} // namespace boardsim
