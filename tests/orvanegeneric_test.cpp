#include "store/orvanegeneric.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// ---- Trim ------------------------------------------------------------------

TEST(OrvaneGenericTrim, RemovesBlanksAtBothEndsAndKeepsInnerOnes) {
  char text[] = " \t Phase 1 \r\n";
  EXPECT_STREQ(OrvaneGeneric::Trim(text), "Phase 1");
}

TEST(OrvaneGenericTrim, AllBlankTextBecomesEmpty) {
  char text[] = "   \t";
  EXPECT_STREQ(OrvaneGeneric::Trim(text), "");
}

TEST(OrvaneGenericTrim, WorksInPlaceInTheCallersBuffer) {
  char text[] = "  RHO  ";
  char* start = OrvaneGeneric::Trim(text);
  EXPECT_EQ(start, text + 2);
  EXPECT_EQ(text[5], '\0');
}

TEST(OrvaneGenericTrim, NullGivesNull) { EXPECT_EQ(OrvaneGeneric::Trim(nullptr), nullptr); }

// ---- SplitIntoWords --------------------------------------------------------

// Rows with a guard row behind the ones the call may use, to catch overruns.
struct GuardedRows {
  char rows[OrvaneGeneric::kSplitMaxRows + 1][128];
  GuardedRows() { std::memset(rows, '#', sizeof rows); }
  bool GuardIntact(int from) const {
    for (std::size_t i = 0; i < sizeof rows[0]; ++i) {
      if (rows[from][i] != '#') return false;
    }
    return true;
  }
};

TEST(OrvaneGenericSplit, CutsAtBlanks) {
  GuardedRows out;
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords("Phase 1", ' ', out.rows), 2);
  EXPECT_STREQ(out.rows[0], "Phase");
  EXPECT_STREQ(out.rows[1], "1");
}

TEST(OrvaneGenericSplit, CutsAtCommasAndKeepsBlanksInsidePieces) {
  GuardedRows out;
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords("mechanical, thermal,metallurgy", ',', out.rows), 3);
  EXPECT_STREQ(out.rows[0], "mechanical");
  EXPECT_STREQ(out.rows[1], " thermal");
  EXPECT_STREQ(out.rows[2], "metallurgy");
}

TEST(OrvaneGenericSplit, CutsAtVerticalBars) {
  GuardedRows out;
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords("A|B C|D", '|', out.rows), 3);
  EXPECT_STREQ(out.rows[0], "A");
  EXPECT_STREQ(out.rows[1], "B C");
  EXPECT_STREQ(out.rows[2], "D");
}

TEST(OrvaneGenericSplit, EmptyPiecesBetweenAndAroundSeparatorsAreNotCounted) {
  GuardedRows out;
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords(",a,,b,", ',', out.rows), 2);
  EXPECT_STREQ(out.rows[0], "a");
  EXPECT_STREQ(out.rows[1], "b");
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords("  Phase   1 ", ' ', out.rows), 2);
  EXPECT_STREQ(out.rows[1], "1");
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords("", ' ', out.rows), 0);
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords("|||", '|', out.rows), 0);
}

TEST(OrvaneGenericSplit, TextWithoutTheSeparatorIsOnePiece) {
  GuardedRows out;
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords("Martensite", ',', out.rows), 1);
  EXPECT_STREQ(out.rows[0], "Martensite");
}

TEST(OrvaneGenericSplit, PieceLongerThan127CharactersIsCutWithoutOverrun) {
  GuardedRows out;
  const std::string longPiece(300, 'x');
  const std::string text = longPiece + " next";
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords(text.c_str(), ' ', out.rows), 2);
  EXPECT_EQ(std::strlen(out.rows[0]), 127u);
  EXPECT_EQ(std::string(out.rows[0]), std::string(127, 'x'));
  EXPECT_STREQ(out.rows[1], "next");
  EXPECT_TRUE(out.GuardIntact(2));
}

TEST(OrvaneGenericSplit, PieceOfExactly127CharactersIsKeptWhole) {
  GuardedRows out;
  const std::string piece(127, 'y');
  ASSERT_EQ(OrvaneGeneric::SplitIntoWords(piece.c_str(), ',', out.rows), 1);
  EXPECT_EQ(std::string(out.rows[0]), piece);
}

TEST(OrvaneGenericSplit, StopsAtTheRowLimit) {
  GuardedRows out;
  std::string text;
  for (int i = 0; i < OrvaneGeneric::kSplitMaxRows + 10; ++i) text += "w ";
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords(text.c_str(), ' ', out.rows),
            OrvaneGeneric::kSplitMaxRows);
  EXPECT_TRUE(out.GuardIntact(OrvaneGeneric::kSplitMaxRows));

  char two[3][128];
  std::memset(two, '#', sizeof two);
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords("a b c d", ' ', two, 2), 2);
  EXPECT_STREQ(two[1], "b");
  EXPECT_EQ(two[2][0], '#');
}

TEST(OrvaneGenericSplit, NullTextOrRowsGiveZero) {
  GuardedRows out;
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords(nullptr, ' ', out.rows), 0);
  EXPECT_EQ(OrvaneGeneric::SplitIntoWords("a b", ' ', nullptr), 0);
}

// ---- IsValidNumber ---------------------------------------------------------

bool IsNumber(const char* text) {
  std::string copy = text;
  return OrvaneGeneric::IsValidNumber(copy.data());
}

TEST(OrvaneGenericNumber, AcceptsWholeDecimalNumbers) {
  EXPECT_TRUE(IsNumber("12"));
  EXPECT_TRUE(IsNumber("-1.5e3"));
  EXPECT_TRUE(IsNumber("+3"));
  EXPECT_TRUE(IsNumber(".5"));
  EXPECT_TRUE(IsNumber("5."));
  EXPECT_TRUE(IsNumber("2.5E-05"));
  EXPECT_TRUE(IsNumber("350"));
}

TEST(OrvaneGenericNumber, AcceptsBlanksAroundTheNumber) {
  EXPECT_TRUE(IsNumber(" 12 "));
  EXPECT_TRUE(IsNumber("\t-7\n"));
}

TEST(OrvaneGenericNumber, RefusesAnythingThatIsNotWhollyANumber) {
  EXPECT_FALSE(IsNumber("1e"));
  EXPECT_FALSE(IsNumber("abc"));
  EXPECT_FALSE(IsNumber(""));
  EXPECT_FALSE(IsNumber("   "));
  EXPECT_FALSE(IsNumber("12abc"));
  EXPECT_FALSE(IsNumber("1.2.3"));
  EXPECT_FALSE(IsNumber("1 2"));
  EXPECT_FALSE(IsNumber("-"));
  EXPECT_FALSE(IsNumber("."));
  EXPECT_FALSE(IsNumber("e5"));
  EXPECT_FALSE(IsNumber("nan"));
  EXPECT_FALSE(IsNumber("inf"));
  EXPECT_FALSE(IsNumber("0x10"));
  EXPECT_FALSE(IsNumber("1*-5"));
  EXPECT_FALSE(IsNumber("Tempered"));
  EXPECT_FALSE(OrvaneGeneric::IsValidNumber(nullptr));
}

TEST(OrvaneGenericNumber, LeavesTheTextUnchanged) {
  char text[] = " 12 ";
  OrvaneGeneric::IsValidNumber(text);
  EXPECT_STREQ(text, " 12 ");
}

// ---- GetFormatOfNumberWithSpace ---------------------------------------------

TEST(OrvaneGenericFormat, GivesTheWrittenNumberWithOneBlankInFront) {
  std::string out = "old";
  OrvaneGeneric::GetFormatOfNumberWithSpace("1.5E-05", out);
  EXPECT_EQ(out, " 1.5E-05");
  OrvaneGeneric::GetFormatOfNumberWithSpace("   20  ", out);
  EXPECT_EQ(out, " 20");
}

TEST(OrvaneGenericFormat, BlankOrNullTextGivesEmpty) {
  std::string out = "old";
  OrvaneGeneric::GetFormatOfNumberWithSpace("   ", out);
  EXPECT_EQ(out, "");
  out = "old";
  OrvaneGeneric::GetFormatOfNumberWithSpace(nullptr, out);
  EXPECT_EQ(out, "");
}

// ---- strtoken and ReplaceAllOccurrencesOfString ------------------------------

TEST(OrvaneGenericAPITokens, AppendsThePiecesAndCountsThem) {
  std::vector<std::string> out = {"kept"};
  EXPECT_EQ(OrvaneGenericAPI::strtoken("20,100,,300", ',', out), 3);
  EXPECT_EQ(out, (std::vector<std::string>{"kept", "20", "100", "300"}));
}

TEST(OrvaneGenericAPITokens, TextWithoutSeparatorIsOnePieceAndEmptyTextNone) {
  std::vector<std::string> out;
  EXPECT_EQ(OrvaneGenericAPI::strtoken("20", ',', out), 1);
  EXPECT_EQ(OrvaneGenericAPI::strtoken("", ',', out), 0);
  EXPECT_EQ(OrvaneGenericAPI::strtoken(nullptr, ',', out), 0);
  EXPECT_EQ(out, (std::vector<std::string>{"20"}));
}

TEST(OrvaneGenericAPITokens, LongPiecesAreKeptWhole) {
  std::vector<std::string> out;
  const std::string longPiece(500, 'z');
  EXPECT_EQ(OrvaneGenericAPI::strtoken((longPiece + "|b").c_str(), '|', out), 2);
  EXPECT_EQ(out[0], longPiece);
}

TEST(OrvaneGenericAPIReplace, ReplacesEveryOccurrence) {
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("a_b_c", "_", " "), "a b c");
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("1E-05", "E", "*"), "1*-05");
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("aaa", "aa", "b"), "ba");
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("none", "x", "y"), "none");
}

TEST(OrvaneGenericAPIReplace, ReplacementContainingTheSearchedTextIsNotSearchedAgain) {
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("a.a", "a", "aa"), "aa.aa");
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("x", "x", ""), "");
}

TEST(OrvaneGenericAPIReplace, EmptySearchTextLeavesTheTextUnchanged) {
  EXPECT_EQ(OrvaneGenericAPI::ReplaceAllOccurrencesOfString("abc", "", "x"), "abc");
}

// ---- Warning log -------------------------------------------------------------

TEST(OrvaneGenericLogTest, KeepsWarningsInOrderUntilCleared) {
  OrvaneGenericLog::ClearDBWarnings();
  OrvaneGenericLog::AddDBWarning("Dataset is missing and data ignored");
  OrvaneGenericLog::AddDBWarning(nullptr);
  OrvaneGenericLog::AddDBWarning("second");
  EXPECT_EQ(OrvaneGenericLog::GetDBWarnings(),
            (std::vector<std::string>{"Dataset is missing and data ignored", "second"}));
  OrvaneGenericLog::ClearDBWarnings();
  EXPECT_TRUE(OrvaneGenericLog::GetDBWarnings().empty());
}

// ---- Mapping files -------------------------------------------------------------

class MappingFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "quillon-mapping-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    m_Dir = pattern;
    Write("mapping.xml",
          "<Mapping Solution=\"Oriel Joint\">\n"
          "  <Section CardsetKW=\"LABELS :\" CardsetKWParent=\"MATERIAUX :\" CardsetModel=\"mechanical\"/>\n"
          "  <Parameter OrvaneMLID=\"Density\" CardsetID=\"RHO\" CardsetKW=\"LABELS :\"\n"
          "             CardsetModel=\"mechanical,thermal\" StartID=\"100\"/>\n"
          "  <Parameter OrvaneMLID=\"Density\" CardsetID=\"RHO2\" CardsetKW=\"TABLES :\" StartID=\"900\"/>\n"
          "  <Parameter OrvaneMLID=\"Yield\" CardsetID=\"SIGY\"/>\n"
          "  <Group>\n"
          "    <Item CardsetID=\"RHO\" CardsetKW=\"TABLES :\" CardsetModel=\"thermal\"/>\n"
          "  </Group>\n"
          "  <Parameter CardsetKW=\"NO KEY\" CardsetModel=\"none\"/>\n"
          "  <Section CardsetKW=\"TABLES :\" CardsetModel=\"mechanical\"/>\n"
          "</Mapping>\n");
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(m_Dir, ignored);
  }
  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = m_Dir + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::string Path(const std::string& name) const { return m_Dir + "/" + name; }

  std::string m_Dir;
};

using Rows = std::multimap<std::string, std::vector<std::string>>;

std::vector<std::vector<std::string>> RowsOf(const Rows& rows, const std::string& key) {
  std::vector<std::vector<std::string>> found;
  auto range = rows.equal_range(key);
  for (auto it = range.first; it != range.second; ++it) found.push_back(it->second);
  return found;
}

TEST_F(MappingFileTest, EveryElementWithKeyAndFirstAttributeGivesARow) {
  Rows rows;
  ASSERT_NE(OrvaneGeneric::GetMappingFromXMLFile(Path("mapping.xml").c_str(), rows, "CardsetID",
                                                  "CardsetKW", "CardsetModel"),
            0);
  EXPECT_EQ(rows.size(), 3u);  // SIGY has no CardsetKW, and the last Parameter no CardsetID
  EXPECT_EQ(RowsOf(rows, "RHO"),
            (std::vector<std::vector<std::string>>{{"LABELS :", "mechanical,thermal"},
                                                   {"TABLES :", "thermal"}}));
  EXPECT_EQ(RowsOf(rows, "SIGY").size(), 0u);
}

TEST_F(MappingFileTest, AbsentSecondAttributeGivesAnEmptyText) {
  Rows rows;
  ASSERT_NE(OrvaneGeneric::GetMappingFromXMLFile(Path("mapping.xml").c_str(), rows, "CardsetID",
                                                  "CardsetKW", "CardsetModel"),
            0);
  EXPECT_EQ(RowsOf(rows, "RHO2"), (std::vector<std::vector<std::string>>{{"TABLES :", ""}}));
}

TEST_F(MappingFileTest, SectionRowsOfOneKeyKeepTheFileOrder) {
  Rows rows;
  ASSERT_NE(OrvaneGeneric::GetMappingFromXMLFile(Path("mapping.xml").c_str(), rows, "CardsetKW",
                                                  "CardsetKWParent", "CardsetModel"),
            0);
  EXPECT_EQ(rows.size(), 1u);  // only the LABELS section carries a parent
  EXPECT_EQ(RowsOf(rows, "LABELS :"),
            (std::vector<std::vector<std::string>>{{"MATERIAUX :", "mechanical"}}));

  Rows byKeyword;
  ASSERT_NE(OrvaneGeneric::GetMappingFromXMLFile(Path("mapping.xml").c_str(), byKeyword,
                                                  "CardsetKW", "CardsetModel", "CardsetKWParent"),
            0);
  EXPECT_EQ(RowsOf(byKeyword, "TABLES :"),
            (std::vector<std::vector<std::string>>{{"thermal", ""}, {"mechanical", ""}}));
}

TEST_F(MappingFileTest, RowsAreAddedToWhatTheMapHolds) {
  Rows rows = {{"RHO", {"earlier", ""}}};
  ASSERT_NE(OrvaneGeneric::GetMappingFromXMLFile(Path("mapping.xml").c_str(), rows, "CardsetID",
                                                  "CardsetKW", "CardsetModel"),
            0);
  EXPECT_EQ(RowsOf(rows, "RHO").front(), (std::vector<std::string>{"earlier", ""}));
  EXPECT_EQ(RowsOf(rows, "RHO").size(), 3u);
}

TEST_F(MappingFileTest, MissingOrMalformedFileGivesZeroAndLeavesTheMapAlone) {
  Rows rows = {{"kept", {"a", "b"}}};
  EXPECT_EQ(OrvaneGeneric::GetMappingFromXMLFile(Path("absent.xml").c_str(), rows, "CardsetID",
                                                  "CardsetKW", "CardsetModel"),
            0);
  const std::string broken = Write("broken.xml", "<Mapping><Parameter CardsetID=\"RHO\" CardsetKW=\"x\">");
  EXPECT_EQ(OrvaneGeneric::GetMappingFromXMLFile(broken.c_str(), rows, "CardsetID", "CardsetKW",
                                                  "CardsetModel"),
            0);
  EXPECT_EQ(rows, (Rows{{"kept", {"a", "b"}}}));
}

TEST_F(MappingFileTest, InfoMapTakesEveryElementWithBothAttributesAndTheFirstRowWins) {
  std::map<std::string, std::string> startIDs;
  std::string text;
  ASSERT_NE(OrvaneGeneric::GetMappingInfoFromXMLFile(Path("mapping.xml").c_str(), "OrvaneMLID",
                                                      "StartID", startIDs, text),
            0);
  EXPECT_EQ(startIDs, (std::map<std::string, std::string>{{"Density", "100"}}));
}

TEST_F(MappingFileTest, InfoMapKeepsEntriesItAlreadyHeld) {
  std::map<std::string, std::string> ids = {{"RHO", "preset"}};
  std::string text;
  ASSERT_NE(OrvaneGeneric::GetMappingInfoFromXMLFile(Path("mapping.xml").c_str(), "CardsetID",
                                                      "OrvaneMLID", ids, text),
            0);
  EXPECT_EQ(ids, (std::map<std::string, std::string>{
                     {"RHO", "preset"}, {"RHO2", "Density"}, {"SIGY", "Yield"}}));
}

TEST_F(MappingFileTest, InfoMapOfAMissingFileGivesZeroAndAReasonNamingTheFile) {
  std::map<std::string, std::string> ids = {{"kept", "1"}};
  std::string text;
  const std::string path = Path("absent.xml");
  EXPECT_EQ(OrvaneGeneric::GetMappingInfoFromXMLFile(path.c_str(), "OrvaneMLID", "StartID", ids,
                                                      text),
            0);
  EXPECT_NE(text.find(path), std::string::npos) << text;
  EXPECT_EQ(ids, (std::map<std::string, std::string>{{"kept", "1"}}));
}

TEST_F(MappingFileTest, InfoMapOfAMalformedFileGivesZeroAndAReasonNamingTheFile) {
  std::map<std::string, std::string> ids;
  std::string text;
  const std::string broken = Write("broken.xml", "<Mapping>\n<Parameter OrvaneMLID=\"a\" StartID=\"1\">");
  EXPECT_EQ(OrvaneGeneric::GetMappingInfoFromXMLFile(broken.c_str(), "OrvaneMLID", "StartID", ids,
                                                      text),
            0);
  EXPECT_NE(text.find(broken), std::string::npos) << text;
  EXPECT_TRUE(ids.empty());
}

}  // namespace
