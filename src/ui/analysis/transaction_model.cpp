#include "ui/analysis/transaction_model.h"

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
constexpr int pieceTime = 20;       // milliseconds between events
// While samples arrive, walks take a tenth of the time, and no more than one starts in a second.
constexpr qint64 shortestPause = 1000;
constexpr qint64 pauseForWalk = 10;

const FieldColumn& ColumnAt(int column) {
    return FieldColumns()[static_cast<std::size_t>(column)];
}

} // namespace

TransactionModel::TransactionModel(CTesselDoc& document, BoardTraits board,
                                   const SignalTables& tables)
    : document_(document), board_(std::move(board)), tables_(tables), reader_(board_, tables) {
    if (Traffic() != nullptr) {
        fields_.emplace(*Traffic());
    }
    work_.setSingleShot(true);
    connect(&work_, &QTimer::timeout, this, &TransactionModel::Continue);
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &TransactionModel::FollowUpload);
}

TransactionModel::~TransactionModel() = default;

bool TransactionModel::HasColumn(int column) const {
    return Traffic() != nullptr &&
           HasField(*Traffic(), board_.IsPciXMode(), ColumnAt(column).field);
}

// Walks.

void TransactionModel::SetActive(bool active) {
    if (std::exchange(isActive_, active) == active) {
        return;
    }
    if (!active) {
        work_.stop();
        pause_.stop();
    } else if (next_ != nullptr) {
        work_.start(0);
    } else if (isOutdated_) {
        Begin();
    }
}

void TransactionModel::DocumentChanged(int hint) {
    switch (hint) {
    case HintCaptureStarted: // the samples will be freed
    case HintCaptureStopped:
    case HintDataComplete:
        Forget();
        if (isActive_) {
            Begin();
        }
        break;
    case HintBlockArrived:
        isOutdated_ = true;
        break;
    case HintPolled:
        if (!pause_.isActive() || !document_.IsUploading()) {
            FollowUpload();
        }
        break;
    default:
        break;
    }
}

void TransactionModel::SetQuery(TransactionQuery query) {
    query_ = std::move(query);
    if (next_ != nullptr || followed_ != nullptr) {
        FindRows();
    }
}

void TransactionModel::Forget() {
    work_.stop();
    pause_.stop();
    isOutdated_ = true;
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

void TransactionModel::FollowUpload() {
    if (isActive_ && isOutdated_ && next_ == nullptr) {
        Begin();
    }
}

void TransactionModel::Begin() {
    if (Traffic() == nullptr) {
        return;
    }
    pause_.stop();
    isOutdated_ = false;
    nextFollowed_ = std::make_shared<Followed>(
        Followed{TransactionIndex(board_, tables_), AbsentSamples(document_)});
    FindRows();
}

void TransactionModel::FindRows() {
    if (nextFollowed_ == nullptr) {
        nextFollowed_ = followed_;
    }
    next_ = std::make_unique<TransactionTable>(board_, tables_, query_);
    walk_.start();
    if (isActive_) {
        Continue();
    }
}

void TransactionModel::Continue() {
    const CapturedSamples samples = SamplesOf(document_, nextFollowed_->absent);
    QElapsedTimer time;
    time.start();
    bool isComplete = false;
    do {
        isComplete = next_->Continue(samples, piece);
        CapturedSamples passed = samples;
        passed.records = samples.records.first(next_->Passed());
        nextFollowed_->index.Extend(passed);
    } while (!isComplete && time.elapsed() < pieceTime);
    if (isComplete) {
        Finish();
    } else {
        work_.start(0);
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
    if (document_.IsRealTime() && document_.IsUploading()) {
        pause_.start(static_cast<int>(std::max(shortestPause, walk_.elapsed() * pauseForWalk)));
    }
}

int TransactionModel::Progress() const {
    const auto total = static_cast<std::size_t>(document_.SampleCount(false));
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
                                             SamplesOf(document_, followed_->absent), shownWords);
    }
    return entry->second;
}

std::int64_t TransactionModel::FirstSample(int row) const {
    return static_cast<std::int64_t>(
        followed_->index.StartOf(rows_->TransactionAt(static_cast<std::size_t>(row))));
}

std::int64_t TransactionModel::LastSample(int row) const {
    return At(row).lastSample - document_.FirstSampleNumber(false);
}

int TransactionModel::RowOfSample(std::int64_t sample) const {
    if (rows_ == nullptr || sample < 0 || sample >= document_.SampleCount(false)) {
        return -1;
    }
    const auto transaction = followed_->index.RowAt(static_cast<std::size_t>(sample),
                                                    SamplesOf(document_, followed_->absent));
    const auto row = transaction ? rows_->RowOf(*transaction) : std::nullopt;
    return row ? static_cast<int>(*row) : -1;
}

QString TransactionModel::Text(int row, int column) const {
    return QString::fromStdString(fields_->Text(At(row), ColumnAt(column).field));
}

int TransactionModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || rows_ == nullptr ? 0 : static_cast<int>(rows_->Size());
}

int TransactionModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(FieldColumns().size());
}

QVariant TransactionModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const FieldColumn& column = ColumnAt(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return Text(index.row(), index.column());
    case Qt::TextAlignmentRole:
        return static_cast<int>((column.isNumber ? Qt::AlignRight : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    case Qt::FontRole:
        return column.field == TransactionField::Address || column.field == TransactionField::Data
                   ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                   : QVariant();
    default:
        return {};
    }
}

QVariant TransactionModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return ColumnAt(section).title;
    case Qt::ToolTipRole:
        return QString("%1: %2").arg(ColumnAt(section).title, ColumnAt(section).meaning);
    case Qt::TextAlignmentRole:
        return static_cast<int>((ColumnAt(section).isNumber ? Qt::AlignRight : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    default:
        return {};
    }
}

} // namespace busquill
