#pragma once

#include "platform/main_thread.h"

class QWidget;

namespace busquill {

/// Shows the boxes of all threads as the system's message boxes, and lets an idle event loop serve
/// those that other threads hand over. Called once, on the main thread, when a QApplication exists.
void ShowBoxesAsWindows(MainThread& mainThread);

} // namespace busquill
