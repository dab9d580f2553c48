#include "link/board_identity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace busquill {
namespace {

using StatusBlock = std::array<std::uint8_t, statusBlockSize>;

StatusBlock BlockOf(std::string_view name, std::uint8_t suffix = 0) {
    StatusBlock block{};
    std::copy_n(name.begin(), std::min<std::size_t>(name.size(), 8), block.begin());
    block[8] = suffix;
    return block;
}

BoardIdentity WithId(std::int32_t id) {
    BoardIdentity identity;
    identity.modelId = id;
    return identity;
}

BoardTraits Board(std::string model, std::int32_t busMode = 0, std::int32_t busWidth = 0) {
    return {std::move(model), false, {.busMode = busMode, .busWidth = busWidth}};
}

BoardTraits Demo(std::int32_t busMode) {
    return {"Demo Mode", true, {.busMode = busMode}};
}

TEST(ParseIdentityTest, ReadsEveryFieldOfTheStatusBlock) {
    const StatusBlock block{
        'P',  'C',  'I', 'K', 'i', 't', 'e', ' ', // name, padded
        3,                                        // suffix
        0x00, 0x02,                               // 512 K samples
        17,                                       // firmware 1.7
        21,                                       // hardware 2.1
        0xAA, 0xBB,                               // not used
        4,                                        // baud code
        0x34, 0x12,                               // serial number 1234
    };
    const BoardIdentity identity = ParseIdentity(block, {});
    EXPECT_EQ(identity.modelString, "PCIKite-3");
    EXPECT_EQ(identity.modelId, 2);
    EXPECT_EQ(identity.bufferSizeK, 512);
    EXPECT_EQ(identity.firmwareRevision, "1.7");
    EXPECT_EQ(identity.hardwareRevision, "2.1");
    EXPECT_EQ(identity.serialNumber, 1234);
}

TEST(ParseIdentityTest, KnowsEveryModelWhoseNameFitsTheBlock) {
    const std::vector<std::pair<std::string, std::int32_t>> models{
        {"PCIKite", 2}, {"PCIWren", 3}, {"VMEKite", 4}, {"VMEWren", 5},  {"VMELark", 6},
        {"PCFKite", 7}, {"PCFWren", 8}, {"PMCKite", 9}, {"PMCWren", 10}, {"VSBKite", 13}};
    for (const auto& [name, id] : models) {
        const BoardIdentity identity = ParseIdentity(BlockOf(name, 2), {});
        EXPECT_EQ(identity.modelId, id) << name;
        EXPECT_EQ(identity.modelString, name + "-2");
    }
}

// The names of models 1, 11 and 12 have nine characters; the block holds eight.
TEST(ParseIdentityTest, ANameOfEightCharactersNeedsNoTerminator) {
    const BoardIdentity identity = ParseIdentity(BlockOf("VMEKiteP2", 200), WithId(11));
    EXPECT_EQ(identity.modelString, "VMEKiteP-200");
    EXPECT_EQ(identity.modelId, 11) << "not in the table, so the old id stays";
}

TEST(ParseIdentityTest, ComparesNamesWithoutRegardToCaseAndKeepsTheBoardsSpelling) {
    const BoardIdentity identity = ParseIdentity(BlockOf("vsbKITE", 1), {});
    EXPECT_EQ(identity.modelId, 13);
    EXPECT_EQ(identity.modelString, "vsbKITE-1");
}

TEST(ParseIdentityTest, AnUnknownOrPartialNameKeepsTheModelId) {
    EXPECT_EQ(ParseIdentity(BlockOf("PCIKit"), WithId(4)).modelId, 4);
    EXPECT_EQ(ParseIdentity(BlockOf("Other"), {}).modelId, 0);
}

TEST(ParseIdentityTest, AZeroBlockReadsAsAMinusAndAZero) {
    const BoardIdentity identity = ParseIdentity(StatusBlock{}, {});
    EXPECT_EQ(identity.modelString, "-0");
    EXPECT_EQ(identity.firmwareRevision, "0.0");
    EXPECT_EQ(identity.serialNumber, 0);
}

TEST(ParseIdentityTest, FieldsAreUnsigned) {
    StatusBlock block;
    block.fill(0xFF);
    block[0] = 0;
    const BoardIdentity identity = ParseIdentity(block, {});
    EXPECT_EQ(identity.modelString, "-255");
    EXPECT_EQ(identity.bufferSizeK, 65535);
    EXPECT_EQ(identity.firmwareRevision, "25.5");
    EXPECT_EQ(identity.serialNumber, 16665) << "digits of 15 carry over";
}

TEST(BusModes, HaveTheirDisplayNames) {
    const std::vector<std::string> names{"PCI",    "PCI-X",   "VME",   "2eVME", "2eSST",
                                         "PC/104", "PC/104+", "VMEP2", "VMEP0", "VSB"};
    for (std::size_t mode = 0; mode < names.size(); ++mode) {
        EXPECT_EQ(BusModeName(static_cast<std::int32_t>(mode)), names[mode]);
    }
    EXPECT_EQ(BusModeName(10), "PCI");
    EXPECT_EQ(BusModeName(-1), "PCI");
}

TEST(BusModes, AreOfferedByModel) {
    using Modes = std::vector<std::int32_t>;
    const std::vector<Modes> offered{
        {0, 1, 2, 3, 4, 7, 8, 9}, // 0: no model, served as Demo Mode
        {0, 1, 2, 3, 4, 7, 8, 9}, // 1
        {0, 1},                   // 2
        {0},                      // 3
        {2, 3, 4},                // 4
        {2},                      // 5
        {2},                      // 6
        {0, 1},                   // 7
        {0},                      // 8
        {0, 1},                   // 9
        {0},                      // 10
        {7},                      // 11
        {8},                      // 12
        {9},                      // 13
        {0, 1, 2, 3, 4, 7, 8, 9}, // 14: no model
    };
    for (std::size_t model = 0; model < offered.size(); ++model) {
        const auto modes = BusModesOf(static_cast<std::int32_t>(model));
        EXPECT_EQ(Modes(modes.begin(), modes.end()), offered[model]) << model;
    }
}

TEST(BusModes, AreKnownToTheModelThatIsAssumedForThem) {
    EXPECT_EQ(ModelForBus(BusVmeP0), "VMEKiteP0");
    EXPECT_EQ(ModelForBus(BusVmeP2), "VMEKiteP2");
    EXPECT_EQ(ModelForBus(BusVsb), "Demo Mode");
    for (std::int32_t mode = 0; mode < static_cast<std::int32_t>(BusModeNames().size()); ++mode) {
        EXPECT_TRUE(TraitsOfModel(ModelForBus(mode))) << mode;
    }
}

TEST(ParseBusConfigTest, DerivesTheModeFromModelAndCode) {
    const std::vector<std::array<std::int32_t, 4>> modes{
        {0, 0, 0, 0}, // 0: no model
        {0, 0, 0, 0}, // 1
        {0, 1, 0, 0}, // 2
        {0, 0, 0, 0}, // 3
        {2, 3, 4, 2}, // 4: a VME board reading code 3 is in mode 2
        {2, 2, 2, 2}, // 5
        {2, 2, 2, 2}, // 6
        {0, 1, 0, 0}, // 7
        {0, 0, 0, 0}, // 8
        {0, 1, 0, 0}, // 9
        {0, 0, 0, 0}, // 10
        {7, 7, 7, 7}, // 11
        {8, 8, 8, 8}, // 12
        {9, 9, 9, 9}, // 13
    };
    for (std::size_t model = 0; model < modes.size(); ++model) {
        for (std::uint8_t code = 0; code < 4; ++code) {
            const std::array<std::uint8_t, 2> block{code, 33};
            EXPECT_EQ(ParseBusConfig(block, static_cast<std::int32_t>(model)).busMode,
                      modes[model][code])
                << "model " << model << " code " << int{code};
        }
    }
}

TEST(ParseBusConfigTest, ReadsWidthVoltageLockAndFrequency) {
    const auto parse = [](std::uint8_t bits, std::uint8_t frequency) {
        return ParseBusConfig(std::array<std::uint8_t, 2>{bits, frequency}, ModelPciKite);
    };
    EXPECT_EQ(parse(0x04, 66), (BusConfig{0, 1, 0, 66, 0}));
    EXPECT_EQ(parse(0x10, 33), (BusConfig{0, 0, 1, 33, 0}));
    EXPECT_EQ(parse(0x80, 255), (BusConfig{0, 0, 0, 255, 1}));
    EXPECT_EQ(parse(0x68, 0), (BusConfig{})) << "bits 3, 5 and 6 are not used";
}

TEST(EncodeBusConfigTest, TurnsTheModeIntoItsCode) {
    const std::vector<std::uint8_t> codes{0, 1, 0, 1, 2, 1, 1, 0, 0, 0, 0};
    for (std::size_t mode = 0; mode < codes.size(); ++mode) {
        const auto block = EncodeBusConfig({.busMode = static_cast<std::int32_t>(mode)});
        EXPECT_EQ(block[0], codes[mode]) << mode;
    }
    EXPECT_EQ(EncodeBusConfig({.busMode = -1})[0], 0);
}

TEST(EncodeBusConfigTest, SetsWidthVoltageLockAndTheLowByteOfTheFrequency) {
    using Block = std::array<std::uint8_t, 2>;
    EXPECT_EQ(EncodeBusConfig({0, 1, 0, 133, 0}), (Block{0x04, 133}));
    EXPECT_EQ(EncodeBusConfig({0, 0, 1, 300, 0}), (Block{0x10, 44}));
    EXPECT_EQ(EncodeBusConfig({0, 2, 2, -1, 5}), (Block{0x80, 255}));
    EXPECT_EQ(EncodeBusConfig({1, 1, 1, 66, 1}), (Block{0x95, 66}));
}

TEST(ParseLiveStatusTest, ReadsTheFourFields) {
    const std::array<std::uint8_t, 9> block{0xA3, 1, 2, 3, 4, 5, 6, 7, 8};
    const LiveStatus live = ParseLiveStatus(block);
    EXPECT_EQ(live.liveStatus, 0xA3);
    EXPECT_EQ(live.samplesBefore, 0x030201);
    EXPECT_EQ(live.samplesAfter, 0x060504);
    EXPECT_EQ(live.eventOccurrences, 0x0807);
}

TEST(CorrectBusModeTest, LeavesAModelTheModesThatItHas) {
    const std::vector<std::array<std::int32_t, 10>> corrected{
        {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, // 0: the stored value remains
        {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, // 1: Demo Mode too
        {0, 1, 0, 0, 0, 0, 0, 0, 0, 0}, // 2
        {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // 3
        {2, 2, 2, 3, 4, 2, 2, 2, 2, 2}, // 4
        {2, 2, 2, 2, 2, 2, 2, 2, 2, 2}, // 5
        {2, 2, 2, 2, 2, 2, 2, 2, 2, 2}, // 6
        {0, 1, 0, 0, 0, 0, 0, 0, 0, 0}, // 7
        {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // 8
        {0, 1, 0, 0, 0, 0, 0, 0, 0, 0}, // 9
        {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // 10
        {7, 7, 7, 7, 7, 7, 7, 7, 7, 7}, // 11
        {8, 8, 8, 8, 8, 8, 8, 8, 8, 8}, // 12
        {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}, // 13
    };
    for (std::size_t model = 0; model < corrected.size(); ++model) {
        for (std::int32_t mode = 0; mode < 10; ++mode) {
            EXPECT_EQ(CorrectBusMode(mode, static_cast<std::int32_t>(model)),
                      corrected[model][static_cast<std::size_t>(mode)])
                << "model " << model << " mode " << mode;
        }
    }
}

TEST(BoardTraitsTest, FamiliesAreRecognizedByPartsOfTheModelString) {
    EXPECT_TRUE(Board("PCIWren-1").IsWrenBoard());
    EXPECT_FALSE(Board("PCIKite-1").IsWrenBoard());
    EXPECT_TRUE(Board("VMEKite-1").IsVmeFamily());
    EXPECT_FALSE(Board("VSBKite-1").IsVmeFamily());
    EXPECT_TRUE(Board("VSBKite-1").IsVsbFamily());
    EXPECT_TRUE(Board("VMELark-1").IsVmeLark());
    EXPECT_FALSE(Board("PCILark-1").IsVmeLark()) << "a Lark of another family";
    EXPECT_TRUE(Board("VMEKiteP2-1").IsVmeKiteP2());
    EXPECT_FALSE(Board("VMEKiteP2-1").IsVmeKiteP0());
    EXPECT_TRUE(Board("VMEKiteP0-1").IsVmeKiteP0());
    EXPECT_TRUE(Board("VMEKiteP0-1").IsVmeFamily());
    EXPECT_FALSE(Board("vmekite-1").IsVmeFamily()) << "the case matters here";
}

TEST(BoardTraitsTest, TheBusModeDecidesTheFamilyInDemoModeOnly) {
    for (std::int32_t mode = 0; mode < 10; ++mode) {
        EXPECT_EQ(Demo(mode).IsVmeFamily(), mode >= 2 && mode <= 4) << mode;
        EXPECT_EQ(Demo(mode).IsVsbFamily(), mode == 9) << mode;
        EXPECT_FALSE(Board("PCIKite-1", mode).IsVmeFamily()) << mode;
        EXPECT_FALSE(Board("PCIKite-1", mode).IsVsbFamily()) << mode;
    }
}

TEST(BoardTraitsTest, PciIsRecognizedByModeAndWidth) {
    EXPECT_TRUE(Board("PCIKite-1", 0, 0).IsPci32());
    EXPECT_FALSE(Board("PCIKite-1", 0, 1).IsPci32());
    EXPECT_TRUE(Board("PCIKite-1", 0, 1).IsPci64());
    EXPECT_FALSE(Board("PCIKite-1", 1, 1).IsPci64());
    EXPECT_FALSE(Board("PCIKite-1", 0, 2).IsPci64());
    EXPECT_TRUE(Board("PCIKite-1", 1).IsPciXMode());
    EXPECT_FALSE(Board("VMEKite-1", 1).IsPciXMode());
    EXPECT_TRUE(Demo(1).IsPciXMode());
}

} // namespace
} // namespace busquill
