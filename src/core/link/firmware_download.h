#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace busquill {

class CAnalyzerLink;
class Prompts;

/// Sends the data of an Intel hex file to the board, record by record. Each record's completion
/// sends the next, so all but the first go out on the link's thread; messages of failures come from
/// there too.
/// Main thread, unless a function says otherwise. The link outlives the download, which may be
/// destroyed at any time: a request that the link still holds keeps what it needs.
class FirmwareDownload {
public:
    /// How far a download is. One that ended in an error has said why and can be started again.
    enum class State { Idle, Running, Complete };

    FirmwareDownload(CAnalyzerLink& link, Prompts& prompts);
    /// No record is sent after this; the one under way may still arrive.
    ~FirmwareDownload();
    FirmwareDownload(const FirmwareDownload&) = delete;
    FirmwareDownload& operator=(const FirmwareDownload&) = delete;

    /// Reads the file and sends its first record; not while one runs. False when the file cannot be
    /// read. Numbers of records, and the segment that a file has chosen, go on from the last file.
    bool Start(const std::string& path);
    /// Ends the download after the record that is under way, for which it waits some seconds.
    void Cancel();

    // Any thread:

    [[nodiscard]] State GetState() const noexcept;
    /// The ":" of the file, which are its records unless one stands among their data.
    [[nodiscard]] std::uint32_t Total() const noexcept;
    /// Records that have been read.
    [[nodiscard]] std::uint32_t Count() const noexcept;

private:
    class Chain;

    CAnalyzerLink& link_;
    Prompts& prompts_;
    const std::shared_ptr<Chain> chain_;
};

} // namespace busquill
