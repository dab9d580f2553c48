/// The report of a compliance test as pages, in numbers: what stands where. Drawing them is left to
/// the windows.
#pragma once

#include "testsuites/test_result.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

enum class PageOrientation { Portrait = 1, Landscape = 2 };

/// A rectangle in the units of the printer.
struct PageArea {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const PageArea&, const PageArea&) = default;
};

/// Where the parts of a page are.
struct ReportGeometry {
    /// For the printable part of a page, whose corner is the origin.
    ReportGeometry(int width, int height, PageOrientation orientation);

    PageArea header; // the title
    PageArea footer; // page number and time
    PageArea body;
    int lines = 0; // of the body
    int lineHeight = 0;
    int headerFont = 0; // heights
    int footerFont = 0;
    int bodyFont = 0;
    int idWidth = 0; // columns of the body; the title stands between them
    int resultWidth = 0;

    [[nodiscard]] int TitleWidth() const noexcept { return body.width - idWidth - resultWidth; }
    /// A line of the body, from 0: the identifier, the title, the result.
    [[nodiscard]] PageArea IdPlace(int line) const noexcept;
    [[nodiscard]] PageArea TitlePlace(int line) const noexcept;
    [[nodiscard]] PageArea ResultPlace(int line) const noexcept;
};

/// A test on a page.
struct ReportItem {
    int line = 0; // of the body, where it begins
    std::string label;
    std::vector<std::string> title; // its lines
    std::string result;
};

using ReportPage = std::vector<ReportItem>;

/// How wide a text is in the font of the body.
using TextWidth = std::function<int(std::string_view text)>;

/// Breaks a text into lines between its words. A word that is wider than a line is broken where the
/// line is full. There is at least one line; what is left after `maxLines` is dropped.
[[nodiscard]] std::vector<std::string> WrapWords(std::string_view text, int width,
                                                 std::size_t maxLines, const TextWidth& widthOf);

/// The pages of a report; none without results. A test that does not fit on a page starts the next
/// one.
[[nodiscard]] std::vector<ReportPage> ComposeReport(std::span<const CTestResult> results,
                                                    const ReportGeometry& geometry,
                                                    const TextWidth& widthOf);

} // namespace busquill
