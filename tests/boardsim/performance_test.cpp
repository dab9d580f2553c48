#include "boardsim/board.h"
#include "boardsim/performance.h"
#include "boardsim/traffic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace boardsim {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Gt;
using testing::Lt;

using Bytes = std::vector<std::uint8_t>;

enum Type : std::uint8_t { utilization, transferRate, latency, burst, statistics };

struct Item {
    std::uint8_t item = 0;
    std::uint8_t cycle = 0;
    std::uint64_t low = 0;
    std::uint64_t high = ~std::uint64_t{0};
};

/// The 241 bytes of a setup, as they go over the wire.
Bytes SetupOf(Type type, const std::vector<Item>& items) {
    Bytes bytes = {type};
    for (std::size_t n = 0; n < 8; ++n) {
        const Item item = n < items.size() ? items[n] : Item();
        for (const std::uint64_t word : {item.low, item.high}) {
            for (unsigned byte = 0; byte < 8; ++byte) {
                bytes.push_back(static_cast<std::uint8_t>(word >> (8 * byte)));
            }
        }
        bytes.push_back(item.cycle);
        bytes.push_back(item.item);
        bytes.resize(bytes.size() + 12);
    }
    return bytes;
}

// Lines of a PCI bus.
constexpr int frame = 72;
constexpr int trdy = 73;
constexpr int irdy = 74;
constexpr int stop = 75;
constexpr int devsel = 76;
constexpr int req = 82;

/// A sample of a PCI bus with asserted lines.
Record Clock(const std::vector<int>& asserted, unsigned nanoseconds = 30) {
    Record record;
    record.fill(0xFF);
    SetField(record, 93, 3, 1); // no address
    SetField(record, 96, 8, 0); // no external input
    SetField(record, 110, 18, nanoseconds << 2);
    for (const int line : asserted) {
        SetBit(record, line, false);
    }
    return record;
}

Record AddressClock(unsigned command, std::uint32_t address) {
    Record record = Clock({frame});
    SetField(record, 0, 32, address);
    SetField(record, 64, 4, command);
    SetBit(record, 95, true);
    return record;
}

/// 20 clocks: a burst of 3 words to memory after 2 clocks of request, with 2 waits before the first
/// word and one before the last; then a read of I/O that is refused.
std::vector<Record> TwoCycles() {
    const Record idle = Clock({});
    const Record wait = Clock({frame, irdy, devsel});
    const Record word = Clock({frame, irdy, devsel, trdy});
    return {
        idle,
        Clock({req}),
        Clock({req}),
        AddressClock(7, 0x1000), // 4 clocks
        wait,
        wait,
        word,
        word, // 8
        wait,
        word,
        idle,
        idle, // 12
        idle,
        Clock({req}),
        Clock({req}),
        AddressClock(2, 0x60), // 16
        wait,
        wait,
        Clock({irdy, devsel, stop}),
        idle, // 20
    };
}

Performance::Values Count(Family family, const std::vector<Record>& records, const Bytes& setup) {
    Performance performance(family);
    performance.Start(setup);
    for (const Record& record : records) {
        performance.Feed(record);
    }
    return performance.Take();
}

TEST(Performance, UtilizationIsThePercentageOfClocks) {
    // Busy are 7 clocks and 4.
    EXPECT_THAT(Count(Family::Pci32, TwoCycles(),
                      SetupOf(utilization, {{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}})),
                ElementsAre(55, 45, 15, 10, 45, 30, 27, 33));
}

TEST(Performance, ARowCountsOnlyItsCyclesAndAddresses) {
    EXPECT_THAT(Count(Family::Pci32, TwoCycles(),
                      SetupOf(utilization, {{1, 1},
                                            {1, 3},
                                            {1, 2},
                                            {1, 5},
                                            {1, 0, 0x1000, 0x1000},
                                            {1, 0, 0x1001},
                                            {1, 0, 0, 0xFFF},
                                            {0, 0}})),
                ElementsAre(35, 35, 0, 20, 35, 0, 20, 0));
}

TEST(Performance, RateIsInMegabytesPerSecond) {
    // 12 bytes in 600 ns; the board's only grant line is the first one.
    EXPECT_THAT(
        Count(Family::Pci32, TwoCycles(), SetupOf(transferRate, {{1}, {2}, {3}, {1, 3}, {1, 5}})),
        ElementsAre(20, 20, 0, 20, 0, 0, 0, 0));
}

TEST(Performance, LatencyIsInMicrosecondsPerMillisecond) {
    // Clocks of 20: 2 of address, 2 and 3 before the first word, 1 later, 4 of request.
    EXPECT_THAT(Count(Family::Pci32, TwoCycles(), SetupOf(latency, {{1}, {2}, {3}, {4}, {4, 1}})),
                ElementsAre(100, 250, 50, 200, 100, 0, 0, 0));
}

TEST(Performance, ABurstIsCountedInBytes) {
    EXPECT_THAT(Count(Family::Pci32, TwoCycles(), SetupOf(burst, {{1, 0}, {1, 1}, {1, 4}})),
                ElementsAre(6, 12, 0, 0, 0, 0, 0, 0));
}

TEST(Performance, StatisticsTellHowCyclesEnd) {
    EXPECT_THAT(Count(Family::Pci32, TwoCycles(),
                      SetupOf(statistics, {{1, 3}, {2}, {3}, {4}, {4, 5}, {4, 3}, {5}, {6}})),
                ElementsAre(50, 0, 0, 50, 100, 0, 0, 0));

    const Record idle = Clock({});
    const Record word = Clock({frame, irdy, devsel, trdy});
    const auto first = [](const std::vector<Record>& after) {
        std::vector<Record> records = {AddressClock(6, 0x1000)};
        records.insert(records.end(), after.begin(), after.end());
        return records;
    };
    const Bytes setup = SetupOf(statistics, {{1}, {2}, {3}, {4}, {5}, {6}, {7}});
    const auto none = ElementsAre(100, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_THAT(Count(Family::Pci32, first({word, idle}), setup), none);
    EXPECT_THAT(Count(Family::Pci32, first({Clock({irdy}), Clock({irdy}), idle}), setup),
                ElementsAre(100, 100, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(Count(Family::Pci32, first({Clock({irdy, stop}), idle}), setup),
                ElementsAre(100, 0, 100, 0, 0, 0, 0, 0));
    EXPECT_THAT(Count(Family::Pci32, first({Clock({irdy, devsel, trdy, stop}), idle}), setup),
                ElementsAre(100, 0, 0, 0, 100, 0, 0, 0));
    EXPECT_THAT(Count(Family::Pci32, first({word, Clock({irdy, devsel, stop}), idle}), setup),
                ElementsAre(100, 0, 0, 0, 0, 100, 0, 0));
    Record split = Clock({irdy, trdy});
    SetBit(split, 93, false); // no attributes
    EXPECT_THAT(Count(Family::PciX, first({split, idle}), setup),
                ElementsAre(100, 0, 0, 0, 0, 0, 100, 0));
}

TEST(Performance, ValuesAreThoseSinceTheLastReading) {
    Performance performance(Family::Pci32);
    performance.Start(SetupOf(utilization, {{1}, {2}}));
    for (const Record& record : TwoCycles()) {
        performance.Feed(record);
    }
    EXPECT_EQ(performance.Take()[0], 55U);
    for (int i = 0; i < 10; ++i) {
        performance.Feed(Clock({}));
    }
    EXPECT_THAT(performance.Take(), ElementsAre(0, 100, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(performance.Take(), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
}

/// The percentage of time in which a line is asserted.
unsigned PercentAsserted(const std::vector<Record>& records, int line) {
    std::uint64_t asserted = 0;
    std::uint64_t all = 0;
    for (std::size_t i = 1; i < records.size(); ++i) {
        const std::uint64_t time = TimeOfField(GetField(records[i], 110, 18));
        asserted += GetBit(records[i - 1], line) ? 0 : time;
        all += time;
    }
    return static_cast<unsigned>((asserted * 100 + all / 2) / all);
}

TEST(Performance, OnOtherBusesTheAddressStrobeIsBusy) {
    for (const auto& [family, strobe] :
         {std::pair{Family::Vme, 72}, {Family::Lark, 96}, {Family::Vsb, 72}}) {
        const auto records = MakeRecords(family, 4, 20000);
        const auto values = Count(family, records, SetupOf(utilization, {{1}, {2}, {5}, {1, 1}}));
        const unsigned busy = PercentAsserted(records, strobe);
        EXPECT_EQ(values[0], busy);
        EXPECT_EQ(values[1], 100 - busy);
        EXPECT_THAT(values[2], AllOf(Gt(0U), Lt(busy)));
        EXPECT_THAT(values[3], AllOf(Gt(0U), Lt(busy))) << "without other cycles";
    }
}

TEST(Performance, ABusErrorIsATargetAbort) {
    const auto values = Count(Family::Vme, MakeRecords(Family::Vme, 4, 20000),
                              SetupOf(statistics, {{3}, {3, 14}, {1, 14}, {3, 2}}));
    EXPECT_THAT(values[0], AllOf(Gt(5U), Lt(15U)));
    EXPECT_EQ(values[1], 0U);
    EXPECT_THAT(values[2], AllOf(Gt(5U), Lt(15U))) << "interrupts";
    EXPECT_GT(values[3], values[0]) << "only reads fail";
    EXPECT_THAT(Count(Family::Vme, MakeRecords(Family::Vme, 4, 20000),
                      SetupOf(transferRate, {{1}, {2}, {5}})),
                ElementsAre(Gt(0U), 0, Gt(0U), 0, 0, 0, 0, 0))
        << "masters are granted by the last line";
}

TEST(Performance, AConnectorHasNothingToCount) {
    EXPECT_THAT(Count(Family::ConnectorP0, MakeRecords(Family::ConnectorP0, 1, 100),
                      SetupOf(utilization, {{1}, {2}})),
                ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
}

/// A board on whose bus the traffic of seed 1 runs.
class PerformanceOfABoard : public testing::Test {
protected:
    Bytes Send(const Bytes& bytes) {
        Bytes reply;
        for (const std::uint8_t byte : bytes) {
            const Bytes part = board.Receive(byte);
            reply.insert(reply.end(), part.begin(), part.end());
        }
        return reply;
    }
    void SendSetup(const Bytes& setup) {
        // 241 bytes to register 499.
        EXPECT_EQ(Send({4, 0xF3, 6, 0x01, 8, 0, 10, 241, 12, 0, 2, 2}), Bytes(6, '*'));
        EXPECT_EQ(Send(setup), Bytes(1, '*'));
    }
    /// The values in the 32 bytes at register 748.
    std::vector<unsigned> Read() {
        Bytes reply = Send({4, 0xEC, 6, 0x02, 8, 0, 10, 32, 12, 0, 2, 1});
        EXPECT_EQ(reply.size(), 39U);
        reply.erase(reply.begin(), reply.begin() + 6); // of the five registers, and the data's
        std::vector<unsigned> values;
        for (std::size_t n = 0; n < 32; n += 4) {
            values.push_back(reply[n] | unsigned{reply[n + 1]} << 8 | unsigned{reply[n + 2]} << 16 |
                             unsigned{reply[n + 3]} << 24);
        }
        return values;
    }

    std::vector<Record> samples = MakeRecords(Family::Pci32, 1, 100);
    Board board{{},
                9600,
                samples,
                50,
                MakeZoom(samples, 50),
                MakeTraffic(Family::Pci32, 1),
                Comparators(Family::Pci32),
                Performance(Family::Pci32)};
};

TEST_F(PerformanceOfABoard, AReadingIsOfTheNextPieceOfTraffic) {
    SendSetup(SetupOf(utilization, {{1}, {2}, {1, 1}}));
    EXPECT_THAT(Read(), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0)) << "nothing counts yet";
    EXPECT_EQ(Send({2, 15}), Bytes(1, '*'));
    const auto records = MakeRecords(Family::Pci32, 1, 4 * 2048);
    for (std::size_t reading = 0; reading < 4; ++reading) {
        unsigned busy = 0;
        for (std::size_t i = reading * 2048; i < (reading + 1) * 2048; ++i) {
            busy += GetBit(records[i], frame) && GetBit(records[i], irdy) ? 0 : 1;
        }
        const auto values = Read();
        EXPECT_NEAR(values[0], busy * 100.0 / 2048, 1);
        EXPECT_EQ(values[0] + values[1], 100U);
        EXPECT_THAT(values[2], AllOf(Gt(0U), Lt(values[0])));
    }
}

TEST_F(PerformanceOfABoard, StopKeepsTheLastValues) {
    SendSetup(SetupOf(transferRate, {{1}}));
    Send({2, 15});
    const auto values = Read();
    EXPECT_THAT(values[0], AllOf(Gt(10U), Lt(132U))) << "of 33 MHz and 32 bits";
    EXPECT_EQ(Send({2, 16}), Bytes(1, '*'));
    EXPECT_EQ(Read(), values);
    EXPECT_EQ(Read(), values);
}

TEST_F(PerformanceOfABoard, CountingDoesNotWaitForACapture) {
    EXPECT_FALSE(board.Sampling());
    Send({2, 15});
    EXPECT_FALSE(board.Sampling()) << "the bus runs when the counters are read";
}

} // namespace
} // namespace boardsim
