#include "ui/patterns/pattern_dialogs.h"

#include "ui/framework/help_page.h"
#include "ui/patterns/pattern_grid.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr QSize usualSize(640, 160);

} // namespace

PatternDialog::PatternDialog(QWidget* parent, const char* caption, const char* helpPage,
                             CSignalList& list, Prompts& prompts)
    : QDialog(parent), list_(list), copy_(list.Tables()), table_(new CPatternTable(1, prompts)) {
    setWindowTitle(caption);
    SetHelpPage(*this, helpPage);
    copy_.CopyFrom(list);
    Grid().ShowLabels(false);
    Grid().SetText("Condition", "");
    table_->SetList(copy_);

    auto* group = new QGroupBox("Condition");
    auto* inside = new QVBoxLayout(group);
    inside->addWidget(table_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group, 1);
    layout->addWidget(buttons);
    resize(usualSize);

    connect(buttons, &QDialogButtonBox::accepted, this, &PatternDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PatternDialog::reject);
}

void PatternDialog::accept() {
    list_.CopyFrom(copy_);
    QDialog::accept();
}

} // namespace busquill
