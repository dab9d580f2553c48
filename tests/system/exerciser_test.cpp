// The exercisers over a real pseudo terminal, against the memory of the simulated board.

#include "exerciser/master_run.h"
#include "exerciser/target_run.h"
#include "support/temp_dir.h"
#include "support/wire_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace busquill::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kilobytes64 = 65536;

class Observer final : public MasterObserver {
public:
    void OnRunning(bool isRunning) override { running = isRunning; }
    void OnMemoryChanged() override {}
    void OnStatusCleared() override { status.clear(); }
    void OnStatus(std::span<const std::string_view> lines) override {
        status.insert(status.end(), lines.begin(), lines.end());
    }
    void OnStepStarted() override {}

    std::vector<std::string> status;
    bool running = false;
};

/// Two hexadecimal digits for each byte, 16 bytes a line.
std::string FileOf(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += digits;
        text += i % 16 == 15 ? '\n' : ' ';
    }
    return text;
}

/// The numbers of a text.
std::vector<std::uint8_t> BytesOf(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(word, nullptr, 16)));
    }
    return bytes;
}

class ExerciserOverWire : public LinkOverWire {
protected:
    ExerciserOverWire() {
        std::uint32_t random = 1;
        for (std::uint8_t& byte : data) {
            random = random * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(random >> 24);
        }
    }
    void Connect(std::vector<std::string> options = {}) {
        StartBoard(std::move(options));
        link.Connect(Port());
        ASSERT_FALSE(link.IsDemoMode());
        master = std::make_unique<MasterRun>(BoardRun::Parts{link, prompts}, masterForm, observer);
        target = std::make_unique<TargetRun>(BoardRun::Parts{link, prompts}, targetForm, observer);
    }
    template <typename Form>
    static void SetRange(Form& form, std::uint32_t start, std::size_t count) {
        const std::uint64_t end = start + count - 1;
        for (std::size_t i = 0; i < 8; ++i) {
            form.addressStart[i] = static_cast<std::uint8_t>(std::uint64_t{start} >> (8 * i));
            form.addressEnd[i] = static_cast<std::uint8_t>(end >> (8 * i));
        }
    }
    void RunMaster(std::int32_t command, const std::string& file = "") {
        masterForm.command = command;
        masterForm.dataType = file.empty() ? DataIsValue : DataIsFile;
        masterForm.dataFilename = file;
        master->Go();
        while (master->IsStepping()) {
            master->Poll();
        }
        EXPECT_FALSE(observer.running);
    }
    void RunTarget(std::int32_t command, const std::string& file) {
        targetForm.command = command;
        targetForm.dataType = DataIsFile;
        targetForm.dataFilename = file;
        target->Go();
        while (target->IsOn()) {
            target->Poll();
        }
        EXPECT_FALSE(observer.running);
    }
    std::vector<std::uint8_t> Memory(const ExerciserRun& run) const {
        const auto bytes = run.Memory()->Bytes();
        return {bytes.begin(), bytes.end()};
    }

    const TempDir dir;
    std::vector<std::uint8_t> data = std::vector<std::uint8_t>(kilobytes64);
    MasterForm masterForm;
    TargetForm targetForm;
    Observer observer;
    std::unique_ptr<MasterRun> master;
    std::unique_ptr<TargetRun> target;
};

TEST_F(ExerciserOverWire, TheMasterReadsBackTheFileThatItWrote) {
    Connect();
    SetRange(masterForm, 0x7FFF0010, kilobytes64);
    RunMaster(MasterWrite, dir.Write("in.dat", FileOf(data)));
    EXPECT_THAT(observer.status, SizeIs(kilobytes64 / 32));
    EXPECT_THAT(observer.status, Each("Pass"));
    RunMaster(MasterRead, dir.File("out.dat"));
    EXPECT_EQ(Memory(*master), data);
    EXPECT_EQ(BytesOf(ReadWholeFile(dir.File("out.dat"))), data);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ExerciserOverWire, CompareFindsTheStepThatDiffers) {
    Connect();
    data.resize(200);
    SetRange(masterForm, 0, data.size());
    RunMaster(MasterWrite, dir.Write("in.dat", FileOf(data)));
    RunMaster(MasterCompare, dir.File("in.dat"));
    EXPECT_THAT(observer.status, Each("Pass"));
    data[70] ^= 1;
    RunMaster(MasterCompare, dir.Write("in.dat", FileOf(data)));
    EXPECT_THAT(observer.status,
                ElementsAre("Pass", "Pass", "Fail", "Pass", "Pass", "Pass", "Pass"));
    RunMaster(MasterVerify, dir.File("in.dat"));
    EXPECT_THAT(observer.status, Each("Pass"));
    RunMaster(MasterCompare, dir.File("in.dat"));
    EXPECT_THAT(observer.status, Each("Pass"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ExerciserOverWire, TestFindsAStuckBitInEachPass) {
    Connect();
    SetRange(masterForm, 0x1000, 64);
    masterForm.repeat = "2";
    RunMaster(MasterTest);
    EXPECT_THAT(observer.status, ElementsAre("Pass", "Pass", "Pass", "Pass"));
    board->Fault("stuck-bit 4128"); // 0x1020
    RunMaster(MasterTest);
    EXPECT_THAT(observer.status, ElementsAre("Pass", "Fail", "Pass", "Fail"));
}

TEST_F(ExerciserOverWire, AValueFillsTheRangeOfItsSpace) {
    Connect();
    SetRange(masterForm, 0, 70);
    masterForm.addressSpace = 1;
    masterForm.dataSize = 1;
    masterForm.dataValue = {0xCD, 0xAB};
    RunMaster(MasterWrite);
    RunMaster(MasterRead);
    for (std::size_t i = 0; i < 70; ++i) {
        EXPECT_EQ(Memory(*master)[i], i % 2 == 0 ? 0xCD : 0xAB) << i;
    }
    masterForm.addressSpace = 2;
    RunMaster(MasterRead);
    EXPECT_THAT(Memory(*master), Each(0));
}

TEST_F(ExerciserOverWire, AModifierIsASpaceOfItsOwn) {
    Connect({"--model", "VMEKite", "--bus-byte", "0"});
    SetRange(masterForm, 0, 4);
    masterForm.dataValue = {1, 2, 3, 4};
    RunMaster(MasterWrite);
    masterForm.addressModifier = 0x39;
    RunMaster(MasterRead);
    EXPECT_THAT(Memory(*master), ElementsAre(0, 0, 0, 0));
    masterForm.addressModifier = 0x0D;
    RunMaster(MasterRead);
    EXPECT_THAT(Memory(*master), ElementsAre(1, 2, 3, 4));
}

TEST_F(ExerciserOverWire, StatusIsListedAndWaitedFor) {
    Connect();
    SetRange(masterForm, 0, 40);
    board->Fault("step-status 98"); // 0x62
    board->Fault("step-busy 3");
    RunMaster(MasterWrite);
    EXPECT_THAT(observer.status, ElementsAre("No Device Select", "No Target Ack", "Fail",
                                             "No Device Select", "No Target Ack", "Fail"));
    board->Fault("normal");
    RunMaster(MasterWrite);
    EXPECT_THAT(observer.status, ElementsAre("Pass", "Pass"));
}

TEST_F(ExerciserOverWire, TheTargetReadsBackTheFileThatWasWritten) {
    Connect();
    SetRange(targetForm, 0x7FF0, kilobytes64);
    RunTarget(TargetWrite, dir.Write("in.dat", FileOf(data)));
    RunTarget(TargetRead, dir.File("out.dat"));
    EXPECT_EQ(Memory(*target), data);
    EXPECT_EQ(BytesOf(ReadWholeFile(dir.File("out.dat"))), data);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ExerciserOverWire, TheMasterWritesTheMemoryOfTheTarget) {
    Connect();
    data.resize(100);
    SetRange(targetForm, 0x100, data.size());
    SetRange(masterForm, 0x100, data.size());
    RunTarget(TargetWrite, dir.Write("in.dat", FileOf(data)));
    masterForm.dataType = DataIsTarget;
    masterForm.command = MasterWrite;
    master->Go();
    while (master->IsStepping()) {
        master->Poll();
    }
    RunMaster(MasterRead);
    EXPECT_EQ(Memory(*master), data);
}

} // namespace
} // namespace busquill::test
