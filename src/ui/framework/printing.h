/// Printing: its dialogs, the pages that were asked for, and what stands on each of them.
#pragma once

#include <QPageLayout>
#include <QRect>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

class QPainter;
class QPrinter;
class QWidget;

namespace busquill {

class Prompts;

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

/// What kept the pages from being printed, as a message; nothing when they were printed or the user
/// cancelled.
using PrintFailure = std::optional<std::string>;

using DrawPage = std::function<void(QPainter& painter, int number)>;

/// Prints the pages from 1 to `count`, or those of them that the printer is set to. A long job can
/// be cancelled; a file with a part of the pages is not left behind.
[[nodiscard]] PrintFailure PrintPages(QPrinter& printer, std::int64_t count, const DrawPage& draw);

/// The present time as the user's locale writes it.
[[nodiscard]] QString PrintTime();
[[nodiscard]] bool IsLandscape(const QPrinter& printer);

/// The printer that the user chose last and the layout of its pages: the next job starts with them.
class PrinterChoice {
public:
    void Remember(const QPrinter& printer);
    /// Leaves the printer as it is if none has been chosen, or the chosen one no longer exists.
    void Restore(QPrinter& printer) const;

private:
    struct Chosen {
        bool isFile = false;
        QString name; // of the printer
        QPageLayout layout;
    };
    std::optional<Chosen> chosen_;
};

using PrintTo = std::function<PrintFailure(QPrinter& printer)>;

/// Asks for a printer and prints, unless the user cancels. Asks again after a failure.
void AskAndPrint(QWidget* parent, Prompts& prompts, PrinterChoice& choice, const PrintTo& print);
/// Shows the pages in the preview, which can print them.
void ShowPrintPreview(QWidget* parent, Prompts& prompts, PrinterChoice& choice,
                      const PrintTo& print);

} // namespace busquill
