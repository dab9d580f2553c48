#include "support/trace_view_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/wave_window.h"

#include <QClipboard>
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace busquill::test {
namespace {

/// What Copy puts on the clipboard.
class CopyOfACapture : public TraceViewFixture {
protected:
    CopyOfACapture() { QApplication::clipboard()->setText("before"); }

    void Open(bool isState) {
        view = std::make_unique<CTraceView>(nullptr, isState, false,
                                            TraceViewParts{settings, nullptr, &prompts});
        view->AttachDocument(document.get());
        view->resize({800, 600});
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
    }
    /// Shows only columns with these names, in the order of the list.
    void Show(const std::vector<std::string>& names) {
        for (const auto& signal : document->stateList.All()) {
            signal->hidden = std::ranges::find(names, signal->RowName()) == names.end();
        }
    }
    CSignal& Column(const std::string& name) {
        for (const auto& signal : document->stateList.All()) {
            if (signal->RowName() == name) {
                return *signal;
            }
        }
        throw std::runtime_error("no column " + name);
    }
    [[nodiscard]] bool CanCopy() const {
        return view->commands.CanDo(CommandId::Copy).value_or(false);
    }
    std::string Copied() {
        view->commands.Do(CommandId::Copy);
        return QApplication::clipboard()->text().toStdString();
    }

    std::unique_ptr<CTraceView> view;
};

TEST_F(CopyOfACapture, OfAListingAreTheRowsBetweenTheMarkers) {
    Load(-500, 499);
    Show({"DATA32", "FRAME", "PAR"});
    Open(true);
    EXPECT_FALSE(CanCopy()) << "nothing is marked";
    document->SetMarker(2, 502);
    document->SetMarker(1, 500);
    ASSERT_TRUE(CanCopy());
    EXPECT_EQ(Copied(), "SAMPLE\tDATA32\tPAR\tFRAME\n"
                        "0\t000001F4\t0\t0\n"
                        "1\t000001F5\t0\t0\n"
                        "2\t000001F6\t0\t0\n");
    document->SetMarker(2, 499);
    EXPECT_EQ(Copied(), "SAMPLE\tDATA32\tPAR\tFRAME\n"
                        "-1\t000001F3\t0\t0\n"
                        "0\t000001F4\t0\t0\n")
        << "in the order of the listing";
}

TEST_F(CopyOfACapture, WithOneMarkerIsItsRow) {
    Load(0, 99);
    Show({"DATA32"});
    Open(true);
    document->SetMarker(2, 7);
    EXPECT_EQ(Copied(), "SAMPLE\tDATA32\n7\t00000007\n");
    document->SetMarker(2, -1);
    document->SetMarker(1, 8);
    EXPECT_EQ(Copied(), "SAMPLE\tDATA32\n8\t00000008\n");
}

TEST_F(CopyOfACapture, TakesOnlySelectedColumnsIfThereAreAny) {
    Load(0, 99);
    Open(true);
    document->SetMarker(1, 7);
    Column("DATA32").selected = true;
    EXPECT_EQ(Copied(), "SAMPLE\tDATA32\n7\t00000007\n");
    Column("DATA32").selected = false;
    document->stateList.InsertBlank(&Column("DATA32"))->selected = true;
    EXPECT_EQ(Copied(), "SAMPLE\n7\n") << "a column without text is still the only one";
}

TEST_F(CopyOfACapture, HasTheTimesThatTheListingShows) {
    Load(0, 99);
    CSignalList& list = document->stateList;
    Show({});
    for (const char* name : {"ACCUM", "TIME", "DELTA"}) {
        CSignal* column = list.AddSignal(&list[0], board.tables.decodedSignals.FindByName(name), 0,
                                         0, 0, 0, Radix::Hex, true);
        ASSERT_NE(column, nullptr);
        column->width = 80;
        document->LoadSignal(list, *column, false);
    }
    Open(true);
    Filter(*view, [](std::uint32_t sample) { return sample % 10 == 0; });
    document->SetMarker(1, 15);
    document->SetMarker(2, 35);
    EXPECT_EQ(Copied(), "SAMPLE\tTIME\tACCUM\n"
                        "20\t300ns\t600ns\n"
                        "30\t300ns\t900ns\n")
        << "the rows that the filter shows, the time since the row above, and no marks";
    document->SetMarker(1, 31);
    EXPECT_FALSE(CanCopy()) << "the filter hides all that is marked";
}

TEST_F(CopyOfACapture, KeepsEachCellInOneCell) {
    Load(0, 99);
    Show({"FRAME"});
    Column("FRAME").name = "a\tname\nin lines";
    Open(true);
    document->SetMarker(1, 7);
    EXPECT_EQ(Copied(), "SAMPLE\ta name in lines\n7\t0\n");
}

TEST_F(CopyOfACapture, OfTooManyRowsIsRefused) {
    Load(0, 100'001);
    Show({"FRAME"});
    Open(true);
    document->SetMarker(1, 0);
    document->SetMarker(2, 100'000);
    EXPECT_EQ(Copied(), "before");
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"There are 100001 rows between the markers; at most 100000 "
                                       "can be copied at once."});
    document->SetMarker(2, 99'999);
    EXPECT_EQ(std::ranges::count(Copied(), '\n'), 100'001);
}

TEST_F(CopyOfACapture, OfSamplesThatHaveNotArrivedIsRefused) {
    Load(0, 1999);
    document->RebuildMaps(0, 1999);
    const std::vector<SampleRecord> block(32);
    document->AddBlock(0, block, false);
    document->FlushBlockUpdates();
    Show({"FRAME"});
    Open(true);
    document->SetMarker(1, 30);
    document->SetMarker(2, 40);
    EXPECT_EQ(Copied(), "before");
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{
                  "Sample 32 has not come from the analyzer, and the upload has ended."});
    document->SetMarker(2, 31);
    EXPECT_EQ(Copied(), "SAMPLE\tFRAME\n30\t0\n31\t0\n");
}

TEST_F(CopyOfACapture, OfWaveformsIsTheirPicture) {
    Load(0, 99);
    Open(false);
    ASSERT_TRUE(CanCopy());
    view->commands.Do(CommandId::Copy);
    const QImage picture = QApplication::clipboard()->image();
    const QImage shown = view->findChild<CWaveformWnd*>()->grab().toImage();
    EXPECT_EQ(picture.size(), shown.size());
    EXPECT_EQ(picture.convertToFormat(QImage::Format_RGB32),
              shown.convertToFormat(QImage::Format_RGB32));
}

TEST_F(CopyOfACapture, OfAnEmptyOneIsNotOffered) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    Open(true);
    EXPECT_FALSE(CanCopy());
    Open(false);
    EXPECT_FALSE(CanCopy());
}

} // namespace
} // namespace busquill::test
