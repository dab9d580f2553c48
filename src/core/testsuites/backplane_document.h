#pragma once

#include "testsuites/check_table_document.h"

#include <string>
#include <vector>

namespace busquill {

/// Which signals of a backplane are tested, and the results in words, which a .bpt file holds.
///
/// A file enables rows by their texts in the table of the PCI bus, whatever the board is. Opening a
/// file of another type or version leaves the flags alone, but the results are those of that file.
class CBackplaneTestDoc final : public CheckTableDocument {
public:
    CBackplaneTestDoc(TableInUse tableInUse, Prompts& prompts);

    /// The lines of the result list: each tested signal, and below it what was found.
    [[nodiscard]] std::vector<std::string>& Results() noexcept { return results_; }
    [[nodiscard]] const std::vector<std::string>& Results() const noexcept { return results_; }

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    void EndReading() override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    std::vector<std::string> results_;
    std::vector<std::string> readNames_; // of the file that is being read
};

} // namespace busquill
