#include "exerciser/target_run.h"

#include "exerciser/target_records.h"
#include "link/exchange.h"

#include <algorithm>
#include <chrono>

namespace busquill {

namespace {

constexpr const char* setupFailed = "Error sending target setup to analyzer.";
constexpr const char* addressFailed = "Error sending target address to analyzer.";
constexpr const char* firstWriteFailed = "Error writing target data to analyzer.";
constexpr const char* writeFailed = "Error sending target data to analyzer.";
constexpr const char* readFailed = "Error reading target data from analyzer.";
constexpr const char* cannotLoad = "Error opening file for target read operation.";

constexpr std::chrono::milliseconds stepPeriod(50);

} // namespace

TargetRun::TargetRun(Parts parts, const TargetForm& form, ExerciserObserver& observer)
    : ExerciserRun(std::move(parts), targetStepLimit, observer), form_(form), observer_(observer) {}

void TargetRun::Go() {
    const PollsWait wait(*this);
    if (!OpenData(form_.dataType == DataIsFile, form_.command == TargetRead, form_.dataFilename,
                  cannotLoad)) {
        return;
    }
    if (!SendSetup() || !RunFirstStep()) {
        return;
    }
    on_ = true;
    observer_.OnRunning(true);
    if (reading_) {
        BeginMemory();
    }
    PollEvery(stepPeriod);
}

bool TargetRun::SendSetup() {
    const PollsWait wait(*this);
    reading_ = form_.command == TargetRead;
    return ExchangeOrReport(
        Link(),
        WritePayload(CmdTargetSetup,
                     [payload = BuildTargetSetup(form_, TargetFamilyOf(Link().Traits()))] {
                         return payload;
                     }),
        Boxes(), setupFailed);
}

bool TargetRun::RunFirstStep() {
    const bool inOrder = BeginRange(form_.addressStart, form_.addressEnd);
    const bool padded = MayPadFile();
    return inOrder && padded &&
           SendStep(setupFailed, {firstWriteFailed, IfRefused::End}) == Sent::All;
}

void TargetRun::RunNextStep() {
    if (!NextStep()) {
        EndRun();
        return;
    }
    if (SendStep(addressFailed, {writeFailed, IfRefused::GoOn}) == Sent::Ended) {
        Stop();
        return;
    }
    PollEvery(stepPeriod);
}

Sent TargetRun::SendStep(const char* ifAddressFails, WriteFailure ifWriteFails) {
    std::vector<RunStep> steps;
    steps.push_back(
        {WritePayload(CmdTargetAddress, [payload = BuildTargetAddress(form_)] { return payload; }),
         ifAddressFails, IfRefused::End});
    if (!reading_ && CurrentLength() != 0) {
        steps.push_back({WriteMemory(CmdTargetData, LowAddress(CurrentAddress()),
                                     [payload = NextWriteData()] { return payload; }),
                         ifWriteFails.message, ifWriteFails.then});
    }
    return SendSteps(Link(), std::move(steps), Boxes());
}

std::vector<std::uint8_t> TargetRun::NextWriteData() {
    std::vector<std::uint8_t> data;
    if (HasFileData()) {
        data = TakeFileData();
        data.resize(targetStepLimit);
    } else {
        while (data.size() < targetStepLimit) {
            data.insert(data.end(), form_.dataValue.begin(), form_.dataValue.end());
        }
    }
    data.resize(CurrentLength());
    return data;
}

void TargetRun::Poll() {
    if (!on_ || ArePollsWaiting()) {
        return;
    }
    const PollsWait wait(*this);
    StopPolling();
    if (reading_ && !ReadStepData()) {
        Stop();
        return;
    }
    PassStep();
    RunNextStep();
}

bool TargetRun::ReadStepData() {
    std::array<std::uint8_t, targetStepLimit> data{};
    const auto step = std::span(data).first(CurrentLength());
    if (!ExchangeOrReport(Link(), ReadTarget(LowAddress(CurrentAddress()), step), Boxes(),
                          readFailed)) {
        return false;
    }
    KeepRead(step);
    return true;
}

void TargetRun::EndRun() {
    on_ = false;
    CloseDataFile();
    observer_.OnRunning(false);
}

void TargetRun::Stop() {
    StopPolling();
    EndRun();
}

} // namespace busquill
