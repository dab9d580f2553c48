#pragma once

#include "boardsim/traffic.h"
#include "capture/trace_document.h"
#include "support/wire_fixture.h"

namespace busquill::test {

/// Captures of the core over a real pseudo terminal.
class CaptureOverWire : public LinkOverWire {
protected:
    CaptureOverWire() {
        context.analyzer = &analyzer;
        context.newDocRealTime = true;
    }
    void Connect(std::vector<std::string> options) {
        StartBoard(std::move(options));
        link.Connect(Port());
        ASSERT_FALSE(link.IsDemoMode());
        analyzer.Tables().Load();
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnNewDocument());
    }
    /// Sets the bits of an event in the setup to a value, with their compare bits.
    void Expect(unsigned event, std::int32_t first, unsigned width, unsigned value) {
        for (const auto& signal : document->setup.events.All()) {
            const std::int32_t bit = signal->dataIndex - first;
            if (bit >= 0 && bit < static_cast<std::int32_t>(width)) {
                signal->data[0] |= (value >> bit & 1) << event;
                signal->mask[0] |= 1U << event;
            }
        }
    }
    void Go() { document->Run().Go(document->setup, ""); }
    /// Polls the run as a window does.
    template <typename Condition>
    bool FollowUntil(Condition holds) {
        for (int i = 0; i < 3000; ++i) {
            document->Run().Poll();
            last = document->Run().State();
            if (holds()) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    bool Complete() {
        return FollowUntil([&] {
            return !document->CaptureActive() && last.indicator == RunIndicator::Idle && AllValid();
        });
    }
    [[nodiscard]] bool AllValid() const {
        for (std::int64_t i = 0; i < document->SampleCount(false); ++i) {
            if (!document->IsValidSample(i, false)) {
                return false;
            }
        }
        return true;
    }
    /// The captured samples as the board's records.
    std::vector<boardsim::Record> Captured() {
        std::vector<boardsim::Record> records;
        for (std::int64_t i = 0; i < document->SampleCount(false); ++i) {
            records.push_back(document->GetSample(i, false)->bytes);
        }
        return records;
    }

    BoardCapture& capture = analyzer.Capture();
    CSampleStore& store = capture.store;
    SampleUpload& upload = capture.upload;
    NewTraceContext context{analyzer.Tables()};
    std::unique_ptr<CTesselDoc> document;
    RunState last;
};

} // namespace busquill::test
