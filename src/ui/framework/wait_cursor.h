#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace busquill {

/// Shows the wait cursor during its lifetime. Main thread.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace busquill
