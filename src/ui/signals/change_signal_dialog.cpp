#include "ui/signals/change_signal_dialog.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "signals/signal.h"
#include "ui/controls/color_button.h"
#include "ui/controls/number_field.h"
#include "ui/framework/help_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

enum Type { TypeAll, TypeBus, TypeDecoded, TypeDefined };
/// The type chosen last; it is kept for the next dialog.
int lastType = TypeAll; // main thread

constexpr int nameCharacters = 20;

std::string RangeName(const CBusSignalDef& def, std::int32_t high, std::int32_t low) {
    return def.Width() > 1 ? Printf("%s[%d:%d]", def.name.c_str(), high, low) : def.name;
}

} // namespace

/// A number whose arrows stay within a definition's positions, while anything can be typed.
class CChangeSignalDialog::RangeField final : public NumberField {
public:
    explicit RangeField(const char* name) {
        setObjectName(name);
        Clear();
    }
    void Offer(int first, int last, int present) {
        first_ = first;
        last_ = last;
        setEnabled(true);
        setSpecialValueText("");
        setValue(present);
    }
    void Clear() {
        // The smallest value means "no number".
        setSpecialValueText(" ");
        setValue(minimum());
        setEnabled(false);
    }
    void stepBy(int steps) override {
        const std::int64_t next = std::int64_t{value()} + steps;
        setValue(static_cast<int>(std::clamp<std::int64_t>(next, first_, last_)));
    }

private:
    int first_ = 0;
    int last_ = 0;
};

CChangeSignalDialog::CChangeSignalDialog(QWidget* parent, SignalTables& tables, CSignal* signal,
                                         std::uint32_t mode, Prompts& prompts)
    : QDialog(parent), tables_(tables), signal_(signal), mode_(mode), prompts_(prompts),
      type_(new QComboBox), name_(new QComboBox), high_(new RangeField("High")),
      low_(new RangeField("Low")), radix_(new QComboBox),
      showValue_(new QCheckBox("Show Trace Values")), color_(new ColorButton) {
    setWindowTitle("Change Signal");
    SetHelpPage(*this, "listing.md#changing-the-columns");
    if (signal_ != nullptr) {
        radix = signal_->radix;
        showValue = signal_->showValue;
        color = signal_->color;
    }
    type_->setObjectName("Type");
    type_->addItems({"ALL", "BUS", "DECODED", "DEFINED"});
    type_->setCurrentIndex(lastType);
    name_->setObjectName("Name");
    name_->setMinimumContentsLength(nameCharacters);
    radix_->setObjectName("Radix");
    radix_->addItems({"Binary", "Hex", "Octal"});
    radix_->setCurrentIndex(radix == Radix::Binary || radix == Radix::Octal ? radix : Radix::Hex);
    showValue_->setChecked(showValue);
    color_->SetColor(color);

    auto* range = new QHBoxLayout;
    range->addWidget(new QLabel("["));
    range->addWidget(high_, 1);
    range->addWidget(new QLabel(":"));
    range->addWidget(low_, 1);
    range->addWidget(new QLabel("]"));
    auto* rows = new QFormLayout;
    rows->addRow("Type", type_);
    rows->addRow("Name", name_);
    rows->addRow("Range", range);
    rows->addRow("Radix", radix_);
    rows->addRow("", showValue_);
    rows->addRow("Color", color_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(buttons, &QDialogButtonBox::accepted, this, &CChangeSignalDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CChangeSignalDialog::reject);
    FillNames();
    if (signal_ != nullptr) {
        showValue_->setChecked(showValue);
    }
    // A row may be none of the entries, or only a part of one. OK must not replace it by the
    // preselected entry unless the user has chosen that.
    chosen_ = signal_ == nullptr;
    const auto choose = [this] { chosen_ = true; };
    connect(type_, &QComboBox::activated, this, [this](int index) {
        if (index != lastType) {
            lastType = index;
            chosen_ = true;
            FillNames();
        }
    });
    connect(name_, &QComboBox::currentIndexChanged, this, &CChangeSignalDialog::NameSelected);
    connect(name_, &QComboBox::currentIndexChanged, this, choose);
    connect(name_, &QComboBox::activated, this, choose); // choosing the same name counts too
    connect(high_, &QSpinBox::valueChanged, this, choose);
    connect(low_, &QSpinBox::valueChanged, this, choose);
}

CChangeSignalDialog::~CChangeSignalDialog() = default;

const CSignalDef* CChangeSignalDialog::Selected() const {
    const auto index = static_cast<std::size_t>(name_->currentIndex());
    return index < offered_.size() ? offered_[index].get() : nullptr;
}

/// Whether the definition is the one to preselect: the row's own, or the bus whose lines it
/// decodes.
bool CChangeSignalDialog::IsPreselected(const CSignalDef& def) const {
    if (signal_ == nullptr) {
        return false;
    }
    const bool isDecoded = dynamic_cast<const CDecodedSignalDef*>(&def) != nullptr;
    return isDecoded ? signal_->decoded &&
                           def.name == (signal_->grouped ? signal_->groupName : signal_->baseName)
                     : def.name == signal_->baseName;
}

void CChangeSignalDialog::FillNames() {
    const QSignalBlocker quiet(name_);
    name_->clear();
    offered_.clear();
    int current = 0;
    const auto offer = [&](const auto& defs) {
        for (const auto& def : defs) {
            if ((def->FlagsFor(mode_) & flagNotOffered) == 0) {
                current = IsPreselected(*def) ? name_->count() : current;
                name_->addItem(QString::fromStdString(def->name));
                offered_.push_back(def);
            }
        }
    };
    const int type = type_->currentIndex();
    if (type == TypeAll || type == TypeBus) {
        offer(tables_.busSignals.Defs());
    }
    if (type == TypeAll || type == TypeDecoded) {
        offer(tables_.decodedSignals.Defs());
    }
    if (!offered_.empty()) {
        name_->setCurrentIndex(current);
        NameSelected();
    }
}

void CChangeSignalDialog::NameSelected() {
    const auto* bus = dynamic_cast<const CBusSignalDef*>(Selected());
    if (bus == nullptr || bus->Width() == 1) {
        high_->Clear();
        low_->Clear();
    } else {
        high_->Offer(bus->firstPosition, bus->lastPosition, bus->lastPosition);
        low_->Offer(bus->firstPosition, bus->lastPosition, bus->firstPosition);
    }
    showValue_->setChecked(bus == nullptr || bus->Width() > 1);
}

void CChangeSignalDialog::accept() {
    color = color_->Color();
    const int index = radix_->currentIndex();
    radix = index == 0 ? Radix::Binary : index == 2 ? Radix::Octal : Radix::Hex;
    showValue = showValue_->isChecked();
    std::string currentName;
    if (signal_ != nullptr) {
        signal_->color = color;
        signal_->decoded ? tables_.decodedSignals.SetColor(signal_->decoded->name, color)
                         : tables_.busSignals.SetColor(signal_->baseName, color);
        signal_->radix = radix;
        signal_->showValue = showValue;
        currentName = signal_->RowName();
    }
    const CSignalDef* def = chosen_ ? Selected() : nullptr;
    if (const auto* bus = dynamic_cast<const CBusSignalDef*>(def)) {
        if (!ChooseBus(*bus, currentName)) {
            return;
        }
    } else if (def != nullptr && (signal_ == nullptr || def->name != currentName)) {
        chosenDef = offered_[static_cast<std::size_t>(name_->currentIndex())];
    }
    QDialog::accept();
}

/// False when the range is wrong; the user has then been told.
bool CChangeSignalDialog::ChooseBus(const CBusSignalDef& def, const std::string& currentName) {
    const bool hasRange = def.Width() > 1;
    firstBit = hasRange ? low_->value() : def.firstPosition;
    lastBit = hasRange ? high_->value() : def.lastPosition;
    const auto refuse = [&](const std::string& why) {
        prompts_.Message(why);
        return false;
    };
    if (firstBit < def.firstPosition) {
        return refuse(Printf("LSB must be >= %d.", def.firstPosition));
    }
    if (lastBit > def.lastPosition) {
        return refuse(Printf("MSB must be <= %d.", def.lastPosition));
    }
    if (lastBit < firstBit) {
        return refuse("MSB must be >= LSB.");
    }
    if (signal_ == nullptr || RangeName(def, lastBit, firstBit) != currentName) {
        chosenDef = offered_[static_cast<std::size_t>(name_->currentIndex())];
    }
    return true;
}

} // namespace busquill
