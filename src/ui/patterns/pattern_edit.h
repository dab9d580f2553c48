#pragma once

#include <QLineEdit>

#include <array>
#include <cstdint>

namespace busquill {

/// A value of up to 64 known bits, shown in hex. The left button or Space opens the dialog that
/// changes it.
class CPatternEdit : public QLineEdit {
    Q_OBJECT
public:
    explicit CPatternEdit(QWidget* parent = nullptr);

    /// At most 64 bits.
    void SetWidth(unsigned bits);
    [[nodiscard]] std::uint64_t Value() const noexcept;
    void SetValue(std::uint64_t value);

    /// Wide enough for the widest digits of 64 bits.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Ignored: the first press has already opened the dialog.
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}

    /// What the field shows of its value.
    [[nodiscard]] virtual QString Shown() const;
    void Refresh();

private:
    void Edit();

    std::array<std::uint8_t, 8> bytes_{}; // little-endian
    unsigned width_ = 64;
};

} // namespace busquill
