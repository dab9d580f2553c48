#include "exerciser/master_run.h"
#include "support/wire_fixture.h"

#include <benchmark/benchmark.h>

#include <array>

namespace busquill::test {
namespace {

using Frame = std::array<std::uint8_t, 2>;
constexpr std::int64_t steps = 256; // of 32 bytes

void CountSteps(benchmark::State& state) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * steps);
}

/// The bare port, with the frames of a read by the master.
class BarePort {
public:
    explicit BarePort(const std::string& terminal) : port_(OpenSerialPort(terminal)) {
        port_->ReadConfiguration();
        port_->Configure(9600);
        port_->SetReadTimeout(std::chrono::milliseconds(100));
    }
    void Write(std::uint16_t address, std::span<const std::uint8_t> payload) {
        Registers(address, payload.size());
        Exchange(Frame{2, 2}, 1);
        Exchange(payload, 1);
    }
    void Read(std::uint16_t address, std::size_t length) {
        Registers(address, length);
        Exchange(Frame{2, 1}, length + 2);
    }
    void Go() { Exchange(Frame{2, 23}, 1); }

private:
    void Registers(std::uint16_t address, std::size_t length) {
        Exchange(Frame{4, static_cast<std::uint8_t>(address)}, 1);
        Exchange(Frame{6, static_cast<std::uint8_t>(address >> 8)}, 1);
        Exchange(Frame{8, 0}, 1);
        Exchange(Frame{10, static_cast<std::uint8_t>(length)}, 1);
        Exchange(Frame{12, 0}, 1);
    }
    void Exchange(std::span<const std::uint8_t> bytes, std::size_t expected) {
        port_->Write(bytes);
        for (std::size_t came = 0; came < expected;) {
            const auto count = port_->Read(std::span(reply_).subspan(came, expected - came));
            came += count.value_or(expected);
        }
    }

    std::unique_ptr<SerialPort> port_;
    std::array<std::uint8_t, 64> reply_{};
};

/// Baseline: the same frames and replies, exchanged by a loop over the bare port.
void ExchangeStepsOnly(benchmark::State& state) {
    const BoardProcess board({"--baud", "9600"});
    BarePort port(board.Terminal());
    const std::array<std::uint8_t, 48> setup{0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 32, 2};
    const std::array<std::uint8_t, 1> control{1};
    for (auto _ : state) {
        for (std::int64_t step = 0; step < steps; ++step) {
            if (step == 0) {
                port.Write(802, setup);
            }
            port.Write(800, control);
            if (step != 0) {
                const auto at = static_cast<std::uint16_t>(step * 32);
                port.Write(804, std::array<std::uint8_t, 9>{static_cast<std::uint8_t>(at),
                                                            static_cast<std::uint8_t>(at >> 8), 0,
                                                            0, 0, 0, 0, 0, 32});
            }
            port.Go();
            port.Read(801, 1);
            port.Read(816, 32);
        }
    }
    CountSteps(state);
}
BENCHMARK(ExchangeStepsOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

class IdleObserver final : public MasterObserver {
public:
    void OnRunning(bool /*running*/) override {}
    void OnMemoryChanged() override {}
    void OnStatusCleared() override {}
    void OnStatus(std::span<const std::string_view> lines) override { lines_ += lines.size(); }
    void OnStepStarted() override {}
    std::size_t lines_ = 0;
};

/// A read by the master: link, run and memory.
void MasterSteps(benchmark::State& state) {
    const BoardProcess board({"--baud", "9600"});
    MemorySettings settings;
    RecordingPrompts prompts;
    ImpatientClock clock;
    MainThread mainThread;
    ScriptedUsb usb;
    settings.WriteProfileString("Setup", "ComPort", "COM1");
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    settings.WriteProfileString("Setup", "ComDevice1", board.Terminal());
    Analyzer analyzer({mainThread, prompts, settings, clock, usb, OpenSerialPort,
                       WorkingDirectory("/nonexistent")});
    analyzer.Link().Connect(ReadPortSetting(settings));
    MasterForm form;
    form.addressEnd = {0xFF, 0x1F}; // 8192 bytes
    IdleObserver observer;
    MasterRun run({analyzer.Link(), prompts}, form, observer);
    for (auto _ : state) {
        run.Go();
        while (run.IsStepping()) {
            run.Poll();
        }
        if (run.Memory()->Bytes().size() != steps * 32) {
            state.SkipWithError("not read");
        }
    }
    CountSteps(state);
}
BENCHMARK(MasterSteps)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace busquill::test
