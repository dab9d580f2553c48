#include "capture/trace_document.h"

#include "capture/trace_file.h"
#include "capture/trace_search.h"
#include "platform/working_directory.h"

#include <algorithm>
#include <bit>

namespace busquill {

namespace {

constexpr std::int64_t zoomFirstNumber = -255;
constexpr std::int64_t zoomTrigger = 255;

bool BitOf(const std::vector<std::uint32_t>& bits, std::int64_t index) noexcept {
    const auto i = static_cast<std::size_t>(index);
    return index >= 0 && i / 32 < bits.size() && (bits[i / 32] >> (i % 32) & 1) != 0;
}

} // namespace

CTesselDoc::CTesselDoc(const NewTraceContext& context, Prompts& prompts)
    : waveformList(context.tables), stateList(context.tables), zoomList(context.tables),
      searchPattern(context.tables), filterPattern(context.tables), setup(context.tables),
      prompts_(prompts), isRealTime_(context.newDocRealTime), cloneSource_(context.cloneSource),
      realTimeStore_(context.realTimeStore), saveTrace_(context.saveTrace) {
    searchPattern.BuildFromTables(1, ModeEvents);
    filterPattern.BuildFromTables(1, ModeEvents);
}

// Any trace that goes ends the upload, the one of a file too.
CTesselDoc::~CTesselDoc() {
    if (realTimeStore_ != nullptr) {
        realTimeStore_->CancelUpload();
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
    markers_.fill(-1);
    return true;
}

void CTesselDoc::BuildDefaultLists() {
    waveformList.BuildFromTables(0, ModeWaveform);
    stateList.BuildFromTables(0, ModeState);
    zoomList.BuildFromTables(0, ModeState);
}

bool CTesselDoc::OnOpenDocument(const std::string& path) {
    loadedFromFile_ = true;
    const TraceFileContents contents = ReadTraceFile(*this, path, prompts_);
    if (!contents.loaded) {
        return false;
    }
    hasStateList_ = contents.stateList;
    hasZoomSamples_ = contents.zoomSamples;
    setupName = setup.name;
    fileName = BaseNameOf(path);
    RebuildMapsFromFile();
    return true;
}

bool CTesselDoc::OnSaveDocument(const std::string& path) {
    return saveTrace_ && saveTrace_(*this, path);
}

void CTesselDoc::OnSaved(const std::string& path) {
    if (isRealTime_) {
        CDocument::OnSaved(path);
    }
}

CSampleStore& CTesselDoc::GetStore() noexcept {
    return isRealTime_ && realTimeStore_ != nullptr ? *realTimeStore_ : store;
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

/// What is captured next belongs into another file.
void CTesselDoc::ForgetSamples() {
    filterPattern.BuildFromTables(1, ModeEvents);
    RebuildMaps(0, 0);
    markers_.fill(-1);
    SetPathName("");
    SetModifiedFlag();
}

void CTesselDoc::OnCaptureStarted() {
    captureActive_ = true;
    GetStore().SetObserver(nullptr);
    ForgetSamples();
    UpdateAllViews(nullptr, HintCaptureStarted);
    hasData_ = true;
}

void CTesselDoc::OnCaptureStopped() {
    RebuildMaps(GetStore().SamplesBefore(), GetStore().SamplesAfter());
    UpdateAllViews(nullptr, HintCaptureStopped);
    GetStore().SetObserver(this);
    captureActive_ = false;
}

void CTesselDoc::ClearData() {
    GetStore().CancelUpload();
    GetStore().FreeSamples();
    ForgetSamples();
    captureActive_ = false; // nobody may have looked since the capture ended
    hasData_ = false;
    // The same as after a capture that ended without samples.
    UpdateAllViews(nullptr, HintCaptureStarted);
    UpdateAllViews(nullptr, HintCaptureStopped);
}

void CTesselDoc::LoadSignal(CSignalList& list, CSignal& signal, bool zoom) {
    // A capture that runs has samples in the store that belong to the one before.
    const bool shown = zoom || sampleCount_ > 0;
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
    return zoom ? zoomSampleCount : rowCount_;
}

std::int64_t CTesselDoc::SampleCount(bool zoom) const noexcept {
    return zoom ? zoomSampleCount : sampleCount_;
}

std::int64_t CTesselDoc::FirstSampleNumber(bool zoom) const noexcept {
    return zoom ? zoomFirstNumber : firstSampleNumber_;
}

std::int64_t CTesselDoc::RowToSample(std::int64_t row, bool zoom) const noexcept {
    if (zoom) {
        return row;
    }
    if (rowCount_ == 0) {
        return 0;
    }
    const bool inside = row >= 0 && row < rowCount_;
    return inside ? std::int64_t{rowTable_[static_cast<std::size_t>(row)]} : -1;
}

std::int64_t CTesselDoc::SampleToRow(std::int64_t sample, bool zoom) const noexcept {
    if (zoom || rowCount_ == sampleCount_) {
        return sample;
    }
    const auto found = std::lower_bound(rowTable_.begin(), rowTable_.end(), sample);
    const std::int64_t row = found - rowTable_.begin();
    const bool exact = found != rowTable_.end() && *found == sample;
    return exact ? row : std::max<std::int64_t>(row - 1, 0);
}

bool CTesselDoc::IsRowSample(std::int64_t sample, bool zoom) const noexcept {
    return zoom || BitOf(matchBits_, sample);
}

bool CTesselDoc::IsValidSample(std::int64_t sample, bool zoom) const noexcept {
    if (zoom) {
        return sample >= 0 && sample < zoomSampleCount;
    }
    if (sample < 0 || sample >= sampleCount_) {
        return false;
    }
    return BitOf(validBits_, sample);
}

std::int64_t CTesselDoc::Marker(int which, bool zoom) const noexcept {
    return (zoom ? zoomMarkers_ : markers_)[static_cast<std::size_t>(which)];
}

void CTesselDoc::SetMarker(int which, std::int64_t index) {
    SetMarkerIn(markers_, which, index, sampleCount_, HintMarker1);
}

void CTesselDoc::SetZoomMarker(int which, std::int64_t index) {
    SetMarkerIn(zoomMarkers_, which, index, zoomSampleCount, HintZoomMarker1);
}

void CTesselDoc::ToggleMarker(int which, std::int64_t sample, bool zoom) {
    if (sample < 0) {
        return;
    }
    const std::int64_t index = Marker(which, zoom) == sample ? -1 : sample;
    zoom ? SetZoomMarker(which, index) : SetMarker(which, index);
}

void CTesselDoc::SetMarkerIn(std::array<std::int64_t, 3>& markers, int which, std::int64_t index,
                             std::int64_t limit, int firstHint) {
    if (index >= limit || which < 0 || which >= 3) {
        return;
    }
    std::int64_t& marker = markers[static_cast<std::size_t>(which)];
    if (marker == index) {
        return;
    }
    marker = index;
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
    const auto count = std::min(records.size(), static_cast<std::size_t>(sampleCount_));
    FindAll(records.first(count), RecordPattern(filterPattern), excludedBits, rowTable_,
            matchBits_);
    rowCount_ = static_cast<std::int64_t>(rowTable_.size());
    const std::int64_t row = SampleToRow(topSample, false);
    if (rowCount_ == 0) {
        GoToSample(0, false);
    } else if (row >= 0 && row < rowCount_) {
        GoToSample(rowTable_[static_cast<std::size_t>(row)], false);
    }
    UpdateAllViews(nullptr, HintFilterChanged);
}

void CTesselDoc::AddBlock(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) {
    CBlockUpdate update;
    update.first = first;
    update.count = static_cast<std::uint32_t>(records.size());
    update.zoom = zoom;
    update.records.assign(records.begin(), records.end());
    const MutexLock lock(docLock_);
    pendingUpdates_.push_back(std::move(update));
}

void CTesselDoc::Unpack(const CBlockUpdate& update) {
    if (update.zoom) {
        zoomList.LoadSamples(update.first, update.records);
        return;
    }
    stateList.LoadSamples(update.first, update.records);
    waveformList.LoadSamples(update.first, update.records);
    const std::size_t end = std::min<std::size_t>(std::size_t{update.first} + update.count,
                                                  static_cast<std::size_t>(sampleCount_));
    for (std::size_t i = update.first; i < end; ++i) {
        validBits_[i / 32] |= 1U << (i % 32);
    }
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

void CTesselDoc::AllocateMaps(std::int64_t total, std::int64_t firstNumber, bool valid) {
    const auto count = static_cast<std::uint32_t>(total);
    sampleCount_ = total;
    firstSampleNumber_ = firstNumber;
    validBits_.assign(WordsFor(count), valid ? ~0U : 0);
    matchBits_.assign(WordsFor(count), ~0U);
    for (std::size_t i = 0; i < std::min(matchBits_.size(), excludedBits.size()); ++i) {
        matchBits_[i] &= ~excludedBits[i];
    }
    ListRows();
}

void CTesselDoc::ListRows() {
    std::size_t matches = 0;
    for (const std::uint32_t word : matchBits_) {
        matches += static_cast<std::size_t>(std::popcount(word));
    }
    rowTable_ = {};
    rowTable_.reserve(matches);
    for (std::size_t i = 0; i < matchBits_.size(); ++i) {
        for (std::uint32_t word = matchBits_[i]; word != 0; word &= word - 1) {
            const std::size_t sample = i * 32 + static_cast<std::size_t>(std::countr_zero(word));
            if (static_cast<std::int64_t>(sample) < sampleCount_) {
                rowTable_.push_back(static_cast<std::uint32_t>(sample));
            }
        }
    }
    rowCount_ = static_cast<std::int64_t>(rowTable_.size());
}

void CTesselDoc::PlaceTrigger(const SampleCounts& counts) {
    markers_[0] = TriggerIndex(counts);
    zoomMarkers_[0] = zoomTrigger;
}

void CTesselDoc::RebuildMaps(std::int32_t before, std::int32_t after) {
    {
        const MutexLock lock(docLock_);
        pendingUpdates_.clear(); // of the samples that were there before
    }
    const std::int64_t total = before <= 0 && after <= 0 ? 0 : std::int64_t{before} + after + 1;
    AllocateMaps(total, -std::int64_t{before}, false);
    stateList.ResizeSamples(static_cast<std::uint32_t>(total));
    waveformList.ResizeSamples(static_cast<std::uint32_t>(total));
    zoomList.ResizeSamples(zoomSampleCount);
    PlaceTrigger({before, after});
}

void CTesselDoc::RebuildMapsFromFile() {
    AllocateMaps(store.GetCount(false), store.FirstNumber(), true);
    PlaceTrigger({store.SamplesBefore(), store.SamplesAfter()});
    UpdateAllViews(nullptr, HintDataComplete);
}

} // namespace busquill
