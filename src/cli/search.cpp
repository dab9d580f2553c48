#include "capture/search_condition.h"
#include "cli/bus.h"
#include "cli/capture_report.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace busquill::cli {

namespace {

constexpr const char* noMatch = "No match found.";

struct SearchOptions : CapturesOptions {
    std::vector<std::string> patterns;
    std::optional<std::int64_t> from;
    bool backward = false;
    bool all = false;
};

struct FilterOptions {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    std::vector<std::string> patterns;
};

SearchCondition ConditionOf(const std::vector<std::string>& patterns, const Bus& bus,
                            const TraceStream& stream) {
    SearchCondition condition;
    for (const std::string& text : patterns) {
        const std::string wrong =
            condition.Add(text, bus.Tables(), {&stream.stateList, &stream.waveformList});
        if (!wrong.empty()) {
            WrongUse(wrong);
        }
    }
    return condition;
}

/// Calls `take` for each row that matches, in order, until it returns false.
template <typename Take>
bool TakeMatches(const SampleRows& rows, const SearchCondition& condition, Take take) {
    constexpr std::size_t block = RecordPattern::blockSize;
    const std::span<const SampleRecord> records(rows.records);
    for (std::size_t first = 0; first < records.size(); first += block) {
        const std::uint32_t matches =
            condition.MatchesOf(records.subspan(first, std::min(block, records.size() - first)));
        for (const std::size_t match : EachSetBit(matches)) {
            if (!take(first + match)) {
                return false;
            }
        }
    }
    return true;
}

/// Prints matches as they are found, or keeps them until the end of a backward search.
class Matches {
public:
    Matches(const SearchOptions& options, const ReportedCapture& capture, TextSink& output)
        : output_(output), format_(FormatOf(options)),
          isArray_(format_ == Format::Json && capture.isAlone), all_(options.all),
          backward_(options.backward) {
        if (format_ == Format::Csv) {
            begin_ = capture.CsvBegin();
        } else if (format_ == Format::Json && !capture.isAlone) {
            begin_ = capture.JsonBegin() + "\"sample\": ";
            end_ = "}\n";
        }
    }

    /// Returns false when no more matches are wanted.
    bool Add(std::int32_t number) {
        if (!backward_) {
            Print(number);
            return all_;
        }
        if (!all_) {
            kept_.clear();
        }
        kept_.push_back(number);
        return true;
    }

    bool End() {
        std::for_each(kept_.rbegin(), kept_.rend(), [this](std::int32_t each) { Print(each); });
        if (isArray_) {
            array_.End();
        }
        return any_;
    }

private:
    void Print(std::int32_t number) {
        if (isArray_) {
            array_.AddJson(std::to_string(number));
        } else {
            output_.Write(begin_ + std::to_string(number) + end_);
        }
        any_ = true;
    }

    TextSink& output_;
    JsonArray array_{output_, {"[", ", ", "]\n", "[]\n"}};
    const Format format_;
    const bool isArray_; // JSON of one capture
    std::string begin_;  // of a line
    const char* end_ = "\n";
    const bool all_;
    const bool backward_;
    std::vector<std::int32_t> kept_; // at most as many as a capture has samples
    bool any_ = false;
};

/// Returns whether there is a match.
bool SearchCapture(const SearchOptions& options, const ReportedCapture& capture, TextSink& result) {
    Bus bus(options.bus);
    const bool backward = options.backward;
    const auto from = options.from;
    TraceInput input(capture.path, bus.Tables());
    input.ReadHead();
    const SearchCondition condition = ConditionOf(options.patterns, bus, input.Stream());
    Matches matches(options, capture, result);
    bool more = true;
    while (more) {
        const SampleRows* rows = input.NextRows();
        if (rows == nullptr) {
            break;
        }
        more = TakeMatches(*rows, condition, [&](std::size_t row) {
            const std::int32_t number = rows->numbers[row];
            if (from && (backward ? number > *from : number < *from)) {
                return !backward;
            }
            return matches.Add(number);
        });
    }
    return matches.End();
}

int RunSearch(const SearchOptions& options) {
    CaptureReport report(options);
    if (FormatOf(options) == Format::Csv) {
        report.WriteCsvTitles("sample");
    }
    report.ForEach([&](const ReportedCapture& capture, TextSink& result) {
        return SearchCapture(options, capture, result);
    });
    return report.End(noMatch);
}

int RunFilter(const FilterOptions& options) {
    CheckTarget(options.output, {options.file});
    Bus bus(options.bus);
    TraceInput input(options.file, bus.Tables());
    TraceStream& stream = input.Stream();
    input.ReadHead();
    const SearchCondition condition = ConditionOf(options.patterns, bus, stream);
    const auto search = [&](auto take) {
        while (const SampleRows* rows = input.NextRows()) {
            if (!TakeMatches(*rows, condition, [&](std::size_t row) { return take(*rows, row); })) {
                return true;
            }
        }
        return false;
    };
    if (!search([](const SampleRows&, std::size_t) { return false; })) {
        Say(Printf("%s %s is not written.", noMatch, options.output.path.c_str()));
        return ExitStatus::NothingFound;
    }
    // Everything around the rows is copied unchanged, whether this program knows it or not.
    Output output(options.output.path);
    std::uint64_t from = 0;
    for (const TraceFileReader::Block& block : stream.BlocksBefore()) {
        input.CopyBytes(from, block.begin, output);
        from = block.end;
    }
    input.CopyBytes(from, stream.BlockBegin(), output);
    output.Write(Printf("\"Trace Data\",%lld,%lld\n", static_cast<long long>(stream.First()),
                        static_cast<long long>(stream.Last())));
    input.ReadHead();
    Progress progress("Filtering", stream.Last() - stream.First() + 1);
    std::string line;
    search([&](const SampleRows& rows, std::size_t row) {
        line.clear();
        AppendRow(line, rows.numbers[row], rows.records[row]);
        output.Write(line);
        progress.At(rows.numbers[row] - stream.First());
        return true;
    });
    constexpr std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
    if (input.CopyBytes(stream.BlockEnd(), end, output) == 0) {
        output.Write("\"End of Trace Data\"\n"); // missing in a file that was cut off
    }
    output.Close();
    return ExitStatus::Done;
}

void AddPatterns(CLI::App& command, std::vector<std::string>& into) {
    Completed(
        Required(AddTexts(command, "-p,--pattern", into, "NAME=VALUE",
                          "samples with this value; may be given several times, all must hold")),
        Completion::Kind::Patterns);
}

} // namespace

void AddSearch(CLI::App& program) {
    const auto options = std::make_shared<SearchOptions>();
    CLI::App& command =
        AddCommand(program, "search", "the numbers of the samples that match a pattern",
                   [options] { return RunSearch(*options); });
    AddCaptureOptions(command, *options);
    AddPatterns(command, options->patterns);
    AddNumber(command, "--from", options->from, "N", {}, "begin at sample N (the trigger is 0)");
    AddFlag(command, "--backward", options->backward, "search towards the first sample");
    AddFlag(command, "--all", options->all, "all matches, not the first alone");
}

void AddFilter(CLI::App& program) {
    const auto options = std::make_shared<FilterOptions>();
    CLI::App& command =
        AddCommand(program, "filter", "a capture of the samples that match a pattern",
                   [options] { return RunFilter(*options); });
    CompletedWithFiles(AddOperand(command, "FILE", options->file), ".tra");
    AddPatterns(command, options->patterns);
    CompletedWithFiles(Required(AddOutput(command, options->output)), ".tra");
    AddOverwrite(command, options->output);
    AddBusOptions(command, options->bus);
}

} // namespace busquill::cli
