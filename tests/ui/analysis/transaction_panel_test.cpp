// The table of transactions beside the windows of a capture, used as a user does: through the menu,
// with mouse and keys.

#include "analysis/transaction_follower.h"
#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/modal_qt.h"
#include "support/panel_fixture_qt.h"
#include "ui/analysis/transaction_panel.h"
#include "ui/display/trace_view.h"
#include "ui/shell/help_window.h"
#include "ui/shell/manual_browser.h"
#include "ui/trace/child_frame.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <gmock/gmock.h>

#include <algorithm>

namespace busquill::test {
namespace {

/// The transactions of a file, followed without the windows.
std::vector<Transaction> TransactionsOf(const CTesselDoc& document, Program& program) {
    TransactionFollower follower(program.Link().Traits(), program.Tables());
    follower.KeepWords(4);
    std::vector<Transaction> all;
    std::int64_t number = document.FirstSampleNumber(false);
    for (const SampleRecord& record : document.GetStore().GetData(false)) {
        for (const Transaction& ended : follower.Add(number, record)) {
            all.push_back(ended);
        }
        ++number;
    }
    if (const auto open = follower.Unfinished()) {
        all.push_back(*open);
    }
    return all;
}

class TransactionPanels : public PanelFixture<StoredCaptureFixture, TransactionModel> {
protected:
    TransactionPanels() : PanelFixture(transactionNames) {}

    static int ColumnOf(const char* title) {
        const auto columns = FieldColumns();
        const auto found = std::ranges::find(columns, std::string_view(title), &FieldColumn::title);
        return static_cast<int>(found - columns.begin());
    }
    std::string Cell(int row, const char* title) {
        return PanelFixture::Cell(row, ColumnOf(title));
    }
    std::vector<std::string> Column(const char* title) {
        return PanelFixture::Column(ColumnOf(title));
    }
    void ClickRow(int row) { ClickCell(row, ColumnOf("Sample")); }
    void ClickTitle(const char* title) {
        const QHeaderView& header = *Table().horizontalHeader();
        const int column = ColumnOf(title);
        QTest::mouseClick(
            header.viewport(), Qt::LeftButton, {},
            {header.sectionViewportPosition(column) + header.sectionSize(column) / 2, 5});
        ASSERT_TRUE(Settled());
    }
    /// The entries of the menu on the titles; chooses one.
    QStringList ColumnMenu(const QString& choice = {}) {
        return AnswerMenu(
            [&] {
                QWidget& header = *Table().horizontalHeader()->viewport();
                QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 5},
                                        header.mapToGlobal(QPoint(20, 5)));
                QApplication::sendEvent(&header, &event);
            },
            choice);
    }
};

TEST_F(TransactionPanels, TheMenuIsThereForCapturesOnly) {
    const auto isShown = [&] {
        Frame().RefreshCommands();
        QStringList menus;
        for (const QAction* action : Frame().menuBar()->actions()) {
            if (action->isVisible()) {
                menus << action->text().remove('&');
            }
        }
        return menus.join(' ').toStdString();
    };
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Window Help");
    Open("Trigger2.tra");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Analyze Window Help");
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Window Help");
    Open("Trigger1.tra");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Analyze Window Help");
}

TEST_F(TransactionPanels, EscapeLeadsToTheActiveWindowWhateverItShows) {
    Open("Trigger2.tra");
    OpenPanel();
    Choose("File/New/Performance/Utilization");
    Settle();
    Line().setFocus();
    QTest::keyClick(&Line(), Qt::Key_Escape);
    EXPECT_TRUE(Frame().Area().activeSubWindow()->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(TransactionPanels, TheKeyOpensAndClosesThePanel) {
    CChildFrame& frame = Open("Trigger2.tra");
    EXPECT_FALSE(Dock().isVisible());
    EXPECT_FALSE(Entry("Analyze/Transactions").isChecked());
    QTest::keyClick(&frame.TraceView(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_TRUE(Entry("Analyze/Transactions").isChecked());
    EXPECT_TRUE(Table().hasFocus());
    QTest::keyClick(&Table(), Qt::Key_Escape);
    EXPECT_TRUE(frame.TraceView().hasFocus());
    QTest::keyClick(&frame.TraceView(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(Dock().isVisible());
    EXPECT_FALSE(Entry("Analyze/Transactions").isChecked());
}

TEST_F(TransactionPanels, ShowsAllTransactionsOfTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const auto expected = TransactionsOf(frame.Trace(), *program);
    ASSERT_GT(expected.size(), 100U);
    ASSERT_EQ(Rows(), static_cast<int>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Model().At(static_cast<int>(i)), expected[i]) << i;
    }
    EXPECT_EQ(Cell(137, "Number"), "138");
    EXPECT_EQ(Cell(137, "Sample"), "22");
    EXPECT_EQ(Cell(137, "Time"), "62.76us");
    EXPECT_EQ(Cell(137, "Command"), "I/O Wr");
    EXPECT_EQ(Cell(137, "Address"), "000003F8");
    EXPECT_EQ(Cell(137, "Words"), "1");
    EXPECT_EQ(Cell(137, "Bytes"), "4");
    EXPECT_EQ(Cell(137, "Wait"), "2");
    EXPECT_EQ(Cell(137, "I-Wait"), "0");
    EXPECT_EQ(Cell(137, "Latency"), "90ns");
    EXPECT_EQ(Cell(137, "End"), "complete");
    EXPECT_EQ(Cell(137, "Gap"), "180ns");
    EXPECT_EQ(Cell(137, "Findings"), "0");
    EXPECT_EQ(Cell(137, "Data"), "56410C87");
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("Tag"))) << "only PCI-X has it";
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("I-Wait")));
}

TEST_F(TransactionPanels, AClickTakesAllWindowsOfTheCaptureToTheFirstSample) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(200);
    const std::int64_t sample = Model().SampleOf(200);
    EXPECT_EQ(sample, TransactionsOf(frame.Trace(), *program)[200].sample -
                          frame.Trace().FirstSampleNumber(false));
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(sample), 1);
    EXPECT_EQ(&ActiveFrame(), &frame) << "the capture stays the active one";
    EXPECT_EQ(frame.Trace().Marker(1, false), -1) << "no marker moves";
}

TEST_F(TransactionPanels, TheSamplesOfTheChosenRowAreMarkedWhileThePanelIsOpen) {
    CChildFrame& frame = Open("Trigger2.tra");
    const CTesselDoc& trace = frame.Trace();
    const std::int64_t top = frame.TraceView().TopSample();
    OpenPanel();
    EXPECT_EQ(trace.MarkedSamples(), std::nullopt);
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    const auto samplesOf = [&](int row) {
        return std::optional(SampleSpan{Model().SampleOf(row), Model().LastSample(row)});
    };
    ClickRow(20);
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(20));
    EXPECT_LT(trace.MarkedSamples()->first, trace.MarkedSamples()->last);
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(21));
    frame.Trace().ToggleMarker(1, Model().SampleOf(30), false);
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(30)) << "marker 1 has chosen it";
    Give("bytes > 100000");
    EXPECT_EQ(trace.MarkedSamples(), std::nullopt) << "no row is left";
    Give("");
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(30));
    Choose("Analyze/Transactions");
    EXPECT_EQ(trace.MarkedSamples(), std::nullopt) << "the panel is closed";
    OpenPanel();
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(30));
    Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    EXPECT_EQ(trace.MarkedSamples(), std::nullopt) << "another capture is shown";
    Frame().Area().setActiveSubWindow(&frame);
    QApplication::processEvents();
    EXPECT_EQ(trace.MarkedSamples(), samplesOf(30));
}

TEST_F(TransactionPanels, OpeningThePanelDoesNotMoveTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    const std::int64_t top = frame.TraceView().TopSample();
    OpenPanel();
    ASSERT_TRUE(Table().hasFocus());
    EXPECT_EQ(CurrentRow(), -1);
    EXPECT_NEAR(static_cast<double>(frame.TraceView().TopSample()), static_cast<double>(top), 20)
        << "it is lower now";
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(TransactionPanels, KeysGoFromRowToRow) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    QTest::keyClick(&Table(), Qt::Key_End);
    EXPECT_EQ(CurrentRow(), Rows() - 1);
    QTest::keyClick(&Table(), Qt::Key_Up);
    QTest::keyClick(&Table(), Qt::Key_Up);
    EXPECT_EQ(CurrentRow(), Rows() - 3);
    EXPECT_NEAR(static_cast<double>(Center(frame)),
                static_cast<double>(Model().SampleOf(Rows() - 3)), 1);
    QTest::keyClick(&Table(), Qt::Key_Home);
    EXPECT_EQ(CurrentRow(), 0);
    EXPECT_EQ(frame.TraceView().TopSample(), 0);
    frame.TraceView().GoTo(GoToTarget::End);
    QTest::keyClick(&Table(), Qt::Key_Return);
    EXPECT_EQ(frame.TraceView().TopSample(), 0) << "Enter goes there again";
}

TEST_F(TransactionPanels, Marker1ChoosesTheRowThatItStandsInAndMovesNothing) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const std::int64_t inside = Model().SampleOf(30) + 1;
    ASSERT_GE(Model().LastSample(30), inside);
    frame.TraceView().ShowSample(inside + 6);
    const std::int64_t top = frame.TraceView().TopSample();
    frame.TraceView().Trace().ToggleMarker(1, inside, false);
    EXPECT_EQ(CurrentRow(), 30);
    EXPECT_EQ(Table().selectionModel()->selectedRows().size(), 1);
    EXPECT_TRUE(Table().viewport()->rect().contains(Table().visualRect(Table().currentIndex())))
        << "the row is scrolled to";
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    EXPECT_EQ(frame.Trace().Marker(1, false), inside);
}

TEST_F(TransactionPanels, AFilterOfSamplesDoesNotMatter) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const int rows = Rows();
    // The listing shows samples of memory reads only.
    CSignalList& pattern = frame.Trace().filterPattern;
    for (const auto& signal : pattern.All()) {
        if (signal->decoded == nullptr || signal->decoded->name != "COMMAND") {
            continue;
        }
        const auto& values = signal->decoded->values;
        const auto read = std::ranges::find_if(values, [](const auto& value) {
            return value.label != nullptr && value.label == std::string_view("Mem Rd");
        });
        ASSERT_NE(read, values.end());
        pattern.ApplyDecodedValue(signal.get(), 0, static_cast<std::size_t>(read - values.begin()));
        break;
    }
    frame.Trace().ApplyFilter(0);
    ASSERT_TRUE(frame.Trace().IsFiltered());
    EXPECT_EQ(Rows(), rows);
    int row = 100;
    while (Cell(row, "Command") != "Mem Rd") {
        ++row;
    }
    ClickRow(row);
    const std::int64_t sample = Model().SampleOf(row);
    EXPECT_LE(frame.TraceView().TopSample(), sample);
    ClickRow(row + 1); // the listing hides its first sample
    EXPECT_EQ(CurrentRow(), row + 1);
    EXPECT_LE(frame.TraceView().TopSample(), Model().SampleOf(row + 1));
}

TEST_F(TransactionPanels, F1OpensTheirPageOfTheManual) {
    Open("Trigger2.tra");
    OpenPanel();
    for (QWidget* focus : {static_cast<QWidget*>(&Table()), static_cast<QWidget*>(&Line())}) {
        QTest::keyClick(focus, Qt::Key_F1);
        auto* help = Frame().findChild<HelpWindow*>();
        ASSERT_NE(help, nullptr);
        EXPECT_TRUE(help->isVisible());
        EXPECT_EQ(help->findChild<ManualBrowser*>()->Page(), "transactions.md#in-the-windows");
        help->close();
        Frame().activateWindow();
    }
}

TEST_F(TransactionPanels, FollowsTheActiveWindow) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    const int rows = Rows();
    ClickRow(50);
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
    CChildFrame& second = Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    const int others = static_cast<int>(TransactionsOf(second.Trace(), *program).size());
    EXPECT_EQ(Rows(), others);
    EXPECT_EQ(CurrentRow(), -1);
    Frame().Area().setActiveSubWindow(&first);
    QApplication::processEvents();
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(CurrentRow(), 50) << "the row is still chosen";
    first.close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    while (!Windows().isEmpty()) {
        Windows().first()->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
}

TEST_F(TransactionPanels, StaysWithACaptureThatLosesOneOfItsWindows) {
    CChildFrame& frame = Open("Trigger1.tra"); // with a window of Power Zoom samples
    ASSERT_EQ(Windows().size(), 2);
    OpenPanel();
    ClickRow(3);
    const int rows = Rows();
    Frame().Area().setActiveSubWindow(Windows().last());
    QApplication::processEvents();
    ASSERT_TRUE(ActiveFrame().IsZoomFrame());
    EXPECT_EQ(Rows(), rows) << "of the capture, not of the Power Zoom samples";
    EXPECT_EQ(CurrentRow(), 3);
    frame.close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    ASSERT_EQ(Windows().size(), 1);
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(CurrentRow(), 3);
    Dock().findChild<TransactionPanel*>()->TakeKeyboard();
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_EQ(CurrentRow(), 4);
}

TEST_F(TransactionPanels, StaysWhenTheOtherDisplayIsShown) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(40);
    frame.SwitchDisplay(false);
    QApplication::processEvents();
    EXPECT_EQ(CurrentRow(), 40);
    ClickRow(60);
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(Model().SampleOf(60)), 2);
}

TEST_F(TransactionPanels, SumsUpTheRows) {
    Open("Trigger2.tra");
    OpenPanel();
    EXPECT_EQ(Summary(), "267 transactions, 3,628 bytes, mean latency 109ns; complete 241, "
                         "retry 10, disconnect-with-data 10, target-abort 5, cut-off 1");
    Give("command == \"Mem Rd Line\"");
    EXPECT_EQ(Summary(), "28 of 267 transactions, 864 bytes, mean latency 158ns; complete 27, "
                         "cut-off 1");
}

TEST_F(TransactionPanels, TellsThatASetupStoredOnlySomeSamples) {
    CTesselDoc& document = Open("Trigger2.tra").Trace();
    OpenPanel();
    document.setup.clock = clockTransfer; // of a capture that has not begun
    Give("end == retry");
    EXPECT_EQ(Summary().find("did not store"), std::string::npos);
    std::string text = ReadWholeFile(dir.File("Trigger2.tra"));
    const std::string clockLine = "\"Clock\",\"Sync\"";
    ASSERT_NE(text.find(clockLine), std::string::npos);
    dir.Write("transfers.tra",
              text.replace(text.find(clockLine), clockLine.size(), "\"Clock\",\"Transfer\""));
    Open("transfers.tra");
    ASSERT_TRUE(Settled());
    EXPECT_THAT(Summary(), testing::EndsWith("; the setup did not store every sample"));
}

TEST_F(TransactionPanels, TheFilterShowsOnlyWhatFulfilsIt) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    Type("end == retry");
    EXPECT_EQ(Rows(), 267) << "the user may go on typing";
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows() == 10; }, 3000));
    for (const std::string& end : Column("End")) {
        EXPECT_EQ(end, "retry");
    }
    ClickRow(4);
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(Model().SampleOf(4)), 1);
    const std::string number = Cell(4, "Number");
    Give("");
    ASSERT_EQ(Rows(), 267);
    EXPECT_EQ(Cell(CurrentRow(), "Number"), number) << "the transaction is still chosen";
    EXPECT_TRUE(Table().viewport()->rect().contains(Table().visualRect(Table().currentIndex())));
    Give("bytes > 100000");
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The filter hides all transactions.");
}

TEST_F(TransactionPanels, AMistakeInTheFilterIsMarkedWhereItIsAndExplained) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("end == retry");
    Type("bytes > 4 and adress == 1");
    EXPECT_NE(Mistake().find("there is no field \"adress\""), std::string::npos) << Mistake();
    QTest::qWait(600);
    EXPECT_EQ(Rows(), 10) << "the last filter without a mistake stays";
    QTest::keyClick(&Line(), Qt::Key_Return);
    EXPECT_EQ(Rows(), 10);
    // The mistake is underlined in red, what comes before it is not.
    QLineEdit& line = *Line().lineEdit();
    line.deselect();
    const QImage picture = line.grab().toImage();
    const double scale = picture.devicePixelRatio();
    const auto reds = [&](int from, int to) {
        int count = 0;
        for (int x = static_cast<int>(from * scale); x < static_cast<int>(to * scale); ++x) {
            for (int y = 2; y < picture.height() - 2; ++y) {
                const QColor color = picture.pixelColor(x, y);
                count += color.red() > color.green() + 100 ? 1 : 0;
            }
        }
        return count;
    };
    const QFontMetrics text = line.fontMetrics();
    const int place = text.horizontalAdvance("bytes > 4 and ") + 4;
    EXPECT_EQ(reds(4, place - 6), 0);
    EXPECT_GT(reds(place + 4, place + text.horizontalAdvance("adress")), 20);
    Give("bytes > 4 and address == 1");
    EXPECT_EQ(Mistake(), "");
    EXPECT_EQ(Rows(), 0);
}

TEST_F(TransactionPanels, TheFilterOffersTheWordsThatCanFollow) {
    Open("Trigger2.tra");
    OpenPanel();
    QAbstractItemView& list = *Line().findChild<QCompleter*>()->popup();
    const auto offered = [&] {
        QStringList words;
        for (int row = 0; list.isVisible() && row < list.model()->rowCount(); ++row) {
            words << list.model()->index(row, 0).data().toString();
        }
        return words.join(' ').toStdString();
    };
    Type("wa");
    EXPECT_EQ(offered(), "wait");
    QTest::keyClick(&list, Qt::Key_Tab);
    EXPECT_EQ(Line().currentText(), "wait");
    EXPECT_FALSE(list.isVisible());
    EXPECT_TRUE(Line().lineEdit()->hasFocus());
    Type("end == r");
    EXPECT_EQ(offered(), "retry");
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(Line().currentText(), "end == retry");
    EXPECT_FALSE(list.isVisible());
    // In the middle only the begun word changes.
    Type("fi > 2 and wait > 3");
    EXPECT_FALSE(list.isVisible()) << "after a mistake there is nothing to offer";
    Line().lineEdit()->setCursorPosition(2);
    QTest::keyClick(&Line(), Qt::Key_N);
    EXPECT_EQ(offered(), "findings");
    QTest::keyClick(&list, Qt::Key_Tab);
    EXPECT_EQ(Line().currentText(), "findings > 2 and wait > 3");
    // A whole word needs no list, and Escape closes one.
    Type("wait");
    EXPECT_FALSE(list.isVisible());
    Type("wai");
    QTest::keyClick(&list, Qt::Key_Escape);
    EXPECT_FALSE(list.isVisible());
    EXPECT_EQ(Line().currentText(), "wai");
}

TEST_F(TransactionPanels, FiltersThatWereUsedAreOfferedAgainAlsoInTheNextRun) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("wait > 8");
    Give("end == retry");
    Give("wait > 8");
    Give("wait >");
    Frame().close();
    program.reset();
    StartDemo();
    Open("Trigger2.tra");
    ASSERT_TRUE(Settled());
    ASSERT_TRUE(Dock().isVisible());
    EXPECT_EQ(Line().currentText(), "");
    ASSERT_EQ(Line().count(), 2);
    EXPECT_EQ(Line().itemText(0), "wait > 8");
    EXPECT_EQ(Line().itemText(1), "end == retry");
    QTest::mouseClick(Line().lineEdit(), Qt::LeftButton, {}, {5, 5});
    QTest::keyClick(&Line(), Qt::Key_Down);
    QTest::keyClick(&Line(), Qt::Key_Down);
    QTest::keyClick(&Line(), Qt::Key_Return);
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Line().currentText(), "end == retry");
    EXPECT_EQ(Rows(), 10);
}

TEST_F(TransactionPanels, EachCaptureHasItsOwnFilterAndOrder) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    Give("end == retry");
    ClickTitle("Bytes");
    Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Line().currentText(), "");
    EXPECT_EQ(Cell(0, "Number"), "1");
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorSection(), -1);
    Frame().Area().setActiveSubWindow(&first);
    QApplication::processEvents();
    EXPECT_EQ(Line().currentText(), "end == retry");
    EXPECT_EQ(Rows(), 10);
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorSection(), ColumnOf("Bytes"));
}

TEST_F(TransactionPanels, WhatIsTypedStaysWithItsCapture) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    Give("end == retry");
    Type("end == retry and wait >");
    CChildFrame& second = Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    EXPECT_EQ(Line().currentText(), "");
    EXPECT_EQ(Mistake(), "");
    Frame().Area().setActiveSubWindow(&first);
    QApplication::processEvents();
    EXPECT_EQ(Line().currentText(), "end == retry and wait >");
    EXPECT_NE(Mistake(), "");
    EXPECT_EQ(Rows(), 10);
    // A text without a mistake is applied when its capture is shown again.
    Type("wait > 2");
    Frame().Area().setActiveSubWindow(&second);
    QApplication::processEvents();
    const int rows = Rows();
    Frame().Area().setActiveSubWindow(&first);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows() > 10; }));
    EXPECT_NE(Rows(), rows);
    EXPECT_EQ(Line().currentText(), "wait > 2");
}

TEST_F(TransactionPanels, AFilterIsKeptByNameAndTakenAgain) {
    Open("Trigger2.tra");
    OpenPanel();
    auto& button = *Dock().findChild<QToolButton*>("KeptExpressions");
    const auto open = [&] { QTest::mouseClick(&button, Qt::LeftButton); };
    const auto keepAs = [&](const QString& name) {
        QTimer::singleShot(200, [&] {
            auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            QTest::keyClicks(dialog->findChild<QLineEdit*>(), name);
            QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
        });
        AnswerMenu(open, "&Keep As...");
    };
    const std::string file = dir.File("busquill/expressions.txt");
    Give("end == retry");
    keepAs("retries");
    EXPECT_EQ(ReadWholeFile(file), "retries: end == retry\n");
    keepAs("2 words");
    EXPECT_THAT(prompts.Texts().back(), testing::StartsWith("A name is a letter"));
    // The user may write into the file.
    std::ofstream(file, std::ios::app) << "# of samples\nfalls: FRAME falls\n";
    Give("");
    EXPECT_EQ(Rows(), 267);
    EXPECT_EQ(AnswerMenu(open, "@retries    end == retry").join('|').toStdString(),
              "&Keep As...||@retries    end == retry|@falls    FRAME falls||&Remove");
    EXPECT_EQ(Line().currentText(), "@retries");
    EXPECT_EQ(Rows(), 10);
    Give("@retries and number > 200");
    EXPECT_LT(Rows(), 10);
    Type("@falls");
    EXPECT_NE(Mistake(), "");
    // One that is there is not replaced without a question.
    Give("wait > 4");
    prompts.AnswerNext(Answer::No);
    keepAs("Retries");
    EXPECT_THAT(prompts.Texts().back(), testing::HasSubstr("Replace"));
    EXPECT_THAT(ReadWholeFile(file), testing::HasSubstr("retries: end == retry\n"));
    keepAs("retries");
    const std::string kept = "retries: wait > 4\n# of samples\nfalls: FRAME falls\n";
    EXPECT_EQ(ReadWholeFile(file), kept);
    // Nor by one that uses itself.
    Give("@retries");
    keepAs("retries");
    EXPECT_THAT(prompts.Texts().back(), testing::HasSubstr("itself"));
    EXPECT_EQ(ReadWholeFile(file), kept);
    // Enter applies again what may mean something else now.
    const int rows = Rows();
    std::ofstream(file) << "retries: end == retry\n";
    EXPECT_EQ(Rows(), rows);
    Give("@retries");
    EXPECT_EQ(Rows(), 10);
    // Without a capture there is nothing to apply one to.
    Frame().Area().closeAllSubWindows();
    QApplication::processEvents();
    EXPECT_FALSE(button.isEnabled());
    EXPECT_EQ(Line().currentText(), "");
}

TEST_F(TransactionPanels, AFilterStaysWhenTheBusChanges) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("latency > 2");
    const int rows = Rows();
    ASSERT_GT(rows, 0);
    ASSERT_LT(rows, static_cast<int>(Model().TransactionCount()));
    program->Link().WriteBusConfig({.busMode = BusVme});
    Frame().RefreshCommands();
    EXPECT_EQ(Line().currentText(), "latency > 2");
    program->Link().WriteBusConfig({.busMode = BusPci});
    Frame().RefreshCommands();
    EXPECT_EQ(Line().currentText(), "latency > 2");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows() == rows && !Model().IsWorking(); }));
}

TEST_F(TransactionPanels, AHiddenPanelIsBroughtToTheFront) {
    Open("Trigger2.tra");
    OpenPanel();
    Choose("Analyze/Interval");
    auto* interval = Frame().findChild<QDockWidget*>("Interval");
    Frame().tabifyDockWidget(&Dock(), interval);
    interval->raise();
    QApplication::processEvents();
    ASSERT_TRUE(Dock().visibleRegion().isEmpty());
    Choose("Analyze/Transactions");
    QApplication::processEvents();
    EXPECT_FALSE(Table().visibleRegion().isEmpty());
    EXPECT_TRUE(Table().hasFocus());
    Choose("Analyze/Transactions");
    EXPECT_FALSE(Dock().isVisible());
}

TEST_F(TransactionPanels, AFloatingPanelWorksAsInTheWindow) {
    Open("Trigger2.tra");
    OpenPanel();
    Dock().setFloating(true);
    Dock().activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &Dock(); }));
    ClickRow(3);
    Frame().RefreshCommands();
    QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_NE(Clipboard().find("Number\t"), std::string::npos);
    Type("wait");
    QTest::keyClick(&Line(), Qt::Key_A, Qt::ControlModifier);
    Frame().RefreshCommands();
    Choose("Edit/Copy");
    EXPECT_EQ(Clipboard(), "wait");
    QTest::keyClick(&Line(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &Frame(); }));
    EXPECT_TRUE(ActiveFrame().TraceView().hasFocus());
}

TEST_F(TransactionPanels, ATitleSortsUpThenDownThenAsInTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(100);
    const std::string number = Cell(100, "Number");
    ClickTitle("Bytes");
    const auto bytes = [&] {
        std::vector<int> values;
        for (const std::string& text : Column("Bytes")) {
            values.push_back(std::stoi(text));
        }
        return values;
    };
    ASSERT_EQ(Rows(), 267);
    EXPECT_TRUE(std::ranges::is_sorted(bytes()));
    EXPECT_EQ(Cell(CurrentRow(), "Number"), number);
    ClickTitle("Bytes");
    EXPECT_TRUE(std::ranges::is_sorted(bytes(), std::ranges::greater()));
    ClickRow(0);
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(Model().SampleOf(0)), 1);
    ClickTitle("Bytes");
    EXPECT_EQ(Cell(0, "Number"), "1");
    EXPECT_EQ(Cell(266, "Number"), "267");
}

TEST_F(TransactionPanels, CopiesTheSelectedRowsAsTheyAreShown) {
    Open("Trigger2.tra");
    OpenPanel();
    for (const char* hidden : {"Time", "Words", "Wait", "I-Wait", "Latency", "Gap"}) {
        ColumnMenu(hidden);
    }
    Frame().activateWindow(); // the menus have taken the keyboard
    QApplication::processEvents();
    ClickRow(137);
    QTest::keyClick(&Table(), Qt::Key_Down, Qt::ShiftModifier);
    Frame().RefreshCommands(); // as before each event
    QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
    const std::string wanted = "Number\tSample\tCommand\tAddress\tBytes\tEnd\tFindings\tData\n"
                               "138\t22\tI/O Wr\t000003F8\t4\tcomplete\t0\t56410C87\n"
                               "139\t74\tMem Rd Line\tFEBF0210\t32\tcomplete\t0\t"
                               "56410C88 56410C89 0ECCBB7C 0ECCBB7D ...\n";
    EXPECT_EQ(Clipboard(), wanted);
    QApplication::clipboard()->clear();
    Choose("Edit/Copy");
    EXPECT_EQ(Clipboard(), wanted);
    // In the filter, its text is copied.
    Type("wait");
    QTest::keyClick(&Line(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&Line(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Clipboard(), "wait");
    QApplication::clipboard()->clear();
    Choose("Edit/Copy");
    EXPECT_EQ(Clipboard(), "wait");
    // In the capture, its picture or its rows.
    Frame().activateWindow(); // the list of words has taken the keyboard
    QApplication::processEvents();
    QTest::keyClick(&Line(), Qt::Key_Escape);
    EXPECT_FALSE(Entry("Edit/Copy").isEnabled()) << "no marker is set in the listing";
}

TEST_F(TransactionPanels, LettersAndTheWheelChangeNothing) {
    Open("Trigger2.tra");
    OpenPanel();
    Give("end == retry");
    Give("wait > 2");
    ClickRow(3);
    QTest::keyClick(&Table(), Qt::Key_1);
    EXPECT_EQ(CurrentRow(), 3);
    QWheelEvent wheel({5, 5}, Line().mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Line(), &wheel);
    EXPECT_EQ(Line().currentText(), "wait > 2");
}

TEST_F(TransactionPanels, ColumnsAreChosenInTheMenuOnTheTitles) {
    Open("Trigger2.tra");
    OpenPanel();
    const QStringList entries = ColumnMenu("Latency");
    EXPECT_EQ(entries.join(' ').toStdString(),
              "* Number * Sample * Time * Command * Address * Words * Bytes * Wait * I-Wait * "
              "Latency * End * Gap * Findings * Data");
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("Latency")));
    Table().setColumnWidth(ColumnOf("Command"), 222);
    Frame().close();
    program.reset();
    StartDemo();
    Open("Trigger2.tra");
    ASSERT_TRUE(Settled());
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("Latency")));
    EXPECT_EQ(Table().columnWidth(ColumnOf("Command")), 222);
    // The menu has a key too.
    Dock().findChild<TransactionPanel*>()->TakeKeyboard();
    Frame().RefreshCommands(); // as before each event
    const QStringList again =
        AnswerMenu([&] { QTest::keyClick(&Table(), Qt::Key_F10, Qt::ShiftModifier); }, "Latency");
    EXPECT_TRUE(again.contains("Latency"));
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("Latency")));
    EXPECT_GT(Table().columnWidth(ColumnOf("Latency")), 20);
}

TEST_F(TransactionPanels, FollowABoardWhoseBusChanges) {
    Open("Trigger2.tra");
    OpenPanel();
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("Tag")));
    program->Link().WriteBusConfig({.busMode = BusPciX, .busWidth = 1});
    Frame().RefreshCommands();
    ASSERT_TRUE(Settled());
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("Tag")));
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("Split")));
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("Findings")));
    // Also while another window is active.
    QMdiSubWindow* const capture = Windows().first();
    Choose("File/New/Performance/Utilization");
    program->Link().WriteBusConfig({.busMode = BusVme});
    Frame().RefreshCommands();
    Frame().Area().setActiveSubWindow(capture);
    Frame().RefreshCommands();
    ASSERT_TRUE(Settled());
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("I-Wait")));
}

TEST(TransactionModels, HaveFindingsOnlyOfABoardThatChecksRules) {
    const auto hasFindings = [](const char* model) {
        BoardTables board(model);
        RecordingPrompts prompts;
        CTesselDoc document(NewTraceContext{board.tables}, prompts);
        const TransactionModel transactions(document, board.board, board.tables);
        const auto column =
            std::ranges::find(FieldColumns(), TransactionField::Findings, &FieldColumn::field) -
            FieldColumns().begin();
        return transactions.HasColumn(static_cast<int>(column));
    };
    EXPECT_TRUE(hasFindings("VMEKite"));
    EXPECT_FALSE(hasFindings("VMELark"));
    EXPECT_FALSE(hasFindings("VSBKite"));
}

TEST(TransactionModels, AConnectorHasNoTransactions) {
    BoardTables board("VMEKiteP2", BusVmeP2);
    RecordingPrompts prompts;
    const TempDir dir;
    CTesselDoc document(NewTraceContext{board.tables}, prompts);
    std::string text =
        "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0,9\n";
    for (int i = 0; i < 10; ++i) {
        text += std::to_string(i) + ",1,2,3,0,0,0,0,0,0,0,0,0,0,0,30,0,0,0\n";
    }
    ASSERT_TRUE(document.OnOpenDocument(dir.Write("pins.tra", text)));
    TransactionModel model(document, board.board, board.tables);
    model.SetActive(true);
    EXPECT_EQ(model.Traffic(), nullptr);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.IsWorking());
    for (int column = 0; column < model.columnCount(); ++column) {
        EXPECT_FALSE(model.HasColumn(column)) << column;
    }
}

TEST_F(TransactionPanels, OpensAgainAsItWasLeft) {
    Open("Trigger2.tra");
    OpenPanel();
    Frame().resizeDocks({&Dock()}, {331}, Qt::Vertical);
    QApplication::processEvents();
    const int height = Dock().height();
    Frame().close();
    program.reset();
    StartDemo();
    Frame().resize(1100, 800);
    QApplication::processEvents();
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_NEAR(Dock().height(), height, 2);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
    Open("Trigger2.tra");
    ASSERT_TRUE(Settled());
    EXPECT_GT(Rows(), 100);
    Choose("Analyze/Transactions");
    Frame().close();
    program.reset();
    StartDemo();
    EXPECT_FALSE(Dock().isVisible());
}

} // namespace
} // namespace busquill::test
