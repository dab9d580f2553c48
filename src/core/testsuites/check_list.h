#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

class TextReader;
class WorkingDirectory;

/// A group of tests, or a test, of the check list. Its index is its place in the list.
struct CheckItem {
    bool isGroup = false;
    std::string line; // as it stands in the file
    std::string text; // what the user sees
    /// For the operator, before the test runs; empty if there are none.
    std::string instructions;

    /// What stands before the first "." of a test: "PCI12". Empty for a group.
    [[nodiscard]] std::string_view ShortForm() const;
    /// What stands behind ". ", or the whole text of a test without "."; the whole line of a group.
    [[nodiscard]] std::string_view Title() const;
    /// By what files name the item.
    [[nodiscard]] std::string_view Key() const {
        return ShortForm().empty() ? Title() : ShortForm();
    }
};

using CheckList = std::vector<CheckItem>;

[[nodiscard]] CheckList ReadCheckList(TextReader& file);
/// Reads ComplianceChecklist.txt from the program's folder. Without the file, the list is empty.
[[nodiscard]] CheckList LoadCheckList(const WorkingDirectory& directory);

} // namespace busquill
