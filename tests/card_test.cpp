// Cards: the mode word, building fields, looking them up and writing them.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "core/card.h"
#include "core/importobject.h"

namespace {

// The mode word is shared by the whole process: each test sets the bits it
// needs and leaves the word as it found it.
class CardTest : public testing::Test {
protected:
    void SetUp() override { saved = Card::isFlagOn(~0u); }
    void TearDown() override
    {
        Card::clearFlag(~0u);
        Card::setFlag(saved);
    }
    static void namesOn() { Card::setFlag(Card::KEEP_NAMES); }
    static void namesOff() { Card::clearFlag(Card::KEEP_NAMES); }

private:
    unsigned saved = 0;
};

// Runs `write` over a buffered writer on a fresh file and gives back the text.
std::string writtenText(const std::function<void(_buffile*)>& write)
{
    char path[] = "/tmp/quillon_card_XXXXXX";
    const int handle = mkstemp(path);
    EXPECT_GE(handle, 0);
    _buffile* f = bufFileCreate(handle);
    write(f);
    bufFileClose(f, 1);
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    unlink(path);
    return text.str();
}

std::string fileText(Card& card, bool noWidth)
{
    return writtenText([&](_buffile* f) { card.toFile(f, noWidth); });
}

std::string stringText(Card& card, bool noWidth)
{
    std::string out;
    card.tostring(out, noWidth);
    return out;
}

Data* intData(int v, unsigned width)
{
    return new Integer(v, width);
}

Data* doubleData(double v, unsigned width)
{
    return new Double(v, width);
}

// ------------------------------------------------------------------ mode word

TEST_F(CardTest, FlagsAreBitValuesAndIsFlagOnGivesTheMaskedWord)
{
    Card::clearFlag(~0u);
    Card::setFlag(2 | 16);
    EXPECT_EQ(Card::isFlagOn(2), 2u);
    EXPECT_EQ(Card::isFlagOn(4), 0u);
    EXPECT_EQ(Card::isFlagOn(2 | 4 | 16), 18u);
    Card::clearFlag(2);
    EXPECT_EQ(Card::isFlagOn(~0u), 16u);
}

TEST_F(CardTest, NamesAreRecordedOnlyWhileValueTwoIsOn)
{
    namesOn();
    Card named("c");
    named.addField("A", intData(1, 10));
    EXPECT_EQ(named.getVarNames().size(), 1u);
    EXPECT_EQ(named.getVarNames()[0], "A");

    namesOff();
    Card unnamed("c");
    unnamed.addField("A", intData(1, 10));
    EXPECT_TRUE(unnamed.getVarNames().empty());
    EXPECT_EQ(unnamed.numVars(), 1u);
}

TEST_F(CardTest, ClearingConstructorTurnsNamesOffForLaterCardsUntilTheNextSection)
{
    namesOn();
    Card keeper("a", false);
    EXPECT_NE(Card::isFlagOn(2), 0u);
    Card clearer("b", true);
    EXPECT_EQ(Card::isFlagOn(2), 0u);

    Card later("c");
    later.addField("X", intData(1, 10));
    EXPECT_TRUE(later.getVarNames().empty());

    ImportObject section("LABELS :");
    EXPECT_NE(Card::isFlagOn(2), 0u);
    Card afterSection("d");
    afterSection.addField("X", intData(1, 10));
    EXPECT_EQ(afterSection.getVarNames().size(), 1u);
}

TEST_F(CardTest, DBCardClearingConstructorClearsValueTwoToo)
{
    namesOn();
    DBCard card("db", true);
    EXPECT_EQ(Card::isFlagOn(2), 0u);
    EXPECT_EQ(card.getName(), "db");
}

// ----------------------------------------------------------- adding fields

TEST_F(CardTest, NullValueIsStoredAsItStands)
{
    namesOn();
    Card card("c");
    card.addField("N", nullptr);
    ASSERT_EQ(card.numVars(), 1u);
    EXPECT_EQ(card.getVarValues()[0], nullptr);
    EXPECT_EQ(card.findField("N"), nullptr);
    EXPECT_EQ(card.intValue("N"), 0);
}

TEST_F(CardTest, AddEmptyFieldAddsBlankObjectsNamedWithOneBlank)
{
    namesOn();
    Card card("c");
    card.addEmptyField(3, 7);
    ASSERT_EQ(card.numVars(), 3u);
    for (Data* value : card.getVarValues()) {
        EXPECT_NE(dynamic_cast<BlankObject*>(value), nullptr);
        EXPECT_EQ(value->width, 7u);
    }
    EXPECT_EQ(card.getVarNames(), (std::vector<std::string>{" ", " ", " "}));
}

TEST_F(CardTest, AddEmptyFieldWithCountBelowOneAddsNothing)
{
    Card card("c");
    card.addEmptyField(0, 10);
    card.addEmptyField(-4, 10);
    EXPECT_EQ(card.numVars(), 0u);
}

TEST_F(CardTest, FixedColumnsCutTheLineAndBlankFieldsHoldTheirColumns)
{
    namesOn();
    Card card("c");
    unsigned n = 5;
    unsigned types[] = {1, 2, 5, 7, 1};
    unsigned widths[] = {4, 6, 5, 3, 4};
    const char* names[] = {"A", "B", "C", "D", "E"};
    // A at 0-3, B at 4-9 starts with a tab and so is blank, C at 10-14 keeps
    // its blanks, D at 15-17 is an empty column, E lies past the line's end.
    char line[] = "  12\t 3.5  abc xyz";
    card.addFields(n, types, widths, names, line);

    EXPECT_EQ(card.getVarNames(), (std::vector<std::string>{"A", "C", " "}));
    EXPECT_EQ(card.getBlankFields(), (std::vector<std::string>{"B", "E"}));
    ASSERT_EQ(card.numVars(), 3u);
    EXPECT_EQ(card.intValue("A"), 12);
    EXPECT_EQ(card.getVarValues()[0]->width, 4u);
    EXPECT_STREQ(card.stringValue("C"), " abc ");
    EXPECT_EQ(card.getVarValues()[1]->width, 5u);
    // The empty column takes the field's own width.
    EXPECT_NE(dynamic_cast<BlankObject*>(card.getVarValues()[2]), nullptr);
    EXPECT_EQ(card.getVarValues()[2]->width, 3u);
}

TEST_F(CardTest, FixedColumnWiderThanTheWorkBufferKeepsItsFirst127Columns)
{
    namesOn();
    Card card("c");
    std::string text(200, 'x');
    text += "  42";
    unsigned n = 2;
    unsigned types[] = {5, 1};
    unsigned widths[] = {200, 4};
    const char* names[] = {"WIDE", "NEXT"};
    card.addFields(n, types, widths, names, &text[0]);
    EXPECT_EQ(std::string(card.stringValue("WIDE")), std::string(127, 'x'));
    EXPECT_EQ(card.getVarValues()[0]->width, 200u);
    EXPECT_EQ(card.intValue("NEXT"), 42);
}

TEST_F(CardTest, FixedColumnStopsAtTheEndOfAShortLine)
{
    namesOn();
    Card card("c");
    unsigned n = 1;
    unsigned types[] = {5};
    unsigned widths[] = {10};
    const char* names[] = {"T"};
    char line[] = "ab";
    card.addFields(n, types, widths, names, line);
    EXPECT_STREQ(card.stringValue("T"), "ab");
}

TEST_F(CardTest, OneWordPerFieldUsesTheGivenWidthsButTenForEmptyColumns)
{
    namesOn();
    Card card("c");
    unsigned n = 6;
    unsigned types[] = {0, 1, 2, 5, 7, 3};
    unsigned widths[] = {4, 5, 6, 7, 3, 8};
    const char* names[] = {"U", "I", "D", "S", "E", "F"};
    char u[] = "12", i[] = "-3", d[] = "2.5", s[] = "txt", e[] = "x", f[] = "1";
    char* words[] = {u, i, d, s, e, f};
    card.addFields(n, types, widths, names, words);
    // Code 3 is none of the codes that add a field.
    ASSERT_EQ(card.numVars(), 5u);
    EXPECT_EQ(card.uintValue("U"), 12u);
    EXPECT_EQ(card.intValue("I"), -3);
    EXPECT_DOUBLE_EQ(card.doubleValue("D"), 2.5);
    EXPECT_STREQ(card.stringValue("S"), "txt");
    EXPECT_EQ(card.getVarValues()[0]->width, 4u);
    EXPECT_EQ(card.getVarValues()[3]->width, 7u);
    EXPECT_EQ(card.getVarValues()[4]->width, 10u);
    EXPECT_EQ(card.getVarNames()[4], " ");
}

TEST_F(CardTest, BlankWordsAreMissingEmptyOrStartWithAControlCharacter)
{
    namesOn();
    Card card("c");
    unsigned n = 4;
    unsigned types[] = {1, 7, 5, 1};
    unsigned widths[] = {10, 10, 10, 10};
    const char* names[] = {"NUL", "EMPTY", "LF", "REAL"};
    char empty[] = "", lf[] = "\nx", real[] = "5";
    char* words[] = {nullptr, empty, lf, real};
    card.addFields(n, types, widths, names, words);
    EXPECT_EQ(card.getBlankFields(), (std::vector<std::string>{"NUL", "EMPTY", "LF"}));
    ASSERT_EQ(card.numVars(), 1u);
    EXPECT_EQ(card.intValue("REAL"), 5);
}

TEST_F(CardTest, FirstWordOfOneBlankMakesARealField)
{
    namesOn();
    Card card("c");
    unsigned n = 2;
    unsigned types[] = {5, 1};
    unsigned widths[] = {10, 10};
    const char* names[] = {"S", "I"};
    char blank[] = " ", blankNumber[] = " 7";
    char* words[] = {blank, blankNumber};
    card.addFields(n, types, widths, names, words);
    EXPECT_TRUE(card.getBlankFields().empty());
    ASSERT_EQ(card.numVars(), 2u);
    EXPECT_STREQ(card.stringValue("S"), " ");
    EXPECT_EQ(card.intValue("I"), 7);
}

TEST_F(CardTest, ThreeFieldsAndOneWordGiveThreeFieldsOfThatWord)
{
    namesOn();
    Card card("c");
    unsigned nFields = 3;
    unsigned types[] = {5, 5, 1};
    const char* names[] = {"A", "B", "C"};
    char word[] = "12";
    char* words[] = {word};
    card.addFields(nFields, types, names, 1, words);
    ASSERT_EQ(card.numVars(), 3u);
    EXPECT_STREQ(card.stringValue("A"), "12");
    EXPECT_STREQ(card.stringValue("B"), "12");
    EXPECT_EQ(card.intValue("C"), 12);
    for (Data* value : card.getVarValues())
        EXPECT_EQ(value->width, 10u);
}

TEST_F(CardTest, MismatchedWordsFillTheTableOncePerWordAndNameBlanksByWordPosition)
{
    namesOn();
    Card card("c");
    unsigned nFields = 2;
    unsigned types[] = {1, 5};
    const char* names[] = {"N", "T"};
    char seven[] = "7", empty[] = "", nine[] = "9";
    char* words[] = {seven, empty, nine};
    card.addFields(nFields, types, names, 3, words);
    EXPECT_EQ(card.getVarNames(), (std::vector<std::string>{"N", "T", "N", "T"}));
    EXPECT_EQ(card.numVars(), 4u);
    EXPECT_EQ(card.getBlankFields(), (std::vector<std::string>{"T"}));
    char* text = nullptr;
    card.getVarValues()[3]->value(&text);
    EXPECT_STREQ(text, "9");
}

TEST_F(CardTest, MismatchedBlankWordBeyondTheFieldTableIsPassedOver)
{
    namesOn();
    Card card("c");
    unsigned nFields = 2;
    unsigned types[] = {1, 1};
    const char* names[] = {"A", "B"};
    char one[] = "1", two[] = "2", empty[] = "";
    char* words[] = {one, two, empty};
    card.addFields(nFields, types, names, 3, words);
    EXPECT_EQ(card.numVars(), 4u);
    EXPECT_TRUE(card.getBlankFields().empty());
}

TEST_F(CardTest, MatchingWordsGoFieldByFieldAllTenWide)
{
    namesOn();
    Card card("c");
    unsigned nFields = 3;
    unsigned types[] = {2, 7, 5};
    const char* names[] = {"D", "E", "S"};
    char d[] = "1.25", e[] = "x", s[] = "abc";
    char* words[] = {d, e, s};
    card.addFields(nFields, types, names, 3, words);
    ASSERT_EQ(card.numVars(), 3u);
    EXPECT_DOUBLE_EQ(card.doubleValue("D"), 1.25);
    EXPECT_NE(dynamic_cast<BlankObject*>(card.getVarValues()[1]), nullptr);
    for (Data* value : card.getVarValues())
        EXPECT_EQ(value->width, 10u);
}

TEST_F(CardTest, NoWordsAddNothing)
{
    Card card("c");
    unsigned nFields = 2;
    unsigned types[] = {1, 1};
    const char* names[] = {"A", "B"};
    char* words[] = {nullptr};
    card.addFields(nFields, types, names, 0, words);
    EXPECT_EQ(card.numVars(), 0u);
    EXPECT_TRUE(card.getBlankFields().empty());
}

TEST_F(CardTest, NumbersTruncateTowardZeroAndTextCodeAddsNothing)
{
    namesOn();
    Card card("c");
    unsigned n = 6;
    unsigned types[] = {0, 1, 1, 2, 7, 5};
    const char* names[] = {"U", "I", "J", "D", "E", "S"};
    double values[] = {3.7, -3.7, 2.9, 2.5, 1.0, 4.0};
    card.addFields(n, types, names, values);
    ASSERT_EQ(card.numVars(), 5u);
    EXPECT_EQ(card.uintValue("U"), 3u);
    EXPECT_EQ(card.intValue("I"), -3);
    EXPECT_EQ(card.intValue("J"), 2);
    EXPECT_DOUBLE_EQ(card.doubleValue("D"), 2.5);
    EXPECT_EQ(card.findField("S"), nullptr);
    for (Data* value : card.getVarValues())
        EXPECT_EQ(value->width, 10u);
    EXPECT_NE(dynamic_cast<BlankObject*>(card.getVarValues()[4]), nullptr);
}

TEST_F(CardTest, NegativeNumberIntoAnUnsignedFieldWraps)
{
    namesOn();
    Card card("c");
    unsigned n = 1;
    unsigned types[] = {0};
    const char* names[] = {"U"};
    double values[] = {-3.7};
    card.addFields(n, types, names, values);
    EXPECT_EQ(card.uintValue("U"), 4294967293u);
}

TEST_F(CardTest, NumbersHaveNoBlankTest)
{
    namesOn();
    Card card("c");
    unsigned n = 1;
    unsigned types[] = {1};
    const char* names[] = {"Z"};
    double values[] = {0.0};
    card.addFields(n, types, names, values);
    EXPECT_EQ(card.numVars(), 1u);
    EXPECT_TRUE(card.getBlankFields().empty());
}

// ------------------------------------------------------------------- lookup

TEST_F(CardTest, FindFieldIsExactAndCaseSensitiveAndTakesTheFirst)
{
    namesOn();
    Card card("c");
    Data* first = intData(1, 10);
    card.addField("K", first);
    card.addField("K", intData(2, 10));
    EXPECT_EQ(card.findField("K"), first);
    EXPECT_EQ(card.findField("k"), nullptr);
    EXPECT_EQ(card.findField("KK"), nullptr);
    EXPECT_EQ(card.findField(""), nullptr);
}

TEST_F(CardTest, MissingNamesGiveZeroOrAnEmptyText)
{
    Card card("c");
    EXPECT_EQ(card.intValue("X"), 0);
    EXPECT_EQ(card.uintValue("X"), 0u);
    EXPECT_EQ(card.doubleValue("X"), 0.0);
    ASSERT_NE(card.stringValue("X"), nullptr);
    EXPECT_STREQ(card.stringValue("X"), "");
}

TEST_F(CardTest, IntValueOnADoubleFieldGivesZeroWithNoMessage)
{
    namesOn();
    Card card("c");
    card.addField("D", doubleData(7.5, 10));
    testing::internal::CaptureStdout();
    const int value = card.intValue("D");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(value, 0);
    EXPECT_DOUBLE_EQ(card.doubleValue("D"), 7.5);
}

TEST_F(CardTest, StringValueIsTheFieldsOwnText)
{
    namesOn();
    Card card("c");
    CharArray* text = new CharArray("abc", 10);
    card.addField("S", text);
    EXPECT_EQ(card.stringValue("S"), text->payload);
}

TEST_F(CardTest, AccessorsReachTheMembers)
{
    Card card("MatClass");
    EXPECT_EQ(card.getName(), "MatClass");
    card.getName() = "Other";
    EXPECT_EQ(card.getName(), "Other");
    card.getBlankFields().push_back("B");
    EXPECT_EQ(card.getBlankFields().size(), 1u);
    card.getVarValues().push_back(intData(3, 4));
    EXPECT_EQ(card.numVars(), 1u);
}

// --------------------------------------------------------------- copies

TEST_F(CardTest, CopiesShareTheirValues)
{
    namesOn();
    Card original("c");
    original.addField("A", intData(1, 10));
    original.getBlankFields().push_back("B");
    Card* copy = new Card(original);
    EXPECT_EQ(copy->getName(), "c");
    EXPECT_EQ(copy->getVarNames(), original.getVarNames());
    EXPECT_EQ(copy->getBlankFields(), original.getBlankFields());
    EXPECT_EQ(copy->getVarValues()[0], original.getVarValues()[0]);
    // Only one of the two may be destroyed with the values in it.
    copy->getVarValues().clear();
    delete copy;
}

TEST_F(CardTest, DBCardCopyAndAssignmentCarryItsWord)
{
    namesOn();
    DBCard original("db");
    original.dbTag = 77;
    original.addField("A", intData(1, 10));
    DBCard copy(original);
    EXPECT_EQ(copy.dbTag, 77u);
    EXPECT_EQ(copy.getVarValues()[0], original.getVarValues()[0]);
    copy.getVarValues().clear();

    DBCard assigned("other");
    assigned = original;
    EXPECT_EQ(assigned.dbTag, 77u);
    EXPECT_EQ(assigned.getName(), "db");
    assigned.getVarValues().clear();
}

// ------------------------------------------------------------- card text

TEST_F(CardTest, CardWithoutNamesWritesTheValueLineAlone)
{
    namesOff();
    Card card("c");
    card.addField("A", intData(12, 5));
    card.addField("B", doubleData(1.5, 10));
    EXPECT_EQ(fileText(card, false), "   12       1.5\n");
}

TEST_F(CardTest, HeaderPutsTheDollarInTheFirstColumnAndRightJustifiesNames)
{
    namesOn();
    Card card("c");
    card.addField("A", intData(12, 10));
    card.addField("BB", doubleData(1.5, 6));
    EXPECT_EQ(fileText(card, false), "$        A    BB\n        12   1.5\n");
}

TEST_F(CardTest, HeaderOfAnEmptyColumnIsOneBlankName)
{
    namesOn();
    Card card("c");
    card.addField("A", intData(1, 3));
    card.addEmptyField(1, 4);
    card.addField("C", intData(2, 3));
    EXPECT_EQ(fileText(card, false), "$ A      C\n  1      2\n");
}

TEST_F(CardTest, NamesWithoutValuesReadAColumnOfWidthZero)
{
    Card card("c");
    card.getVarNames().push_back("X");
    card.getVarNames().push_back("Y");
    EXPECT_EQ(fileText(card, false), "$XY\n\n");
}

TEST_F(CardTest, NoValuesAndNoNamesWriteOneLineFeed)
{
    Card card("c");
    EXPECT_EQ(fileText(card, false), "\n");
    EXPECT_EQ(stringText(card, false), "\n");
    EXPECT_EQ(stringText(card, true), "\n");
}

TEST_F(CardTest, LastValueEndingInALineFeedEndsTheLineItself)
{
    namesOff();
    Card card("c");
    card.addField("S", new CharArray("abc\n", 2));
    EXPECT_EQ(fileText(card, false), "abc\n");
    EXPECT_EQ(stringText(card, false), "abc\n");
}

TEST_F(CardTest, BlankFieldsProduceNoText)
{
    namesOff();
    Card card("c");
    card.getBlankFields().push_back("GONE");
    card.addField("A", intData(5, 3));
    EXPECT_EQ(fileText(card, false), "  5\n");
}

TEST_F(CardTest, FileTextRepeatsThePreviousValueWhereAnArrayStands)
{
    namesOff();
    Card card("c");
    double values[] = {1.0};
    card.addField("A", intData(5, 3));
    card.addField("ARR", new DoubleArray(1, values, 10));
    EXPECT_EQ(fileText(card, false), "  5  5\n");
    EXPECT_EQ(stringText(card, false), "  5\n");
}

TEST_F(CardTest, ArrayFirstWritesNothingInFileText)
{
    namesOff();
    Card card("c");
    double values[] = {1.0};
    card.addField("ARR", new DoubleArray(1, values, 10));
    card.addField("A", intData(5, 3));
    EXPECT_EQ(fileText(card, false), "  5\n");
}

TEST_F(CardTest, StringTextWithoutWidthHasNoHeaderAndBlanksBetweenValues)
{
    namesOn();
    Card card("c");
    card.addField("A", intData(12, 10));
    card.addField("S", new CharArray("ab", 10));
    card.addField("D", doubleData(1.5, 10));
    EXPECT_EQ(stringText(card, true), "12 ab 1.5\n");
    EXPECT_EQ(stringText(card, false), "$        A         S         D\n        12        ab       1.5\n");
}

TEST_F(CardTest, FileTextWithoutWidthHasAHeaderButNoSeparators)
{
    namesOn();
    Card card("c");
    card.addField("A", intData(12, 4));
    card.addField("S", new CharArray("ab", 4));
    EXPECT_EQ(fileText(card, true), "$  A   S\n12ab\n");
}

TEST_F(CardTest, StringTextAppendsToWhatTheCallerHas)
{
    namesOff();
    Card card("c");
    card.addField("A", intData(1, 2));
    std::string out = "before\n";
    card.tostring(out, false);
    EXPECT_EQ(out, "before\n 1\n");
}

TEST_F(CardTest, TextLongerThanTheValueBufferIsCutAtItsEnd)
{
    namesOff();
    Card card("c");
    const std::string longText(10000, 'q');
    card.addField("S", new CharArray(longText.c_str(), 10));
    EXPECT_EQ(fileText(card, false), std::string(9215, 'q') + "\n");
    EXPECT_EQ(stringText(card, true), std::string(9215, 'q') + "\n");
}

TEST_F(CardTest, AbsurdWidthIsCutAtTheEndOfTheValueBuffer)
{
    namesOff();
    Card card("c");
    card.addField("I", intData(7, 20000));
    EXPECT_EQ(fileText(card, false), std::string(9215, ' ') + "\n");
    Card shortText("c");
    shortText.addField("S", new CharArray("abc", 9215));
    EXPECT_EQ(fileText(shortText, false), std::string(9212, ' ') + "abc\n");
}

TEST_F(CardTest, NullValueIsPassedOverInText)
{
    namesOff();
    Card card("c");
    card.addField("A", intData(5, 3));
    card.addField("N", nullptr);
    EXPECT_EQ(fileText(card, false), "  5\n");
}

TEST_F(CardTest, CardHasNoTextOfASingleValue)
{
    Card card("c");
    card.addEmptyField(1, 4);
    char text[16] = "keep";
    card.tostring(text, false);
    EXPECT_STREQ(text, "keep");
}

TEST_F(CardTest, DBCardWritesAsACard)
{
    namesOff();
    DBCard card("db");
    card.addField("A", intData(3, 4));
    Card& asCard = card;
    std::string out;
    asCard.tostring(out, false);
    EXPECT_EQ(out, "   3\n");
}

} // namespace
