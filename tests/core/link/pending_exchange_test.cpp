#include "link/pending_exchange.h"
#include "support/link_fixture.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using State = PendingExchange::State;

class PendingExchanges : public LinkFixture {
protected:
    static bool Ends(const PendingExchange& exchange) {
        return Eventually([&] { return exchange.GetState() != State::Pending; });
    }
};

TEST_F(PendingExchanges, TellHowTheyEnded) {
    OpenLink();
    const PendingExchange good(*link, RunCommand(CmdStartTrace));
    ASSERT_TRUE(Ends(good));
    EXPECT_EQ(good.GetState(), State::Succeeded);
    line->SetAnswer([](const Bytes&, int) { return Bytes{'?'}; });
    const PendingExchange bad(*link, RunCommand(CmdStartTrace));
    ASSERT_TRUE(Ends(bad));
    EXPECT_EQ(bad.GetState(), State::Failed);
}

TEST_F(PendingExchanges, SucceedAtOnceWithoutABoard) {
    const PendingExchange exchange(*link, RunCommand(CmdStartTrace));
    EXPECT_EQ(exchange.GetState(), State::Succeeded);
}

TEST_F(PendingExchanges, MayBeForgottenWhileTheBoardOwesAnAnswer) {
    OpenLink();
    UseSilence();
    line->SetClockRuns(false);
    {
        const PendingExchange exchange(*link, RunCommand(CmdStartTrace));
        EXPECT_EQ(exchange.GetState(), State::Pending);
    }
    line->SetClockRuns(true);
    EXPECT_TRUE(Eventually([&] { return link->IsIdle(); }));
}

} // namespace
} // namespace busquill::test
