#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QTextDocument;

namespace busquill {

/// A place in the manual: a page's file name, with "#heading" for a section.
struct ManualPlace {
    QString page;
    QString title; // of the page, and of the section
};

/// A page in the table of contents.
struct ManualPage {
    QString file;
    QString title;
    QString group;
};

/// A word of the index and where it is explained.
struct ManualTerm {
    QString term;
    std::vector<ManualPlace> places;
};

/// The program's manual, as it is in the resources. Its contents are the list in index.md.
class Manual {
public:
    Manual();
    ~Manual();
    Manual(const Manual&) = delete;
    Manual& operator=(const Manual&) = delete;

    static constexpr auto root = "qrc:/manual/";
    static constexpr auto contents = "index.md";

    [[nodiscard]] const std::vector<ManualPage>& Pages() const noexcept { return pages_; }
    /// The title that a page has in the contents; also for a place in that page.
    [[nodiscard]] QString TitleOf(const QString& page) const;
    /// Headings, and the names of menus, buttons and fields, in alphabetical order. Read at the
    /// first call.
    [[nodiscard]] const std::vector<ManualTerm>& Index();
    /// The pages that contain all words, and how often. First those that have them together, then
    /// those with one of them in their title, then those in which they are most frequent.
    struct Found {
        QString file;
        QString title;
        int places;
    };
    [[nodiscard]] std::vector<Found> Search(const QStringList& words);

private:
    struct Text {
        QString file;
        QString title;
        std::unique_ptr<QTextDocument> document;
        QString plain;
    };
    /// The pages' texts, read at the first call.
    [[nodiscard]] const std::vector<Text>& Texts();

    std::vector<ManualPage> pages_;
    std::vector<Text> texts_;
    std::vector<ManualTerm> index_;
};

/// The words of a question.
[[nodiscard]] QStringList WordsOf(const QString& question);
/// The anchor that links to a heading use: "Go to a sample" is "go-to-a-sample".
[[nodiscard]] QString AnchorOf(const QString& heading);
/// Gives all headings of a page their anchors.
void AnchorHeadings(QTextDocument& page);

} // namespace busquill
