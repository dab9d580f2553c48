#pragma once

#include "platform/settings.h"

#include <QSettings>

namespace busquill {

constexpr auto organisation = "Tarnlight Labs";

/// The user's settings in the system's own store, one for each application name.
class QtSettings final : public Settings {
public:
    explicit QtSettings(const std::string& applicationName)
        : store_(QString(organisation), QString::fromStdString(applicationName)) {}
    /// Settings in a given file.
    QtSettings(const QString& file, QSettings::Format format) : store_(file, format) {}

    [[nodiscard]] int GetProfileInt(const std::string& section, const std::string& key,
                                    int fallback) const override;
    [[nodiscard]] std::string GetProfileString(const std::string& section, const std::string& key,
                                               const std::string& fallback) const override;
    void WriteProfileInt(const std::string& section, const std::string& key, int value) override;
    void WriteProfileString(const std::string& section, const std::string& key,
                            const std::string& value) override;

private:
    QSettings store_;
};

} // namespace busquill
