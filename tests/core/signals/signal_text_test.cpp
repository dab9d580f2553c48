#include "document/csv_line.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/signal_definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::IsEmpty;
using Words = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

const std::string headerRow =
    "\"Signal\",\"Name\",\"BaseName\",\"Grouped\",\"GroupName\",\"GroupAttribute\",\"BitIndex\","
    "\"DataIndex\",\"NumSamples\",\"Height\",\"Width\",\"Color\",\"ShowValue\",\"Radix\","
    "\"Masked\",\"Decoded\",\"Hidden\",\"Permanent\"\"BitReverse\"\n";

class SignalText : public testing::Test {
protected:
    std::string Written(const CSignalList& list, bool withData) {
        const std::string path = directory_.File("list.txt");
        TextWriter writer;
        EXPECT_TRUE(writer.Create(path));
        list.WriteSignals(writer, withData);
        EXPECT_TRUE(writer.Close());
        return ReadWholeFile(path);
    }
    /// Reads records into a list as documents do; the records that follow are appended to `rest`.
    void Read(const std::string& text, CSignalList& list,
              std::vector<std::string>* rest = nullptr) {
        TextReader reader;
        ASSERT_TRUE(reader.Open(directory_.Write("read.txt", text)));
        std::vector<std::string> fields;
        while (ReadCsvRecord(reader, fields)) {
            const bool isRecord = fields.size() > 1 && fields[0] == "Signal" && fields[1] != "Name";
            if (isRecord) {
                list.ReadSignal(fields, reader);
            } else if (rest != nullptr && !fields.empty()) {
                rest->push_back(fields[0]);
            }
            fields.clear();
        }
        list.RebuildAfterRead();
    }
    HandMadeTables tables_;
    TempDir directory_;
};

CSignal& AddPlain(CSignalList& list, const char* name, std::uint32_t numSamples) {
    CSignal* signal = list.InsertBlank(nullptr);
    signal->name = signal->baseName = name;
    signal->dataIndex = 72;
    SetSamples(*signal, Words(WordsFor(numSamples), 0), numSamples);
    return *signal;
}

TEST_F(SignalText, WritesTheHeaderRowWithoutItsLastComma) {
    EXPECT_EQ(Written(CSignalList(NoTables()), true), headerRow);
}

TEST_F(SignalText, WritesARecordForEachSignal) {
    CSignalList list(tables_.Tables());
    AddPlain(list, "FRAME", 0);
    EXPECT_EQ(Written(list, true),
              headerRow + "\"Signal\",\"FRAME\",\"FRAME\",\"\",\"\",\"\",-1,72,0,20,30,0,\"\","
                          "\"Hex\",\"\",\"\",\"\",\"\",\"\"\n");
}

TEST_F(SignalText, WritesEveryFieldThatIsSet) {
    tables_.Bus("BG", 3, 0, 80);
    CSignalList list(tables_.Tables());
    list.mode = ModeEvents;
    const auto def = tables_.Decoded("KIND", {80, 81}, {{"Zero", "00"}});
    CSignal* first = list.AddSignal(nullptr, def, 8, 0, 0, 0x0000FF, Radix::Time, true);
    first->hidden = first->permanent = true;
    first->height = 24;
    first->width = 60;
    EXPECT_EQ(Written(list, false),
              headerRow + "\"Signal\",\"BG[0]\",\"BG\",\"Grouped\",\"KIND\",\"Start+NoUngroup\","
                          "0,80,0,24,60,255,\"Show\",\"Time\",\"Masked\",\"KIND\",\"Hidden\","
                          "\"Permanent\",\"BitReverse\"\n"
                          "\"Signal\",\"BG[1]\",\"BG\",\"Grouped\",\"\",\"End\","
                          "1,81,0,20,30,255,\"Show\",\"Time\",\"Masked\",\"\",\"\","
                          "\"\",\"BitReverse\"\n");
}

TEST_F(SignalText, WritesTheRadixAsAWordAndUnknownOnesAsNothing) {
    const std::vector<std::pair<std::int32_t, std::string>> words = {
        {0, "Binary"}, {1, "Hex"}, {2, "Octal"}, {3, "Time"}, {4, ""}, {-1, ""}};
    for (const auto& [radix, word] : words) {
        CSignalList list(tables_.Tables());
        AddPlain(list, "FRAME", 0).radix = radix;
        EXPECT_THAT(Written(list, false), testing::HasSubstr("0,\"\",\"" + word + "\",\"\","));
    }
}

TEST_F(SignalText, WritesDataAndMaskLinesAfterTheRecord) {
    CSignalList list(tables_.Tables());
    CSignal& signal = AddPlain(list, "FRAME", 4);
    signal.data = {0b0101};
    signal.mask = {0b0011};
    EXPECT_EQ(Written(list, true),
              headerRow + "\"Signal\",\"FRAME\",\"FRAME\",\"\",\"\",\"\",-1,72,4,20,30,0,\"\","
                          "\"Hex\",\"Masked\",\"\",\"\",\"\",\"\"\n"
                          "\"Data\",1,0,1,0\n"
                          "\"Mask\",1,1,0,0\n");
}

std::string Repeated(const char* text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

std::string LinesOf(const std::string& text) {
    return text.substr(text.find("\"Data\""));
}

TEST_F(SignalText, RepeatsTheFirstBitsOnEachFurtherLine) {
    CSignalList list(tables_.Tables());
    CSignal& signal = AddPlain(list, "FRAME", 34);
    signal.data = {0xFFFFFFFF, 0b10};
    EXPECT_EQ(LinesOf(Written(list, true)),
              "\"Data\"" + Repeated(",1", 32) + "\n" + "\"Data\"" + Repeated(",1", 32) + ",0,1\n");
    SetSamples(signal, Words{0xFFFFFFFF, 0}, 64);
    EXPECT_EQ(LinesOf(Written(list, true)), "\"Data\"" + Repeated(",1", 32) + "\n" + "\"Data\"" +
                                                Repeated(",1", 32) + Repeated(",0", 32) + "\n");
    SetSamples(signal, Words{0xFFFFFFFF}, 32);
    EXPECT_EQ(LinesOf(Written(list, true)), "\"Data\"" + Repeated(",1", 32) + "\n");
}

TEST_F(SignalText, OnlyTheFirstThirtyTwoSamplesAreKept) {
    CSignalList list(tables_.Tables());
    AddPlain(list, "FRAME", 64).data = {0x12345678, 0x9ABCDEF0};
    CSignalList copy(tables_.Tables());
    Read(Written(list, true), copy);
    ASSERT_EQ(copy.Size(), 1U);
    EXPECT_EQ(copy[0].numSamples, 64U);
    EXPECT_EQ(copy[0].data, (Words{0x12345678, 0x12345678}));
}

TEST_F(SignalText, ASetupIsReadBackEqual) {
    tables_.Bus("AD", 0, 7, 0);
    tables_.Bus("BG", 3, 0, 80);
    tables_.Bus("FRAME", 0, 0, 72);
    tables_.Decoded("KIND", {0, 1}, {{"All", "XX", 3}, {"Zero", "00"}}, "AD[7:0]");
    tables_.Decoded("ONE", {72}, {{"Any", "X"}, {"High", "1"}}, "FRAME");
    CSignalList list(tables_.Tables());
    for (const std::uint32_t numSamples : {1U, 4U, 8U, 15U}) {
        list.BuildFromTables(numSamples, ModeEvents);
        list.ApplyDecodedValue(FindRow(list, "KIND"), 0, 1);
        list.ApplyDecodedValue(FindRow(list, "ONE"), 0, 1);
        FindRow(list, "BG[3:0]")->groupData[0] = 0b1010;
        FindRow(list, "BG[3:0]")->groupMask[0] = 0b1110;
        list.UnpackGroup(FindRow(list, "BG[3:0]"));

        CSignalList copy(tables_.Tables());
        copy.mode = ModeEvents;
        Read(Written(list, true), copy);
        EXPECT_EQ(Written(copy, true), Written(list, true));
        ASSERT_EQ(RowNames(copy), RowNames(list));
        for (std::size_t i = 0; i < list.Size(); ++i) {
            EXPECT_EQ(copy[i].groupData, list[i].groupData);
            EXPECT_EQ(copy[i].groupMask, list[i].groupMask);
            EXPECT_EQ(copy[i].groupWidth, list[i].groupWidth);
            EXPECT_EQ(copy[i].labelTable, list[i].labelTable);
            EXPECT_EQ(copy[i].bitReverse, list[i].bitReverse);
        }
        EXPECT_STREQ(FindRow(copy, "KIND")->Label(0), "Zero");
        EXPECT_STREQ(FindRow(copy, "ONE")->Label(0), "High");
    }
}

TEST_F(SignalText, WithoutDataARecordStandsAloneEvenIfItSaysMasked) {
    tables_.Bus("AD", 0, 1, 0);
    CSignalList list(tables_.Tables());
    list.BuildFromTables(8, ModeEvents);
    const std::string text = Written(list, false);
    EXPECT_THAT(text, testing::HasSubstr("\"Masked\""));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("\"Mask\"")));
    CSignalList copy(tables_.Tables());
    Read(text, copy);
    EXPECT_EQ(RowNames(copy), std::vector<std::string>{"AD[1:0]"});
    EXPECT_EQ(copy[0].numSamples, 0U);
    EXPECT_THAT(copy[0].data, IsEmpty());
    EXPECT_THAT(copy[0].mask, IsEmpty());
}

TEST_F(SignalText, ARowWithThirteenFieldsKeepsTheDefaultRadix) {
    CSignalList list(tables_.Tables());
    Read("\"Signal\",\"FRAME\",\"FRAME\",\"\",\"\",\"\",-1,72,0,24,60,255,\"Show\"\n", list);
    ASSERT_EQ(list.Size(), 1U);
    EXPECT_EQ(list[0].name, "FRAME");
    EXPECT_EQ(list[0].dataIndex, 72);
    EXPECT_EQ(list[0].height, 24);
    EXPECT_EQ(list[0].width, 60);
    EXPECT_EQ(list[0].color, 255U);
    EXPECT_TRUE(list[0].showValue);
    EXPECT_EQ(list[0].radix, 1);
    EXPECT_FALSE(list[0].hidden);
}

TEST_F(SignalText, ATruncatedRowLeavesTheDefaults) {
    CSignalList list(tables_.Tables());
    Read("\"Signal\"\n\"Signal\",\"X\"\n\"Signal\",\"Y\",\"B\",\"Grouped\"\n", list);
    // A row of the keyword alone cannot be distinguished from a header.
    ASSERT_EQ(list.Size(), 2U);
    EXPECT_EQ(list[0].name, "X");
    EXPECT_EQ(list[0].bitIndex, -1);
    EXPECT_EQ(list[0].dataIndex, -1);
    EXPECT_EQ(list[0].height, 20);
    EXPECT_EQ(list[0].width, 30);
    EXPECT_TRUE(list[1].grouped);
    EXPECT_EQ(list[1].groupAttribute, 0);
}

TEST_F(SignalText, ReadsWordsOnlyIfTheyMatch) {
    CSignalList list(tables_.Tables());
    Read("\"Signal\",\"N\",\"B\",\"grouped\",\"G\",\"xEndStarty\",-1,5,0,x,7z,-1,\"show\","
         "\"Decimal\",\"\",\"NoSuchDefinition\",\"Hid\",\"permanent\",\"bitreverse\"\n",
         list);
    const CSignal& signal = list[0];
    EXPECT_FALSE(signal.grouped);
    EXPECT_EQ(signal.groupAttribute, GroupAttribute::Start | GroupAttribute::End);
    EXPECT_EQ(signal.height, 0);
    EXPECT_EQ(signal.width, 7);
    EXPECT_EQ(signal.color, 0xFFFFFFFFU);
    EXPECT_FALSE(signal.showValue);
    EXPECT_EQ(signal.radix, 1);
    EXPECT_EQ(signal.decoded, nullptr);
    EXPECT_FALSE(signal.hidden);
    EXPECT_FALSE(signal.permanent);
    EXPECT_FALSE(signal.bitReverse);
}

TEST_F(SignalText, ReadsEachPartOfAGroupAttribute) {
    CSignalList list(tables_.Tables());
    Read("\"Signal\",\"A\",\"A\",\"Grouped\",\"\",\"Start+End+NoUngroup\"\n", list);
    EXPECT_EQ(list[0].groupAttribute, 7);
    EXPECT_EQ(list[0].groupWidth, 1U);
}

const std::string fourSamples =
    "\"Signal\",\"A\",\"A\",\"\",\"\",\"\",-1,0,4,20,30,0,\"\",\"Hex\",\"Masked\","
    "\"\",\"\",\"\",\"\"\n";

TEST_F(SignalText, ABitIsSetByAFieldThatBeginsWithOne) {
    CSignalList list(tables_.Tables());
    Read(fourSamples + "\"Data\",1,0,\"10\",x\n\"Mask\",2,1,1\n", list);
    EXPECT_EQ(list[0].data, Words{0b0101});
    EXPECT_EQ(list[0].mask, Words{0b0110});
}

TEST_F(SignalText, ALineOfAnotherKindEndsTheDataAndIsLost) {
    CSignalList list(tables_.Tables());
    std::vector<std::string> rest;
    Read(fourSamples + "\"Mask\",1,1,1,1\n\"Lost\",1\n\"Event Names\"\n", list, &rest);
    EXPECT_EQ(list[0].data, Words{0});
    EXPECT_EQ(list[0].mask, Words{0});
    EXPECT_EQ(list[0].numSamples, 4U);
    EXPECT_EQ(rest, std::vector<std::string>{"Event Names"});

    CSignalList empty(tables_.Tables());
    Read(fourSamples + "\n\"Mask\",1,1,1,1\n", empty);
    EXPECT_EQ(empty[0].data, Words{0});
    EXPECT_EQ(empty[0].mask, Words{0xF});
}

TEST_F(SignalText, AFileThatEndsInTheDataLoadsTheBitsRead) {
    CSignalList list(tables_.Tables());
    Read(fourSamples, list);
    EXPECT_EQ(list[0].data, Words{0});
    EXPECT_EQ(list[0].mask, Words{0});
}

TEST_F(SignalText, ADecodedSignalTakesTheCurrentNameAndLabels) {
    tables_.Bus("AD", 0, 7, 0);
    tables_.Decoded("KIND", {0, 1}, {{"Zero", "00"}});
    CSignalList list(tables_.Tables());
    Read("\"Signal\",\"A\",\"AD\",\"Grouped\",\"OLD\",\"Start\",0,0,0,20,30,0,\"\",\"Hex\",\"\","
         "\"KIND\"\n"
         "\"Signal\",\"B\",\"AD\",\"Grouped\",\"\",\"End\",1,1\n"
         "\"Signal\",\"C\",\"AD\",\"\",\"\",\"\",0,0,0,20,30,0,\"\",\"Hex\",\"\",\"KIND\"\n"
         "\"Signal\",\"D\",\"AD\",\"Grouped\",\"OLD\",\"Start\",0,0,0,20,30,0,\"\",\"Hex\",\"\","
         "\"GONE\"\n"
         "\"Signal\",\"E\",\"AD\",\"Grouped\",\"\",\"End\",1,1\n",
         list);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"KIND", "KIND", "AD[1:0]"}));
    list.ResizeSamples(1);
    list.LoadSamples(0, std::vector{RecordOf({})});
    EXPECT_STREQ(list[0].Label(0), "Zero");
    EXPECT_EQ(list[3].Label(0), nullptr)
        << "without its definition a decoded signal is a plain group";
}

std::size_t MemoryOf(const CSignalList& list) {
    std::size_t bytes = 0;
    for (const auto& signal : list.All()) {
        bytes += (signal->data.size() + signal->mask.size()) * 4 + signal->groupData.size() +
                 signal->groupMask.size() + signal->labelTable.size();
    }
    return bytes;
}

TEST_F(SignalText, AnnouncingBillionsOfSamplesTakesLittleMemory) {
    tables_.Decoded("KIND", {0, 1}, {{"Zero", "00"}});
    std::string text;
    for (int i = 0; i < 300; ++i) {
        text += "\"Signal\",\"A\",\"AD\",\"Grouped\",\"\",\"Start\",0,0,2147483647,20,30,0,\"\","
                "\"Hex\",\"Masked\",\"KIND\"\n\"Data\",1,1\n";
    }
    CSignalList list(tables_.Tables());
    Read(text, list);
    EXPECT_EQ(list[0].numSamples, 2147483647U);
    EXPECT_LT(MemoryOf(list), 1U << 20);
    // One announced number for each sign.
    CSignalList negative(tables_.Tables());
    Read("\"Signal\",\"A\",\"A\",\"\",\"\",\"\",0,0,-1\n", negative);
    EXPECT_EQ(negative[0].numSamples, 0xFFFFFFFFU);
    EXPECT_LT(MemoryOf(negative), 100U);
}

TEST_F(SignalText, ManySignalsWithAPlausibleNumberOfSamplesTakeLittleMemory) {
    tables_.Decoded("KIND", {0, 1}, {{"Zero", "00"}});
    std::string text;
    for (int i = 0; i < 10000; ++i) {
        text += "\"Signal\",\"A\",\"AD\",\"\",\"\",\"\",0,0,4096,20,30,0,\"\",\"Hex\",\"\","
                "\"KIND\"\n\n";
    }
    CSignalList list(tables_.Tables());
    Read(text, list);
    EXPECT_EQ(list[9999].numSamples, 4096U);
    EXPECT_LT(MemoryOf(list), 8U << 20);
}

TEST_F(SignalText, AfterItsLinesASignalHasZeros) {
    CSignalList list(tables_.Tables());
    Read("\"Signal\",\"A\",\"A\",\"Grouped\",\"\",\"Start\",0,0,1000,20,30,0,\"\",\"Hex\","
         "\"Masked\"\n"
         "\"Data\",1,1\n\"Data\",0,1\n\n\"Mask\",0,1\n\n"
         "\"Signal\",\"B\",\"A\",\"Grouped\",\"\",\"End\",1,1,1000,20,30,0,\"\",\"Hex\","
         "\"Masked\"\n",
         list);
    ASSERT_EQ(list.Size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(list[i].numSamples, 1000U);
        EXPECT_EQ(list[i].data.size(), 32U);
        EXPECT_EQ(list[i].mask.size(), 32U);
    }
    Words words(32, 0);
    EXPECT_EQ(list[1].data, words);
    words[0] = 0b11;
    words[1] = 0b10;
    EXPECT_EQ(list[0].data, words);
    words[0] = 0b10;
    words[1] = 0;
    EXPECT_EQ(list[0].mask, words);
    EXPECT_EQ(list[0].groupData.size(), 1000U);
    EXPECT_EQ(list[0].groupData[33], 1);
    EXPECT_EQ(list[0].groupData[999], 0);
}

TEST_F(SignalText, ALongListKeepsItsTail) {
    std::string text;
    for (int i = 0; i < 9000; ++i) { // in groups of three
        const std::string at = i % 3 == 0 ? "Start" : i % 3 == 2 ? "End" : "";
        text += "\"Signal\",\"L\",\"L\",\"Grouped\",\"\",\"" + at + "\"," + std::to_string(i % 3) +
                "," + std::to_string(i % 144) + "\n";
    }
    CSignalList list(tables_.Tables());
    Read(text, list);
    ASSERT_EQ(list.Size(), 9000U);
    EXPECT_EQ(list[8997].RowName(), "L[2:0]");
    list.ResizeSamples(1);
    list.LoadSamples(0, std::vector{RecordOf({8998 % 144})});
    EXPECT_EQ(list[8997].GroupRow(0)[0], 0b010);
}

TEST_F(SignalText, ManyGroupsAndLinesTakeLittleMemory) {
    std::string text = "\"Signal\",\"A\",\"A\",\"\",\"\",\"\",0,0,2000000000\n";
    for (int i = 0; i < 5000; ++i) {
        text += "\"Data\",1\n";
    }
    text += "\n";
    for (int i = 0; i < 20000; ++i) {
        text += "\"Signal\",\"A\",\"A\",\"Grouped\",\"\",\"Start\",0,0,0\n";
    }
    CSignalList list(tables_.Tables());
    Read(text, list);
    EXPECT_EQ(list[0].numSamples, 2000000000U);
    EXPECT_EQ(list[0].data.size(), 5000U); // one for each line
    EXPECT_EQ(list.Size(), 20001U);
    list.ResizeSamples(1000);
    EXPECT_LT(MemoryOf(list), 8U << 20);
}

} // namespace
} // namespace busquill::test
