#include "link/link_machine.h"
#include "platform/settings.h"

namespace busquill {

void CAnalyzerLink::Machine::SubmitOwn(LinkPhase phase, std::int32_t command,
                                       const LinkWords& words) {
    linkPhase_ = phase;
    LinkRequest* request = NewRequest(command, this, OwnCompletion);
    request->words = {words.address, words.length, reinterpret_cast<std::uintptr_t>(words.data)};
    Submit(request);
}

void CAnalyzerLink::Machine::OwnCompletion(LinkRequest* request) {
    auto* machine = static_cast<Machine*>(request->owner);
    const std::int32_t result = request->result;
    delete request;
    machine->OwnCompleted(result);
}

// What the reply means, and what a failure leads to, depends on what the link waits for now.
void CAnalyzerLink::Machine::OwnCompleted(std::int32_t result) {
    const std::int32_t phase = linkPhase_;
    if (result != LinkOk) {
        if (phase == PhaseIdentify) {
            FallIntoDemoMode();
        } else if (phase == PhaseLiveStatus) {
            ClearLiveStatus();
            commLost_ = true;
        } else {
            services_.prompts.TopmostMessage(
                "Communications error with analyzer. Check serial port connections.");
        }
        return;
    }
    const MutexLock lock(statusLock_);
    if (phase == PhaseIdentify && !demoMode_) {
        identity_ = ParseIdentity(statusBlock_, identity_);
    } else if (phase == PhaseLiveStatus) {
        live_ = ParseLiveStatus(liveBlock_);
        eventOccurrences_ = live_.eventOccurrences;
    } else if (phase == PhaseReadBus) {
        busConfig_ = ParseBusConfig(busBlock_, identity_.modelId);
    }
}

void CAnalyzerLink::Machine::ReadIdentity() {
    SubmitOwn(PhaseIdentify, CmdReadMemory, {0, statusBlockSize, statusBlock_.data()});
}

void CAnalyzerLink::Machine::ReadBusConfig(BusConfig& out) {
    if (!demoMode_) {
        SubmitOwn(PhaseReadBus, CmdReadMemory, {18, busBlockSize, busBlock_.data()});
        WaitIdle();
    }
    const MutexLock lock(statusLock_);
    out = busConfig_;
}

void CAnalyzerLink::Machine::WriteBusConfig(const BusConfig& in) {
    {
        const MutexLock lock(statusLock_);
        busConfig_ = in;
    }
    if (demoMode_) {
        familyChanged_();
        return;
    }
    SubmitOwn(PhaseSetBus, CmdSetBusConfig, {0, 0, &busConfig_});
    WaitIdle();
}

void CAnalyzerLink::Machine::LoadBusConfig() {
    const std::string setup = "Setup";
    BusConfig config;
    if (services_.settings.GetProfileInt(setup, "SaveBusConfig", 0) == 0) {
        ReadBusConfig(config);
        return;
    }
    config.busMode =
        CorrectBusMode(services_.settings.GetProfileInt(setup, "BusMode", 0), Identity().modelId);
    config.busWidth = services_.settings.GetProfileInt(setup, "BusWidth", 0);
    config.busVoltage = services_.settings.GetProfileInt(setup, "BusVoltage", 0);
    config.busFrequency = services_.settings.GetProfileInt(setup, "BusFrequency", 0);
    WriteBusConfig(config);
}

void CAnalyzerLink::Machine::PollLiveStatus() {
    commLost_ = false;
    SubmitOwn(PhaseLiveStatus, CmdReadMemory, {425, liveBlockSize, liveBlock_.data()});
}

void CAnalyzerLink::Machine::ClearLiveStatus() {
    commLost_ = false;
    const MutexLock lock(statusLock_);
    live_.liveStatus = 0;
    live_.samplesBefore = 0;
    live_.samplesAfter = 0;
}

std::uint8_t CAnalyzerLink::Machine::GetLiveStatus(std::int32_t& before, std::int32_t& after) {
    const MutexLock lock(statusLock_);
    before = live_.samplesBefore;
    after = live_.samplesAfter;
    return live_.liveStatus;
}

BoardIdentity CAnalyzerLink::Machine::Identity() const {
    const MutexLock lock(statusLock_);
    return identity_;
}

BoardTraits CAnalyzerLink::Machine::Traits() const {
    const MutexLock lock(statusLock_);
    return {identity_.modelString, demoMode_, busConfig_};
}

} // namespace busquill
