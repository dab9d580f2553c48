#include "support/capture_fixture.h"

#include <thread>

namespace busquill::test {
namespace {

class AnalyzerTest : public CaptureFixture {};

TEST_F(AnalyzerTest, InDemoModeItsTablesFollowTheBus) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    ASSERT_EQ(tables.busSignals.FindByName("AM"), nullptr);
    BusConfig bus;
    bus.busMode = BusVme;
    link->WriteBusConfig(bus);
    EXPECT_NE(tables.busSignals.FindByName("AM"), nullptr);
    EXPECT_EQ(tables.busSignals.FindByName("FRAME"), nullptr);
}

TEST_F(AnalyzerTest, CanBeDestroyedDuringACapture) {
    OpenBoard("PCIKite");
    SetLive(0x80, 0, 0);
    capture.StartCapture();
    ASSERT_TRUE(capture.IsRunning());
    analyzer.reset();
    EXPECT_EQ(line->OpenPorts(), 0);
}

TEST_F(AnalyzerTest, CanBeDestroyedWhileABlockIsUnderWay) {
    OpenBoard("PCIKite");
    SetLive(0x20, 100, 120);
    Gate gate;
    StopAt(gate);
    upload.BeginUpload();
    gate.AwaitReached();
    std::thread answer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        gate.Open();
    });
    analyzer.reset();
    answer.join();
    EXPECT_EQ(line->OpenPorts(), 0);
}

} // namespace
} // namespace busquill::test
