#include "analysis/bus_traffic.h"
#include "analysis/transaction_condition.h"
#include "analysis/transaction_fields.h"
#include "capture/kept_expressions.h"
#include "signals/value_text.h"
#include "support/board_tables.h"

#include <gmock/gmock.h>

namespace busquill::test {

namespace {

/// A read with data, not headless.
Transaction Read() {
    Transaction read;
    read.number = 12;
    read.sample = -5;
    read.time = 3000;
    read.address = 0xFEBF1234;
    read.dataPhases = 4;
    read.bytes = 16;
    read.waitStates = {1, 6};
    read.firstData = 3240;
    read.end = TransactionEnd::Complete;
    read.gap = 90;
    return read;
}

bool Holds(std::string_view text, const Transaction& transaction = Read(),
           std::string_view command = "Mem Rd") {
    const auto parsed = TransactionCondition::Parse(text, {});
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        ADD_FAILURE() << text << ": " << error->message << " at " << error->place;
        return false;
    }
    return std::get<TransactionCondition>(parsed).Holds(transaction, command);
}

ExpressionError ErrorOf(std::string_view text, const TransactionBus& bus = {}) {
    const auto parsed = TransactionCondition::Parse(text, bus);
    const auto* const error = std::get_if<ExpressionError>(&parsed);
    return error != nullptr ? *error : ExpressionError{std::string_view::npos, "none"};
}

} // namespace

TEST(TransactionConditions, DoNotHoldForWhatTheBusDoesNotHave) {
    Transaction strobed = Read();
    strobed.hasClock = false;
    strobed.findings.reset();
    for (const char* text :
         {"initiatorWait == 1", "initiatorWait != 1", "findings == 0", "findings != 0"}) {
        EXPECT_FALSE(Holds(text, strobed)) << text;
    }
    EXPECT_TRUE(Holds("not findings == 0", strobed));
}

TEST(TransactionConditions, CompareNumbers) {
    for (const char* text :
         {"number == 12",    "number != 11",   "wait > 5",           "wait >= 6",
          "wait < 7",        "wait <= 6",      "initiatorWait == 1", "sample == -5",
          "sample < 0",      "sample > -6",    "words == 4",         "bytes in 10..16",
          "bytes in 16..16", "latency == 240", "latency <= 240ns",   "time == 3us",
          "gap < 1 ms",      "findings == 0",  "bytes == 0x10",      "bytes == 0x1X",
          "number == 1_2"}) {
        EXPECT_TRUE(Holds(text)) << text;
    }
    for (const char* text :
         {"number == 13", "number != 12", "wait > 6", "wait >= 7", "wait < 6", "wait <= 5",
          "sample == 5", "sample > -5", "sample < -5", "bytes in 17..20", "bytes in 1..15",
          "time < 3us", "bytes == 0x2X", "bytes != 0x1X"}) {
        EXPECT_FALSE(Holds(text)) << text;
    }
}

TEST(TransactionConditions, CompareAddressesOf64Bits) {
    for (const char* text :
         {"address == 0xFEBF1234", "address == 0xFEBF_XXXX", "address == 0xfebf12x4",
          "address in 0xFEBF0000..0xFEBFFFFF", "address != 0xFEBF1235", "address > 0xFEBF1233",
          "address < 0xFEBF1235", "address <= 0xFFFFFFFFFFFFFFFF", "address >= 0"}) {
        EXPECT_TRUE(Holds(text)) << text;
    }
    for (const char* text : {"address == 0x1_FEBF1234", "address == 0xFEBE_XXXX",
                             "address != 0xFEBFXXXX", "address > 0xFEBF1234", "address < 5"}) {
        EXPECT_FALSE(Holds(text)) << text;
    }
    Transaction wide = Read();
    wide.address = 0xFFFFFFFF'00000010;
    EXPECT_TRUE(Holds("address > 0xFFFFFFFF", wide));
    EXPECT_TRUE(Holds("address == 0xFFFFFFFF_0000001X", wide));
    EXPECT_FALSE(Holds("address == 0x1X", wide));
}

TEST(TransactionConditions, FindTheTransactionOfACellThatIsTypedBack) {
    const BoardTables board("PCIKite-1");
    const auto traffic = MakeBusTraffic(board.board, board.tables);
    TransactionFields fields(*traffic);
    for (const std::int64_t time : {7, 999, 1000, 62'109, 108'499, 999'999, 1'234'567, 59'999'999,
                                    108'000'000, 1'999'999'999}) {
        Transaction each = Read();
        each.time = time;
        each.gap = time / 2;
        each.firstData = 2 * time;
        each.address = 0x0B10'1000 + static_cast<std::uint64_t>(time);
        const auto holds = [&](const char* name, TransactionField field) {
            const std::string text = std::string(name) + " == " + fields.Text(each, field);
            EXPECT_TRUE(Holds(text, each)) << text << " for " << time;
            Transaction other = each;
            other.time *= 2;
            other.gap = *each.gap * 2 + 1;
            other.firstData = 5 * time;
            other.address = *each.address << 4;
            EXPECT_FALSE(Holds(text, other)) << text << " for another";
        };
        holds("time", TransactionField::Time);
        holds("gap", TransactionField::Gap);
        holds("latency", TransactionField::Latency);
        holds("address", TransactionField::Address);
    }
}

TEST(TransactionConditions, TakeAddressesInHexadecimalDigits) {
    for (const char* text : {"address == FEBF1234", "address == febf_12xx",
                             "address in FEBF1000..febf1fff", "address > 10000000"}) {
        EXPECT_TRUE(Holds(text)) << text;
    }
    Transaction low = Read();
    low.address = 0x1000;
    EXPECT_TRUE(Holds("address == 1000", low));
    EXPECT_FALSE(Holds("address == 4096", low));
    EXPECT_FALSE(Holds("bytes == 10")) << "counts are decimal";
}

TEST(TransactionConditions, TakeTimesWithDecimals) {
    EXPECT_TRUE(Holds("latency > 0.2us and latency < 0.25us"));
    EXPECT_TRUE(Holds("time in 2.5us..0.0035ms"));
    EXPECT_TRUE(Holds("latency == 0.24us and latency == 0.2us and latency != 0.25us"));
    EXPECT_FALSE(Holds("latency > 0.24us"));
}

TEST(TransactionConditions, CompareCommandsAndEnds) {
    EXPECT_TRUE(Holds("command == \"Mem Rd\""));
    EXPECT_TRUE(Holds("command == \"mem rd\""));
    EXPECT_TRUE(Holds("command == \"Mem*\""));
    EXPECT_TRUE(Holds("command == \"*Rd\""));
    EXPECT_TRUE(Holds("command == \"*e*R*\""));
    EXPECT_TRUE(Holds("command != \"Mem Wr\""));
    EXPECT_FALSE(Holds("command == \"Mem R\""));
    EXPECT_FALSE(Holds("command == \"Mem Rdx\""));
    EXPECT_FALSE(Holds("command != \"*\""));
    EXPECT_TRUE(Holds("end == complete"));
    EXPECT_TRUE(Holds("end != disconnect-with-data"));
    EXPECT_FALSE(Holds("end == retry"));
}

TEST(TransactionConditions, CombineFromTheStrongestToTheWeakest) {
    // not, and, or
    EXPECT_TRUE(Holds("number == 12 or number == 1 and number == 2"));
    EXPECT_FALSE(Holds("(number == 12 or number == 1) and number == 2"));
    EXPECT_TRUE(Holds("not number == 1 and number == 12"));
    EXPECT_FALSE(Holds("not (number == 1 or number == 12)"));
    EXPECT_TRUE(Holds("not not number == 12"));
    EXPECT_TRUE(Holds("command == \"Mem Rd\" and address in 0xFEBF0000..0xFEBFFFFF and not (wait "
                      "<= 4 or end == retry)"));
    EXPECT_FALSE(Holds("number == 1 and number == 12 or number == 2 and number == 12"));
    EXPECT_TRUE(Holds("number == 1 and number == 12 or number == 12 and wait == 6"));
}

TEST(TransactionConditions, NestAsDeepAsTheyMay) {
    std::string text = "number == 12";
    for (int i = 0; i < 29; ++i) {
        text = "(number == 1 or number != 1 and " + text + ")";
    }
    EXPECT_TRUE(Holds(text));
    EXPECT_EQ(ErrorOf("(" + text + ")").message, "too many parentheses inside each other");
    EXPECT_EQ(ErrorOf(std::string(100000, '(')).place, 29U);
    std::string inverted = "number == 12";
    for (int i = 0; i < 1000; ++i) {
        inverted = "not " + inverted;
    }
    EXPECT_TRUE(Holds(inverted));
    EXPECT_FALSE(Holds("not " + inverted));
}

TEST(TransactionConditions, AreReadInUpperAndLowerCaseAndOverSeveralLines) {
    EXPECT_TRUE(Holds("NUMBER == 12 AND NOT Wait IN 1..5 Or END == RETRY"));
    EXPECT_TRUE(Holds("end == Complete\r\n\tand initiatorwait == 1\nand not HEADLESS\f"));
    EXPECT_TRUE(Holds("time == 3US"));
    EXPECT_FALSE(Holds("End != COMPLETE"));
    EXPECT_EQ(ErrorOf("WAIT > 5NS").message, "wait is not a time and takes no unit");
}

TEST(TransactionConditions, AMistakeInALongTextIsToldInAShortMessage) {
    const std::string longest(100000, 'a');
    for (const std::string& text :
         {longest, "`" + longest + "` == 1", "end == " + longest, "wait == " + longest,
          "wait > " + std::string(100000, '9'), "wait > 4 " + longest}) {
        EXPECT_LT(ErrorOf(text).message.size(), 600U) << text.substr(0, 20);
    }
}

TEST(TransactionConditions, DoNotHoldForWhatATransactionDoesNotHave) {
    Transaction bare;
    bare.number = 1;
    bare.isHeadless = true;
    bare.end = TransactionEnd::CutOff;
    for (const char* text :
         {"latency == 0", "latency != 0", "latency < 5", "gap != 1", "gap >= 0", "address == 0",
          "address != 1", "address < 5", "tag == 0", "tag != 1", "splitRequest != 1",
          "command == \"*\"", "command != \"x\"", "tag == 0x0X"}) {
        EXPECT_FALSE(Holds(text, bare, "")) << text;
    }
    EXPECT_TRUE(Holds("not latency < 5", bare, ""));
    EXPECT_TRUE(Holds("end == cut-off", bare, ""));
    EXPECT_TRUE(Holds("end != retry", bare, ""));
}

TEST(TransactionConditions, CompareTheTagsOfPciX) {
    Transaction split = Read();
    split.sequence = SplitSequence{0x11U << 16, 4, true, false};
    split.splitRequest = 9;
    const BoardTables board("PCIKite", BusPciX);
    const auto traffic = MakeBusTraffic(board.board, board.tables);
    const std::string tag = TransactionFields(*traffic).Text(split, TransactionField::Tag);
    EXPECT_EQ(tag, "0x11") << "as in the listing";
    EXPECT_TRUE(Holds("tag == " + tag, split));
    EXPECT_TRUE(Holds("tag == 0x11 and splitRequest == 9", split));
}

TEST(TransactionConditions, TakeSeveralEndsInQuotes) {
    Transaction each = Read();
    each.end = TransactionEnd::DisconnectWithoutData;
    EXPECT_TRUE(Holds("end == \"disconnect*\"", each));
    EXPECT_TRUE(Holds("end == \"Disconnect-Without-Data\"", each));
    EXPECT_FALSE(Holds("end != \"disconnect*\"", each));
    EXPECT_FALSE(Holds("end == \"*abort\"", each));
    EXPECT_TRUE(Holds("end != \"*abort\"", each));
}

TEST(TransactionConditions, KnowTheCommandsOfTheBus) {
    const BoardTables pci("PCIKite-1");
    const auto bus = TransactionBus::Of(*MakeBusTraffic(pci.board, pci.tables), pci.tables);
    const ExpressionError error = ErrorOf("wait > 4 and command == \"Mem Raed\"", bus);
    EXPECT_EQ(error.place, 24U);
    EXPECT_TRUE(error.message.starts_with("command has no label \"Mem Raed\": \"Mem Rd\", "))
        << error.message;
    for (const char* text : {"command == \"mem rd\"", "command == \"*Rd\"", "command != \"C/BE 5\"",
                             "command == \"DAC-Mem Rd\""}) {
        EXPECT_EQ(ErrorOf(text, bus).message, "none") << text;
    }
    const BoardTables vme("VMEKite-1", BusVme);
    EXPECT_EQ(ErrorOf("command == \"Mem Rd\"",
                      TransactionBus::Of(*MakeBusTraffic(vme.board, vme.tables), vme.tables))
                  .place,
              11U);
    const auto offered = [&](std::string_view text) {
        return TransactionCondition::Complete(text, text.size(), bus).texts;
    };
    EXPECT_THAT(offered("command == "), testing::IsSupersetOf({"\"Mem Rd\"", "\"I/O Wr\""}));
    EXPECT_THAT(offered("command != \"spc"), testing::ElementsAre("\"Spc Cyc\""));
    EXPECT_THAT(offered("command == i/o"), testing::ElementsAre("\"I/O Rd\"", "\"I/O Wr\""));
    EXPECT_THAT(offered("not COMMAND == \"Spc Cyc\" a"), testing::ElementsAre("and"));
}

TEST(TransactionConditions, FindHeadlessTransactions) {
    Transaction headless;
    headless.isHeadless = true;
    EXPECT_TRUE(Holds("headless", headless, ""));
    EXPECT_TRUE(Holds("headless and end == unknown", headless, ""));
    EXPECT_FALSE(Holds("not headless", headless, ""));
    EXPECT_FALSE(Holds("headless"));
    EXPECT_TRUE(Holds("not headless and wait == 6"));
}

TEST(TransactionConditions, TakeUnitsOfTimeForWaitsOnABusWithoutAClock) {
    EXPECT_EQ(ErrorOf("wait > 100ns", {.hasClock = true}).message,
              "wait is not a time and takes no unit");
    EXPECT_EQ(ErrorOf("wait > 100ns", {.hasClock = false}).message, "none");
    EXPECT_EQ(ErrorOf("initiatorWait > 1us", {.hasClock = false}).place, 17U);
    EXPECT_EQ(ErrorOf("gap > 1us and latency < 1ms and time < 1s", {.hasClock = true}).message,
              "none");
}

TEST(TransactionConditions, RefuseTheSignalsOfSamples) {
    const BoardTables board("PCIKite-1");
    const ExpressionError error =
        ErrorOf("wait > 4 and AD == 5", {.hasClock = true, .tables = &board.tables});
    EXPECT_EQ(error.place, 13U);
    EXPECT_TRUE(
        error.message.starts_with("\"AD\" is a signal of samples; transactions have fields"))
        << error.message;
}

TEST(TransactionConditions, CompleteFieldsOperatorsAndEnds) {
    const auto offered = [](std::string_view text) {
        return TransactionCondition::Complete(text, text.size(), {}).texts;
    };
    using testing::Contains;
    using testing::ElementsAre;
    EXPECT_THAT(offered("wa"), ElementsAre("wait"));
    EXPECT_THAT(offered("headless "), ElementsAre("and", "or"));
    EXPECT_THAT(offered("end "), ElementsAre("==", "!="));
    EXPECT_THAT(offered("end == disconnect-w"),
                ElementsAre("disconnect-with-data", "disconnect-without-data"));
    EXPECT_THAT(offered("(wait > 4 "), ElementsAre("and", "or", ")"));
    EXPECT_THAT(offered("wait > 4 and i"), ElementsAre("initiatorWait"));
}

TEST(TransactionConditions, UseKeptExpressions) {
    KeptExpressions kept;
    kept.Keep("slow", "wait > 5 or latency > 1us");
    kept.Keep("late-read", "@SLOW and command == \"*Rd\"");
    kept.Keep("edge", "FRAME falls");
    kept.Keep("wrong", "wait >");
    kept.Keep("value", "complete");
    kept.Keep("loop", "not @pool");
    kept.Keep("pool", "wait > 5 and @loop");
    TransactionBus bus;
    bus.kept = &kept;
    const auto holds = [&](std::string_view text) {
        const auto parsed = TransactionCondition::Parse(text, bus);
        return std::get<TransactionCondition>(parsed).Holds(Read(), "Mem Rd");
    };
    EXPECT_TRUE(holds("@slow"));
    EXPECT_TRUE(holds("not @slow or number == 12"));
    EXPECT_TRUE(holds("@Late-Read and (@slow)"));
    // As if in parentheses.
    EXPECT_FALSE(holds("not @slow and number == 12"));
    EXPECT_FALSE(holds("number == 1 and @slow"));

    const auto wrong = [&](std::string_view text) {
        const ExpressionError error = ErrorOf(text, bus);
        return std::to_string(error.place) + " " + error.message;
    };
    EXPECT_THAT(
        wrong("wait > 4 and @slwo"),
        testing::StartsWith(
            "13 there is no kept expression \"@slwo\": @slow, @late-read, @edge, @wrong, "));
    EXPECT_THAT(wrong("not @"),
                testing::StartsWith(
                    "4 there is no kept expression \"@\": @slow, @late-read, @edge, @wrong, @va"));
    EXPECT_THAT(
        wrong("(@edge"),
        testing::StartsWith(
            "1 @edge is wrong at \"FRAME falls\": there is no field \"FRAME\": number, sam"));
    EXPECT_THAT(wrong("end == retry or @value"),
                testing::HasSubstr("there is no field \"complete"));
    EXPECT_THAT(wrong("@wrong"),
                testing::StartsWith("0 @wrong is wrong at its end: expected a number"));
    EXPECT_THAT(
        wrong("@loop"),
        testing::StartsWith("0 @pool is wrong at \"@loop\": @loop uses itself through @pool"));
    EXPECT_EQ(ErrorOf("@slow").message, "there is no kept expression \"@slow\"");
    EXPECT_THAT(wrong("@slow or 5"), testing::StartsWith("9 expected a field: "));

    // Only those that can be used here are offered.
    const auto offered = [&](std::string_view text) {
        return TransactionCondition::Complete(text, text.size(), bus).texts;
    };
    EXPECT_THAT(offered("wait > 4 and @"), testing::ElementsAre("@slow", "@late-read"));
    EXPECT_THAT(offered("@l"), testing::ElementsAre("@late-read"));
    EXPECT_THAT(offered("@slow "), testing::ElementsAre("and", "or"));
    EXPECT_THAT(offered(""), testing::IsSupersetOf({"@slow", "wait"}));
}

TEST(TransactionConditions, KeptExpressionsCannotGrowWithoutEnd) {
    KeptExpressions kept;
    kept.Keep("a0", "wait > 4 and wait > 5");
    for (int i = 1; i < 28; ++i) {
        const std::string last = "@a" + std::to_string(i - 1);
        kept.Keep("a" + std::to_string(i), last + " and " + last);
    }
    TransactionBus bus;
    bus.kept = &kept;
    EXPECT_EQ(ErrorOf("@a9", bus).message, "none");
    EXPECT_THAT(ErrorOf("@a27", bus).message,
                testing::EndsWith(": the expression becomes too long with @a1"));
    for (int i = 1; i < 31; ++i) {
        kept.Keep("a" + std::to_string(i), "@a" + std::to_string(i - 1));
    }
    EXPECT_EQ(ErrorOf("@a28", bus).message, "none");
    EXPECT_EQ(ErrorOf("@a29", bus).message,
              "@a1 is wrong at \"@a0\": kept expressions and parentheses can be at most 29 inside "
              "each other");
}

TEST(TransactionConditions, OfferTheNearestCommands) {
    TransactionBus bus;
    bus.commands = {"Int Ack", "Mem Rd", "Mem Wr"};
    EXPECT_EQ(ErrorOf("command == Mem", bus).message,
              "expected a command in double quotes: \"Mem Rd\", \"Mem Wr\", \"Int Ack\"");
    EXPECT_EQ(ErrorOf("command == \"(begun before)\"", bus).message,
              "command has no label \"(begun before)\"; write headless");
    EXPECT_EQ(ErrorOf("command == \"Mem Rd\" or \"Mem Wr\"", bus).message,
              "write the name again: command == \"Mem Wr\"");
    for (int i = 0; i < 50; ++i) {
        bus.commands.push_back("Cfg " + std::to_string(i));
    }
    const std::string message = ErrorOf("command == \"Mem\"", bus).message;
    EXPECT_THAT(message, testing::StartsWith("command has no label \"Mem\": \"Mem Rd\", \"Mem "));
    EXPECT_THAT(message, testing::EndsWith(", ..."));
    EXPECT_LT(message.size(), 200U);
}

TEST(TransactionConditions, TakeTheTitlesOfTheTable) {
    EXPECT_TRUE(Holds("`I-WAIT` == 1"));
    EXPECT_TRUE(Holds("`i-wait` == 1 and `Wait` == 6"));
    Transaction answer = Read();
    answer.splitRequest = 7;
    EXPECT_TRUE(Holds("split == 7 and splitRequest == 7", answer));
}

TEST(TransactionConditions, TakeTheSignsOfProgrammingLanguages) {
    for (const char* text : {"wait == 6 && !headless", "wait == 5||words == 4", "! wait == 5",
                             "!!(wait == 6)&&!(wait == 5 || wait == 7)", "not ! wait == 6"}) {
        EXPECT_TRUE(Holds(text)) << text;
    }
    EXPECT_FALSE(Holds("wait == 6 && headless"));
    EXPECT_FALSE(Holds("wait == 5 || ! words == 4"));
}

/// Tables show them without decimals.
TEST(TransactionConditions, TakeTimesAbove999Seconds) {
    constexpr std::int64_t millisecond = 1'000'000;
    Transaction late = Read();
    late.time = 1234'567 * millisecond;
    ASSERT_EQ(FormatTime(late.time, false), "1234s");
    EXPECT_TRUE(Holds("time == 1234s", late));
    EXPECT_FALSE(Holds("time != 1234s", late));
    EXPECT_FALSE(Holds("time == 1233s or time == 1235s", late));
    EXPECT_TRUE(Holds("time > 1234s and time == 1234.5s", late));
    late.time = 999'500 * millisecond;
    EXPECT_FALSE(Holds("time == 999s", late)) << "a table shows 999.5s";
}

TEST(TransactionConditions, SayWhatIsWrongAndWhere) {
    struct Case {
        const char* text;
        std::size_t place;
        const char* begins;
    };
    for (const auto& [text, place, begins] : {
             Case{"", 0, "expected a field: number, "},
             Case{"  ", 2, "expected a field"},
             Case{"adress == 5", 0, "there is no field \"adress\": address, "},
             Case{"wait > 4 and", 12, "expected a field"},
             Case{"wait > 4 also end == retry", 9, "expected \"and\" or \"or\""},
             Case{"wait 4", 5, "expected ==, !=, <, <=, >, >= or in"},
             Case{"wait > many", 7, "expected a number"},
             Case{"wait == x1", 8, "a number with X begins with 0x or 0b"},
             Case{"wait == 0x", 8, "expected a hexadecimal number"},
             Case{"wait > 0xX", 7, "a number with X can only be compared with == and !="},
             Case{"wait in 5", 9, "expected \"..\""},
             Case{"wait in 5..4", 8, "the range ends before it begins"},
             Case{"address in 5..4", 11, "the range ends before it begins"},
             Case{"address == -1", 11, "address has no sign"},
             Case{"number == 99999999999999999999", 10, "the number is too large"},
             Case{"time > 10000000000s", 7, "the number is too large"},
             Case{"command > \"a\"", 8, "expected == or != after command"},
             Case{"command == Mem", 11, "expected a command in double quotes"},
             Case{"command == \"Mem", 15, "expected \" at the end"},
             Case{"end == retri", 7, "expected an end: retry, "},
             Case{"end == \"retri\"", 7, "end has no label \"retri\": \"retry\", "},
             Case{"gap == 0xX", 7, "a time has no X"},
             Case{"gap == 1.5", 7, "a time with decimals has a unit: ns, us, ms or s"},
             Case{"gap == 1.5ns", 7, "a time is a whole number of ns"},
             Case{"gap == 0.0001us", 7, "a time is a whole number of ns"},
             Case{"time > 9999999999.5s", 7, "the number is too large"},
             Case{"wait > 1.5", 7, "wait is a whole number"},
             Case{"wait > 1F", 7, "a hexadecimal number begins with 0x"},
             Case{"address == FEBG0000", 11, "expected a hexadecimal number"},
             Case{"gap == 1X", 7, "a number with X begins with 0x or 0b"},
             Case{"bytes == 0b12", 9, "expected a binary number"},
             Case{"words > 5us", 9, "words is not a time and takes no unit"},
             Case{"sample > 5 s", 11, "sample is not a time and takes no unit"},
             Case{"address > 5ns", 11, "address is not a time and takes no unit"},
             Case{"wait rises", 0, "wait has no edges"},
             Case{"headless == 1", 9, "headless is not compared; write \"headless\" or \"not "},
             Case{"headless != 1", 9, "headless is not compared"},
             Case{"command = \"Mem Rd\"", 8, "= is written =="},
             Case{"I-WAIT > 0", 0, "a name with a hyphen is put into backquotes: `I-WAIT`"},
             Case{"I-WAITS > 0", 0, "there is no field \"I\""},
             Case{"end == retry or complete", 16, "write the name again: end == complete"},
             Case{"end == retry or complete == 5", 16, "there is no field \"complete\""},
             Case{"end == retry or completed", 16, "there is no field \"completed\""},
             Case{"wait > 3 or 5", 12, "write the name again: wait > 5"},
             Case{"wait > 3 or \"x\"", 12, "expected a field: "},
             Case{"wait > 3 and bytes in 0..5 or 7", 30, "write the name again: bytes == 7"},
             Case{"address == 1.5", 11, "a hexadecimal number has no decimals"},
             Case{"`wait > 4", 9, "expected ` at the end of the name"},
             Case{"(wait > 4", 9, "expected \")\""},
             Case{"wait > 4)", 8, "expected \"and\" or \"or\""},
         }) {
        const ExpressionError error = ErrorOf(text);
        EXPECT_EQ(error.place, place) << text;
        EXPECT_TRUE(error.message.starts_with(begins)) << text << ": " << error.message;
    }
}

} // namespace busquill::test
