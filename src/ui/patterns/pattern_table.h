#pragma once

#include <QWidget>

class QScrollBar;

namespace busquill {

class CPatternGrid;
class CSignalList;
class Prompts;

/// A pattern grid that shows all its rows, with a horizontal scroll bar.
class CPatternTable final : public QWidget {
    Q_OBJECT
public:
    CPatternTable(int rows, Prompts& prompts);

    [[nodiscard]] CPatternGrid& Grid() const noexcept { return *grid_; }
    /// The list outlives the table or is replaced before it is destroyed.
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
