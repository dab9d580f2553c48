#include "link/reply_ring.h"

#include <gtest/gtest.h>

#include <memory>

namespace busquill {
namespace {

using Bytes = std::vector<std::uint8_t>;

class ReplyRingTest : public testing::Test {
protected:
    /// Moves both indexes to `place`.
    void GoTo(std::int32_t index) {
        while (ring->WriteIndex() != index) {
            ring->Put(0x55);
        }
        ring->Discard();
    }
    std::unique_ptr<ReplyRing> ring = std::make_unique<ReplyRing>();
};

TEST_F(ReplyRingTest, GivesBytesInTheOrderOfTheirArrival) {
    ring->Put(1);
    ring->Put(2);
    EXPECT_EQ(ring->Unread(), 2);
    EXPECT_EQ(ring->Take(), 1);
    EXPECT_EQ(ring->Unread(), 1);
    EXPECT_EQ(ring->TakeAll(), Bytes{2});
    EXPECT_EQ(ring->Unread(), 0);
}

TEST_F(ReplyRingTest, WrapsAtAHundredThousand) {
    GoTo(99998);
    for (std::uint8_t byte = 1; byte <= 4; ++byte) {
        ring->Put(byte);
    }
    EXPECT_EQ(ring->WriteIndex(), 2);
    EXPECT_EQ(ring->ReadIndex(), 99998);
    EXPECT_EQ(ring->Unread(), 4);
    EXPECT_EQ(ring->TakeAll(), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(ring->ReadIndex(), 2);
}

TEST_F(ReplyRingTest, BytesGoInAndOutTogetherAcrossTheWrap) {
    GoTo(99998);
    ring->Put(Bytes{1, 2, 3, 4, 5, 6});
    EXPECT_EQ(ring->WriteIndex(), 4);
    EXPECT_EQ(ring->Unread(), 6);
    Bytes taken(3);
    ring->Take(taken);
    EXPECT_EQ(taken, (Bytes{1, 2, 3}));
    EXPECT_EQ(ring->ReadIndex(), 1);
    ring->Skip(2);
    EXPECT_EQ(ring->TakeAll(), Bytes{6});
}

TEST_F(ReplyRingTest, SkipsAcrossTheWrap) {
    GoTo(99998);
    ring->Put(Bytes{1, 2, 3});
    ring->Skip(2);
    EXPECT_EQ(ring->ReadIndex(), 0);
    EXPECT_EQ(ring->TakeAll(), Bytes{3});
}

TEST_F(ReplyRingTest, AWriterThatLapsTheReaderDestroysData) {
    for (std::int32_t i = 0; i < ReplyRing::size + 3; ++i) {
        ring->Put(7);
    }
    EXPECT_EQ(ring->Unread(), 3);
}

TEST_F(ReplyRingTest, DiscardsUnreadBytesAndKeepsItsPosition) {
    ring->Put(1);
    ring->Discard();
    EXPECT_EQ(ring->Unread(), 0);
    EXPECT_EQ(ring->ReadIndex(), 1);
}

TEST_F(ReplyRingTest, RestartsAtZero) {
    ring->Put(1);
    ring->Reset();
    EXPECT_EQ(ring->ReadIndex(), 0);
    EXPECT_EQ(ring->WriteIndex(), 0);
}

TEST_F(ReplyRingTest, TheByteAfterTheRingIsZero) {
    GoTo(99999);
    ring->Put(9);
    EXPECT_EQ(ring->At(99999), 9);
    EXPECT_EQ(ring->At(100000), 0);
}

} // namespace
} // namespace busquill
