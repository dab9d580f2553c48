#include "platform/memory_settings.h"
#include "signals/value_text.h"
#include "support/contrast_qt.h"
#include "support/recording_paint_device_qt.h"
#include "support/trace_fixture_qt.h"
#include "ui/display/band_values.h"
#include "ui/display/wave_painter.h"
#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPainter>
#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const QColor lineColor(Qt::black);
constexpr std::uint32_t signalColor = 0x123456;

/// Waveforms over samples with counting data lines: AD[n] changes every 2^n samples. Names and
/// values take 100 pixels, so the wave area begins at 101.
class WavePainter : public TraceFixture {
protected:
    static constexpr int left = 101;
    static constexpr QSize usual{501, 300};

    WavePainter() { colors = {0xC0C0C0, 0xE0E0E0, 0x0000FF, 0x00FF00, 0xFF0000}; }

    void Open(
        int first = -10, int last = 989,
        const std::function<bool(int)>& keep = [](int) { return true; }) {
        Load(first, last, "", keep);
        document->waveformList.RemoveAllSignals();
    }
    CSignal& Add(const std::shared_ptr<const CSignalDef>& def, int firstBit, int lastBit,
                 bool showValue) {
        CSignalList& list = document->waveformList;
        CSignal* added =
            list.AddSignal(nullptr, def, static_cast<std::uint32_t>(document->SampleCount(false)),
                           firstBit, lastBit, signalColor, Radix::Hex, showValue);
        document->LoadSignal(list, *added, false);
        return *added;
    }
    CSignal& AddLine(int bit) {
        return Add(board.tables.busSignals.FindByName("AD"), bit, bit, false);
    }
    CSignal& AddBus(int firstBit, int lastBit, bool showValue = false) {
        return Add(board.tables.busSignals.FindByName("AD"), firstBit, lastBit, showValue);
    }
    CSignal& AddDecoded(const char* name) {
        return Add(board.tables.decodedSignals.FindByName(name), 0, 0, true);
    }

    /// The field from which the times between samples are summed; it has no band.
    void AddTime() {
        const auto time = board.tables.busSignals.FindByName("TIME");
        CSignal& signal = Add(time, time->firstPosition, time->lastPosition, false);
        signal.permanent = signal.hidden = true;
    }

    WaveFrame Frame(QSize size = usual) {
        return {*document,
                document->waveformList,
                false,
                board.board,
                colors,
                size,
                60,
                40,
                zoom,
                place,
                top,
                {FontOfCellHeight(14, QFont::Normal, FontFace::Fixed),
                 FontOfCellHeight(16, QFont::Bold, FontFace::Proportional),
                 FontOfCellHeight(15, QFont::Bold, FontFace::Proportional),
                 {}}};
    }
    QImage Draw(QSize size = usual) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        missing = DrawWaveFrame(painter, Frame(size));
        return image;
    }
    Recording Record(QSize size = usual) {
        RecordingPaintDevice device(size);
        QPainter painter(&device);
        missing = DrawWaveFrame(painter, Frame(size));
        return device.Recorded();
    }
    /// The rectangles that were drawn in the colour of the signals.
    static std::vector<QRect> Strokes(const Recording& drawn) {
        std::vector<QRect> rects;
        for (const auto& fill : drawn.fills) {
            if (fill.color == ColorOf(signalColor)) {
                rects.push_back(fill.rect);
            }
        }
        return rects;
    }
    /// The x position of a mark's line; empty if it is not drawn.
    std::optional<int> MarkAt(const Recording& drawn, int which) {
        for (const auto& fill : drawn.fills) {
            if (fill.color == ColorOf(colors.Mark(which)) && fill.rect.width() == 1) {
                EXPECT_EQ(fill.rect.top(), 18);
                EXPECT_EQ(fill.rect.bottom(), drawn.bounds.bottom() - 1);
                return fill.rect.left();
            }
        }
        return std::nullopt;
    }
    static std::vector<std::string> Texts(const Recording& drawn, int from, int to) {
        std::vector<std::string> texts;
        for (const auto& text : drawn.TextsBetween(18, drawn.bounds.bottom())) {
            if (text.rect.left() >= from && text.rect.left() < to) {
                texts.push_back(text.text.toStdString());
            }
        }
        return texts;
    }
    static std::vector<std::string> RunTexts(const Recording& drawn) {
        return Texts(drawn, left, drawn.bounds.width());
    }

    DisplayColors colors;
    int zoom = 20;
    WavePlace place;
    BandPlace top;
    std::optional<std::int64_t> missing;
};

TEST_F(WavePainter, ALineRunsAtItsLevelAndStepsAtItsEdges) {
    Open();
    AddLine(1); // samples 0 and 1 low, 2 and 3 high, and so on
    const auto strokes = Strokes(Record({left + 100, 100}));
    // The band lies from 18 to 38: high at 20, low at 36.
    EXPECT_THAT(strokes, ElementsAre(QRect(left, 36, 41, 1), QRect(left + 40, 20, 1, 17),
                                     QRect(left + 40, 20, 41, 1), QRect(left + 80, 20, 1, 17),
                                     QRect(left + 80, 36, 20, 1)));
}

TEST_F(WavePainter, ScrolledPixelsAreMissingFromTheFirstSample) {
    Open();
    AddLine(1);
    place = {1, 5};
    const auto strokes = Strokes(Record({left + 60, 100}));
    EXPECT_THAT(strokes, ElementsAre(QRect(left, 36, 16, 1), QRect(left + 15, 20, 1, 17),
                                     QRect(left + 15, 20, 41, 1), QRect(left + 55, 20, 1, 17),
                                     QRect(left + 55, 36, 5, 1)));
}

TEST_F(WavePainter, ABusHasRailsAndATickAtEachChange) {
    Open();
    AddBus(2, 5); // changes at every fourth sample
    const auto strokes = Strokes(Record({left + 200, 100}));
    EXPECT_THAT(strokes, ElementsAre(QRect(left, 20, 199, 1), QRect(left, 36, 199, 1),
                                     QRect(left + 80, 20, 1, 17), QRect(left + 160, 20, 1, 17)));
}

TEST_F(WavePainter, ABusThatNeverChangesHasRailsAndOneValue) {
    Open();
    AddBus(20, 31, true);
    const auto drawn = Record();
    EXPECT_EQ(Strokes(drawn).size(), 2U);
    EXPECT_THAT(RunTexts(drawn), ElementsAre("000"));
}

TEST_F(WavePainter, RailsStopWhereTheDataEnd) {
    Open(-5, 4);
    AddBus(20, 31, true);
    const auto strokes = Strokes(Record());
    EXPECT_THAT(strokes, ElementsAre(QRect(left, 20, 200, 1), QRect(left, 36, 200, 1)));
    document->waveformList.RemoveAllSignals();
    AddLine(30);
    EXPECT_THAT(Strokes(Record()), ElementsAre(QRect(left, 36, 200, 1)));
}

TEST_F(WavePainter, AtANegativeZoomAPixelHasOneSampleMoreThanTheZoom) {
    Open();
    zoom = -3;
    AddLine(4); // an edge every 16 samples, which are 4 pixels
    const auto strokes = Strokes(Record({left + 10, 100}));
    EXPECT_THAT(strokes, ElementsAre(QRect(left, 36, 5, 1), QRect(left + 4, 20, 1, 17),
                                     QRect(left + 4, 20, 5, 1), QRect(left + 8, 20, 1, 17),
                                     QRect(left + 8, 36, 2, 1)));
}

TEST_F(WavePainter, BusyLinesAreDrawnAsABlock) {
    Open();
    zoom = -7;
    AddLine(0);
    AddBus(0, 3);
    const auto strokes = Strokes(Record({left + 50, 100}));
    EXPECT_LE(strokes.size(), 8U);
}

TEST_F(WavePainter, RunsShowTheirValuesOrAnEllipsisWhereTheyDoNotFit) {
    Open();
    CSignal& bus = AddBus(2, 9, true);
    EXPECT_THAT(RunTexts(Record({left + 200, 100})), ElementsAre("00", "01", "02"));
    bus.radix = Radix::Binary;
    EXPECT_THAT(RunTexts(Record({left + 200, 100})).front(), "00000000");
    zoom = 10; // a run of 40 pixels holds five characters
    EXPECT_EQ(RunTexts(Record({left + 200, 100})).front(), "0000\u2026");
    zoom = 1; // 4 pixels hold nothing
    EXPECT_THAT(RunTexts(Record({left + 200, 100})), IsEmpty());
}

TEST_F(WavePainter, ABusShowsNoValuesUnlessRequested) {
    Open();
    AddBus(2, 9);
    EXPECT_THAT(RunTexts(Record()), IsEmpty());
}

TEST_F(WavePainter, ALineShowsItsValueOnRequest) {
    Open();
    AddLine(2).showValue = true;
    EXPECT_THAT(RunTexts(Record({left + 160, 100})), ElementsAre("0", "1"));
}

TEST_F(WavePainter, DecodedRunsShowTheTextsOfTheListing) {
    Open();
    zoom = 90;
    AddDecoded("ADDRESS32");
    AddDecoded("DATA32");
    // All are data samples, so there are data and no addresses.
    EXPECT_THAT(RunTexts(Record({left + 180, 100})), ElementsAre("00000000", "00000001"));
}

TEST_F(WavePainter, ColumnsThatOnlyTheListingComputesShowNothing) {
    Open();
    AddDecoded("ACCUM");
    AddDecoded("DELTA");
    document->SetMarker(1, 3);
    EXPECT_THAT(RunTexts(Record()), IsEmpty());
    EXPECT_THAT(Texts(Record(), 60, 100), IsEmpty());
}

TEST_F(WavePainter, SampleNumbersChangeAtEverySample) {
    Open();
    CSignal& bus = AddBus(20, 31, true);
    auto numbers = std::make_shared<CDecodedSignalDef>();
    numbers->decodeKind = DecodeKind::Sample;
    bus.decoded = numbers;
    zoom = 40;
    const auto drawn = Record({left + 120, 100});
    EXPECT_THAT(RunTexts(drawn), ElementsAre("-10", "-9", "-8"));
    EXPECT_EQ(Strokes(drawn).size(), 2U + 2U);
}

TEST_F(WavePainter, OddBandsAreStriped) {
    Open();
    AddLine(0);
    AddLine(1);
    AddLine(2);
    top = {1, 4}; // stripes follow the signals
    const auto drawn = Record();
    EXPECT_EQ(drawn.ColorAt({left + 50, 25}), ColorOf(colors.alternate));
    EXPECT_EQ(drawn.ColorAt({80, 25}), ColorOf(colors.alternate)) << "the values too";
    EXPECT_EQ(drawn.ColorAt({left + 50, 40}), ColorOf(colors.background));
    EXPECT_EQ(drawn.ColorAt({left + 50, 100}), ColorOf(colors.background));
}

TEST_F(WavePainter, NothingIsDrawnWhileAVisibleSampleIsMissing) {
    Open(-50, 49);
    AddLine(0);
    AddBus(0, 7, true);
    document->SetMarker(1, 2);
    EXPECT_THAT(Strokes(Record()), testing::Not(IsEmpty()));
    document->RebuildMaps(50, 49);
    const std::vector<SampleRecord> records(96);
    document->AddBlock(0, std::span(records).first(18), false);
    document->FlushBlockUpdates();
    auto drawn = Record({left + 400, 100}); // 20 samples are visible
    EXPECT_EQ(missing, 18);
    document->SetMarker(1, 20);
    EXPECT_THAT(Texts(Record({left + 400, 100}), 60, 100), IsEmpty()) << "no value either";
    document->SetMarker(1, 2);
    EXPECT_THAT(Strokes(drawn), IsEmpty());
    EXPECT_THAT(RunTexts(drawn), IsEmpty());
    EXPECT_EQ(drawn.TextsBetween(18, 99).size(), 4U) << "names and values stay";
    drawn = Record({left + 360, 100}); // 18 samples are visible
    EXPECT_EQ(missing, std::nullopt);
    EXPECT_THAT(Strokes(drawn), testing::Not(IsEmpty()));
    zoom = -3;
    place.row = 0;
    document->AddBlock(18, std::span(records).first(22), false);
    document->FlushBlockUpdates();
    static_cast<void>(Record({left + 10, 100}));
    EXPECT_EQ(missing, std::nullopt) << "four samples per pixel";
    static_cast<void>(Record({left + 11, 100}));
    EXPECT_EQ(missing, 40);
}

TEST_F(WavePainter, ACaptureWithoutSamplesHasNamesOnly) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    const auto drawn = Record();
    EXPECT_EQ(missing, std::nullopt);
    EXPECT_THAT(RunTexts(drawn), IsEmpty());
    EXPECT_GT(drawn.TextsBetween(18, 299).size(), 5U);
}

TEST_F(WavePainter, SignalsWithoutDataLeaveTheirBandEmpty) {
    Open();
    document->waveformList.InsertBlank(nullptr);
    AddLine(0);
    document->SetMarker(1, 3);
    const auto drawn = Record();
    EXPECT_GE(Strokes(drawn).front().top(), 39) << "only the second band has strokes";
    EXPECT_THAT(Texts(drawn, 60, 100), ElementsAre("1"));
}

TEST_F(WavePainter, ABlankRowStaysEmptyWhateverIsLoaded) {
    Open();
    document->waveformList.InsertBlank(nullptr)->showValue = true;
    AddLine(0);
    document->SetMarker(1, 3);
    document->waveformList.ResizeSamples(1000); // as at each capture and each load
    document->waveformList.LoadSamples(0, document->store.GetData(false));
    const auto drawn = Record();
    EXPECT_GE(Strokes(drawn).front().top(), 39);
    EXPECT_THAT(Texts(drawn, 60, 100), ElementsAre("1"));
    EXPECT_THAT(RunTexts(drawn), IsEmpty());
}

TEST_F(WavePainter, ABlankInAGroupIsOneOfItsBits) {
    Open();
    AddLine(1).selected = true;
    document->waveformList.InsertBlank(nullptr)->selected = true;
    document->waveformList.ResizeSamples(1000);
    document->waveformList.LoadSamples(0, document->store.GetData(false));
    document->waveformList.CollapseSelected();
    EXPECT_EQ(Strokes(Record({left + 100, 100})).size(), 4U) << "two rails, two ticks";
    document->SetMarker(1, 2);
    EXPECT_THAT(Texts(Record(), 60, 100), ElementsAre("1"));
}

// Marks.

TEST_F(WavePainter, TicksAreAtEverySample) {
    Open();
    place = {0, 7};
    const auto drawn = Record({left + 50, 100});
    std::vector<QRect> ticks;
    for (const auto& fill : drawn.fills) {
        if (fill.rect.height() == 7) {
            ticks.push_back(fill.rect);
        }
    }
    EXPECT_THAT(ticks, ElementsAre(QRect(left, 10, 1, 7), QRect(left + 20, 10, 1, 7),
                                   QRect(left + 40, 10, 1, 7)));
}

TEST_F(WavePainter, MarksAreAtTheirSamples) {
    Open();
    AddLine(0);
    document->SetMarker(1, 3);
    document->SetMarker(2, 14);
    place = {2, 5};
    const auto drawn = Record();
    EXPECT_EQ(MarkAt(drawn, 0), left - 5 + 8 * 20 + 1);
    EXPECT_EQ(MarkAt(drawn, 1), left - 5 + 1 * 20 + 1);
    EXPECT_EQ(MarkAt(drawn, 2), left - 5 + 12 * 20 + 1);
    EXPECT_EQ(drawn.polygons.size(), 1U) << "the triangle";
    zoom = -4;
    place = {2, 0};
    EXPECT_EQ(MarkAt(Record(), 2), left + 12 / 4 + 1);
}

TEST_F(WavePainter, AMarkOnTheFirstVisibleSampleIsNotDrawn) {
    Open();
    document->SetMarker(1, 5);
    place = {5, 0};
    EXPECT_EQ(MarkAt(Record(), 1), std::nullopt);
    place = {4, 0};
    EXPECT_EQ(MarkAt(Record(), 1), left + 21);
}

TEST_F(WavePainter, MarksRightOfTheAreaAreNotDrawn) {
    Open();
    document->SetMarker(1, 19);
    document->SetMarker(2, 20);
    const auto drawn = Record({left + 400, 100});
    EXPECT_EQ(MarkAt(drawn, 1), left + 19 * 20 + 1);
    EXPECT_EQ(MarkAt(drawn, 2), std::nullopt) << "it would be on the edge";
}

TEST_F(WavePainter, WithAFilterMarksAreAtTheirRows) {
    Open(0, 999, [](int number) { return number % 5 == 0; });
    AddLine(0);
    ASSERT_TRUE(document->IsFiltered());
    const std::int64_t third = document->RowToSample(3, false);
    document->SetMarker(1, third);
    EXPECT_EQ(MarkAt(Record(), 1), left + 3 * 20 + 1);
}

/// The line that joins the markers.
std::optional<QRect> SpanOf(const Recording& drawn) {
    for (const auto& fill : drawn.fills) {
        if (fill.rect.top() == 5 && fill.rect.height() == 1 && fill.rect.width() > 7) {
            return fill.rect;
        }
    }
    return std::nullopt;
}
std::vector<std::string> SpanTexts(const Recording& drawn) {
    std::vector<std::string> texts;
    for (const auto& text : drawn.TextsBetween(0, 16)) {
        if (!text.bold) {
            texts.push_back(text.text.toStdString());
        }
    }
    return texts;
}

TEST_F(WavePainter, ALineWithTheTimeJoinsTheMarkers) {
    Open();
    AddTime();
    document->SetMarker(1, 3);
    document->SetMarker(2, 14);
    const auto drawn = Record();
    EXPECT_EQ(SpanOf(drawn), QRect(left + 61, 5, 220, 1));
    EXPECT_THAT(SpanTexts(drawn), ElementsAre("330ns"));
    document->SetMarker(2, 2);
    EXPECT_EQ(SpanOf(Record()), QRect(left + 41, 5, 20, 1));
    EXPECT_THAT(SpanTexts(Record()), IsEmpty()) << "it does not fit";
}

TEST_F(WavePainter, TheTimeNeedsTenPixelsMoreThanItsText) {
    Open();
    AddTime();
    zoom = 1;
    document->SetMarker(1, 3);
    const int width = QFontMetrics(Frame().style.body).horizontalAdvance("1.234us");
    document->SetMarker(2, 3 + width + 10);
    EXPECT_THAT(SpanTexts(Record()), IsEmpty());
    document->SetMarker(2, 3 + width + 11);
    EXPECT_EQ(SpanTexts(Record()).size(), 1U);
}

TEST_F(WavePainter, MarkersOutsideTheSpanAreDrawnToItsEdges) {
    Open();
    AddTime();
    place = {50, 0};
    document->SetMarker(1, 3);
    document->SetMarker(2, 54);
    EXPECT_EQ(SpanOf(Record()), QRect(left, 5, 81, 1));
    EXPECT_THAT(SpanTexts(Record()), ElementsAre("1.530us"));
    document->SetMarker(2, 900);
    EXPECT_EQ(SpanOf(Record()), QRect(left, 5, usual.width() - left - 1, 1));
    document->SetMarker(1, 54);
    EXPECT_EQ(SpanOf(Record()), QRect(left + 81, 5, usual.width() - left - 82, 1));
}

TEST_F(WavePainter, MarkersOutsideOnTheSameSideAreNotJoined) {
    Open();
    AddTime();
    place = {50, 0};
    document->SetMarker(1, 3);
    document->SetMarker(2, 14);
    EXPECT_EQ(SpanOf(Record()), std::nullopt);
    EXPECT_THAT(SpanTexts(Record()), IsEmpty());
    document->SetMarker(1, 300);
    document->SetMarker(2, 500);
    EXPECT_EQ(SpanOf(Record()), std::nullopt);
}

TEST_F(WavePainter, TwoMarkersOnOneSampleHaveTwoGlyphsInOnePlace) {
    Open();
    document->SetMarker(1, 4);
    document->SetMarker(2, 4);
    const auto drawn = Record();
    EXPECT_EQ(MarkAt(drawn, 1), MarkAt(drawn, 2));
    EXPECT_EQ(drawn.polygons.size(), 1U);
}

// Names and values.

TEST_F(WavePainter, TheValueColumnShowsTheValuesAtMarker1) {
    Open();
    AddLine(1);
    AddBus(0, 7, true);
    AddDecoded("DATA32");
    EXPECT_THAT(Texts(Record(), 60, 100), IsEmpty());
    document->SetMarker(1, 6);
    const auto drawn = Record();
    EXPECT_THAT(Texts(drawn, 60, 100), testing::UnorderedElementsAre("1", "06"));
    const auto wide = std::ranges::find(drawn.texts, QString("00000006"), &Recording::Text::text);
    ASSERT_NE(wide, drawn.texts.end()) << "centred and without a mark where it is cut";
    EXPECT_GT(wide->visible.left(), 60);
    EXPECT_LT(wide->visible.right(), 100);
}

TEST_F(WavePainter, BlanksAreNeitherAValueNorARun) {
    Open();
    CSignal& data = AddDecoded("DATA32");
    SampleRecord idle;
    idle.bytes[8] = 0xFF; // all lanes are disabled
    for (std::uint32_t sample = 0; sample < 20; ++sample) {
        document->store.PutSample(sample, idle);
    }
    document->LoadSignal(document->waveformList, data, false);
    document->SetMarker(1, 3);
    const auto drawn = Record();
    EXPECT_THAT(Texts(drawn, 60, 100), IsEmpty());
    EXPECT_THAT(RunTexts(drawn), IsEmpty());
    zoom = 2; // too narrow for a run of blanks
    EXPECT_THAT(RunTexts(Record({left + 40, 100})), IsEmpty());
}

TEST_F(WavePainter, NamesUseTheirColumnExceptAPixelOnEachSide) {
    Open();
    AddDecoded("COMMAND");
    for (const int width : {75, 60, 40, 20}) {
        WaveFrame frame = Frame();
        frame.nameWidth = width;
        RecordingPaintDevice device(usual);
        {
            QPainter painter(&device);
            DrawWaveNames(painter, frame);
        }
        const auto texts = device.Recorded().TextsBetween(18, 40);
        ASSERT_EQ(texts.size(), 1U);
        const QString expected =
            QFontMetrics(frame.style.name).elidedText("COMMAND", Qt::ElideRight, width - 2);
        EXPECT_EQ(texts[0].text, expected) << width;
        EXPECT_TRUE(width != 75 || expected == "COMMAND");
    }
}

TEST_F(WavePainter, SelectedNamesAreWhiteAndSunken) {
    Open();
    AddLine(1);
    AddBus(0, 7, true).selected = true;
    const auto drawn = Record();
    EXPECT_EQ(drawn.ColorAt({30, 24}), ColorOf(colors.background));
    EXPECT_EQ(drawn.ColorAt({30, 44}), QColor(Qt::white));
    EXPECT_EQ(drawn.ColorAt({0, 25}), QColor(0xE0, 0xE0, 0xE0));
    EXPECT_EQ(drawn.ColorAt({0, 45}), QColor(0x80, 0x80, 0x80));
    EXPECT_THAT(Texts(drawn, 0, 60), testing::UnorderedElementsAre("AD[1]", "AD[7:0]"));
}

TEST_F(WavePainter, BandsBeforeTheFirstShowNothing) {
    Open();
    AddLine(1);
    top = {-1, 0};
    EXPECT_THAT(Strokes(Record()), IsEmpty());
    EXPECT_THAT(Texts(Record(), 0, 60), IsEmpty());
}

TEST_F(WavePainter, NothingIsDrawnOutsideItsPart) {
    Open();
    AddBus(0, 31, true);
    AddLine(0);
    document->SetMarker(1, 3);
    document->SetMarker(2, 9);
    for (const BandPlace bands : {BandPlace{0, 0}, BandPlace{0, 9}}) {
        top = bands;
        for (const auto& fill : Record().fills) {
            if (fill.color == ColorOf(signalColor)) {
                EXPECT_TRUE(fill.visible.isEmpty() || fill.visible.left() >= left);
                EXPECT_TRUE(fill.visible.isEmpty() || fill.visible.top() >= 18);
            }
        }
        for (const auto& text : Record().texts) {
            const bool inValues = text.visible.left() >= 60 && text.visible.right() < 100;
            const bool inNames = text.visible.right() < 60;
            EXPECT_TRUE(text.visible.isEmpty() || inValues || inNames ||
                        text.visible.left() >= left)
                << text.text.toStdString();
        }
    }
}

TEST_F(WavePainter, AFrameTakesTheSameEffortInAnyCapture) {
    std::vector<std::size_t> calls;
    for (const int samples : {10'000, 100'000}) {
        Open(0, samples - 1);
        AddLine(0);
        AddBus(0, 7, true);
        place.row = samples / 2;
        calls.push_back(Record().Calls());
    }
    EXPECT_EQ(calls[0], calls[1]);
}

/// The loop over all samples that defines where lines run, drawn as a separate picture.
class SlowWalk {
public:
    SlowWalk(QImage& image, const WaveFrame& frame, const WaveBand& band)
        : image_(image), frame_(frame), signal_(frame.list[band.signal]), high_(band.top + 2),
          low_(band.top + band.height - 2), right_(frame.size.width()), x_(frame.WaveLeft()) {}

    void Draw() {
        int pending = frame_.zoom < 0 ? -frame_.zoom : 0;
        int skipped = frame_.place.subPixel;
        std::optional<std::int64_t> before;
        std::int64_t sample = frame_.document.RowToSample(frame_.place.row, false);
        for (; sample < frame_.document.SampleCount(false) && x_ < right_; ++sample) {
            if (!frame_.document.IsRowSample(sample, false)) {
                continue;
            }
            if (before && Differs(*before, sample)) {
                Fill(x_, high_, x_, low_);
            }
            int next = x_;
            if (pending > 0) {
                --pending;
            } else if (frame_.zoom > 0) {
                next += frame_.zoom - skipped;
                skipped = 0;
            } else {
                next += 1;
                pending = -frame_.zoom;
            }
            next = std::min(next, right_);
            if (!signal_.grouped) {
                const int y = signal_.Bit(static_cast<std::size_t>(sample)) ? high_ : low_;
                Fill(x_, y, next - 1, y);
            }
            x_ = next;
            before = sample;
        }
    }

private:
    [[nodiscard]] bool Differs(std::int64_t a, std::int64_t b) const {
        const auto i = static_cast<std::size_t>(a);
        const auto j = static_cast<std::size_t>(b);
        return signal_.grouped ? !std::ranges::equal(signal_.GroupRow(i), signal_.GroupRow(j))
                               : signal_.Bit(i) != signal_.Bit(j);
    }
    void Fill(int x1, int y1, int x2, int y2) {
        for (int x = x1; x <= std::min(x2, right_ - 1); ++x) {
            for (int y = y1; y <= y2; ++y) {
                image_.setPixel(x, y, 0xFF000000);
            }
        }
    }

    QImage& image_;
    const WaveFrame& frame_;
    const CSignal& signal_;
    const int high_;
    const int low_;
    const int right_;
    int x_;
};

TEST_F(WavePainter, AgreesWithALoopOverEverySample) {
    constexpr unsigned seed = 7;
    std::mt19937 random(seed);
    for (const bool filtered : {false, true}) {
        Open(0, 2999, [&](int number) { return !filtered || number % 7 < 4; });
        ASSERT_EQ(document->IsFiltered(), filtered);
        const int bits[] = {0, 1, 3, 6, 9};
        for (const int bit : bits) {
            AddLine(bit);
        }
        for (const int bit : bits) {
            AddBus(bit, 12);
        }
        for (int round = 0; round < 60; ++round) {
            const int zooms[] = {-7, -4, -2, -1, 1, 2, 3, 7, 20, 61, 400};
            zoom = zooms[random() % std::size(zooms)];
            place.subPixel = zoom > 0 ? static_cast<int>(random() % zoom) : 0;
            place.row = static_cast<std::int64_t>(random() % document->RowCount(false));
            const QSize size(left + 20 + static_cast<int>(random() % 400), 260);
            const WaveFrame frame = Frame(size);
            const auto bands = VisibleBands(BandHeights(frame.list), frame.top, size.height());
            QImage expected(size, QImage::Format_RGB32);
            QImage got(size, QImage::Format_RGB32);
            expected.fill(Qt::white);
            got.fill(Qt::white);
            for (const WaveBand& band : bands) {
                SlowWalk(expected, frame, band).Draw();
            }
            QPainter painter(&got);
            const Recording drawn = Record(size);
            for (const auto& fill : drawn.fills) {
                const bool isRail = fill.rect.left() == left && fill.rect.height() == 1 &&
                                    fill.rect.top() > 18 + 5 * 21; // of a bus
                if (fill.color == ColorOf(signalColor) && !isRail) {
                    painter.fillRect(fill.visible, Qt::black);
                }
            }
            painter.end();
            ASSERT_EQ(got, expected) << "seed " << seed << " round " << round << " zoom " << zoom
                                     << " row " << place.row << "+" << place.subPixel;
        }
    }
}

TEST_F(WavePainter, RunsAgreeWithALoopOverEverySample) {
    constexpr unsigned seed = 11;
    std::mt19937 random(seed);
    std::string text =
        "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0,1999\n";
    int data = 0;
    for (int i = 0; i < 2000; ++i) {
        data = random() % 30 == 0 ? static_cast<int>(random() % 4) : data;
        text += std::to_string(i) + "," + std::to_string(data) + ",0,0,0,0,0,0,0," +
                std::to_string(random() % 20 == 0 ? 15 : 0) + ",0,0," +
                std::to_string(random() % 5 == 0 ? 128 : 0) + ",0,0,0,30,0,0,0\n";
    }
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnOpenDocument(dir.Write("runs.tra", text)));
    document->waveformList.RemoveAllSignals();
    for (const char* name : {"COMMAND", "ADDRESS32", "DATA32", "ADR/DATA"}) {
        const CSignal& signal = AddDecoded(name);
        const BandSamples samples(*document, false, 100, 1500);
        const BandValues values(samples, board.board, signal, BandValues::KindOf(signal));
        std::int64_t k = 0;
        int runs = 0;
        for (std::int64_t next = 1; next <= samples.count; ++next) {
            const auto sample = static_cast<std::size_t>(100 + next);
            const bool changes =
                next == samples.count ||
                BandText(samples, board.board, signal, 100 + next) !=
                    BandText(samples, board.board, signal, 100 + next - 1) ||
                (BandValues::KindOf(signal) == BandValues::Kind::Text &&
                 !std::ranges::equal(signal.GroupRow(sample), signal.GroupRow(sample - 1)));
            const bool labelChanges =
                next < samples.count && signal.Label(sample) != signal.Label(sample - 1);
            if (changes || labelChanges) {
                ASSERT_EQ(values.NextChange(k), next) << name << " seed " << seed;
                ASSERT_EQ(values.LastChange(k, next == samples.count ? next - 1 : next),
                          next == samples.count ? k : next)
                    << name;
                k = next;
                ++runs;
            }
        }
        EXPECT_GT(runs, 20) << name;
    }
}

TEST_F(WavePainter, InSetsThatAdaptTextsEachCanBeReadOnItsBand) {
    Open();
    for (const std::uint32_t color : {0x000000U, 0x00FF00U, 0xFF0000U, 0x202020U}) {
        AddBus(0, 3, true).color = color;
        AddLine(4).color = color;
    }
    document->SetMarker(1, 20);
    for (const ColorSet set : {ColorSet::Legible, ColorSet::Dark}) {
        MemorySettings stored;
        for (std::size_t i = 0; i < colorSettings; ++i) {
            const auto which = static_cast<ColorSetting>(i);
            WriteColorSetting(stored, which, ValueIn(set, which));
        }
        colors = LoadDisplayColors(stored, waveformDisplay);
        const Recording drawn = Record();
        EXPECT_GT(drawn.texts.size(), 16U);
        for (const auto& text : drawn.texts) {
            EXPECT_GE(Contrast(text.color, drawn.ColorAt(text.visible.center())), readable)
                << text.text.toStdString() << " at " << text.rect.y();
        }
        std::size_t strokes = 0;
        for (const auto& fill : drawn.fills) {
            if (fill.visible.left() > left && std::min(fill.rect.width(), fill.rect.height()) < 3) {
                EXPECT_GE(Contrast(fill.color, ColorOf(colors.background)), 3);
                ++strokes;
            }
        }
        EXPECT_GT(strokes, 50U);
    }
}

} // namespace
} // namespace busquill::test
