#pragma once

#include "document/record_document.h"
#include "exerciser/form_values.h"
#include "platform/working_directory.h"
#include "testsuites/config_space_data.h"
#include "testsuites/test_result.h"

#include <bitset>
#include <string>
#include <vector>

namespace busquill {

/// The device under test, which items of the check list are selected, and the results, which a .cpl
/// file holds.
class CComplianceDoc final : public RecordDocument {
public:
    /// Reads the names of vendors and classes from the program's folder. The check list is read
    /// there whenever a file is saved or opened.
    CComplianceDoc(WorkingDirectory directory, Prompts& prompts);

    /// Whether an item of the check list is selected, by its index. Later items than this many are
    /// never selected.
    static constexpr std::size_t flagCount = 500;
    [[nodiscard]] bool IsSelected(int index) const noexcept;
    void Select(int index, bool selected) noexcept;
    void SelectAll(bool selected) noexcept;

    [[nodiscard]] CConfigSpaceData& Device() noexcept { return device_; }
    [[nodiscard]] const CConfigSpaceData& Device() const noexcept { return device_; }
    /// Of the tests that have ended, in the order of their ends.
    [[nodiscard]] std::vector<CTestResult>& Results() noexcept { return results_; }
    [[nodiscard]] const std::vector<CTestResult>& Results() const noexcept { return results_; }

    /// Whether a device was found, which a run needs.
    bool deviceFound = false;
    /// Whether the device is that of a file, and was not looked for since.
    bool loadedFromFile = false;

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    void EndReading() override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    void SelectKeys();

    const WorkingDirectory directory_;
    std::bitset<flagCount> selected_;
    CConfigSpaceData device_;
    std::vector<CTestResult> results_;

    // Of the file that is being read.
    FormValues readValues_;
    std::vector<std::string> readKeys_;
    std::vector<CTestResult> readResults_;
};

} // namespace busquill
