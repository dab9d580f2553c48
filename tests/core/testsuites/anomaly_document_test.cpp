#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string head = "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n";

class AnomalyDocumentTest : public testing::Test {
protected:
    bool Open(const std::string& text) {
        return document.OnOpenDocument(dir.Write("in.adt", text));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.adt")));
        return ReadWholeFile(dir.File("out.adt"));
    }

    const TempDir dir;
    RecordingPrompts prompts;
    BoardTraits traits;
    CAnomalyDetectionDoc document{[this] { return AnomalyTable(traits); }, prompts};
};

TEST_F(AnomalyDocumentTest, EverythingIsEnabledAtFirst) {
    EXPECT_TRUE(document.IsEnabled(0));
    EXPECT_TRUE(document.IsEnabled(199));
    EXPECT_THAT(document.Results(), IsEmpty());
}

TEST_F(AnomalyDocumentTest, ThereAreTwoHundredFlags) {
    EXPECT_FALSE(document.IsEnabled(200));
    EXPECT_FALSE(document.IsEnabled(-1));
    document.EnableAll(false);
    document.Enable(-1, true);
    document.Enable(200, true);
    document.Enable(199, true);
    EXPECT_EQ(document.Enabled().Count(), 1U);
    EXPECT_TRUE(document.IsEnabled(199));
}

TEST_F(AnomalyDocumentTest, ResultsBeyondTheLimitAreDropped) {
    for (int i = 0; i < 100001; ++i) {
        document.AddResult(i % 100);
    }
    EXPECT_THAT(document.Results(), SizeIs(100000));
    EXPECT_EQ(document.Results()[99999], 99);
    document.ClearResults();
    EXPECT_THAT(document.Results(), IsEmpty());
}

TEST_F(AnomalyDocumentTest, WritesItsFileToTheByte) {
    document.EnableAll(false);
    document.Enable(0, true);
    document.Enable(24, true);
    document.Enable(27, true);
    EXPECT_EQ(Saved(), head +
                           "\"Test\",\"Protocol Violations\"\r\n"
                           "\"Test\",\"Target\"\r\n"
                           "\"Test\",\"25 - DEVSEL deassserted before tranasction complete\"\r\n");
}

TEST_F(AnomalyDocumentTest, TheRowsAreThoseOfTheFamily) {
    document.EnableAll(false);
    document.Enable(28, true);
    traits.modelString = "VMEKite";
    EXPECT_EQ(Saved(), head + "\"Test\",\"27 - DSA* not held low until falling edge of DTACK*, "
                              "RETRY*, BERR* (2.46a)\"\r\n");
    EXPECT_EQ(document.Table().size(), 73U);
}

TEST_F(AnomalyDocumentTest, WithEverythingOffOnlyTheHeadIsWritten) {
    document.EnableAll(false);
    EXPECT_EQ(Saved(), head);
}

TEST_F(AnomalyDocumentTest, WithEverythingOnEachRowIsWritten) {
    const std::string text = Saved();
    EXPECT_EQ(std::ranges::count(text, '\n'), 2 + 124);
    EXPECT_TRUE(text.ends_with("\"Test\",\"114 - Target Abort\"\r\n"));
}

TEST_F(AnomalyDocumentTest, OpeningAFileChangesNothing) {
    document.Enable(3, false);
    document.AddResult(7);
    EXPECT_TRUE(Open(head + "\"Test\",\"Master\"\r\n\"Test\",\"\",\"Master\"\r\n"
                            "\"Test\",\"1 - FRAME deasserted before IRDY asserted\",\"x\"\r\n"
                            "\"Result\",\"PCI1\",\"Passed\",0,\"x\"\r\n"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(document.Enabled().Count(), 199U);
    EXPECT_FALSE(document.IsEnabled(3));
    EXPECT_THAT(document.Results(), ElementsAre(7));
}

TEST_F(AnomalyDocumentTest, AFileOfAnotherTypeIsRefused) {
    document.Enable(3, false);
    EXPECT_FALSE(Open("\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                      "\"Test\",\"AD[5]\"\r\n"));
    EXPECT_FALSE(Open(""));
    EXPECT_FALSE(Open("\"FileType\"\r\n\"Version\",\"2.0\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid anomaly file type of 'Backplane Test File'.",
                                             "Invalid anomaly file type of ''.",
                                             "Invalid anomaly file type of ''."));
    EXPECT_EQ(document.Enabled().Count(), 199U);
}

TEST_F(AnomalyDocumentTest, AFileOfAnotherVersionIsRefused) {
    EXPECT_FALSE(Open("\"Version\",\"1.1\"\r\n\"FileType\",\"Compliance File\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid anomaly file version of '1.1'."));
}

TEST_F(AnomalyDocumentTest, AValueGoesOnInTheNextLine) {
    EXPECT_FALSE(Open("\"FileType\",\"A\r\nB\"\r\n\"Version\",\"1.0\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid anomaly file type of 'A\r\nB'."));
}

TEST_F(AnomalyDocumentTest, AMissingFileIsReported) {
    EXPECT_FALSE(document.OnOpenDocument(dir.File("none.adt")));
    EXPECT_FALSE(document.OnSaveDocument(dir.File("none/out.adt")));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error opening file " + dir.File("none.adt") + ".",
                            "Error creating file " + dir.File("none/out.adt") + "."));
}

} // namespace
} // namespace busquill::test
