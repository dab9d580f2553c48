#pragma once

#include <QObject>
#include <QStringList>

class QPoint;

namespace busquill {

class PanelTable;
class Settings;
class TransactionModel;

/// The section of the settings for the table of transactions.
constexpr const char* transactionSettings = "Transactions";

/// The columns of the table of transactions: their order and widths, which of them the user has
/// hidden, and by which the rows are sorted.
class TransactionColumns final : public QObject {
    Q_OBJECT
public:
    /// The table owns it. The settings outlive it.
    TransactionColumns(PanelTable& table, Settings& settings);

    /// Puts the columns where they were, and hides those that the bus does not have.
    void Show();
    void Store();
    /// Opens the menu in which columns are chosen.
    void Choose(const QPoint& place);

private:
    /// Null if the table shows no capture.
    [[nodiscard]] TransactionModel* Model() const;
    [[nodiscard]] int UsualWidth(int column) const;
    /// The titles of those that the user has hidden.
    [[nodiscard]] QStringList Hidden() const;
    void ShowOne(int column, const QString& title, bool isShown);
    void SortBy(int column, Qt::SortOrder order);

    PanelTable& table_;
    Settings& settings_;
};

} // namespace busquill
