#pragma once

#include "exerciser/read_memory.h"

#include <QAbstractScrollArea>
#include <QFont>

#include <functional>

namespace busquill {

/// The dump of memory that was read: rows of an address, bytes, and the bytes as characters.
class CMemoryListBox final : public QAbstractScrollArea {
    Q_OBJECT
public:
    /// In Demo Mode, which `isDemo` tells, rows are full of random bytes.
    CMemoryListBox(QWidget* parent, std::function<bool()> isDemo);

    /// Null for none. The memory outlives what is shown; Refresh shows what it has grown by.
    void SetMemory(const ReadMemory* memory);
    void Refresh() { viewport()->update(); }

    /// A row as it would be drawn now.
    [[nodiscard]] QString RowText(int row) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const std::function<bool()> isDemo_;
    const QFont font_;
    const int charWidth_;
    const ReadMemory* memory_ = nullptr;
    int bytesPerRow_ = 0;
};

} // namespace busquill
