#include "ui/framework/printing.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"

#include <QApplication>
#include <QFile>
#include <QPageLayout>
#include <QPaintEngine>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>

#include <algorithm>
#include <ctime>
#include <limits>

namespace busquill {

namespace {

constexpr int patience = 1000; // milliseconds before a job shows its progress

PrintFailure StartFailure(const QPrinter& printer) {
    const std::string file = printer.outputFileName().toStdString();
    return file.empty()
               ? Printf("Error opening printer %s.", printer.printerName().toStdString().c_str())
               : Printf("Error creating file %s.", file.c_str());
}

/// The printer does not tell that its file is incomplete, as on a full disk; the file's end does.
PrintFailure WriteFailure(const QPrinter& printer) {
    if (printer.outputFormat() != QPrinter::PdfFormat || printer.outputFileName().isEmpty()) {
        return std::nullopt;
    }
    constexpr qint64 mark = 8;
    QFile file(printer.outputFileName());
    if (file.open(QFile::ReadOnly) && file.seek(std::max<qint64>(file.size() - mark, 0)) &&
        file.readAll().contains("%%EOF")) {
        return std::nullopt;
    }
    return Printf("Error writing file %s.", printer.outputFileName().toStdString().c_str());
}

/// Ends a job that the user cancelled. A file cannot be aborted: what is in it is removed. A
/// preview shows the pages that it has; to abort it would destroy pages that its window goes on
/// drawing.
void Abort(QPrinter& printer, QPainter& painter) {
    if (painter.paintEngine()->type() == QPaintEngine::Picture) {
        painter.end();
        return;
    }
    const bool isAborted = printer.abort();
    painter.end();
    if (!isAborted && !printer.outputFileName().isEmpty()) {
        QFile::remove(printer.outputFileName());
    }
}

} // namespace

void DrawPageStrips(QPainter& painter, const StripPlaces& places, const PageStrips& strips,
                    int number) {
    painter.setPen(Qt::black);
    painter.setFont(FontOfCellHeight(places.titleFont, QFont::Bold, FontFace::Proportional));
    painter.drawText(places.title, Qt::AlignCenter, strips.title);
    painter.setFont(FontOfCellHeight(places.footerFont, QFont::Normal, FontFace::Proportional));
    painter.drawText(places.footer, Qt::AlignCenter, QString("Page %1").arg(number));
    painter.drawText(places.footer, Qt::AlignRight | Qt::AlignVCenter, strips.time);
}

PrintFailure PrintPages(QPrinter& printer, std::int64_t count, const DrawPage& draw) {
    const int last =
        static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
    const int from = std::max(1, printer.fromPage());
    const int to = printer.toPage() == 0 ? last : std::min(last, printer.toPage());
    if (from > to) {
        return Printf("There is no page %d, the last one is page %d.", from, last);
    }
    QPainter painter;
    if (!painter.begin(&printer)) {
        return StartFailure(printer);
    }
    QProgressDialog progress("Printing...", "Cancel", from - 1, to, QApplication::activeWindow());
    progress.setWindowTitle("Print");
    SetHelpPage(progress, "printing.md");
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(patience);
    for (int number = from; number <= to; ++number) {
        progress.setValue(number - 1);
        if (progress.wasCanceled()) {
            Abort(printer, painter);
            return std::nullopt;
        }
        if (number > from) {
            printer.newPage();
        }
        painter.save();
        // A preview is much smaller than the paper; otherwise lines thinner than its pixels vanish.
        painter.setRenderHint(QPainter::Antialiasing);
        draw(painter, number);
        painter.restore();
    }
    painter.end();
    return WriteFailure(printer);
}

QString PrintTime() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    char text[128];
    return QString::fromLocal8Bit(
        text, static_cast<qsizetype>(std::strftime(text, sizeof text, "%c", &parts)));
}

bool IsLandscape(const QPrinter& printer) {
    return printer.pageLayout().orientation() == QPageLayout::Landscape;
}

void PrinterChoice::Remember(const QPrinter& printer) {
    chosen_ = Chosen{printer.outputFormat() == QPrinter::PdfFormat, printer.printerName(),
                     printer.pageLayout()};
}

void PrinterChoice::Restore(QPrinter& printer) const {
    if (!chosen_) {
        return;
    }
    if (chosen_->isFile) {
        printer.setOutputFormat(QPrinter::PdfFormat);
    } else if (QPrinterInfo::availablePrinterNames().contains(chosen_->name)) {
        printer.setPrinterName(chosen_->name);
    } else {
        return;
    }
    printer.setPageLayout(chosen_->layout);
}

void AskAndPrint(QWidget* parent, Prompts& prompts, PrinterChoice& choice, const PrintTo& print) {
    QPrinter printer(QPrinter::HighResolution);
    choice.Restore(printer);
    QPrintDialog dialog(&printer, parent);
    SetHelpPage(dialog, "printing.md");
    while (dialog.exec() == QDialog::Accepted) {
        choice.Remember(printer);
        const PrintFailure failure = print(printer);
        if (!failure) {
            return;
        }
        prompts.Message(*failure);
    }
}

void ShowPrintPreview(QWidget* parent, Prompts& prompts, PrinterChoice& choice,
                      const PrintTo& print) {
    QPrinter printer(QPrinter::HighResolution);
    choice.Restore(printer);
    QPrintPreviewDialog dialog(&printer, parent);
    SetHelpPage(dialog, "printing.md");
    bool hasFailed = false;
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter* preview) {
                         const PrintFailure failure = print(*preview);
                         hasFailed = failure.has_value();
                         if (failure) {
                             prompts.Message(*failure);
                         }
                     });
    while (dialog.exec() == QDialog::Accepted) { // it has printed
        choice.Remember(printer);
        if (!hasFailed) {
            return;
        }
        printer.setFromTo(0, 0); // the preview shows all pages again
    }
}

} // namespace busquill
