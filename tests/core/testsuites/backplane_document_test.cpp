#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/backplane_document.h"
#include "testsuites/backplane_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string head = "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n";

class HintView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
        hints.push_back(hint);
    }
    std::vector<int> hints;
};

class BackplaneDocumentTest : public testing::Test {
protected:
    BackplaneDocumentTest() { document.AddView(&view); }

    bool Open(const std::string& text) {
        return document.OnOpenDocument(dir.Write("in.bpt", text));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.bpt")));
        return ReadWholeFile(dir.File("out.bpt"));
    }
    std::vector<int> Enabled() const {
        std::vector<int> rows;
        for (int row = -1; row < 300; ++row) {
            if (document.IsEnabled(row)) {
                rows.push_back(row);
            }
        }
        return rows;
    }

    const TempDir dir;
    RecordingPrompts prompts;
    BoardTraits traits;
    CBackplaneTestDoc document{[this] { return BackplaneTable(traits); }, prompts};
    HintView view;
};

TEST_F(BackplaneDocumentTest, EverythingIsEnabledAtFirst) {
    EXPECT_TRUE(document.IsEnabled(0));
    EXPECT_TRUE(document.IsEnabled(255));
    EXPECT_FALSE(document.IsEnabled(256));
    document.EnableAll(false);
    document.Enable(256, true);
    document.Enable(-1, true);
    document.Enable(255, true);
    EXPECT_THAT(Enabled(), ElementsAre(255));
}

TEST_F(BackplaneDocumentTest, WritesItsFileToTheByte) {
    document.EnableAll(false);
    document.Enable(0, true);
    document.Enable(6, true);
    document.Results() = {"AD[5]", "    AD[4] SHORTED", "    Bit 92 SHORTED", "17"};
    EXPECT_EQ(Saved(), head + "\"Test\",\"Address and Data\"\r\n"
                              "\"Test\",\"AD[5]\"\r\n"
                              "\r\n"
                              "\"Results\"\r\n"
                              "\"AD[5]\"\r\n"
                              "\"    AD[4] SHORTED\"\r\n"
                              "\"    Bit 92 SHORTED\"\r\n"
                              "17\r\n");
}

TEST_F(BackplaneDocumentTest, WithoutResultsNothingIsWrittenOfThem) {
    document.EnableAll(false);
    EXPECT_EQ(Saved(), head);
    document.Enable(6, true);
    EXPECT_EQ(Saved(), head + "\"Test\",\"AD[5]\"\r\n");
}

TEST_F(BackplaneDocumentTest, ReadsWhatItWrote) {
    document.EnableAll(false);
    document.Enable(1, true);
    document.Enable(97, true);
    document.Results() = {"AD[0]", "    Ok", "RST", "    Cannot drive signal"};
    const std::string text = Saved();
    document.EnableAll(true);
    document.Results() = {"old"};
    EXPECT_TRUE(Open(text));
    EXPECT_THAT(Enabled(), ElementsAre(1, 97));
    EXPECT_THAT(document.Results(),
                ElementsAre("AD[0]", "    Ok", "RST", "    Cannot drive signal"));
    EXPECT_THAT(view.hints, ElementsAre(CBackplaneTestDoc::hintLoaded));
    EXPECT_EQ(Saved(), text);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BackplaneDocumentTest, AFileEnablesByTheSignalsOfThePciBus) {
    traits.modelString = "VMEKite";
    EXPECT_TRUE(Open(head + "\"Test\",\"BBSY\"\r\n\"Test\",\"AD[5]\"\r\n\"Test\",\"LOCK\"\r\n"
                            "\"Test\",\"Other\"\r\n\"Test\",\"\"\r\n\"Test\"\r\n"));
    EXPECT_THAT(Enabled(), ElementsAre(6, 82, 96)) << "whatever these rows are on this board";
}

TEST_F(BackplaneDocumentTest, AFileOfAConnectorEnablesNothing) {
    traits.modelString = "VMEKiteP2";
    const std::string text = Saved();
    EXPECT_TRUE(Open(text));
    EXPECT_THAT(Enabled(), IsEmpty());
}

TEST_F(BackplaneDocumentTest, WhatFollowsResultsIsAResult) {
    EXPECT_TRUE(Open(head + "\"Results\",\"x\"\r\n\"Test\",\"AD[5]\"\r\n\r\n\"two\r\nlines\"\r\n"
                            "\"FileType\",\"y\"\r\nbare,more\r\n"));
    EXPECT_THAT(document.Results(), ElementsAre("Test", "two\r\nlines", "FileType", "bare"));
    EXPECT_THAT(Enabled(), IsEmpty());
}

TEST_F(BackplaneDocumentTest, ARefusedFileEmptiesTheResultsAndLeavesTheFlags) {
    document.Enable(0, false);
    document.Results() = {"old"};
    EXPECT_FALSE(Open("\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"
                      "\"Test\",\"AD[5]\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid backplane file type of 'Compliance File'."));
    EXPECT_THAT(document.Results(), IsEmpty());
    EXPECT_FALSE(document.IsEnabled(0));
    EXPECT_TRUE(document.IsEnabled(1));
    EXPECT_THAT(view.hints, IsEmpty());
}

TEST_F(BackplaneDocumentTest, AFileOfAnotherVersionIsRefused) {
    EXPECT_FALSE(Open("\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.1\"\r\n"
                      "\"Test\",\"AD[5]\"\r\n\"Results\"\r\n\"its own\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid backplane file version of '1.1'."));
    EXPECT_EQ(document.Enabled().Count(), 256U);
    EXPECT_THAT(document.Results(), ElementsAre("its own"));
}

TEST_F(BackplaneDocumentTest, NamesOfARefusedFileAreForgotten) {
    EXPECT_FALSE(Open("\"Test\",\"AD[5]\"\r\n"));
    EXPECT_TRUE(Open(head + "\"Test\",\"AD[6]\"\r\n"));
    EXPECT_THAT(Enabled(), ElementsAre(7));
}

TEST_F(BackplaneDocumentTest, AMissingFileChangesNothing) {
    document.Results() = {"old"};
    EXPECT_FALSE(document.OnOpenDocument(dir.File("none.bpt")));
    EXPECT_FALSE(document.OnSaveDocument(dir.File("none/out.bpt")));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error opening file " + dir.File("none.bpt") + ".",
                            "Error creating file " + dir.File("none/out.bpt") + "."));
    EXPECT_THAT(document.Results(), ElementsAre("old"));
}

} // namespace
} // namespace busquill::test
