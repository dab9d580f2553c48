#include "capture/record_pattern.h"
#include "capture/trace_search.h"
#include "support/capture_fixture.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <random>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Sets a bit of a pattern: its value and its compare bit.
void Require(CSignalList& pattern, std::int32_t dataIndex, bool value) {
    for (const auto& signal : pattern.All()) {
        if (signal->dataIndex == dataIndex) {
            signal->data[0] = value ? 1 : 0;
            signal->mask[0] = 1;
        }
    }
}

/// One signal for each of the bits that a pattern can compare.
CSignalList EmptyPattern() {
    CSignalList list(NoTables());
    for (std::int32_t bit = 0; bit < 144; ++bit) {
        CSignal* signal = list.InsertBlank(nullptr);
        signal->dataIndex = bit;
        signal->data = {0};
        signal->mask = {0};
    }
    return list;
}

/// The byte by byte loop that defines a match.
bool SlowMatch(const SampleRecord& record, const CSignalList& list) {
    const auto row = [&] {
        std::array<std::uint8_t, 30> pairs{};
        for (const auto& signal : list.All()) {
            const auto p = static_cast<std::size_t>(signal->dataIndex);
            if (p < 120) {
                const auto bit = static_cast<std::uint8_t>(1U << (p % 8));
                pairs[2 * (p / 8)] |= (signal->data[0] & 1) != 0 ? bit : 0;
                pairs[2 * (p / 8) + 1] |= (signal->mask[0] & 1) != 0 ? bit : 0;
            }
        }
        return pairs;
    }();
    for (std::size_t i = 0; i < 15; ++i) {
        if ((record.bytes[i] & row[2 * i + 1]) != (row[2 * i] & row[2 * i + 1])) {
            return false;
        }
    }
    return true;
}

TEST(Search, AgreesWithALoopOverBytes) {
    constexpr unsigned seed = 3;
    std::mt19937 random(seed);
    for (int round = 0; round < 100; ++round) {
        std::vector<SampleRecord> records(random() % 200);
        for (SampleRecord& record : records) {
            for (std::uint8_t& byte : record.bytes) {
                byte = static_cast<std::uint8_t>(random() % 3); // so that matches are found
            }
        }
        CSignalList list = EmptyPattern();
        for (std::uint32_t n = random() % 4; n > 0; --n) {
            Require(list, static_cast<std::int32_t>(random() % 144), random() % 2 != 0);
        }
        list[random() % 120].data[0] ^= 1; // a value without its compare bit does not matter
        std::vector<std::uint32_t> excluded;
        if (round % 2 != 0) {
            excluded.resize((records.size() + 31) / 32);
            for (std::uint32_t& word : excluded) {
                word = static_cast<std::uint32_t>(random());
            }
        }
        const RecordPattern pattern(list);
        const auto count = static_cast<std::int64_t>(records.size());
        std::vector<std::uint32_t> expected;
        for (std::int64_t i = 0; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const bool matches = SlowMatch(records[at], list);
            ASSERT_EQ(pattern.Matches(records[at]), matches) << "seed " << seed << " " << round;
            const bool out = !excluded.empty() && (excluded[at / 32] >> (at % 32) & 1) != 0;
            if (matches && !out) {
                expected.push_back(static_cast<std::uint32_t>(i));
            }
        }
        std::vector<std::uint32_t> samples;
        std::vector<std::uint32_t> bits;
        FindAll(records, pattern, excluded, samples, bits);
        EXPECT_EQ(samples, expected) << "seed " << seed << " round " << round;
        for (std::size_t i = 0; i < records.size(); ++i) {
            EXPECT_EQ((bits[i / 32] >> (i % 32) & 1) != 0,
                      std::binary_search(expected.begin(), expected.end(), i));
        }
        const std::int64_t start = count == 0 ? 0 : static_cast<std::int64_t>(random()) % count;
        std::optional<std::int64_t> forward;
        for (std::int64_t i = start; i < count && !forward; ++i) {
            if (SlowMatch(records[static_cast<std::size_t>(i)], list)) {
                forward = i;
            }
        }
        std::optional<std::int64_t> backward;
        for (std::int64_t i = start; i > 0 && i < count && !backward; --i) {
            if (SlowMatch(records[static_cast<std::size_t>(i)], list)) {
                backward = i;
            }
        }
        EXPECT_EQ(FindForward(records, pattern, start), forward) << "seed " << seed;
        EXPECT_EQ(FindBackward(records, pattern, start), backward) << "seed " << seed;
    }
}

TEST(Search, BitsPastTheHundredAndTwentiethAreNotCompared) {
    CSignalList list = EmptyPattern();
    Require(list, 120, true);
    EXPECT_TRUE(RecordPattern(list).Matches(SampleRecord()));
    Require(list, 119, true);
    EXPECT_FALSE(RecordPattern(list).Matches(SampleRecord()));
}

class RecordingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* object) override {
        hints.push_back(hint);
        if (const auto* target = dynamic_cast<const GoToSampleHint*>(object)) {
            sample = target->sample;
        }
    }
    std::vector<int> hints;
    std::int64_t sample = -1;
};

/// A stored capture of 1000 samples with counting data lines; the trigger is sample 500.
class SearchOfAFile : public testing::Test {
protected:
    SearchOfAFile() {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                           "\"Trace Data\",-500,499\n";
        for (int i = 0; i < 1000; ++i) {
            text += std::to_string(i - 500) + "," + std::to_string(i & 255) + "," +
                    std::to_string(i >> 8) + ",0,0,0,0,0,0,0,0,0,0,0,0,0,30,0,0\n";
        }
        document = std::make_unique<CTesselDoc>(context, prompts);
        EXPECT_TRUE(document->OnOpenDocument(dir.Write("samples.tra", text)));
        document->AddView(&view);
    }
    ~SearchOfAFile() override { document->RemoveView(&view); }
    /// A pattern that only the sample with this index matches.
    static void RequireSample(CSignalList& pattern, int sample) {
        for (int bit = 0; bit < 10; ++bit) {
            Require(pattern, bit, (sample >> bit & 1) != 0);
        }
    }
    std::int64_t Start(SearchDirection direction, std::int64_t firstShown = 40) {
        return SearchStart(*document, direction, firstShown);
    }
    void Search(SearchDirection direction) {
        SearchHost(*document, direction, Start(direction), prompts);
    }
    [[nodiscard]] std::int64_t Hit() const { return document->Marker(1, false); }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    RecordingView view;
    std::unique_ptr<CTesselDoc> document;
};

TEST_F(SearchOfAFile, BeginsNextToMarker1OrAtTheFirstVisibleSample) {
    EXPECT_EQ(Start(SearchDirection::Forward), 40);
    EXPECT_EQ(Start(SearchDirection::Backward), 40);
    document->SetMarker(1, 7);
    EXPECT_EQ(Start(SearchDirection::Forward), 8);
    EXPECT_EQ(Start(SearchDirection::Backward), 6);
    document->SetMarker(1, 0);
    EXPECT_EQ(Start(SearchDirection::Forward), 1);
    EXPECT_EQ(Start(SearchDirection::Backward), 0);
}

TEST_F(SearchOfAFile, SetsMarker1ToTheHit) {
    document->SetMarker(2, 3);
    Require(document->searchPattern, 7, true); // bit 7 is set in samples 128 to 255, and so on
    Search(SearchDirection::Forward);
    EXPECT_EQ(Hit(), 128);
    Search(SearchDirection::Forward);
    EXPECT_EQ(Hit(), 129);
    document->SetMarker(1, 400);
    Search(SearchDirection::Backward);
    EXPECT_EQ(Hit(), 399);
    document->SetMarker(1, 384);
    Search(SearchDirection::Backward);
    EXPECT_EQ(Hit(), 255);
    EXPECT_EQ(document->Marker(2, false), 3);
    EXPECT_EQ(document->Marker(0, false), 500);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(SearchOfAFile, WithoutMarker1TheFirstVisibleSampleCanMatch) {
    RequireSample(document->searchPattern, 40);
    Search(SearchDirection::Forward);
    EXPECT_EQ(Hit(), 40);
}

TEST_F(SearchOfAFile, ReportsThatThereIsNoMatch) {
    RequireSample(document->searchPattern, 300);
    document->SetMarker(1, 300);
    Search(SearchDirection::Forward);
    EXPECT_EQ(Hit(), 300) << "unchanged";
    document->SetMarker(1, 999);
    Search(SearchDirection::Forward);
    EXPECT_THAT(prompts.Texts(), ElementsAre("No match found.", "No match found."));
}

TEST_F(SearchOfAFile, BackwardDoesNotReachSample0) {
    document->SetMarker(1, 1); // an empty pattern matches every sample
    Search(SearchDirection::Backward);
    EXPECT_THAT(prompts.Texts(), ElementsAre("No match found."));
    EXPECT_EQ(Hit(), 1);
    document->SetMarker(1, 2);
    Search(SearchDirection::Backward);
    EXPECT_EQ(Hit(), 1);
}

TEST_F(SearchOfAFile, TheFilterKeepsWhatMatchesAndTheTopSample) {
    Require(document->filterPattern, 0, true);
    document->ApplyFilter(100);
    EXPECT_EQ(document->RowCount(false), 500);
    EXPECT_TRUE(document->IsFiltered());
    EXPECT_EQ(document->RowToSample(3, false), 7);
    EXPECT_TRUE(document->IsRowSample(7, false));
    EXPECT_FALSE(document->IsRowSample(8, false));
    EXPECT_EQ(view.sample, 99) << "the match before the top sample, which is hidden";
    EXPECT_THAT(view.hints, ElementsAre(HintGoToSample, HintFilterChanged));
    document->ApplyFilter(101);
    EXPECT_EQ(view.sample, 101);
}

TEST_F(SearchOfAFile, AMarkerStepsOverWhatTheFilterHides) {
    Require(document->filterPattern, 0, true);
    document->ApplyFilter(0);
    ASSERT_TRUE(document->IsFiltered());
    const std::int64_t rows = document->RowCount(false);
    ASSERT_GE(rows, 3);
    const auto sampleOf = [&](std::int64_t row) { return document->RowToSample(row, false); };
    document->SetMarker(1, sampleOf(0));
    document->StepMarker(1, true, false);
    EXPECT_EQ(document->Marker(1, false), sampleOf(1));
    // From a hidden sample to the displayed ones beside it.
    ASSERT_GT(sampleOf(1), sampleOf(0) + 1);
    const std::int64_t hidden = sampleOf(0) + 1;
    document->SetMarker(1, hidden);
    document->StepMarker(1, true, false);
    EXPECT_EQ(document->Marker(1, false), sampleOf(1));
    document->SetMarker(1, hidden);
    document->StepMarker(1, false, false);
    EXPECT_EQ(document->Marker(1, false), sampleOf(0));
}

TEST_F(SearchOfAFile, AFilterWithoutAMatchShowsNoRowsAndTheNextRestoresAll) {
    Require(document->filterPattern, 11, true);
    document->ApplyFilter(100);
    EXPECT_EQ(document->RowCount(false), 0);
    EXPECT_EQ(document->RowToSample(5, false), 0);
    EXPECT_EQ(view.sample, 0);
    document->filterPattern.BuildFromTables(1, ModeEvents);
    document->ApplyFilter(0);
    EXPECT_EQ(document->RowCount(false), 1000);
    EXPECT_FALSE(document->IsFiltered());
    EXPECT_EQ(document->SampleToRow(123, false), 123);
    EXPECT_TRUE(document->IsRowSample(999, false));
}

TEST_F(SearchOfAFile, AFilterByAnExpressionTakesThePlaceOfThePattern) {
    Require(document->filterPattern, 0, true);
    document->ApplyFilter(0);
    std::vector<std::uint32_t> matches(32);
    matches[0] = 1U << 4 | 1U << 7;
    matches[2] = 1U << 1;
    view.hints.clear();
    document->ApplyFilter("sample in 4..65", matches, 7);
    EXPECT_EQ(document->FilterExpression(), "sample in 4..65");
    EXPECT_EQ(document->RowCount(false), 3);
    EXPECT_EQ(document->RowToSample(2, false), 65);
    EXPECT_TRUE(document->IsRowSample(4, false));
    EXPECT_FALSE(document->IsRowSample(5, false));
    EXPECT_EQ(view.sample, 7);
    EXPECT_THAT(view.hints, ElementsAre(HintGoToSample, HintFilterChanged));
    // The dialog shows a pattern that compares nothing, so its OK shows all.
    document->ApplyFilter(0);
    EXPECT_EQ(document->FilterExpression(), "");
    EXPECT_FALSE(document->IsFiltered());
}

TEST_F(SearchOfAFile, OtherSamplesAreNotFilteredByTheOldExpression) {
    document->ApplyFilter("sample == 1", std::vector<std::uint32_t>{2}, 0);
    ASSERT_TRUE(document->IsFiltered());
    document->RebuildMaps(10, 10);
    EXPECT_FALSE(document->IsFiltered());
    EXPECT_EQ(document->FilterExpression(), "");
}

TEST_F(SearchOfAFile, AFilterFromOutsideTheCaptureLeavesTheViewInPlace) {
    document->ApplyFilter(5000);
    EXPECT_THAT(view.hints, ElementsAre(HintFilterChanged));
}

TEST_F(SearchOfAFile, ASearchFindsHiddenSamples) {
    Require(document->filterPattern, 0, true);
    document->ApplyFilter(0);
    RequireSample(document->searchPattern, 300);
    Search(SearchDirection::Forward);
    EXPECT_EQ(Hit(), 300);
}

TEST_F(SearchOfAFile, SamplesThatAreMissingInTheFileStayHidden) {
    document->excludedBits.assign(32, 0);
    document->excludedBits[0] = 0xFF;
    document->ApplyFilter(0);
    EXPECT_EQ(document->RowCount(false), 992);
    EXPECT_EQ(document->RowToSample(0, false), 8);
}

/// The board's search on a scripted wire; 100 samples lie before the trigger, 49 after it.
class SearchByTheBoard : public CaptureFixture {
protected:
    void Open() {
        OpenBoard("PCIKite");
        SetLive(0x20, 100, 49);
        Upload();
        NewDocument();
        document->RebuildMaps(100, 49);
    }
    void Search(SearchDirection direction, std::int64_t start) {
        line->Do([&] {
            board.writes.clear();
            board.functions.clear();
        });
        SearchOnAnalyzer(*link, *document, direction, start, prompts);
    }
    /// The successive values of the status; the last one repeats.
    void SetStatus(std::vector<Bytes> answers) {
        line->Do([&] {
            board.onMemoryRead = [this, answers, next = std::size_t{0}](std::uint32_t at) mutable {
                if (at == 441) {
                    board.contents[441] = answers[std::min(next++, answers.size() - 1)];
                }
            };
        });
    }
    /// The bytes that were last written at a register.
    std::vector<WireBoard::Write> Writes() {
        std::vector<WireBoard::Write> writes;
        line->Do([&] { writes = board.writes; });
        return writes;
    }
};

TEST_F(SearchByTheBoard, IsSentByteForByte) {
    Open();
    SetStatus({{0x03, 7, 0, 0}});
    Require(document->searchPattern, 9, true);   // AD[9]
    Require(document->searchPattern, 72, false); // FRAME
    Search(SearchDirection::Forward, 40);
    Bytes pattern(30);
    pattern[2] = 0x02; // bits 8 to 15: the value, then the compare bits
    pattern[3] = 0x02;
    pattern[19] = 0x01; // bits 72 to 79
    EXPECT_THAT(Writes(), ElementsAre(WireBoard::Write{441, {0, 60, 0, 0}},
                                      WireBoard::Write{445, pattern}, WireBoard::Write{440, {0}}));
    line->Do([&] { EXPECT_THAT(board.functions, ElementsAre(2, 2, 2, 13, 1)); });
    EXPECT_EQ(document->Marker(1, false), 107) << "on the other side of the trigger";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(SearchByTheBoard, FromTheTriggerTheDistanceIsOnTheOtherSide) {
    Open();
    SetStatus({{0x01, 30, 0, 0}});
    Search(SearchDirection::Backward, 100);
    EXPECT_EQ(Writes().front(), (WireBoard::Write{441, {2, 0, 0, 0}}));
    EXPECT_EQ(Writes().back(), (WireBoard::Write{440, {1}}));
    EXPECT_EQ(document->Marker(1, false), 70);
    Search(SearchDirection::Backward, 99);
    EXPECT_EQ(Writes().front(), (WireBoard::Write{441, {0, 1, 0, 0}}));
}

TEST_F(SearchByTheBoard, DistancesHaveThreeBytes) {
    Open();
    SetStatus({{0x00, 0, 0, 0}});
    Search(SearchDirection::Forward, 100 + 0x123456);
    EXPECT_EQ(Writes().front(), (WireBoard::Write{441, {2, 0x56, 0x34, 0x12}}));
    EXPECT_THAT(prompts.Texts(), ElementsAre("No match found."));
    EXPECT_EQ(document->Marker(1, false), -1);
}

TEST_F(SearchByTheBoard, APositionOutsideTheCaptureIsNotAHit) {
    Open();
    document->SetMarker(1, 5);
    for (const Bytes& status : {Bytes{0x01, 101, 0, 0}, Bytes{0x03, 50, 0, 0}}) {
        SetStatus({status});
        Search(SearchDirection::Forward, 0);
        EXPECT_EQ(document->Marker(1, false), 5);
    }
}

TEST_F(SearchByTheBoard, IsPolledUntilItEnds) {
    Open();
    line->SetClockRuns(false);
    SetStatus({{0x80, 0, 0, 0}, {0xFF, 9, 9, 9}, {0x80, 0, 0, 0}, {0x03, 2, 0, 0}});
    Search(SearchDirection::Forward, 0);
    EXPECT_EQ(document->Marker(1, false), 102);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(SearchByTheBoard, GivesUpAfterSixSeconds) {
    Open();
    line->SetClockRuns(false);
    int looks = 0;
    line->Do([&] {
        board.contents[441] = {0x80, 0, 0, 0};
        board.onMemoryRead = [&](std::uint32_t) {
            ++looks;
            clock.Advance(std::chrono::seconds(2));
        };
    });
    Search(SearchDirection::Forward, 0);
    EXPECT_EQ(looks, 3);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Search timeout occurred."));
    EXPECT_EQ(document->Marker(1, false), -1);
}

TEST_F(SearchByTheBoard, EveryFailedStepIsReportedAndOnlyTheStatusEndsIt) {
    Open();
    SetStatus({{0x03, 2, 0, 0}});
    line->SetAnswer([this](const Bytes& sent, int baud) {
        // The first frame of a write, and the start of the search.
        const bool isWrite = sent.size() == 2 && sent[0] == 4;
        const bool isStart = sent == Bytes{2, 13};
        return isWrite || isStart ? Bytes{} : board.Answer(sent, baud);
    });
    Search(SearchDirection::Forward, 0);
    EXPECT_EQ(prompts.Texts().front(), "Error sending search sample to analyzer.");
    line->SetAnswer([](const Bytes&, int) { return Bytes{}; });
    prompts.Forget();
    Search(SearchDirection::Forward, 0);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error sending search sample to analyzer.",
                                             "Error sending search condition to analyzer.",
                                             "Error sending search control to analyzer.",
                                             "Error sending start search to analyzer.",
                                             "Error getting search status from analyzer."));
    for (const Box& box : prompts.Boxes()) {
        EXPECT_TRUE(box.topmost);
    }
}

TEST_F(SearchByTheBoard, IsNotAvailableWhileACaptureRuns) {
    OpenBoard("PCIKite");
    SetLive(0x80, 0, 0);
    NewDocument();
    EXPECT_TRUE(CanSearch(*document));
    EXPECT_TRUE(CanFilter(*document));
    Require(document->filterPattern, 72, false);
    Require(document->searchPattern, 72, false);
    document->OnCaptureStarted();
    SampleRecord high;
    high.bytes[9] = 1;
    EXPECT_TRUE(RecordPattern(document->filterPattern).Matches(high)) << "reset";
    EXPECT_FALSE(RecordPattern(document->searchPattern).Matches(high)) << "kept";
    EXPECT_FALSE(CanSearch(*document));
    EXPECT_FALSE(CanFilter(*document));
}

} // namespace
} // namespace busquill::test
