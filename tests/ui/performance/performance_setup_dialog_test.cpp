#include "platform/working_directory.h"
#include "support/modal_qt.h"
#include "support/recording_prompts.h"
#include "support/signal_definitions.h"
#include "support/temp_dir.h"
#include "ui/controls/color_button.h"
#include "ui/patterns/value_dialog.h"
#include "ui/performance/pen_style_button.h"
#include "ui/performance/performance_setup_dialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QMenu>
#include <QRadioButton>
#include <gmock/gmock.h>

#include <optional>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PerformanceSetupDialog : public testing::Test {
protected:
    CPerformanceSetupDialog& Open() {
        dialog.emplace(nullptr, setup,
                       CPerformanceSetupDialog::Parts{board, folder, prompts, [this] { ++helps; }});
        dialog->show();
        QApplication::processEvents();
        return *dialog;
    }
    template <class Widget>
    Widget& Field(const char* name) {
        auto* widget = dialog->findChild<Widget*>(name);
        if (widget == nullptr) {
            throw std::runtime_error(std::string("no field ") + name);
        }
        return *widget;
    }
    QString Text(const char* field) { return Field<QLineEdit>(field).text(); }
    /// Chooses an entry of a list with the keyboard, as far as its first letters go.
    void Choose(const char* list, const QString& text) {
        auto& box = Field<QComboBox>(list);
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Home);
        for (int i = 0; i < box.count() && box.currentText() != text; ++i) {
            QTest::keyClick(&box, Qt::Key_Down);
        }
        ASSERT_EQ(box.currentText(), text);
    }
    void Type(const QString& name) {
        QLineEdit& field = Field<QLineEdit>("Name");
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, name);
    }
    std::string File(const std::string& name) { return ReadWholeFile(directory.File(name)); }
    std::vector<std::string> Entries(const char* list) {
        std::vector<std::string> texts;
        for (int i = 0; i < Field<QComboBox>(list).count(); ++i) {
            texts.push_back(Field<QComboBox>(list).itemText(i).toStdString());
        }
        return texts;
    }

    TempDir directory;
    WorkingDirectory folder{directory.Path()};
    RecordingPrompts prompts;
    PerformanceSetup setup;
    BoardTraits board = Board::Pci32();
    int helps = 0;
    std::optional<CPerformanceSetupDialog> dialog;
};

TEST_F(PerformanceSetupDialog, ShowsTheSetup) {
    setup.setupName = "Buses";
    setup.chartType = PerformancePieChart;
    setup.grid = true;
    setup.updateInterval = 600000;
    setup.items[2].item = 3;
    setup.items[2].cycle = 10;
    setup.items[2].lowAddress = {0xF0, 0xDE, 0xBC, 0x9A, 0x78, 0x56, 0x34, 0x12};
    Open();
    EXPECT_EQ(dialog->windowTitle(), "Performance Setup");
    EXPECT_EQ(Text("Name"), "Buses");
    EXPECT_EQ(Field<QComboBox>("Update Interval").currentText(), "10 min");
    EXPECT_TRUE(dynamic_cast<QRadioButton&>(ButtonOf(*dialog, "Pie Chart")).isChecked());
    EXPECT_TRUE(ButtonOf(*dialog, "Grid").isChecked());
    EXPECT_EQ(Field<QComboBox>("Item C").currentText(), "Transfers");
    EXPECT_EQ(Field<QComboBox>("Cycle C").currentText(), "Mem Rd Mult");
    EXPECT_EQ(Text("Low Address C"), "123456789abcdef0");
    EXPECT_EQ(Text("High Address C"), "ffffffffffffffff");
    EXPECT_EQ(Text("Low Address D"), "") << "None";
    EXPECT_EQ(Field<ColorButton>("Color B").Color(), 0x0000FFU);
    EXPECT_EQ(Field<CPenStyleButton>("Line Style E").Style(), 4);
}

TEST_F(PerformanceSetupDialog, OffersTheItemsOfTheTypeAndTheCyclesOfTheFamily) {
    setup.SetType(PerformanceLatency);
    Open();
    EXPECT_THAT(Entries("Item A"),
                ElementsAre("None", "Master", "Target (Init)", "Target", "Arbitration"));
    EXPECT_EQ(Field<QComboBox>("Cycle A").count(), 24);
    EXPECT_EQ(Field<QComboBox>("Update Interval").count(), 18);

    board = Board::Vme();
    setup.items[0].cycle = 14;
    Open();
    EXPECT_EQ(Field<QComboBox>("Cycle A").count(), 13);
    EXPECT_EQ(Field<QComboBox>("Cycle A").currentText(), "Int Ack");
    Choose("Cycle A", "E1");
    Press(*dialog, "OK");
    EXPECT_EQ(setup.items[0].cycle, 16);
}

TEST_F(PerformanceSetupDialog, OkWritesEverythingBack) {
    Open();
    Type("Mine");
    Choose("Item H", "Bus Idle");
    Choose("Cycle H", "I/O Wr");
    Choose("Update Interval", "5 sec");
    Tick(*dialog, "Pie Chart");
    Tick(*dialog, "Grid");
    EXPECT_EQ(setup, PerformanceSetup()) << "not before OK";
    Press(*dialog, "OK");
    EXPECT_EQ(setup.setupName, "Mine");
    EXPECT_EQ(setup.items[7].item, 2);
    EXPECT_EQ(setup.items[7].cycle, 6);
    EXPECT_EQ(setup.updateInterval, 5000);
    EXPECT_EQ(setup.chartType, PerformancePieChart);
    EXPECT_TRUE(setup.grid);
    EXPECT_EQ(setup.items[0], DefaultPerformanceItem(0));
}

TEST_F(PerformanceSetupDialog, CancelWritesNothingBack) {
    Open();
    Type("Mine");
    Choose("Item A", "Bus Busy");
    Press(*dialog, "Cancel");
    EXPECT_EQ(setup, PerformanceSetup());
}

TEST_F(PerformanceSetupDialog, AnUnnamedSetupStaysUnnamed) {
    Open();
    EXPECT_EQ(Text("Name"), "");
    Press(*dialog, "OK");
    EXPECT_EQ(setup.setupName, "<New>");
}

TEST_F(PerformanceSetupDialog, WhatIsNotOfferedStays) {
    setup.updateInterval = 123;
    setup.items[0].item = 99;
    setup.items[0].cycle = 30;
    Open();
    EXPECT_EQ(Field<QComboBox>("Update Interval").currentIndex(), -1);
    EXPECT_EQ(Field<QComboBox>("Item A").currentIndex(), -1);
    const PerformanceSetup before = setup;
    Press(*dialog, "OK");
    EXPECT_EQ(setup, before);
}

TEST_F(PerformanceSetupDialog, AnAddressIsEditedInTheValueDialog) {
    setup.items[0].item = 1;
    Open();
    AnswerDialog<CValueDlg>(
        [&] { QTest::mouseClick(&Field<QLineEdit>("Low Address A"), Qt::LeftButton); },
        [](CValueDlg& value) {
            auto* bits = value.findChild<CBitEditWnd*>();
            QTest::keyClicks(bits, "00000000FEBF0000");
            Press(value, "OK");
        });
    EXPECT_EQ(Text("Low Address A"), "00000000febf0000");
    Press(*dialog, "OK");
    EXPECT_EQ(setup.items[0].lowAddress,
              (std::array<std::uint8_t, 8>{0x00, 0x00, 0xBF, 0xFE, 0, 0, 0, 0}));
}

TEST_F(PerformanceSetupDialog, AnAddressIsReachedByKeys) {
    setup.items[0].item = 1;
    Open();
    auto& address = Field<QLineEdit>("High Address A");
    address.setFocus();
    AnswerDialog<CValueDlg>([&] { QTest::keyClick(&address, Qt::Key_Space); },
                            [](CValueDlg& value) {
                                QTest::keyClicks(value.findChild<CBitEditWnd*>(), "0");
                                Press(value, "Cancel");
                            });
    EXPECT_EQ(address.text(), "ffffffffffffffff") << "cancelled";
}

TEST_F(PerformanceSetupDialog, WithoutAnItemThereIsNoAddress) {
    setup.items[0].item = 1;
    Open();
    EXPECT_EQ(Text("High Address A"), "ffffffffffffffff");
    Choose("Item A", "None");
    EXPECT_EQ(Text("High Address A"), "");
    QTest::mouseClick(&Field<QLineEdit>("High Address A"), Qt::LeftButton);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    Choose("Item A", "Bus Idle");
    EXPECT_EQ(Text("High Address A"), "ffffffffffffffff") << "it is kept";
}

TEST_F(PerformanceSetupDialog, ColorsAreChosenInTheColorDialog) {
    Open();
    AnswerDialog<QColorDialog>(
        [&] { QTest::mouseClick(&Field<ColorButton>("Color A"), Qt::LeftButton); },
        [](QColorDialog& colors) {
            colors.setCurrentColor(QColor(0x12, 0x34, 0x56));
            colors.accept();
        });
    Press(*dialog, "OK");
    EXPECT_EQ(setup.items[0].color, 0x563412U);
}

TEST_F(PerformanceSetupDialog, StylesAreChosenFromAMenuOfLines) {
    Open();
    std::vector<QSize> sizes;
    int inkPixels = 0;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions()) {
            sizes.push_back(menu->actionGeometry(action).size());
        }
        const QImage picture = menu->grab().toImage();
        const int y = menu->actionGeometry(menu->actions()[3]).center().y();
        for (int x = 0; x < picture.width(); ++x) {
            inkPixels += picture.pixelColor(x, y) == menu->palette().color(QPalette::Text) ? 1 : 0;
        }
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(menu->actions()[3]).center());
    });
    QTest::mouseClick(&Field<CPenStyleButton>("Line Style A"), Qt::LeftButton);
    EXPECT_THAT(sizes, testing::SizeIs(5));
    EXPECT_THAT(sizes, testing::Each(QSize(40, 15)));
    EXPECT_GT(inkPixels, 10) << "a line";
    EXPECT_LT(inkPixels, 32) << "with gaps";
    EXPECT_EQ(Field<CPenStyleButton>("Line Style A").Style(), 3);
    Press(*dialog, "OK");
    EXPECT_EQ(setup.items[0].style, 3);
}

TEST_F(PerformanceSetupDialog, TheMenuOfLinesIsReachedByKeys) {
    Open();
    auto& button = Field<CPenStyleButton>("Line Style A");
    QTimer::singleShot(0, [] {
        auto* menu = QApplication::activePopupWidget();
        ASSERT_NE(menu, nullptr);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(button.Style(), 1) << "the one after the current";
}

TEST_F(PerformanceSetupDialog, AMarkShowsWhichLineHasTheKeyboard) {
    Open().activateWindow();
    auto& button = Field<CPenStyleButton>("Line Style B");
    const QImage plain = button.grab().toImage();
    Field<ColorButton>("Color B").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &button);
    EXPECT_NE(button.grab().toImage(), plain);
    QTest::keyClick(&button, Qt::Key_Tab);
    EXPECT_EQ(button.grab().toImage(), plain);
}

TEST_F(PerformanceSetupDialog, ClearShowsTheDefaults) {
    setup.type = PerformanceStatistics;
    setup.setupName = "Mine";
    setup.grid = true;
    setup.chartType = PerformancePieChart;
    setup.updateInterval = 1;
    setup.items[1].item = 2;
    setup.items[1].color = 0x123456;
    Open();
    Press(*dialog, "Clear");
    EXPECT_EQ(Text("Name"), "");
    EXPECT_EQ(Field<QComboBox>("Update Interval").currentText(), "100 ms");
    EXPECT_EQ(Field<QComboBox>("Item B").currentText(), "None");
    Press(*dialog, "OK");
    PerformanceSetup expected;
    expected.type = PerformanceStatistics;
    expected.Clear();
    EXPECT_EQ(setup, expected);
}

TEST_F(PerformanceSetupDialog, SaveNeedsAName) {
    Open();
    Press(*dialog, "Save");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Please enter a name for this setup before saving."));
    EXPECT_TRUE(Field<QLineEdit>("Name").hasFocus());
}

TEST_F(PerformanceSetupDialog, SaveWritesWhatIsShown) {
    Open();
    Type("Mine");
    Choose("Item A", "Wait States");
    Press(*dialog, "Save");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Saved performance setup."));
    EXPECT_THAT(File("Mine.psu"), HasSubstr("Item0=6\nCycle0=0\n"));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(setup, PerformanceSetup()) << "not before OK";
}

TEST_F(PerformanceSetupDialog, ATypedNameDoesNotReplaceAFileUnasked) {
    directory.Write("Mine.psu", "old");
    Open();
    Type("Mine");
    prompts.AnswerNext(Answer::No);
    Press(*dialog, "Save");
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("A setup already exists with the name Mine. Overwrite?"));
    EXPECT_EQ(File("Mine.psu"), "old");
    Press(*dialog, "Save");
    EXPECT_NE(File("Mine.psu"), "old");
    const std::size_t asked = prompts.Texts().size();
    Press(*dialog, "Save");
    EXPECT_EQ(prompts.Texts().size(), asked + 1) << "its own file is replaced unasked";
}

TEST_F(PerformanceSetupDialog, LoadShowsAFile) {
    directory.Write("Other.psu", "Version=1.00\nGrid=Yes\nItem3=2\nColor3=0x000000FF\n");
    Open();
    AnswerDialog<QFileDialog>([&] { Press(*dialog, "Load"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.windowTitle(), "Open Performance Setup");
                                  GiveFileName(files, "Other.psu");
                              });
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(Text("Name"), "Other");
    EXPECT_EQ(Field<QComboBox>("Item D").currentText(), "Bus Idle");
    EXPECT_EQ(Field<ColorButton>("Color D").Color(), 0x0000FFU);
    EXPECT_TRUE(ButtonOf(*dialog, "Grid").isChecked());
    Press(*dialog, "OK");
    EXPECT_EQ(setup.setupName, "Other");
    EXPECT_EQ(setup.items[3].color, 0x0000FFU);
}

TEST_F(PerformanceSetupDialog, AMissingFileLeavesTheNameAndShowsTheDefaults) {
    setup.setupName = "Mine";
    setup.grid = true;
    Open();
    EXPECT_FALSE(dialog->Load("Gone"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error loading performance setup Gone."));
    EXPECT_EQ(Text("Name"), "Mine");
    EXPECT_FALSE(ButtonOf(*dialog, "Grid").isChecked());
}

TEST_F(PerformanceSetupDialog, HelpIsShownAndAWizardIsNot) {
    Open();
    Press(*dialog, "Help");
    EXPECT_EQ(helps, 1);
    QAbstractButton& wizard = ButtonOf(*dialog, "Setup Wizard");
    EXPECT_FALSE(wizard.isEnabled());
    EXPECT_EQ(wizard.toolTip(), "There is no wizard for performance");
}

} // namespace
} // namespace busquill::test
