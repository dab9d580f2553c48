#include "deeds.h"
#include "lines.h"

#include <algorithm>
#include <bit>
#include <map>

namespace boardsim {

namespace {

using namespace pci;

constexpr unsigned cmdMemReadBlock = 0xE;  // PCI-X
constexpr unsigned cmdMemWriteBlock = 0xF; // PCI-X
constexpr unsigned cmdSplitCompletion = 0xC;

// In the attributes of a split completion.
constexpr int byteCountModified = 31;
constexpr int completionError = 30;
constexpr int completionMessage = 29;

constexpr unsigned boundary = 128; // bytes, at which PCI-X may interrupt a burst

enum class Way {
    Complete,
    Retry,
    WithData,
    WithoutData,
    TargetAbort,
    MasterAbort,
    Split,
    NextBoundary
};

std::string EndText(Way way) {
    constexpr const char* texts[] = {
        "complete",     "retry",        "disconnect-with-data", "disconnect-without-data",
        "target-abort", "master-abort", "split-response",       "disconnect-with-data"};
    return texts[static_cast<int>(way)];
}

std::string CommandText(unsigned command, bool pciX, bool dual) {
    static const std::map<unsigned, std::string> plain = {
        {0x0, "Int Ack"},     {0x1, "Spc Cyc"},     {0x2, "I/O Rd"},      {0x3, "I/O Wr"},
        {0x6, "Mem Rd"},      {0x7, "Mem Wr"},      {0xA, "Cfg Rd"},      {0xB, "Cfg Wr"},
        {0xE, "Mem Rd Line"}, {0xC, "Mem Rd Mult"}, {0xF, "Mem Wr & Inv"}};
    static const std::map<unsigned, std::string> extended = {
        {0x2, "I/O Rd"},     {0x3, "I/O Wr"},     {0x6, "Mem Rd DW"},
        {0x7, "Mem Wr"},     {0xA, "Cfg Rd"},     {0xB, "Cfg Wr"},
        {0xC, "Split Cmpl"}, {0xE, "Mem Rd Blk"}, {0xF, "Mem Wr Blk"}};
    if (dual) {
        return command == 0x6 ? "DAC-Mem Rd" : command == 0x7 ? "DAC-Mem Wr" : "DAC-Mem Wr & Inv";
    }
    return (pciX ? extended : plain).at(command);
}

class PciDoer final : public Doer {
public:
    PciDoer(std::uint32_t seed, bool wide, bool pciX)
        : Doer(seed), wide_(wide), pciX_(pciX), clock_(pciX ? 15 : 30) {
        idle_.fill(0xFF);
        SetField(idle_, 94, 2, 0); // no anomaly, no address
        SetField(idle_, bitAttribute, 1, pciX ? 0 : 1);
        SetField(idle_, 136, 8, 0);
    }

    void Act() override {
        if (pciX_) {
            ActExtended();
        } else {
            ActPlain();
        }
    }
    bool NeedsSampleBefore() const override { return false; }

private:
    /// What is to be done.
    struct Plan {
        unsigned command = cmdMemRead;
        bool dual = false;
        std::uint64_t address = 0;
        unsigned words = 1;
        bool asksWide = false; // the initiator
        bool isWide = false;   // both sides
        Way way = Way::Complete;
        unsigned at = 0; // the word at which the target ends it
    };
    /// A split request that is not completed yet.
    struct Sequence {
        std::size_t deed = 0;
        std::uint32_t requester = 0;
        std::uint32_t low = 0; // of the address of the next byte
        unsigned bytes = 0;
        bool isWrite = false;
    };

    std::size_t Clock(const Record& record) {
        return Put(record, clock_, Pick(40) == 0 ? 1 + Pick(114) : 0);
    }
    void Idle(unsigned clocks) {
        for (unsigned i = 0; i < clocks; ++i) {
            Clock(idle_);
        }
    }

    /// A deed with its address phases; the record has the lines that stay.
    Deed& Begin(const Plan& plan, Record& record) {
        record = idle_;
        SetBit(record, bitFrame, false);
        SetBit(record, bitAddress, true);
        SetBit(record, bitReq64, !plan.asksWide);
        SetField(record, bitAd, 32, plan.address & 0xFFFFFFFF);
        SetField(record, bitCbe, 4, plan.dual ? unsigned{cmdDualAddress} : plan.command);
        const bool drivesAll = wide_ && plan.asksWide;
        if (wide_) {
            SetField(record, bitAd + 32, 32, drivesAll ? plan.address >> 32 : Word());
            SetField(record, bitCbe + 4, 4, drivesAll && plan.dual ? plan.command : Pick(16));
        }
        Deed& deed = deeds_.emplace_back();
        deed.command = CommandText(plan.command, pciX_, plan.dual);
        const bool hasAddress = plan.command != cmdIntAck && plan.command != cmdSpecial;
        deed.address = hasAddress ? AddressText(plan.address, plan.dual ? 16 : 8) : "";
        deed.end = EndText(plan.way);
        deed.first = deed.addressToldBy = Clock(record);
        if (plan.dual) {
            SetField(record, bitAd, 32, plan.address >> 32);
            SetField(record, bitCbe, 4, plan.command);
            const std::size_t second = Clock(record);
            deed.addressToldBy = drivesAll ? deed.first : second;
            deed.secondHalf = second;
        }
        deed.commandToldBy = deed.addressToldBy;
        SetBit(record, bitAddress, false);
        return deed;
    }

    /// Puts random data on the bus and returns their text.
    std::string Data(Record& record, unsigned width, unsigned lanes) {
        const std::uint64_t value = Words();
        SetField(record, bitAd, wide_ ? 64 : 32, value);
        return HexText(value, width, lanes);
    }
    /// Random byte enables, mostly all.
    unsigned Lanes(unsigned width) {
        const unsigned all = (1U << width) - 1;
        return Pick(4) == 0 ? Word() & all : all;
    }

    // PCI

    void ActPlain() {
        if (!backToBack_) {
            Idle(1 + Pick(6));
        }
        constexpr unsigned commands[] = {cmdIoRead,          cmdIoWrite,     cmdMemRead,
                                         cmdMemWrite,        cmdConfigRead,  cmdConfigWrite,
                                         cmdMemReadMultiple, cmdMemReadLine, cmdMemWriteInvalidate,
                                         cmdIntAck,          cmdSpecial};
        Plan plan;
        plan.command = commands[Pick(11)];
        const bool isMemory = (plan.command & 6) == 6 || plan.command == cmdMemReadMultiple;
        plan.dual = (plan.command == cmdMemRead || plan.command == cmdMemWrite) && Pick(5) == 0;
        plan.address = plan.dual ? Words() : Word();
        plan.words = isMemory ? 1 + Pick(9) : 1;
        plan.asksWide = wide_ && isMemory && Pick(3) != 0;
        plan.isWide = plan.asksWide && Pick(3) != 0;
        if (plan.command == cmdSpecial) {
            plan.way = Way::MasterAbort;
        } else if (Pick(3) == 0) {
            constexpr Way ways[] = {Way::Retry, Way::WithData, Way::WithoutData, Way::TargetAbort,
                                    Way::MasterAbort};
            plan.way = ways[Pick(5)];
            plan.at = plan.way == Way::Retry ? 0 : Pick(plan.words);
            if (plan.way == Way::WithoutData && plan.at == 0) {
                plan.way = Way::Retry;
            }
        }
        if (plan.way == Way::MasterAbort) {
            Abandon(plan);
        } else {
            Transfer(plan);
        }
    }

    /// Nobody answers; the initiator gives up.
    void Abandon(const Plan& plan) {
        Record record;
        Deed& deed = Begin(plan, record);
        deed.end = plan.command == cmdSpecial ? "complete" : deed.end;
        const unsigned late = Pick(3); // clocks before IRDY
        constexpr unsigned clocks = 5;
        for (unsigned i = 0; i < clocks; ++i) {
            const bool ready = i >= late;
            const bool isOver = ready && (plan.words == 1 || i + 1 == clocks);
            SetBit(record, bitIrdy, !ready);
            SetBit(record, bitFrame, isOver);
            const unsigned lanes = Lanes(4);
            SetField(record, bitCbe, wide_ ? 8 : 4, ~lanes);
            const std::string data = Data(record, 4, lanes);
            deed.last = Clock(record);
            if (!ready) {
                deed.initiatorWaits.push_back(deed.last);
            }
            if (plan.command != cmdSpecial) { // all take part in it, and nobody answers
                deed.waits.push_back(deed.last);
            } else if (i == late) {
                deed.transfers.push_back(
                    {deed.last, data, static_cast<unsigned>(std::popcount(lanes)), {}});
            }
        }
        backToBack_ = false;
    }

    void Transfer(const Plan& plan) {
        Record lines;
        Deed& deed = Begin(plan, lines);
        const bool read = (plan.command & 1) == 0;
        const bool refuses = plan.way != Way::Complete;
        unsigned decode = Pick(3);                // clocks before DEVSEL
        unsigned claimed = 0;                     // clocks with DEVSEL
        unsigned slow = Pick(3);                  // clocks before IRDY
        unsigned busy = (read ? 1 : 0) + Pick(3); // clocks before TRDY or STOP
        unsigned word = 0;
        bool stopped = false;
        bool mayGive = false; // the target stops, and still has a word to move
        while (true) {
            Record now = lines;
            const bool ready = slow == 0;
            const bool claims = decode == 0;
            // A target abort follows a claim.
            const bool acts = claims && busy == 0 && (plan.way != Way::TargetAbort || claimed > 0);
            const bool wasStopped = stopped;
            if (acts && refuses && word == plan.at && !stopped) {
                stopped = true;
                mayGive = plan.way == Way::WithData;
            }
            const bool gives = acts && (!stopped || mayGive);
            const bool isLast = ready && (wasStopped || (word + 1 == plan.words));
            SetBit(now, bitIrdy, !ready);
            SetBit(now, bitFrame, isLast);
            SetBit(now, bitReq64, isLast || !plan.asksWide);
            SetBit(now, bitTrdy, !gives);
            SetBit(now, bitStop, !stopped);
            const bool selects = claims && !(stopped && plan.way == Way::TargetAbort);
            SetBit(now, bitDevsel, !selects);
            SetBit(now, bitAck64, !(selects && plan.isWide));
            const unsigned width = plan.isWide ? 8 : 4;
            const unsigned lanes = Lanes(width);
            SetField(now, bitCbe, wide_ ? 8 : 4, ~lanes);
            const std::string data = Data(now, width, lanes);
            deed.last = Clock(now);
            if (stopped && !wasStopped) {
                deed.endToldBy = deed.last;
            }
            if (!ready) {
                deed.initiatorWaits.push_back(deed.last);
            }
            if (!stopped && !gives) {
                deed.waits.push_back(deed.last);
            }
            const bool moves = ready && gives;
            if (moves) {
                deed.transfers.push_back(
                    {deed.last, data, static_cast<unsigned>(std::popcount(lanes)), {}});
                ++word;
                mayGive = false;
            }
            if (isLast && (stopped || moves)) {
                break;
            }
            claimed += claims ? 1 : 0;
            decode -= decode > 0 ? 1 : 0;
            slow = moves ? (Seldom() ? Pick(3) : 0) : slow - (slow > 0 ? 1 : 0);
            busy = moves ? (Pick(3) == 0 ? Pick(4) : 0) : busy - (claims && busy > 0 ? 1 : 0);
        }
        deed.showsItsEnd = true;
        backToBack_ = !read && Pick(4) == 0;
    }

    // PCI-X

    void ActExtended() {
        Idle(1 + Pick(5));
        if (!sequences_.empty() && Pick(3) == 0) {
            CompleteSplit(Pick(static_cast<unsigned>(sequences_.size())));
            return;
        }
        constexpr unsigned commands[] = {cmdIoRead,       cmdIoWrite,      cmdMemRead,
                                         cmdMemWrite,     cmdConfigRead,   cmdConfigWrite,
                                         cmdMemReadBlock, cmdMemWriteBlock};
        Plan plan;
        plan.command = commands[Pick(8)];
        const bool isBlock = IsBlock(plan.command);
        const bool isBurst = isBlock || plan.command == cmdMemWrite;
        plan.dual = (plan.command == cmdMemRead || plan.command == cmdMemWrite) && Pick(5) == 0;
        plan.address = plan.dual ? Words() : Word();
        plan.asksWide = isBurst && Pick(3) != 0;
        plan.isWide = plan.asksWide && Pick(3) != 0;
        const unsigned width = plan.isWide ? 8 : 4;
        const unsigned bytes = 1 + Pick(60);
        const unsigned offset = isBurst ? plan.address & (width - 1) : 0;
        plan.words = isBurst ? (offset + bytes + width - 1) / width : 1;
        if (Pick(2) == 0) {
            constexpr Way ways[] = {Way::Retry,       Way::WithData,     Way::TargetAbort,
                                    Way::MasterAbort, Way::NextBoundary, Way::Split,
                                    Way::Split,       Way::Split};
            plan.way = ways[Pick(8)];
            plan.at = plan.way == Way::WithData ? Pick(plan.words) : 0;
            // Writes to memory are never split.
            const bool maySplit = plan.command != cmdMemWrite && plan.command != cmdMemWriteBlock &&
                                  sequences_.size() < requesterCount;
            if (plan.way == Way::Split && !maySplit) {
                plan.way = Way::Complete;
            }
            if (plan.way == Way::NextBoundary) {
                StopAtBoundary(plan);
            }
        }
        const std::uint32_t requester = NewRequester();
        const unsigned count = isBurst ? bytes : 4;
        Record record;
        Deed& deed = Begin(plan, record);
        deed.tag = requester >> 16;
        const unsigned enables = Lanes(4);
        SetField(record, bitAd, 32, requester << 8 | (count & 0xFF));
        SetField(record, bitCbe, 4, isBurst ? count >> 8 : ~enables & 0xF);
        Attribute(deed, record);
        Respond(plan, deed, record, offset, isBlock ? bytes : 0, isBurst ? 0xFF : enables);
        if (plan.way == Way::Split) {
            const bool isRead = (plan.command & 1) == 0;
            const unsigned low = isBurst ? plan.address & 0x7F : 0;
            sequences_.push_back({deeds_.size() - 1, requester, low, count, !isRead});
        }
    }

    /// Ends a plan at the next boundary, if it goes beyond, and tells so at an earlier word.
    void StopAtBoundary(Plan& plan) {
        const unsigned width = plan.isWide ? 8 : 4;
        const auto offset = static_cast<unsigned>(plan.address % boundary);
        plan.words = std::min(plan.words, (boundary - offset + width - 1) / width);
        if (plan.words < 2) {
            plan.way = Way::Complete;
            return;
        }
        plan.at = Pick(plan.words - 1);
    }

    static bool IsBlock(unsigned command) {
        return command == cmdMemReadBlock || command == cmdMemWriteBlock ||
               command == cmdSplitCompletion;
    }

    /// A tag and a function that no open sequence has.
    std::uint32_t NewRequester() {
        while (true) {
            const std::uint32_t requester = Pick(32) << 16 | 1U << 8 | 2U << 3 | Pick(8);
            if (std::none_of(sequences_.begin(), sequences_.end(), [&](const Sequence& sequence) {
                    return sequence.requester == requester;
                })) {
                return requester;
            }
        }
    }

    void Attribute(Deed& deed, Record& record) {
        SetBit(record, bitAttribute, true);
        deed.tagSample = Clock(record);
        SetBit(record, bitAttribute, false);
    }

    /// The target answers an earlier request: a read with some of its data, or with a message that
    /// there are none, a write with a message that it is done.
    void CompleteSplit(std::size_t index) {
        const Sequence& sequence = sequences_[index];
        if (sequence.isWrite || Seldom()) {
            BringMessage(index);
        } else {
            BringData(index);
        }
    }

    void BringMessage(std::size_t index) {
        const Sequence& sequence = sequences_[index];
        constexpr unsigned messageBytes = 4;
        Plan plan;
        plan.command = cmdSplitCompletion;
        plan.address = sequence.requester << 8;
        plan.way = Seldom() ? Way::Retry : Way::Complete;
        Record record;
        Deed& deed = Begin(plan, record);
        deed.tag = sequence.requester >> 16;
        deed.request = sequence.deed;
        SetField(record, bitAd, 32, (0x00FF00 | Word() % 8) << 8 | messageBytes);
        SetBit(record, bitAd + completionMessage, true);
        SetBit(record, bitAd + completionError, !sequence.isWrite);
        SetField(record, bitCbe, 4, 0);
        Attribute(deed, record);
        Respond(plan, deed, record, 0, messageBytes, 0xFF);
        if (plan.way == Way::Complete) {
            sequences_.erase(sequences_.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }

    void BringData(std::size_t index) {
        Sequence& sequence = sequences_[index];
        Plan plan;
        plan.command = cmdSplitCompletion;
        plan.address = sequence.requester << 8 | sequence.low;
        plan.asksWide = Pick(2) == 0;
        plan.isWide = plan.asksWide && Pick(2) == 0;
        const unsigned width = plan.isWide ? 8 : 4;
        const unsigned offset = sequence.low & (width - 1);
        // A completer that will bring the rest later may announce only what it brings now.
        const bool isModified = sequence.bytes > 1 && Pick(3) == 0;
        const unsigned announced = isModified ? 1 + Pick(sequence.bytes - 1) : sequence.bytes;
        plan.words = (offset + announced + width - 1) / width;
        plan.way = Pick(4) == 0 ? Way::WithData : Seldom() ? Way::Retry : Way::Complete;
        plan.at = plan.way == Way::WithData ? Pick(plan.words) : 0;
        if (Seldom()) {
            plan.way = Way::NextBoundary;
            StopAtBoundary(plan);
        }
        Record record;
        Deed& deed = Begin(plan, record);
        deed.tag = sequence.requester >> 16;
        deed.request = sequence.deed;
        SetField(record, bitAd, 32, (0x00FF00 | Word() % 8) << 8 | (announced & 0xFF));
        SetBit(record, bitAd + byteCountModified, isModified);
        SetField(record, bitCbe, 4, announced >> 8);
        Attribute(deed, record);
        Respond(plan, deed, record, offset, announced, 0xFF);
        unsigned moved = 0;
        for (const Deed::Transfer& each : deed.transfers) {
            moved += each.bytes;
        }
        sequence.bytes -= moved;
        sequence.low = (sequence.low + moved) & 0x7F;
        if (sequence.bytes == 0) {
            sequences_.erase(sequences_.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }

    /// The target's part. `announced` counts the bytes of a block; without it, each data phase has
    /// byte enables, or those of the attributes.
    void Respond(const Plan& plan, Deed& deed, Record lines, unsigned offset, unsigned announced,
                 unsigned attributeLanes) {
        SetBit(lines, bitReq64, !plan.asksWide);
        const unsigned decode = 1 + Pick(3);
        deed.last = Clock(lines); // the initiator is not ready yet, nor is the target
        deed.initiatorWaits.push_back(deed.last);
        deed.waits.push_back(deed.last);
        SetBit(lines, bitIrdy, false);
        for (unsigned i = 1; i < (plan.way == Way::MasterAbort ? 6 : decode); ++i) {
            SetBit(lines, bitFrame, plan.way == Way::MasterAbort && i == 5);
            deed.waits.push_back(deed.last = Clock(lines));
        }
        if (plan.way == Way::MasterAbort) {
            return;
        }
        Record claimed = lines;
        SetBit(claimed, bitDevsel, false);
        SetBit(claimed, bitAck64, !plan.isWide);
        for (unsigned waits = 1 + Pick(3); waits > 0; --waits) {
            deed.waits.push_back(deed.last = Clock(claimed));
        }
        switch (plan.way) {
        case Way::Split:
            SetBit(lines, bitTrdy, false); // without DEVSEL
            if ((plan.command & 1) != 0) { // what is written moves at once
                const std::string data = Data(lines, 4, attributeLanes);
                deed.transfers.push_back({samples_.size(),
                                          data,
                                          static_cast<unsigned>(std::popcount(attributeLanes)),
                                          {}});
            }
            deed.endToldBy = deed.last = Clock(lines);
            SetBit(lines, bitTrdy, true);
            break;
        case Way::Retry:
            SetBit(claimed, bitStop, false);
            deed.endToldBy = deed.last = Clock(claimed);
            break;
        case Way::TargetAbort:
            SetBit(lines, bitStop, false);
            deed.endToldBy = deed.last = Clock(lines);
            SetBit(lines, bitStop, true);
            break;
        default:
            MoveWords(plan, deed, lines, claimed, offset, announced, attributeLanes);
            if (plan.way == Way::Complete) {
                return;
            }
        }
        SetBit(lines, bitFrame, true);
        deed.last = Clock(lines); // the initiator sees it, and ends
    }

    void MoveWords(const Plan& plan, Deed& deed, const Record& lines, const Record& claimed,
                   unsigned offset, unsigned announced, unsigned attributeLanes) {
        const unsigned width = plan.isWide ? 8 : 4;
        const bool isBlock = announced != 0;
        const unsigned words = plan.way == Way::WithData ? plan.at + 1 : plan.words;
        for (unsigned word = 0; word < words; ++word) {
            const bool stops = (plan.way == Way::WithData && word + 1 == words) ||
                               (plan.way == Way::NextBoundary && word >= plan.at);
            // A target that takes one word only ends without DEVSEL and ACK64.
            Record now = stops && words == 1 ? lines : claimed;
            unsigned lanes = attributeLanes;
            if (isBlock) {
                const unsigned bytes = std::min(width - offset, announced);
                lanes = ((1U << bytes) - 1) << offset;
                announced -= bytes;
                offset = 0;
                SetField(now, bitCbe, 8, 0xFF);
            } else if (plan.command == cmdMemWrite) {
                lanes = Lanes(width);
                SetField(now, bitCbe, 8, ~lanes);
            }
            SetBit(now, bitTrdy, false);
            SetBit(now, bitStop, !stops);
            SetBit(now, bitFrame, word + 1 == words);
            const std::string data = Data(now, width, lanes);
            deed.last = Clock(now);
            // The target stops, or all announced bytes have moved.
            if (!deed.endToldBy && (stops || word + 1 == words)) {
                deed.endToldBy = deed.last;
            }
            deed.transfers.push_back(
                {deed.last, data, static_cast<unsigned>(std::popcount(lanes)), {}});
        }
    }

    static constexpr std::size_t requesterCount = 20; // sequences at a time

    bool wide_;
    bool pciX_;
    unsigned clock_; // nanoseconds
    bool backToBack_ = false;
    Record idle_{};
    std::vector<Sequence> sequences_;
};

} // namespace

std::unique_ptr<Doer> MakePciDoer(std::uint32_t seed, bool wide, bool pciX) {
    return std::make_unique<PciDoer>(seed, wide, pciX);
}

} // namespace boardsim
