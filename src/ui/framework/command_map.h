#pragma once

#include "ui/framework/commands.h"

#include <functional>
#include <map>
#include <optional>

namespace busquill {

/// The commands that a view, the window around it, the application or the main window carries out.
/// They are asked in that order; the first that knows a command decides whether it is enabled.
class CommandMap {
public:
    void On(
        CommandId id, std::function<void()> run,
        std::function<bool()> enabled = [] { return true; });
    /// A command that shows or hides something: its entry has a mark while `isOn` holds.
    void Switch(CommandId id, std::function<void()> run, std::function<bool()> isOn,
                std::function<bool()> enabled);
    /// While `when` holds, disables a command that another map carries out.
    void Forbid(CommandId id, std::function<bool()> when);
    /// Adds the commands of another map.
    void Add(const CommandMap& other);

    /// Whether the command can be carried out now; nothing when this map does not have it.
    [[nodiscard]] std::optional<bool> CanDo(CommandId id) const;
    /// Whether the entry of a switch has its mark; nothing for other commands.
    [[nodiscard]] std::optional<bool> IsOn(CommandId id) const;
    /// Carries the command out if it is enabled. The map may be destroyed by that.
    void Do(CommandId id) const;

private:
    struct Entry {
        std::function<void()> run;
        std::function<std::optional<bool>()> enabled;
        std::function<bool()> isOn; // of a switch
    };
    std::map<CommandId, Entry> entries_;
};

} // namespace busquill
