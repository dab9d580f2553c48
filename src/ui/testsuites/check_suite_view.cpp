#include "ui/testsuites/check_suite_view.h"

#include "testsuites/check_table_document.h"
#include "ui/controls/check_tree.h"
#include "ui/framework/mdi_child.h"

#include <QHeaderView>
#include <QListWidget>
#include <QScrollBar>

namespace busquill {

namespace {

constexpr int titleTop = 5;
constexpr int titleHeight = 20;
constexpr int listTop = 45;
constexpr int listBottom = 50; // from the bottom of the view
constexpr int listGap = 20;

std::vector<CheckRow> RowsOf(CheckTable table) {
    std::vector<CheckRow> rows;
    for (const CheckTableRow& row : table) {
        rows.push_back({row.level, std::string(row.text)});
    }
    return rows;
}

} // namespace

CCheckSuiteView::CCheckSuiteView(CheckTableDocument& document, Parts parts, Words words)
    : CFormView(parts.settings), document_(document), parts_(std::move(parts)),
      words_(std::move(words)), tree_(new CCheckTree(this)), results_(new QListWidget(this)) {
    tree_->SetRows(RowsOf(document.Table()));
    tree_->setAccessibleName(words_.checklistTitle);
    results_->setAccessibleName("Test Results");
    // Long texts can be scrolled to.
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    results_->setTextElideMode(Qt::ElideNone);
    connect(tree_, &CCheckTree::Used, this, &CCheckSuiteView::ReadTree);
    struct ButtonPlan {
        const char* text;
        int left;
        std::function<void()> act;
    };
    for (const ButtonPlan& plan :
         {ButtonPlan{"&Load", 10, [this] { Load(); }},
          {"&Save", 90, [this] { Save(); }},
          {"&Clear All", 170, [this] { EnableAll(false); }},
          {"&Set All", 250, [this] { EnableAll(true); }},
          {"&Options", 370, [this] { Options(); }},
          {"&Help", 460, parts_.showHelp},
          {"&Close", 550, [this] { CMDIChildWnd::FrameOf(*this)->close(); }}}) {
        AddButton(plan.text, plan.left, plan.act);
    }
    CCheckSuiteView::RefreshTree();
}

void CCheckSuiteView::RefreshTree() {
    tree_->SetChecked([this](int row) { return document_.IsEnabled(row); });
}

void CCheckSuiteView::EnableAll(bool enabled) {
    document_.EnableAll(enabled);
    RefreshTree();
}

void CCheckSuiteView::ReadTree() {
    for (int row = 0; row < tree_->RowCount(); ++row) {
        document_.Enable(row, tree_->IsChecked(row));
    }
    OnTreeRead();
}

void CCheckSuiteView::ClearResults() {
    results_->clear();
}

void CCheckSuiteView::AddResult(std::string_view line) {
    const QScrollBar& bar = *results_->verticalScrollBar();
    const bool atEnd = bar.value() == bar.maximum();
    results_->addItem(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())));
    if (atEnd) {
        results_->scrollToBottom();
    }
}

void CCheckSuiteView::SelectResult(int row) {
    results_->setCurrentRow(row);
}

void CCheckSuiteView::SelectLastResult() {
    SelectResult(results_->count() - 1);
}

std::string CCheckSuiteView::AskFor(FileUse use) {
    FileQuestion question = words_.file;
    question.use = use;
    question.title = (use == FileUse::Save ? "Save " : "Load ") + question.title;
    return AskForFile(this, question, parts_.prompts);
}

void CCheckSuiteView::Load() {
    if (const std::string path = AskFor(FileUse::Open); !path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // reports its failure
        OnFileRead();
    }
}

void CCheckSuiteView::Save() {
    if (const std::string path = AskFor(FileUse::Save); !path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

void CCheckSuiteView::LayOut() {
    const int listWidth = std::max(0, width() / 2 - 2 * Form::margin);
    const int listHeight = std::max(0, height() - listBottom - listTop);
    tree_->setGeometry(Form::margin, listTop, listWidth, listHeight);
    results_->setGeometry(Form::margin + listWidth + listGap, listTop, listWidth, listHeight);
    AddLabel(words_.checklistTitle, *tree_, {tree_->x(), titleTop, listWidth, titleHeight});
    AddLabel("Test Results", *results_, {results_->x(), titleTop, listWidth, titleHeight});
}

} // namespace busquill
