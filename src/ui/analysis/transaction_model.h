#pragma once

#include "analysis/transaction_table.h"
#include "link/board_identity.h"
#include "ui/analysis/capture_rows.h"
#include "ui/analysis/piece_work.h"

#include <QElapsedTimer>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace busquill {

class SignalTables;

/// The transactions of a capture as the rows of a table. It walks through all samples, and until it
/// has seen all, it keeps the rows that it had. While a capture is being uploaded, it walks again
/// from time to time.
class TransactionModel final : public CaptureRows {
    Q_OBJECT
public:
    /// The document and the tables outlive the model.
    TransactionModel(CTesselDoc& document, BoardTraits board, const SignalTables& tables);
    ~TransactionModel() override;

    [[nodiscard]] const BoardTraits& Board() const noexcept { return board_; }
    /// The bus as its signals show it; null for a connector, whose table stays empty.
    [[nodiscard]] const BusTraffic* Traffic() const noexcept { return reader_.Traffic(); }
    /// Whether transactions of this bus have the field in a column.
    [[nodiscard]] bool HasColumn(int column) const;

    void SetQuery(TransactionQuery query);
    [[nodiscard]] const TransactionQuery& Query() const noexcept { return query_; }

    /// Whether rows are being found, and how far, in percent.
    [[nodiscard]] bool IsWorking() const noexcept { return next_ != nullptr; }
    [[nodiscard]] int Progress() const;
    /// All transactions of the capture, shown or not.
    [[nodiscard]] std::size_t TransactionCount() const;
    /// What the shown ones add up to; null without rows.
    [[nodiscard]] const TransactionTotals* Totals() const;

    /// Valid until the next call.
    [[nodiscard]] const Transaction& At(int row) const;
    [[nodiscard]] std::int64_t SampleOf(int row) const override;
    /// The index in the document of the last sample of a row.
    [[nodiscard]] std::int64_t LastSample(int row) const;
    /// The row of the transaction to which a sample belongs, by its index; -1 if none is shown.
    [[nodiscard]] int RowOfSample(std::int64_t sample) const override;
    [[nodiscard]] Column ColumnAt(int column) const override;
    [[nodiscard]] QString Text(int row, int column) const override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

protected:
    void Pause() override;
    void Resume() override;
    void Forget() override;
    [[nodiscard]] bool Follow() override;

private:
    /// A capture, or the part of it that had arrived, with the places of its transactions.
    struct Followed {
        TransactionIndex index;
        std::vector<std::uint32_t> absent;
    };

    /// Finds other rows in the samples that were followed last.
    void FindRows();
    void Continue();
    void Finish();

    const BoardTraits board_;
    const SignalTables& tables_;
    TransactionFollower reader_; // for what the bus has
    mutable std::optional<TransactionFields> fields_;
    TransactionQuery query_;

    std::shared_ptr<Followed> followed_;     // of the rows
    std::unique_ptr<TransactionTable> rows_; // that are shown
    mutable std::unordered_map<int, Transaction> cache_;

    std::shared_ptr<Followed> nextFollowed_;
    std::unique_ptr<TransactionTable> next_; // in the making
    PieceWork work_;
    QTimer pause_; // until samples that have arrived are followed
    QElapsedTimer walk_;
};

} // namespace busquill
