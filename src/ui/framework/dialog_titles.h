#pragma once

class QObject;

namespace busquill {

/// Makes every dialog open at least as wide as its title, as long as `owner` lives.
void WidenDialogsToTitles(QObject& owner);

} // namespace busquill
