#include "link/analyzer_commands.h"
#include "link/command_rows.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace busquill {
namespace {

using States = std::vector<std::int32_t>;

States SequenceOf(std::int32_t command) {
    States states;
    std::int32_t state = 0;
    while (state != finalState && states.size() < 20) {
        state = NextState(command, state);
        states.push_back(state);
    }
    return states;
}

const std::map<std::int32_t, States>& ExpectedSequences() {
    static const States write{1, 2, 3, 4, 5, 14, 15, 39};
    static const States rowWrite{1, 2, 3, 4, 5, 16, 17, 39};
    static const std::map<std::int32_t, States> expected{
        {CmdDownloadRecord, {1, 2, 3, 4, 5, 6, 7, 39}},
        {CmdSetBaudRate, {1, 2, 3, 4, 5, 8, 9, 10, 39}},
        {CmdReadMemory, {1, 2, 3, 4, 5, 11, 39}},
        {CmdReadSamplesBefore, {1, 2, 3, 4, 5, 12, 39}},
        {CmdReadSamplesAfter, {1, 2, 3, 4, 5, 13, 39}},
        {CmdTraceControl, write},
        {CmdTraceEvents, rowWrite},
        {CmdTraceParams, write},
        {CmdStartTrace, {18, 39}},
        {CmdStopTrace, {19, 39}},
        {CmdSearchControl, write},
        {CmdSearchCondition, write},
        {CmdSearchSample, rowWrite},
        {CmdStartSearch, {20, 39}},
        {CmdPerformanceSetup, write},
        {CmdStartPerformance, {21, 39}},
        {CmdStopPerformance, {22, 39}},
        {CmdAnomalyChecklist, write},
        {CmdStartAnomaly, {23, 39}},
        {CmdStopAnomaly, {24, 39}},
        {CmdStartConfigScan, {25, 39}},
        {CmdStopConfigScan, {26, 39}},
        {CmdConfigScanControl, write},
        {CmdComplianceControl, write},
        {CmdComplianceTestId, write},
        {CmdStartCompliance, {27, 39}},
        {CmdStopCompliance, {28, 39}},
        {CmdMasterSetup, write},
        {CmdMasterAddress, write},
        {CmdMasterControl, write},
        {CmdMasterFileData, write},
        {CmdExerciserGo, {29, 39}},
        {CmdExerciserStop, {30, 39}},
        {CmdStartStimulus, {31, 39}},
        {CmdStopStimulus, {32, 39}},
        {CmdStimulusControl, write},
        {CmdStimulusCondition, rowWrite},
        {CmdComplianceTargetAddress, write},
        {CmdReadZoomBefore, {1, 2, 3, 4, 5, 33, 39}},
        {CmdReadZoomAfter, {1, 2, 3, 4, 5, 34, 39}},
        {CmdSetBusConfig, write},
        {CmdMasterAttributes, write},
        {CmdStimulusEvents, rowWrite},
        {CmdTargetSetup, write},
        {CmdTargetAddress, write},
        {CmdTargetRead, {1, 2, 3, 4, 5, 35, 39}},
        {CmdTargetData, {1, 2, 3, 4, 5, 36, 15, 39}},
        {CmdStartBackplane, {37, 39}},
        {CmdStopBackplane, {38, 39}},
        {CmdBackplaneSignals, write},
        {CmdBackplaneSensitivity, write},
        {CmdUsbKeepAlive, {1, 39}},
    };
    return expected;
}

TEST(CommandStateTableTest, RunsEveryCommandThroughItsStates) {
    ASSERT_EQ(ExpectedSequences().size(), 52U);
    for (const auto& [command, states] : ExpectedSequences()) {
        EXPECT_EQ(SequenceOf(command), states) << LinkCommandName(command);
    }
}

TEST(CommandStateTableTest, HasNoOtherRowsAndEndsWithCommandZero) {
    std::size_t rows = 0;
    for (const auto& [command, states] : ExpectedSequences()) {
        rows += states.size();
    }
    EXPECT_EQ(CommandStateTable().size(), rows + 1);
    EXPECT_EQ(CommandStateTable().back().command, 0);
    for (const CommandStateRow& row : CommandStateTable().first(rows)) {
        EXPECT_NE(row.command, 0);
    }
}

TEST(CommandStateTableTest, HasNoNextStateForUnknownStates) {
    EXPECT_EQ(NextState(0, 0), 0);
    EXPECT_EQ(NextState(53, 0), 0);
    EXPECT_EQ(NextState(-1, 0), 0);
    EXPECT_EQ(NextState(CmdReadMemory, 10), 0);
    EXPECT_EQ(NextState(CmdReadMemory, finalState), 0);
}

TEST(CommandStateTableTest, TargetDataSendsItsFunctionAndThenTheSharedPayloadState) {
    EXPECT_EQ(NextState(CmdTargetData, 5), 36);
    EXPECT_EQ(FindState(36)->function, 10);
    EXPECT_EQ(NextState(CmdTargetData, 36), 15);
    EXPECT_EQ(FindState(15)->sends, StateSends::Payload);
}

TEST(LinkStates, DownloadAndBaudSendAPayloadToo) {
    EXPECT_EQ(FindState(7)->sends, StateSends::Payload);
    EXPECT_EQ(FindState(9)->sends, StateSends::Payload);
    EXPECT_EQ(FindState(17)->sends, StateSends::Payload);
}

TEST(LinkStates, OnlyTheSixDataStatesReceiveData) {
    const std::map<std::int32_t, StateReply> dataStates{
        {11, StateReply::Bytes},   {12, StateReply::Samples}, {13, StateReply::Samples},
        {33, StateReply::Samples}, {34, StateReply::Samples}, {35, StateReply::Bytes},
    };
    for (std::int32_t state = 1; state <= 38; ++state) {
        const auto found = dataStates.find(state);
        const StateReply expected =
            found == dataStates.end() ? StateReply::Acknowledgement : found->second;
        EXPECT_EQ(FindState(state)->reply, expected) << state;
    }
}

TEST(LinkStates, SendTheFunctionCodeOfTheirRow) {
    const std::map<std::int32_t, int> functions{
        {6, 30},  {8, 2},   {10, 29}, {11, 1},  {12, 3},  {13, 5},  {14, 2},  {16, 2},
        {18, 11}, {19, 12}, {20, 13}, {21, 15}, {22, 16}, {23, 17}, {24, 18}, {25, 21},
        {26, 22}, {27, 19}, {28, 20}, {29, 23}, {30, 24}, {31, 25}, {32, 26}, {33, 35},
        {34, 36}, {35, 9},  {36, 10}, {37, 39}, {38, 40}};
    for (std::int32_t state = 1; state <= 38; ++state) {
        const auto found = functions.find(state);
        if (found == functions.end()) {
            EXPECT_NE(FindState(state)->sends, StateSends::Function) << state;
            continue;
        }
        EXPECT_EQ(FindState(state)->sends, StateSends::Function) << state;
        EXPECT_EQ(FindState(state)->function, found->second) << state;
    }
}

TEST(LinkStates, AreNumberedOneToThirtyEight) {
    EXPECT_EQ(FindState(0), nullptr);
    EXPECT_EQ(FindState(-1), nullptr);
    EXPECT_EQ(FindState(39), nullptr);
    EXPECT_NE(FindState(38), nullptr);
}

TEST(LinkCommands, HaveTheirNumbersAndNames) {
    EXPECT_EQ(LinkCommandName(1), "CmdDownloadRecord");
    EXPECT_EQ(LinkCommandName(14), "CmdStartSearch");
    EXPECT_EQ(LinkCommandName(38), "CmdComplianceTargetAddress");
    EXPECT_EQ(LinkCommandName(52), "CmdUsbKeepAlive");
    EXPECT_EQ(CmdStartSearch, 14);
    EXPECT_EQ(CmdUsbKeepAlive, 52);
    EXPECT_EQ(LinkCommandName(0), "unknown command");
    EXPECT_EQ(LinkCommandName(53), "unknown command");
}

} // namespace
} // namespace busquill
