#include "ui/shell/keys_window.h"

#include "ui/framework/help_page.h"
#include "ui/shell/key_list.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr QSize keysSize(940, 640);

void FillWithKeys(QTreeWidget& list) {
    QTreeWidgetItem* place = nullptr;
    for (const KeyLine& line : AllKeys()) {
        if (place == nullptr || place->text(0) != line.place) {
            place = new QTreeWidgetItem(&list, {line.place});
            place->setFirstColumnSpanned(true);
            place->setExpanded(true);
            QFont bold = list.font();
            bold.setBold(true);
            place->setFont(0, bold);
        }
        new QTreeWidgetItem(place, {line.keys, line.does, line.entry});
    }
}

} // namespace

KeysWindow::KeysWindow(QWidget* parent) : QDialog(parent) {
    setWindowTitle("Keys");
    SetHelpPage(*this, "keys.md");
    resize(keysSize);
    auto* list = new QTreeWidget;
    list->setObjectName("Keys");
    list->setHeaderLabels({"Key", "Does", "Menu entry"});
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    FillWithKeys(*list);
    for (const int column : {0, 1}) {
        list->resizeColumnToContents(column);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list);
    layout->addWidget(buttons);
}

} // namespace busquill
