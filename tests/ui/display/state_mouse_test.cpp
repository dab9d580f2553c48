// The listing and the mouse, and the menu of its columns.

#include "support/trace_view_fixture_qt.h"
#include "ui/controls/color_button.h"
#include "ui/display/state_window.h"
#include "ui/framework/painting.h"
#include "ui/signals/change_signal_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QMenu>
#include <QPaintEvent>
#include <QSpinBox>
#include <QTimer>
#include <QtTest/QTest>

namespace busquill::test {
namespace {

/// A listing that is used with the mouse.
class Mouse : public TraceViewFixture {
protected:
    void Open(int first = -500, int last = 499) {
        Load(first, last);
        view = MakeView();
        window = view->findChild<CStateWnd*>();
    }
    void Click(QPoint place, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = Qt::NoModifier) {
        QTest::mouseClick(window, button, keys, place);
    }
    /// A point in the nth visible row.
    static QPoint Row(int n) { return {100, 19 + 15 * n + 7}; }
    /// The middle of a column's header and its right edge.
    QPoint Column(int n) { return {Start(n) + Visible(n).width / 2, 9}; }
    QPoint Edge(int n) { return {Start(n) + Visible(n).width, 9}; }
    CSignal& Visible(int n) {
        for (const auto& signal : document->stateList.All()) {
            if (signal->VisibleWidth() > 0 && n-- == 0) {
                return *signal;
            }
        }
        throw std::runtime_error("no such column");
    }
    int Start(int n) {
        int x = window->SampleColumnWidth() + 1 - window->Offset();
        for (int i = 0; i < n; ++i) {
            x += Visible(i).width;
        }
        return x;
    }
    std::unique_ptr<CTraceView> view;
    CStateWnd* window = nullptr;
};

TEST_F(Mouse, SetsAndClearsMarkers) {
    Open();
    const std::int64_t top = view->TopSample();
    Click(Row(3));
    EXPECT_EQ(document->Marker(1, false), top + 3);
    Click(Row(5), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), top + 5);
    Click(Row(3), Qt::RightButton);
    EXPECT_EQ(document->Marker(2, false), top + 3) << "both on one sample";
    Click(Row(3));
    EXPECT_EQ(document->Marker(1, false), -1);
    EXPECT_EQ(document->Marker(2, false), top + 3);
}

TEST_F(Mouse, AClickBetweenHeaderAndRowsDoesNothing) {
    Open();
    Click({100, 18});
    EXPECT_EQ(document->Marker(1, false), -1);
    Click({100, 19});
    EXPECT_EQ(document->Marker(1, false), view->TopSample());
    EXPECT_FALSE(Visible(0).selected || Visible(1).selected);
}

TEST_F(Mouse, ADoubleClickSetsAMarkerAndKeepsIt) {
    Open();
    // As the system sends it: the second press arrives as a double click, not as a press.
    Click(Row(4));
    QMouseEvent twice(QEvent::MouseButtonDblClick, Row(4), window->mapToGlobal(Row(4)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &twice);
    EXPECT_EQ(document->Marker(1, false), view->TopSample() + 4);
}

TEST_F(Mouse, AClickBelowTheLastRowDoesNothing) {
    Open(0, 4);
    Click(Row(5));
    EXPECT_EQ(document->Marker(1, false), -1);
    Click(Row(4));
    EXPECT_EQ(document->Marker(1, false), 4);
}

TEST_F(Mouse, AnEmptyCaptureTakesNoMarker) {
    document = std::make_unique<CTesselDoc>(context, prompts);
    ASSERT_TRUE(document->OnNewDocument());
    view = MakeView();
    window = view->findChild<CStateWnd*>();
    Click(Row(0));
    EXPECT_EQ(document->Marker(1, false), -1);
}

TEST_F(Mouse, SelectsColumnsAndRedrawsTheirTitles) {
    Open();
    const QImage before = window->grab().toImage();
    Click(Column(1));
    EXPECT_TRUE(Visible(1).selected);
    Click(Column(3), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_TRUE(Visible(2).selected && Visible(3).selected);
    Click(Column(2), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_FALSE(Visible(2).selected);
    const QImage after = window->grab().toImage();
    EXPECT_NE(before.copy(0, 0, before.width(), 18), after.copy(0, 0, after.width(), 18));
    EXPECT_EQ(before.copy(0, 19, before.width(), before.height() - 19),
              after.copy(0, 19, after.width(), after.height() - 19));
}

TEST_F(Mouse, ASelectionPaintsTheHeaderOnly) {
    Open();
    QApplication::processEvents();
    struct Watch : QObject {
        QRect painted;
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            if (event->type() == QEvent::Paint) {
                painted |= static_cast<QPaintEvent*>(event)->rect();
            }
            return false;
        }
    } watch;
    window->installEventFilter(&watch);
    Click(Column(1));
    QApplication::processEvents();
    EXPECT_EQ(watch.painted, QRect(0, 0, window->width(), 18));
}

TEST_F(Mouse, ResizesColumnsAndTheBarFollows) {
    Open();
    const int width = Visible(1).width;
    const int limit = Bar(*view, Qt::Horizontal).maximum();
    QTest::mousePress(window, Qt::LeftButton, {}, Edge(1));
    QTest::mouseMove(window, Edge(1) + QPoint(40, 60));
    EXPECT_EQ(window->cursor().shape(), Qt::SizeHorCursor) << "wherever the mouse moves";
    QTest::mouseRelease(window, Qt::LeftButton, {}, Edge(1));
    EXPECT_EQ(Visible(1).width, width + 40);
    EXPECT_EQ(Bar(*view, Qt::Horizontal).maximum(), limit + 40);
    const int sample = window->SampleColumnWidth();
    QTest::mousePress(window, Qt::LeftButton, {}, {sample, 9});
    QTest::mouseMove(window, {sample + 25, 9});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {sample + 25, 9});
    EXPECT_EQ(window->SampleColumnWidth(), sample + 25);
}

TEST_F(Mouse, DragsAColumnToAnotherPosition) {
    Open();
    const std::string moved = Visible(3).RowName();
    QTest::mousePress(window, Qt::LeftButton, {}, Column(3));
    QTest::mouseMove(window, Column(1));
    EXPECT_EQ(window->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseRelease(window, Qt::LeftButton, {}, Column(1));
    EXPECT_EQ(Visible(1).RowName(), moved);
    EXPECT_EQ(window->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Mouse, ShowsWhereColumnsCanBeResized) {
    Open();
    QTest::mouseMove(window, Edge(1));
    EXPECT_EQ(window->cursor().shape(), Qt::SizeHorCursor);
    QTest::mouseMove(window, {Edge(1).x(), 200});
    EXPECT_EQ(window->cursor().shape(), Qt::ArrowCursor);
}

/// The menu of a column, used with the mouse.
class Menu : public Mouse {
protected:
    void Open(int first = -500, int last = 499, bool withPrompts = true) {
        Load(first, last);
        view = std::make_unique<CTraceView>(
            nullptr, true, false,
            TraceViewParts{settings, nullptr, withPrompts ? &prompts : nullptr});
        view->AttachDocument(document.get());
        view->resize(800, 600);
        view->show();
        view->OnInitialUpdate();
        QApplication::processEvents();
        window = view->findChild<CStateWnd*>();
    }
    static QAction* Find(const QMenu& menu, const QString& path) {
        const QList<QAction*> actions = menu.actions();
        for (QAction* action : actions) {
            if (action->menu() != nullptr && path.startsWith(action->text() + "/")) {
                return Find(*action->menu(), path.mid(action->text().size() + 1));
            }
            if (action->text() == path) {
                return action;
            }
        }
        return nullptr;
    }
    /// Opens the menu of the nth column and calls `act` on it.
    void OnMenu(int column, const std::function<void(QMenu&)>& act) {
        bool met = false;
        QTimer::singleShot(0, [&] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                met = true;
                act(*menu);
                menu->close();
            }
        });
        Click(Column(column), Qt::RightButton);
        EXPECT_TRUE(met);
    }
    void Choose(int column, const QString& path) {
        OnMenu(column, [&](QMenu& menu) {
            QAction* action = Find(menu, path);
            ASSERT_NE(action, nullptr) << path.toStdString();
            ASSERT_TRUE(action->isEnabled()) << path.toStdString();
            action->trigger();
        });
    }
    /// Chooses an entry that opens a dialog and calls `act` on the dialog.
    void ChooseSignal(int column, const QString& entry,
                      const std::function<void(CChangeSignalDialog&)>& answer) {
        QTimer::singleShot(50, [&] {
            auto* dialog = qobject_cast<CChangeSignalDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            answer(*dialog);
            dialog->accept();
        });
        Choose(column, entry);
    }
    int ColumnOf(const std::string& name) {
        for (int n = 0;; ++n) {
            if (Visible(n).RowName() == name) {
                return n;
            }
        }
    }
};

TEST_F(Menu, HasItsEntriesInOrder) {
    Open();
    OnMenu(0, [](QMenu& menu) {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            texts << (action->isSeparator() ? "-" : action->text());
        }
        EXPECT_EQ(texts.join("|").toStdString(),
                  "Change Signal...|Insert Signal...|Delete Signal|Insert Blank|-|Change Base|"
                  "Change Color...|-|Expand|Collapse");
        EXPECT_FALSE(Find(menu, "Expand")->isEnabled()) << "a decoded column";
        EXPECT_FALSE(Find(menu, "Collapse")->isEnabled()) << "a single column";
    });
    EXPECT_TRUE(Visible(0).selected);
}

TEST_F(Menu, OpensOnTheHeaderOnly) {
    Open();
    bool opened = false;
    QTimer::singleShot(0, [&] {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            opened = true;
            menu->close();
        }
    });
    Click(Row(3), Qt::RightButton);
    QApplication::processEvents();
    EXPECT_FALSE(opened);
    EXPECT_NE(document->Marker(2, false), -1);
}

TEST_F(Menu, DeletesTheSelectionAfterAConfirmation) {
    Open();
    const std::string second = Visible(1).RowName();
    prompts.AnswerNext(Answer::No);
    Choose(0, "Delete Signal");
    EXPECT_EQ(prompts.Texts().back(), "Delete selected signal(s)?");
    EXPECT_EQ(Visible(1).RowName(), second);
    prompts.AnswerNext(Answer::Yes);
    Choose(0, "Delete Signal");
    EXPECT_EQ(Visible(0).RowName(), second);
}

TEST_F(Menu, InsertsABlankBeforeTheColumn) {
    Open();
    const std::string old = Visible(1).RowName();
    Choose(1, "Insert Blank");
    EXPECT_EQ(Visible(1).dataIndex, -1);
    EXPECT_EQ(Visible(2).RowName(), old);
}

TEST_F(Menu, ChangesTheBaseOfOneSignal) {
    Open();
    const int bus = ColumnOf("AD[63:0]");
    OnMenu(bus, [](QMenu& menu) {
        EXPECT_TRUE(Find(menu, "Change Base/Hex")->isChecked());
        EXPECT_FALSE(Find(menu, "Change Base/Octal")->isChecked());
    });
    EXPECT_TRUE(Repaints(*view, [&] { Choose(bus, "Change Base/Octal"); }));
    EXPECT_EQ(Visible(bus).radix, Radix::Octal);
    EXPECT_EQ(Visible(bus).width, NeededWidth(Visible(bus), ScreenFonts().body));
    const int octal = Visible(bus).width;
    Choose(bus, "Change Base/Binary");
    EXPECT_GT(Visible(bus).width, 2 * octal) << "otherwise its digits would be cut";
}

TEST_F(Menu, ExpandsABusAndCollapsesLines) {
    Open();
    const int bus = ColumnOf("C/BE[7:0]");
    Choose(bus, "Expand");
    EXPECT_EQ(Visible(bus).RowName(), "C/BE[0]");
    EXPECT_EQ(Visible(bus + 7).RowName(), "C/BE[7]");
    EXPECT_EQ(Visible(bus + 7).width, NeededWidth(Visible(bus + 7), ScreenFonts().body));
    Visible(bus + 5).width = 99;
    Click(Column(bus));
    Click(Column(bus + 1), Qt::LeftButton, Qt::ShiftModifier);
    Choose(bus, "Collapse");
    EXPECT_EQ(Visible(bus).groupWidth, 2U);
    EXPECT_EQ(Visible(bus).width, NeededWidth(Visible(bus), ScreenFonts().body));
    EXPECT_EQ(Visible(bus + 1).RowName(), "C/BE[2]");
    EXPECT_EQ(Visible(bus + 4).width, 99) << "the others keep their width";
}

TEST_F(Menu, ChangesASignalInPlace) {
    Open();
    const int bus = ColumnOf("AD[63:0]");
    ChooseSignal(bus, "Change Signal...", [](CChangeSignalDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>("Name")->currentText(), "AD");
        dialog.findChild<QSpinBox*>("High")->setValue(7);
        dialog.findChild<ColorButton*>()->SetColor(0x010203);
        dialog.findChild<QCheckBox*>()->setChecked(false);
    });
    EXPECT_EQ(Visible(bus).color, 0x010203U);
    EXPECT_FALSE(Visible(bus).showValue);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_TRUE(document->stateList[document->stateList.IndexOf(&Visible(bus)) + i].selected);
    }
    EXPECT_EQ(Visible(bus).RowName(), "AD[7:0]");
    EXPECT_TRUE(Visible(bus).selected);
    const auto row = Visible(bus).GroupRow(300);
    ASSERT_EQ(row.size(), 1U);
    EXPECT_EQ(row[0], 300 & 255) << "with its samples";
    EXPECT_LT(Visible(bus).width, 120) << "and its own width";
}

TEST_F(Menu, InsertsASignalBeforeTheColumn) {
    Open();
    const std::string old = Visible(2).RowName();
    ChooseSignal(2, "Insert Signal...", [](CChangeSignalDialog& dialog) {
        auto* name = dialog.findChild<QComboBox*>("Name");
        name->setCurrentIndex(name->findText("TIME"));
    });
    EXPECT_EQ(Visible(2).RowName(), "TIME");
    EXPECT_EQ(Visible(3).RowName(), old);
    const QScrollBar& bar = Bar(*view, Qt::Horizontal);
    EXPECT_EQ(bar.maximum(),
              window->ColumnsWidth() - (window->width() - window->SampleColumnWidth() - 1));
}

TEST_F(Menu, AccumulatedTimesFollowTheSamplesWhereverTheyAre) {
    Open(-3000, 2999);
    ChooseSignal(0, "Insert Signal...", [](CChangeSignalDialog& dialog) {
        auto* name = dialog.findChild<QComboBox*>("Name");
        ASSERT_GE(name->findText("ACCUM"), 0);
        name->setCurrentIndex(name->findText("ACCUM"));
    });
    // Each sample is 30 ns after the previous one; what a frame shows must not depend on earlier
    // frames.
    const auto picture = [&](std::int64_t sample) {
        view->ScrollToSample(sample);
        return window->grab().toImage();
    };
    const QImage early = picture(100);
    const QImage late = picture(5500);
    EXPECT_EQ(picture(100), early);
    EXPECT_EQ(picture(5500), late);
    EXPECT_NE(early, late);
    SampleRecord other;
    other.bytes[15] = 90;
    document->stateList.LoadSamples(4000, std::span(&other, 1));
    document->UpdateAllViews(nullptr, HintRedraw);
    EXPECT_NE(picture(5500), late) << "with other samples";
}

TEST_F(Menu, AChangeInOneListingAppearsInTheOther) {
    Open();
    auto other = MakeView();
    const auto picture = [&] { return other->findChild<CStateWnd*>()->grab().toImage(); };
    const QImage before = picture();
    Choose(1, "Insert Blank");
    EXPECT_NE(picture(), before);
}

TEST_F(Menu, ColoursTheSelectedColumnsAndTheirDefinitions) {
    Open();
    const int bus = ColumnOf("C/BE[7:0]");
    Click(Column(bus));
    Click(Column(bus + 1), Qt::LeftButton, Qt::ControlModifier);
    const std::uint32_t before = Visible(bus).color = 0x445566;
    QTimer::singleShot(50, [before] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->currentColor(), ColorOf(before)) << "begins with its own colour";
        dialog->setCurrentColor(QColor(0x11, 0x22, 0x33));
        dialog->accept();
    });
    Choose(bus, "Change Color...");
    EXPECT_EQ(Visible(bus).color, 0x332211U);
    EXPECT_EQ(Visible(bus + 1).color, 0x332211U);
    EXPECT_EQ(board.tables.busSignals.FindByName("C/BE")->color, 0x332211U);
}

TEST_F(Menu, ACancelledDialogChangesNothing) {
    Open();
    const std::string old = Visible(2).RowName();
    const std::size_t count = document->stateList.Size();
    for (const char* entry : {"Change Signal...", "Insert Signal..."}) {
        QTimer::singleShot(50, [] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialog->reject();
            }
        });
        Choose(2, entry);
        EXPECT_EQ(Visible(2).RowName(), old);
        EXPECT_EQ(document->stateList.Size(), count);
    }
}

} // namespace
} // namespace busquill::test
