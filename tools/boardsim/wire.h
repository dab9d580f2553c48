/// The wire and the register map, in the order of the board's manual.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace boardsim {

// Opcodes of a frame (opcode, parameter).
enum Opcode : std::uint8_t {
    opFunction = 2,
    opAddress0 = 4,
    opAddress1 = 6,
    opAddress2 = 8,
    opLength0 = 10,
    opLength1 = 12,
};

// Functions of opcode 2.
enum Function : std::uint8_t {
    fnReadMemory = 1,
    fnWriteMemory = 2,
    fnSamplesBefore = 3,
    fnSamplesAfter = 5,
    fnReadTarget = 9,
    fnWriteTarget = 10,
    fnStartTrace = 11,
    fnStopTrace = 12,
    fnStartSearch = 13,
    fnStartPerformance = 15,
    fnStopPerformance = 16,
    fnStartAnomaly = 17,
    fnStopAnomaly = 18,
    fnStartCompliance = 19,
    fnStopCompliance = 20,
    fnStartConfigScan = 21,
    fnStopConfigScan = 22,
    fnExerciserGo = 23,
    fnExerciserStop = 24,
    fnStartStimulus = 25,
    fnStopStimulus = 26,
    fnApplyBaud = 29,
    fnFirmwareRecord = 30,
    fnZoomBefore = 35,
    fnZoomAfter = 36,
    fnStartBackplane = 39,
    fnStopBackplane = 40,
};

// Registers.
constexpr std::uint32_t regStatus = 0; // 18 bytes: name 8, suffix, buffer 2, revisions 2, ...
constexpr std::uint32_t regBaudCode = 15;
constexpr std::uint32_t regSerial = 16;
constexpr std::uint32_t regBus = 18; // 2 bytes
constexpr std::uint32_t regEvents = 20;
constexpr std::uint32_t regControl = 260;
constexpr std::uint32_t regParams = 420;
constexpr std::uint32_t regLive = 425;            // 9 bytes
constexpr std::uint32_t regSearchDirection = 440; // 0 forward, 1 backward
constexpr std::uint32_t regSearch = 441;          // 4 bytes: state, distance from the trigger
constexpr std::uint32_t regSearchPattern = 445;   // 30 bytes: alternating value and compare bytes
constexpr std::uint32_t regPerformance = 499;     // 241 bytes: type, 8 rows of 30 bytes
constexpr std::uint32_t regCounters = 748;        // 32 bytes: 8 values, the low byte first
constexpr std::uint32_t regMaster = 800;          // 50 bytes: control, status, setup
constexpr std::uint32_t regMasterStatus = 801;

// Registers of the stimulus: its status, 15 patterns and 8 events in rows of 30 bytes, 15 levels in
// slots of 5 bytes.
constexpr std::uint32_t regStimulusStatus = 929;
constexpr std::uint32_t regStimulusPatterns = 930;
constexpr std::uint32_t regStimulusControl = 1410;
constexpr std::uint32_t regStimulusEvents = 1600;

constexpr std::uint32_t regScanControl = 850;
constexpr std::uint32_t regScanStatus = 851;
constexpr std::uint32_t regScanResults = 852; // 72 bytes: header 64, address 8
constexpr std::uint32_t regComplianceControl = 1516;
constexpr std::uint32_t regComplianceStatus = 1517;
constexpr std::uint32_t regComplianceTest = 1518; // 4 bytes: letters 3, number
constexpr std::uint32_t regChecklist = 1532;      // 16 bytes
constexpr std::uint32_t regAnomaly = 1548;        // the number of a check that has found something
constexpr std::uint32_t regBackplaneStatus = 1551;
constexpr std::uint32_t regBackplane = 1552; // 28 bytes: read back and driven, alternating
constexpr std::uint32_t memorySize = 0x10000;

constexpr std::uint8_t acknowledge = '*';
constexpr std::uint8_t wrongByte = '#';

/// Rates by their code in the baud register.
constexpr std::array<int, 7> baudRates = {9600, 19200, 28800, 38400, 57600, 115200, 750000};

/// A captured sample: bit n is bit n mod 8 of byte n / 8.
using Record = std::array<std::uint8_t, 18>;

inline void SetBit(Record& record, int bit, bool value) {
    const auto mask = static_cast<std::uint8_t>(1U << (bit % 8));
    std::uint8_t& byte = record[static_cast<std::size_t>(bit) / 8];
    byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
}

inline bool GetBit(const Record& record, int bit) {
    return (record[static_cast<std::size_t>(bit) / 8] >> (bit % 8) & 1) != 0;
}

inline void SetField(Record& record, int bit, int width, std::uint64_t value) {
    for (int i = 0; i < width; ++i) {
        SetBit(record, bit + i, (value >> i & 1) != 0);
    }
}

inline std::uint64_t GetField(const Record& record, int bit, int width) {
    std::uint64_t value = 0;
    for (int i = width; i-- > 0;) {
        value = value << 1 | static_cast<std::uint64_t>(GetBit(record, bit + i));
    }
    return value;
}

} // namespace boardsim
