#include "ui/trace/reading_progress.h"

#include <QFileInfo>
#include <QStatusBar>

#include <algorithm>

namespace busquill {

ReadingProgress::ReadingProgress(QStatusBar* bar, int moment) : bar_(bar), moment_(moment) {}

void ReadingProgress::At(const std::string& path, std::uint64_t bytes) {
    if (!sinceBegin_.isValid()) {
        sinceBegin_.start();
    }
    if (bar_ == nullptr || sinceBegin_.elapsed() < moment_) {
        return;
    }
    const QFileInfo file(QString::fromStdString(path));
    if (size_ == 0) {
        size_ = std::max<std::uint64_t>(static_cast<std::uint64_t>(file.size()), 1);
    }
    const std::uint64_t percent = std::min<std::uint64_t>(bytes * 100 / size_, 100);
    if (percent == shown_) {
        return;
    }
    shown_ = percent;
    constexpr int untilNextEvent = 1;
    bar_->showMessage(QString("Reading %1: %2 %").arg(file.fileName(), QString::number(percent)),
                      untilNextEvent);
    bar_->repaint();
}

} // namespace busquill
