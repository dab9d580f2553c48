#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace boardsim {

/// The outcome of a test.
struct Verdict {
    enum class Kind { Pass, Fail, Unknown };
    Kind kind = Kind::Pass;
    unsigned code = 0; // 0 to 15
    int slow = 1;      // readings of the status that find the test running
};

/// The tests of a device, whose outcomes are scripted. A test with instructions waits for the
/// operator.
class Compliance {
public:
    /// Takes a script: "CFG3 fail 5, MST1 unknown, TGT2 slow 20, * pass". The last entry gives the
    /// outcome of all other tests, which is to pass; "slow" may stand before another outcome. False
    /// when it is not understood.
    [[nodiscard]] bool TakeScript(std::string_view script);

    /// Starts the test of an identifier, three letters and a number.
    void Start(std::span<const std::uint8_t, 4> id, std::uint8_t control);
    void Stop() noexcept { running_.reset(); }

    /// The status, as the host reads it; the operator's answer comes in the control register.
    [[nodiscard]] std::uint8_t TakeStatus(std::uint8_t control);

private:
    struct Running {
        Verdict verdict;
        bool waits; // for the operator
    };

    std::map<std::string, Verdict> verdicts_;
    std::optional<Running> running_;
};

} // namespace boardsim
