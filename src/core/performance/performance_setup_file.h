/// Performance setups kept by name: files "<name>.psu" in the program's folder. They hold the
/// charts and the items of a setup, but no addresses, no interval and no type.
#pragma once

#include "performance/performance_setup.h"
#include "platform/working_directory.h"

#include <string>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;

/// The names of all setups of the folder, sorted.
[[nodiscard]] std::vector<std::string> FindPerformanceSetups(const WorkingDirectory& folder);

/// Reads the setup of a name, which also becomes its name. What the file does not hold becomes the
/// default, except the type. A file of another version is read with a warning. When it cannot be
/// opened, reports that and returns false; the setup is then the default.
[[nodiscard]] bool LoadPerformanceSetup(PerformanceSetup& setup, const WorkingDirectory& folder,
                                        const std::string& name, Prompts& prompts);

/// The same for an open file; a setup's name is not in it.
void ReadPerformanceSetup(PerformanceSetup& setup, TextReader& file, Prompts& prompts);

/// Whether the user has typed the name, so that an existing file is replaced only with consent.
enum class SetupNameTyped { No, Yes };

/// Writes a setup under its name. False when the user keeps the existing file, and on a failure,
/// which is reported.
[[nodiscard]] bool SavePerformanceSetup(const PerformanceSetup& setup,
                                        const WorkingDirectory& folder, SetupNameTyped typed,
                                        Prompts& prompts);

} // namespace busquill
