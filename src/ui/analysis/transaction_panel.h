#pragma once

#include "ui/analysis/transaction_model.h"
#include "ui/framework/feature.h"
#include "ui/framework/panel.h"
#include "ui/framework/wait_cursor.h"

#include <QPointer>
#include <QStringList>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QStackedWidget;
class QVBoxLayout;

namespace busquill {

class CTesselDoc;
class CTraceView;
class ExpressionLine;
class KeptExpressions;
class PanelTable;

/// The transactions of the active capture as a table. Choosing a row takes the windows of the
/// capture to its first sample; marker 1 chooses the row that it stands in.
class TransactionPanel final : public Panel {
    Q_OBJECT
public:
    explicit TransactionPanel(const FeatureParts& parts);
    ~TransactionPanel() override;

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A capture that has been shown, as long as it has windows.
    struct Capture {
        std::unique_ptr<TransactionModel> model; // null until it is shown on this bus
        QPointer<CTraceView> source;             // tells about changes of the document
        std::vector<std::int64_t> selected;      // first samples
        std::int64_t current = -1;               // first sample of the current row
        std::int64_t top = -1;                   // of the first row that shows
        int currentBelowTop = -1;                // rows; -1 if it does not show
        QString filter;
        QString typed; // in place of the filter, perhaps with a mistake
    };

    void MakeTable();
    void MakeFilter(QVBoxLayout& layout);
    void MakeCommands();
    /// Shows a document's capture; null: none.
    void Show(CTesselDoc* document);
    void MakeModel(CTesselDoc& document);
    /// After the bus has changed.
    void ForgetRows();
    void Detach();
    void Listen(CTesselDoc& document);
    void SourceGone(CTesselDoc& document);
    void DocumentUpdated(CTesselDoc& document, int hint);
    /// Puts the columns where they were, and hides those that the bus does not have.
    void ShowColumns();
    void StoreColumns();
    [[nodiscard]] int UsualWidth(int column) const;
    /// The titles of those that the user has hidden.
    [[nodiscard]] QStringList HiddenColumns() const;
    void ShowColumn(int column, const QString& title, bool isShown);
    /// Opens the menu in which columns are chosen.
    void ChooseColumns(const QPoint& place);
    void SortBy(int column, Qt::SortOrder order);
    [[nodiscard]] std::vector<int> SelectedRows() const;
    void CopyRows();
    void ApplyFilter();
    [[nodiscard]] TransactionBus FilterBus(const KeptExpressions& kept) const;
    /// Nothing for an empty filter.
    [[nodiscard]] std::optional<TransactionCondition> Condition(const QString& filter) const;
    /// The table, or why there is none, and the line below it.
    void ShowState();
    [[nodiscard]] QString WhyEmpty() const;
    void RememberPlace();
    void RestorePlace();
    void RowChosen(const QModelIndex& index);
    void MarkRow(const QModelIndex& index);
    void SelectRow(int row);
    void ShowMarker();
    [[nodiscard]] TransactionModel* Model() const;

    const FeatureParts parts_;
    QStackedWidget* stack_;
    PanelTable* table_;
    QLabel* reason_;
    QLabel* summary_;
    ExpressionLine* filter_;
    std::optional<OverrideCursor> busy_;
    BoardTraits board_;              // on whose bus the transactions are followed
    CTesselDoc* document_ = nullptr; // shown
    std::map<CTesselDoc*, Capture> captures_;
    bool follows_ = false; // a row is chosen by the panel, not by the user
};

} // namespace busquill
