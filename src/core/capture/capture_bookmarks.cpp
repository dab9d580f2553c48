#include "capture/capture_bookmarks.h"

#include "platform/folder_lock.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <utility>

namespace busquill {

namespace {

std::string NotUnderstood(const std::string& path, const char* outcome,
                          const std::string& failure) {
    return Printf("%s\n%s\n%s", path.c_str(), outcome, failure.c_str());
}

std::string NotWritten(const std::string& path) {
    return Printf("The bookmarks cannot be written to %s.", path.c_str());
}

} // namespace

bool CaptureBookmarks::AreBeside(const std::string& capture) const {
    return !isReplaced_ && path_ == BookmarkPathOf(capture);
}

void CaptureBookmarks::Open(const std::string& capture) {
    path_ = BookmarkPathOf(capture);
    BookmarkFile file = ReadBookmarks(path_);
    all_ = std::move(file.bookmarks);
    isInFile_ = true;
    isWhole_ = file.failure.empty();
    if (!isWhole_) {
        prompts_.Message(NotUnderstood(
            path_, "The bookmarks are shown as far as they are understood. They cannot be changed.",
            file.failure));
    }
}

void CaptureBookmarks::Renew() {
    // Those that could not be written are in this window only.
    if (!isInFile_) {
        return;
    }
    BookmarkFile file = ReadBookmarks(path_);
    if (file.failure.empty()) { // otherwise reported by the other window
        all_ = std::move(file.bookmarks);
    }
}

/// Other programs wait only for the change, not until the user has read a message.
bool CaptureBookmarks::Change(const BookmarkChanges& changes) {
    const std::string failure = TryChange(changes);
    if (!failure.empty()) {
        prompts_.Message(failure);
    }
    return failure.empty();
}

std::string CaptureBookmarks::TryChange(const BookmarkChanges& changes) {
    if (isReplaced_) {
        return Printf("%s\nThe bookmarks cannot be changed, because another capture has been saved "
                      "to the file of this one. Save this one to another file, and open that.",
                      path_.c_str());
    }
    const FolderLock lock(path_);
    Bookmarks changed = all_;
    if (!path_.empty()) {
        BookmarkFile file = ReadBookmarks(path_);
        if (!file.failure.empty()) {
            return NotUnderstood(path_, "The bookmarks cannot be changed.", file.failure);
        }
        if (isInFile_) {
            changed = std::move(file.bookmarks);
        }
    }
    for (const auto& [number, note] : changes) {
        if (!note) {
            changed.erase(number);
        } else if (note->size() > longestNote) {
            return Printf("A note can have at most %zu bytes.", longestNote);
        } else {
            changed[number] = *note;
        }
    }
    if (changed.size() > mostBookmarks) {
        return Printf("A capture can have at most %zu bookmarks.", mostBookmarks);
    }
    if (!path_.empty() && !WriteBookmarks(path_, changed)) {
        return NotWritten(path_);
    }
    all_ = std::move(changed);
    isInFile_ = true;
    return {};
}

void CaptureBookmarks::SaveBeside(const std::string& capture) {
    if (AreBeside(capture) && isInFile_) {
        return;
    }
    const std::string failure = TrySaveBeside(BookmarkPathOf(capture));
    if (!failure.empty()) {
        prompts_.Message(failure);
    }
}

std::string CaptureBookmarks::TrySaveBeside(const std::string& path) {
    if (!isWhole_) {
        return Printf(
            "%s\nNot all bookmarks of the capture are understood, so none were written to "
            "this file.",
            path.c_str());
    }
    const FolderLock lock(path);
    const BookmarkFile old = ReadBookmarks(path);
    if (!old.failure.empty()) {
        return NotUnderstood(
            path, "The bookmarks in this file are not understood, so it was left as it is.",
            old.failure);
    }
    if (old.bookmarks != all_ && !WriteBookmarks(path, all_)) {
        return NotWritten(path);
    }
    // The capture may have been saved to its own file, which held another one.
    isReplaced_ = isReplaced_ && path != path_;
    isInFile_ = isInFile_ || path == path_;
    return {};
}

void CaptureBookmarks::SetFile(const std::string& capture) {
    path_ = BookmarkPathOf(capture);
    isReplaced_ = false;
    isInFile_ = ReadBookmarks(path_).bookmarks == all_;
}

void CaptureBookmarks::OnFileReplaced() {
    isReplaced_ = true;
    isInFile_ = false;
}

void CaptureBookmarks::Forget() {
    all_.clear();
    path_.clear();
    isInFile_ = false;
    isReplaced_ = false;
    isWhole_ = true;
}

} // namespace busquill
