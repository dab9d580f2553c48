#pragma once

#include "exerciser/exerciser_run.h"
#include "exerciser/target_form.h"
#include "link/exchange.h"

#include <cstdint>
#include <vector>

namespace busquill {

/// The board as a target on the bus. It answers by itself from its setup on; a run fills a range of
/// its memory or reads it, one step for each poll.
class TargetRun final : public ExerciserRun {
public:
    /// The form and the observer outlive the run. What the user changes in the form during a run
    /// counts from the next step on.
    TargetRun(Parts parts, const TargetForm& form, ExerciserObserver& observer);

    /// Sends the setup and starts a run; one that is on begins again.
    void Go();
    /// Ends the run. Nothing is sent: the target stays as it was set up.
    void Stop() override;
    /// Ends the step and goes on with the next. Does nothing when no run is on.
    void Poll() override;

    /// Sends the setup alone, which turns the target on or off. False on a failure, which is
    /// reported.
    bool SendSetup();

    [[nodiscard]] bool IsOn() const noexcept { return on_; }

private:
    /// When the data of a step cannot be written: what is reported, and whether the run goes on.
    struct WriteFailure {
        const char* message;
        IfRefused then;
    };

    [[nodiscard]] bool RunFirstStep();
    void RunNextStep();
    [[nodiscard]] Sent SendStep(const char* ifAddressFails, WriteFailure ifWriteFails);
    [[nodiscard]] std::vector<std::uint8_t> NextWriteData();
    [[nodiscard]] bool ReadStepData();
    void EndRun();

    const TargetForm& form_;
    ExerciserObserver& observer_;
    bool reading_ = false;
    bool on_ = false;
};

} // namespace busquill
