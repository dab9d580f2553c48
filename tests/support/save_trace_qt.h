#pragma once

#include "support/modal_qt.h"
#include "ui/capture/save_trace_dialog.h"

#include <filesystem>

namespace busquill::test {

/// Sets the range of samples in Save Trace.
inline void SetSaveRange(const CSaveTraceDialog& dialog, const QString& start, const QString& end) {
    dialog.findChild<QLineEdit*>("Start")->setText(start);
    dialog.findChild<QLineEdit*>("End")->setText(end);
}

/// Enters a path in the file dialog that `choose` opens, calls `act` on Save Trace, which opens
/// next, and presses its OK. A file that is there is replaced. Returns the name that the file
/// dialog proposed.
inline std::string SaveTraceUnder(
    const std::string& path, const std::function<void()>& choose,
    const std::function<void(CSaveTraceDialog&)>& act = [](CSaveTraceDialog&) {}) {
    std::string proposed = "(no file dialog)";
    bool isNamed = false;
    bool isSaved = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* files = qobject_cast<QFileDialog*>(modal); files != nullptr && !isNamed) {
            isNamed = true;
            proposed = files->findChild<QLineEdit*>("fileNameEdit")->text().toStdString();
            (std::filesystem::exists(path) ? ReplaceFile : GiveFileName)(*files, path);
        } else if (auto* dialog = qobject_cast<CSaveTraceDialog*>(modal);
                   dialog != nullptr && !isSaved) {
            isSaved = true;
            act(*dialog);
            Press(*dialog, "OK");
        }
    });
    timer.start(5);
    choose();
    EXPECT_TRUE(isSaved) << "nothing has been saved";
    return proposed;
}

} // namespace busquill::test
