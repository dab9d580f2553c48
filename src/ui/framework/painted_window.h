#pragma once

#include <QPixmap>
#include <QWidget>

#include <functional>

class QPainter;

namespace busquill {

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

    /// Draws a part into the bitmap and updates the screen.
    void RenderPart(const QRect& part, const std::function<void(QPainter&)>& draw);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void MakeBitmap();
    void DrawAll();

    QPixmap bitmap_; // null until the window has a size
};

} // namespace busquill
