#include "analysis/transaction.h"

namespace busquill {

std::string_view NameOf(TransactionEnd end) noexcept {
    constexpr std::array<std::string_view, transactionEndCount> names = {
        "complete",     "retry",        "disconnect-with-data", "disconnect-without-data",
        "target-abort", "master-abort", "split-response",       "bus-error",
        "unknown",      "cut-off"};
    return names[static_cast<std::size_t>(end)];
}

void AppendText(std::string& text, const DataWord& word) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (unsigned lane = word.width; lane-- > 0;) {
        if ((word.lanes >> lane & 1U) == 0) {
            text += "--";
            continue;
        }
        text += digits[word.value >> (8 * lane + 4) & 0xF];
        text += digits[word.value >> (8 * lane) & 0xF];
    }
}

} // namespace busquill
