// Makes a man page from a document, so that a description is written only once.
//
//     make-man-page TEMPLATE DOCUMENT.md    the template with the document in place of the line
//     %body%
//
// It knows what the documents here use: headings, paragraphs, tables, indented blocks, code,
// emphasis and links. A table becomes a list with its first column as the heading.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Characters that have a meaning in a man page.
std::string Escaped(std::string_view text, bool literal = false) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '\\') {
            escaped += "\\e";
        } else if (literal && (letter == '-' || letter == '\'' || letter == '`' || letter == '^')) {
            escaped += letter == '-'    ? "\\-"
                       : letter == '\'' ? "\\(aq"
                       : letter == '`'  ? "\\(ga"
                                        : "\\(ha";
        } else {
            escaped += letter;
        }
    }
    return escaped;
}

/// A line of text with its code in bold, its emphasis in italics and its links as their words.
std::string Inline(std::string_view text) {
    std::string made;
    while (!text.empty()) {
        const char mark = text.front();
        const auto end = mark == '`' || mark == '*' ? text.find(mark, 1) : std::string_view::npos;
        if (end != std::string_view::npos) {
            const std::string_view inside = text.substr(1, end - 1);
            made += mark == '`' ? "\\fB" + Escaped(inside, true) + "\\fR"
                                : "\\fI" + Inline(inside) + "\\fR";
            text.remove_prefix(end + 1);
            continue;
        }
        const auto bracket = mark == '[' ? text.find("](") : std::string_view::npos;
        const auto close = bracket == std::string_view::npos ? bracket : text.find(')', bracket);
        if (close != std::string_view::npos && text.find(']') == bracket) {
            made += Inline(text.substr(1, bracket - 1));
            text.remove_prefix(close + 1);
            continue;
        }
        made += Escaped(text.substr(0, 1));
        text.remove_prefix(1);
    }
    return made;
}

/// A line that could be taken for a request is protected.
std::string Line(const std::string& text) {
    return (text.starts_with('.') || text.starts_with('\'') ? "\\&" : "") + text + "\n";
}

std::vector<std::string> Cells(std::string_view row) {
    std::vector<std::string> cells;
    row.remove_prefix(1);
    for (auto bar = row.find('|'); bar != std::string_view::npos; bar = row.find('|')) {
        std::string_view cell = row.substr(0, bar);
        cell.remove_prefix(std::min(cell.find_first_not_of(' '), cell.size()));
        cell = cell.substr(0, cell.find_last_not_of(' ') + 1);
        cells.emplace_back(cell);
        row.remove_prefix(bar + 1);
    }
    return cells;
}

class Page {
public:
    void Add(const std::string& line) {
        if (line.starts_with("```")) {
            fenced_ = !fenced_;
            Begin(fenced_ ? Kind::Block : Kind::None);
        } else if (fenced_) {
            Out(Line(Escaped(line, true)));
        } else if (line.empty()) {
            blank_ = true;
            return;
        } else if (line.starts_with('#')) {
            AddHeading(line);
        } else if (line.starts_with('|')) {
            AddRow(line);
        } else if (line.starts_with("    ")) {
            if (kind_ == Kind::Block && blank_) {
                Out("\n");
            }
            Begin(Kind::Block);
            Out(Line(Escaped(std::string_view(line).substr(4), true)));
        } else {
            if (kind_ != Kind::Text || blank_) {
                Begin(Kind::None);
                Begin(Kind::Text);
            }
            Out(Line(Inline(line)));
        }
        blank_ = false;
    }
    std::string Text() {
        Begin(Kind::None);
        return text_;
    }

private:
    enum class Kind { None, Text, Block, Table };

    void Out(const std::string& text) { text_ += text; }

    /// Ends the current kind of text and begins another one.
    void Begin(Kind kind) {
        if (kind == kind_) {
            return;
        }
        if (kind_ == Kind::Block) {
            Out(".EE\n.RE\n");
        }
        kind_ = kind;
        // A heading is followed by its text without a break.
        if ((kind == Kind::Text || kind == Kind::Block) && !underHeading_) {
            Out(".PP\n");
        }
        if (kind == Kind::Block) {
            Out(".RS 4\n.EX\n");
        }
        underHeading_ = underHeading_ && kind == Kind::None;
    }

    void AddHeading(const std::string& line) {
        const auto level = line.find(' ');
        Begin(Kind::None);
        if (level == 1) {
            return; // the page has a title of its own
        }
        Out((level == 2 ? ".SH " : ".SS ") + Inline(std::string_view(line).substr(level + 1)) +
            "\n");
        underHeading_ = true;
    }

    void AddRow(const std::string& line) {
        const std::vector<std::string> cells = Cells(line);
        if (kind_ != Kind::Table) {
            Begin(Kind::Table);
            titles_ = cells;
            return;
        }
        if (line.find_first_not_of("|-: ") == std::string::npos || cells.empty()) {
            return;
        }
        Out(".TP\n" + Line(Inline(cells[0])));
        for (std::size_t i = 1; i < cells.size(); ++i) {
            const bool named = cells.size() > 2 && i < titles_.size();
            Out(Line((named ? Inline(titles_[i]) + ": " : "") + Inline(cells[i]) +
                     (i + 1 < cells.size() ? ";" : "")));
        }
    }

    std::string text_;
    std::vector<std::string> titles_;
    Kind kind_ = Kind::None;
    bool blank_ = false;
    bool fenced_ = false;
    bool underHeading_ = false;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make-man-page TEMPLATE DOCUMENT.md\n";
        return 2;
    }
    std::ifstream document(argv[2]);
    Page page;
    std::string line;
    while (std::getline(document, line)) {
        page.Add(line);
    }
    std::ifstream form(argv[1]);
    if (!form || page.Text().empty()) {
        std::cerr << "make-man-page: cannot read " << argv[1] << " and " << argv[2] << "\n";
        return 1;
    }
    while (std::getline(form, line)) {
        std::cout << (line == "%body%" ? page.Text() : line + "\n");
    }
    return 0;
}
