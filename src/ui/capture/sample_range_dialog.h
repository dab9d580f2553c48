#pragma once

#include "capture/sample_range.h"

#include <QDialog>

#include <cstddef>
#include <optional>
#include <string>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

namespace busquill {

class MainThread;
class Prompts;
class WindowTimer;

/// Asks for a range of samples and works on them; missing samples are fetched from the board
/// meanwhile.
class CSampleRangeDialog : public QDialog {
    Q_OBJECT
public:
    void accept() override;
    void reject() override;

protected:
    /// `percent` is the progress that shows before the work begins.
    CSampleRangeDialog(QWidget* parent, const SampleRange& range, int percent, Prompts& prompts,
                       const MainThread& mainThread);

    /// OK is pressed, whether or not the range is valid.
    virtual void OnOk() {}
    /// Begins the work on a range of numbers. A message if that fails.
    [[nodiscard]] virtual std::optional<std::string> Begin(std::int64_t first,
                                                           std::int64_t last) = 0;
    /// Whether the work may have to wait for samples.
    [[nodiscard]] virtual bool Waits() const { return range_.hasSamples; }
    [[nodiscard]] virtual SampleStep Work() = 0;
    [[nodiscard]] virtual int Progress() const = 0;
    /// The number of the next sample.
    [[nodiscard]] virtual std::int64_t NextNumber() const = 0;
    [[nodiscard]] virtual std::string FailureText() const { return {}; }
    /// The work ends before it is done: cancelled, or failed, so that another range can be tried.
    virtual void Abandon(bool failed) = 0;

    /// Above the buttons.
    [[nodiscard]] QVBoxLayout& Rows() const { return *rows_; }
    /// Puts controls that were added to the rows before the fields and after them in the order of
    /// Tab; either may be null.
    void OrderTabs(QWidget* before, QWidget* after);
    const SampleRange range_;

private:
    void ShowAll();
    void SetEditable(bool editable);
    void Tick();
    void Fail(const std::string& message);
    void End();

    Prompts& prompts_;
    bool working_ = false;
    QVBoxLayout* rows_;
    QLineEdit* start_;
    QLineEdit* end_;
    QPushButton* all_;
    QPushButton* ok_;
    QPushButton* cancel_;
    QProgressBar* progress_;
    QLabel* percent_;
    WindowTimer* timer_;
};

} // namespace busquill
