#include "ui/testsuites/backplane_view.h"

#include "testsuites/backplane_document.h"
#include "ui/controls/check_tree.h"
#include "ui/framework/window_timer.h"
#include "ui/testsuites/backplane_options_dialog.h"

namespace busquill {

CBackplaneTestView::CBackplaneTestView(CBackplaneTestDoc& document, Parts parts)
    : CCheckSuiteView(document, std::move(parts),
                      {"Backplane Test Checklist",
                       // A name without an extension gets that of anomaly detection.
                       {.title = "Backplane Test",
                        .filter = "Backplane Test(*.bpt)",
                        .extension = ".adt",
                        .otherExtension = ".bpt"}}),
      document_(document),
      run_(
          {With().link, With().prompts, std::make_unique<WindowTimer>(nullptr, With().mainThread)},
          document, document.Table(), [this](int row) { return Tree().IsChecked(row); }, *this) {}

void CBackplaneTestView::OnUpdate(DocumentView* /*sender*/, int hint,
                                  const HintObject* /*object*/) {
    if (hint != CDocument::hintLoaded) {
        update(); // a run goes on in other colours
        return;
    }
    if (run_.IsOn()) {
        run_.Stop(); // its results would go among those of the file
    }
    RefreshTree();
    ShowResults();
}

void CBackplaneTestView::ShowResults() {
    ClearResults();
    for (const std::string& line : document_.Results()) {
        AddResult(line);
    }
    SelectResult(0);
}

void CBackplaneTestView::Options() {
    CBackplaneOptionsDlg dialog(this, run_.sensitivity);
    if (dialog.exec() == QDialog::Accepted) {
        run_.sensitivity = dialog.Sensitivity();
    }
}

void CBackplaneTestView::OnRunning(bool running) {
    emit RunningChanged(running);
}

void CBackplaneTestView::OnResultsCleared() {
    ClearResults();
}

void CBackplaneTestView::OnSignal(const std::string& line) {
    AddResult(line);
    SelectLastResult();
}

void CBackplaneTestView::OnResult(const std::string& line) {
    AddResult(line);
}

} // namespace busquill
