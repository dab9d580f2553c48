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
    std::string name;                                 // as it is spelt in the tables or in the list
    std::vector<int> positions;                       // least significant first; never empty
    std::shared_ptr<const CDecodedSignalDef> decoded; // null for bare bits
};

/// Looks for a row of the lists, then for a definition of the board's tables: a decoded signal, a
/// bus ("AD"), a line of it ("AD[5]") or several ("AD[15:8]"). Upper and lower case are alike, and
/// what stands behind a decoded signal's name in brackets may be left out where that is clear
/// ("COMMAND" for "COMMAND(PCI-X)"). "bit 77" is that bit, whatever it is called.
[[nodiscard]] std::optional<NamedSignal>
FindSignal(std::string_view name, const SignalTables& tables,
           std::initializer_list<const CSignalList*> lists);

/// What FindSignal finds by the names that there are, in the order in which it looks: buses as a
/// whole, each name once.
[[nodiscard]] std::vector<NamedSignal> AllSignals(const SignalTables& tables,
                                                  std::initializer_list<const CSignalList*> lists);

/// The labels that a decoded signal shows in a listing, each once.
[[nodiscard]] std::vector<std::string> LabelsOf(const CDecodedSignalDef& def);

/// What to tell of a name that FindSignal does not know.
[[nodiscard]] std::string UnknownSignal(std::string_view name, const SignalTables& tables,
                                        std::initializer_list<const CSignalList*> lists);

/// What a bit of the record is called: "AD[5]", or "bit 77" where the tables have no name.
[[nodiscard]] std::string BitName(const SignalTables& tables, int position);

} // namespace busquill
