#include "cli/file_list.h"

#include "cli/interrupt.h"
#include "cli/output.h"
#include "platform/text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace busquill::cli {

namespace {

namespace fs = std::filesystem;

/// Whether a command may read it. A link without a target counts, so that it is reported.
bool MayBeRead(const fs::directory_entry& entry) {
    std::error_code unknown;
    const fs::file_type type = entry.status(unknown).type();
    return type == fs::file_type::regular || type == fs::file_type::not_found ||
           type == fs::file_type::none;
}

class FolderSearch {
public:
    explicit FolderSearch(std::string_view ending) : ending_(ending) {}

    void Search(const fs::path& folder) {
        std::error_code wrong;
        for (fs::directory_iterator entry(folder, wrong);
             !wrong && entry != fs::directory_iterator(); entry.increment(wrong)) {
            EndIfInterrupted();
            std::error_code unknown;
            const fs::file_status status = entry->symlink_status(unknown);
            if (status.type() == fs::file_type::not_found) {
                continue; // it was removed or renamed meanwhile, as files being written are
            }
            if (fs::is_directory(status) || unknown) { // if unknown, the search says why
                Search(entry->path());
            } else if (EqualIgnoringCase(entry->path().extension().string(), ending_) &&
                       MayBeRead(*entry)) {
                found_.push_back(entry->path());
            }
        }
        if (wrong) {
            Say(Printf("Error opening folder %s. %s.", folder.c_str(), wrong.message().c_str()));
            isIncomplete_ = true;
        }
    }

    [[nodiscard]] std::vector<fs::path> Sorted() && {
        std::ranges::sort(found_);
        return std::move(found_);
    }
    [[nodiscard]] bool IsIncomplete() const noexcept { return isIncomplete_; }

private:
    const std::string_view ending_;
    std::vector<fs::path> found_;
    bool isIncomplete_ = false;
};

} // namespace

FileList ListFiles(const std::vector<std::string>& operands, std::string_view ending) {
    FileList list;
    list.files.reserve(operands.size());
    for (const std::string& operand : operands) {
        std::error_code unknown;
        if (!fs::is_directory(operand, unknown)) {
            list.files.push_back(operand);
            list.isOneFile = operands.size() == 1;
            continue;
        }
        FolderSearch search(ending);
        search.Search(operand);
        const bool isIncomplete = search.IsIncomplete();
        const std::vector<fs::path> found = std::move(search).Sorted();
        if (found.empty() && !isIncomplete) {
            Say(Printf("%s: no file in this folder ends in %s", operand.c_str(),
                       std::string(ending).c_str()));
        }
        list.isIncomplete = list.isIncomplete || isIncomplete;
        std::ranges::transform(found, std::back_inserter(list.files),
                               [](const fs::path& path) { return path.string(); });
    }
    return list;
}

} // namespace busquill::cli
