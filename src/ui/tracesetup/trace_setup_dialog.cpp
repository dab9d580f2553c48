#include "ui/tracesetup/trace_setup_dialog.h"

#include "platform/prompts.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "tracesetup/setup_file.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/help_page.h"
#include "ui/framework/icons.h"
#include "ui/levels/level_panel.h"
#include "ui/patterns/pattern_grid.h"
#include "ui/patterns/pattern_table.h"
#include "ui/tracesetup/setup_wizard_dialog.h"
#include "ui/tracesetup/trace_levels.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int descriptionLines = 3;

QString Shown(const std::string& text) {
    return QString::fromStdString(text).replace("\r\n", "\n");
}

/// The text of a field. If it still shows the old text, that is returned unchanged, since a field
/// cannot show every byte of a file.
std::string FieldText(const QString& shown, const std::string& old) {
    return shown == Shown(old) ? old : QString(shown).replace("\n", "\r\n").toStdString();
}

/// The first text of a table is for an unknown index and is not offered.
QComboBox* MakeList(const char* name, std::int32_t count,
                    std::string_view (*text)(std::int32_t) noexcept) {
    auto* list = new QComboBox;
    list->setObjectName(name);
    for (std::int32_t index = 1; index < count; ++index) {
        const std::string_view each = text(index);
        list->addItem(QString::fromLatin1(each.data(), static_cast<qsizetype>(each.size())));
    }
    list->setMaxVisibleItems(count);
    return list;
}

FileQuestion QuestionFor(FileUse use, std::string folder, std::string name = "") {
    const char* const titles[] = {"Open Trace Setup", "Save Trace Setup", "Delete Trace Setup"};
    return {use,
            titles[static_cast<int>(use)],
            "Setups (*.tsp)",
            ".tsp",
            std::move(folder),
            std::move(name)};
}

} // namespace

CTraceSetupDialog::CTraceSetupDialog(QWidget* parent, TraceSetup& setup, std::string path,
                                     Parts parts)
    : QDialog(parent), setup_(setup), kept_(setup.events.Tables()), path_(std::move(path)),
      parts_(std::move(parts)), inFile_(!path_.empty()) {
    kept_.CopyFrom(setup);
    setWindowTitle("Trace Setup");
    SetHelpPage(*this, "trace-setup.md");

    auto* top = new QHBoxLayout;
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    top->addWidget(MakeSetupGroup(), 1);
    layout->addWidget(MakeEventGroup());
    layout->addWidget(MakeControlGroup(), 1);
    // They stand at the top, but are created last, so that Tab reaches them after the fields.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                             QDialogButtonBox::Help,
                                         Qt::Vertical, this);
    top->addWidget(buttons);
    buttons->button(QDialogButtonBox::Help)->setText("&Help");
    connect(buttons, &QDialogButtonBox::accepted, this, &CTraceSetupDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CTraceSetupDialog::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, parts_.showHelp);

    ShowFields();
    ShowProgram();
    ShowIndexes();
    resize(sizeHint().boundedTo(screen()->availableSize()));
}

// The groups.

QGroupBox* CTraceSetupDialog::MakeSetupGroup() {
    auto* group = new QGroupBox("Setup");
    name_ = new QLineEdit;
    name_->setObjectName("Name");
    description_ = new QPlainTextEdit;
    description_->setObjectName("Description");
    description_->setTabChangesFocus(true);
    const QMargins margins = description_->contentsMargins();
    description_->setFixedHeight(description_->fontMetrics().lineSpacing() * descriptionLines +
                                 margins.top() + margins.bottom() +
                                 qRound(2 * description_->document()->documentMargin()));
    auto* fields = new QFormLayout;
    fields->addRow("Name", name_);
    fields->addRow("Description", description_);

    auto* buttons = new QHBoxLayout;
    const auto add = [&](const QString& text, void (CTraceSetupDialog::*act)()) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        buttons->addWidget(button);
        return button;
    };
    add("Setup &Wizard", &CTraceSetupDialog::OnWizard)->setIcon(IconOf("wizard"));
    buttons->addStretch();
    add("&Open", &CTraceSetupDialog::OnOpen);
    add("&Save", &CTraceSetupDialog::OnSave);
    add("&Delete", &CTraceSetupDialog::OnDelete);

    auto* layout = new QVBoxLayout(group);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    return group;
}

QGroupBox* CTraceSetupDialog::MakeEventGroup() {
    auto* group = new QGroupBox("Events");
    events_ = new CPatternTable(EventCount(setup_.events.Tables().Board()), parts_.prompts);
    events_->Grid().SetText("EVENT", "E%d:");
    SetHelpPage(*events_, "trace-setup.md#events");
    events_->Grid().SetOwner([this] { Modify(); });
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(events_);
    return group;
}

QGroupBox* CTraceSetupDialog::MakeControlGroup() {
    auto* group = new QGroupBox("Trace Control");
    levels_ = new CLevelPanel(setup_, TraceLevels(), parts_.prompts);
    SetHelpPage(*levels_, "trace-setup.md#levels");
    connect(levels_, &CLevelPanel::Modified, this, &CTraceSetupDialog::Modify);

    clock_ = MakeList("Sample Clock", clockCount, ClockText);
    triggerPosition_ = MakeList("Trigger Position", triggerCount, TriggerText);
    powerZoomClock_ = MakeList("Power Zoom Sample Clock", powerZoomCount, PowerZoomText);
    const BoardTraits board = setup_.events.Tables().Board();
    powerZoomClock_->setEnabled(board.HasPowerZoom());
    for (QComboBox* list : {clock_, triggerPosition_, powerZoomClock_}) {
        connect(list, &QComboBox::currentIndexChanged, this, &CTraceSetupDialog::Modify);
    }
    connect(clock_, &QComboBox::activated, this, &CTraceSetupDialog::CheckClock);
    traceStatus_ = new QCheckBox("Trace Status");
    traceStatus_->setToolTip("Shows a window with the counts while a capture runs");
    traceStatus_->setChecked(parts_.settings.GetProfileInt(SettingsSection::display,
                                                           SettingsKey::showTraceStatus, 0) != 0);

    auto* choices = new QHBoxLayout;
    for (QComboBox* list : {clock_, triggerPosition_, powerZoomClock_}) {
        auto* field = new QFormLayout;
        field->addRow(list->objectName(), list);
        choices->addLayout(field);
        choices->addStretch();
    }
    choices->addWidget(traceStatus_);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(levels_, 1);
    layout->addLayout(choices);
    return group;
}

// Showing and reading the fields.

void CTraceSetupDialog::ShowFields() {
    name_->setText(Shown(setup_.name));
    description_->setPlainText(Shown(setup_.description));
}

void CTraceSetupDialog::ShowProgram() {
    events_->SetList(setup_.events);
    levels_->Refresh();
}

void CTraceSetupDialog::ShowIndexes() {
    const QSignalBlocker blockers[] = {QSignalBlocker(clock_), QSignalBlocker(triggerPosition_),
                                       QSignalBlocker(powerZoomClock_)};
    clock_->setCurrentIndex(setup_.clock - 1);
    triggerPosition_->setCurrentIndex(setup_.triggerPosition - 1);
    powerZoomClock_->setCurrentIndex(setup_.powerZoomClock - 1);
}

void CTraceSetupDialog::ReadFields() {
    setup_.name = FieldText(name_->text(), setup_.name);
    setup_.description = FieldText(description_->toPlainText(), setup_.description);
    setup_.clock = clock_->currentIndex() + 1;
    setup_.triggerPosition = triggerPosition_->currentIndex() + 1;
    setup_.powerZoomClock = powerZoomClock_->currentIndex() + 1;
}

std::string CTraceSetupDialog::LastFolder() const {
    return parts_.settings.GetProfileString(SettingsSection::setup, SettingsKey::lastSetupFolder,
                                            parts_.directory.Path());
}

void CTraceSetupDialog::Modify() {
    modified_ = true;
    inFile_ = false;
}

void CTraceSetupDialog::CheckClock() {
    const BoardTraits board = setup_.events.Tables().Board();
    if (clock_->currentIndex() + 1 == clock133MHz && board.IsWrenBoard()) {
        parts_.prompts.Message(
            Printf("%s model does not support 133 MHz sample clock.", board.modelString.c_str()));
        clock_->setCurrentIndex(clock_->currentIndex() + 1); // this counts as a change by the user
    }
}

// The buttons.

void CTraceSetupDialog::OnOpen() {
    const std::string path =
        AskForFile(this, QuestionFor(FileUse::Open, LastFolder()), parts_.prompts);
    if (path.empty()) {
        return;
    }
    Modify();
    // Even a refused file has replaced the setup; Cancel restores it.
    if (LoadSetupFile(setup_, path, parts_.prompts)) {
        path_ = path;
        inFile_ = true;
    }
    ShowFields();
    ShowProgram();
    ShowIndexes();
    CheckClock();
}

void CTraceSetupDialog::OnSave() {
    ReadFields();
    const FileQuestion question = path_.empty()
                                      ? QuestionFor(FileUse::Save, LastFolder(), setup_.name)
                                      : QuestionFor(FileUse::Save, std::string(FolderOf(path_)),
                                                    std::string(FileNameOf(path_)));
    const std::string path = AskForFile(this, question, parts_.prompts);
    if (path.empty()) {
        return;
    }
    setup_.name = BaseNameOf(path);
    name_->setText(Shown(setup_.name));
    inFile_ = SaveSetupFile(setup_, path, parts_.prompts);
    if (inFile_) {
        path_ = path;
        saved_ = true;
    }
}

void CTraceSetupDialog::OnDelete() {
    const std::string path =
        AskForFile(this, QuestionFor(FileUse::Delete, LastFolder()), parts_.prompts);
    if (path.empty() || !parts_.prompts.AskYesNo(Printf("Delete setup file %s?", path.c_str()))) {
        return;
    }
    if (!QFile::remove(QString::fromStdString(path))) {
        parts_.prompts.Message(Printf("Error deleting file %s.", path.c_str()));
        return;
    }
    if (parts_.settings.GetProfileString(SettingsSection::setup, SettingsKey::lastSetupFile, "") ==
        path) {
        parts_.settings.WriteProfileString(SettingsSection::setup, SettingsKey::lastSetupFile, "");
    }
    if (path == path_) {
        path_.clear();
        inFile_ = false;
    }
}

void CTraceSetupDialog::OnWizard() {
    CSetupWizardDialog wizard(this, setup_, parts_.prompts, parts_.showWizardHelp);
    if (wizard.exec() == QDialog::Accepted) {
        ShowProgram();
        Modify();
    }
}

void CTraceSetupDialog::accept() {
    if (modified_ && parts_.isLive && parts_.isRunning()) {
        parts_.prompts.Message("Setup cannot be modified while trace is in progress.");
        return;
    }
    if (modified_ && !parts_.isLive) {
        parts_.prompts.Message("Setup of saved trace cannot be modified.");
        return;
    }
    const std::string name = setup_.name;
    const std::string description = setup_.description;
    ReadFields();
    inFile_ = inFile_ && setup_.name == name && setup_.description == description;
    parts_.settings.WriteProfileInt(SettingsSection::display, SettingsKey::showTraceStatus,
                                    traceStatus_->isChecked() ? 1 : 0);
    QDialog::accept();
}

// Copying a setup sets its description to its name, so Cancel does so too.
void CTraceSetupDialog::reject() {
    setup_.CopyFrom(kept_);
    QDialog::reject();
}

} // namespace busquill
