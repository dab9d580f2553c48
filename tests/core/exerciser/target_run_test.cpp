#include "exerciser/target_run.h"
#include "exerciser_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string setupFailed = "Error sending target setup to analyzer.";

class Observer final : public ExerciserObserver {
public:
    void OnRunning(bool running) override { events.emplace_back(running ? "on" : "off"); }
    void OnMemoryChanged() override { ++memoryChanges; }

    std::vector<std::string> events;
    int memoryChanges = 0;
};

class TargetRunTest : public ExerciserFixture {
protected:
    void SetRange(std::uint32_t start, std::uint32_t count) {
        for (std::size_t i = 0; i < 4; ++i) {
            form.addressStart[i] = static_cast<std::uint8_t>(start >> (8 * i));
            form.addressEnd[i] = static_cast<std::uint8_t>((start + count - 1) >> (8 * i));
        }
    }
    void UseFile(const std::string& path) {
        form.dataType = DataIsFile;
        form.dataFilename = path;
    }
    void Finish(int limit = 10000) {
        while (run.IsOn() && limit-- > 0) {
            run.Poll();
        }
        EXPECT_FALSE(run.IsOn());
    }
    [[nodiscard]] Bytes Memory() const {
        const auto bytes = run.Memory()->Bytes();
        return {bytes.begin(), bytes.end()};
    }

    TargetForm form;
    Observer observer;
    TargetRun run{{*link, prompts, std::make_unique<ManualTimer>(timer)}, form, observer};
};

TEST_F(TargetRunTest, WritesTheValueOverAndOver) {
    SetRange(0x1000, 20);
    form.command = TargetWrite;
    form.dataValue = {1, 2, 3, 4, 5, 6, 7, 8};
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503", "write target 4096"));
    EXPECT_THAT(WrittenTo(1490), ElementsAre(Bytes{0, 0, 0, 0, 0, 0, 0, 0, 24, 0, 2, 2}));
    EXPECT_THAT(WrittenTo(1503), ElementsAre(Bytes{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0}));
    EXPECT_THAT(WrittenTo(0x1000),
                ElementsAre(Bytes{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4}));
    EXPECT_THAT(observer.events, ElementsAre("on"));
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 50ms);
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
    EXPECT_FALSE(timer->runs);
    EXPECT_EQ(run.Memory(), nullptr);
}

TEST_F(TargetRunTest, ARangeOf249BytesTakesTwoSteps) {
    SetRange(0x10, 249);
    form.command = TargetWrite;
    form.dataValue = {1, 2, 3, 4, 5, 6, 7, 8};
    run.Go();
    ASSERT_THAT(WrittenTo(0x10), SizeIs(1));
    EXPECT_THAT(WrittenTo(0x10)[0], SizeIs(248));
    EXPECT_EQ(WrittenTo(0x10)[0].back(), 8);
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("write 1503", "write target 264"));
    EXPECT_THAT(WrittenTo(0x108), ElementsAre(Bytes{1}));
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_FALSE(run.IsOn());
}

TEST_F(TargetRunTest, NoneWritesToo) {
    form.command = TargetNone;
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503", "write target 0"));
    EXPECT_EQ(WrittenTo(1490)[0][11], 0);
}

TEST_F(TargetRunTest, ReadsIntoMemory) {
    form.addressStart = {0x00, 0x10, 0, 0, 9};
    form.addressEnd = {0xFF, 0x10, 0, 0, 9};
    Put(0x1000, Pattern(0, 248, 248));
    Put(0x10F8, Pattern(248, 8, 8));
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503"));
    EXPECT_EQ(run.Memory()->BaseAddress(), 0x1000U) << "the low half";
    EXPECT_EQ(Memory(), Bytes{});
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read target 4096", "write 1503"));
    EXPECT_EQ(Memory(), Pattern(0, 248, 248));
    timer->tick();
    EXPECT_EQ(Memory(), Pattern(0, 256, 256));
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
    EXPECT_EQ(observer.memoryChanges, 3);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetRunTest, AnEndBelowTheStartIsFoundAfterTheSetup) {
    form.addressStart = {2};
    form.addressEnd = {1};
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("End Address must be >= Start Address."));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_FALSE(timer->runs);
}

TEST_F(TargetRunTest, WritesAFileAndPadsItWithConsent) {
    SetRange(0, 500);
    form.command = TargetWrite;
    UseFile(dir.Write("a.dat", PatternText(300)));
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: File length of 300 is less than address length of 500. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_EQ(WrittenTo(1503)[0][10], 1);
    Finish();
    EXPECT_THAT(WrittenTo(0), ElementsAre(Pattern(0, 248, 248)));
    EXPECT_THAT(WrittenTo(248), ElementsAre(Pattern(248, 52, 248)));
    EXPECT_THAT(WrittenTo(496), ElementsAre(Bytes(4, 0)));
}

TEST_F(TargetRunTest, AShortFileIsNotWrittenWithoutConsent) {
    SetRange(0, 500);
    form.command = TargetNone;
    UseFile(dir.Write("a.dat", "12"));
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490"));
    EXPECT_THAT(observer.events, IsEmpty());
}

TEST_F(TargetRunTest, ReadsToAFileLineByLine) {
    SetRange(0, 250);
    Put(0, Bytes(248, 0xC3));
    Put(248, Bytes{0x0D, 0x0E});
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    std::string expected;
    for (int i = 0; i < 248; ++i) {
        expected += "c3 ";
    }
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), expected + "\n0d 0e \n");
}

TEST_F(TargetRunTest, FilesHaveTheirMessages) {
    form.dataType = DataIsFile;
    run.Go();
    form.command = TargetNone;
    run.Go();
    UseFile(dir.File("none.dat"));
    run.Go();
    form.command = TargetRead;
    UseFile(dir.File("none/out.dat"));
    run.Go();
    UseFile(dir.Write("out.dat", "old"));
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("File name must first be specified by pressing the FILE button.",
                            "File name must first be specified by pressing the FILE button.",
                            "Error opening file for target read operation.",
                            "Error creating file for master operation.",
                            "File already exists. Overwrite?"));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(TargetRunTest, BytesBeyondTheLimitAreDropped) {
    // 806 steps of 248 bytes are 199,888; the next does not fit, but the last of 100 bytes does.
    SetRange(0, 807 * 248 + 100);
    run.Go();
    Finish();
    EXPECT_EQ(Memory().size(), 806U * 248 + 100);
    EXPECT_EQ(observer.memoryChanges, 1 + 806 + 1);
}

TEST_F(TargetRunTest, TheSwitchSendsTheSetupDuringARun) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    Forget();
    form.enabled = true;
    EXPECT_TRUE(run.SendSetup());
    EXPECT_THAT(Commands(), ElementsAre("write 1490"));
    EXPECT_EQ(WrittenTo(1490)[0][11], 0x82);
    EXPECT_TRUE(timer->runs);
    Finish();
    EXPECT_THAT(WrittenTo(496), SizeIs(1));
}

TEST_F(TargetRunTest, TheSwitchTakesTheCommandAnew) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    form.command = TargetRead;
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("write 1503", "write target 248")) << "not yet";
    EXPECT_TRUE(run.SendSetup());
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read target 248", "write 1503"));
    EXPECT_EQ(run.Memory(), nullptr) << "what is read has no place";
}

TEST_F(TargetRunTest, AFailedSwitchIsReported) {
    Fail("write 1490");
    EXPECT_FALSE(run.SendSetup());
    EXPECT_THAT(prompts.Texts(), Contains(setupFailed));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
}

TEST_F(TargetRunTest, StopSendsNothing) {
    SetRange(0, 600);
    run.Go();
    Forget();
    run.Stop();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
    EXPECT_FALSE(timer->runs);
    run.Poll();
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(TargetRunTest, AFailedSetupEndsTheGo) {
    Fail("write 1490");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("no write 1490"));
    EXPECT_THAT(prompts.Texts(), Contains(setupFailed));
    EXPECT_THAT(observer.events, IsEmpty());
}

TEST_F(TargetRunTest, AFailedFirstAddressEndsTheGoInTheWordsOfTheSetup) {
    form.command = TargetWrite;
    Fail("write 1503");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "no write 1503"));
    EXPECT_THAT(prompts.Texts(), Contains(setupFailed));
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_FALSE(run.IsOn());
}

TEST_F(TargetRunTest, FailedFirstDataEndTheGo) {
    form.command = TargetWrite;
    Fail("write target 0");
    run.Go();
    EXPECT_THAT(prompts.Texts(), Contains("Error writing target data to analyzer."));
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_FALSE(run.IsOn());
}

TEST_F(TargetRunTest, AFailedLaterAddressEndsTheRun) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    Fail("write 1503");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("no write 1503"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending target address to analyzer."));
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
    EXPECT_FALSE(timer->runs);
}

TEST_F(TargetRunTest, FailedLaterDataAreOnlyReported) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    Fail("write target 248");
    timer->tick();
    EXPECT_THAT(prompts.Texts(), Contains("Error sending target data to analyzer."));
    EXPECT_TRUE(run.IsOn());
    EXPECT_TRUE(timer->runs);
    Finish();
    EXPECT_THAT(WrittenTo(496), SizeIs(1));
}

TEST_F(TargetRunTest, AFailedReadEndsTheRun) {
    SetRange(0, 600);
    run.Go();
    Fail("read target 0");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("no read target 0"));
    EXPECT_THAT(prompts.Texts(), Contains("Error reading target data from analyzer."));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
    EXPECT_FALSE(timer->runs);
}

TEST_F(TargetRunTest, TheLastAddressOfAllEndsTheRun) {
    form.addressStart = {0, 255, 255, 255, 255, 255, 255, 255};
    form.addressEnd = {255, 255, 255, 255, 255, 255, 255, 255};
    form.command = TargetWrite;
    run.Go();
    Finish(2);
    EXPECT_THAT(WrittenTo(0xFFFFF8), ElementsAre(Bytes(8, 0))) << "24 bits on the wire";
}

TEST_F(TargetRunTest, TheWholeRangeOfAddressesIsNoData) {
    form.addressEnd = {255, 255, 255, 255, 255, 255, 255, 255};
    form.command = TargetWrite;
    run.Go();
    Finish(1);
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetRunTest, ARangeThatEndsBelowItsStartIsAlsoLongerThanAFile) {
    form.command = TargetWrite;
    form.addressStart = {5};
    form.addressEnd = {1};
    UseFile(dir.Write("a.dat", "1 2"));
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("End Address must be >= Start Address.",
                            "Warning: File length of 2 is less than address length of -3. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_THAT(Commands(), ElementsAre("write 1490")) << "Yes does not mend the range";
    EXPECT_FALSE(run.IsOn());
}

TEST_F(TargetRunTest, QuestionsArePlainAndHaveYesAndNo) {
    SetRange(0, 4);
    UseFile(dir.Write("a.dat", "12"));
    prompts.AnswerNext(Answer::No);
    run.Go(); // overwrite?
    form.command = TargetWrite;
    prompts.AnswerNext(Answer::No);
    run.Go(); // pad?
    form.dataFilename.clear();
    run.Go();
    UseFile(dir.File("none.dat"));
    run.Go();
    form.command = TargetRead;
    UseFile(dir.File("none/out.dat"));
    run.Go();
    const std::vector<Box> boxes = prompts.Boxes();
    ASSERT_THAT(boxes, SizeIs(5));
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        EXPECT_EQ(boxes[i].buttons, i < 2 ? BoxButtons::YesNo : BoxButtons::Ok) << boxes[i].text;
        EXPECT_FALSE(boxes[i].topmost) << boxes[i].text;
    }
}

TEST_F(TargetRunTest, FailuresOfTheBoardAreAboveAllWindows) {
    SetRange(0, 600);
    form.command = TargetWrite;
    const auto expectTopmost = [this](const std::string& message) {
        const std::vector<Box> boxes = prompts.Boxes();
        const auto box = std::ranges::find(boxes, message, &Box::text);
        ASSERT_NE(box, boxes.end()) << message;
        EXPECT_TRUE(box->topmost) << message;
        EXPECT_EQ(box->buttons, BoxButtons::Ok) << message;
    };
    const std::pair<const char*, std::string> first[] = {
        {"write 1490", setupFailed},
        {"write 1503", setupFailed},
        {"write target 0", "Error writing target data to analyzer."}};
    for (const auto& [command, message] : first) {
        Mend();
        Forget();
        Fail(command);
        run.Go();
        expectTopmost(message);
    }
    const std::pair<const char*, std::string> later[] = {
        {"write target 248", "Error sending target data to analyzer."},
        {"write 1503", "Error sending target address to analyzer."}};
    for (const auto& [command, message] : later) {
        Mend();
        run.Go();
        Forget();
        Fail(command);
        run.Poll();
        expectTopmost(message);
    }
}

TEST_F(TargetRunTest, ASecondGoBeginsAgain) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    run.Poll();
    Forget();
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503", "write target 0"));
    Finish(3);
    EXPECT_THAT(WrittenTo(248), SizeIs(1));
    EXPECT_THAT(WrittenTo(496), SizeIs(1));
}

TEST_F(TargetRunTest, ASecondGoOfAReadBeginsWithEmptyMemory) {
    SetRange(0, 600);
    Put(0, Bytes(248, 1));
    Put(248, Bytes(248, 2));
    run.Go();
    run.Poll();
    EXPECT_THAT(Memory(), SizeIs(248));
    SetRange(248, 2);
    run.Go();
    EXPECT_EQ(Memory(), Bytes{});
    EXPECT_EQ(run.Memory()->BaseAddress(), 248U);
    Finish(1);
    EXPECT_EQ(Memory(), (Bytes{2, 2}));
}

TEST_F(TargetRunTest, ASecondGoSendsTheFileFromItsBeginning) {
    SetRange(0, 600);
    form.command = TargetWrite;
    UseFile(dir.Write("a.dat", PatternText(600)));
    run.Go();
    run.Poll();
    Forget();
    run.Go();
    EXPECT_THAT(WrittenTo(0), ElementsAre(Pattern(0, 248, 248)));
    Finish(3);
    EXPECT_THAT(WrittenTo(496), ElementsAre(Pattern(496, 104, 104)));
}

TEST_F(TargetRunTest, ASecondGoOfAReadBeginsItsFileAgainWithConsent) {
    SetRange(0, 600);
    UseFile(dir.File("out.dat"));
    run.Go();
    run.Poll();
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_TRUE(run.IsOn()) << "the first run goes on";
    Finish(2);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 3);

    run.Go();
    run.Poll();
    run.Go();
    Finish(3);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 3);
    EXPECT_EQ(Memory().size(), 600U);
}

TEST_F(TargetRunTest, ASecondGoWithoutItsFileLeavesTheRun) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    form.dataType = DataIsFile; // no name
    Forget();
    run.Go();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_TRUE(timer->runs);
    Finish(3);
    EXPECT_THAT(WrittenTo(248), SizeIs(1));
    EXPECT_THAT(WrittenTo(496), SizeIs(1));
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
}

TEST_F(TargetRunTest, ASecondGoWithAnEndBelowItsStartEndsTheRunAtTheNextStep) {
    SetRange(0, 600);
    form.command = TargetWrite;
    run.Go();
    form.addressStart = {9};
    form.addressEnd = {8};
    run.Go();
    EXPECT_TRUE(run.IsOn());
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_FALSE(run.IsOn());
    EXPECT_THAT(observer.events, ElementsAre("on", "off"));
}

TEST_F(TargetRunTest, AReadToAFileKeepsTheBytesOfAnEarlierFile) {
    SetRange(0, 4);
    form.command = TargetWrite;
    UseFile(dir.Write("a.dat", "1 2 3 4"));
    run.Go();
    Finish(1);
    form.command = TargetRead;
    UseFile(dir.File("out.dat"));
    SetRange(0, 5);
    Forget();
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: File length of 4 is less than address length of 5. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_FALSE(run.IsOn());
    form.dataType = DataIsValue; // drops them
    Forget();
    run.Go();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_TRUE(run.IsOn());
}

TEST_F(TargetRunTest, AReadThatBecomesAWriteSendsTheBytesOfAnEarlierFile) {
    SetRange(0, 4);
    form.command = TargetWrite;
    UseFile(dir.Write("a.dat", "01 02 03 04"));
    run.Go();
    Finish(1);
    form.command = TargetRead;
    UseFile(dir.File("out.dat"));
    SetRange(0, 252);
    run.Go(); // may pad
    ASSERT_TRUE(run.IsOn());
    form.command = TargetWrite;
    EXPECT_TRUE(run.SendSetup());
    run.Poll();
    EXPECT_THAT(WrittenTo(248), ElementsAre(Bytes{1, 2, 3, 4})) << "from its beginning";
}

TEST_F(TargetRunTest, AReadOfTheWholeRangeAsksForNoBytes) {
    form.addressEnd = {255, 255, 255, 255, 255, 255, 255, 255};
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish(1);
    EXPECT_THAT(Commands(), ElementsAre("write 1490", "write 1503", "read target 0"));
    EXPECT_EQ(Memory(), Bytes{});
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), "\n") << "the line of a step";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetRunTest, InDemoModeTheRangeRunsThrough) {
    UseDemoMode();
    prompts.Forget();
    SetRange(0, 600);
    run.Go();
    Finish(3);
    EXPECT_EQ(Memory(), Bytes(600, 0));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetRunTest, OnVmeTheModifierGoesOut) {
    UseModel("VMEKite");
    form.addressModifier = 0x39;
    EXPECT_TRUE(run.SendSetup());
    EXPECT_EQ(WrittenTo(1490)[0][9], 0xE4);
}

} // namespace
} // namespace busquill::test
