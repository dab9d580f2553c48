#pragma once

#include "capture/sample_rows.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace busquill::cli {

/// Reads samples on a thread of its own, a few pieces ahead of the caller, who works on one piece
/// meanwhile.
class RowsAhead {
public:
    /// Returns the next piece, valid until its next call, or null after the last one. Runs on the
    /// thread.
    using Source = std::function<const SampleRows*()>;

    /// Throws std::system_error if there is no thread.
    explicit RowsAhead(Source source);
    ~RowsAhead();
    RowsAhead(const RowsAhead&) = delete;
    RowsAhead& operator=(const RowsAhead&) = delete;

    /// The next piece, valid until the next call, or null after the last one. Throws what the
    /// source threw.
    [[nodiscard]] const SampleRows* Next();

private:
    void Read();
    /// Waits for a piece to fill. Null if no more are wanted.
    [[nodiscard]] SampleRows* Free();

    const Source source_;
    std::array<SampleRows, 4> pieces_;

    std::mutex mutex_; // of all below but the thread
    std::condition_variable moved_;
    std::size_t read_ = 0;  // pieces read so far, each in pieces_[number % size]
    std::size_t taken_ = 0; // of those, handed to the caller, who still uses the last one
    std::size_t done_ = 0;  // of those, no longer used
    bool ended_ = false;    // nothing more is read
    bool stopped_ = false;  // nothing more is wanted
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace busquill::cli
