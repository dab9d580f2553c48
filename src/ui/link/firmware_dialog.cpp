#include "ui/link/firmware_dialog.h"

#include "platform/settings.h"
#include "platform/working_directory.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/help_page.h"
#include "ui/framework/window_timer.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr const char* fileKey = "DownloadFile";
constexpr int pollPeriod = 50; // milliseconds
constexpr int fileCharacters = 44;

} // namespace

CFirmwareDialog::CFirmwareDialog(QWidget* parent, CAnalyzerLink& link, Settings& settings,
                                 Prompts& prompts, const MainThread& mainThread)
    : QDialog(parent), settings_(settings), prompts_(prompts), download_(link, prompts),
      file_(new QLineEdit), browse_(new QPushButton("&Browse...")),
      start_(new QPushButton("&Download")), progress_(new QProgressBar) {
    setWindowTitle("Download Firmware");
    SetHelpPage(*this, "firmware.md");
    file_->setText(
        QString::fromStdString(settings.GetProfileString(SettingsSection::setup, fileKey, "")));
    file_->setMinimumWidth(file_->fontMetrics().averageCharWidth() * fileCharacters);
    progress_->setRange(0, 1);
    progress_->setValue(0);
    auto* label = new QLabel("&File");
    label->setBuddy(file_);
    browse_->setAutoDefault(false);

    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(file_, 1);
    row->addWidget(browse_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(progress_);
    // A button that is added to a box outside the dialog would take others out of the tab order.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(start_, QDialogButtonBox::ActionRole);
    layout->addWidget(buttons);

    connect(browse_, &QPushButton::clicked, this, &CFirmwareDialog::Browse);
    connect(start_, &QPushButton::clicked, this, &CFirmwareDialog::Download);
    connect(buttons, &QDialogButtonBox::rejected, this, &CFirmwareDialog::reject);
    timer_ = new WindowTimer(this, mainThread, [this] { ShowProgress(); });
    timer_->start(pollPeriod);
    buttons->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    start_->setDefault(true); // of the dialog that it now stands in
    file_->setFocus();
}

void CFirmwareDialog::Browse() {
    const std::string current = file_->text().toStdString();
    FileQuestion question;
    question.title = "Open";
    question.extension = ".hex";
    question.folder = std::string(FolderOf(current));
    question.name = current.substr(question.folder.size());
    const std::string path = AskForFile(this, question, prompts_);
    if (!path.empty()) {
        file_->setText(QString::fromStdString(path));
        settings_.WriteProfileString(SettingsSection::setup, fileKey, path);
    }
}

void CFirmwareDialog::Download() {
    static_cast<void>(download_.Start(file_->text().toStdString())); // a failure is reported
    ShowProgress();
}

void CFirmwareDialog::ShowProgress() {
    const bool isRunning = download_.GetState() == FirmwareDownload::State::Running;
    start_->setEnabled(!isRunning);
    file_->setEnabled(!isRunning);
    browse_->setEnabled(!isRunning);
    progress_->setRange(0, std::max(static_cast<int>(download_.Total()), 1));
    progress_->setValue(std::min(static_cast<int>(download_.Count()), progress_->maximum()));
    if (download_.GetState() == FirmwareDownload::State::Complete) {
        timer_->stop();
        prompts_.Message("Download complete.");
        accept();
    }
}

void CFirmwareDialog::reject() {
    download_.Cancel();
    QDialog::reject();
}

} // namespace busquill
