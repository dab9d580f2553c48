#pragma once

#include <QPushButton>

#include <cstdint>
#include <optional>

namespace busquill {

/// A button that shows a colour; a click on it asks for another one.
class ColorButton final : public QPushButton {
    Q_OBJECT
public:
    explicit ColorButton(QWidget* parent = nullptr);

    /// As 0x00BBGGRR.
    [[nodiscard]] std::uint32_t Color() const noexcept { return color_; }
    void SetColor(std::uint32_t color);

    [[nodiscard]] QSize sizeHint() const override { return {60, 26}; }

signals:
    /// The user has chosen a colour.
    void ColorChosen();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Choose();

    std::uint32_t color_ = 0;
};

/// Asks for a colour, starting from `color`; nothing when the user cancels.
[[nodiscard]] std::optional<std::uint32_t> AskColor(QWidget* parent, std::uint32_t color);

} // namespace busquill
