#pragma once

#include <QDialog>

#include <cstdint>

class QSpinBox;

namespace busquill {

/// Asks for the number of a sample, as the listing shows it.
class CGoToSampleDlg final : public QDialog {
    Q_OBJECT
public:
    explicit CGoToSampleDlg(QWidget* parent);

    [[nodiscard]] std::int64_t Number() const;

private:
    QSpinBox* number_;
};

/// The index of the sample with a number, or of the nearest one; -1 in an empty capture.
[[nodiscard]] std::int64_t SampleOfNumber(std::int64_t number, std::int64_t firstNumber,
                                          std::int64_t count) noexcept;

} // namespace busquill
