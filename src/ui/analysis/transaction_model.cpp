#include "ui/analysis/transaction_model.h"

#include "analysis/sample_findings.h"
#include "capture/trace_document.h"
#include "platform/bits.h"
#include "ui/analysis/shown_capture.h"

#include <QFontDatabase>

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

constexpr std::size_t shownWords = 4;
constexpr std::size_t cachedRows = 1000;
constexpr std::size_t piece = 4096; // records
// While samples arrive, walks take a tenth of the time, and no more than one starts in a second.
constexpr qint64 shortestPause = 1000;
constexpr qint64 pauseForWalk = 10;

const FieldColumn& FieldAt(int column) {
    return FieldColumns()[static_cast<std::size_t>(column)];
}

} // namespace

TransactionModel::TransactionModel(CTesselDoc& document, BoardTraits board,
                                   const SignalTables& tables)
    : CaptureRows(document), board_(std::move(board)), tables_(tables), reader_(board_, tables),
      work_([this] { Continue(); }) {
    if (Traffic() != nullptr) {
        fields_.emplace(*Traffic());
    }
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &TransactionModel::FollowSamples);
}

TransactionModel::~TransactionModel() = default;

bool TransactionModel::HasColumn(int column) const {
    const TransactionField field = FieldAt(column).field;
    return Traffic() != nullptr && HasField(*Traffic(), board_.IsPciXMode(), field) &&
           (field != TransactionField::Findings || SampleFindings(tables_).HasRules());
}

// Walks.

void TransactionModel::Pause() {
    work_.Stop();
    pause_.stop();
}

void TransactionModel::Resume() {
    if (next_ != nullptr) {
        work_.Resume();
    }
}

void TransactionModel::SetQuery(TransactionQuery query) {
    query_ = std::move(query);
    if (next_ != nullptr || followed_ != nullptr) {
        FindRows();
    }
}

void TransactionModel::Forget() {
    Pause();
    next_.reset();
    nextFollowed_.reset();
    if (rows_ != nullptr) {
        beginResetModel();
        rows_.reset();
        followed_.reset();
        cache_.clear();
        endResetModel();
        emit Renewed();
    }
    emit Worked();
}

/// A walk that has begun is not broken off.
bool TransactionModel::Follow() {
    Resume();
    const bool isTooEarly = pause_.isActive() && Document().IsUploading();
    if (next_ != nullptr || isTooEarly || Traffic() == nullptr) {
        return false;
    }
    pause_.stop();
    nextFollowed_ = std::make_shared<Followed>(
        Followed{TransactionIndex(board_, tables_), AbsentSamples(Document())});
    FindRows();
    return true;
}

void TransactionModel::FindRows() {
    if (nextFollowed_ == nullptr) {
        nextFollowed_ = followed_;
    }
    next_ = std::make_unique<TransactionTable>(board_, tables_, query_);
    walk_.start();
    if (IsActive()) {
        Continue();
    }
}

void TransactionModel::Continue() {
    const CapturedSamples samples = SamplesOf(Document(), nextFollowed_->absent);
    const bool isComplete = work_.Do([&] {
        const bool isLast = next_->Continue(samples, piece);
        CapturedSamples passed = samples;
        passed.records = samples.records.first(next_->Passed());
        nextFollowed_->index.Extend(passed);
        return isLast;
    });
    if (isComplete) {
        Finish();
    }
    emit Worked();
}

void TransactionModel::Finish() {
    beginResetModel();
    rows_ = std::move(next_);
    followed_ = std::move(nextFollowed_);
    cache_.clear();
    endResetModel();
    emit Renewed();
    if (Document().IsRealTime() && Document().IsUploading()) {
        pause_.start(static_cast<int>(std::max(shortestPause, walk_.elapsed() * pauseForWalk)));
    }
}

int TransactionModel::Progress() const {
    const auto total = static_cast<std::size_t>(Document().SampleCount(false));
    return next_ == nullptr || total == 0 ? 100 : static_cast<int>(next_->Passed() * 100 / total);
}

// Rows.

std::size_t TransactionModel::TransactionCount() const {
    return followed_ == nullptr ? 0 : followed_->index.Size();
}

const TransactionTotals* TransactionModel::Totals() const {
    return rows_ == nullptr ? nullptr : &rows_->Totals();
}

const Transaction& TransactionModel::At(int row) const {
    if (cache_.size() >= cachedRows) {
        cache_.clear();
    }
    const auto [entry, isNew] = cache_.try_emplace(row);
    if (isNew) {
        entry->second = followed_->index.Row(rows_->TransactionAt(static_cast<std::size_t>(row)),
                                             SamplesOf(Document(), followed_->absent), shownWords);
    }
    return entry->second;
}

std::int64_t TransactionModel::SampleOf(int row) const {
    return static_cast<std::int64_t>(
        followed_->index.StartOf(rows_->TransactionAt(static_cast<std::size_t>(row))));
}

std::int64_t TransactionModel::LastSample(int row) const {
    return At(row).lastSample - Document().FirstSampleNumber(false);
}

int TransactionModel::RowOfSample(std::int64_t sample) const {
    if (rows_ == nullptr || sample < 0 || sample >= Document().SampleCount(false)) {
        return -1;
    }
    const auto transaction = followed_->index.RowAt(static_cast<std::size_t>(sample),
                                                    SamplesOf(Document(), followed_->absent));
    const auto row = transaction ? rows_->RowOf(*transaction) : std::nullopt;
    return row ? static_cast<int>(*row) : -1;
}

TransactionModel::Column TransactionModel::ColumnAt(int column) const {
    const FieldColumn& field = FieldAt(column);
    return {field.title, field.meaning, field.isNumber};
}

QString TransactionModel::Text(int row, int column) const {
    return QString::fromStdString(fields_->Text(At(row), FieldAt(column).field));
}

int TransactionModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || rows_ == nullptr ? 0 : static_cast<int>(rows_->Size());
}

int TransactionModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(FieldColumns().size());
}

QVariant TransactionModel::data(const QModelIndex& index, int role) const {
    if (index.isValid() && role == Qt::FontRole) {
        const TransactionField field = FieldAt(index.column()).field;
        return field == TransactionField::Address || field == TransactionField::Data
                   ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                   : QVariant();
    }
    return CaptureRows::data(index, role);
}

} // namespace busquill
