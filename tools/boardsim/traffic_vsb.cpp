#include "lines.h"
#include "traffic.h"

namespace boardsim {

namespace {

using namespace vsb;

class VsbTraffic final : public Traffic {
public:
    explicit VsbTraffic(std::uint32_t seed) : Traffic(seed) {
        idle_.fill(0xFF);
        SetField(idle_, bitGa, 3, 2);
        SetBit(idle_, bitAddress, false);
        SetField(idle_, bitExt, 8, 0);
        SetField(idle_, bitExp, 8, 0);
    }

private:
    void Cycle() override {
        Put(idle_, 50 + Pick(400));
        const unsigned kind = Pick(8);
        if (kind == 0) {
            Access(spaceIo, 0x0000F000 + Pick(32) * 4, Pick(2) == 0, 1, false);
        } else if (kind == 1) {
            Access(spaceAlternate, 0x20000000 + Pick(64) * 4, true, 1, Pick(3) == 0);
        } else {
            Access(spaceSystem, 0x00400000 + Pick(1024) * 4, Pick(3) != 0, kind > 5 ? 4 : 1, false);
        }
    }

    void Access(unsigned space, std::uint32_t address, bool read, unsigned transfers, bool error) {
        Record record = idle_;
        SetBit(record, bitBreq, false);
        Put(record, 40);
        record = idle_;
        SetBit(record, bitBusy, false);
        SetField(record, bitSpace, 2, space);
        SetField(record, bitSize, 2, 0);
        SetBit(record, bitWr, read);
        SetField(record, bitAd, 32, address);
        SetBit(record, bitAddress, true);
        Put(record, 30);
        SetBit(record, bitPas, false);
        Put(record, 20);
        SetBit(record, bitAc, false);
        SetField(record, bitAsack, 2, 0);
        Put(record, 40 + Pick(40));
        SetBit(record, bitAddress, false);
        for (unsigned i = 0; i < transfers; ++i) {
            SetField(record, bitAd, 32, Pick(2) == 0 ? Word() : i);
            SetBit(record, bitDs, false);
            Put(record, 20);
            SetBit(record, error ? bitErr : bitAck, false);
            Put(record, 60 + Pick(100));
            SetBit(record, bitDs, true);
            SetBit(record, error ? bitErr : bitAck, true);
            Put(record, 20);
        }
    }

    Record idle_{};
};

/// Pins of a connector that the board does not interpret: slow lines, a counter and a strobe.
class ConnectorTraffic final : public Traffic {
public:
    explicit ConnectorTraffic(std::uint32_t seed) : Traffic(seed) {}

private:
    void Cycle() override {
        Record record{};
        SetField(record, 0, 32, counter_);
        SetField(record, 32, 32, slow_);
        SetField(record, 64, 28, slow_ >> 3);
        for (unsigned strobe = 0; strobe < 2; ++strobe) {
            SetBit(record, 105, strobe != 0);
            SetBit(record, 109, true);
            Put(record, 60 + Pick(30));
        }
        ++counter_;
        if (Pick(16) == 0) {
            slow_ ^= 1U << Pick(32);
        }
    }

    std::uint32_t counter_ = 0;
    std::uint32_t slow_ = 0xF0F0A5A5;
};

} // namespace

std::unique_ptr<Traffic> MakeVsbTraffic(std::uint32_t seed) {
    return std::make_unique<VsbTraffic>(seed);
}

std::unique_ptr<Traffic> MakeConnectorTraffic(std::uint32_t seed) {
    return std::make_unique<ConnectorTraffic>(seed);
}

} // namespace boardsim
