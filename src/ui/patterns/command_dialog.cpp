#include "ui/patterns/command_dialog.h"

#include "signals/signal_tables.h"
#include "ui/framework/help_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

using Codes = std::array<std::uint8_t, 4>;

constexpr std::size_t commandBits = 64; // C/BE[3:0] begins here; the second command follows it
constexpr Codes dualAddress = {CodeOne, CodeZero, CodeOne, CodeOne}; // 13, lowest bit first

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
                               std::optional<std::size_t> shown, bool hasDualAddress)
    : QDialog(parent), def_(def), values_(new QComboBox), dac_(new QCheckBox("DAC")) {
    setWindowTitle("Command");
    SetHelpPage(*this, "search.md#patterns");
    int selected = -1; // the bits of a cell may match no value of the list
    const bool isDual = hasDualAddress && shown && IsDual(def.values[*shown]);
    for (std::size_t i = 0; i < def.values.size(); ++i) {
        const CDecodedValue& value = def.values[i];
        if (hasDualAddress && IsDual(value)) {
            continue;
        }
        values_->addItem(value.label == nullptr ? "" : value.label);
        offered_.push_back(i);
        if (isDual ? Command(value) == SecondCommand(def.values[*shown]) : i == shown) {
            selected = values_->count() - 1;
        }
    }
    values_->setCurrentIndex(selected);
    dac_->setChecked(isDual);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(values_);
    layout->addWidget(dac_);
    layout->addWidget(buttons);
    dac_->setVisible(hasDualAddress);
    // Not every command has a form with a dual address cycle.
    const auto offerDual = [this] { dac_->setEnabled(Dual().has_value()); };
    offerDual();
    connect(values_, &QComboBox::currentIndexChanged, this, offerDual);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

std::optional<std::size_t> CCommandDialog::Plain() const {
    const auto index = static_cast<std::size_t>(values_->currentIndex());
    return index < offered_.size() ? std::optional(offered_[index]) : std::nullopt;
}

std::optional<std::size_t> CCommandDialog::Dual() const {
    const auto plain = Plain();
    for (std::size_t i = 0; plain && i < def_.values.size(); ++i) {
        if (IsDual(def_.values[i]) &&
            SecondCommand(def_.values[i]) == Command(def_.values[*plain])) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> CCommandDialog::Chosen() const {
    return dac_->isEnabled() && dac_->isChecked() ? Dual() : Plain();
}

} // namespace busquill
