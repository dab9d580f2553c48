#include "ui/analysis/kept_button.h"

#include "capture/kept_expressions.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/analysis/expression_line.h"

#include <QEvent>
#include <QInputDialog>
#include <QMenu>

namespace busquill {

namespace {

/// The beginning of a text for a menu or a label, which would take "&" for a mnemonic.
QString Shown(const QString& text) {
    constexpr int shownCharacters = 60;
    QString shown = text.size() > shownCharacters ? text.left(shownCharacters) + "..." : text;
    return shown.replace('&', "&&");
}

} // namespace

KeptButton::KeptButton(ExpressionLine& line, Prompts& prompts)
    : line_(line), prompts_(prompts), menu_(new QMenu(this)) {
    setObjectName("KeptExpressions");
    setText("Kept");
    setToolTip("Expressions that are kept by name");
    setPopupMode(QToolButton::InstantPopup);
    setMenu(menu_);
    menu_->setToolTipsVisible(true);
    connect(menu_, &QMenu::aboutToShow, this, &KeptButton::Fill);
    line_.installEventFilter(this);
}

bool KeptButton::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::EnabledChange) {
        setEnabled(line_.isEnabled());
    }
    return QToolButton::eventFilter(watched, event);
}

void KeptButton::Fill() {
    menu_->clear();
    menu_->addAction("&Keep As...", this, &KeptButton::AskForName)
        ->setEnabled(!line_.Applied().isEmpty() &&
                     line_.Applied() == line_.currentText().trimmed());
    const KeptExpressions kept = UserExpressions();
    if (kept.All().empty()) {
        return;
    }
    menu_->addSeparator();
    QMenu* const remove = new QMenu("&Remove", menu_);
    for (const KeptExpressions::Kept* each : kept.All()) {
        const QString use = QString::fromStdString("@" + each->name);
        const QString text = QString::fromStdString(each->text);
        QAction* const action =
            menu_->addAction(Shown(use + "    " + text), this, [this, use] { line_.Give(use); });
        // A condition on transactions cannot be used for samples.
        const auto mistake = line_.Mistake(use, kept);
        action->setEnabled(!mistake);
        action->setToolTip(mistake ? QString::fromStdString(mistake->message) : text);
        remove->addAction(Shown(use), this, [this, name = each->name] { Remove(name); });
    }
    menu_->addSeparator();
    menu_->addMenu(remove);
}

void KeptButton::AskForName() {
    QInputDialog dialog(window());
    dialog.setWindowTitle("Keep Expression");
    dialog.setLabelText(Shown(line_.Applied()) + "\n\n&Name");
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const std::string name = dialog.textValue().trimmed().toStdString();
    if (!KeptExpressions::IsName(name)) {
        prompts_.Message("A name is a letter, then letters, digits, \"_\" and \"-\".");
    } else {
        Keep(name);
    }
}

void KeptButton::Keep(const std::string& name) {
    KeptExpressions kept;
    if (!Read(kept)) {
        return;
    }
    const bool isThere = kept.Find(name) != nullptr;
    kept.Keep(name, line_.Applied().toStdString());
    // One that uses itself, perhaps through others, would be of no use any more.
    if (const auto mistake = line_.Mistake(QString::fromStdString("@" + name), kept)) {
        prompts_.Message(mistake->message);
    } else if (!isThere ||
               prompts_.AskYesNo(Printf("Replace the expression \"%s\"?", name.c_str()))) {
        Write(kept);
    }
}

void KeptButton::Remove(const std::string& name) {
    KeptExpressions kept;
    if (Read(kept) && kept.Remove(name)) {
        Write(kept);
    }
}

bool KeptButton::Read(KeptExpressions& kept) {
    const bool isRead = kept.Read(KeptExpressions::UsualFile());
    if (!isRead) {
        prompts_.Message(Printf("Error opening file '%s'.", KeptExpressions::UsualFile().c_str()));
    }
    return isRead;
}

void KeptButton::Write(const KeptExpressions& kept) {
    if (!kept.Write(KeptExpressions::UsualFile())) {
        prompts_.Message(Printf("Error creating file '%s'.", KeptExpressions::UsualFile().c_str()));
    }
}

} // namespace busquill
