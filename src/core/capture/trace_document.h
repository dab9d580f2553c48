#pragma once

#include "capture/capture_bookmarks.h"
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

/// The hints with which a trace document notifies its views of changes.
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
    HintPolled = 13, // the capture was polled; hints for its blocks came before
    HintBookmarks = 14,
    HintMarkedSamples = 15,
};

/// With HintBlockArrived: the samples that have arrived.
struct CBlockUpdate final : HintObject {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    bool zoom = false;
    std::span<const SampleRecord> records; // in the store
};

/// Samples from one to another, both included.
struct SampleSpan {
    std::int64_t first = 0;
    std::int64_t last = 0;

    friend bool operator==(const SampleSpan&, const SampleSpan&) = default;
};

/// With HintGoToSample.
struct GoToSampleHint final : HintObject {
    std::int64_t sample = 0;
    bool zoom = false;
};

class CTesselDoc;

/// What a new trace document needs.
struct NewTraceContext {
    SignalTables& tables; // decode its samples; outlive it
    bool newDocRealTime = false;
    /// The new document copies lists and setup from it.
    const CTesselDoc* cloneSource = nullptr;
    Analyzer* analyzer = nullptr; // whose capture the real-time document shows
    /// Makes the timer that polls the real-time document's capture; without it, the owner calls
    /// Poll of the run.
    std::function<std::unique_ptr<RepeatingTimer>()> makeTimer = nullptr;
    /// Asks for a range and saves it; false when the user cancels.
    std::function<bool(CTesselDoc&, const std::string& path)> saveTrace = nullptr;
    /// Is called again and again while a file is read, with the bytes read so far.
    std::function<void(const std::string& path, std::uint64_t bytes)> onReading = nullptr;
    /// Is called when the bookmarks beside a capture have changed.
    std::function<void(const CTesselDoc&, const std::string& capture)> bookmarksWritten = nullptr;
    /// Is called when the document was saved to a file that may have held another capture.
    std::function<void(const CTesselDoc&, const std::string& capture)> captureReplaced = nullptr;
};

/// A captured trace: its samples, the signal lists that show them, the setup of the capture,
/// markers, and the maps from rows to samples.
class CTesselDoc : public CDocument, public CaptureObserver {
public:
    CTesselDoc(const NewTraceContext& context, Prompts& prompts);
    ~CTesselDoc() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const std::string& path) override;
    bool OnSaveDocument(const std::string& path) override;
    /// Saving a trace from a file makes a copy, perhaps of a part; the document keeps its file.
    void OnSaved(const std::string& path) override;
    /// A live trace continues, so a file saved from it is opened like any other.
    [[nodiscard]] bool ShowsItsFile() const override { return !isRealTime_; }

    [[nodiscard]] bool IsRealTime() const noexcept { return isRealTime_; }
    [[nodiscard]] bool LoadedFromFile() const noexcept { return loadedFromFile_; }
    /// Whether the file that was opened has a list of signals for the State display.
    [[nodiscard]] bool HasStateList() const noexcept { return hasStateList_; }
    /// Whether the file that was opened has Power Zoom samples.
    [[nodiscard]] bool HasZoomSamples() const noexcept { return hasZoomSamples_; }
    /// The run of the real-time document; other documents have none.
    [[nodiscard]] CaptureRun& Run() const noexcept;
    /// Whether the board's capture or its upload is in progress. False for a file.
    [[nodiscard]] bool IsRunning() const noexcept;
    [[nodiscard]] bool IsUploading() const;
    /// Asks for a sample that has not arrived to be fetched next, if an upload is in progress.
    void FetchNext(std::int64_t sample);
    /// The board's samples for the real-time document, else the file's.
    [[nodiscard]] CSampleStore& GetStore() noexcept;
    [[nodiscard]] const CSampleStore& GetStore() const noexcept;
    /// The record at an index; nothing when there is no data or the index is past its end.
    [[nodiscard]] std::optional<SampleRecord> GetSample(std::int64_t index, bool zoom) const;

    CSignalList waveformList;
    CSignalList stateList;
    CSignalList zoomList;
    /// Patterns of one sample: of the search, and of the filter.
    CSignalList searchPattern;
    CSignalList filterPattern;
    TraceSetup setup;  // for the next capture, or that of a file
    Sampling sampling; // of the samples, whatever the setup is now
    std::string setupPath;
    std::string setupName = "<New>";
    std::string fileName;
    std::string comment; // a file's description
    std::int32_t clockCode = 2;
    CSampleStore store; // of a file

    /// A capture into this document begins, which shows nothing until the capture has ended.
    void OnCaptureStarted() override;
    /// The capture has ended and its counts are known; samples arrive from now on.
    void OnCaptureStopped() override;
    void OnPolled(const RunState& state) override;
    /// Forgets the samples of the last capture, which has ended; cancels an upload.
    void ClearData();
    /// Whether a capture was started and has not stopped yet.
    [[nodiscard]] bool CaptureActive() const override { return captureActive_; }
    /// Whether a capture was started and has not been cleared since.
    [[nodiscard]] bool HasData() const noexcept { return hasData_; }
    /// Loads the samples that have arrived into a signal that is new in one of the lists.
    void LoadSignal(CSignalList& list, CSignal& signal, bool zoom);
    void SetSetupName(const std::string& path, const std::string& name);

    /// Row maps; with `zoom` those of the Power Zoom samples, which have no filter.
    [[nodiscard]] std::int64_t RowCount(bool zoom) const noexcept;
    [[nodiscard]] std::int64_t SampleCount(bool zoom) const noexcept;
    [[nodiscard]] std::int64_t FirstSampleNumber(bool zoom) const noexcept;
    /// -1 for a row out of range; 0 when there are no rows at all.
    [[nodiscard]] std::int64_t RowToSample(std::int64_t row, bool zoom) const noexcept;
    [[nodiscard]] std::int64_t SampleToRow(std::int64_t sample, bool zoom) const noexcept;
    [[nodiscard]] bool IsRowSample(std::int64_t sample, bool zoom) const noexcept;
    /// Whether the sample has arrived.
    [[nodiscard]] bool IsValidSample(std::int64_t sample, bool zoom) const noexcept;
    /// Whether all samples from one to another have arrived and none is missing in the file.
    [[nodiscard]] bool HasAllSamples(std::int64_t first, std::int64_t last, bool zoom) const;
    [[nodiscard]] bool IsFiltered() const noexcept {
        return rows_.RowCount() != rows_.SampleCount();
    }

    /// Index 0 is the trigger, 1 and 2 the markers; -1: not set.
    [[nodiscard]] std::int64_t Marker(int which, bool zoom) const noexcept;
    void SetMarker(int which, std::int64_t index);
    /// Takes the views to a sample.
    void GoToSample(std::int64_t sample, bool zoom);
    /// Moves a marker that is set to the displayed sample before or after it, if there is one.
    void StepMarker(int which, bool forward, bool zoom);
    /// Keeps the rows that match the filter pattern, and keeps `topSample` or the row before it
    /// visible. A pattern that compares nothing restores all rows.
    void ApplyFilter(std::int64_t topSample);
    /// Keeps the rows of the samples whose bit is set, which are those that fulfil an expression.
    /// Takes the place of the filter pattern, and the next ApplyFilter takes its place.
    void ApplyFilter(const std::string& expression, std::span<const std::uint32_t> matches,
                     std::int64_t topSample);
    /// The expression that filters; empty if none does.
    [[nodiscard]] const std::string& FilterExpression() const noexcept { return filterExpression_; }
    /// A bit for each sample, set for those with a row.
    [[nodiscard]] std::span<const std::uint32_t> RowSamples() const noexcept {
        return rows_.RowSamples();
    }
    void SetZoomMarker(int which, std::int64_t index);
    /// Sets a marker to a sample, or clears it if it is already there; a negative sample means
    /// none.
    void ToggleMarker(int which, std::int64_t sample, bool zoom);

    /// The notes on samples, by their numbers. A document without a file keeps them in memory.
    [[nodiscard]] const Bookmarks& GetBookmarks() const noexcept { return bookmarks_.All(); }
    /// Makes all changes, or none: false after a message if that fails.
    bool ChangeBookmarks(const BookmarkChanges& changes);
    /// The same for one sample.
    bool SetBookmark(std::int64_t number, std::optional<std::string> note);
    /// Reads them again after another document of the same file has changed them.
    void RenewBookmarks();
    /// Another document has been saved to the file of this one.
    void OnFileReplaced();
    /// The sample that has this number; nothing if the capture has no such sample.
    [[nodiscard]] std::optional<std::int64_t> SampleNumbered(std::int64_t number) const noexcept;

    /// The next bookmark of the capture's samples after a number, or before it.
    [[nodiscard]] std::optional<std::int64_t> BookmarkBeside(std::int64_t number,
                                                             bool forward) const;
    /// Takes the views to the sample of a bookmark.
    void GoToBookmark(std::int64_t number);
    /// The bookmark that they were last taken to.
    [[nodiscard]] std::optional<std::int64_t> LastBookmark() const noexcept {
        return lastBookmark_;
    }

    /// The samples that the views show on another ground, such as those of a transaction.
    [[nodiscard]] const std::optional<SampleSpan>& MarkedSamples() const noexcept {
        return markedSamples_;
    }
    void MarkSamples(const std::optional<SampleSpan>& samples);

    /// Any thread: queues the block for FlushBlockUpdates.
    void AddBlock(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) override;
    /// Unpacks the queued blocks into the lists and updates the views.
    void FlushBlockUpdates();
    void RebuildMapsFromFile();
    /// Resets the maps for `before` and `after` samples around the trigger, none of which has
    /// arrived.
    void RebuildMaps(std::int32_t before, std::int32_t after);

    /// One bit for each sample, set for those that a file does not contain; set by the loader, may
    /// be empty.
    std::vector<std::uint32_t> excludedBits;

private:
    void BuildDefaultLists();
    void ForgetSamples();
    void ResetMaps(std::int64_t total, std::int64_t firstNumber, bool valid);
    void PlaceTrigger(const SampleCounts& counts);
    void Unpack(const CBlockUpdate& update);
    void MarkerMoved(int which, int firstHint);
    void TellOthersOfBookmarks() const;
    void ShowFiltered(std::int64_t topSample);

    Prompts& prompts_;
    const bool isRealTime_;
    const CTesselDoc* cloneSource_; // until OnNewDocument
    BoardCapture* const boardCapture_;
    const std::function<bool(CTesselDoc&, const std::string& path)> saveTrace_;
    const std::function<void(const std::string& path, std::uint64_t bytes)> onReading_;
    const std::function<void(const CTesselDoc&, const std::string& capture)> bookmarksWritten_;
    const std::function<void(const CTesselDoc&, const std::string& capture)> captureReplaced_;
    bool loadedFromFile_ = false;
    bool hasStateList_ = false;
    bool hasZoomSamples_ = false;
    bool captureActive_ = false;
    bool hasData_ = false;
    Bits arrived_; // a bit for each sample
    RowMap rows_;
    std::string filterExpression_;
    TraceMarkers markers_;
    TraceMarkers zoomMarkers_;
    CaptureBookmarks bookmarks_;
    std::optional<std::int64_t> lastBookmark_;
    std::optional<SampleSpan> markedSamples_;
    Mutex docLock_;
    std::vector<CBlockUpdate> pendingUpdates_ BUSQUILL_GUARDED_BY(docLock_);
    std::unique_ptr<CaptureRun> run_; // last: destroyed before all that it notifies
};

} // namespace busquill
