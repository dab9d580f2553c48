#include "cli/rows_ahead.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <thread>

namespace busquill::cli {
namespace {

using namespace std::chrono_literals;

/// Gives pieces of three samples, always in the same memory, as a stream does.
class Pieces {
public:
    explicit Pieces(int count) : count_(count) {}

    const SampleRows* Next() {
        if (given_ == count_) {
            return nullptr;
        }
        rows_.Clear();
        for (int i = 0; i < 3; ++i) {
            rows_.Add(given_ * 3 + i, SampleRecord{static_cast<std::uint8_t>(given_)});
        }
        ++given_;
        return &rows_;
    }
    RowsAhead::Source Source() {
        return [this] { return Next(); };
    }
    [[nodiscard]] int Given() const { return given_; }

private:
    const int count_;
    std::atomic<int> given_ = 0;
    SampleRows rows_;
};

/// Waits until the thread has read so many pieces, and a little longer for one too many.
void ExpectRead(const Pieces& pieces, int wanted) {
    for (int i = 0; i < 10'000 && pieces.Given() < wanted; ++i) {
        std::this_thread::sleep_for(1ms);
    }
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(pieces.Given(), wanted);
}

TEST(RowsAhead, AllPiecesArriveInOrder) {
    for (const int count : {0, 1, 3, 4, 5, 1000}) {
        Pieces source(count);
        Pieces wanted(count);
        RowsAhead ahead(source.Source());
        for (const SampleRows* rows = wanted.Next(); rows != nullptr; rows = wanted.Next()) {
            const SampleRows* const next = ahead.Next();
            ASSERT_NE(next, nullptr);
            EXPECT_EQ(next->numbers, rows->numbers);
            EXPECT_EQ(next->records, rows->records);
        }
        EXPECT_EQ(ahead.Next(), nullptr);
        EXPECT_EQ(ahead.Next(), nullptr);
    }
}

TEST(RowsAhead, TakesNoMoreMemoryForALongCapture) {
    Pieces source(1000);
    RowsAhead ahead(source.Source());
    ExpectRead(source, 4);
    EXPECT_NE(ahead.Next(), nullptr);
    EXPECT_NE(ahead.Next(), nullptr);
    ExpectRead(source, 5); // the second piece is still the caller's
}

TEST(RowsAhead, APieceStaysAsItIsWhileTheThreadReadsOn) {
    Pieces source(1000);
    RowsAhead ahead(source.Source());
    for (int i = 0; i < 10; ++i) {
        const SampleRows* const rows = ahead.Next();
        ASSERT_NE(rows, nullptr);
        ExpectRead(source, 4 + i);
        EXPECT_EQ(rows->numbers[0], i * 3);
    }
}

TEST(RowsAhead, EndsWithPiecesThatNobodyTook) {
    Pieces source(1000);
    {
        RowsAhead ahead(source.Source());
        EXPECT_NE(ahead.Next(), nullptr);
        ExpectRead(source, 4);
    }
    EXPECT_EQ(source.Given(), 4);
}

TEST(RowsAhead, AFailureArrivesAfterThePiecesBefore) {
    Pieces source(2);
    RowsAhead ahead([&]() -> const SampleRows* {
        const SampleRows* const rows = source.Next();
        return rows != nullptr ? rows : throw std::runtime_error("no memory");
    });
    EXPECT_NE(ahead.Next(), nullptr);
    EXPECT_NE(ahead.Next(), nullptr);
    EXPECT_THROW((void)ahead.Next(), std::runtime_error);
}

} // namespace
} // namespace busquill::cli
