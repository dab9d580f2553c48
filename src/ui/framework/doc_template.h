#pragma once

#include "ui/framework/ask_for_file.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QMdiArea;

namespace busquill {

class CDocument;
class CMDIChildWnd;
class Prompts;

/// The fields of a template's doc string, in the framework's order.
struct DocStrings {
    std::string windowTitle;
    std::string documentName;
    std::string fileNewName;
    std::string filterName;
    std::string extension; // with its dot
    std::string fileTypeId;
    std::string fileTypeName;
};

/// Splits a doc string at its line feeds.
[[nodiscard]] DocStrings ParseDocString(std::string_view text);

/// One kind of document: how its documents and frames are created. Owns its documents; a document
/// is destroyed when its last frame closes.
class CMultiDocTemplate {
public:
    /// A frame with its view; the frame belongs to the caller.
    using MakeFrame = std::function<CMDIChildWnd*(CDocument&)>;
    struct Factories {
        std::function<std::unique_ptr<CDocument>()> makeDocument;
        MakeFrame makeFrame;
        /// Called after a file has been opened.
        std::function<void(CDocument&)> fileOpened = [](CDocument&) {};
        /// Other types that Save As offers, and what writes them. The file does not become the
        /// document's, so it is no recent file either.
        std::vector<FileType> exports = {};
        std::function<bool(CDocument&, const std::string& path)> exportTo = nullptr;
    };

    CMultiDocTemplate(std::string_view docString, Factories factories, QMdiArea& area,
                      Prompts& prompts);
    ~CMultiDocTemplate();
    CMultiDocTemplate(const CMultiDocTemplate&) = delete;
    CMultiDocTemplate& operator=(const CMultiDocTemplate&) = delete;

    [[nodiscard]] const DocStrings& Strings() const noexcept { return strings_; }
    /// Whether documents of this kind can be created at all.
    [[nodiscard]] bool IsAvailable() const noexcept { return factories_.makeDocument != nullptr; }
    [[nodiscard]] const std::vector<std::unique_ptr<CDocument>>& Documents() const noexcept {
        return documents_;
    }
    [[nodiscard]] const std::vector<CMDIChildWnd*>& Frames() const noexcept { return frames_; }

    /// Opens a file, or a new document without a path; never returns one that is already open. Null
    /// when the file cannot be opened; the document has then reported why.
    CDocument* OpenDocumentFile(const std::optional<std::string>& path);
    /// The same with a document and a frame that the caller chooses.
    CDocument* OpenDocument(std::unique_ptr<CDocument> made, const std::optional<std::string>& path,
                            const MakeFrame& makeFrame);
    CMDIChildWnd* CreateNewFrame(CDocument& document, const MakeFrame& makeFrame);
    /// Shows the frame and calls its view's OnInitialUpdate.
    void InitialUpdateFrame(CMDIChildWnd& frame);

    /// Asks whether changes are to be saved. False when the user cancels or saving fails.
    [[nodiscard]] bool SaveModified(CDocument& document);
    /// Saves under the document's path, or asks for one.
    bool DoSave(CDocument& document, bool askForPath);

    /// Set by the application; called after a file has been written.
    std::function<void(const std::string& path)> saved = [](const std::string&) {};

private:
    [[nodiscard]] bool MayClose(const CMDIChildWnd& frame);
    void FrameClosed(const CMDIChildWnd* frame, CDocument* document);

    DocStrings strings_;
    Factories factories_;
    QMdiArea& area_;
    Prompts& prompts_;
    std::vector<std::unique_ptr<CDocument>> documents_;
    std::vector<CMDIChildWnd*> frames_;
};

} // namespace busquill
