#pragma once

#include "capture/bookmarks.h"

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

    /// Whether they are kept beside this capture.
    [[nodiscard]] bool AreBeside(const std::string& capture) const;

    /// Reads those of a capture's file, and reports what is wrong with them.
    void Open(const std::string& capture);
    /// Reads them again after another window has changed them.
    void Renew();
    /// Makes all changes with one write, or none; false if that fails. What other programs have
    /// written to the file about other samples is kept.
    bool Change(const BookmarkChanges& changes);
    /// Writes them beside a copy of the capture, in place of those that are there.
    void SaveBeside(const std::string& capture);
    /// The capture is kept in this file from now on.
    void SetFile(const std::string& capture);
    /// Another capture has been saved to the file: what is beside it now is about other samples, so
    /// they are shown, but not changed.
    void OnFileReplaced();
    /// The capture is gone.
    void Forget();

private:
    /// What is wrong, or an empty text.
    [[nodiscard]] std::string TryChange(const BookmarkChanges& changes);
    [[nodiscard]] std::string TrySaveBeside(const std::string& path);

    Prompts& prompts_;
    Bookmarks all_;
    std::string path_;        // of the file beside the capture; empty without one
    bool isInFile_ = false;   // what is there are these
    bool isWhole_ = true;     // all of the opened file was understood
    bool isReplaced_ = false; // what is there are those of another capture
};

} // namespace busquill
