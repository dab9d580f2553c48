#include "ui/analysis/bookmark_dialog.h"

#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace busquill {

BookmarkDialog::BookmarkDialog(QWidget* parent, std::int64_t number,
                               const std::optional<std::string>& note)
    : QDialog(parent), note_(new QLineEdit) {
    setWindowTitle(note ? "Bookmark" : "Add Bookmark");
    SetHelpPage(*this, "bookmarks.md");
    constexpr int shownCharacters = 48;
    note_->setMinimumWidth(note_->fontMetrics().averageCharWidth() * shownCharacters);
    const QString old = QString::fromStdString(note.value_or(""));
    note_->setMaxLength(LongestTypedNote(old));
    note_->setText(old);
    note_->selectAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QFormLayout(this);
    layout->addRow("Sample", new QLabel(QString::number(number)));
    layout->addRow("&Note", note_);
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    if (note) {
        QPushButton* const remove =
            buttons->addButton("&Remove", QDialogButtonBox::DestructiveRole);
        remove->setAutoDefault(false);
        connect(remove, &QPushButton::clicked, this, [this] {
            isRemoved_ = true;
            accept();
        });
    }
}

std::optional<std::string> BookmarkDialog::Note() const {
    return isRemoved_ ? std::nullopt : std::optional(note_->text().toStdString());
}

} // namespace busquill
