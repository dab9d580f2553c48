#pragma once

#include "signals/value_editor.h"

#include <QDialog>
#include <QFont>

#include <span>

class QRadioButton;

namespace busquill {

/// Shows the digits of an editor and handles the keys that change them.
class CBitEditWnd final : public QWidget {
    Q_OBJECT
public:
    explicit CBitEditWnd(ValueEditor& editor);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    ValueEditor& editor_;
    const QFont font_;
    const int digitWidth_;
};

/// Edits a wide value digit by digit. OK writes it to the caller's bytes.
class CValueDlg final : public QDialog {
    Q_OBJECT
public:
    /// The bytes are little-endian and outlive the dialog. Without a mask all bits are known.
    CValueDlg(QWidget* parent, std::span<std::uint8_t> value, std::span<std::uint8_t> mask,
              unsigned width, std::int32_t radix);

    void accept() override;

private:
    const std::span<std::uint8_t> value_;
    const std::span<std::uint8_t> mask_;
    ValueEditor editor_;
    CBitEditWnd* bits_;
};

} // namespace busquill
