#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Expressions that the user keeps by name; another expression uses one as "@name". They are lines
/// "name: expression" of a text file, which the user may edit. Its comments begin with "#" and
/// stay, like everything else that is in it. Names are found in upper or lower case.
class KeptExpressions {
public:
    struct Kept {
        std::string name;
        std::string text;
    };

    /// The user's file; it need not exist.
    [[nodiscard]] static std::filesystem::path UsualFile();
    /// A letter, then letters, digits, "_" and "-".
    [[nodiscard]] static bool IsName(std::string_view name) noexcept;

    /// Replaces everything by what is in a file; a missing one is empty. False if it cannot be
    /// read.
    [[nodiscard]] bool Read(const std::filesystem::path& file);
    /// Creates its folder too. False if it cannot be written; then the old file stays.
    [[nodiscard]] bool Write(const std::filesystem::path& file) const;

    /// In the order of the file; valid until the next change.
    [[nodiscard]] std::vector<const Kept*> All() const;
    /// "@name" of each.
    [[nodiscard]] std::vector<std::string> Names() const;
    /// Null if there is none; valid until the next change.
    [[nodiscard]] const Kept* Find(std::string_view name) const;
    /// The lines, from 1, that are neither a comment nor an expression with a name of its own.
    [[nodiscard]] std::vector<std::size_t> WrongLines() const;

    /// Keeps an expression, in the place of the one with this name. The name must be one.
    void Keep(std::string_view name, std::string_view text);
    /// Whether there was one.
    bool Remove(std::string_view name);

private:
    /// Of the file: with a name, or a text that is written back as it is.
    std::vector<Kept> lines_;
};

} // namespace busquill
