#include "deeds.h"
#include "lines.h"

#include <algorithm>
#include <bit>

namespace boardsim {

namespace {

using namespace vme;

constexpr int bitRetry = 104; // on both tiers

/// A kind of access, by its address modifier.
struct Kind {
    unsigned modifier;
    const char* name;
    unsigned digits;  // of the address
    bool isBlock;     // several transfers
    bool isWideBlock; // of 64 bits
    bool isLock;      // without data
};

// clang-format off
constexpr Kind kinds[] = {
    {0x29, "A16 NON PRVL ACC",   4, false, false, false},
    {0x2D, "A16 SUPV ACC",       4, false, false, false},
    {0x39, "A24 NON PRVL DATA",  6, false, false, false},
    {0x3B, "A24 NON PRVL BLT",   6, true,  false, false},
    {0x38, "A24 NON PRVL MBLT",  6, true,  true,  false},
    {0x2F, "CR/CSR",             6, false, false, false},
    {0x09, "A32 NON PRVL DATA",  8, false, false, false},
    {0x0D, "A32 SUPV DATA",      8, false, false, false},
    {0x0B, "A32 NON PRVL BLT",   8, true,  false, false},
    {0x0C, "A32 SUPV MBLT",      8, true,  true,  false},
    {0x05, "A32 LCK",            8, false, false, true},
    {0x34, "A40 ACC",           10, false, false, false},
    {0x37, "A40 BLT",           10, true,  false, false},
    {0x01, "A64 STA",           16, false, false, false},
    {0x03, "A64 BLT",           16, true,  false, false},
    {0x00, "A64 MBLT",          16, true,  true,  false},
};
// clang-format on

/// Which bytes of the data lines a transfer uses, and how the lines say so.
struct Size {
    unsigned strobes; // a bit for each
    bool longWord;
    bool a1;
    unsigned width; // bytes shown
    unsigned lanes;
};
constexpr Size sizes[] = {
    {3, true, false, 4, 0xF},  {3, true, true, 4, 0x6},   {2, true, false, 4, 0xE},
    {1, true, false, 4, 0x7},  {3, false, false, 2, 0x3}, {2, false, false, 2, 0x2},
    {1, false, false, 2, 0x1},
};

class VmeDoer final : public Doer {
public:
    VmeDoer(std::uint32_t seed, bool lark)
        : Doer(seed), bits_(lark ? larkBits : plainBits), lark_(lark) {
        idle_.fill(0xFF);
        SetField(idle_, 136, 8, 0);
    }

    void Act() override {
        for (unsigned i = 1 + Pick(3); i > 0; --i) {
            Tell(idle_);
        }
        switch (Pick(8)) {
        case 0:
            Interrupt();
            break;
        case 1:
        case 2:
            TwoEdges();
            break;
        default:
            Access(kinds[Pick(std::size(kinds))]);
        }
    }
    bool NeedsSampleBefore() const override { return true; }

private:
    enum class Way { Complete, BusError, Retry, NoAnswer };

    std::size_t Tell(const Record& record) {
        return Put(record, 5 + Pick(100), !lark_ && Pick(40) == 0 ? 1 + Pick(67) : 0);
    }

    /// The address strobe, after some samples with the bus granted.
    Deed& Begin(Record& record, const std::string& command, const std::string& address) {
        SetBit(record, bits_.bbsy, false);
        Tell(record);
        SetBit(record, bits_.as, false);
        Deed& deed = deeds_.emplace_back();
        deed.command = command;
        deed.address = address;
        deed.end = "complete";
        deed.first = deed.last = Tell(record);
        deed.commandToldBy = deed.addressToldBy = deed.first;
        return deed;
    }

    void Access(const Kind& kind) {
        const bool read = Pick(2) == 0;
        const bool addressOnly = Pick(20) == 0;
        // Boards that use 40 bits have 16 data lines; 32 bits of data need address lines too.
        const bool isNarrow = kind.digits == 10;
        Size size = sizes[Pick(3) == 0 ? Pick(std::size(sizes)) : 0];
        if (isNarrow && size.longWord && (size.a1 || size.strobes != 3)) {
            size = sizes[0];
        }
        std::uint64_t address = kind.digits == 16 ? Words() : Words() >> (64 - 4 * kind.digits);
        address = (address & ~std::uint64_t{3}) | (size.a1 ? 2 : 0);
        Record record = idle_;
        SetField(record, bits_.am, 6, kind.modifier);
        SetBit(record, bits_.write, read);
        SetBit(record, bits_.lword, !size.longWord);
        const unsigned lines = kind.digits == 10 ? 24 : kind.digits == 16 ? 32 : 4 * kind.digits;
        SetField(record, bitAddress, static_cast<int>(lines), address);
        Deed& deed = Begin(record, std::string(kind.name) + (read ? " Rd" : " Wr"),
                           AddressText(address, kind.digits));
        if (addressOnly && kind.digits >= 10) {
            deed.address.clear(); // the rest of it never comes
        } else if (!addressOnly) {
            const bool hasStrobe = kind.isWideBlock || kind.digits == 10 || kind.digits == 16;
            if (hasStrobe) {
                SetField(record, bitData, 32, address >> lines);
                const std::size_t strobe = Strobe(record, 3, Way::Complete).first;
                deed.addressToldBy = kind.digits >= 10 ? strobe : deed.addressToldBy;
                deed.last = Release(record);
            }
            const bool modifies = !kind.isBlock && !kind.isLock && read && Pick(6) == 0;
            Transfers(kind, size, deed, record);
            if (modifies && deed.end == "complete") {
                Modify(kind, size, deed, record);
            }
        }
        End(record, deed);
    }

    /// What was read is written under the same address.
    void Modify(const Kind& kind, const Size& size, Deed& deed, Record& record) {
        if (GetField(record, bits_.ds, 2) != 3) {
            deed.last = Release(record);
        }
        SetBit(record, bits_.write, false);
        deed.modifies = {samples_.size(), std::string(kind.name) + " RMW"}; // the next strobe
        Transfers(kind, size, deed, record);
    }

    void Transfers(const Kind& kind, Size size, Deed& deed, Record& record) {
        const unsigned count = kind.isBlock ? 1 + Pick(12) : 1;
        const bool read = GetBit(record, bits_.write);
        const bool isMultiplexed = kind.digits == 10 && size.longWord;
        const Way way = Pick(5) == 0 ? static_cast<Way>(1 + Pick(3)) : Way::Complete;
        for (unsigned i = 0; i < count; ++i) {
            const std::uint64_t value = Words();
            SetField(record, bitData, 32, value);
            if (kind.isWideBlock || isMultiplexed) {
                SetField(record, bitAddress, 32, value >> 32);
                SetBit(record, bits_.lword, (value >> 32 & 1) != 0);
            } else if (i > 0 && Pick(2) == 0) {
                // The address with its size is over after the first beat.
                SetField(record, bitAddress, 32, Word());
                SetBit(record, bits_.lword, Pick(2) == 0);
            }
            if (i > 0 && size.width == 2 && size.strobes != 3) {
                size = {3U - size.strobes, false, size.a1, 2, 3U - size.lanes}; // the next byte
            }
            const Way answer = i + 1 == count ? way : Way::Complete;
            const unsigned strobes = kind.isWideBlock ? 3 : size.strobes;
            const auto [strobe, acknowledge] = answer == Way::Complete
                                                   ? StrobeData(record, strobes, deed)
                                                   : Strobe(record, strobes, answer);
            deed.last = std::max(deed.last, acknowledge);
            if (answer != Way::Complete) {
                deed.end = answer == Way::BusError ? "bus-error"
                           : answer == Way::Retry  ? "retry"
                                                   : "master-abort";
                if (answer != Way::NoAnswer) {
                    deed.endToldBy = acknowledge;
                }
            } else if (!kind.isLock) {
                const unsigned width = kind.isWideBlock ? 8 : size.width;
                const unsigned lanes = kind.isWideBlock ? 0xFF : size.lanes;
                const auto text = [&](std::uint64_t lines) {
                    const std::uint64_t small = (lines >> 32 & 0xFFFF) << 16 | (lines & 0xFFFF);
                    return HexText(isMultiplexed ? small : lines, width, lanes);
                };
                deed.transfers.push_back({acknowledge, text(value),
                                          static_cast<unsigned>(std::popcount(lanes)), strobe});
                AddEarly(deed, read, text);
            }
            if (i + 1 < count || Pick(2) == 0) {
                deed.last = Release(record);
            }
        }
    }

    /// The samples of the strobe and of its answer.
    std::pair<std::size_t, std::size_t> Strobe(Record& record, unsigned strobes, Way way) {
        std::optional<std::size_t> strobe;
        if (strobes == 3 && Pick(4) == 0) {
            SetBit(record, bits_.ds + static_cast<int>(Pick(2)), false); // one is earlier
            strobe = Tell(record);
        }
        SetField(record, bits_.ds, 2, ~strobes);
        const std::size_t both = Tell(record);
        strobe = strobe.value_or(both);
        if (Pick(3) == 0) {
            Tell(record);
        }
        if (way == Way::NoAnswer) {
            return {*strobe, Tell(record)};
        }
        if (way == Way::Retry) {
            SetBit(record, bitRetry, false);
            if (Pick(2) == 0) { // an error follows for masters that do not know RETRY
                const std::size_t refused = deeds_.back().last = Tell(record);
                if (Pick(2) == 0) {
                    SetBit(record, bits_.berr, false);
                    deeds_.back().last = Tell(record);
                }
                return {*strobe, refused};
            }
        }
        SetBit(record, way == Way::Complete ? bits_.dtack : bits_.berr, false);
        return {*strobe, Tell(record)};
    }

    /// The same for data. What is read may settle after the acknowledge; what is written may be
    /// over then.
    std::pair<std::size_t, std::size_t> StrobeData(Record& record, unsigned strobes, Deed& deed) {
        if (Pick(3) != 0) {
            const auto told = Strobe(record, strobes, Way::Complete);
            deed.last = told.second;
            return told;
        }
        const bool isRead = GetBit(record, bits_.write) || !GetBit(record, bits_.iack);
        Record other = record;
        SetField(other, bitData, 32, Word());
        SetField(other, bitAddress, 32, Word());
        const auto told = Strobe(isRead ? other : record, strobes, Way::Complete);
        SetField(record, bits_.ds, 2, ~strobes);
        SetBit(record, bits_.dtack, false);
        SetField(other, bits_.ds, 2, ~strobes);
        SetBit(other, bits_.dtack, false);
        deed.last = Tell(isRead ? record : other);
        return told;
    }

    /// What the lines show before the data of the last transfer settle.
    template <typename Text>
    void AddEarly(Deed& deed, bool read, const Text& text) {
        Deed::Transfer& last = deed.transfers.back();
        if (!read || deed.last == last.sample) {
            return;
        }
        const Record& record = samples_[last.sample].record;
        const std::uint64_t low = GetBit(record, bits_.lword) ? 1 : 0;
        const std::uint64_t upper = (GetField(record, bitAddress, 32) & ~std::uint64_t{1}) | low;
        last.early = text(upper << 32 | GetField(record, bitData, 32));
        last.settledBy = deed.last;
    }

    /// Strobes and answer are released.
    std::size_t Release(Record& record) {
        SetField(record, bits_.ds, 2, 3);
        SetField(record, bitData, 32, Word());
        if (Pick(2) == 0) {
            Tell(record);
        }
        SetBit(record, bits_.dtack, true);
        SetBit(record, bits_.berr, true);
        SetBit(record, bitRetry, true);
        return Tell(record);
    }

    /// The address strobe is released; what else is asserted may follow later.
    void End(Record& record, Deed& deed) {
        if (Pick(3) == 0) {
            deed.last = Tell(record);
        }
        SetBit(record, bits_.as, true);
        SetField(record, bits_.ds, 2, 3);
        if (Pick(2) == 0) {
            Tell(record);
        }
    }

    void Interrupt() {
        const unsigned level = 1 + Pick(7);
        Record record = idle_;
        SetField(record, bitAddress, 32, 0xFFFFFFF0U | level << 1);
        SetBit(record, bits_.iack, false);
        const unsigned bytes = 1U << Pick(3); // of the vector
        SetBit(record, bits_.lword, bytes != 4);
        Deed& deed = Begin(record, lark_ ? "IACK" : "Interrupt", AddressText(level, 1));
        const std::uint32_t vector = Word();
        SetField(record, bitData, 32, vector);
        const auto [strobe, acknowledge] = StrobeData(record, bytes == 1 ? 1 : 3, deed);
        const unsigned width = bytes == 4 ? 4 : 2;
        deed.transfers.push_back(
            {acknowledge, HexText(vector, width, (1U << bytes) - 1), bytes, strobe});
        AddEarly(deed, true,
                 [&](std::uint64_t lines) { return HexText(lines, width, (1U << bytes) - 1); });
        End(record, deed);
    }

    // 2eVME and 2eSST

    void TwoEdges() {
        const bool read = Pick(2) == 0;
        const bool isSynchronous = Pick(2) == 0; // 2eSST
        const bool isSmall = Pick(4) == 0;       // 3U
        const bool hasWideAddress = Pick(3) == 0;
        const unsigned lines = isSmall ? 24 : 32;
        const unsigned wide = isSmall ? 40 : 64;
        const std::uint64_t address =
            (Words() | std::uint64_t{1} << 39) >> (64 - wide) &
            (hasWideAddress ? ~std::uint64_t{0} : 0xFFFFFFFF >> (32 - lines));
        Record record = idle_;
        SetField(record, bits_.am, 6, isSmall ? 0x21 : 0x20);
        SetBit(record, bits_.write, read);
        const unsigned extended = (isSynchronous ? 0x10 : 0) + (hasWideAddress ? 2 : 1);
        SetField(record, bitAddress, static_cast<int>(lines), address);
        SetLowByte(record, extended);
        SetField(record, bitData, 32, hasWideAddress ? address >> lines : Word());
        Deed& deed = Begin(record,
                           std::string(isSmall ? "2eVME/2eSST(3U)" : "2eVME/2eSST(6U)") +
                               (read ? " Rd" : " Wr"),
                           AddressText(address, address >> 32 != 0 ? 16 : 8));
        if (AddressPhases(deed, record, address & 0xFF)) {
            Beats(deed, record, read, isSynchronous, isSmall);
        }
        SetField(record, bits_.ds, 2, 3);
        SetBit(record, bits_.as, Pick(2) == 0); // at once, or later
        SetBit(record, bits_.dtack, true);
        SetBit(record, bits_.berr, true);
        SetBit(record, bitRetry, true);
        if (const std::size_t released = Tell(record); !GetBit(record, bits_.as)) {
            deed.last = released;
        }
        SetBit(record, bits_.as, true);
    }

    /// The bus has no A0. LWORD takes its place in the address phases, and AD[0] shows anything.
    void SetLowByte(Record& record, unsigned value) {
        SetField(record, bitAddress, 8, (value & ~1U) | Pick(2));
        SetBit(record, bits_.lword, (value & 1) != 0);
    }

    /// Three address phases. Returns whether all are acknowledged; the target may refuse in each.
    bool AddressPhases(Deed& deed, Record& record, unsigned lowByte) {
        constexpr unsigned phases = 3;
        const unsigned refused = Pick(6) == 0 ? 1 + Pick(phases) : 0;
        for (unsigned phase = 1; phase <= phases; ++phase) {
            if (phase == 2) {
                SetField(record, bitAddress, 32, Word());
                SetLowByte(record, lowByte);
            }
            const std::size_t strobe = Edge(record, bits_.ds);
            deed.addressToldBy = phase == 2 ? strobe : deed.addressToldBy;
            if (phase == refused) {
                const bool isError = Pick(2) == 0;
                deed.end = isError ? "bus-error" : "retry";
                deed.address = phase == 1 ? "" : deed.address; // the rest never comes
                deed.endToldBy = Edge(record, isError ? bits_.berr : bitRetry);
                return false;
            }
            Edge(record, bits_.dtack);
        }
        return true;
    }

    void Beats(Deed& deed, Record& record, bool read, bool isSynchronous, bool isSmall) {
        enum class Stop { Never, Retry, Error, NoAnswer };
        const Stop stop =
            Pick(4) == 0 ? static_cast<Stop>(1 + Pick(isSynchronous ? 2 : 3)) : Stop::Never;
        const unsigned count = (stop == Stop::Never || stop == Stop::NoAnswer ? 2 : 0) + Pick(20);
        for (unsigned beat = 0; beat < count; ++beat) {
            std::optional<std::size_t> strobe;
            if (!isSynchronous) {
                strobe = Edge(record, bits_.ds + 1);
                if (stop == Stop::NoAnswer && beat + 1 == count) {
                    deed.end = "master-abort";
                    deed.last = Tell(record);
                    return;
                }
            }
            const std::uint64_t value = PutWords(record);
            const bool stopsHere =
                stop != Stop::Never && stop != Stop::NoAnswer && beat + 1 == count && Pick(2) == 0;
            if (stopsHere) { // in the sample of the last beat
                SetBit(record, stop == Stop::Retry ? bitRetry : bits_.berr, false);
                deed.endToldBy = samples_.size();
            }
            const std::size_t moved =
                Edge(record, isSynchronous && !read ? bits_.ds + 1 : bits_.dtack);
            deed.transfers.push_back(Beat(value, moved, strobe, isSmall));
        }
        if (stop == Stop::Retry || stop == Stop::Error) {
            SetBit(record, stop == Stop::Retry ? bitRetry : bits_.berr, false);
            deed.last = Tell(record);
            deed.endToldBy = deed.endToldBy.value_or(deed.last);
            deed.end = stop == Stop::Error ? "bus-error"
                       : count == 0        ? "retry"
                                           : "disconnect-with-data";
            if (isSynchronous && !read) {
                AddBeatsUnderWay(deed, record, isSmall);
            }
        }
    }

    /// A master that does not wait for answers has sent some more before it sees that the target
    /// stops. They move if others have moved, and the target has not failed.
    void AddBeatsUnderWay(Deed& deed, Record& record, bool isSmall) {
        for (unsigned beat = Pick(4); beat > 0; --beat) {
            const std::uint64_t value = PutWords(record);
            const std::size_t sent = Edge(record, bits_.ds + 1);
            if (deed.end == "disconnect-with-data") {
                deed.transfers.push_back(Beat(value, sent, {}, isSmall));
            }
        }
    }

    /// Puts 64 random bits on the bus; LWORD has the one for which there is no address line.
    std::uint64_t PutWords(Record& record) {
        const std::uint64_t value = Words();
        SetField(record, bitAddress, 32, value >> 32);
        SetBit(record, bits_.lword, (value >> 32 & 1) != 0);
        SetField(record, bitData, 32, value);
        return value;
    }
    static Deed::Transfer Beat(std::uint64_t value, std::size_t sample,
                               std::optional<std::size_t> strobe, bool isSmall) {
        const std::uint64_t small = (value >> 32 & 0xFFFF) << 16 | (value & 0xFFFF);
        return {sample, isSmall ? HexText(small, 4) : HexText(value, 8), isSmall ? 4U : 8U, strobe};
    }

    /// A line changes its level; sometimes a sample follows in which nothing does.
    std::size_t Edge(Record& record, int line) {
        SetBit(record, line, !GetBit(record, line));
        const std::size_t sample = Tell(record);
        deeds_.back().last = sample;
        if (Pick(4) == 0) {
            deeds_.back().last = Tell(record);
        }
        return sample;
    }

    const VmeBits& bits_;
    bool lark_;
    Record idle_{};
};

} // namespace

std::unique_ptr<Doer> MakeVmeDoer(std::uint32_t seed, bool lark) {
    return std::make_unique<VmeDoer>(seed, lark);
}

} // namespace boardsim
