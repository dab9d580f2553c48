#include "core/testsuites/names_dir.h"
#include "support/link_fixture.h"
#include "testsuites/config_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t scanControl = 850;
constexpr std::uint32_t scanStatus = 851;
constexpr std::uint32_t scanResults = 852;
constexpr int startScan = 21;

class ConfigScanTest : public LinkFixture {
protected:
    ConfigScanTest() {
        OpenBoard("PCIKite");
        board.contents[scanStatus] = {0x01};
        board.contents[scanResults] = Bytes(72, 0);
        board.contents[scanResults][0] = 0x86;
        board.contents[scanResults][1] = 0x80;
        board.contents[scanResults][64] = 0x34;
    }

    std::optional<int> Scan(ScanDirection direction = ScanDirection::First) {
        return ScanForDevice(*link, direction, *data, prompts);
    }
    /// The board does not answer what is asked for by this frame.
    void Ignore(std::uint8_t opcode, std::uint8_t parameter) {
        line->SetAnswer([this, opcode, parameter](const Bytes& sent, int baud) {
            return sent == Bytes{opcode, parameter} ? Bytes{} : board.Answer(sent, baud);
        });
    }
    /// What was read or run, without the identity.
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = board.functions; });
        functions.erase(functions.begin());
        return functions;
    }

    const NamesDir dir;
    std::unique_ptr<CConfigSpaceData> data =
        std::make_unique<CConfigSpaceData>(WorkingDirectory(dir.Path()), prompts);
};

TEST_F(ConfigScanTest, AsksTheBoardForTheFirstTheNextAndThePreviousDevice) {
    const std::pair<ScanDirection, std::uint8_t> directions[] = {
        {ScanDirection::First, 1}, {ScanDirection::Next, 2}, {ScanDirection::Back, 4}};
    for (const auto& [direction, byte] : directions) {
        EXPECT_EQ(Scan(direction), 0);
        line->Do([&, byte = byte] {
            ASSERT_THAT(board.writes, SizeIs(1));
            EXPECT_EQ(board.writes[0].address, scanControl);
            EXPECT_THAT(board.writes[0].bytes, ElementsAre(byte));
            board.writes.clear();
        });
    }
    const std::vector<int> functions = Functions();
    EXPECT_THAT(std::vector<int>(functions.begin(), functions.begin() + 4),
                ElementsAre(2, startScan, 1, 1))
        << "control, start, status, data";
    EXPECT_EQ(data->Identity().vendorName, "Intel Corporation");
    EXPECT_EQ(data->Identity().address[0], 0x34);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ConfigScanTest, TheStatusHasTheFunctionNumber) {
    board.contents[scanStatus] = {0x7B};
    EXPECT_EQ(Scan(), 5);
}

TEST_F(ConfigScanTest, ADeviceOfOnesCounts) {
    board.contents[scanResults] = Bytes(72, 0xFF);
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(data->Identity().vendorId, 0xFFFFU);
}

TEST_F(ConfigScanTest, WaitsForTheScanToEnd) {
    int polls = 0;
    board.onMemoryRead = [&](std::uint32_t address) {
        if (address == scanStatus) {
            board.contents[scanStatus] = {static_cast<std::uint8_t>(++polls < 4 ? 0x81 : 0x01)};
        }
    };
    line->SetClockRuns(false);
    const auto begun = clock.Elapsed();
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(polls, 4);
    EXPECT_EQ(clock.Elapsed() - begun, 300ms);
}

TEST_F(ConfigScanTest, AScanMayTakeTenSeconds) {
    board.contents[scanStatus] = {0x80};
    data->SetIdentity({1, 2, {}, "old", ""});
    line->SetClockRuns(false);
    const auto begun = clock.Elapsed();
    EXPECT_EQ(Scan(), std::nullopt);
    EXPECT_GT(clock.Elapsed() - begun, 10s);
    EXPECT_LE(clock.Elapsed() - begun, 11s) << "the clock counts whole seconds";
    EXPECT_THAT(prompts.Boxes(), SizeIs(1));
    EXPECT_EQ(prompts.Boxes()[0].text, "Timeout while waiting for configuration scan to complete.");
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(data->Identity().vendorName, "old");
    for (const int function : Functions()) {
        EXPECT_NE(function, 22) << "the scan is left running";
    }
}

TEST_F(ConfigScanTest, WithoutADeviceTheLastOneStays) {
    ASSERT_EQ(Scan(), 0);
    board.contents[scanStatus] = {0x0E};
    board.contents[scanResults] = Bytes(72, 0xFF);
    EXPECT_EQ(Scan(ScanDirection::Next), std::nullopt);
    EXPECT_THAT(prompts.Boxes(), SizeIs(1));
    EXPECT_EQ(prompts.Boxes()[0].text, "No device found.");
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(data->Identity().vendorId, 0x8086U);
}

TEST_F(ConfigScanTest, AFailedControlOrStartIsReportedAndTheScanGoesOn) {
    bool controlFails = true;
    line->SetAnswer([this, &controlFails](const Bytes& sent, int baud) {
        if (sent == Bytes{2, startScan}) {
            controlFails = false;
            return Bytes{};
        }
        return controlFails && sent[0] == 4 ? Bytes{} : board.Answer(sent, baud);
    });
    EXPECT_EQ(Scan(), 0);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error sending configuration scan control to analyzer.",
                            "Error sending start configuration command to analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_TRUE(prompts.Boxes()[1].topmost);
    EXPECT_EQ(data->Identity().vendorId, 0x8086U);
}

TEST_F(ConfigScanTest, AFailedStatusIsNoDevice) {
    data->SetIdentity({1, 2, {}, "old", ""});
    Ignore(4, scanStatus & 0xFF);
    EXPECT_EQ(Scan(), std::nullopt);
    EXPECT_THAT(
        prompts.Texts(),
        ElementsAre("Error reading configuration scan status from analyzer.", "No device found."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_FALSE(prompts.Boxes()[1].topmost);
    EXPECT_EQ(data->Identity().vendorName, "old");
}

TEST_F(ConfigScanTest, FailedDataAreReported) {
    data->SetIdentity({1, 2, {}, "old", ""});
    Ignore(4, scanResults & 0xFF);
    EXPECT_EQ(Scan(), std::nullopt);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error reading configuration data from analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(data->Identity().vendorName, "old");
}

TEST_F(ConfigScanTest, ThereIsNoDeviceWithoutABoard) {
    link->Close();
    EXPECT_EQ(Scan(), std::nullopt);
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device found."));
}

} // namespace
} // namespace busquill::test
