#include "support/program_fixture_qt.h"

#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DroppedFiles : public ProgramFixture {
protected:
    DroppedFiles() { StartDemo(); }

    void Take(const std::vector<std::string>& files) {
        QList<QUrl> urls;
        for (const std::string& file : files) {
            urls << QUrl::fromLocalFile(QString::fromStdString(file));
        }
        data.setUrls(urls);
    }
    /// Drags over the middle of the main window; returns whether it can be dropped there.
    bool Drag() {
        QDragEnterEvent enter(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(Frame().Area().viewport(), &enter);
        return enter.isAccepted();
    }
    Qt::DropAction Drop() {
        QDropEvent drop(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                        Qt::NoModifier);
        QApplication::sendEvent(Frame().Area().viewport(), &drop);
        return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
    }

    static constexpr QPoint middle{100, 100};
    QMimeData data;
};

TEST_F(DroppedFiles, AreOpenedWhenTheDragHasEnded) {
    Take({dir.File("Trigger1.tra"), dir.File("Trigger2.tra")});
    ASSERT_TRUE(Drag());
    EXPECT_EQ(Drop(), Qt::CopyAction) << "the files stay where they are";
    EXPECT_THAT(Windows(), IsEmpty()) << "the other program waits";
    QApplication::processEvents();
    EXPECT_THAT(program->App().RecentFiles(),
                ElementsAre(QString::fromStdString(dir.File("Trigger2.tra")),
                            QString::fromStdString(dir.File("Trigger1.tra"))));
    EXPECT_TRUE(Entry("File/Close").isEnabled());
}

TEST_F(DroppedFiles, OneThatIsNoneOfTheProgramsIsReportedAndTheOthersOpen) {
    const std::string text = dir.Write("notes.txt", "notes");
    Take({text, dir.File("Trigger1.tra")});
    ASSERT_TRUE(Drag());
    Drop();
    QApplication::processEvents();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(text + "\nThe program cannot open files of this kind."));
    EXPECT_THAT(program->App().RecentFiles(),
                ElementsAre(QString::fromStdString(dir.File("Trigger1.tra"))));
}

TEST_F(DroppedFiles, WhatIsNoFileCannotBeDropped) {
    data.setText("text");
    EXPECT_FALSE(Drag());
    data.setUrls({QUrl("https://example.org/Trigger1.tra")});
    EXPECT_FALSE(Drag());
}

TEST_F(DroppedFiles, NothingCanBeDroppedWhileADialogIsOpen) {
    Take({dir.File("Trigger1.tra")});
    bool isTaken = true;
    ChooseDialog<QMessageBox>("Help/About Busquill!", [&](QMessageBox&) { isTaken = Drag(); });
    EXPECT_FALSE(isTaken);
    EXPECT_TRUE(Drag());
}

} // namespace
} // namespace busquill::test
