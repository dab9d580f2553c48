#include "signals/signal.h"
#include "signals/value_editor.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

void Type(ValueEditor& editor, const std::string& text) {
    for (const char c : text) {
        EXPECT_TRUE(editor.Type(c)) << c;
    }
}

TEST(ValueEditor, HexDigitsAreTypedAtTheCaret) {
    ValueEditor editor({0x34, 0x12}, {0xFF, 0xFF}, 16, Radix::Hex);
    EXPECT_EQ(editor.Text(), "1234");
    Type(editor, "aB");
    EXPECT_EQ(editor.Text(), "AB34");
    EXPECT_EQ(editor.Value(), (Bytes{0x34, 0xAB}));
    EXPECT_EQ(editor.Caret(), 2U);
    Type(editor, "x7");
    EXPECT_EQ(editor.Text(), "ABX7");
    EXPECT_EQ(editor.Value(), (Bytes{0x07, 0xAB}));
    EXPECT_EQ(editor.Mask(), (Bytes{0x0F, 0xFF}));
    EXPECT_EQ(editor.Caret(), 4U);
    Type(editor, "5");
    EXPECT_EQ(editor.Text(), "ABX7") << "there is no digit after the last";
}

TEST(ValueEditor, BinaryDigitsSetBits) {
    ValueEditor editor({0x00}, {0x00}, 6, Radix::Binary);
    EXPECT_EQ(editor.Text(), "XXXXXX");
    Type(editor, "10X1");
    EXPECT_EQ(editor.Text(), "10X1XX");
    EXPECT_EQ(editor.Value(), Bytes{0x24});
    EXPECT_EQ(editor.Mask(), Bytes{0x34});
    editor.Home();
    Type(editor, "x");
    EXPECT_EQ(editor.Text(), "X0X1XX");
    EXPECT_EQ(editor.Value(), Bytes{0x04}) << "an unknown bit is 0";
}

TEST(ValueEditor, OctalDigitsOnlyMoveTheCaret) {
    ValueEditor editor({0x3F}, {0xFF}, 8, Radix::Octal);
    EXPECT_EQ(editor.Text(), "077");
    Type(editor, "1X");
    EXPECT_EQ(editor.Text(), "077");
    EXPECT_EQ(editor.Caret(), 2U);
    EXPECT_FALSE(editor.Type('8'));
}

TEST(ValueEditor, OtherKeysAreIgnored) {
    ValueEditor editor({0}, {}, 8, Radix::Hex);
    EXPECT_FALSE(editor.Type('g'));
    EXPECT_FALSE(editor.Type('\r'));
    EXPECT_FALSE(editor.Type(' '));
    editor.SetRadix(Radix::Binary);
    EXPECT_FALSE(editor.Type('2'));
    EXPECT_EQ(editor.Caret(), 0U);
}

TEST(ValueEditor, TheCaretSkipsBlanks) {
    ValueEditor editor(Bytes(8), Bytes(8, 0xFF), 64, Radix::Hex);
    EXPECT_EQ(editor.Text(), "00000000 00000000");
    editor.PlaceCaret(7);
    Type(editor, "1");
    EXPECT_EQ(editor.Caret(), 9U);
    EXPECT_EQ(editor.Text(), "00000001 00000000");
    editor.Left();
    EXPECT_EQ(editor.Caret(), 7U);
    editor.Right();
    EXPECT_EQ(editor.Caret(), 9U);
    editor.PlaceCaret(99);
    EXPECT_EQ(editor.Caret(), 17U);
    editor.Right();
    EXPECT_EQ(editor.Caret(), 17U);
    editor.Home();
    editor.Left();
    EXPECT_EQ(editor.Caret(), 0U);
    editor.End();
    EXPECT_EQ(editor.Caret(), 17U);
}

TEST(ValueEditor, ADigitOverAPartlyKnownOneMakesItKnown) {
    ValueEditor editor({0x04}, {0x06}, 4, Radix::Hex);
    EXPECT_EQ(editor.Text(), "?");
    Type(editor, "9");
    EXPECT_EQ(editor.Text(), "9");
    EXPECT_EQ(editor.Mask(), Bytes{0x0F});
}

TEST(ValueEditor, TheTopDigitSetsFourBitsAtAnyWidth) {
    ValueEditor editor({0x00}, {0x00}, 6, Radix::Hex);
    Type(editor, "F");
    EXPECT_EQ(editor.Value(), Bytes{0xF0});
    EXPECT_EQ(editor.Mask(), Bytes{0xF0});
}

TEST(ValueEditor, ClearMakesEveryDigitUnknown) {
    ValueEditor masked({0x12}, {0xFF}, 8, Radix::Hex);
    masked.Clear();
    EXPECT_EQ(masked.Text(), "XX");
    ValueEditor known({0x12}, {}, 8, Radix::Hex);
    known.Clear();
    EXPECT_EQ(known.Text(), "00");
    Type(known, "X");
    EXPECT_EQ(known.Text(), "X0") << "shown, but not in the value";
    EXPECT_EQ(known.Value(), Bytes{0x00});
}

TEST(ValueEditor, AnotherRadixMovesTheCaretToTheLeft) {
    ValueEditor editor({0x5A}, {}, 8, Radix::Hex);
    editor.End();
    editor.SetRadix(Radix::Binary);
    EXPECT_EQ(editor.Text(), "01011010");
    EXPECT_EQ(editor.Caret(), 0U);
}

} // namespace
} // namespace busquill::test
