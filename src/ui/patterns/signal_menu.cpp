#include "ui/patterns/signal_menu.h"

#include "platform/prompts.h"
#include "signals/signal_list.h"
#include "ui/controls/color_button.h"
#include "ui/patterns/header_control.h"
#include "ui/signals/change_signal_dialog.h"

#include <QAction>
#include <QMenu>

#include <algorithm>
#include <map>

namespace busquill {

namespace {

/// The number of selected columns; a bus counts once.
std::ptrdiff_t SelectedColumns(const CSignalList& list) {
    return std::count_if(list.All().begin(), list.All().end(), [](const auto& signal) {
        return signal->selected && signal->VisibleWidth() > 0;
    });
}

class SignalMenu {
public:
    SignalMenu(QWidget& parent, CSignal& signal, SignalMenuHost& host, Prompts& prompts)
        : parent_(parent), signal_(signal), host_(host), list_(host.MenuList()), prompts_(prompts) {
    }

    void Run(const QPoint& place) {
        QMenu menu(&parent_);
        const auto add = [&](QMenu& to, const char* text, bool enabled, auto action) {
            QAction* entry = to.addAction(text);
            entry->setEnabled(enabled);
            QObject::connect(entry, &QAction::triggered, [this, action] { (this->*action)(); });
            return entry;
        };
        add(menu, "Change Signal...", true, &SignalMenu::Change);
        add(menu, "Insert Signal...", true, &SignalMenu::Insert);
        add(menu, "Delete Signal", true, &SignalMenu::Delete);
        add(menu, "Insert Blank", true, &SignalMenu::InsertBlank);
        menu.addSeparator();
        QMenu& base = *menu.addMenu("Change Base");
        const std::pair<const char*, std::int32_t> radixes[] = {
            {"Binary", Radix::Binary}, {"Hex", Radix::Hex}, {"Octal", Radix::Octal}};
        for (const auto& [text, radix] : radixes) {
            QAction* entry = base.addAction(text);
            entry->setCheckable(true);
            entry->setChecked(signal_.radix == radix);
            QObject::connect(entry, &QAction::triggered,
                             [this, radix = radix] { Edit([&] { signal_.radix = radix; }); });
        }
        add(menu, "Change Color...", true, &SignalMenu::ChangeColor);
        menu.addSeparator();
        const bool fixed = (signal_.groupAttribute & GroupAttribute::NoUngroup) != 0;
        add(menu, "Expand", signal_.grouped && !fixed, &SignalMenu::Expand);
        add(menu, "Collapse", signal_.selected && SelectedColumns(list_) > 1,
            &SignalMenu::Collapse);
        menu.exec(place);
    }

private:
    /// Everything that determines the width of a signal's values.
    struct Shape {
        bool visible = false;
        std::uint32_t bits = 0;
        std::int32_t radix = 0;
        friend bool operator==(const Shape&, const Shape&) = default;
    };
    static Shape ShapeOf(const CSignal& signal) {
        return {signal.VisibleWidth() > 0, signal.groupWidth, signal.radix};
    }

    template <typename Change>
    void Edit(Change change) {
        std::map<const CSignal*, Shape> before;
        for (const auto& signal : list_.All()) {
            before[signal.get()] = ShapeOf(*signal);
        }
        change();
        for (const auto& signal : list_.All()) {
            const auto old = before.find(signal.get());
            if (old != before.end() && old->second != ShapeOf(*signal)) {
                host_.SignalReshaped(*signal);
            }
        }
        host_.SignalsChanged();
    }

    void Change() {
        CChangeSignalDialog dialog(&parent_, list_.Tables(), &signal_, host_.OfferMode(), prompts_);
        const std::int32_t radix = signal_.radix;
        if (dialog.exec() != QDialog::Accepted) {
            return;
        }
        if (dialog.chosenDef != nullptr) {
            const std::size_t end = list_.GroupEnd(list_.IndexOf(&signal_));
            const CSignal* next = end < list_.Size() ? &list_[end] : nullptr;
            const CSignal* old = &signal_;
            list_.RemoveGroup(&signal_); // destroys `signal_` too
            if (CSignal* added = Add(next, dialog)) {
                list_.SetGroupSelected(added, true);
                host_.MenuHeader().Replace(old, added);
            }
        } else if (signal_.radix != radix) {
            host_.SignalReshaped(signal_);
        }
        host_.SignalsChanged();
    }

    void Insert() {
        CChangeSignalDialog dialog(&parent_, list_.Tables(), nullptr, host_.OfferMode(), prompts_);
        if (dialog.exec() == QDialog::Accepted && dialog.chosenDef != nullptr) {
            Add(&signal_, dialog);
            host_.SignalsChanged();
        }
    }

    CSignal* Add(const CSignal* before, const CChangeSignalDialog& dialog) {
        CSignal* added =
            list_.AddSignal(before, dialog.chosenDef, host_.SampleCapacity(), dialog.firstBit,
                            dialog.lastBit, dialog.color, dialog.radix, dialog.showValue);
        if (added != nullptr) {
            host_.SignalAdded(*added);
        }
        return added;
    }

    void Delete() {
        if (prompts_.AskYesNo("Delete selected signal(s)?")) {
            list_.DeleteSelected();
            host_.SignalsChanged();
        }
    }

    void InsertBlank() {
        host_.SignalAdded(*list_.InsertBlank(&signal_));
        host_.SignalsChanged();
    }

    void ChangeColor() {
        if (const auto color = AskColor(&parent_, signal_.color)) {
            list_.SetSelectedColor(*color);
            host_.SignalsChanged();
        }
    }

    void Expand() {
        Edit([&] { list_.UngroupSelected(); });
    }
    void Collapse() {
        Edit([&] { list_.CollapseSelected(); });
    }

    QWidget& parent_;
    CSignal& signal_;
    SignalMenuHost& host_;
    CSignalList& list_;
    Prompts& prompts_;
};

} // namespace

void ShowSignalMenu(QWidget& parent, const QPoint& place, CSignal& signal, SignalMenuHost& host,
                    Prompts& prompts) {
    SignalMenu(parent, signal, host, prompts).Run(place);
}

} // namespace busquill
