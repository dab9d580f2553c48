// Printing captures through the program's windows.

#include "capture/trace_document.h"
#include "support/live_frame_fixture_qt.h"
#include "ui/capture/print_trace_dialog.h"

#include <QCheckBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;

/// Chooses an entry, calls `ask` on Print Trace, which opens, and `print` on the dialog that
/// follows. Both end; 0 stands for a dialog that did not open, or one not ended by `ask`.
template <class Next, class Fixture>
int PrintThrough(Fixture& fixture, const QString& entry,
                 const std::function<void(CPrintTraceDlg&)>& ask,
                 const std::function<void(Next&)>& print) {
    bool isAsked = false;
    int printed = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* dialog = qobject_cast<CPrintTraceDlg*>(modal); dialog != nullptr && !isAsked) {
            isAsked = true;
            ask(*dialog);
        } else if (auto* next = qobject_cast<Next*>(modal); next != nullptr) {
            timer.stop();
            ++printed;
            print(*next);
            if (next->isVisible()) {
                next->reject();
            }
        }
    });
    timer.start(5);
    fixture.Choose(entry);
    EXPECT_TRUE(isAsked) << "Print Trace has not opened";
    return printed;
}

void PrintPdf(QPrintDialog& dialog, const std::string& path) {
    dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog.findChild<QLineEdit*>("filename")->setText(QString::fromStdString(path));
    Press(dialog, "Print");
}

int PdfPages(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    const std::string pdf = text.str();
    int pages = 0;
    for (std::size_t at = pdf.find("/Type /Page\n"); at != std::string::npos;
         at = pdf.find("/Type /Page\n", at + 1)) {
        ++pages;
    }
    return pages;
}

class Printing : public ProgramFixture {
public:
    using ProgramFixture::Choose;

protected:
    Printing() { StartDemo(); }

    static void Give(CPrintTraceDlg& dialog, const QString& start, const QString& end) {
        dialog.findChild<QLineEdit*>("Start")->setText(start);
        dialog.findChild<QLineEdit*>("End")->setText(end);
        Press(dialog, "OK");
    }
    int Previewed(const QString& start, const QString& end, bool scaled = false) {
        int pages = 0;
        PrintThrough<QPrintPreviewDialog>(
            *this, "File/Print Preview",
            [&](CPrintTraceDlg& dialog) {
                if (dialog.findChild<QCheckBox*>()->isChecked() != scaled) {
                    Tick(dialog, "Scale Width to Page");
                }
                Give(dialog, start, end);
            },
            [&](QPrintPreviewDialog& dialog) {
                pages = dialog.findChild<QPrintPreviewWidget*>()->pageCount();
            });
        return pages;
    }
};

TEST_F(Printing, AListingIsPrintedToAPdf) {
    Choose("File/New/Capture/State");
    ASSERT_TRUE(Entry("File/Print...").isEnabled());
    const std::string path = dir.File("listing.pdf");
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...", [](CPrintTraceDlg& dialog) { Give(dialog, "-5", "5"); },
                  [&](QPrintDialog& dialog) { PrintPdf(dialog, path); }),
              1);
    EXPECT_GT(PdfPages(path), 1) << "its columns need several strips";
}

TEST_F(Printing, CancellingEitherQuestionPrintsNothing) {
    Choose("File/New/Capture/State");
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...", [](CPrintTraceDlg& dialog) { Press(dialog, "Cancel"); },
                  [](QPrintDialog&) {}),
              0);
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...", [](CPrintTraceDlg& dialog) { Give(dialog, "0", "0"); },
                  [](QPrintDialog& dialog) { dialog.reject(); }),
              1);
}

TEST_F(Printing, ThePreviewHasThePagesOfTheRange) {
    Choose("File/New/Capture/State");
    const int strips = Previewed("0", "0");
    EXPECT_GT(strips, 1);
    EXPECT_EQ(Previewed("0", "0", true), 1);
    EXPECT_GT(Previewed("-100", "100"), strips);
}

TEST_F(Printing, AWaveformIsPreviewed) {
    Choose("File/New/Capture/Waveform");
    int pages = 0;
    EXPECT_EQ(PrintThrough<QPrintPreviewDialog>(
                  *this, "File/Print Preview",
                  [](CPrintTraceDlg& dialog) {
                      EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isVisible());
                      Give(dialog, "-100", "100");
                  },
                  [&](QPrintPreviewDialog& dialog) {
                      pages = dialog.findChild<QPrintPreviewWidget*>()->pageCount();
                  }),
              1);
    EXPECT_GT(pages, 1);
}

class LivePrinting : public LiveFrameFixture {
public:
    using LiveFrameFixture::Choose;
};

TEST_F(LivePrinting, ACaptureIsUploadedBeforeItIsPrinted) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenFrame("State");
    StopALongRun();
    ASSERT_TRUE(Trace().IsUploading());
    // The upload goes from the trigger outward: this is far from what it fetches first.
    const std::int64_t last = Trace().SampleCount(false) - 2000;
    const std::int64_t first = last - 300;
    ASSERT_FALSE(Trace().IsValidSample(first, false));
    const std::int64_t shift = Trace().FirstSampleNumber(false);
    const std::string path = dir.File("live.pdf");
    bool isComplete = true;
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...",
                  [&](CPrintTraceDlg& dialog) {
                      dialog.findChild<QLineEdit*>("Start")->setText(
                          QString::number(first + shift));
                      dialog.findChild<QLineEdit*>("End")->setText(QString::number(last + shift));
                      Press(dialog, "OK");
                  },
                  [&](QPrintDialog& dialog) {
                      for (std::int64_t i = first; i <= last; ++i) {
                          isComplete = isComplete && Trace().IsValidSample(i, false);
                      }
                      EXPECT_TRUE(Trace().IsUploading()) << "the rest is not waited for";
                      PrintPdf(dialog, path);
                  }),
              1);
    EXPECT_TRUE(isComplete);
    EXPECT_GT(PdfPages(path), 4);
}

} // namespace
} // namespace busquill::test
