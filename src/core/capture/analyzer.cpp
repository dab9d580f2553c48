#include "capture/analyzer.h"

namespace busquill {

Analyzer::Analyzer(const Machine& machine)
    : capture_(link_, machine.mainThread, machine.prompts),
      link_({machine.settings, machine.prompts, machine.clock, machine.mainThread,
             machine.openSerial, machine.usb}),
      tables_([this] { return link_.Traits(); }, machine.directory) {
    // In Demo Mode the bus mode alone determines the signals.
    link_.SetFamilyListener([this] { tables_.Load(); });
}

// A capture's monitor thread uses the link, so it must end before the link is destroyed.
Analyzer::~Analyzer() {
    capture_.ShutDown();
}

} // namespace busquill
