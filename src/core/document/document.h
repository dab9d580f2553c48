#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace busquill {

class CDocument;

/// What a document hands its views beside a hint's number; a hint says which type it is.
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
    /// Calls OnUpdate on every view but the sender.
    void UpdateAllViews(DocumentView* sender, int hint = 0, const HintObject* object = nullptr);

    [[nodiscard]] const std::string& GetPathName() const noexcept { return path_; }
    void SetPathName(std::string path) { path_ = std::move(path); }
    /// What the document is called while it has no path.
    [[nodiscard]] const std::string& GetTitle() const noexcept { return title_; }
    void SetTitle(std::string title) { title_ = std::move(title); }
    [[nodiscard]] bool IsModified() const noexcept { return modified_; }
    void SetModifiedFlag(bool modified = true) noexcept { modified_ = modified; }

    /// A document without a file. False when it cannot be made.
    virtual bool OnNewDocument() { return true; }
    /// Reads the file; reports in its own words and returns false when it cannot.
    virtual bool OnOpenDocument(const std::string& path) = 0;
    /// Writes the file; reports in its own words and returns false when it cannot.
    virtual bool OnSaveDocument(const std::string& path) = 0;
    /// The file has been written: it is the document's from here on.
    virtual void OnSaved(const std::string& path) {
        SetPathName(path);
        SetModifiedFlag(false);
    }
    /// Whether the document is what its file holds, so that to open the file is to look at it.
    [[nodiscard]] virtual bool ShowsItsFile() const { return true; }

private:
    std::vector<DocumentView*> views_;
    std::string path_;
    std::string title_;
    bool modified_ = false;
};

} // namespace busquill
