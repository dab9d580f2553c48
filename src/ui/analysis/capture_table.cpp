#include "ui/analysis/capture_table.h"

#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "ui/analysis/kept_button.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"

#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMdiArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace busquill {

CaptureTable::CaptureTable(const FeatureParts& parts, const Names& names, MakeRows makeRows)
    : parts_(parts), makeRows_(std::move(makeRows)), stack_(new QStackedWidget),
      table_(new PanelTable(names.table)), reason_(new QLabel) {
    auto* const mistake = new QLabel;
    mistake->setObjectName(names.mistake);
    mistake->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line_ = new ExpressionLine(parts.settings, names.section, *mistake);
    line_->setObjectName(names.line);
    auto* const label = new QLabel(names.label);
    label->setBuddy(line_);
    auto* const line = new QHBoxLayout;
    line->setContentsMargins(4, 2, 4, 0);
    line->addWidget(label);
    line->addWidget(line_, 1);
    line->addWidget(new KeptButton(*line_, parts.prompts));
    line->addWidget(mistake, 1);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(line);
    layout->addWidget(stack_, 1);
    stack_->addWidget(table_);
    stack_->addWidget(reason_);
    reason_->setObjectName(names.reason);
    reason_->setAlignment(Qt::AlignCenter);
    reason_->setWordWrap(true);
    connect(table_, &QTableView::clicked, this, &CaptureTable::RowChosen);
    connect(table_, &QTableView::activated, this, &CaptureTable::RowChosen);
    connect(line_, &ExpressionLine::Changed, this, [this] {
        if (Rows() != nullptr) {
            captures_.at(document_).applied = line_->Applied();
            emit Given(line_->Applied());
        }
    });
}

CaptureTable::~CaptureTable() {
    blockSignals(true); // the panel around it is half gone
    SetModel(nullptr);
}

CaptureRows* CaptureTable::Rows() const {
    return document_ == nullptr ? nullptr : RowsOf(*document_);
}

CaptureRows* CaptureTable::RowsOf(CTesselDoc& document) const {
    const auto found = captures_.find(&document);
    return found == captures_.end() ? nullptr : found->second.rows.get();
}

bool CaptureTable::HasRows() const {
    return Rows() != nullptr && Rows()->rowCount() > 0;
}

bool CaptureTable::HasSelection() const {
    return Rows() != nullptr && table_->selectionModel()->hasSelection();
}

QString CaptureTable::WhyNoSamples() const {
    if (Rows() == nullptr) {
        return "The active window shows no capture.";
    }
    if (document_->CaptureActive()) {
        return "The capture has not ended yet.";
    }
    return document_->SampleCount(false) == 0 ? "There are no samples yet." : QString();
}

void CaptureTable::ShowEither(const QString& whyEmpty) {
    reason_->setText(HasRows() ? QString() : whyEmpty);
    busquill::ShowEither(*stack_, *table_, *reason_, HasRows());
}

void CaptureTable::CopyRows() {
    table_->CopyRows(parts_.prompts);
}

// Which capture is shown.

void CaptureTable::Follow(CMDIChildWnd* active) {
    if (!isVisible()) {
        return;
    }
    const CTraceView* const view = ViewOf(active);
    CTesselDoc* const document = view == nullptr ? nullptr : &view->Trace();
    const BoardTraits board = parts_.analyzer.Link().Traits();
    if (!IsSameBus(board, board_)) {
        board_ = board;
        ForgetRows();
    }
    if (document != document_) {
        Show(document);
    }
}

void CaptureTable::Show(CTesselDoc* document) {
    if (CaptureRows* const old = Rows()) {
        emit Leaving();
        RememberPlace();
        captures_.at(document_).typed = line_->currentText();
        old->SetActive(false);
    }
    document_ = document;
    if (document != nullptr && Rows() == nullptr) {
        FillRows(*document);
    }
    SetModel(Rows());
    if (CaptureRows* const rows = Rows()) {
        emit Shown();
        const Capture& capture = captures_.at(document);
        line_->Show(capture.applied, capture.typed);
        RestorePlace();
        rows->SetActive(isVisible());
    } else {
        line_->Show({}, {});
    }
    emit Changed();
}

void CaptureTable::SetModel(CaptureRows* rows) {
    const QItemSelectionModel* const selection = table_->selectionModel();
    table_->setModel(rows);
    delete selection;
    if (rows != nullptr) {
        connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                &CaptureTable::RowChosen);
    }
}

void CaptureTable::FillRows(CTesselDoc& document) {
    Capture& capture = captures_[&document];
    capture.rows = makeRows_(document, board_);
    CaptureRows* const rows = capture.rows.get();
    connect(rows, &QAbstractItemModel::modelAboutToBeReset, this, [this, rows] {
        if (rows == Rows()) {
            RememberPlace();
        }
    });
    connect(rows, &CaptureRows::Renewed, this, [this, rows] {
        if (rows == Rows()) {
            RestorePlace();
            emit CurrentChanged(table_->currentIndex()); // the row may have gone
        }
    });
    connect(rows, &CaptureRows::Worked, this, [this, rows, &document] {
        if (rows == Rows()) {
            emit Changed();
        }
        emit Worked(document);
    });
    if (capture.watch == nullptr) {
        capture.watch = std::make_unique<CaptureWatch>(document);
        connect(capture.watch.get(), &CaptureWatch::Updated, this,
                [this, &document](int hint) { DocumentUpdated(document, hint); });
        connect(capture.watch.get(), &CaptureWatch::Gone, this,
                [this, &document] { CaptureGone(document); });
    }
}

void CaptureTable::RememberPlace() {
    captures_.at(document_).place.Remember(*table_, [this](int row) { return Rows()->KeyOf(row); });
}

void CaptureTable::RestorePlace() {
    follows_ = true;
    captures_.at(document_).place.Restore(
        *table_, [this](std::int64_t key) { return Rows()->RowOfKey(key); });
    follows_ = false;
}

/// On another bus the same bits are other signals. The text of an expression stays: it is applied
/// to them, unless it names something that this bus does not have.
void CaptureTable::ForgetRows() {
    Show(nullptr);
    for (auto& [document, capture] : captures_) {
        capture.rows.reset();
        capture.applied.clear();
    }
}

/// Nothing that could have the keyboard is hidden or disabled before the next event: the keyboard
/// would go to another window, perhaps to the one that is being destroyed.
void CaptureTable::CaptureGone(CTesselDoc& document) {
    if (document_ == &document) {
        document_ = nullptr;
        emit Leaving();
        SetModel(nullptr);
        line_->Show({}, {});
        QMetaObject::invokeMethod(this, &CaptureTable::Changed, Qt::QueuedConnection);
    }
    emit Gone(document);
    const auto gone = captures_.find(&document);
    gone->second.watch.release()->deleteLater(); // it has told of this
    captures_.erase(gone);
}

void CaptureTable::DocumentUpdated(CTesselDoc& document, int hint) {
    Capture& capture = captures_.at(&document);
    if (capture.rows != nullptr) {
        capture.rows->DocumentChanged(hint);
    }
    if (hint == HintCaptureStarted) { // the rows that have gone are not those of the next capture
        capture.place = TablePlace();
    }
    if (&document != document_ || !isVisible()) {
        return;
    }
    if (hint == HintMarker1) {
        ShowMarker();
    } else if (hint == HintFilterChanged ||
               (hint >= HintCaptureStarted && hint <= HintDataComplete)) {
        emit Changed(); // perhaps for another reason empty
    }
}

void CaptureTable::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    if (CaptureRows* const rows = Rows()) {
        rows->SetActive(true);
        emit Changed();
    }
}

void CaptureTable::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (CaptureRows* const rows = Rows()) {
        rows->SetActive(false);
    }
}

// Rows and samples.

void CaptureTable::RowChosen(const QModelIndex& index) {
    if (!follows_ && index.isValid()) {
        document_->GoToSample(Rows()->SampleOf(index.row()), false);
    }
    emit CurrentChanged(index);
}

void CaptureTable::ShowMarker() {
    const int row = Rows()->RowOfSample(document_->Marker(1, false));
    if (row < 0) {
        return;
    }
    const QModelIndex current = table_->currentIndex();
    if (!current.isValid() || Rows()->SampleOf(current.row()) != Rows()->SampleOf(row)) {
        follows_ = true;
        // Keys that are held for the click that moved the marker do not extend the selection.
        table_->selectionModel()->setCurrentIndex(
            Rows()->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        follows_ = false;
    }
    table_->scrollTo(table_->currentIndex());
}

} // namespace busquill
