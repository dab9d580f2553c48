#include "support/program_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QComboBox>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Save As of a capture in the formats of other programs.
class ExportOfACapture : public ProgramFixture {
protected:
    ExportOfACapture() {
        StartDemo();
        program->App().OpenDocumentFile(dir.File("Trigger2.tra"));
    }
    CChildFrame& Active() { return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow()); }
    CTesselDoc& Trace() { return Active().TraceView().Trace(); }
    void SaveAs(
        const std::string& name,
        const std::function<void(CSaveTraceDialog&)>& act = [](CSaveTraceDialog&) {}) {
        SaveTraceUnder(
            dir.File(name), [&] { Choose("File/Save As..."); }, act);
    }
    static void ShortRange(CSaveTraceDialog& dialog) { SetSaveRange(dialog, "10", "60"); }
    [[nodiscard]] std::string Text(const std::string& name) const {
        return ReadWholeFile(dir.File(name));
    }
};

TEST_F(ExportOfACapture, WritesTheRangeAndIsNotTheDocumentsNewName) {
    const QString title = Active().windowTitle();
    SaveAs("out.csv", ShortRange);
    EXPECT_EQ(std::ranges::count(Text("out.csv"), '\n'), 1 + 51);
    EXPECT_EQ(Trace().GetPathName(), dir.File("Trigger2.tra"));
    EXPECT_EQ(Active().windowTitle(), title);
    EXPECT_NE(FindEntry(*Frame().menuBar(), "File/1 Trigger2.tra"), nullptr);
    EXPECT_EQ(FindEntry(*Frame().menuBar(), "File/1 out.csv"), nullptr);
    EXPECT_EQ(FindEntry(*Frame().menuBar(), "File/2 out.csv"), nullptr);
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(ExportOfACapture, HasTheSignalsOfTheActiveWindow) {
    ASSERT_TRUE(Active().TraceView().IsState());
    for (const auto& signal : Trace().stateList.All()) {
        signal->hidden = signal->RowName() != "COMMAND";
    }
    SaveAs("listing.csv", ShortRange);
    EXPECT_EQ(Text("listing.csv").substr(0, Text("listing.csv").find('\n')),
              "SAMPLE,Time [ns],COMMAND");
    Active().SwitchDisplay(false);
    SaveAs("waves.csv", ShortRange);
    EXPECT_THAT(Text("waves.csv").substr(0, Text("waves.csv").find('\n')), HasSubstr("FRAME"));
}

TEST_F(ExportOfACapture, WritesADumpWithItsViewersFileAndASession) {
    SaveAs("out.vcd", ShortRange);
    EXPECT_THAT(Text("out.vcd"), HasSubstr("$enddefinitions $end"));
    EXPECT_THAT(Text("out.gtkw"), HasSubstr(dir.File("out.vcd")));
    SaveAs("out.sr", ShortRange);
    EXPECT_EQ(Text("out.sr").substr(0, 2), "PK");
}

TEST_F(ExportOfACapture, AsksBeforeAnotherViewersFileIsReplaced) {
    dir.Write("out.gtkw", "by hand");
    prompts.AnswerNext(Answer::No);
    SaveAs("out.vcd", ShortRange);
    EXPECT_EQ(Text("out.gtkw"), "by hand");
    EXPECT_THAT(prompts.Texts(), ElementsAre("The file " + dir.File("out.gtkw") +
                                             " for the viewer already exists. Overwrite?"));
    EXPECT_TRUE(std::filesystem::exists(dir.File("out.vcd")));
}

TEST_F(ExportOfACapture, ATypeThatIsChosenGivesTheNameItsExtension) {
    bool isChosen = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* files = qobject_cast<QFileDialog*>(modal); files != nullptr && !isChosen) {
            isChosen = true;
            EXPECT_EQ(files->nameFilters(),
                      (QStringList{"Trace Data (*.tra)", "Value Change Dump (*.vcd)",
                                   "Comma Separated Values (*.csv)", "Session File (*.sr)"}));
            auto* types = files->findChild<QComboBox*>("fileTypeCombo");
            auto* name = files->findChild<QLineEdit*>("fileNameEdit");
            EXPECT_EQ(name->text(), "Trigger2.tra");
            types->setCurrentIndex(2);
            emit types->activated(2);
            EXPECT_EQ(name->text(), "Trigger2.csv");
            for (QAbstractButton* button :
                 files->findChild<QDialogButtonBox*>("buttonBox")->buttons()) {
                if (!button->text().contains("Cancel")) {
                    QTest::mouseClick(button, Qt::LeftButton);
                }
            }
        } else if (auto* dialog = qobject_cast<CSaveTraceDialog*>(modal)) {
            EXPECT_EQ(dialog->windowTitle(), "Save Trace");
            EXPECT_EQ(dialog->findChild<QLineEdit*>("Save File")->text().toStdString(),
                      dir.File("Trigger2.csv"));
            dialog->reject();
        }
    });
    timer.start(5);
    Choose("File/Save As...");
    EXPECT_TRUE(isChosen);
    EXPECT_FALSE(std::filesystem::exists(dir.File("Trigger2.csv")));
}

TEST_F(ExportOfACapture, OfThePowerZoomWindowHasItsSamples) {
    program->App().OpenDocumentFile(dir.File("Trigger1.tra"));
    for (QMdiSubWindow* window : Frame().Area().subWindowList()) {
        if (dynamic_cast<CChildFrame&>(*window).TraceView().IsZoom()) {
            Frame().Area().setActiveSubWindow(window);
        }
    }
    ASSERT_TRUE(Active().TraceView().IsZoom());
    SaveAs("zoom.csv", [](CSaveTraceDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("Start")->text(), "-255");
        EXPECT_EQ(dialog.findChild<QLineEdit*>("End")->text(), "255");
    });
    const std::string text = Text("zoom.csv");
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 511);
    EXPECT_THAT(text, HasSubstr("\n-255,"));
    EXPECT_THAT(text, HasSubstr("\n255,"));
}

TEST_F(ExportOfACapture, ThatIsCancelledMeanwhileLeavesNothing) {
    SaveAs("out.csv", [](CSaveTraceDialog& dialog) {
        QTimer::singleShot(0, &dialog, [&dialog] { Press(dialog, "Cancel"); }); // after OK
    });
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("out")));
    }
    EXPECT_THAT(prompts.Texts(), ElementsAre());
}

TEST_F(ExportOfACapture, AFolderThatIsGoneIsReportedAndNothingIsLeft) {
    std::filesystem::create_directory(dir.File("gone"));
    int tries = 0;
    QTimer closing;
    SaveTraceUnder(
        dir.File("gone/out.csv"), [&] { Choose("File/Save As..."); },
        [&](CSaveTraceDialog& dialog) {
            ++tries;
            std::filesystem::remove_all(dir.File("gone"));
            QObject::connect(&closing, &QTimer::timeout, &dialog, [&] {
                if (!prompts.Texts().empty()) {
                    dialog.reject();
                }
            });
            closing.start(5);
        });
    EXPECT_EQ(tries, 1);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error creating file " + dir.File("gone/out.csv") + "."));
}

} // namespace
} // namespace busquill::test
