#pragma once

namespace busquill::cli {

/// From here on an interrupt or a request to end does not end the program but is noticed by
/// `Interrupted`; what is being written can then be taken away again. A third one in vain ends it.
void NoticeInterrupts();

/// Whether there has been one since the last call.
[[nodiscard]] bool Interrupted() noexcept;

/// Keeps the signals from other threads, whose waiting they would disturb: threads that are started
/// while it lives never see them.
class NoInterruptsForThreads {
public:
    NoInterruptsForThreads();
    ~NoInterruptsForThreads();
    NoInterruptsForThreads(const NoInterruptsForThreads&) = delete;
    NoInterruptsForThreads& operator=(const NoInterruptsForThreads&) = delete;
};

} // namespace busquill::cli
