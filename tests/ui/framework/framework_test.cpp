#include "platform/main_thread.h"
#include "support/temp_dir.h"
#include "ui/framework/doc_template.h"
#include "ui/framework/message_boxes.h"
#include "ui/framework/painting.h"
#include "ui/framework/qt_settings.h"
#include "ui/framework/wait_cursor.h"
#include "ui/framework/window_timer.h"

#include <QApplication>
#include <QFontMetrics>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest/QTest>
#include <gtest/gtest.h>

#include <thread>

namespace busquill::test {
namespace {

TEST(ParseDocString, FieldsInTheirOrder) {
    const DocStrings strings =
        ParseDocString("\nTrace\nNew\nTrace Data (*.tra)\n.tra\nTessel.Trace\nTessel Trace");
    EXPECT_EQ(strings.windowTitle, "");
    EXPECT_EQ(strings.documentName, "Trace");
    EXPECT_EQ(strings.fileNewName, "New");
    EXPECT_EQ(strings.filterName, "Trace Data (*.tra)");
    EXPECT_EQ(strings.extension, ".tra");
    EXPECT_EQ(strings.fileTypeId, "Tessel.Trace");
    EXPECT_EQ(strings.fileTypeName, "Tessel Trace");
}

TEST(QtSettings, KeepValuesBySectionAndKey) {
    const TempDir dir;
    const QString file = QString::fromStdString(dir.File("settings.ini"));
    {
        QtSettings settings(file, QSettings::IniFormat);
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
        settings.WriteProfileString("Setup", "ComPort", "COM2, the \"second\"");
        settings.WriteProfileString("Print", "BaudRate", "no number");
    }
    const QtSettings settings(file, QSettings::IniFormat);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BaudRate", 0), 9600);
    EXPECT_EQ(settings.GetProfileInt("Print", "BaudRate", 7), 7);
    EXPECT_EQ(settings.GetProfileInt("Setup", "Missing", -3), -3);
    EXPECT_EQ(settings.GetProfileString("Setup", "ComPort", ""), "COM2, the \"second\"");
    EXPECT_EQ(settings.GetProfileString("Setup", "Missing", "fallback"), "fallback");
}

TEST(WindowTimer, ATickThatShowsABoxIsNotReentered) {
    MainThread mainThread;
    int ticks = 0;
    int inside = 0;
    WindowTimer timer(nullptr, mainThread, [&] {
        ++ticks;
        ++inside;
        QTest::qWait(30); // as long as a message box of the tick is open
        EXPECT_EQ(inside, 1);
        --inside;
    });
    timer.start(5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }));
}

TEST(WindowTimer, ATickMayDestroyItsTimer) {
    MainThread mainThread;
    auto* timer = new WindowTimer(nullptr, mainThread, [] {});
    QPointer<WindowTimer> watched = timer;
    auto* last = new WindowTimer(timer, mainThread, [&] { delete watched.data(); });
    last->start(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return watched.isNull(); }));
}

TEST(ColorOf, ReadsRedFromTheLowByte) {
    EXPECT_EQ(ColorOf(0x0000FF), QColor(255, 0, 0));
    EXPECT_EQ(ColorOf(0x00FF00), QColor(0, 255, 0));
    EXPECT_EQ(ColorOf(0x123456), QColor(0x56, 0x34, 0x12));
}

TEST(FontOfCellHeight, FillsTheCellAndNoMore) {
    for (const int height : {10, 14, 15, 16, 40}) {
        for (const FontFace face : {FontFace::Fixed, FontFace::Proportional}) {
            const QFontMetrics metrics(FontOfCellHeight(height, QFont::Normal, face));
            EXPECT_LE(metrics.ascent() + metrics.descent(), height);
            EXPECT_GE(metrics.ascent() + metrics.descent(), height - 2);
        }
    }
}

/// Presses a button of the open box.
void PressIn(const QString& text, bool& onTop) {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) {
        QTimer::singleShot(10, [text, &onTop] { PressIn(text, onTop); });
        return;
    }
    onTop = box->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    for (QAbstractButton* button : box->buttons()) {
        if (button->text().remove('&') == text) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
}

TEST(MessageBoxes, ReturnTheUsersAnswer) {
    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    bool onTop = true;
    QTimer::singleShot(0, [&] { PressIn("No", onTop); });
    EXPECT_EQ(mainThread.Show({"Save?", false, BoxButtons::YesNoCancel}), Answer::No);
    EXPECT_FALSE(onTop);
    QTimer::singleShot(0, [&] { PressIn("OK", onTop); });
    EXPECT_EQ(mainThread.Show({"Failed", true, BoxButtons::Ok}), Answer::Ok);
    EXPECT_TRUE(onTop);
}

TEST(MessageBoxes, HaveTheUsualPointerWhileTheProgramIsBusy) {
    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    {
        const WaitCursor busy;
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        auto shown = Qt::BlankCursor;
        bool onTop = false;
        QTimer::singleShot(0, [&] {
            shown = QGuiApplication::overrideCursor()->shape();
            PressIn("OK", onTop);
        });
        mainThread.Show({"Failed", true, BoxButtons::Ok});
        EXPECT_EQ(shown, Qt::ArrowCursor);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST(MessageBoxes, OfAnotherThreadAreShownByTheEventLoopAndHoldTimers) {
    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    int ticksInBox = 0;
    int ticks = 0;
    WindowTimer timer(nullptr, mainThread, [&] {
        ++ticks;
        ticksInBox += mainThread.BoxOpen() ? 1 : 0;
    });
    timer.start(1);
    std::atomic<bool> answered = false;
    std::thread other([&] {
        EXPECT_EQ(mainThread.Show({"From afar", true, BoxButtons::Ok}), Answer::Ok);
        answered = true;
    });
    bool onTop = false;
    QTimer::singleShot(60, [&] { PressIn("OK", onTop); });
    while (!answered) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    other.join();
    EXPECT_EQ(ticksInBox, 0);
    QTest::qWait(20);
    EXPECT_GT(ticks, 0);
}

} // namespace
} // namespace busquill::test
