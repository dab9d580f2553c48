#include "ui/framework/bar_button.h"

#include "ui/framework/icons.h"

#include <QKeySequence>
#include <QToolButton>

namespace busquill {

QString KeyOf(CommandId id) {
    const QList<QKeySequence> keys = QKeySequence::listFromString(CommandOf(id).shortcut);
    return keys.isEmpty() ? QString() : keys.first().toString(QKeySequence::NativeText);
}

QString TipWithKey(const QString& tip, CommandId id) {
    const QString key = KeyOf(id);
    return key.isEmpty() ? tip : QString("%1 (%2)").arg(tip, key);
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
