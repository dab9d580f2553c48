#include "capture/search_condition.h"
#include "capture/trace_writer.h"
#include "cli/beside.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/session.h"
#include "cli/temporary_file.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "tracesetup/setup_file.h"

#include <bit>
#include <ctime>
#include <filesystem>

namespace busquill::cli {

namespace {

using std::chrono::milliseconds;
using Time = std::chrono::steady_clock;

constexpr milliseconds lookEvery(50);

constexpr const char* boardIsLost = "the board does not answer any more; nothing has been fetched";

/// Why a run ended.
enum class RunEnd { Finished, Timeout, Interrupt, BoardLost };

struct Options {
    PortOptions port;
    std::string setup;
    OutputOptions output;
    std::optional<std::int64_t> timeout; // seconds
    std::optional<std::int64_t> repeat;  // 0: without end
    std::vector<std::string> stopIfFound;
};

/// Ends the program if a file is not a setup, before connecting to the board. The meaning of its
/// events depends on the board, so the file is read again later.
void CheckSetup(const std::string& path) {
    BoardTraits board;
    SignalTables tables([&board] { return board; }, WorkingDirectory::AtStart());
    TraceSetup setup(tables);
    LinePrompts prompts;
    TextReader file = OpenInput(path);
    if (!LoadSetupFile(setup, file, prompts)) {
        Fail(path + ": " + prompts.TakeFirst("no setup"));
    }
}

void CheckUse(const Options& options) {
    CheckTarget(options.output, {options.setup});
    const std::string& path = options.output.path;
    if (options.repeat && path == "-") {
        WrongUse("repeated runs make several files; -o names them");
    }
    CheckSetup(options.setup);
    for (const std::string& text : options.stopIfFound) {
        if (const std::string wrong = SearchCondition::CheckPattern(text); !wrong.empty()) {
            WrongUse(wrong);
        }
    }
    // Checked now, before samples are fetched that could not be saved.
    const std::string folder = path.substr(0, path.size() - FileNameOf(path).size());
    std::error_code unknown;
    if (!folder.empty() && !std::filesystem::is_directory(folder, unknown)) {
        Fail(Printf("Error creating file %s.", path.c_str()));
    }
}

/// Runs the board, again and again, into the session's document.
class Runner {
public:
    Runner(Session& session, std::optional<Time::time_point> deadline)
        : session_(session), deadline_(deadline) {
        session_.Link().SetGiveUp([this](milliseconds waited) { return GivesUp(waited); });
    }

    void LoadSetup(const std::string& path) {
        if (!LoadSetupFile(session_.Document().setup, path, session_.Prompts())) {
            session_.PrintMessages();
            Fail(path + " is not used");
        }
    }

    /// Starts the board, follows the capture to its end and fetches its samples.
    RunEnd Run() {
        CTesselDoc& document = session_.Document();
        if (!DownloadSetup(session_.Link(), document.setup, session_.Prompts()) ||
            !givenUp_.empty()) {
            session_.PrintMessages();
            Fail(givenUp_ + "the board has not taken the setup");
        }
        {
            const NoInterruptsForThreads quiet; // the run starts a thread
            document.Run().Start();
        }
        session_.PrintMessages();
        RunEnd end = RunEnd::Finished;
        triggered_ = false;
        Time::time_point heard = Time::now();
        while (true) {
            document.Run().Poll();
            const RunState& state = document.Run().State();
            triggered_ = triggered_ || state.triggered;
            if (state.indicator != RunIndicator::Running) {
                break;
            }
            if (const RunEnd asked = EndAsked(); asked != RunEnd::Finished) {
                end = asked;
                document.Run().Stop();
                break;
            }
            if (session_.Link().IsIdle()) {
                heard = Time::now(); // no poll of its status is pending
            } else if (Time::now() - heard >= patience) {
                session_.Link().Close();
                Fail(boardIsLost);
            }
            session_.Wait(lookEvery);
        }
        if (session_.Link().CommLost()) {
            session_.PrintMessages();
            Fail(boardIsLost);
        }
        const RunEnd uploadEnd = Upload();
        return uploadEnd == RunEnd::Finished ? end : uploadEnd;
    }

    /// Whether the last run has triggered.
    [[nodiscard]] bool Triggered() const noexcept { return triggered_; }

    /// Saves the samples that have arrived and leaves out the others.
    void Save(const std::string& path) {
        CTesselDoc& document = session_.Document();
        TraceFileWriter writer(document);
        if (!writer.Begin(path, -writer.Before(), writer.After())) {
            Fail(Printf("Error creating file %s.", path.c_str()));
        }
        constexpr std::size_t rowsAtOnce = 1 << 16;
        while (true) {
            switch (writer.Write(rowsAtOnce)) {
            case TraceFileWriter::Step::Done:
            case TraceFileWriter::Step::Nothing:
                return;
            case TraceFileWriter::Step::Failed:
                Fail(Printf("Error writing file %s.", path.c_str()));
            case TraceFileWriter::Step::Missing:
                writer.Skip();
                break;
            case TraceFileWriter::Step::More:
                break;
            case TraceFileWriter::Step::Waiting:
                session_.Wait(lookEvery);
                break;
            }
        }
    }

private:
    /// Called while the setup is sent to the board.
    [[nodiscard]] bool GivesUp(milliseconds waited) {
        if (Interrupted()) {
            givenUp_ = "interrupted; ";
        } else if (deadline_ && Time::now() >= *deadline_) {
            givenUp_ = "the time is over; ";
        } else if (waited >= patience) {
            givenUp_ = Printf("no end after %d seconds; ", static_cast<int>(patience.count()));
        }
        return !givenUp_.empty();
    }
    [[nodiscard]] RunEnd EndAsked() const {
        if (Interrupted()) {
            Say("interrupted; what the board has is fetched");
            return RunEnd::Interrupt;
        }
        return deadline_ && Time::now() >= *deadline_ ? RunEnd::Timeout : RunEnd::Finished;
    }

    RunEnd Upload() {
        CTesselDoc& document = session_.Document();
        const std::int64_t samples = document.SampleCount(false);
        Progress progress("Fetching samples", samples);
        std::int64_t last = -1;
        Time::time_point heard = Time::now();
        while (true) {
            document.Run().Poll();
            if (document.Run().State().indicator != RunIndicator::Uploading) {
                break;
            }
            if (Interrupted()) {
                session_.Capture().upload.CancelUpload();
                EndUpload();
                return RunEnd::Interrupt;
            }
            std::int64_t come = document.GetStore().HasZoom() ? 1 : 0;
            for (std::int64_t at = 0; at < document.SampleCount(false); at += blockSamples) {
                come += document.IsValidSample(at, false) ? std::int64_t{blockSamples} : 0;
            }
            if (come != last) {
                last = come;
                heard = Time::now();
            } else if (Time::now() - heard >= patience) {
                Say("the board hands over no more samples");
                EndUpload();
                return RunEnd::BoardLost;
            }
            progress.At(std::min(come, document.SampleCount(false)));
            session_.Wait(lookEvery);
        }
        session_.PrintMessages();
        return RunEnd::Finished;
    }

    /// If a block never arrives, the board is given up.
    void EndUpload() {
        if (session_.Document().IsUploading()) {
            session_.Link().Close();
        }
        session_.PrintMessages();
    }

    Session& session_;
    const std::optional<Time::time_point> deadline_;
    std::string givenUp_; // why the board was given up, and what to do
    bool triggered_ = false;
};

/// "OUT-0001-20261122T031500.tra".
std::string NumberedPath(const std::string& path, std::int64_t run) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 32> stamp{};
    std::strftime(stamp.data(), stamp.size(), "%Y%m%dT%H%M%S", &local);
    const std::size_t point = path.size() - FileNameOf(path).size() + BaseNameOf(path).size();
    return Printf("%s-%04lld-%s%s", path.substr(0, point).c_str(), static_cast<long long>(run),
                  stamp.data(), path.substr(point).c_str());
}

/// The number of the first sample that matches.
std::optional<std::int64_t> FindIn(CTesselDoc& document, const SearchCondition& condition) {
    constexpr std::size_t block = RecordPattern::blockSize;
    std::array<SampleRecord, block> records;
    const std::int64_t samples = document.SampleCount(false);
    for (std::int64_t first = 0; first < samples; first += block) {
        const std::size_t come =
            document.GetStore().CopySamples(static_cast<std::uint32_t>(first), records);
        if (const std::uint32_t matches = condition.MatchesOf(std::span(records).first(come))) {
            return document.FirstSampleNumber(false) + first + std::countr_zero(matches);
        }
    }
    return std::nullopt;
}

std::int64_t CountHeld(CTesselDoc& document) {
    std::int64_t held = 0;
    for (std::int64_t at = 0; at < document.SampleCount(false); ++at) {
        held += document.IsValidSample(at, false) ? 1 : 0;
    }
    return held;
}

void SaveTo(Runner& runner, const std::string& path) {
    if (path != "-") {
        runner.Save(path);
        WriteBookmarksBeside(path, {});
        return;
    }
    const TemporaryFile copy(".tra");
    runner.Save(copy.Path());
    TextReader file = copy.Open();
    Output output("-");
    for (std::string_view bytes = file.AtHand(); !bytes.empty(); bytes = file.AtHand()) {
        output.Write(bytes);
        file.Skip(bytes.size());
    }
    output.Close();
}

/// Reports the result of a run; returns whether there are samples.
bool Report(CTesselDoc& document, const Runner& runner, RunEnd end, std::int64_t held) {
    if (end == RunEnd::Timeout) {
        Say(runner.Triggered() ? "the time is over" : "the time is over, and there was no trigger");
    }
    if (held == 0) {
        Say("no samples have come");
    } else if (held < document.SampleCount(false)) {
        Say(Printf("%lld of %lld samples have come", static_cast<long long>(held),
                   static_cast<long long>(document.SampleCount(false))));
    }
    return held != 0;
}

int Run(const Options& options) {
    const auto deadline = options.timeout
                              ? std::optional(Time::now() + std::chrono::seconds(*options.timeout))
                              : std::nullopt;
    const std::int64_t runs = options.repeat.value_or(1);
    CheckUse(options);
    Session session(options.port);
    if (Interrupted()) {
        Fail("interrupted");
    }
    SearchCondition condition;
    for (const std::string& text : options.stopIfFound) {
        if (const std::string wrong = condition.Add(text, session.Tables(), {}); !wrong.empty()) {
            WrongUse(wrong);
        }
    }
    Runner runner(session, deadline);
    runner.LoadSetup(options.setup);
    CTesselDoc& document = session.Document();
    bool complete = true;
    bool any = false;
    for (std::int64_t run = 1; runs == 0 || run <= runs; ++run) {
        if (run > 1 && Interrupted()) {
            break; // interrupted while the last run was saved
        }
        const RunEnd end = runner.Run();
        const std::int64_t held = CountHeld(document);
        complete = complete && end != RunEnd::BoardLost;
        if (Report(document, runner, end, held)) {
            any = true;
            const std::string path =
                options.repeat ? NumberedPath(options.output.path, run) : options.output.path;
            SaveTo(runner, path);
            Say(Printf("%s: %lld samples", path == "-" ? "standard output" : path.c_str(),
                       static_cast<long long>(held)));
            complete =
                complete && (end == RunEnd::Interrupt || held == document.SampleCount(false));
            if (const auto found = condition.Empty() ? std::nullopt : FindIn(document, condition)) {
                Say(Printf("found at sample %lld", static_cast<long long>(*found)));
                return ExitStatus::Done;
            }
        }
        if (end == RunEnd::Timeout && !runner.Triggered()) {
            return ExitStatus::NothingFound;
        }
        if (end != RunEnd::Finished || (deadline && Time::now() >= *deadline)) {
            break;
        }
    }
    if (!complete) {
        return ExitStatus::Failure;
    }
    return any && condition.Empty() ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace

void AddCapture(CLI::App& program) {
    constexpr std::int64_t longest = std::int64_t{366} * 24 * 3600;
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "capture", "captures with the connected board",
                                   [options] { return Run(*options); });
    AddPortOptions(command, options->port);
    CompletedWithFiles(
        Required(AddText(command, "--setup", options->setup, "FILE", "trigger program (.tsp)")),
        ".tsp");
    CompletedWithFiles(Required(AddOutput(command, options->output)), ".tra");
    AddOverwrite(command, options->output);
    AddNumber(command, "--timeout", options->timeout, "S",
              {1, longest, "a number of seconds from 1 up"},
              "stop the board after S seconds; what it has is still fetched");
    AddNumber(command, "--repeat", options->repeat, "N",
              {0, std::numeric_limits<std::int64_t>::max(),
               "a number of runs, or 0 for runs without end"},
              "run N times (0: without end) into numbered files");
    AddTexts(command, "--stop-if-found", options->stopIfFound, "NAME=VALUE",
             "end the runs when a capture holds this; may be given several times");
}

} // namespace busquill::cli
