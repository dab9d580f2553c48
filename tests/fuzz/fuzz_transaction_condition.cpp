#include "analysis/transaction_condition.h"

#include <cstdint>
#include <cstdlib>

using namespace busquill;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto parsed = TransactionCondition::Parse(text, {});
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        if (error->place > size || error->message.empty()) {
            std::abort();
        }
        return 0;
    }
    Transaction transaction;
    transaction.number = size;
    transaction.address = size << 12;
    static_cast<void>(std::get<TransactionCondition>(parsed).Holds(transaction, "Mem Rd"));
    return 0;
}
