#pragma once

#include "capture/capture_run.h"

#include <QWidget>

#include <array>
#include <string>

class QComboBox;
class QLabel;
class QToolButton;

namespace busquill {

class CPositionGauge;

/// The bar of a trace window: run buttons, setup box, counters, position gauge and the times
/// between the markers. The times are at the left; those that do not fit beside the rest are
/// hidden.
class CTraceBar final : public QWidget {
    Q_OBJECT
public:
    explicit CTraceBar(QWidget* parent = nullptr);

    void SetCounters(std::int64_t before, std::int64_t after);
    void SetIndicator(RunIndicator indicator, int level);
    void SetTimes(const std::array<std::string, 3>& times);
    /// Sets the picture of the button that leads to the other display.
    void ShowStateButton(bool leadsToState);
    /// Hides everything that a Power Zoom frame does not have.
    void HideRunControls();
    void HideZoomButton();

    [[nodiscard]] CPositionGauge& Gauge() const noexcept { return *gauge_; }
    [[nodiscard]] QComboBox& SetupBox() const noexcept { return *setupBox_; }
    [[nodiscard]] QToolButton& GoButton() const noexcept { return *go_; }
    [[nodiscard]] QToolButton& StopButton() const noexcept { return *stop_; }
    [[nodiscard]] QToolButton& SetupButton() const noexcept { return *setup_; }
    [[nodiscard]] QToolButton& DisplayButton() const noexcept { return *display_; }
    [[nodiscard]] QToolButton& ZoomButton() const noexcept { return *zoom_; }
    [[nodiscard]] QToolButton& HelpButton() const noexcept { return *help_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct TimeField {
        QWidget* whole = nullptr;
        QLabel* text = nullptr;
    };

    QLabel* AddText(const char* name, const QString& sample);
    void MakeTimes();
    void PlaceParts();

    QWidget* group_; // everything but the times
    QToolButton* go_;
    QToolButton* stop_;
    QToolButton* setup_;
    QToolButton* display_;
    QToolButton* zoom_;
    QToolButton* help_;
    QComboBox* setupBox_;
    QLabel* indicator_;
    QLabel* level_;
    QLabel* before_;
    QLabel* after_;
    CPositionGauge* gauge_;
    std::array<TimeField, 3> times_;
    std::int64_t shownBefore_ = 0;
    std::int64_t shownAfter_ = 0;
    RunIndicator shownIndicator_ = RunIndicator::Idle;
    int shownLevel_ = 1;
};

} // namespace busquill
