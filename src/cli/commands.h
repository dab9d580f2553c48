/// The commands of busquill-trace: each adds itself to the program, with its options and what it
/// runs. That returns the exit status, and throws ExitRequest when it cannot continue.
#pragma once

namespace CLI {
class App;
}

namespace busquill::cli {

void AddInfo(CLI::App& program);
void AddList(CLI::App& program);
void AddSearch(CLI::App& program);
void AddFilter(CLI::App& program);
void AddConvert(CLI::App& program);
void AddCompare(CLI::App& program);
void AddStats(CLI::App& program);
void AddTransactions(CLI::App& program);
void AddNames(CLI::App& program);
void AddSetup(CLI::App& program);
void AddBoard(CLI::App& program);
void AddCapture(CLI::App& program);

} // namespace busquill::cli
