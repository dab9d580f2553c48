#include "performance/performance_setup_file.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PerformanceSetupFileTest : public testing::Test {
protected:
    /// Loads a file of these lines.
    PerformanceSetup Load(const std::string& text) {
        static_cast<void>(dir.Write("a.psu", text));
        PerformanceSetup setup;
        EXPECT_TRUE(LoadPerformanceSetup(setup, folder, "a", prompts));
        return setup;
    }
    /// The same, in the right version.
    PerformanceSetup LoadLines(const std::string& text) { return Load("Version=1.00\n" + text); }
    std::string Text(const std::string& name) { return ReadWholeFile(dir.File(name)); }

    const TempDir dir;
    const WorkingDirectory folder{dir.Path()};
    RecordingPrompts prompts;
};

TEST_F(PerformanceSetupFileTest, WritesItsLinesToTheByte) {
    PerformanceSetup setup;
    setup.setupName = "bus load";
    setup.chartType = PerformancePieChart;
    setup.grid = true;
    setup.items[0] = {.item = 8, .cycle = 23, .color = 0x00ABCDEF, .style = 4};
    ASSERT_TRUE(SavePerformanceSetup(setup, folder, SetupNameTyped::Yes, prompts));
    EXPECT_EQ(Text("bus load.psu"), "// Performance Setup\nVersion=1.00\nChartType=Pie\nGrid=Yes\n"
                                    "Item0=8\nCycle0=23\nColor0=0x00abcdef\nStyle0=4\n"
                                    "Item1=0\nCycle1=0\nColor1=0x000000ff\nStyle1=1\n"
                                    "Item2=0\nCycle2=0\nColor2=0x0000ff00\nStyle2=2\n"
                                    "Item3=0\nCycle3=0\nColor3=0x00ff0000\nStyle3=3\n"
                                    "Item4=0\nCycle4=0\nColor4=0x0000ffff\nStyle4=4\n"
                                    "Item5=0\nCycle5=0\nColor5=0x00ffff00\nStyle5=0\n"
                                    "Item6=0\nCycle6=0\nColor6=0x00ff00ff\nStyle6=1\n"
                                    "Item7=0\nCycle7=0\nColor7=0x00000080\nStyle7=2\n");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    setup.chartType = PerformanceBarChart;
    setup.grid = false;
    ASSERT_TRUE(SavePerformanceSetup(setup, folder, SetupNameTyped::No, prompts));
    EXPECT_THAT(Text("bus load.psu"), testing::HasSubstr("ChartType=Bar\nGrid=No\n"));
}

TEST_F(PerformanceSetupFileTest, KeepsTheItemsAndResetsAddressesAndInterval) {
    PerformanceSetup setup;
    setup.SetType(PerformanceStatistics);
    setup.setupName = "a";
    setup.chartType = PerformancePieChart;
    setup.grid = true;
    PerformanceSetup kept = setup;
    setup.updateInterval = 5;
    setup.items[2].lowAddress[3] = 7;
    setup.items[2].highAddress[3] = 9;
    ASSERT_TRUE(SavePerformanceSetup(setup, folder, SetupNameTyped::No, prompts));
    ASSERT_TRUE(LoadPerformanceSetup(setup, folder, "a", prompts));
    EXPECT_EQ(setup, kept);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceSetupFileTest, AColorIsOfItsRow) {
    EXPECT_EQ(LoadLines("Color3=0x000000FF\n").items[3].color, 0x0000FFU);
    EXPECT_EQ(LoadLines("Color0=00ff00\r\n").items[0].color, 0x00FF00U) << "without 0x";
    EXPECT_EQ(LoadLines("Color0=red\n").items[0].color, 0U) << "r is no digit";
}

TEST_F(PerformanceSetupFileTest, TheFirstWordInALineDecides) {
    EXPECT_EQ(LoadLines("my Item 2 = 7\n").items[2].item, 7);
    const PerformanceSetup setup = LoadLines("Cycle1=Item4=6\n");
    EXPECT_EQ(setup.items[4].item, 6) << "Item is looked for before Cycle";
    EXPECT_EQ(setup.items[1].cycle, 0);
    EXPECT_EQ(LoadLines("ChartType=bar\n").chartType, PerformancePieChart);
    EXPECT_EQ(LoadLines("Bar ChartType=\n").chartType, PerformanceBarChart);
    EXPECT_TRUE(LoadLines("Grid=No, Yes\n").grid);
    EXPECT_FALSE(LoadLines("Grid=yes\n").grid);
    EXPECT_EQ(LoadLines("StyleX=3\n").items[0].style, 3) << "a row that is no number is 0";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceSetupFileTest, SkipsRowsThatDoNotExistAndLinesWithoutAValue) {
    const PerformanceSetup setup =
        LoadLines("Item8=1\nItem-1=1\nCycle-1=1\nColor-1=0x1\nStyle-1=1\nItem99999999999="
                  "1\nStyle7\nCycle\nColor\n\nother\n=\n");
    PerformanceSetup fresh;
    fresh.setupName = "a";
    EXPECT_EQ(setup, fresh);
}

TEST_F(PerformanceSetupFileTest, AnotherVersionIsReadWithAWarning) {
    EXPECT_EQ(Load("Version=1.10\nItem0=5\n").items[0].item, 5);
    EXPECT_EQ(Load("Item0=6\n").items[0].item, 6);
    static_cast<void>(Load("Version= 1\n"));
    static_cast<void>(Load("Version=x\n"));
    static_cast<void>(Load("Version=1e300000\n"));
    EXPECT_THAT(
        prompts.Texts(),
        ElementsAre("Warning: Expected version number 1.000000 in performance setup file, found "
                    "1.100000.",
                    "Warning: Expected version number 1.000000 in performance setup file, found "
                    "0.000000.",
                    "Warning: Expected version number 1.000000 in performance setup file, found "
                    "0.000000.",
                    "Warning: Expected version number 1.000000 in performance setup file, found "
                    "0.000000."));
}

TEST_F(PerformanceSetupFileTest, AMissingFileIsReportedAndLeavesTheDefaults) {
    PerformanceSetup setup;
    setup.SetType(PerformanceLatency);
    EXPECT_FALSE(LoadPerformanceSetup(setup, folder, "none", prompts));
    PerformanceSetup fresh;
    fresh.type = PerformanceLatency;
    EXPECT_EQ(setup, fresh);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error loading performance setup none."));
}

TEST_F(PerformanceSetupFileTest, ATypedNameReplacesAFileOnlyWithConsent) {
    PerformanceSetup setup;
    setup.setupName = "a";
    static_cast<void>(dir.Write("a.psu", "old"));
    prompts.AnswerNext(Answer::No);
    EXPECT_FALSE(SavePerformanceSetup(setup, folder, SetupNameTyped::Yes, prompts));
    EXPECT_EQ(Text("a.psu"), "old");
    EXPECT_THAT(prompts.Texts(), ElementsAre("A setup already exists with the name a. Overwrite?"));
    EXPECT_EQ(prompts.Boxes()[0].buttons, BoxButtons::YesNo);
    prompts.AnswerNext(Answer::Yes);
    EXPECT_TRUE(SavePerformanceSetup(setup, folder, SetupNameTyped::Yes, prompts));
    EXPECT_NE(Text("a.psu"), "old");
    prompts.Forget();
    EXPECT_TRUE(SavePerformanceSetup(setup, folder, SetupNameTyped::No, prompts));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceSetupFileTest, AFileThatCannotBeCreatedIsReported) {
    PerformanceSetup setup;
    setup.setupName = "no folder/a";
    EXPECT_FALSE(SavePerformanceSetup(setup, folder, SetupNameTyped::Yes, prompts));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file " + dir.Path() +
                                             "/no folder/a.psu to write setup."));
}

TEST_F(PerformanceSetupFileTest, TheSetupsOfAFolderAreSorted) {
    static_cast<void>(dir.Write("b.psu", ""));
    static_cast<void>(dir.Write("a.b.psu", ""));
    static_cast<void>(dir.Write("c.tsp", ""));
    std::filesystem::create_directory(dir.File("d.psu"));
    EXPECT_THAT(FindPerformanceSetups(folder), ElementsAre("a.b", "b"));
    EXPECT_THAT(FindPerformanceSetups(WorkingDirectory("/nonexistent")), IsEmpty());
}

} // namespace
} // namespace busquill::test
