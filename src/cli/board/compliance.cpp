// Compliance tests of a device.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/polls.h"
#include "cli/board/report_file.h"
#include "cli/board/time_stamp.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/output.h"
#include "document/hex_fields.h"
#include "exerciser/bus_address.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "testsuites/compliance_document.h"
#include "testsuites/compliance_run.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

struct ComplianceOptions {
    BoardOptions board;
    std::string list;
    std::string device; // "1317:0985"; empty: that of the list, or the first one
    std::optional<std::uint64_t> address;
    bool noOperator = false;
    std::string output; // a file
};

/// By what a device is looked for.
struct DeviceId {
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;

    friend bool operator==(const DeviceId&, const DeviceId&) = default;
};

constexpr DeviceId anyDevice; // zeros, as in a list that names no device

DeviceId IdOf(const DeviceIdentity& identity) {
    return {identity.vendorId, identity.deviceId};
}

std::string IdText(const DeviceId& id) {
    return Printf("%04x:%04x", id.vendor, id.device);
}

std::optional<DeviceId> ParseId(const std::string& text) {
    DeviceId id;
    const char* const end = text.data() + text.size();
    const auto [colon, vendorError] = std::from_chars(text.data(), end, id.vendor, 16);
    if (vendorError != std::errc() || colon == end || *colon != ':') {
        return std::nullopt;
    }
    const auto [stop, deviceError] = std::from_chars(colon + 1, end, id.device, 16);
    const bool fits =
        deviceError == std::errc() && stop == end && id.vendor <= 0xFFFF && id.device <= 0xFFFF;
    return fits ? std::optional(id) : std::nullopt;
}

/// The device to test, or any.
DeviceId WantedDevice(const ComplianceOptions& options, const CComplianceDoc& document) {
    return ParseId(options.device).value_or(IdOf(document.Device().Identity()));
}

/// The report, line by line as the tests end, and as a whole for a file.
class Report {
public:
    explicit Report(bool isJson) : isJson_(isJson) {}

    void Begin(const DeviceIdentity& device, int function) {
        Add(isJson_
                ? JsonLine({{"time", Now()},
                            {"vendorId", Printf("%04x", device.vendorId)},
                            {"deviceId", Printf("%04x", device.deviceId)},
                            {"function", function},
                            {"address", HexAddressText(device.address)},
                            {"vendor", JsonString(device.vendorName)},
                            {"class", JsonString(device.className)}})
                : Printf("%s  %s, %s [%s], function %d", Now().c_str(), device.className.c_str(),
                         device.vendorName.c_str(), IdText(IdOf(device)).c_str(), function));
    }

    void Add(const CTestResult& test) {
        Add(isJson_ ? JsonLine({{"test", TestIdText(test.testId)},
                                {"result", OutcomeWord(test.result)},
                                {"failCode", test.failCode},
                                {"title", JsonString(test.name)}})
                    : Printf("%-7s %-10s %s", TestLabel(test).c_str(),
                             std::string(Trim(TestResultText(test))).c_str(), test.name.c_str()));
    }

    /// The last line, in which `missing` tests were not run.
    void End(const std::vector<CTestResult>& results, std::size_t missing) {
        const auto count = [&](TestOutcome outcome) {
            return static_cast<int>(std::ranges::count(results, outcome, &CTestResult::result));
        };
        const int passed = count(TestOutcome::Passed);
        const int failed = count(TestOutcome::Failed);
        const int skipped = count(TestOutcome::Skipped);
        Add(isJson_ ? JsonLine({{"passed", passed},
                                {"failed", failed},
                                {"skipped", skipped},
                                {"notRun", missing}})
                    : Printf("%d passed, %d failed, %d skipped, %zu not run", passed, failed,
                             skipped, missing));
    }

    [[nodiscard]] LineOutput& Output() noexcept { return output_; }
    [[nodiscard]] const std::string& Text() const noexcept { return text_; }

private:
    static std::string Now() { return TimeStamp(std::chrono::system_clock::now()); }

    void Add(const std::string& line) {
        output_.Print(line);
        text_ += line + "\n";
    }

    const bool isJson_;
    LineOutput output_;
    std::string text_;
};

/// Prints results, and asks the operator on the terminal.
class Operator final : public ComplianceObserver {
public:
    Operator(BoardSession& session, Report& report, bool isAway)
        : session_(session), report_(report), isAway_(isAway) {}

    void OnRunning(bool /*running*/) override {}
    void OnResultsCleared() override {}
    void OnTestStarted(const CTestResult& test) override { test_ = TestLabel(test); }
    void OnTestEnded(const CTestResult& test) override { report_.Add(test); }

    OperatorAnswer AskOperator(const std::string& instructions) override {
        const std::string question = test_ + " " + instructions;
        if (isAway_) {
            return OperatorAnswer::Skip;
        }
        if (!BoardSession::HasTerminal()) {
            session_.Status(question + " skipped: there is no terminal");
            return OperatorAnswer::Skip;
        }
        while (const auto line = session_.AskOnTerminal(question + " [continue/skip/stop] ")) {
            const std::string answer = ToLower(Trim(*line));
            const auto means = [&](std::string_view word, std::size_t least) {
                return answer.size() >= least && word.starts_with(answer);
            };
            if (answer.empty() || means("continue", 1)) {
                return OperatorAnswer::Continue;
            }
            if (means("skip", 2)) {
                return OperatorAnswer::Skip;
            }
            if (means("stop", 2)) {
                break;
            }
        }
        return OperatorAnswer::Stop;
    }

private:
    BoardSession& session_;
    Report& report_;
    const bool isAway_;
    std::string test_; // its label
};

/// Looks for the device; throws ExitRequest when it is not there. Returns its function number.
int FindDevice(BoardSession& session, ComplianceRun& run, const CComplianceDoc& document,
               const DeviceId& wanted) {
    auto direction = ScanDirection::First;
    while (const auto function = run.Find(direction)) {
        if (session.HadMessages()) {
            break;
        }
        if (wanted == anyDevice || IdOf(document.Device().Identity()) == wanted) {
            return *function;
        }
        if (session.WasInterrupted()) {
            Fail("interrupted");
        }
        direction = ScanDirection::Next;
    }
    session.PrintMessages();
    Fail(wanted == anyDevice ? "no device to test"
                             : "the device " + IdText(wanted) + " was not found");
}

/// The tests of the list that are ticked.
std::size_t TickedTests(const CheckList& list, const CComplianceDoc& document) {
    std::size_t count = 0;
    bool inGroup = false;
    for (std::size_t i = 0; i < list.size(); ++i) {
        inGroup = inGroup || list[i].isGroup;
        count += inGroup && !list[i].isGroup && document.IsSelected(static_cast<int>(i)) ? 1 : 0;
    }
    return count;
}

/// Opens the list; throws ExitRequest if there is nothing to test. Before the board is asked.
void Open(CComplianceDoc& document, const CheckList& checks, LinePrompts& prompts,
          const std::string& path) {
    const WorkingDirectory folder = WorkingDirectory::AtStart();
    if (checks.empty()) {
        Fail("there are no tests: " + folder.FilePath("ComplianceChecklist.txt") +
             " cannot be read or is empty");
    }
    for (const std::string& warning : prompts.Take()) {
        Say(warning); // names of vendors and classes, which are only shown
    }
    if (!document.OnOpenDocument(path)) {
        Fail(prompts.TakeFirst(path + " is no list of tests"));
    }
    if (TickedTests(checks, document) == 0) {
        Fail(path + ": One or more tests must be selected to execute.");
    }
}

int RunCompliance(const ComplianceOptions& options) {
    CheckReportFile(options.output);
    const CheckList checks = LoadCheckList(WorkingDirectory::AtStart());
    LinePrompts prompts;
    CComplianceDoc document(WorkingDirectory::AtStart(), prompts);
    Open(document, checks, prompts, options.list);
    const std::string listName(BaseNameOf(options.list));
    const DeviceId wanted = WantedDevice(options, document);
    BoardSession session(options.board);
    Report report(options.board.json);
    Operator asked(session, report, options.noOperator);
    Polls polls(session);
    ComplianceRun run(
        polls.Parts(), document, checks,
        [&document](int index) { return document.IsSelected(index); }, asked);
    if (options.address) {
        run.SendTargetAddress(AddressOf(*options.address));
    }
    const int function = FindDevice(session, run, document, wanted);
    report.Begin(document.Device().Identity(), function);
    run.Go();
    const WaitEnd end = polls.Follow(report.Output());
    if (polls.AreOn()) {
        run.Stop();
    }
    const std::size_t missing = TickedTests(checks, document) - document.Results().size();
    report.End(document.Results(), missing);
    const bool failed = session.HadMessages();
    if (end == WaitEnd::Interrupted || session.WasInterrupted()) {
        session.Status("interrupted");
    }
    if (!WriteReportFile(options.output, document, "Compliance Tests - " + listName,
                         report.Text())) {
        Fail(prompts.TakeFirst(Printf("Error writing file %s.", options.output.c_str())));
    }
    report.Output().Close();
    if (failed) {
        return ExitStatus::Failure;
    }
    if (std::ranges::count(document.Results(), TestOutcome::Failed, &CTestResult::result) > 0) {
        return ExitStatus::NothingFound;
    }
    return missing == 0 ? ExitStatus::Done : ExitStatus::Failure;
}

} // namespace

void AddCompliance(CLI::App& program) {
    const auto options = std::make_shared<ComplianceOptions>();
    CLI::App& command = AddCommand(program, "compliance", "puts a device through a check list",
                                   [options] { return RunCompliance(*options); });
    CompletedWithFiles(AddOperand(command, "LIST.cpl", options->list), ".cpl");
    AddBoardOptions(command, options->board);
    CLI::Option& id =
        AddText(command, "--id", options->device, "ID",
                "the device to test, as VENDOR:DEVICE (default: that of the list, or the first)");
    Checked(id, [](const std::string& text) {
        return ParseId(text) ? std::string()
                             : "is two hexadecimal numbers such as 1317:0985, not \"" + text + "\"";
    });
    AddHexNumber(
        command, "--address", [options](std::uint64_t number) { options->address = number; },
        "ADDRESS", ~std::uint64_t{0}, "where the tests find the device's memory");
    AddFlag(command, "--no-operator", options->noOperator,
            "skip the tests that need somebody at the board");
    CompletedWithFiles(AddText(command, "-o,--output", options->output, "FILE",
                               "keep the report as text, as PDF (.pdf), or ticks and results "
                               "(.cpl)"));
}

} // namespace busquill::cli::board
