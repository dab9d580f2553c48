#pragma once

#include "exerciser/bus_address.h"
#include "link/board_run.h"
#include "testsuites/check_list.h"
#include "testsuites/config_scan.h"
#include "testsuites/test_result.h"

#include <functional>
#include <optional>

namespace busquill {

class CComplianceDoc;

/// What the operator does after reading the instructions of a test.
enum class OperatorAnswer { Continue, Skip, Stop };

/// Follows a run. Main thread.
class ComplianceObserver {
public:
    virtual ~ComplianceObserver() = default;

    virtual void OnRunning(bool running) = 0;
    /// A run begins; the old results are gone.
    virtual void OnResultsCleared() = 0;
    /// A test begins. It has no result, and never gets one when the run is stopped.
    virtual void OnTestStarted(const CTestResult& test) = 0;
    /// The test that began last has its result.
    virtual void OnTestEnded(const CTestResult& test) = 0;
    /// Shows instructions and waits for the operator.
    virtual OperatorAnswer AskOperator(const std::string& instructions) = 0;
};

/// Runs the ticked tests of a check list on the board, one after the other. Main thread.
///
/// For each test the board is sent its identifier, the control byte and the start. The stop goes
/// out after a test that was skipped, and at the end of the run: not between tests that ran to
/// their end.
class ComplianceRun final : public BoardRun {
public:
    /// Whether an item of the check list is ticked, by its index; asked again for each next test.
    using IsTicked = std::function<bool(int index)>;

    /// The document takes the device and the results. It, the list and the observer outlive the
    /// run.
    ComplianceRun(Parts parts, CComplianceDoc& document, const CheckList& list, IsTicked isTicked,
                  ComplianceObserver& observer);

    /// Looks for the device to test and returns its function number. Without a board there is one.
    std::optional<int> Find(ScanDirection direction);

    /// Starts a run; one that is on begins again. Refused, with a message, without a device or
    /// without a ticked test.
    void Go();
    void Poll() override;
    /// Ends the run. The board is told even when no run is on.
    void Stop() override;
    /// Whether a test is being polled.
    [[nodiscard]] bool IsOn() const noexcept { return polling_; }

    /// Sends the address at which the tests find the device's memory.
    void SendTargetAddress(const BusAddress& address);

private:
    enum class Started { Polls, Skipped, Ended };

    [[nodiscard]] bool FindNextTest();
    void RunTests();
    [[nodiscard]] Started StartTest();
    void SendControl(std::uint8_t control);
    void EndTest(TestOutcome outcome);
    void EndPolling();

    CComplianceDoc& document_;
    const CheckList& list_;
    const IsTicked isTicked_;
    ComplianceObserver& observer_;

    int lastIndex_ = -1; // of the last test that was started
    CTestResult test_;   // that test
    bool polling_ = false;
};

} // namespace busquill
