#include "ui/patterns/value_dialog.h"

#include "signals/signal.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

constexpr int textHeight = 16;
constexpr int marginX = 5;
constexpr int marginY = 3;
constexpr int caretX = 4;
constexpr int fewestCharacters = 20;

} // namespace

CBitEditWnd::CBitEditWnd(ValueEditor& editor)
    : editor_(editor), font_(FontOfCellHeight(textHeight, QFont::Normal, FontFace::Fixed)),
      digitWidth_(QFontMetrics(font_).horizontalAdvance('0')) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize CBitEditWnd::sizeHint() const {
    const int characters = std::max(static_cast<int>(editor_.Text().size()), fewestCharacters);
    return {(characters + 1) * digitWidth_ + 2 * marginX, textHeight + 2 * marginY + 2};
}

void CBitEditWnd::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    DrawEdge(painter, rect(), Edge::Sunken);
    painter.setFont(font_);
    painter.setPen(Qt::black);
    painter.setClipRect(rect().adjusted(2, 2, -2, -2));
    // Drawn digit by digit, so that each is exactly where a click on it is expected.
    const QRect inside = rect().adjusted(marginX, marginY, -marginX, -marginY);
    const std::string& text = editor_.Text();
    for (std::size_t i = 0; i < text.size(); ++i) {
        painter.drawText(inside.left() + static_cast<int>(i) * digitWidth_,
                         inside.top() + QFontMetrics(font_).ascent(), QString(QChar(text[i])));
    }
    if (hasFocus()) {
        const int x = static_cast<int>(editor_.Caret()) * digitWidth_ + caretX;
        painter.fillRect(x, inside.top(), 1, inside.height(), Qt::black);
    }
}

void CBitEditWnd::mousePressEvent(QMouseEvent* event) {
    editor_.PlaceCaret(static_cast<std::size_t>(std::max(event->pos().x(), 0) / digitWidth_));
    setFocus();
    update();
}

void CBitEditWnd::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Backspace:
        editor_.Left();
        break;
    case Qt::Key_Right:
        editor_.Right();
        break;
    case Qt::Key_Home:
        editor_.Home();
        break;
    case Qt::Key_End:
        editor_.End();
        break;
    default:
        if (text.size() != 1 || !editor_.Type(text.front().toLatin1())) {
            event->ignore(); // for the dialog: Enter, Escape, Tab
            return;
        }
    }
    update();
}

void CBitEditWnd::focusInEvent(QFocusEvent* /*event*/) {
    update();
}

void CBitEditWnd::focusOutEvent(QFocusEvent* /*event*/) {
    update();
}

CValueDlg::CValueDlg(QWidget* parent, std::span<std::uint8_t> value, std::span<std::uint8_t> mask,
                     unsigned width, std::int32_t radix)
    : QDialog(parent), value_(value), mask_(mask),
      editor_({value.begin(), value.end()}, {mask.begin(), mask.end()}, width, radix),
      bits_(new CBitEditWnd(editor_)) {
    setWindowTitle("Value");
    SetHelpPage(*this, "search.md#patterns");
    auto* choices = new QHBoxLayout;
    auto* group = new QButtonGroup(this);
    const std::pair<const char*, std::int32_t> radixes[] = {
        {"&Hex", Radix::Hex}, {"&Octal", Radix::Octal}, {"&Binary", Radix::Binary}};
    for (const auto& [text, number] : radixes) {
        auto* button = new QRadioButton(text);
        button->setChecked(radix == number);
        group->addButton(button, number);
        choices->addWidget(button);
    }
    choices->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* clear = buttons->addButton("C&lear", QDialogButtonBox::ActionRole);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(bits_);
    layout->addLayout(choices);
    layout->addWidget(buttons);
    connect(group, &QButtonGroup::idClicked, this, [this](int number) {
        editor_.SetRadix(number);
        bits_->updateGeometry();
        bits_->update();
        adjustSize();
    });
    connect(clear, &QPushButton::clicked, this, [this] {
        editor_.Clear();
        bits_->update();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &CValueDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CValueDlg::reject);
    bits_->setFocus();
}

void CValueDlg::accept() {
    std::copy_n(editor_.Value().begin(), std::min(value_.size(), editor_.Value().size()),
                value_.begin());
    std::copy_n(editor_.Mask().begin(), std::min(mask_.size(), editor_.Mask().size()),
                mask_.begin());
    QDialog::accept();
}

} // namespace busquill
