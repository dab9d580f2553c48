/// The report of a compliance test in a file.
#pragma once

#include <string>

namespace busquill {
class CComplianceDoc;
} // namespace busquill

namespace busquill::cli::board {

/// Throws ExitRequest if the file could not be written after the tests: its folder does not exist,
/// or a report as PDF cannot be made here.
void CheckReportFile(const std::string& path);

/// A file that ends in ".cpl" keeps the test as a window does. One that ends in ".pdf" has the
/// pages that a window prints below the title; any other the text; an empty path is no file. False
/// when it could not be written; the document may have a message about that.
[[nodiscard]] bool WriteReportFile(const std::string& path, CComplianceDoc& document,
                                   const std::string& title, const std::string& text);

} // namespace busquill::cli::board
