// Printing captures through the program's windows.

#include "capture/trace_document.h"
#include "support/full_disk.h"
#include "support/live_frame_fixture_qt.h"
#include "support/recording_printer_qt.h"
#include "ui/capture/print_trace_dialog.h"

#include <QCheckBox>
#include <QGraphicsView>
#include <QMessageBox>
#include <QPageLayout>
#include <QPaintEngine>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProgressBar>
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
using testing::IsEmpty;

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

/// Chooses an entry, calls `ask` once on Print Trace, which opens, and `answer` on the dialogs that
/// follow, as long as they are open.
template <class Fixture>
void ChooseAnswering(Fixture& fixture, const QString& entry,
                     const std::function<void(CPrintTraceDlg&)>& ask,
                     const std::function<void(QWidget&)>& answer) {
    bool isAsked = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* dialog = qobject_cast<CPrintTraceDlg*>(modal)) {
            if (!isAsked) {
                isAsked = true;
                ask(*dialog);
            }
        } else if (modal != nullptr) {
            answer(*modal);
        }
    });
    timer.start(5);
    fixture.Choose(entry);
    EXPECT_TRUE(isAsked) << "Print Trace has not opened";
}

void PrintPdf(QPrintDialog& dialog, const std::string& path) {
    dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog.findChild<QLineEdit*>("filename")->setText(QString::fromStdString(path));
    Press(dialog, "Print");
}

void PrintPages5To7(QPrintDialog& dialog, const std::string& path) {
    dialog.findChild<QAbstractButton*>("printRange")->click();
    dialog.findChild<QSpinBox*>("to")->setValue(7);
    dialog.findChild<QSpinBox*>("from")->setValue(5);
    PrintPdf(dialog, path);
}

/// Prints on a recorder instead of the printer that the dialog has chosen.
void PrintOn(QPrintDialog& dialog, PageRecorder& recorder, const std::string& path) {
    QObject::connect(
        &dialog, &QDialog::finished, &dialog, [&] { recorder.Record(*dialog.printer()); },
        Qt::SingleShotConnection);
    PrintPdf(dialog, path);
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

/// So many samples take longer to print than a job does before it shows its progress, on any
/// machine.
constexpr int longJob = 60000;

/// The vertical lines on the white page of a picture that are longer than half of it. A line may be
/// pale, or two pixels wide.
int LongLines(const QImage& image) {
    const QRgb white = qRgb(255, 255, 255);
    const auto isPage = [&](int x, int y) { return image.pixel(x, y) == white; };
    int left = image.width();
    int right = 0;
    int top = image.height();
    int bottom = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isPage(x, y)) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
    }
    int lines = 0;
    bool wasLine = false;
    for (int x = left; x <= right; ++x) {
        int inked = 0;
        for (int y = top; y <= bottom; ++y) {
            inked += isPage(x, y) ? 0 : 1;
        }
        const bool isLine = 2 * inked > bottom - top;
        lines += isLine && !wasLine ? 1 : 0;
        wasLine = isLine;
    }
    return lines;
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
    /// Opens a file with samples from one number to another, as far as `keep` selects them.
    void OpenCapture(
        int first, int last, const std::function<bool(int)>& keep = [](int) { return true; },
        bool hasZoom = false) {
        const std::string rest = ",1,2,3,0,0,0,0,0,0,0,0,0,0,30,0,0,0,0\n";
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\"," +
            std::to_string(first) + "," + std::to_string(last) + "\n";
        for (int number = first; number <= last; ++number) {
            text += keep(number) ? std::to_string(number) + rest : "";
        }
        text += "\"End of Trace Data\"\n";
        if (hasZoom) {
            text += "\"Power Zoom Data\",255,256\n";
            for (int number = -255; number < 256; ++number) {
                text += std::to_string(number) + rest;
            }
            text += "\"End of Power Zoom Data\"\n";
        }
        ASSERT_NE(program->App().OpenDocumentFile(dir.Write("capture.tra", text)), nullptr);
        auto& frame = dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
        if (hasZoom) {
            frame.Bar().ZoomButton().click();
        } else {
            frame.SwitchDisplay(true); // to a listing
        }
        QApplication::processEvents();
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

/// The numbers from 7000 to 7999 among the texts; only samples have such numbers there.
std::vector<int> Samples(const PageRecorder& recorder) {
    std::vector<int> numbers;
    for (const Recording::Text& text : recorder.Recorded().texts) {
        if (const int number = text.text.toInt(); number >= 7000 && number < 8000) {
            numbers.push_back(number);
        }
    }
    return numbers;
}

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
    int tries = 0;
    ChooseAnswering(
        *this, "File/Print...", [](CPrintTraceDlg& dialog) { Give(dialog, "-5", "5"); },
        [&](QWidget& modal) {
            if (auto* dialog = qobject_cast<QPrintDialog*>(&modal)) {
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
    std::optional<FullDisk> full;
    ChooseAnswering(
        *this, "File/Print...", [](CPrintTraceDlg& dialog) { Give(dialog, "-5", "5"); },
        [&](QWidget& modal) {
            if (auto* dialog = qobject_cast<QPrintDialog*>(&modal); dialog != nullptr) {
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
    ChooseAnswering(
        *this, "File/Print...",
        [](CPrintTraceDlg& dialog) {
            Tick(dialog, "Scale Width to Page");
            Give(dialog, "0", "0");
        },
        [&](QWidget& modal) {
            if (auto* dialog = qobject_cast<QPrintDialog*>(&modal); dialog != nullptr) {
                if (++tries > 1) {
                    dialog->reject();
                    return;
                }
                PrintPages5To7(*dialog, path);
            }
        });
    EXPECT_EQ(tries, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("There is no page 5, the last one is page 1."));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Printing, CancelDuringPrintingLeavesNoFile) {
    OpenCapture(0, longJob);
    const std::string path = dir.File("listing.pdf");
    bool isCancelled = false;
    ChooseAnswering(
        *this, "File/Print...", [](CPrintTraceDlg& dialog) { Press(dialog, "OK"); },
        [&](QWidget& modal) {
            if (auto* dialog = qobject_cast<QPrintDialog*>(&modal)) {
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

TEST_F(Printing, CancelDuringAPreviewShowsThePagesSoFar) {
    OpenCapture(0, longJob);
    bool isCancelled = false;
    int pages = 0;
    ChooseAnswering(
        *this, "File/Print Preview", [](CPrintTraceDlg& dialog) { Press(dialog, "OK"); },
        [&](QWidget& modal) {
            if (auto* progress = qobject_cast<QProgressDialog*>(&modal)) {
                isCancelled = true;
                Press(*progress, "Cancel");
            } else if (auto* preview = qobject_cast<QPrintPreviewDialog*>(&modal);
                       preview != nullptr && isCancelled) {
                pages = preview->findChild<QPrintPreviewWidget*>()->pageCount();
                EXPECT_FALSE(preview->grab().isNull());
                preview->reject();
            }
        });
    EXPECT_TRUE(isCancelled) << "the job was too short";
    EXPECT_GT(pages, 0);
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

TEST_F(Printing, ThePreviewKeepsThinLinesAtEveryZoom) {
    Choose("File/New/Capture/Waveform");
    PrintThrough<QPrintPreviewDialog>(
        *this, "File/Print Preview", [](CPrintTraceDlg& dialog) { Give(dialog, "0", "10"); },
        [](QPrintPreviewDialog& dialog) {
            auto* preview = dialog.findChild<QPrintPreviewWidget*>();
            auto* pages = preview->findChild<QGraphicsView*>();
            for (const double zoom : {0.07, 0.09, 0.11, 0.13, 0.15, 0.17, 0.19}) {
                preview->setZoomFactor(zoom);
                QApplication::processEvents();
                const QImage image = pages->viewport()->grab().toImage();
                EXPECT_EQ(LongLines(image), 4) << "the frame and the columns, at " << zoom;
            }
        });
}

TEST_F(Printing, SamplesThatAreFilteredOutAreNotPrinted) {
    OpenCapture(7000, 7099, [](int number) { return number % 2 == 0; });
    PageRecorder recorder({1800, 2400}, QPageLayout::Portrait);
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...",
                  [](CPrintTraceDlg& dialog) {
                      Tick(dialog, "Scale Width to Page");
                      Give(dialog, "7011", "7020");
                  },
                  [&](QPrintDialog& dialog) { PrintOn(dialog, recorder, dir.File("a.pdf")); }),
              1);
    EXPECT_THAT(Samples(recorder), ElementsAre(7010, 7012, 7014, 7016, 7018, 7020));
}

TEST_F(Printing, EachSampleIsOnOnePageOfAListing) {
    OpenCapture(7000, 7299);
    PageRecorder recorder({1800, 2400}, QPageLayout::Portrait);
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...",
                  [](CPrintTraceDlg& dialog) {
                      Tick(dialog, "Scale Width to Page");
                      Give(dialog, "7003", "7290");
                  },
                  [&](QPrintDialog& dialog) { PrintOn(dialog, recorder, dir.File("a.pdf")); }),
              1);
    EXPECT_GT(recorder.Pages().size(), 1U);
    std::vector<int> expected;
    for (int number = 7003; number <= 7290; ++number) {
        expected.push_back(number);
    }
    EXPECT_EQ(Samples(recorder), expected);
}

TEST_F(Printing, PowerZoomIsPrintedToItsLastSample) {
    OpenCapture(
        7000, 7009, [](int) { return true; }, true);
    auto& zoom = dynamic_cast<CChildFrame&>(*Windows().back());
    ASSERT_TRUE(zoom.TraceView().IsZoom());
    Frame().Area().setActiveSubWindow(&zoom);
    zoom.Trace().SetZoomMarker(2, 510);
    const auto print = [&](PageRecorder& recorder, const QString& start, const QString& end) {
        EXPECT_EQ(PrintThrough<QPrintDialog>(
                      *this, "File/Print...",
                      [&](CPrintTraceDlg& dialog) {
                          EXPECT_EQ(dialog.findChild<QLineEdit*>("Start")->text(), "-255");
                          EXPECT_EQ(dialog.findChild<QLineEdit*>("End")->text(), "256");
                          Give(dialog, start, end);
                          EXPECT_FALSE(dialog.isVisible());
                      },
                      [&](QPrintDialog& dialog) { PrintOn(dialog, recorder, dir.File("a.pdf")); }),
                  1);
    };
    PageRecorder one({1800, 2400}, QPageLayout::Portrait);
    print(one, "-255", "-255");
    const std::size_t strips = one.Pages().size();
    PageRecorder all({1800, 2400}, QPageLayout::Portrait);
    print(all, "-255", "256");
    EXPECT_GT(all.Pages().size(), strips) << "several strips of samples";
    EXPECT_EQ(all.Pages().size() % strips, 0U);
    EXPECT_EQ(all.Recorded().polygons.size(), strips) << "marker 2, on the pages of the last";
    PageRecorder shorter({1800, 2400}, QPageLayout::Portrait);
    print(shorter, "-255", "254");
    EXPECT_THAT(shorter.Recorded().polygons, IsEmpty());
}

TEST_F(Printing, TheNextJobStartsWithThePrinterAndThePagesOfTheLast) {
    Choose("File/New/Capture/State");
    const auto ask = [](CPrintTraceDlg& dialog) { Give(dialog, "0", "0"); };
    const auto isLandscapeA3 = [](const QPrinter& printer) {
        return printer.pageLayout().orientation() == QPageLayout::Landscape &&
               printer.pageLayout().pageSize().id() == QPageSize::A3;
    };
    PrintThrough<QPrintDialog>(*this, "File/Print...", ask, [&](QPrintDialog& dialog) {
        EXPECT_FALSE(isLandscapeA3(*dialog.printer()));
        dialog.printer()->setPageSize(QPageSize(QPageSize::A3));
        dialog.printer()->setPageOrientation(QPageLayout::Landscape);
        dialog.reject();
    });
    PrintThrough<QPrintDialog>(*this, "File/Print...", ask, [&](QPrintDialog& dialog) {
        EXPECT_FALSE(isLandscapeA3(*dialog.printer())) << "cancelled";
        dialog.printer()->setPageSize(QPageSize(QPageSize::A3));
        dialog.printer()->setPageOrientation(QPageLayout::Landscape);
        PrintPdf(dialog, dir.File("first.pdf"));
    });
    const int pages = PdfPages(dir.File("first.pdf"));
    EXPECT_GT(pages, 0);
    PrintThrough<QPrintDialog>(*this, "File/Print...", ask, [&](QPrintDialog& dialog) {
        EXPECT_TRUE(isLandscapeA3(*dialog.printer()));
        EXPECT_EQ(dialog.printer()->outputFormat(), QPrinter::PdfFormat);
        PrintPdf(dialog, dir.File("second.pdf"));
    });
    EXPECT_EQ(PdfPages(dir.File("second.pdf")), pages);
    PrintThrough<QPrintPreviewDialog>(
        *this, "File/Print Preview", ask,
        [&](QPrintPreviewDialog& dialog) { EXPECT_TRUE(isLandscapeA3(*dialog.printer())); });
    Choose("File/New/Compliance Tests");
    ChooseDialog<QPrintDialog>("File/Print...", [&](QPrintDialog& dialog) {
        EXPECT_TRUE(isLandscapeA3(*dialog.printer())) << "of all windows";
    });
}

TEST_F(Printing, ABlockThatArrivesWhileTheRangeIsAskedForIsPrinted) {
    OpenCapture(7000, 7009);
    SampleRecord late;
    late.bytes.fill(0x5a);
    PageRecorder recorder({1800, 2400}, QPageLayout::Portrait);
    PrintThrough<QPrintDialog>(
        *this, "File/Print...",
        [&](CPrintTraceDlg& dialog) {
            auto& frame = dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
            dynamic_cast<CTesselDoc&>(frame.GetDocument()).AddBlock(3, {&late, 1}, false);
            Tick(dialog, "Scale Width to Page");
            Give(dialog, "7003", "7003");
        },
        [&](QPrintDialog& dialog) { PrintOn(dialog, recorder, dir.File("a.pdf")); });
    EXPECT_THAT(Samples(recorder), ElementsAre(7003));
    EXPECT_TRUE(recorder.Shows(0, "5A")) << "C/BE";
}

TEST_F(Printing, APrinterThatCannotBeOpenedIsReportedAndAskedForAgain) {
    class Jammed final : public QPaintEngine {
    public:
        bool begin(QPaintDevice* /*device*/) override { return false; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState& /*state*/) override {}
        void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/,
                        const QRectF& /*from*/) override {}
        [[nodiscard]] Type type() const override { return User; }
    };
    OpenCapture(7000, 7009);
    Jammed jammed;
    PageRecorder recorder({1800, 2400}, QPageLayout::Portrait);
    int tries = 0;
    ChooseAnswering(
        *this, "File/Print...",
        [](CPrintTraceDlg& dialog) {
            Tick(dialog, "Scale Width to Page");
            Give(dialog, "7003", "7005");
        },
        [&](QWidget& modal) {
            if (auto* dialog = qobject_cast<QPrintDialog*>(&modal)) {
                recorder.PrintWith(++tries == 1 ? &jammed : nullptr);
                PrintOn(*dialog, recorder, dir.File("a.pdf"));
            }
        });
    EXPECT_EQ(tries, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening printer ."));
    EXPECT_THAT(Samples(recorder), ElementsAre(7003, 7004, 7005)) << "the same samples";
}

TEST_F(Printing, AFailureOfThePreviewsOwnPrintingIsReportedAndThePreviewStays) {
    Choose("File/New/Capture/State");
    const std::string path = dir.File("listing.pdf");
    int previews = 0;
    ChooseAnswering(
        *this, "File/Print Preview",
        [](CPrintTraceDlg& dialog) {
            Tick(dialog, "Scale Width to Page");
            Give(dialog, "0", "0");
        },
        [&](QWidget& modal) {
            if (auto* print = qobject_cast<QPrintDialog*>(&modal)) {
                PrintPages5To7(*print, path);
            } else if (auto* preview = qobject_cast<QPrintPreviewDialog*>(&modal)) {
                if (++previews > 1) {
                    EXPECT_EQ(preview->findChild<QPrintPreviewWidget*>()->pageCount(), 1);
                    preview->reject();
                    return;
                }
                for (QAction* action : preview->findChildren<QAction*>()) {
                    if (action->text() == "Print") {
                        QTimer::singleShot(0, action, &QAction::trigger);
                    }
                }
            }
        });
    EXPECT_EQ(previews, 2);
    EXPECT_THAT(prompts.Texts(), ElementsAre("There is no page 5, the last one is page 1."));
    EXPECT_FALSE(std::filesystem::exists(path));
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

TEST_F(LivePrinting, CancelDuringTheUploadPrintsNothingAndTheNextPrintWorks) {
    Connect({"--buffer", "1024", "--rate", "100000"});
    OpenFrame("State");
    StopALongRun();
    const std::int64_t shift = Trace().FirstSampleNumber(false);
    ASSERT_GT(Trace().SampleCount(false), 5000);
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...",
                  [&](CPrintTraceDlg& dialog) {
                      Press(dialog, "OK");
                      const auto& progress = *dialog.findChild<QProgressBar*>();
                      EXPECT_TRUE(RunUntil([&] { return progress.value() > 0; }));
                      EXPECT_LT(progress.value(), 100);
                      EXPECT_EQ(dialog.findChild<QLabel*>("Percent")->text(),
                                QString("%1%").arg(progress.value()));
                      Press(dialog, "Cancel");
                  },
                  [](QPrintDialog&) {}),
              0);
    EXPECT_TRUE(Trace().IsUploading()) << "the upload goes on";
    const std::string path = dir.File("live.pdf");
    EXPECT_EQ(PrintThrough<QPrintDialog>(
                  *this, "File/Print...",
                  [&](CPrintTraceDlg& dialog) {
                      EXPECT_EQ(dialog.findChild<QLineEdit*>("Start")->text(),
                                QString::number(shift));
                      dialog.findChild<QLineEdit*>("End")->setText(QString::number(shift + 20));
                      Press(dialog, "OK");
                  },
                  [&](QPrintDialog& dialog) { PrintPdf(dialog, path); }),
              1);
    EXPECT_GT(PdfPages(path), 0);
}

} // namespace
} // namespace busquill::test
