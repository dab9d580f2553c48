#pragma once

#include "capture/capture_run.h"

#include <array>
#include <string>

namespace busquill {

class CPositionGauge;

/// What a trace view shows in the window around it.
class TraceFrame {
public:
    virtual ~TraceFrame() = default;
    virtual void SetTitleName(const std::string& name) = 0;
    virtual void SetComment(const std::string& text) = 0;
    /// Shows the name of the document's setup after it has changed.
    virtual void ShowSetupName() = 0;
    /// Samples stored before and after the trigger.
    virtual void SetCounters(std::int64_t before, std::int64_t after) = 0;
    /// The state of the capture, and its level (from 1) if given.
    virtual void SetIndicator(RunIndicator indicator, int level = -1) = 0;
    /// The times from marker 1 to marker 2, marker 1 to the trigger and marker 2 to the trigger.
    virtual void SetTimes(const std::array<std::string, 3>& times) = 0;
    [[nodiscard]] virtual CPositionGauge& GetGauge() = 0;
};

} // namespace busquill
