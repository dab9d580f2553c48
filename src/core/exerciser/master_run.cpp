#include "exerciser/master_run.h"

#include "platform/prompts.h"

#include <array>

namespace busquill {

namespace {

constexpr const char* setupFailed = "Error sending master setup to analyzer.";
constexpr const char* attributesFailed = "Error sending master attributes to analyzer.";
constexpr const char* controlFailed = "Error sending master control to analyzer.";
constexpr const char* addressFailed = "Error sending master address to analyzer.";
constexpr const char* fileDataFailed = "Error sending master file data to analyzer.";
constexpr const char* goFailed = "Error sending exerciser go command to analyzer.";
constexpr const char* stopFailed = "Error sending exerciser stop command to analyzer.";
constexpr const char* readFailed = "Error reading master data from analyzer.";
constexpr const char* cannotLoad = "Error opening file for master read operation.";

/// Without a board every step passes.
constexpr StatusRegister masterStatus = {RegisterMasterStatus, 0x01, std::chrono::milliseconds(200),
                                         "Error reading master status from analyzer."};

using Bytes = std::vector<std::uint8_t>;

LinkRequestPtr Write(RegisterCommand command, Bytes payload) {
    return WritePayload(command, [payload = std::move(payload)] { return payload; });
}

} // namespace

MasterRun::MasterRun(Parts parts, const MasterForm& form, MasterObserver& observer)
    : ExerciserRun(std::move(parts), masterStepLimit, observer), form_(form), observer_(observer) {}

void MasterRun::Go() {
    const PollsWait wait(*this);
    observer_.OnStatusCleared();
    repeatsLeft_ = RepeatCount(form_.repeat);
    if (!OpenData(form_.dataType == DataIsFile, form_.command == MasterRead, form_.dataFilename,
                  cannotLoad)) {
        return;
    }
    if (!SendSetup()) {
        return;
    }
    observer_.OnRunning(true);
    if (!ExchangeOrReport(Link(), RunCommand(CmdExerciserGo), Boxes(), goFailed)) {
        Stop();
        return;
    }
    if (reading_) {
        BeginMemory();
    }
    StartStep();
}

bool MasterRun::SendSetup() {
    const MasterFamily& family = MasterFamilyOf(Link().Traits());
    const bool inOrder = BeginRange(form_.addressStart, form_.addressEnd);
    const bool padded = MayPadFile();
    if (!inOrder || !padded) {
        return false;
    }
    std::vector<RunStep> steps;
    steps.push_back(
        {Write(CmdMasterSetup, BuildMasterSetup(form_, family, CurrentLength(), TakeFileData())),
         setupFailed, IfRefused::End});
    if (family.attributes) {
        steps.push_back({Write(CmdMasterAttributes, BuildMasterAttributes(form_)), attributesFailed,
                         IfRefused::End});
    }
    steps.push_back(ControlStep(MasterStep::First, IfRefused::End));
    return SendSteps(Link(), std::move(steps), Boxes()) == Sent::All;
}

RunStep MasterRun::ControlStep(MasterStep step, IfRefused then) {
    reading_ = form_.command == MasterRead;
    return {WritePayload(CmdMasterControl, OneByte(MasterControlByte(form_.command, step))),
            controlFailed, then};
}

void MasterRun::StartStep() {
    stepping_ = true;
    PollEvery(masterStatus.period);
    observer_.OnStepStarted();
}

void MasterRun::Poll() {
    if (!stepping_ || ArePollsWaiting()) {
        return;
    }
    const PollsWait wait(*this);
    std::array<std::uint8_t, 1> status{};
    if (!ReadStatus(Link(), masterStatus, status, Boxes())) {
        Stop();
        return;
    }
    if ((status[0] & statusRunning) != 0) {
        return;
    }
    StopPolling();
    stepping_ = false;
    if (const auto lines = MasterStatusLines(status[0]); !lines.empty()) {
        observer_.OnStatus(lines);
    }
    if (reading_ && !ReadStepData()) {
        Stop();
        return;
    }
    PassStep();
    RunNextStep();
}

bool MasterRun::ReadStepData() {
    std::array<std::uint8_t, masterStepLimit> data{};
    if (!ReadOrReport(Link(), RegisterMasterFileData, data, Boxes(), readFailed)) {
        return false;
    }
    KeepRead(std::span(data).first(CurrentLength()));
    return true;
}

void MasterRun::RunNextStep() {
    if (!NextStep()) {
        if (--repeatsLeft_ < 1) {
            EndRun();
            return;
        }
        Rewind(form_.addressStart);
        if (!NextStep()) {
            EndRun();
            return;
        }
    }
    std::vector<RunStep> steps;
    steps.push_back(ControlStep(MasterStep::Later, IfRefused::GoOn));
    steps.push_back({Write(CmdMasterAddress, BuildMasterAddress(CurrentAddress(), CurrentLength())),
                     addressFailed, IfRefused::End});
    if (HasFileData()) {
        steps.push_back(
            {Write(CmdMasterFileData, TakeFileData()), fileDataFailed, IfRefused::GoOn});
    }
    steps.push_back({RunCommand(CmdExerciserGo), goFailed, IfRefused::End});
    if (SendSteps(Link(), std::move(steps), Boxes()) == Sent::Ended) {
        Stop();
        return;
    }
    StartStep();
}

void MasterRun::EndRun() {
    CloseDataFile();
    observer_.OnRunning(false);
}

void MasterRun::Stop() {
    StopPolling();
    stepping_ = false;
    EndRun();
    ExchangeOrReport(Link(), RunCommand(CmdExerciserStop), Boxes(), stopFailed);
}

} // namespace busquill
