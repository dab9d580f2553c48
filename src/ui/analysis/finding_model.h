#pragma once

#include "analysis/found_rows.h"
#include "analysis/sample_findings.h"
#include "analysis/sample_search.h"
#include "link/board_identity.h"
#include "ui/analysis/capture_rows.h"
#include "ui/analysis/piece_work.h"

#include <QElapsedTimer>
#include <QTimer>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class SignalTables;

/// What the board has found in the samples of a capture, and the samples that fulfil an expression,
/// as the rows of a table. Samples that arrive during an upload are searched when they have.
class FindingModel final : public CaptureRows {
    Q_OBJECT
public:
    enum ColumnNumber { Sample, Time, Kind, What, columns };
    enum class Listed { All, Findings, Hits };

    /// The document and the tables outlive the model.
    FindingModel(CTesselDoc& document, BoardTraits board, const SignalTables& tables);

    /// Whether the board records findings in samples of this bus.
    [[nodiscard]] bool RecordsFindings() const noexcept {
        return findings_.HasRules() || findings_.HasAnomalies();
    }

    void DocumentChanged(int hint) override;

    /// Looks for other hits; without a condition there are none.
    void SetExpression(std::string text, std::optional<SampleCondition> condition);
    [[nodiscard]] const std::string& Expression() const noexcept { return expression_; }
    void SetListed(Listed listed);
    [[nodiscard]] Listed WhatIsListed() const noexcept { return listed_; }
    /// Whether samples without a row in the displays are left out.
    void SetOnlyShown(bool onlyShown);
    [[nodiscard]] bool OnlyShown() const noexcept { return onlyShown_; }

    /// Whether samples are still to be searched, and how far the search is, in percent.
    [[nodiscard]] bool IsWorking() const noexcept { return work_.IsLeft() || show_.isActive(); }
    [[nodiscard]] int Progress() const;
    /// Whether all samples have been searched for the hits.
    [[nodiscard]] bool HasAllHits() const;
    /// A bit for each sample that fulfils the expression.
    [[nodiscard]] std::span<const std::uint32_t> Hits() const;
    /// How many expressions were given: the same text may mean something else now.
    [[nodiscard]] std::size_t Searches() const noexcept { return searches_; }
    /// All that have been found, listed or not, when the rows were made.
    [[nodiscard]] std::size_t FindingCount() const noexcept { return findingCount_; }
    [[nodiscard]] std::size_t HitCount() const noexcept { return hitCount_; }

    [[nodiscard]] std::int64_t SampleOf(int row) const override;
    [[nodiscard]] int RowOfSample(std::int64_t sample) const override;
    /// The row of the first sample that is not before this one; the number of rows if there is
    /// none.
    [[nodiscard]] int RowFrom(std::int64_t sample) const;
    [[nodiscard]] std::int64_t KeyOf(int row) const override;
    [[nodiscard]] int RowOfKey(std::int64_t key) const override;
    [[nodiscard]] Column ColumnAt(int column) const override;
    [[nodiscard]] QString Text(int row, int column) const override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;

protected:
    void Pause() override;
    void Resume() override;
    void Forget() override;
    [[nodiscard]] bool Follow() override;

private:
    void Continue();
    [[nodiscard]] std::size_t Left() const;
    /// Makes the rows now, or soon if that takes long.
    void RequestRows();
    void MakeRows();
    [[nodiscard]] SampleSearch MakeSearch(const SampleCondition& condition) const;
    [[nodiscard]] QString TimeText(std::int64_t sample) const;
    [[nodiscard]] QString FindingText(std::int64_t sample) const;
    [[nodiscard]] QString HitText(std::int64_t sample) const;

    const BoardTraits board_;
    const SampleFindings findings_;
    std::string expression_;
    std::size_t searches_ = 0;
    std::optional<SampleCondition> condition_;
    Listed listed_ = Listed::All;
    bool onlyShown_ = false;

    std::vector<std::uint32_t> absent_;
    std::optional<SampleSearch> findingSearch_; // nothing before the samples were taken
    std::optional<SampleSearch> hitSearch_;
    std::size_t workBegun_ = 0; // samples that were left when the work began
    PieceWork work_;

    FoundRows rows_;
    std::size_t findingCount_ = 0;
    std::size_t hitCount_ = 0;
    QTimer show_; // until rows are made
    QElapsedTimer sinceRows_;
    qint64 pause_ = 0; // milliseconds until they may be made again
};

} // namespace busquill
