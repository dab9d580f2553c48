#include "cli/arguments.h"
#include "cli/bus.h"
#include "cli/commands.h"
#include "cli/facts.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/words.h"
#include "platform/text.h"

namespace busquill::cli {

namespace {

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
    std::vector<Fact> facts = {TextFact("File", "file", input.Name()),
                               TextFact("Type", "type", stream.Parser().FileType()),
                               TextFact("Version", "version", stream.Parser().Version()),
                               TextFact("Description", "description", stream.comment),
                               TextFact("Setup", "setup", stream.setup.name)};
    facts.push_back(ListFact("Program", "program", SetupWords(stream.setup, bus.Board())));
    facts.push_back(NumberFact("Samples", "samples", survey.rows));
    if (survey.hasSamples) {
        facts.push_back(NumberFact("First sample", "first", survey.first));
        facts.push_back(NumberFact("Last sample", "last", survey.last));
        const bool held = survey.first <= 0 && survey.last >= 0;
        facts.push_back(TextFact(
            "Trigger", "trigger",
            held ? Printf("sample 0, %lld samples before it", static_cast<long long>(-survey.first))
                 : "not among the samples"));
        if (survey.HasGaps()) {
            facts.push_back(NumberFact("Left out", "leftOut",
                                       std::max<std::int64_t>(0, survey.last - survey.first + 1) -
                                           survey.rows));
        }
    }
    facts.push_back(TextFact("Lists", "lists", ListWords(stream)));
    facts.push_back(TextFact("Power Zoom", "powerZoom",
                             survey.hasZoom ? Printf("%u samples", zoomSampleCount) : "none"));
    return facts;
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
        output.Write(json ? (first ? "[" : ",\n ") + FactsAsJson(facts)
                          : (first ? "" : "\n") + FactsAsText(facts));
        first = false;
    }
    output.Write(json ? "]\n" : "");
    output.Close();
    return 0;
}

} // namespace busquill::cli
