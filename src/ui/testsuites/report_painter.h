/// The report of a compliance test on paper.
#pragma once

#include "testsuites/report_pages.h"
#include "ui/framework/printing.h"

class QPainter;
class QPrinter;

namespace busquill {

/// Draws a page, whose number counts from 1.
void DrawReportPage(QPainter& painter, const ReportGeometry& geometry, const ReportPage& page,
                    int number, const PageStrips& strips);

/// Prints all pages of a report, or those that the printer is set to. A report without results has
/// a page without tests.
[[nodiscard]] PrintFailure PrintReport(QPrinter& printer, std::span<const CTestResult> results,
                                       const PageStrips& strips);

} // namespace busquill
