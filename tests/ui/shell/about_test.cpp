#include "support/program_fixture_qt.h"

#include <QLabel>
#include <QMessageBox>

#include <archive.h>

namespace busquill::test {
namespace {

class TheProgram : public ProgramFixture {
protected:
    TheProgram() { StartDemo(); }
};

TEST_F(TheProgram, TellsItsVersionAndLibraries) {
    ChooseDialog<QMessageBox>("Help/About Busquill!", [](QMessageBox& box) {
        const QString text = box.text();
        EXPECT_TRUE(text.contains("Busquill! " BUSQUILL_VERSION));
        EXPECT_TRUE(text.contains(QString("Qt ") + qVersion()));
        EXPECT_TRUE(text.contains(archive_version_string()));
        EXPECT_TRUE(text.contains(QRegularExpression("libusb 1\\.0\\.[1-9]")));
        EXPECT_TRUE(text.contains("MIT licence"));
        EXPECT_FALSE(box.iconPixmap().isNull());
    });
}

} // namespace
} // namespace busquill::test
