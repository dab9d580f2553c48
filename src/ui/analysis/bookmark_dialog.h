#pragma once

#include <QDialog>

#include <cstdint>
#include <optional>
#include <string>

class QLineEdit;

namespace busquill {

/// The longest note that can be typed, in characters; it fits in the file in any script.
constexpr int longestTypedNote = 1000;

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
