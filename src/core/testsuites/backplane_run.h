#pragma once

#include "link/board_run.h"
#include "testsuites/backplane_table.h"

#include <functional>
#include <string>

namespace busquill {

class CBackplaneTestDoc;

/// Follows a run. Main thread.
class BackplaneObserver {
public:
    virtual ~BackplaneObserver() = default;

    /// May repeat the state that it told last.
    virtual void OnRunning(bool running) = 0;
    /// A run begins; the old results are gone.
    virtual void OnResultsCleared() = 0;
    /// A signal's test begins: the line that its results follow.
    virtual void OnSignal(const std::string& line) = 0;
    virtual void OnResult(const std::string& line) = 0;
};

/// How sensitive the board is to a short.
enum class BackplaneSensitivity : std::uint8_t { Normal = 0, High = 1, Low = 2 };

/// Has the board drive the ticked signals of a backplane one after the other, and tells which
/// others follow. Main thread.
class BackplaneRun final : public BoardRun {
public:
    /// Whether a row is ticked, by its index; asked again for each next signal.
    using IsTicked = std::function<bool(int row)>;

    /// The document takes the results. It and the observer outlive the run. The rows are those that
    /// the user sees, which differ from the document's table after a change of the board's family.
    BackplaneRun(Parts parts, CBackplaneTestDoc& document, CheckTable rows, IsTicked isTicked,
                 BackplaneObserver& observer);

    /// Starts a run, after stopping one that is on. Refused, with a message, without a ticked
    /// signal. A failed command is reported, and the run goes on.
    void Start();
    void Poll() override;
    /// Ends a run. The board is told even when none is on.
    void Stop() override;
    [[nodiscard]] bool IsOn() const noexcept { return row_ != noRow; }

    /// Sent with each signal.
    BackplaneSensitivity sensitivity = BackplaneSensitivity::Normal;

private:
    static constexpr int noRow = -1;

    [[nodiscard]] bool NextSignal();
    void TestSignal();
    void Evaluate(const BackplaneSignals& bytes);
    [[nodiscard]] std::optional<int> SignalBit() const;

    CBackplaneTestDoc& document_;
    const CheckTable rows_;
    const IsTicked isTicked_;
    BackplaneObserver& observer_;
    int row_ = noRow; // of the signal that is driven
};

} // namespace busquill
