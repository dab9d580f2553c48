#include "cli/board/report_file.h"

#include "cli/board/line_output.h"
#include "cli/board/output_file.h"
#include "cli/exit_request.h"
#include "cli/temporary_file.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "testsuites/compliance_document.h"

#include <cerrno>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace busquill::cli::board {

namespace {

bool IsPdf(const std::string& path) {
    return ToLower(path).ends_with(".pdf");
}

/// The program that draws the pages. Drawing needs Qt, which this program does not use. The other
/// one is built with the windows, and is in the same folder.
std::string Drawer() {
    std::error_code unknown;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", unknown);
    return (self.parent_path() / "busquill-report").string();
}

/// Runs a program and waits for its end; returns whether it succeeded.
bool RunToItsEnd(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (::posix_spawn(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
        return false;
    }
    int status = -1;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status == 0;
}

/// The pages of a report, as the bytes of a PDF file; empty when they could not be drawn.
std::string PdfOf(CComplianceDoc& document, const std::string& title) {
    const TemporaryFile results(".cpl");
    const TemporaryFile pages(".pdf");
    if (!document.OnSaveDocument(results.Path()) ||
        !RunToItsEnd({Drawer(), results.Path(), pages.Path(), title})) {
        return {};
    }
    std::string bytes;
    TextReader file = pages.Open();
    for (auto piece = file.AtHand(); !piece.empty(); piece = file.AtHand()) {
        bytes += piece;
        file.Skip(piece.size());
    }
    return bytes;
}

} // namespace

void CheckReportFile(const std::string& path) {
    if (IsPdf(path) && ::access(Drawer().c_str(), X_OK) != 0) {
        WrongUse(path + ": a report as PDF needs the program busquill-report in the folder of "
                        "busquill-board; it is built with the windows");
    }
    CheckFileBeside(path);
}

bool WriteReportFile(const std::string& path, CComplianceDoc& document, const std::string& title,
                     const std::string& text) {
    if (path.empty()) {
        return true;
    }
    if (path.ends_with(".cpl")) {
        return document.OnSaveDocument(path);
    }
    const std::string bytes = IsPdf(path) ? PdfOf(document, title) : text;
    if (bytes.empty()) {
        return false;
    }
    LineOutput file(path);
    file.Write(bytes);
    file.Close();
    return true;
}

} // namespace busquill::cli::board
