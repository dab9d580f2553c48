#pragma once

#include "analysis/transaction_table.h"
#include "link/board_identity.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace busquill {

class CTesselDoc;
class SignalTables;

/// The transactions of a capture as the rows of a table. Walks through the samples in pieces,
/// between events; until it has seen all, it keeps the rows that it had. While a capture is being
/// uploaded, it walks again from time to time. Main thread.
class TransactionModel final : public QAbstractTableModel {
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

    /// A model that is not active keeps its rows and does not walk.
    void SetActive(bool active);
    /// After a change of the document, with the hint for its views.
    void DocumentChanged(int hint);
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
    /// The index in the document of the first sample of a row, and of its last one.
    [[nodiscard]] std::int64_t FirstSample(int row) const;
    [[nodiscard]] std::int64_t LastSample(int row) const;
    /// The row of the transaction to which a sample belongs, by its index; -1 if none is shown.
    [[nodiscard]] int RowOfSample(std::int64_t sample) const;
    [[nodiscard]] QString Text(int row, int column) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

signals:
    /// It has other rows, and all views know it.
    void Renewed();
    /// IsWorking or Progress has changed.
    void Worked();

private:
    /// A capture, or the part of it that had arrived, with the places of its transactions.
    struct Followed {
        TransactionIndex index;
        std::vector<std::uint32_t> absent;
    };

    void Forget();
    /// Walks through the samples as they are now.
    void Begin();
    /// The same if more samples have arrived.
    void FollowUpload();
    /// Finds other rows in the samples that were followed last.
    void FindRows();
    void Continue();
    void Finish();

    CTesselDoc& document_;
    const BoardTraits board_;
    const SignalTables& tables_;
    TransactionFollower reader_; // for what the bus has
    mutable std::optional<TransactionFields> fields_;
    bool isActive_ = false;
    bool isOutdated_ = true; // the document has samples that were not followed
    TransactionQuery query_;

    std::shared_ptr<Followed> followed_;     // of the rows
    std::unique_ptr<TransactionTable> rows_; // that are shown
    mutable std::unordered_map<int, Transaction> cache_;

    std::shared_ptr<Followed> nextFollowed_;
    std::unique_ptr<TransactionTable> next_; // in the making
    QTimer work_;
    QTimer pause_; // until samples that have arrived are followed
    QElapsedTimer walk_;
};

} // namespace busquill
