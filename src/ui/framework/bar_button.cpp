#include "ui/framework/bar_button.h"

#include "ui/framework/icons.h"

#include <QKeySequence>
#include <QToolButton>

namespace busquill {

QStringList KeysOf(CommandId id) {
    QStringList names;
    for (const QKeySequence& key : QKeySequence::listFromString(CommandOf(id).shortcut)) {
        names << key.toString(QKeySequence::NativeText);
    }
    return names;
}

QString TipWithKey(const QString& tip, CommandId id) {
    const QStringList keys = KeysOf(id);
    return keys.isEmpty() ? tip : QString("%1 (%2)").arg(tip, keys.first());
}

QToolButton* MakeBarButton(CommandId id, const QString& tip, int iconSize) {
    const Command& command = CommandOf(id);
    auto* button = new QToolButton;
    button->setObjectName(command.text);
    button->setToolTip(TipWithKey(tip, id));
    if (*command.icon != '\0') {
        button->setIcon(IconOf(command.icon));
    }
    button->setIconSize({iconSize, iconSize});
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace busquill
