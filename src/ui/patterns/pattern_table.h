#pragma once

#include <QWidget>

class QScrollBar;

namespace busquill {

class CPatternGrid;
class CSignalList;
class Prompts;

/// A table of patterns that shows all its rows, with the bar that moves it sideways.
class CPatternTable final : public QWidget {
    Q_OBJECT
public:
    CPatternTable(int rows, Prompts& prompts);

    [[nodiscard]] CPatternGrid& Grid() const noexcept { return *grid_; }
    /// The list outlives the table, or another one follows it.
    void SetList(CSignalList& list);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void SetBar();
    void Scrolled(int action);

    CPatternGrid* grid_;
    QScrollBar* bar_;
};

} // namespace busquill
