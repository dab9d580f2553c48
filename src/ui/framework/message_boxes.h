#pragma once

#include "platform/main_thread.h"

class QWidget;

namespace busquill {

/// Shows the boxes of all threads as the system's message boxes, and lets an idle event loop serve
/// those from other threads. Call it once, on the main thread, after creating the QApplication.
void ShowBoxesAsWindows(MainThread& mainThread);

} // namespace busquill
