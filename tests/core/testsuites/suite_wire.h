#pragma once

#include "link/board_run.h"
#include "support/link_fixture.h"
#include "support/manual_timer.h"

#include <algorithm>
#include <thread>

namespace busquill::test {

/// A run on a scripted board, with what it sends and a timer that the test ticks.
class SuiteRunFixture : public LinkFixture {
protected:
    /// What the board got since the last call: functions by their numbers, writes as "1532: 00 ff",
    /// reads as "1548?".
    std::vector<std::string> TakeWire() {
        std::vector<std::string> wire;
        line->Do([&] {
            std::size_t write = 0;
            std::size_t read = 0;
            for (const int function : board.functions) {
                if (function == 2) {
                    wire.push_back(Describe(board.writes[write++]));
                } else {
                    wire.push_back(function == 1 ? std::to_string(reads_[read++]) + "?"
                                                 : std::to_string(function));
                }
            }
            board.functions.clear();
            board.writes.clear();
            reads_.clear();
        });
        return wire;
    }
    void SetMemory(std::uint32_t address, Bytes bytes) {
        line->Do([&] { board.contents[address] = std::move(bytes); });
    }
    /// The board does not answer these frames.
    void Ignore(std::vector<Bytes> frames) {
        line->SetAnswer([this, frames](const Bytes& sent, int baud) {
            return std::ranges::find(frames, sent) != frames.end() ? Bytes{}
                                                                   : board.Answer(sent, baud);
        });
    }
    /// The port is gone. Time passes for the tries of the requests that fail.
    void Unplug() {
        line->Unplug();
        ASSERT_TRUE(Eventually([&] { return link->IsBoardGone(); }));
        line->SetErrors({.write = EIO});
        timePasses_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                clock.Advance(std::chrono::milliseconds(100));
            }
        });
    }
    void OpenDemo() {
        portOpens = false;
        OpenLink();
        ASSERT_TRUE(link->IsDemoMode());
        prompts.Forget();
    }
    /// Connects, and notes the reads from then on.
    void OpenQuietBoard() {
        OpenBoard("PCIKite");
        line->Do([this] {
            board.onMemoryRead = [this](std::uint32_t address) { reads_.push_back(address); };
            board.functions.clear();
            board.writes.clear();
        });
    }
    [[nodiscard]] BoardRun::Parts Parts() {
        return {*link, prompts, std::make_unique<ManualTimer>(timer)};
    }
    [[nodiscard]] bool AllTopmost() const {
        return std::ranges::all_of(prompts.Boxes(), &Box::topmost);
    }

    std::shared_ptr<TimerState> timer = std::make_shared<TimerState>();

private:
    static std::string Describe(const WireBoard::Write& write) {
        std::string text = std::to_string(write.address) + ":";
        for (const std::uint8_t byte : write.bytes) {
            constexpr const char* digits = "0123456789abcdef";
            text += {' ', digits[byte >> 4], digits[byte & 15]};
        }
        return text;
    }

    std::vector<std::uint32_t> reads_;
    std::jthread timePasses_;
};

} // namespace busquill::test
