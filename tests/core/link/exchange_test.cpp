#include "link/exchange.h"
#include "support/link_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Exchanges : public LinkFixture {
protected:
    /// The board does not acknowledge the commands of these functions.
    void Refuse(std::vector<std::uint8_t> functions) {
        line->SetAnswer([this, functions](const Bytes& sent, int baud) {
            const bool refused = sent.size() == 2 && sent[0] == 2 &&
                                 std::count(functions.begin(), functions.end(), sent[1]) > 0;
            return refused ? Bytes{} : board.Answer(sent, baud);
        });
    }
    static std::vector<RunStep> Steps(IfRefused second) {
        std::vector<RunStep> steps;
        steps.push_back({RunCommand(CmdStartTrace), "first"});
        steps.push_back({RunCommand(CmdStopTrace), "second", second});
        steps.push_back({RunCommand(CmdStartSearch), "third"});
        return steps;
    }
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = board.functions; });
        return functions;
    }
};

TEST_F(Exchanges, StepsAreSentInOrder) {
    OpenBoard("PCIKite");
    line->Do([&] { board.functions.clear(); });
    EXPECT_EQ(SendSteps(*link, Steps(IfRefused::End), prompts), Sent::All);
    EXPECT_THAT(Functions(), ElementsAre(11, 12, 13));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(Exchanges, ARefusedStepIsReportedAndTheOthersFollow) {
    OpenBoard("PCIKite");
    line->Do([&] { board.functions.clear(); });
    Refuse({12});
    EXPECT_EQ(SendSteps(*link, Steps(IfRefused::GoOn), prompts), Sent::Some);
    EXPECT_THAT(Functions(), ElementsAre(11, 13));
    EXPECT_THAT(prompts.Texts(), ElementsAre("second"));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
}

TEST_F(Exchanges, ARefusedStepMayEndTheSequence) {
    OpenBoard("PCIKite");
    line->Do([&] { board.functions.clear(); });
    Refuse({12});
    EXPECT_EQ(SendSteps(*link, Steps(IfRefused::End), prompts), Sent::Ended);
    EXPECT_THAT(Functions(), ElementsAre(11));
    EXPECT_THAT(prompts.Texts(), ElementsAre("second"));
}

TEST_F(Exchanges, AStatusIsReadWithTheBytesAfterIt) {
    OpenBoard("PCIKite");
    line->Do([&] { board.contents[801] = {0x82, 7}; });
    std::array<std::uint8_t, 2> status{};
    const StatusRegister from{801, 1, std::chrono::milliseconds(200), "no status"};
    EXPECT_TRUE(ReadStatus(*link, from, status, prompts));
    EXPECT_THAT(status, ElementsAre(0x82, 7));
}

TEST_F(Exchanges, WithoutABoardEachPollReadsThePreset) {
    settings.WriteProfileString(setup, "ComPort", "COM1");
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    prompts.Forget();
    const StatusRegister from{801, 1, std::chrono::milliseconds(200), "no status"};
    std::array<std::uint8_t, 1> status{0x82};
    EXPECT_TRUE(ReadStatus(*link, from, status, prompts));
    EXPECT_EQ(status[0], 1);
}

TEST_F(Exchanges, AStatusThatCannotBeReadIsReported) {
    OpenBoard("PCIKite");
    UseSilence();
    const StatusRegister from{801, 1, std::chrono::milliseconds(200), "no status"};
    std::array<std::uint8_t, 1> status{};
    EXPECT_FALSE(ReadStatus(*link, from, status, prompts));
    EXPECT_THAT(prompts.Texts(), ElementsAre("no status"));
}

} // namespace
} // namespace busquill::test
