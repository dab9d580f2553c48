#include "ui/framework/qt_settings.h"

namespace busquill {

namespace {

QString PathOf(const std::string& section, const std::string& key) {
    return QString::fromStdString(section + "/" + key);
}

} // namespace

int QtSettings::GetProfileInt(const std::string& section, const std::string& key,
                              int fallback) const {
    bool isNumber = false;
    const int value = store_.value(PathOf(section, key)).toInt(&isNumber);
    return isNumber ? value : fallback;
}

std::string QtSettings::GetProfileString(const std::string& section, const std::string& key,
                                         const std::string& fallback) const {
    const QVariant value = store_.value(PathOf(section, key));
    return value.isValid() ? value.toString().toStdString() : fallback;
}

void QtSettings::WriteProfileInt(const std::string& section, const std::string& key, int value) {
    store_.setValue(PathOf(section, key), value);
    store_.sync();
}

void QtSettings::WriteProfileString(const std::string& section, const std::string& key,
                                    const std::string& value) {
    store_.setValue(PathOf(section, key), QString::fromStdString(value));
    store_.sync();
}

} // namespace busquill
