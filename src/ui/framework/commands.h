/// The program's menus and tool bar as data.
#pragma once

#include "link/board_identity.h"

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
    Transactions,
    Findings,
    Interval,
    ShowBookmarks,
    AddBookmark,
    NextBookmark,
    PreviousBookmark,
    ShowOnlyHits,
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
    // Without an entry in the menus:
    ShowKeys,
    Go,
    Stop,
    EditSetup,
    ChooseSetup,
    PutMarker1,
    PutMarker2,
    Marker1Back,
    Marker1Forward,
    Marker2Back,
    Marker2Forward,
    NextSignal,
    PreviousSignal,
    SignalMenu,
    SwitchDisplay,
    PowerZoom,
};

/// One entry of a menu. `menu` is the path of menus from the bar, joined by ">"; it is empty for a
/// command that has only a button or a key.
struct Command {
    CommandId id;
    const char* menu;
    const char* text;     // with its mnemonic
    const char* tip;      // for the message line
    const char* icon;     // file name in the resources, or empty
    const char* shortcut; // portable, or empty; several are separated by "; "
    /// Which boards have it. Whether it can be carried out now is decided by the CommandMap that
    /// has it.
    bool (*onBoard)(const BoardTraits&) = [](const BoardTraits&) { return true; };
};

/// All entries, in the order of the menus.
[[nodiscard]] std::span<const Command> Commands() noexcept;
[[nodiscard]] const Command& CommandOf(CommandId id) noexcept;
/// Whether a key that is held carries it out again and again: only what takes a step. A second
/// Go would end the first run, a second Power Zoom would open another window.
[[nodiscard]] bool RepeatsWithItsKey(CommandId id) noexcept;

/// The buttons of the tool bar; None is a gap.
[[nodiscard]] std::span<const CommandId> ToolbarButtons() noexcept;

} // namespace busquill
