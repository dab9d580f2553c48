#include "board.h"

#include <algorithm>
#include <cstdio>

namespace boardsim {

namespace {

constexpr std::size_t nameLength = 8;

constexpr std::uint8_t searching = 0x80;
constexpr std::uint8_t stimulusRuns = 0x80;

constexpr int pciChecks = 114;
constexpr int vmeChecks = 67;

/// The board has no time of its own: between two readings of the counters or of the stimulus's
/// status the bus makes this many samples.
constexpr std::size_t samplesOfAReading = 2048;

/// Models of the two smaller tiers have no Power Zoom memory.
bool HasZoom(const std::string& model) {
    return model.find("Wren") == std::string::npos && model.find("Lark") == std::string::npos;
}

std::string Hex(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x ", byte);
        text += digits;
    }
    return text;
}

std::uint8_t Bcd(unsigned twoDigits) {
    return static_cast<std::uint8_t>(twoDigits / 10 % 10 << 4 | twoDigits % 10);
}

} // namespace

std::string_view FunctionName(std::uint8_t function) {
    switch (function) {
    case fnReadMemory:
        return "read memory";
    case fnWriteMemory:
        return "write memory";
    case fnSamplesBefore:
        return "read samples before the trigger";
    case fnSamplesAfter:
        return "read samples after the trigger";
    case fnReadTarget:
        return "read target data";
    case fnWriteTarget:
        return "write target data";
    case fnStartTrace:
        return "start trace";
    case fnStopTrace:
        return "stop trace";
    case fnStartSearch:
        return "start search";
    case fnStartPerformance:
        return "start performance";
    case fnStopPerformance:
        return "stop performance";
    case fnStartAnomaly:
        return "start anomaly detection";
    case fnStopAnomaly:
        return "stop anomaly detection";
    case fnStartCompliance:
        return "start compliance test";
    case fnStopCompliance:
        return "stop compliance test";
    case fnStartConfigScan:
        return "start configuration scan";
    case fnStopConfigScan:
        return "stop configuration scan";
    case fnExerciserGo:
        return "exerciser go";
    case fnExerciserStop:
        return "exerciser stop";
    case fnStartStimulus:
        return "start stimulus";
    case fnStopStimulus:
        return "stop stimulus";
    case fnApplyBaud:
        return "apply new baud rate";
    case fnFirmwareRecord:
        return "firmware record";
    case fnZoomBefore:
        return "read zoom samples before the trigger";
    case fnZoomAfter:
        return "read zoom samples after the trigger";
    case fnStartBackplane:
        return "start backplane test";
    case fnStopBackplane:
        return "stop backplane test";
    default:
        return "";
    }
}

Board::Board(const Identity& identity, int baud, std::vector<Record> samples, std::size_t trigger,
             std::vector<Record> zoom, std::unique_ptr<Traffic> traffic, Comparators comparators,
             Performance performance)
    : anomalies(identity.model.starts_with("VME") ? vmeChecks : pciChecks), stimulus_(comparators),
      sequencer_(std::move(samples), trigger, std::move(zoom), std::move(comparators)),
      performance_(std::move(performance)), traffic_(std::move(traffic)),
      bufferSamples_(std::size_t{identity.bufferK} * 1024), hasZoom_(HasZoom(identity.model)),
      baud_(baud) {
    for (std::size_t i = 0; i < nameLength; ++i) {
        memory_[i] = i < identity.model.size() ? static_cast<std::uint8_t>(identity.model[i]) : ' ';
    }
    memory_[8] = identity.suffix;
    memory_[9] = static_cast<std::uint8_t>(identity.bufferK);
    memory_[10] = static_cast<std::uint8_t>(identity.bufferK >> 8);
    memory_[11] = identity.firmware;
    memory_[12] = identity.hardware;
    memory_[regSerial] = Bcd(identity.serial % 100);
    memory_[regSerial + 1] = Bcd(identity.serial / 100 % 100);
    memory_[regBus] = identity.busByte;
    memory_[regBus + 1] = identity.megahertz;
}

Board::Bytes Board::Receive(std::uint8_t byte) {
    if (payloadFunction_) {
        payload_.push_back(byte);
        return payload_.size() < length_ ? Bytes() : TakePayload();
    }
    if (!opcode_) {
        opcode_ = byte;
        return {};
    }
    const std::uint8_t opcode = *opcode_;
    opcode_.reset();
    return Frame(opcode, byte);
}

Board::Bytes Board::Frame(std::uint8_t opcode, std::uint8_t parameter) {
    const auto put = [parameter](std::uint32_t& word, unsigned shift) {
        word = (word & ~(0xFFU << shift)) | std::uint32_t{parameter} << shift;
    };
    switch (opcode) {
    case opAddress0:
        put(address_, 0);
        break;
    case opAddress1:
        put(address_, 8);
        break;
    case opAddress2:
        put(address_, 16);
        break;
    case opLength0:
        put(length_, 0);
        break;
    case opLength1:
        put(length_, 8);
        break;
    default:
        break;
    }
    log("host  " + Hex({opcode, parameter}) + Describe(opcode, parameter));
    // The host starts a refused command again. If the first frame were then acknowledged, that
    // would be progress, and the host would never give up.
    rateRefused_ =
        rateRefused_ && faults.refuseRate && opcode == opAddress0 && parameter == regBaudCode;
    if (rateRefused_) {
        return AnswerWith(wrongByte);
    }
    if (opcode == opFunction) {
        if (faults.mute == parameter) {
            return {};
        }
        return Run(parameter);
    }
    const bool known = opcode >= opAddress0 && opcode <= opLength1 && opcode % 2 == 0;
    return known ? Acknowledge() : Bytes();
}

Board::Bytes Board::Run(std::uint8_t function) {
    switch (function) {
    case fnReadMemory:
        return DataReply(ReadMemory());
    case fnReadTarget:
        return DataReply(target_.Read(address_, length_));
    case fnSamplesBefore:
        return DataReply(ReadRecords(&Sequencer::At, -std::int64_t{address_}));
    case fnSamplesAfter:
        return DataReply(ReadRecords(&Sequencer::At, address_));
    case fnZoomBefore:
        return DataReply(ReadRecords(&Sequencer::ZoomAt, -std::int64_t{address_}));
    case fnZoomAfter:
        return DataReply(ReadRecords(&Sequencer::ZoomAt, address_));
    case fnStartTrace:
        StartTrace();
        return Acknowledge();
    case fnStopTrace:
        sequencer_.Stop();
        return Acknowledge();
    case fnStartSearch:
        Search();
        return Acknowledge();
    case fnStartPerformance:
        performance_.Start(std::span(memory_).subspan(regPerformance, performanceSetupBytes));
        return Acknowledge();
    case fnStopPerformance:
        performance_.Stop();
        return Acknowledge();
    case fnExerciserGo:
        master_.Go(MasterRegisters(), target_, faults.master);
        return Acknowledge();
    case fnExerciserStop:
        Master::Stop(MasterRegisters());
        return Acknowledge();
    case fnStartStimulus:
        StartStimulus();
        return Acknowledge();
    case fnStopStimulus:
        stimulus_.Stop();
        return Acknowledge();
    case fnStartConfigScan:
        configuration.Scan(memory_[regScanControl], faults.scanBusy);
        return Acknowledge();
    case fnStopConfigScan:
        configuration.Stop();
        return Acknowledge();
    case fnStartCompliance:
        compliance.Start(std::span(memory_).subspan<regComplianceTest, 4>(),
                         memory_[regComplianceControl]);
        return Acknowledge();
    case fnStopCompliance:
        compliance.Stop();
        return Acknowledge();
    case fnStartAnomaly:
        anomalies.Start();
        return Acknowledge();
    case fnStopAnomaly:
        anomalies.Stop();
        return Acknowledge();
    case fnStartBackplane:
        backplane.Start(std::span(memory_).subspan<regBackplane, backplaneBytes>(),
                        faults.backplaneBusy);
        return Acknowledge();
    case fnStopBackplane:
        backplane.Stop();
        return Acknowledge();
    case fnWriteMemory:
    case fnWriteTarget:
    case fnFirmwareRecord:
        if (length_ != 0) {
            payloadFunction_ = function;
            payload_.clear();
        }
        return Acknowledge();
    case fnApplyBaud:
        return ApplyBaud();
    default:
        // Functions that the board does not know get no answer.
        return FunctionName(function).empty() ? Bytes() : Acknowledge();
    }
}

Board::Bytes Board::TakePayload() {
    const std::uint8_t function = *payloadFunction_;
    payloadFunction_.reset();
    log("host  " + Hex(payload_) + "payload for " + std::string(FunctionName(function)));
    if (function == fnWriteTarget) {
        target_.Write(address_, payload_);
    }
    for (std::size_t i = 0; i < payload_.size() && function == fnWriteMemory; ++i) {
        memory_[(address_ + i) % memorySize] = payload_[i];
    }
    if (function == fnFirmwareRecord) {
        firmware_.Write(address_, payload_);
        onFirmware();
    }
    return Acknowledge();
}

Board::Bytes Board::ApplyBaud() {
    if (faults.refuseRate) {
        rateRefused_ = true;
        return AnswerWith(wrongByte);
    }
    const std::uint8_t code = memory_[regBaudCode];
    baud_ = baudRates[code < baudRates.size() ? code : 0];
    return Acknowledge();
}

Board::Bytes Board::Acknowledge() {
    const bool refused = faults.refuse == 1;
    faults.refuse -= faults.refuse > 1 ? 1 : 0;
    const bool wrong = (faults.wrongAcknowledge > 0 && --faults.wrongAcknowledge == 0) || refused;
    const bool dropped = faults.dropAcknowledge > 0 && --faults.dropAcknowledge == 0;
    return dropped ? Bytes() : AnswerWith(wrong ? wrongByte : acknowledge);
}

Board::Bytes Board::AnswerWith(std::uint8_t byte) const {
    if (faults.silence) {
        return {};
    }
    log("board " + Hex({byte}));
    return {byte};
}

Board::Bytes Board::DataReply(const Bytes& data) {
    if (faults.silence) {
        return {};
    }
    Bytes reply = {acknowledge};
    reply.insert(reply.end(), data.begin(), data.end());
    reply.push_back(faults.wrongClose ? wrongByte : acknowledge);
    const std::size_t missing =
        std::min<std::size_t>(static_cast<std::size_t>(faults.shortReply), reply.size());
    reply.erase(reply.end() - static_cast<std::ptrdiff_t>(missing), reply.end());
    faults.wrongClose = false;
    faults.shortReply = 0;
    log("board " + Hex(reply));
    return reply;
}

void Board::StartTrace() {
    if (bufferSamples_ == 0) {
        return;
    }
    const std::span<const std::uint8_t> memory(memory_);
    sequencer_.Start(memory.subspan(regEvents, 240), memory.subspan(regControl, 160),
                     memory.subspan(regParams, 3), bufferSamples_, hasZoom_);
}

/// Searches the sample memory from the position in the search registers on, in the direction that
/// they give, and stores the position of the first matching sample.
void Board::Search() {
    constexpr std::uint8_t hit = 0x01;
    constexpr std::uint8_t onTriggerOrAfter = 0x02;
    std::uint8_t* const place = &memory_[regSearch];
    const std::int64_t distance = place[1] | place[2] << 8 | place[3] << 16;
    const std::int64_t step = memory_[regSearchDirection] == 0 ? 1 : -1;
    std::int64_t at = (place[0] & onTriggerOrAfter) != 0 ? distance : -distance;
    const auto [first, last] = sequencer_.Range();
    const auto fits = [&](const Record& record) {
        for (std::size_t i = 0; i < 15; ++i) {
            const std::uint8_t compare = memory_[regSearchPattern + 2 * i + 1];
            if (((record[i] ^ memory_[regSearchPattern + 2 * i]) & compare) != 0) {
                return false;
            }
        }
        return true;
    };
    while (at >= first && at <= last && !fits(sequencer_.At(at))) {
        at += step;
    }
    searchState_ = 0;
    if (at >= first && at <= last) {
        searchState_ = hit | (at >= 0 ? onTriggerOrAfter : 0);
        const auto found = static_cast<std::uint32_t>(at < 0 ? -at : at);
        for (unsigned byte = 0; byte < 3; ++byte) {
            place[1 + byte] = static_cast<std::uint8_t>(found >> (8 * byte));
        }
    }
    place[0] = faults.searchBusy > 0 ? searching : searchState_;
}

void Board::SampleBus(std::size_t count) {
    const auto wanted = [this] {
        return sequencer_.WantsSamples() || performance_.IsRunning() || stimulus_.IsRunning();
    };
    for (std::size_t i = 0; i < count && traffic_ != nullptr && wanted(); ++i) {
        const Record record = stimulus_.Feed(traffic_->Next());
        sequencer_.Feed(record);
        performance_.Feed(record);
    }
}

void Board::StartStimulus() {
    const std::span<const std::uint8_t> memory(memory_);
    stimulus_.Start(memory.subspan(regStimulusEvents, stimulusEventBytes),
                    memory.subspan(regStimulusPatterns, stimulusPatternBytes),
                    memory.subspan(regStimulusControl, stimulusControlBytes));
}

void Board::UpdateCounters() {
    SampleBus(samplesOfAReading);
    std::uint8_t* at = &memory_[regCounters];
    for (const std::uint32_t value : performance_.Take()) {
        for (unsigned byte = 0; byte < 4; ++byte) {
            *at++ = static_cast<std::uint8_t>(value >> (8 * byte));
        }
    }
}

std::span<std::uint8_t> Board::MasterRegisters() {
    return std::span(memory_).subspan(regMaster, masterRegisters);
}

/// What changes by being looked at, and where it is.
void Board::UpdateStatus() {
    if (address_ == regCounters && performance_.IsRunning()) {
        UpdateCounters();
    } else if (address_ == regStimulusStatus) {
        if (stimulus_.IsRunning()) {
            SampleBus(samplesOfAReading);
        }
        memory_[regStimulusStatus] = stimulus_.IsRunning() ? stimulusRuns : 0;
    } else if (address_ == regScanStatus) {
        memory_[regScanStatus] = configuration.TakeStatus();
    } else if (address_ == regScanResults) {
        const auto result = configuration.Result();
        std::copy(result.begin(), result.end(), memory_.begin() + regScanResults);
    } else if (address_ == regComplianceStatus) {
        memory_[regComplianceStatus] = compliance.TakeStatus(memory_[regComplianceControl]);
    } else if (address_ == regAnomaly) {
        memory_[regAnomaly] =
            anomalies.TakeResult(std::span(memory_).subspan<regChecklist, checklistBytes>());
    } else if (address_ == regBackplaneStatus) {
        memory_[regBackplaneStatus] = backplane.TakeStatus();
    }
}

Board::Bytes Board::ReadMemory() {
    const auto live = sequencer_.LiveStatus();
    std::copy(live.begin(), live.end(), memory_.begin() + regLive);
    UpdateStatus();
    Bytes bytes;
    for (std::uint32_t i = 0; i < length_; ++i) {
        bytes.push_back(memory_[(address_ + i) % memorySize]);
    }
    if (address_ == regMasterStatus) {
        Master::Polled(MasterRegisters(), faults.master);
    }
    if (address_ == regSearch && memory_[regSearch] == searching && --faults.searchBusy <= 0) {
        memory_[regSearch] = searchState_;
    }
    return bytes;
}

Board::Bytes Board::ReadRecords(Record (Sequencer::*at)(std::int64_t) const,
                                std::int64_t first) const {
    Bytes bytes;
    for (std::int64_t i = first; i < first + length_; ++i) {
        const Record record = (sequencer_.*at)(i);
        bytes.insert(bytes.end(), record.begin(), record.end());
    }
    return bytes;
}

std::string Board::Describe(std::uint8_t opcode, std::uint8_t parameter) const {
    char text[96];
    switch (opcode) {
    case opFunction:
        std::snprintf(text, sizeof text, "function %d %s, address %u length %u", parameter,
                      std::string(FunctionName(parameter)).c_str(), address_, length_);
        break;
    case opAddress0:
    case opAddress1:
    case opAddress2:
        std::snprintf(text, sizeof text, "address %s %d",
                      opcode == opAddress0   ? "low"
                      : opcode == opAddress1 ? "middle"
                                             : "high",
                      parameter);
        break;
    case opLength0:
    case opLength1:
        std::snprintf(text, sizeof text, "length %s %d", opcode == opLength0 ? "low" : "high",
                      parameter);
        break;
    default:
        std::snprintf(text, sizeof text, "unknown opcode");
    }
    return text;
}

} // namespace boardsim
