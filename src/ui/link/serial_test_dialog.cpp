#include "ui/link/serial_test_dialog.h"

#include "link/analyzer_link.h"
#include "link/raw_bytes.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"
#include "ui/framework/window_timer.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int pollPeriod = 10; // milliseconds
constexpr int mostCharacters = 256;
/// A port that never stops sending must not fill the memory.
constexpr int mostLines = 10000;

} // namespace

CSerialTestDialog::CSerialTestDialog(QWidget* parent, CAnalyzerLink& link,
                                     const MainThread& mainThread)
    : QDialog(parent), link_(link), bytes_(new QLineEdit), history_(new QListWidget),
      read_(new QListWidget) {
    setWindowTitle("Serial Test");
    SetHelpPage(*this, "serial-test.md");
    QFont courier("Courier");
    courier.setStyleHint(QFont::Monospace);
    for (QWidget* field : std::initializer_list<QWidget*>{bytes_, history_, read_}) {
        field->setFont(courier);
    }
    bytes_->setMaxLength(mostCharacters);
    bytes_->setPlaceholderText("0a 00");
    bytes_->setToolTip("Hexadecimal bytes, separated by blanks");
    history_->setObjectName("History");
    read_->setObjectName("Read");
    auto* send = new QPushButton("&Send");

    auto* write = new QGroupBox("Write");
    auto* fields = new QGridLayout(write);
    fields->addWidget(bytes_, 0, 0);
    fields->addWidget(send, 0, 1);
    fields->addWidget(history_, 1, 0, 1, 2);
    auto* read = new QGroupBox("Read");
    (new QVBoxLayout(read))->addWidget(read_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(write, 1);
    layout->addWidget(read, 2);
    layout->addWidget(buttons);
    resize(read_->fontMetrics().averageCharWidth() * 52, 420);

    connect(send, &QPushButton::clicked, this, &CSerialTestDialog::Send);
    connect(history_, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { bytes_->setText(item->text()); });
    connect(history_, &QListWidget::currentItemChanged, this,
            [this](const QListWidgetItem* item) { bytes_->setText(item->text()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* timer = new WindowTimer(this, mainThread, [this] { ShowArrived(); });
    timer->start(pollPeriod);
    send->setDefault(true); // of the dialog that it now stands in
    bytes_->setFocus();
}

void CSerialTestDialog::Send() {
    const auto bytes = ParseRawBytes(bytes_->text().toStdString());
    if (bytes.empty()) {
        return;
    }
    link_.SendRaw(bytes);
    const QString line = QString::fromStdString(FormatRawBytes(bytes));
    if (history_->findItems(line, Qt::MatchExactly | Qt::MatchCaseSensitive).isEmpty()) {
        history_->addItem(line);
    }
}

void CSerialTestDialog::ShowArrived() {
    const std::vector<std::string> lines = RawLines(link_.ReadRingRaw());
    if (lines.empty()) {
        return;
    }
    for (const std::string& line : lines) {
        read_->addItem(QString::fromStdString(line));
    }
    while (read_->count() > mostLines) {
        delete read_->takeItem(0);
    }
    read_->setCurrentRow(read_->count() - 1);
}

} // namespace busquill
