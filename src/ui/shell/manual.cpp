#include "ui/shell/manual.h"

#include <QFile>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace busquill {

namespace {

constexpr auto folder = ":/manual/";
constexpr int longestTerm = 40; // longer texts are sentences

std::unique_ptr<QTextDocument> ReadPage(const QString& file) {
    auto document = std::make_unique<QTextDocument>();
    QFile source(folder + file);
    if (source.open(QIODevice::ReadOnly)) {
        document->setMarkdown(QString::fromUtf8(source.readAll()));
    }
    return document;
}

std::vector<ManualPage> ReadContents() {
    const auto document = ReadPage(Manual::contents);
    std::vector<ManualPage> pages;
    QString group;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 1) {
            group = block.text();
        } else if (block.textList() != nullptr && !block.begin().atEnd()) {
            const QTextFragment first = block.begin().fragment();
            if (first.charFormat().isAnchor()) {
                pages.push_back({first.charFormat().anchorHref(), first.text(), group});
            }
        }
    }
    return pages;
}

/// The text of a block if it is a cell in a table's first column, below the header.
QString FirstCell(const QTextBlock& block) {
    const QTextCursor cursor(block);
    const QTextTable* table = cursor.currentTable();
    if (table == nullptr) {
        return {};
    }
    const QTextTableCell cell = table->cellAt(cursor);
    return cell.column() == 0 && cell.row() > 0 ? block.text() : QString();
}

bool InTableHeader(const QTextBlock& block) {
    const QTextCursor cursor(block);
    const QTextTable* table = cursor.currentTable();
    return table != nullptr && table->cellAt(cursor).row() == 0;
}

/// Whether a text is a name, as on a menu, a button or a field.
bool IsName(const QString& text) {
    return text.size() > 1 && text.size() <= longestTerm && text[0].isUpper();
}

/// Names of menus, buttons and fields are in italics or bold.
QStringList NamesIn(const QTextBlock& block) {
    QStringList names;
    if (InTableHeader(block)) {
        return names;
    }
    for (auto at = block.begin(); !at.atEnd(); ++at) {
        const QTextCharFormat format = at.fragment().charFormat();
        if (format.fontItalic() || format.fontWeight() >= QFont::Bold) {
            names << at.fragment().text();
        }
    }
    return names;
}

class IndexMaker {
public:
    void AddPage(const QString& file, const QString& title, const QTextDocument& document) {
        ManualPlace place{file, title};
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            if (level > 1) {
                place = {file + '#' + AnchorOf(block.text()), title + ": " + block.text()};
            }
            if (level > 0) {
                Add(block.text(), place);
                continue;
            }
            Add(FirstCell(block), place);
            for (const QString& name : NamesIn(block)) {
                Add(name, place);
            }
        }
    }
    [[nodiscard]] std::vector<ManualTerm> Sorted() const {
        std::vector<ManualTerm> terms;
        for (const auto& [key, term] : terms_) {
            terms.push_back(term);
        }
        return terms;
    }

private:
    void Add(QString text, const ManualPlace& place) {
        text = text.simplified();
        while (text.endsWith(':') || text.endsWith('.')) {
            text.chop(1);
        }
        if (!IsName(text)) {
            return;
        }
        ManualTerm& term = terms_[text.toLower()];
        if (term.term.isEmpty()) {
            term.term = text;
        }
        const bool known = std::any_of(term.places.begin(), term.places.end(),
                                       [&](const auto& each) { return each.page == place.page; });
        if (!known) {
            term.places.push_back(place);
        }
    }

    std::map<QString, ManualTerm> terms_; // by their names in lower case
};

} // namespace

Manual::Manual() : pages_(ReadContents()) {}
Manual::~Manual() = default;

QString Manual::TitleOf(const QString& page) const {
    const QString file = page.section('#', 0, 0);
    const auto found = std::find_if(pages_.begin(), pages_.end(),
                                    [&](const ManualPage& each) { return each.file == file; });
    return found != pages_.end() ? found->title : QString();
}

const std::vector<Manual::Text>& Manual::Texts() {
    if (texts_.empty()) {
        for (const ManualPage& page : pages_) {
            auto document = ReadPage(page.file);
            QString plain = document->toPlainText();
            texts_.push_back({page.file, page.title, std::move(document), std::move(plain)});
        }
    }
    return texts_;
}

const std::vector<ManualTerm>& Manual::Index() {
    if (index_.empty()) {
        IndexMaker maker;
        for (const Text& text : Texts()) {
            maker.AddPage(text.file, text.title, *text.document);
        }
        index_ = maker.Sorted();
    }
    return index_;
}

std::vector<Manual::Found> Manual::Search(const QStringList& words) {
    struct Ranked {
        Found found;
        bool inTitle;
        bool together;
        double density;
    };
    std::vector<Ranked> ranked;
    for (const Text& text : Texts()) {
        const auto has = [](const QString& where, const QString& word) {
            return where.contains(word, Qt::CaseInsensitive);
        };
        const auto inText = [&](const QString& word) { return has(text.plain, word); };
        const auto inTitle = [&](const QString& word) { return has(text.title, word); };
        if (words.isEmpty() || !std::all_of(words.begin(), words.end(), inText)) {
            continue;
        }
        int places = 0;
        for (const QString& word : words) {
            places += static_cast<int>(text.plain.count(word, Qt::CaseInsensitive));
        }
        ranked.push_back({{text.file, text.title, places},
                          std::any_of(words.begin(), words.end(), inTitle),
                          inText(words.join(' ')),
                          static_cast<double>(places) / static_cast<double>(text.plain.size())});
    }
    std::stable_sort(ranked.begin(), ranked.end(), [](const Ranked& a, const Ranked& b) {
        return std::tie(a.together, a.inTitle, a.density) >
               std::tie(b.together, b.inTitle, b.density);
    });
    std::vector<Found> found;
    found.reserve(ranked.size());
    for (Ranked& each : ranked) {
        found.push_back(std::move(each.found));
    }
    return found;
}

QStringList WordsOf(const QString& question) {
    return question.simplified().split(' ', Qt::SkipEmptyParts);
}

QString AnchorOf(const QString& heading) {
    QString anchor;
    for (const QChar each : heading.toLower()) {
        if (each.isLetterOrNumber() || each == '-' || each == '_') {
            anchor += each;
        } else if (each == ' ') {
            anchor += '-';
        }
    }
    return anchor;
}

void AnchorHeadings(QTextDocument& page) {
    for (QTextBlock block = page.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0) {
            QTextCursor cursor(block);
            cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
            QTextCharFormat anchor;
            anchor.setAnchor(true);
            anchor.setAnchorNames({AnchorOf(block.text())});
            cursor.mergeCharFormat(anchor);
        }
    }
}

} // namespace busquill
