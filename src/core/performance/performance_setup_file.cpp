#include "performance/performance_setup_file.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace busquill {

namespace {

constexpr std::string_view extension = ".psu";
constexpr double expectedVersion = 1.0;

constexpr const char* nameTaken = "A setup already exists with the name %s. Overwrite?";
constexpr const char* createFailed = "Error opening file %s to write setup.";
constexpr const char* writeFailed = "Error writing file %s.";
constexpr const char* loadFailed = "Error loading performance setup %s.";
constexpr const char* otherVersion =
    "Warning: Expected version number %s in performance setup file, found %s.";

std::string PathOf(const WorkingDirectory& folder, const std::string& name) {
    return folder.FilePath(name + std::string(extension));
}

/// The text after a word, wherever in the line it is.
std::optional<std::string_view> After(std::string_view line, std::string_view word) {
    const auto found = line.find(word);
    return found == std::string_view::npos ? std::nullopt
                                           : std::optional(line.substr(found + word.size()));
}

double ParseVersion(std::string_view text) {
    text = Trim(text);
    double version = 0;
    std::from_chars(text.data(), text.data() + text.size(), version);
    return version;
}

/// With a point in any locale.
std::string VersionText(double version) {
    char text[400];
    const auto end =
        std::to_chars(text, text + sizeof text, version, std::chars_format::fixed, 6).ptr;
    return {text, end};
}

/// "3=12", after the word that names the field of a row.
void TakeField(PerformanceSetup& setup, std::string_view text,
               void (*store)(PerformanceItem&, std::string_view value)) {
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) {
        return;
    }
    const int row = ParseInt(text.substr(0, equals));
    if (row >= 0 && row < static_cast<int>(performanceItems)) {
        store(setup.items[static_cast<std::size_t>(row)], text.substr(equals + 1));
    }
}

/// The first word that is in the line decides what the line is.
void TakeLine(PerformanceSetup& setup, std::string_view line, double& version) {
    using Text = std::string_view;
    if (const auto number = After(line, "Version=")) {
        version = ParseVersion(*number);
    } else if (After(line, "ChartType=")) {
        setup.chartType = After(line, "Bar") ? PerformanceBarChart : PerformancePieChart;
    } else if (After(line, "Grid=")) {
        setup.grid = After(line, "Yes").has_value();
    } else if (const auto item = After(line, "Item")) {
        TakeField(setup, *item,
                  [](PerformanceItem& row, Text value) { row.item = ParseInt(value); });
    } else if (const auto cycle = After(line, "Cycle")) {
        TakeField(setup, *cycle,
                  [](PerformanceItem& row, Text value) { row.cycle = ParseInt(value); });
    } else if (const auto color = After(line, "Color")) {
        TakeField(setup, *color, [](PerformanceItem& row, Text value) {
            row.color =
                static_cast<std::uint32_t>(std::strtoll(std::string(value).c_str(), nullptr, 16));
        });
    } else if (const auto style = After(line, "Style")) {
        TakeField(setup, *style,
                  [](PerformanceItem& row, Text value) { row.style = ParseInt(value); });
    }
}

std::string SetupText(const PerformanceSetup& setup) {
    std::string text = "// Performance Setup\nVersion=1.00\n";
    text += Printf("ChartType=%s\n", setup.chartType == PerformancePieChart ? "Pie" : "Bar");
    text += Printf("Grid=%s\n", setup.grid ? "Yes" : "No");
    for (int row = 0; row < static_cast<int>(performanceItems); ++row) {
        const PerformanceItem& item = setup.items[static_cast<std::size_t>(row)];
        text += Printf("Item%d=%d\n", row, item.item);
        text += Printf("Cycle%d=%d\n", row, item.cycle);
        text += Printf("Color%d=0x%08x\n", row, item.color);
        text += Printf("Style%d=%d\n", row, item.style);
    }
    return text;
}

} // namespace

std::vector<std::string> FindPerformanceSetups(const WorkingDirectory& folder) {
    std::vector<std::string> names;
    std::error_code error;
    const std::string path = folder.Path().empty() ? "." : folder.Path();
    for (const auto& file : std::filesystem::directory_iterator(path, error)) {
        if (file.path().extension().string() == extension && file.is_regular_file(error)) {
            names.push_back(file.path().stem().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

bool LoadPerformanceSetup(PerformanceSetup& setup, const WorkingDirectory& folder,
                          const std::string& name, Prompts& prompts) {
    setup.Clear();
    TextReader file;
    if (!file.Open(PathOf(folder, name))) {
        prompts.Message(Printf(loadFailed, name.c_str()));
        return false;
    }
    ReadPerformanceSetup(setup, file, prompts);
    setup.setupName = name;
    return true;
}

void ReadPerformanceSetup(PerformanceSetup& setup, TextReader& file, Prompts& prompts) {
    setup.Clear();
    double version = 0;
    while (const auto line = file.ReadLine()) {
        TakeLine(setup, *line, version);
    }
    if (version != expectedVersion) {
        prompts.Message(Printf(otherVersion, VersionText(expectedVersion).c_str(),
                               VersionText(version).c_str()));
    }
}

bool SavePerformanceSetup(const PerformanceSetup& setup, const WorkingDirectory& folder,
                          SetupNameTyped typed, Prompts& prompts) {
    const std::string path = PathOf(folder, setup.setupName);
    std::error_code error;
    if (typed == SetupNameTyped::Yes && std::filesystem::exists(path, error) &&
        !prompts.AskYesNo(Printf(nameTaken, setup.setupName.c_str()))) {
        return false;
    }
    TextWriter file;
    if (!file.CreateBeside(path)) {
        prompts.Message(Printf(createFailed, path.c_str()));
        return false;
    }
    file.Write(SetupText(setup));
    if (!file.Close()) {
        prompts.Message(Printf(writeFailed, path.c_str()));
        return false;
    }
    return true;
}

} // namespace busquill
