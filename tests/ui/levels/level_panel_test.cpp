#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "ui/levels/level_panel.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

/// A panel of three levels in a window. Their cells show numbers of the level; a click on one adds
/// 1, unless the user cancels.
class LevelPanel : public testing::Test {
protected:
    LevelPanel() {
        const auto cell = [this](std::int32_t& number) {
            return LevelCell{[this, &number] { return prefix + std::to_string(number); },
                             [this, &number](QWidget*) {
                                 number += cancels ? 0 : 1;
                                 return !cancels;
                             }};
        };
        LevelForm form{.levels = 3,
                       .label = "Step ",
                       .output = "Drive",
                       .occurrences = 99,
                       .cells = [cell](TraceLevel& level) {
                           return LevelCells{cell(level.thenWait), cell(level.stimulus),
                                             cell(level.thenGoto), cell(level.elseGoto)};
                       }};
        panel = new CLevelPanel(setup, form, prompts);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(panel);
        window.show();
        QApplication::processEvents();
    }
    QString Text(const char* cell) { return ButtonOf(*panel, cell).text(); }
    void Click(const char* cell) { Press(*panel, cell); }

    BoardTables board{"PCIKite"};
    RecordingPrompts prompts;
    TraceSetup setup{board.tables};
    std::string prefix;
    bool cancels = false;
    QWidget window;
    CLevelPanel* panel;
};

TEST_F(LevelPanel, HasTheLevelsAndTitlesOfItsForm) {
    QStringList labels;
    for (const auto* label : panel->findChildren<QLabel*>()) {
        labels << label->text();
    }
    EXPECT_EQ(labels.mid(0, 6), (QStringList{"Step 1:", "IF", "OCCURS", "THEN", "DRIVE", "ELSE"}));
    EXPECT_EQ(labels.count("DRIVE"), 3);
    EXPECT_EQ(panel->findChildren<QPushButton*>().size(), 15);
}

TEST_F(LevelPanel, AClickEditsALevelUnlessItIsCancelled) {
    QSignalSpy modified(panel, &CLevelPanel::Modified);
    Click("Else3");
    EXPECT_EQ(Text("Else3"), "1");
    EXPECT_EQ(setup.levels[2].elseGoto, 1);
    EXPECT_EQ(modified.size(), 1);
    cancels = true;
    Click("Else3");
    EXPECT_EQ(Text("Else3"), "1");
    EXPECT_EQ(modified.size(), 1);
}

TEST_F(LevelPanel, RefreshShowsTheLevelsAsTheyAre) {
    setup.levels[1].stimulus = 12;
    setup.levels[0].occurs = 70000; // from a file
    EXPECT_EQ(Text("Drive2"), "0");
    panel->Refresh();
    EXPECT_EQ(Text("Drive2"), "12");
    EXPECT_EQ(Text("Occurs1"), "70000");
}

TEST_F(LevelPanel, IsAsWideAsAllItsColumns) {
    window.resize(window.minimumSizeHint());
    QApplication::processEvents();
    const int narrow = window.minimumSizeHint().width();
    EXPECT_EQ(panel->horizontalScrollBar()->maximum(), 0);
    prefix = "a condition of some length ";
    Click("Then1");
    QApplication::processEvents();
    EXPECT_GT(window.minimumSizeHint().width(), narrow);
    window.resize(window.minimumSizeHint());
    QApplication::processEvents();
    EXPECT_EQ(panel->horizontalScrollBar()->maximum(), 0);
    const QAbstractButton& then = ButtonOf(*panel, "Then1");
    EXPECT_LE(then.mapTo(panel->viewport(), QPoint(then.width(), 0)).x(),
              panel->viewport()->width());
    EXPECT_GE(then.width(), then.minimumSizeHint().width());
}

TEST_F(LevelPanel, AWideWindowDoesNotStretchItsCells) {
    const auto widthAt = [this](const char* cell, int windowWidth) {
        window.resize(windowWidth, 300);
        QApplication::processEvents();
        return ButtonOf(*panel, cell).width();
    };
    for (const char* cell : {"If1", "Drive1", "Then1", "Else1"}) {
        EXPECT_EQ(widthAt(cell, 3000), widthAt(cell, 1500));
        EXPECT_LT(widthAt(cell, 1500), 500);
    }
    prefix =
        "a condition of such a length that it needs more than the width of a usual cell, as an "
        "expression of sixteen tokens may ";
    panel->Refresh();
    for (const char* cell : {"If1", "Then1"}) {
        EXPECT_GE(widthAt(cell, 3000), ButtonOf(*panel, cell).sizeHint().width());
    }
}

} // namespace
} // namespace busquill::test
