#include "ui/shell/help_key.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <utility>

namespace busquill {

HelpKey::HelpKey(QObject* parent, std::function<void(const QWidget&)> showHelp,
                 std::function<void()> showKeys)
    : QObject(parent), showHelp_(std::move(showHelp)), showKeys_(std::move(showKeys)) {
    qApp->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    const bool asks = event->type() == QEvent::ShortcutOverride;
    if ((!asks && event->type() != QEvent::KeyPress) || !watched->isWidgetType()) {
        return false;
    }
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool asksForKeys = key.modifiers() == Qt::ShiftModifier;
    if (key.key() != Qt::Key_F1 || (key.modifiers() != Qt::NoModifier && !asksForKeys)) {
        return false;
    }
    event->accept(); // a ShortcutOverride is then followed by the key, not by the menu's shortcut
    if (!asks) {
        asksForKeys ? showKeys_() : showHelp_(static_cast<const QWidget&>(*watched));
    }
    return true;
}

} // namespace busquill
