#include "ui/shell/help_window.h"

#include "ui/framework/help_page.h"
#include "ui/shell/manual_browser.h"

#include <QAction>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

constexpr QSize usualSize(1040, 720);
constexpr int panesWidth = 300;
constexpr int placeRole = Qt::UserRole;

/// The Down key in a field moves the focus to the list below it.
class IntoList final : public QObject {
public:
    IntoList(QLineEdit& field, QTreeWidget& list) : QObject(&field), list_(list) {
        field.installEventFilter(this);
    }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::KeyPress ||
            static_cast<QKeyEvent*>(event)->key() != Qt::Key_Down) {
            return false;
        }
        if (list_.currentItem() == nullptr) {
            list_.setCurrentItem(list_.topLevelItem(0));
        }
        list_.setFocus();
        return true;
    }

private:
    QTreeWidget& list_;
};

QTreeWidgetItem* NewEntry(const QString& text, const QString& place) {
    auto* entry = new QTreeWidgetItem({text});
    entry->setData(0, placeRole, place);
    entry->setToolTip(0, text);
    return entry;
}

QTreeWidget* NewList(const QString& name) {
    auto* list = new QTreeWidget;
    list->setObjectName(name);
    list->setHeaderHidden(true);
    return list;
}

QTreeWidgetItem* FirstVisible(const QTreeWidget& list) {
    for (int i = 0; i < list.topLevelItemCount(); ++i) {
        if (!list.topLevelItem(i)->isHidden()) {
            return list.topLevelItem(i);
        }
    }
    return nullptr;
}

} // namespace

QString HelpPage(const std::vector<HelpTopicPage>& topics, int topic) {
    const auto found = std::find_if(topics.begin(), topics.end(),
                                    [&](const HelpTopicPage& each) { return each.topic == topic; });
    return found != topics.end() ? found->page : Manual::contents;
}

HelpWindow::HelpWindow(QWidget* parent)
    : QMainWindow(parent, Qt::Window), page_(new ManualBrowser(this)), panes_(new QTabWidget),
      contents_(NewList("Contents")), index_(NewList("Index")), question_(new QLineEdit),
      found_(NewList("Found")) {
    setWindowTitle("Busquill! Help");
    SetHelpPage(*this, "index.md#using-the-help");
    resize(usualSize.boundedTo(screen()->availableSize() * 9 / 10));
    MakeBar();
    MakePanes();
    auto* halves = new QSplitter;
    halves->addWidget(panes_);
    halves->addWidget(page_);
    halves->setStretchFactor(1, 1);
    const int left = std::min(panesWidth, width() / 3);
    halves->setSizes({left, width() - left});
    halves->setChildrenCollapsible(false);
    setCentralWidget(halves);
    connect(page_, &QTextBrowser::sourceChanged, this, &HelpWindow::SelectInContents);
}

void HelpWindow::MakeBar() {
    QToolBar* bar = addToolBar("Help");
    bar->setMovable(false);
    bar->toggleViewAction()->setVisible(false);
    const auto add = [&](const char* text, const char* keys, auto act) {
        QAction* action = bar->addAction(text);
        action->setShortcut(QKeySequence(keys));
        action->setToolTip(QString("%1 (%2)").arg(text, keys));
        connect(action, &QAction::triggered, page_, act);
        return action;
    };
    QAction* back = add("Back", "Alt+Left", [this] { page_->backward(); });
    QAction* forward = add("Forward", "Alt+Right", [this] { page_->forward(); });
    add("Home", "Alt+Home", [this] { page_->ShowPage(Manual::contents); });
    bar->addSeparator();
    add("Search", "Ctrl+F", [this] { GoToSearch(); });
    QAction* next = add("Next", "F3", [this] { page_->GoToMark(true); });
    QAction* previous = add("Previous", "Shift+F3", [this] { page_->GoToMark(false); });
    for (QAction* action : {back, forward, next, previous}) {
        action->setEnabled(false);
    }
    connect(page_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(page_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(page_, &ManualBrowser::MarksChanged, this, [=](int count) {
        next->setEnabled(count > 0);
        previous->setEnabled(count > 0);
    });
    auto* escape = new QShortcut(Qt::Key_Escape, this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
}

// The panes at the left.

void HelpWindow::MakePanes() {
    panes_->addTab(MakeContents(), "Contents");
    panes_->addTab(MakeIndex(), "Index");
    panes_->addTab(MakeSearch(), "Search");
    connect(panes_, &QTabWidget::currentChanged, this, [this](int pane) {
        if (pane == panes_->indexOf(index_->parentWidget()) && index_->topLevelItemCount() == 0) {
            FillIndex();
        }
    });
}

QWidget* HelpWindow::MakeContents() {
    QTreeWidgetItem* group = nullptr;
    for (const ManualPage& page : manual_.Pages()) {
        if (group == nullptr || group->text(0) != page.group) {
            group = new QTreeWidgetItem(contents_, {page.group});
            group->setFlags(Qt::ItemIsEnabled);
            group->setExpanded(true);
        }
        group->addChild(NewEntry(page.title, page.file));
    }
    connect(contents_, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem* entry) {
                if (entry != nullptr) {
                    OpenEntry(*entry);
                }
            });
    return contents_;
}

QWidget* HelpWindow::MakeFinder(QLineEdit& field, QTreeWidget& list) {
    field.setClearButtonEnabled(true);
    new IntoList(field, list); // belongs to the field
    connect(&field, &QLineEdit::returnPressed, this, [this, &list] {
        if (QTreeWidgetItem* first = FirstVisible(list)) {
            list.setCurrentItem(first);
            OpenEntry(*first);
        }
    });
    connect(&list, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* entry) {
        if (entry != nullptr) {
            OpenEntry(*entry);
        }
    });
    connect(&list, &QTreeWidget::itemClicked, this,
            [this](const QTreeWidgetItem* entry) { OpenEntry(*entry); });
    auto* pane = new QWidget;
    auto* rows = new QVBoxLayout(pane);
    rows->addWidget(&field);
    rows->addWidget(&list);
    return pane;
}

QWidget* HelpWindow::MakeIndex() {
    auto* part = new QLineEdit;
    part->setObjectName("Part");
    part->setPlaceholderText("Part of a name");
    connect(part, &QLineEdit::textChanged, this, &HelpWindow::FilterIndex);
    return MakeFinder(*part, *index_);
}

QWidget* HelpWindow::MakeSearch() {
    question_->setObjectName("Question");
    question_->setPlaceholderText("Words in the text");
    connect(question_, &QLineEdit::textChanged, this, &HelpWindow::Search);
    return MakeFinder(*question_, *found_);
}

void HelpWindow::FillIndex() {
    QList<QTreeWidgetItem*> entries;
    for (const ManualTerm& term : manual_.Index()) {
        if (term.places.size() == 1) {
            entries << NewEntry(term.term, term.places[0].page);
            continue;
        }
        entries << NewEntry(term.term, {});
        for (const ManualPlace& place : term.places) {
            entries.back()->addChild(NewEntry(place.title, place.page));
        }
    }
    index_->addTopLevelItems(entries);
}

void HelpWindow::FilterIndex(const QString& part) {
    for (int i = 0; i < index_->topLevelItemCount(); ++i) {
        QTreeWidgetItem& entry = *index_->topLevelItem(i);
        entry.setHidden(!entry.text(0).contains(part.trimmed(), Qt::CaseInsensitive));
    }
}

void HelpWindow::Search(const QString& question) {
    const QStringList words = WordsOf(question);
    found_->clear();
    for (const Manual::Found& each : manual_.Search(words)) {
        found_->addTopLevelItem(
            NewEntry(QString("%1 (%2)").arg(each.title).arg(each.places), each.file));
    }
    page_->Mark(words);
}

void HelpWindow::GoToSearch() {
    panes_->setCurrentWidget(found_->parentWidget());
    question_->setFocus();
    question_->selectAll();
}

/// An entry with several places expands and shows them; a click on a place opens its page.
void HelpWindow::OpenEntry(const QTreeWidgetItem& entry) {
    const QString place = entry.data(0, placeRole).toString();
    if (place.isEmpty()) {
        entry.treeWidget()->expandItem(&entry);
    } else if (place != page_->Page()) {
        page_->ShowPage(place);
    }
}

void HelpWindow::SelectInContents(const QUrl& shown) {
    const QString file = shown.fileName();
    const QSignalBlocker quiet(contents_);
    contents_->setCurrentItem(nullptr);
    contents_->clearSelection();
    for (QTreeWidgetItemIterator at(contents_); *at != nullptr; ++at) {
        if ((*at)->data(0, placeRole).toString() == file) {
            contents_->setCurrentItem(*at);
        }
    }
}

void HelpWindow::ShowPage(const QString& page) {
    question_->clear();
    page_->ShowPage(page);
    page_->setFocus();
    show();
    raise();
    activateWindow();
}

} // namespace busquill
