#include "document/document.h"

namespace busquill {

void CDocument::UpdateAllViews(DocumentView* sender, int hint, const HintObject* object) {
    // A view may close itself or another one during its update.
    const std::vector<DocumentView*> told = views_;
    for (DocumentView* view : told) {
        if (view != sender && std::find(views_.begin(), views_.end(), view) != views_.end()) {
            view->OnUpdate(sender, hint, object);
        }
    }
}

} // namespace busquill
