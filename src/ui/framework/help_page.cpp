#include "ui/framework/help_page.h"

#include <QVariant>
#include <QWidget>

namespace busquill {

namespace {

constexpr auto property = "helpPage";

} // namespace

void SetHelpPage(QWidget& window, const char* page) {
    window.setProperty(property, QString(page));
}

QString HelpPageOf(const QWidget* widget) {
    for (; widget != nullptr; widget = widget->parentWidget()) {
        QString page = widget->property(property).toString();
        if (!page.isEmpty()) {
            return page;
        }
    }
    return {};
}

} // namespace busquill
