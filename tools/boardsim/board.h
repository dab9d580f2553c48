#pragma once

#include "anomalies.h"
#include "backplane.h"
#include "compliance.h"
#include "configuration.h"
#include "firmware_image.h"
#include "master.h"
#include "performance.h"
#include "sequencer.h"
#include "stimulus.h"
#include "target.h"
#include "traffic.h"
#include "wire.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace boardsim {

/// The identity of a board.
struct Identity {
    std::string model = "PCIKite"; // the wire carries its first 8 characters
    std::uint8_t suffix = 3;
    std::uint16_t bufferK = 1024;
    std::uint8_t firmware = 17; // tenths
    std::uint8_t hardware = 10;
    unsigned serial = 1234;   // four decimal digits
    std::uint8_t busByte = 0; // mode code, width, voltage, master lock
    std::uint8_t megahertz = 33;
};

/// Faults. Counts of replies run down to the one that is affected.
struct Faults {
    bool silence = false;
    int dropAcknowledge = 0;  // the Nth acknowledgement from now is omitted
    int wrongAcknowledge = 0; // the Nth acknowledgement from now is another byte
    int refuse = 0;           // the Nth and all later acknowledgements are another byte
    bool wrongClose = false;  // the next data reply ends in another byte
    int shortReply = 0;       // number of bytes that the next data reply lacks at its end
    int mute = 0;             // this function gets no answer any more
    int searchBusy = 0;       // number of polls of a search that find it busy
    int scanBusy = 0;         // the same for each scan for devices
    int backplaneBusy = 0;    // the same for each signal of a backplane
    bool refuseRate = false;  // a change of rate is answered with another byte and not made
    MasterFaults master;
};

/// The board's side of the wire, byte by byte, without a line.
class Board {
public:
    /// A board whose memory holds samples; a run samples the traffic, and so do counting and a
    /// stimulus.
    Board(const Identity& identity, int baud, std::vector<Record> samples, std::size_t trigger,
          std::vector<Record> zoom, std::unique_ptr<Traffic> traffic = nullptr,
          Comparators comparators = {}, Performance performance = {});

    /// Takes one byte from the host and returns the board's answer.
    [[nodiscard]] std::vector<std::uint8_t> Receive(std::uint8_t byte);

    /// The rate at which the board listens. Changes after the reply to the command that requests
    /// it.
    [[nodiscard]] int Baud() const noexcept { return baud_; }
    [[nodiscard]] std::uint8_t Memory(std::uint32_t address) const { return memory_[address]; }
    /// The firmware that has been downloaded to it.
    [[nodiscard]] const FirmwareImage& Firmware() const noexcept { return firmware_; }
    /// Whether an active run needs samples of the bus, and how many.
    [[nodiscard]] bool Sampling() const noexcept { return sequencer_.WantsSamples(); }
    void SampleBus(std::size_t count);
    /// Behaves as if the first byte of a frame had arrived.
    void StandInFrame() { opcode_ = opLength0; }

    Faults faults;
    Configuration configuration; // the devices of the bus
    Compliance compliance;
    Anomalies anomalies;
    Backplane backplane;
    /// Called with a line for each frame, payload and reply.
    std::function<void(const std::string&)> log = [](const std::string&) {};
    /// Called when a firmware record is in the image, before it is acknowledged.
    std::function<void()> onFirmware = [] {};

private:
    using Bytes = std::vector<std::uint8_t>;

    Bytes Frame(std::uint8_t opcode, std::uint8_t parameter);
    Bytes Run(std::uint8_t function);
    Bytes TakePayload();
    Bytes ApplyBaud();
    Bytes Acknowledge();
    Bytes AnswerWith(std::uint8_t byte) const;
    Bytes DataReply(const Bytes& data);
    void StartTrace();
    void Search();
    void UpdateCounters();
    [[nodiscard]] std::span<std::uint8_t> MasterRegisters();
    void StartStimulus();
    void UpdateStatus();
    [[nodiscard]] Bytes ReadMemory();
    [[nodiscard]] Bytes ReadRecords(Record (Sequencer::*at)(std::int64_t) const,
                                    std::int64_t first) const;
    std::string Describe(std::uint8_t opcode, std::uint8_t parameter) const;

    std::vector<std::uint8_t> memory_ = std::vector<std::uint8_t>(memorySize);
    FirmwareImage firmware_;
    Master master_;
    Target target_;
    Stimulus stimulus_;
    Sequencer sequencer_;
    Performance performance_;
    std::unique_ptr<Traffic> traffic_;
    std::size_t bufferSamples_;
    bool hasZoom_;
    int baud_;
    std::uint32_t address_ = 0;
    std::uint32_t length_ = 0;
    bool rateRefused_ = false;                    // by the last answer
    std::uint8_t searchState_ = 0;                // as the host reads it at the end
    std::optional<std::uint8_t> opcode_;          // first byte of a frame
    std::optional<std::uint8_t> payloadFunction_; // the function whose payload is expected
    Bytes payload_;
};

/// The name of a function code.
[[nodiscard]] std::string_view FunctionName(std::uint8_t function);

} // namespace boardsim
