#include "analysis/command_labels.h"

#include <algorithm>
#include <set>

namespace busquill {

std::vector<std::string> AllCommandLabels(const BusTraffic& traffic) {
    std::set<CommandName> names;
    for (const std::uint32_t command : traffic.Commands()) {
        names.insert(traffic.NameOf(command));
    }
    std::vector<std::string> labels;
    labels.reserve(names.size());
    for (const CommandName& name : names) {
        if (std::ranges::find(labels, name.label) == labels.end()) {
            labels.push_back(name.label);
        }
    }
    return labels;
}

const std::string& CommandLabels::Of(const Transaction& transaction) {
    static const std::string none;
    if (transaction.isHeadless) {
        return none;
    }
    const auto [label, isNew] = labels_.try_emplace(transaction.command);
    if (isNew) {
        label->second = traffic_.NameOf(transaction.command).label;
    }
    return label->second;
}

} // namespace busquill
