#pragma once

#include "capture/sample_reader.h"
#include "capture/sample_store.h"
#include "platform/text_file.h"

#include <cstdint>
#include <string>

namespace busquill {

class CTesselDoc;

/// Writes a trace file piece by piece, while samples may still be arriving from the board. The old
/// file is replaced when the new one is complete. Main thread; the document outlives the writer.
class TraceFileWriter final : public SampleWriter {
public:
    using Step = SampleStep;

    explicit TraceFileWriter(CTesselDoc& document);

    /// The range when the writer was created.
    [[nodiscard]] std::int64_t Before() const noexcept { return reader_.Range().before; }
    [[nodiscard]] std::int64_t After() const noexcept { return reader_.Range().after; }
    [[nodiscard]] bool HasSamples() const noexcept { return reader_.Range().hasSamples; }

    /// Also writes all that precedes the samples.
    [[nodiscard]] bool Begin(const std::string& path, std::int64_t first,
                             std::int64_t last) override;
    [[nodiscard]] Step Write(std::size_t rows) override;
    /// Leaves out the next sample, which is Missing.
    void Skip() noexcept { reader_.Skip(); }
    /// Abandons the save: the file stays as far as it was written.
    void Abort() override;
    [[nodiscard]] int Progress() const override { return reader_.Progress(); }
    [[nodiscard]] std::int64_t NextNumber() const override { return reader_.NextNumber(); }

private:
    [[nodiscard]] Step Finish();

    CTesselDoc& document_;
    CSampleStore& store_;
    SampleReader reader_;
    TextWriter file_;
};

} // namespace busquill
