#include "core/dataline.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Runs the both-ends trim on a copy and hands back the result.
std::string trimmed(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    Generic::RemoveLeadingAndTrailingBlanks(buffer.data());
    return std::string(buffer.data());
}

std::string rightTrimmed(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    Generic::RemoveTrailingBlanks(buffer.data());
    return std::string(buffer.data());
}

// MemCpy needs a zeroed target with two spare bytes.
std::string repaired(const std::string& source, size_t length) {
    std::vector<char> target(length + 3, '\0');
    Generic::MemCpy(target.data(), source.data(), length);
    return std::string(target.data());
}

std::string repaired(const std::string& source) { return repaired(source, source.size()); }

}  // namespace

TEST(TrimBothEnds, RemovesBlanksTabsAndLineEnds) {
    EXPECT_EQ(trimmed("  \tNOM : W S355\r\n"), "NOM : W S355");
}

TEST(TrimBothEnds, KeepsBlanksInside) { EXPECT_EQ(trimmed("  a  b\tc  "), "a  b\tc"); }

TEST(TrimBothEnds, RemovesControlBytesAtTheEnds) {
    EXPECT_EQ(trimmed(std::string("\x01\x1f" "abc" "\x7f\x0b", 7)), "abc");
}

TEST(TrimBothEnds, RemovesBytesFrom128UpAtTheEndsAndKeepsThemInside) {
    EXPECT_EQ(trimmed("\xe9\xa0 caf\xe9 au lait \xe9\xff"), "caf\xe9 au lait");
}

TEST(TrimBothEnds, AllBlankTextBecomesEmpty) { EXPECT_EQ(trimmed(" \t\r\n\xe9 "), ""); }

TEST(TrimBothEnds, EmptyTextStaysEmpty) { EXPECT_EQ(trimmed(""), ""); }

TEST(TrimBothEnds, SingleCharacterStays) { EXPECT_EQ(trimmed("  x  "), "x"); }

TEST(TrimBothEnds, NullTextIsLeftAlone) {
    Generic::RemoveLeadingAndTrailingBlanks(nullptr);
    SUCCEED();
}

TEST(TrimBothEnds, TextOf8191CharactersIsAccepted) {
    const std::string text(8191, 'x');
    EXPECT_EQ(trimmed("  " + text + "  \n"), text);
}

TEST(TrimBothEnds, LongBlankSurroundingCountsOnlyTheTrimmedText) {
    const std::string text(8191, 'x');
    EXPECT_EQ(trimmed(std::string(20000, ' ') + text + std::string(20000, ' ')), text);
}

TEST(TrimBothEndsDeathTest, TextOf8192CharactersEndsTheProcess) {
    const std::string text(8192, 'x');
    EXPECT_DEATH(trimmed(" " + text + " "), "8192 characters or more");
}

TEST(TrimRight, RemovesOnlyTrailingBlanks) { EXPECT_EQ(rightTrimmed("  a b \t\r\n"), "  a b"); }

TEST(TrimRight, RemovesBytesFrom128UpAtTheEndOnly) {
    EXPECT_EQ(rightTrimmed("\xe9" "a\xe9" "b\xe9\xe9"), "\xe9" "a\xe9" "b");
}

TEST(TrimRight, AllBlankTextBecomesEmptyWithoutHarm) { EXPECT_EQ(rightTrimmed(" \t \r\n"), ""); }

TEST(TrimRight, TextOf8191CharactersIsAccepted) {
    const std::string text(8191, 'y');
    EXPECT_EQ(rightTrimmed(text + "   "), text);
}

TEST(TrimRightDeathTest, TextOf8192CharactersEndsTheProcess) {
    const std::string text(8192, 'y');
    EXPECT_DEATH(rightTrimmed(text + " "), "8192 characters or more");
}

TEST(NumberRepair, PutsBackTheExponentLetterBeforeATwoDigitExponent) {
    EXPECT_EQ(repaired("-1.2345-05"), "-1.2345e-05");
}

TEST(NumberRepair, PutsBackTheExponentLetterBeforeAOneDigitExponent) {
    EXPECT_EQ(repaired("1.234+5"), "1.234e+5");
}

TEST(NumberRepair, PositiveTwoDigitExponent) { EXPECT_EQ(repaired("-1.2346+03"), "-1.2346e+03"); }

TEST(NumberRepair, TextWithExponentLetterIsUntouched) {
    EXPECT_EQ(repaired("1.5e-05"), "1.5e-05");
    EXPECT_EQ(repaired("1.5E-5"), "1.5E-5");
}

TEST(NumberRepair, TextWithoutDecimalPointIsUntouched) { EXPECT_EQ(repaired("12345-05"), "12345-05"); }

TEST(NumberRepair, PlainDecimalIsUntouched) { EXPECT_EQ(repaired("-1.2345"), "-1.2345"); }

TEST(NumberRepair, CopiesOnlyTheGivenLength) { EXPECT_EQ(repaired("1.234+5XYZ", 7), "1.234e+5"); }

TEST(NumberRepair, ShortTextsAreNotReadBeforeTheirStart) {
    EXPECT_EQ(repaired("1."), "1.");
    EXPECT_EQ(repaired("."), ".");
    EXPECT_EQ(repaired("", 0), "");
}

TEST(NumberRepair, SignThreeFromTheEndIsTakenForAnExponentEvenInFront) {
    // The repair looks only at the last three places: a leading sign there is taken for the exponent's.
    EXPECT_EQ(repaired("-.5"), "e-.5");
}
