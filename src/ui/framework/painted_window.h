#pragma once

#include <QPixmap>
#include <QRect>
#include <QString>
#include <QWidget>

#include <functional>

class QPainter;

namespace busquill {

/// The tool tip of a part of a window.
struct PlaceTip {
    QString text; // empty: no tip
    QRect place;  // where it holds
};

/// A window that is drawn into a bitmap, from which paint events copy. The bitmap is drawn again
/// when the window's size or screen changes. Main thread.
class PaintedWindow : public QWidget {
    Q_OBJECT
public:
    explicit PaintedWindow(QWidget* parent);

    /// Draws the whole window into the bitmap and updates the screen.
    void Render();

protected:
    /// Draws the whole window, including its background.
    virtual void Draw(QPainter& painter) = 0;
    /// Whether the bitmap is out of date although nobody has called Render.
    [[nodiscard]] virtual bool IsOutdated() const { return false; }
    /// What the tool tip says at a place. It disappears when anything is drawn again, since it may
    /// no longer be true.
    [[nodiscard]] virtual PlaceTip TipAt(const QPoint& /*place*/) { return {}; }

    /// Draws a part into the bitmap and updates the screen.
    void RenderPart(const QRect& part, const std::function<void(QPainter&)>& draw);

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void MakeBitmap();
    void DrawAll();
    void HideTip();

    bool showsTip_ = false;
    QPixmap bitmap_; // null until the window has a size
};

} // namespace busquill
