#include "ui/testsuites/compliance_view.h"

#include "document/hex_fields.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "testsuites/compliance_document.h"
#include "ui/controls/check_tree.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/printing.h"
#include "ui/testsuites/compliance_options_dialog.h"
#include "ui/testsuites/instructions_dialog.h"
#include "ui/testsuites/report_painter.h"
#include "ui/testsuites/result_list.h"

#include <QLineEdit>

namespace busquill {

namespace {

constexpr int captionTop = 5;
constexpr int captionHeight = 16;
constexpr int listTop = 25;
constexpr int listBottom = 125; // from the bottom of the view
constexpr int labelWidth = 100;
constexpr int narrowField = 142;
constexpr int wideField = 250;

struct FieldPlan {
    const char* label;
    int row; // from the bottom
    int left;
    int width;
};
constexpr int leftColumn = 20;
constexpr int rightColumn = 332;
constexpr std::array<FieldPlan, 6> fieldPlans = {{{"Vendor ID", 2, leftColumn, narrowField},
                                                  {"Device ID", 1, leftColumn, narrowField},
                                                  {"Function #", 0, leftColumn, narrowField},
                                                  {"Address", 2, rightColumn, narrowField},
                                                  {"Vendor Name", 1, rightColumn, wideField},
                                                  {"Class", 0, rightColumn, wideField}}};

FileQuestion QuestionFor(FileUse use) {
    return {use,
            use == FileUse::Save ? "Save Compliance Test" : "Load Compliance Test",
            "Compliance(*.cpl)",
            ".cpl",
            "",
            ""};
}

std::vector<CheckRow> RowsOf(const CheckList& list) {
    std::vector<CheckRow> rows;
    bool inGroup = false;
    for (const CheckItem& item : list) {
        inGroup = inGroup || item.isGroup;
        rows.push_back({item.isGroup || !inGroup ? 0 : 1, item.text});
    }
    return rows;
}

} // namespace

CComplianceView::CComplianceView(Parts parts)
    : CFormView(parts.settings), document_(parts.document), prompts_(parts.prompts),
      printer_(parts.printer), list_(std::move(parts.list)), tree_(new CCheckTree(this)),
      results_(new CResultList(this)),
      run_(
          {parts.link, parts.prompts, std::move(parts.timer)}, parts.document, list_,
          [this](int index) { return tree_->IsChecked(index); }, *this) {
    tree_->SetRows(RowsOf(list_));
    ShowChecks();
    connect(tree_, &CCheckTree::ChecksChanged, this, [this] {
        for (int row = 0; row < tree_->RowCount(); ++row) {
            document_.Select(row, tree_->IsChecked(row));
        }
    });
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        fields_[i] = new QLineEdit(this);
        fields_[i]->setObjectName(fieldPlans[i].label);
        fields_[i]->setReadOnly(true);
    }
    const std::pair<const char*, std::function<void()>> buttons[] = {
        {"&Find", [this] { Find(ScanDirection::First); }},
        {"< &Back", [this] { Find(ScanDirection::Back); }},
        {"&Next >", [this] { Find(ScanDirection::Next); }},
        {"&Load", [this] { Load(); }},
        {"&Save", [this] { Save(); }},
        {"&Clear All", [this] { SelectAll(false); }},
        {"&Set All", [this] { SelectAll(true); }},
        {"&Options", [this] { Options(); }},
        {"&Help", std::move(parts.showHelp)},
        {"&Close", [this] { CMDIChildWnd::FrameOf(*this)->close(); }}};
    for (int slot = 0; const auto& [text, act] : buttons) {
        AddButton(text, Form::SlotLeft(slot++), act);
    }
    const auto print = [this](QPrinter& printer) { return PrintTo(printer); };
    commands.On(CommandId::Print, [this, print] { AskAndPrint(this, prompts_, printer_, print); });
    commands.On(CommandId::PrintPreview,
                [this, print] { ShowPrintPreview(this, prompts_, printer_, print); });
    ShowDevice();
}

void CComplianceView::Go() {
    run_.Go();
}

void CComplianceView::Stop() {
    run_.Stop();
}

/// A file may have been opened before the window.
void CComplianceView::OnInitialUpdate() {
    ShowDocument();
    if (document_.loadedFromFile) {
        emit Loaded();
    }
}

void CComplianceView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) {
    if (hint != CDocument::hintLoaded) {
        update(); // a run goes on in other colours
        return;
    }
    if (run_.IsOn()) {
        run_.Stop(); // its results would go among those of the file
    }
    ShowDocument();
    emit Loaded();
}

void CComplianceView::ShowDocument() {
    ShowDevice();
    fields_[Function]->clear(); // a file does not have it
    ShowChecks();
    ShowResults();
}

void CComplianceView::OnRunning(bool running) {
    emit RunningChanged(running);
}

void CComplianceView::OnResultsCleared() {
    results_->Clear();
}

void CComplianceView::OnTestStarted(const CTestResult& test) {
    results_->Append(test);
}

void CComplianceView::OnTestEnded(const CTestResult& test) {
    results_->ReplaceLast(test);
}

OperatorAnswer CComplianceView::AskOperator(const std::string& instructions) {
    CInstructionsDialog dialog(this, instructions);
    dialog.exec();
    return dialog.Result();
}

void CComplianceView::Find(ScanDirection direction) {
    if (const auto function = run_.Find(direction)) {
        ShowDevice();
        fields_[Function]->setText(QString::number(*function));
    }
}

void CComplianceView::SelectAll(bool selected) {
    document_.SelectAll(selected);
    ShowChecks();
}

void CComplianceView::Load() {
    const std::string path = AskForFile(this, QuestionFor(FileUse::Open), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // reports its failure, updates the views
    }
}

void CComplianceView::Save() {
    const std::string path = AskForFile(this, QuestionFor(FileUse::Save), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

void CComplianceView::Options() {
    CComplianceOptionsDialog dialog(this, targetAddress_);
    if (dialog.exec() == QDialog::Accepted) {
        targetAddress_ = dialog.Address();
        run_.SendTargetAddress(targetAddress_);
    }
}

PrintFailure CComplianceView::PrintTo(QPrinter& printer) {
    return PrintReport(printer, document_.Results(),
                       {CMDIChildWnd::FrameOf(*this)->windowTitle(), PrintTime()});
}

void CComplianceView::ShowDevice() {
    const DeviceIdentity& device = document_.Device().Identity();
    const auto show = [this](Field field, const std::string& text) {
        fields_[field]->setText(QString::fromStdString(text));
        fields_[field]->setCursorPosition(0);
    };
    show(VendorId, Printf("%04x", device.vendorId));
    show(DeviceId, Printf("%04x", device.deviceId));
    show(Address, HexAddressText(device.address));
    show(VendorName, device.vendorName);
    show(ClassName, device.className);
}

void CComplianceView::ShowChecks() {
    tree_->SetChecked([this](int row) { return document_.IsSelected(row); });
}

void CComplianceView::ShowResults() {
    results_->Clear();
    for (const CTestResult& test : document_.Results()) {
        results_->Append(test);
    }
}

void CComplianceView::LayOut() {
    const int half = width() / 2;
    const int listHeight = std::max(0, height() - listBottom - listTop);
    tree_->setGeometry(Form::margin, listTop, std::max(0, half - 2 * Form::margin), listHeight);
    results_->setGeometry(half + Form::margin, listTop, std::max(0, half - 2 * Form::margin),
                          listHeight);
    AddLabel("Test Checklist", *tree_, {Form::margin, captionTop, half, captionHeight});
    AddLabel("Test Results", *results_, {half + Form::margin, captionTop, half, captionHeight});
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const FieldPlan& plan = fieldPlans[i];
        AddLabel(plan.label, *fields_[i],
                 Form::FieldPlace(plan.row, plan.left, labelWidth, height()));
        fields_[i]->setGeometry(
            Form::FieldPlace(plan.row, plan.left + labelWidth, plan.width, height()));
    }
}

} // namespace busquill
