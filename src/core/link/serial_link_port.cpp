#include "link/analyzer_commands.h"
#include "link/link_port.h"
#include "link/link_request.h"
#include "link/reply_ring.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <thread>

namespace busquill {

namespace {

using namespace std::chrono_literals;

constexpr auto readTimeout = 100ms;
constexpr std::array probedRates{9600, 19200, 28800, 38400, 57600};
constexpr int probesPerRate = 6;

/// The frame that clears the low byte of the length register, sent a byte at a time: the board
/// ignores the first byte and acknowledges the second, whatever part of a frame it was expecting.
constexpr std::array<std::uint8_t, 2> probeBytes{FrameLengthLow, 0};

} // namespace

std::string LinkPort::UnpluggedHint() const {
    return IsGone() ? Label() + " was unplugged. Plug it in again and accept the "
                                "Utilities/Board Setup dialog to connect again."
                    : "";
}

SerialLinkPort::SerialLinkPort(std::shared_ptr<SerialPort> port, PortSetting setting,
                               Prompts& prompts)
    : setting_(std::move(setting)), prompts_(prompts), port_(std::move(port)) {}

std::shared_ptr<SerialPort> SerialLinkPort::Port() const {
    const LeafLock lock(portLock_);
    return port_;
}

void SerialLinkPort::Close() {
    const LeafLock lock(portLock_);
    port_.reset();
}

void SerialLinkPort::Configure(int baud) {
    const auto port = Port();
    if (const int error = port->ReadConfiguration(); error != 0) {
        prompts_.TopmostMessage(
            Printf("Error reading %s configuration, err %d", setting_.name.c_str(), error));
    }
    if (const int error = port->Configure(baud); error != 0) {
        prompts_.TopmostMessage(
            Printf("Error setting %s configuration, err %d", setting_.name.c_str(), error));
    }
}

void SerialLinkPort::SetReadTimeout() {
    if (const int error = Port()->SetReadTimeout(readTimeout); error != 0) {
        prompts_.TopmostMessage(
            Printf("Error setting %s timeouts, err %d", setting_.name.c_str(), error));
    }
}

int SerialLinkPort::NegotiateBaud() {
    const auto port = Port();
    // Bytes left unread by an earlier connection must not be taken for an answer to the probe.
    std::array<std::uint8_t, 64> stale{};
    while (port->Read(stale) == stale.size()) {
    }
    SetReadTimeout();
    for (const int rate : probedRates) {
        port->Configure(rate);
        for (std::size_t probe = 0; probe < probesPerRate; ++probe) {
            if (AnswersProbe(*port, probeBytes[probe % probeBytes.size()])) {
                return rate;
            }
        }
    }
    return 0;
}

bool SerialLinkPort::AnswersProbe(SerialPort& port, std::uint8_t probe) {
    port.Write(std::span(&probe, 1));
    std::array<std::uint8_t, 10> answer{};
    const auto count = port.Read(answer);
    return count == 1U && answer[0] == acknowledgement;
}

int SerialLinkPort::ChangeBaud(int rate) {
    const auto port = Port();
    if (port == nullptr) {
        return 0;
    }
    const MutexLock lock(writeLock_);
    const int error = port->ReadConfiguration();
    return error != 0 ? error : port->Configure(rate);
}

std::uint32_t SerialLinkPort::ClearErrors() {
    const auto port = Port();
    return port == nullptr ? 0 : port->ClearErrors();
}

bool SerialLinkPort::Send(std::span<const std::uint8_t> bytes) {
    const auto port = Port();
    if (port == nullptr) {
        return true;
    }
    int error = 0;
    {
        const MutexLock lock(writeLock_);
        error = port->Write(bytes);
    }
    if (error != 0 && IsToReport()) {
        prompts_.TopmostMessage(Printf("Error writing to %s, err %d", setting_.name.c_str(), error),
                                UnpluggedHint());
    }
    return true;
}

// A failed port is not read again. The link's thread keeps stepping the running request, so that it
// times out and nobody waits for it for ever.
void SerialLinkPort::AwaitStep(ReplyRing& ring, std::size_t wanted) {
    const auto port = Port();
    if (port == nullptr || readFailed_) {
        std::this_thread::sleep_for(readTimeout);
        return;
    }
    if (inputNext_ == inputEnd_) {
        const auto count = port->ReadSome(input_);
        readFailed_ = !count.has_value();
        inputNext_ = 0;
        inputEnd_ = count.value_or(0);
    }
    const std::size_t count = std::min(wanted, inputEnd_ - inputNext_);
    ring.Put(std::span(input_).subspan(inputNext_, count));
    inputNext_ += count;
}

ReplyState SerialLinkPort::PollReply(LinkRequest& running, ReplyRing& ring) {
    running.bytesSeen = ring.Unread();
    running.ringReadAtFail = ring.ReadIndex();
    running.ringWriteAtFail = ring.WriteIndex();
    return {.count = running.bytesSeen};
}

} // namespace busquill
