#pragma once

#include "capture/trace_writer.h"

#include <QDialog>

#include <memory>
#include <string>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace busquill {

class CTesselDoc;
class MainThread;
class Prompts;
class WindowTimer;

/// Asks for a range of samples and saves it; missing samples are fetched from the board meanwhile.
class CSaveTraceDialog final : public QDialog {
    Q_OBJECT
public:
    CSaveTraceDialog(QWidget* parent, CTesselDoc& document, std::string path, Prompts& prompts,
                     const MainThread& mainThread);
    ~CSaveTraceDialog() override;

    void accept() override;
    void reject() override;

private:
    void ShowAll();
    void SetEditable(bool editable);
    void Tick();
    void Fail(const std::string& message);

    CTesselDoc& document_;
    const std::string path_;
    Prompts& prompts_;
    std::unique_ptr<TraceFileWriter> writer_; // a new one for each attempt
    bool saving_ = false;
    QLineEdit* start_;
    QLineEdit* end_;
    QPushButton* all_;
    QPushButton* ok_;
    QProgressBar* progress_;
    QLabel* percent_;
    WindowTimer* timer_;
};

} // namespace busquill
