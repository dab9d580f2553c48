#include "capture/trace_file.h"
#include "capture/trace_writer.h"
#include "support/capture_fixture.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::Optional;
using Step = TraceFileWriter::Step;

std::string ListText(const CSignalList& list, const TempDir& dir) {
    TextWriter file;
    EXPECT_TRUE(file.Create(dir.File("list")));
    list.WriteSignals(file, false);
    EXPECT_TRUE(file.Close());
    return ReadWholeFile(dir.File("list"));
}

class TraceWriterTest : public CaptureFixture {
protected:
    std::string Path() const { return dir.File("a.tra"); }
    Step Save(std::int64_t first, std::int64_t last) {
        TraceFileWriter writer(*document);
        EXPECT_TRUE(writer.Begin(Path(), first, last));
        return writer.Write(100000);
    }
    std::unique_ptr<CTesselDoc> Load() {
        context.newDocRealTime = false;
        auto loaded = std::make_unique<CTesselDoc>(context, prompts);
        EXPECT_TRUE(loaded->OnOpenDocument(Path()));
        return loaded;
    }

    const TempDir dir;
};

TEST(SaveRange, MustLieWithinTheCapture) {
    EXPECT_EQ(CheckSampleRange(-100, 120, 100, 120), std::nullopt);
    EXPECT_EQ(CheckSampleRange(0, 0, 100, 120), std::nullopt);
    EXPECT_THAT(CheckSampleRange(-101, 0, 100, 120),
                Optional(std::string("Start sample of -101 must be between -100 and 120.")));
    EXPECT_THAT(CheckSampleRange(121, 130, 100, 120),
                Optional(std::string("Start sample of 121 must be between -100 and 120.")));
    EXPECT_THAT(CheckSampleRange(0, 121, 100, 120),
                Optional(std::string("End sample of 121 must be between -100 and 120.")));
    EXPECT_THAT(CheckSampleRange(0, -101, 100, 120),
                Optional(std::string("End sample of -101 must be between -100 and 120.")));
    EXPECT_THAT(CheckSampleRange(5, 4, 100, 120),
                Optional(std::string("End sample must be >= start sample.")));
}

TEST_F(TraceWriterTest, ACaptureIsReadBackEqual) {
    Capture(100, 120, "PCIKite");
    document->comment = "two\r\nlines";
    document->setup.name = "my setup";
    document->setup.levels[3].ifExpr = ParseExpression("E1+E2");
    document->stateList[0].radix = Radix::Octal;
    document->stateList[1].color = 0x123456;
    document->stateList[2].hidden = true;
    document->stateList.MoveGroup(&document->stateList[0], nullptr);
    document->waveformList.DeleteSelected();
    ASSERT_EQ(Save(-100, 120), Step::Done);

    const auto loaded = Load();
    EXPECT_EQ(loaded->comment, "two\r\nlines");
    EXPECT_EQ(loaded->setup.name, "my setup");
    EXPECT_EQ(loaded->setup.levels, document->setup.levels);
    EXPECT_EQ(ListText(loaded->stateList, dir), ListText(document->stateList, dir));
    EXPECT_EQ(ListText(loaded->waveformList, dir), ListText(document->waveformList, dir));
    EXPECT_EQ(ListText(loaded->zoomList, dir), ListText(document->zoomList, dir));
    EXPECT_EQ(loaded->SampleCount(false), 221);
    EXPECT_EQ(loaded->FirstSampleNumber(false), -100);
    EXPECT_EQ(loaded->Marker(0, false), 100);
    for (std::int64_t i = 0; i < 221; ++i) {
        ASSERT_EQ(loaded->GetSample(i, false), RecordAt(static_cast<std::int32_t>(i) - 100));
    }
    for (std::int64_t i = 0; i < 511; ++i) {
        ASSERT_EQ(loaded->GetSample(i, true), RecordAt(static_cast<std::int32_t>(i) - 255));
    }
    EXPECT_THAT(prompts.Texts(), testing::IsEmpty());
}

TEST_F(TraceWriterTest, TheFileLineByLine) {
    Capture(2, 1, "PCIWren");
    document->comment = "D";
    document->waveformList.RemoveAllSignals();
    document->zoomList.RemoveAllSignals();
    ASSERT_EQ(Save(-1, 1), Step::Done);
    const std::string text = ReadWholeFile(Path());
    EXPECT_THAT(text, testing::StartsWith("\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                                          "\"Description\",\"D\"\n\n\"Trace Setup\"\n\"Name\","));
    EXPECT_THAT(text,
                HasSubstr("\"End of Setup Data\"\n\n\"Waveform Signals\"\n\"Signal\",\"Name\","));
    EXPECT_THAT(text, HasSubstr("\"Permanent\"\"BitReverse\"\n\"End of Wave Signals\"\n\n"
                                "\"State Signals\"\n\"Signal\",\"Name\","));
    EXPECT_THAT(text, Not(HasSubstr("Power Zoom Signals")))
        << "no entry for a list that does not exist";
    EXPECT_THAT(text, testing::EndsWith("\"End of State Signals\"\n\n\"Trace Data\",-1,1\n"
                                        "-1,255,255,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                                        "0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                                        "1,1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                                        "\"End of Trace Data\"\n"));
}

TEST_F(TraceWriterTest, AListWithoutSignalsIsReadBackWithoutSignals) {
    Capture(2, 1, "PCIKite");
    document->waveformList.RemoveAllSignals();
    document->stateList.RemoveAllSignals();
    document->zoomList.RemoveAllSignals();
    ASSERT_EQ(Save(-2, 1), Step::Done);
    const auto loaded = Load();
    EXPECT_TRUE(loaded->waveformList.Empty());
    EXPECT_TRUE(loaded->stateList.Empty());
    EXPECT_TRUE(loaded->zoomList.Empty());
    EXPECT_EQ(loaded->GetSample(0, false), RecordAt(-2));
    EXPECT_EQ(loaded->GetSample(0, true), RecordAt(-255));
}

TEST_F(TraceWriterTest, StartAndEndBothZeroGiveOneRow) {
    Capture(100, 100, "PCIWren");
    ASSERT_EQ(Save(0, 0), Step::Done);
    EXPECT_THAT(ReadWholeFile(Path()),
                HasSubstr("\"Trace Data\",0,0\n0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0"
                          "\n\"End of Trace Data\"\n"));
}

TEST_F(TraceWriterTest, ZoomFollowsTheSamples) {
    Capture(1, 1, "PCIKite");
    ASSERT_EQ(Save(-1, 1), Step::Done);
    const std::string text = ReadWholeFile(Path());
    EXPECT_THAT(text,
                HasSubstr("\"End of Trace Data\"\n\n\"Power Zoom Data\",255,256\n-255,1,255,"));
    EXPECT_THAT(text, testing::EndsWith("255,255,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                                        "\"End of Power Zoom Data\"\n"));
}

TEST_F(TraceWriterTest, WithoutSamplesTheFileHasNone) {
    OpenBoard("PCIKite");
    NewDocument();
    TraceFileWriter writer(*document);
    EXPECT_FALSE(writer.HasSamples());
    ASSERT_TRUE(writer.Begin(Path(), 0, 0));
    EXPECT_EQ(writer.Write(10), Step::Done);
    EXPECT_THAT(ReadWholeFile(Path()), Not(HasSubstr("Trace Data\",")));
    EXPECT_EQ(Load()->SampleCount(false), 0);
}

TEST_F(TraceWriterTest, AFilteredFileKeepsItsGapsAndNumbers) {
    context.newDocRealTime = false;
    NewDocument();
    std::string rows;
    for (const int number : {-3, -1, 4}) {
        rows += std::to_string(number) + ",7,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
    }
    const std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                             "\"Trace Data\",-5,5\n" +
                             rows + "\"End of Trace Data\"\n";
    ASSERT_TRUE(document->OnOpenDocument(dir.Write("gaps.tra", text)));
    TraceFileWriter writer(*document);
    ASSERT_TRUE(writer.Begin(Path(), -5, 5));
    ASSERT_EQ(writer.Write(1000), Step::Done);
    const auto loaded = Load();
    EXPECT_EQ(loaded->RowCount(false), 3);
    EXPECT_EQ(loaded->SampleCount(false), 11);
    EXPECT_EQ(loaded->RowToSample(1, false) + loaded->FirstSampleNumber(false), -1);
    EXPECT_THAT(ReadWholeFile(Path()), HasSubstr("\"Trace Data\",-5,5\n" + rows + "\"End"));
}

TEST_F(TraceWriterTest, ACaptureFromAFileKeepsItsNumbersWhereverTheTriggerIs) {
    context.newDocRealTime = false;
    const std::pair<int, int> ranges[] = {{0, 0}, {-20, -10}, {10, 20}, {-3, 90}};
    for (const auto& [first, last] : ranges) {
        NewDocument();
        // Only the ends: gaps in a file are not samples that are still to arrive.
        std::string rows = std::to_string(first) + ",7,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
        if (first != last) {
            rows += std::to_string(last) + ",9,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
        }
        const std::string data = "\"Trace Data\"," + std::to_string(first) + "," +
                                 std::to_string(last) + "\n" + rows + "\"End of Trace Data\"\n";
        ASSERT_TRUE(document->OnOpenDocument(
            dir.Write("in.tra", "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n" + data)));
        TraceFileWriter writer(*document);
        EXPECT_TRUE(writer.HasSamples());
        EXPECT_EQ(-writer.Before(), first);
        EXPECT_EQ(writer.After(), last);
        ASSERT_TRUE(writer.Begin(Path(), first, last));
        ASSERT_EQ(writer.Write(1000), Step::Done) << first;
        EXPECT_THAT(ReadWholeFile(Path()), testing::EndsWith("\n" + data));
    }
}

TEST_F(TraceWriterTest, AFileWithoutSamplesCanBeCopied) {
    context.newDocRealTime = false;
    const std::string header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";
    for (const char* data : {"", "\"Trace Data\",5,3\n\"End of Trace Data\"\n"}) {
        NewDocument();
        ASSERT_TRUE(document->OnOpenDocument(dir.Write("in.tra", header + data)));
        TraceFileWriter writer(*document);
        EXPECT_FALSE(writer.HasSamples());
        EXPECT_EQ(
            CheckSampleRange(-writer.Before(), writer.After(), writer.Before(), writer.After()),
            std::nullopt);
        ASSERT_TRUE(writer.Begin(Path(), 0, 0));
        EXPECT_EQ(writer.Write(10), Step::Done);
        EXPECT_EQ(Load()->SampleCount(false), 0);
    }
}

TEST_F(TraceWriterTest, WaitsForMissingSamplesAndRequestsThem) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Gate gate;
    StopAt(gate);
    upload.BeginUpload();
    gate.AwaitReached();
    NewDocument();
    TraceFileWriter writer(*document);
    ASSERT_TRUE(writer.Begin(Path(), -500, 500));
    EXPECT_EQ(writer.Write(1000), Step::Waiting);
    EXPECT_EQ(writer.Progress(), 0);
    gate.Open();
    ASSERT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    EXPECT_EQ(BlockOrder()[1], 0) << "the block that the writer waits for";
    EXPECT_EQ(writer.Write(400), Step::More);
    EXPECT_EQ(writer.NextNumber(), -100);
    EXPECT_EQ(writer.Progress(), 40);
    EXPECT_EQ(writer.Write(100000), Step::Done);
    EXPECT_EQ(Load()->SampleCount(false), 1001);
}

TEST_F(TraceWriterTest, SamplesThatCannotArriveAreReported) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return board.sampleReads.size() == 3 ? Bytes{} : board.Answer(sent, baud);
    });
    upload.BeginUpload();
    ASSERT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    NewDocument();
    TraceFileWriter writer(*document);
    ASSERT_TRUE(writer.Begin(Path(), -500, 500));
    EXPECT_EQ(writer.Write(1000), Step::Missing);
    EXPECT_EQ(writer.NextNumber(), -500);
    // The samples that have arrived can be saved.
    ASSERT_EQ(Save(-52, 11), Step::Done);
    EXPECT_EQ(Load()->SampleCount(false), 64);
}

TEST_F(TraceWriterTest, ACancelledFileKeepsTheRowsWrittenSoFar) {
    Capture(500, 500, "PCIWren");
    {
        TraceFileWriter writer(*document);
        ASSERT_TRUE(writer.Begin(Path(), -500, 500));
        ASSERT_EQ(writer.Write(10), Step::More);
        writer.Abort();
    }
    const auto loaded = Load();
    EXPECT_EQ(loaded->RowCount(false), 10);
}

TEST_F(TraceWriterTest, AnAbandonedWriterLeavesTheOldFile) {
    Capture(5, 5, "PCIWren");
    dir.Write("a.tra", "old");
    {
        TraceFileWriter writer(*document);
        ASSERT_TRUE(writer.Begin(Path(), -5, 5));
        EXPECT_EQ(writer.Write(3), Step::More);
    }
    EXPECT_EQ(ReadWholeFile(Path()), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()),
                            std::filesystem::directory_iterator()),
              1)
        << "and no temporary file";
}

TEST_F(TraceWriterTest, AFileThatCannotBeCreatedOrCompletedIsReported) {
    Capture(5, 5, "PCIWren");
    TraceFileWriter nowhere(*document);
    EXPECT_FALSE(nowhere.Begin("/nonexistent/a.tra", -5, 5));
    std::filesystem::create_directory(dir.File("gone"));
    TraceFileWriter writer(*document);
    ASSERT_TRUE(writer.Begin(dir.File("gone/a.tra"), -5, 5));
    std::filesystem::remove_all(dir.File("gone"));
    EXPECT_EQ(writer.Write(100), Step::Failed);
}

} // namespace
} // namespace busquill::test
