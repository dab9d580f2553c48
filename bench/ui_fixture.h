#pragma once

#include "support/trace_fixture_qt.h"

#include <memory>
#include <vector>

namespace busquill::test {

/// What the benchmarks share. Cleared before the application object is destroyed.
inline std::vector<std::shared_ptr<void>> keptUntilTheEnd;

/// A capture of made-up samples; with `idle`, all samples are the same.
class LongCapture : public TraceFixture {
public:
    explicit LongCapture(int samples, bool idle = false) {
        document = std::make_unique<CTesselDoc>(context, prompts);
        static_cast<void>(document->store.AllocateForFile(0, samples - 1));
        for (int i = 0; i < samples; ++i) {
            SampleRecord record;
            for (std::size_t byte = 0; byte < record.bytes.size(); ++byte) {
                record.bytes[byte] = static_cast<std::uint8_t>((idle ? 0 : i * 31) + byte * 17);
            }
            document->store.PutSample(static_cast<std::uint32_t>(i), record);
        }
    }
    void TestBody() override {}

    using TraceFixture::document;

    /// Unpacks the samples into a list.
    void Load(CSignalList& list) {
        const auto records = document->store.GetData(false);
        list.ResizeSamples(static_cast<std::uint32_t>(records.size()));
        list.LoadSamples(0, records);
    }
};

} // namespace busquill::test
