#pragma once

#include "link/board_identity.h"
#include "ui/analysis/capture_watch.h"
#include "ui/analysis/finding_model.h"
#include "ui/analysis/table_place.h"
#include "ui/framework/feature.h"
#include "ui/framework/panel.h"

#include <QList>

#include <map>
#include <memory>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QStackedWidget;
class QToolButton;
class QVBoxLayout;

namespace busquill {

class CTesselDoc;
class CTraceView;
class ExpressionLine;
class PanelTable;

/// What the board has found in the active capture, and the samples that fulfil an expression, as a
/// table. Choosing a row takes the windows of the capture to its sample; marker 1 chooses the row
/// of the sample that it stands on.
class FindingPanel final : public Panel {
    Q_OBJECT
public:
    explicit FindingPanel(const FeatureParts& parts);
    ~FindingPanel() override;

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

    // The windows of the active capture show only the hits, or all samples again.

    [[nodiscard]] bool CanFilterByHits() const;
    [[nodiscard]] bool IsFilteredByHits() const;
    void FilterByHits();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// A capture that has been shown, as long as it has windows.
    struct Capture {
        std::unique_ptr<FindingModel> model; // null until it is shown on this bus
        std::unique_ptr<CaptureWatch> watch;
        TablePlace place;
        QString applied; // expression
        QString typed;   // in place of it, perhaps with a mistake
        FindingModel::Listed listed = FindingModel::Listed::All;
        bool onlyShown = false;
        std::size_t filteredBy = 0; // the search whose hits the windows show
    };

    void MakeLine(QVBoxLayout& layout);
    void MakeTable();
    void MakeChoices(QVBoxLayout& layout);
    void MakeCommands();
    /// Shows a document's capture; null: none.
    void Show(CTesselDoc* document);
    void MakeModel(CTesselDoc& document);
    void ShowModel(FindingModel* model);
    void RestorePlace(const Capture& capture);
    /// After the bus has changed.
    void ForgetRows();
    void CaptureGone(CTesselDoc& document);
    void DocumentUpdated(CTesselDoc& document, int hint);
    [[nodiscard]] FindingModel* Model() const;

    void ApplyExpression();
    [[nodiscard]] std::optional<SampleCondition> Condition(const QString& expression) const;
    /// Filters again after a filter by hits if these are others now.
    void RenewFilter(CTesselDoc& document);
    void ShowOnly(CTesselDoc& document, const FindingModel& model);
    void ShowAll(CTesselDoc& document);
    /// The first one in a window of the capture.
    [[nodiscard]] std::int64_t TopSample(const CTesselDoc& document) const;
    /// The capture of the active window; null if it has not been shown here.
    [[nodiscard]] CTesselDoc* ActiveDocument() const;

    /// The table, or why there is none, and what is around it.
    void ShowState();
    void ShowChoices();
    [[nodiscard]] QString WhyEmpty() const;
    [[nodiscard]] QString Summary() const;
    void OpenMenu(const QPoint& place);
    void CopyRows();
    void RowChosen(const QModelIndex& index);
    void Step(bool forward);
    void ShowMarker();

    const FeatureParts parts_;
    ExpressionLine* line_;
    QStackedWidget* stack_;
    PanelTable* table_;
    QLabel* reason_;
    QLabel* summary_;
    QComboBox* listed_;
    QCheckBox* onlyShown_;
    QToolButton* onlyHits_;
    QList<int> widths_;              // of the columns but the last
    BoardTraits board_;              // on whose bus the samples are read
    CTesselDoc* document_ = nullptr; // shown
    std::map<CTesselDoc*, Capture> captures_;
    bool follows_ = false; // a row is chosen by the panel, not by the user
};

} // namespace busquill
