// Draws a picture in the sizes that desktops ask for.
//
//     render-icon PICTURE.svg SIZE OUTPUT.png

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: render-icon PICTURE.svg SIZE OUTPUT.png\n", stderr);
        return 2;
    }
    const int size = QString(argv[2]).toInt();
    QSvgRenderer picture{QString(argv[1])};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.render(&painter);
    painter.end();
    if (!picture.isValid() || !image.save(argv[3], "PNG")) {
        std::fprintf(stderr, "render-icon: cannot draw %s into %s\n", argv[1], argv[3]);
        return 1;
    }
    return 0;
}
