#include "analysis/compared_signals.h"
#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/name_list.h"
#include "cli/output.h"
#include "platform/text.h"
#include "signals/signal_names.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

struct Options {
    std::string a;
    std::string b;
    OutputOptions output;
    BusOptions bus;
    std::vector<std::string> ignore;
    bool byPlace = false;
    bool json = false;
};

/// Iterates over the samples of a capture.
class SampleCursor {
public:
    SampleCursor(TraceInput& input, bool byPlace) : input_(input), byPlace_(byPlace) {
        input.ReadHead();
        Load();
    }

    [[nodiscard]] bool AtEnd() const noexcept { return rows_ == nullptr; }
    /// Samples of two captures with the same key belong together.
    [[nodiscard]] std::int64_t Key() const {
        return Number() - (byPlace_ ? input_.Stream().First() : 0);
    }
    [[nodiscard]] std::int64_t Number() const { return rows_->numbers[row_]; }
    [[nodiscard]] const SampleRecord& Record() const { return rows_->records[row_]; }
    void Next() {
        if (++row_ == rows_->Size()) {
            Load();
        }
    }

private:
    void Load() {
        rows_ = input_.NextRows();
        row_ = 0;
    }

    TraceInput& input_;
    const bool byPlace_;
    const SampleRows* rows_ = nullptr;
    std::size_t row_ = 0;
};

/// Samples that belong together; null for a sample that a capture lacks.
struct Pair {
    std::int64_t number = 0;
    const SampleRecord* a = nullptr;
    const SampleRecord* b = nullptr;
};

/// Calls `take` for each pair, in order.
template <typename Take>
void ForEachPair(TraceInput& inputA, TraceInput& inputB, bool byPlace, Take take) {
    SampleCursor a(inputA, byPlace);
    SampleCursor b(inputB, byPlace);
    while (!a.AtEnd() || !b.AtEnd()) {
        const bool hasA = !a.AtEnd() && (b.AtEnd() || a.Key() <= b.Key());
        const bool hasB = !b.AtEnd() && (a.AtEnd() || b.Key() <= a.Key());
        take(Pair{hasA ? a.Number() : b.Number(), hasA ? &a.Record() : nullptr,
                  hasB ? &b.Record() : nullptr});
        if (hasA) {
            a.Next();
        }
        if (hasB) {
            b.Next();
        }
    }
}

struct Summary {
    std::int64_t samples = 0; // pairs, including incomplete ones
    std::int64_t differing = 0;
    std::int64_t onlyA = 0;
    std::int64_t onlyB = 0;
    std::optional<std::int64_t> first;
    std::map<std::size_t, std::int64_t> signals; // how often each differs, by index
};

/// One line of the table of differences.
struct Difference {
    std::int64_t number;
    std::string signal;
    std::string a;
    std::string b;
};

class Comparison {
public:
    Comparison(const Options& options, Bus& bus)
        : signals_(bus.Tables()), byPlace_(options.byPlace), a_(options.a, bus.Tables()),
          b_(options.b, bus.Tables()) {
        for (const std::string& name : SplitNames(options.ignore)) {
            const auto signal = FindSignal(name, bus.Tables(), {});
            if (!signal) {
                WrongUse(UnknownSignal(name, bus.Tables(), {}));
            }
            signals_.Ignore(signal->positions);
        }
    }

    [[nodiscard]] Summary Sum() {
        Summary summary;
        std::vector<std::size_t> places;
        ForEachPair(a_, b_, byPlace_, [&](const Pair& pair) {
            ++summary.samples;
            if (!IsDifferent(pair)) {
                return;
            }
            ++summary.differing;
            summary.first = summary.first.value_or(pair.number);
            if (pair.a == nullptr || pair.b == nullptr) {
                ++(pair.a != nullptr ? summary.onlyA : summary.onlyB);
                return;
            }
            signals_.Differing(*pair.a, *pair.b, places);
            for (const std::size_t place : places) {
                ++summary.signals[place];
            }
        });
        return summary;
    }

    template <typename Take>
    void ForEachDifference(Take take) {
        std::vector<std::size_t> places;
        ForEachPair(a_, b_, byPlace_, [&](const Pair& pair) {
            if (!IsDifferent(pair)) {
                return;
            }
            if (pair.a == nullptr || pair.b == nullptr) {
                const bool inA = pair.a != nullptr;
                take(Difference{pair.number, "(sample)", inA ? "there" : "missing",
                                inA ? "missing" : "there"});
                return;
            }
            signals_.Differing(*pair.a, *pair.b, places);
            for (const std::size_t place : places) {
                take(Difference{pair.number, Name(place), signals_.Text(place, *pair.a),
                                signals_.Text(place, *pair.b)});
            }
        });
    }

    [[nodiscard]] const std::string& Name(std::size_t place) const {
        return signals_.All()[place].name;
    }

private:
    [[nodiscard]] bool IsDifferent(const Pair& pair) const {
        return pair.a == nullptr || pair.b == nullptr || signals_.Differ(*pair.a, *pair.b);
    }

    ComparedSignals signals_;
    const bool byPlace_;
    TraceInput a_;
    TraceInput b_;
};

long long Long(std::int64_t number) {
    return number;
}

void WriteText(Comparison& comparison, const Summary& summary, Output& output) {
    if (!summary.first) {
        output.Write(Printf("No difference in %lld samples.\n", Long(summary.samples)));
        return;
    }
    output.Write(Printf("First difference:  sample %lld\nDiffering samples: %lld of %lld\n",
                        Long(*summary.first), Long(summary.differing), Long(summary.samples)));
    if (summary.onlyA + summary.onlyB > 0) {
        output.Write(Printf("Only in A:         %lld\nOnly in B:         %lld\n",
                            Long(summary.onlyA), Long(summary.onlyB)));
    }
    std::string names;
    for (const auto& [place, count] : summary.signals) {
        names += Printf("%s%s (%lld)", names.empty() ? "" : ", ", comparison.Name(place).c_str(),
                        Long(count));
    }
    output.Write("Differing signals: " + (names.empty() ? "none" : names) + "\n\n");
    output.Write(Printf("%10s  %-16s %-18s %s\n", "SAMPLE", "SIGNAL", "A", "B"));
    comparison.ForEachDifference([&](const Difference& each) {
        output.Write(Printf("%10lld  %-16s %-18s %s\n", Long(each.number), each.signal.c_str(),
                            each.a.c_str(), each.b.c_str()));
    });
}

void WriteJson(Comparison& comparison, const Summary& summary, Output& output) {
    using Json = nlohmann::ordered_json;
    Json json = {{"same", !summary.first},     {"first", nullptr},
                 {"samples", summary.samples}, {"differing", summary.differing},
                 {"onlyInA", summary.onlyA},   {"onlyInB", summary.onlyB}};
    if (summary.first) {
        json["first"] = *summary.first;
    }
    Json& signals = json["signals"] = Json::array();
    for (const auto& [place, count] : summary.signals) {
        signals.push_back({{"name", JsonString(comparison.Name(place))}, {"count", count}});
    }
    std::string begin = JsonLine(json);
    begin.pop_back(); // the rows follow inside the object
    output.Write(begin + ",\n\"rows\": [");
    JsonArray rows(output, {"\n", ",\n", "]}\n", "]}\n"});
    if (summary.first) {
        comparison.ForEachDifference([&](const Difference& each) {
            rows.Add({{"sample", each.number},
                      {"signal", JsonString(each.signal)},
                      {"a", JsonString(each.a)},
                      {"b", JsonString(each.b)}});
        });
    }
    rows.End();
}

int Run(const Options& options) {
    CheckTarget(options.output, {options.a, options.b});
    if (options.a == "-" && options.b == "-") {
        WrongUse("only one of the captures can be standard input");
    }
    Bus bus(options.bus);
    Comparison comparison(options, bus);
    const Summary summary = comparison.Sum();
    Output output(options.output.path);
    options.json ? WriteJson(comparison, summary, output) : WriteText(comparison, summary, output);
    output.Close();
    return summary.first ? ExitStatus::NothingFound : ExitStatus::Done;
}

} // namespace

void AddCompare(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "compare", "where two captures differ",
                                   [options] { return Run(*options); });
    CompletedWithFiles(AddOperand(command, "A", options->a), ".tra");
    CompletedWithFiles(AddOperand(command, "B", options->b), ".tra");
    AddOutput(command, options->output);
    AddOverwrite(command, options->output);
    AddJson(command, options->json);
    AddBusOptions(command, options->bus);
    Completed(AddTexts(command, "--ignore", options->ignore, "NAME,...",
                       "leave these signals out of the comparison"),
              Completion::Kind::Names);
    AddChoice<bool>(command, "--align", {{"trigger", false}, {"start", true}}, options->byPlace,
                    "trigger|start", "pair samples by number or by place (default trigger)");
}

} // namespace busquill::cli
