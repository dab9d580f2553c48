#pragma once

#include <QDialog>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

class QLineEdit;

namespace busquill {

/// The longest note that can be typed in place of another, in characters; it fits in the file in
/// any script. One that was longer, as it may be in the file, is not cut.
[[nodiscard]] inline int LongestTypedNote(const QString& old) {
    constexpr int longest = 1000;
    return std::max(longest, static_cast<int>(old.size()));
}

/// Asks for the note of a sample.
class BookmarkDialog final : public QDialog {
    Q_OBJECT
public:
    /// `note` is that of the bookmark that the sample has, if it has one.
    BookmarkDialog(QWidget* parent, std::int64_t number, const std::optional<std::string>& note);

    /// After OK: the note; nothing if the bookmark is to be removed.
    [[nodiscard]] std::optional<std::string> Note() const;

private:
    QLineEdit* note_;
    bool isRemoved_ = false;
};

} // namespace busquill
