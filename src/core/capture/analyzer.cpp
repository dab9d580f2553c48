#include "capture/analyzer.h"

namespace busquill {

Analyzer::Analyzer(const Machine& machine)
    : capture_(link_, machine.mainThread, machine.prompts),
      link_({machine.settings, machine.prompts, machine.clock, machine.mainThread,
             machine.openSerial, machine.usb}),
      tables_([this] { return link_.Traits(); }, machine.directory) {
    // In Demo Mode the bus mode alone decides which signals there are.
    link_.SetFamilyListener([this] { tables_.Load(); });
}

// The monitor of a capture uses the link, so it ends before the link does.
Analyzer::~Analyzer() {
    capture_.ShutDown();
}

} // namespace busquill
