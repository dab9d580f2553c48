#include "ui/analysis/capture_rows.h"

#include "capture/trace_document.h"

#include <utility>

namespace busquill {

namespace {

QVariant AlignmentOf(const CaptureRows::Column& column) {
    return static_cast<int>((column.isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

} // namespace

void CaptureRows::SetActive(bool active) {
    if (std::exchange(isActive_, active) == active) {
        return;
    }
    if (!active) {
        Pause();
    } else if (isOutdated_) {
        FollowSamples();
    } else {
        Resume();
    }
}

void CaptureRows::DocumentChanged(int hint) {
    switch (hint) {
    case HintCaptureStarted: // the samples will be freed
    case HintCaptureStopped:
    case HintDataComplete:
        isOutdated_ = true;
        Forget();
        FollowSamples();
        break;
    case HintBlockArrived:
        isOutdated_ = true;
        break;
    case HintPolled:
        FollowSamples();
        break;
    default:
        break;
    }
}

void CaptureRows::FollowSamples() {
    if (isActive_ && std::exchange(isOutdated_, false)) {
        isOutdated_ = !Follow();
    }
}

QVariant CaptureRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return Text(index.row(), index.column());
    case Qt::TextAlignmentRole:
        return AlignmentOf(ColumnAt(index.column()));
    default:
        return {};
    }
}

QVariant CaptureRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) {
        return {};
    }
    const Column column = ColumnAt(section);
    switch (role) {
    case Qt::DisplayRole:
        return column.title;
    case Qt::ToolTipRole:
        return QString("%1: %2").arg(column.title, column.meaning);
    case Qt::TextAlignmentRole:
        return AlignmentOf(column);
    default:
        return {};
    }
}

} // namespace busquill
