// Sections: construction and the mode word, copies, lookups, length and text.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "core/card.h"
#include "core/importobject.h"

namespace {

// The mode word is shared by the whole process: each test sets the bits it
// needs and leaves the word as it found it.
class SectionTest : public testing::Test {
protected:
    void SetUp() override { saved = Card::isFlagOn(~0u); }
    void TearDown() override
    {
        Card::clearFlag(~0u);
        Card::setFlag(saved);
    }

private:
    unsigned saved = 0;
};

std::string writtenText(const std::function<void(_buffile*)>& write)
{
    char path[] = "/tmp/quillon_section_XXXXXX";
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

// A card of one integer field, built with names off so that it has no header.
Card* numberCard(const char* name, int v, unsigned width)
{
    const unsigned saved = Card::isFlagOn(Card::KEEP_NAMES);
    Card::clearFlag(Card::KEEP_NAMES);
    Card* card = new Card(name);
    card->addField("V", new Integer(v, width));
    Card::setFlag(saved);
    return card;
}

_KWTypeIDStr* newEntry()
{
    return static_cast<_KWTypeIDStr*>(std::malloc(sizeof(_KWTypeIDStr)));
}

// -------------------------------------------------------------- construction

TEST_F(SectionTest, ImportSectionIsMarkedForImportAndTurnsNamesOn)
{
    Card::clearFlag(Card::KEEP_NAMES);
    char keyword[] = "LISTE :";
    ImportObject section(keyword);
    EXPECT_EQ(section.ioType, 0x400);
    EXPECT_EQ(section.cardCounter, 0u);
    EXPECT_EQ(section.getKeyword(), "LISTE :");
    EXPECT_EQ(Card::isFlagOn(2), 2u);
}

TEST_F(SectionTest, KeywordTypeConstructorStoresTheType)
{
    Card::clearFlag(Card::KEEP_NAMES);
    char keyword[] = "LABELS :";
    unsigned type = 7;
    ImportObject section(keyword, type);
    EXPECT_EQ(section.getKeywordType(), 7u);
    EXPECT_EQ(section.ioType, 0x400);
    EXPECT_EQ(Card::isFlagOn(2), 2u);
}

TEST_F(SectionTest, ExportSectionIsMarkedForExportAndTurnsNamesOn)
{
    Card::clearFlag(Card::KEEP_NAMES);
    char keyword[] = "TABLES :";
    unsigned type = 8;
    ExportObject section(keyword, type);
    EXPECT_EQ(section.ioType, 0x800);
    EXPECT_EQ(section.getKeywordType(), 8u);
    EXPECT_EQ(section.lineCounter, 0u);
    EXPECT_EQ(section.providerFlag, 0u);
    EXPECT_EQ(section.cardCounter, 0u);
    EXPECT_EQ(Card::isFlagOn(2), 2u);

    Card::clearFlag(Card::KEEP_NAMES);
    ExportObject plain("NOM : X");
    EXPECT_EQ(plain.ioType, 0x800);
    EXPECT_EQ(Card::isFlagOn(2), 2u);
}

TEST_F(SectionTest, CopyingDoesNotTouchTheModeWord)
{
    ImportObject section("LISTE :");
    Card::clearFlag(Card::KEEP_NAMES);
    ImportObject copy(section);
    ExportObject exportSection("X");
    Card::clearFlag(Card::KEEP_NAMES);
    ExportObject exportCopy(exportSection);
    EXPECT_EQ(Card::isFlagOn(2), 0u);
}

// ------------------------------------------------------------------ copies

TEST_F(SectionTest, CopiesShareCardsAndKeywordTypeEntries)
{
    unsigned type = 2;
    ImportObject section("COMMENTAIRES :", type);
    section.addCard(numberCard("A", 1, 3));
    section.getKWTypeIDList()->push_back(newEntry());
    section.getIDList()->push_back(5);
    section.setShortKW(9);
    section.cardCounter = 4;

    ImportObject* copy = new ImportObject(section);
    EXPECT_EQ(copy->getCardList(), section.getCardList());
    EXPECT_EQ(*copy->getKWTypeIDList(), *section.getKWTypeIDList());
    EXPECT_EQ(*copy->getIDList(), std::vector<unsigned>{5});
    EXPECT_EQ(copy->shortKW, 9u);
    EXPECT_EQ(copy->cardCounter, 4u);
    EXPECT_EQ(copy->getKeywordType(), 2u);
    EXPECT_EQ(copy->getKeyword(), "COMMENTAIRES :");
    // Only one of the two may be destroyed with the shared entries.
    copy->getCardList().clear();
    copy->getKWTypeIDList()->clear();
    delete copy;

    ImportObject assigned("OTHER");
    assigned = section;
    EXPECT_EQ(assigned.getCardList(), section.getCardList());
    EXPECT_EQ(assigned.getKeyword(), "COMMENTAIRES :");
    assigned.getCardList().clear();
    assigned.getKWTypeIDList()->clear();
}

TEST_F(SectionTest, ExportCopyMoveAndAssignmentAllCopy)
{
    ExportObject section("LABELS :");
    section.addCard(numberCard("A", 1, 3));
    section.lineCounter = 3;
    section.providerState = 11;
    section.providerFlag = 12;

    ExportObject copy(section);
    EXPECT_EQ(copy.getCardList(), section.getCardList());
    EXPECT_EQ(copy.lineCounter, 3u);
    EXPECT_EQ(copy.providerState, 11u);
    EXPECT_EQ(copy.providerFlag, 12u);
    copy.getCardList().clear();

    ExportObject moved(std::move(section));
    EXPECT_EQ(section.getCardList().size(), 1u);
    EXPECT_EQ(moved.getCardList(), section.getCardList());
    EXPECT_EQ(moved.providerState, 11u);
    moved.getCardList().clear();

    ExportObject assigned("X");
    assigned = section;
    EXPECT_EQ(assigned.lineCounter, 3u);
    EXPECT_EQ(assigned.ioType, 0x800);
    assigned.getCardList().clear();
}

TEST_F(SectionTest, DestructionReleasesCardsAndEntries)
{
    // Leaks or double releases show under the sanitizers; here the section
    // is destroyed through its base with cards and entries in it.
    ImportObject* section = new ExportObject("X");
    section->addCard(numberCard("A", 1, 3));
    section->addCard(new DBCard("B"));
    section->addCard(nullptr);
    section->getKWTypeIDList()->push_back(newEntry());
    section->getKWTypeIDList()->push_back(newEntry());
    EXPECT_EQ(section->getCardList().size(), 3u);
    delete section;
}

// ------------------------------------------------------------------ lookups

TEST_F(SectionTest, FindCardOnTwoCardsOfOneNameGivesTheFirst)
{
    ImportObject section("X");
    Card* first = numberCard("Same", 1, 3);
    section.addCard(first);
    section.addCard(numberCard("Same", 2, 3));
    EXPECT_EQ(section.findCard("Same"), first);
}

TEST_F(SectionTest, FindCardIsExactAndGivesNullWhenMissing)
{
    ImportObject section("X");
    section.addCard(numberCard("MatClass", 1, 3));
    EXPECT_EQ(section.findCard("matclass"), nullptr);
    EXPECT_EQ(section.findCard("MatClas"), nullptr);
    EXPECT_EQ(section.findCard("MatClassX"), nullptr);
    EXPECT_NE(section.findCard("MatClass"), nullptr);
}

TEST_F(SectionTest, AccessorsReachTheMembers)
{
    ImportObject section("X");
    section.getKeyword() = "Y";
    EXPECT_EQ(section.keyword, "Y");
    section.getKeywordType() = 12;
    EXPECT_EQ(section.keywordType, 12u);
    section.getIDList()->push_back(3);
    EXPECT_EQ(section.IDList.size(), 1u);
    EXPECT_EQ(section.getKWTypeIDList(), &section.KWTypeIDList);
    EXPECT_EQ(&section.getCardList(), &section.cardList);
}

TEST_F(SectionTest, IOTypeTestsMasksAndCanBeReplaced)
{
    ImportObject section("X");
    EXPECT_EQ(section.isFlagOn(0x400), 0x400);
    EXPECT_EQ(section.isFlagOn(0x800), 0);
    EXPECT_EQ(section.isFlagOn(0xC00), 0x400);
    section.setIOType(0x8000);
    EXPECT_EQ(section.ioType, 0x8000);
    EXPECT_EQ(section.isFlagOn(0x400), 0);
    section.setShortKW(21);
    EXPECT_EQ(section.shortKW, 21u);
}

// ------------------------------------------------------------------- length

TEST_F(SectionTest, LengthCountsTheCards)
{
    ImportObject section("X");
    section.addCard(numberCard("A", 1, 3));
    section.addCard(numberCard("B", 2, 3));
    Card::clearFlag(8 | 16);
    EXPECT_EQ(section.length(), 2u);
    Card::setFlag(16);
    EXPECT_EQ(section.length(), 2u);
}

TEST_F(SectionTest, EmptySectionIsZeroLongWhereNoDriverHasRun)
{
    ImportObject section("X");
    Card::clearFlag(8 | 16);
    Card::setFlag(4 | 2);
    EXPECT_EQ(section.length(), 0u);
}

TEST_F(SectionTest, EmptySectionIsOneLongOnceADriverHasStarted)
{
    ImportObject section("X");
    Card::clearFlag(8 | 16);
    Card::setFlag(20);
    EXPECT_EQ(section.length(), 1u);
}

TEST_F(SectionTest, EmptySectionIsOneLongInReadOnlyMode)
{
    ImportObject section("X");
    Card::clearFlag(8 | 16);
    Card::setFlag(8);
    EXPECT_EQ(section.length(), 1u);
}

// --------------------------------------------------------------------- text

TEST_F(SectionTest, FileTextIsTheKeywordLineThenTheCards)
{
    ImportObject section("LABELS :");
    section.addCard(numberCard("A", 1, 3));
    section.addCard(numberCard("B", 22, 4));
    EXPECT_EQ(writtenText([&](_buffile* f) { section.toFile(f, false); }), "LABELS :\n  1\n  22\n");
}

TEST_F(SectionTest, FileTextOfASectionWithoutCardsIsOnlyTheKeywordLine)
{
    ImportObject section("FIN LISTE");
    EXPECT_EQ(writtenText([&](_buffile* f) { section.toFile(f, false); }), "FIN LISTE\n");
}

TEST_F(SectionTest, StringWithKeywordLineOfASectionWithoutCardsIsTheKeywordAndALineFeed)
{
    ImportObject section("LISTE :");
    std::string out;
    section.tostring(out, false, true);
    EXPECT_EQ(out, "LISTE :\n");
}

TEST_F(SectionTest, StringWithKeywordLineAppendsKeywordLineAndCards)
{
    ImportObject section("LISTE :");
    section.addCard(numberCard("A", 1, 3));
    std::string out = "before\n";
    section.tostring(out, false, true);
    EXPECT_EQ(out, "before\nLISTE :\n  1\n");
}

TEST_F(SectionTest, StringWithoutKeywordLineOnEmptyTextWrapsKeywordAndCards)
{
    ImportObject section("GRAIN");
    section.addCard(numberCard("A", 1, 3));
    section.addCard(numberCard("B", 2, 3));
    std::string out;
    section.tostring(out, true, false);
    EXPECT_EQ(out, "\nGRAIN 1\n2\n\n");
}

TEST_F(SectionTest, StringWithoutKeywordLineRewritesWhatTheCallerHad)
{
    ImportObject section("K");
    std::string out = "PRE";
    section.tostring(out, true, false);
    EXPECT_EQ(out, "\nPREK \n");
}

TEST_F(SectionTest, StringTextOfDBCardsIsTheCardText)
{
    ExportObject section("X");
    Card::clearFlag(Card::KEEP_NAMES);
    DBCard* card = new DBCard("D");
    int five = 5;
    card->addField("V", new Integer(five, 2));
    section.addCard(card);
    std::string out;
    section.tostring(out, false, true);
    EXPECT_EQ(out, "X\n 5\n");
}

} // namespace
