#include "support/board_line_fixture_qt.h"
#include "ui/link/serial_test_dialog.h"

#include <QLineEdit>
#include <QListWidget>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Controls {
    explicit Controls(QDialog& owner)
        : dialog(owner), bytes(*owner.findChild<QLineEdit*>()),
          history(*owner.findChild<QListWidget*>("History")),
          read(*owner.findChild<QListWidget*>("Read")) {}
    void Send(const QString& text) {
        bytes.selectAll();
        QTest::keyClicks(&bytes, text);
        Press(dialog, "Send");
    }
    static std::vector<std::string> LinesOf(const QListWidget& list) {
        std::vector<std::string> lines;
        for (int i = 0; i < list.count(); ++i) {
            lines.push_back(list.item(i)->text().toStdString());
        }
        return lines;
    }
    std::vector<std::string> History() const { return LinesOf(history); }
    std::vector<std::string> Read() const { return LinesOf(read); }

    QDialog& dialog;
    QLineEdit& bytes;
    QListWidget& history;
    QListWidget& read;
};

class SerialTest : public BoardLineFixture {
protected:
    void Open(std::function<void(Controls&)> act) {
        ChooseDialog<CSerialTestDialog>("Utilities/Serial Test", [&](CSerialTestDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Serial Test");
            Controls controls(dialog);
            act(controls);
        });
    }
    void StartSilent() {
        StartOnLine();
        UseSilence();
        line->ForgetLog();
    }
};

TEST_F(SerialTest, SendsBytesPastTheQueueAndKeepsTheLine) {
    StartSilent();
    Open([&](Controls& controls) {
        EXPECT_EQ(controls.dialog.focusWidget(), &controls.bytes);
        EXPECT_EQ(controls.bytes.font().family(), "Courier");
        controls.Send("2a");
        EXPECT_THAT(controls.History(), ElementsAre("2a "));
        EXPECT_THAT(Written(), ElementsAre(Bytes{0x2A}));
        controls.Send("2a");
        EXPECT_THAT(controls.History(), ElementsAre("2a "));
        EXPECT_EQ(Written().size(), 2U);
        controls.Send("0A  1ff zz");
        EXPECT_EQ(Written().back(), (Bytes{0x0A, 0xFF, 0x00}));
        EXPECT_THAT(controls.History(), ElementsAre("2a ", "0a ff 00 "));
        controls.Send("   ");
        EXPECT_EQ(Written().size(), 3U);
    });
}

TEST_F(SerialTest, TheEnterKeySends) {
    StartSilent();
    Open([&](Controls& controls) {
        QTest::keyClicks(&controls.bytes, "0a 00");
        QTest::keyClick(&controls.bytes, Qt::Key_Return);
        EXPECT_TRUE(controls.dialog.isVisible());
        EXPECT_THAT(Written(), ElementsAre(Bytes{0x0A, 0x00}));
    });
}

TEST_F(SerialTest, AnEarlierLineCanBeChosenAgain) {
    StartSilent();
    Open([](Controls& controls) {
        controls.Send("01");
        controls.Send("02");
        QTest::mouseClick(controls.history.viewport(), Qt::LeftButton, {},
                          controls.history.visualItemRect(controls.history.item(0)).center());
        EXPECT_EQ(controls.bytes.text(), "01 ");
        QTest::keyClick(&controls.history, Qt::Key_Down);
        EXPECT_EQ(controls.bytes.text(), "02 ");
        controls.bytes.clear();
        QTest::mouseClick(controls.history.viewport(), Qt::LeftButton, {},
                          controls.history.visualItemRect(controls.history.item(1)).center());
        EXPECT_EQ(controls.bytes.text(), "02 ");
    });
}

TEST_F(SerialTest, ShowsWhatArrivesInLinesOfEight) {
    StartSilent();
    Open([&](Controls& controls) {
        line->Arrive({'*', 0x41, 0x7F});
        ASSERT_TRUE(RunUntil([&] { return controls.read.count() == 1; }));
        EXPECT_THAT(controls.Read(), ElementsAre("2a 41 7f " + std::string(15, ' ') + "   '*A " +
                                                 std::string(5, ' ') + "'"));
        line->Arrive({'0', '1', '2', '3', '4', '5', '6', '7'});
        ASSERT_TRUE(RunUntil([&] { return controls.read.count() >= 2; }));
        EXPECT_EQ(controls.read.currentRow(), controls.read.count() - 1);
    });
}

TEST_F(SerialTest, KeepsTheLast10000Lines) {
    StartSilent();
    Open([&](Controls& controls) {
        line->Arrive(Bytes(80'000, 0x11));
        line->Arrive(Bytes(8, 0x22));
        ASSERT_TRUE(RunUntil([&] {
            const QListWidgetItem* last = controls.read.item(controls.read.count() - 1);
            return last != nullptr && last->text().contains("22 ");
        }));
        EXPECT_LE(controls.read.count(), 10000);
    });
}

TEST_F(SerialTest, SendsAtMost256Characters) {
    StartSilent();
    Open([&](Controls& controls) {
        std::string text;
        for (int i = 0; i < 100; ++i) {
            text += "11 ";
        }
        QApplication::clipboard()->setText(QString::fromStdString(text));
        QTest::keyClick(&controls.bytes, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(controls.bytes.text().size(), 256);
        Press(controls.dialog, "Send");
        ASSERT_EQ(Written().size(), 1U);
        EXPECT_EQ(Written()[0].size(), 86U);
        EXPECT_EQ(Written()[0].back(), 0x01);
    });
}

TEST_F(SerialTest, WithoutAPortSendsNothing) {
    openError = ENOENT;
    StartOnLine();
    Open([&](Controls& controls) {
        controls.Send("2a");
        EXPECT_THAT(controls.History(), ElementsAre("2a "));
        QTest::qWait(30);
        EXPECT_THAT(controls.Read(), IsEmpty());
    });
    EXPECT_THAT(Written(), IsEmpty());
}

} // namespace
} // namespace busquill::test
