#pragma once

#include <string>

namespace busquill {

/// The sections, and those keys that more than one place reads or writes.
namespace SettingsSection {
constexpr const char* setup = "Setup";
constexpr const char* display = "Display";
constexpr const char* windows = "Windows";
} // namespace SettingsSection
namespace SettingsKey {
constexpr const char* port = "ComPort";
constexpr const char* baudRate = "BaudRate";
constexpr const char* lastSetupFolder = "LastSetupDir";
constexpr const char* lastSetupFile = "LastSetupFile";
constexpr const char* showTraceStatus = "ShowTraceStatus";
} // namespace SettingsKey
constexpr int usualBaudRate = 57600;

/// The user's settings: a value for each section and key. Used on the main thread.
class Settings {
public:
    virtual ~Settings() = default;

    /// The stored number; `fallback` when nothing is stored or it is not a number.
    [[nodiscard]] virtual int GetProfileInt(const std::string& section, const std::string& key,
                                            int fallback) const = 0;
    [[nodiscard]] virtual std::string GetProfileString(const std::string& section,
                                                       const std::string& key,
                                                       const std::string& fallback) const = 0;
    virtual void WriteProfileInt(const std::string& section, const std::string& key, int value) = 0;
    virtual void WriteProfileString(const std::string& section, const std::string& key,
                                    const std::string& value) = 0;
};

} // namespace busquill
