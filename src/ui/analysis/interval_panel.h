#pragma once

#include "analysis/interval.h"
#include "link/board_identity.h"
#include "ui/analysis/piece_work.h"
#include "ui/framework/feature.h"
#include "ui/framework/panel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QLabel;
class QTableWidget;

namespace busquill {

class CSignal;
class CSignalList;
class CTesselDoc;
class CTraceView;

/// The figures of an interval in the making.
struct IntervalCount {
    std::vector<std::uint32_t> absent;
    std::optional<IntervalWalk> walk; // of samples of the bus
    std::size_t next = 0;             // the first sample whose edges are not counted
    std::vector<const CSignal*> counted;
    std::vector<EdgeCount> edges;
    int currentLine = -1; // of the table, before they are shown
    bool isSelected = false;
};

/// What lies between the markers of the active capture.
class IntervalPanel final : public Panel {
    Q_OBJECT
public:
    explicit IntervalPanel(const FeatureParts& parts);

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    /// What the figures are made of; they are made anew when it changes.
    struct Source {
        const CTesselDoc* document = nullptr;
        const CSignalList* list = nullptr;
        bool isZoom = false;
        std::int64_t from = 0;
        std::int64_t to = 0;
        std::vector<std::string> selected; // rows

        friend bool operator==(const Source&, const Source&) = default;
    };

    /// Why there are no figures; empty if there are.
    [[nodiscard]] QString WhyEmpty(const CTraceView* view) const;
    [[nodiscard]] static QString WhyNotYet(const CTraceView& view);
    void ShowOnly(const QString& reason);
    void Begin(const Source& source);
    void GoOn();
    /// Counts for a moment. What is not done then is done after the events that wait.
    void Continue();
    void ShowCounts();
    void ShowTimes();
    void ShowTransactions(const IntervalFigures& figures);
    void ShowEdges(const CSignal& signal, const EdgeCount& edges);
    /// `copied` are the lines for the clipboard, with the names in front.
    void AddLine(const QString& name, const QString& value, const QString& copied);
    void AddCount(const QString& name, std::uint64_t count);
    void Copy() const;
    /// At a place in the table.
    void OpenMenu(const QPoint& place);

    const FeatureParts parts_;
    QTableWidget* table_;
    QLabel* note_; // below the figures, or instead of them
    std::optional<Source> source_;
    BoardTraits board_;                  // of the figures
    std::optional<IntervalCount> count_; // nothing when the figures are shown
    PieceWork work_;
};

} // namespace busquill
