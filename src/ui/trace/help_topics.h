#pragma once

namespace busquill::HelpTopic {

enum : int { State = 26, Waveform = 28, TraceSetup = 30, SetupWizard = 31, Display = 34 };

} // namespace busquill::HelpTopic
