#include "link/analyzer_link.h"

#include "link/machine.h"

#include <atomic>
#include <cassert>

namespace busquill {

namespace {

std::atomic<CAnalyzerLink*> theLink = nullptr;

} // namespace

CAnalyzerLink::CAnalyzerLink(Services services)
    : machine_(std::make_unique<Machine>(std::move(services))) {
    theLink = this;
}

CAnalyzerLink::~CAnalyzerLink() {
    machine_->ShutDown(); // completions that still run may ask for the instance
    CAnalyzerLink* self = this;
    theLink.compare_exchange_strong(self, nullptr);
}

CAnalyzerLink& CAnalyzerLink::Instance() {
    assert(theLink != nullptr);
    return *theLink;
}

LinkRequest* CAnalyzerLink::NewRequest(std::int32_t command, void* owner,
                                       LinkRequest::Completion completion) {
    auto request = std::make_unique<LinkRequest>();
    request->command = command;
    request->owner = owner;
    request->completion = completion;
    return request.release();
}

void CAnalyzerLink::Submit(LinkRequest* request) {
    machine_->Queue().Submit(request);
}

bool CAnalyzerLink::IsIdle() const {
    return machine_->Queue().IsIdle();
}

std::time_t CAnalyzerLink::Time() const {
    return machine_->Time();
}

void CAnalyzerLink::WaitIdle() {
    machine_->Queue().WaitIdle();
}

bool CAnalyzerLink::Exchange(std::int32_t command, const LinkWords& words) {
    return machine_->Exchange(command, words);
}

void CAnalyzerLink::RegisterEncoder(std::int32_t command, Encoder encoder) {
    machine_->Queue().RegisterEncoder(command, std::move(encoder));
}

bool CAnalyzerLink::Open() {
    return machine_->Open();
}

void CAnalyzerLink::Close() {
    machine_->Close();
}

void CAnalyzerLink::SetGiveUp(GiveUp giveUp) {
    machine_->SetGiveUp(std::move(giveUp));
}

void CAnalyzerLink::ReadIdentity() {
    machine_->ReadIdentity();
}

void CAnalyzerLink::SetBaudRate(int rate) {
    machine_->SetBaudRate(rate);
}

void CAnalyzerLink::Connect(int targetBaud) {
    machine_->Connect(targetBaud);
}

void CAnalyzerLink::ReadBusConfig(BusConfig& out) {
    machine_->ReadBusConfig(out);
}

void CAnalyzerLink::WriteBusConfig(const BusConfig& in) {
    machine_->WriteBusConfig(in);
}

void CAnalyzerLink::LoadBusConfig() {
    machine_->LoadBusConfig();
}

void CAnalyzerLink::SetFamilyListener(std::function<void()> listener) {
    machine_->SetFamilyListener(std::move(listener));
}

void CAnalyzerLink::PollLiveStatus() {
    machine_->PollLiveStatus();
}

void CAnalyzerLink::ClearLiveStatus() {
    machine_->ClearLiveStatus();
}

std::uint8_t CAnalyzerLink::GetLiveStatus(std::int32_t& before, std::int32_t& after) {
    const LiveStatus live = machine_->Board().Live();
    before = live.samplesBefore;
    after = live.samplesAfter;
    return live.liveStatus;
}

std::int32_t CAnalyzerLink::GetEventOccurrences() const noexcept {
    return machine_->Board().EventOccurrences();
}

bool CAnalyzerLink::CommLost() const noexcept {
    return machine_->Board().CommLost();
}

std::vector<std::uint8_t> CAnalyzerLink::ReadRingRaw() {
    return machine_->Queue().Ring().TakeAll();
}

void CAnalyzerLink::SendRaw(std::span<const std::uint8_t> bytes) {
    machine_->SendRaw(bytes);
}

void CAnalyzerLink::SendKeepAlive() {
    machine_->SendKeepAlive();
}

bool CAnalyzerLink::IsDemoMode() const noexcept {
    return machine_->Board().IsDemoMode();
}

BoardIdentity CAnalyzerLink::Identity() const {
    return machine_->Board().Identity();
}

bool CAnalyzerLink::IsIdentified() const noexcept {
    return machine_->Board().IsIdentified();
}

bool CAnalyzerLink::IsBoardGone() const {
    return machine_->IsBoardGone();
}

BoardTraits CAnalyzerLink::Traits() const {
    return machine_->Board().Traits();
}

} // namespace busquill
