#pragma once

#include "document/record_document.h"
#include "link/board_identity.h"
#include "performance/performance_setup.h"
#include "performance/result_store.h"

#include <cstdint>
#include <functional>
#include <span>

namespace busquill {

/// A measurement: its setup and its results, which a .per file holds. Main thread; results may be
/// added and read on any thread.
class CPerformanceDoc : public RecordDocument {
public:
    /// `board` returns the board whose cycles the file names.
    CPerformanceDoc(std::function<BoardTraits()> board, Prompts& prompts);

    [[nodiscard]] PerformanceSetup& Setup() noexcept { return setup_; }
    [[nodiscard]] const PerformanceSetup& Setup() const noexcept { return setup_; }
    [[nodiscard]] ResultStore& Results() noexcept { return results_; }
    [[nodiscard]] const ResultStore& Results() const noexcept { return results_; }

    /// Changes the type, presets the items for it and updates the views.
    void SetType(std::int32_t type);

    void AddResults(std::span<const std::uint8_t, performanceResultBytes> bytes);
    [[nodiscard]] bool HasResult(std::int64_t index) const { return results_.Has(index); }
    /// 0 for an item or an index without a result, and for a result that is no longer held.
    [[nodiscard]] std::int32_t GetResult(std::size_t item, std::int64_t index) const;
    void ClearResults() { results_.Clear(); }

    /// The type stays.
    bool OnNewDocument() override;

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    void EndReading() override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    void TakeItem(const std::vector<std::string>& fields);
    void TakeCount(std::int64_t count, std::int64_t rows);
    void ReadResults(TextReader& file);

    const std::function<BoardTraits()> board_;
    PerformanceSetup setup_;
    ResultStore results_;
    std::int64_t claimedCount_ = 0; // by the file that is being read
};

} // namespace busquill
