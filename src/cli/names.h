/// Names of signals on the command line.
#pragma once

#include "signals/signal_tables.h"

#include <string>
#include <vector>

namespace busquill::cli {

/// "A,B" and "C" as A, B and C; a name with a comma in it stands in double quotes.
[[nodiscard]] std::vector<std::string> SplitNames(const std::vector<std::string>& values);

/// What to tell of a name that the tables do not have.
[[nodiscard]] std::string UnknownSignal(const std::string& name, const SignalTables& tables);

} // namespace busquill::cli
