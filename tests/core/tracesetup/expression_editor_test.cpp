#include "tracesetup/expression_editor.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

ExpressionEditor Editor(std::string_view text) {
    return ExpressionEditor(ParseExpression(text));
}
std::string Text(const ExpressionEditor& editor) {
    return FormatExpression(editor.Bytes());
}

TEST(ExpressionEditor, AddsTokensFromTheHighestNibbleDown) {
    ExpressionEditor editor = Editor("None");
    editor.Add(1);
    editor.Add(TokenAnd);
    editor.Add(TokenNot);
    editor.Add(8);
    EXPECT_EQ(editor.Bytes(), (Expression{0, 0, 0, 0, 0, 0, 0xB8, 0x19}));
    EXPECT_EQ(Text(editor), "E1.~E8");
}

TEST(ExpressionEditor, ContinuesAfterExistingTokens) {
    ExpressionEditor editor = Editor("E1+E2");
    editor.Add(TokenXor);
    editor.Add(3);
    EXPECT_EQ(Text(editor), "E1+E2xE3");
}

TEST(ExpressionEditor, OffersTheTokensThatMayFollow) {
    struct Row {
        const char* text;
        bool operand;
        bool operation;
    };
    const Row rows[] = {
        {"None", true, false}, {"E1", false, true},  {"E8", false, true},  {"E1.", true, false},
        {"E1+", true, false},  {"~", true, false},   {"E1x", true, false}, {"(", true, false},
        {"(E1)", false, true}, {"All", true, false}, {"E1)", false, true}, // no bracket count
    };
    for (const Row& row : rows) {
        const ExpressionEditor editor = Editor(row.text);
        EXPECT_EQ(editor.TakesOperand(), row.operand) << row.text;
        EXPECT_EQ(editor.TakesOperator(), row.operation) << row.text;
    }
}

TEST(ExpressionEditor, SixteenTokensAreTheLimit) {
    ExpressionEditor editor = Editor("~~~~~~~~~~~~~~~");
    editor.Add(1);
    const Expression full = editor.Bytes();
    EXPECT_EQ(Text(editor), "~~~~~~~~~~~~~~~E1");
    EXPECT_TRUE(editor.TakesOperator()); // has no effect
    editor.Add(TokenAnd);
    editor.Add(2);
    EXPECT_EQ(editor.Bytes(), full);
    EXPECT_TRUE(editor.CanErase());
    editor.Backspace();
    EXPECT_EQ(Text(editor), "~~~~~~~~~~~~~~~");
    EXPECT_TRUE(editor.TakesOperand());
}

TEST(ExpressionEditor, FillsAGapAndRecognizesAFullExpression) {
    ExpressionEditor editor(Expression{0, 0, 0, 0, 0, 0, 0x09, 0x10}); // E1, nothing, AND
    EXPECT_TRUE(editor.TakesOperator());
    editor.Add(TokenOr);
    EXPECT_EQ(editor.Bytes(), (Expression{0, 0, 0, 0, 0, 0, 0x09, 0x1A}));
    ExpressionEditor full(Expression{0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11});
    full.Add(TokenOr);
    EXPECT_EQ(full.Bytes()[0], 0x11);
    EXPECT_TRUE(full.CanErase());
    full.Backspace();
    EXPECT_EQ(full.Bytes()[0], 0x10);
}

TEST(ExpressionEditor, AnEventReplacesAll) {
    ExpressionEditor editor = Editor("E2");
    editor.SetAll();
    EXPECT_TRUE(editor.CanErase());
    EXPECT_EQ(editor.Bytes(), expressionAll);
    editor.Add(1);
    EXPECT_EQ(Text(editor), "E1");
}

TEST(ExpressionEditor, ClearsAndRemovesTheLastToken) {
    ExpressionEditor editor = Editor("E1+E2");
    editor.Backspace();
    EXPECT_EQ(Text(editor), "E1+");
    editor.Clear();
    EXPECT_EQ(editor.Bytes(), expressionNone);
    EXPECT_FALSE(editor.CanErase());
    editor.Backspace(); // nothing to remove
    EXPECT_EQ(editor.Bytes(), expressionNone);
    editor.Add(5);
    EXPECT_EQ(Text(editor), "E5");
    editor = Editor("All");
    EXPECT_TRUE(editor.CanErase());
    editor.Backspace();
    EXPECT_EQ(editor.Bytes(), expressionNone);
    EXPECT_FALSE(editor.CanErase());
}

} // namespace
} // namespace busquill::test
