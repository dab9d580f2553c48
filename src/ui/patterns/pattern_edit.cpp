#include "ui/patterns/pattern_edit.h"

#include "signals/signal.h"
#include "signals/value_text.h"
#include "ui/patterns/value_dialog.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace busquill {

CPatternEdit::CPatternEdit(QWidget* parent) : QLineEdit(parent) {
    setReadOnly(true);
    setText(CPatternEdit::Shown());
}

QSize CPatternEdit::sizeHint() const {
    const QSize size = QLineEdit::sizeHint(); // with space for 17 letters x
    const QFontMetrics metrics = fontMetrics();
    const int wider = metrics.horizontalAdvance("DDDDDDDD DDDDDDDD") -
                      metrics.horizontalAdvance(QString(17, 'x'));
    return {size.width() + std::max(0, wider), size.height()};
}

void CPatternEdit::SetWidth(unsigned bits) {
    width_ = std::clamp(bits, 1U, 64U);
    Refresh();
}

std::uint64_t CPatternEdit::Value() const noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        value |= std::uint64_t{bytes_[i]} << (8 * i);
    }
    return value;
}

void CPatternEdit::SetValue(std::uint64_t value) {
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        bytes_[i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    Refresh();
}

QString CPatternEdit::Shown() const {
    return QString::fromStdString(FormatValue(bytes_, width_, Radix::Hex, {}, false));
}

void CPatternEdit::Refresh() {
    setText(Shown());
}

void CPatternEdit::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QLineEdit::mousePressEvent(event);
        return;
    }
    Edit();
}

void CPatternEdit::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    Edit();
}

void CPatternEdit::Edit() {
    const std::size_t count = BytesFor(width_);
    if (CValueDlg(this, std::span(bytes_).first(count), {}, width_, Radix::Hex).exec() ==
        QDialog::Accepted) {
        Refresh();
    }
}

} // namespace busquill
