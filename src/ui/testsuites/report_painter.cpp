#include "ui/testsuites/report_painter.h"

#include "ui/framework/painting.h"
#include "ui/framework/printing.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>

namespace busquill {

namespace {

QRect RectOf(const PageArea& area) {
    return {area.left, area.top, area.width, area.height};
}

QFont BodyFont(const ReportGeometry& geometry) {
    return FontOfCellHeight(geometry.bodyFont, QFont::Normal, FontFace::Proportional);
}

} // namespace

void DrawReportPage(QPainter& painter, const ReportGeometry& geometry, const ReportPage& page,
                    int number, const PageStrips& strips) {
    DrawPageStrips(painter,
                   {RectOf(geometry.header), RectOf(geometry.footer), geometry.headerFont,
                    geometry.footerFont},
                   strips, number);
    painter.setFont(BodyFont(geometry));
    for (const ReportItem& item : page) {
        painter.drawText(RectOf(geometry.IdPlace(item.line)), Qt::AlignLeft | Qt::AlignVCenter,
                         QString::fromStdString(item.label));
        int line = item.line;
        for (const std::string& text : item.title) {
            painter.drawText(RectOf(geometry.TitlePlace(line++)), Qt::AlignLeft | Qt::AlignVCenter,
                             QString::fromStdString(text));
        }
        painter.drawText(RectOf(geometry.ResultPlace(item.line)), Qt::AlignRight | Qt::AlignVCenter,
                         QString::fromStdString(item.result));
    }
}

PrintFailure PrintReport(QPrinter& printer, std::span<const CTestResult> results,
                         const PageStrips& strips) {
    const ReportGeometry geometry(printer.width(), printer.height(),
                                  IsLandscape(printer) ? PageOrientation::Landscape
                                                       : PageOrientation::Portrait);
    const QFontMetrics metrics(BodyFont(geometry), &printer);
    std::vector<ReportPage> pages =
        ComposeReport(results, geometry, [&metrics](std::string_view text) {
            return metrics.horizontalAdvance(
                QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        });
    if (pages.empty()) {
        pages.emplace_back();
    }
    return PrintPages(
        printer, static_cast<std::int64_t>(pages.size()), [&](QPainter& painter, int number) {
            DrawReportPage(painter, geometry, pages[static_cast<std::size_t>(number) - 1], number,
                           strips);
        });
}

} // namespace busquill
