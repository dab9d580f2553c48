#include "ui/framework/command_map.h"

#include <utility>

namespace busquill {

void CommandMap::On(CommandId id, std::function<void()> run, std::function<bool()> enabled) {
    entries_[id] = {std::move(run), std::move(enabled), nullptr};
}

void CommandMap::Switch(CommandId id, std::function<void()> run, std::function<bool()> isOn,
                        std::function<bool()> enabled) {
    entries_[id] = {std::move(run), std::move(enabled), std::move(isOn)};
}

void CommandMap::Forbid(CommandId id, std::function<bool()> when) {
    entries_[id] = {
        [] {}, [when = std::move(when)] { return when() ? std::optional(false) : std::nullopt; },
        nullptr};
}

void CommandMap::Add(const CommandMap& other) {
    entries_.insert(other.entries_.begin(), other.entries_.end());
}

std::optional<bool> CommandMap::CanDo(CommandId id) const {
    const auto found = entries_.find(id);
    return found == entries_.end() ? std::nullopt : found->second.enabled();
}

std::optional<bool> CommandMap::IsOn(CommandId id) const {
    const auto found = entries_.find(id);
    const bool isSwitch = found != entries_.end() && found->second.isOn != nullptr;
    return isSwitch ? std::optional(found->second.isOn()) : std::nullopt;
}

void CommandMap::Do(CommandId id) const {
    if (CanDo(id).value_or(false)) {
        const std::function<void()> run = entries_.at(id).run; // it may close the window
        run();
    }
}

} // namespace busquill
