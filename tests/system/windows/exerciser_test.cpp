// Master and target through the program's windows, against the simulated board.

#include "exerciser/master_document.h"
#include "exerciser/target_document.h"
#include "support/board_program_fixture_qt.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/view.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/patterns/value_dialog.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <gmock/gmock.h>

#include <fstream>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class Exerciser : public BoardProgramFixture {
protected:
    void Open(const QString& path) {
        Choose(path);
        frame = dynamic_cast<CGoStopChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(frame, nullptr);
    }
    QWidget& View() { return *frame->GetActiveView(); }
    QComboBox& List(const char* name) { return *View().findChild<QComboBox*>(name); }
    void Type(const char* field, const QString& digits) {
        AnswerDialog<CValueDlg>(
            [&] { QTest::mouseClick(View().findChild<QLineEdit*>(field), Qt::LeftButton); },
            [&](CValueDlg& dialog) {
                QTest::keyClicks(dialog.findChild<CBitEditWnd*>(), digits);
                Press(dialog, "OK");
            });
    }
    void ChooseDataFile(const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(View(), "File"); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    void Run() {
        QTest::mouseClick(frame->findChild<QToolButton*>("Go"), Qt::LeftButton);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return frame->RunState() == RunPicture::Stopped; }, 250000));
    }
    /// 64 KB of bytes that do not repeat soon, as a data file.
    std::string WriteData() {
        std::ofstream file(dir.File("in.dat"));
        char text[4];
        std::uint32_t value = 1;
        for (int i = 0; i < 0x10000; ++i) {
            value = value * 1664525U + 1013904223U;
            std::snprintf(text, sizeof text, "%02x ", value >> 24);
            file << text << (i % 16 == 15 ? "\n" : "");
        }
        return dir.File("in.dat");
    }
    static std::string WithoutLineEnds(std::string text) {
        std::erase(text, '\n');
        return text;
    }

    CGoStopChild* frame = nullptr;
};

TEST_F(Exerciser, WhatTheMasterWritesFromAFileItReadsBackIntoAnother) {
    Connect({"--baud", "57600"});
    const std::string in = WriteData();
    Open("File/New/Exerciser/Master");
    List("DataType").setCurrentText("File");
    ChooseDataFile(in);
    Type("AddressStart", "0000000000010000");
    Type("AddressEnd", "000000000001ffff");
    List("Command").setCurrentText("Write");
    Run();
    List("Command").setCurrentText("Verify");
    ChooseDataFile(dir.File("out.dat"));
    List("Command").setCurrentText("Read");
    Run();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(WithoutLineEnds(ReadWholeFile(dir.File("out.dat"))),
              WithoutLineEnds(ReadWholeFile(in)));
    const auto& status = *View().findChild<QListWidget*>("Status");
    EXPECT_EQ(status.count(), 0x10000 / 32);
    EXPECT_EQ(status.item(0)->text(), "Pass");
    const QString row = View().findChild<CMemoryListBox*>()->RowText(0);
    EXPECT_TRUE(row.startsWith(" 00010000  ")) << row.toStdString();
    EXPECT_EQ(row.mid(11, 9).toStdString(), ReadWholeFile(in).substr(0, 9));
}

TEST_F(Exerciser, WhatTheTargetIsFilledWithItReadsBack) {
    Connect();
    Open("File/New/Target");
    Type("AddressStart", "0000000000000100");
    Type("AddressEnd", "00000000000004ff");
    Type("DataValue", "0807060504030201");
    List("Command").setCurrentText("Write");
    Run();
    List("DataType").setCurrentText("File");
    ChooseDataFile(dir.File("target.dat"));
    List("Command").setCurrentText("Read");
    Run();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    std::string expected;
    for (int i = 0; i < 0x400 / 8; ++i) {
        expected += "01 02 03 04 05 06 07 08 ";
    }
    EXPECT_EQ(WithoutLineEnds(ReadWholeFile(dir.File("target.dat"))), expected);
    EXPECT_THAT(board->Functions(), Contains(HasSubstr("write memory, address 1490 length 12")));
}

TEST_F(Exerciser, AMasterThatIsStoppedLeavesTheBoardReady) {
    Connect();
    Open("File/New/Exerciser/Master");
    Type("AddressEnd", "00000000000fffff");
    QTest::mouseClick(frame->findChild<QToolButton*>("Go"), Qt::LeftButton);
    QTest::qWait(300);
    QTest::mouseClick(frame->findChild<QToolButton*>("Stop"), Qt::LeftButton);
    EXPECT_EQ(frame->RunState(), RunPicture::Stopped);
    EXPECT_THAT(board->Functions().back(), HasSubstr("exerciser stop"));
    Type("AddressEnd", "000000000000001f");
    Run();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(Exerciser, ABoardThatIsPulledOutEndsTheRun) {
    Connect();
    Open("File/New/Exerciser/Master");
    Type("AddressEnd", "00000000000fffff");
    QTest::mouseClick(frame->findChild<QToolButton*>("Go"), Qt::LeftButton);
    QTest::qWait(100);
    board->Unplug();
    EXPECT_TRUE(QTest::qWaitFor([&] { return frame->RunState() == RunPicture::Stopped; }, 100000));
    EXPECT_THAT(prompts.Texts(), Contains(HasSubstr("from analyzer.")));
}

} // namespace
} // namespace busquill::test
