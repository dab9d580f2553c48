#include "ui/framework/painted_window.h"

#include <QApplication>
#include <QPainter>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class Painted final : public PaintedWindow {
public:
    Painted() : PaintedWindow(nullptr) {}
    using PaintedWindow::RenderPart;

    QColor color = Qt::red;
    bool outdated = false;
    int drawn = 0;

protected:
    void Draw(QPainter& painter) override {
        ++drawn;
        outdated = false;
        painter.fillRect(rect(), color);
    }
    [[nodiscard]] bool IsOutdated() const override { return outdated; }
};

QColor At(QWidget& window, QPoint place) {
    return window.grab().toImage().pixelColor(place);
}

TEST(PaintedWindow, DrawsOncePerSizeAndReusesTheBitmap) {
    Painted window;
    window.Render();
    EXPECT_EQ(window.drawn, 0) << "without a size there is nothing to draw on";
    window.resize(40, 30);
    window.show();
    QApplication::processEvents();
    const int drawn = window.drawn;
    window.color = Qt::blue;
    EXPECT_EQ(At(window, {39, 29}), QColor(Qt::red));
    EXPECT_EQ(window.drawn, drawn) << "painted from the bitmap";
    window.resize(80, 60);
    EXPECT_EQ(At(window, {79, 59}), QColor(Qt::blue));
}

TEST(PaintedWindow, RendersOnRequestAndWhenOutdated) {
    Painted window;
    window.resize(40, 30);
    window.show();
    QApplication::processEvents();
    window.color = Qt::blue;
    window.Render();
    EXPECT_EQ(At(window, {5, 5}), QColor(Qt::blue));
    window.color = Qt::green;
    window.outdated = true;
    EXPECT_EQ(At(window, {5, 5}), QColor(Qt::green));
}

TEST(PaintedWindow, APartialUpdateLeavesTheRest) {
    Painted window;
    const auto black = [](QPainter& painter) { painter.fillRect(0, 0, 10, 10, Qt::black); };
    window.RenderPart({0, 0, 10, 10}, black);
    window.resize(40, 30);
    window.show();
    QApplication::processEvents();
    const int drawn = window.drawn;
    window.RenderPart({0, 0, 10, 10}, black);
    EXPECT_EQ(At(window, {9, 9}), QColor(Qt::black));
    EXPECT_EQ(At(window, {10, 10}), QColor(Qt::red));
    EXPECT_EQ(window.drawn, drawn);
}

} // namespace
} // namespace busquill::test
