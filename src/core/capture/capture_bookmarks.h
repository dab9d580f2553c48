#pragma once

#include "capture/bookmarks.h"

#include <cstdint>
#include <optional>
#include <string>

namespace busquill {

class Prompts;

/// The bookmarks of an open capture. Those of a capture with a file are in the file beside it at
/// all times; failures are reported to the user and change nothing.
class CaptureBookmarks {
public:
    explicit CaptureBookmarks(Prompts& prompts) : prompts_(prompts) {}
    CaptureBookmarks(const CaptureBookmarks&) = delete;
    CaptureBookmarks& operator=(const CaptureBookmarks&) = delete;

    [[nodiscard]] const Bookmarks& All() const noexcept { return all_; }

    /// Whether the file beside the capture has them.
    [[nodiscard]] bool AreInFile() const noexcept { return isInFile_; }

    /// Reads those of a capture's file, and reports what is wrong with them.
    void Open(const std::string& capture);
    /// Reads them again after another window has changed them.
    void Renew();
    /// Sets the note of a sample, or removes its bookmark. False if that fails. Changes that others
    /// have made to the file meanwhile are kept.
    bool Set(std::int64_t number, std::optional<std::string> note);
    /// Writes them beside a copy of the capture, in place of those that are there.
    void SaveBeside(const std::string& capture);
    /// The capture is kept in this file from now on.
    void SetFile(const std::string& capture);
    /// The capture is gone.
    void Forget();

private:
    [[nodiscard]] std::string Path() const { return BookmarkPathOf(capture_); }
    bool Write(const std::string& path, const Bookmarks& bookmarks);

    Prompts& prompts_;
    Bookmarks all_;
    std::string capture_;   // empty without a file
    bool isInFile_ = false; // what is there are these
};

} // namespace busquill
