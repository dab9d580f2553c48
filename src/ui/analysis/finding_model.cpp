#include "ui/analysis/finding_model.h"

#include "capture/trace_document.h"
#include "platform/bits.h"
#include "signals/cell_text.h"
#include "ui/analysis/shown_capture.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace busquill {

namespace {

constexpr std::size_t searchedAtOnce = 16384; // samples
// Rows are made again after this time, or after ten times as long as it takes.
constexpr qint64 shortestRowPause = 200; // milliseconds
constexpr qint64 pauseForRows = 10;

constexpr std::array<CaptureRows::Column, FindingModel::columns> columnTexts{{
    {"Sample", "the number of the sample; the trigger is 0", true},
    {"Time", "since the trigger", true},
    {"Kind", "a broken rule or an anomaly that the board has found, or a hit of the expression",
     false},
    {"Text", "what was found; for a hit, what the listing decodes in the sample", false},
}};

/// Whether a column of the listing tells what the bus does in a sample.
bool TellsTraffic(const CSignal& signal) {
    if (signal.decoded == nullptr || signal.hidden) {
        return false;
    }
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Label: // findings have rows of their own
    case DecodeKind::Time:
    case DecodeKind::Delta:
    case DecodeKind::Accum:
    case DecodeKind::Sample:
        return false;
    default:
        return true;
    }
}

} // namespace

FindingModel::FindingModel(CTesselDoc& document, BoardTraits board, const SignalTables& tables)
    : CaptureRows(document), board_(std::move(board)), findings_(tables),
      work_([this] { Continue(); }) {
    show_.setSingleShot(true);
    connect(&show_, &QTimer::timeout, this, &FindingModel::MakeRows);
}

// Searches.

void FindingModel::DocumentChanged(int hint) {
    CaptureRows::DocumentChanged(hint);
    if (hint == HintFilterChanged && onlyShown_) {
        MakeRows();
    }
}

void FindingModel::Pause() {
    work_.Stop();
    show_.stop();
}

void FindingModel::Resume() {
    workBegun_ = Left();
    if (IsActive()) {
        Continue();
    }
}

void FindingModel::Forget() {
    findingSearch_.reset();
    hitSearch_.reset();
    work_.Stop();
    MakeRows();
}

SampleSearch FindingModel::MakeSearch(const SampleCondition& condition) const {
    const auto test = [condition](const SampleBlock& block) { return condition.MatchesOf(block); };
    if (!condition.NeedsTimes()) {
        return SampleSearch(test);
    }
    const auto sinceTrigger = [this](std::size_t sample) {
        return Document()
            .stateList.TimeFrom(Document().Marker(0, false), static_cast<std::int64_t>(sample))
            .value_or(0);
    };
    return SampleSearch(test, SampleSearch::Times{sinceTrigger, SampleTime(Document().stateList)});
}

bool FindingModel::Follow() {
    if (!findingSearch_) {
        findingSearch_.emplace(
            [this](const SampleBlock& block) { return findings_.In(block.records); });
        if (condition_) {
            hitSearch_.emplace(MakeSearch(*condition_));
        }
    }
    absent_ = AbsentSamples(Document());
    const CapturedSamples samples = SamplesOf(Document(), absent_);
    findingSearch_->Follow(samples);
    if (hitSearch_) {
        hitSearch_->Follow(samples);
    }
    Resume();
    return true;
}

void FindingModel::SetExpression(std::string text, std::optional<SampleCondition> condition) {
    expression_ = std::move(text);
    ++searches_;
    condition_ = std::move(condition);
    hitSearch_.reset();
    if (condition_ && findingSearch_) {
        hitSearch_.emplace(MakeSearch(*condition_));
        hitSearch_->Follow(SamplesOf(Document(), absent_));
    }
    pause_ = 0; // the old hits are not to be seen any more
    Resume();
}

std::size_t FindingModel::Left() const {
    return (findingSearch_ ? findingSearch_->Left() : 0) + (hitSearch_ ? hitSearch_->Left() : 0);
}

void FindingModel::Continue() {
    const CapturedSamples samples = SamplesOf(Document(), absent_);
    work_.Do([&] {
        return (!findingSearch_ || findingSearch_->Continue(samples, searchedAtOnce)) &&
               (!hitSearch_ || hitSearch_->Continue(samples, searchedAtOnce));
    });
    RequestRows();
    emit Worked();
}

int FindingModel::Progress() const {
    return workBegun_ == 0 ? 100 : 100 - static_cast<int>(Left() * 100 / workBegun_);
}

bool FindingModel::HasAllHits() const {
    return condition_ && !IsOutdated() && hitSearch_ && hitSearch_->Left() == 0;
}

std::span<const std::uint32_t> FindingModel::Hits() const {
    return hitSearch_ ? hitSearch_->Found() : std::span<const std::uint32_t>();
}

// Rows.

void FindingModel::SetListed(Listed listed) {
    if (std::exchange(listed_, listed) != listed) {
        MakeRows();
    }
}

void FindingModel::SetOnlyShown(bool onlyShown) {
    if (std::exchange(onlyShown_, onlyShown) != onlyShown) {
        MakeRows();
    }
}

void FindingModel::RequestRows() {
    const qint64 elapsed = sinceRows_.isValid() ? sinceRows_.elapsed() : pause_;
    if (elapsed >= pause_) {
        MakeRows();
    } else if (!show_.isActive()) {
        show_.start(static_cast<int>(pause_ - elapsed));
    }
}

void FindingModel::MakeRows() {
    show_.stop();
    QElapsedTimer time;
    time.start();
    using Words = std::span<const std::uint32_t>;
    const Words findings = findingSearch_ ? findingSearch_->Found() : Words();
    const Words listedFindings = listed_ == Listed::Hits ? Words() : findings;
    const Words listedHits = listed_ == Listed::Findings ? Words() : Hits();
    findingCount_ = CountBits(findings);
    hitCount_ = CountBits(Hits());
    FoundRows rows = onlyShown_ ? FoundRows(listedFindings, listedHits, Document().RowSamples())
                                : FoundRows(listedFindings, listedHits);
    if (rows != rows_) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
        emit Renewed();
    }
    pause_ = std::max(shortestRowPause, time.elapsed() * pauseForRows);
    sinceRows_.start();
    emit Worked();
}

std::int64_t FindingModel::SampleOf(int row) const {
    return static_cast<std::int64_t>(rows_.At(static_cast<std::size_t>(row)).sample);
}

int FindingModel::RowFrom(std::int64_t sample) const {
    return static_cast<int>(
        rows_.CountBefore(static_cast<std::size_t>(std::max<std::int64_t>(sample, 0))));
}

int FindingModel::RowOfSample(std::int64_t sample) const {
    const int row = RowFrom(sample);
    return sample >= 0 && row < rowCount() && SampleOf(row) == sample ? row : -1;
}

std::int64_t FindingModel::KeyOf(int row) const {
    const FoundRows::Row at = rows_.At(static_cast<std::size_t>(row));
    return static_cast<std::int64_t>(at.sample) * 2 + (at.isHit ? 1 : 0);
}

int FindingModel::RowOfKey(std::int64_t key) const {
    const auto row = rows_.Find({static_cast<std::size_t>(key / 2), key % 2 != 0});
    return row ? static_cast<int>(*row) : -1;
}

/// Empty where samples between it and the trigger are missing: the time would be too short.
QString FindingModel::TimeText(std::int64_t sample) const {
    const std::int64_t trigger = Document().Marker(0, false);
    const auto time = Document().stateList.TimeFrom(trigger, sample);
    if (!time ||
        !Document().HasAllSamples(std::min(trigger, sample), std::max(trigger, sample), false)) {
        return {};
    }
    return QString::fromStdString(FormatTimeSince(*time, sample < trigger, false));
}

QString FindingModel::FindingText(std::int64_t sample) const {
    const auto record = Document().GetSample(sample, false);
    const std::uint8_t rule = record ? findings_.RuleOf(*record) : std::uint8_t{0};
    if (rule == 0) {
        return {};
    }
    const std::string text = findings_.TextOfRule(rule);
    return text.empty() ? QString("Rule %1").arg(rule) : QString::fromStdString(text);
}

QString FindingModel::HitText(std::int64_t sample) const {
    const auto record = Document().GetSample(sample, false);
    if (!record) {
        return {};
    }
    ListedSample listed;
    listed.index = static_cast<std::size_t>(sample);
    listed.number = sample + Document().FirstSampleNumber(false);
    listed.record = &*record;
    QStringList texts;
    for (const auto& signal : Document().stateList.All()) {
        if (!TellsTraffic(*signal)) {
            continue;
        }
        const QString value =
            QString::fromStdString(CellText(board_, *signal, listed, false)).trimmed();
        if (!value.isEmpty()) {
            texts << QString::fromStdString(signal->RowName()) + ' ' + value;
        }
    }
    return texts.join(", ");
}

QString FindingModel::Text(int row, int column) const {
    const FoundRows::Row at = rows_.At(static_cast<std::size_t>(row));
    const auto sample = static_cast<std::int64_t>(at.sample);
    switch (column) {
    case Sample:
        return QString::number(sample + Document().FirstSampleNumber(false));
    case Time:
        return TimeText(sample);
    case Kind:
        if (at.isHit) {
            return "Hit";
        }
        if (const auto record = Document().GetSample(sample, false)) {
            const bool isAnomaly = findings_.IsAnomaly(*record);
            return findings_.RuleOf(*record) == 0 ? "Anomaly"
                   : isAnomaly                    ? "Rule, anomaly"
                                                  : "Rule";
        }
        return {};
    default:
        return at.isHit ? HitText(sample) : FindingText(sample);
    }
}

int FindingModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.Size());
}

int FindingModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

FindingModel::Column FindingModel::ColumnAt(int column) const {
    return columnTexts[static_cast<std::size_t>(column)];
}

} // namespace busquill
