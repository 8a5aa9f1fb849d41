#include "core/dataline.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned kEnd = DataLine::kEndFlagBit;

// A card file on disk, written in binary and opened for reading the way the driver opens it.
class CardFile {
public:
    explicit CardFile(const std::string& bytes) {
        static int counter = 0;
        m_Path = testing::TempDir() + "quillon_dataline_" + std::to_string(getpid()) + "_" +
                 std::to_string(counter++) + ".mat";
        FILE* out = std::fopen(m_Path.c_str(), "wb");
        if (out != nullptr) {
            std::fwrite(bytes.data(), 1, bytes.size(), out);
            std::fclose(out);
        }
        m_Stream = std::fopen(m_Path.c_str(), "rb");
    }
    ~CardFile() {
        if (m_Stream != nullptr) std::fclose(m_Stream);
        std::remove(m_Path.c_str());
    }
    CardFile(const CardFile&) = delete;
    CardFile& operator=(const CardFile&) = delete;

    FILE* stream() const { return m_Stream; }

private:
    std::string m_Path;
    FILE* m_Stream = nullptr;
};

std::string word(const DataLine& reader, unsigned slot) { return reader.words[slot]; }

// A reader whose word 0 holds `text`, as the driver leaves it after reading a keyword line.
void putWord(DataLine& reader, unsigned slot, const std::string& text) {
    std::strcpy(reader.words[slot], text.c_str());
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction, flags, sharing.

TEST(DataLineConstruction, StartsWithNoFlagsNoWordsAndZeroedSlots) {
    DataLine reader(nullptr);
    EXPECT_EQ(reader.flags, 0u);
    EXPECT_EQ(reader.wordCount, 0u);
    for (unsigned slot : {0u, 1u, 1000u, DataLine::kWordSlots - 1}) {
        const char* bytes = reader.words[slot];
        EXPECT_TRUE(std::all_of(bytes, bytes + DataLine::kWordSize, [](char c) { return c == 0; }));
    }
    EXPECT_TRUE(std::all_of(reader.line, reader.line + DataLine::kLineSize,
                            [](char c) { return c == 0; }));
    EXPECT_EQ(reader.getWordArray(), reader.words);
}

TEST(DataLineFlags, TakeBitNumbersNotBitValues) {
    DataLine reader(nullptr);
    reader.setFlag(3);
    EXPECT_EQ(reader.flags, 8u);
    EXPECT_TRUE(reader.isFlagOn(3));
    reader.setFlag(8);
    EXPECT_EQ(reader.flags, 8u | 256u);
    reader.clearFlag(3);
    EXPECT_FALSE(reader.isFlagOn(3));
    EXPECT_TRUE(reader.isFlagOn(8));
    reader.clearAll();
    EXPECT_EQ(reader.flags, 0u);
}

TEST(DataLineFlags, BitNumbersBeyondTheWordAreIgnored) {
    DataLine reader(nullptr);
    reader.setFlag(40);
    EXPECT_EQ(reader.flags, 0u);
    EXPECT_FALSE(reader.isFlagOn(40));
}

TEST(DataLineCopies, AssignmentSharesTheBuffersOfItsSource) {
    CardFile file("A B\n");
    DataLine source(file.stream());
    {
        DataLine other(nullptr);
        other = source;
        EXPECT_EQ(other.line, source.line);
        EXPECT_EQ(other.words, source.words);
        EXPECT_EQ(other.values, source.values);
        EXPECT_EQ(other.stream, source.stream);
        unsigned n = 5;
        other.readNextCardAsWords(n, " ", nullptr);
        EXPECT_EQ(word(source, 1), "B");
    }
    // The buffers outlive the copy that shared them.
    EXPECT_EQ(word(source, 0), "A");
}

TEST(DataLineCopies, CopyConstructionSharesTheBuffers) {
    DataLine source(nullptr);
    DataLine copy(source);
    EXPECT_EQ(copy.line, source.line);
    EXPECT_EQ(copy.fixedWords, source.fixedWords);
}

// ---------------------------------------------------------------------------------------------
// End keywords.

TEST(EndKeywords, EmptyListEndsTheSectionAtTheFirstNonBlankLine) {
    CardFile file("\n  \nanything at all\nmore\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", ""), reader.words);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_STREQ(reader.line, "anything at all");
}

TEST(EndKeywords, ShortKeywordEndsAtLongerLineInAnyCase) {
    CardFile file("FIN TABLE\nfin table\nFIN TAB\n");
    DataLine reader(file.stream());
    const char* list = "FIN TABLES,FIN TABL,FIN TABLE,FIN MATERIAUX,FIN NOM";
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", list);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    reader.clearFlag(kEnd);
    n = 5;
    reader.readNextCardAsWords(n, " ", list);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    reader.clearFlag(kEnd);
    n = 5;
    reader.readNextCardAsWords(n, " ", list);
    EXPECT_EQ(n, 2u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, ListOfCommasOnlyIsEmptyAndEndsNothing) {
    CardFile file("FIN NOM\n\n,\nx\n");
    DataLine reader(file.stream());
    for (const char* expected : {"FIN", ",", "x"}) {
        unsigned n = 5;
        reader.readNextCardAsWords(n, " ", ",,,");
        EXPECT_GT(n, 0u);
        EXPECT_FALSE(reader.isFlagOn(kEnd));
        EXPECT_EQ(word(reader, 0), expected);
    }
}

TEST(EndKeywords, KeywordFollowedByMoreTextEndsTheSection) {
    CardFile file("FIN LISTE and then some\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", "FIN LISTE");
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, LineWithCarriageReturnEqualsItsKeyword) {
    CardFile file("  FIN LISTE\r\nFIN LISTE\r\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", "FIN LISTE");
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_STREQ(reader.line, "FIN LISTE");
    reader.clearFlag(kEnd);
    n = 5;
    reader.readNextCard(n, "FIN LISTE");
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, KeywordPastThe127thByteOfTheListTakesNoPart) {
    const std::string list = std::string(126, 'Q') + ",FIN";
    CardFile file("FIN\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", list.c_str());
    EXPECT_EQ(n, 1u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, ListIsCutAt127BytesEvenInsideAKeyword) {
    // The cut leaves "F" of "FIN" as a keyword of its own, which then ends at "FOO".
    const std::string list = std::string(125, 'Q') + ",FIN";
    CardFile file("FOO\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", list.c_str());
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, ChangedListTextIsHonouredAtTheSameAddress) {
    CardFile file("FIN Y\nFIN Y\n");
    DataLine reader(file.stream());
    char list[16] = "FIN X";
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", list);
    EXPECT_EQ(n, 2u);
    std::strcpy(list, "FIN Y");
    n = 5;
    reader.readNextCardAsWords(n, " ", list);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(EndKeywords, AlternatingListsEachApply) {
    CardFile file("FIN A\nFIN A\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", "FIN B");
    EXPECT_EQ(n, 2u);
    n = 5;
    reader.readNextCardAsWords(n, " ", "FIN B,FIN A");
    EXPECT_EQ(n, 0u);
}

TEST(IsEndOfKeyWord, EmptyListIsNeverTheEnd) {
    DataLine reader(nullptr);
    EXPECT_FALSE(reader.IsEndOfKeyWord({}, "FIN NOM"));
}

TEST(IsEndOfKeyWord, EmptyKeywordMatchesEveryLine) {
    DataLine reader(nullptr);
    EXPECT_TRUE(reader.IsEndOfKeyWord({""}, "whatever"));
    EXPECT_TRUE(reader.IsEndOfKeyWord({""}, ""));
}

TEST(IsEndOfKeyWord, KeywordsArePrefixesWithoutCase) {
    DataLine reader(nullptr);
    EXPECT_TRUE(reader.IsEndOfKeyWord({"TABLE"}, "TABLES :"));
    EXPECT_TRUE(reader.IsEndOfKeyWord({"REACTION", "fin nom"}, "FIN NOM"));
    EXPECT_FALSE(reader.IsEndOfKeyWord({"FIN NOM"}, "FIN"));
    EXPECT_FALSE(reader.IsEndOfKeyWord({"TABLES"}, "TABLE"));
}

// ---------------------------------------------------------------------------------------------
// readNextCardAsWords.

TEST(ReadAsWords, SkipsBlankLinesAndCutsTheTrimmedLine) {
    CardFile file("\n   \r\n\t\nLABELS  A 1.5\tB\r\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", nullptr), reader.words);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(reader.wordCount, 3u);
    EXPECT_EQ(word(reader, 0), "LABELS");
    EXPECT_EQ(word(reader, 1), "A");
    EXPECT_EQ(word(reader, 2), "1.5\tB");
}

TEST(ReadAsWords, BlankAndTabSeparatorsCutAtTabsToo) {
    CardFile file("LABELS  A 1.5\tB\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " \t", nullptr);
    ASSERT_EQ(n, 4u);
    EXPECT_EQ(word(reader, 3), "B");
}

TEST(ReadAsWords, LargeSeparatorSetCutsAtEachOfItsCharacters) {
    CardFile file("A(1)=2.5, B:\t7\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " \t=():,", nullptr);
    ASSERT_EQ(n, 5u);
    EXPECT_EQ(word(reader, 0), "A");
    EXPECT_EQ(word(reader, 1), "1");
    EXPECT_EQ(word(reader, 2), "2.5");
    EXPECT_EQ(word(reader, 3), "B");
    EXPECT_EQ(word(reader, 4), "7");
}

TEST(ReadAsWords, SeparatorsInTheLineBecomeEndsOfWords) {
    // As with strtok, the first separator behind each word is overwritten with a NUL.
    CardFile file("ab  cd ef\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(std::memcmp(reader.line, "ab\0 cd\0ef\0", 10), 0);
}

TEST(ReadAsWords, LeavesTheSharedStrtokPositionAtTheEndOfTheLine) {
    CardFile file("a b c\n");
    DataLine reader(file.stream());
    char other[] = "x y";
    std::strtok(other, " ");
    unsigned n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(std::strtok(nullptr, " "), nullptr);
}

TEST(ReadAsWords, TokensAreTrimmedOfOtherBlanks) {
    CardFile file("a\t b\x01\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "a");
    EXPECT_EQ(word(reader, 1), "b");
}

TEST(ReadAsWords, NullSeparatorsMeanOneBlank) {
    CardFile file("a\tb c\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, nullptr, nullptr);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "a\tb");
}

TEST(ReadAsWords, OneWantedWordWithEmptySeparatorsIsTheWholeTrimmedLine) {
    CardFile file("   NOM : W  S355J2G3 mechanical \r\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsWords(n, "", nullptr);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(reader.wordCount, 1u);
    EXPECT_EQ(word(reader, 0), "NOM : W  S355J2G3 mechanical");
}

TEST(ReadAsWords, NoWantedWordStillGivesTheWholeLineButCountZero) {
    CardFile file("x y\n");
    DataLine reader(file.stream());
    unsigned n = 0;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(reader.wordCount, 1u);
    EXPECT_EQ(word(reader, 0), "x y");
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadAsWords, WholeLineWordKeepsWhatLiesBehindItsEnd) {
    CardFile file("abcdefgh\nxy\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsWords(n, "", nullptr);
    n = 1;
    reader.readNextCardAsWords(n, "", nullptr);
    EXPECT_EQ(word(reader, 0), "xy");
    EXPECT_EQ(reader.words[0][3], 'd');
}

TEST(ReadAsWords, TokenSlotIsClearedBeforeTheCopy) {
    CardFile file("abcdefgh z\nxy q\n");
    DataLine reader(file.stream());
    unsigned n = 2;
    reader.readNextCardAsWords(n, " ", nullptr);
    n = 2;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(word(reader, 0), "xy");
    EXPECT_EQ(reader.words[0][3], '\0');
}

TEST(ReadAsWords, SlotsBehindTheLastWordKeepEarlierWords) {
    CardFile file("a b c d\nx y\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 2), "c");
    EXPECT_EQ(word(reader, 3), "d");
}

TEST(ReadAsWords, LineOfSeparatorsOnlyGivesNoWordsWithoutEndingTheSection) {
    CardFile file(":::\nnext\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    EXPECT_NE(reader.readNextCardAsWords(n, ":", nullptr), nullptr);
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(reader.wordCount, 0u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
    n = 5;
    reader.readNextCardAsWords(n, ":", nullptr);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(word(reader, 0), "next");
}

TEST(ReadAsWords, CommentAndStarLinesAreData) {
    CardFile file("$ comment\n* star\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "$");
    n = 5;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "*");
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadAsWords, EndOfFileGivesZeroWordsWithoutTheEndFlagAndANonNullResult) {
    CardFile file("only\n\n  \n");
    DataLine reader(file.stream());
    unsigned n = 5;
    reader.readNextCardAsWords(n, " ", "FIN");
    n = 5;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", "FIN"), reader.words);
    EXPECT_EQ(n, 0u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
    EXPECT_STREQ(reader.line, "");
}

TEST(ReadAsWords, EndLineStaysInTheLineBuffer) {
    CardFile file("FIN LISTE\n");
    DataLine reader(file.stream());
    unsigned n = 5;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", "FIN LISTE"), reader.words);
    EXPECT_EQ(n, 0u);
    EXPECT_STREQ(reader.line, "FIN LISTE");
}

TEST(ReadAsWords, SetEndFlagAnswersAtOnceWithNull) {
    CardFile file("first\nsecond\n");
    DataLine reader(file.stream());
    std::strcpy(reader.line, "left over");
    reader.setFlag(kEnd);
    unsigned n = 5;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", nullptr), nullptr);
    EXPECT_EQ(n, 0u);
    EXPECT_STREQ(reader.line, "");
    reader.clearFlag(kEnd);
    n = 5;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(word(reader, 0), "first");
}

TEST(ReadAsWords, WordsPastTheLastSlotAreNotStored) {
    std::string text;
    for (int i = 0; i < 2100; ++i) text += "w ";
    CardFile file(text + "\n");
    DataLine reader(file.stream());
    unsigned n = 4000;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(n, DataLine::kWordSlots);
    EXPECT_EQ(word(reader, DataLine::kWordSlots - 1), "w");
}

TEST(ReadAsWords, OverlongWordIsCutToItsSlot) {
    CardFile file(std::string(3000, 'x') + " y\n");
    DataLine reader(file.stream());
    unsigned n = 32;
    reader.readNextCardAsWords(n, " ", nullptr);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(std::strlen(reader.words[0]), DataLine::kWordSize - 1);
    EXPECT_EQ(word(reader, 1), "y");
}

TEST(ReadAsWords, LineOf8191CharactersIsReadButNotWholeIntoASlot) {
    CardFile file(std::string(8191, 'x') + "\n" + std::string(8191, 'z') + "\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsWords(n, "", nullptr);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(std::strlen(reader.line), 8191u);
    EXPECT_EQ(std::strlen(reader.words[0]), DataLine::kWordSize - 1);
    n = 5;
    reader.readNextCardAsWords(n, " ", nullptr);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(std::strlen(reader.words[0]), DataLine::kWordSize - 1);
}

TEST(ReadAsWordsDeathTest, LineOf8192CharactersEndsTheProcess) {
    EXPECT_DEATH(
        {
            CardFile file(std::string(8192, 'x') + "\n");
            DataLine reader(file.stream());
            unsigned n = 1;
            reader.readNextCardAsWords(n, "", nullptr);
        },
        "8192 characters or more");
}

TEST(ReadRawDataDeathTest, LineOf8192CharactersEndsTheProcess) {
    EXPECT_DEATH(
        {
            CardFile file(std::string(8192, 'x') + "\n");
            DataLine reader(file.stream());
            unsigned n = 0;
            reader.readRawData(n, nullptr);
        },
        "8192 characters or more");
}

TEST(ReadAsWords, AccentedBytesAreLostAtTheEndsAndKeptInside) {
    CardFile file("\xe9t\xe9 caf\xe9\xe9\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsWords(n, "", nullptr);
    EXPECT_EQ(word(reader, 0), "t\xe9 caf");
}

// ---------------------------------------------------------------------------------------------
// readNextCard().

TEST(ReadNextCard, SkipsBlankAndCommentLinesAndTrims) {
    CardFile file("\n$ comment\n  \t $ indented comment\n   NOM : W S355\r\n");
    DataLine reader(file.stream());
    EXPECT_EQ(reader.readNextCard(), reader.line);
    EXPECT_STREQ(reader.line, "NOM : W S355");
    EXPECT_EQ(word(reader, 0), "NOM : W S355");
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCard, StarLineSetsTheEndFlagAndStaysInTheLine) {
    CardFile file("* end of data\nNEXT\n");
    DataLine reader(file.stream());
    EXPECT_STREQ(reader.readNextCard(), "* end of data");
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_STREQ(reader.readNextCard(), "");
    reader.clearFlag(kEnd);
    EXPECT_STREQ(reader.readNextCard(), "NEXT");
}

TEST(ReadNextCard, EndOfFileAfterACommentGivesAnEmptyLine) {
    CardFile file("$ only a comment\n");
    DataLine reader(file.stream());
    EXPECT_STREQ(reader.readNextCard(), "");
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCard, EndOfFileAfterBlankLinesGivesAnEmptyLine) {
    CardFile file("  \n\r\n");
    DataLine reader(file.stream());
    EXPECT_STREQ(reader.readNextCard(), "");
}

// ---------------------------------------------------------------------------------------------
// readNextCard(n, endKeyword).

TEST(ReadNextCardToKeyword, WholeLineEqualToTheKeywordEnds) {
    CardFile file("\n  FIN LISTE \r\n");
    DataLine reader(file.stream());
    unsigned n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN LISTE"), "FIN LISTE");
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCardToKeyword, ComparisonIsExactAndCaseSensitive) {
    CardFile file("fin liste\nFIN LISTE X\n");
    DataLine reader(file.stream());
    unsigned n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN LISTE"), "fin liste");
    EXPECT_EQ(n, 7u);
    EXPECT_STREQ(reader.readNextCard(n, "FIN LISTE"), "FIN LISTE X");
    EXPECT_EQ(n, 7u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCardToKeyword, CommentAndStarLinesAreData) {
    CardFile file("$ c\n* s\n");
    DataLine reader(file.stream());
    unsigned n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN"), "$ c");
    EXPECT_STREQ(reader.readNextCard(n, "FIN"), "* s");
    EXPECT_EQ(n, 7u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCardToKeyword, NullKeywordTestsNothing) {
    CardFile file("FIN LISTE\n");
    DataLine reader(file.stream());
    unsigned n = 7;
    reader.readNextCard(n, nullptr);
    EXPECT_EQ(n, 7u);
}

TEST(ReadNextCardToKeyword, EndOfFileGivesZeroAndAnEmptyLine) {
    CardFile file("\n\n");
    DataLine reader(file.stream());
    unsigned n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN"), "");
    EXPECT_EQ(n, 0u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadNextCardToKeyword, SetEndFlagAnswersAtOnce) {
    CardFile file("data\n");
    DataLine reader(file.stream());
    reader.setFlag(kEnd);
    unsigned n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN"), "");
    EXPECT_EQ(n, 0u);
    reader.clearFlag(kEnd);
    n = 7;
    EXPECT_STREQ(reader.readNextCard(n, "FIN"), "data");
}

// ---------------------------------------------------------------------------------------------
// readNextCardAsDoubles.

TEST(ReadAsDoubles, CommaLineGivesOneNumberPerToken) {
    CardFile file("1.5,2.5,,3\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    EXPECT_EQ(reader.readNextCardAsDoubles(n), reader.values);
    ASSERT_EQ(n, 3u);
    EXPECT_DOUBLE_EQ(reader.values[0], 1.5);
    EXPECT_DOUBLE_EQ(reader.values[1], 2.5);
    EXPECT_DOUBLE_EQ(reader.values[2], 3.0);
}

TEST(ReadAsDoubles, LineWithoutCommasGivesOneNumberFromItsFirst2048Columns) {
    CardFile file("12.5 13.5\n");
    DataLine reader(file.stream());
    unsigned n = 3;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 12.5);
}

TEST(ReadAsDoubles, FieldsAre2048ColumnsWide) {
    CardFile file("1" + std::string(2047, ' ') + "2\n");
    DataLine reader(file.stream());
    unsigned n = 2;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 2u);
    EXPECT_DOUBLE_EQ(reader.values[0], 1.0);
    EXPECT_DOUBLE_EQ(reader.values[1], 2.0);
}

TEST(ReadAsDoubles, ColumnsPastAShortLineReadAsNothingAfterALongLine) {
    CardFile file("1" + std::string(2047, ' ') + "2" + std::string(2047, ' ') + "5\n3\n");
    DataLine reader(file.stream());
    unsigned n = 3;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 3u);
    n = 3;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 3.0);
}

TEST(ReadAsDoubles, ColumnsPastAShortLineReadAsNothingAfterACutCommaLine) {
    // Cutting at commas leaves the rest of the long line behind the first number's end.
    CardFile file("1," + std::string(3000, '7') + ",4\n3\n");
    DataLine reader(file.stream());
    unsigned n = 2;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 3u);
    n = 2;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 3.0);
}

TEST(ReadAsDoubles, CommentLinesAreSkipped) {
    CardFile file("$ comment\n$\n4\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 4.0);
}

TEST(ReadAsDoubles, StarLineEndsAndTheFlagHoldsUntilCleared) {
    CardFile file("* end\n5\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsDoubles(n);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    n = 1;
    EXPECT_EQ(reader.readNextCardAsDoubles(n), reader.values);
    EXPECT_EQ(n, 0u);
    reader.clearFlag(kEnd);
    n = 1;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 5.0);
}

TEST(ReadAsDoubles, BlankLineIsOneEmptyResult) {
    CardFile file("\n7\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsDoubles(n);
    EXPECT_EQ(n, 0u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
    n = 1;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 7.0);
}

TEST(ReadAsDoubles, MarksCountOnlyInTheFirstColumn) {
    CardFile file(" $x\n *\n");
    DataLine reader(file.stream());
    unsigned n = 1;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 0.0);
    n = 1;
    reader.readNextCardAsDoubles(n);
    EXPECT_EQ(n, 1u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadAsDoubles, EndOfFileGivesZero) {
    CardFile file("$ only\n");
    DataLine reader(file.stream());
    unsigned n = 2;
    EXPECT_EQ(reader.readNextCardAsDoubles(n), reader.values);
    EXPECT_EQ(n, 0u);
}

TEST(ReadAsDoubles, MoreFieldsThanTheLineHoldsAreRefusedWithoutHarm) {
    CardFile file("8\n");
    DataLine reader(file.stream());
    unsigned n = 5000;
    reader.readNextCardAsDoubles(n);
    ASSERT_EQ(n, 1u);
    EXPECT_DOUBLE_EQ(reader.values[0], 8.0);
}

// ---------------------------------------------------------------------------------------------
// readRawData.

TEST(ReadRawData, WordKeepsTheRawLineAndBlankLinesAreKept) {
    CardFile file("  text with blanks \r\n\n$ c\n* s\n");
    DataLine reader(file.stream());
    unsigned n = 0;
    EXPECT_EQ(reader.readRawData(n, "FIN COMMENTAIRES"), reader.words);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(word(reader, 0), "  text with blanks \r\n");
    EXPECT_STREQ(reader.line, "text with blanks");
    n = 0;
    reader.readRawData(n, "FIN COMMENTAIRES");
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(word(reader, 0), "\n");
    for (const char* expected : {"$ c\n", "* s\n"}) {
        n = 0;
        reader.readRawData(n, "FIN COMMENTAIRES");
        EXPECT_EQ(n, 1u);
        EXPECT_EQ(word(reader, 0), expected);
    }
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadRawData, EndKeywordGivesNullAnEmptyWordAndTheFlag) {
    CardFile file("  fin commentaires extra\r\nafter\n");
    DataLine reader(file.stream());
    unsigned n = 9;
    EXPECT_EQ(reader.readRawData(n, "FIN COMMENTAIRES"), nullptr);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_EQ(word(reader, 0), "");
    EXPECT_STREQ(reader.line, "fin commentaires extra");
    n = 9;
    EXPECT_EQ(reader.readRawData(n, "FIN COMMENTAIRES"), nullptr);
    EXPECT_EQ(n, 0u);
    reader.clearFlag(kEnd);
    n = 9;
    reader.readRawData(n, "FIN COMMENTAIRES");
    EXPECT_EQ(word(reader, 0), "after\n");
}

TEST(ReadRawData, EndOfFileLeavesTheCountAndReturnsNull) {
    CardFile file("last\n");
    DataLine reader(file.stream());
    unsigned n = 0;
    reader.readRawData(n, "FIN");
    n = 5;
    EXPECT_EQ(reader.readRawData(n, "FIN"), nullptr);
    EXPECT_EQ(n, 5u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadRawData, NullKeywordsTestNothing) {
    CardFile file("FIN COMMENTAIRES\n");
    DataLine reader(file.stream());
    unsigned n = 0;
    EXPECT_NE(reader.readRawData(n, nullptr), nullptr);
    EXPECT_EQ(n, 1u);
}

TEST(ReadRawData, OverlongRawLineIsCutToItsSlot) {
    CardFile file(std::string(3000, ' ') + "x" + std::string(3000, ' ') + "\n");
    DataLine reader(file.stream());
    unsigned n = 0;
    reader.readRawData(n, nullptr);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(std::strlen(reader.words[0]), DataLine::kWordSize - 1);
    EXPECT_STREQ(reader.line, "x");
}

// ---------------------------------------------------------------------------------------------
// readToEnd.

TEST(ReadToEnd, AppendsRawLinesUpToTheEndKeyword) {
    CardFile file("a\n  b \r\n\nFIN X more\nc\n");
    DataLine reader(file.stream());
    std::string out = "pre:";
    reader.readToEnd(out, "FIN X");
    EXPECT_EQ(out, "pre:a\n  b \r\n\n");
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_EQ(word(reader, 0), "");
    reader.clearFlag(kEnd);
    EXPECT_STREQ(reader.readNextCard(), "c");
}

TEST(ReadToEnd, RunsToEndOfFileWithoutTheKeyword) {
    CardFile file("a\nb\n");
    DataLine reader(file.stream());
    std::string out;
    reader.readToEnd(out, nullptr);
    EXPECT_EQ(out, "a\nb\n");
    EXPECT_FALSE(reader.isFlagOn(kEnd));
}

TEST(ReadToEnd, SetEndFlagAppendsNothing) {
    CardFile file("a\n");
    DataLine reader(file.stream());
    reader.setFlag(kEnd);
    std::string out = "kept";
    reader.readToEnd(out, "FIN");
    EXPECT_EQ(out, "kept");
}

// ---------------------------------------------------------------------------------------------
// splitIntoWords on a word.

TEST(SplitWords, OneSeparatorCountedPerTokenStartsTheRestEarly) {
    DataLine reader(nullptr);
    putWord(reader, 0, "a b  c d");
    unsigned index = 0;
    unsigned n = 3;
    EXPECT_EQ(reader.splitIntoWords(index, " ", n, false), reader.words);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(word(reader, 0), "a");
    EXPECT_EQ(word(reader, 1), "b");
    EXPECT_EQ(word(reader, 2), " c d");
    EXPECT_EQ(index, 2u);
}

TEST(SplitWords, NameLineRestStartsTwoEarlyBehindTheColon) {
    DataLine reader(nullptr);
    putWord(reader, 0, "NOM : W S355J2G3 mechanical mm kg s");
    unsigned index = 0;
    unsigned n = 5;
    reader.splitIntoWords(index, ": ", n, false);
    ASSERT_EQ(n, 5u);
    EXPECT_EQ(word(reader, 0), "NOM");
    EXPECT_EQ(word(reader, 1), "W");
    EXPECT_EQ(word(reader, 3), "mechanical");
    EXPECT_EQ(word(reader, 4), "l mm kg s");
    EXPECT_EQ(index, 4u);
}

TEST(SplitWords, NameLineWithExactlyTheWantedWords) {
    DataLine reader(nullptr);
    putWord(reader, 0, "NOM : W S355J2G3 mechanical mm");
    unsigned index = 0;
    unsigned n = 5;
    reader.splitIntoWords(index, ": ", n, false);
    ASSERT_EQ(n, 5u);
    EXPECT_EQ(word(reader, 2), "S355J2G3");
    EXPECT_EQ(word(reader, 4), "mm");
    EXPECT_EQ(index, 5u);
}

TEST(SplitWords, AllStoresEveryTokenWhateverWasWanted) {
    DataLine reader(nullptr);
    putWord(reader, 0, "a b  c d");
    putWord(reader, 4, "old");
    unsigned index = 0;
    unsigned n = 2;
    reader.splitIntoWords(index, " ", n, true);
    ASSERT_EQ(n, 4u);
    EXPECT_EQ(word(reader, 2), "c");
    EXPECT_EQ(word(reader, 3), "d");
    EXPECT_EQ(word(reader, 4), "");
    EXPECT_EQ(index, 4u);
}

TEST(SplitWords, AllWithALargerWantedCountEmptiesTheSlotsUpToIt) {
    DataLine reader(nullptr);
    putWord(reader, 0, "a b");
    putWord(reader, 5, "junk");
    putWord(reader, 9, "junk");
    putWord(reader, 10, "kept");
    unsigned index = 0;
    unsigned n = 10;
    reader.splitIntoWords(index, " ", n, true);
    EXPECT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 5), "");
    EXPECT_EQ(word(reader, 9), "");
    EXPECT_EQ(word(reader, 10), "kept");
}

TEST(SplitWords, FewerTokensThanWantedEmptiesTheRestOfTheSlots) {
    DataLine reader(nullptr);
    putWord(reader, 0, "a b");
    putWord(reader, 3, "junk");
    unsigned index = 0;
    unsigned n = 5;
    reader.splitIntoWords(index, " ", n, false);
    EXPECT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 3), "");
    EXPECT_EQ(index, 2u);
}

TEST(SplitWords, WantedCountOfZeroSetsTheEndFlag) {
    DataLine reader(nullptr);
    putWord(reader, 0, "a b");
    unsigned index = 0;
    unsigned n = 0;
    EXPECT_EQ(reader.splitIntoWords(index, " ", n, false), nullptr);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
    EXPECT_EQ(word(reader, 0), "a b");
}

TEST(SplitWords, EmptySourceSetsTheEndFlag) {
    DataLine reader(nullptr);
    unsigned index = 0;
    unsigned n = 5;
    EXPECT_EQ(reader.splitIntoWords(index, " ", n, false), nullptr);
    EXPECT_EQ(n, 0u);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

TEST(SplitWords, SourceOfSeparatorsOnlyEmptiesTheWantedSlotsWithoutAFlag) {
    DataLine reader(nullptr);
    putWord(reader, 0, "::");
    putWord(reader, 1, "junk");
    putWord(reader, 2, "junk");
    unsigned index = 0;
    unsigned n = 3;
    EXPECT_EQ(reader.splitIntoWords(index, ":", n, false), reader.words);
    EXPECT_EQ(n, 0u);
    EXPECT_EQ(index, 0u);
    EXPECT_FALSE(reader.isFlagOn(kEnd));
    EXPECT_EQ(word(reader, 0), "");
    EXPECT_EQ(word(reader, 2), "");
}

TEST(SplitWords, LeadingSeparatorsStartTheRestEarly) {
    DataLine reader(nullptr);
    putWord(reader, 0, " a b c");
    unsigned index = 0;
    unsigned n = 2;
    reader.splitIntoWords(index, " ", n, false);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 1), " b c");
}

TEST(SplitWords, SourceMayBeAnyWord) {
    DataLine reader(nullptr);
    putWord(reader, 3, "x=1");
    unsigned index = 3;
    unsigned n = 2;
    reader.splitIntoWords(index, "=", n, false);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "x");
    EXPECT_EQ(word(reader, 1), "1");
    EXPECT_EQ(index, 2u);
}

TEST(SplitWords, NullSeparatorsMeanOneBlank) {
    DataLine reader(nullptr);
    putWord(reader, 0, "p\tq r");
    unsigned index = 0;
    unsigned n = 5;
    reader.splitIntoWords(index, nullptr, n, true);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(word(reader, 0), "p\tq");
}

struct SplitCase {
    const char* source;
    const char* separators;
    unsigned wanted;
    bool all;
    std::vector<std::string> expected;
    unsigned expectedIndex;
};

// Keeps the test names stable and readable: a case is named by its wanted count.
void PrintTo(const SplitCase& c, std::ostream* os) { *os << "wanted_" << c.wanted << (c.all ? "_all" : ""); }

class SplitWithSeparatorSets : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitWithSeparatorSets, CutsAsTheSectionExpects) {
    const SplitCase& c = GetParam();
    DataLine reader(nullptr);
    putWord(reader, 0, c.source);
    unsigned index = 0;
    unsigned n = c.wanted;
    ASSERT_NE(reader.splitIntoWords(index, c.separators, n, c.all), nullptr);
    ASSERT_EQ(n, c.expected.size());
    for (unsigned i = 0; i < n; ++i) EXPECT_EQ(word(reader, i), c.expected[i]) << "word " << i;
    EXPECT_EQ(index, c.expectedIndex);
}

INSTANTIATE_TEST_SUITE_P(
    InUse, SplitWithSeparatorSets,
    testing::Values(
        SplitCase{"YIELD -&12&", " -&", 2, false, {"YIELD", "12"}, 2},
        SplitCase{"YIELD -&12& -&13&", " -&", 2, false, {"YIELD", "-&12& -&13&"}, 1},
        SplitCase{"A(1) = 2.5", "=() ", 1, true, {"A", "1", "2.5"}, 3},
        SplitCase{"C\t0.2", " \t", 2, true, {"C", "0.2"}, 2},
        SplitCase{" 1 : Ferrite", ":", 2, false, {"1", "Ferrite"}, 2},
        SplitCase{" 1 : Ferrite : extra", ":", 2, false, {"1", " Ferrite : extra"}, 1},
        SplitCase{"name = value", "=", 2, false, {"name", "value"}, 2},
        SplitCase{"20000 / 31 -&201&", "/", 2, false, {"20000", "31 -&201&"}, 2},
        SplitCase{"0.12%C", "%", 2, false, {"0.12", "C"}, 2},
        SplitCase{"0.1-0.2%", "%-", 2, false, {"0.1", "0.2"}, 2},
        SplitCase{"MATERIAL 1 PHASE 6", " ", 4, false, {"MATERIAL", "1", "PHASE", "6"}, 4},
        SplitCase{"NOM : W S355 mech mm", ": ", 5, false, {"NOM", "W", "S355", "mech", "mm"}, 5}));

// ---------------------------------------------------------------------------------------------
// splitIntoWords by widths.

TEST(SplitColumns, CopiesRunsOfTheGivenWidths) {
    DataLine reader(nullptr);
    std::strcpy(reader.line, "ABCDEFGHIJKL");
    reader.wordCount = 5;
    const unsigned widths[] = {5, 3, 4};
    unsigned n = 3;
    EXPECT_EQ(reader.splitIntoWords(n, widths), reader.fixedWords);
    ASSERT_EQ(n, 3u);
    EXPECT_STREQ(reader.fixedWords[0], "ABCDE");
    EXPECT_STREQ(reader.fixedWords[1], "FGH");
    EXPECT_STREQ(reader.fixedWords[2], "IJKL");
    EXPECT_EQ(reader.column, 12u);
    EXPECT_EQ(reader.fixedCount, 3u);
    EXPECT_EQ(reader.wordCount, 0u);
}

TEST(SplitColumns, WidthOver20StopsTheSplit) {
    DataLine reader(nullptr);
    std::strcpy(reader.line, std::string(60, 'x').c_str());
    const unsigned widths[] = {5, 21, 3};
    unsigned n = 3;
    reader.splitIntoWords(n, widths);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(reader.column, 5u);
    const unsigned twenty[] = {20};
    n = 1;
    reader.splitIntoWords(n, twenty);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(std::strlen(reader.fixedWords[0]), 20u);
}

TEST(SplitColumns, CountOver10StopsAt10) {
    DataLine reader(nullptr);
    std::strcpy(reader.line, std::string(200, '1').c_str());
    std::vector<unsigned> widths(12, 2);
    unsigned n = 12;
    reader.splitIntoWords(n, widths.data());
    EXPECT_EQ(n, DataLine::kFixedSlots);
}

TEST(SplitColumns, ColumnsPastAShortLineAreEmptyAfterALongLine) {
    // The leading blanks make the trim leave the long line's tail behind its end.
    CardFile file(std::string(30, ' ') + "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ\nshort\n");
    DataLine reader(file.stream());
    reader.readNextCard();
    reader.readNextCard();
    const unsigned widths[] = {17, 20, 20};
    unsigned n = 3;
    reader.splitIntoWords(n, widths);
    EXPECT_STREQ(reader.fixedWords[0], "short");
    EXPECT_STREQ(reader.fixedWords[1], "");
    EXPECT_STREQ(reader.fixedWords[2], "");
}

// ---------------------------------------------------------------------------------------------
// convertToDoubles.

TEST(ConvertToDoubles, ReadsRunsOf2048ColumnsOfTheLine) {
    CardFile file("1" + std::string(2047, ' ') + "9\n3\n");
    DataLine reader(file.stream());
    reader.readNextCard();
    unsigned n = 2;
    EXPECT_EQ(reader.convertToDoubles(reader.line, n), reader.values);
    EXPECT_DOUBLE_EQ(reader.values[0], 1.0);
    EXPECT_DOUBLE_EQ(reader.values[1], 9.0);
    reader.readNextCard();
    reader.convertToDoubles(reader.line, n);
    EXPECT_DOUBLE_EQ(reader.values[0], 3.0);
    EXPECT_DOUBLE_EQ(reader.values[1], 0.0);
    EXPECT_EQ(n, 2u);
}

TEST(ConvertToDoubles, CountOfZeroStoresNothing) {
    DataLine reader(nullptr);
    reader.values[0] = 42.0;
    unsigned n = 0;
    reader.convertToDoubles("7", n);
    EXPECT_DOUBLE_EQ(reader.values[0], 42.0);
}

TEST(ConvertToDoubles, TextOutsideTheLineIsReadUpToItsEnd) {
    DataLine reader(nullptr);
    unsigned n = 2;
    reader.convertToDoubles("3.25", n);
    EXPECT_DOUBLE_EQ(reader.values[0], 3.25);
    EXPECT_DOUBLE_EQ(reader.values[1], 0.0);
}

// ---------------------------------------------------------------------------------------------
// The end flag holds every read until cleared.

TEST(EndFlag, EveryReadAnswersAtOnceWithoutTakingALine) {
    CardFile file("payload line\n");
    DataLine reader(file.stream());
    reader.setFlag(kEnd);
    unsigned n = 4;
    EXPECT_STREQ(reader.readNextCard(), "");
    EXPECT_STREQ(reader.readNextCard(n, "X"), "");
    EXPECT_EQ(n, 0u);
    n = 4;
    EXPECT_EQ(reader.readNextCardAsWords(n, " ", nullptr), nullptr);
    EXPECT_EQ(n, 0u);
    n = 4;
    EXPECT_EQ(reader.readNextCardAsDoubles(n), reader.values);
    EXPECT_EQ(n, 0u);
    n = 4;
    EXPECT_EQ(reader.readRawData(n, nullptr), nullptr);
    EXPECT_EQ(n, 0u);
    std::string out;
    reader.readToEnd(out, nullptr);
    EXPECT_EQ(out, "");
    EXPECT_EQ(std::ftell(file.stream()), 0L);
    EXPECT_TRUE(reader.isFlagOn(kEnd));
}

// ---------------------------------------------------------------------------------------------
// A reader that clears every buffer in full, as simply as the reads can be written, to prove that
// clearing only what was written (and parsing keyword lists once) changes no result.

namespace {

class FullClearReader {
public:
    explicit FullClearReader(FILE* stream_)
        : stream(stream_),
          m_Line(DataLine::kLineSize, 0),
          m_Words(DataLine::kWordSlots, std::vector<char>(DataLine::kWordSize, 0)),
          m_Fixed(DataLine::kFixedSlots, std::vector<char>(DataLine::kFixedSize, 0)),
          m_Values(DataLine::kValueCount, 0.0) {
        line = m_Line.data();
        for (auto& slot : m_Words) m_WordPointers.push_back(slot.data());
        for (auto& slot : m_Fixed) m_FixedPointers.push_back(slot.data());
        words = m_WordPointers.data();
        fixedWords = m_FixedPointers.data();
        values = m_Values.data();
    }

    char* readNextCard() {
        clearLine();
        if (endFlag()) return line;
        flags = 0;
        while (fgetsLine()) {
            Generic::RemoveLeadingAndTrailingBlanks(line);
            if (line[0] == '\0') continue;
            if (line[0] == '$') {
                clearLine();
                continue;
            }
            if (line[0] == '*') {
                flags |= 8;
                break;
            }
            copyWord(0, line);
            break;
        }
        return line;
    }

    char* readNextCard(unsigned& n, const char* endKeyword) {
        clearLine();
        if (endFlag()) {
            n = 0;
            return line;
        }
        flags = 0;
        while (fgetsLine()) {
            Generic::RemoveLeadingAndTrailingBlanks(line);
            if (line[0] != '\0') break;
        }
        if (endKeyword != nullptr && std::strcmp(line, endKeyword) == 0) {
            n = 0;
            flags |= 8;
        }
        if (line[0] == '\0') n = 0;
        return line;
    }

    char** readNextCardAsWords(unsigned& n, const char* separators, const char* endKeywords) {
        clearLine();
        if (endFlag()) {
            n = 0;
            return nullptr;
        }
        if (separators == nullptr) separators = " ";
        std::vector<std::string> keys = keywordList(endKeywords);
        flags = 0;
        bool got = false;
        while (fgetsLine()) {
            Generic::RemoveLeadingAndTrailingBlanks(line);
            if (line[0] != '\0') {
                got = true;
                break;
            }
        }
        if (got) {
            if (endKeywords != nullptr && isEnd(keys)) {
                n = 0;
                flags |= 8;
            } else {
                wordCount = 0;
                Generic::RemoveLeadingAndTrailingBlanks(line);
                if (n < 2) {
                    copyWord(0, line);
                    wordCount = 1;
                } else {
                    for (char* token = std::strtok(line, separators); token != nullptr;
                         token = std::strtok(nullptr, separators)) {
                        if (wordCount == DataLine::kWordSlots) break;
                        std::memset(words[wordCount], 0, DataLine::kWordSize);
                        copyWord(wordCount, token);
                        Generic::RemoveLeadingAndTrailingBlanks(words[wordCount]);
                        ++wordCount;
                    }
                    n = wordCount;
                }
            }
        }
        if (line[0] == '\0') n = 0;
        return words;
    }

    double* readNextCardAsDoubles(unsigned& n) {
        clearLine();
        if (endFlag()) {
            n = 0;
            return values;
        }
        flags = 0;
        while (fgetsLine()) {
            if (line[0] == '$') {
                clearLine();
                continue;
            }
            if (line[0] == '*') {
                n = 0;
                flags |= 8;
                break;
            }
            unsigned count = 0;
            if (std::strchr(line, ',') != nullptr) {
                for (char* token = std::strtok(line, ","); token != nullptr && count < 2048;
                     token = std::strtok(nullptr, ",")) {
                    values[count++] = std::atof(token);
                }
            } else {
                for (unsigned i = 0; i < n && i < 128; ++i) {
                    std::memset(words[i], 0, DataLine::kWordSize);
                    std::memcpy(words[i], line + i * 2048, 2048);
                    if (words[i][0] != '\0' && words[i][0] != '\n') values[count++] = std::atof(words[i]);
                }
            }
            n = count;
            break;
        }
        if (line[0] == '\0') n = 0;
        return values;
    }

    char** readRawData(unsigned& n, const char* endKeywords) {
        clearLine();
        if (endFlag()) {
            n = 0;
            return nullptr;
        }
        std::vector<std::string> keys = keywordList(endKeywords);
        flags = 0;
        wordCount = 0;
        if (!fgetsLine()) return nullptr;
        std::memset(words[0], 0, DataLine::kWordSize);
        copyWord(0, line);
        Generic::RemoveLeadingAndTrailingBlanks(line);
        if (endKeywords != nullptr && isEnd(keys)) {
            flags |= 8;
            words[0][0] = '\0';
            n = 0;
            return nullptr;
        }
        n = 1;
        return words;
    }

    void readToEnd(std::string& out, const char* endKeywords) {
        clearLine();
        if (endFlag()) return;
        std::vector<std::string> keys = keywordList(endKeywords);
        flags = 0;
        wordCount = 0;
        while (fgetsLine()) {
            std::memset(words[0], 0, DataLine::kWordSize);
            copyWord(0, line);
            Generic::RemoveLeadingAndTrailingBlanks(line);
            if (endKeywords != nullptr && isEnd(keys)) {
                flags |= 8;
                words[0][0] = '\0';
                return;
            }
            out += words[0];
        }
    }

    char** splitIntoWords(unsigned& wordIndex, const char* separators, unsigned& n, bool all) {
        if (n == 0) {
            flags |= 8;
            return nullptr;
        }
        if (words[wordIndex][0] == '\0') {
            n = 0;
            flags |= 8;
            return nullptr;
        }
        if (separators == nullptr) separators = " ";
        std::vector<char> cut(8192, 0);
        std::vector<char> whole(8192, 0);
        std::strncpy(cut.data(), words[wordIndex], DataLine::kWordSize);
        std::strncpy(whole.data(), words[wordIndex], DataLine::kWordSize);
        const size_t length = std::strlen(whole.data());
        wordCount = 0;
        size_t position = 0;
        char* token = std::strtok(cut.data(), separators);
        while (token != nullptr) {
            std::memset(words[wordCount], 0, DataLine::kWordSize);
            copyWord(wordCount, token);
            Generic::RemoveLeadingAndTrailingBlanks(words[wordCount]);
            ++wordCount;
            char* next = std::strtok(nullptr, separators);
            position += std::strlen(token) + 1;
            if (next == nullptr || position >= length || wordCount == DataLine::kWordSlots) {
                if (wordCount < DataLine::kWordSlots) words[wordCount][0] = '\0';
                wordIndex = wordCount;
                break;
            }
            if (all || wordCount < n) {
                token = next;
                continue;
            }
            const size_t start = position - std::strlen(token) - 1;
            copyWord(wordCount - 1, whole.data() + start);
            wordIndex = wordCount - 1;
            break;
        }
        for (unsigned i = wordCount; i < n && i < DataLine::kWordSlots; ++i) words[i][0] = '\0';
        n = wordCount;
        return words;
    }

    char** splitIntoWords(unsigned& n, const unsigned* widths) {
        wordCount = 0;
        column = 0;
        fixedCount = 0;
        for (unsigned i = 0; i < n && i < DataLine::kFixedSlots; ++i) {
            if (widths[i] > 20) break;
            std::memset(fixedWords[i], 0, DataLine::kFixedSize);
            std::memcpy(fixedWords[i], line + column, widths[i]);
            column += widths[i];
            ++fixedCount;
        }
        n = fixedCount;
        return fixedWords;
    }

    double* convertToDoubles(const char* text, unsigned& n) {
        for (unsigned i = 0; i < n && i < DataLine::kValueCount; ++i) {
            std::memset(words[i], 0, DataLine::kWordSize);
            const size_t offset = static_cast<size_t>(i) * 2048;
            if (offset < DataLine::kLineSize - static_cast<size_t>(text - line)) {
                const size_t room = DataLine::kLineSize - static_cast<size_t>(text - line) - offset;
                std::memcpy(words[i], text + offset, std::min<size_t>(2048, room));
            }
            values[i] = std::atof(words[i]);
        }
        return values;
    }

    void clearFlag(unsigned bit) { flags &= ~(1u << bit); }

    uint32_t flags = 0;
    uint32_t wordCount = 0;
    uint32_t column = 0;
    uint32_t fixedCount = 0;
    char* line = nullptr;
    char** words = nullptr;
    char** fixedWords = nullptr;
    double* values = nullptr;
    FILE* stream = nullptr;

private:
    bool endFlag() const { return (flags & 8) != 0; }
    void clearLine() { std::memset(line, 0, DataLine::kLineSize); }
    bool fgetsLine() { return std::fgets(line, DataLine::kLineSize, stream) != nullptr; }
    void copyWord(unsigned slot, const char* text) {
        const size_t length = std::min<size_t>(std::strlen(text), DataLine::kWordSize - 1);
        std::memcpy(words[slot], text, length);
        words[slot][length] = '\0';
    }
    std::vector<std::string> keywordList(const char* text) const {
        std::vector<std::string> keys;
        if (text == nullptr) return keys;
        char buffer[128] = {};
        std::strncpy(buffer, text, 127);
        if (std::strchr(buffer, ',') == nullptr) {
            keys.emplace_back(buffer);
        } else {
            for (char* piece = std::strtok(buffer, ","); piece != nullptr; piece = std::strtok(nullptr, ","))
                keys.emplace_back(piece);
        }
        return keys;
    }
    bool isEnd(const std::vector<std::string>& keys) const {
        for (const auto& key : keys)
            if (strncasecmp(line, key.c_str(), key.size()) == 0) return true;
        return false;
    }

    std::vector<char> m_Line;
    std::vector<std::vector<char>> m_Words;
    std::vector<std::vector<char>> m_Fixed;
    std::vector<double> m_Values;
    std::vector<char*> m_WordPointers;
    std::vector<char*> m_FixedPointers;
};

// Which buffer a read handed back, so that two readers with different buffers can be compared.
template <typename Reader>
int resultKind(const Reader& reader, const void* result) {
    if (result == nullptr) return 0;
    if (result == reader.line) return 1;
    if (result == reader.words) return 2;
    if (result == reader.values) return 3;
    if (result == reader.fixedWords) return 4;
    return 5;
}

const char* const kSeparatorSets[] = {" ", ": ", " -&", "=() ", " \t", ":", "=", "/", "%", "%-", "", nullptr,
                                      " \t=():,"};
const char* const kKeywordLists[] = {
    nullptr,   "",         ",,",      "FIN LISTE", "REACTION,FIN MATERIAUX,FIN NOM",
    "FIN TABLES,FIN TABL,FIN TABLE,FIN MATERIAUX,FIN NOM", "FIN COMMENTAIRES", "fin nom", "END"};

// One step of a caller's work, applied alike to both readers.
struct Step {
    int kind;
    unsigned n;
    unsigned index;
    const char* separators;
    const char* keywords;
    bool all;
    std::vector<unsigned> widths;
    std::string text;
};

Step randomStep(std::mt19937& random) {
    Step step{};
    step.kind = static_cast<int>(random() % 13);
    const unsigned wantedChoices[] = {0, 1, 2, 3, 5, 32, 4000};
    step.n = wantedChoices[random() % 7];
    step.index = random() % 3;
    step.separators = kSeparatorSets[random() % (sizeof kSeparatorSets / sizeof kSeparatorSets[0])];
    step.keywords = kKeywordLists[random() % (sizeof kKeywordLists / sizeof kKeywordLists[0])];
    step.all = random() % 2 == 0;
    const unsigned fields = random() % 12;
    for (unsigned i = 0; i < fields; ++i) step.widths.push_back(random() % 23);
    step.text = std::string(random() % 40, static_cast<char>('a' + random() % 26));
    return step;
}

template <typename Reader>
int applyStep(Reader& reader, const Step& step, unsigned& n, unsigned& index, std::string& out) {
    n = step.n;
    index = step.index;
    switch (step.kind) {
        case 0: return resultKind(reader, reader.readNextCard());
        case 1: return resultKind(reader, reader.readNextCard(n, step.keywords));
        case 2:
        case 3: return resultKind(reader, reader.readNextCardAsWords(n, step.separators, step.keywords));
        case 4: return resultKind(reader, reader.readNextCardAsDoubles(n));
        case 5: return resultKind(reader, reader.readRawData(n, step.keywords));
        case 6: return resultKind(reader, reader.splitIntoWords(index, step.separators, n, step.all));
        case 7: {
            n = static_cast<unsigned>(step.widths.size());
            return resultKind(reader, reader.splitIntoWords(n, step.widths.data()));
        }
        case 8: {
            n %= 4;
            return resultKind(reader, reader.convertToDoubles(reader.line, n));
        }
        case 9:
            // A converter rewriting a word in place.
            std::strcpy(reader.words[step.index], step.text.c_str());
            return 6;
        case 10:
            // A caller writing a text of its own into the line.
            std::strcpy(reader.line, step.text.c_str());
            return 7;
        case 11:
            if (step.n == 4000 && step.all && step.index == 0) reader.readToEnd(out, step.keywords);
            return 8;
        default: reader.clearFlag(DataLine::kEndFlagBit); return 9;
    }
}

void expectSameState(const DataLine& fast, const FullClearReader& full, bool everySlot,
                     const std::string& where) {
    SCOPED_TRACE(where);
    EXPECT_EQ(fast.flags, full.flags);
    EXPECT_EQ(fast.wordCount, full.wordCount);
    EXPECT_EQ(fast.column, full.column);
    EXPECT_EQ(fast.fixedCount, full.fixedCount);
    EXPECT_EQ(std::memcmp(fast.line, full.line, DataLine::kLineSize), 0) << "line buffers differ";
    const unsigned slots = everySlot ? DataLine::kWordSlots : 64;
    for (unsigned slot = 0; slot < slots; ++slot) {
        ASSERT_EQ(std::memcmp(fast.words[slot], full.words[slot], DataLine::kWordSize), 0)
            << "word slot " << slot;
    }
    for (unsigned slot = 0; slot < DataLine::kFixedSlots; ++slot) {
        ASSERT_EQ(std::memcmp(fast.fixedWords[slot], full.fixedWords[slot], DataLine::kFixedSize), 0)
            << "fixed slot " << slot;
    }
    EXPECT_EQ(std::memcmp(fast.values, full.values, sizeof(double) * DataLine::kValueCount), 0);
}

// Drives both readers over the same file with the same random steps and compares all they hold.
void compareOnFile(const std::string& bytes, unsigned seed, unsigned maxSteps) {
    CardFile fastFile(bytes);
    CardFile fullFile(bytes);
    DataLine fast(fastFile.stream());
    FullClearReader full(fullFile.stream());
    std::mt19937 random(seed);
    std::string fastOut;
    std::string fullOut;
    unsigned stepsAtEnd = 0;
    for (unsigned stepNumber = 0; stepNumber < maxSteps && stepsAtEnd < 40; ++stepNumber) {
        const Step step = randomStep(random);
        unsigned fastN = 0, fastIndex = 0, fullN = 0, fullIndex = 0;
        const int fastKind = applyStep(fast, step, fastN, fastIndex, fastOut);
        const int fullKind = applyStep(full, step, fullN, fullIndex, fullOut);
        const std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(stepNumber) +
                                  " kind " + std::to_string(step.kind);
        ASSERT_EQ(fastKind, fullKind) << where;
        ASSERT_EQ(fastN, fullN) << where;
        ASSERT_EQ(fastIndex, fullIndex) << where;
        ASSERT_EQ(fastOut, fullOut) << where;
        const bool everySlot = stepNumber % 97 == 0 || fast.wordCount > 60 || fastN > 60;
        ASSERT_NO_FATAL_FAILURE(expectSameState(fast, full, everySlot, where));
        if (std::feof(fastFile.stream())) ++stepsAtEnd;
    }
    ASSERT_NO_FATAL_FAILURE(expectSameState(fast, full, true, "final"));
}

std::string readWholeFile(const std::filesystem::path& path) {
    std::string bytes;
    FILE* in = std::fopen(path.c_str(), "rb");
    if (in == nullptr) return bytes;
    char chunk[4096];
    size_t got = 0;
    while ((got = std::fread(chunk, 1, sizeof chunk, in)) > 0) bytes.append(chunk, got);
    std::fclose(in);
    return bytes;
}

// Long lines next to short ones, blanks, marks, CRLF, NUL bytes and a last line without its end.
std::string awkwardFile() {
    std::string bytes;
    bytes += "1" + std::string(2047, ' ') + "2" + std::string(2047, ' ') + "3\n";
    bytes += "4\n";
    bytes += std::string(5000, 'L') + "\n";
    bytes += "short line\n";
    bytes += "1.5,2.5," + std::string(3000, '7') + ",4\n";
    bytes += "x\n";
    bytes += "\n   \r\n$ comment\n* star\n";
    for (int i = 0; i < 2100; ++i) bytes += "w ";
    bytes += "\n";
    bytes += "a\n";
    bytes += "NOM : W S355J2G3 mechanical mm kg s\r\n";
    bytes += std::string(100, ' ') + "FIN TABLE" + std::string(3000, ' ') + "\n";
    bytes += "a b  c d\n";
    bytes += std::string("ab\0cd\n", 6);
    bytes += "A(1) = 2.5\n 1 : Ferrite : x\nYIELD -&12& -&13&\n0.1-0.2%\n";
    bytes += std::string(3000, 'y') + " tail\n";
    bytes += "q\n";
    bytes += "fin nom\nREACTION 1\nFIN LISTE\nEND\n";
    bytes += "last line without its end";
    return bytes;
}

}  // namespace

TEST(PartialClearing, MatchesFullClearingOnEveryCorpusFile) {
    const std::filesystem::path corpus(QUILLON_CORPUS_DIR);
    ASSERT_TRUE(std::filesystem::is_directory(corpus)) << corpus;
    unsigned files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
        const auto extension = entry.path().extension();
        if (extension != ".mat" && extension != ".dat") continue;
        ++files;
        const std::string bytes = readWholeFile(entry.path());
        for (unsigned seed = 1; seed <= 3; ++seed) {
            SCOPED_TRACE(entry.path().filename().string());
            ASSERT_NO_FATAL_FAILURE(compareOnFile(bytes, seed, 6000));
        }
    }
    EXPECT_GT(files, 5u);
}

TEST(PartialClearing, MatchesFullClearingOnLongAndShortLines) {
    const std::string bytes = awkwardFile();
    for (unsigned seed = 10; seed < 40; ++seed) ASSERT_NO_FATAL_FAILURE(compareOnFile(bytes, seed, 400));
}

TEST(PartialClearing, CallerTextsWrittenOneOverAnotherAreAllCleared) {
    CardFile file("x\n");
    DataLine reader(file.stream());
    std::strcpy(reader.line, std::string(300, 'a').c_str());
    std::strcpy(reader.line, std::string(120, 'b').c_str());
    std::strcpy(reader.line, std::string(119, 'c').c_str());
    std::strcpy(reader.words[0], std::string(900, 'a').c_str());
    std::strcpy(reader.words[0], std::string(12, 'b').c_str());
    std::strcpy(reader.words[0], std::string(11, 'c').c_str());
    unsigned n = 5;
    reader.readRawData(n, nullptr);
    EXPECT_STREQ(reader.line, "x");
    EXPECT_TRUE(std::all_of(reader.line + 2, reader.line + DataLine::kLineSize, [](char c) { return c == 0; }));
    EXPECT_EQ(word(reader, 0), "x\n");
    EXPECT_TRUE(std::all_of(reader.words[0] + 3, reader.words[0] + DataLine::kWordSize,
                            [](char c) { return c == 0; }));
}

TEST(PartialClearing, LongLineThenShortLineReadsZerosInFixedColumns) {
    const std::string bytes = std::string(4500, '9') + "\n12\n";
    CardFile fastFile(bytes);
    CardFile fullFile(bytes);
    DataLine fast(fastFile.stream());
    FullClearReader full(fullFile.stream());
    unsigned n = 1;
    fast.readNextCard(n, nullptr);
    full.readNextCard(n, nullptr);
    fast.readNextCard(n, nullptr);
    full.readNextCard(n, nullptr);
    const unsigned widths[] = {2, 20, 20};
    unsigned fastCount = 3;
    unsigned fullCount = 3;
    fast.splitIntoWords(fastCount, widths);
    full.splitIntoWords(fullCount, widths);
    EXPECT_STREQ(fast.fixedWords[1], "");
    unsigned fields = 3;
    fast.convertToDoubles(fast.line, fields);
    EXPECT_DOUBLE_EQ(fast.values[0], 12.0);
    EXPECT_DOUBLE_EQ(fast.values[1], 0.0);
    EXPECT_DOUBLE_EQ(fast.values[2], 0.0);
    full.convertToDoubles(full.line, fields);
    expectSameState(fast, full, true, "after the short line");
}
