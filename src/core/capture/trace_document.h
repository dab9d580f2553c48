#pragma once

#include "capture/capture_run.h"
#include "capture/row_map.h"
#include "capture/sample_store.h"
#include "capture/trace_markers.h"
#include "document/document.h"
#include "platform/bits.h"
#include "platform/mutex.h"
#include "platform/repeating_timer.h"
#include "signals/signal_list.h"
#include "tracesetup/trace_setup.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class Analyzer;
class BoardCapture;
class CSignal;
class Prompts;

/// The hints by which a trace document tells its views what changed.
enum TraceHint : int {
    HintRedraw = 0,
    HintMarker1 = 1,
    HintMarker2 = 2,
    HintZoomMarker1 = 3,
    HintZoomMarker2 = 4,
    HintCaptureStarted = 5,
    HintCaptureStopped = 6,
    HintDataComplete = 7,
    HintBlockArrived = 8,
    HintGoToSample = 9,
    HintNameChanged = 10,
    HintSetupNameChanged = 11,
    HintFilterChanged = 12,
    HintPolled = 13, // a look at the capture has been taken; its blocks have been told before
};

/// With HintBlockArrived: the samples that have come.
struct CBlockUpdate final : HintObject {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    bool zoom = false;
    std::span<const SampleRecord> records; // in the store
};

/// With HintGoToSample.
struct GoToSampleHint final : HintObject {
    std::int64_t sample = 0;
    bool zoom = false;
};

class CTesselDoc;

/// What a trace document is made with.
struct NewTraceContext {
    SignalTables& tables; // by which its samples are read; they outlive it
    bool newDocRealTime = false;
    /// A new document takes lists and setup from it.
    const CTesselDoc* cloneSource = nullptr;
    Analyzer* analyzer = nullptr; // whose capture the real-time document shows
    /// By which that one looks at its capture; without one, whoever has it calls Look of its run.
    std::function<std::unique_ptr<RepeatingTimer>()> makeTimer = nullptr;
    /// Asks for a range and saves it; false when the user cancels.
    std::function<bool(CTesselDoc&, const std::string& path)> saveTrace = nullptr;
};

/// A captured trace: its samples, the signal lists through which they are seen, the setup that
/// made them, markers, and the maps from rows to samples.
class CTesselDoc : public CDocument, public CaptureObserver {
public:
    CTesselDoc(const NewTraceContext& context, Prompts& prompts);
    ~CTesselDoc() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const std::string& path) override;
    bool OnSaveDocument(const std::string& path) override;
    /// What is saved of a file is a copy, perhaps of a part: the document stays that of its file.
    void OnSaved(const std::string& path) override;
    /// A live trace goes on; what has been saved of it is a file like any other.
    [[nodiscard]] bool ShowsItsFile() const override { return !isRealTime_; }

    [[nodiscard]] bool IsRealTime() const noexcept { return isRealTime_; }
    [[nodiscard]] bool LoadedFromFile() const noexcept { return loadedFromFile_; }
    /// Whether the file that was opened has a list of signals for the State display.
    [[nodiscard]] bool HasStateList() const noexcept { return hasStateList_; }
    /// Whether the file that was opened has Power Zoom samples.
    [[nodiscard]] bool HasZoomSamples() const noexcept { return hasZoomSamples_; }
    /// The run of the real-time document; no other has one.
    [[nodiscard]] CaptureRun& Run() const noexcept;
    /// Whether the board's capture runs, or hands over its samples. Never of a file.
    [[nodiscard]] bool IsRunning() const noexcept;
    [[nodiscard]] bool IsUploading() const;
    /// A sample that has not arrived is to be the next that comes, if any still come.
    void FetchNext(std::int64_t sample);
    /// The board's samples for the real-time document, else the file's.
    [[nodiscard]] CSampleStore& GetStore() noexcept;
    [[nodiscard]] const CSampleStore& GetStore() const noexcept;
    /// The record at an index; nothing when there are no data or the index is past them.
    [[nodiscard]] std::optional<SampleRecord> GetSample(std::int64_t index, bool zoom) const;

    CSignalList waveformList;
    CSignalList stateList;
    CSignalList zoomList;
    /// One sample each: what a search looks for, and what the filter lets through.
    CSignalList searchPattern;
    CSignalList filterPattern;
    TraceSetup setup;
    std::string setupPath;
    std::string setupName = "<New>";
    std::string fileName;
    std::string comment; // a file's description
    std::int32_t clockCode = 2;
    CSampleStore store; // of a file

    /// A capture of the board into this document begins: it shows nothing until it has ended.
    void OnCaptureStarted() override;
    /// The capture has ended, and its counts are known; samples come from here on.
    void OnCaptureStopped() override;
    void OnPolled(const RunState& state) override;
    /// Forgets the samples of the last capture, which has ended; an upload is given up.
    void ClearData();
    /// Between start and stop.
    [[nodiscard]] bool CaptureActive() const override { return captureActive_; }
    /// Whether a capture has been started, and not been cleared since.
    [[nodiscard]] bool HasData() const noexcept { return hasData_; }
    /// Fills a signal that is new in one of the lists with the samples that have come.
    void LoadSignal(CSignalList& list, CSignal& signal, bool zoom);
    void SetSetupName(const std::string& path, const std::string& name);

    /// Maps; with `zoom` those of the Power Zoom samples, which have no filter.
    [[nodiscard]] std::int64_t RowCount(bool zoom) const noexcept;
    [[nodiscard]] std::int64_t SampleCount(bool zoom) const noexcept;
    [[nodiscard]] std::int64_t FirstSampleNumber(bool zoom) const noexcept;
    /// -1 for a row outside; 0 when there are no rows at all.
    [[nodiscard]] std::int64_t RowToSample(std::int64_t row, bool zoom) const noexcept;
    [[nodiscard]] std::int64_t SampleToRow(std::int64_t sample, bool zoom) const noexcept;
    [[nodiscard]] bool IsRowSample(std::int64_t sample, bool zoom) const noexcept;
    /// Whether the sample has arrived.
    [[nodiscard]] bool IsValidSample(std::int64_t sample, bool zoom) const noexcept;
    [[nodiscard]] bool IsFiltered() const noexcept {
        return rows_.RowCount() != rows_.SampleCount();
    }

    /// Index 0 is the trigger, 1 and 2 the markers; -1: not set.
    [[nodiscard]] std::int64_t Marker(int which, bool zoom) const noexcept;
    void SetMarker(int which, std::int64_t index);
    /// Takes the views to a sample.
    void GoToSample(std::int64_t sample, bool zoom);
    /// Keeps the rows that match the filter pattern, and `topSample` in sight or the row before it.
    /// A pattern that compares nothing brings all rows back.
    void ApplyFilter(std::int64_t topSample);
    void SetZoomMarker(int which, std::int64_t index);
    /// Sets a marker on a sample, or clears it where it stands already; a negative sample is none.
    void ToggleMarker(int which, std::int64_t sample, bool zoom);

    /// Any thread: keeps the news of a block until FlushBlockUpdates.
    void AddBlock(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) override;
    /// Unpacks the blocks that have come into the lists and tells the views.
    void FlushBlockUpdates();
    void RebuildMapsFromFile();
    /// Maps for so many samples on both sides of the trigger, none of which has come.
    void RebuildMaps(std::int32_t before, std::int32_t after);

    /// One bit for each sample, set for those that a file never mentioned; the loader fills it,
    /// empty means none.
    std::vector<std::uint32_t> excludedBits;

private:
    void BuildDefaultLists();
    void ForgetSamples();
    void ResetMaps(std::int64_t total, std::int64_t firstNumber, bool valid);
    void PlaceTrigger(const SampleCounts& counts);
    void Unpack(const CBlockUpdate& update);
    void MarkerMoved(int which, int firstHint);

    Prompts& prompts_;
    const bool isRealTime_;
    const CTesselDoc* cloneSource_; // until the document is new
    BoardCapture* const boardCapture_;
    const std::function<bool(CTesselDoc&, const std::string& path)> saveTrace_;
    bool loadedFromFile_ = false;
    bool hasStateList_ = false;
    bool hasZoomSamples_ = false;
    bool captureActive_ = false;
    bool hasData_ = false;
    Bits arrived_; // a bit for each sample
    RowMap rows_;
    TraceMarkers markers_;
    TraceMarkers zoomMarkers_;
    Mutex docLock_;
    std::vector<CBlockUpdate> pendingUpdates_ BUSQUILL_GUARDED_BY(docLock_);
    std::unique_ptr<CaptureRun> run_; // ends before all that it tells
};

} // namespace busquill
