#include "capture/trace_document.h"
#include "capture/trace_stream.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

const std::string header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";
const std::string zeros = ",0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";

class TraceStreams : public testing::Test {
protected:
    TraceStream& Open(const std::string& text) {
        EXPECT_TRUE(file.Open(dir.Write("a.tra", text)));
        stream = std::make_unique<TraceStream>(file, board.tables);
        return *stream;
    }
    std::vector<std::int32_t> AllNumbers() {
        std::vector<std::int32_t> numbers;
        while (const SampleRows* rows = stream->NextRows()) {
            numbers.insert(numbers.end(), rows->numbers.begin(), rows->numbers.end());
        }
        return numbers;
    }
    /// The numbers of a block; an error goes to `wrong`.
    std::vector<std::int32_t> NumbersOf(const std::string& rows, int first = -2, int last = 5) {
        Open(header + "\"Trace Data\"," + std::to_string(first) + "," + std::to_string(last) +
             "\n" + rows);
        EXPECT_EQ(stream->ReadHead(), "");
        const auto numbers = AllNumbers();
        wrong = stream->Wrong();
        return numbers;
    }
    static std::string Row(int number) { return std::to_string(number) + zeros; }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    TextReader file;
    std::unique_ptr<TraceStream> stream;
    std::string wrong;
};

TEST_F(TraceStreams, GiveRowsInPiecesWithoutThoseOutsideTheRange) {
    EXPECT_THAT(NumbersOf(Row(-3) + Row(-2) + Row(0) + Row(5) + Row(6)), ElementsAre(-2, 0, 5));
    EXPECT_EQ(wrong, "");
}

TEST_F(TraceStreams, GiveMoreRowsThanFitIntoOnePiece) {
    std::string rows;
    const int count = 3 * static_cast<int>(TraceParser::rowsAtOnce) + 7;
    for (int i = 0; i < count; ++i) {
        rows += Row(i);
    }
    const auto numbers = NumbersOf(rows, 0, count - 1);
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(numbers[static_cast<std::size_t>(i)], i);
    }
}

TEST_F(TraceStreams, ReadRowsOfEveryForm) {
    EXPECT_THAT(NumbersOf("\"-2\"" + zeros + "0 ,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,99\n" +
                          "1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n" + // a field is missing
                          "3" + zeros.substr(0, zeros.size() - 1) + "\r\n"),
                ElementsAre(-2, 0, 3));
}

/// A row whose first byte distinguishes it from others with the same number.
std::string Marked(int number, int byte) {
    return std::to_string(number) + "," + std::to_string(byte) + zeros.substr(2);
}

TEST_F(TraceStreams, GiveSamplesInOrderWhereverTheyAreInTheFile) {
    EXPECT_THAT(NumbersOf(Row(3) + Row(9) + Row(-2) + Row(1) + Row(-7)), ElementsAre(-2, 1, 3));
    EXPECT_EQ(wrong, "");
    const std::string text = ReadWholeFile(dir.File("a.tra"));
    EXPECT_EQ(text.substr(stream->BlockBegin(), 13), "\"Trace Data\",");
    EXPECT_EQ(stream->BlockEnd(), text.size());
    EXPECT_TRUE(stream->CutOff());
    ASSERT_EQ(stream->ReadHead(), ""); // and once more
    EXPECT_THAT(AllNumbers(), ElementsAre(-2, 1, 3));
}

TEST_F(TraceStreams, GiveTheLastOfSamplesWithOneNumber) {
    Open(header + "\"Trace Data\",0,40\n" + Marked(3, 1) + Marked(3, 2) + Marked(40, 3) +
         Marked(3, 4) + "\"End of Trace Data\"\n");
    ASSERT_EQ(stream->ReadHead(), "");
    const SampleRows* rows = stream->NextRows();
    ASSERT_NE(rows, nullptr);
    EXPECT_THAT(rows->numbers, ElementsAre(3, 40));
    EXPECT_EQ(rows->records[0].bytes[0], 4);
    EXPECT_EQ(rows->records[1].bytes[0], 3);
    EXPECT_EQ(stream->NextRows(), nullptr);
    EXPECT_FALSE(stream->CutOff());
}

TEST_F(TraceStreams, GiveManyUnorderedSamplesInPieces) {
    std::string rows;
    const int count = 2 * static_cast<int>(TraceParser::rowsAtOnce) + 5;
    for (int i = count; i-- > 0;) {
        rows += Row(i);
    }
    const auto numbers = NumbersOf(rows, 0, count - 1);
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(numbers[static_cast<std::size_t>(i)], i);
    }
}

TEST_F(TraceStreams, AcceptAHeaderAfterTheSamples) {
    Open("\"Trace Data\",0,1\n" + Row(0) + Row(1) + "\"End of Trace Data\"\n" + header +
         "\"Description\",\"late\"\n");
    ASSERT_EQ(stream->ReadHead(), "");
    EXPECT_EQ(stream->comment, "late");
    EXPECT_THAT(AllNumbers(), ElementsAre(0, 1));
}

TEST_F(TraceStreams, AcceptADescriptionAfterTheSamples) {
    Open(header + "\"Trace Data\",0,1\n" + Row(0) + Row(1) + "\"End of Trace Data\"\n" +
         "\"Description\",\"late\"\n");
    ASSERT_EQ(stream->ReadHead(), "");
    EXPECT_EQ(stream->comment, "late");
}

TEST_F(TraceStreams, AgreeWithAWindowInAnyOrderOfTheFile) {
    const std::string zoom = "\"Power Zoom Data\",255,256\n0,9" + zeros.substr(2);
    const std::string text = "\"Trace Data\",0,9\n" + Marked(2, 1) + Marked(0, 2) + zoom +
                             "\"Trace Data\",-3,5\n" + Marked(5, 3) + Marked(-1, 4) + Marked(5, 5) +
                             "\"End of Trace Data\"\n" + header;
    NewTraceContext context{board.tables};
    RecordingPrompts prompts;
    CTesselDoc window(context, prompts);
    ASSERT_TRUE(window.OnOpenDocument(dir.Write("a.tra", text)));
    Open(text);
    TraceSurvey survey;
    ASSERT_EQ(stream->Survey(survey), "");
    EXPECT_EQ(survey.rows, window.RowCount(false));
    EXPECT_EQ(survey.last - survey.first + 1, window.SampleCount(false));
    EXPECT_EQ(survey.zoom.at(255), window.GetSample(255, true));
    EXPECT_EQ(stream->TriggerNumber() - survey.first, window.Marker(0, false));
    std::int64_t row = 0;
    while (const SampleRows* rows = stream->NextRows()) {
        for (std::size_t i = 0; i < rows->Size(); ++i, ++row) {
            const std::int64_t sample = window.RowToSample(row, false);
            EXPECT_EQ(rows->numbers[i], window.FirstSampleNumber(false) + sample);
            EXPECT_EQ(rows->records[i], window.GetSample(sample, false));
        }
    }
    EXPECT_EQ(row, 2);
}

TEST_F(TraceStreams, EndWithTheirBlock) {
    EXPECT_THAT(NumbersOf(Row(0) + "\"End of Trace Data\"\n" + Row(1)), ElementsAre(0));
    const std::string text = ReadWholeFile(dir.File("a.tra"));
    EXPECT_EQ(text.substr(stream->BlockBegin(), 13), "\"Trace Data\",");
    EXPECT_EQ(text.substr(stream->BlockEnd(), 19), "\"End of Trace Data\"");
}

TEST_F(TraceStreams, ReportATruncatedFile) {
    EXPECT_THAT(NumbersOf(Row(0) + "\"End of Trace Data\"\n"), ElementsAre(0));
    EXPECT_FALSE(stream->CutOff());
    EXPECT_THAT(NumbersOf(Row(0) + "1,2,3"), ElementsAre(0));
    EXPECT_TRUE(stream->CutOff());
    EXPECT_EQ(stream->BlockEnd(), ReadWholeFile(dir.File("a.tra")).size());
}

TEST_F(TraceStreams, RefuseFilesOfAnotherTypeOrVersion) {
    EXPECT_EQ(Open("").ReadHead(), "Error: File type of 'Trace Data File' not found.");
    EXPECT_EQ(Open("\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n").ReadHead(),
              "Error: File type of 'Trace Data File' not found.");
    EXPECT_EQ(Open("\"FileType\",\"Trace Data File\"\n\"Version\",\"1.1\"\n").ReadHead(),
              "Error: File version of 1.0 not found.");
    EXPECT_EQ(Open(header + "\"Trace Data\",-2000000000,2000000000\n").ReadHead(),
              "no capture has so many samples");
}

TEST_F(TraceStreams, HaveDefaultListsWhereTheFileHasNone) {
    ASSERT_EQ(Open(header + "\"Description\",\"a, b\"\n").ReadHead(), "");
    EXPECT_EQ(stream->comment, "a, b");
    EXPECT_FALSE(stream->HasSamples());
    EXPECT_FALSE(stream->Parser().HasStateList());
    EXPECT_FALSE(stream->stateList.Empty());
    EXPECT_EQ(stream->zoomList[0].name, "CLK");
    EXPECT_EQ(stream->NextRows(), nullptr);
}

TEST_F(TraceStreams, ASurveyCoversTheWholeFileAndRewinds) {
    Open(header + "\"Trace Data\",-2,5\n" + Row(-1) + Row(0) + Row(4) +
         "\"End of Trace Data\"\n\"Power Zoom Data\",255,256\n-255,7" + zeros.substr(2) + "300" +
         zeros + "\"End of Power Zoom Data\"\n");
    TraceSurvey survey;
    EXPECT_EQ(stream->Survey(survey), "");
    EXPECT_TRUE(survey.hasSamples);
    EXPECT_EQ(survey.first, -2);
    EXPECT_EQ(survey.last, 5);
    EXPECT_EQ(survey.rows, 3);
    EXPECT_EQ(survey.firstRow, -1);
    EXPECT_EQ(survey.lastRow, 4);
    EXPECT_EQ(survey.rowsBefore, 1);
    EXPECT_TRUE(survey.hasTriggerRow);
    EXPECT_TRUE(survey.HasGaps());
    EXPECT_TRUE(survey.hasZoom);
    EXPECT_EQ(survey.zoom.at(0).bytes[0], 7);
    EXPECT_THAT(AllNumbers(), ElementsAre(-1, 0, 4));
}

TEST(TriggerWords, TellWhereTheTriggerIsMarked) {
    const auto words = [](std::int64_t first, std::int64_t last, std::int64_t marked) {
        TraceSurvey survey;
        survey.first = first;
        survey.last = last;
        survey.rowsBefore = marked - first;
        survey.hasTriggerRow = true;
        return TriggerWords(survey, marked);
    };
    EXPECT_EQ(words(-2070, 2025, 0), "sample 0, 2070 samples before it");
    EXPECT_EQ(words(0, 9, 0), "sample 0, 0 samples before it");
    EXPECT_EQ(words(-5, 0, -1), "marked at sample -1, 4 samples before it");
    EXPECT_EQ(words(3, 9, 3), "not among the samples; marked at sample 3");
    EXPECT_EQ(words(-9, -1, -9), "not among the samples; marked at sample -9");
    TraceSurvey cut;
    cut.first = -9;
    cut.last = 9;
    cut.rowsBefore = 2;
    EXPECT_EQ(TriggerWords(cut, 0), "sample 0, which is not in the file, 2 samples before it");
}

TEST_F(TraceStreams, PowerZoomMayPrecedeTheSamples) {
    Open(header + "\"Power Zoom Data\",255,256\n0,9" + zeros.substr(2) +
         "\"End of Power Zoom Data\"\n\"Trace Data\",0,0\n" + Row(0));
    TraceSurvey survey;
    EXPECT_EQ(stream->Survey(survey), "");
    EXPECT_EQ(survey.zoom.at(255).bytes[0], 9);
    EXPECT_EQ(survey.rows, 1);
    EXPECT_FALSE(survey.HasGaps());
}

TEST_F(TraceStreams, GiveTheLastOfSeveralBlocks) {
    const std::string first = "\"Trace Data\",0,5\n" + Row(0) + Row(5);
    const std::string second = "\"Trace Data\",7,8\n" + Row(7);
    Open(header + first + "\"End of Trace Data\"\n" + second + "\"End of Trace Data\"\n");
    TraceSurvey survey;
    EXPECT_EQ(stream->Survey(survey), "");
    EXPECT_EQ(survey.first, 7);
    EXPECT_EQ(survey.rows, 1);
    EXPECT_THAT(AllNumbers(), ElementsAre(7));
    ASSERT_EQ(stream->BlocksBefore().size(), 1U);
    EXPECT_EQ(stream->BlocksBefore()[0].begin, header.size());
    EXPECT_EQ(stream->BlocksBefore()[0].end, header.size() + first.size());
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra")).substr(stream->BlockBegin(), second.size()), second);
}

TEST_F(TraceStreams, TimeToTheTriggerIsSummedUpToItsSample) {
    // TIME is a count above two unit bits, from bit 110 on: byte 13 bit 6.
    const auto timed = [](int number, int count) {
        const int field = count << 2;
        return std::to_string(number) + ",0,0,0,0,0,0,0,0,0,0,0,0,0," +
               std::to_string(field << 6 & 255) + "," + std::to_string(field >> 2 & 255) + "," +
               std::to_string(field >> 10 & 255) + ",0,0\n";
    };
    Open(header + "\"Trace Data\",-2,3\n" + timed(-2, 5) + timed(-1, 30) + timed(0, 40) +
         timed(1, 1000) + "\"End of Trace Data\"\n");
    TraceSurvey survey;
    EXPECT_EQ(stream->Survey(survey), "");
    EXPECT_EQ(survey.timeToTrigger, 5 + 30 + 40);
    EXPECT_EQ(stream->TriggerNumber(), 0);
}

struct RangeCase {
    std::int64_t first, last, before, after, trigger;
};
class Ranges : public testing::TestWithParam<RangeCase> {};

TEST_P(Ranges, DetermineTheTriggerSample) {
    const auto counts = CountsOfRange(GetParam().first, GetParam().last);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->before, GetParam().before);
    EXPECT_EQ(counts->after, GetParam().after);
    EXPECT_EQ(TriggerIndex(*counts), GetParam().trigger);
}

INSTANTIATE_TEST_SUITE_P(Files, Ranges,
                         testing::Values(RangeCase{-10, 20, 10, 20, 10}, RangeCase{0, 0, 0, 0, 0},
                                         RangeCase{-10, 0, 10, 0, 9}, RangeCase{-9, -2, 8, 0, 7},
                                         RangeCase{5, 12, 0, 8, 0}));

} // namespace
} // namespace busquill::test
