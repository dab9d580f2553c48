#pragma once

#include "analysis/transaction_condition.h"

#include <QComboBox>
#include <QTimer>

#include <cstddef>
#include <optional>
#include <variant>

class QLabel;

namespace busquill {

class Settings;

/// The section of the settings for the table of transactions.
constexpr const char* transactionSettings = "Transactions";

/// A condition on transactions as a line of text, with those that were used before. It is checked
/// while the user types: the first mistake is marked, and explained in a label.
class FilterLine final : public QComboBox {
    Q_OBJECT
public:
    /// The settings and the label outlive it.
    FilterLine(Settings& settings, QLabel& explanation);

    /// What the names in a condition depend on; the tables outlive it.
    void SetBus(const TransactionBus& bus) { bus_ = bus; }
    /// Shows the filter of another table, without emitting Changed.
    void ShowFilter(const QString& text);
    /// The text when Changed was emitted last.
    [[nodiscard]] QString Filter() const { return filter_; }
    /// Its condition; nothing for an empty line.
    [[nodiscard]] std::optional<TransactionCondition> Condition() const;

signals:
    /// The user has given another filter, which has no mistake.
    void Changed();

protected:
    /// A turn of the wheel over the line would choose another filter.
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] std::variant<TransactionCondition, ExpressionError>
    Parsed(const QString& text) const;
    void ShowHistory();
    void Remember();
    void Edited();
    void Apply();
    void MarkMistake(const std::optional<ExpressionError>& mistake);

    Settings& settings_;
    QLabel& explanation_;
    TransactionBus bus_;
    QString filter_;
    QTimer typing_; // until a text without a mistake is applied
};

} // namespace busquill
