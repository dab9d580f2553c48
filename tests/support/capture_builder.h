#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <vector>

namespace busquill::test {

/// Commands on C/BE[3:0] in the address phase.
namespace PciCommand {
enum : std::uint8_t {
    InterruptAcknowledge = 0x0,
    SpecialCycle = 0x1,
    IoRead = 0x2,
    IoWrite = 0x3,
    MemoryRead = 0x6,
    MemoryWrite = 0x7,
    ConfigRead = 0xA,
    ConfigWrite = 0xB,
};
}

/// Builds the sample records of 32-bit PCI traffic, one per clock, in a readable line:
/// `CaptureBuilder().Read(0x1000).Idle(3).Write(0x2000, 0xAB).Records()`. Control lines are active
/// low, as on the bus; each sample is 30 ns after the previous one.
class CaptureBuilder {
public:
    /// Data index of single lines of the PCI table.
    enum Line : int {
        Frame = 72,
        Trdy = 73,
        Irdy = 74,
        Stop = 75,
        Devsel = 76,
        Par = 86,
        AddressPhase = 95, // ADR/DATA: 1 in an address phase
    };

    /// A read of one word: address, turnaround, data.
    CaptureBuilder& Read(std::uint32_t address, std::uint32_t data = 0) {
        Address(address, PciCommand::MemoryRead);
        Wait(1);
        return Data(data);
    }
    CaptureBuilder& Write(std::uint32_t address, std::uint32_t data) {
        return Address(address, PciCommand::MemoryWrite).Data(data);
    }
    CaptureBuilder& IoRead(std::uint32_t address, std::uint32_t data = 0) {
        return Address(address, PciCommand::IoRead).Wait(1).Data(data);
    }
    CaptureBuilder& IoWrite(std::uint32_t address, std::uint32_t data) {
        return Address(address, PciCommand::IoWrite).Data(data);
    }
    /// Idle clocks.
    CaptureBuilder& Idle(int clocks = 1) {
        for (int i = 0; i < clocks; ++i) {
            Add();
        }
        return *this;
    }
    /// One address phase.
    CaptureBuilder& Address(std::uint32_t address, std::uint8_t command) {
        SampleRecord& record = Add();
        SetAd(record, address);
        // The upper half is not in use: its byte enables are inactive.
        record.bytes[8] = static_cast<std::uint8_t>(0xF0U | command);
        SetBit(record, Frame, false);
        SetBit(record, AddressPhase, true);
        SetParity(record);
        return *this;
    }
    /// Wait states of the target.
    CaptureBuilder& Wait(int clocks = 1) {
        for (int i = 0; i < clocks; ++i) {
            SampleRecord& record = Add();
            record.bytes[8] = 0xF0;
            SetBit(record, Irdy, false);
            SetBit(record, Devsel, false);
        }
        return *this;
    }
    /// The last data phase; a bit set in `disabledLanes` disables that byte lane.
    CaptureBuilder& Data(std::uint32_t data, std::uint8_t disabledLanes = 0) {
        SampleRecord& record = Add();
        SetAd(record, data);
        record.bytes[8] = static_cast<std::uint8_t>(0xF0U | (disabledLanes & 0x0FU));
        SetBit(record, Irdy, false);
        SetBit(record, Trdy, false);
        SetBit(record, Devsel, false);
        SetParity(record);
        return *this;
    }
    /// Sets the checker's finding on the last sample.
    CaptureBuilder& Finding(std::uint8_t code) {
        records_.back().bytes[16] = code;
        return *this;
    }
    /// Sets any bit of the last sample.
    CaptureBuilder& With(int dataIndex, bool value) {
        SetBit(records_.back(), dataIndex, value);
        return *this;
    }
    /// Sets the time of the last sample since the previous one: a 16-bit count and a unit (0 ns, 1
    /// us, 2 ms, 3 s), in the 18 bits of TIME from bit 110 on.
    CaptureBuilder& After(std::uint16_t count, unsigned unit = 0) {
        SetTime(records_.back(), count, unit);
        return *this;
    }

    [[nodiscard]] const std::vector<SampleRecord>& Records() const noexcept { return records_; }

private:
    static constexpr int timeBit = 110;
    static constexpr std::uint16_t clockPeriod = 30; // ns

    static void SetBit(SampleRecord& record, int n, bool value) {
        const auto mask = static_cast<std::uint8_t>(1U << (n % 8));
        std::uint8_t& byte = record.bytes[static_cast<std::size_t>(n) / 8];
        byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
    }
    static void SetAd(SampleRecord& record, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) {
            record.bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
    static void SetTime(SampleRecord& record, std::uint16_t count, unsigned unit) {
        const std::uint32_t field = (std::uint32_t{count} << 2) | (unit & 3U);
        for (int bit = 0; bit < 18; ++bit) {
            SetBit(record, timeBit + bit, ((field >> bit) & 1) != 0);
        }
    }
    /// Even parity over AD[31:0] and C/BE[3:0].
    static void SetParity(SampleRecord& record) {
        bool odd = false;
        for (int bit = 0; bit < 32; ++bit) {
            odd ^= record.Bit(bit);
        }
        for (int bit = 64; bit < 68; ++bit) {
            odd ^= record.Bit(bit);
        }
        SetBit(record, Par, odd);
    }
    /// A clock with all lines inactive.
    SampleRecord& Add() {
        SampleRecord record;
        record.bytes[8] = 0xFF;  // C/BE
        record.bytes[9] = 0xDF;  // all of FRAME to RST but IDSEL, which is active high
        record.bytes[10] = 0x3F; // PERR, SERR, REQ, GNT, REQ64, ACK64; PAR and PAR64 low
        record.bytes[11] = 0x0F; // INTA to INTD
        record.bytes[12] = 0xFF; // EXT
        SetTime(record, clockPeriod, 0);
        records_.push_back(record);
        return records_.back();
    }

    std::vector<SampleRecord> records_;
};

} // namespace busquill::test
