#include "platform/line_errors.h"
#include "platform/serial_port.h"
#include "support/pseudo_terminal.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <numeric>
#include <sys/wait.h>
#include <thread>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

class Stopwatch {
public:
    [[nodiscard]] std::chrono::milliseconds Elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start_);
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

Bytes EveryByte() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

/// A port on a pseudo terminal, raw at 57600.
class SerialPortTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(port, nullptr);
        ASSERT_EQ(port->Configure(57600), 0);
        ASSERT_EQ(port->SetReadTimeout(100ms), 0);
    }

    PseudoTerminal farEnd;
    std::unique_ptr<SerialPort> port = OpenSerialPort(farEnd.Path());
};

class SerialPortRate : public testing::TestWithParam<int> {};

TEST_P(SerialPortRate, IsWhatTheFarEndSeesAndBytesPassBothWays) {
    const PseudoTerminal farEnd;
    const auto port = OpenSerialPort(farEnd.Path());
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->ReadConfiguration(), 0);
    ASSERT_EQ(port->Configure(GetParam()), 0);
    EXPECT_EQ(farEnd.Rate(), GetParam());
    EXPECT_EQ(static_cast<int>(farEnd.Settings().c_ispeed), GetParam());

    EXPECT_EQ(port->Write(Bytes{0x0A, 0x00}), 0);
    EXPECT_EQ(farEnd.Receive(2), (Bytes{0x0A, 0x00}));
    ASSERT_TRUE(farEnd.Send(Bytes{'*'}));
    ASSERT_EQ(port->SetReadTimeout(2s), 0);
    Bytes reply(1);
    EXPECT_EQ(port->Read(reply), 1U);
    EXPECT_EQ(reply, Bytes{'*'});
}

INSTANTIATE_TEST_SUITE_P(EveryRate, SerialPortRate,
                         testing::Values(9600, 19200, 28800, 38400, 57600, 115200, 750000));

TEST_F(SerialPortTest, IsRawWithEightBitsAndNoFlowControl) {
    const termios2 line = farEnd.Settings();
    EXPECT_EQ(line.c_iflag, 0U);
    EXPECT_EQ(line.c_oflag, 0U);
    EXPECT_EQ(line.c_lflag, 0U);
    EXPECT_EQ(line.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(line.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0U);
    EXPECT_NE(line.c_cflag & CREAD, 0U);
    EXPECT_NE(line.c_cflag & CLOCAL, 0U);
}

TEST_F(SerialPortTest, PassesEveryByteOutwardUnchanged) {
    ASSERT_EQ(port->Write(EveryByte()), 0);
    EXPECT_EQ(farEnd.Receive(256), EveryByte());
}

TEST_F(SerialPortTest, PassesEveryByteInwardUnchangedWithoutEcho) {
    ASSERT_EQ(port->SetReadTimeout(2s), 0);
    ASSERT_TRUE(farEnd.Send(EveryByte()));
    Bytes received(256);
    ASSERT_EQ(port->Read(received), 256U);
    EXPECT_EQ(received, EveryByte());
    EXPECT_TRUE(farEnd.Receive(1, 50ms).empty());
}

TEST_F(SerialPortTest, ReadFromASilentLineTimesOutWithoutBytes) {
    Bytes buffer(1);
    const Stopwatch watch;
    EXPECT_EQ(port->Read(buffer), 0U);
    EXPECT_GE(watch.Elapsed(), 100ms);
    EXPECT_LT(watch.Elapsed(), 2s);
}

TEST_F(SerialPortTest, ReadReturnsTheBytesThatArrivedWhenTheTimeHasPassed) {
    ASSERT_TRUE(farEnd.Send(Bytes{1, 2, 3}));
    Bytes buffer(10, 0xEE);
    const Stopwatch watch;
    EXPECT_EQ(port->Read(buffer), 3U);
    EXPECT_GE(watch.Elapsed(), 100ms);
    EXPECT_EQ(buffer, (Bytes{1, 2, 3, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST_F(SerialPortTest, ReadSomeReturnsAvailableBytesWithoutWaiting) {
    ASSERT_EQ(port->SetReadTimeout(10s), 0);
    ASSERT_TRUE(farEnd.Send(Bytes{1, 2, 3}));
    Bytes buffer(10, 0xEE);
    const Stopwatch watch;
    EXPECT_EQ(port->ReadSome(buffer), 3U);
    EXPECT_LT(watch.Elapsed(), 8s);
    EXPECT_EQ(buffer, (Bytes{1, 2, 3, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
    ASSERT_EQ(port->SetReadTimeout(20ms), 0);
    EXPECT_EQ(port->ReadSome(buffer), 0U);
    farEnd.Close();
    EXPECT_EQ(port->ReadSome(buffer), std::nullopt);
}

TEST_F(SerialPortTest, ReadJoinsPiecesAndEndsWhenTheBufferIsFull) {
    ASSERT_EQ(port->SetReadTimeout(10s), 0);
    std::thread sender([this] {
        for (std::uint8_t i = 0; i < 4; ++i) {
            std::this_thread::sleep_for(10ms);
            EXPECT_TRUE(farEnd.Send(Bytes{i}));
        }
    });
    Bytes buffer(4);
    const Stopwatch watch;
    EXPECT_EQ(port->Read(buffer), 4U);
    EXPECT_LT(watch.Elapsed(), 8s);
    sender.join();
    EXPECT_EQ(buffer, (Bytes{0, 1, 2, 3}));
}

TEST_F(SerialPortTest, PiecesDoNotProlongTheReadTime) {
    std::atomic<bool> stop = false;
    std::thread sender([&] {
        while (!stop) {
            EXPECT_TRUE(farEnd.Send(Bytes{7}));
            std::this_thread::sleep_for(20ms);
        }
    });
    Bytes buffer(4000);
    const Stopwatch watch;
    const auto count = port->Read(buffer);
    EXPECT_LT(watch.Elapsed(), 2s);
    stop = true;
    sender.join();
    ASSERT_TRUE(count.has_value());
    EXPECT_GT(*count, 0U);
    EXPECT_LT(*count, 4000U);
}

TEST_F(SerialPortTest, ReadWithoutATimeReturnsAvailableBytes) {
    ASSERT_EQ(port->SetReadTimeout(0ms), 0);
    Bytes buffer(2);
    EXPECT_EQ(port->Read(buffer), 0U);
    ASSERT_TRUE(farEnd.Send(Bytes{5}));
    ASSERT_EQ(port->SetReadTimeout(2s), 0);
    EXPECT_EQ(port->Read(std::span(buffer).first(1)), 1U);
    EXPECT_EQ(port->Read({}), 0U);
}

TEST_F(SerialPortTest, RefusesANegativeReadTime) {
    EXPECT_EQ(port->SetReadTimeout(-1ms), EINVAL);
}

TEST_F(SerialPortTest, RefusesARateOfZeroAndKeepsTheOldOne) {
    EXPECT_EQ(port->Configure(0), EINVAL);
    EXPECT_EQ(port->Configure(-9600), EINVAL);
    EXPECT_EQ(farEnd.Rate(), 57600);
}

TEST_F(SerialPortTest, ChangesItsRateWhileAnotherThreadReads) {
    std::atomic<bool> stop = false;
    std::thread reader([&] {
        Bytes buffer(1);
        while (!stop) {
            EXPECT_TRUE(port->Read(buffer).has_value());
            EXPECT_EQ(port->ClearErrors(), 0U);
        }
    });
    for (const int rate : {9600, 28800, 57600}) {
        EXPECT_EQ(port->Configure(rate), 0);
        EXPECT_EQ(farEnd.Rate(), rate);
        EXPECT_EQ(port->Write(Bytes{0x0A}), 0);
        EXPECT_EQ(port->SetReadTimeout(10ms), 0);
    }
    stop = true;
    reader.join();
    EXPECT_EQ(farEnd.Receive(3), (Bytes{0x0A, 0x0A, 0x0A}));
}

TEST_F(SerialPortTest, CannotBeOpenedTwiceAtATime) {
    EXPECT_EQ(OpenSerialPort(farEnd.Path()), nullptr);
    EXPECT_EQ(errno, EBUSY);
    port.reset();
    EXPECT_NE(OpenSerialPort(farEnd.Path()), nullptr);
}

TEST_F(SerialPortTest, IsLockedUnderEveryName) {
    const TempDir dir;
    std::filesystem::create_symlink(farEnd.Path(), dir.File("board"));
    EXPECT_EQ(OpenSerialPort(dir.File("board")), nullptr);
    port.reset();
    EXPECT_NE(OpenSerialPort(dir.File("board")), nullptr);
}

TEST_F(SerialPortTest, IsNotInheritedByStartedPrograms) {
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry, gone) == farEnd.Path()) {
            const int handle = std::stoi(entry.path().filename().string());
            EXPECT_NE(::fcntl(handle, F_GETFD) & FD_CLOEXEC, 0);
            ++found;
        }
    }
    EXPECT_EQ(found, 1);
}

TEST(SerialPort, DoesNotBecomeTheControllingTerminal) {
    const PseudoTerminal farEnd;
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid();
        const auto port = OpenSerialPort(farEnd.Path());
        ::_exit(port != nullptr && ::open("/dev/tty", O_RDWR) < 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(SerialPort, OpensOnlyTerminals) {
    const TempDir dir;
    EXPECT_EQ(OpenSerialPort(""), nullptr);
    EXPECT_EQ(OpenSerialPort(dir.File("absent")), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(OpenSerialPort(dir.Write("file", "text")), nullptr);
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(OpenSerialPort(dir.Path()), nullptr);
    EXPECT_EQ(OpenSerialPort("/dev/null"), nullptr);
}

TEST_F(SerialPortTest, FailsInEveryCallAfterTheFarEndHasHungUp) {
    farEnd.Close();
    Bytes buffer(1);
    EXPECT_EQ(port->Read(buffer), std::nullopt);
    EXPECT_EQ(port->Read(buffer), std::nullopt);
    EXPECT_EQ(port->Write(Bytes{1}), EIO);
    EXPECT_EQ(port->ReadConfiguration(), EIO);
    EXPECT_EQ(port->Configure(9600), EIO);
    EXPECT_EQ(port->ClearErrors(), 0U);
}

TEST_F(SerialPortTest, AHangUpEndsAWaitingRead) {
    ASSERT_EQ(port->SetReadTimeout(30s), 0);
    std::thread hangUp([this] {
        std::this_thread::sleep_for(50ms);
        farEnd.Close();
    });
    Bytes buffer(1);
    const Stopwatch watch;
    EXPECT_EQ(port->Read(buffer), std::nullopt);
    EXPECT_LT(watch.Elapsed(), 10s);
    hangUp.join();
}

TEST_F(SerialPortTest, WritesMoreThanTheLineHoldsWhileTheFarEndReads) {
    Bytes sent(200'000);
    for (std::size_t i = 0; i < sent.size(); ++i) {
        sent[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    }
    Bytes received;
    std::thread reader([&] { received = farEnd.Receive(sent.size(), 20s); });
    EXPECT_EQ(port->Write(sent), 0);
    reader.join();
    EXPECT_TRUE(received == sent);
}

TEST_F(SerialPortTest, WriteGivesUpOnALineThatStaysFull) {
    const Bytes more(1'000'000);
    const Stopwatch watch;
    EXPECT_EQ(port->Write(more), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 2s);
    EXPECT_LT(watch.Elapsed(), 10s);
}

TEST_F(SerialPortTest, CountsNoErrorsIfTheDeviceHasNoCounters) {
    EXPECT_EQ(port->ClearErrors(), 0U);
}

TEST(LineErrors, HaveABitForEachKindOfErrorSinceTheLastCall) {
    const LineErrorCounts before{5, 5, 5, 5, 5};
    EXPECT_EQ(LineErrorWord(before, before), 0x00U);
    EXPECT_EQ(LineErrorWord(before, {6, 5, 5, 5, 5}), 0x01U);
    EXPECT_EQ(LineErrorWord(before, {5, 9, 5, 5, 5}), 0x02U);
    EXPECT_EQ(LineErrorWord(before, {5, 5, 6, 5, 5}), 0x04U);
    EXPECT_EQ(LineErrorWord(before, {5, 5, 5, 7, 5}), 0x08U);
    EXPECT_EQ(LineErrorWord(before, {5, 5, 5, 5, 6}), 0x10U);
    EXPECT_EQ(LineErrorWord(before, {6, 6, 6, 6, 6}), 0x1FU);
}

TEST(LineErrors, ACountThatWrapsIsStillAnError) {
    EXPECT_EQ(LineErrorWord({0, 0, 0, 0xFFFFFFFFU, 0}, {0, 0, 0, 0, 0}), 0x08U);
}

} // namespace
} // namespace busquill::test
