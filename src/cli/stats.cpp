#include "analysis/trace_stats.h"
#include "cli/capture_report.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"
#include "signals/value_text.h"
#include "tracesetup/trace_setup.h"

#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

unsigned long long Count(std::uint64_t number) {
    return number;
}

double Share(std::int64_t part, std::int64_t whole) {
    return whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0.0;
}

/// A line with a number: a title for people, a key for programs.
struct Line {
    const char* title;
    const char* key;
    std::uint64_t value;
    bool isTime = false; // ns
};

/// Connectors have no transactions, and are never known to be idle.
bool IsConnector(const TraceSummary& sum) {
    return !sum.waitStates && !sum.acknowledgeTime;
}

std::vector<Line> LinesOf(const TraceSummary& sum) {
    if (IsConnector(sum)) {
        return {};
    }
    std::uint64_t transactions = 0;
    for (const CommandCount& command : sum.commands) {
        transactions += command.transactions;
    }
    std::vector<Line> lines = {{"Transactions", "transactions", transactions},
                               {"Bytes", "bytes", sum.bytes},
                               {"Unfinished at the end", "unfinished", sum.unfinished},
                               {"Retries", "retries", sum.retries}};
    if (sum.waitStates) {
        lines.insert(lines.end(),
                     {{"Disconnects", "disconnects", sum.disconnects},
                      {"Target aborts", "targetAborts", sum.targetAborts},
                      {"Master aborts", "masterAborts", sum.masterAborts},
                      {"Split responses", "splitResponses", sum.splitResponses},
                      {"Initiator wait states", "initiatorWaits", sum.waitStates->initiator},
                      {"Target wait states", "targetWaits", sum.waitStates->target}});
    }
    if (sum.acknowledgeTime) {
        lines.push_back({"Disconnects", "disconnects", sum.disconnects});
        lines.push_back({"Master aborts", "masterAborts", sum.masterAborts});
        lines.push_back({"Bus errors", "busErrors", sum.busErrors});
        lines.push_back({"Acknowledged transfers", "acknowledged", sum.acknowledgeTime->transfers});
        lines.push_back({"Wait for acknowledges", "acknowledgeTime",
                         static_cast<std::uint64_t>(sum.acknowledgeTime->total), true});
    }
    if (sum.anomalies) {
        lines.push_back({"Samples with an anomaly", "anomalies", *sum.anomalies});
    }
    return lines;
}

std::string AsText(const TraceSummary& sum) {
    std::string text = Printf("%-24s %llu\n%-24s %s\n", "Samples:", Count(sum.samples),
                              "Time:", FormatTime(sum.time, false).c_str());
    if (!IsConnector(sum)) {
        text += Printf("%-24s %.1f%% of the time, %.1f%% of the samples\n",
                       "Idle:", Share(sum.idleTime, sum.time),
                       Share(static_cast<std::int64_t>(sum.idleSamples),
                             static_cast<std::int64_t>(sum.samples)));
    }
    for (const Line& line : LinesOf(sum)) {
        const std::string value = line.isTime
                                      ? FormatTime(static_cast<std::int64_t>(line.value), false)
                                      : std::to_string(line.value);
        text += Printf("%-24s %s\n", (std::string(line.title) + ":").c_str(), value.c_str());
    }
    if (!sum.commands.empty()) {
        text +=
            Printf("\n%-24s %12s %12s %12s\n", "COMMAND", "TRANSACTIONS", "DATA PHASES", "BYTES");
        for (const CommandCount& command : sum.commands) {
            text += Printf("%-24s %12llu %12llu %12llu\n", command.label.c_str(),
                           Count(command.transactions), Count(command.dataPhases),
                           Count(command.bytes));
        }
    }
    if (!sum.burstLengths.empty()) {
        text += Printf("\n%-24s %12s\n", "BURST LENGTH", "TRANSACTIONS");
        for (const auto& [length, count] : sum.burstLengths) {
            text += Printf("%-24llu %12llu\n", Count(length), Count(count));
        }
    }
    if (sum.findings && !sum.findings->empty()) {
        text += Printf("\n%-6s %8s %12s  %s\n", "CODE", "COUNT", "FIRST SAMPLE", "FINDING");
        for (const FindingCount& finding : *sum.findings) {
            text += Printf("%-6u %8llu %12lld  %s\n", finding.code, Count(finding.count),
                           static_cast<long long>(finding.firstSample), finding.label.c_str());
        }
    }
    return text;
}

nlohmann::ordered_json AsJson(const TraceSummary& sum) {
    using Json = nlohmann::ordered_json;
    Json json = {{"samples", sum.samples}, {"time", sum.time}};
    if (!IsConnector(sum)) {
        json["idleTime"] = sum.idleTime;
        json["idleSamples"] = sum.idleSamples;
    }
    for (const Line& line : LinesOf(sum)) {
        json[line.key] = line.value;
    }
    Json& commands = json["commands"] = Json::array();
    for (const CommandCount& command : sum.commands) {
        commands.push_back({{"command", JsonString(command.label)},
                            {"transactions", command.transactions},
                            {"dataPhases", command.dataPhases},
                            {"bytes", command.bytes}});
    }
    Json& bursts = json["bursts"] = Json::array();
    for (const auto& [length, count] : sum.burstLengths) {
        bursts.push_back({{"length", length}, {"transactions", count}});
    }
    Json& findings = json["findings"] = Json::array();
    for (const FindingCount& finding : sum.findings.value_or(std::vector<FindingCount>())) {
        findings.push_back({{"code", finding.code},
                            {"finding", JsonString(finding.label)},
                            {"count", finding.count},
                            {"first", finding.firstSample}});
    }
    return json;
}

/// The numbers as a row of a table, without what is known by command, length or finding.
std::string CsvTitles(const TraceSummary& sum) {
    std::string titles = "samples,time";
    titles += IsConnector(sum) ? "" : ",idleTime,idleSamples";
    for (const Line& line : LinesOf(sum)) {
        titles += std::string(",") + line.key;
    }
    return titles;
}

std::string AsCsv(const TraceSummary& sum) {
    std::string row = Printf("%llu,%lld", Count(sum.samples), static_cast<long long>(sum.time));
    if (!IsConnector(sum)) {
        row += Printf(",%lld,%llu", static_cast<long long>(sum.idleTime), Count(sum.idleSamples));
    }
    for (const Line& line : LinesOf(sum)) {
        row += Printf(",%llu", Count(line.value));
    }
    return row + "\n";
}

TraceSummary SummaryOf(const CapturesOptions& options, const ReportedCapture& capture,
                       CaptureReport& report) {
    Bus bus(options.bus);
    TraceInput input(capture.path, bus.Tables());
    ReadReportedHead(input);
    TraceStats stats(bus.Board(), bus.Tables());
    const std::int64_t first = input.Stream().First();
    const std::int64_t announced = input.Stream().Last() - first + 1;
    std::int64_t added = 0;
    Progress progress("Counting", announced, capture.isAlone);
    if (capture.isAlone) { // many captures have their threads
        input.ReadAhead();
    }
    while (const SampleRows* rows = input.NextRows()) {
        stats.Add(*rows);
        added += static_cast<std::int64_t>(rows->Size());
        progress.At(rows->numbers.back() - first);
    }
    if (added < announced) {
        Say(SamplesAreMissing(input.Name()));
    }
    if (!StoresAll(input.Stream().setup)) {
        report.NotePartlyStored(capture);
    }
    return stats.Summary();
}

std::string RowOf(const TraceSummary& sum, Format format, const ReportedCapture& capture) {
    switch (format) {
    case Format::Text:
        break;
    case Format::Csv:
        return capture.CsvBegin() + AsCsv(sum);
    case Format::Json:
        return capture.JsonBegin() + JsonLine(AsJson(sum)).substr(1) + "\n";
    }
    return AsText(sum);
}

int Run(const CapturesOptions& options) {
    const Format format = FormatOf(options);
    const Bus bus(options.bus);
    CaptureReport report(options);
    if (format == Format::Csv) {
        report.WriteCsvTitles(CsvTitles(TraceStats(bus.Board(), bus.Tables()).Summary()));
    }
    report.ForEach([&](const ReportedCapture& capture, TextSink& result) {
        result.Write(RowOf(SummaryOf(options, capture, report), format, capture));
        return true;
    });
    return report.End("");
}

} // namespace

void AddStats(CLI::App& program) {
    const auto options = std::make_shared<CapturesOptions>();
    CLI::App& command =
        AddCommand(program, "stats", "transactions, bytes, bursts, wait states and findings",
                   [options] { return Run(*options); });
    AddCaptureOptions(command, *options);
}

} // namespace busquill::cli
