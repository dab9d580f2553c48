#pragma once

#include "link/analyzer_commands.h"
#include "link/board_identity.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class Clock;
class MainThread;
class Prompts;
class SerialPort;
class Settings;
class UsbBus;

enum LinkResult : std::int32_t {
    LinkPending = 0,
    LinkOk,
    LinkBadReply,
    LinkTimeout,
    LinkBadState,
    LinkTransferFailed,
};

/// What the link itself waits for; decides the number of tries and what a reply means.
enum LinkPhase : std::int32_t {
    PhaseNone = 0,
    PhaseIdentify,
    PhaseLiveStatus,
    PhaseSetBaud,
    PhaseSetBus,
    PhaseReadBus,
};

/// One command in flight. Belongs to the caller until Submit, to the link until its completion,
/// then to the completion, which deletes it; without a completion the link deletes it.
struct LinkRequest {
    using Completion = void (*)(LinkRequest*);
    using Words = std::array<std::uintptr_t, 10>;

    std::int32_t command = 0;
    std::int32_t state = 0;
    std::int32_t retries = 0;
    std::int32_t replyLength = 0;
    std::int32_t bytesSeen = 0;
    std::int32_t result = LinkPending;
    std::uint32_t commErrors = 0;
    std::int32_t ringReadAtFail = 0;
    std::int32_t ringWriteAtFail = 0;
    std::uint8_t firstByte = 0;
    std::uint8_t lastByte = 0;
    void* owner = nullptr;
    Completion completion = nullptr;
    /// Parameter words, wide enough for a pointer. `data` names a buffer or record of the caller
    /// that must outlive the request.
    Words words{};
    /// The words as the caller gave them: a restart prepares from these.
    Words savedWords{};

    [[nodiscard]] std::uintptr_t& Address() noexcept { return words[0]; }
    [[nodiscard]] std::uintptr_t& Length() noexcept { return words[1]; }
    [[nodiscard]] std::uintptr_t& Data() noexcept { return words[2]; }
    [[nodiscard]] std::uintptr_t& Extra() noexcept { return words[3]; }
    [[nodiscard]] std::uintptr_t Address() const noexcept { return words[0]; }
    [[nodiscard]] std::uintptr_t Length() const noexcept { return words[1]; }
    [[nodiscard]] std::uintptr_t Data() const noexcept { return words[2]; }
    [[nodiscard]] std::uintptr_t Extra() const noexcept { return words[3]; }
    /// The buffer or record that `data` names.
    template <typename T>
    [[nodiscard]] T* DataAs() const noexcept {
        return reinterpret_cast<T*>(words[2]); // NOLINT(performance-no-int-to-ptr)
    }
    /// The bytes that go out, made when the request is prepared.
    std::vector<std::uint8_t> payload;
};

/// The words of a request that an exchange with the board starts from.
struct LinkWords {
    std::uintptr_t address = 0;
    std::uintptr_t length = 0;
    const void* data = nullptr;
    std::uintptr_t extra = 0;
};

/// A number as the `data` word, for the command that reads it so.
[[nodiscard]] inline const void* NumberAsData(std::uintptr_t number) noexcept {
    return reinterpret_cast<const void*>(number); // NOLINT(performance-no-int-to-ptr)
}

/// The one connection to the board. Everything speaks to the board by a LinkRequest.
///
/// Threads: the public functions are called on the main thread, Submit, WaitIdle and the live
/// status also on others. Completions run on the link's thread; in Demo Mode and with no port, on
/// the caller's, inside Submit.
class CAnalyzerLink {
public:
    /// What the link asks of the machine. All outlive the link.
    struct Services {
        Settings& settings;
        Prompts& prompts;
        Clock& clock;
        MainThread& mainThread;
        /// Opens a device path; null when it cannot be opened.
        std::function<std::unique_ptr<SerialPort>(const std::string& device)> openSerial;
        UsbBus& usb;
    };
    /// The bytes of a command's payload, made from its parameter words.
    using Encoder = std::function<std::vector<std::uint8_t>(const LinkRequest&)>;

    explicit CAnalyzerLink(Services services);
    ~CAnalyzerLink();
    CAnalyzerLink(const CAnalyzerLink&) = delete;
    CAnalyzerLink& operator=(const CAnalyzerLink&) = delete;

    /// The link constructed last.
    [[nodiscard]] static CAnalyzerLink& Instance();

    [[nodiscard]] static LinkRequest* NewRequest(std::int32_t command, void* owner,
                                                 LinkRequest::Completion completion);
    void Submit(LinkRequest* request);
    /// Waits until the queue is empty, at most 5 seconds.
    void WaitIdle();
    /// Whether no request waits or runs.
    [[nodiscard]] bool IsIdle() const;
    /// The request idiom: submits one command and waits, without bound, until its completion has
    /// run. Whether the result was LinkOk. What to say about a failure is the caller's.
    [[nodiscard]] bool Exchange(std::int32_t command, const LinkWords& words = {});

    /// Asked now and then while the main thread waits in an Exchange, with the time that it has
    /// waited. When it is true the link is closed, which ends the exchange as failed; nothing else
    /// does, while a board only answers the first frame of a command again and again.
    using GiveUp = std::function<bool(std::chrono::milliseconds waited)>;
    void SetGiveUp(GiveUp giveUp);

    /// Rooms above register how the payloads of their commands are made.
    void RegisterEncoder(std::int32_t command, Encoder encoder);

    /// Opens the port that the settings name. True when the board answered at another rate than
    /// the configured one.
    bool Open();
    /// Leaves the port for none. Requests that have not ended do so as LinkTransferFailed.
    void Close();
    void ReadIdentity();
    void SetBaudRate(int rate);
    /// The connection sequence, from Open to LoadBusConfig. `targetBaud` is the rate to which a
    /// board that answered at another one is moved.
    void Connect(int targetBaud);

    void ReadBusConfig(BusConfig& out);
    void WriteBusConfig(const BusConfig& in);
    void LoadBusConfig();
    /// Called in Demo Mode after a change of the bus configuration, which decides the family.
    void SetFamilyListener(std::function<void()> listener);

    void PollLiveStatus();
    void ClearLiveStatus();
    /// The status byte, and the counts of samples before and after the trigger.
    std::uint8_t GetLiveStatus(std::int32_t& before, std::int32_t& after);
    [[nodiscard]] std::int32_t GetEventOccurrences() const noexcept;
    /// Whether the last live status read has failed for good.
    [[nodiscard]] bool CommLost() const noexcept;

    /// Drains all unread bytes, and writes bytes past the queue: for the serial test.
    [[nodiscard]] std::vector<std::uint8_t> ReadRingRaw();
    void SendRaw(std::span<const std::uint8_t> bytes);
    /// One keep-alive on USB; nothing on a serial port.
    void SendKeepAlive();

    /// The time by which the link waits. Any thread.
    [[nodiscard]] std::time_t Time() const;
    [[nodiscard]] bool IsDemoMode() const noexcept;
    [[nodiscard]] BoardIdentity Identity() const;
    /// Whether the board's identity has come since the last Open. Any thread.
    [[nodiscard]] bool IsIdentified() const noexcept;
    /// Whether the board's device has been taken away, which failed requests have told. A feature
    /// of several exchanges ends then at the first: the next ones would say the same. Any thread.
    [[nodiscard]] bool IsBoardGone() const;
    /// What decides the board's family now. Any thread.
    [[nodiscard]] BoardTraits Traits() const;

private:
    class Machine;
    std::unique_ptr<Machine> machine_;
};

} // namespace busquill
