#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace busquill {

/// The pointer over all windows of the program, as long as this object exists.
class OverrideCursor {
public:
    explicit OverrideCursor(Qt::CursorShape shape) { QGuiApplication::setOverrideCursor(shape); }
    ~OverrideCursor() { QGuiApplication::restoreOverrideCursor(); }
    OverrideCursor(const OverrideCursor&) = delete;
    OverrideCursor& operator=(const OverrideCursor&) = delete;
};

/// The pointer of a busy program.
class WaitCursor : public OverrideCursor {
public:
    WaitCursor() : OverrideCursor(Qt::WaitCursor) {}
};

} // namespace busquill
