// The window that is common to the functions of the board: its bar and its form.

#include "platform/memory_settings.h"
#include "ui/framework/form_view.h"
#include "ui/framework/go_stop_child.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QPushButton>
#include <QToolButton>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class Document final : public CDocument {
public:
    bool OnOpenDocument(const std::string& /*path*/) override { return true; }
    bool OnSaveDocument(const std::string& /*path*/) override { return true; }
};

const Settings& AsItComes() {
    static const MemorySettings settings;
    return settings;
}

/// A form with one field and two buttons.
class Sheet final : public CFormView {
public:
    explicit Sheet(const Settings& settings = AsItComes())
        : CFormView(settings), field(new QLineEdit(this)) {
        AddButton("&Load", Form::SlotLeft(0), [this] { ++loads; });
        AddButton("&Close", Form::SlotLeft(6), [] {});
    }
    QLineEdit* field;
    int loads = 0;
    int laidOut = 0;

protected:
    void LayOut() override {
        ++laidOut;
        AddGroup("Address", Form::GroupPlace(Form::margin, 200, 170, 40, height()));
        AddLabel("Start", *field, Form::FieldPlace(2, 20, 60, height()));
        field->setGeometry(Form::FieldPlace(2, 80, 100, height()));
    }
};

TEST(Form, RowsAndButtonsAreAtTheBottom) {
    EXPECT_EQ(Form::SlotLeft(0), 10);
    EXPECT_EQ(Form::SlotLeft(6), 490);
    const QRect button = Form::ButtonPlace(90, 400);
    EXPECT_EQ(button, QRect(90, 370, 70, 25)); // 5 above the edge
    // Row r extends from 65 + 25r to 45 + 25r above the bottom.
    EXPECT_EQ(Form::FieldPlace(0, 7, 30, 400), QRect(7, 335, 30, 20));
    EXPECT_EQ(Form::FieldPlace(3, 7, 30, 400), QRect(7, 260, 30, 20));
    EXPECT_EQ(Form::GroupPlace(10, 200, 170, 40, 400), QRect(10, 230, 200, 130));
}

TEST(FormView, KeepsItsPartsAtTheBottom) {
    Sheet sheet;
    sheet.resize(600, 400);
    sheet.show();
    QApplication::processEvents();
    const auto buttons = sheet.findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons[0]->geometry(), QRect(10, 370, 70, 25));
    EXPECT_EQ(buttons[1]->geometry(), QRect(490, 370, 70, 25));
    const int laidOut = sheet.laidOut;
    sheet.resize(700, 300);
    QApplication::processEvents();
    EXPECT_EQ(buttons[1]->geometry(), QRect(490, 270, 70, 25));
    EXPECT_EQ(sheet.field->geometry(), QRect(80, 185, 100, 20));
    EXPECT_EQ(sheet.laidOut, laidOut + 1);
    QTest::mouseClick(buttons[0], Qt::LeftButton);
    EXPECT_EQ(sheet.loads, 1);
}

TEST(FormView, DrawsAGroupInItsPlace) {
    Sheet sheet;
    sheet.resize(600, 400);
    sheet.show();
    QApplication::processEvents();
    const QImage picture = sheet.grab().toImage();
    const QRect group = Form::GroupPlace(Form::margin, 200, 170, 40, 400);
    const auto hasInk = [&](const QRect& place) {
        const QColor ground = picture.pixelColor(590, 5);
        for (int x = place.left(); x <= place.right(); ++x) {
            for (int y = place.top(); y <= place.bottom(); ++y) {
                if (picture.pixelColor(x, y) != ground) {
                    return true;
                }
            }
        }
        return false;
    };
    EXPECT_TRUE(hasInk({group.left(), group.top(), 60, 14})); // its title
    EXPECT_FALSE(hasInk({0, 0, 600, group.top()}));
}

TEST(FormView, DrawsALabelWhileItsFieldIsVisible) {
    Sheet sheet;
    sheet.resize(600, 400);
    sheet.show();
    QApplication::processEvents();
    const auto ink = [&] {
        // The picture of the label's place, without the field.
        const QImage image = sheet.grab(QRect(20, 285, 55, 20)).toImage();
        int dark = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                dark += image.pixelColor(x, y).lightness() < 100 ? 1 : 0;
            }
        }
        return dark;
    };
    EXPECT_GT(ink(), 10);
    const int full = ink();
    sheet.field->setEnabled(false);
    EXPECT_LT(ink(), full);
    sheet.field->setEnabled(true);
    sheet.field->hide();
    EXPECT_EQ(ink(), 0);
    delete sheet.field;
    EXPECT_EQ(ink(), 0);
}

TEST(GoStopChild, StartsStopsAndShowsTheRun) {
    Document document; // outlives its views
    QMdiArea area;
    area.resize(800, 600);
    area.show();
    auto* child = new CGoStopChild(document, "Master", "master", {600, 400});
    area.addSubWindow(child);
    auto* sheet = new Sheet;
    sheet->setFocusPolicy(Qt::StrongFocus);
    sheet->AttachDocument(&document);
    child->SetView(sheet);
    child->show();
    area.activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(child->windowTitle(), "Master");
    EXPECT_EQ(child->size(), QSize(600, 400));
    std::string calls;
    child->go = [&] { calls += "go "; };
    child->stop = [&] { calls += "stop "; };
    sheet->field->setFocus();
    QTest::mouseClick(child->findChild<QToolButton*>("Go"), Qt::LeftButton);
    EXPECT_TRUE(sheet->hasFocus());
    QTest::mouseClick(child->findChild<QToolButton*>("Stop"), Qt::LeftButton);
    EXPECT_EQ(calls, "go stop ");

    auto& status = *child->findChild<QLabel*>("Run State");
    const QImage stopped = status.pixmap().toImage();
    child->SetRunState(RunPicture::Running);
    EXPECT_EQ(child->RunState(), RunPicture::Running);
    const QImage running = status.pixmap().toImage();
    EXPECT_NE(running, stopped);
    child->SetRunState(RunPicture::Loaded);
    EXPECT_NE(status.pixmap().toImage(), running);
    EXPECT_NE(status.pixmap().toImage(), stopped);
    child->SetRunState(RunPicture::Stopped);
    EXPECT_EQ(status.pixmap().toImage(), stopped);
    // The parts of the bar keep their distance from the right edge.
    auto& stop = *child->findChild<QToolButton*>("Stop");
    const int gap = stop.parentWidget()->width() - stop.geometry().right();
    child->resize(700, 400);
    QApplication::processEvents();
    EXPECT_EQ(stop.parentWidget()->width() - stop.geometry().right(), gap);
}

} // namespace
} // namespace busquill::test
