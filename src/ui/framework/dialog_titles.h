#pragma once

class QObject;

namespace busquill {

/// From here on every dialog opens at least as wide as its title, as long as `owner` lives.
void KeepTitlesWhole(QObject& owner);

} // namespace busquill
