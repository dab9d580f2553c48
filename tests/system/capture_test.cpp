// Captures over a real pseudo terminal, compared with the traffic that the board has seen.

#include "support/capture_over_wire.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using boardsim::GetBit;
using boardsim::GetField;
using testing::IsEmpty;

bool IsCommand(const boardsim::Record& record, std::uint64_t command) {
    return GetBit(record, 95) && GetField(record, 64, 4) == command;
}

TEST_F(CaptureOverWire, TriggersWhereAScanOfTheTrafficDoes) {
    Connect({"--buffer", "4", "--seed", "5"});
    Expect(0, 64, 4, 7); // a memory write ...
    Expect(0, 95, 1, 1); // ... in its address phase
    document->setup.levels[0].ifExpr = ParseExpression("E1");
    document->setup.levels[0].occurs = 40;
    Go();
    ASSERT_TRUE(Complete());

    const auto traffic = boardsim::MakeRecords(boardsim::Family::Pci32, 5, 20000);
    std::size_t trigger = 0;
    for (int found = 0; found < 40; ++trigger) {
        found += IsCommand(traffic[trigger], 7) ? 1 : 0;
    }
    --trigger;
    const std::size_t before = std::min<std::size_t>(trigger, 2048);
    EXPECT_EQ(document->Marker(0, false), static_cast<std::int64_t>(before));
    const auto captured = Captured();
    ASSERT_EQ(captured.size(), before + 2048);
    EXPECT_TRUE(std::equal(captured.begin(), captured.end(),
                           traffic.begin() + static_cast<std::ptrdiff_t>(trigger - before)));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CaptureOverWire, StoresOnlyTheSamplesOfTheSetup) {
    Connect({"--buffer", "2", "--seed", "9", "--model", "PCIWren"});
    Expect(0, 95, 1, 1);
    Expect(1, 64, 4, 7);
    Expect(1, 95, 1, 1);
    document->setup.levels[0].ifExpr = ParseExpression("E2");
    document->setup.levels[0].occurs = 30;
    document->setup.levels[0].storeExpr = ParseExpression("E1.~E2");
    document->setup.triggerPosition = 2;
    Go();
    ASSERT_TRUE(Complete());

    auto traffic = boardsim::MakeRecords(boardsim::Family::Pci32, 9, 60000);
    auto trigger = traffic.begin() - 1;
    for (int found = 0; found < 30; ++found) {
        trigger = std::find_if(trigger + 1, traffic.end(),
                               [](const auto& record) { return IsCommand(record, 7); });
    }
    std::vector<std::uint64_t> expected;
    for (auto at = traffic.begin(); at != traffic.end() && expected.size() < 2100; ++at) {
        if (at == trigger || (GetBit(*at, 95) && !IsCommand(*at, 7))) {
            expected.push_back(GetField(*at, 0, 32));
        }
    }
    const auto captured = Captured();
    ASSERT_GT(captured.size(), 1536U);
    ASSERT_LE(captured.size(), expected.size());
    for (std::size_t i = 0; i < captured.size(); ++i) {
        ASSERT_EQ(GetField(captured[i], 0, 32), expected[i]) << i;
    }
}

TEST_F(CaptureOverWire, SamplesAreReadWhileMoreArrive) {
    Connect({"--buffer", "16"});
    Go();
    ASSERT_TRUE(FollowUntil([&] { return !document->CaptureActive(); }));
    // Like two windows that scroll about: each requests the samples that it lacks.
    const auto total = static_cast<std::uint32_t>(document->SampleCount(false));
    std::uint32_t wanted = 0;
    std::size_t values = 0;
    ASSERT_TRUE(FollowUntil([&] {
        wanted = (wanted * 1103515245 + 12345) % total;
        if (upload.IsUploading()) {
            upload.SetPriorityIndex(wanted);
        }
        for (const auto& signal : document->stateList.All()) {
            values += document->IsValidSample(wanted, false) && signal->Bit(wanted) ? 1 : 0;
        }
        static_cast<void>(store.GetSample(wanted));
        return AllValid();
    }));
    EXPECT_GT(values, 0U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CaptureOverWire, StopWhenTheBufferIsAboutToFill) {
    Connect({"--buffer", "1"});
    for (int i = 0; i < 3; ++i) {
        Go();
        document->Run().Stop();
        ASSERT_TRUE(Complete());
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CaptureOverWire, ADocumentClosedDuringTheUpload) {
    Connect({"--buffer", "64"});
    Go();
    ASSERT_TRUE(FollowUntil([&] { return last.indicator == RunIndicator::Uploading; }));
    const auto start = std::chrono::steady_clock::now();
    document.reset();
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

TEST_F(CaptureOverWire, RepeatedRuns) {
    Connect({"--buffer", "64"});
    for (int i = 0; i < 3; ++i) {
        Go();
        ASSERT_TRUE(FollowUntil([&] { return last.indicator == RunIndicator::Uploading; }));
        EXPECT_EQ(document->SampleCount(false), 32768);
    }
    Go();
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_TRUE(capture.IsRunning() || !document->CaptureActive());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
