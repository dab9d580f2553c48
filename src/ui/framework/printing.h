/// Printing: its dialogs, the pages that were asked for, and what stands on each of them.
#pragma once

#include <QRect>
#include <QString>

#include <cstdint>
#include <functional>

class QPainter;
class QPrinter;
class QWidget;

namespace busquill {

/// What stands on every page.
struct PageStrips {
    QString title;
    QString time; // of the printing
};

/// Where it stands, and how high its fonts are.
struct StripPlaces {
    QRect title;
    QRect footer;
    int titleFont = 0;
    int footerFont = 0;
};

/// Draws the title, the number of the page and the time.
void DrawPageStrips(QPainter& painter, const StripPlaces& places, const PageStrips& strips,
                    int number);

/// Draws the pages from 1 to `count`, or those of them that the printer is set to. A long job can
/// be cancelled. The painter is active on the printer.
void PrintPages(QPrinter& printer, QPainter& painter, std::int64_t count,
                const std::function<void(int number)>& draw);

/// The present time as the user's locale writes it.
[[nodiscard]] QString PrintTime();
[[nodiscard]] bool IsLandscape(const QPrinter& printer);

using PrintTo = std::function<void(QPrinter& printer)>;

/// Asks for a printer and prints, unless the user cancels.
void AskAndPrint(QWidget* parent, const PrintTo& print);
/// Shows the pages in the preview, which can print them.
void ShowPrintPreview(QWidget* parent, const PrintTo& print);

} // namespace busquill
