#pragma once

#include "ui/analysis/finding_model.h"
#include "ui/analysis/hit_filter.h"
#include "ui/framework/feature.h"
#include "ui/framework/panel.h"

#include <QList>

#include <map>
#include <memory>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QToolButton;
class QVBoxLayout;

namespace busquill {

class CTesselDoc;
class CaptureRows;
class CaptureTable;

/// What the board has found in the active capture, and the samples that fulfil an expression, as a
/// table.
class FindingPanel final : public Panel {
    Q_OBJECT
public:
    explicit FindingPanel(const FeatureParts& parts);

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

    [[nodiscard]] const HitFilter& Filter() const { return filter_; }
    void FilterByHits();

private:
    /// Of a capture.
    struct Choice {
        FindingModel::Listed listed = FindingModel::Listed::All;
        bool onlyShown = false;
    };

    void MakeLine();
    void MakeColumns();
    void MakeChoices(QVBoxLayout& layout);
    void MakeCommands();
    [[nodiscard]] std::unique_ptr<CaptureRows> MakeRows(CTesselDoc& document,
                                                        const BoardTraits& board);
    /// Null if no capture is shown.
    [[nodiscard]] FindingModel* Model() const;
    void ApplyExpression(const QString& expression);
    [[nodiscard]] std::optional<SampleCondition> Condition(const QString& expression) const;
    void ShowState();
    void ShowChoices();
    [[nodiscard]] QString WhyEmpty() const;
    [[nodiscard]] QString Summary() const;
    void OpenMenu(const QPoint& place);
    void Step(bool forward);

    const FeatureParts parts_;
    CaptureTable* list_;
    HitFilter filter_;
    QLabel* summary_;
    QComboBox* listed_;
    QCheckBox* onlyShown_;
    QToolButton* onlyHits_;
    QList<int> widths_; // of the columns but the last
    std::map<const CTesselDoc*, Choice> choices_;
};

} // namespace busquill
