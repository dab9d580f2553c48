#include "cli/arguments.h"
#include "cli/bus.h"
#include "cli/commands.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/words.h"
#include "platform/text.h"

namespace busquill::cli {

namespace {

/// What is told of a file: a name for people, one for programs, and what it is. Several texts are
/// lines below one another.
struct Fact {
    const char* title;
    const char* key;
    std::vector<std::string> texts;
    bool isNumber = false;
    bool isList = false;
};

Fact Text(const char* title, const char* key, const std::string& text) {
    return {title, key, {text}};
}

Fact Number(const char* title, const char* key, std::int64_t number) {
    return {title, key, {std::to_string(number)}, true};
}

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

std::vector<Fact> FactsOf(TraceInput& input, const Bus& bus) {
    const TraceSurvey survey = input.Survey();
    const TraceStream& stream = input.Stream();
    std::vector<Fact> facts = {Text("File", "file", input.Name()),
                               Text("Type", "type", stream.Parser().FileType()),
                               Text("Version", "version", stream.Parser().Version()),
                               Text("Description", "description", stream.comment),
                               Text("Setup", "setup", stream.setup.name)};
    Fact words{"Program", "program", SetupWords(stream.setup, bus.Board())};
    words.isList = true;
    facts.push_back(words);
    facts.push_back(Number("Samples", "samples", survey.rows));
    if (survey.hasSamples) {
        facts.push_back(Number("First sample", "first", survey.first));
        facts.push_back(Number("Last sample", "last", survey.last));
        const bool held = survey.first <= 0 && survey.last >= 0;
        facts.push_back(Text(
            "Trigger", "trigger",
            held ? Printf("sample 0, %lld samples before it", static_cast<long long>(-survey.first))
                 : "not among the samples"));
        if (survey.HasGaps()) {
            facts.push_back(
                Number("Left out", "leftOut",
                       std::max<std::int64_t>(0, survey.last - survey.first + 1) - survey.rows));
        }
    }
    facts.push_back(Text("Lists", "lists", ListWords(stream)));
    facts.push_back(Text("Power Zoom", "powerZoom",
                         survey.hasZoom ? Printf("%u samples", zoomSampleCount) : "none"));
    return facts;
}

std::string AsText(const std::vector<Fact>& facts) {
    std::string text;
    for (const Fact& fact : facts) {
        const char* title = fact.title;
        for (const std::string& line : fact.texts) {
            text += Printf("%-14s %s\n", *title != '\0' ? (std::string(title) + ":").c_str() : "",
                           line.c_str());
            title = "";
        }
    }
    return text;
}

std::string AsJson(const std::vector<Fact>& facts) {
    std::string text;
    for (const Fact& fact : facts) {
        text += (text.empty() ? "{" : ", ") + JsonText(fact.key) + ": ";
        std::string values;
        for (const std::string& value : fact.texts) {
            values += (values.empty() ? "" : ", ") + (fact.isNumber ? value : JsonText(value));
        }
        text += fact.isList ? "[" + values + "]" : values;
    }
    return text + "}";
}

} // namespace

int RunInfo(const Arguments& arguments) {
    const Bus bus(arguments);
    Output output(arguments.Value("output"));
    const bool json = arguments.Has("json");
    bool first = true;
    for (const std::string& path : arguments.operands) {
        TraceInput input(path);
        const auto facts = FactsOf(input, bus);
        output.Write(json ? (first ? "[" : ",\n ") + AsJson(facts)
                          : (first ? "" : "\n") + AsText(facts));
        first = false;
    }
    output.Write(json ? "]\n" : "");
    output.Close();
    return 0;
}

} // namespace busquill::cli
