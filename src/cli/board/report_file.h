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

/// A path that ends in ".cpl" gets the file that a window saves. One that ends in ".pdf" gets the
/// pages that a window prints, with the title; any other gets the text. Nothing is written for an
/// empty path. False when the file could not be written; the document may then have a message.
[[nodiscard]] bool WriteReportFile(const std::string& path, CComplianceDoc& document,
                                   const std::string& title, const std::string& text);

} // namespace busquill::cli::board
