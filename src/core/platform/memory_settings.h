#pragma once

#include "platform/settings.h"
#include "platform/text.h"

#include <map>
#include <utility>

namespace busquill {

/// Settings that are kept in memory only.
class MemorySettings final : public Settings {
public:
    [[nodiscard]] int GetProfileInt(const std::string& section, const std::string& key,
                                    int fallback) const override {
        const auto found = values_.find({section, key});
        return found == values_.end() ? fallback : ParseInt(found->second);
    }
    [[nodiscard]] std::string GetProfileString(const std::string& section, const std::string& key,
                                               const std::string& fallback) const override {
        const auto found = values_.find({section, key});
        return found == values_.end() ? fallback : found->second;
    }
    void WriteProfileInt(const std::string& section, const std::string& key, int value) override {
        values_[{section, key}] = std::to_string(value);
    }
    void WriteProfileString(const std::string& section, const std::string& key,
                            const std::string& value) override {
        values_[{section, key}] = value;
    }
    [[nodiscard]] bool Has(const std::string& section, const std::string& key) const {
        return values_.contains({section, key});
    }

private:
    std::map<std::pair<std::string, std::string>, std::string> values_;
};

} // namespace busquill
