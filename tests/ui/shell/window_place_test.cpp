#include "support/program_fixture_qt.h"
#include "ui/shell/help_window.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

class WindowPlaces : public ProgramFixture {
protected:
    WindowPlaces() { StartDemo(); }

    /// Ends the program as the user does, and starts it again.
    void StartAgain() {
        Frame().close();
        program.reset();
        StartDemo();
    }
    HelpWindow& Help() {
        Choose("Help/Contents");
        QApplication::processEvents();
        return *Frame().findChild<HelpWindow*>();
    }
};

TEST_F(WindowPlaces, TheMainWindowIsAsLargeAsUsualTheFirstTime) {
    const QRect screen = Frame().screen()->availableGeometry();
    EXPECT_EQ(Frame().size(), QSize(900, 600).boundedTo(screen.size()));
}

TEST_F(WindowPlaces, TheMainWindowOpensWhereItWasLeft) {
    const QRect place(40, 50, 700, 420);
    Frame().setGeometry(place);
    StartAgain();
    EXPECT_EQ(Frame().geometry(), place);
}

TEST_F(WindowPlaces, TheHelpOpensWhereItWasLeft) {
    const QRect place(60, 70, 500, 450);
    Help().setGeometry(place);
    Help().close();
    StartAgain();
    EXPECT_EQ(Help().geometry(), place);
}

TEST_F(WindowPlaces, APlaceThatCannotBeReadIsIgnored) {
    const QRect usual = Frame().geometry();
    program.reset();
    settings.WriteProfileString("Windows", "Main", "rubbish");
    StartDemo();
    EXPECT_EQ(Frame().geometry(), usual);
}

} // namespace
} // namespace busquill::test
