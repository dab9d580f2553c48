#pragma once

#include <QPushButton>

#include <cstdint>

namespace busquill {

/// A button that shows a line in a style, 0 to 4; a click on it opens a menu of all five.
class CPenStyleButton final : public QPushButton {
    Q_OBJECT
public:
    explicit CPenStyleButton(QWidget* parent = nullptr);

    [[nodiscard]] std::int32_t Style() const noexcept { return style_; }
    void SetStyle(std::int32_t style);

    [[nodiscard]] QSize sizeHint() const override { return {60, 26}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void OpenMenu();

    std::int32_t style_ = 0;
};

} // namespace busquill
