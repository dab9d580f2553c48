#pragma once

#include "capture/sample_rows.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class SignalTables;

/// A capture as a session file of the open logic analyzer programs: a zip archive of the raw
/// records, with 144 named channels. Written piece by piece.
class SessionFile {
public:
    struct Capture {
        std::vector<std::string> channels; // names, one for each bit of the record
        std::uint64_t sampleRate = 1;      // samples per second; 1 if unknown
    };
    /// Writes bytes of the archive; false on failure.
    using Sink = std::function<bool(std::string_view)>;

    SessionFile(const Capture& capture, Sink sink);
    ~SessionFile();
    SessionFile(const SessionFile&) = delete;
    SessionFile& operator=(const SessionFile&) = delete;

    /// Each returns false on failure.
    [[nodiscard]] bool Add(const SampleRows& rows);
    [[nodiscard]] bool End();

private:
    class Archive;
    [[nodiscard]] bool WriteChunk();

    std::unique_ptr<Archive> archive_;
    std::string chunk_; // records not written yet
    int chunks_ = 0;
    bool good_ = true;
};

/// The names of the channels: those of the bits, each once and without blanks.
[[nodiscard]] std::vector<std::string> SessionChannels(const SignalTables& tables);

} // namespace busquill
