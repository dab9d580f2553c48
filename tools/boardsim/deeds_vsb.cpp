#include "deeds.h"
#include "lines.h"

namespace boardsim {

namespace {

using namespace vsb;

class VsbDoer final : public Doer {
public:
    explicit VsbDoer(std::uint32_t seed) : Doer(seed) {
        idle_.fill(0xFF);
        SetBit(idle_, bitAddress, false);
        SetField(idle_, bitExt, 8, 0);
        SetField(idle_, bitExp, 8, 0);
        SetField(idle_, bitRule, 8, 0);
    }

    void Act() override {
        for (unsigned i = 1 + Pick(3); i > 0; --i) {
            Tell(idle_);
        }
        constexpr const char* names[] = {"", "Alt", "I/O", "Sys"};
        constexpr unsigned bytesOfSize[] = {4, 1, 2, 3};
        const unsigned space = 1 + Pick(3);
        const unsigned size = Pick(4) == 0 ? Pick(4) : 0;
        const bool read = Pick(2) == 0;
        const std::uint32_t address = Word();
        Record record = idle_;
        SetBit(record, bitBusy, false);
        SetField(record, bitSpace, 2, space);
        SetField(record, bitSize, 2, size);
        SetBit(record, bitWr, read);
        SetField(record, bitAd, 32, address);
        SetBit(record, bitAddress, true);
        Tell(record);
        SetBit(record, bitPas, false);
        Deed& deed = deeds_.emplace_back();
        deed.command = std::string(names[space]) + (read ? " Rd" : " Wr");
        deed.address = AddressText(address, 8);
        deed.first = deed.last = Tell(record);
        deed.commandToldBy = deed.addressToldBy = deed.first;
        SetBit(record, bitAc, false);
        const unsigned width = 1U << Pick(3); // of the target, in bytes
        const bool tellsWidth = Pick(3) != 0;
        if (tellsWidth) {
            SetBit(record, bitAsack, width == 2);     // low for 1 and 4
            SetBit(record, bitAsack + 1, width == 1); // low for 2 and 4
        }
        deed.last = Tell(record);
        SetBit(record, bitAddress, false);
        std::uint32_t next = address;

        const unsigned transfers = Pick(3) == 0 ? 1 + Pick(12) : 1;
        const unsigned outcome = Pick(6); // of the last strobe
        deed.end = outcome == 0 ? "bus-error" : outcome == 1 ? "master-abort" : "complete";
        for (unsigned i = 0; i < transfers; ++i) {
            const bool isLast = i + 1 == transfers;
            const std::uint32_t value = Word();
            SetField(record, bitAd, 32, value);
            SetBit(record, bitDs, false);
            const std::size_t strobe = deed.last = Tell(record);
            if (Pick(3) == 0) {
                deed.last = Tell(record);
            }
            if (isLast && outcome == 0) {
                SetBit(record, bitErr, false);
                deed.endToldBy = deed.last = Tell(record);
            } else if (!isLast || outcome != 1) {
                SetBit(record, bitAck, false);
                unsigned bytes = bytesOfSize[size];
                while (tellsWidth && bytes > 1 && next / width != (next + bytes - 1) / width) {
                    --bytes; // what is beyond the target's width comes later
                }
                next += bytes;
                const std::size_t acknowledge = Acknowledge(record, value, read, deed);
                deed.transfers.push_back({acknowledge, HexText(value, 4), bytes, strobe});
                if (read && deed.last != acknowledge) {
                    Deed::Transfer& transfer = deed.transfers.back();
                    const Record& early = samples_[acknowledge].record;
                    transfer.early = HexText(GetField(early, bitAd, 32), 4);
                    transfer.settledBy = deed.last;
                }
            }
            SetBit(record, bitDs, true);
            SetBit(record, bitAck, true);
            SetBit(record, bitErr, true);
            if (!isLast || Pick(2) == 0) {
                deed.last = Tell(record);
            }
        }
    }
    bool NeedsSampleBefore() const override { return true; }

private:
    /// What is read may settle after the acknowledge; what is written may be over then.
    std::size_t Acknowledge(Record& record, std::uint32_t value, bool read, Deed& deed) {
        const bool isLong = Pick(3) == 0;
        if (isLong && read) {
            SetField(record, bitAd, 32, Word());
        }
        const std::size_t acknowledge = deed.last = Tell(record);
        if (isLong) {
            SetField(record, bitAd, 32, read ? value : Word());
            deed.last = Tell(record);
        }
        return acknowledge;
    }
    std::size_t Tell(const Record& record) { return Put(record, 5 + Pick(100)); }

    Record idle_{};
};

} // namespace

std::unique_ptr<Doer> MakeVsbDoer(std::uint32_t seed) {
    return std::make_unique<VsbDoer>(seed);
}

} // namespace boardsim
