#include "ui/performance/performance_setup_dialog.h"

#include "performance/performance_setup_file.h"
#include "platform/prompts.h"
#include "platform/working_directory.h"
#include "ui/controls/color_button.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"
#include "ui/patterns/pattern_edit.h"
#include "ui/performance/pen_style_button.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFontMetrics>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int addressHeight = 12;
constexpr int addressDigits = 16;
constexpr int addressMargin = 12; // of a field, left and right of its digits together

enum RowColumn {
    letterColumn,
    itemColumn,
    cycleColumn,
    lowColumn,
    highColumn,
    colorColumn,
    styleColumn
};

QString Shown(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Selects the entry with a number; none if there is no such entry.
void Select(QComboBox& list, int number) {
    list.setCurrentIndex(list.findData(number));
}

/// The number of the selected entry, or `otherwise` if none is.
std::int32_t Selected(const QComboBox& list, std::int32_t otherwise) {
    return list.currentIndex() < 0 ? otherwise : list.currentData().toInt();
}

} // namespace

/// An address, which a click opens for editing. Without an item there is none.
class AddressField final : public CPatternEdit {
public:
    AddressField() {
        setFont(FontOfCellHeight(addressHeight, QFont::Normal, FontFace::Fixed));
        setFixedWidth(fontMetrics().horizontalAdvance(QString(addressDigits, '0')) + addressMargin);
    }

    void SetAddress(const std::array<std::uint8_t, 8>& address) {
        std::uint64_t value = 0;
        for (std::size_t i = address.size(); i-- > 0;) {
            value = value << 8 | address[i];
        }
        SetValue(value);
    }
    [[nodiscard]] std::array<std::uint8_t, 8> Address() const {
        std::array<std::uint8_t, 8> address{};
        for (std::size_t i = 0; i < address.size(); ++i) {
            address[i] = static_cast<std::uint8_t>(Value() >> (8 * i));
        }
        return address;
    }

protected:
    [[nodiscard]] QString Shown() const override {
        return isEnabled() ? QString::fromStdString(PerformanceAddressText(Address())) : QString();
    }
    void changeEvent(QEvent* event) override {
        CPatternEdit::changeEvent(event);
        if (event->type() == QEvent::EnabledChange) {
            Refresh();
        }
    }
};

CPerformanceSetupDialog::CPerformanceSetupDialog(QWidget* parent, PerformanceSetup& setup,
                                                 Parts parts)
    : QDialog(parent), setup_(setup), edited_(setup), parts_(std::move(parts)) {
    setWindowTitle("Performance Setup");
    SetHelpPage(*this, "performance.md#setups");
    name_ = new QLineEdit;
    name_->setObjectName("Name");
    connect(name_, &QLineEdit::textEdited, this, [this] { nameTyped_ = true; });

    auto* nameField = new QFormLayout;
    nameField->addRow("Name", name_);
    auto* fields = new QVBoxLayout;
    fields->addLayout(nameField);
    fields->addWidget(MakeDisplayGroup());
    fields->addLayout(MakeRows());
    fields->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(fields, 1);
    layout->addLayout(MakeButtons());
    ShowControls();
}

QGroupBox* CPerformanceSetupDialog::MakeDisplayGroup() {
    auto* group = new QGroupBox("Display");
    interval_ = new QComboBox;
    interval_->setObjectName("Update Interval");
    for (const std::int32_t interval : performanceIntervals) {
        interval_->addItem(QString::fromStdString(PerformanceIntervalText(interval)), interval);
    }
    interval_->setMaxVisibleItems(static_cast<int>(performanceIntervals.size()));
    bar_ = new QRadioButton("&Bar Chart");
    pie_ = new QRadioButton("&Pie Chart");
    grid_ = new QCheckBox("&Grid");
    auto* layout = new QHBoxLayout(group);
    layout->addWidget(new QLabel("Update Interval"));
    layout->addWidget(interval_);
    layout->addStretch();
    layout->addWidget(bar_);
    layout->addWidget(pie_);
    layout->addStretch();
    layout->addWidget(grid_);
    return group;
}

QLayout* CPerformanceSetupDialog::MakeRows() {
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel("Item"), 0, itemColumn);
    grid->addWidget(new QLabel("Cycle"), 0, cycleColumn);
    grid->addWidget(new QLabel("Address Range"), 0, lowColumn, 1, 2);
    grid->addWidget(new QLabel("Color"), 0, colorColumn);
    grid->addWidget(new QLabel("Style"), 0, styleColumn);
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        const Row& row = rows_[index] = MakeRow(index);
        const int line = static_cast<int>(index) + 1;
        grid->addWidget(new QLabel(QString(QChar('A' + static_cast<int>(index)))), line,
                        letterColumn);
        grid->addWidget(row.item, line, itemColumn);
        grid->addWidget(row.cycle, line, cycleColumn);
        grid->addWidget(row.low, line, lowColumn);
        grid->addWidget(row.high, line, highColumn);
        grid->addWidget(row.color, line, colorColumn);
        grid->addWidget(row.style, line, styleColumn);
    }
    grid->setColumnStretch(itemColumn, 1);
    grid->setColumnStretch(cycleColumn, 1);
    return grid;
}

CPerformanceSetupDialog::Row CPerformanceSetupDialog::MakeRow(std::size_t index) {
    const Row row{new QComboBox,    new QComboBox,   new AddressField,
                  new AddressField, new ColorButton, new CPenStyleButton};
    const auto items = PerformanceTypeOf(edited_.type).items;
    for (std::size_t item = 0; item < items.size(); ++item) {
        row.item->addItem(Shown(items[item]), static_cast<int>(item));
    }
    const auto cycles = PerformanceCycles(parts_.board);
    for (std::size_t code = 0; code < cycles.size(); ++code) {
        if (!cycles[code].empty()) {
            row.cycle->addItem(Shown(cycles[code]), static_cast<int>(code));
        }
    }
    row.cycle->setMaxVisibleItems(row.cycle->count());
    row.color->setAutoDefault(false);
    row.style->setAutoDefault(false);
    connect(row.item, &QComboBox::currentIndexChanged, this,
            [this, index] { ShowAddresses(rows_[index]); });

    const auto name = [index](QWidget* widget, const char* what) {
        const QString letter(QChar('A' + static_cast<int>(index)));
        widget->setObjectName(QString("%1 %2").arg(what, letter));
        widget->setAccessibleName(widget->objectName());
    };
    name(row.item, "Item");
    name(row.cycle, "Cycle");
    name(row.low, "Low Address");
    name(row.high, "High Address");
    name(row.color, "Color");
    name(row.style, "Line Style");
    return row;
}

QLayout* CPerformanceSetupDialog::MakeButtons() {
    auto* buttons = new QVBoxLayout;
    const auto add = [&](const QString& text, std::function<void()> act) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, std::move(act));
        buttons->addWidget(button);
        return button;
    };
    add("OK", [this] { accept(); })->setDefault(true);
    add("Cancel", [this] { reject(); });
    buttons->addSpacing(fontMetrics().height());
    QPushButton* wizard = add("Setup &Wizard", [] {});
    wizard->setEnabled(false);
    wizard->setToolTip("There is no wizard for performance");
    add("&Load", [this] { OnLoad(); });
    add("&Save", [this] { OnSave(); });
    add("&Clear", [this] { OnClear(); });
    buttons->addStretch();
    add("&Help", parts_.showHelp);
    return buttons;
}

void CPerformanceSetupDialog::ShowAddresses(const Row& row) {
    const bool counts = Selected(*row.item, 0) >= 1;
    row.low->setEnabled(counts);
    row.high->setEnabled(counts);
}

void CPerformanceSetupDialog::ShowControls() {
    const bool named = edited_.setupName != PerformanceSetup::unnamed;
    name_->setText(named ? QString::fromStdString(edited_.setupName) : QString());
    Select(*interval_, edited_.updateInterval);
    (edited_.chartType == PerformancePieChart ? pie_ : bar_)->setChecked(true);
    grid_->setChecked(edited_.grid);
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        const Row& row = rows_[index];
        const PerformanceItem& item = edited_.items[index];
        Select(*row.item, item.item);
        Select(*row.cycle, item.cycle);
        row.low->SetAddress(item.lowAddress);
        row.high->SetAddress(item.highAddress);
        row.color->SetColor(item.color);
        row.style->SetStyle(item.style);
        ShowAddresses(row);
    }
}

/// What a list does not offer stays as it was.
void CPerformanceSetupDialog::ReadControls() {
    const std::string name = name_->text().toStdString();
    edited_.setupName = name.empty() ? PerformanceSetup::unnamed : name;
    edited_.updateInterval = Selected(*interval_, edited_.updateInterval);
    edited_.chartType = pie_->isChecked() ? PerformancePieChart : PerformanceBarChart;
    edited_.grid = grid_->isChecked();
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        const Row& row = rows_[index];
        PerformanceItem& item = edited_.items[index];
        item.item = Selected(*row.item, item.item);
        item.cycle = Selected(*row.cycle, item.cycle);
        item.lowAddress = row.low->Address();
        item.highAddress = row.high->Address();
        item.color = row.color->Color();
        item.style = row.style->Style();
    }
}

bool CPerformanceSetupDialog::Load(const std::string& name) {
    const std::string shown = name_->text().toStdString();
    const bool loaded = LoadPerformanceSetup(edited_, parts_.folder, name, parts_.prompts);
    edited_.setupName = loaded ? name : shown;
    nameTyped_ = nameTyped_ && !loaded;
    ShowControls();
    return loaded;
}

void CPerformanceSetupDialog::OnLoad() {
    const std::string path = AskForFile(this,
                                        {FileUse::Open, "Open Performance Setup", "Setups (*.psu)",
                                         ".psu", parts_.folder.Path(), ""},
                                        parts_.prompts);
    if (!path.empty()) {
        Load(std::string(BaseNameOf(path)));
    }
}

void CPerformanceSetupDialog::OnSave() {
    if (name_->text().isEmpty()) {
        parts_.prompts.Message("Please enter a name for this setup before saving.");
        name_->setFocus();
        return;
    }
    ReadControls();
    const auto typed = nameTyped_ ? SetupNameTyped::Yes : SetupNameTyped::No;
    if (SavePerformanceSetup(edited_, parts_.folder, typed, parts_.prompts)) {
        nameTyped_ = false;
        parts_.prompts.Message("Saved performance setup.");
    }
}

void CPerformanceSetupDialog::OnClear() {
    edited_.Clear();
    nameTyped_ = false;
    ShowControls();
}

void CPerformanceSetupDialog::accept() {
    ReadControls();
    setup_ = edited_;
    QDialog::accept();
}

} // namespace busquill
