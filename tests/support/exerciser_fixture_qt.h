#pragma once

#include "support/board_line_fixture_qt.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/view.h"
#include "ui/link/bus_config_dialog.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/patterns/value_dialog.h"

#include <QComboBox>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolButton>

namespace busquill::test {

/// A window of an exerciser, in a program on a scripted board or without one.
class ExerciserWindow : public BoardLineFixture {
protected:
    explicit ExerciserWindow(QString menuPath) : menuPath_(std::move(menuPath)) {}

    /// Starts the program without a board, as if one of that bus mode were connected.
    void StartOnBus(int busMode) {
        settings.WriteProfileInt("Setup", "SaveBusConfig", 1);
        settings.WriteProfileInt("Setup", "BusMode", busMode);
        StartDemo();
        Open();
    }
    /// Starts it on the scripted board.
    void StartOnBoard(const std::string& model = "PCIKite") {
        board.contents[0] = Bytes(model.begin(), model.end());
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
        StartOnLine();
        Open();
        line->Do([this] { board.functions.clear(); });
    }
    /// Changes the mode of the bus while the window is open.
    void ChangeBus(const QString& mode) {
        ChooseDialog<CBusConfigDialog>("Utilities/Bus Configuration", [&](CBusConfigDialog& bus) {
            bus.findChildren<QComboBox*>().front()->setCurrentText(mode);
            Press(bus, "OK");
        });
    }
    void Open() {
        Choose(menuPath_);
        frame = dynamic_cast<CGoStopChild*>(Frame().Area().activeSubWindow());
        ASSERT_NE(frame, nullptr);
    }
    QWidget& View() { return *frame->GetActiveView(); }
    template <class Control>
    Control& Find(const char* name) {
        auto* control = View().findChild<Control*>(name);
        if (control == nullptr) {
            throw std::runtime_error(std::string("no control ") + name);
        }
        return *control;
    }
    QComboBox& List(const char* name) { return Find<QComboBox>(name); }
    QLineEdit& Field(const char* name) { return Find<QLineEdit>(name); }
    QStringList Items(const char* name) {
        QStringList items;
        for (int i = 0; i < List(name).count(); ++i) {
            items << List(name).itemText(i);
        }
        return items;
    }
    CMemoryListBox& Dump() { return *View().findChild<CMemoryListBox*>(); }
    /// Changes a value through its dialog, as the user does.
    void Type(const char* field, const QString& digits) {
        AnswerDialog<CValueDlg>([&] { QTest::mouseClick(&Field(field), Qt::LeftButton); },
                                [&](CValueDlg& dialog) {
                                    auto* bits = dialog.findChild<CBitEditWnd*>();
                                    QTest::keyClicks(bits, digits);
                                    Press(dialog, "OK");
                                });
    }
    void Go() { QTest::mouseClick(frame->findChild<QToolButton*>("Go"), Qt::LeftButton); }
    void Stop() { QTest::mouseClick(frame->findChild<QToolButton*>("Stop"), Qt::LeftButton); }
    bool Ends() {
        return RunUntil([&] { return frame->RunState() == RunPicture::Stopped; });
    }
    std::vector<WireBoard::Write> Writes() {
        std::vector<WireBoard::Write> writes;
        line->Do([&] { writes = board.writes; });
        return writes;
    }
    /// The data of the writes to a register.
    std::vector<Bytes> WritesTo(std::uint32_t address) {
        std::vector<Bytes> found;
        for (const WireBoard::Write& each : Writes()) {
            if (each.address == address) {
                found.push_back(each.bytes);
            }
        }
        return found;
    }
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = board.functions; });
        return functions;
    }

    /// The title of the page that the button Help opens.
    std::string HelpPage() {
        Press(View(), "Help");
        for (QWidget* each : QApplication::topLevelWidgets()) {
            auto* browser = each->findChild<QTextBrowser*>();
            if (each->isVisible() && browser != nullptr) {
                return browser->document()->begin().text().toStdString();
            }
        }
        return "";
    }

    CGoStopChild* frame = nullptr;

private:
    const QString menuPath_;
};

} // namespace busquill::test
