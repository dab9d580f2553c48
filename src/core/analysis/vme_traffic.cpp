#include "analysis/strobed_traffic.h"
#include "analysis/value_labels.h"
#include "platform/text.h"
#include "signals/value_text.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace busquill {

namespace {

// A command's number: the address modifier, two levels above it, and a mark.
constexpr std::uint32_t modifierMask = 0x3F;
constexpr std::uint32_t readBit = 0x40;
constexpr std::uint32_t interruptBit = 0x80;
constexpr std::uint32_t modifyBit = 0x100; // a read with a write after it

bool IsOneOf(std::uint32_t modifier, std::initializer_list<std::uint32_t> modifiers) {
    return std::find(modifiers.begin(), modifiers.end(), modifier) != modifiers.end();
}

/// Blocks of 64 bits: they carry data on the address lines too.
bool IsWideBlock(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x00, 0x08, 0x0C, 0x38, 0x3C});
}

/// Addresses that also use the data lines, and so have their own strobe.
bool IsWideAddress(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x00, 0x01, 0x03, 0x34, 0x37});
}

/// A lock is a strobe without data.
bool IsLock(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x04, 0x05, 0x2C, 0x32, 0x35});
}

/// Locks with an address that also uses the data lines.
bool IsWideLock(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x04, 0x35});
}

constexpr std::uint32_t smallTwoEdge = 0x21; // of the 3U form

/// 2eVME and 2eSST: they move data on both edges.
bool IsTwoEdge(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x20, smallTwoEdge});
}

constexpr std::uint64_t lowWord = 0xFFFFFFFF;
constexpr std::uint64_t low24 = 0xFFFFFF;

/// The bits of an address: 16, 24, 32, 40 or 64.
int AddressBits(std::uint32_t modifier) {
    if (IsOneOf(modifier, {0x00, 0x01, 0x03, 0x04})) {
        return 64;
    }
    if (modifier == 0x2F) {
        return 24; // CR/CSR
    }
    return modifier == 0x37 ? 40 : VmeAddressWidth(modifier);
}

/// A 2eVME or 2eSST transaction in progress.
///
///   AS     ~~\______________________________________/~~
///   DS0    ~~~~\____/~~~~\_______________________/~~~~~
///   DTACK  ~~~~~~\____/~~~~\____/~~~\____/~~~\____/~~~
///   DS1    ~~~~~~~~~~~~~~~~~~~\____/~~~\____/~~~~~~~~~
///              1    2    3   |  data, on both edges  |
struct TwoEdgeState {
    static constexpr int addressPhases = 3;

    int phase = 0; // address phases that were acknowledged
    bool isSourceSynchronous = false;
    bool hasWideAddress = false;
    bool isSmall = false; // of the 3U form: half as wide
    bool retry = false;   // RETRY in the sample before
    bool waiting = false; // for an acknowledge
    std::int64_t strobeTime = 0;
};

class VmeTraffic final : public StrobedTraffic {
public:
    explicit VmeTraffic(const SignalTables& tables)
        : StrobedTraffic(tables, {"AS", "DS", "DTACK", "BERR"}), modifier_(tables, "AM"),
          write_(tables, "WRITE"), longWord_(tables, "LWORD"), interrupt_(tables, "IACK"),
          retry_(tables, "RETRY"), address_(tables, "AD"),
          modifiers_(tables.decodedSignals.FindByName("AM")),
          commands_(tables.decodedSignals.FindByName("COMMAND")) {}

    [[nodiscard]] CommandName NameOf(std::uint32_t command) const override {
        if ((command & interruptBit) != 0) {
            return {std::numeric_limits<std::size_t>::max(), InterruptLabel()};
        }
        const std::uint32_t modifier = command & modifierMask;
        const bool read = (command & readBit) != 0;
        const auto label = FindLabel(*modifiers_, modifier);
        const std::string text = label ? label->text : Printf("AM %02X", modifier);
        const std::size_t row = label ? label->row : modifiers_->values.size() + modifier;
        const bool modifies = (command & modifyBit) != 0;
        // The label of reads comes first.
        return {row, text + (modifies ? " RMW" : read ? " Rd" : " Wr")};
    }

    [[nodiscard]] std::vector<std::uint32_t> Commands() const override {
        std::vector<std::uint32_t> codes = {interruptBit};
        for (std::uint32_t modifier = 0; modifier <= modifierMask; ++modifier) {
            codes.insert(codes.end(),
                         {modifier | readBit, modifier, modifier | readBit | modifyBit});
        }
        return codes;
    }

    [[nodiscard]] int AddressDigits(const Transaction& transaction) const override {
        if ((transaction.command & interruptBit) != 0) {
            return 1;
        }
        const std::uint32_t modifier = transaction.command & modifierMask;
        const bool isWide = IsTwoEdge(modifier) && transaction.address.value_or(0) > lowWord;
        return isWide ? 16 : AddressBits(modifier) / 4;
    }

private:
    std::uint32_t CommandAt(const SampleRecord& record) const override {
        // For an interrupt acknowledge, neither modifier nor direction is part of the command.
        return interrupt_.IsAsserted(record)
                   ? interruptBit
                   : CommandAtStrobe(modifier_.Value(record), true, record);
    }
    /// The direction need not be valid before the data strobe. If a write follows a read under one
    /// address, the location is read, modified and written.
    std::uint32_t CommandAtStrobe(std::uint32_t command, bool isFirst,
                                  const SampleRecord& record) const override {
        if ((command & interruptBit) != 0) {
            return command;
        }
        const bool isWrite = write_.IsAsserted(record);
        if (!isFirst) {
            return isWrite && (command & readBit) != 0 ? command | modifyBit : command;
        }
        return (command & modifierMask) | (isWrite ? 0 : readBit);
    }

    /// For an interrupt acknowledge, its level.
    std::uint64_t AddressAt(std::uint32_t command, const SampleRecord& record) const override {
        const std::uint64_t lines = address_.Word(record) & lowWord;
        if ((command & interruptBit) != 0) {
            return lines >> 1 & 0x7;
        }
        const std::uint32_t modifier = command & modifierMask;
        if (IsTwoEdge(modifier)) { // the extended modifier is below
            return lines & (modifier == smallTwoEdge ? low24 : lowWord) & ~std::uint64_t{0xFF};
        }
        switch (AddressBits(modifier)) {
        case 16:
            return lines & 0xFFFF;
        case 24:
        case 40: // the rest is on the data lines
            return lines & low24;
        default:
            return lines;
        }
    }

    bool FirstStrobeIsAddress(std::uint32_t command) const override {
        const std::uint32_t modifier = command & modifierMask;
        return (command & interruptBit) == 0 &&
               (IsWideBlock(modifier) || IsWideAddress(modifier) || IsWideLock(modifier));
    }
    bool HasWholeAddress(std::uint32_t command) const override {
        const bool isLong = IsOther(command) || AddressBits(command & modifierMask) > 32;
        return (command & interruptBit) != 0 || !isLong;
    }
    std::uint64_t CompleteAddress(const StrobedTransaction& open,
                                  const SampleRecord& record) const override {
        const std::uint32_t modifier = open.sum.command & modifierMask;
        const std::uint64_t data = address_.Word(record) >> 32;
        switch (AddressBits(modifier)) {
        case 40:
            return open.address | (data & 0xFFFF) << 24;
        case 64:
            return open.address | data << 32;
        default:
            return open.address;
        }
    }
    bool CarriesData(std::uint32_t command) const override {
        return (command & interruptBit) != 0 || !IsLock(command & modifierMask);
    }

    /// LWORD and A1 tell the size of a transfer with the address. They may change afterwards: in
    /// some blocks they carry data.
    void Latch(const TimedSample& sample, const Transaction& transaction) override {
        isLongWord_ = longWord_.IsAsserted(sample.record);
        a1_ = sample.record.Bit(address_.DataIndex() + 1);
        if (IsOther(transaction.command)) {
            twoEdge_ = TwoEdgeAt(transaction.command, sample.record);
        }
    }

    Beat BeatOf(const Transaction& transaction, std::uint32_t strobes,
                const SampleRecord& record) const override {
        const DataWord word = WordOf(transaction.command, strobes, record);
        return {word, static_cast<std::uint32_t>(std::popcount(word.lanes))};
    }
    [[nodiscard]] DataWord WordOf(std::uint32_t command, std::uint32_t strobes,
                                  const SampleRecord& record) const {
        const std::uint32_t modifier = command & modifierMask;
        const bool isInterrupt = (command & interruptBit) != 0;
        const bool both = std::popcount(strobes) == 2;
        const std::uint64_t data = address_.Word(record) >> 32;
        if (!isInterrupt && IsWideBlock(modifier)) {
            return {WideData(record), 8, 0xFF};
        }
        if (isInterrupt && both && isLongWord_) {
            return {data, 4, 0xF}; // A1 is a bit of the level
        }
        if (!isInterrupt && AddressBits(modifier) == 40) { // for boards with 16 data lines
            return both && isLongWord_ ? SmallWideData(record)
                                       : DataWord{data & 0xFFFF, 2, ShortLanes(strobes)};
        }
        if (isLongWord_) {
            return {data, 4, LongLanes(strobes)};
        }
        return {data & 0xFFFF, 2, ShortLanes(strobes)};
    }
    static constexpr std::uint32_t upperStrobe = 2;
    [[nodiscard]] static std::uint8_t ShortLanes(std::uint32_t strobes) {
        return strobes == upperStrobe ? 0x2 : strobes == 1 ? 0x1 : 0x3;
    }
    [[nodiscard]] std::uint8_t LongLanes(std::uint32_t strobes) const {
        if (std::popcount(strobes) != 2) {
            return strobes == upperStrobe ? 0xE : 0x7; // unaligned
        }
        return a1_ ? 0x6 : 0xF; // the two middle bytes, or all
    }
    /// 64 bits: the upper half is on the address lines, its lowest bit on LWORD.
    [[nodiscard]] std::uint64_t WideData(const SampleRecord& record) const {
        const std::uint64_t lines = address_.Word(record);
        const std::uint64_t upper =
            (lines & lowWord & ~std::uint64_t{1}) | (longWord_.IsHigh(record) ? 1U : 0U);
        return upper << 32 | lines >> 32;
    }
    /// 32 bits of boards with 16 data lines: the upper half is on the address lines.
    [[nodiscard]] DataWord SmallWideData(const SampleRecord& record) const {
        const std::uint64_t wide = WideData(record);
        return {(wide >> 32 & 0xFFFF) << 16 | (wide & 0xFFFF), 4, 0xF};
    }

    bool IsRead(std::uint32_t command, const SampleRecord& record) const override {
        return (command & interruptBit) != 0 || !write_.IsAsserted(record);
    }

    bool IsRetry(const SampleRecord& record) const override { return retry_.IsAsserted(record); }
    TransactionEnd MeaningOfError(const SampleRecord& record) const override {
        return retry_.IsAsserted(record) ? TransactionEnd::Retry : TransactionEnd::BusError;
    }

    bool IsOther(std::uint32_t command) const override {
        return (command & interruptBit) == 0 && IsTwoEdge(command & modifierMask);
    }
    /// The lowest byte of the address lines. The bus has no A0: in the address phases of 2eVME and
    /// 2eSST, LWORD takes its place.
    [[nodiscard]] std::uint64_t LowByte(const SampleRecord& record) const {
        return (address_.Word(record) & 0xFE) | (longWord_.IsHigh(record) ? 1U : 0U);
    }
    [[nodiscard]] TwoEdgeState TwoEdgeAt(std::uint32_t command, const SampleRecord& record) const {
        const std::uint64_t extended = LowByte(record);
        TwoEdgeState state;
        state.isSourceSynchronous = (extended & 0x30) != 0;
        state.hasWideAddress = (extended & 0x0F) == 2;
        state.isSmall = (command & modifierMask) == smallTwoEdge;
        state.retry = retry_.IsAsserted(record);
        return state;
    }
    void TakeOther(const TimedSample& sample, const Lines& lines, const Lines& before,
                   StrobedTransaction& open) override {
        TwoEdgeState& state = twoEdge_;
        const bool frames = (lines.strobes & 1) != 0; // DS0
        const bool retry = retry_.IsAsserted(sample.record);
        if (frames && !open.strobed) {
            open.strobed = true;
            open.sum.command = CommandAtStrobe(open.sum.command, true, sample.record);
        }
        const bool isRefused = (retry && !state.retry) || (lines.error && !before.error);
        state.retry = retry;
        if (open.sum.HasEnd() && !IsUnderWay(open.sum)) {
            return;
        }
        const bool isAcknowledge = lines.acknowledge != before.acknowledge;
        if (state.phase < TwoEdgeState::addressPhases) {
            const bool isStrobe = ((lines.strobes ^ before.strobes) & 1) != 0;
            state.waiting = state.waiting || isStrobe;
            if (isStrobe && state.phase == 1) { // the target may refuse the phase
                CompleteTwoEdgeAddress(sample.record, open);
            }
            if (isAcknowledge && state.waiting) { // not that of the transaction before
                state.waiting = false;
                TakeAddressPhase(sample.record, ++state.phase, open);
            }
        } else if (frames && (before.strobes & 1) != 0) {
            TakeEdges(sample, ((lines.strobes ^ before.strobes) & 2) != 0, isAcknowledge, open.sum);
        }
        if (isRefused && !open.sum.HasEnd()) { // after the beat in the same sample, which moved
            open.sum.end = !retry                     ? TransactionEnd::BusError
                           : open.sum.dataPhases != 0 ? TransactionEnd::DisconnectWithData
                                                      : TransactionEnd::Retry;
            state.waiting = false;
        }
    }
    /// A 2eSST source does not wait for answers: after a RETRY amid the data, beats still follow
    /// that it has already sent.
    [[nodiscard]] bool IsUnderWay(const Transaction& sum) const {
        return twoEdge_.isSourceSynchronous && sum.end == TransactionEnd::DisconnectWithData;
    }
    void TakeAddressPhase(const SampleRecord& record, int phase, StrobedTransaction& open) const {
        if (phase == 1 && twoEdge_.hasWideAddress) {
            const std::uint64_t data = address_.Word(record) >> 32;
            open.address |= twoEdge_.isSmall ? (data & 0xFFFF) << 24 : data << 32;
        } else if (phase == 2) {
            CompleteTwoEdgeAddress(record, open);
        }
    }
    void CompleteTwoEdgeAddress(const SampleRecord& record, StrobedTransaction& open) const {
        open.sum.address = open.address | LowByte(record);
    }
    void TakeEdges(const TimedSample& sample, bool isStrobe, bool isAcknowledge, Transaction& sum) {
        TwoEdgeState& state = twoEdge_;
        const bool isWrite = (sum.command & readBit) == 0;
        if (isStrobe && !state.isSourceSynchronous) {
            state.waiting = true;
            state.strobeTime = sample.time;
        }
        // The source of the data strobes them: with 2eSST, it does not wait for an answer.
        const bool moves = state.isSourceSynchronous && isWrite ? isStrobe : isAcknowledge;
        if (!moves) {
            return;
        }
        const DataWord word = TwoEdgeWord(sample.record);
        AddData(sum, {word, word.width}, sample.time);
        if (std::exchange(state.waiting, false)) {
            ++sum.acknowledgeTime.transfers;
            sum.acknowledgeTime.total =
                AddTimes(sum.acknowledgeTime.total, AddTimes(sample.time, -state.strobeTime));
        }
    }
    [[nodiscard]] DataWord TwoEdgeWord(const SampleRecord& record) const {
        return twoEdge_.isSmall ? SmallWideData(record) : DataWord{WideData(record), 8, 0xFF};
    }
    bool IsOtherWaiting() const override { return twoEdge_.waiting; }

    /// The table's label, if its commands use the line at all.
    [[nodiscard]] std::string InterruptLabel() const {
        const std::vector<int> positions = commands_->Positions();
        const auto at = std::find(positions.begin(), positions.end(), interrupt_.DataIndex());
        if (at == positions.end()) {
            return "IACK";
        }
        const std::uint32_t all = (std::uint32_t{1} << positions.size()) - 1;
        const auto label =
            FindLabel(*commands_, all & ~(std::uint32_t{1} << (at - positions.begin())));
        return label ? label->text : "IACK";
    }

    SignalLine modifier_, write_, longWord_, interrupt_, retry_, address_;
    std::shared_ptr<const CDecodedSignalDef> modifiers_, commands_;
    bool isLongWord_ = false; // of the transaction in progress
    bool a1_ = false;
    TwoEdgeState twoEdge_;
};

} // namespace

std::unique_ptr<BusTraffic> MakeVmeTraffic(const SignalTables& tables) {
    return std::make_unique<VmeTraffic>(tables);
}

} // namespace busquill
