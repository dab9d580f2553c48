#pragma once

#include <QPixmap>
#include <QWidget>

#include <functional>

class QPainter;

namespace busquill {

/// A window that is drawn into a bitmap, which goes to the screen as it is. The bitmap follows the
/// window's size and its screen. Main thread.
class PaintedWindow : public QWidget {
    Q_OBJECT
public:
    explicit PaintedWindow(QWidget* parent);

    /// Draws all of it into the bitmap and brings it to the screen.
    void Render();

protected:
    /// Draws all of it, its background too.
    virtual void Draw(QPainter& painter) = 0;
    /// Whether the bitmap shows what is no longer so, though nobody has asked for a frame.
    [[nodiscard]] virtual bool IsOutdated() const { return false; }

    /// Draws a part into the bitmap and brings it to the screen.
    void RenderPart(const QRect& part, const std::function<void(QPainter&)>& draw);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void MakeBitmap();
    void DrawAll();

    QPixmap bitmap_; // null until the window has a size
};

} // namespace busquill
