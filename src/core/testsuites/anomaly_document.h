#pragma once

#include "testsuites/check_table_document.h"

#include <cstddef>
#include <vector>

namespace busquill {

/// Which checks the board makes, and what it has found. An .adt file is written with the enabled
/// rows. Opening one only checks its type and version: flags and results stay as they are.
class CAnomalyDetectionDoc final : public CheckTableDocument {
public:
    CAnomalyDetectionDoc(TableInUse tableInUse, Prompts& prompts);

    /// The numbers of the checks that have found something, in order; more than this many are not
    /// kept.
    static constexpr std::size_t resultLimit = 100000;
    [[nodiscard]] const std::vector<int>& Results() const noexcept { return results_; }
    void AddResult(int check);
    void ClearResults() noexcept { results_.clear(); }

protected:
    void TakeRecord(const std::vector<std::string>& /*fields*/, TextReader& /*file*/) override {}
    void EndReading() override {}

private:
    std::vector<int> results_;
};

} // namespace busquill
