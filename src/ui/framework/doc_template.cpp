#include "ui/framework/doc_template.h"

#include "document/document.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/view.h"

#include <QMdiArea>

#include <algorithm>

namespace busquill {

DocStrings ParseDocString(std::string_view text) {
    DocStrings strings;
    for (std::string* field :
         {&strings.windowTitle, &strings.documentName, &strings.fileNewName, &strings.filterName,
          &strings.extension, &strings.fileTypeId, &strings.fileTypeName}) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        *field = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return strings;
}

CMultiDocTemplate::CMultiDocTemplate(std::string_view docString, Factories factories,
                                     QMdiArea& area, Prompts& prompts)
    : strings_(ParseDocString(docString)), factories_(std::move(factories)), area_(area),
      prompts_(prompts) {}

CMultiDocTemplate::~CMultiDocTemplate() {
    for (CMDIChildWnd* frame : std::vector(frames_)) {
        delete frame;
    }
}

CDocument* CMultiDocTemplate::OpenDocumentFile(const std::optional<std::string>& path) {
    CDocument* document = OpenDocument(factories_.makeDocument(), path, factories_.makeFrame);
    if (document != nullptr && path) {
        factories_.fileOpened(*document);
    }
    return document;
}

CDocument* CMultiDocTemplate::OpenDocument(std::unique_ptr<CDocument> made,
                                           const std::optional<std::string>& path,
                                           const MakeFrame& makeFrame) {
    CDocument& document = *made;
    document.SetTitle(strings_.documentName);
    const bool good = path ? document.OnOpenDocument(*path) : document.OnNewDocument();
    if (!good) {
        return nullptr;
    }
    if (path) {
        document.SetPathName(*path);
    }
    document.SetModifiedFlag(false);
    documents_.push_back(std::move(made));
    InitialUpdateFrame(*CreateNewFrame(document, makeFrame));
    return &document;
}

CMDIChildWnd* CMultiDocTemplate::CreateNewFrame(CDocument& document, const MakeFrame& makeFrame) {
    CMDIChildWnd* frame = makeFrame(document);
    frame->mayClose = [this, frame] { return MayClose(*frame); };
    frame->closed = [this, frame, &document] { FrameClosed(frame, &document); };
    frame->commands.On(CommandId::FileSave, [this, &document] { DoSave(document, false); });
    frame->commands.On(CommandId::FileSaveAs, [this, &document] { DoSave(document, true); });
    frames_.push_back(frame);
    const QSize size = frame->size();
    area_.addSubWindow(frame);
    frame->resize(size);
    return frame;
}

void CMultiDocTemplate::InitialUpdateFrame(CMDIChildWnd& frame) {
    frame.show();
    frame.GetActiveView()->OnInitialUpdate();
    frame.GetActiveView()->setFocus();
}

bool CMultiDocTemplate::SaveModified(CDocument& document) {
    if (!document.IsModified()) {
        return true;
    }
    const std::string name =
        document.GetPathName().empty() ? document.GetTitle() : document.GetPathName();
    switch (prompts_.Show(
        {Printf("Save changes to %s?", name.c_str()), false, BoxButtons::YesNoCancel})) {
    case Answer::Yes:
        return DoSave(document, false);
    case Answer::No:
        return true;
    default:
        return false;
    }
}

bool CMultiDocTemplate::DoSave(CDocument& document, bool askForPath) {
    std::string path = document.GetPathName();
    if (path.empty() || askForPath) {
        const std::string proposed =
            path.empty() ? document.GetTitle() + strings_.extension : std::string(FileNameOf(path));
        FileQuestion question{FileUse::Save,
                              "Save As",
                              strings_.filterName,
                              strings_.extension,
                              std::string(FolderOf(path)),
                              proposed};
        if (askForPath) {
            question.otherTypes = factories_.exports;
        }
        path = AskForFile(&area_, question, prompts_);
        if (path.empty()) {
            return false;
        }
        if (HasTypeOf(path, question.otherTypes)) {
            return factories_.exportTo(document, path);
        }
    }
    if (!document.OnSaveDocument(path)) {
        return false;
    }
    document.OnSaved(path);
    saved(path);
    return true;
}

bool CMultiDocTemplate::MayClose(const CMDIChildWnd& frame) {
    const auto ofSame = std::count_if(frames_.begin(), frames_.end(), [&](const auto* other) {
        return &other->GetDocument() == &frame.GetDocument();
    });
    return ofSame > 1 || SaveModified(frame.GetDocument());
}

void CMultiDocTemplate::FrameClosed(const CMDIChildWnd* frame, CDocument* document) {
    std::erase(frames_, frame);
    const bool shown = std::any_of(frames_.begin(), frames_.end(), [&](const auto* other) {
        return &other->GetDocument() == document;
    });
    if (!shown) {
        std::erase_if(documents_, [&](const auto& each) { return each.get() == document; });
    }
}

} // namespace busquill
