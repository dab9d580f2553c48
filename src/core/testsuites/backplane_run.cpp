#include "testsuites/backplane_run.h"

#include "link/exchange.h"
#include "platform/prompts.h"
#include "testsuites/backplane_document.h"

namespace busquill {

namespace {

constexpr const char* noneTicked = "One or more signals must be selected to test.";
constexpr const char* invalidSignal = "Invalid signal index for backplane test.";
constexpr const char* sensitivityFailed = "Error sending backplane sensitivity to analyzer.";
constexpr const char* signalsFailed = "Error sending backplane test signals to analyzer.";
constexpr const char* startFailed = "Error sending start backplane test command to analyzer.";
constexpr const char* stopFailed = "Error sending stop backplane test command to analyzer.";
constexpr const char* signalsReadFailed =
    "Error reading backplane test signal results data from analyzer.";

constexpr StatusRegister testStatus = {RegisterBackplaneResult, 0, std::chrono::milliseconds(100),
                                       "Error reading backplane results data from analyzer."};

} // namespace

BackplaneRun::BackplaneRun(Parts parts, CBackplaneTestDoc& document, CheckTable rows,
                           IsTicked isTicked, BackplaneObserver& observer)
    : BoardRun(std::move(parts)), document_(document), rows_(rows), isTicked_(std::move(isTicked)),
      observer_(observer) {}

void BackplaneRun::Start() {
    if (IsOn()) {
        Stop();
    }
    if (!NextSignal()) {
        Boxes().Message(noneTicked);
        return;
    }
    document_.Results().clear();
    observer_.OnResultsCleared();
    TestSignal();
}

bool BackplaneRun::NextSignal() {
    for (int row = row_ + 1; row < static_cast<int>(rows_.size()); ++row) {
        if (RowAt(rows_, row)->level == backplaneSignalLevel && isTicked_(row)) {
            row_ = row;
            return true;
        }
    }
    return false;
}

std::optional<int> BackplaneRun::SignalBit() const {
    const CheckTableRow* row = RowAt(document_.Table(), row_);
    return row == nullptr ? std::nullopt : std::optional(row->bit);
}

void BackplaneRun::TestSignal() {
    const CheckTableRow* row = RowAt(document_.Table(), row_);
    const std::string line(row == nullptr ? std::string_view() : row->text);
    document_.Results().push_back(line);
    observer_.OnSignal(line);
    const std::optional<int> bit = SignalBit();
    if (!bit) {
        Boxes().Message(invalidSignal);
    }
    std::vector<RunStep> steps;
    steps.push_back(
        {WritePayload(CmdBackplaneSensitivity, OneByte(static_cast<std::uint8_t>(sensitivity))),
         sensitivityFailed});
    steps.push_back({WritePayload(CmdBackplaneSignals,
                                  [signals = DriveSignal(bit)] {
                                      return std::vector<std::uint8_t>(signals.begin(),
                                                                       signals.end());
                                  }),
                     signalsFailed});
    steps.push_back({RunCommand(CmdStartBackplane), startFailed});
    SendSteps(Link(), std::move(steps), Boxes());
    PollEvery(testStatus.period);
    observer_.OnRunning(true);
}

void BackplaneRun::Poll() {
    if (!IsOn()) {
        return;
    }
    std::array<std::uint8_t, 1> status{};
    if (!ReadStatus(Link(), testStatus, status, Boxes())) {
        StopPollingIfGone();
        return;
    }
    if ((status[0] & statusRunning) != 0) {
        return;
    }
    StopPolling();
    BackplaneSignals signals{};
    if (ReadOrReport(Link(), RegisterBackplaneSignals, signals, Boxes(), signalsReadFailed)) {
        Evaluate(signals);
    }
    if (NextSignal()) {
        TestSignal();
    } else {
        Stop();
    }
}

void BackplaneRun::Evaluate(const BackplaneSignals& bytes) {
    const std::optional<int> bit = SignalBit();
    if (!bit) {
        Boxes().Message(invalidSignal);
        return;
    }
    for (std::string& line : EvaluateSignal(document_.Table(), *bit, bytes)) {
        observer_.OnResult(line);
        document_.Results().push_back(std::move(line));
    }
}

void BackplaneRun::Stop() {
    StopPolling();
    ExchangeOrReport(Link(), RunCommand(CmdStopBackplane), Boxes(), stopFailed);
    observer_.OnRunning(false);
    row_ = noRow;
}

} // namespace busquill
