// A performance measurement: a line of readings at each interval.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/output_file.h"
#include "cli/board/time_stamp.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "performance/performance_document.h"
#include "performance/performance_run.h"
#include "performance/performance_setup_file.h"
#include "platform/main_thread.h"
#include "platform/near_names.h"
#include "platform/periodic_timer.h"
#include "platform/text.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

/// The longest wait for a reading that is due when the time is over; it usually comes much sooner.
constexpr Milliseconds lastReading = std::chrono::seconds(2);

struct PerformanceOptions {
    BoardOptions board;
    std::string type;
    std::string setup; // a file; empty: what the type presets
    std::optional<Milliseconds> limit;
    std::optional<std::int64_t> count;
    std::optional<Milliseconds> interval;
    bool csv = false;
    std::string output;
};

/// "Transfer Rate" as "transfer-rate".
std::string TypeWord(std::string_view name) {
    std::string word = ToLower(name);
    std::ranges::replace(word, ' ', '-');
    return word;
}

std::vector<std::string> TypeWords() {
    std::vector<std::string> words;
    words.reserve(PerformanceMaxTypes);
    for (std::int32_t type = 0; type < PerformanceMaxTypes; ++type) {
        words.push_back(TypeWord(PerformanceTypeOf(type).name));
    }
    return words;
}

std::int32_t TypeNamed(const std::string& text) {
    const std::vector<std::string> words = TypeWords();
    const auto found = std::ranges::find(words, TypeWord(text));
    if (found == words.end()) {
        WrongUse("no measurement \"" + text + "\"; there are " + ListNearest(text, words));
    }
    return static_cast<std::int32_t>(found - words.begin());
}

PerformanceSetup SetupOf(const PerformanceOptions& options) {
    PerformanceSetup setup;
    setup.SetType(TypeNamed(options.type));
    if (!options.setup.empty()) {
        TextReader file = OpenInput(options.setup);
        LinePrompts prompts;
        ReadPerformanceSetup(setup, file, prompts);
        for (const std::string& warning : prompts.Take()) {
            Say(options.setup + ": " + warning);
        }
        setup.setupName = BaseNameOf(options.setup);
    }
    if (options.interval) {
        setup.updateInterval = static_cast<std::int32_t>(options.interval->count());
    }
    if (std::ranges::all_of(setup.items, [](const auto& row) { return row.item < 1; })) {
        Fail(options.setup + ": nothing is counted");
    }
    if (options.limit && *options.limit < Milliseconds(setup.updateInterval)) {
        WrongUse(Printf("--for is shorter than the interval of %d ms, so there would be no reading",
                        static_cast<int>(setup.updateInterval)));
    }
    return setup;
}

/// Readings on their way from the timer's thread to the main thread.
class Readings final : public PerformanceObserver {
public:
    struct Reading {
        std::chrono::system_clock::time_point time;
        PerformanceResults results;
    };

    explicit Readings(MainThread& mainThread) : mainThread_(mainThread) {}

    void OnResultsCleared() override {}
    void OnRunning(bool /*running*/) override {}
    void OnReading(const PerformanceResults& results) override {
        {
            const std::lock_guard lock(mutex_);
            waiting_.push_back({std::chrono::system_clock::now(), results});
        }
        mainThread_.Wake();
    }

    [[nodiscard]] bool Any() const {
        const std::lock_guard lock(mutex_);
        return !waiting_.empty();
    }
    [[nodiscard]] std::vector<Reading> Take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(waiting_, {});
    }

private:
    MainThread& mainThread_;
    mutable std::mutex mutex_;
    std::vector<Reading> waiting_;
};

/// Readings as lines of text, of comma separated values or of JSON.
class Table {
public:
    Table(const PerformanceOptions& options, std::vector<PerformanceColumn> columns)
        : isJson_(options.board.json), isCsv_(options.csv), columns_(std::move(columns)) {
        if (isJson_) {
            return;
        }
        std::string head = isCsv_ ? "Time" : Printf("%-*s", timeWidth, "Time");
        for (const PerformanceColumn& column : columns_) {
            head += (isCsv_ ? "," : "  ") + column.name;
        }
        output_.Print(head);
    }

    void Print(const Readings::Reading& reading) {
        const std::string time = TimeStamp(reading.time);
        output_.Print(isJson_ ? AsJson(time, reading.results) : AsText(time, reading.results));
    }

    [[nodiscard]] LineOutput& Output() noexcept { return output_; }

private:
    static constexpr int timeWidth = 23;

    std::string AsText(std::string line, const PerformanceResults& results) const {
        for (const PerformanceColumn& column : columns_) {
            const std::int32_t value = results[column.row];
            line += isCsv_ ? Printf(",%d", value)
                           : Printf("  %*d", static_cast<int>(column.name.size()), value);
        }
        return line;
    }
    std::string AsJson(const std::string& time, const PerformanceResults& results) const {
        nlohmann::ordered_json object = {{"time", time}};
        for (const PerformanceColumn& column : columns_) {
            object[column.name] = results[column.row];
        }
        return JsonLine(object);
    }

    const bool isJson_;
    const bool isCsv_;
    const std::vector<PerformanceColumn> columns_;
    LineOutput output_;
};

/// Follows a run to its end, and prints what comes.
class Measurement {
public:
    Measurement(BoardSession& session, const PerformanceOptions& options, PerformanceSetup setup)
        : session_(session), limit_(options.limit), count_(options.count.value_or(0)),
          document_([&session] { return session.Link().Traits(); }, session.Boxes()),
          readings_(session.Boxes()), run_({.link = session.Link(),
                                            .prompts = session.Boxes(),
                                            .results = document_.Results(),
                                            .timer = std::make_unique<ThreadTimer>(),
                                            .mostReadings = count_},
                                           readings_),
          table_(options, PerformanceColumns(setup, session.Link().Traits())) {
        document_.Setup() = std::move(setup);
    }

    void Run() {
        {
            const NoInterruptsForThreads quiet; // the run starts a thread
            run_.Go(document_.Setup());
        }
        if (session_.PrintMessages() || !run_.IsOn()) {
            run_.Stop();
            session_.PrintMessages();
            Fail("the board has not taken the measurement");
        }
        session_.SetLimit(limit_);
        const bool ended = Follow();
        run_.Stop();
        Print();
        session_.PrintMessages();
        isGone_ = !ended;
    }

    /// Whether the board stopped to answer.
    [[nodiscard]] bool IsGone() const noexcept { return isGone_; }
    [[nodiscard]] std::int64_t Count() const { return document_.Results().Count(); }
    [[nodiscard]] LineOutput& Output() noexcept { return table_.Output(); }
    [[nodiscard]] bool Save(const std::string& path) { return document_.OnSaveDocument(path); }

private:
    /// False when the board does not answer any more.
    bool Follow() {
        const Milliseconds interval(document_.Setup().updateInterval);
        const Milliseconds longest = std::max<Milliseconds>(patience, 3 * interval);
        const auto begin = BoardSession::Time::now();
        auto heard = begin;
        while (table_.Output().IsOpen() && (count_ == 0 || Count() < count_)) {
            const WaitEnd end = session_.WaitUntil([&] {
                return readings_.Any() || session_.Link().IsBoardGone() ||
                       BoardSession::Time::now() - heard > longest;
            });
            if (end == WaitEnd::Interrupted) {
                session_.Status("interrupted");
            }
            if (end == WaitEnd::TimeOver && heard < begin + *limit_ / interval * interval) {
                session_.SetLimit(lastReading);
                static_cast<void>(session_.WaitUntil([this] { return readings_.Any(); }));
            }
            if (end != WaitEnd::Done) {
                return true;
            }
            if (!readings_.Any()) {
                return false;
            }
            heard = BoardSession::Time::now();
            Print();
        }
        return true;
    }
    void Print() {
        for (const Readings::Reading& reading : readings_.Take()) {
            table_.Print(reading);
        }
    }

    BoardSession& session_;
    const std::optional<Milliseconds> limit_;
    const std::int64_t count_; // 0: any number
    CPerformanceDoc document_;
    Readings readings_;
    PerformanceRun run_;
    Table table_;
    bool isGone_ = false;
};

int RunPerformance(const PerformanceOptions& options) {
    PerformanceSetup setup = SetupOf(options);
    CheckFileBeside(options.output);
    BoardSession session(options.board);
    Measurement measurement(session, options, std::move(setup));
    measurement.Run();
    const auto count = static_cast<long long>(measurement.Count());
    if (count > 0 && !options.output.empty()) {
        if (!measurement.Save(options.output)) {
            session.PrintMessages();
            return ExitStatus::Failure;
        }
        session.Status(Printf("%s: %lld readings", options.output.c_str(), count));
    }
    if (measurement.IsGone()) {
        Fail("the board does not answer any more");
    }
    if (count == 0) {
        Fail("no readings have come");
    }
    measurement.Output().Close();
    return ExitStatus::Done;
}

} // namespace

void AddPerformance(CLI::App& program) {
    const auto options = std::make_shared<PerformanceOptions>();
    CLI::App& command = AddCommand(program, "performance", "counts the traffic of the bus",
                                   [options] { return RunPerformance(*options); });
    CompletedWithWords(AddOperand(command, "TYPE", options->type), TypeWords());
    CompletedWithFiles(Optional(AddOperand(command, "SETUP.psu", options->setup)), ".psu");
    AddBoardOptions(command, options->board);
    AddLimit(command, options->limit);
    AddNumber(command, "--count", options->count, "N",
              {.least = 1, .most = 1'000'000'000, .are = "a number of readings from 1 up"},
              "end after N readings");
    CLI::Option& interval = AddDuration(command, "--interval", options->interval,
                                        "time between readings (default 100ms)");
    Checked(interval, [](const std::string& text) {
        constexpr Milliseconds longest = std::chrono::minutes(10);
        return ParseDuration(text).value_or(longest) <= longest ? std::string()
                                                                : "is at most 10m, not " + text;
    });
    Excluding(AddFlag(command, "--csv", options->csv, "print comma separated values"),
              OptionOf(command, "--json"));
    CompletedWithFiles(AddText(command, "-o,--output", options->output, "FILE",
                               "keep the setup and all readings (.per)"),
                       ".per");
}

} // namespace busquill::cli::board
