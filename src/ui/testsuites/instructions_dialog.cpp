#include "ui/testsuites/instructions_dialog.h"

#include "ui/framework/help_page.h"

#include <QBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>

namespace busquill {

namespace {

constexpr QSize dialogSize(420, 220);

} // namespace

CInstructionsDialog::CInstructionsDialog(QWidget* parent, const std::string& instructions)
    : QDialog(parent) {
    setWindowTitle("Compliance Test Instructions");
    SetHelpPage(*this, "compliance.md#instructions");
    resize(dialogSize);
    auto* text = new QPlainTextEdit(QString::fromStdString(instructions));
    text->setObjectName("Instructions");
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    const std::pair<const char*, OperatorAnswer> answers[] = {
        {"Continue", OperatorAnswer::Continue},
        {"S&kip Test", OperatorAnswer::Skip},
        {"&Stop Test", OperatorAnswer::Stop}};
    for (const auto& [label, answer] : answers) {
        auto* button = new QPushButton(label);
        connect(button, &QPushButton::clicked, this, [this, answer = answer] {
            answer_ = answer;
            accept();
        });
        button->setDefault(answer == OperatorAnswer::Continue);
        button->setFocusPolicy(Qt::StrongFocus);
        buttons->addWidget(button);
        if (answer == OperatorAnswer::Continue) {
            button->setFocus();
        }
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(buttons);
}

} // namespace busquill
