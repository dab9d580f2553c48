#pragma once

#include "signals/signal_defs.h"

#include <QWidget>

class QScrollBar;

namespace busquill {

class CPatternGrid;
class CSignalList;
class Prompts;

/// Whether a table is at least as high as its rows, or scrolls them.
enum class PatternRows { AllShown, Scrolled };

/// A pattern grid with a horizontal scroll bar, and a vertical one if its rows scroll.
class CPatternTable final : public QWidget {
    Q_OBJECT
public:
    CPatternTable(int rows, Prompts& prompts, PatternRows shown = PatternRows::AllShown);

    [[nodiscard]] CPatternGrid& Grid() const noexcept { return *grid_; }
    /// The list outlives the table or is replaced before it is destroyed.
    void SetList(CSignalList& list, std::uint32_t mode = ModeEvents);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void SetBars();
    void Scrolled(int action);

    CPatternGrid* grid_;
    QScrollBar* signalBar_;
    QScrollBar* rowBar_ = nullptr; // only if rows scroll
};

} // namespace busquill
