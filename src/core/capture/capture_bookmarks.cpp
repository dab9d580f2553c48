#include "capture/capture_bookmarks.h"

#include "platform/prompts.h"
#include "platform/text.h"

#include <utility>

namespace busquill {

namespace {

std::string NotUnderstood(const std::string& path, const char* outcome,
                          const std::string& failure) {
    return Printf("%s\n%s\n%s", path.c_str(), outcome, failure.c_str());
}

} // namespace

void CaptureBookmarks::Open(const std::string& capture) {
    capture_ = capture;
    BookmarkFile file = ReadBookmarks(Path());
    all_ = std::move(file.bookmarks);
    isInFile_ = true;
    if (!file.failure.empty()) {
        prompts_.Message(NotUnderstood(
            Path(),
            "The bookmarks are shown as far as they are understood. They cannot be changed.",
            file.failure));
    }
}

void CaptureBookmarks::Renew() {
    // Those that could not be written are in this window only.
    if (!isInFile_) {
        return;
    }
    BookmarkFile file = ReadBookmarks(Path());
    if (file.failure.empty()) { // otherwise reported by the other window
        all_ = std::move(file.bookmarks);
    }
}

bool CaptureBookmarks::Set(std::int64_t number, std::optional<std::string> note) {
    if (note && note->size() > longestNote) {
        prompts_.Message(Printf("A note can have at most %zu bytes.", longestNote));
        return false;
    }
    Bookmarks changed = all_;
    if (!capture_.empty()) {
        BookmarkFile file = ReadBookmarks(Path());
        if (!file.failure.empty()) {
            prompts_.Message(
                NotUnderstood(Path(), "The bookmarks cannot be changed.", file.failure));
            return false;
        }
        if (isInFile_) {
            changed = std::move(file.bookmarks);
        }
    }
    if (!note) {
        changed.erase(number);
    } else {
        changed[number] = *std::move(note);
    }
    if (changed.size() > mostBookmarks) {
        prompts_.Message(Printf("A capture can have at most %zu bookmarks.", mostBookmarks));
        return false;
    }
    if (!capture_.empty() && !Write(Path(), changed)) {
        return false;
    }
    all_ = std::move(changed);
    isInFile_ = true;
    return true;
}

void CaptureBookmarks::SaveBeside(const std::string& capture) {
    if (capture == capture_ && isInFile_) {
        return;
    }
    const std::string path = BookmarkPathOf(capture);
    const BookmarkFile old = ReadBookmarks(path);
    if (!old.failure.empty()) {
        prompts_.Message(NotUnderstood(
            path, "The bookmarks in this file are not understood, so it was left as it is.",
            old.failure));
    } else if (old.bookmarks != all_) {
        Write(path, all_);
    }
}

void CaptureBookmarks::SetFile(const std::string& capture) {
    capture_ = capture;
    isInFile_ = ReadBookmarks(Path()).bookmarks == all_;
}

void CaptureBookmarks::Forget() {
    all_.clear();
    capture_.clear();
    isInFile_ = false;
}

bool CaptureBookmarks::Write(const std::string& path, const Bookmarks& bookmarks) {
    const bool isWritten = WriteBookmarks(path, bookmarks);
    if (!isWritten) {
        prompts_.Message(Printf("The bookmarks cannot be written to %s.", path.c_str()));
    }
    return isWritten;
}

} // namespace busquill
