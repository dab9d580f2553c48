#pragma once

#include "signals/signal_list.h"
#include "signals/signal_tables.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace busquill::test {

/// Replaces the samples of a signal.
inline void SetSamples(CSignal& signal, const std::vector<std::uint32_t>& words,
                       std::uint32_t count) {
    signal.data = words;
    signal.numSamples = count;
}

/// Boards by their bus.
namespace Board {
inline BoardTraits OnBus(BusMode mode, std::int32_t width = 0) {
    BoardTraits board;
    board.demoMode = true;
    board.bus.busMode = mode;
    board.bus.busWidth = width;
    return board;
}
inline BoardTraits Pci32() {
    return OnBus(BusPci, 0);
}
inline BoardTraits Pci64() {
    return OnBus(BusPci, 1);
}
inline BoardTraits PciX() {
    return OnBus(BusPciX, 1);
}
inline BoardTraits Vme() {
    return OnBus(BusVme);
}
inline BoardTraits Vsb() {
    return OnBus(BusVsb);
}
inline BoardTraits Model(const char* name, BusMode mode) {
    BoardTraits board;
    board.modelString = name;
    board.bus.busMode = mode;
    return board;
}
inline BoardTraits VmeLark() {
    return Model("VME Lark", BusVme);
}
inline BoardTraits VmeP2() {
    return Model("VME KiteP2", BusVmeP2);
}
inline BoardTraits VmeP0() {
    return Model("VME KiteP0", BusVmeP0);
}
} // namespace Board

/// A value of a decoded definition: its label and its codes, most significant position first
/// ("0", "1", and "X" for any).
struct ValueRow {
    const char* label;
    const char* codes;
    std::uint32_t skipModes = 0;
};

/// Definitions made by hand, in force while the object lives. Its colour files are in a directory
/// of its own.
class HandMadeTables {
public:
    explicit HandMadeTables(const BoardTraits& board = Board::Pci32())
        : tables_([board] { return board; }, WorkingDirectory(directory_.Path())) {}

    /// A bus of the positions `first` to `last` from data index `bit` on; `first` above `last`
    /// makes it bit-reversed. The flags apply to all modes.
    std::shared_ptr<CBusSignalDef> Bus(const char* name, std::int32_t first, std::int32_t last,
                                       std::int32_t bit, std::uint32_t flags = flagShown) {
        auto def = std::make_shared<CBusSignalDef>();
        def->name = name;
        def->bitReverse = first > last;
        def->firstPosition = std::min(first, last);
        def->lastPosition = std::max(first, last);
        def->dataIndex = bit;
        SetFlags(*def, flags);
        buses_.push_back(def);
        tables_.busSignals.Replace(buses_);
        return def;
    }
    /// A decoded definition over the positions, the least significant first.
    std::shared_ptr<CDecodedSignalDef> Decoded(const char* name, const std::vector<int>& positions,
                                               const std::vector<ValueRow>& rows,
                                               const char* insertBefore = "",
                                               DecodeKind kind = DecodeKind::Label,
                                               DefCondition condition = DefCondition::Always) {
        auto def = std::make_shared<CDecodedSignalDef>();
        def->name = name;
        def->defKind = 1;
        def->insertBefore = insertBefore;
        def->decodeKind = kind;
        def->condition = condition;
        SetFlags(*def, flagShown);
        for (const ValueRow& row : rows) {
            def->values.push_back(MakeValue(positions, row));
        }
        decoded_.push_back(def);
        tables_.decodedSignals.Replace(decoded_);
        return def;
    }
    /// Codes of a value field: any value at each position.
    static std::string AnyOf(const std::vector<int>& positions) {
        return std::string(positions.size(), 'X');
    }
    static std::vector<int> Range(int first, int last) {
        std::vector<int> positions;
        for (int position = first; position <= last; ++position) {
            positions.push_back(position);
        }
        return positions;
    }

    [[nodiscard]] SignalTables& Tables() noexcept { return tables_; }
    [[nodiscard]] const TempDir& Directory() const noexcept { return directory_; }

private:
    static void SetFlags(CSignalDef& def, std::uint32_t flags) {
        def.stateFlags = def.waveformFlags = def.eventFlags = flags;
    }
    static CDecodedValue MakeValue(const std::vector<int>& positions, const ValueRow& row) {
        const std::string_view codes = row.codes;
        CDecodedValue value;
        value.label = row.label;
        value.skipModes = row.skipModes;
        value.pattern.fill(CodeUnused);
        for (std::size_t i = 0; i < positions.size(); ++i) {
            const char code = codes[codes.size() - 1 - i];
            value.pattern[static_cast<std::size_t>(positions[i])] =
                code == 'X' ? CodeAny : static_cast<PatternCode>(code - '0');
        }
        return value;
    }

    TempDir directory_;
    SignalTables tables_;
    std::vector<std::shared_ptr<CBusSignalDef>> buses_;
    std::vector<std::shared_ptr<CDecodedSignalDef>> decoded_;
};

/// Row names of a list: one for each group and each single signal.
inline std::vector<std::string> RowNames(const CSignalList& list) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        names.push_back(list[i].RowName());
    }
    return names;
}

/// Names of all signals, in order.
inline std::vector<std::string> SignalNames(const CSignalList& list) {
    std::vector<std::string> names;
    for (const auto& signal : list.All()) {
        names.push_back(signal->name);
    }
    return names;
}

/// The signal of a row, or null.
inline CSignal* FindRow(const CSignalList& list, std::string_view name) {
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        if (list[i].RowName() == name) {
            return &list[i];
        }
    }
    return nullptr;
}

/// A record with these bits set.
inline SampleRecord RecordOf(std::initializer_list<int> bits) {
    SampleRecord record;
    for (const int bit : bits) {
        record.bytes[static_cast<std::size_t>(bit) / 8] |= static_cast<std::uint8_t>(1 << bit % 8);
    }
    return record;
}

} // namespace busquill::test
