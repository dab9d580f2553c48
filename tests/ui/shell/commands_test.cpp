#include "ui/shell/commands.h"

#include <QKeySequence>
#include <gtest/gtest.h>

#include <set>

namespace busquill {
namespace {

bool Enabled(CommandId id, const CommandState& state) {
    return CommandOf(id).enabled(state);
}

/// A board with every kind of document there is.
CommandState On(const std::string& model, bool masterLock = false) {
    CommandState state;
    state.board.modelString = model;
    state.board.bus.masterLock = masterLock ? 1 : 0;
    state.templates.fill(true);
    return state;
}

TEST(Commands, ExerciserAndTestsFollowTheBoard) {
    struct Row {
        const char* model;
        bool master, configuration, target, compliance, anomaly, backplane;
    };
    const Row rows[] = {
        {"PCIKite-1", true, true, true, true, true, true},
        {"PCIWren-1", true, true, false, false, true, true},
        {"VMEKite-1", true, true, true, false, true, true},
        {"VMEWren-1", true, true, false, false, true, true},
        {"VMELark-1", true, true, false, false, false, false},
        {"VMEKiteP2-1", false, true, false, false, false, true},
        {"VMEKiteP0-1", false, true, false, false, false, true},
        {"VSBKite-1", true, true, true, false, false, true},
    };
    for (const Row& row : rows) {
        const CommandState state = On(row.model);
        EXPECT_EQ(Enabled(CommandId::NewMaster, state), row.master) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewConfiguration, state), row.configuration) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewStimulus, state), row.configuration) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewTarget, state), row.target) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewCompliance, state), row.compliance) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewAnomaly, state), row.anomaly) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewBackplane, state), row.backplane) << row.model;
        EXPECT_TRUE(Enabled(CommandId::NewUtilization, state)) << row.model;
    }
}

TEST(Commands, MasterLockForbidsDrivingTheBus) {
    const CommandState state = On("PCIKite-1", true);
    EXPECT_FALSE(Enabled(CommandId::NewMaster, state));
    EXPECT_FALSE(Enabled(CommandId::NewConfiguration, state));
    EXPECT_FALSE(Enabled(CommandId::NewStimulus, state));
    EXPECT_FALSE(Enabled(CommandId::NewBackplane, state));
    EXPECT_TRUE(Enabled(CommandId::NewTarget, state));
    EXPECT_TRUE(Enabled(CommandId::NewCompliance, state));
    EXPECT_TRUE(Enabled(CommandId::NewAnomaly, state));
}

TEST(Commands, WithoutTheirDocumentNothingOpens) {
    CommandState state = On("PCIKite-1");
    state.templates.fill(false);
    for (const Command& command : Commands()) {
        if (std::string(command.menu).starts_with("&File>&New")) {
            EXPECT_FALSE(command.enabled(state)) << command.text;
        }
    }
}

TEST(Commands, OneRealTimeViewOfEachKind) {
    CommandState state = On("PCIKite-1");
    state.realTimeState = true;
    EXPECT_FALSE(Enabled(CommandId::NewStateTrace, state));
    EXPECT_TRUE(Enabled(CommandId::NewWaveformTrace, state));
    state = On("PCIKite-1");
    state.realTimeWaveform = true;
    EXPECT_TRUE(Enabled(CommandId::NewStateTrace, state));
    EXPECT_FALSE(Enabled(CommandId::NewWaveformTrace, state));
}

TEST(Commands, GoToNeedsATraceAndItsTarget) {
    const CommandId targets[] = {CommandId::GoToTrigger, CommandId::GoToMarker1,
                                 CommandId::GoToMarker2, CommandId::GoToStart, CommandId::GoToEnd};
    for (std::size_t i = 0; i < 5; ++i) {
        CommandState state = On("PCIKite-1");
        state.canGoTo[i] = true;
        EXPECT_FALSE(Enabled(targets[i], state)) << i;
        state.traceActive = true;
        for (std::size_t j = 0; j < 5; ++j) {
            EXPECT_EQ(Enabled(targets[j], state), i == j) << i << j;
        }
    }
}

TEST(Commands, SearchesNeedATraceThatIsNotRunning) {
    CommandState state = On("PCIKite-1");
    for (const auto id : {CommandId::FindPattern, CommandId::FindNext, CommandId::FindPrevious,
                          CommandId::GoToSample, CommandId::Filter}) {
        EXPECT_FALSE(Enabled(id, state));
    }
    state.traceActive = true;
    EXPECT_TRUE(Enabled(CommandId::FindPattern, state));
    EXPECT_FALSE(Enabled(CommandId::FindNext, state));
    state.canSearch = true;
    for (const auto id : {CommandId::FindNext, CommandId::FindPrevious, CommandId::GoToSample}) {
        EXPECT_TRUE(Enabled(id, state));
    }
    EXPECT_FALSE(Enabled(CommandId::Filter, state));
    state.canFilter = true;
    EXPECT_TRUE(Enabled(CommandId::Filter, state));
}

TEST(Commands, ZoomGoesAsFarAsTheWaveformsDo) {
    CommandState state = On("PCIKite-1");
    state.traceActive = true;
    EXPECT_FALSE(Enabled(CommandId::ZoomIn, state) || Enabled(CommandId::ZoomOut, state));
    state.canZoomIn = true;
    EXPECT_TRUE(Enabled(CommandId::ZoomIn, state));
    EXPECT_FALSE(Enabled(CommandId::ZoomOut, state));
    state = On("PCIKite-1");
    state.canZoomOut = true;
    EXPECT_FALSE(Enabled(CommandId::ZoomIn, state));
    EXPECT_TRUE(Enabled(CommandId::ZoomOut, state));
}

TEST(Commands, UtilitiesThatExistAreAlwaysThere) {
    const CommandState state;
    EXPECT_TRUE(Enabled(CommandId::BusConfiguration, state));
    EXPECT_TRUE(Enabled(CommandId::BoardInfo, state));
    EXPECT_TRUE(Enabled(CommandId::FileOpen, state));
    EXPECT_TRUE(Enabled(CommandId::HelpContents, state));
    EXPECT_TRUE(Enabled(CommandId::About, state));
}

TEST(Commands, AnyDocumentCanBeSavedUnderAnotherName) {
    CommandState state = On("PCIKite-1");
    EXPECT_FALSE(Enabled(CommandId::FileSave, state) || Enabled(CommandId::FileSaveAs, state));
    state.hasDocument = true; // such as a capture from a file
    EXPECT_FALSE(Enabled(CommandId::FileSave, state));
    EXPECT_TRUE(Enabled(CommandId::FileSaveAs, state));
    state.canSave = true;
    EXPECT_TRUE(Enabled(CommandId::FileSave, state));
}

TEST(Commands, WithoutAHandlerStayDisabled) {
    CommandState state = On("PCIKite-1");
    state.traceActive = state.hasDocument = state.canSave = state.hasWindows = true;
    EXPECT_FALSE(Enabled(CommandId::ZoomToFit, state));
    EXPECT_FALSE(Enabled(CommandId::Compare, state));
    EXPECT_FALSE(Enabled(CommandId::ZoomIncrement, state));
}

TEST(Commands, EachStandsInTheMenusOnce) {
    std::set<CommandId> seen;
    for (const Command& command : Commands()) {
        if (command.id != CommandId::None) {
            EXPECT_TRUE(seen.insert(command.id).second) << command.text;
        }
    }
}

TEST(Commands, ShortcutsAreUnique) {
    std::set<QKeySequence> seen;
    for (const Command& command : Commands()) {
        if (*command.shortcut != '\0') {
            for (const QKeySequence& keys : QKeySequence::listFromString(command.shortcut)) {
                EXPECT_FALSE(keys.isEmpty()) << command.shortcut;
                EXPECT_TRUE(seen.insert(keys).second) << command.shortcut;
            }
        }
    }
}

TEST(Toolbar, HasItsButtonsInOrder) {
    using enum CommandId;
    const CommandId expected[] = {
        FileNew,      FileOpen,     FileSave,    None,           Cut,           Copy,
        Paste,        None,         Print,       None,           NewStateTrace, NewWaveformTrace,
        NewMaster,    NewStimulus,  NewTarget,   NewUtilization, NewCompliance, NewAnomaly,
        NewBackplane, None,         GoToTrigger, GoToMarker1,    GoToMarker2,   GoToStart,
        GoToEnd,      None,         ZoomIn,      ZoomOut,        None,          FindPattern,
        FindNext,     FindPrevious, None,        Filter,         Compare,       None,
        HelpContents};
    const auto buttons = ToolbarButtons();
    EXPECT_TRUE(
        std::equal(buttons.begin(), buttons.end(), std::begin(expected), std::end(expected)));
    for (const CommandId id : buttons) {
        if (id != None) {
            EXPECT_STRNE(CommandOf(id).icon, "") << CommandOf(id).text;
        }
    }
}

} // namespace
} // namespace busquill
