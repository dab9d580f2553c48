#pragma once

class QString;
class QWidget;

namespace busquill {

/// Names the page of the manual that describes a window, with "#heading" for a section of it. F1
/// in the window opens it.
void SetHelpPage(QWidget& window, const char* page);
/// The page that the innermost window around a widget names; empty if none names one.
[[nodiscard]] QString HelpPageOf(const QWidget* widget);

} // namespace busquill
