#include "capture/sample_condition.h"
#include "capture/search_condition.h"
#include "cli/beside.h"
#include "cli/bus.h"
#include "cli/capture_report.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/json.h"
#include "cli/output.h"
#include "cli/where.h"
#include "platform/bits.h"
#include "platform/text.h"
#include "signals/record_field.h"
#include "signals/value_text.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace busquill::cli {

namespace {

constexpr const char* noMatch = "No match found.";

/// What the samples must look like.
struct WantedSamples {
    std::vector<std::string> patterns;
    Where where;
};

struct SearchOptions : CapturesOptions {
    WantedSamples wanted;
    std::optional<std::int64_t> from;
    bool backward = false;
    bool all = false;
};

struct FilterOptions {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    WantedSamples wanted;
};

void CheckWanted(const WantedSamples& wanted, const char* command) {
    if (wanted.patterns.empty() && wanted.where.texts.empty()) {
        WrongUse(Printf("%s needs -p NAME=VALUE or --where EXPR; see busquill-trace %s -h", command,
                        command));
    }
}

/// Patterns and expressions of a command line, with the names of a bus and of some lists.
struct Conditions {
    SearchCondition patterns;
    std::vector<SampleCondition> where; // all must hold
};

using SignalLists = std::initializer_list<const CSignalList*>;

/// Throws ExitRequest on a mistake.
Conditions ConditionsOf(const WantedSamples& wanted, const SignalTables& tables,
                        SignalLists lists) {
    Conditions conditions;
    for (const std::string& text : wanted.patterns) {
        const std::string wrong = conditions.patterns.Add(text, tables, lists);
        if (!wrong.empty()) {
            WrongUse(wrong);
        }
    }
    conditions.where = ParseEach<SampleCondition>(wanted.where, [&](const std::string& text) {
        return SampleCondition::Parse(text, tables, lists, &wanted.where.kept);
    });
    return conditions;
}

Conditions ConditionsOf(const WantedSamples& wanted, const Bus& bus, const TraceStream& stream) {
    return ConditionsOf(wanted, bus.Tables(), {&stream.stateList, &stream.waveformList});
}

/// The message about the mistake that `parse` finds; nothing if there is none.
template <typename Parse>
std::optional<std::string> MistakeFoundBy(Parse parse) {
    try {
        static_cast<void>(parse());
    } catch (const ExitRequest& request) {
        if (request.status != ExitStatus::WrongUse) {
            throw;
        }
        return request.message;
    }
    return std::nullopt;
}

/// Throws ExitRequest for a mistake in all captures, before there is any result. The names of the
/// bus are right in all. A name that a list of a capture defines is right if one capture has it.
void CheckInAny(const WantedSamples& wanted, const BusOptions& options, const FileList& captures) {
    Bus bus(options);
    if (captures.isOneFile ||
        !MistakeFoundBy([&] { return ConditionsOf(wanted, bus.Tables(), SignalLists()); })) {
        return;
    }
    std::optional<std::string> mistake;
    Progress progress("Checking names", static_cast<std::int64_t>(captures.files.size()));
    for (std::size_t i = 0; i < captures.files.size(); ++i) {
        EndIfInterrupted();
        std::error_code unknown;
        if (!std::filesystem::is_regular_file(captures.files[i], unknown)) {
            continue; // a pipe can be read only once
        }
        try {
            TraceInput input(captures.files[i], bus.Tables());
            input.ReadHead();
            const auto here =
                MistakeFoundBy([&] { return ConditionsOf(wanted, bus, input.Stream()); });
            if (!here) {
                return;
            }
            mistake = mistake ? mistake : here;
        } catch (const Interruption&) {
            throw;
        } catch (const ExitRequest&) {
            // It cannot be read, which is reported with the others.
        }
        progress.At(static_cast<std::int64_t>(i + 1));
    }
    if (mistake) {
        WrongUse(*mistake);
    }
}

/// The samples that match all patterns and expressions of a command line.
class SampleFilter {
public:
    SampleFilter(const WantedSamples& wanted, const Bus& bus, TraceInput& input)
        : conditions_(ConditionsOf(wanted, bus, input.Stream())),
          sampleTime_(input.Stream().stateList), time_(sampleTime_) {
        if (NeedsTimes()) {
            const TraceSurvey survey = input.Survey();
            timeToTrigger_ = survey.timeToTrigger;
            if (survey.HasGaps()) {
                Say(SamplesAreMissing(input.Name()));
            }
        }
    }

    /// Calls `take` for each row that matches, in order, until it returns false. Rows are given in
    /// order.
    template <typename Take>
    bool TakeMatches(const SampleRows& rows, Take take) {
        if (NeedsTimes()) {
            AddTimesOf(rows);
        }
        SampleBlock all{.records = rows.records, .numbers = rows.numbers, .times = times_};
        if (last_ && !rows.Empty() && last_->first == rows.numbers.front() - 1) {
            all.before = &last_->second;
        }
        constexpr std::size_t block = RecordPattern::blockSize;
        for (std::size_t first = 0; first < rows.Size(); first += block) {
            const std::size_t count = std::min(block, rows.Size() - first);
            for (const std::size_t match : EachSetBit(MatchesOf(all, first, count))) {
                if (!take(first + match)) {
                    return false;
                }
            }
        }
        if (!rows.Empty()) {
            last_ = {rows.numbers.back(), rows.records.back()};
        }
        return true;
    }
    [[nodiscard]] bool HasEdges() const {
        return std::ranges::any_of(conditions_.where, &SampleCondition::HasEdges);
    }
    /// The next rows are the first ones again.
    void Restart() {
        last_.reset();
        time_ = RunningTime(sampleTime_);
    }

private:
    [[nodiscard]] bool NeedsTimes() const {
        return std::ranges::any_of(conditions_.where, &SampleCondition::NeedsTimes);
    }
    void AddTimesOf(const SampleRows& rows) {
        times_.clear();
        for (const SampleRecord& record : rows.records) {
            time_.Add(record);
            times_.push_back(AddTimes(time_.Sum(), -timeToTrigger_));
        }
    }
    [[nodiscard]] std::uint32_t MatchesOf(const SampleBlock& all, std::size_t first,
                                          std::size_t count) const {
        SampleBlock block{.records = all.records.subspan(first, count),
                          .numbers = all.numbers.subspan(first, count),
                          .before = RecordBefore(all, first)};
        if (!all.times.empty()) {
            block.times = all.times.subspan(first, count);
        }
        const auto& [patterns, where] = conditions_;
        std::uint32_t matches = patterns.Empty() ? ~0U : patterns.MatchesOf(block.records);
        for (const SampleCondition& each : where) {
            matches = matches != 0 ? matches & each.MatchesOf(block) : 0;
        }
        return matches;
    }

    Conditions conditions_;
    std::optional<std::pair<std::int32_t, SampleRecord>> last_; // of the piece before
    SampleTime sampleTime_;
    RunningTime time_; // up to the end of the piece
    std::int64_t timeToTrigger_ = 0;
    std::vector<std::int64_t> times_; // since the trigger, of the piece; only if they are needed
};

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
    ReadReportedHead(input);
    SampleFilter filter(options.wanted, bus, input);
    Matches matches(options, capture, result);
    std::int64_t rowsLeft = input.Stream().Last() - input.Stream().First() + 1;
    bool more = true;
    while (more) {
        const SampleRows* rows = input.NextRows();
        if (rows == nullptr) {
            break;
        }
        rowsLeft -= static_cast<std::int64_t>(rows->Size());
        more = filter.TakeMatches(*rows, [&](std::size_t row) {
            const std::int32_t number = rows->numbers[row];
            if (from && (backward ? number > *from : number < *from)) {
                return !backward;
            }
            return matches.Add(number);
        });
    }
    const bool any = matches.End();
    if (!any && rowsLeft > 0 && filter.HasEdges()) {
        Say(input.Name() + ": samples of the capture are missing, and edges at them are not found");
    }
    return any;
}

int RunSearch(const SearchOptions& options) {
    CheckWanted(options.wanted, "search");
    CaptureReport report(options);
    CheckInAny(options.wanted, options.bus, report.Captures());
    if (FormatOf(options) == Format::Csv) {
        report.WriteCsvTitles("sample");
    }
    report.ForEach([&](const ReportedCapture& capture, TextSink& result) {
        return SearchCapture(options, capture, result);
    });
    return report.End(noMatch);
}

int RunFilter(const FilterOptions& options) {
    CheckWanted(options.wanted, "filter");
    CheckTarget(options.output, {options.file});
    Bus bus(options.bus);
    TraceInput input(options.file, bus.Tables());
    TraceStream& stream = input.Stream();
    input.ReadHead();
    SampleFilter filter(options.wanted, bus, input);
    const auto search = [&](auto take) {
        filter.Restart();
        while (const SampleRows* rows = input.NextRows()) {
            if (!filter.TakeMatches(*rows, [&](std::size_t row) { return take(*rows, row); })) {
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
    WriteBookmarksBeside(options.output.path, options.file);
    return ExitStatus::Done;
}

void AddWanted(CLI::App& command, WantedSamples& into) {
    Completed(AddTexts(command, "-p,--pattern", into.patterns, "NAME=VALUE",
                       "samples with this value; may be given several times, all must hold"),
              Completion::Kind::Patterns);
    AddWhere(command, into.where,
             "samples for which this holds, such as \"FRAME falls and AD in 0x1000..0x1fff\"");
}

} // namespace

void AddSearch(CLI::App& program) {
    const auto options = std::make_shared<SearchOptions>();
    CLI::App& command =
        AddCommand(program, "search", "the numbers of the samples that match a condition",
                   [options] { return RunSearch(*options); });
    AddCaptureOptions(command, *options);
    AddWanted(command, options->wanted);
    AddNumber(command, "--from", options->from, "N", {}, "begin at sample N (the trigger is 0)");
    AddFlag(command, "--backward", options->backward, "search towards the first sample");
    AddFlag(command, "--all", options->all, "all matches, not the first alone");
}

void AddFilter(CLI::App& program) {
    const auto options = std::make_shared<FilterOptions>();
    CLI::App& command =
        AddCommand(program, "filter", "a capture of the samples that match a condition",
                   [options] { return RunFilter(*options); });
    CompletedWithFiles(AddOperand(command, "FILE", options->file), ".tra");
    AddWanted(command, options->wanted);
    CompletedWithFiles(Required(AddOutput(command, options->output)), ".tra");
    AddOverwrite(command, options->output);
    AddBusOptions(command, options->bus);
}

} // namespace busquill::cli
