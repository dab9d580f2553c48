#pragma once

#include <string>
#include <vector>

namespace busquill {

class CSignalList;
class SignalTables;

/// Shows only the named columns of a listing, in the order given; SAMPLE is always there. A name is
/// that of a row in the list, or one of the tables, whose signal is then added. Returns an error
/// message, empty on success.
[[nodiscard]] std::string ShowColumns(CSignalList& list, const std::vector<std::string>& names,
                                      const SignalTables& tables);

} // namespace busquill
