#include "ui/analysis/bookmark_panel.h"

#include "capture/trace_document.h"
#include "ui/analysis/bookmark_dialog.h"
#include "ui/analysis/bookmark_model.h"
#include "ui/analysis/panel_table.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/bar_button.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

/// Its field takes notes of the same length as the dialog.
class NoteDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* const editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto* field = qobject_cast<QLineEdit*>(editor)) {
            field->setMaxLength(LongestTypedNote(index.data(Qt::EditRole).toString()));
        }
        return editor;
    }
};

} // namespace

BookmarkPanel::BookmarkPanel(const FeatureParts& parts)
    : parts_(parts), model_(new BookmarkModel(this)), table_(new PanelTable("BookmarkTable")),
      note_(new QLabel) {
    SetHelpPage(*this, "bookmarks.md");
    note_->setObjectName("BookmarkNote");
    note_->setWordWrap(true);
    note_->setContentsMargins(4, 0, 4, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(table_, 1);
    layout->addWidget(note_);
    MakeTable();
    MakeCommands();
    ShowNote();
}

void BookmarkPanel::MakeTable() {
    table_->setModel(model_);
    table_->setItemDelegate(new NoteDelegate(table_));
    table_->installEventFilter(this);
    const QFontMetrics text(table_->font());
    table_->setColumnWidth(BookmarkModel::Sample, text.horizontalAdvance("-00000000 "));
    table_->setColumnWidth(BookmarkModel::Time, text.horizontalAdvance("not in the capture "));
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table_, &QTableView::customContextMenuRequested, this,
            [this](const QPoint& place) { OpenMenu(table_->viewport()->mapToGlobal(place)); });
    connect(table_, &QTableView::clicked, this, &BookmarkPanel::RowChosen);
    connect(table_, &QTableView::activated, this, &BookmarkPanel::RowChosen);
    connect(table_, &QTableView::doubleClicked, this, &BookmarkPanel::EditNote);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &BookmarkPanel::RowChosen);
}

void BookmarkPanel::MakeCommands() {
    commands.On(
        CommandId::Copy, [this] { CopyRows(); },
        [this] { return table_->selectionModel()->hasSelection(); });
    commands.On(CommandId::SignalMenu, [this] {
        const QRect row = table_->visualRect(table_->currentIndex());
        OpenMenu(table_->viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint()));
    });
}

void BookmarkPanel::TakeKeyboard() {
    table_->setFocus();
}

// Which capture is shown.

void BookmarkPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
}

/// What is hidden does not follow, so nothing of it is kept.
void BookmarkPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    Show(nullptr);
}

void BookmarkPanel::Follow(CMDIChildWnd* active) {
    if (isVisible()) {
        Show(ViewOf(active));
    }
}

void BookmarkPanel::Show(CTraceView* view) {
    Listen(view);
    const CTesselDoc* const document = view == nullptr ? nullptr : &view->Trace();
    const QModelIndex current = table_->currentIndex();
    const bool isSelected = table_->selectionModel()->hasSelection();
    const bool isSame = document != nullptr && document == document_;
    const auto chosen =
        isSame && current.isValid() ? std::optional(model_->NumberAt(current.row())) : std::nullopt;
    const int top = table_->verticalScrollBar()->value();
    follows_ = true;
    model_->Show(view);
    document_ = document;
    const auto last = document == nullptr ? std::nullopt : document->LastBookmark();
    if (last && (!isSame || last != last_) && model_->rowCount() > 0) {
        ChooseRow(model_->RowOf(*last), true);
    } else if (chosen && !table_->currentIndex().isValid() && model_->rowCount() > 0) {
        table_->verticalScrollBar()->setValue(top);
        ChooseRow(model_->RowOf(*chosen), isSelected);
    }
    if (!table_->currentIndex().isValid() && model_->rowCount() > 0) {
        // Otherwise the table chooses a row itself when it gets the keyboard.
        ChooseRow(0, false);
    }
    last_ = last;
    follows_ = false;
    ShowNote();
}

/// Times become known while samples arrive.
void BookmarkPanel::Listen(CTraceView* view) {
    if (view == view_) {
        return;
    }
    if (view_ != nullptr) {
        view_->disconnect(this);
    }
    view_ = view;
    if (view != nullptr) {
        connect(view, &CTraceView::Updated, this, [this](int hint) {
            if (hint >= HintCaptureStarted) {
                table_->viewport()->update();
            }
        });
    }
}

QString BookmarkPanel::NoteOf(const CTraceView* view) const {
    if (view == nullptr) {
        return "The active window shows no capture.";
    }
    if (const int outside = model_->CountOutside(); outside > 0 && !view->Trace().CaptureActive()) {
        return QString("%1 of %2 bookmarks are about samples that the capture does not have. They "
                       "are kept.")
            .arg(outside)
            .arg(model_->rowCount());
    }
    if (model_->rowCount() > 0) {
        return {};
    }
    if (view->Trace().SampleCount(false) == 0) {
        return "There are no samples yet.";
    }
    return QString("There are no bookmarks. Analyze > Add Bookmark (%1) puts one on the sample of "
                   "marker 1, or in the middle of the window.")
        .arg(KeysOf(CommandId::AddBookmark).join(", "));
}

void BookmarkPanel::ShowNote() {
    const QString text = NoteOf(view_);
    if (text != note_->text()) {
        note_->setText(text);
    }
}

// Rows.

void BookmarkPanel::ChooseRow(int row, bool selects) {
    const QModelIndex index = model_->index(row, BookmarkModel::Note);
    table_->selectionModel()->setCurrentIndex(index, selects ? QItemSelectionModel::ClearAndSelect |
                                                                   QItemSelectionModel::Rows
                                                             : QItemSelectionModel::NoUpdate);
    table_->scrollTo(index);
}

void BookmarkPanel::RowChosen(const QModelIndex& index) {
    if (follows_ || !index.isValid() || view_ == nullptr) {
        return;
    }
    view_->Trace().GoToBookmark(model_->NumberAt(index.row()));
    last_ = view_->Trace().LastBookmark();
}

std::vector<int> BookmarkPanel::SelectedRows() const {
    const QModelIndexList selected = table_->selectionModel()->selectedRows();
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(selected.size()));
    for (const QModelIndex& index : selected) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

void BookmarkPanel::EditNote() {
    if (table_->currentIndex().isValid()) {
        const int row = table_->currentIndex().row();
        table_->edit(model_->index(row, BookmarkModel::Note));
    }
}

void BookmarkPanel::RemoveRows() {
    BookmarkChanges changes;
    for (const int row : SelectedRows()) {
        changes.emplace(model_->NumberAt(row), std::nullopt);
    }
    if (view_ != nullptr && !changes.empty()) {
        view_->Trace().ChangeBookmarks(changes);
    }
    Show(view_);
}

/// A line of titles, then the selected rows, their cells separated by tabs.
void BookmarkPanel::CopyRows() const {
    const auto line = [](const auto& cell) {
        QStringList cells;
        for (int column = 0; column < BookmarkModel::Columns; ++column) {
            cells << cell(column);
        }
        return cells.join('\t') + '\n';
    };
    QString text = line([&](int column) {
        return model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    });
    for (const int row : SelectedRows()) {
        text += line([&](int column) {
            return model_->data(model_->index(row, column), Qt::DisplayRole).toString();
        });
    }
    QGuiApplication::clipboard()->setText(text);
}

/// Acts when the menu has closed: only then can a field have the keyboard.
void BookmarkPanel::OpenMenu(const QPoint& place) {
    const bool hasRow = table_->currentIndex().isValid();
    const bool hasSelection = table_->selectionModel()->hasSelection();
    QMenu menu(this);
    const auto add = [&](const char* text, bool isEnabled) {
        QAction* const action = menu.addAction(text);
        action->setEnabled(isEnabled);
        return action;
    };
    const QAction* const go = add("&Go to Sample", hasRow);
    const QAction* const edit = add("&Edit Note", hasRow);
    const QAction* const remove = add("&Remove", hasSelection);
    const QAction* const copy = add("&Copy", hasSelection);
    const QAction* const chosen = menu.exec(place);
    if (chosen == go) {
        RowChosen(table_->currentIndex());
    } else if (chosen == edit) {
        EditNote();
    } else if (chosen == remove) {
        RemoveRows();
    } else if (chosen == copy) {
        CopyRows();
    }
}

/// Whether a key in the table has been dealt with.
bool BookmarkPanel::KeyPressed(const QKeyEvent& key) {
    if (key.modifiers() != Qt::NoModifier) {
        return false; // Ctrl+F2 at the last bookmark edits nothing
    }
    switch (key.key()) {
    case Qt::Key_F2:
        EditNote();
        return true;
    case Qt::Key_Delete:
        RemoveRows();
        return true;
    case Qt::Key_Escape:
        emit Left();
        return true;
    default:
        return false;
    }
}

bool BookmarkPanel::eventFilter(QObject* watched, QEvent* event) {
    return (event->type() == QEvent::KeyPress && KeyPressed(*static_cast<QKeyEvent*>(event))) ||
           Panel::eventFilter(watched, event);
}

} // namespace busquill
