#pragma once

#include "capture/sample_reader.h"
#include "export/capture_export.h"
#include "platform/text_file.h"

#include <cstdint>
#include <string>

namespace busquill {

class CTesselDoc;

/// Writes samples of a document in the format of another program. The old file is replaced when
/// the new one is complete; one that is not completed is not left. Main thread; the document
/// outlives the writer.
class ExportWriter final : public SampleWriter {
public:
    /// What is written: signals of a list, and for a dump, whether with its viewer's file.
    struct What {
        ExportFormat format = ExportFormat::Dump;
        const CSignalList& list;
        ListUse use = ListUse::Wave;
        bool zoom = false; // Power Zoom samples
        bool viewerFile = false;
    };
    ExportWriter(CTesselDoc& document, const What& what);

    [[nodiscard]] bool Begin(const std::string& path, std::int64_t first,
                             std::int64_t last) override;
    [[nodiscard]] SampleStep Write(std::size_t rows) override;
    void Abort() override {} // the destructor removes the file
    /// A survey is the first half.
    [[nodiscard]] int Progress() const override;
    [[nodiscard]] std::int64_t NextNumber() const override { return reader_.NextNumber(); }
    [[nodiscard]] std::string Note() const override;

private:
    [[nodiscard]] bool BeginFile();
    [[nodiscard]] SampleStep Finish();

    SampleReader reader_;
    const bool viewerFile_;
    TextWriter file_;
    CaptureExport export_;
    std::string path_;
    std::int64_t first_ = 0;
    std::int64_t last_ = 0;
    bool isSurvey_ = false;
    bool hasSamples_ = false;
    bool viewerFailed_ = false;
};

} // namespace busquill
