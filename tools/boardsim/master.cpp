#include "master.h"

#include <algorithm>

namespace boardsim {

namespace {

// Places in the registers, which begin at the control byte.
constexpr std::size_t atControl = 0;
constexpr std::size_t atStatus = 1;
constexpr std::size_t atSpace = 2;
constexpr std::size_t atAddressSize = 3;
constexpr std::size_t atAddress = 4;
constexpr std::size_t atLength = 12;
constexpr std::size_t atDataSize = 13;
constexpr std::size_t atDataType = 15;
constexpr std::size_t atData = 16;
constexpr std::size_t atModifier = 48;

constexpr std::size_t mostBytes = 32;

constexpr std::uint8_t commandRead = 1;
constexpr std::uint8_t commandWrite = 2;
constexpr std::uint8_t commandVerify = 4;
constexpr std::uint8_t commandTest = 5;
constexpr std::uint8_t commandCompare = 6;
constexpr std::uint8_t commandSplitCompletion = 7;

constexpr std::uint8_t typeFile = 1;
constexpr std::uint8_t typeTarget = 2;

constexpr std::uint8_t running = 0x80;
constexpr std::uint8_t pass = 1;
constexpr std::uint8_t fail = 2;

/// The bytes of the bus in one space, of which the board sees those of the address size.
class Window {
public:
    Window(PagedMemory& memory, std::uint64_t first, std::size_t length, std::uint8_t addressSize,
           std::optional<std::uint64_t> stuck)
        : memory_(memory), first_(first), length_(length),
          mask_(addressSize >= 3 ? ~std::uint64_t{0}
                                 : (std::uint64_t{1} << (8U << addressSize)) - 1),
          stuck_(stuck) {}

    [[nodiscard]] std::vector<std::uint8_t> Read() const {
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 0; i < length_; ++i) {
            const std::uint64_t address = (first_ + i) & mask_;
            const bool stuck = stuck_ && address == *stuck_;
            bytes.push_back(static_cast<std::uint8_t>(memory_.At(address) | (stuck ? 1 : 0)));
        }
        return bytes;
    }
    void Write(std::span<const std::uint8_t> bytes) {
        for (std::size_t i = 0; i < length_; ++i) {
            memory_.Put((first_ + i) & mask_, bytes[i]);
        }
    }
    /// Each byte must take two opposite patterns. What it held is lost.
    [[nodiscard]] bool Test() {
        return std::ranges::all_of(std::array<std::uint8_t, 2>{0x55, 0xAA}, [&](auto pattern) {
            const std::vector<std::uint8_t> bytes(length_, pattern);
            Write(bytes);
            return Read() == bytes;
        });
    }

private:
    PagedMemory& memory_;
    const std::uint64_t first_;
    const std::size_t length_;
    const std::uint64_t mask_;
    const std::optional<std::uint64_t> stuck_;
};

std::uint64_t AddressOf(std::span<const std::uint8_t> registers) {
    std::uint64_t address = 0;
    for (std::size_t i = 8; i-- > 0;) {
        address = address << 8 | registers[atAddress + i];
    }
    return address;
}

/// What a step writes, or compares with: the bytes of the file, of the target, or the value, which
/// repeats in the width of the data.
std::vector<std::uint8_t> DataOf(std::span<const std::uint8_t> registers, std::size_t length,
                                 const Target& target) {
    if (registers[atDataType] == typeTarget) {
        return target.Read(static_cast<std::uint32_t>(AddressOf(registers)), length);
    }
    const std::size_t width = registers[atDataType] == typeFile
                                  ? mostBytes
                                  : std::size_t{1}
                                        << std::min<std::size_t>(registers[atDataSize], 3);
    std::vector<std::uint8_t> bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = registers[atData + i % width];
    }
    return bytes;
}

} // namespace

void Master::Go(std::span<std::uint8_t> registers, Target& target, const MasterFaults& faults) {
    const std::size_t length = std::min<std::size_t>(registers[atLength], mostBytes);
    Window window(spaces_[{registers[atSpace], registers[atModifier]}], AddressOf(registers),
                  length, registers[atAddressSize], faults.stuck);
    const std::vector<std::uint8_t> data = DataOf(registers, length, target);
    bool good = true;
    switch (registers[atControl] & 0x7F) {
    case commandRead: {
        const std::vector<std::uint8_t> bytes = window.Read();
        std::ranges::copy(bytes, registers.begin() + atData);
        if (registers[atDataType] == typeTarget) {
            target.Write(static_cast<std::uint32_t>(AddressOf(registers)), bytes);
        }
        break;
    }
    case commandWrite:
    case commandSplitCompletion:
        window.Write(data);
        break;
    case commandVerify:
        window.Write(data);
        good = window.Read() == data;
        break;
    case commandTest:
        good = window.Test();
        break;
    case commandCompare:
        good = window.Read() == data;
        break;
    default:
        good = false;
        break;
    }
    registers[atStatus] = faults.status.value_or(good ? pass : fail);
    if (faults.busy > 0) {
        registers[atStatus] |= running;
    }
}

void Master::Polled(std::span<std::uint8_t> registers, MasterFaults& faults) {
    if ((registers[atStatus] & running) != 0 && --faults.busy <= 0) {
        registers[atStatus] &= static_cast<std::uint8_t>(~running);
    }
}

void Master::Stop(std::span<std::uint8_t> registers) {
    registers[atStatus] &= static_cast<std::uint8_t>(~running);
}

} // namespace boardsim
