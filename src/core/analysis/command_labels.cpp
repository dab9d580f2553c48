#include "analysis/command_labels.h"

namespace busquill {

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
