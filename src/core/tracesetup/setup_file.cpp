#include "tracesetup/setup_file.h"

#include "document/csv_line.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "platform/working_directory.h"

#include <algorithm>
#include <filesystem>

namespace busquill {

namespace {

using Fields = std::vector<std::string>;

/// The index of a text; the old index where no text matches.
std::int32_t IndexOfText(std::string_view (*textOf)(std::int32_t), std::int32_t count,
                         const std::string& text, std::int32_t old) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (textOf(i) == text) {
            return i;
        }
    }
    return old;
}

void ReadKeyword(TraceSetup& setup, const Fields& fields, TextReader& file) {
    const std::string& key = fields[0];
    const std::string& value = fields[1];
    if (key == "FileType") {
        setup.fileType = value;
    } else if (key == "Version") {
        setup.version = value;
    } else if (key == "Name") {
        setup.name = value;
    } else if (key == "Description") {
        setup.description = value;
    } else if (key == "Clock") {
        setup.clock = IndexOfText(ClockText, clockCount, value, setup.clock);
    } else if (key == "PowerZoomClock") {
        setup.powerZoomClock =
            IndexOfText(PowerZoomText, powerZoomCount, value, setup.powerZoomClock);
    } else if (key == "Trigger") {
        setup.triggerPosition =
            IndexOfText(TriggerText, triggerCount, value, setup.triggerPosition);
    } else if (key == "Signal" && value != "Name") {
        setup.events.ReadSignal(fields, file);
    } else if (key == "Control" && value != "Level") {
        ParseLevelRow(setup, fields, false);
    }
}

} // namespace

void ReadSetupBody(TraceSetup& setup, TextReader& file) {
    setup.Reset();
    setup.events.RemoveAllSignals();
    Fields fields;
    while (ReadCsvRecord(file, fields)) {
        if (fields.empty()) {
            continue;
        }
        if (fields[0] == "End of Setup Data") {
            break;
        }
        if (fields.size() > 1) {
            ReadKeyword(setup, fields, file);
        }
    }
    setup.events.RebuildAfterRead();
}

void ParseLevelRow(TraceSetup& setup, const Fields& tokens, bool stimulus) {
    const int number = tokens.size() < 2 ? 0 : ParseInt(tokens[1]);
    if (number < 1 || number > (stimulus ? stimulusLevels : traceLevels)) {
        return;
    }
    TraceLevel& level = setup.levels[static_cast<std::size_t>(number) - 1];
    const auto field = [&](std::size_t i) -> const std::string* {
        return i < tokens.size() ? &tokens[i] : nullptr;
    };
    if (const auto* text = field(2)) {
        level.ifExpr = ParseExpression(*text);
    }
    if (const auto* text = field(3)) {
        level.occurs = ParseInt(*text);
    }
    if (const auto* text = field(4)) {
        stimulus ? ParseStimulusGoto(*text, level.thenGoto, level.thenDuration, level.thenWait)
                 : ParseTraceGoto(*text, level.thenGoto, level.thenTrigger);
    }
    if (const auto* text = field(5)) {
        stimulus ? ParseStimulusGoto(*text, level.elseGoto, level.elseDuration, level.elseWait)
                 : ParseTraceGoto(*text, level.elseGoto, level.elseTrigger);
    }
    if (const auto* text = field(6)) {
        if (stimulus) {
            level.stimulus = ParseStimulusRef(*text);
        } else {
            level.storeExpr = ParseExpression(*text);
        }
    }
}

std::string LevelHeader(bool stimulus) {
    return Printf("\"Control\",\"Level\",\"If\",\"Occurs\",\"Then\",\"Else\",\"%s\"\n",
                  stimulus ? "Stimulus" : "Store");
}

std::string LevelRow(const TraceSetup& setup, int number, bool stimulus) {
    const TraceLevel& level = setup.levels[static_cast<std::size_t>(number) - 1];
    const std::string then =
        stimulus ? FormatStimulusGoto(level.thenGoto, level.thenDuration, level.thenWait)
                 : FormatTraceGoto(level.thenGoto, level.thenTrigger);
    const std::string otherwise =
        stimulus ? FormatStimulusGoto(level.elseGoto, level.elseDuration, level.elseWait)
                 : FormatTraceGoto(level.elseGoto, level.elseTrigger);
    const std::string last =
        stimulus ? FormatStimulusRef(level.stimulus) : FormatExpression(level.storeExpr);
    return Printf("\"Control\",%d,%s,%d,%s,%s,%s\n", number,
                  CsvQuote(FormatExpression(level.ifExpr)).c_str(), level.occurs,
                  CsvQuote(then).c_str(), CsvQuote(otherwise).c_str(), CsvQuote(last).c_str());
}

void WriteSetupBody(const TraceSetup& setup, TextWriter& file) {
    const auto row = [&](const char* key, std::string_view value) {
        file.Write(CsvQuote(key) + "," + CsvQuote(value) + "\n");
    };
    row("Name", setup.name);
    row("Description", setup.description);
    row("Clock", ClockText(setup.clock));
    row("Trigger", TriggerText(setup.triggerPosition));
    row("PowerZoomClock", PowerZoomText(setup.powerZoomClock));
    file.Write("\n\"Events\"\n");
    setup.events.WriteSignals(file, true);
    file.Write("\n\"TraceControl\"\n");
    file.Write(LevelHeader(false));
    for (int level = 1; level <= traceLevels; ++level) {
        file.Write(LevelRow(setup, level, false));
    }
    file.Write("\"End of Setup Data\"\n");
}

std::string SetupNameOf(const std::string& path) {
    TextReader file; // only the beginning is read, which holds the name
    Fields fields;
    if (file.Open(path)) {
        while (ReadCsvRecord(file, fields)) {
            if (fields.size() > 1 && fields[0] == "Name" && !fields[1].empty()) {
                return fields[1];
            }
            if (!fields.empty() && fields[0] == "Events") {
                break;
            }
        }
    }
    return std::string(BaseNameOf(path));
}

std::vector<SetupFileEntry> FindSetupFiles(const std::string& directory) {
    std::vector<SetupFileEntry> found;
    std::error_code error;
    for (const auto& file : std::filesystem::directory_iterator(directory, error)) {
        if (EqualIgnoringCase(file.path().extension().string(), ".tsp") &&
            file.is_regular_file(error)) {
            found.push_back({file.path().string(), SetupNameOf(file.path().string())});
        }
    }
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.path < b.path; });
    return found;
}

bool LoadSetupFile(TraceSetup& setup, const std::string& path, Prompts& prompts) {
    setup.fileType.clear();
    setup.version.clear();
    TextReader file;
    if (!file.Open(path)) {
        prompts.Message(Printf("Error opening file %s.", path.c_str()));
        return false;
    }
    return LoadSetupFile(setup, file, prompts);
}

bool LoadSetupFile(TraceSetup& setup, TextReader& file, Prompts& prompts) {
    setup.fileType.clear();
    setup.version.clear();
    // Checks follow the reading, so a caller that needs the old setup must keep a copy.
    ReadSetupBody(setup, file);
    if (setup.fileType != setupFileType) {
        prompts.Message(Printf(fileTypeMissing, setupFileType));
        return false;
    }
    if (setup.version != fileVersion) {
        prompts.Message(Printf(fileVersionMissing, fileVersion));
        return false;
    }
    return true;
}

bool SaveSetupFile(const TraceSetup& setup, const std::string& path, Prompts& prompts) {
    TextWriter file;
    if (!file.CreateBeside(path)) {
        prompts.Message(Printf("Error creating file %s.", path.c_str()));
        return false;
    }
    file.Write(Printf("\"FileType\",\"%s\"\n\"Version\",\"%s\"\n", setupFileType, fileVersion));
    WriteSetupBody(setup, file);
    if (!file.Close()) {
        prompts.Message(Printf("Error writing file %s.", path.c_str()));
        return false;
    }
    return true;
}

} // namespace busquill
