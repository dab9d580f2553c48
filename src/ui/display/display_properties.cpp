#include "ui/display/display_properties.h"

#include "ui/display/display_pages.h"
#include "ui/framework/help_page.h"

#include <QDialogButtonBox>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

namespace busquill {

CDisplayProperties::CDisplayProperties(QWidget* parent, const Parts& parts, DisplayPage first)
    : QDialog(parent), tabs_(new QTabWidget) {
    setWindowTitle("Display Properties");
    SetHelpPage(*this, "display-properties.md");
    AddPage(DisplayPage::Name, new CDisplayName(parts.trace), "Name");
    AddPage(DisplayPage::Markers, new CDisplayMarkers(parts.settings, parts.colorsChanged),
            "Markers");
    AddPage(DisplayPage::Grid, new CDisplayPage, "Grid");
    AddPage(DisplayPage::Scale, new CDisplayPage, "Scale");
    AddPage(DisplayPage::Colors, new CDisplayColors(parts.settings, parts.colorsChanged), "Colors");

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs_);
    // Buttons that are added to a box outside the dialog would take others out of the tab order.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                             QDialogButtonBox::Apply | QDialogButtonBox::Help,
                                         this);
    layout->addWidget(buttons);
    apply_ = buttons->button(QDialogButtonBox::Apply);
    apply_->setText("&Apply");
    apply_->setEnabled(false);
    buttons->button(QDialogButtonBox::Help)->setText("&Help");
    connect(buttons, &QDialogButtonBox::accepted, this, &CDisplayProperties::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CDisplayProperties::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, parts.showHelp);
    connect(apply_, &QPushButton::clicked, this, &CDisplayProperties::Apply);

    AddSets(*buttons->addButton("Color &Sets", QDialogButtonBox::ResetRole));

    connect(tabs_, &QTabWidget::currentChanged, this, &CDisplayProperties::NeedPage);
    tabs_->setCurrentIndex(static_cast<int>(first));
    NeedPage(tabs_->currentIndex());
}

void CDisplayProperties::AddPage(DisplayPage page, CDisplayPage* added, const QString& tab) {
    pages_[static_cast<std::size_t>(page)].page = added;
    tabs_->addTab(added, tab);
    connect(added, &CDisplayPage::Modified, this, [this] { apply_->setEnabled(true); });
}

void CDisplayProperties::AddSets(QPushButton& button) {
    auto* menu = new QMenu(&button);
    constexpr std::pair<const char*, ColorSet> sets[] = {{"&Standard", ColorSet::Standard},
                                                         {"&Legible", ColorSet::Legible},
                                                         {"&Dark", ColorSet::Dark}};
    for (const auto& [text, set] : sets) {
        menu->addAction(text, this, [this, set = set] { ShowSet(set); });
    }
    button.setToolTip("Choose colours that go together, for all windows");
    button.setMenu(menu);
}

/// A set changes both pages of colours, shown or not.
void CDisplayProperties::ShowSet(ColorSet set) {
    for (const DisplayPage each : {DisplayPage::Markers, DisplayPage::Colors}) {
        NeedPage(static_cast<int>(each));
        static_cast<ColorSettingsPage*>(pages_[static_cast<std::size_t>(each)].page)->ShowSet(set);
    }
}

/// Loads a page that is needed for the first time.
void CDisplayProperties::NeedPage(int index) {
    Page& shown = pages_[static_cast<std::size_t>(index)];
    if (!shown.loaded) {
        shown.page->Load();
        shown.loaded = true;
    }
}

void CDisplayProperties::Apply() {
    for (const Page& each : pages_) {
        if (each.loaded) {
            each.page->Save();
        }
    }
    apply_->setEnabled(false);
}

void CDisplayProperties::accept() {
    Apply();
    QDialog::accept();
}

} // namespace busquill
