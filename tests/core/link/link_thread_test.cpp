#include "link/link_port.h"
#include "link/link_thread.h"
#include "link/reply_ring.h"
#include "support/link_fixture.h"

#if defined(__linux__)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace busquill::test {
namespace {

using namespace std::chrono_literals;

/// A port whose reader waits until the test releases it, whoever wakes it.
class StuckPort final : public LinkPort {
public:
    [[nodiscard]] std::string Label() const override { return "stuck"; }
    [[nodiscard]] bool IsGone() const noexcept override { return false; }
    [[nodiscard]] bool IsOpen() const override { return true; }
    [[nodiscard]] bool NeedsKeepAlive() const noexcept override { return false; }
    [[nodiscard]] int ChangeBaud(int /*rate*/) override { return 0; }
    bool Send(std::span<const std::uint8_t> /*bytes*/) override { return true; }
    void AwaitStep(ReplyRing& /*ring*/, std::size_t /*wanted*/) override {
        waits.set_value();
        mayGo.get_future().wait();
    }
    [[nodiscard]] ReplyState PollReply(LinkRequest& /*running*/, ReplyRing& /*ring*/) override {
        return {};
    }
    void Close() override {}

    std::promise<void> waits;
    std::promise<void> mayGo;
};

TEST(LinkThreadTest, ABusyThreadIsGivenElevenTenthsOfASecond) {
    MainThread mainThread;
    const auto ring = std::make_unique<ReplyRing>();
    const auto port = std::make_shared<StuckPort>();
    LinkThread thread(
        port, *ring, [](LinkPort&) { return std::size_t{1}; }, mainThread);
    port->waits.get_future().wait();
    const auto waited = ShortestTimeOf([&] { EXPECT_FALSE(thread.Stop()); }, 1100ms);
    EXPECT_GE(waited, 1100ms);
    EXPECT_LT(waited, 1400ms);
    EXPECT_TRUE(thread.Running());
    port->mayGo.set_value();
    EXPECT_TRUE(thread.Stop());
}

#if defined(__linux__)
TEST_F(LinkFixture, TheLinksThreadHasLowerPriority) {
    OpenLink();
    std::promise<int> nice;
    link->Submit(NewRequest(CmdStartTrace, [&](const LinkRequestPtr&) {
        nice.set_value(::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())));
    }));
    constexpr int lowest = 19;
    const int own = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    EXPECT_EQ(nice.get_future().get(), std::min(own + 1, lowest));
}
#endif

} // namespace
} // namespace busquill::test
