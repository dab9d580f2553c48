#include "ui/display/display_pages.h"

#include "capture/trace_document.h"
#include "ui/controls/color_button.h"
#include "ui/framework/icons.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include <cstdint>
#include <utility>

namespace busquill {

namespace {

constexpr QSize pictureSize(18, 18);
constexpr int nameCharacters = 30;

struct DisplayGroup {
    const char* title;
    const DisplaySettings& settings;
};
constexpr DisplayGroup displays[] = {{"State", stateDisplay}, {"Waveform", waveformDisplay}};

/// A label, followed by the picture of a marker.
QWidget* MarkerLabel(const char* picture) {
    auto* label = new QWidget;
    auto* row = new QHBoxLayout(label);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel("Marker"));
    auto* image = new QLabel;
    image->setPixmap(IconOf(picture).pixmap(pictureSize));
    row->addWidget(image);
    row->addStretch();
    return label;
}

} // namespace

CDisplayName::CDisplayName(CTesselDoc* trace) : trace_(trace), name_(new QLineEdit) {
    name_->setObjectName("Name");
    // A trace file holds the name between quotes, in one line.
    name_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(R"([^"\x{0}-\x{1f}]*)"), name_));
    name_->setMinimumWidth(nameCharacters * fontMetrics().averageCharWidth());
    auto* rows = new QFormLayout(this);
    rows->addRow("Name", name_);
    connect(name_, &QLineEdit::textEdited, this, &CDisplayPage::Modified);
}

void CDisplayName::Load() {
    name_->setText(trace_ != nullptr ? QString::fromStdString(trace_->comment) : QString());
    name_->setEnabled(trace_ != nullptr && trace_->IsRealTime());
}

void CDisplayName::Save() {
    if (trace_ == nullptr) {
        return;
    }
    if (name_->isModified()) { // otherwise it keeps its bytes
        trace_->comment = name_->text().toStdString();
    }
    trace_->UpdateAllViews(nullptr, HintNameChanged);
}

ColorSettingsPage::ColorSettingsPage(Settings& settings, std::function<void()> changed)
    : settings_(settings), changed_(std::move(changed)), groups_(new QVBoxLayout) {
    auto* page = new QVBoxLayout(this);
    page->addLayout(groups_);
    page->addStretch(); // in a large sheet the groups stay at the top
}

void ColorSettingsPage::Load() {
    for (const Field& field : fields_) {
        field.show(ReadColorSetting(settings_, field.setting));
    }
}

void ColorSettingsPage::Save() {
    for (const Field& field : fields_) {
        WriteColorSetting(settings_, field.setting, field.value());
    }
    changed_();
}

void ColorSettingsPage::ShowSet(ColorSet set) {
    for (const Field& field : fields_) {
        field.show(ValueIn(set, field.setting));
    }
    emit Modified();
}

QGridLayout& ColorSettingsPage::AddGroup(const QString& title) {
    auto* group = new QGroupBox(title);
    group->setObjectName(title);
    groups_->addWidget(group);
    auto* rows = new QGridLayout(group);
    rows->setColumnStretch(0, 1);
    return *rows;
}

void ColorSettingsPage::AddColor(QGridLayout& group, QWidget* label, const QString& name,
                                 ColorSetting setting) {
    auto* button = new ColorButton;
    button->setObjectName(group.parentWidget()->objectName() + " " + name);
    button->setAccessibleName(button->objectName());
    const int row = group.rowCount();
    group.addWidget(label, row, 0);
    group.addWidget(button, row, 1);
    connect(button, &ColorButton::ColorChosen, this, &CDisplayPage::Modified);
    fields_.push_back(
        {setting, [button] { return static_cast<int>(button->Color()); },
         [button](int value) { button->SetColor(static_cast<std::uint32_t>(value)); }});
}

void ColorSettingsPage::AddHidden(ColorSetting setting) {
    const auto kept = std::make_shared<int>();
    fields_.push_back({setting, [kept] { return *kept; }, [kept](int value) { *kept = value; }});
}

void ColorSettingsPage::AddChoice(QGridLayout& group, const QString& text, ColorSetting choice,
                                  ColorSetting color) {
    auto* box = new QCheckBox(text);
    box->setObjectName(group.parentWidget()->objectName() + " Alternate With");
    connect(box, &QCheckBox::clicked, this, &CDisplayPage::Modified);
    fields_.push_back({choice, [box] { return box->isChecked() ? 1 : 0; },
                       [box](int value) { box->setChecked(value != 0); }});
    AddColor(group, box, "Alternate", color);
}

CDisplayMarkers::CDisplayMarkers(Settings& settings, std::function<void()> changed)
    : ColorSettingsPage(settings, std::move(changed)) {
    for (const DisplayGroup& display : displays) {
        QGridLayout& group = AddGroup(display.title);
        AddColor(group, new QLabel("Trigger"), "Trigger", display.settings.trigger);
        AddColor(group, MarkerLabel("go-marker1"), "Marker 1", display.settings.marker1);
        AddColor(group, MarkerLabel("go-marker2"), "Marker 2", display.settings.marker2);
    }
}

CDisplayColors::CDisplayColors(Settings& settings, std::function<void()> changed)
    : ColorSettingsPage(settings, std::move(changed)) {
    for (const DisplayGroup& display : displays) {
        QGridLayout& group = AddGroup(display.title);
        AddColor(group, new QLabel("Background"), "Background", display.settings.background);
        AddChoice(group, "Alternate With:", display.settings.alternate,
                  display.settings.alternateBackground);
    }
    AddColor(AddGroup("Other Windows"), new QLabel("Background"), "Background",
             ColorSetting::OtherBackground);
    AddHidden(ColorSetting::AdaptText);
}

} // namespace busquill
