/// The program's menus and tool bar as data.
#pragma once

#include "link/board_identity.h"

#include <array>
#include <span>

namespace busquill {

enum class CommandId {
    None,    // a separator
    FileNew, // the menu of new documents, as a button
    NewStateTrace,
    NewWaveformTrace,
    NewUtilization,
    NewTransferRate,
    NewLatency,
    NewBurstDistribution,
    NewStatistics,
    NewMaster,
    NewConfiguration,
    NewStimulus,
    NewTarget,
    NewCompliance,
    NewAnomaly,
    NewBackplane,
    FileOpen,
    FileClose,
    FileSave,
    FileSaveAs,
    Print,
    PrintPreview,
    RecentFile,
    Exit,
    Cut,
    Copy,
    Paste,
    DisplayName,
    DisplayMarkers,
    DisplayGrid,
    DisplayScale,
    DisplayColors,
    ViewToolbar,
    ViewStatusBar,
    ZoomIn,
    ZoomOut,
    ZoomToFit,
    GoToTrigger,
    GoToMarker1,
    GoToMarker2,
    GoToStart,
    GoToEnd,
    GoToSample,
    FindPattern,
    FindNext,
    FindPrevious,
    Filter,
    Compare,
    ZoomIncrement,
    DefineSignals,
    BoardSetup,
    BoardInfo,
    DownloadFirmware,
    SerialTest,
    BusConfiguration,
    Cascade,
    Tile,
    WindowList,
    HelpContents,
    HelpTopics,
    About,
};

/// What the enabling of commands depends on.
struct CommandState {
    BoardTraits board;
    bool realTimeState = false; // a real-time State view exists
    bool realTimeWaveform = false;
    bool hasDocument = false;      // a document is active
    bool traceActive = false;      // the active view shows a trace
    bool canSave = false;          // the active document can be saved
    std::array<bool, 5> canGoTo{}; // trigger, markers, start, end
    bool canSearch = false;
    bool canFilter = false;
    bool canZoomIn = false;
    bool canZoomOut = false;
    bool hasWindows = false;
    /// Which templates can make documents, by position.
    std::array<bool, 9> templates{};

    [[nodiscard]] bool MasterLock() const noexcept { return board.bus.masterLock != 0; }
};

/// One entry of a menu. `menu` is the path of menus from the bar, joined by ">".
struct Command {
    CommandId id;
    const char* menu;
    const char* text;     // with its mnemonic
    const char* tip;      // for the message line
    const char* icon;     // file name in the resources, or empty
    const char* shortcut; // portable, or empty; several stand behind one another with "; "
    bool (*enabled)(const CommandState&);
};

/// All entries, in the order of the menus.
[[nodiscard]] std::span<const Command> Commands() noexcept;
[[nodiscard]] const Command& CommandOf(CommandId id) noexcept;

/// The buttons of the tool bar; None is a gap.
[[nodiscard]] std::span<const CommandId> ToolbarButtons() noexcept;

} // namespace busquill
