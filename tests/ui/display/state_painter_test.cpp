#include "platform/memory_settings.h"
#include "support/contrast_qt.h"
#include "support/recording_paint_device_qt.h"
#include "support/trace_fixture_qt.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_painter.h"
#include "ui/display/state_window.h"
#include "ui/framework/painting.h"
#include "ui/patterns/columns.h"

#include <QPainter>

#include <random>
#include <set>

namespace busquill::test {
namespace {

std::string CellText(const StateFrame& frame, const CSignal& signal, std::int64_t sample,
                     std::int64_t above) {
    FrameTimes times(frame);
    const auto record = frame.document.GetSample(sample, frame.zoom);
    return busquill::CellText(frame.board, signal,
                              {static_cast<std::size_t>(sample),
                               frame.document.FirstSampleNumber(frame.zoom) + sample,
                               record ? &*record : nullptr, times.At(sample, above)},
                              frame.zoom);
}

/// The rows of the TIME field: shown as a decoded column; or hidden and permanent, from which the
/// times between samples are summed.
std::string TimeRows(bool shown) {
    std::string rows;
    for (int bit = 0; bit < 18; ++bit) {
        const std::string attribute = bit == 0 ? "Start" : bit == 17 ? "End" : "";
        rows += "\"Signal\",\"TIME[" + std::to_string(bit) + "]\",\"TIME\",\"Grouped\",\"\",\"" +
                attribute + "\"," + std::to_string(bit) + "," + std::to_string(110 + bit) +
                ",0,20,60,0,\"Show\",\"Time\",\"\"," +
                (shown ? (bit == 0 ? "\"TIME\"\n" : "\"\"\n") : "\"\",\"Hidden\",\"Permanent\"\n");
    }
    return rows;
}

/// A list section with a single line, FRAME.
std::string OneLine() {
    return "\"Signal\",\"FRAME\",\"FRAME\",\"\",\"\",\"\",-1,72,0,20,30,0,\"Show\",\"Hex\"\n";
}

class StatePainter : public TraceFixture {
protected:
    StatePainter() { colors = {0xC0C0C0, 0xE0E0E0, 0x0000FF, 0x00FF00, 0xFF0000}; }
    static constexpr int sampleColumn = 60;

    StateFrame Frame(QSize size = {400, 200}) {
        return {*document, document->stateList, false,  board.board, colors,
                size,      sampleColumn,        topRow, offset,      ScreenState(ScreenFonts())};
    }
    QImage Draw(QSize size = {400, 200}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        missing = DrawState(painter, Frame(size));
        return image;
    }
    Recording Record(QSize size = {400, 200}) {
        RecordingPaintDevice device(size);
        QPainter painter(&device);
        missing = DrawState(painter, Frame(size));
        return device.Recorded();
    }
    /// Gives every column the same width and returns the visible ones.
    std::vector<TableColumn> Widen(int width, QSize size = {400, 200}) {
        for (const auto& signal : document->stateList.All()) {
            signal->width = width;
        }
        return Columns(size);
    }
    std::vector<TableColumn> Columns(QSize size = {400, 200}) {
        return TableColumns{ColumnWidths(document->stateList), sampleColumn, offset, size.width()}
            .Visible();
    }
    /// The texts in a row, from left to right, the sample's number first.
    static std::vector<Recording::Text> RowTexts(const Recording& device, int row) {
        const int top = tableFirstRow + row * stateRowPitch;
        return device.TextsBetween(top, top + stateRowPitch - 1);
    }
    /// Inserts a computed column before all others.
    CSignal& AddDecoded(const char* name, int width) {
        auto& list = document->stateList;
        CSignal* added = list.AddSignal(&list[0], board.tables.decodedSignals.FindByName(name),
                                        static_cast<std::uint32_t>(document->SampleCount(false)), 0,
                                        0, 0xFF00FF, Radix::Hex, true);
        added->width = width;
        return *added;
    }
    /// The colour of a row, taken between the texts of its SAMPLE cell.
    static QRgb RowColor(const QImage& image, int row) {
        return image.pixel(2, tableFirstRow + row * stateRowPitch + 1) & 0xFFFFFF;
    }
    const CSignal& Column(const std::string& name) {
        for (const auto& signal : document->stateList.All()) {
            if (signal->RowName() == name) {
                return *signal;
            }
        }
        throw std::runtime_error("no column " + name);
    }
    std::string Text(const std::string& column, std::int64_t sample) {
        return CellText(Frame(), Column(column), sample, 0);
    }

    DisplayColors colors;
    int offset = 0;
    std::int64_t topRow = 0;
    std::optional<std::int64_t> missing;
};

TEST_F(StatePainter, StripesFollowTheSampleNumber) {
    Load(-4, 20);
    const QImage image = Draw();
    EXPECT_EQ(RowColor(image, 0), 0xC0C0C0U);
    EXPECT_EQ(RowColor(image, 1), 0xE0E0E0U);
    EXPECT_EQ(RowColor(image, 2), 0xC0C0C0U);
}

TEST_F(StatePainter, StripesStayWithTheirSamplesUnderAFilter) {
    Load(0, 20, "", [](int number) { return number % 2 == 1; });
    document->SetMarker(0, 20);
    const QImage image = Draw();
    for (int row = 0; row < 5; ++row) {
        EXPECT_EQ(RowColor(image, row), 0xE0E0E0U) << row;
    }
}

TEST_F(StatePainter, TheTriggerHidesMarkersAndMarkersHideStripes) {
    Load(-4, 20);
    document->SetMarker(1, 5);
    document->SetMarker(2, 7);
    QImage image = Draw();
    EXPECT_EQ(RowColor(image, 4), 0xFF0000U); // trigger, red
    EXPECT_EQ(RowColor(image, 5), 0x00FF00U);
    EXPECT_EQ(RowColor(image, 7), 0x0000FFU);
    document->SetMarker(2, 5);
    EXPECT_EQ(RowColor(Draw(), 5), 0x00FF00U);
    document->SetMarker(1, 4);
    EXPECT_EQ(RowColor(Draw(), 4), 0xFF0000U);
}

TEST_F(StatePainter, EmptyCaptureDrawsOnlyTheHeader) {
    Load(0, 9, "", [](int) { return false; });
    const QImage image = Draw();
    for (int y = tableFirstRow; y < 200; ++y) {
        EXPECT_EQ(image.pixel(30, y) & 0xFFFFFF, 0xC0C0C0U) << y;
    }
    EXPECT_EQ(image.pixel(100, tableHeaderLine) & 0xFFFFFF, 0U);
    EXPECT_FALSE(missing.has_value());
}

TEST_F(StatePainter, ColumnsNeverOverlapTheSampleColumn) {
    Load(0, 99);
    const QImage still = Draw();
    for (const int scrolled : {1, 7, 50, 333}) {
        offset = scrolled;
        const QImage moved = Draw();
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x <= 60; ++x) {
                ASSERT_EQ(moved.pixel(x, y), still.pixel(x, y)) << scrolled << " " << x << "," << y;
            }
        }
    }
}

TEST_F(StatePainter, SelectedTitleIsWhite) {
    Load(0, 9);
    const_cast<CSignal&>(Column("COMMAND")).selected = true;
    const QImage image = Draw();
    std::set<QRgb> seen;
    for (int y = 4; y < 14; ++y) {
        seen.insert(image.pixel(60 + 5, y) & 0xFFFFFF);
    }
    EXPECT_TRUE(seen.contains(0xFFFFFF));
}

TEST_F(StatePainter, AnySizeIsDrawnToItsEdges) {
    Load(-50, 50);
    for (const QSize size : {QSize(1, 1), QSize(61, 20), QSize(90, 35), QSize(1601, 1003)}) {
        const QImage image = Draw(size);
        for (int x = 0; x < size.width(); x += 3) {
            for (int y = 0; y < size.height(); y += 3) {
                ASSERT_NE(image.pixel(x, y) & 0xFFFFFF, 0xFF00FFU) << x << "," << y;
            }
        }
    }
}

TEST_F(StatePainter, CellsByKind) {
    Load(0, 300);
    EXPECT_EQ(Text("AD[63:0]", 258), "00000000 00000102");
    EXPECT_EQ(Text("DATA32", 258), "00000102");
    EXPECT_EQ(Text("ADDRESS32", 258), ""); // a data sample
    EXPECT_EQ(Text("COMMAND", 258), "");
    EXPECT_EQ(Text("IRDY", 258), "0");
}

TEST_F(StatePainter, TimeIsThatOfTheSampleOrWithAFilterThatSinceTheRowAbove) {
    const std::string list = "\"State Signals\"\n" + TimeRows(true) + TimeRows(false);
    Load(0, 99, list);
    EXPECT_EQ(Text("TIME", 5), "30ns");
    Load(0, 99, list, [](int number) { return number % 5 == 0; });
    EXPECT_EQ(CellText(Frame(), Column("TIME"), 20, 10), "60ns");
}

TEST_F(StatePainter, PowerZoomIgnoresTheFilter) {
    const std::string list = "\"State Signals\"\n" + TimeRows(true) + TimeRows(false);
    Load(0, 99, list, [](int number) { return number % 5 == 0; });
    StateFrame frame = Frame();
    frame.zoom = true;
    EXPECT_EQ(CellText(frame, Column("TIME"), 20, 10), CellText(frame, Column("TIME"), 20, 0));
}

TEST_F(StatePainter, WithAFilterTheFirstRowOfAFrameCountsFromSampleZero) {
    const std::string list = "\"State Signals\"\n" + TimeRows(true) + TimeRows(false);
    Load(0, 99, list, [](int number) { return number % 5 == 0; });
    Widen(60);
    topRow = 4; // samples 20, 25 and so on; the file has two of every ten
    const auto device = Record();
    const auto text = [&](int row) { return RowTexts(device, row).at(1).text; };
    EXPECT_EQ(text(0), "120ns");
    EXPECT_EQ(text(1), "30ns");
}

TEST_F(StatePainter, AccumulatedTimeCountsFromTheTrigger) {
    Load(-4, 20, "\"State Signals\"\n" + TimeRows(false));
    AddDecoded("ACCUM", 80);
    EXPECT_EQ(Text("ACCUM", 0), "-120ns");
    EXPECT_EQ(Text("ACCUM", 4), "0ns");
    EXPECT_EQ(Text("ACCUM", 7), "90ns");
    document->SetMarker(0, -1);
    EXPECT_EQ(Text("ACCUM", 7), "");
}

TEST_F(StatePainter, RowsShowTheAccumulatedTimesOfTheirSamples) {
    const std::string list = "\"State Signals\"\n" + TimeRows(false);
    for (const bool filtered : {false, true}) {
        Load(-40, 60, list, [&](int number) { return !filtered || number % 3 == 0; });
        AddDecoded("ACCUM", 100);
        for (const auto& signal : document->stateList.All()) {
            if (signal->IsGroupStart() && signal->permanent) {
                for (std::size_t i = 0; i < signal->groupData.size(); i += signal->RowBytes()) {
                    signal->groupData[i] = static_cast<std::uint8_t>(i * 4); // all times differ
                }
            }
        }
        for (const std::int64_t top : {0, 5, 10, 20}) {
            topRow = top;
            const auto device = Record();
            for (int row = 0; row < 12; ++row) {
                const std::int64_t sample = document->RowToSample(top + row, false);
                EXPECT_EQ(RowTexts(device, row).at(1).text.toStdString(), Text("ACCUM", sample))
                    << filtered << " " << sample;
            }
        }
    }
}

TEST_F(StatePainter, TimesAreEmptyIfTheListHasNoTimeField) {
    Load(-4, 20, "\"Waveform Signals\"\n" + TimeRows(false) + "\"State Signals\"\n" + OneLine());
    AddDecoded("ACCUM", 80);
    EXPECT_EQ(Text("ACCUM", 0), "");
    EXPECT_EQ(Text("ACCUM", 7), "");
}

TEST_F(StatePainter, BlankAndHiddenColumns) {
    Load(0, 20);
    auto& list = document->stateList;
    list.InsertBlank(&list[0])->width = 40;
    list[0].ResizeSamples(21);
    Widen(40);
    EXPECT_EQ(CellText(Frame(), list[0], 3, 0), "");
    EXPECT_EQ(Columns().at(1).left, 60 + 1 + 40); // the blank column takes space
    list[0].hidden = true;
    EXPECT_EQ(Columns().at(0).signal, 1U);
}

TEST_F(StatePainter, AValueInAnUnknownRadixIsEmpty) {
    Load(0, 20);
    const_cast<CSignal&>(Column("AD[63:0]")).radix = 9;
    EXPECT_EQ(Text("AD[63:0]", 3), "");
}

TEST_F(StatePainter, RowsShowTheTextsOfTheirCells) {
    Load(-4, 300);
    topRow = 250;
    offset = 130;
    const auto columns = Widen(150);
    const auto device = Record();
    for (int row = 0; row < 5; ++row) {
        const std::int64_t sample = topRow + row;
        std::vector<std::string> expected = {std::to_string(sample - 4)};
        for (const TableColumn& column : columns) {
            const auto text = CellText(Frame(), document->stateList[column.signal], sample, 0);
            if (!text.empty()) {
                expected.push_back(text);
            }
        }
        std::vector<std::string> drawn;
        for (const auto& text : RowTexts(device, row)) {
            drawn.push_back(text.text.toStdString());
        }
        EXPECT_EQ(drawn, expected) << row;
        EXPECT_GT(drawn.size(), 1U) << row;
    }
}

TEST_F(StatePainter, TextsHaveTheColourOfTheirSignalAndAreAligned) {
    Load(0, 99);
    const_cast<CSignal&>(Column("DATA32")).color = 0x0000FF;
    const auto columns = Widen(150, {800, 200});
    const auto device = Record({800, 200});
    const auto texts = RowTexts(device, 2);
    int red = 0;
    for (const auto& text : texts) {
        red += text.color == QColor(255, 0, 0) ? 1 : 0;
        EXPECT_EQ(text.rect.bottom(), texts.front().rect.bottom());
        EXPECT_LE(text.rect.bottom(), tableFirstRow + 3 * stateRowPitch - 1);
        EXPECT_EQ(text.visible, text.rect) << text.text.toStdString(); // nothing is cut
        EXPECT_FALSE(text.bold);
    }
    EXPECT_EQ(red, 1);
    for (const auto& title : device.TextsBetween(0, tableHeaderLine - 1)) {
        EXPECT_TRUE(title.bold);
    }
    EXPECT_EQ(device.TextsBetween(0, tableHeaderLine - 1).front().text, "SAMPLE");
    EXPECT_EQ(columns.size() + 1, device.TextsBetween(0, tableHeaderLine - 1).size());
}

TEST_F(StatePainter, FindingsAreLeftAlignedAndEndInAnEllipsisIfCut) {
    Load(0, 20);
    CSignal& rule = AddDecoded("RULE CHECK", 50);
    std::fill(rule.labelTable.begin(), rule.labelTable.end(), std::uint8_t{2}); // a long one
    const std::string whole = Text("RULE CHECK", 0);
    ASSERT_GT(whole.size(), 8U);
    const auto cut = RowTexts(Record(), 0).at(1);
    EXPECT_EQ(cut.rect.left(), sampleColumn + 1 + 3);
    EXPECT_LE(cut.rect.right(), sampleColumn + 50);
    EXPECT_TRUE(cut.text.endsWith(QChar(0x2026))) << cut.text.toStdString();
    rule.width = 330;
    const auto all = RowTexts(Record(), 0).at(1);
    EXPECT_EQ(all.text.toStdString(), whole);
    EXPECT_EQ(all.rect.left(), sampleColumn + 1 + 3);
}

TEST_F(StatePainter, ATextThatDoesNotFitShowsItsBeginningAndAnEllipsis) {
    Load(-4000, 20, "\"State Signals\"\n" + TimeRows(false));
    const CSignal& accum = AddDecoded("ACCUM", 56);
    for (const std::int64_t sample : {0, 2, 2000}) {
        topRow = sample;
        const std::string whole = Text("ACCUM", sample);
        ASSERT_EQ(whole.front(), '-');
        ASSERT_GT(whole.size(), 6U);
        const auto cut = RowTexts(Record(), 0).at(1);
        EXPECT_TRUE(cut.text.endsWith(QChar(0x2026))) << cut.text.toStdString();
        EXPECT_EQ(cut.text.chopped(1).toStdString(), whole.substr(0, cut.text.size() - 1));
        EXPECT_GE(cut.text.size(), 5) << "as much as fits";
        EXPECT_EQ(cut.visible, cut.rect) << "nothing else is lost";
        EXPECT_LE(cut.rect.right(), sampleColumn + accum.width);
    }
}

TEST_F(StatePainter, NumbersAndTheTimeBetweenTheMarkersAreCutWithAnEllipsisToo) {
    Load(-4, 1020, "\"State Signals\"\n" + TimeRows(false));
    AddDecoded("DELTA", 40);
    document->SetMarker(1, 500);
    document->SetMarker(2, 900);
    topRow = 700;
    StateFrame frame = Frame();
    frame.sampleColumn = 22;
    RecordingPaintDevice device(frame.size);
    {
        QPainter painter(&device);
        DrawState(painter, frame);
    }
    const auto texts = RowTexts(device.Recorded(), 0);
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].text, QString("6\u2026")) << "696";
    EXPECT_TRUE(texts[1].text.startsWith("12.") && texts[1].text.endsWith(QChar(0x2026)))
        << texts[1].text.toStdString();
}

TEST_F(StatePainter, BlanksThatDoNotFitShowNoEllipsis) {
    Load(0, 20);
    const auto& data = Column("DATA32");
    // All lanes of sample 3 are disabled.
    document->store.PutSample(3, [] {
        SampleRecord record;
        record.bytes[8] = 0xFF;
        return record;
    }());
    ASSERT_EQ(Text("DATA32", 3), "");
    Widen(40);
    ASSERT_GT(data.width, 0);
    for (const auto& text : RowTexts(Record({4000, 200}), 3)) {
        EXPECT_FALSE(text.text.trimmed().isEmpty() || text.text.trimmed() == QChar(0x2026));
    }
}

TEST_F(StatePainter, RowColoursFillTheCellsOfTheColumns) {
    Load(-4, 20);
    const auto columns = Widen(70);
    document->SetMarker(1, 6);
    document->SetMarker(2, 8);
    const auto device = Record();
    const auto cellColor = [&](int row, const TableColumn& column) {
        return device.ColorAt({column.left + 2, tableFirstRow + row * stateRowPitch + 2});
    };
    for (const TableColumn& column : columns) {
        EXPECT_EQ(cellColor(4, column), ColorOf(colors.trigger));
        EXPECT_EQ(cellColor(5, column), ColorOf(colors.alternate));
        EXPECT_EQ(cellColor(6, column), ColorOf(colors.marker1));
        EXPECT_EQ(cellColor(8, column), ColorOf(colors.marker2));
        EXPECT_EQ(cellColor(10, column), ColorOf(colors.background));
    }
    EXPECT_EQ(device.FillsOf(ColorOf(colors.trigger)), static_cast<int>(columns.size()) + 1);
}

/// The cases are random; a failure prints the seed.
TEST_F(StatePainter, NothingIsDrawnOutsideItsCell) {
    Load(-50, 950);
    AddDecoded("DELTA", 80);
    document->SetMarker(1, 60);
    document->SetMarker(2, 90);
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        const auto upTo = [&](int limit) { return static_cast<int>(random() % limit); };
        const QSize size(70 + upTo(900), 34 + upTo(400));
        for (const auto& signal : document->stateList.All()) {
            signal->width = upTo(130);
        }
        offset = upTo(2000);
        topRow = upTo(1000);
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const auto columns = Columns(size);
        const auto device = Record(size);
        const auto inOneColumn = [&](const QRect& rect) {
            return std::any_of(columns.begin(), columns.end(), [&](const TableColumn& column) {
                return rect.left() > column.left && rect.right() < column.left + column.width;
            });
        };
        for (const auto& text : device.texts) {
            const QRect seen = text.visible;
            EXPECT_TRUE(seen.isEmpty() || (seen.left() > 0 && seen.right() < sampleColumn) ||
                        (seen.left() > sampleColumn && inOneColumn(seen)))
                << text.text.toStdString() << " at " << seen.left() << " to " << seen.right();
        }
        for (const auto& fill : device.fills) {
            const bool acrossAll = fill.rect.width() == size.width();
            EXPECT_TRUE(acrossAll || fill.visible.isEmpty() ||
                        fill.visible.right() <= sampleColumn || fill.visible.left() > sampleColumn)
                << fill.visible.left() << " to " << fill.visible.right();
            const bool isCell = fill.rect.height() == stateRowPitch - 1;
            EXPECT_TRUE(!isCell || fill.rect.left() <= size.width()) << fill.rect.left();
            EXPECT_LT(fill.rect.top(), size.height());
        }
    }
}

TEST_F(StatePainter, ColumnsLeftOfTheViewAreNotDrawn) {
    Load(0, 99);
    const auto all = Widen(100, {100'000, 200});
    offset = 100 * static_cast<int>(all.size() - 1);
    const auto device = Record({300, 200});
    EXPECT_EQ(device.TextsBetween(0, tableHeaderLine - 1).size(), 2U); // SAMPLE and the last
    EXPECT_LE(RowTexts(device, 3).size(), 2U);
}

TEST_F(StatePainter, AFrameTakesTheSameEffortInAnyCapture) {
    const auto makeCapture = [this](std::int64_t samples) {
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnNewDocument());
        ASSERT_TRUE(document->store.AllocateForFile(0, samples - 1));
        document->RebuildMapsFromFile();
        document->stateList.ResizeSamples(static_cast<std::uint32_t>(samples));
        document->SetMarker(0, -1);
        Widen(30);
        ASSERT_EQ(document->RowCount(false), samples);
    };
    std::set<std::size_t> counts;
    for (const std::int64_t samples : {1000, 1'000'000}) {
        makeCapture(samples);
        for (const std::int64_t row : {std::int64_t{0}, samples / 2, samples - 14}) {
            topRow = row;
            counts.insert(Record().Calls());
        }
    }
    EXPECT_EQ(counts.size(), 1U);
    EXPECT_GT(RowTexts(Record(), 0).size(), 3U);
}

TEST_F(StatePainter, EmptyCaptureHasTitlesOnly) {
    Load(0, 9, "", [](int) { return false; });
    const auto device = Record();
    EXPECT_EQ(device.texts.size(), device.TextsBetween(0, tableHeaderLine - 1).size());
    EXPECT_GT(device.texts.size(), 1U);
}

TEST_F(StatePainter, RowsWithoutSamplesShowTheirNumberAndTheFirstIsRequested) {
    Load(-50, 49);
    Widen(60);
    document->RebuildMaps(50, 49);
    topRow = 40;
    const auto device = Record();
    EXPECT_EQ(missing, 40);
    ASSERT_EQ(RowTexts(device, 0).size(), 1U);
    EXPECT_EQ(RowTexts(device, 0)[0].text, "-10");
    const std::array<SampleRecord, 8> records{};
    document->AddBlock(40, records, false);
    document->FlushBlockUpdates();
    EXPECT_GT(RowTexts(Record(), 7).size(), 1U);
    EXPECT_EQ(missing, 48);
}

TEST_F(StatePainter, RowsStopAtTheLastSample) {
    Load(0, 9);
    topRow = 7;
    const auto device = Record();
    EXPECT_EQ(RowTexts(device, 2).front().text, "9");
    EXPECT_TRUE(RowTexts(device, 3).empty());
    topRow = 10;
    EXPECT_TRUE(RowTexts(Record(), 0).empty());
}

/// The DELTA column is 62 pixels wide, so a cell is 61: sixths 1, 3 and 5 lie at 10, 30 and 50.
class DeltaColumn : public StatePainter {
protected:
    static constexpr int cellLeft = sampleColumn + 2;
    static constexpr int firstX = cellLeft + 10;
    static constexpr int middleX = cellLeft + 30;
    static constexpr int lastX = cellLeft + 50;

    void Prepare(int marker1, int marker2) {
        Load(-4, 20, "\"State Signals\"\n" + TimeRows(false));
        AddDecoded("DELTA", 62);
        document->SetMarker(1, marker1);
        document->SetMarker(2, marker2);
    }
    static int MarkTop(int row) { return tableFirstRow + row * stateRowPitch + 7 - 3; }
    static bool HasFill(const Recording& device, const QRect& rect) {
        return std::any_of(device.fills.begin(), device.fills.end(), [&](const auto& fill) {
            return fill.rect == rect && fill.color == QColor(Qt::black);
        });
    }
};

TEST_F(DeltaColumn, TheTriggerIsADoubleBarOnAStem) {
    Prepare(-1, -1);
    const auto device = Record();
    EXPECT_TRUE(HasFill(device, {middleX - 3, MarkTop(4) - 1, 7, 2}));
    EXPECT_TRUE(HasFill(device, {middleX, MarkTop(4), 1, 6}));
    EXPECT_TRUE(device.polygons.empty());
}

TEST_F(DeltaColumn, Marker1IsASquareAndMarker2ATriangle) {
    Prepare(6, 9);
    const auto device = Record();
    EXPECT_TRUE(HasFill(device, {middleX - 3, MarkTop(6), 6, 6}));
    ASSERT_EQ(device.polygons.size(), 1U);
    const int top = MarkTop(9);
    EXPECT_EQ(device.polygons[0].points,
              QPolygon({{middleX, top}, {middleX - 3, top + 6}, {middleX + 3, top + 6}}));
    EXPECT_EQ(device.polygons[0].color, QColor(Qt::black));
}

TEST_F(DeltaColumn, MarksOnOneSampleAreSideBySide) {
    Prepare(4, 4); // on the trigger, too
    auto device = Record();
    EXPECT_TRUE(HasFill(device, {middleX - 3, MarkTop(4) - 1, 7, 2}));
    EXPECT_TRUE(HasFill(device, {firstX - 3, MarkTop(4), 6, 6}));
    ASSERT_EQ(device.polygons.size(), 1U);
    EXPECT_EQ(device.polygons[0].points[0].x(), lastX);

    Prepare(6, 6);
    device = Record();
    EXPECT_TRUE(HasFill(device, {middleX - 3, MarkTop(6), 6, 6}));
    ASSERT_EQ(device.polygons.size(), 1U);
    EXPECT_EQ(device.polygons[0].points[0].x(), firstX);

    Prepare(-1, 4);
    device = Record();
    ASSERT_EQ(device.polygons.size(), 1U);
    EXPECT_EQ(device.polygons[0].points[0].x(), firstX);
}

TEST_F(DeltaColumn, SpanBetweenTheMarkersIsALineWithItsTimeInTheMiddle) {
    Prepare(10, 6); // in either order
    const auto device = Record();
    const auto line = [&](int row) {
        return HasFill(device, {middleX, tableFirstRow + row * stateRowPitch, 1, stateRowPitch});
    };
    EXPECT_FALSE(line(5));
    EXPECT_TRUE(line(7));
    EXPECT_FALSE(line(8));
    EXPECT_TRUE(line(9));
    EXPECT_FALSE(line(11));
    EXPECT_EQ(RowTexts(device, 8).at(1).text, "120ns");
    EXPECT_EQ(RowTexts(device, 7).size(), 1U);
}

TEST_F(DeltaColumn, OneMarkerHasNoSpan) {
    Prepare(10, -1);
    const auto device = Record();
    for (int row = 0; row < 12; ++row) {
        EXPECT_EQ(RowTexts(device, row).size(), 1U) << row;
    }
}

TEST_F(StatePainter, ColumnWidthsFitTitleAndDigits) {
    Load(0, 9);
    auto view = MakeView();
    const QFontMetrics metrics(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed));
    const int digit = metrics.horizontalAdvance('0');
    const auto width = [&](const char* title, int digits) {
        return std::max(metrics.horizontalAdvance(title), digits * digit) + 2 * digit;
    };
    EXPECT_EQ(Column("AD[63:0]").width, width("AD[63:0]", 17)); // 16 digits and a blank
    EXPECT_EQ(Column("ADDRESS32").width, width("ADDRESS32", 8));
    EXPECT_EQ(Column("COMMAND").width, width("COMMAND", 16)); // "DAC-Mem Wr & Inv"
    EXPECT_EQ(Column("IRDY").width, width("IRDY", 1));
    EXPECT_EQ(view->findChild<CStateWnd*>()->SampleColumnWidth(), 8 * digit);
}

TEST_F(StatePainter, InSetsThatAdaptTextsEachCanBeReadOnItsRow) {
    Load(-4, 20);
    AddDecoded("DELTA", 80);
    constexpr std::uint32_t signalColors[] = {0x000000, 0x00FF00, 0xFF0000, 0x0000FF, 0xFFFFFF};
    std::size_t next = 0;
    for (const auto& signal : document->stateList.All()) {
        signal->color = signalColors[next++ % std::size(signalColors)];
    }
    document->SetMarker(1, 5);
    document->SetMarker(2, 7);
    for (const ColorSet set : {ColorSet::Legible, ColorSet::Dark}) {
        MemorySettings stored;
        for (std::size_t i = 0; i < colorSettings; ++i) {
            const auto which = static_cast<ColorSetting>(i);
            WriteColorSetting(stored, which, ValueIn(set, which));
        }
        colors = LoadDisplayColors(stored, stateDisplay);
        const Recording drawn = Record({1200, 200});
        EXPECT_GT(drawn.texts.size(), 60U);
        for (const auto& text : drawn.texts) {
            EXPECT_GE(Contrast(text.color, drawn.ColorAt(text.visible.center())), readable)
                << text.text.toStdString() << " at " << text.rect.y();
        }
    }
}

TEST(LoadDisplayColors, EachDisplayHasItsOwn) {
    MemorySettings settings;
    settings.WriteProfileInt("Display", "WaveformTriggerColor", 0x010203);
    settings.WriteProfileInt("Display", "WaveformAlternate", 1);
    settings.WriteProfileInt("Display", "WaveformAlternateBackgroundColor", 0x040506);
    EXPECT_EQ(LoadDisplayColors(settings, waveformDisplay).trigger, 0x010203U);
    EXPECT_EQ(LoadDisplayColors(settings, waveformDisplay).alternate, 0x040506U);
    EXPECT_EQ(LoadDisplayColors(settings, stateDisplay),
              LoadDisplayColors(MemorySettings(), stateDisplay));
}

TEST(LoadDisplayColors, DefaultsAndThoseOfTheUser) {
    MemorySettings settings;
    EXPECT_EQ(LoadDisplayColors(settings, stateDisplay),
              (DisplayColors{0xC0C0C0, 0xC0C0C0, 0x0000FF, 0x00FF00, 0xFF0000}));
    settings.WriteProfileInt("Display", "StateBackgroundColor", 0x112233);
    settings.WriteProfileInt("Display", "StateAlternateBackgroundColor", 0x445566);
    EXPECT_EQ(LoadDisplayColors(settings, stateDisplay).alternate,
              0x112233U); // the alternate colour is switched off
    settings.WriteProfileInt("Display", "StateAlternate", 1);
    EXPECT_EQ(LoadDisplayColors(settings, stateDisplay).alternate, 0x445566U);
}

} // namespace
} // namespace busquill::test
