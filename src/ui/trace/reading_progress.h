#pragma once

#include <QElapsedTimer>

#include <cstdint>
#include <string>

class QStatusBar;

namespace busquill {

/// Shows in the status bar how much of a file has been read, as soon as that takes longer than a
/// moment. The text disappears when the program is ready again. No event is handled meanwhile, so
/// nothing can change while a document is only half read.
class ReadingProgress {
public:
    /// `moment` in ms. Without a status bar nothing is shown.
    explicit ReadingProgress(QStatusBar* bar, int moment = 1000);

    void At(const std::string& path, std::uint64_t bytes);

private:
    QStatusBar* bar_;
    int moment_;
    QElapsedTimer sinceBegin_;
    std::uint64_t size_ = 0;  // of the file; 0 until it is needed
    std::uint64_t shown_ = 0; // percent
};

} // namespace busquill
