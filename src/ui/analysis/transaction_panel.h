#pragma once

#include "ui/analysis/transaction_model.h"
#include "ui/framework/panel.h"

#include <QPointer>

#include <map>
#include <memory>
#include <string>
#include <vector>

class QLabel;
class QMdiArea;
class QStackedWidget;
class QTableView;

namespace busquill {

class Analyzer;
class CTesselDoc;
class CTraceView;

/// The transactions of the active capture as a table. Choosing a row takes the windows of the
/// capture to its first sample; marker 1 chooses the row that it stands in.
class TransactionPanel final : public Panel {
    Q_OBJECT
public:
    TransactionPanel(Analyzer& analyzer, const QMdiArea& area);
    ~TransactionPanel() override;

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A capture that has been shown, as long as it has windows.
    struct Capture {
        std::unique_ptr<TransactionModel> model;
        QPointer<CTraceView> source;        // tells about changes of the document
        std::vector<std::int64_t> selected; // first samples
        std::int64_t current = -1;          // first sample of the current row
        std::int64_t top = -1;              // of the first row that shows
    };

    void MakeTable();
    /// Shows a document's capture; null: none.
    void Show(CTesselDoc* document);
    void Listen(CTesselDoc& document);
    void SourceGone(CTesselDoc& document);
    void DocumentUpdated(CTesselDoc& document, int hint);
    void ShowColumns();
    /// The table, or why there is none, and the line below it.
    void ShowState();
    [[nodiscard]] QString WhyEmpty() const;
    void RememberPlace();
    void RestorePlace();
    void RowChosen(const QModelIndex& index);
    void SelectRow(int row);
    void ShowMarker();
    [[nodiscard]] TransactionModel* Model() const;

    Analyzer& analyzer_;
    const QMdiArea& area_;
    QStackedWidget* stack_;
    QTableView* table_;
    QLabel* reason_;
    QLabel* summary_;
    CTesselDoc* document_ = nullptr; // shown
    std::map<CTesselDoc*, Capture> captures_;
    bool follows_ = false; // a row is chosen by the panel, not by the user
};

} // namespace busquill
