#pragma once

#include <QIcon>
#include <QString>

namespace busquill {

/// A picture of the program by its name, such as "open". Its lines are dark or light, depending on
/// the desktop's colours when it is drawn.
[[nodiscard]] QIcon IconOf(const QString& name);

} // namespace busquill
