#include "exerciser/master_run.h"
#include "exerciser_fixture.h"
#include "support/full_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Lines = std::vector<std::string>;

const std::string endBelowStart = "End Address must be >= Start Address.";
const std::string nameMissing = "File name must first be specified by pressing the FILE button.";
const std::string statusFailed = "Error reading master status from analyzer.";
const std::string stopFailed = "Error sending exerciser stop command to analyzer.";
const std::string goFailed = "Error sending exerciser go command to analyzer.";

class Observer final : public MasterObserver {
public:
    void OnRunning(bool running) override { events.emplace_back(running ? "on" : "off"); }
    void OnMemoryChanged() override { ++memoryChanges; }
    void OnStatusCleared() override {
        events.emplace_back("cleared");
        status.clear();
    }
    void OnStatus(std::span<const std::string_view> lines) override {
        status.insert(status.end(), lines.begin(), lines.end());
    }
    void OnStepStarted() override { ++steps; }

    Lines events;
    Lines status;
    int memoryChanges = 0;
    int steps = 0;
};

class MasterRunTest : public ExerciserFixture {
protected:
    MasterRunTest() { Put(801, {0x01}); }

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
    /// Polls until the run is over.
    void Finish(int limit = 10000) {
        while (run.IsStepping() && limit-- > 0) {
            run.Poll();
        }
        EXPECT_FALSE(run.IsStepping());
    }
    [[nodiscard]] Bytes Memory() const {
        const auto bytes = run.Memory()->Bytes();
        return {bytes.begin(), bytes.end()};
    }

    MasterForm form;
    Observer observer;
    MasterRun run{{*link, prompts, std::make_unique<ManualTimer>(timer)}, form, observer};
};

TEST_F(MasterRunTest, SendsSetupControlAndGo) {
    SetRange(0x1000, 4);
    form.command = MasterWrite;
    form.dataValue = {1, 2, 3, 4, 5, 6, 7, 8};
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "go"));
    EXPECT_THAT(WrittenTo(802),
                ElementsAre(Bytes{0, 2, 0x00, 0x10, 0, 0, 0, 0, 0, 0, // address
                                  4, 2, 0,    0,                      // length, size, cycle, type
                                  1, 2, 3,    4,    5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                  0, 0, 0,    0,    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{2}));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on"));
    EXPECT_EQ(observer.steps, 1);
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 200ms);
    EXPECT_EQ(run.Memory(), nullptr) << "nothing is read";
}

TEST_F(MasterRunTest, OneAddressIsOneStepOfOneByte) {
    Put(816, Bytes(32, 0x5A));
    run.Go();
    EXPECT_EQ(WrittenTo(802)[0][10], 1);
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "go", "read 801", "read 816"));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off")) << "and no command to stop";
    EXPECT_THAT(observer.status, ElementsAre("Pass"));
    EXPECT_EQ(Memory(), Bytes{0x5A});
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterRunTest, ARangeOf33BytesTakesTwoSteps) {
    SetRange(0x20F0, 33);
    form.command = MasterVerify;
    run.Go();
    EXPECT_EQ(WrittenTo(802)[0][10], 32);
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "write 800", "write 804", "go"));
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{0x84})) << "a later step";
    EXPECT_THAT(WrittenTo(804), ElementsAre(Bytes{0x10, 0x21, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(observer.steps, 2);
    EXPECT_TRUE(timer->runs);
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801"));
    EXPECT_THAT(observer.status, ElementsAre("Pass", "Pass"));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off"));
}

TEST_F(MasterRunTest, WaitsWhileTheStepRuns) {
    Put(801, {0xFF});
    run.Go();
    Forget();
    run.Poll();
    run.Poll();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "read 801"));
    EXPECT_THAT(observer.status, IsEmpty());
    EXPECT_TRUE(timer->runs);
    EXPECT_TRUE(run.IsStepping());
    Put(801, {0x02});
    run.Poll();
    EXPECT_THAT(observer.status, ElementsAre("Fail"));
}

TEST_F(MasterRunTest, ErrorsAreListedInOrderAndTheRunGoesOn) {
    SetRange(0, 40);
    Put(801, {0x62});
    run.Go();
    run.Poll();
    EXPECT_THAT(observer.status, ElementsAre("No Device Select", "No Target Ack", "Fail"));
    EXPECT_TRUE(run.IsStepping());
    Put(801, {0x00});
    run.Poll();
    EXPECT_THAT(observer.status, SizeIs(3)) << "nothing to list";
    EXPECT_FALSE(run.IsStepping());
    run.Go();
    EXPECT_THAT(observer.status, IsEmpty());
}

TEST_F(MasterRunTest, AnEndBelowTheStartSendsNothing) {
    SetRange(0x100, 1);
    form.addressStart[0] = 1;
    run.Go();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("cleared"));
    EXPECT_THAT(prompts.Texts(), ElementsAre(endBelowStart));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_FALSE(run.IsStepping());
}

TEST_F(MasterRunTest, ARangeThatEndsBelowItsStartIsAlsoLongerThanAFile) {
    form.addressStart = {2};
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", "11 22"));
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(endBelowStart,
                            "Warning: File length of 2 is less than address length of -1. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(MasterRunTest, RepeatsThePass) {
    SetRange(0x40, 33);
    form.repeat = "2";
    form.command = MasterTest;
    run.Go();
    run.Poll();
    Forget();
    run.Poll();
    EXPECT_THAT(WrittenTo(804), ElementsAre(Bytes{0x40, 0, 0, 0, 0, 0, 0, 0, 32}));
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{0x85}));
    EXPECT_THAT(Commands(), Not(Contains("write 802"))) << "the setup is sent once";
    Finish();
    EXPECT_THAT(observer.status, SizeIs(4));
    EXPECT_EQ(observer.steps, 4);
}

TEST_F(MasterRunTest, NoRepeatIsOnePass) {
    for (const char* repeat : {"0", "", "-3"}) {
        form.repeat = repeat;
        observer.steps = 0;
        run.Go();
        Finish();
        EXPECT_EQ(observer.steps, 1) << repeat;
    }
}

TEST_F(MasterRunTest, ALaterPassBeginsAtTheStartAsItIsThen) {
    SetRange(0x40, 1);
    form.addressEnd = {0x50};
    form.repeat = "2";
    form.command = MasterWrite;
    run.Go();
    form.addressStart = {0x4F};
    form.addressEnd = {0xFF};
    run.Poll();
    EXPECT_THAT(WrittenTo(804), ElementsAre(Bytes{0x4F, 0, 0, 0, 0, 0, 0, 0, 2}))
        << "the end is that of the Go";
    Finish();
}

TEST_F(MasterRunTest, AStartAboveTheEndEndsTheRunAtTheNextPass) {
    SetRange(0x40, 4);
    form.repeat = "1000000";
    run.Go();
    form.addressStart = {0x60};
    run.Poll();
    EXPECT_FALSE(run.IsStepping());
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off"));
    EXPECT_THAT(WrittenTo(804), IsEmpty());
}

TEST_F(MasterRunTest, TheLastAddressOfAllEndsThePass) {
    form.addressStart = {0xF0, 255, 255, 255, 255, 255, 255, 255};
    form.addressEnd = {255, 255, 255, 255, 255, 255, 255, 255};
    form.command = MasterWrite;
    form.repeat = "2";
    run.Go();
    EXPECT_EQ(WrittenTo(802)[0][10], 16);
    run.Poll();
    EXPECT_THAT(WrittenTo(804), ElementsAre(Bytes{0xF0, 255, 255, 255, 255, 255, 255, 255, 16}));
    run.Poll();
    EXPECT_FALSE(run.IsStepping());
    EXPECT_EQ(observer.steps, 2);
}

TEST_F(MasterRunTest, TheWholeRangeOfAddressesIsAStepOfNoBytes) {
    form.addressEnd = {255, 255, 255, 255, 255, 255, 255, 255};
    run.Go();
    EXPECT_EQ(WrittenTo(802)[0][10], 0);
    Finish(3);
    EXPECT_EQ(Memory(), Bytes{});
}

TEST_F(MasterRunTest, TheCommandMayChangeDuringTheRun) {
    SetRange(0, 96);
    form.command = MasterWrite;
    run.Go();
    form.command = MasterRead;
    Forget();
    run.Poll();
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{0x81}));
    run.Poll();
    EXPECT_THAT(Commands(), Contains("read 816"));
    EXPECT_EQ(run.Memory(), nullptr) << "what is read has no place";
    EXPECT_EQ(observer.memoryChanges, 0);
    Finish();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterRunTest, ReadsIntoMemoryFromTheLowHalfOfTheStart) {
    form.addressStart = {0x00, 0x10, 0, 0x80, 1};
    form.addressEnd = {0x27, 0x10, 0, 0x80, 1};
    Put(816, Pattern(0, 32, 32));
    run.Go();
    ASSERT_NE(run.Memory(), nullptr);
    EXPECT_EQ(run.Memory()->BaseAddress(), 0x80001000U);
    EXPECT_EQ(Memory(), Bytes{});
    EXPECT_EQ(observer.memoryChanges, 1);
    run.Poll();
    EXPECT_EQ(Memory(), Pattern(0, 32, 32));
    EXPECT_EQ(observer.memoryChanges, 2);
    run.Poll();
    Bytes expected = Pattern(0, 32, 32);
    const Bytes rest = Pattern(0, 8, 8);
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(Memory(), expected) << "eight bytes of the last step";
    run.Go();
    EXPECT_EQ(Memory(), Bytes{}) << "a new read begins anew";
}

TEST_F(MasterRunTest, OtherCommandsLeaveTheMemory) {
    Put(816, Bytes(32, 7));
    run.Go();
    Finish();
    form.command = MasterWrite;
    run.Go();
    Finish();
    EXPECT_EQ(Memory(), Bytes{7});
}

TEST_F(MasterRunTest, SendsAttributesInPciX) {
    UsePciX();
    form.attrTag = 1;
    form.attrBusNum = 2;
    form.attrDeviceNum = 3;
    form.attrFunctionNum = 4;
    form.command = MasterSplitCompletion;
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 924", "write 800", "go"));
    EXPECT_THAT(WrittenTo(924), ElementsAre(Bytes{1, 2, 3, 4}));
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{7}));
}

TEST_F(MasterRunTest, SendsModifierAndLevelOnVme) {
    UseModel("VMEKite");
    form.busRequestLevel = 8;
    run.Go();
    ASSERT_THAT(WrittenTo(802), SizeIs(1));
    EXPECT_EQ(WrittenTo(802)[0][46], 0x0D);
    EXPECT_EQ(WrittenTo(802)[0][47], 8);
}

TEST_F(MasterRunTest, SendsAFileStepByStep) {
    SetRange(0, 64);
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", PatternText(64)));
    run.Go();
    const Bytes record = WrittenTo(802).at(0);
    EXPECT_EQ(record[13], 1);
    EXPECT_EQ(Bytes(record.begin() + 14, record.begin() + 46), Pattern(0, 32, 32));
    Forget();
    run.Poll();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "write 800", "write 804", "write 816", "go"));
    EXPECT_THAT(WrittenTo(816), ElementsAre(Pattern(32, 32, 32)));
    Finish();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterRunTest, RepeatsReplayTheFile) {
    SetRange(0, 40);
    form.command = MasterCompare;
    form.repeat = "3";
    UseFile(dir.Write("a.dat", PatternText(40)));
    run.Go();
    Finish();
    EXPECT_THAT(WrittenTo(816),
                ElementsAre(Pattern(32, 8, 32), Pattern(0, 32, 32), Pattern(32, 8, 32),
                            Pattern(0, 32, 32), Pattern(32, 8, 32)));
}

TEST_F(MasterRunTest, AShortFileIsPaddedWithConsent) {
    SetRange(0, 128);
    form.command = MasterWrite;
    form.repeat = "2";
    UseFile(dir.Write("a.dat", PatternText(40)));
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: File length of 40 is less than address length of 128. Zeros "
                            "will be padded at the end of the file. Continue?"));
    EXPECT_EQ(prompts.Boxes()[0].buttons, BoxButtons::YesNo);
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    Finish();
    EXPECT_THAT(prompts.Texts(), SizeIs(1)) << "asked once";
    const Bytes zeros(32, 0);
    EXPECT_THAT(WrittenTo(816), ElementsAre(Pattern(32, 8, 32), zeros, zeros, Pattern(0, 32, 32),
                                            Pattern(32, 8, 32), zeros, zeros));
}

TEST_F(MasterRunTest, AShortFileIsNotSentWithoutConsent) {
    SetRange(0, 128);
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", "1"));
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("cleared"));
    EXPECT_FALSE(run.IsStepping());
}

TEST_F(MasterRunTest, TheWarningShowsTheLowHalfOfTheRange) {
    form.addressEnd = {0x0F, 0, 0, 0x80, 7};
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", "1"));
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: File length of 1 is less than address length of -2147483632. "
                            "Zeros will be padded at the end of the file. Continue?"));
}

TEST_F(MasterRunTest, AFileWithoutBytesIsNoFile) {
    SetRange(0, 64);
    form.command = MasterWrite;
    form.dataValue = {9};
    UseFile(dir.Write("a.dat", " - \r\n"));
    run.Go();
    Finish();
    EXPECT_EQ(WrittenTo(802)[0][13], 1) << "the type stays";
    EXPECT_EQ(WrittenTo(802)[0][14], 9);
    EXPECT_THAT(WrittenTo(816), IsEmpty());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterRunTest, AValueIsSentOnce) {
    SetRange(0, 64);
    form.command = MasterWrite;
    for (const std::int32_t type : {DataIsValue, DataIsTarget}) {
        form.dataType = type;
        run.Go();
        Finish();
    }
    EXPECT_THAT(WrittenTo(816), IsEmpty());
    EXPECT_EQ(WrittenTo(802)[1][13], 2);
}

TEST_F(MasterRunTest, AFileNeedsItsName) {
    form.dataType = DataIsFile;
    for (const std::int32_t command : {MasterRead, MasterWrite}) {
        form.command = command;
        run.Go();
    }
    EXPECT_THAT(prompts.Texts(), ElementsAre(nameMissing, nameMissing));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("cleared", "cleared"));
}

TEST_F(MasterRunTest, AFileThatCannotBeReadEndsTheGo) {
    for (const std::int32_t command : {MasterWrite, MasterVerify, MasterTest, MasterCompare}) {
        form.command = command;
        UseFile(dir.File("none.dat"));
        run.Go();
    }
    const std::string cannotLoad = "Error opening file for master read operation.";
    EXPECT_THAT(prompts.Texts(), ElementsAre(cannotLoad, cannotLoad, cannotLoad, cannotLoad));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(MasterRunTest, ReadsToAFileLineByLine) {
    SetRange(0, 34);
    Put(816, Pattern(0, 32, 32));
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")),
              "00 07 0e 15 1c 23 2a 31 38 3f 46 4d 54 5b 62 69 70 77 7e 85 8c 93 9a a1 a8 af b6 bd "
              "c4 cb d2 d9 \n"
              "00 07 \n");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterRunTest, AnExistingFileIsReplacedWithConsent) {
    Put(816, Bytes(32, 0xAB));
    UseFile(dir.Write("out.dat", "old"));
    prompts.AnswerNext(Answer::No);
    run.Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("File already exists. Overwrite?"));
    EXPECT_EQ(prompts.Boxes()[0].buttons, BoxButtons::YesNo);
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), "old");
    run.Go();
    Finish();
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), "ab \n");
}

TEST_F(MasterRunTest, AFileThatCannotBeCreatedEndsTheGo) {
    UseFile(dir.File("none/out.dat"));
    run.Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error creating file for master operation."));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(MasterRunTest, AStoppedReadKeepsItsLines) {
    SetRange(0, 320);
    Put(816, Bytes(32, 1));
    UseFile(dir.File("out.dat"));
    run.Go();
    run.Poll();
    run.Poll();
    run.Stop();
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 2);
}

TEST_F(MasterRunTest, AFullDiskIsReported) {
    SetRange(0, 96);
    UseFile(dir.File("out.dat"));
    run.Go();
    {
        const FullDisk full(100);
        Finish();
    }
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error writing file " + dir.File("out.dat") + "."));
}

TEST_F(MasterRunTest, AReadToAFileStillSendsTheBytesOfAnEarlierFile) {
    SetRange(0, 40);
    form.command = MasterWrite;
    UseFile(dir.Write("in.dat", PatternText(40)));
    run.Go();
    Finish();
    form.command = MasterRead;
    UseFile(dir.File("out.dat"));
    Forget();
    run.Go();
    EXPECT_EQ(WrittenTo(802)[0][14 + 1], PatternByte(1));
    Finish();
    EXPECT_THAT(WrittenTo(816), ElementsAre(Pattern(32, 8, 32)));

    form.dataType = DataIsValue;
    Forget();
    run.Go();
    Finish();
    EXPECT_THAT(WrittenTo(816), IsEmpty()) << "a value drops them";
}

TEST_F(MasterRunTest, AReadWithoutAFileWritesNone) {
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    const std::string before = ReadWholeFile(dir.File("out.dat"));
    form.dataType = DataIsValue;
    run.Go();
    Finish();
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), before);
}

TEST_F(MasterRunTest, TheFileOfAGoThatWasRefusedGetsNoBytesOfTheNext) {
    UseFile(dir.File("out.dat"));
    form.addressStart = {1};
    run.Go();
    form.addressStart = {0};
    form.dataType = DataIsValue;
    run.Go();
    Finish();
    EXPECT_EQ(ReadWholeFile(dir.File("out.dat")), "");
}

TEST_F(MasterRunTest, BytesBeyondTheLimitAreDropped) {
    SetRange(0, 200'007);
    Put(816, Bytes(32, 1));
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    // 6250 whole steps are 200,000 bytes; the last step of 7 bytes does not fit.
    EXPECT_EQ(Memory().size(), 200'000U);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 6250);
    EXPECT_EQ(observer.memoryChanges, 6251);
    EXPECT_THAT(observer.status, SizeIs(6251)) << "the run goes on";
}

TEST_F(MasterRunTest, InDemoModeEveryStepPasses) {
    UseDemoMode();
    prompts.Forget();
    SetRange(0, 100);
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    EXPECT_THAT(observer.status, ElementsAre("Pass", "Pass", "Pass", "Pass"));
    EXPECT_EQ(Memory(), Bytes(100, 0));
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 4);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

// Failures.

TEST_F(MasterRunTest, AFailedSetupEndsTheGo) {
    Fail("write 802");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("no write 802"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master setup to analyzer."));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
    EXPECT_THAT(observer.events, ElementsAre("cleared"));
    EXPECT_FALSE(timer->runs);
}

TEST_F(MasterRunTest, FailedAttributesEndTheGo) {
    UsePciX();
    Fail("write 924");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "no write 924"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master attributes to analyzer."));
    EXPECT_THAT(observer.events, ElementsAre("cleared"));
}

TEST_F(MasterRunTest, AFailedControlEndsTheGo) {
    Fail("write 800");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "no write 800"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master control to analyzer."));
    EXPECT_THAT(observer.events, ElementsAre("cleared"));
    EXPECT_EQ(run.Memory(), nullptr);
}

TEST_F(MasterRunTest, AFailedGoStops) {
    Fail("go");
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "no go", "stop"));
    EXPECT_THAT(prompts.Texts(), Contains(goFailed));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off"));
    EXPECT_FALSE(run.IsStepping());
    EXPECT_FALSE(timer->runs);
    EXPECT_EQ(run.Memory(), nullptr);
    EXPECT_EQ(observer.steps, 0);
}

TEST_F(MasterRunTest, AFailedStatusStops) {
    run.Go();
    Fail("read 801");
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "go", "no read 801", "stop"));
    EXPECT_THAT(prompts.Texts(), Contains(statusFailed));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off"));
    EXPECT_FALSE(timer->runs);
}

TEST_F(MasterRunTest, AFailedReadOfDataEndsTheRun) {
    SetRange(0, 64);
    run.Go();
    Fail("read 816");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "no read 816", "stop"));
    EXPECT_THAT(prompts.Texts(), Contains("Error reading master data from analyzer."));
    EXPECT_THAT(observer.status, ElementsAre("Pass"));
    EXPECT_FALSE(run.IsStepping());
    EXPECT_FALSE(timer->runs);
}

TEST_F(MasterRunTest, AFailedControlOfALaterStepIsOnlyReported) {
    SetRange(0, 64);
    form.command = MasterWrite;
    run.Go();
    Fail("write 800");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "no write 800", "write 804", "go"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master control to analyzer."));
    EXPECT_TRUE(run.IsStepping());
    EXPECT_TRUE(timer->runs);
}

TEST_F(MasterRunTest, AFailedAddressEndsTheRun) {
    SetRange(0, 64);
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", PatternText(64)));
    run.Go();
    Fail("write 804");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "write 800", "no write 804", "stop"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master address to analyzer."));
    EXPECT_FALSE(run.IsStepping());
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on", "off"));
}

TEST_F(MasterRunTest, FailedFileDataAreOnlyReported) {
    SetRange(0, 96);
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", PatternText(96)));
    run.Go();
    Fail("write 816");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(),
                ElementsAre("read 801", "write 800", "write 804", "no write 816", "go"));
    EXPECT_THAT(prompts.Texts(), Contains("Error sending master file data to analyzer."));
    Mend();
    timer->tick();
    EXPECT_THAT(WrittenTo(816), ElementsAre(Pattern(64, 32, 32))) << "the next bytes";
}

TEST_F(MasterRunTest, AFailedGoOfALaterStepStops) {
    SetRange(0, 64);
    form.command = MasterWrite;
    run.Go();
    Fail("go");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("read 801", "write 800", "write 804", "no go", "stop"));
    EXPECT_THAT(prompts.Texts(), Contains(goFailed));
    EXPECT_FALSE(run.IsStepping());
    EXPECT_FALSE(timer->runs);
}

// Stop.

TEST_F(MasterRunTest, StopSendsItsCommandAlsoWithoutARun) {
    run.Stop();
    EXPECT_THAT(Commands(), ElementsAre("stop"));
    run.Go();
    Forget();
    run.Stop();
    EXPECT_THAT(Commands(), ElementsAre("stop"));
    EXPECT_THAT(observer.events, ElementsAre("off", "cleared", "on", "off"));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run.IsStepping());
}

TEST_F(MasterRunTest, AFailedStopIsReported) {
    run.Go();
    Fail("stop");
    run.Stop();
    EXPECT_THAT(prompts.Texts(), Contains(stopFailed));
    EXPECT_TRUE(prompts.Boxes().back().topmost);
    EXPECT_FALSE(run.IsStepping());
}

TEST_F(MasterRunTest, ALatePollDoesNothing) {
    run.Poll();
    run.Go();
    run.Stop();
    Forget();
    run.Poll();
    EXPECT_THAT(Commands(), IsEmpty());
    run.Go();
    Finish();
    Forget();
    run.Poll();
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(MasterRunTest, ASecondGoBeginsAgain) {
    SetRange(0, 320);
    form.command = MasterWrite;
    run.Go();
    run.Poll();
    Forget();
    run.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "go"));
    EXPECT_THAT(WrittenTo(800), ElementsAre(Bytes{2}));
    EXPECT_TRUE(run.IsStepping());
    Finish();
    EXPECT_THAT(observer.status, SizeIs(10));
}

TEST_F(MasterRunTest, RepeatedReadsFillTheMemoryAndTheFileOneAfterAnother) {
    SetRange(0x100, 34);
    form.repeat = "3";
    Put(816, Pattern(0, 32, 32));
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish();
    Bytes pass = Pattern(0, 32, 32);
    pass.insert(pass.end(), {0x00, 0x07}); // the last step's
    Bytes expected;
    for (int i = 0; i < 3; ++i) {
        expected.insert(expected.end(), pass.begin(), pass.end());
    }
    EXPECT_EQ(Memory(), expected);
    EXPECT_EQ(run.Memory()->BaseAddress(), 0x100U);
    const std::string file = ReadWholeFile(dir.File("out.dat"));
    EXPECT_EQ(std::ranges::count(file, '\n'), 6);
    EXPECT_TRUE(file.ends_with("d9 \n00 07 \n"));
    EXPECT_THAT(observer.status, SizeIs(6));
}

TEST_F(MasterRunTest, TheLimitOfTheMemoryCountsAllPasses) {
    SetRange(0, 110'000); // 3437 whole steps and one of 16 bytes
    form.repeat = "2";
    Put(816, Bytes(32, 1));
    UseFile(dir.File("out.dat"));
    run.Go();
    Finish(10000);
    // The second pass has room for 2812 whole steps, and at its end for the one of 16 bytes.
    EXPECT_EQ(Memory().size(), 200'000U);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 3438 + 2812 + 1);
    EXPECT_THAT(observer.status, SizeIs(2 * 3438));
}

TEST_F(MasterRunTest, ASecondGoOfAReadBeginsWithEmptyMemory) {
    SetRange(0, 96);
    Put(816, Bytes(32, 1));
    run.Go();
    run.Poll();
    EXPECT_THAT(Memory(), SizeIs(32));
    SetRange(0x500, 2);
    Put(816, Bytes(32, 2));
    run.Go();
    EXPECT_EQ(Memory(), Bytes{});
    EXPECT_EQ(run.Memory()->BaseAddress(), 0x500U);
    Finish();
    EXPECT_EQ(Memory(), (Bytes{2, 2}));
}

TEST_F(MasterRunTest, ASecondGoSendsTheFileFromItsBeginningAndAllPasses) {
    SetRange(0, 64);
    form.command = MasterWrite;
    form.repeat = "2";
    UseFile(dir.Write("a.dat", PatternText(64)));
    run.Go();
    run.Poll();
    run.Poll();
    run.Poll(); // in the second pass
    Forget();
    run.Go();
    const Bytes sent = WrittenTo(802)[0];
    EXPECT_EQ((Bytes{sent.begin() + 14, sent.begin() + 46}), Pattern(0, 32, 32));
    Finish(4);
    EXPECT_THAT(WrittenTo(816),
                ElementsAre(Pattern(32, 32, 32), Pattern(0, 32, 32), Pattern(32, 32, 32)));
}

TEST_F(MasterRunTest, ASecondGoOfAReadBeginsItsFileAgainWithConsent) {
    SetRange(0, 96);
    Put(816, Bytes(32, 1));
    UseFile(dir.File("out.dat"));
    run.Go();
    run.Poll();
    prompts.AnswerNext(Answer::No);
    Forget();
    run.Go();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_TRUE(run.IsStepping()) << "the first run goes on";
    Finish(2);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 3);

    run.Go();
    run.Poll();
    run.Go();
    Finish(3);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 3);
    EXPECT_EQ(Memory().size(), 96U);
}

TEST_F(MasterRunTest, ASecondGoWithAnEndBelowItsStartEndsTheRunAfterItsStep) {
    SetRange(0, 96);
    form.command = MasterWrite;
    run.Go();
    form.addressStart = {9};
    form.addressEnd = {8};
    Forget();
    run.Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre(endBelowStart));
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_TRUE(run.IsStepping());
    run.Poll();
    EXPECT_FALSE(run.IsStepping());
    EXPECT_THAT(Commands(), ElementsAre("read 801"));
    EXPECT_EQ(observer.events.back(), "off");
}

/// The timer ticks while a box is open.
class TickingPrompts final : public Prompts {
public:
    explicit TickingPrompts(const TimerState& timer) : timer_(timer) {}
    Answer Show(const Box& /*box*/) override {
        ++boxes;
        if (timer_.runs && boxes < 100) {
            timer_.tick();
        }
        return Answer::Yes;
    }
    int boxes = 0;

private:
    const TimerState& timer_;
};

TEST_F(MasterRunTest, PollsWaitForTheAnswersToABox) {
    TickingPrompts ticking(*timer);
    MasterRun ticked({*link, ticking, std::make_unique<ManualTimer>(timer)}, form, observer);
    SetRange(0, 64);
    form.command = MasterWrite;
    UseFile(dir.Write("a.dat", "1"));
    ticked.Go();
    ASSERT_TRUE(ticked.IsStepping());
    Forget();
    ticked.Go();
    EXPECT_THAT(Commands(), ElementsAre("write 802", "write 800", "go"));
    Fail("read 801");
    Forget();
    timer->tick();
    EXPECT_THAT(Commands(), ElementsAre("no read 801", "stop"));
    EXPECT_EQ(ticking.boxes, 3);
}

TEST_F(MasterRunTest, TheEndOfTheObjectSendsNothingAndClosesTheFile) {
    auto other = std::make_unique<MasterRun>(
        BoardRun::Parts{*link, prompts, std::make_unique<ManualTimer>(timer)}, form, observer);
    SetRange(0, 96);
    UseFile(dir.File("out.dat"));
    other->Go();
    other->Poll();
    Forget();
    other.reset();
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_FALSE(timer->runs);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("out.dat")), '\n'), 1);
}

} // namespace
} // namespace busquill::test
