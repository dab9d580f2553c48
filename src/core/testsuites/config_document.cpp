#include "testsuites/config_document.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace busquill {

bool CConfigDoc::OnOpenDocument(const std::string& path) {
    TextReader file;
    if (!file.Open(path)) {
        prompts_.Message(Printf("Error opening file %s.", path.c_str()));
        return false;
    }
    UpdateAllViews(nullptr, hintLoaded);
    return true;
}

bool CConfigDoc::OnSaveDocument(const std::string& path) {
    TextWriter file;
    if (!file.CreateBeside(path) || !file.Close()) {
        prompts_.Message(Printf("Error creating file %s.", path.c_str()));
        return false;
    }
    return true;
}

} // namespace busquill
