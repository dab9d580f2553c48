#pragma once

#include "document/document.h"
#include "ui/framework/command_map.h"

#include <QWidget>

namespace busquill {

/// A window that shows a document, inside a child frame. Owned by its parent widget; removes itself
/// from its document's list of views when it is destroyed.
class CView : public QWidget, public DocumentView {
    Q_OBJECT
public:
    explicit CView(QWidget* parent = nullptr) : QWidget(parent) {}
    ~CView() override {
        if (document_ != nullptr) {
            document_->RemoveView(this);
        }
    }

    [[nodiscard]] CDocument* GetDocument() const noexcept { return document_; }
    void AttachDocument(CDocument* document) {
        document_ = document;
        document->AddView(this);
    }
    /// Called once, when frame, view and document exist.
    virtual void OnInitialUpdate() { OnUpdate(nullptr, CDocument::hintLoaded, nullptr); }
    void OnUpdate(DocumentView* /*sender*/, int /*hint*/, const HintObject* /*object*/) override {
        update();
    }
    /// Called when the board, or the configuration of its bus, may have changed.
    virtual void FollowBoard() {}

    /// What the view carries out while it is the active one.
    CommandMap commands;

private:
    CDocument* document_ = nullptr;
};

} // namespace busquill
