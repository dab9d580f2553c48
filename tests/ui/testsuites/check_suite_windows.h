#pragma once

#include "support/board_line_fixture_qt.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/backplane_document.h"
#include "ui/controls/check_tree.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/view.h"
#include "ui/testsuites/anomaly_child.h"
#include "ui/testsuites/backplane_child.h"

#include <QListWidget>
#include <QToolButton>

namespace busquill::test {

/// The windows of anomaly detection and the backplane test in the whole program, on a scripted
/// line.
class CheckSuiteWindows : public BoardLineFixture {
protected:
    template <class Child>
    void Open(const char* entry) {
        Choose(QString("File/New/%1").arg(entry));
        window = dynamic_cast<Child*>(Frame().Area().activeSubWindow());
        ASSERT_NE(window, nullptr);
    }
    void OpenAnomaly() { Open<CAnomalyDetectionChild>("Anomaly Detection"); }
    void OpenBackplane() { Open<CBackplaneTestChild>("Backplane Test"); }
    /// The window after the board got its check list.
    void OpenQuietAnomaly() {
        OpenAnomaly();
        ASSERT_TRUE(RunUntil([&] { return !TakeWrites().empty(); }));
    }
    CView& View() { return *window->GetActiveView(); }
    CCheckTree& Tree() { return *window->findChild<CCheckTree*>(); }
    QListWidget& List() { return *window->findChild<QListWidget*>(); }
    CAnomalyDetectionDoc& Anomalies() {
        return static_cast<CAnomalyDetectionDoc&>(window->GetDocument());
    }
    CBackplaneTestDoc& Backplane() {
        return static_cast<CBackplaneTestDoc&>(window->GetDocument());
    }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (int row = 0; row < List().count(); ++row) {
            lines.push_back(List().item(row)->text().toStdString());
        }
        return lines;
    }
    int Ticked() {
        int count = 0;
        for (int row = 0; row < Tree().RowCount(); ++row) {
            count += Tree().IsChecked(row) ? 1 : 0;
        }
        return count;
    }
    void ClickBox(int row) { ClickAt(row, 8); }
    void ClickText(int row) { ClickAt(row, 40); }
    void Bar(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(name), Qt::LeftButton);
    }
    RunPicture Picture() { return dynamic_cast<CGoStopChild*>(window)->RunState(); }
    /// "1532: 00ff...", those since the last call.
    std::vector<std::string> TakeWrites() {
        std::vector<std::string> writes;
        line->Do([&] {
            for (const auto& write : board.writes) {
                const auto hex = QByteArray(reinterpret_cast<const char*>(write.bytes.data()),
                                            static_cast<qsizetype>(write.bytes.size()))
                                     .toHex();
                writes.push_back(std::to_string(write.address) + ": " + hex.toStdString());
            }
            board.writes.clear();
        });
        return writes;
    }
    void UseFile(const char* button, const std::string& path) {
        AnswerDialog<QFileDialog>([&] { Press(View(), button); },
                                  [&](QFileDialog& files) { GiveFileName(files, path); });
    }
    void ResizeView(int width, int height) {
        View().setMinimumSize(width, height);
        View().setMaximumSize(width, height);
        QApplication::processEvents();
    }
    void EnlargeFrame() {
        Frame().resize(1500, 1000);
        QApplication::processEvents();
    }

    CMDIChildWnd* window = nullptr;

private:
    void ClickAt(int row, int x) {
        Tree().scrollToItem(&Tree().Item(row));
        const QRect item = Tree().visualItemRect(&Tree().Item(row));
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          {item.left() + x, item.center().y()});
    }
};

} // namespace busquill::test
