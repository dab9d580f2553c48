#include "platform/text.h"
#include "platform/text_file.h"
#include "signals/signal_tables.h"

#include <cstdlib>

namespace busquill {

template <class Def>
std::shared_ptr<Def> DefinitionTable<Def>::FindByName(std::string_view name) const {
    for (const auto& def : defs_) {
        if (def->name == name) {
            return def;
        }
    }
    return nullptr;
}

template <class Def>
void DefinitionTable<Def>::Replace(std::vector<std::shared_ptr<Def>> defs) {
    defs_ = std::move(defs);
    ApplyColorFile();
}

// The name in a line ends at its first blank, so a name with a blank in it is never found again.
template <class Def>
void DefinitionTable<Def>::ApplyColorFile() {
    TextReader file;
    if (!file.Open(colorFile_)) {
        return;
    }
    while (const auto read = file.ReadLine()) {
        std::string_view line = *read;
        line.remove_prefix(std::min(line.find_first_not_of(" \t\v\f\r"), line.size()));
        const std::size_t nameEnd = std::min(line.find_first_of(" \t"), line.size());
        const std::string_view name = line.substr(0, nameEnd);
        const std::string rest(line.substr(nameEnd));
        for (const auto& def : defs_) {
            if (EqualIgnoringCase(def->name, name)) {
                def->color = static_cast<std::uint32_t>(std::strtol(rest.c_str(), nullptr, 16));
                break;
            }
        }
    }
}

template <class Def>
void DefinitionTable<Def>::SetColor(std::string_view name, std::uint32_t color) {
    if (const auto def = FindByName(name)) {
        def->color = color;
    }
    TextWriter file;
    if (!file.Create(colorFile_)) {
        return; // the colour lasts until the program ends
    }
    for (const auto& def : defs_) {
        file.Write(Printf("%s %x\n", def->name.c_str(), def->color));
    }
    static_cast<void>(file.Close());
}

template class DefinitionTable<CBusSignalDef>;
template class DefinitionTable<CDecodedSignalDef>;

} // namespace busquill
