#include "support/program_fixture_qt.h"
#include "ui/shell/desktop_start.h"
#include "ui/shell/open_requests.h"

#include <QFile>
#include <QMessageBox>

#include <cstdlib>

namespace busquill::test {
namespace {

class TheRunningProgram : public ProgramFixture {
protected:
    TheRunningProgram() {
        ::setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1);
        StartDemo();
        requests.Listen();
    }
    ~TheRunningProgram() override { ::unsetenv("XDG_RUNTIME_DIR"); }

    void ExpectOneWindow() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return Windows().size() == 1; }, 10000));
    }
    /// After the program has had time to open files.
    void ExpectNoWindow() {
        QTest::qWait(300);
        EXPECT_TRUE(Windows().empty());
    }

    const TempDir runtime;
    OpenRequests requests{mainThread, [this](const std::string& file) { program->OpenFile(file); }};
};

TEST_F(TheRunningProgram, OpensAFileThatAnotherStartHandsOver) {
    requests.Serve({});
    ASSERT_TRUE(HandOver({dir.File("Trigger2.tra")}));
    ExpectOneWindow();
    ASSERT_FALSE(Windows().empty());
    EXPECT_TRUE(Windows().first()->windowTitle().startsWith("Trace - Trigger2"));
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(TheRunningProgram, OpensFilesThatCameWhileItWasStarting) {
    ASSERT_TRUE(HandOver({dir.File("Trigger2.tra")}));
    ExpectNoWindow();
    requests.Serve({});
    ExpectOneWindow();
}

TEST_F(TheRunningProgram, OpensItsOwnFilesAtTheStart) {
    requests.Serve({dir.File("Trigger2.tra")});
    ExpectOneWindow();
}

TEST_F(TheRunningProgram, OpensNothingUntilADialogIsClosed) {
    requests.Serve({});
    AnswerDialog<QMessageBox>([&] { Choose("Help/About Busquill!"); },
                              [&](QMessageBox& box) {
                                  ASSERT_TRUE(HandOver({dir.File("Trigger2.tra")}));
                                  ExpectNoWindow();
                                  box.accept();
                              });
    ExpectOneWindow();
}

TEST_F(TheRunningProgram, OpensFilesWithNamesOfOtherScripts) {
    requests.Serve({});
    const std::string name = dir.File("Gerät 1 & 日本.tra");
    std::filesystem::copy(dir.File("Trigger2.tra"), name);
    ASSERT_TRUE(HandOver({name}));
    ExpectOneWindow();
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(TheRunningProgram, ReportsAFileThatItCannotOpenAndOpensTheNext) {
    requests.Serve({});
    ASSERT_TRUE(HandOver({dir.File("none.tra"), dir.File("Trigger2.tra")}));
    ExpectOneWindow();
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"Error opening file " + dir.File("none.tra") + "."});
}

TEST_F(TheRunningProgram, StaysTheOneThatGetsFiles) {
    requests.Serve({});
    bool second = false;
    OpenRequests later(mainThread, [&](const std::string&) { second = true; });
    later.Listen();
    later.Serve({});
    ASSERT_TRUE(HandOver({dir.File("Trigger2.tra")}));
    ExpectOneWindow();
    EXPECT_FALSE(second);
}

class WithoutARunningProgram : public testing::Test {
protected:
    WithoutARunningProgram() { ::setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1); }
    ~WithoutARunningProgram() override { ::unsetenv("XDG_RUNTIME_DIR"); }
    const TempDir runtime;
};

TEST_F(WithoutARunningProgram, FilesAreNotHandedOver) {
    EXPECT_FALSE(HandOver({"/a.tra"}));
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_FALSE(HandOver({"/a.tra"}));
}

TEST_F(WithoutARunningProgram, TheSocketOfOneThatCrashedIsReplaced) {
    QLocalServer crashed;
    ASSERT_TRUE(crashed.listen(QString::fromStdString(runtime.File("busquill-open"))));
    const std::string kept = runtime.File("kept");
    std::filesystem::rename(runtime.File("busquill-open"), kept);
    crashed.close();
    std::filesystem::rename(kept, runtime.File("busquill-open"));
    ASSERT_FALSE(HandOver({"/a.tra"}));

    MainThread mainThread;
    std::vector<std::string> opened;
    OpenRequests requests(mainThread, [&](const std::string& file) { opened.push_back(file); });
    requests.Listen();
    requests.Serve({});
    ASSERT_TRUE(HandOver({"/a.tra", "/b.tra"}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened.size() == 2; }, 10000));
    EXPECT_EQ(opened, (std::vector<std::string>{"/a.tra", "/b.tra"}));
}

TEST(ADesktopStart, IsOneWithTheVariable) {
    ::unsetenv("BUSQUILL_OPEN");
    EXPECT_FALSE(TakeDesktopStart());
    ::setenv("BUSQUILL_OPEN", "", 1);
    EXPECT_EQ(TakeDesktopStart(), std::vector<std::string>());
}

TEST(ADesktopStart, HasAFileInEachLine) {
    ::setenv("BUSQUILL_OPEN", "/a b.tra\n/c.per\nd.tra\n", 1);
    EXPECT_EQ(TakeDesktopStart(),
              (std::vector<std::string>{"/a b.tra", "/c.per",
                                        (std::filesystem::current_path() / "d.tra").string()}));
    EXPECT_EQ(std::getenv("BUSQUILL_OPEN"), nullptr) << "programs started by this one inherit it";
}

class EnteringTheUserFolder : public testing::Test {
protected:
    EnteringTheUserFolder() {
        ::setenv("XDG_DATA_HOME", dir.File("share").c_str(), 1);
        ::setenv("XDG_STATE_HOME", dir.File("state").c_str(), 1);
    }
    ~EnteringTheUserFolder() override {
        std::filesystem::current_path(before);
        ::unsetenv("XDG_DATA_HOME");
        ::unsetenv("XDG_STATE_HOME");
    }
    const std::filesystem::path before = std::filesystem::current_path();
    const TempDir dir;
    RecordingPrompts prompts;
};

TEST_F(EnteringTheUserFolder, MakesItCurrent) {
    EnterUserFolder(prompts);
    EXPECT_EQ(std::filesystem::current_path(), std::filesystem::path(dir.File("share/busquill")));
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(EnteringTheUserFolder, ReportsThatItCannotBeCreated) {
    dir.Write("share", "a file in its place");
    EnterUserFolder(prompts);
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"The folder " + dir.File("share/busquill") +
                                       " for your captures and setups could not be filled."});
    EXPECT_EQ(std::filesystem::current_path(), before);
}

} // namespace
} // namespace busquill::test
