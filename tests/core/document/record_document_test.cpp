#include "document/record_document.h"
#include "platform/text_file.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps its records as they are read.
class Notes final : public RecordDocument {
public:
    explicit Notes(Prompts& prompts, OpenQuote openQuote = OpenQuote::GoesOn)
        : RecordDocument({"Note File", "note"}, openQuote, prompts) {}

    std::vector<std::vector<std::string>> read;
    std::vector<std::vector<std::string>> notes;
    int begun = 0;

protected:
    void BeginReading() override { ++begun; }
    void TakeRecord(const std::vector<std::string>& fields, TextReader& /*file*/) override {
        read.push_back(fields);
    }
    void EndReading() override { notes = std::exchange(read, {}); }
    void WriteRecords(RecordWriter& writer) const override {
        for (const auto& note : notes) {
            writer.Write({note[0], note[1]});
        }
        writer.WriteEmptyLine();
        writer.Write({"Three", "-3", "1.0"});
    }
};

class RecordDocumentTest : public testing::Test {
protected:
    static std::string Bytes(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    static constexpr const char* head = "\"FileType\",\"Note File\"\r\n\"Version\",\"1.0\"\r\n";

    const TempDir dir;
    RecordingPrompts prompts;
};

TEST_F(RecordDocumentTest, WritesWhatItReads) {
    Notes notes(prompts);
    notes.notes = {{"Name", "a \"b"}, {"Count", "12"}, {"Empty", ""}};
    ASSERT_TRUE(notes.OnSaveDocument(dir.File("a.note")));
    EXPECT_EQ(
        Bytes(dir.File("a.note")),
        std::string(head) +
            "\"Name\",\"a \"b\"\r\n\"Count\",12\r\n\"Empty\",\"\"\r\n\r\n\"Three\",-3,\"1.0\"\r\n");
    Notes again(prompts);
    dir.Write("b.note", std::string(head) + "\"Count\",12\r\n\r\n\"Three\",-3,\"1.0\"\r\n");
    ASSERT_TRUE(again.OnOpenDocument(dir.File("b.note")));
    EXPECT_THAT(again.notes,
                ElementsAre(ElementsAre("Count", "12"), ElementsAre("Three", "-3", "1.0")));
    EXPECT_EQ(again.begun, 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(RecordDocumentTest, RefusesOtherTypesAndVersions) {
    struct Row {
        const char* text;
        const char* message;
    };
    const Row rows[] = {
        {"\"FileType\",\"Other File\"\n\"Version\",\"1.0\"\n\"Name\",\"x\"\n",
         "Invalid note file type of 'Other File'."},
        {"\"Version\",\"1.0\"\n", "Invalid note file type of ''."},
        {"\"FileType\"\n\"Version\",\"1.0\"\n", "Invalid note file type of ''."},
        {"\"FileType\",\"Note File\"\n\"Version\",\"2.0\"\n",
         "Invalid note file version of '2.0'."},
        {"\"FileType\",\"Note File\"\n", "Invalid note file version of ''."},
        {"", "Invalid note file type of ''."},
    };
    for (const Row& row : rows) {
        Notes notes(prompts);
        notes.notes = {{"kept", ""}};
        EXPECT_FALSE(notes.OnOpenDocument(dir.Write("x.note", row.text)));
        EXPECT_THAT(prompts.Texts(), ElementsAre(row.message));
        EXPECT_THAT(notes.notes, ElementsAre(ElementsAre("kept", "")));
        prompts.Forget();
    }
}

TEST_F(RecordDocumentTest, TypeAndVersionMayBeAnywhere) {
    Notes notes(prompts);
    EXPECT_TRUE(notes.OnOpenDocument(
        dir.Write("x.note", "\"Name\",\"x\"\n\"Version\",\"1.0\"\n\"FileType\",\"Note File\"\n")));
    EXPECT_THAT(notes.notes, ElementsAre(ElementsAre("Name", "x")));
}

TEST_F(RecordDocumentTest, AnOpenQuoteContinuesOnOrDropsTheNextLine) {
    const std::string path =
        dir.Write("x.note", std::string(head) + "\"A\",\"one\ntwo\"\n\"B\",\"three\"\n\"C\",\"end");
    Notes goesOn(prompts);
    ASSERT_TRUE(goesOn.OnOpenDocument(path));
    EXPECT_THAT(goesOn.notes, ElementsAre(ElementsAre("A", "one\r\ntwo"), ElementsAre("B", "three"),
                                          ElementsAre("C", "end\r\n")));
    Notes drops(prompts, OpenQuote::DropsNextLine);
    ASSERT_TRUE(drops.OnOpenDocument(path));
    ASSERT_EQ(drops.notes.size(), 3U);
    EXPECT_THAT(drops.notes[0], ElementsAre("A", "one\r\n"));
    EXPECT_THAT(drops.notes[1], ElementsAre("B", "three"));
    EXPECT_THAT(drops.notes[2], ElementsAre("C", "end\r\n", "C", "end\r\n"));
}

TEST_F(RecordDocumentTest, ReportsWhichFileItCannotReadOrWrite) {
    Notes notes(prompts);
    EXPECT_FALSE(notes.OnOpenDocument("/nonexistent/x.note"));
    EXPECT_FALSE(notes.OnSaveDocument("/nonexistent/x.note"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file /nonexistent/x.note.",
                                             "Error creating file /nonexistent/x.note."));
    EXPECT_EQ(notes.begun, 0);
}

} // namespace
} // namespace busquill::test
