#include "ui/framework/icons.h"

#include <QApplication>
#include <QPalette>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class Icons : public testing::Test {
protected:
    ~Icons() override { QApplication::setPalette(usual); }

    static void SetWindowColor(const QColor& color) {
        QPalette palette;
        palette.setColor(QPalette::Window, color);
        QApplication::setPalette(palette);
    }
    /// The lightness of the opaque pixels of an icon's picture, from 0 to 255.
    static int Lightness(const QIcon& icon, QIcon::Mode mode = QIcon::Normal) {
        const QImage image = icon.pixmap(QSize(24, 24), 1, mode).toImage();
        int sum = 0;
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (const QColor color = image.pixelColor(x, y); color.alpha() > 200) {
                    sum += color.lightness();
                    ++count;
                }
            }
        }
        return count == 0 ? -1 : sum / count;
    }

    const QPalette usual = QApplication::palette();
};

TEST_F(Icons, LinesAreDarkOnALightWindowAndLightOnADarkOne) {
    const QIcon icon = IconOf("state");
    SetWindowColor(Qt::white);
    const int onLight = Lightness(icon);
    EXPECT_GT(onLight, 0);
    EXPECT_LT(onLight, 110);
    SetWindowColor(QColor(40, 40, 40));
    EXPECT_GT(Lightness(icon), 170) << "also an icon that was made before";
    SetWindowColor(Qt::white);
    EXPECT_EQ(Lightness(icon), onLight);
}

TEST_F(Icons, ADisabledOneIsPaler) {
    SetWindowColor(Qt::white);
    const QIcon icon = IconOf("state");
    EXPECT_NE(Lightness(icon, QIcon::Disabled), Lightness(icon));
}

TEST_F(Icons, TheyAreSharpOnAScreenOfHighResolution) {
    const QPixmap pixmap = IconOf("state").pixmap(QSize(24, 24), 2);
    EXPECT_EQ(pixmap.size(), QSize(48, 48));
    EXPECT_EQ(pixmap.devicePixelRatio(), 2);
    EXPECT_NE(pixmap.toImage(), IconOf("state").pixmap(QSize(24, 24), 1).toImage().scaled(48, 48));
}

} // namespace
} // namespace busquill::test
