#include "analysis/trace_comparison.h"
#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/name_list.h"
#include "cli/output.h"
#include "platform/text.h"

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

/// Two captures that are compared.
class Captures {
public:
    Captures(const Options& options, SignalTables& tables)
        : byPlace_(options.byPlace), a_(options.a, tables), b_(options.b, tables) {}

    /// Calls `take` for each pair, in order.
    template <typename Take>
    void ForEachPair(Take take) {
        a_.ReadHead();
        b_.ReadHead();
        SamplePairs pairs(byPlace_ ? a_.Stream().First() : 0, byPlace_ ? b_.Stream().First() : 0);
        while (true) {
            if (pairs.NeedsA()) {
                pairs.GiveA(a_.NextRows());
            }
            if (pairs.NeedsB()) {
                pairs.GiveB(b_.NextRows());
            }
            const auto pair = pairs.Next();
            if (!pair) {
                return;
            }
            take(*pair);
        }
    }

private:
    const bool byPlace_;
    TraceInput a_;
    TraceInput b_;
};

using Summary = TraceComparison::Summary;
using Difference = TraceComparison::Difference;

/// Calls `take` for each difference, in order.
template <typename Take>
void ForEachDifference(Captures& captures, TraceComparison& comparison, Take take) {
    captures.ForEachPair([&](const SamplePair& pair) {
        for (const Difference& each : comparison.DifferencesOf(pair)) {
            take(each);
        }
    });
}

long long Long(std::int64_t number) {
    return number;
}

void WriteText(Captures& captures, TraceComparison& comparison, const Summary& summary,
               Output& output) {
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
    ForEachDifference(captures, comparison, [&](const Difference& each) {
        output.Write(Printf("%10lld  %-16s %-18s %s\n", Long(each.number), each.signal.c_str(),
                            each.a.c_str(), each.b.c_str()));
    });
}

void WriteJson(Captures& captures, TraceComparison& comparison, const Summary& summary,
               Output& output) {
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
        ForEachDifference(captures, comparison, [&](const Difference& each) {
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
    TraceComparison comparison(bus.Tables());
    Captures captures(options, bus.Tables());
    for (const std::string& name : SplitNames(options.ignore)) {
        if (const std::string wrong = comparison.Ignore(name); !wrong.empty()) {
            WrongUse(wrong);
        }
    }
    Summary summary;
    captures.ForEachPair([&](const SamplePair& pair) { comparison.Count(pair, summary); });
    Output output(options.output.path);
    options.json ? WriteJson(captures, comparison, summary, output)
                 : WriteText(captures, comparison, summary, output);
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
