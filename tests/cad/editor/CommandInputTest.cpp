#include "cad/editor/CommandInput.h"

#include <gtest/gtest.h>

#include <vector>

using namespace veltarn::editor;
using Kind = InputRead::Kind;

namespace {

std::wstring word(CommandInput& input) {
    InputRead r = input.readWord();
    return r.kind == Kind::kText ? r.text : (r.kind == Kind::kCancel ? L"<cancel>" : L"<end>");
}
std::wstring line(CommandInput& input) {
    InputRead r = input.readLine();
    return r.kind == Kind::kText ? r.text : (r.kind == Kind::kCancel ? L"<cancel>" : L"<end>");
}

}  // namespace

TEST(CommandInput, wordsEndAtSpacesAndLineEndsLinesOnlyAtLineEnds) {
    CommandInput input;
    input.append(L"veltarn_sel_ext Big Road\n1 0\r\n\n  tail\rlast");
    EXPECT_EQ(word(input), L"veltarn_sel_ext");
    EXPECT_EQ(line(input), L"Big Road");
    EXPECT_EQ(word(input), L"1");
    EXPECT_EQ(word(input), L"0");   // "\r\n" is one line end
    EXPECT_EQ(word(input), L"");    // Enter alone
    EXPECT_EQ(word(input), L"tail");  // leading blanks skipped, a lone "\r" ends it
    EXPECT_EQ(word(input), L"last");  // the end of input ends the last word
    EXPECT_EQ(word(input), L"<end>");
    EXPECT_EQ(line(input), L"<end>");
}

TEST(CommandInput, ctrlCAndTheWordEscCancelAndLeaveWhatFollows) {
    CommandInput input;
    input.append(L"ab\x03" L"cd\nesc\nEsc x\n\x03\x03veltarn_draw Road\n");
    EXPECT_EQ(word(input), L"<cancel>");  // a half-typed word goes with the cancel
    EXPECT_EQ(word(input), L"cd");
    EXPECT_EQ(line(input), L"<cancel>");
    EXPECT_EQ(word(input), L"<cancel>");
    EXPECT_EQ(word(input), L"x");
    EXPECT_EQ(word(input), L"<cancel>");
    EXPECT_EQ(word(input), L"<cancel>");
    EXPECT_EQ(word(input), L"veltarn_draw");
    EXPECT_EQ(line(input), L"Road");
}

TEST(CommandInput, queuedTextComesBeforePrimaryInputInOrderSent) {
    std::vector<std::wstring> lines = {L"typed one\n", L"typed two\n"};
    std::size_t next = 0;
    CommandInput input([&]() -> std::optional<std::wstring> {
        if (next == lines.size()) return std::nullopt;
        return lines[next++];
    });
    EXPECT_EQ(word(input), L"typed");
    input.queue(L"first\n");
    input.queue(L"second\n");
    EXPECT_TRUE(input.hasQueued());
    EXPECT_EQ(word(input), L"first");
    EXPECT_EQ(word(input), L"second");
    EXPECT_EQ(word(input), L"one");
    EXPECT_EQ(next, 1u);  // the second line is pulled only when needed
    EXPECT_EQ(line(input), L"typed two");
    EXPECT_EQ(word(input), L"<end>");
}

TEST(CommandInput, expressionsRunToTheirClosingParenthesisAcrossLines) {
    CommandInput input;
    input.append(L"(MyLispFunction)\n(f \"a ) b\"\n 2)  \nnext\n(unclosed");
    EXPECT_EQ(input.readExpression().text, L"(MyLispFunction)");
    EXPECT_EQ(input.readExpression().text, L"(f \"a ) b\"\n 2)");
    EXPECT_EQ(word(input), L"next");
    InputRead unclosed = input.readExpression();
    EXPECT_EQ(unclosed.kind, Kind::kText);  // the end of input ends it; nothing is lost or hung
    EXPECT_EQ(unclosed.text, L"(unclosed");
}
