#pragma once

#include "wire.h"

#include <string>
#include <vector>

namespace boardsim {

/// The trigger of a recorded setup of the PCI family.
struct WriteEvent {
    int addressBit = 95; // set in an address phase
    int commandBit = 64; // four bits
    unsigned command = 7;
};
constexpr WriteEvent writeEvent;

/// The content of a trace file.
struct Recording {
    std::string name;
    std::string description;
    std::vector<Record> samples;
    std::vector<bool> missing; // which samples are left out; empty: none
    std::size_t trigger = 0;   // index of the trigger sample
    std::vector<Record> zoom;  // 511 records or none
    bool pciEvents = false;    // the setup's event rows, for the PCI family
    bool pciWaveformList = false;
    bool pciStateList = false; // with times and findings
};

/// The whole file as text.
[[nodiscard]] std::string TraceText(const Recording& recording);

} // namespace boardsim
