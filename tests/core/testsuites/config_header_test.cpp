#include "core/testsuites/names_dir.h"
#include "platform/working_directory.h"
#include "support/recording_prompts.h"
#include "testsuites/config_document.h"
#include "testsuites/config_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigHeaderTest : public testing::Test {
protected:
    /// Imports a device with these registers.
    void Import(std::uint16_t command, std::uint16_t status) {
        block[4] = static_cast<std::uint8_t>(command);
        block[5] = static_cast<std::uint8_t>(command >> 8);
        block[6] = static_cast<std::uint8_t>(status);
        block[7] = static_cast<std::uint8_t>(status >> 8);
        Device().Import(block);
    }
    CConfigSpaceData& Device() { return document.Device(); }
    std::string StatusValue(const std::string& text) {
        for (const AnalysisLine& line : AnalyzeHeader(Device()).status) {
            if (line.text == text) {
                return line.value;
            }
        }
        return "(none)";
    }
    static std::vector<std::string> Texts(const std::vector<AnalysisLine>& lines) {
        std::vector<std::string> texts;
        for (const AnalysisLine& line : lines) {
            texts.push_back(std::string(line.text) + line.value);
        }
        return texts;
    }

    const NamesDir dir;
    RecordingPrompts prompts;
    CConfigDoc document{WorkingDirectory(dir.Path()), prompts};
    std::array<std::uint8_t, configBlockBytes> block = {
        0x11, 0x10, 0x24, 0x00, 0x00, 0x00, 0x00, 0x00, // vendor, device, command, status
        0x03, 0x01, 0x04, 0x06, 0x08, 0x40, 0x01, 0x00, // revision, class, cache, timer, type, BIST
    };
};

TEST_F(ConfigHeaderTest, NothingIsKnownBeforeTheFirstDevice) {
    EXPECT_THAT(AnalyzeHeader(Device()).head,
                ElementsAre(" Class: ", " Vendor: ", " Device/Rev ID: 0000.00"));
    EXPECT_EQ(HeaderWord(Device().Header(), 15), 0U);
    EXPECT_EQ(Device().Identity().address, BusAddress());
}

TEST_F(ConfigHeaderTest, ImportTakesHeaderAddressAndNames) {
    for (std::size_t i = 16; i < block.size(); ++i) {
        block[i] = static_cast<std::uint8_t>(i);
    }
    Import(0x0147, 0x0290);
    EXPECT_EQ(Device().Identity().vendorId, 0x1011U);
    EXPECT_EQ(Device().Identity().deviceId, 0x24U);
    EXPECT_EQ(Device().RevisionId(), 3U);
    EXPECT_EQ(Device().Command(), 0x0147U);
    EXPECT_EQ(Device().Status(), 0x0290U);
    EXPECT_EQ(Device().Identity().address, (BusAddress{64, 65, 66, 67, 68, 69, 70, 71}));
    EXPECT_EQ(HeaderWord(Device().Header(), 2), 0x06040103U);
    EXPECT_EQ(HeaderWord(Device().Header(), 15), 0x3F3E3D3CU);
    EXPECT_THAT(
        AnalyzeHeader(Device()).head,
        ElementsAre(" Class: Bridge", " Vendor: Digital Equipment", " Device/Rev ID: 0024.03"));
}

TEST_F(ConfigHeaderTest, UnknownVendorsAndClassesAreNumbers) {
    block[0] = 0x0A;
    block[1] = 0;
    block[11] = 0x0B;
    Import(0, 0);
    EXPECT_EQ(Device().Identity().vendorName, "Unknown - ID 0x000a");
    EXPECT_EQ(Device().Identity().className, "Unknown - ID 0x0b0401");
}

TEST_F(ConfigHeaderTest, EachBitOfTheCommandHasItsLine) {
    Import(0x0155, 0);
    EXPECT_THAT(Texts(AnalyzeHeader(Device()).command),
                ElementsAre("I/O Enabled:   Yes", "Memory Enabled:   No", "Master Enabled:   Yes",
                            "Special Cycles:   No", "Mem WR and INV:   Yes", "VGA Snoop:   No",
                            "Parity Error:   Yes", "Stepping Ctrl:   No", "SERR# Enable:   Yes",
                            "Fast Back-Back:   No"));
    Import(0xFEAA, 0);
    EXPECT_THAT(Texts(AnalyzeHeader(Device()).command),
                ElementsAre("I/O Enabled:   No", "Memory Enabled:   Yes", "Master Enabled:   No",
                            "Special Cycles:   Yes", "Mem WR and INV:   No", "VGA Snoop:   Yes",
                            "Parity Error:   No", "Stepping Ctrl:   Yes", "SERR# Enable:   No",
                            "Fast Back-Back:   Yes"));
}

TEST_F(ConfigHeaderTest, TheStatusIsReadByItsBits) {
    Import(0, 0xA8A0);
    EXPECT_THAT(Texts(AnalyzeHeader(Device()).status),
                ElementsAre("Capabilities List:   No", "66 MHz Capable:   Yes",
                            "Fast Back-Back:   Yes", "MSTR Data Parity Error:   No",
                            "DEVSEL Timing:   Fast", "Signaled Target Abort:   Yes",
                            "Received Target Abort:   No", "Received Master Abort:   Yes",
                            "Signaled System Error:   No", "Detected Parity Error:   Yes"));
    Import(0, 0x5110);
    EXPECT_THAT(Texts(AnalyzeHeader(Device()).status),
                ElementsAre("Capabilities List:   Yes", "66 MHz Capable:   No",
                            "Fast Back-Back:   No", "MSTR Data Parity Error:   Yes",
                            "DEVSEL Timing:   Fast", "Signaled Target Abort:   No",
                            "Received Target Abort:   Yes", "Received Master Abort:   No",
                            "Signaled System Error:   Yes", "Detected Parity Error:   No"));
}

TEST_F(ConfigHeaderTest, TheTimingOfDevselIsTwoBits) {
    Import(0, 0x0200);
    EXPECT_EQ(StatusValue("DEVSEL Timing"), ":   Medium");
    Import(0, 0x0400);
    EXPECT_EQ(StatusValue("DEVSEL Timing"), ":   Slow");
    Import(0, 0x0600);
    EXPECT_EQ(StatusValue("DEVSEL Timing"), ":   ");
}

TEST_F(ConfigHeaderTest, FieldsAreNamedByTheirBits) {
    struct Row {
        std::string_view text;
        int word, first, last;
    };
    const Row rows[] = {{"VENDOR ID", 0, 0, 15}, {"DEVICE ID", 0, 16, 31},
                        {"COMMAND", 1, 0, 15},   {"STATUS", 1, 16, 31},
                        {"REV ID", 2, 0, 7},     {"CLASS CODE", 2, 16, 31},
                        {"CACHE SIZE", 3, 0, 7}, {"LAT TIMER", 3, 8, 15},
                        {"HDR TYPE", 3, 16, 23}, {"BIST", 3, 24, 31}};
    ASSERT_EQ(headerFields.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(headerFields[i].text, rows[i].text);
        EXPECT_EQ(headerFields[i].word, rows[i].word);
        EXPECT_EQ(headerFields[i].firstBit, rows[i].first);
        EXPECT_EQ(headerFields[i].lastBit, rows[i].last);
    }
    EXPECT_EQ(HeaderOffsetText(0), " 00H");
    EXPECT_EQ(HeaderOffsetText(15), " 3CH");
}

class CountingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int /*hint*/, const HintObject* /*object*/) override {
        ++updates;
    }
    int updates = 0;
};

TEST(DevicePlaces, AreWhatAConfigurationCycleSelects) {
    EXPECT_EQ(PlaceOf(AddressOf(0x80000000)), (DevicePlace{0, 0, 0}));
    EXPECT_EQ(PlaceOf(AddressOf(0x80FFFF00)), (DevicePlace{255, 31, 7}));
    EXPECT_EQ(PlaceOf(AddressOf(0x80012300)), (DevicePlace{1, 4, 3}));
    // A line of its own for each device, a register, more than 32 bits, no address.
    for (const std::uint64_t other : {0x40000000ULL, 0x80000004ULL, 0x180000000ULL, 0ULL}) {
        EXPECT_EQ(PlaceOf(AddressOf(other)), std::nullopt) << other;
    }
    EXPECT_EQ(PlaceText({1, 10, 3}), "01:0a.3");
}

TEST(HeaderDumps, AreLinesOfSixteenBytesWithTheirOffsets) {
    std::array<std::uint8_t, configHeaderBytes> header{};
    header[0] = 0x86;
    header[63] = 0x0F;
    const std::vector<std::string> lines = HeaderDump(header);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "00: 86 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(lines[3], "30: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 0f");
}

TEST_F(ConfigHeaderTest, ItsFileIsEmptyAndOpeningItChangesNothing) {
    Import(0x0147, 0);
    CountingView view;
    document.AddView(&view);
    const std::string path = dir.Write("device.cfg", "old content");
    EXPECT_TRUE(document.OnSaveDocument(path));
    EXPECT_EQ(ReadWholeFile(path), "");
    EXPECT_TRUE(document.OnOpenDocument(path));
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(Device().Command(), 0x0147U);
    EXPECT_TRUE(document.OnOpenDocument(dir.Write("other.cfg", "anything")));
    EXPECT_EQ(Device().Identity().vendorName, "Digital Equipment");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ConfigHeaderTest, AFileThatCannotBeOpenedOrCreatedIsReported) {
    EXPECT_FALSE(document.OnOpenDocument("/nonexistent/device.cfg"));
    EXPECT_FALSE(document.OnSaveDocument("/nonexistent/device.cfg"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file /nonexistent/device.cfg.",
                                             "Error creating file /nonexistent/device.cfg."));
}

} // namespace
} // namespace busquill::test
