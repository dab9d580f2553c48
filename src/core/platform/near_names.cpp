#include "platform/near_names.h"

#include "platform/text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace busquill {

namespace {

constexpr int far = 1000;

/// The part of a name that is compared: without quotes and without a range or other suffix in
/// brackets, in lower case.
std::string StemOf(std::string_view name) {
    std::string stem = ToLower(Trim(name.substr(0, name.find_first_of("[("))));
    std::erase_if(stem, [](char c) { return c == '"' || c == '`'; });
    return stem;
}

/// The number of letters to insert, delete or change to turn one into the other.
int EditsBetween(std::string_view a, std::string_view b) {
    std::vector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        int diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const int changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

/// Smaller is nearer; `far` for names unrelated to the word.
int DistanceOf(const std::string& name, const std::string& word) {
    if (name == word) {
        return 0;
    }
    constexpr std::size_t least = 2; // shorter words match by chance
    if (word.size() >= least && name.size() >= least) {
        if (name.starts_with(word) || word.starts_with(name)) {
            return 1;
        }
        if (name.find(word) != std::string::npos) {
            return 2;
        }
    }
    // As many letters as the longer one has more must be inserted.
    const std::size_t most = std::max<std::size_t>(1, word.size() / 3);
    const std::size_t longer = std::max(name.size(), word.size());
    if (longer - std::min(name.size(), word.size()) > most) {
        return far;
    }
    const int edits = EditsBetween(name, word);
    return edits <= static_cast<int>(most) ? 1 + edits : far;
}

} // namespace

std::string ListNearest(std::string_view word, const std::vector<std::string>& names,
                        std::size_t enough) {
    const std::string stem = StemOf(word);
    std::vector<std::pair<int, std::size_t>> byDistance;
    byDistance.reserve(names.size());
    for (const std::string& name : names) {
        byDistance.emplace_back(DistanceOf(StemOf(name), stem), byDistance.size());
    }
    std::ranges::sort(byDistance);
    std::string list;
    for (const auto& [distance, index] : byDistance) {
        const std::string& name = names[index];
        if (list.size() + name.size() > enough) {
            return list + ", ...";
        }
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

} // namespace busquill
