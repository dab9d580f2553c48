#pragma once

#include "support/program_fixture_qt.h"
#include "ui/analysis/panel_table.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QtTest/QTest>

#include <stdexcept>
#include <string>
#include <vector>

namespace busquill::test {

/// The program in Demo Mode with stored captures, and a panel beside them.
class StoredCaptureFixture : public ProgramFixture {
protected:
    StoredCaptureFixture() {
        StartDemo();
        Frame().resize(1100, 800);
        Frame().activateWindow();
    }
    CChildFrame& Open(const std::string& name) {
        if (program->App().OpenDocumentFile(dir.File(name)) == nullptr) {
            throw std::runtime_error("cannot open " + name);
        }
        Settle();
        return ActiveFrame();
    }
    CChildFrame& ActiveFrame() {
        return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    }
    /// Panels follow before the program waits for an event.
    void Settle() {
        QApplication::processEvents();
        Frame().RefreshCommands();
        QApplication::processEvents();
    }
    static std::string Clipboard() { return QApplication::clipboard()->text().toStdString(); }
    /// The sample in the middle of a window of the capture.
    static std::int64_t Center(const CChildFrame& frame) {
        return frame.TraceView().CenterSample();
    }
};

/// How a panel and its parts are called.
struct PanelNames {
    const char* title; // in the menu Analyze too
    const char* table;
    const char* reason;
    const char* summary = "";
    const char* line = "";
    const char* mistake = "";
};

constexpr PanelNames transactionNames{"Transactions",      "TransactionTable",
                                      "TransactionReason", "TransactionSummary",
                                      "TransactionFilter", "FilterMistake"};
constexpr PanelNames findingNames{"Findings and Hits", "FindingTable",  "FindingReason",
                                  "FindingSummary",    "HitExpression", "HitMistake"};
constexpr PanelNames bookmarkNames{"Bookmarks", "BookmarkTable", "BookmarkNote"};

/// A panel with a table, and what a user does with it. `Rows` is the model of the table.
template <typename Fixture, typename RowModel>
class PanelFixture : public Fixture {
protected:
    explicit PanelFixture(const PanelNames& names) : names_(names) {}

    /// Opens the panel by the menu, or closes it.
    void SwitchPanel() { this->Choose(QString("Analyze/") + names_.title); }
    /// Opens the panel and waits until it has its rows.
    void OpenPanel() {
        SwitchPanel();
        ASSERT_TRUE(Dock().isVisible());
        this->Frame().RefreshCommands();
        ASSERT_TRUE(Settled());
    }
    bool Settled() {
        return QTest::qWaitFor([&] { return Table().model() == nullptr || !IsWorking(); });
    }
    QDockWidget& Dock() { return *this->Frame().template findChild<QDockWidget*>(names_.title); }
    PanelTable& Table() { return *Dock().template findChild<PanelTable*>(names_.table); }
    RowModel& Model() { return dynamic_cast<RowModel&>(*Table().model()); }
    int Rows() { return Table().model() == nullptr ? 0 : Table().model()->rowCount(); }
    int CurrentRow() { return Table().currentIndex().row(); }
    std::string Cell(int row, int column) {
        return Table().model()->index(row, column).data().toString().toStdString();
    }
    std::vector<std::string> Column(int column) {
        std::vector<std::string> texts;
        texts.reserve(static_cast<std::size_t>(Rows()));
        for (int row = 0; row < Rows(); ++row) {
            texts.push_back(Cell(row, column));
        }
        return texts;
    }
    void ClickCell(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
        const QModelIndex index = Table().model()->index(row, column);
        Table().scrollTo(index);
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, modifiers,
                          Table().visualRect(index).center());
    }
    /// Why the table has no rows; empty while it shows.
    std::string Reason() {
        const QLabel& reason = Label(names_.reason);
        return reason.isVisible() ? reason.text().toStdString() : "";
    }
    std::string Summary() { return Label(names_.summary).text().toStdString(); }
    std::string Mistake() { return Label(names_.mistake).text().toStdString(); }
    QComboBox& Line() { return *Dock().template findChild<QComboBox*>(names_.line); }
    /// Clicks into the line and types over it.
    void Type(const QString& text) {
        QTest::mouseClick(Line().lineEdit(), Qt::LeftButton, {}, {5, 5});
        QTest::keyClick(&Line(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&Line(), Qt::Key_Delete);
        QTest::keyClicks(&Line(), text);
    }
    void Give(const QString& text) {
        Type(text);
        QTest::keyClick(&Line(), Qt::Key_Return);
        ASSERT_TRUE(Settled());
        // A list of words had the keyboard.
        this->Frame().activateWindow();
        Line().setFocus();
        QApplication::processEvents();
        this->Frame().RefreshCommands();
    }

private:
    QLabel& Label(const char* name) { return *Dock().template findChild<QLabel*>(name); }
    bool IsWorking() {
        if constexpr (requires(RowModel & rows) { rows.IsWorking(); }) {
            return Model().IsWorking();
        }
        return false;
    }

    const PanelNames names_;
};

} // namespace busquill::test
