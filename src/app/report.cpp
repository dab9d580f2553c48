// Draws the results of a compliance test on the pages of a PDF file, for a program that has no
// windows, on a machine that may have no display.

#include "platform/prompts.h"
#include "platform/working_directory.h"
#include "testsuites/compliance_document.h"
#include "ui/testsuites/report_painter.h"

#include <QApplication>
#include <QPrinter>

#include <cstdio>

using namespace busquill;

namespace {

/// The last message, which says why something has failed.
class LastMessage final : public Prompts {
public:
    Answer Show(const Box& box) override {
        text = box.text;
        return Answer::Ok;
    }
    std::string text;
};

int Fail(const std::string& why) {
    std::fprintf(stderr, "busquill-report: %s\n", why.c_str());
    return 3;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Without a user's session, Qt warns about missing services that are not needed here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const QApplication application(argc, argv);
    if (argc != 4) {
        std::fputs("Usage: busquill-report RESULTS.cpl REPORT.pdf TITLE\n", stderr);
        return 2;
    }
    LastMessage prompts;
    CComplianceDoc document(WorkingDirectory::AtStart(), prompts);
    if (!document.OnOpenDocument(argv[1])) {
        return Fail(prompts.text);
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromLocal8Bit(argv[2]));
    const PrintFailure failure =
        PrintReport(printer, document.Results(), {QString::fromLocal8Bit(argv[3]), PrintTime()});
    return failure ? Fail(*failure) : 0;
}
