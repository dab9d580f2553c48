#pragma once

#include "exerciser/exerciser_run.h"
#include "exerciser/master_form.h"
#include "exerciser/master_records.h"
#include "link/exchange.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace busquill {

class MasterObserver : public ExerciserObserver {
public:
    virtual void OnStatusCleared() = 0;
    /// Lines to be added to the list; the last one is selected.
    virtual void OnStatus(std::span<const std::string_view> lines) = 0;
    /// The board works on a step. Most take less time than the period of polling, so a window calls
    /// Poll as soon as no event waits, but not from here.
    virtual void OnStepStarted() = 0;
};

/// The board as a master on the bus: one command over a range of addresses, in steps.
class MasterRun final : public ExerciserRun {
public:
    /// The form and the observer outlive the run. What the user changes in the form during a run
    /// counts from the next step or pass on: the command, and the start address.
    MasterRun(Parts parts, const MasterForm& form, MasterObserver& observer);

    /// Starts a run; one that is on begins again.
    void Go();
    /// Ends the run, and sends the board the command to stop in any case.
    void Stop() override;
    /// Reads the status of the step and goes on when it has ended. Does nothing when no step is
    /// under way, so a call that was posted may come late.
    void Poll() override;

    /// Whether the board works on a step.
    [[nodiscard]] bool IsStepping() const noexcept { return stepping_; }

private:
    [[nodiscard]] bool SendSetup();
    [[nodiscard]] RunStep ControlStep(MasterStep step, IfRefused then);
    void StartStep();
    [[nodiscard]] bool ReadStepData();
    void RunNextStep();
    void EndRun();

    const MasterForm& form_;
    MasterObserver& observer_;
    std::int32_t repeatsLeft_ = 0;
    bool reading_ = false;
    bool stepping_ = false;
};

} // namespace busquill
