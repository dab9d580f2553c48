#pragma once

#include "ui/framework/command_map.h"
#include "ui/framework/doc_template.h"

#include <string_view>
#include <vector>

class QMdiArea;

namespace busquill {

class Analyzer;
class CWinApp;
class MainThread;
class Prompts;
class Settings;
class WorkingDirectory;

/// What a function of the board works with; all outlive it.
struct FeatureParts {
    CWinApp& app;
    Analyzer& analyzer;
    Settings& settings;
    Prompts& prompts;
    const MainThread& mainThread;
    const WorkingDirectory& directory;
    QMdiArea& area; // where its windows lie
};

/// The manual's page for a number by which help is asked for.
struct HelpTopicPage {
    int topic;
    const char* page;
};

/// A function of the board, as its room presents it to the program.
struct Feature {
    std::string_view docString; // of its template; empty if it has no documents
    CMultiDocTemplate::Factories factories;
    /// What the application carries out for it, such as creating new documents.
    CommandMap commands;
    std::vector<HelpTopicPage> help;
};

} // namespace busquill
