#include "link/board_state.h"

namespace busquill {

BoardTraits BoardState::Traits() const {
    const LeafLock lock(identityLock_);
    return {identity_.modelString, demoMode_, busConfig_};
}

bool BoardState::IsVmeFamily() const {
    return Traits().IsVmeFamily();
}

BoardIdentity BoardState::Identity() const {
    const LeafLock lock(identityLock_);
    return identity_;
}

BusConfig BoardState::Bus() const {
    const LeafLock lock(identityLock_);
    return busConfig_;
}

void BoardState::EnterDemoMode() {
    {
        const LeafLock lock(identityLock_);
        demoMode_ = true;
        identity_ = {.modelString = "Demo Mode",
                     .modelId = ModelDemo,
                     .bufferSizeK = 0,
                     .serialNumber = 0,
                     .firmwareRevision = {},
                     .hardwareRevision = {}};
    }
    SetLive({});
}

void BoardState::SetIdentity(std::span<const std::uint8_t, statusBlockSize> block) {
    const LeafLock lock(identityLock_);
    if (!demoMode_) {
        identity_ = ParseIdentity(block, identity_);
        identified_ = true;
    }
}

void BoardState::SetBus(const BusConfig& config) {
    const LeafLock lock(identityLock_);
    busConfig_ = config;
}

void BoardState::SetBus(std::span<const std::uint8_t, busBlockSize> block) {
    const LeafLock lock(identityLock_);
    busConfig_ = ParseBusConfig(block, identity_.modelId);
}

LiveStatus BoardState::Live() const {
    const LeafLock lock(statusLock_);
    return live_;
}

void BoardState::SetLive(const LiveStatus& live) {
    const LeafLock lock(statusLock_);
    live_ = live;
    eventOccurrences_ = live.eventOccurrences;
}

void BoardState::ClearLive() {
    const LeafLock lock(statusLock_);
    live_ = {};
}

} // namespace busquill
