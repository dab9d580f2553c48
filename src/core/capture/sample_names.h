#pragma once

#include "capture/expression.h"
#include "signals/signal_names.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// The names that conditions on samples use, and the signals for which they stand. Tables and lists
/// outlive it.
class SampleNames final : public ExpressionNames {
public:
    SampleNames(const SignalTables& tables, std::initializer_list<const CSignalList*> lists)
        : tables_(tables), lists_(lists) {}

    [[nodiscard]] std::string_view Kind() const override { return "a signal"; }
    [[nodiscard]] std::optional<ExpressionName> Find(std::string_view name) override;
    [[nodiscard]] std::vector<std::string> All() const override;
    [[nodiscard]] std::string BelongsElsewhere(std::string_view name) const override;

    /// The signal of a name that was found.
    [[nodiscard]] const NamedSignal& Signal(const ExpressionName& name) const {
        return found_[name.id];
    }
    [[nodiscard]] BoardTraits Board() const { return tables_.Board(); }

    /// The id of a name that is not a signal's.
    static constexpr std::size_t noSignal = ~std::size_t{0};

private:
    [[nodiscard]] bool HasTimeSinceTrigger() const;
    [[nodiscard]] std::optional<NamedSignal> FindWithSlice(std::string_view name) const;

    const SignalTables& tables_;
    const std::initializer_list<const CSignalList*> lists_;
    std::vector<NamedSignal> found_;
};

} // namespace busquill
