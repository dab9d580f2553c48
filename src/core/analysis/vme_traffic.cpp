#include "analysis/strobed_traffic.h"
#include "analysis/value_labels.h"
#include "platform/text.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace busquill {

namespace {

// A command's number: the address modifier and two levels above it.
constexpr std::uint32_t modifierMask = 0x3F;
constexpr std::uint32_t readBit = 0x40;
constexpr std::uint32_t interruptBit = 0x80;

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

/// A lock is a strobe without data; the two-edge protocols move data at other moments than
/// strobe and acknowledge.
bool IsWithoutPlainData(std::uint32_t modifier) {
    return IsOneOf(modifier, {0x04, 0x05, 0x20, 0x21, 0x2C, 0x32, 0x35});
}

class VmeTraffic final : public StrobedTraffic {
public:
    explicit VmeTraffic(const SignalTables& tables)
        : StrobedTraffic(tables, {"AS", "DS", "DTACK", "BERR"}), modifier_(tables, "AM"),
          write_(tables, "WRITE"), longWord_(tables, "LWORD"), interrupt_(tables, "IACK"),
          retry_(tables, "RETRY"), address_(tables, "AD"),
          modifiers_(tables.decodedSignals.FindByName("AM")),
          commands_(tables.decodedSignals.FindByName("COMMAND")) {}

    void Report(TraceSummary& summary) const override {
        StrobedTraffic::Report(summary);
        summary.busErrors = busErrors_;
        summary.retries = retries_;
    }

private:
    std::uint32_t CommandAt(const SampleRecord& record) const override {
        // For an interrupt acknowledge, neither modifier nor direction is part of the command.
        return interrupt_.IsAsserted(record) ? interruptBit
                                             : CommandAtStrobe(modifier_.Value(record), record);
    }
    /// The direction need not be valid before the data strobe.
    std::uint32_t CommandAtStrobe(std::uint32_t command,
                                  const SampleRecord& record) const override {
        if ((command & interruptBit) != 0) {
            return command;
        }
        return (command & modifierMask) | (write_.IsAsserted(record) ? 0 : readBit);
    }

    bool FirstStrobeIsAddress(std::uint32_t command) const override {
        const std::uint32_t modifier = command & modifierMask;
        return (command & interruptBit) == 0 && (IsWideBlock(modifier) || IsWideAddress(modifier));
    }
    bool CarriesData(std::uint32_t command) const override {
        return (command & interruptBit) != 0 || !IsWithoutPlainData(command & modifierMask);
    }

    std::uint32_t BytesOf(std::uint32_t command, const SampleRecord& record) const override {
        if ((command & interruptBit) == 0 && IsWideBlock(command & modifierMask)) {
            return 8;
        }
        const bool both = std::popcount(dataStrobes_.Asserted(record)) == 2;
        if (!longWord_.IsAsserted(record)) {
            return both ? 2 : 1;
        }
        if (!both) {
            return 3; // unaligned
        }
        const bool a1 = record.Bit(address_.DataIndex() + 1);
        return a1 ? 2 : 4; // the two middle bytes, or all
    }

    void TakeError(const SampleRecord& record) override {
        ++(retry_.IsAsserted(record) ? retries_ : busErrors_);
    }

    CommandName NameOf(std::uint32_t command) const override {
        if ((command & interruptBit) != 0) {
            return {std::numeric_limits<std::size_t>::max(), InterruptLabel()};
        }
        const std::uint32_t modifier = command & modifierMask;
        const bool read = (command & readBit) != 0;
        const auto label = FindLabel(*modifiers_, modifier);
        const std::string text = label ? label->text : Printf("AM %02X", modifier);
        const std::size_t row = label ? label->row : modifiers_->values.size() + modifier;
        return {row, text + (read ? " Rd" : " Wr")}; // the label of reads comes first
    }

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

    std::uint64_t busErrors_ = 0;
    std::uint64_t retries_ = 0;
};

} // namespace

std::unique_ptr<BusTraffic> MakeVmeTraffic(const SignalTables& tables) {
    return std::make_unique<VmeTraffic>(tables);
}

} // namespace busquill
