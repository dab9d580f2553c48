#pragma once

#include <cstdint>
#include <limits>

namespace CLI {
class App;
}

namespace busquill::cli {

/// The sample numbers selected by --from and --to.
struct NumberRange {
    std::int64_t from = std::numeric_limits<std::int64_t>::min();
    std::int64_t to = std::numeric_limits<std::int64_t>::max();

    [[nodiscard]] bool Has(std::int64_t number) const noexcept {
        return number >= from && number <= to;
    }
};

void AddRange(CLI::App& command, NumberRange& into);
/// Throws ExitRequest for a range that ends before it begins.
void CheckRange(const NumberRange& range);

} // namespace busquill::cli
