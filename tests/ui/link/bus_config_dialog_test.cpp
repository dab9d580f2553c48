#include "support/program_fixture_qt.h"
#include "ui/link/bus_config_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

class BusConfiguration : public ProgramFixture {
protected:
    struct Controls {
        explicit Controls(QDialog& dialog)
            : boxes(dialog.findChildren<QComboBox*>()), frequency(dialog.findChild<QLineEdit*>()),
              save(dialog.findChild<QCheckBox*>()) {
            for (auto* button : dialog.findChildren<QPushButton*>()) {
                (button->text().contains("OK") ? ok : cancel) = button;
            }
        }
        QStringList Modes() const {
            QStringList modes;
            for (int i = 0; i < boxes[0]->count(); ++i) {
                modes << boxes[0]->itemText(i);
            }
            return modes;
        }
        QList<QComboBox*> boxes; // mode, width, voltage
        QLineEdit* frequency;
        QCheckBox* save;
        QPushButton* ok = nullptr;
        QPushButton* cancel = nullptr;
    };
    void Open(std::function<void(Controls&)> act) {
        ChooseDialog<CBusConfigDialog>("Utilities/Bus Configuration",
                                       [&](CBusConfigDialog& dialog) {
                                           EXPECT_EQ(dialog.windowTitle(), "Bus Configuration");
                                           Controls controls(dialog);
                                           act(controls);
                                       });
    }
};

TEST_F(BusConfiguration, OffersAllModesInDemoMode) {
    StartDemo();
    Open([](Controls& controls) {
        EXPECT_EQ(controls.Modes(),
                  (QStringList{"PCI", "PCI-X", "VME", "2eVME", "2eSST", "VMEP2", "VMEP0", "VSB"}));
        EXPECT_FALSE(controls.save->isChecked());
    });
}

TEST_F(BusConfiguration, OkChangesFamilyTablesAndStatusBar) {
    StartDemo();
    Open([](Controls& controls) {
        controls.boxes[0]->setCurrentText("VME");
        controls.boxes[1]->setCurrentIndex(1);
        controls.frequency->selectAll();
        QTest::keyClicks(controls.frequency, "16");
        QTest::mouseClick(controls.ok, Qt::LeftButton);
    });
    EXPECT_TRUE(program->Link().Traits().IsVmeFamily());
    EXPECT_EQ(program->Tables().busSignals.Defs()[1]->name, "AM");
    EXPECT_EQ(Frame().PaneText(2), "VME");
    EXPECT_EQ(Frame().PaneText(3), "16 MHz");
    EXPECT_EQ(settings.GetProfileInt("Setup", "SaveBusConfig", 9), 0);
    EXPECT_FALSE(settings.Has("Setup", "BusMode"));
}

TEST_F(BusConfiguration, CancelChangesNothing) {
    StartDemo();
    Open([](Controls& controls) {
        controls.boxes[0]->setCurrentText("VSB");
        QTest::mouseClick(controls.cancel, Qt::LeftButton);
    });
    EXPECT_FALSE(program->Link().Traits().IsVsbFamily());
    EXPECT_FALSE(settings.Has("Setup", "SaveBusConfig"));
}

TEST_F(BusConfiguration, SavedValuesAreRestoredAndStayWhenTheTickIsRemoved) {
    StartDemo();
    Open([](Controls& controls) {
        controls.boxes[0]->setCurrentText("PCI-X");
        controls.boxes[1]->setCurrentIndex(1);
        controls.boxes[2]->setCurrentIndex(1);
        controls.frequency->setText("133");
        QTest::mouseClick(controls.save, Qt::LeftButton, {}, QPoint(8, 8));
        EXPECT_TRUE(controls.save->isChecked());
        QTest::mouseClick(controls.ok, Qt::LeftButton);
    });
    EXPECT_EQ(settings.GetProfileInt("Setup", "SaveBusConfig", 0), 1);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BusMode", 0), 1);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BusWidth", 0), 1);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BusVoltage", 0), 1);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BusFrequency", 0), 133);
    Open([](Controls& controls) {
        EXPECT_TRUE(controls.save->isChecked());
        EXPECT_EQ(controls.boxes[0]->currentText(), "PCI-X");
        EXPECT_EQ(controls.boxes[1]->currentText(), "64 bit");
        EXPECT_EQ(controls.boxes[2]->currentText(), "3.3V");
        EXPECT_EQ(controls.frequency->text(), "133");
        controls.save->setChecked(false);
        controls.frequency->setText("66");
        QTest::mouseClick(controls.ok, Qt::LeftButton);
    });
    EXPECT_EQ(settings.GetProfileInt("Setup", "SaveBusConfig", 9), 0);
    EXPECT_EQ(settings.GetProfileInt("Setup", "BusFrequency", 0), 133);
}

TEST_F(BusConfiguration, AModeThatIsNotOfferedSelectsTheFirst) {
    settings.WriteProfileInt("Setup", "SaveBusConfig", 1);
    settings.WriteProfileInt("Setup", "BusMode", BusPc104);
    settings.WriteProfileInt("Setup", "BusWidth", 7);
    StartDemo();
    Open([](Controls& controls) {
        EXPECT_EQ(controls.boxes[0]->currentIndex(), 0);
        EXPECT_EQ(controls.boxes[1]->currentIndex(), -1);
    });
}

} // namespace
} // namespace busquill::test
