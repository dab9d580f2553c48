#pragma once

#include "capture/sample_rows.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// A capture as a session of the open logic analyzer programs: a zip archive of the raw records,
/// 144 channels of which each has a name. It is written piece by piece.
class SessionFile {
public:
    struct Capture {
        std::vector<std::string> channels; // one for each bit of the record
        std::uint64_t sampleRate = 1;      // samples a second; 1 where the samples have no rate
    };
    /// Takes bytes of the archive; false when they cannot be written.
    using Sink = std::function<bool(std::string_view)>;

    SessionFile(const Capture& capture, Sink sink);
    ~SessionFile();
    SessionFile(const SessionFile&) = delete;
    SessionFile& operator=(const SessionFile&) = delete;

    /// Each returns false when something could not be written.
    [[nodiscard]] bool Add(const SampleRows& rows);
    [[nodiscard]] bool End();

private:
    class Archive;
    [[nodiscard]] bool WriteChunk();

    std::unique_ptr<Archive> archive_;
    std::string chunk_; // records that wait
    int chunks_ = 0;
    bool good_ = true;
};

} // namespace busquill
