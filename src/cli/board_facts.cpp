#include "cli/board_facts.h"

#include "platform/text.h"

namespace busquill::cli {

std::vector<Fact> BoardFacts(const BoardIdentity& identity, const BusConfig& bus) {
    return {
        TextFact("Model", "model", identity.modelString),
        TextFact("Buffer Size", "bufferSize", Printf("%dK", identity.bufferSizeK)),
        TextFact("Firmware Version", "firmware", identity.firmwareRevision),
        TextFact("Hardware Version", "hardware", identity.hardwareRevision),
        NumberFact("Serial Number", "serial", identity.serialNumber),
        TextFact("Bus Mode", "busMode", std::string(BusModeName(bus.busMode))),
        NumberFact("Bus Width", "busWidth", bus.busWidth == 1 ? 64 : 32),
        TextFact("Bus Voltage", "busVoltage", bus.busVoltage == 1 ? "3.3V" : "5.0V"),
        TextFact("Bus Frequency", "busFrequency", Printf("%d MHz", bus.busFrequency)),
    };
}

} // namespace busquill::cli
