#include "capture/trace_document.h"
#include "capture/trace_file.h"
#include "support/board_tables.h"
#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/sanitizers.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <unistd.h>

namespace busquill::test {
namespace {

constexpr auto header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";

std::string Sample(int number, int firstByte) {
    std::string row = std::to_string(number) + "," + std::to_string(firstByte);
    for (int i = 0; i < 17; ++i) {
        row += ",0";
    }
    return row + "\n";
}

std::string Data(int first, int last, const std::string& rows) {
    return "\"Trace Data\"," + std::to_string(first) + "," + std::to_string(last) + "\n" + rows +
           "\"End of Trace Data\"\n";
}

class TraceFile : public testing::Test {
protected:
    bool Load(const std::string& text) {
        document = std::make_unique<CTesselDoc>(context, prompts);
        return document->OnOpenDocument(dir.Write("capture.tra", text));
    }
    std::vector<std::int64_t> RowNumbers() const {
        std::vector<std::int64_t> numbers;
        for (std::int64_t row = 0; row < document->RowCount(false); ++row) {
            numbers.push_back(document->FirstSampleNumber(false) +
                              document->RowToSample(row, false));
        }
        return numbers;
    }

    std::vector<std::uint64_t> PositionsWhileReading(const std::string& text) {
        std::vector<std::uint64_t> positions;
        context.onReading = [&](const std::string& path, std::uint64_t bytes) {
            EXPECT_EQ(path, dir.File("capture.tra"));
            positions.push_back(bytes);
        };
        EXPECT_TRUE(Load(text));
        return positions;
    }

    /// The state list's row of a single line, not of a decoded column.
    const CSignal& Row(const std::string& name) const {
        for (const auto& signal : document->stateList.All()) {
            if (signal->name == name && signal->bitIndex == -1) {
                return *signal;
            }
        }
        throw std::runtime_error("no row " + name);
    }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    std::unique_ptr<CTesselDoc> document;
};

TEST_F(TraceFile, TellsHowMuchItHasReadWhileItReads) {
    constexpr int count = 50'000;
    std::string rows;
    for (int i = 0; i < count; ++i) {
        rows += Sample(i, i & 0xFF);
    }
    const std::string text = header + Data(0, count - 1, rows);

    const std::vector<std::uint64_t> positions = PositionsWhileReading(text);

    ASSERT_GT(positions.size(), 4U); // more often than once a MiB
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    EXPECT_LT(positions.front(), text.size() / 2);
    EXPECT_GT(positions.back(), text.size() / 2);
    EXPECT_LE(positions.back(), text.size());
}

TEST_F(TraceFile, ReadsSamplesByTheirNumbers) {
    ASSERT_TRUE(Load(header +
                     Data(-2, 1, Sample(-2, 10) + Sample(-1, 11) + Sample(0, 12) + Sample(1, 13))));
    EXPECT_EQ(RowNumbers(), (std::vector<std::int64_t>{-2, -1, 0, 1}));
    EXPECT_EQ(document->GetSample(2, false)->bytes[0], 12);
    EXPECT_EQ(document->Marker(0, false), 2);
    EXPECT_EQ(document->GetSample(4, false), std::nullopt);
    // The lowest bit of the bus, in the group's packed rows.
    for (const auto& signal : document->stateList.All()) {
        if (signal->groupName == "AD[63:0]") {
            EXPECT_EQ(signal->GroupRow(1)[0], 11);
        }
    }
}

TEST_F(TraceFile, BuildsTheListsThatTheFileDoesNotHave) {
    ASSERT_TRUE(Load(header + Data(0, 0, Sample(0, 1))));
    EXPECT_FALSE(document->stateList.Empty());
    EXPECT_FALSE(document->waveformList.Empty());
    EXPECT_FALSE(document->HasStateList());
}

TEST_F(TraceFile, StateListOfTheFileIsShownAsState) {
    ASSERT_TRUE(Load(header +
                     std::string("\"State Signals\"\n\"Signal\",\"Name\",\"x\"\n"
                                 "\"Signal\",\"IRDY\",\"IRDY\",\"\",\"\",\"\",-1,74\n"
                                 "\"End of State Signals\"\n") +
                     Data(0, 0, Sample(0, 1))));
    EXPECT_TRUE(document->HasStateList());
    ASSERT_EQ(document->stateList.Size(), 1U);
    EXPECT_EQ(document->stateList[0].name, "IRDY");
    EXPECT_EQ(document->stateList[0].numSamples, 1U);
}

TEST_F(TraceFile, TakesNameAndDescription) {
    ASSERT_TRUE(Load(header + std::string("\"Description\",\"two\nlines\"\n\n\"Trace Setup\"\n"
                                          "\"Name\",\"My setup\"\n\"End of Setup Data\"\n")));
    EXPECT_EQ(document->comment, "two\r\nlines");
    EXPECT_EQ(document->setupName, "My setup");
    EXPECT_EQ(document->fileName, "capture");
    EXPECT_TRUE(document->LoadedFromFile());
}

TEST_F(TraceFile, StartAndEndBothZeroAreOneSample) {
    ASSERT_TRUE(Load(header + Data(0, 0, Sample(0, 7))));
    EXPECT_EQ(RowNumbers(), std::vector<std::int64_t>{0});
    EXPECT_EQ(document->Marker(0, false), 0);
}

TEST_F(TraceFile, DataLineWithoutSamplesIsAnEmptyTrace) {
    ASSERT_TRUE(Load(header + Data(-5, 5, "")));
    EXPECT_EQ(document->SampleCount(false), 11);
    EXPECT_EQ(document->RowCount(false), 0);
    EXPECT_EQ(document->RowToSample(3, false), 0);
}

TEST_F(TraceFile, SamplesThatAFilterRemovedStayOut) {
    ASSERT_TRUE(Load(header + Data(-3, 3, Sample(-3, 1) + Sample(0, 2) + Sample(3, 3))));
    EXPECT_EQ(RowNumbers(), (std::vector<std::int64_t>{-3, 0, 3}));
    EXPECT_TRUE(document->IsFiltered());
    EXPECT_TRUE(document->IsRowSample(3, false));
    EXPECT_FALSE(document->IsRowSample(4, false));
}

TEST_F(TraceFile, FilteredRowsMapBothWays) {
    ASSERT_TRUE(Load(header + Data(0, 9, Sample(2, 1) + Sample(5, 2) + Sample(9, 3))));
    const std::pair<int, int> rows[] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0},
                                        {5, 1}, {6, 1}, {8, 1}, {9, 2}, {20, 2}};
    for (const auto& [sample, row] : rows) {
        EXPECT_EQ(document->SampleToRow(sample, false), row) << sample;
    }
    EXPECT_EQ(document->RowToSample(-1, false), -1);
    EXPECT_EQ(document->RowToSample(3, false), -1);
    EXPECT_EQ(document->RowToSample(1, false), 5);
}

TEST_F(TraceFile, RowOfEighteenFieldsIsIgnored) {
    std::string shortRow = Sample(1, 9);
    shortRow.erase(shortRow.rfind(",0"));
    ASSERT_TRUE(Load(header + Data(0, 2, Sample(0, 1) + shortRow + "\n" + Sample(2, 3))));
    EXPECT_EQ(RowNumbers(), (std::vector<std::int64_t>{0, 2}));
}

TEST_F(TraceFile, NumbersOutsideTheRangeAreSkipped) {
    ASSERT_TRUE(Load(header + Data(0, 1,
                                   Sample(-7, 1) + Sample(1, 2) + Sample(99, 3) +
                                       "99999999999,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n")));
    EXPECT_EQ(RowNumbers(), std::vector<std::int64_t>{1});
}

TEST_F(TraceFile, ValuesAreCutToAByte) {
    ASSERT_TRUE(Load(header + Data(0, 1, Sample(0, 511) + Sample(1, -1))));
    EXPECT_EQ(document->GetSample(0, false)->bytes[0], 0xFF);
    EXPECT_EQ(document->GetSample(1, false)->bytes[0], 0xFF);
}

TEST_F(TraceFile, TruncatedFileKeepsItsCompleteRows) {
    ASSERT_TRUE(Load(header + std::string("\"Trace Data\",-2,5\n") + Sample(-2, 1) + Sample(-1, 3) +
                     "0,1,2,3"));
    EXPECT_EQ(RowNumbers(), (std::vector<std::int64_t>{-2, -1}));
    EXPECT_EQ(document->GetSample(1, false)->bytes[0], 3);
    EXPECT_EQ(Row("IRDY").numSamples, 8U);
}

TEST_F(TraceFile, PowerZoomBlockFillsItsOwnList) {
    ASSERT_TRUE(Load(header + Data(0, 0, Sample(0, 0)) + "\"Power Zoom Data\",255,256\n" +
                     Sample(-255, 1) + Sample(0, 2) + Sample(255, 4) + Sample(256, 8) +
                     "\"End of Power Zoom Data\"\n"));
    EXPECT_TRUE(document->store.HasZoom());
    EXPECT_EQ(document->GetSample(0, true)->bytes[0], 1);
    EXPECT_EQ(document->GetSample(255, true)->bytes[0], 2);
    EXPECT_EQ(document->GetSample(510, true)->bytes[0], 4);
    EXPECT_EQ(document->GetSample(511, true), std::nullopt);
    EXPECT_EQ(document->zoomList[0].name, "CLK");
    EXPECT_EQ(document->FirstSampleNumber(true), -255);
    EXPECT_EQ(document->Marker(0, true), 255);
}

TEST_F(TraceFile, PowerZoomMayPrecedeTheSamples) {
    ASSERT_TRUE(Load(header + std::string("\"Power Zoom Data\",255,256\n") + Sample(0, 8) +
                     "\"End of Power Zoom Data\"\n" + Data(0, 0, Sample(0, 1))));
    ASSERT_TRUE(document->store.HasZoom());
    EXPECT_EQ(document->GetSample(255, true)->bytes[0], 8);
    EXPECT_EQ(document->GetSample(0, false)->bytes[0], 1);
}

TEST_F(TraceFile, WrongTypeOrVersionIsOneMessage) {
    EXPECT_FALSE(Load("\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n"));
    EXPECT_FALSE(Load("\"FileType\",\"Trace Data File\"\n\"Version\",\"1.1\"\n"));
    EXPECT_EQ(prompts.Texts(),
              (std::vector<std::string>{"Error: File type of 'Trace Data File' not found.",
                                        "Error: File version of 1.0 not found."}));
}

TEST_F(TraceFile, MissingFileIsOneMessage) {
    CTesselDoc missing(context, prompts);
    EXPECT_FALSE(missing.OnOpenDocument("/nonexistent/a.tra"));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error opening file /nonexistent/a.tra."});
}

TEST_F(TraceFile, ABinaryFileIsOneMessage) {
    std::mt19937 random(7);
    std::string noise(200'000, '\0');
    for (char& c : noise) {
        c = static_cast<char>(random());
    }
    EXPECT_FALSE(Load(noise));
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"Error: File type of 'Trace Data File' not found."});
}

TEST_F(TraceFile, RangeOfBillionsIsOneMessage) {
    for (const char* range : {"-2000000000,2000000000", "0,99999999999999", "-99999999999,0"}) {
        prompts.Forget();
        EXPECT_FALSE(Load(header + std::string("\"Trace Data\",") + range + "\n" + Sample(0, 1)));
        EXPECT_EQ(prompts.Texts(),
                  std::vector<std::string>{"Error reading file " + dir.File("capture.tra") +
                                           ": no capture has so many samples."})
            << range;
    }
}

/// The resident memory of this process in bytes.
std::int64_t MemoryInUse() {
    std::ifstream file("/proc/self/statm");
    std::int64_t pages = 0;
    file >> pages >> pages;
    return pages * ::sysconf(_SC_PAGESIZE);
}

TEST_F(TraceFile, ASparseRangeTakesMemoryForItsSamplesOnly) {
    // The shadow memory of a sanitizer counts too, and is several times as large.
    constexpr std::int64_t most = std::int64_t{livesOnAddresses ? 16'384 : 200} << 20;
    // In all lists together this would be more than 4 GB.
    constexpr int before = 16'000'000;
    constexpr int after = 16'000'000;
    const std::int64_t inUse = MemoryInUse();
    ASSERT_TRUE(
        Load(header + Data(-before, after, Sample(-before, 1) + Sample(0, 2) + Sample(after, 3))));
    EXPECT_LT(MemoryInUse() - inUse, most);
    EXPECT_EQ(document->SampleCount(false), before + after + 1);
    EXPECT_EQ(RowNumbers(), (std::vector<std::int64_t>{-before, 0, after}));
    for (const auto& signal : document->stateList.All()) {
        if (signal->groupName == "AD[63:0]") {
            EXPECT_EQ(signal->GroupRow(0)[0], 1);
            EXPECT_EQ(signal->GroupRow(1)[0], 0);
            EXPECT_EQ(signal->GroupRow(before)[0], 2);
            EXPECT_EQ(signal->GroupRow(before + after)[0], 3);
        }
        if (signal->RowName() == "COMMAND") {
            EXPECT_STREQ(signal->Label(before + after), "Int Ack");
        }
    }
    // A new column and a filter.
    for (const auto& def : board.tables.decodedSignals.Defs()) {
        if (def->name == "DATA32") {
            CSignal* added =
                document->stateList.AddSignal(nullptr, def, 0, 0, 0, 0, Radix::Hex, true);
            document->LoadSignal(document->stateList, *added, false);
            EXPECT_EQ(added->GroupRow(before + after)[0], 3);
        }
    }
    document->ApplyFilter(0);
    EXPECT_EQ(document->RowCount(false), 3);
    EXPECT_LT(MemoryInUse() - inUse, most);
}

TEST_F(TraceFile, ReversedRangeHoldsNothing) {
    ASSERT_TRUE(Load(header + Data(10, -10, Sample(0, 1))));
    EXPECT_EQ(document->SampleCount(false), 0);
}

TEST_F(TraceFile, NumSamplesOfBillionsTakesNoMemory) {
    std::string text = header;
    text += "\"State Signals\"\n";
    for (int i = 0; i < 500; ++i) {
        text += "\"Signal\",\"X\",\"X\",\"\",\"\",\"\",-1,1,2147483647,20,30,0\n\"Data\",1\n";
    }
    EXPECT_TRUE(Load(text));
    for (const auto& signal : document->stateList.All()) {
        EXPECT_LE(signal->data.size(), 8U);
    }
}

TEST_F(TraceFile, PlainRowsAndQuotedRowsReadTheSame) {
    std::mt19937 random(20240607);
    std::string plain;
    std::string quoted;
    for (int number = -50; number < 50; ++number) {
        std::string bytes[18];
        plain += std::to_string(number);
        quoted += " " + std::to_string(number);
        for (std::string& byte : bytes) {
            byte = std::to_string(static_cast<int>(random() % 600) - 300);
            plain += "," + byte;
            quoted += random() % 2 == 0 ? ",\"" + byte + "\"" : " , " + byte;
        }
        plain += "\n";
        quoted += "\r\n";
    }
    ASSERT_TRUE(Load(header + Data(-50, 49, plain)));
    const auto ofPlain = document->store.GetData(false);
    const std::vector<SampleRecord> expected(ofPlain.begin(), ofPlain.end());
    ASSERT_TRUE(Load(header + Data(-50, 49, quoted)));
    const auto ofQuoted = document->store.GetData(false);
    EXPECT_EQ(std::vector<SampleRecord>(ofQuoted.begin(), ofQuoted.end()), expected);
}

TEST_F(TraceFile, StoredCapturesOfTheProgramLoad) {
    for (const auto& [name, samples] : {std::pair{"Trigger1.tra", 8192}, {"Trigger2.tra", 4096}}) {
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnOpenDocument(SourceFile("data/" + std::string(name))));
        EXPECT_EQ(document->SampleCount(false), samples);
        EXPECT_EQ(document->RowCount(false), samples);
        EXPECT_NEAR(static_cast<double>(document->Marker(0, false)), samples / 2.0, 64.0);
    }
    std::vector<std::string> columns;
    for (const auto& signal : document->stateList.All()) {
        if (signal->VisibleWidth() > 0) {
            columns.push_back(signal->RowName());
        }
    }
    const std::vector<std::string> first(columns.begin(), columns.begin() + 7);
    EXPECT_EQ(first, (std::vector<std::string>{"TIME", "COMMAND", "ADDRESS32", "DATA32",
                                               "RULE CHECK", "AD[63:0]", "C/BE[7:0]"}));
}

TEST(AllocateForFile, SplitsTheRangeAtTheTrigger) {
    CSampleStore store;
    ASSERT_TRUE(store.AllocateForFile(-10, 20));
    EXPECT_EQ(store.SamplesBefore(), 10);
    EXPECT_EQ(store.SamplesAfter(), 20);
    ASSERT_TRUE(store.AllocateForFile(-10, -4));
    EXPECT_EQ(store.SamplesBefore(), 7);
    EXPECT_EQ(store.SamplesAfter(), 0);
    ASSERT_TRUE(store.AllocateForFile(5, 9));
    EXPECT_EQ(store.SamplesBefore(), 0);
    EXPECT_EQ(store.SamplesAfter(), 5);
    EXPECT_EQ(store.FirstNumber(), 5);
    EXPECT_EQ(store.GetCount(false), 5U);
    EXPECT_EQ(store.GetCount(true), 511U);
}

TEST(PutZoomSample, WorksOnlyIfThereIsZoomData) {
    CSampleStore store;
    SampleRecord record;
    record.bytes[0] = 1;
    store.PutZoomSample(0, record);
    EXPECT_FALSE(store.HasZoom());
    EXPECT_FALSE(store.GetZoomSample(0).has_value());
    store.ResetZoom();
    store.PutZoomSample(0, record);
    EXPECT_EQ(store.GetZoomSample(0)->bytes[0], 1);
    EXPECT_FALSE(store.GetZoomSample(511).has_value());
}

TEST_F(TraceFile, ListsFromTheFileGetTheirRowsAndLabels) {
    const std::string lists = "\"Waveform Signals\"\n"
                              "\"Signal\",\"AD[0]\",\"AD\",\"Grouped\",\"AD[1:0]\",\"Start\",0,0,0,"
                              "20,30,0,\"Show\",\"Hex\","
                              "\"\",\"\",\"\",\"\",\"\"\n"
                              "\"Signal\",\"AD[1]\",\"AD\",\"Grouped\",\"\",\"End\",1,1,0,20,30,0,"
                              "\"Show\",\"Hex\",\"\",\"\",\"\","
                              "\"\",\"\"\n"
                              "\"End of Wave Signals\"\n";
    ASSERT_TRUE(Load(header + lists +
                     Data(0, 3, Sample(0, 0) + Sample(1, 1) + Sample(2, 2) + Sample(3, 3))));
    EXPECT_EQ(document->waveformList.mode, ModeWaveform);
    ASSERT_EQ(document->waveformList.Size(), 2U);
    const CSignal& bus = document->waveformList[0];
    EXPECT_EQ(bus.groupWidth, 2U);
    for (std::size_t i = 0; i < 4; ++i) {
        ASSERT_EQ(bus.GroupRow(i).size(), 1U);
        EXPECT_EQ(bus.GroupRow(i)[0], i);
    }
}

} // namespace
} // namespace busquill::test
