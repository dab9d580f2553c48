#pragma once

#include "capture/trace_document.h"
#include "platform/memory_settings.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "ui/capture/position_gauge.h"
#include "ui/display/trace_frame.h"
#include "ui/display/trace_view.h"

#include <QApplication>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace busquill::test {

/// Records what a view shows in its frame.
class RecordingFrame final : public TraceFrame {
public:
    void SetTitleName(const std::string& text) override { name = text; }
    void SetComment(const std::string& text) override { comment = text; }
    void ShowSetupName() override { ++setupNamesShown; }
    void SetCounters(std::int64_t before, std::int64_t after) override {
        counters = {before, after};
    }
    void SetIndicator(RunIndicator state, int activeLevel) override {
        indicator = state;
        level = activeLevel;
    }
    void SetTimes(const std::array<std::string, 3>& between) override { times = between; }
    CPositionGauge& GetGauge() override { return gauge; }

    std::string name;
    std::string comment;
    int setupNamesShown = 0;
    std::pair<std::int64_t, std::int64_t> counters = {-1, -1};
    RunIndicator indicator = RunIndicator::Idle;
    int level = -1;
    std::array<std::string, 3> times;
    CPositionGauge gauge;
};

/// A trace document read from a file of made-up samples, and views of it.
class TraceFixture : public testing::Test {
protected:
    explicit TraceFixture(const std::string& model = "PCIKite-1") : board(model) {}

    /// Samples from `first` to `last`, each with its index in its data lines; `keep` selects the
    /// samples that are in the file, `extra` precedes them.
    void Load(
        int first, int last, const std::string& extra = "",
        const std::function<bool(int)>& keep = [](int) { return true; }) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n" + extra +
                           "\"Trace Data\"," + std::to_string(first) + "," + std::to_string(last) +
                           "\n";
        for (int i = first; i <= last; ++i) {
            if (keep(i)) {
                const int n = i - first;
                // The sample's index in the data lines, all lanes enabled, a data sample, 30 ns.
                text += std::to_string(i) + "," + std::to_string(n & 255) + "," +
                        std::to_string(n >> 8 & 255) + "," + std::to_string(n >> 16 & 255) +
                        ",0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
            }
        }
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnOpenDocument(dir.Write("samples.tra", text)));
    }

    std::unique_ptr<CTraceView> MakeView(bool isState = true, bool isZoom = false,
                                         QSize size = {800, 600}) {
        auto view =
            std::make_unique<CTraceView>(nullptr, isState, isZoom, TraceViewParts{settings});
        view->AttachDocument(document.get());
        view->resize(size);
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
        return view;
    }
    static QScrollBar& Bar(CTraceView& view, Qt::Orientation orientation) {
        for (auto* bar : view.findChildren<QScrollBar*>()) {
            if (bar->orientation() == orientation) {
                return *bar;
            }
        }
        throw std::runtime_error("no bar");
    }

    BoardTables board;
    const TempDir dir;
    RecordingPrompts prompts;
    MemorySettings settings;
    NewTraceContext context{board.tables};
    std::unique_ptr<CTesselDoc> document;
};

} // namespace busquill::test
