#pragma once

#include "support/scripted_serial_port.h"

#include <functional>
#include <map>

namespace busquill::test {

/// The far end of a wire: a board without faults. It acknowledges frames and payloads, records what
/// is written, and reads return what a test has put at an address.
class WireBoard {
public:
    struct Write {
        std::uint32_t address = 0;
        Bytes bytes;
        bool operator==(const Write&) const = default;
    };

    /// One read of samples: the function, the distance from the trigger, the number of samples.
    struct SampleRead {
        int function = 0;
        std::uint32_t distance = 0;
        std::uint32_t length = 0;
        bool operator==(const SampleRead&) const = default;
    };

    /// The bytes that a read of memory, target or samples returns, by address; others are 0.
    std::map<std::uint32_t, Bytes> contents;
    std::vector<Write> writes;
    std::vector<int> functions;
    std::vector<SampleRead> sampleReads;
    /// Called for each read of samples before it is answered; returns the answer. If it is not set,
    /// the read returns `contents`.
    std::function<Bytes(const SampleRead&)> onSampleRead;
    /// Called before the memory at an address is read.
    std::function<void(std::uint32_t address)> onMemoryRead;
    int baud = 0; // the rate at which it answers; 0: at any

    Bytes Answer(const Bytes& sent, int lineBaud) {
        Bytes answer;
        if (baud != 0 && lineBaud != baud) {
            return answer;
        }
        for (const std::uint8_t byte : sent) {
            Take(byte, answer);
        }
        return answer;
    }

private:
    void Take(std::uint8_t byte, Bytes& answer) {
        pending_.push_back(byte);
        if (payloadLength_ > 0) {
            if (pending_.size() == payloadLength_) {
                writes.push_back({address_, pending_});
                pending_.clear();
                payloadLength_ = 0;
                answer.push_back('*');
            }
            return;
        }
        if (pending_.size() < 2) {
            return;
        }
        const std::uint32_t parameter = pending_[1];
        switch (pending_[0]) {
        case 2:
            RunFunction(static_cast<int>(parameter), answer);
            break;
        case 4:
            address_ = (address_ & 0xFFFF00U) | parameter;
            break;
        case 6:
            address_ = (address_ & 0xFF00FFU) | parameter << 8;
            break;
        case 8:
            address_ = (address_ & 0x00FFFFU) | parameter << 16;
            break;
        case 10:
            length_ = (length_ & 0xFF00U) | parameter;
            break;
        case 12:
            length_ = (length_ & 0x00FFU) | parameter << 8;
            break;
        default:
            break;
        }
        pending_.clear();
        answer.push_back('*');
    }

    void RunFunction(int function, Bytes& answer) {
        functions.push_back(function);
        if (function == 2 || function == 10 || function == 30) {
            payloadLength_ = length_;
        } else if (function == 1 || function == 9) {
            if (onMemoryRead) {
                onMemoryRead(address_);
            }
            AppendData(contents[address_], length_, answer);
        } else if (function == 3 || function == 5 || function == 35 || function == 36) {
            sampleReads.push_back({function, address_, length_});
            AppendData(onSampleRead ? onSampleRead(sampleReads.back()) : contents[address_],
                       length_ * std::size_t{18}, answer);
        }
    }

    void AppendData(Bytes data, std::size_t count, Bytes& answer) {
        data.resize(count);
        answer.push_back('*');
        answer.insert(answer.end(), data.begin(), data.end());
    }

    Bytes pending_;
    std::size_t payloadLength_ = 0;
    std::uint32_t address_ = 0;
    std::uint32_t length_ = 0;
};

} // namespace busquill::test
