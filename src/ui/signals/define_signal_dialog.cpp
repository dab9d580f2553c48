#include "ui/signals/define_signal_dialog.h"

#include "platform/text.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace busquill {

namespace {

constexpr int headerHeight = 41;
constexpr int mnemonicWidth = 64;
constexpr int columnGap = 3;
constexpr int rowHeight = 14;
constexpr int rowCount = 128;
constexpr int pageStep = 10;
constexpr std::int32_t wideDefinition = 16; // bits; from this width on, four share a character
constexpr int shownRows = 16;

} // namespace

std::vector<LayoutColumn> LayoutColumns(std::span<const std::shared_ptr<CBusSignalDef>> defs,
                                        int characterWidth) {
    std::vector<LayoutColumn> columns = {{"Mnemonic", 0, mnemonicWidth}};
    int left = mnemonicWidth + columnGap;
    for (const auto& def : defs) {
        const std::int32_t bits = def->Width();
        const int width = (bits < wideDefinition ? bits : (bits + 3) / 4) * characterWidth;
        const std::string text =
            bits > 1 ? Printf("%s[%d:%d]", def->name.c_str(), def->lastPosition, def->firstPosition)
                     : def->name;
        columns.push_back({text, left, width});
        left += width + columnGap;
    }
    return columns;
}

LayoutTable::LayoutTable(const SignalTables& tables)
    : textFont_(FontOfCellHeight(rowHeight, QFont::Normal, FontFace::Proportional)),
      rowFont_("MS Sans Serif"),
      columns_(
          LayoutColumns(tables.busSignals.Defs(), QFontMetrics(textFont_).averageCharWidth())) {
    rowFont_.setStyleHint(QFont::SansSerif);
    rowFont_.setPixelSize(10);
    const LayoutColumn& last = columns_.back();
    setFixedWidth(last.left + last.width + columnGap);
    setMinimumHeight(headerHeight + shownRows * rowHeight);
}

void LayoutTable::SetTopRow(int row) {
    topRow_ = row;
    update();
}

void LayoutTable::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    painter.setPen(Qt::black);
    for (const LayoutColumn& column : columns_) {
        DrawTitle(painter, column);
        const int line = column.left + column.width + columnGap / 2;
        painter.drawLine(line, 0, line, height());
    }
    painter.drawLine(0, headerHeight - 1, width(), headerHeight - 1);
    painter.setFont(rowFont_);
    for (int row = topRow_, y = headerHeight; row < rowCount && y < height();
         ++row, y += rowHeight) {
        for (const LayoutColumn& column : columns_) {
            const bool isNumber = &column == &columns_.front();
            painter.drawText(QRect(column.left, y, column.width, rowHeight), Qt::AlignCenter,
                             isNumber ? QString::number(row + 1) : QString("X"));
        }
    }
}

/// Horizontal where it fits, otherwise rotated to read upward.
void LayoutTable::DrawTitle(QPainter& painter, const LayoutColumn& column) const {
    painter.setFont(textFont_);
    const QString text = QString::fromStdString(column.text);
    const QRect cell(column.left, 0, column.width, headerHeight - 1);
    if (painter.fontMetrics().horizontalAdvance(text) <= column.width) {
        painter.drawText(cell, Qt::AlignHCenter | Qt::AlignBottom, text);
        return;
    }
    painter.save();
    painter.translate(cell.left() + cell.width() / 2.0, cell.bottom());
    painter.rotate(-90);
    painter.drawText(QRectF(0, -rowHeight / 2.0, cell.height(), rowHeight),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
    painter.restore();
}

CDefineSignalDialog::CDefineSignalDialog(QWidget* parent, const SignalTables& tables)
    : QDialog(parent), rows_(new QScrollBar(Qt::Vertical)) {
    setWindowTitle("Define Signal");
    SetHelpPage(*this, "listing.md#define-signals");
    auto* names = new QListWidget;
    names->addItem("<New Signal>");
    names->setMaximumWidth(names->fontMetrics().averageCharWidth() * 20);
    auto* table = new LayoutTable(tables);
    auto* area = new QScrollArea;
    area->setWidget(table);
    area->setWidgetResizable(true);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumWidth(420);
    columns_ = area->horizontalScrollBar();
    rows_->setRange(0, rowCount - 1);
    rows_->setSingleStep(1);
    rows_->setPageStep(pageStep);
    connect(rows_, &QScrollBar::valueChanged, table, &LayoutTable::SetTopRow);
    table->installEventFilter(this);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton("Ok", QDialogButtonBox::AcceptRole);
    buttons->addButton("Cancel", QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel("Name"), 0, 0);
    layout->addWidget(names, 1, 0);
    layout->addWidget(area, 1, 1);
    layout->addWidget(rows_, 1, 2);
    layout->addWidget(buttons, 2, 0, 1, 3);
    layout->setColumnStretch(1, 1);
    resize(760, 380);
}

bool CDefineSignalDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) {
        return QDialog::eventFilter(watched, event);
    }
    const WheelTurns::Turn turn = wheel_.Take(*static_cast<QWheelEvent*>(event));
    if (turn.sideways) {
        columns_->setValue(columns_->value() + turn.notches * wheelColumnStep);
    } else {
        rows_->setValue(rows_->value() + turn.notches);
    }
    return true;
}

} // namespace busquill
