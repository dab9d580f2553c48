#include "exerciser/master_document.h"
#include "support/exerciser_fixture_qt.h"
#include "ui/exerciser/master_options_dialog.h"

#include <QDir>
#include <QListWidget>
#include <gmock/gmock.h>

#include <fstream>
#include <thread>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t setupRegister = 802;
constexpr std::uint32_t controlRegister = 800;
constexpr std::uint32_t statusRegister = 801;
constexpr std::uint32_t addressRegister = 804;
constexpr std::uint32_t dataRegister = 816;
constexpr std::uint32_t attributesRegister = 924;
constexpr int exerciserStop = 24; // a function of the board

constexpr int pci = 0;
constexpr int pciX = 1;
constexpr int vme = 2;
constexpr int vsb = 9;

class MasterWindow : public ExerciserWindow {
protected:
    MasterWindow() : ExerciserWindow("File/New/Exerciser/Master", {"Master File", "form.mst"}) {
        board.contents[statusRegister] = {1};
    }
    CMasterDoc& Document() { return static_cast<CMasterDoc&>(frame->GetDocument()); }
    std::vector<std::string> Status() {
        const auto& list = Find<QListWidget>("Status");
        std::vector<std::string> lines;
        for (int i = 0; i < list.count(); ++i) {
            lines.push_back(list.item(i)->text().toStdString());
        }
        return lines;
    }
};

TEST_F(MasterWindow, HasTheFieldsOfPci) {
    StartOnBoard();
    EXPECT_EQ(frame->windowTitle(), "Master");
    EXPECT_EQ(frame->width(), 600);
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Memory", "I/O", "Config"}));
    EXPECT_EQ(Items("AddressSize"), (QStringList{"8 bit", "16 bit", "32 bit", "64 bit"}));
    EXPECT_EQ(List("AddressSize").currentText(), "32 bit");
    EXPECT_EQ(Items("DataSize"), (QStringList{"8 bit", "16 bit", "32 bit", "64 bit"}));
    EXPECT_EQ(List("DataSize").currentText(), "32 bit");
    EXPECT_EQ(Items("DataCycle"), (QStringList{"Single", "Burst"}));
    EXPECT_EQ(Items("DataType"), (QStringList{"Value", "File", "Target"}));
    EXPECT_EQ(Items("Command"), (QStringList{"Read", "Write", "Verify", "Test", "Compare"}));
    EXPECT_EQ(Field("Repeat").text(), "1");
    EXPECT_TRUE(Field("Repeat").alignment().testFlag(Qt::AlignRight));
    EXPECT_FALSE(Field("AttrTag").isVisible());
    EXPECT_FALSE(Field("AddressModifier").isVisible());
}

TEST_F(MasterWindow, HasTheAttributesOfPciX) {
    StartOnBus(pciX);
    EXPECT_EQ(frame->width(), 840);
    EXPECT_EQ(Items("Command").last(), "Split Completion");
    EXPECT_EQ(Field("AttrTag").text(), "00");
    EXPECT_EQ(Field("AttrFunctionNum").text(), "0");
}

TEST_F(MasterWindow, HasTheModifierOfVme) {
    StartOnBus(vme);
    EXPECT_EQ(Field("AddressModifier").text(), "0D");
    EXPECT_TRUE(Field("AddressModifier").isVisible());
    EXPECT_FALSE(List("AddressSpace").isVisible());
    EXPECT_EQ(frame->width(), 600);
}

TEST_F(MasterWindow, HasTheSpacesOfVsb) {
    StartOnBus(vsb);
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Sys", "I/O", "Alt"}));
}

TEST_F(MasterWindow, FollowsTheBusToPciXAndBack) {
    StartOnBus(pci);
    Type("AddressStart", "0000000000001000");
    List("AddressSpace").setCurrentText("Config");
    List("Command").setCurrentText("Verify");
    ChangeBus("PCI-X");
    EXPECT_TRUE(Field("AttrTag").isVisible());
    EXPECT_EQ(frame->width(), 840);
    EXPECT_EQ(Items("Command").last(), "Split Completion");
    EXPECT_EQ(List("Command").currentText(), "Verify");
    EXPECT_EQ(List("AddressSpace").currentText(), "Config");
    EXPECT_EQ(Field("AddressStart").text().remove(' '), "0000000000001000");
    Type("AttrTag", "1f");
    ChangeBus("PCI");
    EXPECT_FALSE(Field("AttrTag").isVisible());
    EXPECT_EQ(Items("Command").last(), "Compare");
    EXPECT_EQ(List("Command").currentText(), "Verify");
    ChangeBus("PCI-X");
    EXPECT_EQ(Field("AttrTag").text(), "1F") << "it has waited for its bus";
}

TEST_F(MasterWindow, FollowsTheBusToVmeAndBack) {
    StartOnBus(pci);
    List("AddressSpace").setCurrentText("I/O");
    Type("AddressEnd", "0000000000000033");
    ChangeBus("VME");
    EXPECT_FALSE(List("AddressSpace").isVisible());
    EXPECT_TRUE(Field("AddressModifier").isVisible());
    EXPECT_EQ(Document().Form().addressSpace, 0) << "a space that nobody sees";
    EXPECT_EQ(Field("AddressEnd").text().remove(' '), "0000000000000033");
    EXPECT_EQ(frame->width(), 600);
    Type("AddressModifier", "39");
    AnswerDialog<CMasterOptionsDialog>([&] { Press(View(), "Options"); },
                                       [](CMasterOptionsDialog& dialog) { Press(dialog, "OK"); });
    ChangeBus("2eSST"); // the same family
    EXPECT_EQ(Field("AddressModifier").text(), "39");
    ChangeBus("PCI");
    EXPECT_TRUE(List("AddressSpace").isVisible());
    EXPECT_EQ(List("AddressSpace").currentText(), "Memory");
    EXPECT_FALSE(Field("AddressModifier").isVisible());
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
}

TEST_F(MasterWindow, TheSpaceFollowsTheBusByItsName) {
    StartOnBus(pci);
    List("AddressSpace").setCurrentText("I/O");
    ChangeBus("VSB");
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Sys", "I/O", "Alt"}));
    EXPECT_EQ(List("AddressSpace").currentText(), "I/O");
    List("AddressSpace").setCurrentText("Alt");
    ChangeBus("PCI");
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Memory", "I/O", "Config"}));
    EXPECT_EQ(List("AddressSpace").currentText(), "Memory");
    EXPECT_EQ(Document().Form().addressSpace, 0);
}

TEST_F(MasterWindow, ACommandThatTheNewBusLacksIsNoMoreSelected) {
    StartOnBus(pciX);
    List("Command").setCurrentText("Split Completion");
    ChangeBus("PCI");
    EXPECT_EQ(List("Command").currentIndex(), -1);
    EXPECT_EQ(Document().Form().command, MasterNoCommand);
    List("Command").setCurrentText("Write");
    EXPECT_EQ(Document().Form().command, MasterWrite);
}

// The dialog reads the board, whose mode may have changed without it.
TEST_F(MasterWindow, FollowsABoardThatIsFoundOnAnotherBus) {
    StartOnBoard();
    Type("AddressEnd", "0000000000000007");
    EXPECT_FALSE(Field("AttrTag").isVisible());
    line->Do([&] { board.contents[18] = {1}; });
    ChooseDialog<CBusConfigDialog>("Utilities/Bus Configuration",
                                   [](CBusConfigDialog& bus) { Press(bus, "Cancel"); });
    EXPECT_TRUE(Field("AttrTag").isVisible());
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(WritesTo(attributesRegister), ElementsAre(Bytes{0, 0, 0, 0}));
}

TEST_F(MasterWindow, TheBusMayChangeDuringARun) {
    board.contents[statusRegister] = {0x81};
    StartOnBoard();
    Type("AddressEnd", "000000000000003f");
    List("Command").setCurrentText("Write");
    Go();
    line->Do([&] {
        board.contents[18] = {1};
        board.contents[statusRegister] = {1};
    });
    ChangeBus("PCI-X");
    EXPECT_TRUE(Field("AttrTag").isVisible());
    ASSERT_TRUE(Ends());
    EXPECT_THAT(Status(), ElementsAre("Pass", "Pass"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterWindow, ANarrowWindowStaysNarrowOnABusThatNeedsNoMore) {
    StartOnBus(pci);
    frame->resize(500, 400);
    ChangeBus("VME");
    EXPECT_EQ(frame->width(), 500);
    ChangeBus("PCI-X");
    EXPECT_EQ(frame->width(), 840);
    frame->resize(1000, 450);
    ChangeBus("PCI");
    ChangeBus("PCI-X");
    EXPECT_EQ(frame->size(), QSize(1000, 450));
}

TEST_F(MasterWindow, ShowsTheFieldOfTheDataType) {
    StartOnBoard();
    EXPECT_TRUE(Field("DataValue").isVisible());
    EXPECT_FALSE(Field("DataFilename").isVisible());
    List("DataType").setCurrentText("File");
    EXPECT_FALSE(Field("DataValue").isVisible());
    EXPECT_TRUE(Field("DataFilename").isVisible());
    List("DataType").setCurrentText("Target");
    EXPECT_FALSE(Field("DataValue").isVisible());
    EXPECT_FALSE(Field("DataFilename").isVisible());
}

TEST_F(MasterWindow, SendsWhatTheFormSaysAndListsTheOutcome) {
    StartOnBoard();
    List("AddressSpace").setCurrentText("I/O");
    Type("AddressStart", "0000000000001000");
    Type("AddressEnd", "0000000000001020"); // 33 bytes
    Type("DataValue", "0123456789abcdef");
    List("DataCycle").setCurrentText("Burst");
    List("Command").setCurrentText("Write");
    Go();
    ASSERT_TRUE(Ends());
    const auto setups = WritesTo(setupRegister);
    ASSERT_EQ(setups.size(), 1U);
    ASSERT_EQ(setups[0].size(), 48U);
    EXPECT_EQ((Bytes{setups[0].begin(), setups[0].begin() + 24}),
              (Bytes{1, 2, 0,    0x10, 0,    0,    0,    0,    0,    0,    32, 2,
                     1, 0, 0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 0,  0}));
    EXPECT_THAT(WritesTo(controlRegister), ElementsAre(Bytes{2}, Bytes{0x82}));
    EXPECT_THAT(WritesTo(addressRegister), ElementsAre(Bytes{0x20, 0x10, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_THAT(Status(), ElementsAre("Pass", "Pass"));
    EXPECT_EQ(Find<QListWidget>("Status").currentRow(), 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterWindow, ShowsTheStatusLinesOfAStep) {
    board.contents[statusRegister] = {0x62};
    StartOnBoard();
    List("Command").setCurrentText("Test");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(Status(), ElementsAre("No Device Select", "No Target Ack", "Fail"));
    Go(); // the list begins anew
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Status().size(), 3U);
}

// By the timer alone, the steps would take a minute, for which nobody waits here.
TEST_F(MasterWindow, QuickStepsAreNotHeldUpByTheTimer) {
    StartOnBoard();
    Type("AddressEnd", "00000000000027ff");
    List("Command").setCurrentText("Write");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Status().size(), 320U);
}

TEST_F(MasterWindow, ShowsWhatItReads) {
    Bytes data;
    for (int i = 0; i < 32; ++i) {
        data.push_back(static_cast<std::uint8_t>(0x40 + i));
    }
    board.contents[dataRegister] = data;
    StartOnBoard();
    Type("AddressStart", "0000000000002000");
    Type("AddressEnd", "0000000000002003");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(Dump().RowText(0).startsWith(" 00002000  40 41 42 43    "))
        << Dump().RowText(0).toStdString();
    EXPECT_TRUE(Dump().RowText(0).endsWith(" @ABC"));
    EXPECT_FALSE(Dump().RowText(1).contains('.'));
}

TEST_F(MasterWindow, TheDumpHasAThousandRowsAndScrolls) {
    StartOnBoard();
    QScrollBar& bar = *Dump().verticalScrollBar();
    EXPECT_EQ(bar.maximum() + bar.pageStep(), 1000);
    Dump().setFocus();
    QTest::keyClick(&Dump(), Qt::Key_PageDown);
    EXPECT_EQ(bar.value(), bar.pageStep());
}

// A character that is cut would be a byte that nobody sees.
TEST_F(MasterWindow, TheRowsOfTheDumpFitItsWidth) {
    board.contents[dataRegister] = Bytes(32, 'M');
    StartOnBoard();
    Type("AddressEnd", "000000000000001f");
    Go();
    ASSERT_TRUE(Ends());
    QTest::mouseMove(&Dump());
    const QImage picture = Dump().viewport()->grab().toImage();
    for (int x = picture.width() - 2; x < picture.width(); ++x) {
        for (int y = 0; y < 16; ++y) {
            EXPECT_EQ(picture.pixelColor(x, y), QColor(Qt::white)) << x << " " << y;
        }
    }
}

TEST_F(MasterWindow, AnEndBelowTheStartIsRefused) {
    StartOnBoard();
    Type("AddressStart", "0000000000000010");
    Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("End Address must be >= Start Address."));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(MasterWindow, StopSendsTheCommandAndEndsTheRun) {
    board.contents[statusRegister] = {0x81}; // busy for ever
    StartOnBoard();
    Go();
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    QTest::qWait(300);
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    Stop();
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_EQ(Functions().back(), exerciserStop);
    const auto functions = Functions().size();
    QTest::qWait(300);
    EXPECT_EQ(Functions().size(), functions);
}

TEST_F(MasterWindow, CanBeClosedDuringARun) {
    board.contents[statusRegister] = {0x81};
    StartOnBoard();
    Go();
    const auto lastFunction = [this] { return Functions().back(); };
    Press(View(), "Close");
    QTest::qWait(300);
    EXPECT_TRUE(Windows().isEmpty());
    EXPECT_NE(lastFunction(), exerciserStop);
    EXPECT_TRUE(program->Link().IsIdle());
}

TEST_F(MasterWindow, AChangeDuringTheRunCountsFromTheNextStep) {
    board.contents[statusRegister] = {0x81};
    StartOnBoard();
    List("Command").setCurrentText("Write");
    Type("AddressEnd", "000000000000003f");
    Go();
    List("Command").setCurrentText("Verify");
    line->Do([&] { board.contents[statusRegister] = {1}; });
    ASSERT_TRUE(Ends());
    EXPECT_THAT(WritesTo(controlRegister), ElementsAre(Bytes{2}, Bytes{0x84}));
}

TEST_F(MasterWindow, OptionsAreForVmeOnly) {
    StartOnBoard();
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
}

TEST_F(MasterWindow, OptionsChooseTheLevelOfVme) {
    StartOnBus(vme);
    AnswerDialog<CMasterOptionsDialog>([&] { Press(View(), "Options"); },
                                       [](CMasterOptionsDialog& dialog) {
                                           EXPECT_EQ(dialog.windowTitle(), "Master Options");
                                           auto& level = *dialog.findChild<QComboBox*>();
                                           EXPECT_EQ(level.count(), 4);
                                           EXPECT_EQ(level.currentText(), "Level 0");
                                           level.setCurrentText("Level 3");
                                           Press(dialog, "OK");
                                       });
    EXPECT_EQ(Document().Form().busRequestLevel, 8);
    AnswerDialog<CMasterOptionsDialog>([&] { Press(View(), "Options"); },
                                       [](CMasterOptionsDialog& dialog) {
                                           auto& level = *dialog.findChild<QComboBox*>();
                                           EXPECT_EQ(level.currentText(), "Level 3");
                                           level.setCurrentText("Level 1");
                                           Press(dialog, "Cancel");
                                       });
    EXPECT_EQ(Document().Form().busRequestLevel, 8);
}

TEST_F(MasterWindow, TheDataFileIsChosenAndKept) {
    const std::string path = dir.Write("old.dat", "00 ff 7\n");
    settings.WriteProfileString("Setup", "LastMasterDataFile", path);
    StartOnBoard();
    List("DataType").setCurrentText("File");
    EXPECT_EQ(Field("DataFilename").text().toStdString(), path);
    EXPECT_TRUE(Field("DataFilename").isReadOnly());
    AnswerDialog<QFileDialog>([&] { Press(View(), "File"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.windowTitle(), "Master Data File");
                                  EXPECT_EQ(files.nameFilters(), QStringList{"Data Files (*.dat)"});
                                  GiveFileName(files, dir.File("new")); // need not exist
                              });
    EXPECT_EQ(Field("DataFilename").text().toStdString(), dir.File("new.dat"));
    EXPECT_EQ(settings.GetProfileString("Setup", "LastMasterDataFile", ""), dir.File("new.dat"));
    EXPECT_EQ(Document().Form().dataFilename, dir.File("new.dat"));
}

TEST_F(MasterWindow, AFileIsSentAndReplayed) {
    std::ofstream(dir.File("data.dat")) << "01 02 03 04\n";
    settings.WriteProfileString("Setup", "LastMasterDataFile", dir.File("data.dat"));
    StartOnBoard();
    List("DataType").setCurrentText("File");
    List("Command").setCurrentText("Write");
    Type("AddressEnd", "0000000000000003");
    Field("Repeat").selectAll();
    QTest::keyClicks(&Field("Repeat"), "3");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    const auto sent = WritesTo(dataRegister);
    ASSERT_EQ(sent.size(), 2U); // the first pass is in the setup
    for (const Bytes& data : sent) {
        EXPECT_EQ((Bytes{data.begin(), data.begin() + 6}), (Bytes{1, 2, 3, 4, 0, 0}));
    }
    EXPECT_EQ(Status().size(), 3U);
}

TEST_F(MasterWindow, IsSavedAndLoaded) {
    StartOnBoard();
    Type("AddressStart", "0000000000001000");
    List("Command").setCurrentText("Compare");
    List("DataType").setCurrentText("Target");
    const std::string path = dir.File("form.mst");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.nameFilters(), QStringList{"Master(*.mst)"});
                                  GiveFileName(files, path);
                              });
    Type("AddressStart", "0000000000002000");
    List("Command").setCurrentText("Read");
    List("DataType").setCurrentText("Value");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Field("AddressStart").text().remove(' '), "0000000000001000");
    EXPECT_EQ(List("Command").currentText(), "Compare");
    EXPECT_FALSE(Field("DataValue").isVisible()); // as the type says
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterWindow, ACommandThatTheBoardLacksSelectsNothing) {
    StartOnBoard();
    const std::string path =
        dir.Write("split.mst", "\"FileType\",\"Master File\"\r\n\"Version\",\"1.0\"\r\n"
                               "\"Command\",\"Split Completion\"\r\n");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(List("Command").currentIndex(), -1);
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(WritesTo(controlRegister), ElementsAre(Bytes{0}));
}

TEST_F(MasterWindow, AFileOfAnotherKindLeavesTheForm) {
    StartOnBoard();
    Type("AddressStart", "0000000000001000");
    const std::string path = dir.Write("odd.mst", "\"FileType\",\"Target File\"\r\n");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid master file type of 'Target File'."));
    EXPECT_EQ(Field("AddressStart").text().remove(' '), "0000000000001000");
}

TEST_F(MasterWindow, InDemoModeRunsThroughTheRangeOverRandomBytes) {
    StartOnBus(pciX);
    Type("AddressEnd", "0000000000000020");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(Status(), ElementsAre("Pass", "Pass"));
    EXPECT_NE(Dump().RowText(999), Dump().RowText(999));
}

/// Where the groups of the form must be, by its width.
struct Columns {
    std::vector<int> left;
    std::vector<int> right;
};

TEST_F(MasterWindow, LaysOutTheForm) {
    StartOnBoard();
    const std::pair<QSize, Columns> sizes[] = {
        {{600, 400}, {{10, 230, 450}, {230, 450, 590}}},
        {{900, 600}, {{10, 342, 674}, {342, 674, 889}}},
        {{420, 330}, {{10, 170, 330}, {170, 330, 470}}}}; // no narrower
    for (const auto& [size, columns] : sizes) {
        frame->resize(size + (frame->size() - View().size()).expandedTo({0, 0}));
        frame->resize(frame->width() + size.width() - View().width(), size.height());
        QApplication::processEvents();
        ASSERT_EQ(View().width(), size.width());
        const int height = View().height();
        EXPECT_EQ(Dump().geometry(), QRect(QPoint(10, 5), QPoint(size.width() - 11, height - 172)));
        // Row r is from 65 + 25r to 45 + 25r above the bottom.
        const std::tuple<QWidget*, int, std::size_t> fields[] = {
            {&List("AddressSpace"), 3, 0},  {&List("AddressSize"), 2, 0},
            {&Field("AddressStart"), 1, 0}, {&Field("AddressEnd"), 0, 0},
            {&List("DataSize"), 3, 1},      {&List("DataCycle"), 2, 1},
            {&List("DataType"), 1, 1},      {&Field("DataValue"), 0, 1},
            {&List("Command"), 3, 2},       {&Field("Repeat"), 2, 2}};
        for (const auto& [field, row, column] : fields) {
            const QRect place = field->geometry();
            EXPECT_EQ(place.top(), height - 65 - 25 * row) << field->objectName().toStdString();
            EXPECT_EQ(place.bottom() + 1, height - 45 - 25 * row);
            EXPECT_GT(place.left(), columns.left[column]);
            EXPECT_EQ(place.right() + 1, columns.right[column] - 8)
                << field->objectName().toStdString() << " " << size.width();
        }
        EXPECT_EQ(Field("Repeat").geometry().left(), (columns.left[2] + columns.right[2]) / 2);
        EXPECT_EQ(Find<QListWidget>("Status").geometry().top(), height - 90);
        EXPECT_EQ(Find<QListWidget>("Status").geometry().bottom() + 1, height - 45);
    }
}

TEST_F(MasterWindow, LaysOutTheAttributesOfPciX) {
    StartOnBus(pciX);
    frame->resize(frame->width() + 840 - View().width(), 400);
    QApplication::processEvents();
    ASSERT_EQ(View().width(), 840);
    const int height = View().height();
    const std::pair<const char*, int> fields[] = {
        {"AttrTag", 3}, {"AttrBusNum", 2}, {"AttrDeviceNum", 1}, {"AttrFunctionNum", 0}};
    for (const auto& [name, row] : fields) {
        EXPECT_EQ(Field(name).geometry().top(), height - 65 - 25 * row) << name;
        EXPECT_EQ(Field(name).geometry().right() + 1, 10 + 247 + 247 + 168 - 8);
        // The label before it is not cut.
        EXPECT_GE(Field(name).geometry().left() - (10 + 247 + 247 + 8),
                  View().fontMetrics().horizontalAdvance("Function#"));
    }
    EXPECT_EQ(List("Command").geometry().right() + 1, 830 - 8);
}

TEST_F(MasterWindow, DrawsTheRowsThatTheBarSays) {
    StartOnBoard();
    Type("AddressStart", "0000000000002000");
    Type("AddressEnd", "0000000000002003");
    Go();
    ASSERT_TRUE(Ends());
    QScrollBar& bar = *Dump().verticalScrollBar();
    const int page = Dump().viewport()->height() / 16;
    for (const int top : {0, 1, 37, bar.maximum()}) {
        bar.setValue(top);
        const Recording drawn = Drawn(*Dump().viewport());
        ASSERT_GE(drawn.texts.size(), static_cast<std::size_t>(page)) << top;
        ASSERT_LE(drawn.texts.size(), static_cast<std::size_t>(page + 1)) << top;
        for (int i = 0; i < page; ++i) {
            const auto row = drawn.TextsBetween(i * 16, (i + 1) * 16);
            ASSERT_EQ(row.size(), 1U) << i;
            EXPECT_EQ(row[0].text, Dump().RowText(top + i));
            EXPECT_TRUE(row[0].bold);
            EXPECT_EQ(row[0].rect.left(), 0);
        }
    }
    bar.setValue(bar.maximum());
    EXPECT_EQ(Drawn(*Dump().viewport()).TextsBetween((page - 1) * 16, page * 16)[0].text,
              Dump().RowText(999));
}

TEST_F(MasterWindow, HomeAndEndShowTheEndsOfTheDump) {
    StartOnBoard();
    QScrollBar& bar = *Dump().verticalScrollBar();
    Dump().setFocus();
    QTest::keyClick(&Dump(), Qt::Key_End);
    EXPECT_EQ(bar.value(), bar.maximum());
    QTest::keyClick(&Dump(), Qt::Key_PageUp);
    EXPECT_EQ(bar.value(), bar.maximum() - bar.pageStep());
    QTest::keyClick(&Dump(), Qt::Key_Up);
    EXPECT_EQ(bar.value(), bar.maximum() - bar.pageStep() - 1);
    QTest::keyClick(&Dump(), Qt::Key_Home);
    EXPECT_EQ(bar.value(), 0);
    QTest::keyClick(&Dump(), Qt::Key_Down);
    EXPECT_EQ(bar.value(), 1);
}

TEST_F(MasterWindow, ShowsTheAttributesOfAFile) {
    StartOnBus(pciX);
    LoadForm("\"AttrTag\",\"1f\"\r\n\"AttrBusNum\",\"a5\"\r\n\"AttrDeviceNum\",\"09\"\r\n"
             "\"AttrFunctionNum\",\"05\"\r\n\"Command\",\"Split Completion\"\r\n");
    EXPECT_EQ(Field("AttrTag").text(), "1F");
    EXPECT_EQ(Field("AttrBusNum").text(), "A5");
    EXPECT_EQ(Field("AttrDeviceNum").text(), "09");
    EXPECT_EQ(Field("AttrFunctionNum").text(), "5");
    EXPECT_EQ(List("Command").currentText(), "Split Completion");
}

TEST_F(MasterWindow, ShowsModifierAndLevelOfAFile) {
    StartOnBus(vme);
    LoadForm("\"AddressModifier\",\"2f\"\r\n\"BusRequestLevel\",\"04\"\r\n");
    EXPECT_EQ(Field("AddressModifier").text(), "2F");
    AnswerDialog<CMasterOptionsDialog>([&] { Press(View(), "Options"); },
                                       [](CMasterOptionsDialog& dialog) {
                                           EXPECT_EQ(dialog.findChild<QComboBox*>()->currentText(),
                                                     "Level 2");
                                       });
}

TEST_F(MasterWindow, ShowsTheListsOfAFile) {
    StartOnBoard();
    LoadForm("\"AddressSpace\",\"Config\"\r\n\"AddressSize\",\"odd\"\r\n"
             "\"DataSize\",\"odd\"\r\n\"DataCycle\",\"Burst\"\r\n"
             "\"AddressEnd\",\"0000000000000123\"\r\n\"DataValue\",\"8877665544332211\"\r\n"
             "\"Repeat\",7\r\n");
    EXPECT_EQ(List("AddressSpace").currentText(), "Config");
    EXPECT_EQ(List("AddressSize").currentText(), "64 bit");
    EXPECT_EQ(List("DataSize").currentText(), "8 bit");
    EXPECT_EQ(List("DataCycle").currentText(), "Burst");
    EXPECT_EQ(Field("AddressEnd").text().remove(' '), "0000000000000123");
    EXPECT_EQ(Field("DataValue").text().remove(' '), "8877665544332211");
    EXPECT_EQ(Field("Repeat").text(), "7");
}

TEST_F(MasterWindow, NamesItsGroupsAndFields) {
    StartOnBus(pci);
    const QStringList data = {"Data", "Size", "Cycle", "Type", "Value"};
    const QStringList command = {"Command", "Repeat"};
    EXPECT_EQ(DrawnTexts(),
              Sorted(QStringList{"Address", "Space", "Size", "Start", "End"} + data + command));
    List("DataType").setCurrentText("File");
    EXPECT_TRUE(DrawnTexts().contains("File"));
    EXPECT_FALSE(DrawnTexts().contains("Value"));
    List("DataType").setCurrentText("Target");
    EXPECT_FALSE(DrawnTexts().contains("File"));
    EXPECT_FALSE(DrawnTexts().contains("Value"));
    List("DataType").setCurrentText("Value");
    ChangeBus("VME");
    EXPECT_EQ(DrawnTexts(),
              Sorted(QStringList{"Address", "AM", "Size", "Start", "End"} + data + command));
    ChangeBus("PCI-X");
    EXPECT_EQ(DrawnTexts(),
              Sorted(QStringList{"Address", "Space", "Size", "Start", "End"} + data + command +
                     QStringList{"Attribute", "Tag", "Bus#", "Device#", "Function#"}));
}

TEST_F(MasterWindow, LabelsStandBeforeTheirFieldsUncut) {
    StartOnBus(pciX);
    for (const char* bus : {"PCI-X", "VME", "VSB"}) {
        ChangeBus(bus);
        for (const int width : {660, 900, 1200}) {
            SetViewSize({width, 400});
            const Recording drawn = Drawn(View());
            const std::pair<const char*, QWidget*> labels[] = {
                {bus == std::string("VME") ? "AM" : "Space",
                 bus == std::string("VME") ? static_cast<QWidget*>(&Field("AddressModifier"))
                                           : &List("AddressSpace")},
                {"Start", &Field("AddressStart")},
                {"End", &Field("AddressEnd")},
                {"Cycle", &List("DataCycle")},
                {"Value", &Field("DataValue")},
                {"Repeat", &Field("Repeat")},
                {"Bus#", &Field("AttrBusNum")},
                {"Function#", &Field("AttrFunctionNum")}};
            for (const auto& [text, field] : labels) {
                if (!field->isVisible()) {
                    continue;
                }
                const auto label = std::ranges::find(drawn.texts, QString(text), &Text::text);
                ASSERT_NE(label, drawn.texts.end()) << text;
                EXPECT_LE(label->rect.right(), field->x()) << text << " " << width;
                EXPECT_NEAR(label->rect.center().y(), field->geometry().center().y(), 2) << text;
            }
        }
    }
}

// The groups take 3/8, 3/8 and 2/8 of the width; of PCI-X, where there is one more, in tenths.
TEST_F(MasterWindow, LaysOutTheFormOfEachBus) {
    StartOnBus(pci);
    struct Place {
        const char* bus;
        int width;
        std::vector<int> right; // of the groups
    };
    const Place places[] = {
        {"VME", 600, {230, 450, 590}},        {"VME", 1000, {380, 750, 990}},
        {"VSB", 600, {230, 450, 590}},        {"VSB", 800, {305, 600, 790}},
        {"PCI-X", 840, {257, 504, 672, 830}}, {"PCI-X", 1200, {365, 720, 960, 1190}},
        {"PCI-X", 600, {185, 360, 520, 660}}}; // no narrower
    for (const auto& [bus, width, right] : places) {
        ChangeBus(bus);
        SetViewSize({width, 400});
        ASSERT_EQ(View().width(), width);
        const bool isVme = bus == std::string("VME");
        QWidget& first = isVme ? static_cast<QWidget&>(Field("AddressModifier"))
                               : static_cast<QWidget&>(List("AddressSpace"));
        EXPECT_TRUE(first.isVisible());
        EXPECT_EQ(first.y(), View().height() - 140) << bus;
        EXPECT_EQ(first.geometry().right() + 1, right[0] - 8) << bus << width;
        EXPECT_EQ(List("DataSize").geometry().right() + 1, right[1] - 8) << bus << width;
        if (right.size() == 4) {
            EXPECT_EQ(Field("AttrTag").geometry().right() + 1, right[2] - 8) << bus << width;
        }
        EXPECT_EQ(List("Command").geometry().right() + 1, right.back() - 8) << bus << width;
    }
}

// The main thread may be in the middle of an exchange then.
TEST_F(MasterWindow, NothingIsPolledWhileABoxOfAnotherThreadIsOpen) {
    StartOnBoard();
    int polls = 0;
    line->Do([&] {
        board.onMemoryRead = [&](std::uint32_t address) { polls += address == statusRegister; };
    });
    int pollsInBox = -1;
    mainThread.SetPresenter(
        [&](const Box&) {
            QTest::qWait(300);
            line->Do([&] { pollsInBox = polls; });
            return Answer::Ok;
        },
        [] {});
    List("Command").setCurrentText("Write");
    Go();
    std::thread other([&] { mainThread.Show({"A box."}); });
    while (pollsInBox < 0) {
        mainThread.ServeBoxes();
    }
    other.join();
    EXPECT_EQ(pollsInBox, 0);
    ASSERT_TRUE(Ends());
    line->Do([&] { board.onMemoryRead = nullptr; });
    EXPECT_EQ(polls, 1);
}

TEST_F(MasterWindow, AMaximizedWindowStaysSo) {
    StartOnBus(pci);
    Frame().resize(700, 600);
    frame->showMaximized();
    QApplication::processEvents();
    const QSize maximized = frame->size();
    ASSERT_LT(maximized.width(), 840);
    ChangeBus("PCI-X");
    EXPECT_TRUE(frame->isMaximized());
    EXPECT_EQ(frame->size(), maximized);
}

TEST_F(MasterWindow, AMinimizedWindowStaysSo) {
    StartOnBus(pci);
    frame->showMinimized();
    QApplication::processEvents();
    const QSize minimized = frame->size();
    ChangeBus("PCI-X");
    EXPECT_TRUE(frame->isMinimized());
    EXPECT_EQ(frame->size(), minimized);
    frame->showNormal();
    QApplication::processEvents();
    EXPECT_TRUE(Field("AttrTag").isVisible());
}

TEST_F(MasterWindow, TheFileDialogBeginsAtTheLastFile) {
    const std::string path = dir.Write("last.dat", "00\n");
    settings.WriteProfileString("Setup", "LastMasterDataFile", path);
    StartOnBoard();
    EXPECT_EQ(Field("DataFilename").toolTip().toStdString(), path) << "a long path is cut";
    AnswerDialog<QFileDialog>(
        [&] { Press(View(), "File"); },
        [&](QFileDialog& files) {
            EXPECT_EQ(files.directory(), QDir(QString::fromStdString(dir.Path())));
            EXPECT_EQ(files.findChild<QLineEdit*>("fileNameEdit")->text(), "last.dat");
        });
    EXPECT_EQ(Document().Form().dataFilename, path) << "cancelled";
}

TEST_F(MasterWindow, HasItsButtonsInTheirPlaces) {
    StartOnBoard();
    const std::pair<const char*, int> buttons[] = {{"Load", 0},    {"Save", 1}, {"File", 3},
                                                   {"Options", 4}, {"Help", 5}, {"Close", 6}};
    for (const auto& [text, slot] : buttons) {
        EXPECT_EQ(ButtonOf(View(), text).x(), 10 + 80 * slot) << text;
    }
}

TEST_F(MasterWindow, HelpOpensItsPage) {
    StartOnBoard();
    EXPECT_EQ(HelpPage(), "Master");
}

TEST_F(MasterWindow, RepeatTakesDigitsOnly) {
    StartOnBoard();
    Field("Repeat").selectAll();
    QTest::keyClicks(&Field("Repeat"), "-1x2");
    EXPECT_EQ(Field("Repeat").text(), "12");
}

TEST_F(MasterWindow, AnExistingDataFileKeepsItsName) {
    const std::string path = dir.Write("data", "00\n");
    StartOnBoard();
    AnswerDialog<QFileDialog>([&] { Press(View(), "File"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Document().Form().dataFilename, path);
}

} // namespace
} // namespace busquill::test
