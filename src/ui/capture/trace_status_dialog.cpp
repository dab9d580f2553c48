#include "ui/capture/trace_status_dialog.h"

#include "tracesetup/trace_setup.h"
#include "ui/framework/help_page.h"
#include "ui/framework/icons.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include <string>

namespace busquill {

namespace {

constexpr int lampSize = 16;
constexpr int fieldCharacters = 24;

} // namespace

CTraceStatusDialog::CTraceStatusDialog(QWidget* parent, const TraceSetup& setup)
    : QDialog(parent), setup_(setup) {
    setWindowTitle("Trace Status");
    SetHelpPage(*this, "capture.md#trace-status");
    auto* rows = new QFormLayout;
    const auto add = [this](QFormLayout* to, Field field, const char* name) {
        to->addRow(QString("%1:").arg(name), AddField(field, name));
    };
    add(rows, Before, "Samples Before Trigger");
    add(rows, After, "Samples After Trigger");
    add(rows, Occurrences, "Event Occurrences");
    add(rows, Active, "Trace Active");
    add(rows, Triggered, "Triggered");
    add(rows, BufferFull, "Buffer Full");
    add(rows, Level, "Active Level");
    auto* level = new QGroupBox("Level Setup");
    auto* levelRows = new QFormLayout(level);
    add(levelRows, Store, "Store");
    add(levelRows, IfEvent, "If Event");
    add(levelRows, Occurs, "Occurs");
    add(levelRows, Then, "Then");
    add(levelRows, Else, "Else");
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(level);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    SetLamp(Active, true); // it stays lit as long as the dialog is open
}

QLabel* CTraceStatusDialog::AddField(Field field, const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * fieldCharacters);
    fields_[field] = label;
    return label;
}

void CTraceStatusDialog::SetText(Field field, const std::string& text) {
    fields_[field]->setText(QString::fromStdString(text));
}

void CTraceStatusDialog::SetLamp(Field field, bool lit) {
    const QIcon icon = IconOf(lit ? "lamp-lit" : "lamp-dark");
    fields_[field]->setPixmap(icon.pixmap(lampSize, lampSize));
    fields_[field]->setAccessibleDescription(lit ? "lit" : "dark");
}

void CTraceStatusDialog::Follow(const RunState& state) {
    const auto changed = [&](auto RunState::*field) {
        return !shown_ || (*shown_).*field != state.*field;
    };
    if (changed(&RunState::before)) {
        SetText(Before, std::to_string(state.before));
    }
    if (changed(&RunState::after)) {
        SetText(After, std::to_string(state.after));
    }
    if (changed(&RunState::occurrences)) {
        SetText(Occurrences, std::to_string(state.occurrences));
    }
    if (changed(&RunState::triggered)) {
        SetLamp(Triggered, state.triggered);
    }
    if (changed(&RunState::bufferFull)) {
        SetLamp(BufferFull, state.bufferFull);
    }
    if (changed(&RunState::level)) {
        SetText(Level, std::to_string(state.level + 1));
        const TraceLevel& level = setup_.levels[static_cast<std::size_t>(state.level)];
        SetText(Store, FormatExpression(level.storeExpr));
        SetText(IfEvent, FormatExpression(level.ifExpr));
        SetText(Occurs, std::to_string(level.occurs));
        SetText(Then, FormatTraceGoto(level.thenGoto, level.thenTrigger));
        SetText(Else, FormatTraceGoto(level.elseGoto, level.elseTrigger));
    }
    shown_ = state;
}

} // namespace busquill
