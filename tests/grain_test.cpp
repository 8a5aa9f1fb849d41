// "GRAIN" lines: the one card of the keyword line and the five datasets of
// its word and value pairs.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "import/sectionconverters.h"
#include "import_test_support.h"
#include "sections/grain.h"
#include "store/orvanegeneric.h"

using namespace importtest;

namespace {

class GrainTest : public testing::Test {
 protected:
  void SetUp() override {
    FreshStore();
    OrvaneStaticVars::SetActiveModel("thermometal_cp");
    m_Material = OrvaneStaticVars::GetOrCreateMaterial("W_Steel");
    ASSERT_NE(m_Material, nullptr);
  }

  static std::unique_ptr<SectionRun> Read(const std::string& text) {
    return std::unique_ptr<SectionRun>(new SectionRun(text, KW_GRAIN, runGrainImport));
  }

  OrvaneMLRecordDataset* Dataset(const std::string& idref) { return FindDatasetOf(m_Material, idref); }

  // The model a dataset stands in, by identifier; empty when none holds it.
  std::string ModelOf(const std::string& idref) {
    std::vector<OrvaneMLRecordMatModel*> models(m_Material->m_Models.begin(), m_Material->m_Models.end());
    for (size_t i = 0; i < models.size(); ++i) {
      for (OrvaneMLRecordDataset* dataset : models[i]->m_Datasets)
        if (dataset->m_IDref == idref) return models[i]->m_IDref;
      if (models[i]->m_SubModels != nullptr)
        models.insert(models.end(), models[i]->m_SubModels->m_Models.begin(), models[i]->m_SubModels->m_Models.end());
    }
    return "";
  }

  static std::string Constant(OrvaneMLRecordDataset* dataset) {
    if (dataset == nullptr) return "<no dataset>";
    if (dataset->m_Float == nullptr || dataset->m_Float->m_Constants.empty()) return "<no constant>";
    return dataset->m_Float->m_Constants.front()->m_Value;
  }

  OrvaneMLRecordMaterial* m_Material = nullptr;
};

TEST_F(GrainTest, KeywordLineGivesOneCardOfElevenFieldsAndFiveDatasets) {
  auto run = Read("GRAIN Tmin 700. Q 2.5 POWER 3 C 1.0 Austenite 1\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 1u);
  Card* card = cards[0];
  EXPECT_EQ(card->getName(), "GRAINDetails");
  ASSERT_EQ(card->numVars(), 11u);
  EXPECT_EQ(Field(card, "GRAINKeyWord"), "GRAIN");
  EXPECT_EQ(Field(card, "Tmin"), "Tmin");
  EXPECT_EQ(Field(card, "TMINValue"), "700.");
  EXPECT_EQ(Field(card, "Q"), "Q");
  EXPECT_EQ(Field(card, "QValue"), "2.5");
  EXPECT_EQ(Field(card, "POWER"), "POWER");
  EXPECT_EQ(card->intValue("POWERValue"), 3);
  // The renaming runs before the card is built.
  EXPECT_EQ(Field(card, "C"), "GRAINC");
  EXPECT_EQ(Field(card, "CValue"), "1.0");
  EXPECT_EQ(Field(card, "GrainPhaseName"), "Austenite");
  EXPECT_EQ(card->intValue("GrainPhaseIndex"), 1);

  EXPECT_EQ(Constant(Dataset("Tmin")), "700.");
  EXPECT_EQ(Constant(Dataset("QConstant")), "2.5");
  EXPECT_EQ(Constant(Dataset("PowerConstant")), "3");
  EXPECT_EQ(Constant(Dataset("CConstant")), "1.0");
  // The phase word is a dataset word like the others: the mapping's, or,
  // for a word it doesn't know, one of its own name.
  const char* known = OrvaneStaticVars::GetOrvaneMLID("Austenite");
  OrvaneMLRecordDataset* phase = Dataset(known != nullptr ? known : "Austenite");
  ASSERT_NE(phase, nullptr);
  const bool holdsIndex = (phase->m_Integer != nullptr && phase->m_Integer->m_Value == 1) ||
                          (phase->m_String != nullptr && phase->m_String->m_Value == "1");
  EXPECT_TRUE(holdsIndex);
  EXPECT_EQ(ModelOf("Tmin"), "Metallurgy_Weld");
  EXPECT_EQ(ModelOf("CConstant"), "Metallurgy_Weld");
}

TEST_F(GrainTest, FractionalPowerIsCutOnTheCardAndKeptAsWrittenInTheStore) {
  auto run = Read("GRAIN TMIN 900 Q 280000 POWER 2.5 C 2e+06 AUSTENITE 6\n");
  ASSERT_EQ(run->cards().size(), 1u);
  EXPECT_EQ(run->cards()[0]->intValue("POWERValue"), 2);
  EXPECT_EQ(Constant(Dataset("PowerConstant")), "2.5");
}

TEST_F(GrainTest, CorpusLineFillsEveryMappedDataset) {
  auto run = Read("GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6\n");
  EXPECT_EQ(Constant(Dataset("Tmin")), "900");
  EXPECT_EQ(Constant(Dataset("QConstant")), "280000");
  EXPECT_EQ(Constant(Dataset("PowerConstant")), "2");
  EXPECT_EQ(Constant(Dataset("CConstant")), "2e+06");
  OrvaneMLRecordDataset* austenite = Dataset("AUSTENITE");
  ASSERT_NE(austenite, nullptr);
  ASSERT_NE(austenite->m_Integer, nullptr);
  EXPECT_EQ(austenite->m_Integer->m_Value, 6);
  EXPECT_EQ(ModelOf("AUSTENITE"), "Metallurgy_Weld");
  // Every word of the line is one the mapping knows.
  for (const std::string& warning : OrvaneGenericLog::GetDBWarnings())
    EXPECT_EQ(warning.find("is not in the mapping"), std::string::npos) << warning;
}

TEST_F(GrainTest, WordsArePositionalWhateverTheyRead) {
  // The value words are dataset words too if they stand at an odd place.
  auto run = Read("GRAIN Q 1 TMIN 2 POWER 3 C 4 AUSTENITE 5\n");
  EXPECT_EQ(Constant(Dataset("QConstant")), "1");
  EXPECT_EQ(Constant(Dataset("Tmin")), "2");
  EXPECT_EQ(Field(run->cards()[0], "Tmin"), "Q");
  EXPECT_EQ(Field(run->cards()[0], "Q"), "TMIN");
}

TEST_F(GrainTest, ShortLineFillsFewerFieldsAndStoresWhatItHas) {
  auto run = Read("GRAIN TMIN 900 Q\n");
  ASSERT_EQ(run->cards().size(), 1u);
  EXPECT_EQ(run->cards()[0]->getName(), "GRAINDetails");
  EXPECT_EQ(Constant(Dataset("Tmin")), "900");
  // "Q" has no value behind it: its dataset is made and stays empty.
  OrvaneMLRecordDataset* q = Dataset("QConstant");
  ASSERT_NE(q, nullptr);
  EXPECT_EQ(q->m_Float, nullptr);
  EXPECT_EQ(Dataset("PowerConstant"), nullptr);
}

TEST_F(GrainTest, EleventhFieldTakesTheRestOfTheLine) {
  auto run = Read("GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6 extra words\n");
  ASSERT_EQ(run->cards().size(), 1u);
  Card* card = run->cards()[0];
  EXPECT_EQ(card->numVars(), 11u);
  // The integer field reads the number at the head of the rest.
  EXPECT_EQ(card->intValue("GrainPhaseIndex"), 6);
}

TEST_F(GrainTest, SectionIsTheKeywordLineAlone) {
  auto run = Read("GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6\nTABLE\n 10 / 1 20 0.04\n");
  EXPECT_EQ(run->cards().size(), 1u);
  // The next line is still there for the next reader.
  unsigned count = 1;
  char** words = run->dataLine().readNextCardAsWords(count, " ", nullptr);
  ASSERT_NE(words, nullptr);
  EXPECT_STREQ(words[0], "TABLE");
}

TEST_F(GrainTest, ImportGrainReadsTheSameOneLine) {
  const std::string path = WriteCardFile("grain.mat", "GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6\nTABLE\n");
  FILE* file = std::fopen(path.c_str(), "rb");
  ASSERT_NE(file, nullptr);
  {
    DataLine line(file);
    char* keyword = line.readNextCard();
    Generic::RemoveLeadingAndTrailingBlanks(keyword);
    line.clearFlag(DataLine::kEndFlagBit);
    unsigned type = KW_GRAIN;
    ImportObject section(keyword, type);
    Grain reader(&line, &section);
    EXPECT_EQ(reader.importGrain(), 0u);
    EXPECT_EQ(section.getCardList().size(), 1u);
    // The held line is used up: a second read makes no card.
    reader.readGRAINDetails();
    EXPECT_EQ(section.getCardList().size(), 1u);
    EXPECT_EQ(reader.numWords, 0u);
  }
  std::fclose(file);
}

}  // namespace
