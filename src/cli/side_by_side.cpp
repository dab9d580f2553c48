#include "cli/side_by_side.h"

#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/temporary_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace busquill::cli {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16;

/// What a job has written and the output has not yet taken: a file, and the text that follows it.
struct Waiting {
    FileHandle file;
    std::string text;
    bool hasBegun = false; // some of it is in the output
};

/// The line in which results wait for the output. The thread whose job is at its head is the only
/// one that touches the output.
class Line {
public:
    Line(std::size_t jobs, std::size_t ahead, TextSink& output, std::string_view between,
         const std::function<void(std::size_t)>& done)
        : jobs_(jobs), ahead_(ahead), output_(output), between_(between), done_(done) {}

    /// The next job, as soon as it may begin. Nothing if there is none, or all are to end.
    std::optional<std::size_t> Next() {
        std::unique_lock lock(mutex_);
        moved_.wait(lock, [this] { return failure_ || next_ == jobs_ || next_ < head_ + ahead_; });
        return failure_ || next_ == jobs_ ? std::nullopt : std::optional(next_++);
    }

    /// Moves what a job has written so far to the output or to its file.
    void Take(std::size_t number, Waiting& result) {
        try {
            if (number == head_) {
                Deliver(result);
            } else {
                Keep(result);
            }
        } catch (...) {
            End(std::current_exception());
            throw Interruption();
        }
    }

    /// Takes the result of a job that is done, and writes those that are next.
    void Finish(std::size_t number, Waiting result) {
        std::unique_lock lock(mutex_);
        finished_.emplace(number, std::move(result));
        done_(++doneCount_);
        // Whoever writes finds what others have finished meanwhile.
        for (auto first = finished_.find(head_); !writing_ && first != finished_.end();
             first = finished_.find(head_)) {
            Waiting next = std::move(first->second);
            finished_.erase(first);
            writing_ = true;
            lock.unlock();
            Deliver(next);
            lock.lock();
            writing_ = false;
            ++head_;
            moved_.notify_all();
        }
    }

    /// Ends all jobs. The first reason is kept.
    void End(const std::exception_ptr& reason) {
        const std::lock_guard lock(mutex_);
        failure_ = failure_ ? failure_ : reason;
        moved_.notify_all();
        Interrupt();
    }

    [[nodiscard]] const std::exception_ptr& Failure() const noexcept { return failure_; }

private:
    static void Keep(Waiting& result) {
        if (!result.file) {
            result.file = TemporaryFile("").Create();
        }
        if (std::fwrite(result.text.data(), 1, result.text.size(), result.file.get()) !=
            result.text.size()) {
            Fail("a temporary file cannot be written");
        }
        result.text.clear();
    }

    void Deliver(Waiting& result) {
        if (!result.file && result.text.empty()) {
            return;
        }
        if (!result.hasBegun && hasWritten_) {
            output_.Write(between_);
        }
        result.hasBegun = true;
        hasWritten_ = true;
        if (result.file) {
            if (std::fflush(result.file.get()) != 0 ||
                std::fseek(result.file.get(), 0, SEEK_SET) != 0) {
                Fail("a temporary file cannot be written");
            }
            std::array<char, bufferSize> bytes;
            while (const std::size_t count =
                       std::fread(bytes.data(), 1, bytes.size(), result.file.get())) {
                output_.Write({bytes.data(), count});
            }
            if (std::ferror(result.file.get()) != 0) {
                Fail("a temporary file cannot be read");
            }
            result.file.reset();
        }
        output_.Write(result.text);
        result.text.clear();
    }

    const std::size_t jobs_;
    const std::size_t ahead_;
    TextSink& output_;        // of the thread whose job is at the head
    bool hasWritten_ = false; // likewise
    const std::string_view between_;
    const std::function<void(std::size_t)>& done_;
    std::atomic<std::size_t> head_ = 0; // the first job whose result is not complete in the output

    std::mutex mutex_; // of all below, and of changes of head_
    std::condition_variable moved_;
    std::size_t next_ = 0; // job to begin
    std::map<std::size_t, Waiting> finished_;
    bool writing_ = false; // a thread is writing a finished result
    std::size_t doneCount_ = 0;
    std::exception_ptr failure_;
};

/// What one job writes.
class Result : public TextSink {
public:
    Result(Line& line, std::size_t number) : line_(line), number_(number) {}

    void Write(std::string_view text) override {
        waiting_.text += text;
        if (waiting_.text.size() >= bufferSize) {
            line_.Take(number_, waiting_);
        }
    }
    void Finish() { line_.Finish(number_, std::move(waiting_)); }

private:
    Line& line_;
    const std::size_t number_;
    Waiting waiting_;
};

void Work(Line& line, const NumberedJob& job) {
    try {
        while (const auto number = line.Next()) {
            Result result(line, *number);
            job(*number, result);
            result.Finish();
        }
    } catch (...) {
        line.End(std::current_exception());
    }
}

/// Starts up to `count` threads; fewer if the system has no more.
std::vector<std::thread> Start(std::size_t count, Line& line, const NumberedJob& job) {
    const NoInterruptsForThreads blocked;
    std::vector<std::thread> threads;
    threads.reserve(count);
    try {
        while (threads.size() < count) {
            threads.emplace_back([&line, &job] { Work(line, job); });
        }
    } catch (const std::system_error&) {
        // The jobs are shared by those that there are.
    }
    return threads;
}

} // namespace

void RunSideBySide(std::size_t jobs, std::size_t threads, TextSink& output,
                   std::string_view between, const NumberedJob& job,
                   const std::function<void(std::size_t)>& done) {
    const std::size_t useful = std::max<std::size_t>(std::min(jobs, threads), 1);
    Line line(jobs, useful * jobsAhead, output, between, done);
    std::vector<std::thread> others = Start(useful - 1, line, job);
    Work(line, job);
    for (std::thread& thread : others) {
        thread.join();
    }
    if (line.Failure()) {
        static_cast<void>(Interrupted()); // the request to the other jobs
        std::rethrow_exception(line.Failure());
    }
}

} // namespace busquill::cli
