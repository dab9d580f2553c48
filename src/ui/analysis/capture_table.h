#pragma once

#include "link/board_identity.h"
#include "ui/analysis/capture_rows.h"
#include "ui/analysis/capture_watch.h"
#include "ui/analysis/expression_line.h"
#include "ui/analysis/panel_table.h"
#include "ui/analysis/table_place.h"
#include "ui/framework/feature.h"

#include <QWidget>

#include <functional>
#include <map>
#include <memory>

class QLabel;
class QStackedWidget;

namespace busquill {

class CMDIChildWnd;
class CTesselDoc;

/// Rows about the active capture in a panel: a line with an expression, and below it a table, or
/// the reason why that has no rows. What was typed, chosen and scrolled to is kept for each capture
/// as long as it has windows. Choosing a row takes the windows of the capture to its sample;
/// marker 1 chooses the row of its sample.
class CaptureTable final : public QWidget {
    Q_OBJECT
public:
    struct Names {
        const char* section; // of the settings
        const char* label;   // of the line
        const char* line;    // the others are object names
        const char* mistake;
        const char* table;
        const char* reason;
    };
    using MakeRows = std::function<std::unique_ptr<CaptureRows>(CTesselDoc&, const BoardTraits&)>;

    CaptureTable(const FeatureParts& parts, const Names& names, MakeRows makeRows);
    ~CaptureTable() override;

    [[nodiscard]] ExpressionLine& Line() const { return *line_; }
    [[nodiscard]] PanelTable& Table() const { return *table_; }
    /// The capture that is shown; null: none.
    [[nodiscard]] CTesselDoc* Document() const { return document_; }
    /// Null if no capture is shown.
    [[nodiscard]] CaptureRows* Rows() const;
    /// Null if that capture has not been shown on this bus.
    [[nodiscard]] CaptureRows* RowsOf(CTesselDoc& document) const;
    [[nodiscard]] bool HasRows() const;
    [[nodiscard]] bool HasSelection() const;
    /// On whose bus the samples are read.
    [[nodiscard]] const BoardTraits& Board() const { return board_; }

    void Follow(CMDIChildWnd* active);
    /// What keeps any capture from having rows; empty if nothing does.
    [[nodiscard]] QString WhyNoSamples() const;
    /// Shows the table, or in its place why it is empty.
    void ShowEither(const QString& whyEmpty);
    void CopyRows();

signals:
    /// Another capture, or none, is going to be shown; the table still has its columns. Document is
    /// null if the capture has gone.
    void Leaving();
    /// The table has other columns.
    void Shown();
    /// What is shown, or the reason for an empty table, may have changed.
    void Changed();
    /// The rows of a capture, shown or not, have changed, or are being looked for.
    void Worked(CTesselDoc& document);
    /// The expression for the shown capture.
    void Given(const QString& expression);
    /// The current row, if the index is valid.
    void CurrentChanged(const QModelIndex& index);
    /// The last window of a capture has gone.
    void Gone(CTesselDoc& document);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Capture {
        std::unique_ptr<CaptureRows> rows; // null until it is shown on this bus
        std::unique_ptr<CaptureWatch> watch;
        TablePlace place;
        QString applied; // expression
        QString typed;   // in place of it, perhaps with a mistake
    };

    void Show(CTesselDoc* document);
    void SetModel(CaptureRows* rows);
    void FillRows(CTesselDoc& document);
    void RememberPlace();
    void RestorePlace();
    void ForgetRows();
    void CaptureGone(CTesselDoc& document);
    void DocumentUpdated(CTesselDoc& document, int hint);
    void RowChosen(const QModelIndex& index);
    void ShowMarker();

    const FeatureParts parts_;
    const MakeRows makeRows_;
    ExpressionLine* line_;
    QStackedWidget* stack_;
    PanelTable* table_;
    QLabel* reason_;
    BoardTraits board_;
    CTesselDoc* document_ = nullptr;
    std::map<CTesselDoc*, Capture> captures_;
    bool follows_ = false; // a row is chosen by the table, not by the user
};

} // namespace busquill
