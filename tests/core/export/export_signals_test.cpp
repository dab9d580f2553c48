#include "capture/trace_stream.h"
#include "export/export_signals.h"
#include "support/board_tables.h"
#include "support/paths.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class ListsToExport : public testing::Test {
protected:
    const TraceStream& Open(const std::string& path) {
        EXPECT_TRUE(file.Open(path));
        stream.emplace(file, board.tables);
        EXPECT_EQ(stream->ReadHead(), "");
        return *stream;
    }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    TextReader file;
    std::optional<TraceStream> stream;
};

TEST_F(ListsToExport, ThatOfTheListingIfTheFileHasNoOther) {
    const TraceStream& capture = Open(SourceFile("data/Trigger2.tra"));
    EXPECT_EQ(&ListToExport(capture, false).list, &capture.stateList);
    EXPECT_EQ(ListToExport(capture, false).use, ListUse::State);
}

TEST_F(ListsToExport, ThatOfTheWaveformsOtherwise) {
    const TraceStream& none =
        Open(dir.Write("none.tra", "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"));
    ASSERT_FALSE(none.Parser().HasStateList());
    EXPECT_EQ(&ListToExport(none, false).list, &none.waveformList);
    const TraceStream& both = Open(SourceFile("data/Trigger1.tra"));
    ASSERT_TRUE(both.Parser().HasWaveformList());
    EXPECT_EQ(&ListToExport(both, false).list, &both.waveformList);
    EXPECT_EQ(ListToExport(both, false).use, ListUse::Wave);
}

TEST_F(ListsToExport, ThatOfThePowerZoomForItsSamples) {
    for (const char* name : {"data/Trigger1.tra", "data/Trigger2.tra"}) {
        const TraceStream& capture = Open(SourceFile(name));
        EXPECT_EQ(&ListToExport(capture, true).list, &capture.zoomList);
        EXPECT_EQ(ListToExport(capture, true).use, ListUse::Wave);
    }
}

} // namespace
} // namespace busquill::test
