#pragma once

#include "ui/analysis/transaction_model.h"
#include "ui/framework/feature.h"
#include "ui/framework/panel.h"
#include "ui/framework/wait_cursor.h"

#include <optional>

class QLabel;

namespace busquill {

class CaptureTable;
class KeptExpressions;
class TransactionColumns;

/// The transactions of the active capture as a table, with a filter. The samples of the current row
/// are marked in the windows of the capture.
class TransactionPanel final : public Panel {
    Q_OBJECT
public:
    explicit TransactionPanel(const FeatureParts& parts);

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void MakeFilter();
    void MakeCommands();
    void Leave();
    void ApplyFilter(const QString& filter);
    [[nodiscard]] TransactionBus FilterBus(const KeptExpressions& kept) const;
    /// Nothing for an empty filter.
    [[nodiscard]] std::optional<TransactionCondition> Condition(const QString& filter) const;
    void ShowState();
    [[nodiscard]] QString WhyEmpty() const;
    void MarkRow(const QModelIndex& index);
    /// Null if no capture is shown.
    [[nodiscard]] TransactionModel* Model() const;

    const FeatureParts parts_;
    CaptureTable* list_;
    TransactionColumns* columns_;
    QLabel* summary_;
    std::optional<OverrideCursor> busy_;
};

} // namespace busquill
