#pragma once

#include "support/paths.h"
#include "support/temp_dir.h"

#include <string>

namespace busquill::test {

/// The first block of a page of the manual in a language, between "```sh" and "```"; empty if there
/// is none.
[[nodiscard]] inline std::string BlockOfManual(const std::string& pageName,
                                               const std::string& language) {
    const std::string page = ReadWholeFile(SourceFile("docs/manual/" + pageName));
    const std::string begin = "\n```" + language + "\n";
    const std::size_t at = page.find(begin);
    const std::size_t end = page.find("\n```\n", at + begin.size());
    return at == std::string::npos || end == std::string::npos
               ? ""
               : page.substr(at + begin.size(), end + 1 - at - begin.size());
}

} // namespace busquill::test
