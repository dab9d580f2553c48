#pragma once

#include "support/scroll_bar_qt.h"
#include "support/trace_fixture_qt.h"
#include "ui/display/trace_display.h"

#include <QMouseEvent>
#include <QtTest/QTest>

namespace busquill::test {

/// Views of a trace and what a user does with them.
class TraceViewFixture : public TraceFixture {
protected:
    using TraceFixture::TraceFixture;

    static int Rows(CTraceView& view) {
        return static_cast<int>(view.findChild<TraceDisplay*>()->VisibleSampleCount());
    }
    /// Like the system, it sends the event to the window under the pointer, which passes it on.
    static void Wheel(CTraceView& view, QPoint delta, Qt::KeyboardModifiers keys = {}) {
        TurnWheel(*view.findChild<TraceDisplay*>(), delta, keys);
    }
    static void Wheel(CTraceView& view, int delta) { Wheel(view, QPoint(0, delta)); }
    /// Drags the thumb with the mouse.
    static void Drag(QScrollBar& bar, QPoint way, bool release = true) {
        const QPoint from = PartOf(bar, QStyle::SC_ScrollBarSlider).center();
        QTest::mousePress(&bar, Qt::LeftButton, {}, from);
        for (const QPoint to : {from + way / 2, from + way}) {
            QMouseEvent move(QEvent::MouseMove, to, bar.mapToGlobal(to), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&bar, &move);
        }
        if (release) {
            QTest::mouseRelease(&bar, Qt::LeftButton, {}, from + way);
        }
    }
    /// Filters the document to the samples that `keep` selects. The view is detached meanwhile.
    void Filter(CTraceView& view, const std::function<bool(std::uint32_t)>& keep) {
        document->RemoveView(&view);
        const auto count = static_cast<std::uint32_t>(document->SampleCount(false));
        document->excludedBits.assign(WordsFor(count), 0);
        for (std::uint32_t sample = 0; sample < count; ++sample) {
            if (!keep(sample)) {
                document->excludedBits[sample / 32] |= 1U << (sample % 32);
            }
        }
        document->RebuildMapsFromFile();
        document->AddView(&view);
        document->UpdateAllViews(nullptr, HintFilterChanged);
    }
    /// Whether `act` changes the picture of the listing.
    static bool Repaints(CTraceView& view, const std::function<void()>& act) {
        auto& window = *view.findChild<TraceDisplay*>();
        const QImage before = window.grab().toImage();
        act();
        return window.grab().toImage() != before;
    }
    /// Whether a listing repaints when a block arrives.
    bool DrawsBlock(CTraceView& view, CSignalList& list, std::uint32_t first, bool zoom) {
        list[0].selected = !list[0].selected; // visible in the next paint
        const bool drawn = Repaints(view, [&] {
            CBlockUpdate block;
            block.first = first;
            block.count = 32;
            block.zoom = zoom;
            document->UpdateAllViews(nullptr, HintBlockArrived, &block);
        });
        list[0].selected = drawn == list[0].selected; // as the listing shows it
        return drawn;
    }
};

} // namespace busquill::test
