#include "capture/trace_document.h"

#include "capture/analyzer.h"
#include "capture/record_pattern.h"
#include "capture/trace_file.h"
#include "platform/working_directory.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace busquill {

CTesselDoc::CTesselDoc(const NewTraceContext& context, Prompts& prompts)
    : waveformList(context.tables), stateList(context.tables), zoomList(context.tables),
      searchPattern(context.tables), filterPattern(context.tables), setup(context.tables),
      prompts_(prompts), isRealTime_(context.newDocRealTime), cloneSource_(context.cloneSource),
      boardCapture_(context.analyzer == nullptr ? nullptr : &context.analyzer->Capture()),
      saveTrace_(context.saveTrace), onReading_(context.onReading),
      bookmarksWritten_(context.bookmarksWritten), captureReplaced_(context.captureReplaced),
      bookmarks_(prompts) {
    searchPattern.BuildFromTables(1, ModeEvents);
    filterPattern.BuildFromTables(1, ModeEvents);
    if (isRealTime_ && boardCapture_ != nullptr) {
        auto timer = context.makeTimer ? context.makeTimer() : nullptr;
        run_ = std::make_unique<CaptureRun>(
            BoardRun::Parts{context.analyzer->Link(), prompts, std::move(timer)}, *boardCapture_,
            *this);
    }
}

// Closing any trace ends the upload, even one from a file.
CTesselDoc::~CTesselDoc() {
    if (boardCapture_ != nullptr) {
        boardCapture_->upload.CancelUpload();
    }
}

bool CTesselDoc::OnNewDocument() {
    if (cloneSource_ != nullptr) {
        waveformList.CopyFrom(cloneSource_->waveformList);
        stateList.CopyFrom(cloneSource_->stateList);
        zoomList.CopyFrom(cloneSource_->zoomList);
        setup.CopyFrom(cloneSource_->setup);
        cloneSource_ = nullptr;
    } else {
        BuildDefaultLists();
    }
    RebuildMaps(0, 0);
    markers_.Clear();
    return true;
}

void CTesselDoc::BuildDefaultLists() {
    waveformList.BuildFromTables(0, ModeWaveform);
    stateList.BuildFromTables(0, ModeState);
    zoomList.BuildFromTables(0, ModeState);
}

bool CTesselDoc::OnOpenDocument(const std::string& path) {
    loadedFromFile_ = true;
    const TraceFileContents contents =
        ReadTraceFile({comment, setup, stateList, waveformList, zoomList}, store, excludedBits,
                      path, prompts_, [&](std::uint64_t bytes) {
                          if (onReading_) {
                              onReading_(path, bytes);
                          }
                      });
    if (!contents.loaded) {
        return false;
    }
    hasStateList_ = contents.stateList;
    hasZoomSamples_ = contents.zoomSamples;
    setupName = setup.name;
    sampling = SamplingOf(setup);
    fileName = BaseNameOf(path);
    bookmarks_.Open(path);
    RebuildMapsFromFile();
    return true;
}

bool CTesselDoc::OnSaveDocument(const std::string& path) {
    if (!saveTrace_ || !saveTrace_(*this, path)) {
        return false;
    }
    const bool isOther = !bookmarks_.AreBeside(path);
    bookmarks_.SaveBeside(path);
    if (!isOther) {
        TellOthersOfBookmarks();
    } else if (captureReplaced_) {
        captureReplaced_(*this, path);
    }
    return true;
}

void CTesselDoc::OnSaved(const std::string& path) {
    if (isRealTime_) {
        CDocument::OnSaved(path);
        bookmarks_.SetFile(path);
        if (!bookmarks_.AreInFile()) {
            SetModifiedFlag(); // its notes are not saved
        }
    }
}

CaptureRun& CTesselDoc::Run() const noexcept {
    assert(run_);
    return *run_;
}

bool CTesselDoc::IsRunning() const noexcept {
    return run_ && boardCapture_->IsRunning();
}

bool CTesselDoc::IsUploading() const {
    return run_ && boardCapture_->upload.IsUploading();
}

void CTesselDoc::FetchNext(std::int64_t sample) {
    if (sample >= 0 && IsUploading()) {
        boardCapture_->upload.SetPriorityIndex(static_cast<std::uint32_t>(sample));
    }
}

CSampleStore& CTesselDoc::GetStore() noexcept {
    return run_ ? boardCapture_->store : store;
}

const CSampleStore& CTesselDoc::GetStore() const noexcept {
    return const_cast<CTesselDoc*>(this)->GetStore();
}

std::optional<SampleRecord> CTesselDoc::GetSample(std::int64_t index, bool zoom) const {
    if (index < 0 || index >= maxSamples) {
        return std::nullopt;
    }
    const auto i = static_cast<std::uint32_t>(index);
    return zoom ? GetStore().GetZoomSample(i) : GetStore().GetSample(i);
}

/// The next capture is saved to another file.
void CTesselDoc::ForgetSamples() {
    filterPattern.BuildFromTables(1, ModeEvents);
    RebuildMaps(0, 0);
    markers_.Clear();
    bookmarks_.Forget();
    lastBookmark_.reset();
    markedSamples_.reset();
    SetPathName("");
    SetModifiedFlag();
}

void CTesselDoc::OnCaptureStarted() {
    captureActive_ = true;
    sampling = SamplingOf(setup);
    boardCapture_->upload.SetObserver(nullptr);
    ForgetSamples();
    UpdateAllViews(nullptr, HintCaptureStarted);
    hasData_ = true;
}

void CTesselDoc::OnCaptureStopped() {
    RebuildMaps(GetStore().SamplesBefore(), GetStore().SamplesAfter());
    UpdateAllViews(nullptr, HintCaptureStopped);
    boardCapture_->upload.SetObserver(this);
    captureActive_ = false;
}

void CTesselDoc::OnPolled(const RunState& /*state*/) {
    FlushBlockUpdates();
    UpdateAllViews(nullptr, HintPolled);
}

void CTesselDoc::ClearData() {
    boardCapture_->upload.CancelUpload();
    boardCapture_->upload.FreeSamples();
    ForgetSamples();
    captureActive_ = false; // the capture may have ended since the last poll
    hasData_ = false;
    // The same as after a capture that ended without samples.
    UpdateAllViews(nullptr, HintCaptureStarted);
    UpdateAllViews(nullptr, HintCaptureStopped);
}

void CTesselDoc::LoadSignal(CSignalList& list, CSignal& signal, bool zoom) {
    // During a capture, the store still holds the samples of the one before.
    const bool shown = zoom || rows_.SampleCount() > 0;
    if (!shown) {
        list.LoadSignal(&signal, 0, {});
    } else if (isRealTime_) {
        list.LoadSignal(&signal, 0, GetStore().AllSamples(zoom));
    } else {
        const auto absent = zoom ? std::span<const std::uint32_t>() : excludedBits;
        list.LoadSignal(&signal, 0, store.GetData(zoom), absent);
    }
}

void CTesselDoc::SetSetupName(const std::string& path, const std::string& name) {
    setupPath = path;
    setupName = name;
    UpdateAllViews(nullptr, HintSetupNameChanged);
}

std::int64_t CTesselDoc::RowCount(bool zoom) const noexcept {
    return zoom ? zoomSampleCount : rows_.RowCount();
}

std::int64_t CTesselDoc::SampleCount(bool zoom) const noexcept {
    return zoom ? zoomSampleCount : rows_.SampleCount();
}

std::int64_t CTesselDoc::FirstSampleNumber(bool zoom) const noexcept {
    return zoom ? zoomFirstNumber : rows_.FirstSampleNumber();
}

std::int64_t CTesselDoc::RowToSample(std::int64_t row, bool zoom) const noexcept {
    return zoom ? row : rows_.RowToSample(row);
}

std::int64_t CTesselDoc::SampleToRow(std::int64_t sample, bool zoom) const noexcept {
    return zoom ? sample : rows_.SampleToRow(sample);
}

bool CTesselDoc::IsRowSample(std::int64_t sample, bool zoom) const noexcept {
    return zoom || rows_.IsRowSample(sample);
}

bool CTesselDoc::IsValidSample(std::int64_t sample, bool zoom) const noexcept {
    if (zoom) {
        return sample >= 0 && sample < zoomSampleCount;
    }
    return sample >= 0 && arrived_.Test(static_cast<std::size_t>(sample));
}

bool CTesselDoc::HasAllSamples(std::int64_t first, std::int64_t last, bool zoom) const {
    if (zoom || first < 0) {
        return first >= 0 && last < zoomSampleCount;
    }
    const auto begin = static_cast<std::size_t>(first);
    const auto end = static_cast<std::size_t>(last) + 1;
    if (end > arrived_.Size()) {
        return false;
    }
    // Not further than to the last one: a table asks this for each of its cells.
    const std::size_t words = WordsFor(end);
    const auto excluded = std::span(excludedBits).first(std::min(words, excludedBits.size()));
    return FirstSet(excluded, begin) >= std::min(end, excluded.size() * wordBits) &&
           FirstUnset(arrived_.Words().first(words), begin) >= end;
}

std::int64_t CTesselDoc::Marker(int which, bool zoom) const noexcept {
    return (zoom ? zoomMarkers_ : markers_)[which];
}

void CTesselDoc::SetMarker(int which, std::int64_t index) {
    if (markers_.Set(which, index, rows_.SampleCount())) {
        MarkerMoved(which, HintMarker1);
    }
}

void CTesselDoc::SetZoomMarker(int which, std::int64_t index) {
    if (zoomMarkers_.Set(which, index, zoomSampleCount)) {
        MarkerMoved(which, HintZoomMarker1);
    }
}

void CTesselDoc::ToggleMarker(int which, std::int64_t sample, bool zoom) {
    if (sample < 0) {
        return;
    }
    const std::int64_t index = Marker(which, zoom) == sample ? -1 : sample;
    zoom ? SetZoomMarker(which, index) : SetMarker(which, index);
}

void CTesselDoc::StepMarker(int which, bool forward, bool zoom) {
    const std::int64_t from = Marker(which, zoom);
    if (from < 0 || RowCount(zoom) == 0) {
        return;
    }
    std::int64_t row = SampleToRow(from, zoom);
    const std::int64_t near = RowToSample(row, zoom); // another sample if the filter hides this one
    if (forward ? near <= from : near >= from) {
        row += forward ? 1 : -1;
    }
    const std::int64_t to = RowToSample(row, zoom);
    if (to >= 0) {
        zoom ? SetZoomMarker(which, to) : SetMarker(which, to);
    }
}

void CTesselDoc::MarkerMoved(int which, int firstHint) {
    if (which == 0) {
        return;
    }
    if (isRealTime_) {
        SetModifiedFlag();
    }
    UpdateAllViews(nullptr, firstHint + which - 1);
}

void CTesselDoc::GoToSample(std::int64_t sample, bool zoom) {
    GoToSampleHint hint;
    hint.sample = sample;
    hint.zoom = zoom;
    UpdateAllViews(nullptr, HintGoToSample, &hint);
}

void CTesselDoc::ApplyFilter(std::int64_t topSample) {
    // After a run that ended without samples the store may still hold those of the run before.
    const auto records = GetStore().GetData(false);
    const auto count = std::min(records.size(), static_cast<std::size_t>(rows_.SampleCount()));
    rows_.Filter(records.first(count), RecordPattern(filterPattern), excludedBits);
    filterExpression_.clear();
    ShowFiltered(topSample);
}

void CTesselDoc::ApplyFilter(const std::string& expression, std::span<const std::uint32_t> matches,
                             std::int64_t topSample) {
    filterPattern.BuildFromTables(1, ModeEvents);
    rows_.Keep(matches, excludedBits);
    filterExpression_ = expression;
    ShowFiltered(topSample);
}

void CTesselDoc::ShowFiltered(std::int64_t topSample) {
    if (const std::int64_t sample = rows_.RowToSample(rows_.SampleToRow(topSample)); sample != -1) {
        GoToSample(sample, false);
    }
    UpdateAllViews(nullptr, HintFilterChanged);
}

bool CTesselDoc::SetBookmark(std::int64_t number, std::optional<std::string> note) {
    return ChangeBookmarks({{number, std::move(note)}});
}

bool CTesselDoc::ChangeBookmarks(const BookmarkChanges& changes) {
    if (!bookmarks_.Change(changes)) {
        return false;
    }
    if (isRealTime_ && GetPathName().empty()) {
        SetModifiedFlag();
    }
    UpdateAllViews(nullptr, HintBookmarks);
    TellOthersOfBookmarks();
    return true;
}

void CTesselDoc::RenewBookmarks() {
    bookmarks_.Renew();
    UpdateAllViews(nullptr, HintBookmarks);
}

void CTesselDoc::OnFileReplaced() {
    bookmarks_.OnFileReplaced();
    if (isRealTime_) { // it is in no file now, and must not take that of the other one
        SetPathName("");
        SetModifiedFlag();
    }
}

void CTesselDoc::TellOthersOfBookmarks() const {
    if (bookmarksWritten_ && !GetPathName().empty()) {
        bookmarksWritten_(*this, GetPathName());
    }
}

std::optional<std::int64_t> CTesselDoc::SampleNumbered(std::int64_t number) const noexcept {
    const std::int64_t sample = number - FirstSampleNumber(false);
    return sample >= 0 && sample < SampleCount(false) ? std::optional(sample) : std::nullopt;
}

std::optional<std::int64_t> CTesselDoc::BookmarkBeside(std::int64_t number, bool forward) const {
    const Bookmarks& all = bookmarks_.All();
    const auto isShown = [this](const auto& bookmark) {
        const auto sample = SampleNumbered(bookmark.first);
        return sample && IsRowSample(*sample, false);
    };
    if (forward) {
        const auto next = std::find_if(all.upper_bound(number), all.end(), isShown);
        return next != all.end() ? std::optional(next->first) : std::nullopt;
    }
    const auto previous =
        std::find_if(std::reverse_iterator(all.lower_bound(number)), all.rend(), isShown);
    return previous != all.rend() ? std::optional(previous->first) : std::nullopt;
}

void CTesselDoc::GoToBookmark(std::int64_t number) {
    if (const auto sample = SampleNumbered(number)) {
        lastBookmark_ = number;
        GoToSample(*sample, false);
    }
}

void CTesselDoc::MarkSamples(const std::optional<SampleSpan>& samples) {
    if (samples != markedSamples_) {
        markedSamples_ = samples;
        UpdateAllViews(nullptr, HintMarkedSamples);
    }
}

void CTesselDoc::AddBlock(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) {
    CBlockUpdate update;
    update.first = first;
    update.count = static_cast<std::uint32_t>(records.size());
    update.zoom = zoom;
    update.records = records;
    const MutexLock lock(docLock_);
    pendingUpdates_.push_back(update);
}

void CTesselDoc::Unpack(const CBlockUpdate& update) {
    if (update.zoom) {
        zoomList.LoadSamples(update.first, update.records);
        return;
    }
    stateList.LoadSamples(update.first, update.records);
    waveformList.LoadSamples(update.first, update.records);
    arrived_.AssignIn(update.first, std::size_t{update.first} + update.count, true);
}

void CTesselDoc::FlushBlockUpdates() {
    std::vector<CBlockUpdate> updates;
    {
        const MutexLock lock(docLock_);
        updates.swap(pendingUpdates_);
    }
    for (const CBlockUpdate& update : updates) {
        Unpack(update);
        UpdateAllViews(nullptr, HintBlockArrived, &update);
    }
}

void CTesselDoc::ResetMaps(std::int64_t total, std::int64_t firstNumber, bool valid) {
    arrived_.Reset(static_cast<std::size_t>(total), valid);
    rows_.Reset(total, firstNumber, excludedBits);
    filterExpression_.clear();
}

void CTesselDoc::PlaceTrigger(const SampleCounts& counts) {
    markers_.PlaceTrigger(TriggerIndex(counts));
    zoomMarkers_.PlaceTrigger(zoomSamplesBefore);
}

void CTesselDoc::RebuildMaps(std::int32_t before, std::int32_t after) {
    {
        const MutexLock lock(docLock_);
        pendingUpdates_.clear(); // they belong to the samples before
    }
    const std::int64_t total = before <= 0 && after <= 0 ? 0 : std::int64_t{before} + after + 1;
    ResetMaps(total, -std::int64_t{before}, false);
    stateList.ResizeSamples(static_cast<std::uint32_t>(total));
    waveformList.ResizeSamples(static_cast<std::uint32_t>(total));
    zoomList.ResizeSamples(zoomSampleCount);
    PlaceTrigger({before, after});
}

void CTesselDoc::RebuildMapsFromFile() {
    ResetMaps(store.GetCount(false), store.FirstNumber(), true);
    PlaceTrigger({store.SamplesBefore(), store.SamplesAfter()});
    UpdateAllViews(nullptr, HintDataComplete);
}

} // namespace busquill
