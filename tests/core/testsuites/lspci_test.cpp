// Headers as they are read here against what the field's own tool says of them.

#include "boardsim/configuration.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/config_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>

namespace busquill::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> LinesOf(const std::string& command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        output += static_cast<char>(c);
    }
    std::istringstream stream(output);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// What follows a word in a line.
std::string After(const std::string& line, const std::string& word) {
    const auto found = line.find(word);
    return found == std::string::npos ? "" : line.substr(found + word.size());
}

/// What lspci says of a device.
struct Described {
    std::string vendorName;
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    std::uint32_t classCode = 0;          // without the programming interface
    std::map<int, std::uint64_t> regions; // by base address register, with an address
    std::map<int, bool> io;               // the same
    std::uint64_t rom = 0;
    std::string pin; // "A"; empty without one
    int irq = 0;
    bool medium = false; // DEVSEL timing
};

std::uint32_t Hex(const std::string& text) {
    return static_cast<std::uint32_t>(std::stoul(text, nullptr, 16));
}

std::vector<Described> DescribedBy(const std::string& file) {
    std::vector<Described> devices;
    for (const std::string& line : LinesOf("lspci -vmmn -F " + file + " 2>/dev/null")) {
        if (line.starts_with("Slot:")) {
            devices.emplace_back();
        } else if (line.starts_with("Class:\t")) {
            devices.back().classCode = Hex(After(line, "\t"));
        } else if (line.starts_with("Vendor:\t")) {
            devices.back().vendor = Hex(After(line, "\t"));
        } else if (line.starts_with("Device:\t")) {
            devices.back().device = Hex(After(line, "\t"));
        }
    }
    std::size_t at = 0;
    for (const std::string& line : LinesOf("lspci -vmm -F " + file + " 2>/dev/null")) {
        if (line.starts_with("Vendor:\t")) {
            devices.at(at++).vendorName = After(line, "\t");
        }
    }
    at = 0;
    for (const std::string& line : LinesOf("lspci -vvn -F " + file + " 2>/dev/null")) {
        if (!line.empty() && line[0] != '\t') {
            ++at;
        } else if (const std::string region = After(line, "Region "); !region.empty()) {
            // The upper half of a 64-bit address is listed again, with the address 0.
            const bool io = line.find("I/O ports at ") != std::string::npos;
            const std::uint64_t address =
                std::stoull(After(line, io ? "ports at " : "Memory at "), nullptr, 16);
            if (address != 0) {
                devices.at(at - 1).regions[ParseInt(region)] = address;
                devices.at(at - 1).io[ParseInt(region)] = io;
            }
        } else if (const std::string rom = After(line, "Expansion ROM at "); !rom.empty()) {
            devices.at(at - 1).rom = Hex(rom);
        } else if (const std::string pin = After(line, "Interrupt: pin "); !pin.empty()) {
            devices.at(at - 1).pin = pin.substr(0, 1);
            devices.at(at - 1).irq = ParseInt(After(line, "routed to IRQ "));
        } else if (line.find("DEVSEL=") != std::string::npos &&
                   line.find("Status:") != std::string::npos) {
            devices.at(at - 1).medium = line.find("DEVSEL=medium") != std::string::npos;
        }
    }
    return devices;
}

/// The base addresses as the words of the picture show them.
std::map<int, std::uint64_t> RegionsOf(const CConfigSpaceData& device, int registers) {
    std::map<int, std::uint64_t> regions;
    for (int i = 0; i < registers; ++i) {
        const int at = i;
        const std::uint32_t low = HeaderWord(device.Header(), 4 + i);
        const bool io = (low & 1) != 0;
        std::uint64_t address = low & (io ? ~std::uint32_t{3} : ~std::uint32_t{15});
        if (!io && (low & 6) == 4) {
            address |= std::uint64_t{HeaderWord(device.Header(), 4 + ++i)} << 32;
        }
        if (address != 0) {
            regions[at] = address;
        }
    }
    return regions;
}

TEST(HeadersAgainstLspci, VendorClassAddressesAndInterruptAgree) {
    const TempDir dir;
    const std::string file = dir.Write("devices.txt", boardsim::builtInDevices);
    const std::vector<Described> expected = DescribedBy(file);
    const std::vector<boardsim::Device> devices = boardsim::ParseDevices(boardsim::builtInDevices);
    ASSERT_THAT(expected, SizeIs(7)) << "needs lspci, of the package pciutils";
    ASSERT_EQ(devices.size(), expected.size());
    RecordingPrompts prompts;
    CConfigSpaceData data(WorkingDirectory(SourceFile("data")), prompts);
    ASSERT_THAT(prompts.Texts(), IsEmpty());
    int wide = 0;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        SCOPED_TRACE(i);
        std::array<std::uint8_t, configBlockBytes> block{};
        std::ranges::copy(devices[i].header, block.begin());
        data.Import(block);
        EXPECT_EQ(data.Identity().vendorId, expected[i].vendor);
        EXPECT_EQ(data.Identity().deviceId, expected[i].device);
        EXPECT_EQ(AnalyzeHeader(data).head[1], " Vendor: " + expected[i].vendorName);
        EXPECT_EQ(HeaderWord(data.Header(), 2) >> 16, expected[i].classCode);
        const bool bridge = (HeaderWord(data.Header(), 3) >> 16 & 0x7F) == 1;
        const auto regions = RegionsOf(data, bridge ? 2 : 6);
        EXPECT_EQ(regions, expected[i].regions);
        for (const auto& [region, address] : regions) {
            EXPECT_EQ((HeaderWord(data.Header(), 4 + region) & 1) != 0, expected[i].io.at(region));
            wide += address > 0xFFFFFFFF ? 1 : 0;
        }
        EXPECT_EQ(HeaderWord(data.Header(), bridge ? 14 : 12) & 0xFFFFF800, expected[i].rom);
        const std::uint32_t interrupt = HeaderWord(data.Header(), 15);
        const auto pin = static_cast<char>(interrupt >> 8 & 0xFF);
        EXPECT_EQ(pin == 0 ? "" : std::string(1, static_cast<char>('@' + pin)), expected[i].pin);
        EXPECT_EQ(pin == 0 ? 0 : static_cast<int>(interrupt & 0xFF), expected[i].irq);
        EXPECT_EQ(AnalyzeHeader(data).status[4].value == ":   Medium", expected[i].medium);
    }
    EXPECT_EQ(wide, 2) << "64-bit addresses";
}

} // namespace
} // namespace busquill::test
