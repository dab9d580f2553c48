#include "ui/framework/icons.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>
#include <QSvgRenderer>

namespace busquill {

namespace {

constexpr auto drawnLines = "#41597a"; // the colour of lines in the files
constexpr auto lightLines = "#a9bedb"; // on a dark window

bool IsWindowDark() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

class IconEngine final : public QIconEngine {
public:
    explicit IconEngine(QString name) : name_(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const qreal ratio = painter->device()->devicePixelRatio();
        painter->drawPixmap(rect, Drawn(rect.size() * ratio, mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return Drawn(size, mode);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State,
                         qreal /*scale*/) override {
        return Drawn(size, mode);
    }
    [[nodiscard]] QIconEngine* clone() const override { return new IconEngine(*this); }
    [[nodiscard]] QString key() const override { return "busquill"; }
    bool isNull() override { return false; }

private:
    [[nodiscard]] QPixmap Drawn(const QSize& size, QIcon::Mode mode) const {
        const bool isDark = IsWindowDark();
        const QString key = QString("busquill %1 %2 %3 %4 %5")
                                .arg(name_)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(mode)
                                .arg(isDark);
        QPixmap pixmap;
        if (QPixmapCache::find(key, &pixmap)) {
            return pixmap;
        }
        QFile file(QString(":/icons/%1.svg").arg(name_));
        static_cast<void>(file.open(QIODevice::ReadOnly)); // a resource
        QByteArray picture = file.readAll();
        if (isDark) {
            picture.replace(drawnLines, lightLines);
        }
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        QSvgRenderer renderer(picture);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(&painter);
        painter.end();
        pixmap = QPixmap::fromImage(image);
        if (mode != QIcon::Normal) {
            QStyleOption option;
            option.palette = QGuiApplication::palette();
            pixmap = QApplication::style()->generatedIconPixmap(mode, pixmap, &option);
        }
        QPixmapCache::insert(key, pixmap);
        return pixmap;
    }

    const QString name_;
};

} // namespace

QIcon IconOf(const QString& name) {
    return QIcon(new IconEngine(name));
}

} // namespace busquill
