#include "ui/link/board_info_dialog.h"

#include "link/analyzer_link.h"
#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace busquill {

CBoardInfoDialog::CBoardInfoDialog(QWidget* parent, const CAnalyzerLink& link) : QDialog(parent) {
    setWindowTitle(" Board Info");
    SetHelpPage(*this, "board-info.md");
    auto* rows = new QFormLayout;
    const auto addRow = [&](const char* label, const std::string& value) {
        auto* text = new QLabel(QString::fromStdString(value));
        text->setObjectName(label);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        text->setMinimumWidth(text->fontMetrics().averageCharWidth() * 20);
        rows->addRow(QString("%1:").arg(label), text);
    };
    const BoardIdentity board = link.Identity();
    const bool demo = link.IsDemoMode();
    const auto onBoard = [demo](const std::string& value) { return demo ? std::string() : value; };
    addRow("Model", board.modelString);
    addRow("Buffer Size", onBoard(std::to_string(board.bufferSizeK) + "K"));
    addRow("Firmware Version", onBoard(board.firmwareRevision));
    addRow("Hardware Version", onBoard(board.hardwareRevision));
    addRow("Serial Number", onBoard(std::to_string(board.serialNumber)));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

} // namespace busquill
