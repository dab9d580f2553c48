#include "analysis/command_labels.h"
#include "analysis/transaction_condition.h"
#include "analysis/transaction_fields.h"
#include "analysis/transaction_follower.h"
#include "analysis/transaction_totals.h"
#include "cli/capture_report.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "cli/range.h"
#include "cli/where.h"
#include "document/csv_line.h"
#include "platform/text.h"
#include "signals/value_text.h"
#include "tracesetup/trace_setup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <mutex>
#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

struct Options : CapturesOptions {
    NumberRange range;
    bool summary = false;
    std::int64_t words = 8;
    Where where;
};

template <typename Number>
void AppendNumber(std::string& line, Number number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    line.append(digits.data(), end);
}

/// Fills up a column of a text table: numbers to the right, texts to the left.
void AppendCell(std::string& line, std::string_view text, std::size_t width, bool isNumber) {
    const std::size_t blanks = width - std::min(width, text.size());
    line.append(line.empty() ? 0 : 2, ' ');
    line.append(isNumber ? blanks : 0, ' ');
    line += text;
    line.append(isNumber ? 0 : blanks, ' ');
}

/// A column of the text table; data have what is left of the line.
struct TextColumn {
    TransactionField field;
    std::size_t width;
    bool isNumber;
};

// clang-format off
constexpr TextColumn textColumns[] = {
    {TransactionField::Number,        8,  true},
    {TransactionField::Sample,        8,  true},
    {TransactionField::Time,          8,  true},
    {TransactionField::Command,       21, false},
    {TransactionField::Address,       16, false},
    {TransactionField::Bytes,         6,  true},
    {TransactionField::Wait,          7,  true},
    {TransactionField::InitiatorWait, 6,  true},
    {TransactionField::Latency,       8,  true},
    {TransactionField::Gap,           8,  true},
    {TransactionField::End,           23, false},
    {TransactionField::Tag,           4,  false},
    {TransactionField::SplitRequest,  6,  true},
    {TransactionField::Data,          0,  false},
};
// clang-format on

/// Those that the bus has.
std::vector<TextColumn> TextColumnsOf(const BusTraffic& traffic, bool hasSplits) {
    std::vector<TextColumn> columns;
    std::ranges::copy_if(textColumns, std::back_inserter(columns), [&](const TextColumn& each) {
        return HasField(traffic, hasSplits, each.field);
    });
    return columns;
}

/// As in the windows, in capital letters.
std::string TextTitles(const BusTraffic& traffic, bool hasSplits) {
    std::string line;
    for (const TextColumn& column : TextColumnsOf(traffic, hasSplits)) {
        std::string title =
            std::ranges::find(FieldColumns(), column.field, &FieldColumn::field)->title;
        std::ranges::transform(title, title.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
        AppendCell(line, title, column.width, column.isNumber);
    }
    return line + "\n";
}

std::string CsvTitles() {
    std::string line;
    for (const FieldColumn& column : FieldColumns()) {
        line += line.empty() ? "" : ",";
        line += NameOf(column.field);
    }
    return line;
}

/// Writes transactions, one a line.
class TransactionWriter {
public:
    TransactionWriter(TextSink& output, Format format, const ReportedCapture& capture,
                      const BusTraffic& traffic, bool hasSplits)
        : output_(output), format_(format), begin_(BeginOf(format, capture)),
          columns_(TextColumnsOf(traffic, hasSplits)), fields_(traffic) {}

    void Add(const Transaction& transaction) {
        line_ = begin_;
        switch (format_) {
        case Format::Text:
            AsText(transaction);
            break;
        case Format::Csv:
            AsCsv(transaction);
            break;
        case Format::Json:
            AsJson(transaction);
            break;
        }
        line_ += '\n';
        output_.Write(line_);
    }

private:
    static std::string BeginOf(Format format, const ReportedCapture& capture) {
        switch (format) {
        case Format::Text:
            break;
        case Format::Csv:
            return capture.CsvBegin();
        case Format::Json:
            return capture.JsonBegin();
        }
        return {};
    }

    void AsText(const Transaction& each) {
        for (const TextColumn& column : columns_) {
            cell_.clear();
            fields_.Append(cell_, each, column.field);
            AppendCell(line_, cell_, column.width, column.isNumber);
        }
        line_.erase(line_.find_last_not_of(' ') + 1);
    }

    void AsCsv(const Transaction& each) {
        const char* before = "";
        for (const FieldColumn& column : FieldColumns()) {
            line_ += before;
            before = ",";
            switch (column.field) {
            case TransactionField::Command:
                AppendCsvCell(line_, fields_.Command(each));
                break;
            case TransactionField::Address:
                if (HasAddress(each)) {
                    line_ += "0x";
                    fields_.Append(line_, each, column.field);
                }
                break;
            case TransactionField::End:
                line_ += NameOf(each.end);
                break;
            case TransactionField::Data:
                AppendWords(each, "", " ");
                break;
            default:
                if (const auto number = NumberOf(each, column.field)) {
                    AppendNumber(line_, *number);
                }
            }
        }
    }

    void AsJson(const Transaction& each) {
        for (const JsonField& field : jsonFields_) {
            line_ += field.begin;
            AppendJson(each, field.field);
        }
        line_ += '}';
    }
    void AppendJson(const Transaction& each, TransactionField field) {
        switch (field) {
        case TransactionField::Command:
            if (each.isHeadless) {
                line_ += "null";
            } else {
                AppendJsonText(line_, fields_.Command(each));
            }
            break;
        case TransactionField::Address:
            if (HasAddress(each)) {
                line_ += "\"0x";
                fields_.Append(line_, each, field);
                line_ += '"';
            } else {
                line_ += "null";
            }
            break;
        case TransactionField::End:
            line_ += '"';
            line_ += NameOf(each.end);
            line_ += '"';
            break;
        case TransactionField::Data:
            line_ += '[';
            AppendWords(each, "\"", ", ");
            line_ += ']';
            break;
        default:
            if (const auto number = NumberOf(each, field)) {
                AppendNumber(line_, *number);
            } else {
                line_ += "null";
            }
        }
    }

    void AppendWords(const Transaction& each, const char* quote, const char* between) {
        const char* before = "";
        for (const DataWord& word : each.words) {
            line_ += before;
            line_ += quote;
            AppendText(line_, word);
            line_ += quote;
            before = between;
        }
    }
    static bool HasAddress(const Transaction& each) {
        return each.address.has_value() && !each.isHeadless;
    }

    struct JsonField {
        TransactionField field;
        std::string begin;
    };
    static std::vector<JsonField> JsonFields() {
        std::vector<JsonField> fields;
        for (const FieldColumn& column : FieldColumns()) {
            const std::string name(NameOf(column.field));
            fields.push_back({column.field, (fields.empty() ? "\"" : ", \"") + name + "\": "});
        }
        return fields;
    }

    TextSink& output_;
    const Format format_;
    const std::string begin_; // of each line
    const std::vector<TextColumn> columns_;
    const std::vector<JsonField> jsonFields_ = JsonFields();
    TransactionFields fields_;
    std::string line_;
    std::string cell_;
};

std::string SummaryAsText(const TransactionTotals& totals, const BusTraffic& traffic) {
    const auto count = [](std::uint64_t number) -> unsigned long long { return number; };
    std::string text = Printf("%-24s %12s %10s %12s %10s %10s %10s %10s\n", "COMMAND",
                              "TRANSACTIONS", "WORDS", "BYTES", "WAIT", "LATENCY", "LEAST", "MOST");
    for (const auto& each : totals.Commands(traffic)) {
        const std::string wait =
            traffic.HasClock() ? std::to_string(each.wait) : FormatTime(each.wait, false);
        const auto time = [&](std::int64_t ns) {
            return each.latency.count == 0 ? std::string() : FormatTime(ns, false);
        };
        text += Printf("%-24s %12llu %10llu %12llu %10s %10s %10s %10s\n",
                       each.label.empty() ? "(begun before)" : each.label.c_str(),
                       count(each.transactions), count(each.dataPhases), count(each.bytes),
                       wait.c_str(), time(each.latency.Mean()).c_str(),
                       time(each.latency.least).c_str(), time(each.latency.most).c_str());
        text.erase(text.find_last_not_of(" \n") + 1);
        text += '\n';
    }
    text += Printf("\n%-24s %12s\n", "END", "TRANSACTIONS");
    for (std::size_t i = 0; i < transactionEndCount; ++i) {
        const auto end = static_cast<TransactionEnd>(i);
        if (totals.EndsBy(end) != 0) {
            text += Printf("%-24s %12llu\n", std::string(NameOf(end)).c_str(),
                           count(totals.EndsBy(end)));
        }
    }
    return text;
}

nlohmann::ordered_json SummaryAsJson(const TransactionTotals& totals, const BusTraffic& traffic) {
    using Json = nlohmann::ordered_json;
    Json json = {{"transactions", totals.Transactions()}};
    Json& commands = json["commands"] = Json::array();
    for (const auto& each : totals.Commands(traffic)) {
        Json command = {{"command", each.label.empty() ? Json() : Json(JsonString(each.label))},
                        {"transactions", each.transactions},
                        {"words", each.dataPhases},
                        {"bytes", each.bytes},
                        {"wait", each.wait}};
        if (each.latency.count != 0) {
            command["latency"] = {{"least", each.latency.least},
                                  {"mean", each.latency.Mean()},
                                  {"most", each.latency.most}};
        }
        commands.push_back(std::move(command));
    }
    Json& ends = json["ends"] = Json::object();
    for (std::size_t i = 0; i < transactionEndCount; ++i) {
        const auto end = static_cast<TransactionEnd>(i);
        if (totals.EndsBy(end) != 0) {
            ends[std::string(NameOf(end))] = totals.EndsBy(end);
        }
    }
    return json;
}

/// Calls `take` with each transaction that begins in the range, and whether samples are missing.
template <typename Take>
bool ForEachTransaction(TraceInput& input, TransactionFollower& follower, const NumberRange& range,
                        bool isAlone, Take take) {
    const std::int64_t first = input.Stream().First();
    const std::int64_t last = input.Stream().Last();
    Progress progress("Following", last - first + 1, isAlone);
    if (isAlone) { // many captures have their threads
        input.ReadAhead();
    }
    std::int64_t next = first; // the sample that follows those so far
    bool hasGaps = false;
    while (const SampleRows* rows = input.NextRows()) {
        for (std::size_t i = 0; i < rows->Size(); ++i) {
            hasGaps = hasGaps || rows->numbers[i] != next;
            next = std::int64_t{rows->numbers[i]} + 1;
            for (const Transaction& ended : follower.Add(rows->numbers[i], rows->records[i])) {
                if (ended.sample > range.to) {
                    return hasGaps;
                }
                if (ended.sample >= range.from) {
                    take(ended);
                }
            }
        }
        progress.At(next - first);
    }
    const auto unfinished = follower.Unfinished();
    if (unfinished && range.Has(unfinished->sample)) {
        take(*unfinished);
    }
    return hasGaps || next <= last;
}

/// The conditions of --where, which must all hold; throws ExitRequest on a mistake.
std::vector<TransactionCondition> ConditionsOf(const Options& options, const Bus& bus,
                                               const BusTraffic& traffic) {
    if (options.where.texts.empty()) {
        return {};
    }
    TransactionBus names = TransactionBus::Of(traffic, bus.Tables());
    names.kept = &options.where.kept;
    return ParseEach<TransactionCondition>(options.where, [&](const std::string& text) {
        return TransactionCondition::Parse(text, names);
    });
}

/// Follows one capture. Calls `take` with each transaction that the options select.
template <typename Take>
void FollowCapture(const Options& options, CaptureReport& report, const ReportedCapture& capture,
                   Bus& bus, TransactionFollower& follower, Take take) {
    const BusTraffic& traffic = *follower.Traffic();
    TraceInput input(capture.path, bus.Tables());
    ReadReportedHead(input);
    const auto conditions = ConditionsOf(options, bus, traffic);
    const bool storesAll = StoresAll(input.Stream().setup);
    CommandLabels labels(traffic);
    const bool hasGaps = ForEachTransaction(
        input, follower, options.range, capture.isAlone, [&](const Transaction& each) {
            if (std::ranges::all_of(conditions, [&](const TransactionCondition& condition) {
                    return condition.Holds(each, labels.Of(each));
                })) {
                take(each);
            }
        });
    if (!storesAll) {
        report.NotePartlyStored(capture);
    }
    if (hasGaps) {
        Say(SamplesAreMissing(input.Name()));
    }
}

TransactionTotals TotalsOf(const Options& options, CaptureReport& report,
                           const ReportedCapture& capture) {
    Bus bus(options.bus);
    TransactionFollower follower(bus.Board(), bus.Tables());
    TransactionTotals totals;
    FollowCapture(options, report, capture, bus, follower,
                  [&](const Transaction& each) { totals.Add(each); });
    return totals;
}

/// As text the sums of all captures together.
int ReportSummary(const Options& options, const BusTraffic& traffic) {
    CaptureReport report(options);
    if (FormatOf(options) == Format::Json) {
        report.ForEach([&](const ReportedCapture& capture, TextSink& result) {
            const std::string summary =
                JsonLine(SummaryAsJson(TotalsOf(options, report, capture), traffic));
            result.Write(capture.JsonBegin() + summary.substr(1) + "\n");
            return true;
        });
        return report.End("");
    }
    std::mutex mutex;
    TransactionTotals all;
    report.ForEach([&](const ReportedCapture& capture, TextSink& /*result*/) {
        const TransactionTotals totals = TotalsOf(options, report, capture);
        const std::lock_guard lock(mutex);
        all.Add(totals);
        return true;
    });
    if (report.AnyRead()) {
        report.Result().Write(SummaryAsText(all, traffic));
    }
    return report.End("");
}

int ReportTransactions(const Options& options, const BusTraffic& traffic, bool hasSplits) {
    const Format format = FormatOf(options);
    CaptureReport report(options);
    if (format == Format::Csv) {
        report.WriteCsvTitles(CsvTitles());
    }
    report.ForEach(
        [&](const ReportedCapture& capture, TextSink& result) {
            Bus bus(options.bus);
            TransactionFollower follower(bus.Board(), bus.Tables());
            follower.KeepWords(static_cast<std::size_t>(options.words));
            TransactionWriter writer(result, format, capture, *follower.Traffic(), hasSplits);
            bool any = false;
            FollowCapture(options, report, capture, bus, follower, [&](const Transaction& each) {
                writer.Add(each);
                any = true;
            });
            return any;
        },
        format == Format::Text ? TextTitles(traffic, hasSplits) : std::string());
    return report.End("there are no such transactions");
}

int Run(const Options& options) {
    CheckRange(options.range);
    if (options.summary && FormatOf(options) == Format::Csv) {
        WrongUse("--summary is printed as text or JSON, not as CSV");
    }
    const Bus bus(options.bus);
    const TransactionFollower follower(bus.Board(), bus.Tables());
    const BusTraffic* const traffic = follower.Traffic();
    if (traffic == nullptr) {
        WrongUse(NameOf(options.bus) + " is a connector, which has pins but no transactions");
    }
    (void)ConditionsOf(options, bus, *traffic); // a mistake is reported once, not for each capture
    return options.summary ? ReportSummary(options, *traffic)
                           : ReportTransactions(options, *traffic, bus.Board().IsPciXMode());
}

} // namespace

void AddTransactions(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "transactions", "the transactions, one a line",
                                   [options] { return Run(*options); });
    AddCaptureOptions(command, *options);
    AddRange(command, options->range);
    AddWhere(command, options->where,
             "only transactions for which this holds, such as \"wait > 4 and end == retry\"");
    AddFlag(command, "--summary", options->summary,
            "print sums by command and by end instead of the transactions");
    AddNumber(command, "--words", options->words, "N", {0, 1 << 20},
              "print the first N data words of each (default 8)");
}

} // namespace busquill::cli
