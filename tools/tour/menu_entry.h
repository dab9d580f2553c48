#pragma once

#include <QAction>
#include <QMenu>
#include <QWidget>

namespace busquill {

/// The entry of a path such as "File/New/Capture/State" from a menu bar or a menu on, without
/// mnemonics; null when there is none. The menus are refreshed as if the user had opened them.
inline QAction* FindEntry(const QWidget& bar, const QString& path) {
    QList<QAction*> actions = bar.actions();
    QAction* found = nullptr;
    for (const QString& part : path.split('/')) {
        found = nullptr;
        for (QAction* action : actions) {
            if (action->text().remove('&') == part) {
                found = action;
            }
        }
        if (found == nullptr) {
            return nullptr;
        }
        actions.clear();
        if (QMenu* menu = found->menu()) {
            emit menu->aboutToShow();
            actions = menu->actions();
        }
    }
    return found;
}

} // namespace busquill
