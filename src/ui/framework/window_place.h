#pragma once

#include <QObject>

#include <string>

class QWidget;

namespace busquill {

class Settings;

/// Remembers in the settings where the user leaves a window, and how large: puts the window there
/// at once, and stores its place whenever it is hidden or closed. Belongs to the window. The first
/// time, and if the screen it was on is gone, the window stays where it is.
class WindowPlace final : public QObject {
public:
    /// `name` is the window's key in the settings, which outlive it.
    WindowPlace(QWidget& window, Settings& settings, std::string name);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& window_;
    Settings& settings_;
    const std::string name_;
};

} // namespace busquill
