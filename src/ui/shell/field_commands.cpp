#include "ui/shell/field_commands.h"

#include "ui/framework/panel.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace busquill {

namespace {

/// The text field that takes the keys of a widget with the focus, or null.
QLineEdit* FieldOf(QWidget* focus) {
    if (const auto* box = qobject_cast<QComboBox*>(focus)) {
        return box->lineEdit();
    }
    const bool isSpinBox = qobject_cast<QAbstractSpinBox*>(focus) != nullptr;
    return isSpinBox ? focus->findChild<QLineEdit*>() : qobject_cast<QLineEdit*>(focus);
}

/// The panel that contains a widget, or null.
Panel* PanelOf(QWidget* widget) {
    while (widget != nullptr && qobject_cast<Panel*>(widget) == nullptr) {
        widget = widget->parentWidget();
    }
    return qobject_cast<Panel*>(widget);
}

bool IsMenu(const QWidget& widget) {
    return qobject_cast<const QMenuBar*>(&widget) != nullptr ||
           qobject_cast<const QMenu*>(&widget) != nullptr;
}

/// Whether a widget offers commands: a menu, the tool bar or one of its buttons.
bool IsOfABar(const QWidget* widget) {
    return widget != nullptr && (IsMenu(*widget) || qobject_cast<const QToolBar*>(widget) ||
                                 qobject_cast<const QToolBar*>(widget->parentWidget()));
}

/// A press of a mouse button or a key.
bool IsInput(const QEvent& event) {
    return event.type() == QEvent::MouseButtonPress || event.type() == QEvent::ShortcutOverride;
}

} // namespace

FieldCommands::FieldCommands(QWidget& window) : QObject(&window), window_(window) {
    const auto hasSelection = [this] { return field_->hasSelectedText(); };
    commands_.On(
        CommandId::Cut, [this] { field_->cut(); },
        [this, hasSelection] { return hasSelection() && !field_->isReadOnly(); });
    commands_.On(
        CommandId::Copy, [this] { field_->copy(); }, hasSelection);
    // Whether there is something to paste is not asked: the answer may take as long as the program
    // that has copied it likes.
    commands_.On(
        CommandId::Paste, [this] { field_->paste(); }, [this] { return !field_->isReadOnly(); });
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget* /*old*/, QWidget* now) { FocusChanged(now); });
}

std::vector<const CommandMap*> FieldCommands::Maps() const {
    std::vector<const CommandMap*> maps;
    if (field_ != nullptr) {
        maps.push_back(&commands_);
    }
    if (panel_ != nullptr && panel_->isVisible()) {
        maps.push_back(&panel_->commands);
    }
    return maps;
}

void FieldCommands::FocusChanged(QWidget* focus) {
    if (focus == nullptr || IsMenu(*focus)) {
        return;
    }
    const bool leavesFloating =
        panel_ != nullptr && panel_->window() != &window_ && focus->window() == &window_;
    if (leavesFloating && IsOfABar(QApplication::widgetAt(QCursor::pos()))) {
        next_ = focus;
        qApp->installEventFilter(this);
        return;
    }
    FollowFocus(focus);
}

void FieldCommands::FollowFocus(QWidget* focus) {
    next_ = nullptr;
    qApp->removeEventFilter(this);
    if (focus == focus_) {
        return;
    }
    panel_ = PanelOf(focus);
    if (focus_ != nullptr) {
        focus_->removeEventFilter(this);
    }
    // A panel that floats is a window of its own.
    field_ = focus->window() == &window_ || panel_ != nullptr ? FieldOf(focus) : nullptr;
    focus_ = field_ == nullptr ? nullptr : focus;
    if (focus_ != nullptr) {
        focus_->installEventFilter(this);
    }
}

/// Any other input than in a bar is for what has the keyboard now.
///
/// A field gives its selection up when the keyboard goes to the menu bar, but not when a menu pops
/// up. For the user both open a menu.
bool FieldCommands::eventFilter(QObject* watched, QEvent* event) {
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (next_ != nullptr && widget != nullptr && IsInput(*event) && !IsOfABar(widget)) {
        FollowFocus(next_);
    }
    const bool leaves = watched == focus_ && event->type() == QEvent::FocusOut;
    if (!leaves || static_cast<QFocusEvent*>(event)->reason() != Qt::MenuBarFocusReason) {
        return QObject::eventFilter(watched, event);
    }
    QFocusEvent out(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(watched, &out);
    return true;
}

} // namespace busquill
