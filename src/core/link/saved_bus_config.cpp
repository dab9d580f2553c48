#include "link/saved_bus_config.h"

#include "platform/settings.h"

namespace busquill {

namespace {

constexpr const char* isSaved = "SaveBusConfig";

struct StoredValue {
    const char* key;
    std::int32_t BusConfig::*value;
};
constexpr StoredValue storedValues[] = {{"BusMode", &BusConfig::busMode},
                                        {"BusWidth", &BusConfig::busWidth},
                                        {"BusVoltage", &BusConfig::busVoltage},
                                        {"BusFrequency", &BusConfig::busFrequency}};

} // namespace

std::optional<BusConfig> LoadSavedBusConfig(const Settings& settings) {
    if (settings.GetProfileInt(SettingsSection::setup, isSaved, 0) == 0) {
        return std::nullopt;
    }
    BusConfig config;
    for (const StoredValue& stored : storedValues) {
        config.*stored.value = settings.GetProfileInt(SettingsSection::setup, stored.key, 0);
    }
    return config;
}

void SaveBusConfig(Settings& settings, const std::optional<BusConfig>& config) {
    settings.WriteProfileInt(SettingsSection::setup, isSaved, config ? 1 : 0);
    if (!config) {
        return;
    }
    for (const StoredValue& stored : storedValues) {
        settings.WriteProfileInt(SettingsSection::setup, stored.key, (*config).*stored.value);
    }
}

} // namespace busquill
