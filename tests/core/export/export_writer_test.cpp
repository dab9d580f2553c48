#include "export/export_writer.h"
#include "support/capture_fixture.h"
#include "support/full_disk.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::int32_t sampledAt15ns = 5;

/// A file inside a zip archive.
std::string InArchive(const std::string& path, const std::string& name) {
    const std::unique_ptr<archive, decltype(&archive_read_free)> zip(archive_read_new(),
                                                                     archive_read_free);
    archive_read_support_format_zip(zip.get());
    EXPECT_EQ(archive_read_open_filename(zip.get(), path.c_str(), 10240), ARCHIVE_OK);
    archive_entry* entry = nullptr;
    while (archive_read_next_header(zip.get(), &entry) == ARCHIVE_OK) {
        if (archive_entry_pathname(entry) == name) {
            std::array<char, 65536> text{};
            const la_ssize_t size = archive_read_data(zip.get(), text.data(), text.size());
            return {text.data(), static_cast<std::size_t>(std::max<la_ssize_t>(size, 0))};
        }
    }
    return {};
}

class ExportWriterTest : public CaptureFixture {
protected:
    [[nodiscard]] std::unique_ptr<ExportWriter> Writer(ExportFormat format, bool zoom = false) {
        return std::make_unique<ExportWriter>(
            *document, ExportWriter::What{format, zoom ? document->zoomList : document->stateList,
                                          zoom ? ListUse::Wave : ListUse::State, zoom, true});
    }
    SampleStep Save(ExportFormat format, const std::string& name, std::int64_t first,
                    std::int64_t last) {
        const auto writer = Writer(format);
        EXPECT_TRUE(writer->Begin(dir.File(name), first, last));
        SampleStep step = SampleStep::More;
        while (step == SampleStep::More) {
            step = writer->Write(100);
        }
        note = writer->Note();
        return step;
    }
    /// The files in the folder, without the path.
    [[nodiscard]] std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
            names.push_back(entry.path().filename().string());
        }
        std::ranges::sort(names);
        return names;
    }

    const TempDir dir;
    std::string note;
};

TEST(ExportFormat, IsThatOfTheEndOfTheName) {
    EXPECT_EQ(ExportFormatOf("/a.csv/b.vcd"), ExportFormat::Dump);
    EXPECT_EQ(ExportFormatOf("b.CSV"), ExportFormat::Table);
    EXPECT_EQ(ExportFormatOf("b.sr"), ExportFormat::Session);
    EXPECT_EQ(ExportFormatOf("b.tra"), std::nullopt);
    EXPECT_EQ(ExportFormatOf("csv"), std::nullopt);
}

TEST_F(ExportWriterTest, ATableHasARowForEachSampleOfTheRange) {
    Capture(500, 500);
    ASSERT_EQ(Save(ExportFormat::Table, "a.csv", -3, 250), SampleStep::Done);
    const std::string text = ReadWholeFile(dir.File("a.csv"));
    EXPECT_THAT(text, StartsWith("SAMPLE,Time [ns],COMMAND,"));
    EXPECT_THAT(text, HasSubstr("\n-3,"));
    EXPECT_THAT(text, HasSubstr("\n250,"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 254);
    EXPECT_EQ(note, "");
}

TEST_F(ExportWriterTest, ADumpHasItsViewersFile) {
    Capture(5, 5);
    ASSERT_EQ(Save(ExportFormat::Dump, "a.vcd", -5, 5), SampleStep::Done);
    EXPECT_THAT(ReadWholeFile(dir.File("a.vcd")), HasSubstr("$enddefinitions $end"));
    EXPECT_THAT(ReadWholeFile(dir.File("a.gtkw")), HasSubstr(dir.File("a.vcd")));
}

TEST_F(ExportWriterTest, AViewersFileThatCannotBeWrittenIsReported) {
    Capture(5, 5);
    std::filesystem::create_directory(dir.File("a.gtkw"));
    ASSERT_EQ(Save(ExportFormat::Dump, "a.vcd", -5, 5), SampleStep::Done);
    EXPECT_EQ(note, "Error writing file " + dir.File("a.gtkw") + ".");
}

TEST_F(ExportWriterTest, ASessionOfABusClockGoesThroughTheSamplesTwice) {
    Capture(500, 500);
    document->setup.clock = 2;
    const auto writer = Writer(ExportFormat::Session);
    ASSERT_TRUE(writer->Begin(dir.File("a.sr"), -500, 500));
    EXPECT_EQ(writer->Write(500), SampleStep::More);
    EXPECT_EQ(writer->Progress(), 25);
    EXPECT_EQ(writer->Write(501), SampleStep::More);
    EXPECT_EQ(writer->Progress(), 50);
    EXPECT_EQ(writer->Write(500), SampleStep::More);
    EXPECT_EQ(writer->Progress(), 75);
    EXPECT_FALSE(std::filesystem::exists(dir.File("a.sr")));
    EXPECT_EQ(writer->Write(5000), SampleStep::Done);
    EXPECT_THAT(ReadWholeFile(dir.File("a.sr")), StartsWith("PK"));
}

TEST_F(ExportWriterTest, ASessionHasTheRateOfASampledClock) {
    Capture(20, 20);
    document->setup.clock = sampledAt15ns;
    ASSERT_EQ(Save(ExportFormat::Session, "a.sr", -20, 20), SampleStep::Done);
    EXPECT_THAT(InArchive(dir.File("a.sr"), "metadata"), HasSubstr("samplerate=66666667 Hz\n"));
}

TEST_F(ExportWriterTest, ASessionOfABusClockWithoutARateSaysSo) {
    Capture(20, 20);
    ASSERT_EQ(Save(ExportFormat::Session, "a.sr", -20, 20), SampleStep::Done);
    EXPECT_THAT(InArchive(dir.File("a.sr"), "metadata"), HasSubstr("samplerate=1 Hz\n"));
    EXPECT_EQ(note, "The clock of the samples is \"Sync\", that of the bus; a session file knows "
                    "one rate only, so it shows samples, one a second, not time.");
}

TEST_F(ExportWriterTest, WaitsForMissingSamplesAndRequestsThem) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Gate gate;
    StopAt(gate);
    upload.BeginUpload();
    gate.AwaitReached();
    NewDocument();
    document->OnCaptureStopped();
    const auto writer = Writer(ExportFormat::Table);
    ASSERT_TRUE(writer->Begin(dir.File("a.csv"), -500, 500));
    EXPECT_EQ(writer->Write(1000), SampleStep::Waiting);
    gate.Open();
    ASSERT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    EXPECT_EQ(BlockOrder()[1], 0) << "the block that the writer waits for";
    EXPECT_EQ(writer->Write(100000), SampleStep::Done);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("a.csv")), '\n'), 1 + 1001);
}

TEST_F(ExportWriterTest, AFileThatIsGivenUpIsNotLeft) {
    Capture(500, 500);
    dir.Write("a.csv", "old");
    for (const char* name : {"a.csv", "b.vcd", "c.sr"}) {
        const auto writer = Writer(*ExportFormatOf(name));
        ASSERT_TRUE(writer->Begin(dir.File(name), -500, 500));
        EXPECT_EQ(writer->Write(300), SampleStep::More);
        writer->Abort();
    }
    EXPECT_EQ(Files(), std::vector<std::string>{"a.csv"});
    EXPECT_EQ(ReadWholeFile(dir.File("a.csv")), "old");
}

TEST_F(ExportWriterTest, AFullDiskLeavesNoFile) {
    Capture(500, 500);
    for (const char* name : {"a.csv", "b.vcd", "c.sr"}) {
        const FullDisk full(1000);
        EXPECT_EQ(Save(*ExportFormatOf(name), name, -500, 500), SampleStep::Failed) << name;
    }
    EXPECT_EQ(Files(), std::vector<std::string>());
}

TEST_F(ExportWriterTest, AFolderThatMayNotBeWrittenIsReportedAtOnce) {
    Capture(5, 5);
    EXPECT_FALSE(Writer(ExportFormat::Table)->Begin("/nonexistent/a.csv", -5, 5));
}

TEST_F(ExportWriterTest, PowerZoomSamplesHaveTheirNumbers) {
    Capture(5, 5);
    store.ResetZoom();
    for (std::uint32_t slot = 0; slot < zoomSampleCount; ++slot) {
        store.PutZoomSample(slot, {});
    }
    const auto writer = Writer(ExportFormat::Table, true);
    ASSERT_TRUE(writer->Begin(dir.File("a.csv"), -255, 255));
    EXPECT_EQ(writer->Write(100000), SampleStep::Done);
    const std::string text = ReadWholeFile(dir.File("a.csv"));
    EXPECT_THAT(text, HasSubstr("\n-255,"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 511);
}

TEST_F(ExportWriterTest, ACaptureWithGapsSaysSo) {
    const std::string row = ",0,0,0,0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
    const std::string path =
        dir.Write("gaps.tra", "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                              "\"Trace Data\",0,9\n0" +
                                  row + "1" + row + "9" + row + "\"End of Trace Data\"\n");
    context.newDocRealTime = false;
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnOpenDocument(path));
    ASSERT_EQ(Save(ExportFormat::Table, "a.csv", 0, 9), SampleStep::Done);
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("a.csv")), '\n'), 1 + 3);
    EXPECT_EQ(note, "Not all samples of the range are in the file: the filter hides some, or they "
                    "are missing. Added times are too short by theirs.");
    EXPECT_EQ(Save(ExportFormat::Table, "none.csv", 3, 7), SampleStep::Nothing);
    EXPECT_EQ(Save(ExportFormat::Session, "none.sr", 3, 7), SampleStep::Nothing);
    EXPECT_THAT(Files(), Not(Contains(HasSubstr("none")))) << "nothing empty is left";
}

TEST_F(ExportWriterTest, OfANewRunTheSamplesHaveItsNumbers) {
    Capture(20, 20);
    const auto writer = Writer(ExportFormat::Table);
    SetLive(0x20, 5, 5); // a second run ends meanwhile
    Upload();
    document->OnCaptureStopped();
    document->FlushBlockUpdates();
    ASSERT_TRUE(writer->Begin(dir.File("b.csv"), -5, 4));
    ASSERT_EQ(writer->Write(100), SampleStep::Done);
    const std::string text = ReadWholeFile(dir.File("b.csv"));
    EXPECT_THAT(text, HasSubstr("\n-5,"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 10);
}

} // namespace
} // namespace busquill::test
