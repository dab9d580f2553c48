// The files of anomaly detection and the backplane test, in the program's windows.

#include "ui/testsuites/check_suite_windows.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckSuiteFiles : public CheckSuiteWindows {
protected:
    /// From the menu; the window that is active then.
    void OpenFile(const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Choose("File/Open..."); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
        window = dynamic_cast<CMDIChildWnd*>(Frame().Area().activeSubWindow());
    }
};

TEST_F(CheckSuiteFiles, ABackplaneFileBringsTicksAndResults) {
    StartDemo();
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);
    Backplane().Results() = {"AD[5]", "    Ok"};
    UseFile("Save", dir.File("run.bpt"));
    const std::string text = ReadWholeFile(dir.File("run.bpt"));
    EXPECT_EQ(text, "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                    "\"Test\",\"AD[5]\"\r\n\r\n\"Results\"\r\n\"AD[5]\"\r\n\"    Ok\"\r\n");
    UseFile("Save", dir.File("bare"));
    EXPECT_EQ(ReadWholeFile(dir.File("bare.adt")), text);
    Press(View(), "Set All");
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return List().count() > 5; }));
    UseFile("Load", dir.File("run.bpt"));
    EXPECT_EQ(Picture(), RunPicture::Stopped) << "the results are those of the file";
    EXPECT_EQ(Ticked(), 1);
    EXPECT_TRUE(Tree().IsChecked(6));
    EXPECT_THAT(Lines(), ElementsAre("AD[5]", "    Ok"));
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    dir.Write("bad.bpt", "\"FileType\",\"x\"\r\n");
    UseFile("Load", dir.File("bad.bpt"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid backplane file type of 'x'."));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(CheckSuiteFiles, AnAnomalyFileIsCheckedAndChangesNothing) {
    StartOnLine();
    OpenQuietAnomaly();
    Press(View(), "Clear All");
    UseFile("Save", dir.File("run"));
    EXPECT_EQ(ReadWholeFile(dir.File("run.adt")),
              "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n");
    ClickBox(2);
    TakeWrites();
    UseFile("Load", dir.File("run.adt"));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    dir.Write("other.adt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n");
    UseFile("Load", dir.File("other.adt"));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Invalid anomaly file type of 'Backplane Test File'."));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(TakeWrites(), IsEmpty());
}

TEST_F(CheckSuiteFiles, FilesAreOpenedFromTheMenu) {
    StartDemo();
    OpenFile(dir.Write("run.bpt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                                  "\"Test\",\"AD[5]\"\r\n\"Results\"\r\n\"AD[5]\"\r\n"));
    ASSERT_NE(dynamic_cast<CBackplaneTestChild*>(window), nullptr);
    EXPECT_EQ(Ticked(), 1);
    EXPECT_THAT(Lines(), ElementsAre("AD[5]"));
    OpenFile(dir.Write("run.adt", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"));
    ASSERT_NE(dynamic_cast<CAnomalyDetectionChild*>(window), nullptr);
    EXPECT_EQ(Ticked(), 124);
}

TEST_F(CheckSuiteFiles, TheDialogsNameTheirFiles) {
    StartDemo();
    const auto expectDialog = [&](const char* button, const QString& title, const QString& filter) {
        AnswerDialog<QFileDialog>([&] { Press(View(), button); },
                                  [&](QFileDialog& files) {
                                      EXPECT_EQ(files.windowTitle(), title);
                                      EXPECT_EQ(files.nameFilters(), QStringList(filter));
                                  });
    };
    OpenAnomaly();
    expectDialog("Load", "Load Anomaly Detection", "Anomaly Detection(*.adt)");
    expectDialog("Save", "Save Anomaly Detection", "Anomaly Detection(*.adt)");
    OpenBackplane();
    expectDialog("Load", "Load Backplane Test", "Backplane Test(*.bpt)");
    expectDialog("Save", "Save Backplane Test", "Backplane Test(*.bpt)");
}

TEST_F(CheckSuiteFiles, ACancelledDialogDoesNothing) {
    StartOnLine();
    OpenBackplane();
    line->Do([this] { board.contents[1551] = {0x80}; });
    Bar("Go");
    ClickBox(97);
    List().clearSelection();
    List().setCurrentRow(-1);
    for (const char* button : {"Load", "Save"}) {
        AnswerDialog<QFileDialog>([&] { Press(View(), button); }, [](QFileDialog&) {});
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_THAT(Lines(), ElementsAre("AD[0]"));
    EXPECT_EQ(List().currentRow(), -1);
    EXPECT_EQ(Ticked(), 97);
}

TEST_F(CheckSuiteFiles, ARefusedBackplaneFileLeavesTheRunOn) {
    StartOnLine();
    OpenBackplane();
    Press(View(), "Clear All");
    ClickBox(6);
    line->Do([this] { board.contents[1551] = {0x80}; });
    Bar("Go");
    dir.Write("bad.bpt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"2.0\"\r\n");
    UseFile("Load", dir.File("bad.bpt"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid backplane file version of '2.0'."));
    EXPECT_EQ(Picture(), RunPicture::Running);
    EXPECT_THAT(Lines(), IsEmpty()) << "the results are gone";
    line->Do([this] { board.contents[1551] = {0}; });
    ASSERT_TRUE(RunUntil([&] { return Picture() == RunPicture::Stopped; }));
    EXPECT_THAT(Lines(), ElementsAre("    Cannot drive signal"));
    EXPECT_EQ(Backplane().Results(), Lines());
}

TEST_F(CheckSuiteFiles, ASecondBackplaneFileReplacesTheFirst) {
    StartDemo();
    OpenBackplane();
    const std::string head = "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n";
    dir.Write("one.bpt", head + "\"Test\",\"AD[5]\"\r\n\"Results\"\r\n\"AD[5]\"\r\n\"    Ok\"\r\n");
    dir.Write("two.bpt", head + "\"Test\",\"RST\"\r\n\"Results\"\r\n\"RST\"\r\n");
    dir.Write("none.bpt", head);
    UseFile("Load", dir.File("one.bpt"));
    EXPECT_TRUE(Tree().IsChecked(6));
    UseFile("Load", dir.File("two.bpt"));
    EXPECT_EQ(Ticked(), 1);
    EXPECT_TRUE(Tree().IsChecked(97));
    EXPECT_THAT(Lines(), ElementsAre("RST"));
    UseFile("Load", dir.File("none.bpt"));
    EXPECT_EQ(Ticked(), 0);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(CheckSuiteFiles, AnAnomalyFileLeavesTheRunAndItsListAlone) {
    StartOnLine();
    OpenQuietAnomaly();
    line->Do([this] { board.contents[1548] = {25}; });
    Bar("Go");
    ASSERT_TRUE(RunUntil([&] { return List().count() > 0; }));
    dir.Write("good.adt", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n");
    dir.Write("bad.adt", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"9\"\r\n");
    TakeWrites();
    for (const char* file : {"good.adt", "bad.adt"}) {
        const int listed = List().count();
        UseFile("Load", dir.File(file));
        EXPECT_GE(List().count(), listed);
        EXPECT_EQ(Picture(), RunPicture::Running);
    }
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid anomaly file version of '9'."));
    EXPECT_THAT(TakeWrites(), IsEmpty());
    const int listed = List().count();
    ASSERT_TRUE(RunUntil([&] { return List().count() > listed; })) << "it goes on";
}

TEST_F(CheckSuiteFiles, AFileFromTheMenuIsSavedWhereItWas) {
    StartDemo();
    const std::string head = "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n";
    const std::string path =
        dir.Write("run.bpt", head + "\"Test\",\"AD[5]\"\r\n\"Test\",\"AD[6]\"\r\n");
    OpenFile(path);
    ClickBox(6);
    Choose("File/Save");
    EXPECT_EQ(ReadWholeFile(path), head + "\"Test\",\"AD[6]\"\r\n");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuiteFiles, ARefusedFileFromTheMenuOpensNoWindow) {
    StartDemo();
    OpenFile(dir.Write("wrong.adt", "\"FileType\",\"Backplane Test File\"\r\n"));
    OpenFile(dir.Write("wrong.bpt", "\"FileType\",\"Compliance File\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid anomaly file type of 'Backplane Test File'.",
                                             "Invalid backplane file type of 'Compliance File'."));
    EXPECT_THAT(Windows(), IsEmpty());
}

} // namespace
} // namespace busquill::test
