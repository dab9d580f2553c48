#pragma once

#include "exerciser/exerciser_run.h"
#include "support/link_fixture.h"
#include "support/manual_timer.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <set>

namespace busquill::test {

/// The n-th byte of a pattern that does not repeat at a step's length.
constexpr std::uint8_t PatternByte(std::size_t n) {
    return static_cast<std::uint8_t>(n * 7 + n / 256);
}

/// The text of a data file with `count` bytes of the pattern.
inline std::string PatternText(std::size_t count) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t n = 0; n < count; ++n) {
        text += digits[PatternByte(n) / 16];
        text += digits[PatternByte(n) % 16];
        text += n % 10 == 9 ? "\r\n" : " ";
    }
    return text;
}

/// Bytes of the pattern from `first` on, and zeros up to `size`.
inline Bytes Pattern(std::size_t first, std::size_t count, std::size_t size) {
    Bytes bytes;
    for (std::size_t n = first; n < first + count; ++n) {
        bytes.push_back(PatternByte(n));
    }
    bytes.resize(size);
    return bytes;
}

/// A link to a scripted board that keeps the names of its commands: "write 802", "read 801",
/// "go", "stop", "write target 4096", "read target 4096". Commands can be made to fail.
class ExerciserFixture : public LinkFixture {
protected:
    ExerciserFixture() { UseModel("PCIKite"); }

    void UseModel(const std::string& model) {
        UseBoard();
        OpenBoard(model);
        line->SetAnswer([this](const Bytes& sent, int baud) { return Answer(sent, baud); });
    }
    void UsePciX() {
        link->WriteBusConfig({.busMode = BusPciX});
        link->WaitIdle();
        Forget();
    }
    void UseDemoMode() {
        portOpens = false;
        OpenLink();
        ASSERT_TRUE(link->IsDemoMode());
    }

    void Fail(const std::string& command) {
        line->Do([&] { failing_.insert(command); });
    }
    void Mend() {
        line->Do([&] { failing_.clear(); });
    }
    void Forget() {
        line->Do([&] {
            commands_.clear();
            board.writes.clear();
        });
        prompts.Forget();
    }
    std::vector<std::string> Commands() {
        std::vector<std::string> commands;
        line->Do([&] { commands = commands_; });
        return commands;
    }
    /// What was written to a register or a place in the target's memory, since Forget.
    std::vector<Bytes> WrittenTo(std::uint32_t address) {
        std::vector<Bytes> written;
        line->Do([&] {
            for (const WireBoard::Write& write : board.writes) {
                if (write.address == address) {
                    written.push_back(write.bytes);
                }
            }
        });
        return written;
    }
    void Put(std::uint32_t address, const Bytes& bytes) {
        line->Do([&] { board.contents[address] = bytes; });
    }

    const TempDir dir;
    std::shared_ptr<TimerState> timer = std::make_shared<TimerState>();

private:
    Bytes Answer(const Bytes& sent, int baud) {
        if (payloadFollows_) {
            payloadFollows_ = false;
        } else if (sent.size() == 2 && sent[0] == 2) {
            const std::string name = NameOf(sent[1]);
            if (failing_.contains(name)) {
                return Refuse(name);
            }
            commands_.push_back(name);
            payloadFollows_ = sent[1] == 2 || sent[1] == 10;
        } else if (sent.size() == 2 && sent[0] >= 4 && sent[0] <= 8) {
            // A command fails when its first frame gets no answer; later ones are tried for ever.
            for (const std::string& name : failing_) {
                if (sent[0] == 4 && sent[1] == FirstByteOf(name)) {
                    return Refuse(name);
                }
            }
            const unsigned shift = (sent[0] - 4U) * 4;
            address_ = (address_ & ~(0xFFU << shift)) | std::uint32_t{sent[1]} << shift;
        }
        return board.Answer(sent, baud);
    }
    /// Each command is tried several times, but named once.
    Bytes Refuse(const std::string& name) {
        if (commands_.empty() || commands_.back() != "no " + name) {
            commands_.push_back("no " + name);
        }
        return {};
    }
    /// The low byte of the address at the end of a name; none of a command without one.
    static int FirstByteOf(const std::string& name) {
        const auto space = name.rfind(' ');
        return space == std::string::npos ? -1 : std::stoi(name.substr(space)) & 0xFF;
    }
    [[nodiscard]] std::string NameOf(int function) const {
        const std::string at = " " + std::to_string(address_);
        switch (function) {
        case 1:
            return "read" + at;
        case 2:
            return "write" + at;
        case 9:
            return "read target" + at;
        case 10:
            return "write target" + at;
        case 23:
            return "go";
        case 24:
            return "stop";
        default:
            return "function " + std::to_string(function);
        }
    }

    std::vector<std::string> commands_;
    std::set<std::string> failing_;
    std::uint32_t address_ = 0;
    bool payloadFollows_ = false;
};

} // namespace busquill::test
