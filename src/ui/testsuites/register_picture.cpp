#include "ui/testsuites/register_picture.h"

#include "ui/framework/painting.h"

#include <QPainter>

namespace busquill {

namespace {

QFont NameFont() {
    return FontOfCellHeight(12, QFont::Normal, FontFace::Proportional);
}

QFont DigitFont() {
    return FontOfCellHeight(14, QFont::Normal, FontFace::Proportional);
}

int OffsetWidth() {
    return QFontMetrics(NameFont()).horizontalAdvance(" 00H") + 2;
}

void DrawBitNumbers(QPainter& painter, const RegisterGeometry& geometry) {
    for (const int bit : {31, 16, 15, 0}) {
        const bool left = bit == 31 || bit == 15; // end of its half
        painter.drawText(geometry.BitNumber(bit).adjusted(2, 0, -2, 0),
                         Qt::AlignVCenter | (left ? Qt::AlignLeft : Qt::AlignRight),
                         QString::number(bit));
    }
}

void DrawRows(QPainter& painter, const RegisterGeometry& geometry) {
    const int right = geometry.width;
    for (int word = 0; word < configWords; ++word) {
        const int top = geometry.Row(word).top();
        painter.drawLine(0, top, right, top);
        if (word > 0) {
            painter.drawLine(0, top + 1, right, top + 1); // begins a word
        }
        const int digits = top + RegisterGeometry::nameHeight;
        painter.drawLine(0, digits, right, digits);
    }
    const QRect last = geometry.Row(configWords - 1);
    const int bottom = last.bottom() + 1;
    painter.drawLine(0, bottom, right, bottom);
    painter.drawLine(0, geometry.Row(0).top(), 0, bottom);
    painter.drawLine(right, geometry.Row(0).top(), right, bottom);
}

} // namespace

void DrawRegisterPicture(QPainter& painter, const RegisterGeometry& geometry,
                         std::span<const std::uint8_t, configHeaderBytes> header) {
    painter.fillRect(0, 0, geometry.width + geometry.offsetWidth, RegisterGeometry::Height(),
                     Qt::white);
    painter.setPen(Qt::black);
    painter.setFont(NameFont());
    DrawBitNumbers(painter, geometry);
    DrawRows(painter, geometry);
    for (const HeaderField& field : headerFields) {
        const QRect place = geometry.Name(field);
        painter.drawLine(place.left(), place.top(), place.left(), place.bottom());
        // One pixel lower, the capitals keep clear of the double line above them.
        painter.drawText(place.translated(0, 1), Qt::AlignCenter | Qt::TextDontClip,
                         QString::fromUtf8(field.text));
    }
    for (int word = 0; word < configWords; ++word) {
        painter.drawText(geometry.Offset(word), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextDontClip,
                         QString::fromStdString(HeaderOffsetText(word)));
    }
    painter.setFont(DigitFont());
    for (int word = 0; word < configWords; ++word) {
        const QString text =
            QString("%1")
                .arg(HeaderWord(header, word), RegisterGeometry::digits, 16, QChar('0'))
                .toUpper();
        for (int digit = 0; digit < RegisterGeometry::digits; ++digit) {
            painter.drawText(geometry.Digit(word, digit), Qt::AlignCenter | Qt::TextDontClip,
                             text.mid(digit, 1));
        }
    }
}

RegisterPicture::RegisterPicture(const CConfigSpaceData& device, QWidget* parent)
    : QWidget(parent), device_(device) {}

int RegisterPicture::NeededWidth() {
    constexpr int bits = 32;
    constexpr int space = 6; // around a name
    const QFontMetrics metrics(NameFont());
    int needed = 0;
    for (const HeaderField& field : headerFields) {
        const int share = field.lastBit - field.firstBit + 1;
        needed =
            std::max(needed, (metrics.horizontalAdvance(QString::fromUtf8(field.text)) + space) *
                                 bits / share);
    }
    return needed + OffsetWidth();
}

void RegisterPicture::paintEvent(QPaintEvent* /*event*/) {
    RegisterGeometry geometry;
    geometry.offsetWidth = OffsetWidth();
    geometry.width = width() - geometry.offsetWidth;
    QPainter painter(this);
    DrawRegisterPicture(painter, geometry, device_.Header());
}

} // namespace busquill
