#include "analysis/bus_traffic.h"
#include "analysis/transaction_condition.h"
#include "capture/kept_expressions.h"
#include "support/board_tables.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

/// The first byte is the place of the cursor, the rest the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const BoardTables board("PCIKite-1");
    static const KeptExpressions kept = [] {
        KeptExpressions made;
        made.Keep("slow", "wait > 4 or latency >= 1.5us");
        made.Keep("late", "not @slow and (@slow or address == FEBFxxxx)");
        made.Keep("loop", "wait > 4 and @loop");
        made.Keep("edge", "FRAME falls");
        return made;
    }();
    static const TransactionBus bus = [] {
        auto made = TransactionBus::Of(*MakeBusTraffic(board.board, board.tables), board.tables);
        made.kept = &kept;
        return made;
    }();
    const std::size_t cursor = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
    const std::string_view text(reinterpret_cast<const char*>(data) + (size == 0 ? 0 : 1),
                                size == 0 ? 0 : size - 1);
    if (TransactionCondition::Complete(text, cursor, bus).place > cursor) {
        std::abort();
    }
    const auto parsed = TransactionCondition::Parse(text, bus);
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        if (error->place > text.size() || error->message.empty()) {
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
