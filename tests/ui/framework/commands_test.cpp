#include "ui/framework/command_map.h"
#include "ui/framework/commands.h"

#include <QKeySequence>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>

namespace busquill {
namespace {

bool Enabled(CommandId id, const BoardTraits& board) {
    return CommandOf(id).onBoard(board);
}

BoardTraits On(const std::string& model, bool masterLock = false) {
    BoardTraits board;
    board.modelString = model;
    board.bus.masterLock = masterLock ? 1 : 0;
    return board;
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
        const BoardTraits board = On(row.model);
        EXPECT_EQ(Enabled(CommandId::NewMaster, board), row.master) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewConfiguration, board), row.configuration) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewStimulus, board), row.configuration) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewTarget, board), row.target) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewCompliance, board), row.compliance) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewAnomaly, board), row.anomaly) << row.model;
        EXPECT_EQ(Enabled(CommandId::NewBackplane, board), row.backplane) << row.model;
        EXPECT_TRUE(Enabled(CommandId::NewUtilization, board)) << row.model;
    }
}

TEST(Commands, MasterLockForbidsDrivingTheBus) {
    const BoardTraits board = On("PCIKite-1", true);
    EXPECT_FALSE(Enabled(CommandId::NewMaster, board));
    EXPECT_FALSE(Enabled(CommandId::NewConfiguration, board));
    EXPECT_FALSE(Enabled(CommandId::NewStimulus, board));
    EXPECT_FALSE(Enabled(CommandId::NewBackplane, board));
    EXPECT_TRUE(Enabled(CommandId::NewTarget, board));
    EXPECT_TRUE(Enabled(CommandId::NewCompliance, board));
    EXPECT_TRUE(Enabled(CommandId::NewAnomaly, board));
}

TEST(Commands, EachIsInTheMenusOnce) {
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

TEST(CommandMap, HandlesItsOwnCommandsOnly) {
    CommandMap map;
    EXPECT_EQ(map.CanDo(CommandId::Filter), std::nullopt);
    bool ready = false;
    int done = 0;
    map.On(
        CommandId::Filter, [&] { ++done; }, [&] { return ready; });
    EXPECT_EQ(map.CanDo(CommandId::Filter), std::optional(false));
    map.Do(CommandId::Filter);
    EXPECT_EQ(done, 0) << "it was disabled";
    ready = true;
    EXPECT_EQ(map.CanDo(CommandId::Filter), std::optional(true));
    map.Do(CommandId::Filter);
    map.Do(CommandId::Compare);
    EXPECT_EQ(done, 1);
}

TEST(CommandMap, DisablesCommandsThatAnotherMapHandles) {
    CommandMap map;
    bool isFile = true;
    map.Forbid(CommandId::FileSave, [&] { return isFile; });
    EXPECT_EQ(map.CanDo(CommandId::FileSave), std::optional(false));
    isFile = false;
    EXPECT_EQ(map.CanDo(CommandId::FileSave), std::nullopt);
}

TEST(CommandMap, ASwitchTellsWhetherItIsOn) {
    CommandMap map;
    bool isOn = false;
    map.Switch(
        CommandId::Transactions, [&] { isOn = !isOn; }, [&] { return isOn; }, [] { return true; });
    map.On(CommandId::Filter, [] {});
    EXPECT_EQ(map.IsOn(CommandId::Transactions), std::optional(false));
    map.Do(CommandId::Transactions);
    EXPECT_EQ(map.IsOn(CommandId::Transactions), std::optional(true));
    EXPECT_EQ(map.IsOn(CommandId::Filter), std::nullopt) << "it is no switch";
    EXPECT_EQ(map.IsOn(CommandId::Compare), std::nullopt);
}

TEST(CommandMap, IncludesTheCommandsOfAnother) {
    CommandMap own;
    CommandMap added;
    added.On(CommandId::NewMaster, [] {});
    own.On(CommandId::FileOpen, [] {});
    own.Add(added);
    EXPECT_EQ(own.CanDo(CommandId::FileOpen), std::optional(true));
    EXPECT_EQ(own.CanDo(CommandId::NewMaster), std::optional(true));
}

TEST(CommandMap, MayBeDestroyedWhileItsCommandRuns) {
    auto map = std::make_unique<CommandMap>();
    bool done = false;
    map->On(CommandId::FileClose, [&map, &done] {
        bool& after = done; // a capture of the command outlives the map
        map.reset();
        after = true;
    });
    map->Do(CommandId::FileClose);
    EXPECT_TRUE(done);
}

} // namespace
} // namespace busquill
