#include "link/link_request.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace busquill {
namespace {

using Bytes = std::vector<std::uint8_t>;

LinkRequest Prepared(LinkRequestPtr request) {
    EXPECT_TRUE(PreparePayload(*request));
    return *request;
}

TEST(BaudCodeTest, KnowsSixRatesAndGivesZeroForOthers) {
    EXPECT_EQ(BaudCode(9600), 0);
    EXPECT_EQ(BaudCode(19200), 1);
    EXPECT_EQ(BaudCode(28800), 2);
    EXPECT_EQ(BaudCode(38400), 3);
    EXPECT_EQ(BaudCode(57600), 4);
    EXPECT_EQ(BaudCode(115200), 5);
    EXPECT_EQ(BaudCode(750000), 6);
    EXPECT_EQ(BaudCode(4800), 0);
    EXPECT_EQ(BaudCode(0), 0);
    EXPECT_EQ(BaudCode(-1), 0);
}

TEST(Payloads, SetBaudRateBecomesACodeAtRegister15) {
    const LinkRequest request = Prepared(WritePayload(CmdSetBaudRate, OneByte(BaudCode(38400))));
    EXPECT_EQ(request.address, 15U);
    EXPECT_EQ(request.length, 1U);
    EXPECT_EQ(request.payload, Bytes{3});
}

struct RegisterRow {
    RegisterCommand command;
    std::uint32_t address;
    std::uint32_t bytes;
};
constexpr std::array<RegisterRow, 26> registerRows{{
    {CmdSetBaudRate, 15, 1},
    {CmdTraceControl, 260, 160},
    {CmdTraceEvents, 20, 240},
    {CmdTraceParams, 420, 3},
    {CmdSearchControl, 441, 4},
    {CmdSearchCondition, 440, 1},
    {CmdSearchSample, 445, 30},
    {CmdPerformanceSetup, 499, 241},
    {CmdAnomalyChecklist, 1532, 16},
    {CmdConfigScanControl, 0x352, 1},
    {CmdComplianceControl, 1516, 1},
    {CmdComplianceTestId, 1518, 4},
    {CmdMasterSetup, 802, 48},
    {CmdMasterAddress, 804, 9},
    {CmdMasterControl, 800, 1},
    {CmdMasterFileData, 816, 32},
    {CmdStimulusControl, 1410, 80},
    {CmdStimulusCondition, 930, 480},
    {CmdComplianceTargetAddress, 1522, 8},
    {CmdSetBusConfig, 18, 2},
    {CmdMasterAttributes, 924, 4},
    {CmdStimulusEvents, 1600, 240},
    {CmdTargetSetup, 1490, 12},
    {CmdTargetAddress, 1503, 11},
    {CmdBackplaneSignals, 1552, 28},
    {CmdBackplaneSensitivity, 1550, 1},
}};

TEST(Payloads, AreSentAtTheirRegisterInItsSize) {
    for (const auto& [command, address, bytes] : registerRows) {
        Bytes record(bytes);
        std::iota(record.begin(), record.end(), std::uint8_t{1});
        const LinkRequest request = Prepared(WritePayload(command, [&] { return record; }));
        EXPECT_EQ(request.payload, record) << LinkCommandName(command);
        EXPECT_EQ(request.address, address) << LinkCommandName(command);
        EXPECT_EQ(request.length, bytes) << LinkCommandName(command);
    }
}

TEST(Payloads, AreCutToTheSizeOfTheirRegister) {
    for (const auto& [command, address, bytes] : registerRows) {
        const LinkRequest request =
            Prepared(WritePayload(command, [] { return Bytes(1000, 0xEE); }));
        EXPECT_EQ(request.payload, Bytes(bytes, 0xEE)) << LinkCommandName(command);
    }
}

TEST(Payloads, FourEventRowsAreSentAsEightPaddedWithZeros) {
    Bytes expected(240);
    std::fill_n(expected.begin(), 120, std::uint8_t{0x11});
    EXPECT_EQ(Prepared(WritePayload(CmdTraceEvents, [] { return Bytes(120, 0x11); })).payload,
              expected);
}

TEST(Payloads, FifteenStimulusConditionRowsArePaddedByThirtyZeros) {
    Bytes expected(480);
    std::fill_n(expected.begin(), 450, std::uint8_t{0x22});
    EXPECT_EQ(Prepared(WritePayload(CmdStimulusCondition, [] { return Bytes(450, 0x22); })).payload,
              expected);
}

TEST(Payloads, ForTheCallersMemoryAreSentInFull) {
    for (const MemoryCommand command :
         {MemoryCommand(CmdDownloadRecord), MemoryCommand(CmdTargetData)}) {
        const LinkRequest request = Prepared(WriteMemory(command, 77, [] {
            return Bytes{1, 2, 3, 4, 5};
        }));
        EXPECT_EQ(request.payload, (Bytes{1, 2, 3, 4, 5})) << LinkCommandName(command);
        EXPECT_EQ(request.address, 77U) << LinkCommandName(command);
        EXPECT_EQ(request.length, 5U) << LinkCommandName(command);
    }
}

TEST(Payloads, AreCreatedAgainForEachTry) {
    std::uint8_t record = 1;
    const LinkRequestPtr request = WriteMemory(CmdTargetData, 0x40, [&] { return Bytes{record}; });
    EXPECT_TRUE(PreparePayload(*request));
    EXPECT_EQ(request->payload, Bytes{1});
    record = 2;
    EXPECT_TRUE(PreparePayload(*request));
    EXPECT_EQ(request->payload, Bytes{2});
    EXPECT_EQ(request->address, 0x40U);
}

TEST(Payloads, AWriteCommandWithoutAPayloadMakerIsRefused) {
    for (std::int32_t command = 1; command <= linkCommandCount; ++command) {
        const CommandKind kind = FindCommand(command)->kind;
        const bool writes = kind == CommandKind::Register || kind == CommandKind::Memory;
        const LinkRequestPtr request = NewRequest(command);
        EXPECT_EQ(PreparePayload(*request), !writes) << LinkCommandName(command);
        EXPECT_TRUE(request->payload.empty()) << LinkCommandName(command);
    }
}

TEST(Payloads, ReadsAndFunctionsKeepTheirAddressAndLength) {
    for (const std::int32_t command :
         {CmdReadMemory, CmdReadSamplesBefore, CmdReadSamplesAfter, CmdReadZoomBefore,
          CmdReadZoomAfter, CmdTargetRead, CmdStartTrace, CmdUsbKeepAlive}) {
        LinkRequestPtr request = NewRequest(command);
        request->address = 7;
        request->length = 8;
        const LinkRequest prepared = Prepared(std::move(request));
        EXPECT_EQ(prepared.address, 7U);
        EXPECT_EQ(prepared.length, 8U);
        EXPECT_TRUE(prepared.payload.empty());
    }
}

TEST(Payloads, AnUnknownCommandIsLeftAlone) {
    LinkRequestPtr request = NewRequest(99);
    request->address = 7;
    const LinkRequest prepared = Prepared(std::move(request));
    EXPECT_EQ(prepared.address, 7U);
    EXPECT_TRUE(prepared.payload.empty());
}

TEST(Reads, TakeTheirLengthFromTheSpan) {
    Bytes bytes(40);
    EXPECT_EQ(ReadRegisters(18, bytes)->length, 40U);
    EXPECT_EQ(ReadTarget(18, bytes)->length, 40U);
    const LinkRequestPtr samples = ReadSamples(CmdReadZoomAfter, 3, bytes);
    EXPECT_EQ(samples->length, 2U) << "whole samples of 18 bytes";
    EXPECT_EQ(samples->address, 3U);
    EXPECT_EQ(samples->command, CmdReadZoomAfter);
}

} // namespace
} // namespace busquill
