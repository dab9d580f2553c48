#pragma once

class QString;
class QWidget;

namespace busquill {

/// Names the page of the manual that describes a window, with "#heading" for a section of it. F1
/// in the window opens it.
void SetHelpPage(QWidget& window, const char* page);
/// The page of the innermost window around a widget that has one; empty if none has.
[[nodiscard]] QString HelpPageOf(const QWidget* widget);

} // namespace busquill
