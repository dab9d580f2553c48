#include "testsuites/report_pages.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr int portraitLines = 50;
constexpr int landscapeLines = 40;

/// A longer word does not fit in a line. It is not measured as a whole, which would take long.
constexpr std::size_t longestWord = 1000;

/// As many characters of a text as fit in a line, but at least one.
std::size_t FittingLength(std::string_view text, int width, const TextWidth& widthOf) {
    const auto next = [text](std::size_t length) {
        do {
            ++length;
        } while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80);
        return length;
    };
    std::size_t length = next(0);
    while (length < text.size() && widthOf(text.substr(0, next(length))) <= width) {
        length = next(length);
    }
    return length;
}

} // namespace

ReportGeometry::ReportGeometry(int width, int height, PageOrientation orientation) {
    const int strip = height / 20;
    header = {0, 0, width, strip};
    footer = {0, height - strip, width, strip};
    body = {0, strip, width, height - 2 * strip};
    lines = orientation == PageOrientation::Landscape ? landscapeLines : portraitLines;
    lineHeight = body.height / lines;
    headerFont = strip / 3;
    footerFont = strip / 4;
    bodyFont = lineHeight * 4 / 5;
    idWidth = body.width / 10;
    resultWidth = body.width / 8;
}

PageArea ReportGeometry::IdPlace(int line) const noexcept {
    return {body.left, body.top + line * lineHeight, idWidth, lineHeight};
}

PageArea ReportGeometry::TitlePlace(int line) const noexcept {
    return {body.left + idWidth, body.top + line * lineHeight, TitleWidth(), lineHeight};
}

PageArea ReportGeometry::ResultPlace(int line) const noexcept {
    return {body.left + body.width - resultWidth, body.top + line * lineHeight, resultWidth,
            lineHeight};
}

std::vector<std::string> WrapWords(std::string_view text, int width, std::size_t maxLines,
                                   const TextWidth& widthOf) {
    const auto fits = [&](std::string_view line) {
        return line.size() <= longestWord && widthOf(line) <= width;
    };
    std::vector<std::string> lines(1);
    while (true) {
        const auto begin = text.find_first_not_of(' ');
        if (begin == std::string_view::npos) {
            return lines;
        }
        text.remove_prefix(begin);
        std::string_view word = text.substr(0, text.find(' '));
        const std::string joined =
            lines.back().empty() ? std::string(word) : lines.back() + " " + std::string(word);
        if (fits(joined)) {
            lines.back() = joined;
        } else {
            if (!fits(word)) {
                word = word.substr(0, FittingLength(word, width, widthOf));
            }
            if (!lines.back().empty()) {
                if (lines.size() == maxLines) {
                    return lines;
                }
                lines.emplace_back();
            }
            lines.back() = word;
        }
        text.remove_prefix(word.size());
    }
}

std::vector<ReportPage> ComposeReport(std::span<const CTestResult> results,
                                      const ReportGeometry& geometry, const TextWidth& widthOf) {
    std::vector<ReportPage> pages;
    int line = geometry.lines; // as if a page were full
    for (const CTestResult& test : results) {
        // What is longer than a page is cut.
        ReportItem item{0, TestLabel(test),
                        WrapWords(test.name, geometry.TitleWidth(),
                                  static_cast<std::size_t>(geometry.lines), widthOf),
                        TestResultText(test)};
        const int needed = static_cast<int>(item.title.size());
        if (line + needed > geometry.lines) {
            pages.emplace_back();
            line = 0;
        }
        item.line = line;
        line += needed;
        pages.back().push_back(std::move(item));
    }
    return pages;
}

} // namespace busquill
