#pragma once

#include <QDialog>

#include <cstdint>

class QLineEdit;

namespace busquill {

class Prompts;

/// Asks how many times a level's condition must hold.
class COccurrenceCountDialog final : public QDialog {
    Q_OBJECT
public:
    COccurrenceCountDialog(QWidget* parent, std::int32_t count, std::uint32_t limit,
                           Prompts& prompts);

    [[nodiscard]] std::int32_t Count() const noexcept { return count_; }

    /// Refuses anything but a number from 1 to the limit, with a message.
    void accept() override;

private:
    Prompts& prompts_;
    std::int32_t count_;
    const std::uint32_t limit_;
    QLineEdit* edit_;
};

} // namespace busquill
