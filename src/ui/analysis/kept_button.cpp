#include "ui/analysis/kept_button.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/analysis/expression_line.h"

#include <QInputDialog>
#include <QMenu>

namespace busquill {

namespace {

/// What a menu would take for a mnemonic stays as it is.
QString MenuText(QString text) {
    return text.replace('&', "&&");
}

} // namespace

KeptExpressions UserExpressions() {
    KeptExpressions kept;
    static_cast<void>(kept.Read(KeptExpressions::UsualFile())); // without the file there are none
    return kept;
}

KeptButton::KeptButton(ExpressionLine& line, Prompts& prompts)
    : line_(line), prompts_(prompts), menu_(new QMenu(this)) {
    setObjectName("KeptExpressions");
    setText("&Kept");
    setToolTip("Expressions that are kept by name");
    setPopupMode(QToolButton::InstantPopup);
    setMenu(menu_);
    menu_->setToolTipsVisible(true);
    connect(menu_, &QMenu::aboutToShow, this, &KeptButton::Fill);
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
        constexpr int shownCharacters = 60;
        const QString text = QString::fromStdString(each->text);
        QAction* const action = menu_->addAction(
            MenuText(use + "    " +
                     (text.size() > shownCharacters ? text.left(shownCharacters) + "..." : text)),
            this, [this, use] { line_.Give(use); });
        // A condition on transactions is none on samples.
        const auto mistake = line_.Mistake(use);
        action->setEnabled(!mistake);
        action->setToolTip(mistake ? QString::fromStdString(mistake->message) : text);
        remove->addAction(MenuText(use), this, [this, name = each->name] { Remove(name); });
    }
    menu_->addSeparator();
    menu_->addMenu(remove);
}

void KeptButton::AskForName() {
    QInputDialog dialog(window());
    dialog.setWindowTitle("Keep Expression");
    dialog.setLabelText(line_.Applied() + "\n\n&Name");
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
    if (!kept.Read(KeptExpressions::UsualFile())) {
        prompts_.Message(Printf("Error opening file '%s'.", KeptExpressions::UsualFile().c_str()));
        return;
    }
    if (kept.Find(name) != nullptr &&
        !prompts_.AskYesNo(Printf("Replace the expression \"%s\"?", name.c_str()))) {
        return;
    }
    kept.Keep(name, line_.Applied().toStdString());
    Write(kept);
}

void KeptButton::Remove(const std::string& name) {
    KeptExpressions kept;
    if (kept.Read(KeptExpressions::UsualFile()) && kept.Remove(name)) {
        Write(kept);
    }
}

void KeptButton::Write(const KeptExpressions& kept) {
    if (!kept.Write(KeptExpressions::UsualFile())) {
        prompts_.Message(Printf("Error creating file '%s'.", KeptExpressions::UsualFile().c_str()));
    }
}

} // namespace busquill
