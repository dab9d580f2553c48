#include "analysis/command_labels.h"
#include "analysis/transaction_condition.h"
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
#include <charconv>
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

constexpr const char* csvTitles = "number,sample,time,command,address,words,bytes,wait,"
                                  "initiatorWait,latency,end,gap,tag,splitRequest,findings,data";

constexpr std::size_t numberWidth = 8;
constexpr std::size_t timeWidth = 8;
constexpr std::size_t commandWidth = 20;
constexpr std::size_t addressWidth = 10;
constexpr std::size_t countWidth = 6;
constexpr std::size_t endWidth = 23;

std::string TextTitles(const BusTraffic& traffic, bool hasSplits) {
    std::string line;
    AppendCell(line, "NUMBER", numberWidth, true);
    AppendCell(line, "SAMPLE", numberWidth, true);
    AppendCell(line, "TIME", timeWidth, true);
    AppendCell(line, "COMMAND", commandWidth, false);
    AppendCell(line, "ADDRESS", addressWidth, false);
    AppendCell(line, "BYTES", countWidth, true);
    AppendCell(line, "WAIT", countWidth, true);
    if (traffic.HasClock()) {
        AppendCell(line, "I-WAIT", countWidth, true);
    }
    AppendCell(line, "LATENCY", timeWidth, true);
    AppendCell(line, "GAP", timeWidth, true);
    AppendCell(line, "END", endWidth, false);
    if (hasSplits) {
        AppendCell(line, "TAG", 3, false);
        AppendCell(line, "SPLIT", countWidth, true);
    }
    return line + "  DATA\n";
}

/// Writes transactions, one a line.
class TransactionWriter {
public:
    TransactionWriter(TextSink& output, Format format, const ReportedCapture& capture,
                      const BusTraffic& traffic, bool hasSplits)
        : output_(output), format_(format), begin_(BeginOf(format, capture)), traffic_(traffic),
          hasSplits_(hasSplits), labels_(traffic) {}

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

    [[nodiscard]] std::string_view Number(std::int64_t number) {
        cell_.clear();
        AppendNumber(cell_, number);
        return cell_;
    }
    [[nodiscard]] std::string_view Time(const std::optional<std::int64_t>& time) {
        cell_ = time ? FormatTime(*time, false) : std::string();
        return cell_;
    }
    [[nodiscard]] std::string_view Address(const Transaction& transaction,
                                           std::string_view prefix) {
        cell_.clear();
        if (transaction.address && !transaction.isHeadless) {
            cell_ = prefix;
            AppendHex(cell_, *transaction.address, traffic_.AddressDigits(transaction));
        }
        return cell_;
    }
    static void AppendHex(std::string& text, std::uint64_t value, int digits) {
        for (int digit = digits; digit-- > 0;) {
            text += "0123456789ABCDEF"[value >> (4 * digit) & 0xF];
        }
    }
    void AsText(const Transaction& each) {
        AppendCell(line_, Number(static_cast<std::int64_t>(each.number)), numberWidth, true);
        AppendCell(line_, Number(each.sample), numberWidth, true);
        AppendCell(line_, Time(each.time), timeWidth, true);
        AppendCell(line_, each.isHeadless ? "(begun before)" : labels_.Of(each), commandWidth,
                   false);
        AppendCell(line_, Address(each, ""), addressWidth, false);
        AppendCell(line_, Number(static_cast<std::int64_t>(each.bytes)), countWidth, true);
        if (traffic_.HasClock()) {
            AppendCell(line_, Number(each.Wait()), countWidth, true);
            AppendCell(line_, Number(static_cast<std::int64_t>(each.waitStates.initiator)),
                       countWidth, true);
        } else {
            AppendCell(line_, Time(each.Wait()), countWidth, true);
        }
        AppendCell(line_, Time(each.Latency()), timeWidth, true);
        AppendCell(line_, Time(each.gap), timeWidth, true);
        AppendCell(line_, NameOf(each.end), endWidth, false);
        if (hasSplits_) {
            cell_.clear();
            if (each.sequence) {
                cell_ = std::to_string(each.sequence->Tag());
            }
            AppendCell(line_, cell_, 3, false);
            AppendCell(line_,
                       each.splitRequest ? Number(static_cast<std::int64_t>(*each.splitRequest))
                                         : std::string_view(),
                       countWidth, true);
        }
        line_ += ' ';
        for (const DataWord& word : each.words) {
            line_ += ' ';
            AppendText(line_, word);
        }
        if (each.words.size() < each.dataPhases) {
            line_ += " ...";
        }
        line_.erase(line_.find_last_not_of(' ') + 1);
    }

    /// The fields between the address and the data: as JSON begins them, whether the transaction
    /// has them, and their values.
    template <typename Field>
    void Fields(const Transaction& each, Field field) {
        field(", \"words\": ", true, each.dataPhases);
        field(", \"bytes\": ", true, each.bytes);
        field(", \"wait\": ", true, each.Wait());
        field(", \"initiatorWait\": ", true, each.waitStates.initiator);
        field(", \"latency\": ", each.firstData.has_value(), each.Latency().value_or(0));
        field(", \"end\": ", true, NameOf(each.end));
        field(", \"gap\": ", each.gap.has_value(), each.gap.value_or(0));
        field(", \"tag\": ", each.sequence.has_value(), each.sequence ? each.sequence->Tag() : 0);
        field(", \"splitRequest\": ", each.splitRequest.has_value(), each.splitRequest.value_or(0));
        field(", \"findings\": ", true, each.findings);
    }

    void AsCsv(const Transaction& each) {
        AppendNumber(line_, each.number);
        line_ += ',';
        AppendNumber(line_, each.sample);
        line_ += ',';
        AppendNumber(line_, each.time);
        line_ += ',';
        AppendCsvCell(line_, labels_.Of(each));
        line_ += ',';
        line_ += Address(each, "0x");
        Fields(each, [this](const char* /*name*/, bool has, const auto& value) {
            line_ += ',';
            if (has) {
                AppendValue(value, "");
            }
        });
        line_ += ',';
        const char* before = "";
        for (const DataWord& word : each.words) {
            line_ += before;
            AppendText(line_, word);
            before = " ";
        }
    }

    void AsJson(const Transaction& each) {
        line_ += "\"number\": ";
        AppendNumber(line_, each.number);
        line_ += ", \"sample\": ";
        AppendNumber(line_, each.sample);
        line_ += ", \"time\": ";
        AppendNumber(line_, each.time);
        line_ += ", \"command\": ";
        if (each.isHeadless) {
            line_ += "null, \"address\": null";
        } else {
            AppendJsonText(line_, labels_.Of(each));
            line_ += ", \"address\": ";
            if (each.address) {
                AppendJsonText(line_, Address(each, "0x"));
            } else {
                line_ += "null";
            }
        }
        Fields(each, [this](const char* name, bool has, const auto& value) {
            line_ += name;
            if (has) {
                AppendValue(value, "\"");
            } else {
                line_ += "null";
            }
        });
        line_ += ", \"data\": [";
        const char* before = "\"";
        for (const DataWord& word : each.words) {
            line_ += before;
            AppendText(line_, word);
            line_ += '"';
            before = ", \"";
        }
        line_ += "]}";
    }

    template <typename Value>
    void AppendValue(const Value& value, const char* quote) {
        if constexpr (std::is_integral_v<Value>) {
            AppendNumber(line_, value);
        } else {
            line_ += quote;
            line_ += value;
            line_ += quote;
        }
    }

    TextSink& output_;
    const Format format_;
    const std::string begin_; // of each line
    const BusTraffic& traffic_;
    const bool hasSplits_; // PCI-X
    CommandLabels labels_;
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
                        bool showsProgress, Take take) {
    const std::int64_t first = input.Stream().First();
    const std::int64_t last = input.Stream().Last();
    Progress progress("Following", last - first + 1, showsProgress);
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

/// The condition of --where; throws ExitRequest on a mistake.
std::optional<TransactionCondition> ConditionOf(const Options& options, const Bus& bus,
                                                const BusTraffic& traffic) {
    if (options.where.text.empty()) {
        return std::nullopt;
    }
    TransactionBus names = TransactionBus::Of(traffic, bus.Tables());
    names.kept = &options.where.kept;
    return TakeCondition(TransactionCondition::Parse(options.where.text, names), options.where);
}

/// Follows one capture. Calls `take` with each transaction that the options select.
template <typename Take>
void FollowCapture(const Options& options, const ReportedCapture& capture, Bus& bus,
                   TransactionFollower& follower, Take take) {
    const BusTraffic& traffic = *follower.Traffic();
    TraceInput input(capture.path, bus.Tables());
    input.ReadHead();
    const auto condition = ConditionOf(options, bus, traffic);
    CommandLabels labels(traffic);
    const bool hasGaps = ForEachTransaction(
        input, follower, options.range, capture.isAlone, [&](const Transaction& each) {
            if (!condition || condition->Holds(each, labels.Of(each))) {
                take(each);
            }
        });
    if (!StoresAll(input.Stream().setup)) {
        Say(input.Name() + ": its setup does not store every sample; transactions are told as far "
                           "as they were stored");
    }
    if (hasGaps) {
        Say(input.Name() + ": samples of the capture are missing; where they are, a transaction "
                           "ends as unknown, and later times are too short by theirs");
    }
}

TransactionTotals TotalsOf(const Options& options, const ReportedCapture& capture) {
    Bus bus(options.bus);
    TransactionFollower follower(bus.Board(), bus.Tables());
    TransactionTotals totals;
    FollowCapture(options, capture, bus, follower,
                  [&](const Transaction& each) { totals.Add(each); });
    return totals;
}

/// As text the sums of all captures together.
int ReportSummary(const Options& options, const BusTraffic& traffic) {
    CaptureReport report(options);
    if (FormatOf(options) == Format::Json) {
        report.ForEach([&](const ReportedCapture& capture, TextSink& result) {
            const std::string summary =
                JsonLine(SummaryAsJson(TotalsOf(options, capture), traffic));
            result.Write(capture.JsonBegin() + summary.substr(1) + "\n");
            return true;
        });
        return report.End("");
    }
    std::mutex mutex;
    TransactionTotals all;
    report.ForEach([&](const ReportedCapture& capture, TextSink& /*result*/) {
        const TransactionTotals totals = TotalsOf(options, capture);
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
        report.WriteCsvTitles(csvTitles);
    }
    report.ForEach(
        [&](const ReportedCapture& capture, TextSink& result) {
            Bus bus(options.bus);
            TransactionFollower follower(bus.Board(), bus.Tables());
            follower.KeepWords(static_cast<std::size_t>(options.words));
            TransactionWriter writer(result, format, capture, *follower.Traffic(), hasSplits);
            bool any = false;
            FollowCapture(options, capture, bus, follower, [&](const Transaction& each) {
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
        WrongUse("a connector has pins, and no transactions");
    }
    (void)ConditionOf(options, bus, *traffic); // a mistake is reported once, not for each capture
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
