#include "cli/rows_ahead.h"

#include "cli/interrupt.h"

#include <utility>

namespace busquill::cli {

RowsAhead::RowsAhead(Source source) : source_(std::move(source)) {
    const NoInterruptsForThreads blocked;
    thread_ = std::thread([this] { Read(); });
}

RowsAhead::~RowsAhead() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        moved_.notify_all();
    }
    thread_.join();
}

SampleRows* RowsAhead::Free() {
    std::unique_lock lock(mutex_);
    moved_.wait(lock, [this] { return stopped_ || read_ - done_ < pieces_.size(); });
    return stopped_ ? nullptr : &pieces_[read_ % pieces_.size()];
}

void RowsAhead::Read() {
    std::exception_ptr failure;
    try {
        while (SampleRows* const piece = Free()) {
            const SampleRows* const rows = source_();
            if (rows == nullptr) {
                break;
            }
            *piece = *rows;
            const std::lock_guard lock(mutex_);
            ++read_;
            moved_.notify_all();
        }
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    ended_ = true;
    moved_.notify_all();
}

const SampleRows* RowsAhead::Next() {
    std::unique_lock lock(mutex_);
    done_ = taken_;
    moved_.notify_all();
    moved_.wait(lock, [this] { return taken_ < read_ || ended_; });
    if (taken_ < read_) {
        return &pieces_[taken_++ % pieces_.size()];
    }
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    return nullptr;
}

} // namespace busquill::cli
