#include "ui/framework/commands.h"

#include <algorithm>
#include <iterator>

namespace busquill {

namespace {

using Board = const BoardTraits&;

bool MasterLock(Board board) {
    return board.bus.masterLock != 0;
}
bool OnConnector(Board board) {
    return board.IsVmeKiteP2() || board.IsVmeKiteP0();
}

bool HasMaster(Board board) {
    return !OnConnector(board) && !MasterLock(board);
}
bool HasExerciser(Board board) {
    return !MasterLock(board);
}
bool HasTarget(Board board) {
    return !board.IsWrenBoard() && !board.IsVmeLark() && !OnConnector(board);
}
bool HasCompliance(Board board) {
    return !board.IsWrenBoard() && !board.IsVmeFamily() && !OnConnector(board) &&
           !board.IsVsbFamily();
}
bool HasAnomaly(Board board) {
    return !board.IsVmeLark() && !OnConnector(board) && !board.IsVsbFamily();
}
bool HasBackplane(Board board) {
    return !board.IsVmeLark() && !MasterLock(board);
}

// clang-format off
constexpr Command commands[] = {
    {CommandId::FileNew,              "",                        "New",                   "Open a new document", "new", ""},
    {CommandId::NewStateTrace,        "&File>&New>&Capture",     "&State",                "Capture bus traffic and show it as a listing", "state", "Ctrl+N"},
    {CommandId::NewWaveformTrace,     "&File>&New>&Capture",     "&Waveform",             "Capture bus traffic and show it as waveforms", "waveform", ""},
    {CommandId::NewUtilization,       "&File>&New>&Performance", "&Utilization",          "Measure how much the bus is used", "performance", ""},
    {CommandId::NewTransferRate,      "&File>&New>&Performance", "&Transfer Rate",        "Measure how fast data move", "", ""},
    {CommandId::NewLatency,           "&File>&New>&Performance", "&Latency",              "Measure how long transfers wait", "", ""},
    {CommandId::NewBurstDistribution, "&File>&New>&Performance", "&Burst Distribution",   "Measure how long bursts are", "", ""},
    {CommandId::NewStatistics,        "&File>&New>&Performance", "&Statistics",           "Count bus events", "", ""},
    {CommandId::NewMaster,            "&File>&New>&Exerciser",   "&Master",               "Run bus cycles as a master", "master", "", HasMaster},
    {CommandId::NewConfiguration,     "&File>&New>&Exerciser",   "&Configuration",        "Find devices and read their configuration", "", "", HasExerciser},
    {CommandId::NewStimulus,          "&File>&New>&Exerciser",   "&Stimulus",             "Drive patterns on the bus", "stimulus", "", HasExerciser},
    {CommandId::NewTarget,            "&File>&New",              "&Target",               "Answer bus cycles as a target", "target", "", HasTarget},
    {CommandId::NewCompliance,        "&File>&New",              "C&ompliance Tests",     "Test a device against a check list", "compliance", "", HasCompliance},
    {CommandId::NewAnomaly,           "&File>&New",              "&Anomaly Detection",    "Watch for violations of protocol and timing", "anomaly", "", HasAnomaly},
    {CommandId::NewBackplane,         "&File>&New",              "&Backplane Test",       "Look for shorts on a backplane", "backplane", "", HasBackplane},
    {CommandId::FileOpen,             "&File",                   "&Open...",              "Open a file", "open", "Ctrl+O"},
    {CommandId::FileClose,            "&File",                   "&Close",                "Close the active window", "", ""},
    {CommandId::None,                 "&File",                   "", "", "", ""},
    {CommandId::FileSave,             "&File",                   "&Save",                 "Save the active document", "save", "Ctrl+S"},
    {CommandId::FileSaveAs,           "&File",                   "Save &As...",           "Save the active document under another name", "", ""},
    {CommandId::None,                 "&File",                   "", "", "", ""},
    {CommandId::Print,                "&File",                   "&Print...",             "Print the active document", "print", "Ctrl+P"},
    {CommandId::PrintPreview,         "&File",                   "Print Pre&view",        "Show how the active document is printed", "", ""},
    {CommandId::None,                 "&File",                   "", "", "", ""},
    {CommandId::RecentFile,           "&File",                   "Recent File",           "Open this file", "", ""},
    {CommandId::None,                 "&File",                   "", "", "", ""},
    {CommandId::Exit,                 "&File",                   "E&xit",                 "End the program", "", ""},

    {CommandId::Cut,                  "&Edit",                   "Cu&t",                  "Cut the selection", "cut", "Ctrl+X"},
    {CommandId::Copy,                 "&Edit",                   "&Copy",                 "Copy the selection", "copy", "Ctrl+C"},
    {CommandId::Paste,                "&Edit",                   "&Paste",                "Insert what was cut or copied", "paste", "Ctrl+V"},
    {CommandId::None,                 "&Edit",                   "", "", "", ""},
    {CommandId::DisplayName,          "&Edit>&Display",          "&Name",                 "Change the name of the active trace", "", ""},
    {CommandId::DisplayMarkers,       "&Edit>&Display",          "&Markers",              "Change the colours of trigger and markers", "", ""},
    {CommandId::DisplayGrid,          "&Edit>&Display",          "&Grid",                 "Change the grid", "", ""},
    {CommandId::DisplayScale,         "&Edit>&Display",          "&Scale",                "Change the scale", "", ""},
    {CommandId::DisplayColors,        "&Edit>&Display",          "&Colors",               "Change the colours of the windows", "", ""},

    {CommandId::ViewToolbar,          "&View",                   "&Toolbar",              "Show or hide the tool bar", "", ""},
    {CommandId::ViewStatusBar,        "&View",                   "&Status Bar",           "Show or hide the status bar", "", ""},
    {CommandId::None,                 "&View",                   "", "", "", ""},
    {CommandId::ZoomIn,               "&View",                   "Zoom &In",              "Show fewer samples", "zoom-in", "Ctrl++; Ctrl+="},
    {CommandId::ZoomOut,              "&View",                   "Zoom &Out",             "Show more samples", "zoom-out", "Ctrl+-"},
    {CommandId::ZoomToFit,            "&View",                   "Zoom to Fit",           "Show all samples", "", ""},

    {CommandId::GoToTrigger,          "&Search>&Go to",          "&Trigger",              "Go to the trigger", "go-trigger", "Ctrl+T"},
    {CommandId::GoToMarker1,          "&Search>&Go to",          "Marker &1",             "Go to marker 1", "go-marker1", "Ctrl+1"},
    {CommandId::GoToMarker2,          "&Search>&Go to",          "Marker &2",             "Go to marker 2", "go-marker2", "Ctrl+2"},
    {CommandId::GoToStart,            "&Search>&Go to",          "&Start",                "Go to the first sample", "go-start", "Ctrl+Home"},
    {CommandId::GoToEnd,              "&Search>&Go to",          "&End",                  "Go to the last sample", "go-end", "Ctrl+End"},
    {CommandId::GoToSample,           "&Search>&Go to",          "&Sample #",             "Go to a sample by its number", "", "Ctrl+G"},
    {CommandId::None,                 "&Search",                 "", "", "", ""},
    {CommandId::FindPattern,          "&Search",                 "&Find Pattern",         "Look for a pattern", "find", "Ctrl+F"},
    {CommandId::FindNext,             "&Search",                 "Find &Next",            "Look for the pattern further down", "find-next", "F3"},
    {CommandId::FindPrevious,         "&Search",                 "Find &Previous",        "Look for the pattern further up", "find-previous", "Shift+F3"},
    {CommandId::Filter,               "&Search",                 "Fil&ter",               "Show only samples that fit a pattern", "filter", ""},
    {CommandId::Compare,              "&Search",                 "&Compare",              "Compare two captures", "compare", ""},
    {CommandId::ZoomIncrement,        "&Search",                 "Zoom Increment",        "Set the step of the zoom", "", ""},

    {CommandId::DefineSignals,        "&Utilities",              "&Define Signals",       "Show how signals lie in a sample", "", ""},
    {CommandId::BoardSetup,           "&Utilities",              "Board &Setup",          "Choose port and baud rate", "", ""},
    {CommandId::BoardInfo,            "&Utilities",              "Board &Info",           "Show the identity of the board", "", ""},
    {CommandId::DownloadFirmware,     "&Utilities",              "Download &Firmware",    "Replace the board's firmware", "", ""},
    {CommandId::SerialTest,           "&Utilities",              "Serial &Test",          "Talk to the port by hand", "", ""},
    {CommandId::BusConfiguration,     "&Utilities",              "&Bus Configuration",    "Set mode and width of the bus", "", ""},

    {CommandId::Transactions,         "&Analyze",                "&Transactions",         "Show or hide the transactions of the capture", "", "Ctrl+Shift+T"},
    {CommandId::Findings,             "&Analyze",                "&Findings and Hits",    "Show or hide what the board has found, and the samples that fulfil an expression", "", "Ctrl+Shift+F"},
    {CommandId::Interval,             "&Analyze",                "&Interval",             "Show or hide what lies between the markers", "", "Ctrl+Shift+I"},
    {CommandId::ShowBookmarks,        "&Analyze",                "&Bookmarks",            "Show or hide the bookmarks of the capture", "", "Ctrl+Shift+B"},
    {CommandId::None,                 "&Analyze",                "", "", "", ""},
    {CommandId::ShowOnlyHits,         "&Analyze",                "Show Only &Hits",       "Show only samples that fulfil the expression", "", ""},
    {CommandId::AddBookmark,          "&Analyze",                "&Add Bookmark...",      "Put a bookmark on the sample of marker 1 or in the middle of the display, or change its note", "", "Ctrl+B"},
    {CommandId::NextBookmark,         "&Analyze",                "&Next Bookmark",        "Go to the next bookmark", "", "Ctrl+F2"},
    {CommandId::PreviousBookmark,     "&Analyze",                "&Previous Bookmark",    "Go to the previous bookmark", "", "Ctrl+Shift+F2"},

    {CommandId::Cascade,              "&Window",                 "&Cascade",              "Arrange the windows so that they overlap", "", ""},
    {CommandId::Tile,                 "&Window",                 "&Tile",                 "Arrange the windows side by side", "", ""},
    {CommandId::None,                 "&Window",                 "", "", "", ""},
    {CommandId::WindowList,           "&Window",                 "Windows",               "Bring this window to the front", "", ""},

    {CommandId::HelpContents,         "&Help",                   "&Contents",             "Open the manual", "help", "F1"},
    {CommandId::HelpTopics,           "&Help",                   "&Topics",               "List the pages of the manual", "", ""},
    {CommandId::None,                 "&Help",                   "", "", "", ""},
    {CommandId::About,                "&Help",                   "&About Busquill!",      "Version and licence", "", ""},

    {CommandId::ShowKeys,             "",                        "Keys",                  "List all keys", "", "Shift+F1"},
    {CommandId::Go,                   "",                        "Go",                    "Start the run of the window", "go", "F5"},
    {CommandId::Stop,                 "",                        "Stop",                  "Stop the run of the window", "stop", "Shift+F5"},
    {CommandId::EditSetup,            "",                        "Setup",                 "Edit the setup of the window", "setup", "F6"},
    {CommandId::ChooseSetup,          "",                        "Setup Box",             "Open the list of setups", "", "Shift+F6"},
    {CommandId::PutMarker1,           "",                        "Put Marker 1",          "Put marker 1 in the middle of the display, or remove it from there", "", "F7"},
    {CommandId::PutMarker2,           "",                        "Put Marker 2",          "Put marker 2 in the middle of the display, or remove it from there", "", "F8"},
    {CommandId::Marker1Back,          "",                        "Marker 1 Back",         "Move marker 1 to the previous sample", "", "Alt+Left"},
    {CommandId::Marker1Forward,       "",                        "Marker 1 Forward",      "Move marker 1 to the next sample", "", "Alt+Right"},
    {CommandId::Marker2Back,          "",                        "Marker 2 Back",         "Move marker 2 to the previous sample", "", "Alt+Shift+Left"},
    {CommandId::Marker2Forward,       "",                        "Marker 2 Forward",      "Move marker 2 to the next sample", "", "Alt+Shift+Right"},
    {CommandId::NextSignal,           "",                        "Next Signal",           "Select the next signal", "", "Ctrl+Right; Ctrl+Down"},
    {CommandId::PreviousSignal,       "",                        "Previous Signal",       "Select the previous signal", "", "Ctrl+Left; Ctrl+Up"},
    {CommandId::SignalMenu,           "",                        "Signal Menu",           "Open the menu on the selected signal", "", "Shift+F10; Menu"},
    {CommandId::SwitchDisplay,        "",                        "Display",               "Show the capture in the other display", "", "F9"},
    {CommandId::PowerZoom,            "",                        "Power Zoom",            "Show the Power Zoom samples", "power-zoom", "Shift+F9"},
};

constexpr CommandId toolbar[] = {
    CommandId::FileNew, CommandId::FileOpen, CommandId::FileSave, CommandId::None,
    CommandId::Cut, CommandId::Copy, CommandId::Paste, CommandId::None,
    CommandId::Print, CommandId::None,
    CommandId::NewStateTrace, CommandId::NewWaveformTrace, CommandId::NewMaster,
    CommandId::NewStimulus, CommandId::NewTarget, CommandId::NewUtilization,
    CommandId::NewCompliance, CommandId::NewAnomaly, CommandId::NewBackplane, CommandId::None,
    CommandId::GoToTrigger, CommandId::GoToMarker1, CommandId::GoToMarker2,
    CommandId::GoToStart, CommandId::GoToEnd, CommandId::None,
    CommandId::ZoomIn, CommandId::ZoomOut, CommandId::None,
    CommandId::FindPattern, CommandId::FindNext, CommandId::FindPrevious, CommandId::None,
    CommandId::Filter, CommandId::Compare, CommandId::None,
    CommandId::HelpContents,
};
// clang-format on

} // namespace

std::span<const Command> Commands() noexcept {
    return commands;
}

bool RepeatsWithItsKey(CommandId id) noexcept {
    switch (id) {
    case CommandId::Paste:
    case CommandId::ZoomIn:
    case CommandId::ZoomOut:
    case CommandId::FindNext:
    case CommandId::FindPrevious:
    case CommandId::NextBookmark:
    case CommandId::PreviousBookmark:
    case CommandId::Marker1Back:
    case CommandId::Marker1Forward:
    case CommandId::Marker2Back:
    case CommandId::Marker2Forward:
    case CommandId::NextSignal:
    case CommandId::PreviousSignal:
        return true;
    default:
        return false;
    }
}

const Command& CommandOf(CommandId id) noexcept {
    return *std::find_if(std::begin(commands), std::end(commands),
                         [id](const Command& command) { return command.id == id; });
}

std::span<const CommandId> ToolbarButtons() noexcept {
    return toolbar;
}

} // namespace busquill
