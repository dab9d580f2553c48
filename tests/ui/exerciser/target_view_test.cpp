#include "exerciser/target_document.h"
#include "support/exerciser_fixture_qt.h"

#include <QCheckBox>
#include <gmock/gmock.h>

#include <fstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t setupRegister = 1490;
constexpr int pci = 0;
constexpr int vme = 2;

class TargetWindow : public ExerciserWindow {
protected:
    TargetWindow() : ExerciserWindow("File/New/Target", {"Target File", "form.tgt"}) {}
    CTargetDoc& Document() { return static_cast<CTargetDoc&>(frame->GetDocument()); }
    void Enable() { Tick(View(), "Enable Target"); }
};

TEST_F(TargetWindow, HasItsFields) {
    StartOnBoard();
    EXPECT_EQ(frame->windowTitle(), "Target");
    EXPECT_EQ(frame->size(), QSize(600, 400));
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Memory", "I/O", "Config"}));
    EXPECT_EQ(Items("BusLength").size(), 25);
    EXPECT_EQ(List("BusLength").currentText(), "8 MB");
    EXPECT_EQ(List("DataSize").currentText(), "32 bit");
    EXPECT_EQ(Items("WaitStates").size(), 16);
    EXPECT_EQ(List("WaitStates").currentText(), "0");
    EXPECT_EQ(Items("WaitStates").last(), "15");
    EXPECT_EQ(Items("Response"), (QStringList{"Normal", "Retry", "Disconnect"}));
    EXPECT_FALSE(View().findChild<QCheckBox*>()->isChecked());
    EXPECT_EQ(Items("DataType"), (QStringList{"Value", "File"}));
    EXPECT_EQ(Items("Command"), (QStringList{"None", "Read", "Write"}));
    EXPECT_EQ(List("Command").currentText(), "Read");
}

TEST_F(TargetWindow, HasTheModifierOfVme) {
    StartOnBus(vme);
    EXPECT_EQ(Field("AddressModifier").text(), "0D");
    EXPECT_TRUE(Field("AddressModifier").isVisible());
    EXPECT_FALSE(List("AddressSpace").isVisible());
}

TEST_F(TargetWindow, FollowsTheBusToVmeAndBack) {
    StartOnBus(pci);
    List("AddressSpace").setCurrentText("Config");
    Type("BusStart", "0000000080000000");
    Tick(View(), "Enable Target");
    ChangeBus("VME");
    EXPECT_FALSE(List("AddressSpace").isVisible());
    EXPECT_EQ(Items("AddressSpace"), QStringList{"Memory"});
    EXPECT_EQ(Document().Form().addressSpace, 0) << "a space that nobody sees";
    EXPECT_TRUE(Field("AddressModifier").isVisible());
    EXPECT_EQ(Field("BusStart").text().remove(' '), "0000000080000000");
    EXPECT_TRUE(View().findChild<QCheckBox*>()->isChecked());
    Type("AddressModifier", "39");
    ChangeBus("PCI");
    EXPECT_TRUE(List("AddressSpace").isVisible());
    EXPECT_EQ(Items("AddressSpace"), (QStringList{"Memory", "I/O", "Config"}));
    EXPECT_FALSE(Field("AddressModifier").isVisible());
    ChangeBus("VME");
    EXPECT_EQ(Field("AddressModifier").text(), "39");
}

TEST_F(TargetWindow, EnablingSendsTheSetupAtOnce) {
    StartOnBoard();
    List("Response").setCurrentText("Disconnect");
    List("WaitStates").setCurrentText("5");
    Type("BusStart", "0000000080000000");
    EXPECT_THAT(Writes(), IsEmpty());
    Enable();
    EXPECT_THAT(WritesTo(setupRegister),
                ElementsAre(Bytes{0, 0, 0, 0x80, 0, 0, 0, 0, 24, 0, 0x5A, 0x81}));
    Enable();
    EXPECT_EQ(WritesTo(setupRegister).back().back(), 0x01);
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
}

TEST_F(TargetWindow, FillsItsMemoryWithAValue) {
    StartOnBoard();
    Type("AddressStart", "0000000000000100");
    Type("AddressEnd", "0000000000000113"); // 20 bytes
    Type("DataValue", "0807060504030201");
    List("Command").setCurrentText("Write");
    Go();
    ASSERT_TRUE(Ends());
    Bytes expected;
    for (int i = 0; i < 20; ++i) {
        expected.push_back(static_cast<std::uint8_t>(1 + i % 8));
    }
    EXPECT_THAT(WritesTo(0x100), ElementsAre(expected));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetWindow, ReadsItsMemoryIntoTheDump) {
    Bytes first(248);
    for (std::size_t i = 0; i < first.size(); ++i) {
        first[i] = static_cast<std::uint8_t>(i);
    }
    board.contents[0x1000] = first;
    board.contents[0x1000 + 248] = {0xEE};
    StartOnBoard();
    Type("AddressStart", "0000000000001000");
    Type("AddressEnd", "00000000000010f8"); // 249 bytes
    Go();
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(Dump().RowText(0).startsWith(" 00001000  00 01 02 "));
    bool found = false;
    for (int row = 0; row < 40; ++row) {
        found = found || Dump().RowText(row).contains(" ee ");
    }
    EXPECT_TRUE(found);
}

TEST_F(TargetWindow, AnEndBelowTheStartIsToldAfterTheSetup) {
    StartOnBoard();
    Type("AddressStart", "0000000000000010");
    Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("End Address must be >= Start Address."));
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(WritesTo(setupRegister), SizeIs(1));
}

TEST_F(TargetWindow, StopSendsNothing) {
    StartOnBoard();
    Type("AddressEnd", "000000000000ffff");
    List("Command").setCurrentText("Write");
    Go();
    ASSERT_TRUE(RunUntil([&] { return Writes().size() > 6; }));
    Stop();
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    const auto functions = Functions().size();
    QTest::qWait(200);
    EXPECT_EQ(Functions().size(), functions);
}

TEST_F(TargetWindow, OptionsAreNone) {
    StartOnBus(vme);
    Press(View(), "Options");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No options are available."));
}

TEST_F(TargetWindow, TheDataFileIsChosenAndUsed) {
    std::ofstream(dir.File("data.dat")) << "0a 0b 0c\n";
    StartOnBoard();
    List("DataType").setCurrentText("File");
    EXPECT_FALSE(Field("DataValue").isVisible());
    EXPECT_TRUE(Field("DataFilename").isVisible());
    AnswerDialog<QFileDialog>([&] { Press(View(), "File"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.windowTitle(), "Target Data File");
                                  GiveFileName(files, dir.File("data.dat"));
                              });
    EXPECT_EQ(settings.GetProfileString("Setup", "LastTargetDataFile", ""), dir.File("data.dat"));
    List("Command").setCurrentText("None"); // writes all the same
    Type("AddressStart", "0000000000000200");
    Type("AddressEnd", "0000000000000203");
    prompts.AnswerNext(Answer::Yes);
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: File length of 3 is less than address length of 4. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_THAT(WritesTo(0x200), ElementsAre(Bytes{0x0A, 0x0B, 0x0C, 0}));
}

TEST_F(TargetWindow, IsSavedAndLoaded) {
    StartOnBoard();
    Type("AddressStart", "0000000000001000");
    Type("BusStart", "0000000000777000");
    List("BusLength").setCurrentText("4 KB");
    const std::string path = dir.File("form.tgt");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Save"); },
                              [&](QFileDialog& files) {
                                  EXPECT_EQ(files.nameFilters(), QStringList{"Target(*.tgt)"});
                                  GiveFileName(files, path);
                              });
    Type("AddressStart", "0000000000002000");
    List("BusLength").setCurrentText("0");
    Type("BusStart", "0000000000888000");
    AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                              [&](QFileDialog& files) { GiveFileName(files, path); });
    EXPECT_EQ(Field("AddressStart").text().remove(' '), "0000000000001000");
    EXPECT_EQ(List("BusLength").currentText(), "4 KB");
    EXPECT_EQ(Field("BusStart").text().remove(' '), "0000000000888000"); // not in the file
}

TEST_F(TargetWindow, LaysOutTheForm) {
    StartOnBoard();
    const std::pair<QSize, std::array<int, 3>> sizes[] = {{{600, 400}, {230, 450, 590}},
                                                          {{900, 600}, {342, 674, 889}}};
    for (const auto& [size, right] : sizes) {
        frame->resize(frame->width() + size.width() - View().width(), size.height());
        QApplication::processEvents();
        ASSERT_EQ(View().width(), size.width());
        const int height = View().height();
        EXPECT_EQ(Dump().geometry(), QRect(QPoint(10, 5), QPoint(size.width() - 11, height - 247)));
        const std::tuple<QWidget*, int, std::size_t> fields[] = {
            {&List("AddressSpace"), 6, 0},  {&Field("BusStart"), 5, 0},
            {&List("BusLength"), 4, 0},     {&List("DataSize"), 6, 1},
            {&List("WaitStates"), 5, 1},    {&List("Response"), 4, 1},
            {&Field("AddressStart"), 1, 0}, {&Field("AddressEnd"), 0, 0},
            {&List("DataType"), 1, 1},      {&Field("DataValue"), 0, 1},
            {&List("Command"), 1, 2},       {View().findChild<QCheckBox*>(), 6, 2}};
        for (const auto& [field, row, column] : fields) {
            const QRect place = field->geometry();
            EXPECT_EQ(place.top(), height - 65 - 25 * row) << field->objectName().toStdString();
            EXPECT_EQ(place.right() + 1, right[column] - 8) << field->objectName().toStdString();
        }
    }
}

TEST_F(TargetWindow, ShowsTheModifierOfAFile) {
    StartOnBus(vme);
    LoadForm("\"AddressModifier\",\"2f\"\r\n\"AddressSize\",\"64 KB\"\r\n"
             "\"DataSize\",\"odd\"\r\n\"DataType\",\"File\"\r\n");
    EXPECT_EQ(Field("AddressModifier").text(), "2F");
    EXPECT_EQ(List("BusLength").currentText(), "64 KB");
    EXPECT_EQ(List("DataSize").currentText(), "8 bit");
    EXPECT_EQ(List("DataType").currentText(), "File");
    EXPECT_TRUE(Field("DataFilename").isVisible());
}

TEST_F(TargetWindow, AnUnknownLengthIsTheFirst) {
    StartOnBoard();
    LoadForm("\"AddressSize\",\"3 MB\"\r\n\"AddressSpace\",\"Config\"\r\n");
    EXPECT_EQ(List("BusLength").currentText(), "0");
    EXPECT_EQ(List("AddressSpace").currentText(), "Config");
}

TEST_F(TargetWindow, NamesItsGroupsAndFields) {
    StartOnBus(pci);
    const QStringList others = {"Bus Address", "Start",          "Length",   "Bus Data",
                                "Size",        "Wait States",    "Response", "Bus Control",
                                "Start",       "Target Address", "End",      "Target Data",
                                "Type",        "Value",          "Command"};
    EXPECT_EQ(DrawnTexts(), Sorted(QStringList{"Space"} + others));
    ChangeBus("VME");
    EXPECT_EQ(DrawnTexts(), Sorted(QStringList{"AM"} + others));
    List("DataType").setCurrentText("File");
    EXPECT_TRUE(DrawnTexts().contains("File"));
    EXPECT_FALSE(DrawnTexts().contains("Value"));
}

TEST_F(TargetWindow, LaysOutTheFormOfEachBus) {
    StartOnBus(pci);
    for (const char* bus : {"VME", "VSB"}) {
        ChangeBus(bus);
        const std::pair<int, std::array<int, 3>> sizes[] = {
            {600, {230, 450, 590}}, {1000, {380, 750, 990}}, {400, {170, 330, 470}}};
        for (const auto& [width, right] : sizes) {
            SetViewSize({width, 420});
            ASSERT_EQ(View().width(), width);
            QWidget& first = bus == std::string("VME")
                                 ? static_cast<QWidget&>(Field("AddressModifier"))
                                 : static_cast<QWidget&>(List("AddressSpace"));
            EXPECT_TRUE(first.isVisible());
            EXPECT_EQ(first.y(), View().height() - 215) << bus;
            EXPECT_EQ(first.geometry().right() + 1, right[0] - 8) << bus << width;
            EXPECT_EQ(List("Response").geometry().right() + 1, right[1] - 8) << bus << width;
            EXPECT_EQ(List("Command").geometry().right() + 1, right[2] - 8) << bus << width;
        }
    }
}

// With room for 12 characters only, rows have an address and nothing else.
TEST_F(TargetWindow, ANarrowDumpShowsAddressesAlone) {
    StartOnBoard();
    Type("AddressStart", "0000000000001000");
    Type("AddressEnd", "0000000000001001");
    Go();
    ASSERT_TRUE(Ends());
    SetViewSize({140, 420});
    EXPECT_EQ(Dump().RowText(0).trimmed(), "00001000");
    EXPECT_EQ(Dump().RowText(1).trimmed(), "00001000");
    SetViewSize({600, 420});
    EXPECT_TRUE(Dump().RowText(0).startsWith(" 00001000  00 00 "));
}

TEST_F(TargetWindow, ASecondGoDuringARunBeginsAgain) {
    StartOnBoard();
    Type("AddressEnd", "00000000000003ff");
    List("Command").setCurrentText("Write");
    Go();
    ASSERT_TRUE(RunUntil([&] { return !WritesTo(248).empty(); }));
    Go();
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    EXPECT_THAT(WritesTo(0), SizeIs(2));
    ASSERT_TRUE(Ends());
    EXPECT_THAT(WritesTo(992), SizeIs(1)); // the last step
}

TEST_F(TargetWindow, TheDumpIsDrawnAgainWhenItGrows) {
    struct Counter final : QObject {
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int paints = 0;
    } counter;
    StartOnBoard();
    Type("AddressEnd", "00000000000003ff"); // five steps
    QApplication::processEvents();
    Dump().viewport()->installEventFilter(&counter);
    QTest::qWait(100);
    EXPECT_EQ(counter.paints, 0);
    Go();
    ASSERT_TRUE(Ends());
    QApplication::processEvents();
    EXPECT_GE(counter.paints, 5);
}

TEST_F(TargetWindow, HelpOpensItsPage) {
    StartOnBoard();
    EXPECT_EQ(HelpPage(), "Target");
}

TEST_F(TargetWindow, ShowsTheLastDataFile) {
    settings.WriteProfileString("Setup", "LastTargetDataFile", "/data/last.dat");
    StartOnBoard();
    EXPECT_EQ(Field("DataFilename").text(), "/data/last.dat");
}

TEST_F(TargetWindow, EnablingDuringARunSendsTheSetupAndTheRunGoesOn) {
    StartOnBoard();
    Type("AddressEnd", "00000000000003ff");
    List("Command").setCurrentText("Write");
    Go();
    Enable();
    EXPECT_THAT(WritesTo(setupRegister), SizeIs(2));
    EXPECT_EQ(frame->RunState(), RunPicture::Running);
    ASSERT_TRUE(Ends());
    EXPECT_THAT(WritesTo(0x3E0), SizeIs(1)); // the last step
}

TEST_F(TargetWindow, CanBeClosedDuringARun) {
    StartOnBoard();
    Type("AddressEnd", "000000000000ffff");
    List("Command").setCurrentText("Write");
    Go();
    Press(View(), "Close");
    QTest::qWait(100);
    EXPECT_TRUE(Windows().isEmpty());
    const auto functions = Functions().size();
    QTest::qWait(200);
    EXPECT_EQ(Functions().size(), functions);
}

TEST_F(TargetWindow, InDemoModeRunsThroughTheRangeOverRandomBytes) {
    StartOnBus(vme);
    Type("AddressEnd", "00000000000001ff");
    Go();
    ASSERT_TRUE(Ends());
    EXPECT_NE(Dump().RowText(999), Dump().RowText(999));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
