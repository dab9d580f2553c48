#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/side_by_side.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace busquill::cli {
namespace {

using namespace std::chrono_literals;

class Gathered : public TextSink {
public:
    void Write(std::string_view text) override { all += text; }
    std::string all;
};

class FullDisk : public TextSink {
public:
    void Write(std::string_view /*text*/) override { Fail("the disk is full"); }
};

template <typename Condition>
void WaitUntil(Condition holds) {
    for (int i = 0; i < 10'000 && !holds(); ++i) {
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_TRUE(holds());
}

void Ignore(std::size_t /*done*/) {}

std::string Lines(std::size_t number, std::size_t count) {
    std::string lines;
    for (std::size_t i = 0; i < count; ++i) {
        lines += std::to_string(number) + " " + std::to_string(i) + "\n";
    }
    return lines;
}

TEST(SideBySide, ResultsArriveInTheOrderOfTheJobsWhateverTheirLength) {
    const std::vector<std::size_t> lengths = {3, 60'000, 0, 20'000, 1, 0, 40'000, 7, 8, 9, 30'000};
    std::string wanted;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const std::string lines = Lines(i, lengths[i]);
        wanted += (wanted.empty() || lines.empty() ? "" : "--\n") + lines;
    }
    for (const std::size_t threads : {1, 2, 3, 11, 30}) {
        Gathered text;
        RunSideBySide(
            lengths.size(), threads, text, "--\n",
            [&](std::size_t number, TextSink& result) {
                for (std::size_t i = 0; i < lengths[number]; ++i) {
                    result.Write(std::to_string(number) + " ");
                    result.Write(std::to_string(i) + "\n");
                }
            },
            Ignore);
        EXPECT_EQ(text.all.size(), wanted.size());
        EXPECT_TRUE(text.all == wanted) << threads;
    }
}

TEST(SideBySide, ASlowFirstJobDoesNotKeepTheOthersFromRunning) {
    constexpr std::size_t others = 3;
    std::atomic<std::size_t> finished = 0;
    Gathered text;
    RunSideBySide(
        others + 1, 2, text, "",
        [&](std::size_t number, TextSink& result) {
            if (number == 0) {
                WaitUntil([&] { return finished == others; });
            }
            result.Write(Lines(number, 20'000));
        },
        [&](std::size_t done) { finished = done; });
    EXPECT_TRUE(text.all ==
                Lines(0, 20'000) + Lines(1, 20'000) + Lines(2, 20'000) + Lines(3, 20'000));
}

TEST(SideBySide, TheFirstUnfinishedJobWritesStraightToTheOutput) {
    Gathered text;
    RunSideBySide(
        1, 1, text, "",
        [&](std::size_t /*number*/, TextSink& result) {
            result.Write(std::string(1 << 20, 'a'));
            EXPECT_EQ(text.all.size(), std::size_t{1} << 20);
            result.Write("b");
        },
        Ignore);
    EXPECT_EQ(text.all.back(), 'b');
}

/// Runs two jobs without a folder for temporary files. The first one waits until the second one,
/// with a result of some bytes, is done or has failed.
std::string RunWithoutTemporaryFiles(std::size_t bytes) {
    const char* const before = std::getenv("TMPDIR");
    const std::string folder = before != nullptr ? before : "";
    ::setenv("TMPDIR", "/nonexistent", 1);
    std::atomic<bool> ended = false;
    Gathered text;
    std::string message;
    try {
        RunSideBySide(
            2, 2, text, "",
            [&](std::size_t number, TextSink& result) {
                if (number == 0) {
                    WaitUntil([&] { return ended.load(); });
                    return;
                }
                try {
                    for (std::size_t i = 0; i < bytes; ++i) {
                        result.Write("a");
                    }
                } catch (const ExitRequest&) {
                    ended = true;
                    throw;
                }
                ended = true;
            },
            Ignore);
        EXPECT_EQ(text.all.size(), bytes);
    } catch (const ExitRequest& request) {
        message = request.message;
    }
    before != nullptr ? ::setenv("TMPDIR", folder.c_str(), 1) : ::unsetenv("TMPDIR");
    return message;
}

TEST(SideBySide, LongResultsWaitInTemporaryFilesAndShortOnesInMemory) {
    EXPECT_EQ(RunWithoutTemporaryFiles(60'000), "");
    EXPECT_EQ(RunWithoutTemporaryFiles(70'000), "no temporary file can be made");
}

TEST(SideBySide, NoJobBeginsTooFarAhead) {
    constexpr std::size_t threads = 2;
    std::mutex mutex;
    std::set<std::size_t> begun;
    Gathered text;
    RunSideBySide(
        100, threads, text, "",
        [&](std::size_t number, TextSink& /*result*/) {
            const auto most = [&] {
                const std::lock_guard lock(mutex);
                return *begun.rbegin();
            };
            {
                const std::lock_guard lock(mutex);
                begun.insert(number);
            }
            if (number == 0) {
                WaitUntil([&] { return most() == threads * jobsAhead - 1; });
                std::this_thread::sleep_for(50ms);
                EXPECT_EQ(most(), threads * jobsAhead - 1);
            }
        },
        Ignore);
    EXPECT_EQ(begun.size(), 100U);
}

TEST(SideBySide, AsManyJobsRunTogetherAsThereAreThreads) {
    constexpr int threads = 4;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<bool> met = false;
    Gathered text;
    RunSideBySide(
        20, threads, text, "",
        [&](std::size_t /*number*/, TextSink& /*result*/) {
            const int now = ++running;
            met = met || now == threads;
            most = std::max(most.load(), now);
            WaitUntil([&] { return met.load(); });
            --running;
        },
        Ignore);
    EXPECT_EQ(most, threads);
}

/// Works until it is interrupted.
void WorkUntilInterrupted() {
    for (int i = 0; i < 10'000; ++i) {
        EndIfInterrupted();
        std::this_thread::sleep_for(1ms);
    }
    ADD_FAILURE() << "no interrupt";
}

TEST(SideBySide, TheFirstFailureInterruptsTheOthersAndIsReported) {
    constexpr int threads = 4;
    Gathered text;
    std::atomic<int> begun = 0;
    std::atomic<int> interrupted = 0;
    const auto run = [&] {
        RunSideBySide(
            100, threads, text, "",
            [&](std::size_t number, TextSink& /*result*/) {
                ++begun;
                if (number == 2) {
                    WaitUntil([&] { return begun == threads; });
                    WrongUse("no such pattern");
                }
                try {
                    WorkUntilInterrupted();
                } catch (const Interruption&) {
                    ++interrupted;
                    throw;
                }
            },
            Ignore);
    };
    try {
        run();
        FAIL();
    } catch (const ExitRequest& request) {
        EXPECT_EQ(request.status, ExitStatus::WrongUse);
        EXPECT_EQ(request.message, "no such pattern");
    }
    EXPECT_EQ(interrupted, threads - 1);
    EXPECT_EQ(begun, threads);
    EXPECT_FALSE(Interrupted()); // nothing is left for what comes next
}

TEST(SideBySide, AnOutputThatFailsEndsAllJobs) {
    constexpr int threads = 3;
    FullDisk disk;
    std::atomic<int> begun = 0;
    const auto run = [&] {
        RunSideBySide(
            1000, threads, disk, "",
            [&](std::size_t number, TextSink& result) {
                ++begun;
                if (number != 0) {
                    WorkUntilInterrupted();
                }
                WaitUntil([&] { return begun == threads; });
                result.Write(std::string(1 << 20, 'a'));
                ADD_FAILURE() << "the failure was not noticed";
            },
            Ignore);
    };
    try {
        run();
        FAIL();
    } catch (const ExitRequest& request) {
        EXPECT_EQ(request.message, "the disk is full");
    }
    EXPECT_EQ(begun, threads);
    EXPECT_FALSE(Interrupted());
}

TEST(SideBySide, NoJobsAreDoneAtOnce) {
    Gathered text;
    RunSideBySide(
        0, 8, text, "x", [](std::size_t, TextSink&) { FAIL(); }, Ignore);
    EXPECT_EQ(text.all, "");
}

} // namespace
} // namespace busquill::cli
