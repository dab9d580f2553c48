#include "capture/bookmarks.h"
#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/facts.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"
#include "tracesetup/setup_words.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace busquill::cli {

namespace {

struct Options {
    std::vector<std::string> files;
    OutputOptions output;
    BusOptions bus;
    bool json = false;
};

std::string ListWords(const TraceStream& stream) {
    const auto words = [](const char* name, const CSignalList& list, bool has) {
        std::size_t rows = 0;
        for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
            ++rows;
        }
        return has ? Printf("%s (%zu signals)", name, rows) : std::string();
    };
    std::string text;
    for (const std::string& each :
         {words("state", stream.stateList, stream.Parser().HasStateList()),
          words("waveform", stream.waveformList, stream.Parser().HasWaveformList()),
          words("power zoom", stream.zoomList, stream.Parser().HasZoomList())}) {
        text += (text.empty() || each.empty() ? "" : ", ") + each;
    }
    return text.empty() ? "none, so the default ones" : text;
}

/// One a line, with the number of the sample.
std::vector<std::string> BookmarkWords(const Bookmarks& bookmarks, const TraceSurvey& survey) {
    std::vector<std::string> words;
    words.reserve(bookmarks.size());
    for (const auto& [number, note] : bookmarks) {
        const bool isInside = survey.hasSamples && number >= survey.first && number <= survey.last;
        std::string text = Printf("%lld", static_cast<long long>(number)) +
                           (isInside ? "" : " (not in the capture)") + (note.empty() ? "" : ": ") +
                           note;
        // A note may come with the capture of somebody else: nothing in it is for the terminal.
        std::ranges::replace_if(
            text, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
        words.push_back(std::move(text));
    }
    return words;
}

/// Those beside a file; a stream has none.
Bookmarks BookmarksOf(const std::string& path) {
    if (path == "-") {
        return {};
    }
    BookmarkFile file = ReadBookmarks(BookmarkPathOf(path));
    if (!file.failure.empty()) {
        Say(BookmarkPathOf(path) + ": " + file.failure);
    }
    return std::move(file.bookmarks);
}

std::vector<Fact> FactsOf(TraceInput& input, const std::string& path, const Bus& bus) {
    const TraceSurvey survey = input.Survey();
    const TraceStream& stream = input.Stream();
    std::vector<Fact> facts = {TextFact("File", "file", input.Name()),
                               TextFact("Type", "type", stream.Parser().FileType()),
                               TextFact("Version", "version", stream.Parser().Version()),
                               TextFact("Description", "description", stream.comment),
                               TextFact("Setup", "setup", stream.setup.name)};
    facts.push_back(ListFact("Program", "program", SetupWords(stream.setup, bus.Board())));
    facts.push_back(NumberFact("Samples", "samples", survey.rows));
    if (survey.hasSamples && survey.last >= survey.first) {
        if (survey.rows > 0) {
            facts.push_back(NumberFact("First sample", "first", survey.firstRow));
            facts.push_back(NumberFact("Last sample", "last", survey.lastRow));
        }
        facts.push_back(
            TextFact("Trigger", "trigger", TriggerWords(survey, stream.TriggerNumber())));
        if (survey.HasGaps()) {
            facts.push_back(
                NumberFact("Left out", "leftOut", survey.last - survey.first + 1 - survey.rows));
        }
    }
    facts.push_back(TextFact("Lists", "lists", ListWords(stream)));
    facts.push_back(TextFact("Power Zoom", "powerZoom",
                             survey.hasZoom ? Printf("%u samples", zoomSampleCount) : "none"));
    if (const Bookmarks bookmarks = BookmarksOf(path); !bookmarks.empty()) {
        facts.push_back(ListFact("Bookmarks", "bookmarks", BookmarkWords(bookmarks, survey)));
    }
    return facts;
}

int Run(const Options& options) {
    CheckTarget(options.output, options.files);
    Bus bus(options.bus);
    Output output(options.output.path);
    const bool json = options.json;
    JsonArray array(output, {"[", ",\n ", "]\n", "[]\n"});
    const char* before = "";
    int status = ExitStatus::Done;
    for (const std::string& path : options.files) {
        std::vector<Fact> facts;
        try {
            TraceInput input(path, bus.Tables());
            facts = FactsOf(input, path, bus);
        } catch (const ExitRequest& request) {
            // Continues with the other files.
            Say(request.message);
            status = request.status;
            continue;
        }
        if (json) {
            array.Add(FactsAsJson(facts));
        } else {
            output.Write(before + FactsAsText(facts));
        }
        before = "\n";
    }
    if (json) {
        array.End();
    }
    output.Close();
    return status;
}

} // namespace

void AddInfo(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        AddCommand(program, "info", "what is in captures", [options] { return Run(*options); });
    CompletedWithFiles(AddOperands(command, "FILE", options->files), ".tra");
    AddOutput(command, options->output);
    AddOverwrite(command, options->output);
    AddJson(command, options->json);
    AddBusOptions(command, options->bus);
}

} // namespace busquill::cli
