#include "ui/shell/commands.h"

#include <algorithm>
#include <iterator>

namespace busquill {

namespace {

using State = const CommandState&;

bool Always(State) {
    return true;
}
/// The function behind the entry does not exist yet.
bool NotYet(State) {
    return false;
}
/// No handler in this program.
bool Never(State) {
    return false;
}

template <std::size_t Target>
bool CanGoTo(State state) {
    return state.traceActive && state.canGoTo[Target];
}

bool OnConnector(State state) {
    return state.board.IsVmeKiteP2() || state.board.IsVmeKiteP0();
}

bool CanNewState(State state) {
    return !state.realTimeState;
}
bool CanNewWaveform(State state) {
    return !state.realTimeWaveform;
}
bool CanMaster(State state) {
    return !OnConnector(state) && !state.MasterLock();
}
bool CanExercise(State state) {
    return !state.MasterLock();
}
bool CanTarget(State state) {
    return !state.board.IsWrenBoard() && !state.board.IsVmeLark() && !OnConnector(state);
}
bool CanCompliance(State state) {
    return !state.board.IsWrenBoard() && !state.board.IsVmeFamily() && !OnConnector(state) &&
           !state.board.IsVsbFamily();
}
bool CanAnomaly(State state) {
    return !state.board.IsVmeLark() && !OnConnector(state) && !state.board.IsVsbFamily();
}
bool CanBackplane(State state) {
    return !state.board.IsVmeLark() && !state.MasterLock();
}

/// A command that opens a template's document.
template <std::size_t Position, bool (*Rule)(State)>
bool Opens(State state) {
    return state.templates[Position] && Rule(state);
}

// clang-format off
constexpr Command commands[] = {
    {CommandId::FileNew,              "",                        "New",                   "Open a new document", "new", "", Always},
    {CommandId::NewStateTrace,        "&File>&New>&Capture",     "&State",                "Capture bus traffic and show it as a listing", "state", "Ctrl+N", Opens<0, CanNewState>},
    {CommandId::NewWaveformTrace,     "&File>&New>&Capture",     "&Waveform",             "Capture bus traffic and show it as waveforms", "waveform", "", Opens<0, CanNewWaveform>},
    {CommandId::NewUtilization,       "&File>&New>&Performance", "&Utilization",          "Measure how much the bus is used", "performance", "", Opens<1, Always>},
    {CommandId::NewTransferRate,      "&File>&New>&Performance", "&Transfer Rate",        "Measure how fast data move", "", "", Opens<1, Always>},
    {CommandId::NewLatency,           "&File>&New>&Performance", "&Latency",              "Measure how long transfers wait", "", "", Opens<1, Always>},
    {CommandId::NewBurstDistribution, "&File>&New>&Performance", "&Burst Distribution",   "Measure how long bursts are", "", "", Opens<1, Always>},
    {CommandId::NewStatistics,        "&File>&New>&Performance", "&Statistics",           "Count bus events", "", "", Opens<1, Always>},
    {CommandId::NewMaster,            "&File>&New>&Exerciser",   "&Master",               "Run bus cycles as a master", "master", "", Opens<2, CanMaster>},
    {CommandId::NewConfiguration,     "&File>&New>&Exerciser",   "&Configuration",        "Find devices and read their configuration", "", "", Opens<3, CanExercise>},
    {CommandId::NewStimulus,          "&File>&New>&Exerciser",   "&Stimulus",             "Drive patterns on the bus", "stimulus", "", Opens<7, CanExercise>},
    {CommandId::NewTarget,            "&File>&New",              "&Target",               "Answer bus cycles as a target", "target", "", Opens<6, CanTarget>},
    {CommandId::NewCompliance,        "&File>&New",              "C&ompliance Tests",     "Test a device against a check list", "compliance", "", Opens<4, CanCompliance>},
    {CommandId::NewAnomaly,           "&File>&New",              "&Anomaly Detection",    "Watch for violations of protocol and timing", "anomaly", "", Opens<5, CanAnomaly>},
    {CommandId::NewBackplane,         "&File>&New",              "&Backplane Test",       "Look for shorts on a backplane", "backplane", "", Opens<8, CanBackplane>},
    {CommandId::FileOpen,             "&File",                   "&Open...",              "Open a file", "open", "Ctrl+O", Always},
    {CommandId::FileClose,            "&File",                   "&Close",                "Close the active window", "", "", [](State s) { return s.hasWindows; }},
    {CommandId::None,                 "&File",                   "", "", "", "", Never},
    {CommandId::FileSave,             "&File",                   "&Save",                 "Save the active document", "save", "Ctrl+S", [](State s) { return s.canSave; }},
    {CommandId::FileSaveAs,           "&File",                   "Save &As...",           "Save the active document under another name", "", "", [](State s) { return s.hasDocument; }},
    {CommandId::None,                 "&File",                   "", "", "", "", Never},
    {CommandId::Print,                "&File",                   "&Print...",             "Print the active document", "print", "Ctrl+P", NotYet},
    {CommandId::PrintPreview,         "&File",                   "Print Pre&view",        "Show how the active document is printed", "", "", NotYet},
    {CommandId::None,                 "&File",                   "", "", "", "", Never},
    {CommandId::RecentFile,           "&File",                   "Recent File",           "Open this file", "", "", Never},
    {CommandId::None,                 "&File",                   "", "", "", "", Never},
    {CommandId::Exit,                 "&File",                   "E&xit",                 "End the program", "", "", Always},

    {CommandId::Cut,                  "&Edit",                   "Cu&t",                  "Cut the selection", "cut", "Ctrl+X", NotYet},
    {CommandId::Copy,                 "&Edit",                   "&Copy",                 "Copy the selection", "copy", "Ctrl+C", NotYet},
    {CommandId::Paste,                "&Edit",                   "&Paste",                "Insert what was cut or copied", "paste", "Ctrl+V", NotYet},
    {CommandId::None,                 "&Edit",                   "", "", "", "", Never},
    {CommandId::DisplayName,          "&Edit>&Display",          "&Name",                 "Change the name of the active trace", "", "", NotYet},
    {CommandId::DisplayMarkers,       "&Edit>&Display",          "&Markers",              "Change the colours of trigger and markers", "", "", NotYet},
    {CommandId::DisplayGrid,          "&Edit>&Display",          "&Grid",                 "Change the grid", "", "", NotYet},
    {CommandId::DisplayScale,         "&Edit>&Display",          "&Scale",                "Change the scale", "", "", NotYet},
    {CommandId::DisplayColors,        "&Edit>&Display",          "&Colors",               "Change the colours of the windows", "", "", NotYet},

    {CommandId::ViewToolbar,          "&View",                   "&Toolbar",              "Show or hide the tool bar", "", "", Always},
    {CommandId::ViewStatusBar,        "&View",                   "&Status Bar",           "Show or hide the status bar", "", "", Always},
    {CommandId::None,                 "&View",                   "", "", "", "", Never},
    {CommandId::ZoomIn,               "&View",                   "Zoom &In",              "Show fewer samples", "zoom-in", "Ctrl++; Ctrl+=", [](State s) { return s.canZoomIn; }},
    {CommandId::ZoomOut,              "&View",                   "Zoom &Out",             "Show more samples", "zoom-out", "Ctrl+-", [](State s) { return s.canZoomOut; }},
    {CommandId::ZoomToFit,            "&View",                   "Zoom to Fit",           "Show all samples", "", "", Never},

    {CommandId::GoToTrigger,          "&Search>&Go to",          "&Trigger",              "Go to the trigger", "go-trigger", "Ctrl+T", CanGoTo<0>},
    {CommandId::GoToMarker1,          "&Search>&Go to",          "Marker &1",             "Go to marker 1", "go-marker1", "Ctrl+1", CanGoTo<1>},
    {CommandId::GoToMarker2,          "&Search>&Go to",          "Marker &2",             "Go to marker 2", "go-marker2", "Ctrl+2", CanGoTo<2>},
    {CommandId::GoToStart,            "&Search>&Go to",          "&Start",                "Go to the first sample", "go-start", "Ctrl+Home", CanGoTo<3>},
    {CommandId::GoToEnd,              "&Search>&Go to",          "&End",                  "Go to the last sample", "go-end", "Ctrl+End", CanGoTo<4>},
    {CommandId::GoToSample,           "&Search>&Go to",          "&Sample #",             "Go to a sample by its number", "", "Ctrl+G", [](State s) { return s.canSearch; }},
    {CommandId::None,                 "&Search",                 "", "", "", "", Never},
    {CommandId::FindPattern,          "&Search",                 "&Find Pattern",         "Look for a pattern", "find", "Ctrl+F", [](State s) { return s.traceActive; }},
    {CommandId::FindNext,             "&Search",                 "Find &Next",            "Look for the pattern further down", "find-next", "F3", [](State s) { return s.canSearch; }},
    {CommandId::FindPrevious,         "&Search",                 "Find &Previous",        "Look for the pattern further up", "find-previous", "Shift+F3", [](State s) { return s.canSearch; }},
    {CommandId::Filter,               "&Search",                 "Fil&ter",               "Show only samples that fit a pattern", "filter", "", [](State s) { return s.canFilter; }},
    {CommandId::Compare,              "&Search",                 "&Compare",              "Compare two captures", "compare", "", Never},
    {CommandId::ZoomIncrement,        "&Search",                 "Zoom Increment",        "", "", "", Never},

    {CommandId::DefineSignals,        "&Utilities",              "&Define Signals",       "Show how signals lie in a sample", "", "", Always},
    {CommandId::BoardSetup,           "&Utilities",              "Board &Setup",          "Choose port and baud rate", "", "", NotYet},
    {CommandId::BoardInfo,            "&Utilities",              "Board &Info",           "Show what the board says of itself", "", "", Always},
    {CommandId::DownloadFirmware,     "&Utilities",              "Download &Firmware",    "Replace the board's firmware", "", "", NotYet},
    {CommandId::SerialTest,           "&Utilities",              "Serial &Test",          "Talk to the port by hand", "", "", NotYet},
    {CommandId::BusConfiguration,     "&Utilities",              "&Bus Configuration",    "Say how the board is to see its bus", "", "", Always},

    {CommandId::Cascade,              "&Window",                 "&Cascade",              "Arrange the windows one behind another", "", "", [](State s) { return s.hasWindows; }},
    {CommandId::Tile,                 "&Window",                 "&Tile",                 "Arrange the windows side by side", "", "", [](State s) { return s.hasWindows; }},
    {CommandId::None,                 "&Window",                 "", "", "", "", Never},
    {CommandId::WindowList,           "&Window",                 "Windows",               "Bring this window to the front", "", "", Never},

    {CommandId::HelpContents,         "&Help",                   "&Contents",             "Open the manual", "help", "F1", Always},
    {CommandId::HelpTopics,           "&Help",                   "&Topics",               "List the pages of the manual", "", "", Always},
    {CommandId::None,                 "&Help",                   "", "", "", "", Never},
    {CommandId::About,                "&Help",                   "&About Busquill!",      "Version and licence", "", "", Always},
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

const Command& CommandOf(CommandId id) noexcept {
    return *std::find_if(std::begin(commands), std::end(commands),
                         [id](const Command& command) { return command.id == id; });
}

std::span<const CommandId> ToolbarButtons() noexcept {
    return toolbar;
}

} // namespace busquill
