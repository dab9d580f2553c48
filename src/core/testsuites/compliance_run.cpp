#include "testsuites/compliance_run.h"

#include "link/exchange.h"
#include "platform/prompts.h"
#include "testsuites/compliance_document.h"

namespace busquill {

namespace {

constexpr const char* idFailed = "Error sending compliance test id to analyzer.";
constexpr const char* controlFailed = "Error sending compliance control to analyzer.";
constexpr const char* startFailed = "Error sending start compliance test command to analyzer.";
constexpr const char* stopFailed = "Error sending stop compliance test command to analyzer.";
constexpr const char* targetFailed = "Error sending compliance target start address to analyzer.";
constexpr const char* unknownStatus = "Unknown test status from analyzer.";
constexpr const char* noDevice = "No device was found - select Find.";
constexpr const char* findFirst = "Select Find before starting test.";
constexpr const char* noneTicked = "One or more tests must be selected to execute.";

/// Without a board every test passes.
constexpr StatusRegister testStatus = {RegisterComplianceStatus, 0x01,
                                       std::chrono::milliseconds(200),
                                       "Error reading test status from analyzer."};

// The control byte.
constexpr std::uint8_t controlUnattended = 0;
constexpr std::uint8_t controlInstructions = 1;
constexpr std::uint8_t controlContinue = 3;
constexpr std::uint8_t controlSkip = 5;

// Bits of the status, besides statusRunning.
constexpr std::uint8_t statusPassed = 0x01;
constexpr std::uint8_t statusFailed = 0x02;
constexpr int failCodeBit = 3;
constexpr int failCodeMask = 0x0F;

DeviceIdentity DemoDevice() {
    DeviceIdentity device;
    device.vendorId = 0x1317;
    device.deviceId = 0x0985;
    device.address = {0, 0, 0, 0x80};
    device.vendorName = "Admtek Inc.";
    device.className = "Network Controller";
    return device;
}

} // namespace

ComplianceRun::ComplianceRun(Parts parts, CComplianceDoc& document, const CheckList& list,
                             IsTicked isTicked, ComplianceObserver& observer)
    : BoardRun(std::move(parts)), document_(document), list_(list), isTicked_(std::move(isTicked)),
      observer_(observer) {}

std::optional<int> ComplianceRun::Find(ScanDirection direction) {
    if (Link().IsDemoMode()) {
        document_.Device().SetIdentity(DemoDevice());
        document_.deviceFound = true;
        return 0;
    }
    document_.loadedFromFile = false;
    const auto function = ScanForDevice(Link(), direction, document_.Device(), Boxes());
    if (function) {
        document_.deviceFound = true;
    }
    return function;
}

void ComplianceRun::Go() {
    lastIndex_ = -1;
    if (!document_.deviceFound) {
        Boxes().Message(document_.loadedFromFile ? findFirst : noDevice);
        return;
    }
    if (!FindNextTest()) {
        Boxes().Message(noneTicked);
        return;
    }
    EndPolling();
    observer_.OnRunning(true);
    document_.Results().clear();
    observer_.OnResultsCleared();
    RunTests();
}

/// Groups are no tests, and neither is what stands before the first of them.
bool ComplianceRun::FindNextTest() {
    bool inGroup = false;
    for (int index = 0; index < static_cast<int>(list_.size()); ++index) {
        const bool isGroup = list_[static_cast<std::size_t>(index)].isGroup;
        inGroup = inGroup || isGroup;
        if (inGroup && !isGroup && index > lastIndex_ && isTicked_(index)) {
            lastIndex_ = index;
            return true;
        }
    }
    return false;
}

/// From the test that was found on, up to one that is polled.
void ComplianceRun::RunTests() {
    while (StartTest() == Started::Skipped) {
        if (!FindNextTest()) {
            Stop();
            return;
        }
    }
}

ComplianceRun::Started ComplianceRun::StartTest() {
    const CheckItem& item = list_[static_cast<std::size_t>(lastIndex_)];
    test_ = {TestIdOf(item.text), std::string(item.Title()), TestOutcome::None, 0};
    ExchangeOrReport(Link(),
                     WritePayload(CmdComplianceTestId,
                                  [id = test_.testId] {
                                      return std::vector<std::uint8_t>(id.begin(), id.end() - 1);
                                  }),
                     Boxes(), idFailed);
    observer_.OnTestStarted(test_);
    const bool attended = !item.instructions.empty();
    std::vector<RunStep> steps;
    steps.push_back({WritePayload(CmdComplianceControl,
                                  OneByte(attended ? controlInstructions : controlUnattended)),
                     controlFailed});
    steps.push_back({RunCommand(CmdStartCompliance), startFailed, IfRefused::End});
    if (SendSteps(Link(), std::move(steps), Boxes()) == Sent::Ended) {
        return Started::Ended; // the picture goes on showing a run until the user presses Stop
    }
    switch (attended ? observer_.AskOperator(item.instructions) : OperatorAnswer::Continue) {
    case OperatorAnswer::Continue:
        if (attended) {
            SendControl(controlContinue);
        }
        polling_ = true;
        PollEvery(testStatus.period);
        return Started::Polls;
    case OperatorAnswer::Skip:
        SendControl(controlSkip);
        ExchangeOrReport(Link(), RunCommand(CmdStopCompliance), Boxes(), stopFailed);
        EndTest(TestOutcome::Skipped);
        return Started::Skipped;
    case OperatorAnswer::Stop:
        break;
    }
    Stop();
    return Started::Ended;
}

void ComplianceRun::SendControl(std::uint8_t control) {
    ExchangeOrReport(Link(), WritePayload(CmdComplianceControl, OneByte(control)), Boxes(),
                     controlFailed);
}

void ComplianceRun::Poll() {
    if (!polling_) {
        return;
    }
    std::array<std::uint8_t, 1> status{};
    // The box of a failure must not be joined by those of later polls.
    polling_ = false;
    if (!ReadStatus(Link(), testStatus, status, Boxes())) {
        Stop();
        return;
    }
    if ((status[0] & statusRunning) != 0) {
        polling_ = true;
        return;
    }
    EndPolling();
    if ((status[0] & (statusPassed | statusFailed)) == 0) {
        Boxes().TopmostMessage(unknownStatus);
        Stop();
        return;
    }
    test_.failCode = status[0] >> failCodeBit & failCodeMask;
    EndTest((status[0] & statusPassed) != 0 ? TestOutcome::Passed : TestOutcome::Failed);
    if (FindNextTest()) {
        RunTests();
    } else {
        Stop();
    }
}

void ComplianceRun::EndTest(TestOutcome outcome) {
    test_.result = outcome;
    document_.Results().push_back(test_);
    observer_.OnTestEnded(test_);
}

void ComplianceRun::Stop() {
    EndPolling();
    ExchangeOrReport(Link(), RunCommand(CmdStopCompliance), Boxes(), stopFailed);
    observer_.OnRunning(false);
}

void ComplianceRun::EndPolling() {
    polling_ = false;
    StopPolling();
}

void ComplianceRun::SendTargetAddress(const BusAddress& address) {
    ExchangeOrReport(Link(),
                     WritePayload(CmdComplianceTargetAddress,
                                  [address] {
                                      return std::vector<std::uint8_t>(address.begin(),
                                                                       address.end());
                                  }),
                     Boxes(), targetFailed);
}

} // namespace busquill
