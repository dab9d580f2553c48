#pragma once

#include <cstdint>
#include <limits>

namespace busquill::cli {

struct Arguments;

/// The sample numbers selected by --from and --to.
struct NumberRange {
    std::int64_t from = std::numeric_limits<std::int64_t>::min();
    std::int64_t to = std::numeric_limits<std::int64_t>::max();

    [[nodiscard]] bool Has(std::int64_t number) const noexcept {
        return number >= from && number <= to;
    }
};

/// Throws ExitRequest for a range that ends before it begins.
[[nodiscard]] NumberRange RangeOf(const Arguments& arguments);

} // namespace busquill::cli
