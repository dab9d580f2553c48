#include "analysis/strobed_traffic.h"
#include "analysis/value_labels.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

// A command's number: the space, and the level of WR above it.
constexpr std::uint32_t spaceMask = 0x3;
constexpr std::uint32_t readBit = 0x4;

class VsbTraffic final : public StrobedTraffic {
public:
    explicit VsbTraffic(const SignalTables& tables)
        : StrobedTraffic(tables, {"PAS", "DS", "ACK", "ERR"}), lines_(tables, "AD"),
          space_(tables, "SPACE"), size_(tables, "SIZE"), write_(tables, "WR"),
          addressAnswer_(tables, "ASACK"), commands_(tables.decodedSignals.FindByName("COMMAND")) {}

    [[nodiscard]] CommandName NameOf(std::uint32_t command) const override {
        if (const auto label = FindLabel(*commands_, command)) {
            return {label->row, label->text};
        }
        const bool read = (command & readBit) != 0;
        return {commands_->values.size() + command,
                Printf("SPACE %X %s", command & spaceMask, read ? "Rd" : "Wr")};
    }

    [[nodiscard]] std::vector<std::uint32_t> Commands() const override {
        std::vector<std::uint32_t> codes;
        for (std::uint32_t space = 0; space <= spaceMask; ++space) {
            codes.insert(codes.end(), {space | readBit, space});
        }
        return codes;
    }

    [[nodiscard]] int AddressDigits(const Transaction& /*transaction*/) const override { return 8; }

private:
    std::uint32_t CommandAt(const SampleRecord& record) const override {
        return space_.Value(record) | (write_.IsAsserted(record) ? 0 : readBit);
    }
    std::uint32_t CommandAtStrobe(std::uint32_t command, bool /*isFirst*/,
                                  const SampleRecord& /*record*/) const override {
        return command;
    }
    std::uint64_t AddressAt(std::uint32_t /*command*/, const SampleRecord& record) const override {
        return lines_.Value(record);
    }
    bool FirstStrobeIsAddress(std::uint32_t /*command*/) const override { return false; }
    bool HasWholeAddress(std::uint32_t /*command*/) const override { return true; }
    std::uint64_t CompleteAddress(const StrobedTransaction& open,
                                  const SampleRecord& /*record*/) const override {
        return open.address;
    }
    bool CarriesData(std::uint32_t /*command*/) const override { return true; }

    /// Which lanes carry the bytes depends on the target too, so all are shown.
    Beat BeatOf(const Transaction& transaction, std::uint32_t /*strobes*/,
                const SampleRecord& record) const override {
        constexpr std::array<std::uint32_t, 4> sizes = {4, 1, 2, 3};
        const std::uint32_t size = sizes[size_.Value(record)];
        const std::uint32_t width = WidthOf(record);
        const auto next = static_cast<std::uint32_t>(*transaction.address + transaction.bytes);
        const std::uint32_t bytes =
            width == 0 ? size : std::min(size, width - (next & (width - 1)));
        return {{lines_.Value(record), 4, 0xF}, bytes};
    }
    /// The bytes that the target can move at once, from its answer to the address; 0 if it gave
    /// none. Of a longer transfer it moves what fits, and the initiator asks for the rest.
    [[nodiscard]] std::uint32_t WidthOf(const SampleRecord& record) const {
        constexpr std::array<std::uint32_t, 4> widths = {0, 1, 2, 4};
        return widths[addressAnswer_.Asserted(record)];
    }

    bool IsRead(std::uint32_t command, const SampleRecord& /*record*/) const override {
        return (command & readBit) != 0;
    }
    TransactionEnd MeaningOfError(const SampleRecord& /*record*/) const override {
        return TransactionEnd::BusError;
    }

    SignalLine lines_, space_, size_, write_, addressAnswer_;
    std::shared_ptr<const CDecodedSignalDef> commands_;
};

} // namespace

std::unique_ptr<BusTraffic> MakeVsbTraffic(const SignalTables& tables) {
    return std::make_unique<VsbTraffic>(tables);
}

} // namespace busquill
