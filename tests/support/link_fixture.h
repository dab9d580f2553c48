#pragma once

#include "link/analyzer_link.h"
#include "manual_clock.h"
#include "memory_settings.h"
#include "platform/main_thread.h"
#include "recording_prompts.h"
#include "scripted_serial_port.h"
#include "scripted_usb.h"

#include <gtest/gtest.h>

namespace busquill::test {

constexpr auto demoModeText = "Unable to establish communications with the analyzer.\n"
                              "Go to the Utilities/Setup menu to select the proper interface and\n"
                              "restart the program. Program will run in DEMO mode.";

/// A link with everything around it scripted. The port is COM1 unless a test says otherwise.
class LinkFixture : public testing::Test {
protected:
    LinkFixture() {
        settings.WriteProfileString("Setup", "ComPort", "COM1");
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
    }

    /// The status block of a board, as it comes over the wire.
    static Bytes StatusReply(const std::string& name, std::uint8_t suffix) {
        Bytes reply = {'*'};
        for (std::size_t i = 0; i < 8; ++i) {
            reply.push_back(i < name.size() ? static_cast<std::uint8_t>(name[i]) : ' ');
        }
        const Bytes rest = {suffix, 0x00, 0x04, 17, 10, 0, 0, 0, 0x34, 0x12, '*'};
        reply.insert(reply.end(), rest.begin(), rest.end());
        return reply;
    }

    /// A board that answers the probe at the first rate, the identity, and all else with zeros.
    void ConnectBoard(const std::string& name, std::uint8_t suffix = 1) {
        port.respond = [=, length = 0, last = 0](const Bytes& written) mutable {
            if (written.size() == 1) { // the probe, a byte at a time
                last = written[0] == 0 ? 1 : 0;
                return last != 0 ? Bytes{'*'} : Bytes();
            }
            if (written.size() == 2 && written[0] == 10) {
                length = written[1];
            }
            if (written != Bytes{2, 1}) {
                return Bytes{'*'};
            }
            if (length == 18) {
                return StatusReply(name, suffix);
            }
            Bytes reply(static_cast<std::size_t>(length) + 2);
            reply.front() = reply.back() = '*';
            return reply;
        };
        link.Connect(9600);
        ASSERT_EQ(link.Identity().modelString, name + "-" + std::to_string(suffix));
        port.Forget();
    }

    MemorySettings settings;
    RecordingPrompts prompts;
    ManualClock clock;
    MainThread mainThread;
    SerialScript port{clock};
    ScriptedUsb usb;
    CAnalyzerLink link{{settings, prompts, clock, mainThread,
                        [this](const std::string& device) {
                            openedDevice = device;
                            return port.Open();
                        },
                        usb}};
    std::string openedDevice;
};

/// A request whose end is noted: result, and the fields that a failure message prints.
struct Outcome {
    std::atomic<bool> done = false;
    LinkRequest request;

    static void Complete(LinkRequest* finished) {
        auto* outcome = static_cast<Outcome*>(finished->owner);
        outcome->request = *finished;
        delete finished;
        outcome->done = true;
    }
    void Await(MainThread& mainThread) const {
        while (
            !mainThread.WaitUntil(std::chrono::milliseconds(5), [this] { return done.load(); })) {
        }
    }
};

} // namespace busquill::test
