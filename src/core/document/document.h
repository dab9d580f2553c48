#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace busquill {

class CDocument;

/// Data that a document passes to its views with a hint; the hint determines its type.
struct HintObject {
    virtual ~HintObject() = default;
};

/// A window that shows a document.
class DocumentView {
public:
    virtual ~DocumentView() = default;
    virtual void OnUpdate(DocumentView* sender, int hint, const HintObject* object) = 0;
};

/// A document: data, rules, a path, and the views that show it. Main thread, unless a derived
/// class says otherwise. Views are not owned.
class CDocument {
public:
    CDocument() = default;
    virtual ~CDocument() = default;
    CDocument(const CDocument&) = delete;
    CDocument& operator=(const CDocument&) = delete;

    void AddView(DocumentView* view) { views_.push_back(view); }
    void RemoveView(DocumentView* view) { std::erase(views_, view); }
    [[nodiscard]] const std::vector<DocumentView*>& Views() const noexcept { return views_; }
    /// The hint that the content is another one, as after a file was opened. With hint 0 a view is
    /// drawn again and keeps all else. Documents may have hints of their own instead.
    static constexpr int hintLoaded = 1;
    /// Calls OnUpdate on every view but the sender.
    void UpdateAllViews(DocumentView* sender, int hint = 0, const HintObject* object = nullptr);

    [[nodiscard]] const std::string& GetPathName() const noexcept { return path_; }
    void SetPathName(std::string path) { path_ = std::move(path); }
    /// The document's name while it has no path.
    [[nodiscard]] const std::string& GetTitle() const noexcept { return title_; }
    void SetTitle(std::string title) { title_ = std::move(title); }
    [[nodiscard]] bool IsModified() const noexcept { return modified_; }
    void SetModifiedFlag(bool modified = true) noexcept { modified_ = modified; }

    /// Initializes a document without a file. False on failure.
    virtual bool OnNewDocument() { return true; }
    /// Reads the file. On failure reports the error to the user and returns false.
    virtual bool OnOpenDocument(const std::string& path) = 0;
    /// Writes the file. On failure reports the error to the user and returns false.
    virtual bool OnSaveDocument(const std::string& path) = 0;
    /// Called after the file has been written, which is now the document's file.
    virtual void OnSaved(const std::string& path) {
        SetPathName(path);
        SetModifiedFlag(false);
    }
    /// Whether the document shows the content of its file, so that opening that file again may
    /// activate this document.
    [[nodiscard]] virtual bool ShowsItsFile() const { return true; }

private:
    std::vector<DocumentView*> views_;
    std::string path_;
    std::string title_;
    bool modified_ = false;
};

} // namespace busquill
