#include "tracesetup/setup_wizard.h"

#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <span>
#include <string>

namespace busquill {

namespace {

constexpr std::size_t valueBytes = 8;
constexpr std::size_t valueDigits = 2 * valueBytes;

// Answers

std::optional<unsigned> DigitOf(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return std::nullopt;
}

/// Missing digits are zeros and are compared. False for a character that is not a digit.
bool ParseDigits(std::string_view text, WizardValue::Bytes& value, WizardValue::Bytes& mask) {
    value.fill(0);
    mask.fill(0xFF);
    const std::size_t count = std::min(text.size(), valueDigits);
    for (std::size_t i = 0; i < count; ++i) {
        const char c = text[text.size() - 1 - i];
        const unsigned shift = i % 2 == 0 ? 0 : 4;
        if (const auto digit = DigitOf(c)) {
            value[i / 2] |= static_cast<std::uint8_t>(*digit << shift);
        } else if (c == 'x') {
            mask[i / 2] &= static_cast<std::uint8_t>(~(0x0FU << shift));
        } else {
            return false;
        }
    }
    return true;
}

// Levels

/// An address or data value as a condition: its event, or the events of both ends of its range.
std::string Condition(const WizardValue& value, const char* event, const char* otherEnd) {
    return value.range ? Printf("%s.%s", event, otherEnd) : event;
}

/// Address and data of a PCI transfer follow one another. Returns the number of levels used.
std::size_t BuildLevelsPci(TraceSetup& setup, const WizardAnswer& trigger) {
    const std::string address = Condition(trigger.address, "E1", "E2");
    const std::string data = Condition(trigger.data, "E3", "E4");
    TraceLevel& first = setup.levels[0];
    if (!trigger.address.IsGiven() || !trigger.data.IsGiven()) {
        first.ifExpr = ParseExpression(trigger.data.IsGiven() ? data : address);
        return 1;
    }
    first.ifExpr = ParseExpression(address);
    first.thenTrigger = false;
    first.thenGoto = 1;
    TraceLevel& second = setup.levels[1];
    second.ifExpr = ParseExpression(data);
    second.thenTrigger = true;
    second.thenGoto = 1;
    second.elseGoto = 1;
    return 2;
}

std::string StoreExpressionPci(const WizardAnswer& store) {
    std::string address = Condition(store.address, "E5", "E6");
    std::string data = Condition(store.data, "E7", "E8");
    if (!store.data.IsGiven()) {
        return address;
    }
    if (!store.address.IsGiven()) {
        return data;
    }
    const bool dataFirst = store.data.range && !store.address.range;
    return dataFirst ? data + "+" + address : address + "+" + data;
}

/// One bus cycle of a VME bus has address and data in one sample.
std::string ConditionVme(const WizardAnswer& answer, const char* event, const char* otherEnd) {
    return Condition(answer.address.range ? answer.address : answer.data, event, otherEnd);
}

// Events

/// Comparators, by the values of the rows "=<>".
constexpr const char* equal = "=";
constexpr const char* above = ">";
constexpr const char* below = "<";
constexpr const char* ignored = "Any";

/// The rows of the event table that the wizard writes; null where the board has none.
class EventRows {
public:
    explicit EventRows(CSignalList& list) : list_(list) {}

    [[nodiscard]] CSignal* Decoded(std::string_view name, std::size_t nth = 0) const {
        return Find([&](const CSignal& signal) {
            return signal.decoded && signal.decoded->name == name && nth-- == 0;
        });
    }
    [[nodiscard]] CSignal* Command() const {
        return Find([](const CSignal& signal) {
            return signal.decoded && signal.decoded->decodeKind == DecodeKind::Command;
        });
    }
    [[nodiscard]] CSignal* Group(std::string_view name) const {
        return Find([&](const CSignal& signal) {
            return signal.IsGroupStart() && !signal.decoded && signal.groupName == name;
        });
    }

    void Set(CSignal* row, std::uint32_t column, std::size_t value) const {
        if (row != nullptr) {
            list_.ApplyDecodedValue(row, column, value);
        }
    }
    /// By its label. PCI-X has other names for some commands, which begin with those of PCI.
    void Set(CSignal* row, std::uint32_t column, std::string_view label) const {
        if (row == nullptr) {
            return;
        }
        const auto& values = row->decoded->values;
        const auto place = [&](auto matches) {
            return static_cast<std::size_t>(std::find_if(values.begin(), values.end(),
                                                         [&](const CDecodedValue& value) {
                                                             return value.label != nullptr &&
                                                                    matches(value.label);
                                                         }) -
                                            values.begin());
        };
        std::size_t index = place([&](std::string_view each) { return each == label; });
        if (index == values.size() && list_.Tables().Board().IsPciXMode()) {
            index = place([&](std::string_view each) { return each.starts_with(label); });
        }
        if (index != values.size()) {
            list_.ApplyDecodedValue(row, column, index);
        }
    }
    /// Bytes of a group of 64 bits, from byte `first` on.
    void Set(CSignal* row, std::uint32_t column, std::span<const std::uint8_t> value,
             std::span<const std::uint8_t> mask, std::size_t first = 0) const {
        if (row == nullptr || row->groupWidth != 8 * valueBytes) {
            return;
        }
        const std::size_t place = column * row->RowBytes() + first;
        if (place + value.size() > row->groupData.size() ||
            place + mask.size() > row->groupMask.size()) {
            return;
        }
        const auto at = static_cast<std::ptrdiff_t>(place);
        std::copy(value.begin(), value.end(), row->groupData.begin() + at);
        std::copy(mask.begin(), mask.end(), row->groupMask.begin() + at);
        list_.UnpackGroup(row);
    }

private:
    template <typename Matches>
    [[nodiscard]] CSignal* Find(Matches matches) const {
        const auto& all = list_.All();
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](const auto& signal) { return matches(*signal); });
        return found == all.end() ? nullptr : found->get();
    }

    CSignalList& list_;
};

std::string CommandLabel(const WizardAnswer& answer) {
    constexpr std::string_view cycles[] = {"Mem", "I/O", "Cfg"};
    if (answer.cycle == WizardCycle::All) {
        return "All";
    }
    std::string label(cycles[static_cast<std::size_t>(answer.cycle)]);
    if (answer.direction == WizardDirection::Read) {
        label += " Rd";
    } else if (answer.direction == WizardDirection::Write) {
        label += " Wr";
    }
    return label;
}

/// Fills four columns: two for the ends of the address, two for those of the data.
class PciEvents {
public:
    explicit PciEvents(CSignalList& list)
        : rows_(list), command_(rows_.Command()), phase_(rows_.Decoded("ADR/DATA")),
          phasePciX_(rows_.Decoded("ADR/ATR/DATA")), comparator_(rows_.Decoded("=<>")),
          bus_(rows_.Group("AD[63:0]")) {}

    void Fill(const WizardAnswer& answer, std::uint32_t column) const {
        const std::string command = CommandLabel(answer);
        for (std::uint32_t i = 0; i < 4; ++i) {
            rows_.Set(command_, column + i, command);
        }
        if (!answer.address.IsGiven() && !answer.data.IsGiven()) {
            const bool all = command == "All";
            rows_.Set(phase_, column, all ? "Both" : "Address");
            rows_.Set(phasePciX_, column, all ? "All" : "Address");
            rows_.Set(comparator_, column, ignored);
        }
        FillValue(answer.address, column, "Address");
        FillValue(answer.data, column + 2, "Data");
    }

private:
    void FillValue(const WizardValue& value, std::uint32_t column, std::string_view phase) const {
        if (value.IsGiven()) {
            FillEnd(column, phase, value.range ? above : equal, value.low, value.lowMask);
        }
        if (value.range) {
            FillEnd(column + 1, phase, below, value.high, value.highMask);
        }
    }
    void FillEnd(std::uint32_t column, std::string_view phase, std::string_view comparator,
                 const WizardValue::Bytes& value, const WizardValue::Bytes& mask) const {
        rows_.Set(phase_, column, phase);
        rows_.Set(phasePciX_, column, phase);
        rows_.Set(comparator_, column, comparator);
        rows_.Set(bus_, column, value, mask);
    }

    EventRows rows_;
    CSignal* command_;
    CSignal* phase_;
    CSignal* phasePciX_;
    CSignal* comparator_;
    CSignal* bus_;
};

/// Fills two columns: the address is the low half of the bus, the data the high half.
class VmeEvents {
public:
    explicit VmeEvents(CSignalList& list)
        : rows_(list), command_(rows_.Decoded("COMMAND")), comparators_{rows_.Decoded("=<>", 0),
                                                                        rows_.Decoded("=<>", 1)},
          bus_(rows_.Group("AD[63:0]")) {}

    void Fill(const WizardAnswer& answer, std::uint32_t column) const {
        rows_.Set(command_, column, answer.direction);
        rows_.Set(command_, column + 1, answer.direction);
        if (!answer.address.IsGiven() && !answer.data.IsGiven()) {
            rows_.Set(comparators_[address], column, ignored);
            rows_.Set(comparators_[data], column, ignored);
        }
        FillHalf(address, answer.address, column, answer.data.range);
        FillHalf(data, answer.data, column, answer.address.range);
    }

private:
    enum Half : std::size_t { address, data };

    /// A single value is also written to the second column if the other half is a range.
    void FillHalf(Half half, const WizardValue& value, std::uint32_t column, bool both) const {
        if (value.IsGiven()) {
            FillEnd(half, column, value.range ? above : equal, value.low, value.lowMask);
        }
        if (value.range) {
            FillEnd(half, column + 1, below, value.high, value.highMask);
        } else if (value.single && both) {
            FillEnd(half, column + 1, equal, value.low, value.lowMask);
        }
    }
    void FillEnd(Half half, std::uint32_t column, std::string_view comparator,
                 const WizardValue::Bytes& value, const WizardValue::Bytes& mask) const {
        constexpr std::size_t halfBytes = valueBytes / 2;
        rows_.Set(comparators_[half], column, comparator);
        rows_.Set(bus_, column, std::span(value).first<halfBytes>(),
                  std::span(mask).first<halfBytes>(), half * halfBytes);
    }

    EventRows rows_;
    CSignal* command_;
    std::array<CSignal*, 2> comparators_;
    CSignal* bus_;
};

} // namespace

std::optional<WizardValue> ParseWizardValue(std::string_view text, Prompts& prompts) {
    constexpr std::string_view between = "to";
    const std::string given = ToLower(Trim(text));
    WizardValue value;
    if (given.empty()) {
        return value;
    }
    const std::size_t at = given.find(between);
    value.range = at != std::string::npos;
    value.single = !value.range;
    const std::string_view whole = given;
    bool known = ParseDigits(Trim(whole.substr(0, at)), value.low, value.lowMask);
    if (value.range) {
        known = ParseDigits(Trim(whole.substr(at + between.size())), value.high, value.highMask) &&
                known;
    }
    if (!known) {
        prompts.Message(Printf("Invalid value string '%s'.", given.c_str()));
        return std::nullopt;
    }
    return value;
}

void BuildWizardSetup(TraceSetup& setup, const WizardAnswer& trigger, const WizardAnswer& store) {
    SignalTables& tables = setup.events.Tables();
    setup.CopyFrom(TraceSetup(tables));
    std::size_t levels = 1;
    std::string stored;
    if (tables.Board().IsVmeFamily()) {
        setup.levels[0].ifExpr = ParseExpression(ConditionVme(trigger, "E1", "E2"));
        stored = ConditionVme(store, "E3", "E4");
        const VmeEvents events(setup.events);
        events.Fill(trigger, 0);
        events.Fill(store, 2);
    } else {
        levels = BuildLevelsPci(setup, trigger);
        stored = StoreExpressionPci(store);
        const PciEvents events(setup.events);
        events.Fill(trigger, 0);
        events.Fill(store, 4);
    }
    for (std::size_t level = 0; level < levels; ++level) {
        setup.levels[level].storeExpr = ParseExpression(stored);
    }
}

} // namespace busquill
