#pragma once

#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/line_prompts.h"
#include "link/board_identity.h"

#include <string>

namespace busquill::cli::board {

/// Ends the program if a file is not a form of this kind, before connecting to the board. What its
/// fields mean depends on the board, so it is read again later.
template <class Document>
void CheckForm(const std::string& path) {
    static_cast<void>(OpenInput(path)); // says why it cannot be opened
    LinePrompts prompts;
    Document document([] { return BoardTraits(); }, prompts);
    if (!document.OnOpenDocument(path)) {
        Fail(path + ": " + prompts.TakeFirst("no form"));
    }
}

} // namespace busquill::cli::board
