#include "capture/trace_document.h"
#include "capture/trace_writer.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/signal_definitions.h"
#include "tracesetup/setup_wizard.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

/// A capture of one board: its tables with their colour files, and a document.
class Board {
public:
    explicit Board(const std::string& model, BusMode mode)
        : board(model, mode, 0, dir.Path()), document({board.tables}, prompts) {}

    CSignal& Row(const char* name) { return *FindRow(document.stateList, name); }
    std::uint32_t ColorOf(const char* decoded) {
        return board.tables.decodedSignals.FindByName(decoded)->color;
    }
    /// Opens a file of one sample, in which these bits are set.
    void Open(std::initializer_list<int> bits) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                           "\"Trace Data\",0,0\n0";
        for (const std::uint8_t byte : RecordOf(bits).bytes) {
            text += "," + std::to_string(byte);
        }
        EXPECT_TRUE(document.OnOpenDocument(dir.Write("a.tra", text + "\n")));
    }
    std::string Save() {
        TraceFileWriter writer(document);
        EXPECT_TRUE(writer.Begin(dir.File("saved.tra"), 0, 0));
        EXPECT_EQ(writer.Write(1), TraceFileWriter::Step::Done);
        return dir.File("saved.tra");
    }
    /// Whether a colour has been saved.
    bool HasColorFile() const {
        return std::filesystem::exists(dir.File("DecodedSignalColors.dat"));
    }

    const TempDir dir;
    RecordingPrompts prompts;
    BoardTables board;
    CTesselDoc document;
};

/// Captures of two boards side by side, created in either order.
class TwoBoards : public testing::TestWithParam<bool> {
protected:
    TwoBoards() {
        if (!GetParam()) {
            pci.emplace("PCIKite-1", BusPci);
        }
        lark.emplace("VMELark-1", BusVme);
        if (GetParam()) {
            pci.emplace("PCIKite-1", BusPci);
        }
        pci->Open({64, 65, 66}); // C/BE: a memory write
        lark->Open({});
    }

    std::optional<Board> pci;
    std::optional<Board> lark;
};
INSTANTIATE_TEST_SUITE_P(InEitherOrder, TwoBoards, testing::Bool());

TEST_P(TwoBoards, EachHasTheSignalsAndEventsOfItsBus) {
    EXPECT_THAT(RowNames(pci->document.stateList), Contains("FRAME"));
    EXPECT_THAT(RowNames(lark->document.stateList), Not(Contains("FRAME")));
    EXPECT_THAT(RowNames(lark->document.stateList), Contains("AM[5:0]"));
    EXPECT_EQ(pci->document.setup.events.All().front()->numSamples, 32U);
    EXPECT_EQ(pci->document.setup.events.Tables().Board().modelString, "PCIKite-1");
    EXPECT_EQ(lark->document.filterPattern.Tables().Board().modelString, "VMELark-1");
}

TEST_P(TwoBoards, EachIsReadByItsOwnDefinitions) {
    EXPECT_STREQ(pci->Row("COMMAND").Label(0), "Mem Wr");
    EXPECT_STREQ(lark->Row("COMMAND").Label(0), "Write");
    pci->document.OnNewDocument();
    EXPECT_EQ(pci->Row("COMMAND").decoded, pci->board.tables.decodedSignals.FindByName("COMMAND"));
    EXPECT_EQ(lark->Row("COMMAND").decoded,
              lark->board.tables.decodedSignals.FindByName("COMMAND"));
}

TEST_P(TwoBoards, ASignalIsAddedFromItsOwnBus) {
    for (Board* each : {&*pci, &*lark}) {
        CSignalList& list = each->document.stateList;
        const auto command = each->board.tables.decodedSignals.FindByName("COMMAND");
        const CSignal* added = list.AddSignal(nullptr, command, 32, 0, 0, 0, Radix::Hex, true);
        ASSERT_NE(added, nullptr);
        EXPECT_EQ(added->baseName, each == &*pci ? "C/BE" : "WRITE");
    }
}

TEST_P(TwoBoards, AColourIsThatOfItsBoard) {
    const std::uint32_t before = lark->ColorOf("COMMAND");
    pci->document.stateList.SetGroupSelected(&pci->Row("COMMAND"), true);
    pci->document.stateList.SetSelectedColor(0x123456);
    EXPECT_EQ(pci->ColorOf("COMMAND"), 0x123456U);
    EXPECT_TRUE(pci->HasColorFile());
    EXPECT_EQ(lark->ColorOf("COMMAND"), before);
    EXPECT_FALSE(lark->HasColorFile());

    lark->document.stateList.SetGroupSelected(&lark->Row("COMMAND"), true);
    lark->document.stateList.SetSelectedColor(0x654321);
    EXPECT_EQ(lark->ColorOf("COMMAND"), 0x654321U);
    EXPECT_EQ(pci->ColorOf("COMMAND"), 0x123456U);
}

TEST_P(TwoBoards, EachIsSavedAndReadAgainByItsOwnTables) {
    const std::string pciPath = pci->Save();
    const std::string larkPath = lark->Save();
    for (Board* each : {&*pci, &*lark}) {
        CTesselDoc again({each->board.tables}, each->prompts);
        ASSERT_TRUE(again.OnOpenDocument(each == &*pci ? pciPath : larkPath));
        EXPECT_EQ(RowNames(again.stateList), RowNames(each->document.stateList));
        const CSignal* command = FindRow(again.stateList, "COMMAND");
        ASSERT_NE(command, nullptr);
        EXPECT_EQ(command->decoded, each->Row("COMMAND").decoded);
        EXPECT_STREQ(command->Label(0), each->Row("COMMAND").Label(0));
        EXPECT_EQ(RowNames(again.setup.events), RowNames(each->document.setup.events));
        EXPECT_THAT(each->prompts.Texts(), IsEmpty());
    }
}

TEST_P(TwoBoards, TheWizardOffersTheProgramOfTheSetupsBoard) {
    const WizardAnswer any{WizardCycle::Memory, WizardDirection::Write, {}, {}};
    BuildWizardSetup(pci->document.setup, any, any);
    BuildWizardSetup(lark->document.setup, any, any);
    EXPECT_STREQ(FindRow(pci->document.setup.events, "COMMAND")->Label(0), "Mem Wr");
    EXPECT_STREQ(FindRow(lark->document.setup.events, "COMMAND")->Label(0), "Write");
    EXPECT_EQ(lark->document.setup.events.Tables().Board().modelString, "VMELark-1");
}

TEST_P(TwoBoards, ACopyBelongsToTheSameBoard) {
    CSignalList copy(lark->board.tables);
    copy.CopyFrom(pci->document.stateList);
    EXPECT_EQ(&copy.Tables(), &pci->board.tables);
}

} // namespace
} // namespace busquill::test
