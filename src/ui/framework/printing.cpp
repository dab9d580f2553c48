#include "ui/framework/printing.h"

#include "ui/framework/painting.h"

#include <QApplication>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>

#include <algorithm>
#include <ctime>
#include <limits>

namespace busquill {

namespace {

constexpr int patience = 1000; // milliseconds before a job shows its progress

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

void PrintPages(QPrinter& printer, QPainter& painter, std::int64_t count,
                const std::function<void(int number)>& draw) {
    const int last =
        static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
    const int from = std::max(1, printer.fromPage());
    const int to = printer.toPage() == 0 ? last : std::min(last, printer.toPage());
    QProgressDialog progress("Printing...", "Cancel", from - 1, to, QApplication::activeWindow());
    progress.setWindowTitle("Print");
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(patience);
    for (int number = from; number <= to; ++number) {
        progress.setValue(number - 1);
        if (progress.wasCanceled()) {
            printer.abort();
            return;
        }
        if (number > from) {
            printer.newPage();
        }
        painter.save();
        draw(number);
        painter.restore();
    }
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

void AskAndPrint(QWidget* parent, const PrintTo& print) {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() == QDialog::Accepted) {
        print(printer);
    }
}

void ShowPrintPreview(QWidget* parent, const PrintTo& print) {
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog dialog(&printer, parent);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&print](QPrinter* preview) { print(*preview); });
    dialog.exec();
}

} // namespace busquill
