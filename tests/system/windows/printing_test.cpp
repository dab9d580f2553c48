// Printing captures through the program's windows.

#include "capture/trace_document.h"
#include "support/full_disk.h"
#include "support/live_frame_fixture_qt.h"
#include "ui/capture/print_trace_dialog.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProgressDialog>
#include <QSpinBox>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <optional>
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

/// Chooses an entry and calls `answer` on the dialogs that it opens, as long as they are open.
template <class Fixture>
void ChooseAnswering(Fixture& fixture, const QString& entry,
                     const std::function<void(QWidget&)>& answer) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            answer(*modal);
        }
    });
    timer.start(5);
    fixture.Choose(entry);
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

TEST_F(Printing, OpensByItsKey) {
    Choose("File/New/Capture/State");
    int opened = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<CPrintTraceDlg*>(QApplication::activeModalWidget())) {
            ++opened;
            dialog->reject();
        }
    });
    timer.start(5);
    Frame().activateWindow();
    QTest::keyClick(Windows().front(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(opened, 1);
}

TEST_F(Printing, AFileThatCannotBeCreatedIsReportedAndAskedForAgain) {
    Choose("File/New/Capture/State");
    const std::string missing = dir.File("missing/listing.pdf");
    const std::string path = dir.File("listing.pdf");
    QString message;
    QTimer boxes;
    QObject::connect(&boxes, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            message = box->text();
            box->accept();
        }
    });
    boxes.start(5);
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...", [](CPrintTraceDlg& dialog) { Give(dialog, "-5", "5"); },
                  [&](QPrintDialog& dialog) {
                      PrintPdf(dialog, missing);
                      EXPECT_TRUE(message.contains(QString::fromStdString(missing)));
                      EXPECT_TRUE(dialog.isVisible());
                      PrintPdf(dialog, path);
                  }),
              1);
    EXPECT_GT(PdfPages(path), 1) << "the same samples";
}

TEST_F(Printing, AFolderThatIsGoneWhenPrintingBeginsIsReported) {
    Choose("File/New/Capture/State");
    const std::string folder = dir.File("gone");
    std::filesystem::create_directory(folder);
    const std::string path = dir.File("listing.pdf");
    bool isAsked = false;
    int tries = 0;
    ChooseAnswering(*this, "File/Print...", [&](QWidget& modal) {
        if (auto* ask = qobject_cast<CPrintTraceDlg*>(&modal); ask != nullptr && !isAsked) {
            isAsked = true;
            Give(*ask, "-5", "5");
        } else if (auto* dialog = qobject_cast<QPrintDialog*>(&modal)) {
            if (++tries == 1) {
                QObject::connect(dialog, &QDialog::finished,
                                 [&] { std::filesystem::remove_all(folder); });
            }
            PrintPdf(*dialog, tries == 1 ? folder + "/listing.pdf" : path);
        }
    });
    EXPECT_EQ(tries, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error creating file " + folder + "/listing.pdf."));
    EXPECT_GT(PdfPages(path), 1) << "the same samples";
}

TEST_F(Printing, AFileThatDoesNotFitOnTheDiskIsReported) {
    Choose("File/New/Capture/State");
    const std::string path = dir.File("listing.pdf");
    int tries = 0;
    bool isAsked = false;
    std::optional<FullDisk> full;
    ChooseAnswering(*this, "File/Print...", [&](QWidget& modal) {
        if (auto* ask = qobject_cast<CPrintTraceDlg*>(&modal); ask != nullptr && !isAsked) {
            isAsked = true;
            Give(*ask, "-5", "5");
        } else if (auto* dialog = qobject_cast<QPrintDialog*>(&modal); dialog != nullptr) {
            full.reset();
            if (++tries > 1) {
                dialog->reject();
                return;
            }
            full.emplace(3000);
            PrintPdf(*dialog, path);
        }
    });
    EXPECT_EQ(tries, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error writing file " + path + "."));
}

TEST_F(Printing, APageThatThereIsNotIsReported) {
    Choose("File/New/Capture/State");
    const std::string path = dir.File("listing.pdf");
    int tries = 0;
    bool isAsked = false;
    ChooseAnswering(*this, "File/Print...", [&](QWidget& modal) {
        if (auto* ask = qobject_cast<CPrintTraceDlg*>(&modal); ask != nullptr && !isAsked) {
            isAsked = true;
            Tick(*ask, "Scale Width to Page");
            Give(*ask, "0", "0");
        } else if (auto* dialog = qobject_cast<QPrintDialog*>(&modal); dialog != nullptr) {
            if (++tries > 1) {
                dialog->reject();
                return;
            }
            dialog->findChild<QAbstractButton*>("printRange")->click();
            dialog->findChild<QSpinBox*>("to")->setValue(7);
            dialog->findChild<QSpinBox*>("from")->setValue(5);
            PrintPdf(*dialog, path);
        }
    });
    EXPECT_EQ(tries, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("There is no page 5, the last one is page 1."));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Printing, CancelDuringPrintingLeavesNoFile) {
    Choose("File/New/Capture/State");
    const std::string path = dir.File("listing.pdf");
    bool isAsked = false;
    bool isCancelled = false;
    ChooseAnswering(*this, "File/Print...", [&](QWidget& modal) {
        if (auto* ask = qobject_cast<CPrintTraceDlg*>(&modal); ask != nullptr && !isAsked) {
            isAsked = true;
            Press(*ask, "OK");
        } else if (auto* dialog = qobject_cast<QPrintDialog*>(&modal)) {
            PrintPdf(*dialog, path);
        } else if (auto* progress = qobject_cast<QProgressDialog*>(&modal);
                   progress != nullptr && !isCancelled) {
            isCancelled = true;
            EXPECT_EQ(progress->windowTitle(), "Print");
            EXPECT_GT(progress->maximum(), 1);
            EXPECT_TRUE(std::filesystem::exists(path));
            Press(*progress, "Cancel");
        }
    });
    EXPECT_TRUE(isCancelled) << "the job was too short";
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(prompts.Texts().empty());
    EXPECT_GT(Previewed("0", "0"), 1) << "the next one is not affected";
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
