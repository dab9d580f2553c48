#include "ui/framework/window_place.h"

#include "platform/settings.h"

#include <QEvent>
#include <QWidget>

#include <utility>

namespace busquill {

WindowPlace::WindowPlace(QWidget& window, Settings& settings, std::string name)
    : QObject(&window), window_(window), settings_(settings), name_(std::move(name)) {
    const std::string stored = settings.GetProfileString(SettingsSection::windows, name_, "");
    window.restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored)));
    window.installEventFilter(this);
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event) {
    // A spontaneous event comes from the desktop, for instance when the window is minimised.
    if (event->type() == QEvent::Hide && !event->spontaneous()) {
        settings_.WriteProfileString(SettingsSection::windows, name_,
                                     window_.saveGeometry().toBase64().toStdString());
    }
    return QObject::eventFilter(watched, event);
}

} // namespace busquill
