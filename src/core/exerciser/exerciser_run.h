#pragma once

#include "exerciser/bus_address.h"
#include "exerciser/read_memory.h"
#include "link/board_run.h"
#include "platform/text_file.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

/// Follows a run of an exerciser. Main thread.
class ExerciserObserver {
public:
    virtual ~ExerciserObserver() = default;

    /// May repeat the state that it told last.
    virtual void OnRunning(bool running) = 0;
    /// The run's memory is another, or has grown.
    virtual void OnMemoryChanged() = 0;
};

/// What the runs of master and target share: the range that they go through in steps, the bytes of
/// a data file, and the memory that was read. Main thread.
class ExerciserRun : public BoardRun {
public:
    /// What the last Go of a read has read so far; null before the first one.
    [[nodiscard]] const ReadMemory* Memory() const noexcept {
        return memory_ ? &*memory_ : nullptr;
    }
    /// Where the step begins that is under way, or whose status is being told.
    [[nodiscard]] const BusAddress& CurrentAddress() const noexcept { return currentAddress_; }

protected:
    ExerciserRun(Parts parts, std::uint8_t stepLimit, ExerciserObserver& observer);

    /// While one lives, polls do nothing: a box may be open, whose events include the timer's.
    class PollsWait {
    public:
        explicit PollsWait(ExerciserRun& run) : run_(run), before_(run.pollsWait_) {
            run.pollsWait_ = true;
        }
        ~PollsWait() { run_.pollsWait_ = before_; }
        PollsWait(const PollsWait&) = delete;
        PollsWait& operator=(const PollsWait&) = delete;

    private:
        ExerciserRun& run_;
        const bool before_;
    };
    [[nodiscard]] bool ArePollsWaiting() const noexcept { return pollsWait_; }

    /// Creates the data file of a read, or loads that of another command. False when the user
    /// decides against it, and on a failure, which is reported. Without a file, the bytes of an
    /// earlier one are dropped; a read to a file keeps them, and they are sent again.
    [[nodiscard]] bool OpenData(bool isFile, bool read, const std::string& path,
                                const char* cannotLoad);
    void CloseDataFile();

    /// Sets the range and finds its first step. False when the end lies below the start, which is
    /// reported.
    [[nodiscard]] bool BeginRange(const BusAddress& start, const BusAddress& end);
    /// Asks whether to continue when the file is shorter than the range.
    [[nodiscard]] bool MayPadFile();
    /// Goes past the step that has ended.
    void PassStep() noexcept { AddToAddress(stepLength_, currentAddress_); }
    /// Finds the next step; false when the range is exhausted.
    [[nodiscard]] bool NextStep() noexcept;
    /// Goes back to the start, for another pass.
    void Rewind(const BusAddress& start) noexcept;

    [[nodiscard]] std::uint8_t CurrentLength() const noexcept { return stepLength_; }

    [[nodiscard]] bool HasFileData() const noexcept { return !fileData_.empty(); }
    /// The next bytes of the file, up to the limit of a step; none past its end.
    [[nodiscard]] std::vector<std::uint8_t> TakeFileData();

    /// The memory is empty and begins at the current address.
    void BeginMemory();
    /// Keeps the bytes of the step, also in the data file. Those beyond the memory's limit are
    /// dropped, and so are those before the first Go of a read, of a command that has become a read
    /// during its run.
    void KeepRead(std::span<const std::uint8_t> step);

private:
    [[nodiscard]] bool CreateDataFile(const std::string& path);
    [[nodiscard]] bool LoadDataFile(const std::string& path, const char* cannotLoad);

    const std::uint8_t stepLimit_;
    ExerciserObserver& observer_;

    BusAddress currentAddress_{};
    BusAddress endAddress_{};
    std::uint8_t stepLength_ = 0;

    std::vector<std::uint8_t> fileData_;
    std::size_t filePosition_ = 0;
    std::optional<TextWriter> dataFile_; // of a read
    std::string dataFilePath_;
    std::optional<ReadMemory> memory_;
    bool pollsWait_ = false;
};

} // namespace busquill
