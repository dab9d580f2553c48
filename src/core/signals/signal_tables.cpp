#include "signals/signal_tables.h"

#include "signals/signal_table_rows.h"

#include <algorithm>

namespace busquill {

namespace {

FamilyTables TablesOf(const BoardTraits& board) {
    if (board.IsVmeLark()) {
        return LarkTables();
    }
    if (board.IsVmeKiteP2()) {
        return ConnectorP2Tables();
    }
    if (board.IsVmeKiteP0()) {
        return ConnectorP0Tables();
    }
    if (board.IsVmeFamily()) {
        return VmeTables();
    }
    return board.IsVsbFamily() ? VsbTables() : PciTables();
}

std::shared_ptr<CBusSignalDef> MakeBusDef(const BusRow& row) {
    auto def = std::make_shared<CBusSignalDef>();
    def->name = row.name;
    def->defKind = 0;
    def->stateFlags = row.stateFlags;
    def->waveformFlags = row.waveformFlags;
    def->eventFlags = row.eventFlags;
    def->color = row.color;
    def->firstPosition = std::min(row.first, row.last);
    def->lastPosition = std::max(row.first, row.last);
    def->dataIndex = row.bit;
    def->bitReverse = row.first > row.last;
    return def;
}

std::uint8_t CodeOf(const ValueRow& row, std::size_t position, std::size_t width) {
    if (row.pattern.empty()) {
        return CodeAny;
    }
    const char c = row.pattern[width - 1 - position];
    return c == 'X' ? CodeAny : c == '1' ? CodeOne : CodeZero;
}

CDecodedValue MakeValue(const ValueRow& row, std::span<const std::uint8_t> positions) {
    CDecodedValue value;
    value.label = row.label;
    value.skipModes = row.skipModes;
    value.pattern.fill(CodeUnused);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        value.pattern[positions[i]] = CodeOf(row, i, positions.size());
    }
    return value;
}

std::shared_ptr<CDecodedSignalDef> MakeDecodedDef(const DecodedRow& row) {
    auto def = std::make_shared<CDecodedSignalDef>();
    def->name = row.name;
    def->defKind = 1;
    def->stateFlags = row.stateFlags;
    def->waveformFlags = row.waveformFlags;
    def->eventFlags = row.eventFlags;
    def->color = row.color;
    def->condition = row.condition;
    def->insertBefore = row.insertBefore;
    def->decodeKind = row.kind;
    for (const ValueRow& value : row.values) {
        def->values.push_back(MakeValue(value, row.positions));
        const auto length = static_cast<std::uint32_t>(std::string_view(value.label).size());
        def->labelWidth = std::max(def->labelWidth, length);
    }
    if (def->name == "RULE CHECK") {
        // Findings are long sentences; a column shows only their beginning.
        def->labelWidth = 20;
    }
    return def;
}

} // namespace

SignalTables::SignalTables(std::function<BoardTraits()> board, const WorkingDirectory& directory)
    : busSignals(directory.FilePath("BusSignalColors.dat")),
      decodedSignals(directory.FilePath("DecodedSignalColors.dat")), board_(std::move(board)) {}

void SignalTables::Load() {
    const FamilyTables tables = TablesOf(Board());
    std::vector<std::shared_ptr<CBusSignalDef>> bus;
    for (const BusRow& row : tables.bus) {
        bus.push_back(MakeBusDef(row));
    }
    busSignals.Replace(std::move(bus));
    std::vector<std::shared_ptr<CDecodedSignalDef>> decoded;
    for (const DecodedRow& row : tables.decoded) {
        decoded.push_back(MakeDecodedDef(row));
    }
    decodedSignals.Replace(std::move(decoded));
}

std::shared_ptr<CBusSignalDef> SignalTables::FindBusDefByDataIndex(int index) const {
    for (const auto& def : busSignals.Defs()) {
        if (index >= def->dataIndex && index < def->dataIndex + def->Width()) {
            return def;
        }
    }
    return nullptr;
}

bool SignalTables::Applies(DefCondition condition, const BoardTraits& board) noexcept {
    switch (condition) {
    case DefCondition::Pci32:
        return board.IsPci32();
    case DefCondition::Pci64:
        return board.IsPci64();
    case DefCondition::PciX:
        return board.IsPciXMode();
    case DefCondition::NotPciX:
        return !board.IsPciXMode();
    case DefCondition::Always:
        break;
    }
    return true;
}

} // namespace busquill
