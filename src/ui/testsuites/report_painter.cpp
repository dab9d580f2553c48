#include "ui/testsuites/report_painter.h"

#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>

namespace busquill {

namespace {

QRect RectOf(const PageArea& area) {
    return {area.left, area.top, area.width, area.height};
}

/// A font of a height on the painter's device.
void SetFont(QPainter& painter, int height, QFont::Weight weight = QFont::Normal) {
    painter.setFont(FontOfCellHeight(height, weight, FontFace::Proportional));
}

} // namespace

void DrawReportPage(QPainter& painter, const ReportGeometry& geometry, const ReportPage& page,
                    int number, const ReportStrips& strips) {
    painter.setPen(Qt::black);
    SetFont(painter, geometry.headerFont, QFont::Bold);
    painter.drawText(RectOf(geometry.header), Qt::AlignCenter, strips.title);
    SetFont(painter, geometry.footerFont);
    painter.drawText(RectOf(geometry.footer), Qt::AlignCenter, QString("Page %1").arg(number));
    painter.drawText(RectOf(geometry.footer), Qt::AlignRight | Qt::AlignVCenter, strips.time);
    SetFont(painter, geometry.bodyFont);
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

void PrintReport(QPrinter& printer, std::span<const CTestResult> results,
                 const ReportStrips& strips) {
    QPainter painter(&printer);
    const QRect area = painter.viewport();
    const bool landscape = printer.pageLayout().orientation() == QPageLayout::Landscape;
    const ReportGeometry geometry(area.width(), area.height(),
                                  landscape ? PageOrientation::Landscape
                                            : PageOrientation::Portrait);
    SetFont(painter, geometry.bodyFont);
    const QFontMetrics metrics = painter.fontMetrics();
    std::vector<ReportPage> pages =
        ComposeReport(results, geometry, [&metrics](std::string_view text) {
            return metrics.horizontalAdvance(
                QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        });
    if (pages.empty()) {
        pages.emplace_back();
    }
    const int last = static_cast<int>(pages.size());
    const int from = std::max(1, printer.fromPage());
    const int to = printer.toPage() == 0 ? last : std::min(last, printer.toPage());
    for (int number = from; number <= to; ++number) {
        if (number > from) {
            printer.newPage();
        }
        DrawReportPage(painter, geometry, pages[static_cast<std::size_t>(number) - 1], number,
                       strips);
    }
}

} // namespace busquill
