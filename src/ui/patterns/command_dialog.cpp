#include "ui/patterns/command_dialog.h"

#include "signals/signal_tables.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

using Codes = std::array<std::uint8_t, 4>;

constexpr std::size_t commandBits = 64; // C/BE[3:0], with the second command above it
constexpr Codes dualAddress = {CodeOne, CodeZero, CodeOne, CodeOne}; // 13, from its lowest bit

Codes CodesAt(const CDecodedValue& value, std::size_t first) {
    Codes codes{};
    std::copy_n(value.pattern.begin() + static_cast<std::ptrdiff_t>(first), codes.size(),
                codes.begin());
    return codes;
}

Codes Command(const CDecodedValue& value) {
    return CodesAt(value, commandBits);
}
Codes SecondCommand(const CDecodedValue& value) {
    return CodesAt(value, commandBits + 4);
}
bool IsDual(const CDecodedValue& value) {
    return Command(value) == dualAddress;
}

} // namespace

CCommandDialog::CCommandDialog(QWidget* parent, const CDecodedSignalDef& def,
                               const std::string& label, bool hasDualAddress)
    : QDialog(parent), def_(def), values_(new QComboBox), dac_(new QCheckBox("DAC")) {
    setWindowTitle("Command");
    const auto shown =
        std::find_if(def.values.begin(), def.values.end(), [&](const CDecodedValue& value) {
            return value.label != nullptr && value.label == label;
        });
    const bool isDual = hasDualAddress && shown != def.values.end() && IsDual(*shown);
    for (std::size_t i = 0; i < def.values.size(); ++i) {
        const CDecodedValue& value = def.values[i];
        if (hasDualAddress && IsDual(value)) {
            continue;
        }
        values_->addItem(value.label == nullptr ? "" : value.label);
        offered_.push_back(i);
        const bool isPlain = isDual && Command(value) == SecondCommand(*shown);
        if (isPlain || (shown != def.values.end() && &value == &*shown)) {
            values_->setCurrentIndex(values_->count() - 1);
        }
    }
    dac_->setChecked(isDual);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(values_);
    layout->addWidget(dac_);
    layout->addWidget(buttons);
    dac_->setVisible(hasDualAddress);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

std::optional<std::size_t> CCommandDialog::Chosen() const {
    const auto index = static_cast<std::size_t>(values_->currentIndex());
    if (index >= offered_.size()) {
        return std::nullopt;
    }
    const std::size_t plain = offered_[index];
    if (dac_->isChecked()) {
        for (std::size_t i = 0; i < def_.values.size(); ++i) {
            if (IsDual(def_.values[i]) &&
                SecondCommand(def_.values[i]) == Command(def_.values[plain])) {
                return i;
            }
        }
    }
    return plain;
}

} // namespace busquill
