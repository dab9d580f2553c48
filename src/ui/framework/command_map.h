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
    /// Disables a command that another one carries out, as long as `when` holds.
    void Forbid(CommandId id, std::function<bool()> when);
    /// Takes up the commands of another one.
    void Add(const CommandMap& other);

    /// Whether the command can be carried out now; nothing when it is not known here.
    [[nodiscard]] std::optional<bool> CanDo(CommandId id) const;
    /// Carries it out, if it can be now. The map may be gone afterwards.
    void Do(CommandId id) const;

private:
    struct Entry {
        std::function<void()> run;
        std::function<std::optional<bool>()> enabled;
    };
    std::map<CommandId, Entry> entries_;
};

} // namespace busquill
