/// Signals by the names that a user types.
#pragma once

#include "signals/signal_tables.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class CSignalList;

/// The bits of the sample record that a name stands for.
struct NamedSignal {
    std::string name;                                 // as spelt in the tables or in the list
    std::vector<int> positions;                       // least significant first; never empty
    std::shared_ptr<const CDecodedSignalDef> decoded; // null for plain bits
};

/// Looks for a row of the lists, then for a definition in the board's tables: a decoded signal, a
/// bus ("AD"), one of its lines ("AD[5]") or several ("AD[15:8]"). Case is ignored, and the part in
/// brackets after a decoded signal's name may be left out where the rest is unique ("COMMAND" for
/// "COMMAND(PCI-X)"). "bit 77" is that bit of the record, whatever its name.
[[nodiscard]] std::optional<NamedSignal>
FindSignal(std::string_view name, const SignalTables& tables,
           std::initializer_list<const CSignalList*> lists);

/// All signals that FindSignal can find by name, in its order of search: buses as a whole, each
/// name once.
[[nodiscard]] std::vector<NamedSignal> AllSignals(const SignalTables& tables,
                                                  std::initializer_list<const CSignalList*> lists);

/// The labels that a decoded signal shows in a listing, each once.
[[nodiscard]] std::vector<std::string> LabelsOf(const CDecodedSignalDef& def);

/// The error message for a name that FindSignal does not find.
[[nodiscard]] std::string UnknownSignal(std::string_view name, const SignalTables& tables,
                                        std::initializer_list<const CSignalList*> lists);

/// The name of a bit of the record: "AD[5]", or "bit 77" where the tables have none.
[[nodiscard]] std::string BitName(const SignalTables& tables, int position);

} // namespace busquill
