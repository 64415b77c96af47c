#include <gtest/gtest.h>

#include "tests/expression/casenames.h"

#include <string>
#include <vector>

#include "Util/Tokenizer.h"

using Util::Tokenizer;

namespace {

std::vector<Tokenizer::EToken> TokensOf(const char* text) {
    std::vector<Tokenizer::EToken> tokens;
    Tokenizer tokenizer(text);
    for (Tokenizer::EToken t = tokenizer.GetCurrentToken(); t != Tokenizer::EndOfInput;
         t = tokenizer.GetNextToken()) {
        tokens.push_back(t);
        if (tokens.size() > 64)
            break;
    }
    return tokens;
}

struct TokenCase {
    const char* text;
    std::vector<Tokenizer::EToken> tokens;
};

void PrintTo(const TokenCase& c, std::ostream* os) {
    *os << '"' << c.text << '"';
}

class TokenizerSequence : public ::testing::TestWithParam<TokenCase> {};

TEST_P(TokenizerSequence, GivesTheExpectedTokens) {
    EXPECT_EQ(TokensOf(GetParam().text), GetParam().tokens) << GetParam().text;
}

using T = Tokenizer;
INSTANTIATE_TEST_SUITE_P(
    Table, TokenizerSequence,
    ::testing::Values(TokenCase{"a<>b", {T::SymbolName, T::NotEqual, T::SymbolName}},
                      TokenCase{"a=b", {T::SymbolName, T::Equal, T::SymbolName}},
                      TokenCase{"a==b", {T::SymbolName, T::Equal, T::SymbolName}},
                      TokenCase{"a!=b", {T::SymbolName, T::NotEqual, T::SymbolName}},
                      TokenCase{"! a", {T::NotOp, T::SymbolName}},
                      TokenCase{"NOT And oR", {T::NotOp, T::AndOp, T::OrOp}},
                      TokenCase{"&& || :=", {T::AndOp, T::OrOp, T::AssignOp}},
                      TokenCase{"< <= > >=", {T::Less, T::LessEqual, T::Greater, T::GreaterEqual}},
                      TokenCase{"+*-/(),$",
                                {T::Plus, T::Times, T::Minus, T::Divide, T::LeftParen,
                                 T::RightParen, T::Comma, T::AliasMark}},
                      TokenCase{"-5", {T::Minus, T::Number}},
                      TokenCase{"TRUE False truex", {T::Number, T::Number, T::SymbolName}},
                      TokenCase{"'it''s'", {T::StringLiteral, T::StringLiteral}},
                      TokenCase{"a.b.c _x1", {T::SymbolName, T::SymbolName}},
                      TokenCase{"andy", {T::SymbolName}}, TokenCase{"&", {T::BadToken}},
                      TokenCase{"a | b", {T::SymbolName, T::BadToken, T::SymbolName}},
                      TokenCase{":x", {T::BadToken, T::SymbolName}},
                      TokenCase{"1e5x", {T::Number, T::SymbolName}},
                      TokenCase{". 5", {T::Number, T::Number}},
                      TokenCase{".x", {T::Number, T::SymbolName}},
                      TokenCase{" \t\n 7 \r", {T::Number}}),
    ztest::TextName());

TEST(TokenizerNumbers, AreReadWholeByStrtod) {
    struct Case {
        const char* text;
        double value;
        long end;
    } cases[] = {{"12", 12, 2},        {".5", 0.5, 2},  {"1e5", 1e5, 3},
                 {"2.5E-1+", 0.25, 6}, {"0x1A", 26, 4}, {"true", 1, 4},
                 {"FALSE", 0, 5},      {".", 0, 1},     {".+", 0, 1}};
    for (const Case& c : cases) {
        Tokenizer tokenizer(c.text);
        EXPECT_EQ(tokenizer.GetCurrentToken(), Tokenizer::Number) << c.text;
        EXPECT_DOUBLE_EQ(tokenizer.GetNumber(), c.value) << c.text;
        EXPECT_EQ(tokenizer.GetInputLineLocation(), c.end) << c.text;
    }
}

TEST(TokenizerKeywords, TrueAndFalseStillSetTheSymbol) {
    Tokenizer tokenizer("  True");
    ASSERT_EQ(tokenizer.GetCurrentToken(), Tokenizer::Number);
    EXPECT_EQ(tokenizer.GetSymbolLength(), 4u);
    char name[16];
    ASSERT_TRUE(tokenizer.GetSymbolName(name, sizeof name));
    EXPECT_STREQ(name, "True");
}

TEST(TokenizerPosition, DoesNotMoveOnBadTokenOrEnd) {
    Tokenizer tokenizer("?");
    EXPECT_EQ(tokenizer.GetCurrentToken(), Tokenizer::BadToken);
    EXPECT_EQ(tokenizer.GetInputLineLocation(), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(tokenizer.GetNextToken(), Tokenizer::BadToken);
        EXPECT_EQ(tokenizer.GetInputLineLocation(), 0);
    }

    tokenizer.SetBuffer("x ");
    EXPECT_EQ(tokenizer.GetNextToken(), Tokenizer::EndOfInput);
    const long end = tokenizer.GetInputLineLocation();
    EXPECT_EQ(end, 2);
    EXPECT_EQ(tokenizer.GetNextToken(), Tokenizer::EndOfInput);
    EXPECT_EQ(tokenizer.GetInputLineLocation(), end);
}

TEST(TokenizerStrings, QuotesHaveNoEscapesAndMustBeClosed) {
    Tokenizer tokenizer(R"("a'b\" 'x"y')");
    ASSERT_EQ(tokenizer.GetCurrentToken(), Tokenizer::StringLiteral);
    char text[32];
    ASSERT_TRUE(tokenizer.GetString(text, sizeof text));
    EXPECT_STREQ(text, "a'b\\");
    ASSERT_EQ(tokenizer.GetNextToken(), Tokenizer::StringLiteral);
    ASSERT_TRUE(tokenizer.GetString(text, sizeof text));
    EXPECT_STREQ(text, "x\"y");
    EXPECT_EQ(tokenizer.GetNextToken(), Tokenizer::EndOfInput);

    tokenizer.SetBuffer("\"abc"); // unterminated: bad, then the end
    EXPECT_EQ(tokenizer.GetCurrentToken(), Tokenizer::BadToken);
    EXPECT_EQ(tokenizer.GetInputLineLocation(), 4);
    EXPECT_EQ(tokenizer.GetNextToken(), Tokenizer::EndOfInput);
}

TEST(TokenizerCopies, FailRatherThanOverrun) {
    Tokenizer tokenizer("abcdef 'xyz'");
    char small[6] = "ZZZZZ";
    EXPECT_FALSE(tokenizer.GetSymbolName(small, sizeof small));
    EXPECT_STREQ(small, "");
    char exact[7];
    EXPECT_TRUE(tokenizer.GetSymbolName(exact, sizeof exact));
    EXPECT_STREQ(exact, "abcdef");
    EXPECT_FALSE(tokenizer.GetSymbolName(nullptr, 10));

    tokenizer.GetNextToken();
    char tiny[3];
    EXPECT_FALSE(tokenizer.GetString(tiny, sizeof tiny));
    char fits[4];
    EXPECT_TRUE(tokenizer.GetString(fits, sizeof fits));
    EXPECT_STREQ(fits, "xyz");
}

TEST(TokenizerCopies, AssignmentSharesTheText) {
    Tokenizer first("a + b");
    Tokenizer second;
    EXPECT_EQ(second.GetCurrentToken(), Tokenizer::EndOfInput);
    EXPECT_EQ(second.GetNextToken(), Tokenizer::EndOfInput);
    second = first;
    EXPECT_EQ(second.GetNextToken(), Tokenizer::Plus);
    EXPECT_EQ(first.GetNextToken(), Tokenizer::Plus); // independent positions
    EXPECT_EQ(second.GetNextToken(), Tokenizer::SymbolName);
}

TEST(TokenizerBytes, EveryByteValueEitherTokenisesOrIsBad) {
    for (int b = 1; b < 256; ++b) {
        const char text[3] = {static_cast<char>(b), 'x', '\0'};
        Tokenizer tokenizer(text);
        int steps = 0;
        Tokenizer::EToken t = tokenizer.GetCurrentToken();
        while (t != Tokenizer::EndOfInput && t != Tokenizer::BadToken && steps++ < 4)
            t = tokenizer.GetNextToken();
        EXPECT_LE(tokenizer.GetInputLineLocation(), 2) << b;
        if (b >= 128) {
            EXPECT_EQ(tokenizer.GetCurrentToken(), Tokenizer::BadToken) << b;
        }
    }
}

} // namespace
