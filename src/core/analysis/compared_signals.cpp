#include "analysis/compared_signals.h"

#include "platform/text.h"
#include "signals/signal_names.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

std::vector<int> PositionsOf(const CBusSignalDef& def) {
    std::vector<int> positions;
    const int width = def.Width();
    positions.reserve(static_cast<std::size_t>(width));
    for (int p = 0; p < width; ++p) {
        positions.push_back(def.dataIndex + (def.bitReverse ? width - 1 - p : p));
    }
    return positions;
}

} // namespace

ComparedSignals::ComparedSignals(const SignalTables& tables) {
    care_.bytes.fill(0xFF);
    SampleRecord named;
    const auto add = [&](const CBusSignalDef& def) {
        std::vector<int> positions = PositionsOf(def);
        const auto isNamed = [&](int position) { return named.Bit(position); };
        // Two definitions may share bits; the second one is then for patterns only.
        if (std::ranges::none_of(positions, isNamed)) {
            for (const int position : positions) {
                named.SetBit(position);
            }
            const int top = def.Width() - 1;
            signals_.push_back({top == 0 ? def.name : Printf("%s[%d:0]", def.name.c_str(), top),
                                RecordField(std::move(positions))});
        }
    };
    const auto isTime = [](const auto& def) { return def->name == "TIME"; };
    const auto& defs = tables.busSignals.Defs();
    const auto time = std::ranges::find_if(defs, isTime);
    if (time != defs.end()) {
        add(**time);
    }
    for (const auto& def : defs) {
        add(*def);
    }
    std::rotate(signals_.begin(), signals_.begin() + (time != defs.end() ? 1 : 0), signals_.end());
    for (int position = 0; position < SampleRecord::bitCount; ++position) {
        if (!named.Bit(position)) {
            signals_.push_back({BitName(tables, position), RecordField({position})});
        }
    }
}

void ComparedSignals::Ignore(const std::vector<int>& positions) {
    for (const int position : positions) {
        care_.SetBit(position, false);
    }
}

SampleRecord ComparedSignals::Difference(const SampleRecord& a,
                                         const SampleRecord& b) const noexcept {
    SampleRecord difference;
    for (std::size_t i = 0; i < difference.bytes.size(); ++i) {
        difference.bytes[i] = static_cast<std::uint8_t>((a.bytes[i] ^ b.bytes[i]) & care_.bytes[i]);
    }
    return difference;
}

bool ComparedSignals::Differ(const SampleRecord& a, const SampleRecord& b) const noexcept {
    return Difference(a, b) != SampleRecord();
}

void ComparedSignals::Differing(const SampleRecord& a, const SampleRecord& b,
                                std::vector<std::size_t>& places) const {
    places.clear();
    const SampleRecord difference = Difference(a, b);
    for (std::size_t i = 0; i < signals_.size(); ++i) {
        if (signals_[i].field.Word(difference) != 0) {
            places.push_back(i);
        }
    }
}

std::string ComparedSignals::Text(std::size_t place, const SampleRecord& record) const {
    const Signal& signal = signals_[place];
    std::vector<std::uint8_t> value(signal.field.Bytes());
    signal.field.Take(record, value.data());
    const bool isTime = signal.name.starts_with("TIME[");
    return FormatValue(value, static_cast<unsigned>(signal.field.Width()),
                       isTime ? Radix::Time : Radix::Hex, {}, false);
}

} // namespace busquill
