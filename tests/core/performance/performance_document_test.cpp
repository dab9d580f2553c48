#include "performance/performance_document.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string fileHead = "\"FileType\",\"Performance File\"\r\n\"Version\",\"1.0\"\r\n";

class CountingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int /*hint*/, const HintObject* /*object*/) override {
        ++updates;
    }
    int updates = 0;
};

class PerformanceDocumentTest : public testing::Test {
protected:
    PerformanceDocumentTest() { document.AddView(&view); }

    /// Reads a file of these lines after its first lines.
    bool Open(const std::string& lines, const std::string& head = fileHead) {
        return document.OnOpenDocument(dir.Write("in.per", head + lines));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.per")));
        return ReadWholeFile(dir.File("out.per"));
    }
    void AddUpTo(std::int64_t count) {
        for (std::int64_t n = document.Results().Count(); n < count; ++n) {
            const auto value = static_cast<std::int32_t>(n);
            document.Results().Add({value, -value, 2, 3, 4, 5, 6, value});
        }
    }
    const PerformanceItem& Row(std::size_t row) const { return document.Setup().items[row]; }

    const TempDir dir;
    RecordingPrompts prompts;
    const char* model = "PCIKite";
    CPerformanceDoc document{[this] { return TraitsOfModel(model).value(); }, prompts};
    CountingView view;
};

TEST_F(PerformanceDocumentTest, WritesItsFileToTheByte) {
    PerformanceSetup& setup = document.Setup();
    setup.SetType(PerformanceTransferRate);
    setup.setupName = "my \"bus\"";
    setup.updateInterval = 5;
    setup.chartType = PerformancePieChart;
    setup.grid = true;
    setup.items[0].cycle = 13;
    setup.items[0].lowAddress = {0x10, 0x32, 0x54, 0x76, 0x98, 0x10, 0x32, 0x54};
    setup.items[0].highAddress = {0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01};
    setup.items[1].item = 12; // no such item
    setup.items[1].cycle = 24;
    document.Results().Add({1, 2, 3, 4, 5, 6, 7, 8});
    document.Results().Add({-1, 0, 2147483647, 4, 5, 6, 7, 8});
    EXPECT_EQ(Saved(),
              fileHead +
                  "\r\n"
                  "\"Type\",\"Transfer Rate\"\r\n"
                  "\"SetupName\",\"my \"bus\"\"\r\n"
                  "\"UpdateInterval\",5\r\n"
                  "\"ChartType\",\"Pie\"\r\n"
                  "\"Grid\",\"On\"\r\n"
                  "\"Number of Results\",2\r\n"
                  "\"Next Result Index\",2\r\n"
                  "\"Wrapped\",0\r\n"
                  "\r\n"
                  "\"Performance Item\",\"Index\",\"Type\",\"Cycle\",\"Low Address\","
                  "\"High Address\",\"Color\",\"Line Style\"\r\n"
                  "\"Performance Item\",1,\"Cycle\",\"Mem Wr & Inv\",5432109876543210,"
                  "\"0123456789abcdef\",00000000,0\r\n"
                  "\"Performance Item\",2,\"\",\"\",0000000000000000,\"ffffffffffffffff\","
                  "\"000000ff\",1\r\n"
                  "\"Performance Item\",3,\"GNT1\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "\"0000ff00\",2\r\n"
                  "\"Performance Item\",4,\"GNT2\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "\"00ff0000\",3\r\n"
                  "\"Performance Item\",5,\"GNT3\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "\"0000ffff\",4\r\n"
                  "\"Performance Item\",6,\"None\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "\"00ffff00\",0\r\n"
                  "\"Performance Item\",7,\"None\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "\"00ff00ff\",1\r\n"
                  "\"Performance Item\",8,\"None\",\"All\",0000000000000000,\"ffffffffffffffff\","
                  "00000080,2\r\n"
                  "\r\n"
                  "\"Results\",\"A\",\"B\",\"C\",\"D\",\"E\",\"F\",\"G\",\"H\"\r\n"
                  "0, 1, 2, 3, 4, 5, 6, 7, 8\r\n"
                  "1, -1, 0, 2147483647, 4, 5, 6, 7, 8\r\n");
}

TEST_F(PerformanceDocumentTest, ReadsWhatItWrites) {
    document.Setup().SetType(PerformanceStatistics);
    document.Setup().setupName = "two\r\nlines";
    document.Setup().updateInterval = 600000;
    document.Setup().grid = true;
    document.Setup().items[6].lowAddress = {1, 2, 3, 4, 5, 6, 7, 0x80};
    AddUpTo(1000);
    const std::string text = Saved();

    CPerformanceDoc again([] { return TraitsOfModel("PCIKite").value(); }, prompts);
    again.AddView(&view);
    view.updates = 0;
    ASSERT_TRUE(again.OnOpenDocument(dir.File("out.per")));
    EXPECT_EQ(again.Setup(), document.Setup());
    EXPECT_EQ(again.Results().Where(), document.Results().Where());
    EXPECT_TRUE(again.HasResult(999));
    EXPECT_FALSE(again.HasResult(1000));
    EXPECT_EQ(again.GetResult(1, 999), -999);
    EXPECT_EQ(again.GetResult(8, 999), 0);
    EXPECT_EQ(again.GetResult(0, 1000), 0);
    EXPECT_EQ(view.updates, 1);
    ASSERT_TRUE(again.OnSaveDocument(dir.File("again.per")));
    EXPECT_EQ(ReadWholeFile(dir.File("again.per")), text);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceDocumentTest, ReloadsItsRingsFromTheFirstRows) {
    AddUpTo(160003);
    const std::string text = Saved();
    EXPECT_THAT(text, HasSubstr("\r\n0, 160000, -160000, 2, 3, 4, 5, 6, 160000\r\n"
                                "1, 160001, "));
    EXPECT_THAT(text, HasSubstr("\r\n160002, -160002, 2, 3, 4, 5, 6, 160002, 0\r\n"))
        << "there is a row for each result, in which a ring goes on in the next";
    CPerformanceDoc again([] { return TraitsOfModel("PCIKite").value(); }, prompts);
    ASSERT_TRUE(again.OnOpenDocument(dir.File("out.per")));
    EXPECT_EQ(again.Results().Where(), (ResultStore::Position{160003, 3, true}));
    int wrong = 0;
    for (std::int64_t n = 0; n < 160003; ++n) {
        wrong += again.Results().At(n) == document.Results().At(n) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(PerformanceDocumentTest, ADocumentsDefaultsKeepItsType) {
    document.Setup().SetType(PerformanceLatency);
    AddUpTo(5);
    ASSERT_TRUE(document.OnNewDocument());
    PerformanceSetup fresh;
    fresh.type = PerformanceLatency;
    EXPECT_EQ(document.Setup(), fresh);
    EXPECT_EQ(document.Results().Count(), 0);

    document.Setup().SetType(PerformanceStatistics);
    AddUpTo(5);
    ASSERT_TRUE(Open(""));
    fresh.type = PerformanceStatistics;
    EXPECT_EQ(document.Setup(), fresh);
    EXPECT_EQ(document.Results().Count(), 0);
    EXPECT_EQ(document.GetResult(0, 3), 0);
}

TEST_F(PerformanceDocumentTest, SetTypeTellsTheViewsWhenTheItemsArePreset) {
    document.SetType(PerformanceBurstDistribution);
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(Row(3).cycle, 7);
}

TEST_F(PerformanceDocumentTest, TakesResultsAsTheBoardSendsThem) {
    std::array<std::uint8_t, 32> bytes{};
    bytes[4] = 1;
    bytes[5] = 2;
    document.AddResults(bytes);
    EXPECT_EQ(document.GetResult(1, 0), 0x201);
    document.ClearResults();
    EXPECT_FALSE(document.HasResult(0));
}

TEST_F(PerformanceDocumentTest, ReadsEachKeyword) {
    ASSERT_TRUE(Open("\"Type\",\"Max Types\"\r\n\"SetupName\",\"\"\r\n\"UpdateInterval\",\"7x\"\r\n"
                     "\"ChartType\",\"Pie\"\r\n\"Grid\",\"On\"\r\n\"Wrapped\",5\r\n"
                     "\"Next Result Index\",12\r\n\"Number of Results\",34\r\n"
                     "\"Other\",1\r\n\"SetupName\"\r\n\"grid\",\"Off\"\r\n"));
    EXPECT_EQ(document.Setup().type, PerformanceMaxTypes);
    EXPECT_EQ(document.Setup().setupName, "");
    EXPECT_EQ(document.Setup().updateInterval, 7);
    EXPECT_EQ(document.Setup().chartType, PerformancePieChart);
    EXPECT_TRUE(document.Setup().grid);
    EXPECT_EQ(document.Results().Where(), (ResultStore::Position{34, 12, true}));
    ASSERT_TRUE(Open("\"Type\",\"utilization\"\r\n\"Grid\",\"off\"\r\n\"ChartType\",\"pie\"\r\n"));
    EXPECT_EQ(document.Setup().type, PerformanceMaxTypes) << "no match leaves it";
    EXPECT_FALSE(document.Setup().grid);
    EXPECT_EQ(document.Setup().chartType, PerformanceBarChart);
}

TEST_F(PerformanceDocumentTest, AnItemIsLookedUpInTheTypeOfTheFile) {
    ASSERT_TRUE(Open("\"Type\",\"Latency\"\r\n"
                     "\"Performance Item\",8,\"Target\",\"E2\",\"\",\"12345\",\"aBcdef\",4\r\n"
                     "\"Performance Item\",1,\"Bus Busy\",\"\",\"g1-12\",\"00\",\"x\",9\r\n"));
    EXPECT_EQ(Row(7).item, 3);
    EXPECT_EQ(Row(7).cycle, 17);
    EXPECT_EQ(PerformanceAddressText(Row(7).lowAddress), "0000000000000000");
    EXPECT_EQ(PerformanceAddressText(Row(7).highAddress), "1234000000000000") << "a half pair is 0";
    EXPECT_EQ(Row(7).color, 0xABCDEFU);
    EXPECT_EQ(Row(7).style, 4);
    EXPECT_EQ(Row(0).item, 0) << "not an item of the type";
    EXPECT_EQ(Row(0).cycle, 0);
    EXPECT_EQ(PerformanceAddressText(Row(0).lowAddress), "00ff000000000000") << "-1 is a number";
    EXPECT_EQ(Row(0).color, 0U);
    EXPECT_EQ(Row(0).style, 9);
}

TEST_F(PerformanceDocumentTest, ARowThatIsShortOrDoesNotExistIsIgnored) {
    ASSERT_TRUE(
        Open("\"Performance Item\",9,\"Bus Idle\",\"All\",\"0\",\"0\",\"0\",0\r\n"
             "\"Performance Item\",0,\"Bus Idle\",\"All\",\"0\",\"0\",\"0\",0\r\n"
             "\"Performance Item\",-2147483648,\"Bus Idle\",\"All\",\"0\",\"0\",\"0\",0\r\n"
             "\"Performance Item\",2,\"Bus Idle\",\"All\",\"0\",\"0\",\"0\"\r\n"
             "\"Performance Item\",\"Index\",\"Bus Idle\",\"All\",\"0\",\"0\",\"0\",0\r\n"));
    PerformanceSetup fresh;
    fresh.type = document.Setup().type;
    EXPECT_EQ(document.Setup(), fresh);
}

TEST_F(PerformanceDocumentTest, ACycleThatTheFamilyLacksIsLost) {
    document.Setup().items[0].cycle = 4; // I/O
    document.Setup().items[1].cycle = 2; // Mem Rd
    document.Setup().items[2].cycle = 23;
    document.Setup().items[3].cycle = 99; // written as an empty text
    static_cast<void>(Saved());
    model = "VMEKite";
    ASSERT_TRUE(document.OnOpenDocument(dir.File("out.per")));
    EXPECT_EQ(Row(0).cycle, 0);
    EXPECT_EQ(Row(1).cycle, 2);
    EXPECT_EQ(Row(2).cycle, 23);
    EXPECT_EQ(Row(3).cycle, 0) << "gaps of the list have empty texts";
    model = "VSBKite";
    ASSERT_TRUE(document.OnOpenDocument(dir.File("out.per")));
    EXPECT_EQ(Row(0).cycle, 4);
    EXPECT_EQ(Row(1).cycle, 0);
}

TEST_F(PerformanceDocumentTest, ResultsReachToTheEndOfTheFile) {
    ASSERT_TRUE(Open("\"Number of Results\",4\r\n\"Next Result Index\",4\r\n\"Results\"\r\n"
                     "0, 1, 2, 3, 4, 5, 6, 7, 8\r\n"
                     "1, 1, 2, 3, 4, 5, 6, 7\r\n" // a value is missing
                     "160000, 1, 2, 3, 4, 5, 6, 7, 8\r\n"
                     "-1, 1, 2, 3, 4, 5, 6, 7, 8\r\n"
                     "\"Grid\",\"On\"\r\n"
                     "\"open\r\n"
                     "3,11,12,13,14,15,16,17,18,19\r\n"));
    EXPECT_EQ(document.Results().At(0), (PerformanceResults{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(document.Results().At(1), PerformanceResults{});
    EXPECT_EQ(document.Results().At(3), (PerformanceResults{11, 12, 13, 14, 15, 16, 17, 18}));
    EXPECT_EQ(document.Results().Row(159999), PerformanceResults{});
    EXPECT_FALSE(document.Setup().grid);
    EXPECT_EQ(document.Results().Count(), 4);
}

TEST_F(PerformanceDocumentTest, CountsThatCannotBeDoNoHarm) {
    ASSERT_TRUE(Open("\"Number of Results\",-5\r\n\"Next Result Index\",-7\r\n"));
    EXPECT_EQ(document.Results().Where(), ResultStore::Position{});
    ASSERT_TRUE(Open("\"Number of Results\",99999999999\r\n\"Next Result Index\",160000\r\n"
                     "\"UpdateInterval\",-3\r\n\"Results\"\r\n0,1,2,3,4,5,6,7,8\r\n"));
    EXPECT_EQ(document.Results().Where().next, 0);
    EXPECT_EQ(document.Setup().updateInterval, -3);
    EXPECT_EQ(document.Results().Count(), 1'280'000) << "saving writes a row for each";
    EXPECT_EQ(document.GetResult(0, 0), 0);
}

TEST_F(PerformanceDocumentTest, AnotherFileIsRefusedWhenItHasReplacedTheContent) {
    struct Case {
        const char* head;
        const char* message;
    };
    const Case cases[] = {
        {"\"FileType\",\"Master File\"\r\n\"Version\",\"2.0\"\r\n",
         "Invalid performance file type of 'Master File'."},
        {"", "Invalid performance file type of ''."},
        {"\"FileType\",\"Performance File\"\r\n\"Version\",\"1.1\"\r\n",
         "Invalid performance file version of '1.1'."},
        {"\"FileType\",\"Performance File\"\r\n", "Invalid performance file version of ''."},
    };
    for (const Case& each : cases) {
        document.Setup().updateInterval = 1;
        AddUpTo(3);
        prompts.Forget();
        EXPECT_FALSE(Open("\"Grid\",\"On\"\r\n", each.head));
        EXPECT_THAT(prompts.Texts(), ElementsAre(each.message));
        EXPECT_TRUE(document.Setup().grid);
        EXPECT_EQ(document.Setup().updateInterval, 100);
        EXPECT_EQ(document.Results().Count(), 0);
    }
    EXPECT_EQ(view.updates, 0);
}

TEST_F(PerformanceDocumentTest, FilesThatCannotBeOpenedAreReported) {
    document.Setup().updateInterval = 1;
    EXPECT_FALSE(document.OnOpenDocument(dir.File("none.per")));
    EXPECT_FALSE(document.OnSaveDocument(dir.File("none/a.per")));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error opening file " + dir.File("none.per") + ".",
                            "Error creating file " + dir.File("none/a.per") + "."));
    EXPECT_EQ(document.Setup().updateInterval, 1);
}

} // namespace
} // namespace busquill::test
