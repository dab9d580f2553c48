#pragma once

#include "ui/framework/commands.h"

#include <QString>
#include <QStringList>

class QToolButton;

namespace busquill {

/// The keys of a command as users read them, such as "Shift+F5"; none if it has only an entry.
[[nodiscard]] QStringList KeysOf(CommandId id);
/// A tool tip that names the command's key: "Stop the capture (Shift+F5)".
[[nodiscard]] QString TipWithKey(const QString& tip, CommandId id);

/// A button for the bar of a window, named after its command and without the focus. Who makes it
/// connects it with the command, which the key carries out too.
[[nodiscard]] QToolButton* MakeBarButton(CommandId id, const QString& tip, int iconSize);

} // namespace busquill
