#include "link/payloads.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <numeric>
#include <utility>

namespace busquill {
namespace {

using Bytes = std::vector<std::uint8_t>;

LinkRequest Prepared(std::int32_t command, const LinkWords& words,
                     const PayloadEncoders& encoders = {}) {
    LinkRequest request;
    request.command = command;
    request.Address() = words.address;
    request.Length() = words.length;
    request.Data() = reinterpret_cast<std::uintptr_t>(words.data);
    request.Extra() = words.extra;
    PreparePayload(request, encoders);
    return request;
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
    const LinkRequest request = Prepared(CmdSetBaudRate, {.address = 38400});
    EXPECT_EQ(request.Address(), 15U);
    EXPECT_EQ(request.Length(), 1U);
    EXPECT_EQ(request.payload, Bytes{3});
}

TEST(Payloads, FirstTraceParameterSwapsTheFirstTwoStepsOfItsScale) {
    const std::array<std::uint8_t, 19> codes{0, 2,  0,  1,  3,  4,  5,  6, 7, 8,
                                             9, 10, 11, 12, 13, 14, 15, 0, 0};
    for (std::uintptr_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(Prepared(CmdTraceParams, {.address = value}).payload, (Bytes{codes[value], 0, 0}))
            << value;
    }
}

TEST(Payloads, SecondTraceParameterHasItsOwnScale) {
    const std::array<std::uint8_t, 8> codes{0, 3, 4, 0, 1, 2, 0, 0};
    for (std::uintptr_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(Prepared(CmdTraceParams, {.length = value}).payload, (Bytes{0, codes[value], 0}))
            << value;
    }
}

TEST(Payloads, ThirdTraceParameterCountsFromOneToEight) {
    const std::array<std::uint8_t, 11> codes{0, 0, 1, 2, 3, 4, 5, 6, 7, 0, 0};
    for (std::uintptr_t value = 0; value < codes.size(); ++value) {
        EXPECT_EQ(Prepared(CmdTraceParams, {.data = NumberAsData(value)}).payload,
                  (Bytes{0, 0, codes[value]}))
            << value;
    }
}

TEST(Payloads, NegativeTraceParametersAreCodeZero) {
    const auto minusOne = static_cast<std::uintptr_t>(-1);
    EXPECT_EQ(Prepared(CmdTraceParams, {minusOne, minusOne, NumberAsData(minusOne)}).payload,
              (Bytes{0, 0, 0}));
}

TEST(Payloads, SearchControlIsTwiceTheLengthAndTheLowBytesOfTheAddress) {
    const LinkRequest request = Prepared(CmdSearchControl, {.address = 0x12345678, .length = 9});
    EXPECT_EQ(request.payload, (Bytes{18, 0x78, 0x56, 0x34}));
    EXPECT_EQ(request.Address(), 441U);
    EXPECT_EQ(request.Length(), 4U);
    EXPECT_EQ(Prepared(CmdSearchControl, {.address = 0, .length = 130}).payload,
              (Bytes{4, 0, 0, 0}));
}

TEST(Payloads, ControlCommandsSendTheLowByteOfTheAddress) {
    const std::array<std::pair<std::int32_t, std::uintptr_t>, 5> rows{{
        {CmdSearchCondition, 440},
        {CmdConfigScanControl, 0x352},
        {CmdComplianceControl, 1516},
        {CmdMasterControl, 800},
        {CmdBackplaneSensitivity, 1550},
    }};
    for (const auto& [command, address] : rows) {
        const LinkRequest request = Prepared(command, {.address = 0x1A5});
        EXPECT_EQ(request.payload, Bytes{0xA5}) << LinkCommandName(command);
        EXPECT_EQ(request.Address(), address) << LinkCommandName(command);
        EXPECT_EQ(request.Length(), 1U) << LinkCommandName(command);
    }
}

struct CopyRow {
    std::int32_t command;
    std::uintptr_t address;
    std::size_t bytes;
};

TEST(Payloads, RecordsAreCopiedAtTheSizeOfTheirRow) {
    constexpr std::array<CopyRow, 11> rows{{
        {CmdAnomalyChecklist, 1532, 16},
        {CmdComplianceTestId, 1518, 4},
        {CmdMasterSetup, 802, 48},
        {CmdMasterAddress, 804, 9},
        {CmdMasterFileData, 816, 32},
        {CmdComplianceTargetAddress, 1522, 8},
        {CmdMasterAttributes, 924, 4},
        {CmdTargetSetup, 1490, 12},
        {CmdTargetAddress, 1503, 11},
        {CmdBackplaneSignals, 1552, 28},
        {CmdTargetData, 77, 5},
    }};
    for (const CopyRow& row : rows) {
        // Exactly as long as the row, so that a checked build finds a read beyond it.
        Bytes record(row.bytes);
        std::iota(record.begin(), record.end(), std::uint8_t{1});
        const LinkRequest request =
            Prepared(row.command, {.address = 77, .length = 5, .data = record.data()});
        EXPECT_EQ(request.payload, record) << LinkCommandName(row.command);
        EXPECT_EQ(request.Address(), row.address) << LinkCommandName(row.command);
        EXPECT_EQ(request.Length(), row.bytes) << LinkCommandName(row.command);
    }
}

TEST(Payloads, AMissingRecordGoesOutAsZeros) {
    EXPECT_EQ(Prepared(CmdComplianceTestId, {}).payload, (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Prepared(CmdTargetData, {.length = 2}).payload, (Bytes{0, 0}));
}

TEST(Payloads, EncodedCommandsGoOutAtTheirRegisterInTheirFixedSize) {
    constexpr std::array<CopyRow, 8> rows{{
        {CmdTraceControl, 260, 160},
        {CmdTraceEvents, 20, 240},
        {CmdSearchSample, 445, 30},
        {CmdPerformanceSetup, 499, 241},
        {CmdStimulusControl, 1410, 80},
        {CmdStimulusCondition, 930, 480},
        {CmdSetBusConfig, 18, 2},
        {CmdStimulusEvents, 1600, 240},
    }};
    for (const CopyRow& row : rows) {
        const PayloadEncoders encoders{
            {row.command, [](const LinkRequest&) { return Bytes(1000, 0xEE); }}};
        const LinkRequest request = Prepared(row.command, {}, encoders);
        EXPECT_EQ(request.payload, Bytes(row.bytes, 0xEE)) << LinkCommandName(row.command);
        EXPECT_EQ(request.Address(), row.address) << LinkCommandName(row.command);
        EXPECT_EQ(request.Length(), row.bytes) << LinkCommandName(row.command);
    }
}

TEST(Payloads, FourEventRowsGoOutAsEightWithZerosBehind) {
    const PayloadEncoders encoders{{CmdTraceEvents, [](const LinkRequest& request) {
                                        return Bytes(request.Extra() * 30, 0x11);
                                    }}};
    Bytes expected(240);
    std::fill_n(expected.begin(), 120, std::uint8_t{0x11});
    EXPECT_EQ(Prepared(CmdTraceEvents, {.extra = 4}, encoders).payload, expected);
}

TEST(Payloads, FifteenStimulusConditionRowsArePaddedByThirtyZeros) {
    const PayloadEncoders encoders{
        {CmdStimulusCondition, [](const LinkRequest&) { return Bytes(450, 0x22); }}};
    Bytes expected(480);
    std::fill_n(expected.begin(), 450, std::uint8_t{0x22});
    EXPECT_EQ(Prepared(CmdStimulusCondition, {}, encoders).payload, expected);
}

TEST(Payloads, AnEncoderSeesTheWordsOfTheCaller) {
    int record = 0;
    LinkWords seen;
    const PayloadEncoders encoders{{CmdPerformanceSetup, [&](const LinkRequest& request) {
                                        seen.address = request.Address();
                                        seen.data = request.DataAs<const void>();
                                        return Bytes{};
                                    }}};
    const LinkRequest request =
        Prepared(CmdPerformanceSetup, {.address = 3, .data = &record}, encoders);
    EXPECT_EQ(seen.address, 3U);
    EXPECT_EQ(seen.data, &record);
    EXPECT_EQ(request.payload, Bytes(241));
}

TEST(Payloads, ReadsAndFunctionsKeepTheirWords) {
    for (const std::int32_t command :
         {CmdReadMemory, CmdReadSamplesBefore, CmdReadSamplesAfter, CmdReadZoomBefore,
          CmdReadZoomAfter, CmdTargetRead, CmdDownloadRecord, CmdStartTrace, CmdUsbKeepAlive}) {
        const LinkRequest request = Prepared(command, {.address = 7, .length = 8});
        EXPECT_EQ(request.Address(), 7U);
        EXPECT_EQ(request.Length(), 8U);
        EXPECT_TRUE(request.payload.empty());
    }
}

TEST(Payloads, ANumberThatIsNoCommandIsLeftAlone) {
    const LinkRequest request = Prepared(99, {.address = 7, .length = 8});
    EXPECT_EQ(request.Address(), 7U);
    EXPECT_TRUE(request.payload.empty());
}

} // namespace
} // namespace busquill
