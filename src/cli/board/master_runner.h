#pragma once

#include "cli/board/board_session.h"
#include "cli/board/line_output.h"
#include "cli/board/memory_printer.h"
#include "exerciser/master_run.h"

#include <cstdint>
#include <string>
#include <vector>

namespace busquill::cli::board {

/// A step of the master that was not good.
struct FailedStep {
    std::uint64_t address;
    std::vector<std::string> status;
};

/// Of which steps the status is printed.
enum class StepLines { All, Failed };

/// Runs the board as a master, prints the status of each step and the memory that is read.
class MasterRunner final : private MasterObserver {
public:
    /// All outlive the runner; the family of the form is that of the board.
    MasterRunner(BoardSession& session, const MasterForm& form, LineOutput& output,
                 MemoryForm memory, StepLines lines);

    /// Runs the form once to its end, or to that which the user asks for; the run is then stopped.
    /// `Done` also after a failure, which was reported.
    [[nodiscard]] WaitEnd Run();

    /// The steps of all runs.
    [[nodiscard]] std::int64_t Steps() const noexcept { return steps_; }
    [[nodiscard]] const std::vector<FailedStep>& Failed() const noexcept { return failed_; }
    [[nodiscard]] std::int64_t FailedCount() const noexcept { return failedCount_; }
    /// What the last run has read.
    [[nodiscard]] std::span<const std::uint8_t> Memory() const;

private:
    void OnRunning(bool /*running*/) override {}
    void OnMemoryChanged() override;
    void OnStatusCleared() override {}
    void OnStatus(std::span<const std::string_view> lines) override;
    void OnStepStarted() override;

    [[nodiscard]] WaitEnd Follow();

    BoardSession& session_;
    LineOutput& output_;
    MemoryPrinter printer_;
    const StepLines lines_;
    bool hasRead_ = false;   // the run reads, and its memory is that of this run
    bool isNewStep_ = false; // one has started since the last poll
    std::int64_t steps_ = 0;
    std::int64_t failedCount_ = 0;
    std::vector<FailedStep> failed_; // the first of them
    MasterRun run_;
};

/// The exit status of runs: by their steps, and by what ended the last one.
[[nodiscard]] int MasterStatus(BoardSession& session, const MasterRunner& runner, WaitEnd end);

/// Sets a form's space from its name, which on a board with address modifiers is the modifier in
/// hexadecimal. Throws ExitRequest for another.
void SetSpace(MasterForm& form, const MasterFamily& family, const std::string& text);

/// "1000" and "0x1000" as a number; throws ExitRequest, whose message names the operand.
[[nodiscard]] std::uint64_t HexOperand(const char* name, const std::string& text);

} // namespace busquill::cli::board
