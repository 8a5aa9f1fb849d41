// Cases of the import road whose outcome the reading rules leave open: input
// beyond the reader's buffers, sections that would never end, blocks cut off
// by the end of the file. Each test names the case it pins; docs/decisions.md
// lists them with what Quillon does.
//
// The limits are refused by cutting: a word keeps what its slot holds, a line
// keeps the words that have a slot, an end keyword list keeps its first 127
// bytes, a fixed-column split keeps ten columns. Every test of a limit also
// shows that what lies within the limits comes out as it would without the
// over-limit input.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "core/card.h"
#include "core/dataline.h"
#include "core/dataloc.h"
#include "core/importobject.h"
#include "core/keywords.h"
#include "import/cardsetimport.h"
#include "import_test_support.h"
#include "section_test_support.h"
#include "sections/importbase.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

constexpr unsigned kEnd = DataLine::kEndFlagBit;

// A file on disk, opened for reading the way the driver opens a card file.
class Stream {
 public:
  explicit Stream(const std::string& bytes) {
    static int counter = 0;
    m_Path = importtest::ScratchDir() + "/open_cases_" + std::to_string(counter++) + ".mat";
    std::ofstream(m_Path, std::ios::binary | std::ios::trunc) << bytes;
    m_File = std::fopen(m_Path.c_str(), "rb");
  }
  ~Stream() {
    if (m_File != nullptr) std::fclose(m_File);
    std::remove(m_Path.c_str());
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  FILE* get() const { return m_File; }

 private:
  std::string m_Path;
  FILE* m_File = nullptr;
};

// `count` words of one letter, short enough to stay under the trim's line limit:
// "b" at word 0, "z" at word 2047 (the last slot), "y" behind it, "a" elsewhere.
std::string OneLetterWords(unsigned count) {
  std::string text;
  for (unsigned i = 0; i < count; ++i) {
    if (i != 0) text += " ";
    text += i == 0 ? "b" : i == DataLine::kWordSlots - 1 ? "z" : i >= DataLine::kWordSlots ? "y" : "a";
  }
  return text;
}

// A piece of work that must end: run in a child process with a time limit, so
// that a section loop that never ends fails the test instead of hanging the run.
void ExpectEndsInTime(const std::function<void()>& work) {
  EXPECT_EXIT(
      {
        alarm(10);
        work();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

// The whole card file imported into an empty store, and the database saved;
// the text of the saved database.
std::string ImportedDatabase(const std::string& name, const std::string& text, int* result = nullptr) {
  importtest::FreshStore();
  const std::string path = importtest::WriteCardFile(name, text);
  const std::string database = importtest::ScratchDir() + "/open_cases_db.xml";
  {
    const importtest::HostImport run = importtest::ImportAsAHost(path, database);
    if (result != nullptr) *result = run.visited;
    EXPECT_NE(nullptr, run.document);
  }
  EXPECT_TRUE(OrvaneStaticVars::SaveDatabase(database.c_str()));
  std::ifstream in(database, std::ios::binary);
  std::stringstream saved;
  saved << in.rdbuf();
  return saved.str();
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace

// =============================================================================
// Line reader: words over 2050 bytes.

TEST(OpenCases, WordOfExactly2049BytesIsKeptWhole) {
  const std::string longest(DataLine::kWordSize - 1, 'x');
  Stream file(longest + " y\n" + longest + "\n");
  DataLine reader(file.get());
  unsigned n = 8;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(2u, n);
  EXPECT_EQ(longest, reader.words[0]);
  EXPECT_STREQ("y", reader.words[1]);
  n = 1;
  reader.readNextCardAsWords(n, "", nullptr);
  EXPECT_EQ(longest, reader.words[0]);
}

TEST(OpenCases, WordOver2049BytesIsCutToItsSlotAndTheLinesAroundItReadAsUsual) {
  Stream file("a b\n" + std::string(3000, 'x') + " y z\nc d\n");
  DataLine reader(file.get());
  unsigned n = 8;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(2u, n);
  EXPECT_STREQ("a", reader.words[0]);
  EXPECT_STREQ("b", reader.words[1]);

  n = 8;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(3u, n);
  EXPECT_EQ(std::string(DataLine::kWordSize - 1, 'x'), reader.words[0]);
  // The next slots hold their own words: nothing ran over from the cut one.
  EXPECT_STREQ("y", reader.words[1]);
  EXPECT_STREQ("z", reader.words[2]);

  n = 8;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(2u, n);
  EXPECT_STREQ("c", reader.words[0]);
  EXPECT_STREQ("d", reader.words[1]);
  EXPECT_STREQ("z", reader.words[2]);  // slots behind the last word keep what they held
}

TEST(OpenCases, WholeLineOver2049BytesIsCutToItsSlotInEveryWholeLineRead) {
  const std::string line = std::string(4000, 'q') + " tail";
  Stream file(line + "\n" + line + "\n" + line + "\nnext\n");
  DataLine reader(file.get());
  reader.readNextCard();
  EXPECT_EQ(std::string(DataLine::kWordSize - 1, 'q'), reader.words[0]);
  EXPECT_EQ(line, reader.line);  // the line itself is whole
  unsigned n = 0;
  ASSERT_NE(nullptr, reader.readRawData(n, "FIN"));
  EXPECT_EQ(std::string(DataLine::kWordSize - 1, 'q'), reader.words[0]);
  n = 1;
  reader.readNextCardAsWords(n, "", "FIN");
  EXPECT_EQ(std::string(DataLine::kWordSize - 1, 'q'), reader.words[0]);
  n = 1;
  reader.readNextCardAsWords(n, "", "FIN");
  EXPECT_STREQ("next", reader.words[0]);
}

TEST(OpenCases, OverlongLabelValueIsCutAndEveryOtherResultIsUnchanged) {
  const std::string head =
      "LISTE :\nW S355 mechanical mm\nFIN LISTE\nNOM : W S355 mechanical mm\n"
      "COMMENTAIRES :\nPlate\nFIN COMMENTAIRES\nLABELS :\nRHO 7.85e-6\nZZZ ";
  const std::string tail = "\nNU 0.3\nFIN LABELS\nFIN NOM\n";
  const std::string normal = ImportedDatabase("normal_value.mat", head + "short" + tail);
  const std::string overlong = ImportedDatabase("overlong_value.mat", head + std::string(3000, 'x') + tail);
  // The label line is whole in its first word up to the slot's 2049 bytes:
  // "ZZZ " and 2045 of the value's bytes.
  const std::string kept(DataLine::kWordSize - 1 - 4, 'x');
  ASSERT_NE(std::string::npos, overlong.find(">" + kept + "<"));
  EXPECT_EQ(std::string::npos, overlong.find(kept + "x"));
  EXPECT_NE(std::string::npos, normal.find(">short<"));
  EXPECT_EQ(normal, ReplaceAll(overlong, kept, "short"));
}

TEST(OpenCases, ListLineWhoseJoinedNameOutgrowsItsWordIsCutWithoutTouchingTheNextWord) {
  importtest::FreshStore();
  const std::string type(1500, 'T');
  const std::string id(1500, 'I');
  importtest::SectionRun run("LISTE :\n" + type + " " + id + " mechanical mm\nFIN LISTE\n", KW_MATLIST,
                             runMatListImport);
  ASSERT_EQ(1u, run.cards().size());
  const std::string joined = (type + "_" + id).substr(0, DataLine::kWordSize - 1);
  EXPECT_EQ(joined, importtest::Field(run.cards()[0], "MaterialID"));
  EXPECT_EQ("mechanical", importtest::Field(run.cards()[0], "MatModelID"));
  EXPECT_EQ("mm", importtest::Field(run.cards()[0], "Units"));
  EXPECT_STREQ("mechanical", OrvaneStaticVars::GetActiveModel());
  EXPECT_NE(nullptr, importtest::FindMaterial(joined));
}

// =============================================================================
// Line reader: over 2048 words on a line, over 2048 numbers.

TEST(OpenCases, LineOfExactly2048WordsKeepsEveryWord) {
  Stream file(OneLetterWords(DataLine::kWordSlots) + "\n");
  DataLine reader(file.get());
  unsigned n = 4000;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(DataLine::kWordSlots, n);
  EXPECT_STREQ("b", reader.words[0]);
  EXPECT_STREQ("a", reader.words[1]);
  EXPECT_STREQ("z", reader.words[DataLine::kWordSlots - 1]);
}

TEST(OpenCases, WordsBeyondThe2048thAreDroppedAndTheNextLineReadsAsUsual) {
  Stream file(OneLetterWords(2100) + "\nA B C\n");
  DataLine reader(file.get());
  unsigned n = 4000;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(DataLine::kWordSlots, n);
  EXPECT_STREQ("b", reader.words[0]);
  EXPECT_STREQ("z", reader.words[DataLine::kWordSlots - 1]);
  n = 4000;
  reader.readNextCardAsWords(n, " ", nullptr);
  ASSERT_EQ(3u, n);
  EXPECT_STREQ("A", reader.words[0]);
  EXPECT_STREQ("C", reader.words[2]);
  EXPECT_STREQ("a", reader.words[3]);  // slots behind the last word keep what they held
}

TEST(OpenCases, LineOfMoreThan2048WordsIsCutAndEveryOtherResultIsUnchanged) {
  const std::string head =
      "LISTE :\nW S355 diffusion mm\nFIN LISTE\nNOM : W S355 diffusion mm\nCHIMIE :\nC 0.2\nZZZ 7";
  const std::string tail = "\nN 0.01\nFIN CHIMIE\nFIN NOM\n";
  const std::string normal = ImportedDatabase("normal_words.mat", head + tail);
  const std::string overlong = ImportedDatabase("many_words.mat", head + " " + OneLetterWords(2200) + tail);
  ASSERT_NE(std::string::npos, normal.find(">7<"));
  // Only the first two words of a chemistry line reach the store, so the
  // store is the same, however many words the line had.
  EXPECT_EQ(normal, overlong);
}

TEST(OpenCases, CommaValuesBeyondThe2048thAreDroppedAndTheNextLineReadsAsUsual) {
  std::string values;
  for (unsigned i = 1; i <= 2100; ++i) values += (i == 1 ? "" : ",") + std::to_string(i);
  Stream file(values + "\n5,6\n");
  DataLine reader(file.get());
  unsigned n = 1;
  const double* numbers = reader.readNextCardAsDoubles(n);
  ASSERT_EQ(DataLine::kValueCount, n);
  EXPECT_EQ(1.0, numbers[0]);
  EXPECT_EQ(2048.0, numbers[DataLine::kValueCount - 1]);
  n = 1;
  numbers = reader.readNextCardAsDoubles(n);
  ASSERT_EQ(2u, n);
  EXPECT_EQ(5.0, numbers[0]);
  EXPECT_EQ(6.0, numbers[1]);
}

TEST(OpenCases, CommaLineOfExactly2048ValuesKeepsEveryValue) {
  std::string values;
  for (unsigned i = 1; i <= DataLine::kValueCount; ++i) values += (i == 1 ? "" : ",") + std::to_string(i);
  Stream file(values + "\n");
  DataLine reader(file.get());
  unsigned n = 1;
  const double* numbers = reader.readNextCardAsDoubles(n);
  ASSERT_EQ(DataLine::kValueCount, n);
  EXPECT_EQ(2048.0, numbers[DataLine::kValueCount - 1]);
}

TEST(OpenCases, ConvertToDoublesTakesNoMoreThan2048Numbers) {
  DataLine reader(nullptr);
  unsigned n = 5000;
  const double* numbers = reader.convertToDoubles("7.5", n);
  EXPECT_EQ(7.5, numbers[0]);
  EXPECT_EQ(0.0, numbers[1]);
  EXPECT_EQ(0.0, numbers[DataLine::kValueCount - 1]);
  // The same text with a count within the limit gives the same first numbers.
  n = 2;
  numbers = reader.convertToDoubles("7.5", n);
  EXPECT_EQ(7.5, numbers[0]);
  EXPECT_EQ(0.0, numbers[1]);
}

// =============================================================================
// Line reader: end keyword lists over 128 bytes.

namespace {

// A list whose first 127 bytes are the short list "FIN A,FIN B" and filler,
// with a further keyword behind the limit.
std::string LongKeywordList() {
  std::string list = "FIN A,FIN B,";
  list += std::string(DataLine::kKeywordListSize - 1 - list.size(), 'Q');
  list += ",FIN C";
  EXPECT_GT(list.size(), DataLine::kKeywordListSize);
  return list;
}

// Where each read of the reader stops in `text` under `list`: the lines taken
// before the end, and whether the end flag came on.
std::string WordsReadUntilTheEnd(const std::string& text, const std::string& list) {
  Stream file(text);
  DataLine reader(file.get());
  std::string seen;
  for (;;) {
    unsigned n = 1;
    reader.readNextCardAsWords(n, "", list.c_str());
    if (n == 0) break;
    seen += std::string(reader.words[0]) + "|";
  }
  return seen + (reader.isFlagOn(kEnd) ? "end" : "eof");
}

std::string RawLinesReadUntilTheEnd(const std::string& text, const std::string& list) {
  Stream file(text);
  DataLine reader(file.get());
  std::string seen;
  unsigned n = 0;
  while (reader.readRawData(n, list.c_str()) != nullptr) seen += reader.words[0];
  return seen + (reader.isFlagOn(kEnd) ? "end" : "eof");
}

std::string ReadToTheEnd(const std::string& text, const std::string& list) {
  Stream file(text);
  DataLine reader(file.get());
  std::string seen;
  reader.readToEnd(seen, list.c_str());
  return seen + (reader.isFlagOn(kEnd) ? "end" : "eof");
}

}  // namespace

TEST(OpenCases, EndKeywordListOver127BytesEndsSectionsAsItsFirst127Bytes) {
  const std::string longList = LongKeywordList();
  const std::string shortList = "FIN A,FIN B";
  for (const std::string& text : {std::string("one\nfin b\ntwo\n"), std::string("one\nFIN C\ntwo\nFIN A\nthree\n"),
                                  std::string("one\ntwo\n")}) {
    EXPECT_EQ(WordsReadUntilTheEnd(text, shortList), WordsReadUntilTheEnd(text, longList)) << text;
    EXPECT_EQ(RawLinesReadUntilTheEnd(text, shortList), RawLinesReadUntilTheEnd(text, longList)) << text;
    EXPECT_EQ(ReadToTheEnd(text, shortList), ReadToTheEnd(text, longList)) << text;
  }
  // The keyword behind the limit takes no part; the ones within it do.
  EXPECT_EQ("one|FIN C|two|end", WordsReadUntilTheEnd("one\nFIN C\ntwo\nFIN A\nthree\n", longList));
  EXPECT_EQ("one\nFIN C\ntwo\nend", RawLinesReadUntilTheEnd("one\nFIN C\ntwo\nFIN A\nthree\n", longList));
}

TEST(OpenCases, EndKeywordListOfExactly127BytesKeepsItsLastKeyword) {
  std::string list = std::string(DataLine::kKeywordListSize - 1 - 8, 'Q') + ",FIN END";
  ASSERT_EQ(DataLine::kKeywordListSize - 1, list.size());
  EXPECT_EQ("one|end", WordsReadUntilTheEnd("one\nFIN END\ntwo\n", list));
  // "FIN EN" alone is no keyword of the list.
  EXPECT_EQ("one|FIN ENX|eof", WordsReadUntilTheEnd("one\nFIN ENX\n", list));
}

// =============================================================================
// Line reader: fixed-column counts over 10.

TEST(OpenCases, FixedColumnCountOver10GivesTheFirst10ColumnsUnchanged) {
  const std::string text = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  DataLine within(nullptr);
  std::strcpy(within.line, text.c_str());
  const std::vector<unsigned> widths(DataLine::kFixedSlots, 3);
  unsigned n = DataLine::kFixedSlots;
  within.splitIntoWords(n, widths.data());
  ASSERT_EQ(DataLine::kFixedSlots, n);

  DataLine beyond(nullptr);
  std::strcpy(beyond.line, text.c_str());
  const std::vector<unsigned> moreWidths(25, 3);
  unsigned more = 25;
  beyond.splitIntoWords(more, moreWidths.data());
  EXPECT_EQ(DataLine::kFixedSlots, more);
  EXPECT_EQ(within.column, beyond.column);
  EXPECT_EQ(30u, beyond.column);
  for (unsigned slot = 0; slot < DataLine::kFixedSlots; ++slot)
    EXPECT_STREQ(within.fixedWords[slot], beyond.fixedWords[slot]) << slot;
  EXPECT_STREQ("IJK", beyond.fixedWords[6]);
  // The word slots, which lie elsewhere, are left alone.
  EXPECT_STREQ("", beyond.words[0]);
}

// =============================================================================
// Locator: offsets are the platform's file positions.

TEST(OpenCases, SectionOffsetsAreAsWideAsTheFilePositionsOfFtell) {
  static_assert(std::is_same<std::vector<long>, decltype(DataLoc::offsets)>::value, "offsets are ftell's long");
  // On the platforms Quillon is built for a long counts past 2 GiB.
  EXPECT_GE(sizeof(long), 8u);
  Stream file("LISTE :\nW S mechanical mm\nFIN LISTE\n\n  NOM : W S mechanical mm\r\nFIN NOM\n");
  DataLoc located(file.get());
  ASSERT_EQ(3u, located.offsets.size());
  EXPECT_EQ(0L, located.offsets[0]);
  EXPECT_EQ(37L, located.offsets[1]);  // the raw line, blanks included
  EXPECT_EQ("NOM : W S mechanical mm", located.keywords[1]);
}

// =============================================================================
// Text sections: a file that ends inside a comment block.

TEST(OpenCases, FileEndingInsideACommentBlockEndsTheCommentsAndTheImport) {
  // No "FIN COMMENTAIRES" and no line end behind the last line.
  const std::string text =
      "NOM : W S355 mechanical mm\nCOMMENTAIRES :\nClass\nLow alloy steels\nEndClass\nPlate";
  ExpectEndsInTime([&] { ImportedDatabase("open_comments.mat", text); });
  if (HasFailure()) return;
  int visited = 0;
  const std::string saved = ImportedDatabase("open_comments.mat", text, &visited);
  // "NOM :", "COMMENTAIRES :" and "Class", the last nested in the comments.
  EXPECT_EQ(3, visited);
  OrvaneMLRecordMaterials* folder = OrvaneStaticVars::GetCurrentMaterials();
  ASSERT_NE(nullptr, folder);
  EXPECT_STREQ("Low alloy steels", folder->GetName());
  OrvaneMLRecordDataset* comments =
      importtest::FindDatasetOf(importtest::FindMaterial("W_S355"), "CategoryComments");
  ASSERT_NE(nullptr, comments);
  ASSERT_NE(nullptr, comments->m_String);
  EXPECT_EQ("Class;Low alloy steels;EndClass;Plate", std::string(comments->m_String->GetValue()));
}

TEST(OpenCases, CommentSectionCutOffByTheEndOfTheFileMakesNoCardForTheMissingLine) {
  importtest::FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  importtest::SectionRun run("COMMENTAIRES :\none\n\ntwo", KW_COMMENTS, runCommentsImport);
  // Three lines, the blank one included, and nothing for the end of the file.
  ASSERT_EQ(3u, run.cards().size());
  EXPECT_EQ("two", importtest::Field(run.cards()[2], "Comments"));
  EXPECT_FALSE(run.dataLine().isFlagOn(kEnd));
}

// =============================================================================
// Variable sections: a phase count of 0 leaves the section.

namespace {

const char kThermal[] = "NOM : W S1 thermometal_cp mm";

class OpenCasesStore : public sectiontest::StoreTest {};

// The section `keyword` of `text` read with `entry` in a child with a time limit.
void ExpectSectionEndsInTime(const std::string& text, const std::string& keyword, SectionEntry entry) {
  ExpectEndsInTime([&] {
    sectiontest::CardFile file(text);
    file.Read(keyword, entry);
  });
}

}  // namespace

TEST_F(OpenCasesStore, PhaseLineWithoutNumberLeavesTheMateriauxSection) {
  const std::string text = std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE\nRHO 7800\nFIN MATERIAUX\n";
  ExpectSectionEndsInTime(text, "MATERIAUX :", runMateriauxImport);
  if (HasFailure()) return;
  sectiontest::CardFile file(text);
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  EXPECT_EQ((std::vector<std::string>{"Metallurgy", "Phase"}), sectiontest::CardNames(section));
  EXPECT_EQ(nullptr, sectiontest::DatasetOf(sectiontest::StoreID("RHO")));
}

TEST_F(OpenCasesStore, PhaseCountThatIsNoNumberReadsAsZeroAndLeavesTheSection) {
  const std::string text = std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE six\nRHO 7800\nFIN MATERIAUX\n";
  ExpectSectionEndsInTime(text, "MATERIAUX :", runMateriauxImport);
  if (HasFailure()) return;
  sectiontest::CardFile file(text);
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  ASSERT_EQ((std::vector<std::string>{"Metallurgy", "Phase"}), sectiontest::CardNames(section));
  EXPECT_EQ((std::vector<std::string>{"PHASE", "0"}), sectiontest::Fields(section.getCardList()[1]));
  EXPECT_EQ(nullptr, sectiontest::DatasetOf(sectiontest::StoreID("RHO")));
}

TEST_F(OpenCasesStore, MateriauxSectionEndingBeforeItsPhaseLineLeavesTheSection) {
  const std::string text = std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\n";
  ExpectSectionEndsInTime(text, "MATERIAUX :", runMateriauxImport);
  if (HasFailure()) return;
  sectiontest::CardFile file(text);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  // The end of the file leaves the phase step a card without fields.
  ASSERT_EQ((std::vector<std::string>{"Metallurgy", "Phase"}), sectiontest::CardNames(section));
  EXPECT_TRUE(section.getCardList()[1]->getVarValues().empty());
}

TEST_F(OpenCasesStore, MetallurgyHeaderWithoutPhaseNumberLeavesTheSection) {
  const std::vector<std::string> headers = {"MATERIAL 1 PHASE", "MATERIAL 1 PHASE none"};
  for (const std::string& header : headers) {
    const std::string text = header + "\nRHO 7800\nEND\n";
    ExpectSectionEndsInTime(text, header, runMetallurgyImport);
    if (HasFailure()) return;
    sectiontest::CardFile file(text);
    ImportObject& section = file.Read(header, runMetallurgyImport);
    EXPECT_EQ(std::vector<std::string>{"Metallurgy"}, sectiontest::CardNames(section)) << header;
  }
}

TEST_F(OpenCasesStore, NonZeroPhaseCountStillReadsEveryVariableLine) {
  // The way out for a count of 0 leaves counts within the usual range alone.
  sectiontest::CardFile file(std::string(kThermal) +
                             "\nMATERIAUX :\nMETALLURGY\nPHASE 2\nRHO 7800\nKX(1) = 0.05\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  const std::vector<std::string> expected = {"Metallurgy", "Phase",       "VarLineData",
                                             "SplitLineData", "VarLineData", "SplitLineData"};
  EXPECT_EQ(expected, sectiontest::CardNames(section));
  EXPECT_EQ("7800", sectiontest::ConstantText(sectiontest::DatasetOf(sectiontest::StoreID("RHO"))));
}

TEST(OpenCases, SectionsBehindAZeroPhaseBlockAreStillRead) {
  const std::string text =
      "NOM : W S1 thermometal_cp mm\nMATERIAUX :\nMETALLURGY\nPHASE 0\nRHO 7800\nFIN MATERIAUX\n"
      "CHIMIE :\nC 0.2\nFIN CHIMIE\nFIN NOM\n";
  ExpectEndsInTime([&] { ImportedDatabase("zero_phases.mat", text); });
  if (HasFailure()) return;
  int visited = 0;
  const std::string saved = ImportedDatabase("zero_phases.mat", text, &visited);
  // "NOM :", "MATERIAUX :", "METALLURGY" (located, read by no section reader),
  // "CHIMIE :", "FIN NOM".
  EXPECT_EQ(5, visited);
  EXPECT_NE(std::string::npos, saved.find(">0.2<"));
  EXPECT_EQ(std::string::npos, saved.find(">7800<"));
}

// =============================================================================
// Tables grammar: the text behind the slash is one word.

TEST(OpenCases, TableTextOver2049BytesBehindTheSlashIsCutToItsWordAndTheNextLinesReadAsUsual) {
  std::string behind = " T 1 300";
  for (int i = 0; i < 300; ++i) behind += " " + std::to_string(20 + i) + ". 355.";
  ASSERT_GT(behind.size(), DataLine::kWordSize);
  const std::string head = "NOM : W S355 mechanical mm\nLABELS :\nYIELD -&5&\nFIN LABELS\nTABLES :\n5 /";
  const std::string tail = "\n5 / T 1 1 900. 12.\n6 / T 1 1 20. 1.\nFIN TABLES\nFIN NOM\n";
  const std::string overlong = ImportedDatabase("long_table.mat", head + behind + tail);
  // The same line written only as far as the word holds it.
  const std::string cut = ImportedDatabase("cut_table.mat", head + behind.substr(0, DataLine::kWordSize - 1) + tail);
  EXPECT_EQ(cut, overlong);
  // What stood within the word is there, the second line of table 5 too, and
  // table 6 is a table of its own.
  EXPECT_NE(std::string::npos, overlong.find("<Value>21.</Value>"));
  EXPECT_NE(std::string::npos, overlong.find("<Value>900.</Value>"));
  EXPECT_NE(std::string::npos, overlong.find("DatasetID=\"6\""));
  EXPECT_EQ(std::string::npos, overlong.find("<Value>319.</Value>"));  // the 300th pair was behind the cut
}
