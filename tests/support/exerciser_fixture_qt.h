#pragma once

#include "support/board_line_fixture_qt.h"
#include "support/recording_paint_device_qt.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/view.h"
#include "ui/link/bus_config_dialog.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/patterns/value_dialog.h"

#include <QComboBox>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolButton>

namespace busquill::test {

/// A window of an exerciser, in a program on a scripted board or without one.
class ExerciserWindow : public BoardLineFixture {
protected:
    using Text = Recording::Text;
    struct FormFile {
        std::string type; // in its first line
        std::string name;
    };

    ExerciserWindow(QString menuPath, FormFile file)
        : menuPath_(std::move(menuPath)), file_(std::move(file)) {}

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
    /// Loads a file with these lines after its head.
    void LoadForm(const std::string& lines) {
        const std::string path = dir.Write(file_.name, "\"FileType\",\"" + file_.type +
                                                           "\"\r\n\"Version\",\"1.0\"\r\n" + lines);
        AnswerDialog<QFileDialog>([&] { Press(View(), "Load"); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    /// Gives the view that width, and the window that height.
    void SetViewSize(QSize size) {
        frame->setMinimumSize(0, 0);
        frame->resize(frame->width() + size.width() - View().width(), size.height());
        QApplication::processEvents();
    }
    /// What a window draws itself, without those in it.
    static Recording Drawn(QWidget& window) {
        auto* style = QStyleFactory::create("Windows"); // draws frames as lines
        style->setParent(&window);
        window.setStyle(style);
        RecordingPaintDevice device(window.size());
        window.render(&device, {}, {}, {});
        return device.Recorded();
    }
    /// The titles of groups and the labels, sorted.
    QStringList DrawnTexts() {
        QStringList texts;
        for (const Text& each : Drawn(View()).texts) {
            texts << each.text;
        }
        return Sorted(texts);
    }
    static QStringList Sorted(QStringList texts) {
        texts.sort();
        return texts;
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
    const FormFile file_;
};

} // namespace busquill::test
