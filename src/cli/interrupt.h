#pragma once

namespace busquill::cli {

/// From now on SIGINT and the like do not end the program but make `Interrupted` return true, so
/// that unfinished files can be removed. After two without an effect, the third one ends it.
void NoticeInterrupts();

/// Whether there was an interrupt since the last call.
[[nodiscard]] bool Interrupted() noexcept;

/// Throws Interruption if there was one since the last call.
void EndIfInterrupted();
/// Interrupts from within the program.
void Interrupt() noexcept;

/// Threads started during its lifetime never get these signals, which would interrupt their waits.
class NoInterruptsForThreads {
public:
    NoInterruptsForThreads();
    ~NoInterruptsForThreads();
    NoInterruptsForThreads(const NoInterruptsForThreads&) = delete;
    NoInterruptsForThreads& operator=(const NoInterruptsForThreads&) = delete;
};

} // namespace busquill::cli
