#include "link/firmware_download.h"
#include "support/link_fixture.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = FirmwareDownload::State;

class FirmwareDownloads : public LinkFixture {
protected:
    void OpenDemo() {
        portOpens = false;
        static_cast<void>(link->Open(Port()));
        ASSERT_TRUE(link->IsDemoMode());
        prompts.Forget();
    }
    bool Start(const std::string& text) { return download->Start(dir.Write("firmware.hex", text)); }
    bool Ends() {
        return Eventually([&] { return download->GetState() != State::Running; });
    }
    std::vector<std::pair<std::uint32_t, Bytes>> Written() {
        std::vector<std::pair<std::uint32_t, Bytes>> written;
        line->Do([&] {
            for (const WireBoard::Write& write : board.writes) {
                written.emplace_back(write.address, write.bytes);
            }
        });
        return written;
    }
    using Write = std::pair<std::uint32_t, Bytes>;

    const TempDir dir;
    std::unique_ptr<FirmwareDownload> download = std::make_unique<FirmwareDownload>(*link, prompts);
};

TEST_F(FirmwareDownloads, WriteEachDataRecordAtItsAddress) {
    OpenBoard("PCIKite");
    ASSERT_TRUE(Start(":03123400A1B2C300\n:00000001FF\n:0100FF007700\n"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(download->GetState(), State::Complete);
    EXPECT_THAT(Written(), ElementsAre(Write{0x1234, {0xA1, 0xB2, 0xC3}}, Write{0xFF, {0x77}}));
    EXPECT_EQ(download->Total(), 3U);
    EXPECT_EQ(download->Count(), 3U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(FirmwareDownloads, AddressesPast64KComeFromTheSegment) {
    OpenBoard("PCIKite");
    ASSERT_TRUE(Start(":01FFFF001100"
                      ":02000002123400:010010002200"
                      ":0100000299:010020003300" // too short: the segment stays
                      ":03000002000100EE:010000004400"
                      ":00000000"));
    ASSERT_TRUE(Ends());
    EXPECT_THAT(Written(), ElementsAre(Write{0xFFFF, {0x11}}, Write{0x12350, {0x22}},
                                       Write{0x12360, {0x33}}, Write{0x10, {0x44}}));
    EXPECT_EQ(download->Count(), 8U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(FirmwareDownloads, OfAFileWithoutRecordsAreCompleteAtOnce) {
    OpenBoard("PCIKite");
    ASSERT_TRUE(Start("nothing\nof interest\n"));
    EXPECT_EQ(download->GetState(), State::Complete);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(FirmwareDownloads, OfAFileThatCannotBeReadDoNotStart) {
    EXPECT_FALSE(download->Start("/nonexistent/a.hex"));
    EXPECT_EQ(download->GetState(), State::Idle);
    ASSERT_THAT(prompts.Texts(), ElementsAre("Error opening file /nonexistent/a.hex."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
}

TEST_F(FirmwareDownloads, OfAFolderDoNotStart) {
    EXPECT_FALSE(download->Start(dir.File("")));
    EXPECT_EQ(prompts.Texts().size(), 1U);
}

TEST_F(FirmwareDownloads, OfAFileWhoseReadingFailsDoNotStart) {
    EXPECT_FALSE(download->Start("/proc/self/mem")); // opens, and no address 0 to read
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file /proc/self/mem."));
}

TEST_F(FirmwareDownloads, OfAFileThatIsFarTooLargeDoNotStart) {
    const std::string path = dir.Write("firmware.hex", "");
    std::filesystem::resize_file(path, (std::uintmax_t{1} << 28) + 1); // takes no space
    EXPECT_FALSE(download->Start(path));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file " + path + "."));
}

TEST_F(FirmwareDownloads, StopAtAnInvalidRecordAndNumberThoseBeforeIt) {
    OpenBoard("PCIKite");
    ASSERT_TRUE(Start(":010000001100:010001002200:0200000400FFFF:010002003300"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(download->GetState(), State::Idle);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Invalid hex record 2 in file " + dir.File("firmware.hex") + "."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(Written().size(), 2U);
}

TEST_F(FirmwareDownloads, StopAtARecordThatTheBoardDoesNotTake) {
    OpenBoard("PCIKite");
    line->SetAnswer([this](const Bytes& sent, int baud) {
        // The low byte of the second record's address.
        return sent == Bytes{4, 0x55} ? Bytes{} : board.Answer(sent, baud);
    });
    ASSERT_TRUE(Start(":010000001100:010055002200:010002003300"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(download->GetState(), State::Idle);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Serial connection error sending firmware record 2."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(Written().size(), 1U);
}

TEST_F(FirmwareDownloads, NumberOnFromTheFileBefore) {
    OpenBoard("PCIKite");
    ASSERT_TRUE(Start(":02000002100000:010000001100:0100000999"));
    ASSERT_TRUE(Ends());
    ASSERT_TRUE(Start(":010000002200:0100000999"));
    ASSERT_TRUE(Ends());
    const std::string file = " in file " + dir.File("firmware.hex") + ".";
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Invalid hex record 2" + file, "Invalid hex record 3" + file));
    EXPECT_THAT(Written(), ElementsAre(Write{0x10000, {0x11}}, Write{0x10000, {0x22}}))
        << "in the segment that the first has chosen";
}

TEST_F(FirmwareDownloads, EndAfterTheRecordThatIsUnderWay) {
    OpenBoard("PCIKite");
    line->SetClockRuns(false);
    Bytes owed;
    line->SetAnswer([this, &owed](const Bytes& sent, int baud) {
        const Bytes answer = board.Answer(sent, baud);
        if (sent == Bytes{4, 0x55}) {
            owed = answer;
            return Bytes{};
        }
        return answer;
    });
    ASSERT_TRUE(Start(":010000001100:010055002200:010002003300"));
    ASSERT_TRUE(Eventually([&] { return Written().size() == 1 && download->Count() == 2; }));
    std::thread answer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
        line->Arrive(owed);
    });
    download->Cancel();
    answer.join();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(download->GetState(), State::Idle);
    EXPECT_EQ(Written().size(), 2U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(FirmwareDownloads, MayGoWhileTheBoardOwesAnAnswer) {
    OpenBoard("PCIKite");
    line->SetClockRuns(false);
    UseSilence();
    ASSERT_TRUE(Start(":010000001100:010055002200"));
    download.reset();
    UseBoard();
    line->Arrive({'*'});
    ASSERT_TRUE(Eventually([&] { return link->IsIdle(); }));
    analyzer.reset();
    EXPECT_EQ(Written().size(), 1U) << "the record that was under way";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(FirmwareDownloads, OfAMillionRecordsInDemoModeNeedNoMoreStack) {
    OpenDemo();
    constexpr std::size_t records = 1'000'000;
    std::string text;
    for (std::size_t i = 0; i < records; ++i) {
        text += ":0100000055AA\n";
    }
    ASSERT_TRUE(Start(text));
    EXPECT_EQ(download->GetState(), State::Complete);
    EXPECT_EQ(download->Count(), records);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
