#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/panel.h"

#include <QStringList>

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
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// What the figures were made of; they are made anew when it changes.
    struct Source {
        const CTesselDoc* document = nullptr;
        const CSignalList* list = nullptr;
        bool isZoom = false;
        std::int64_t from = 0;
        std::int64_t to = 0;
        std::vector<std::string> selected; // rows
        std::string bus;

        friend bool operator==(const Source&, const Source&) = default;
    };

    /// Why there are no figures; empty if there are.
    [[nodiscard]] QString WhyEmpty(const CTraceView* view) const;
    [[nodiscard]] static QString WhyNotYet(const CTraceView& view);
    void ShowOnly(const QString& reason);
    void ShowFigures(const CTraceView& view, const Source& source);
    void AddLine(const QString& name, const QString& value);
    void AddFigures(const CTesselDoc& document, const Source& source);
    void AddEdges(const CTesselDoc& document, const Source& source, const CSignal& signal);
    void Copy() const;

    const FeatureParts parts_;
    QTableWidget* table_;
    QLabel* note_; // below the figures, or instead of them
    std::optional<Source> shown_;
};

} // namespace busquill
