#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

namespace busquill {

/// Work that would hold up the windows: it is done in pieces, for a moment at a time, and the
/// events that wait come between. Main thread.
class PieceWork {
public:
    /// `goOn` is called while work is left, and calls Do.
    explicit PieceWork(const std::function<void()>& goOn) {
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, goOn);
    }

    /// Does pieces for a moment; a piece is true if it was the last one. True when all is done.
    template <typename Piece>
    bool Do(const Piece& piece) {
        QElapsedTimer time;
        time.start();
        bool isDone = false;
        do {
            isDone = piece();
        } while (!isDone && time.elapsed() < longestMoment);
        isDone ? Stop() : Resume();
        return isDone;
    }

    /// Goes on after the events that wait.
    void Resume() { timer_.start(0); }
    void Stop() { timer_.stop(); }
    /// False while it is stopped.
    [[nodiscard]] bool IsLeft() const { return timer_.isActive(); }

private:
    static constexpr int longestMoment = 20; // milliseconds

    QTimer timer_;
};

} // namespace busquill
