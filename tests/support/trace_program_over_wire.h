#pragma once

#include "boardsim/traffic.h"
#include "support/paths.h"
#include "support/program_over_wire.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace busquill::test {

/// The samples in a trace file, and their numbers.
struct TraceRows {
    std::vector<int> numbers;
    std::vector<boardsim::Record> records;
};

/// Reads them from the text of the file, row by row: "number,byte,byte,...".
[[nodiscard]] inline TraceRows RowsOf(const std::string& text) {
    TraceRows rows;
    std::istringstream lines(text.substr(std::min(text.find("\"Trace Data\""), text.size())));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line) && !line.starts_with('"')) {
        std::istringstream fields(line);
        int number = 0;
        fields >> number;
        rows.numbers.push_back(number);
        boardsim::Record record{};
        for (std::uint8_t& byte : record) {
            char comma = 0;
            fields >> comma >> number;
            byte = static_cast<std::uint8_t>(number);
        }
        rows.records.push_back(record);
    }
    return rows;
}

/// busquill-trace and the simulated board.
class TraceProgram : public ProgramOverWire {
protected:
    ProgramRun Run(const std::vector<std::string>& arguments, ProgramInput input = {}) const {
        input.temporaryFolder = temporary.Path();
        return RunTrace(OnBoard(arguments), input);
    }
    /// A capture into `target`.
    ProgramRun Capture(const std::string& setup, std::vector<std::string> more = {},
                       ProgramInput input = {}) const {
        more.insert(more.begin(), {"capture", "--setup", setup, "-o", target});
        return Run(more, std::move(input));
    }
    /// A copy of data/MemoryWrite.tsp in which the text `old` is replaced.
    std::string Setup(const std::string& name, const std::string& old = "",
                      const std::string& instead = "") const {
        std::string text = ReadWholeFile(SourceFile("data/MemoryWrite.tsp"));
        const auto at = text.find(old);
        EXPECT_NE(at, std::string::npos) << old;
        return setups.Write(name, text.replace(at, old.size(), instead));
    }
    /// A setup that triggers at the `count`th memory write.
    std::string Writes(int count) const {
        return Setup("writes.tsp", "\"E1\",1,", "\"E1\"," + std::to_string(count) + ",");
    }
    /// A setup that never triggers, as no bus cycle has its command: 1000 is reserved.
    std::string Never(const std::string& stored = "All") const {
        std::string text = ReadWholeFile(
            Setup("never.tsp", R"("Goto L1","All")", R"("Goto L1",")" + stored + "\""));
        for (const char* line : {"0", "1", "2", "3"}) {
            const auto signal = text.find(std::string("\"Signal\",\"C/BE[") + line + "]\"");
            const auto data = text.find("\"Data\",", signal) + std::string("\"Data\",").size();
            text[data] = line == std::string("3") ? '1' : '0';
        }
        return setups.Write("never.tsp", text);
    }
    [[nodiscard]] TraceRows Captured() const { return RowsOf(ReadWholeFile(target)); }
    /// The names of the files in a folder, in order.
    static std::vector<std::string> FilesIn(const TempDir& folder) {
        std::vector<std::string> names;
        for (const auto& file : std::filesystem::directory_iterator(folder.Path())) {
            names.push_back(file.path().filename().string());
        }
        std::ranges::sort(names);
        return names;
    }

    TempDir setups;
    TempDir folder; // for the captures
    std::string target = folder.File("out.tra");
    const std::string memoryWrite = SourceFile("data/MemoryWrite.tsp");
};

} // namespace busquill::test
