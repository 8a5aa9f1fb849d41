// "LABELS :" sections: plain parameter lines, table references, and the
// renaming their words go through.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/card.h"
#include "core/dataline.h"
#include "core/importobject.h"
#include "core/keywords.h"
#include "import/cardsetimport.h"
#include "import/phasehelpers.h"
#include "import/sectionconverters.h"
#include "sections/materialdetails.h"
#include "store/orvane.h"
#include "store/orvaneml.h"
#include "sections/matlabels.h"

namespace {

// ---- Reading sections the way the import driver does ---------------------

// A card file written to a temporary file and read through the real line
// reader.  Each Read seeks to a keyword line, reads it again as the driver
// does and hands the section to a reader's entry function.
class CardFile {
 public:
  explicit CardFile(const std::string& text) : m_Text(text) {
    char path[] = "/tmp/quillon_descriptive_XXXXXX";
    const int handle = mkstemp(path);
    EXPECT_GE(handle, 0);
    EXPECT_EQ(write(handle, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(handle);
    m_Path = path;
    m_File = std::fopen(path, "rb");
    m_Line = new DataLine(m_File);
  }
  ~CardFile() {
    delete m_Line;
    std::fclose(m_File);
    unlink(m_Path.c_str());
  }
  CardFile(const CardFile&) = delete;
  CardFile& operator=(const CardFile&) = delete;

  // The section of the `occurrence`-th line that reads `keywordLine` once trimmed.
  ImportObject& Read(const std::string& keywordLine, SectionEntry entry, unsigned occurrence = 0) {
    std::fseek(m_File, OffsetOf(keywordLine, occurrence), SEEK_SET);
    m_Line->clearFlag(DataLine::kEndFlagBit);
    CardsetImport::m_CurrentPhaseIndex = 1;
    m_Line->readNextCard();
    Generic::RemoveLeadingAndTrailingBlanks(m_Line->line);
    OrvaneStaticVars::SetActiveKW(m_Line->line);
    m_Line->clearFlag(DataLine::kEndFlagBit);
    unsigned type = 0;
    if (std::strncmp(m_Line->line, "NOM :", 5) == 0) {
      OrvaneStaticVars::ClearDatasets();
      type = KW_MATERIAL_DETAILS;
    } else if (KeywordTypeTable.count(m_Line->line) != 0) {
      type = KeywordTypeTable.at(m_Line->line);
    }
    m_Sections.push_back(std::make_unique<ImportObject>(m_Line->line, type));
    entry(m_Line, m_Sections.back().get());
    return *m_Sections.back();
  }

  DataLine& Line() { return *m_Line; }

 private:
  long OffsetOf(const std::string& keywordLine, unsigned occurrence) const {
    size_t start = 0;
    while (start < m_Text.size()) {
      size_t end = m_Text.find('\n', start);
      if (end == std::string::npos) end = m_Text.size();
      std::string line = m_Text.substr(start, end - start);
      const size_t first = line.find_first_not_of(" \t\r");
      const size_t last = line.find_last_not_of(" \t\r");
      line = first == std::string::npos ? std::string() : line.substr(first, last - first + 1);
      if (line == keywordLine && occurrence-- == 0) return static_cast<long>(start);
      start = end + 1;
    }
    ADD_FAILURE() << "no line " << keywordLine;
    return 0;
  }

  std::string m_Text;
  std::string m_Path;
  FILE* m_File = nullptr;
  DataLine* m_Line = nullptr;
  std::vector<std::unique_ptr<ImportObject>> m_Sections;
};

// Every test starts on an empty store with cards and converters switched on,
// as an import has them.
class StoreTest : public testing::Test {
 protected:
  void SetUp() override {
    Card::setFlag(Card::BUILD_CARDS | Card::RUN_CONVERTERS);
    char path[] = "/tmp/quillon_store_XXXXXX";
    const int handle = mkstemp(path);
    close(handle);
    unlink(path);  // a name that no file has: the store starts empty
    m_StorePath = path;
    OrvaneStaticVars::Init(m_StorePath.c_str());
  }
  void TearDown() override { unlink(m_StorePath.c_str()); }

 private:
  std::string m_StorePath;
};

// ---- Looking at cards ------------------------------------------------------

[[maybe_unused]] std::string FieldText(Data* value) {
  if (value == nullptr) return "<null>";
  switch (value->type) {
    case Data::CHARARRAY_TAG: return static_cast<CharArray*>(value)->payload;
    case Data::INTEGER_TAG: return std::to_string(static_cast<Integer*>(value)->payload);
    case Data::UINTEGER_TAG: return std::to_string(static_cast<UInteger*>(value)->payload);
    case Data::BLANK_TAG: return "<blank>";
    default: return "<type " + std::to_string(value->type) + ">";
  }
}

[[maybe_unused]] std::vector<std::string> Fields(Card* card) {
  std::vector<std::string> texts;
  for (Data* value : card->getVarValues()) texts.push_back(FieldText(value));
  return texts;
}

[[maybe_unused]] std::vector<std::string> CardNames(ImportObject& section) {
  std::vector<std::string> names;
  for (Card* card : section.getCardList()) names.push_back(card->getName());
  return names;
}

// ---- Looking at the store ----------------------------------------------------

[[maybe_unused]] void CollectModels(OrvaneMLRecordMatModel* model, std::vector<OrvaneMLRecordMatModel*>& out) {
  if (model == nullptr) return;
  out.push_back(model);
  if (model->m_SubModels == nullptr) return;
  for (OrvaneMLRecordMatModel* child : model->m_SubModels->m_Models) CollectModels(child, out);
}

[[maybe_unused]] std::vector<OrvaneMLRecordMatModel*> AllModels(OrvaneMLRecordMaterial* material) {
  std::vector<OrvaneMLRecordMatModel*> models;
  if (material == nullptr) return models;
  for (OrvaneMLRecordMatModel* model : material->m_Models) CollectModels(model, models);
  return models;
}

// Every dataset of the material, in its models and in its own list.
[[maybe_unused]] std::vector<OrvaneMLRecordDataset*> AllDatasets(OrvaneMLRecordMaterial* material = nullptr) {
  if (material == nullptr) material = OrvaneStaticVars::GetCurrentMaterial();
  std::vector<OrvaneMLRecordDataset*> datasets;
  if (material == nullptr) return datasets;
  for (OrvaneMLRecordMatModel* model : AllModels(material))
    datasets.insert(datasets.end(), model->m_Datasets.begin(), model->m_Datasets.end());
  datasets.insert(datasets.end(), material->m_Datasets->m_Datasets.begin(), material->m_Datasets->m_Datasets.end());
  return datasets;
}

[[maybe_unused]] std::vector<OrvaneMLRecordDataset*> DatasetsOf(const std::string& idref) {
  std::vector<OrvaneMLRecordDataset*> found;
  for (OrvaneMLRecordDataset* dataset : AllDatasets())
    if (dataset->m_IDref == idref) found.push_back(dataset);
  return found;
}

[[maybe_unused]] OrvaneMLRecordDataset* DatasetOf(const std::string& idref) {
  std::vector<OrvaneMLRecordDataset*> found = DatasetsOf(idref);
  return found.empty() ? nullptr : found.front();
}

// The identifier the store gives a card word under the active model.
[[maybe_unused]] std::string StoreID(const char* cardWord) {
  const char* id = OrvaneStaticVars::GetOrvaneMLID(cardWord);
  return id != nullptr ? id : "";
}

[[maybe_unused]] std::string ConstantText(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Float == nullptr || dataset->m_Float->m_Constants.empty()) return "<none>";
  return dataset->m_Float->m_Constants.front()->m_Value;
}

[[maybe_unused]] std::string StringText(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_String == nullptr) return "<none>";
  return dataset->m_String->m_Value;
}

// The phase models of the material at hand, in order.
[[maybe_unused]] std::vector<OrvaneMLRecordMatModel*> PhaseModels() {
  std::vector<OrvaneMLRecordMatModel*> phases;
  for (OrvaneMLRecordMatModel* model : AllModels(OrvaneStaticVars::GetCurrentMaterial()))
    if (model->m_IDref == "Phase_details_model") phases.push_back(model);
  return phases;
}

[[maybe_unused]] OrvaneMLRecordMatModel* PhaseModel(const std::string& instance) {
  for (OrvaneMLRecordMatModel* model : PhaseModels())
    if (model->m_InstanceID == instance) return model;
  return nullptr;
}

[[maybe_unused]] OrvaneMLRecordDataset* DatasetIn(OrvaneMLRecordMatModel* model, const std::string& idref) {
  if (model == nullptr) return nullptr;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
    if (dataset->m_IDref == idref) return dataset;
  return nullptr;
}

const char kMechanical[] = "NOM : W S1 mechanical mm";
const char kMechanicalPhases[] = "NOM : W S1 mechanical_phases mm";

std::vector<std::string> Links(OrvaneMLRecordDataset* dataset) {
  std::vector<std::string> links;
  if (dataset == nullptr) return links;
  for (OrvaneMLRecordLink* link : dataset->m_Links) links.push_back(link->m_DatasetIDref);
  return links;
}

// A pair line of fewer than four words doesn't match its table of four
// fields: each word then fills all four.
std::vector<std::string> EachFourTimes(const std::vector<std::string>& words) {
  std::vector<std::string> fields;
  for (const std::string& word : words) fields.insert(fields.end(), 4, word);
  return fields;
}

using MatLabelsTest = StoreTest;

TEST_F(MatLabelsTest, EmptySectionGivesNoCard) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nFIN LABELS\nNU 0.3\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_TRUE(section.getCardList().empty());
  EXPECT_EQ(DatasetOf(StoreID("NU")), nullptr);
}

TEST_F(MatLabelsTest, EndKeywordIsAPrefixInAnyCase) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nNU 0.3\nfin labels of this model\nTMELT 1480\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(CardNames(section), (std::vector<std::string>{"LabelDetails", "ParamDetails"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("NU"))), "0.3");
  EXPECT_EQ(DatasetOf(StoreID("TMELT")), nullptr);
}

TEST_F(MatLabelsTest, PlainLineOfOnePair) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nNU 0.3\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  ASSERT_EQ(section.getCardList().size(), 2u);
  EXPECT_EQ(Fields(section.getCardList()[0]), std::vector<std::string>{"NU 0.3"});
  EXPECT_EQ(section.getCardList()[0]->getVarNames(), std::vector<std::string>{"StrValue"});
  Card* pair = section.getCardList()[1];
  EXPECT_EQ(Fields(pair), EachFourTimes({"NU", "0.3"}));
  EXPECT_TRUE(pair->getBlankFields().empty());
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("NU"))), "0.3");
}

TEST_F(MatLabelsTest, TwoPairsOnOneLine) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nTMELT 1480 TANNEAL 900\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  Card* pair = section.getCardList()[1];
  EXPECT_EQ(Fields(pair), (std::vector<std::string>{"TMELT", "1480", "TANNEAL", "900"}));
  EXPECT_EQ(pair->getVarNames(), (std::vector<std::string>{"ParamLabel", "ParamValue", "ParamLabel", "ParamValue"}));
  EXPECT_STREQ(pair->stringValue("ParamLabel"), "TMELT");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("TMELT"))), "1480");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("TANNEAL"))), "900");
}

TEST_F(MatLabelsTest, ReferenceLineSplitsAtMinusAndAmpersand) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nKX -&12&\nTABLE &80&\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);

  const std::vector<std::string> expected = {"LabelDetails", "ParamDetailsWithRef", "LabelDetails",
                                             "ParamDetailsWithRef"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"KSX", "12"}));
  EXPECT_EQ(section.getCardList()[1]->getVarNames(), (std::vector<std::string>{"ParamLabel", "TableID"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"TABLE", "80"}));

  OrvaneMLRecordDataset* stiffness = DatasetOf(StoreID("KSX"));
  EXPECT_EQ(Links(stiffness), std::vector<std::string>{"12"});
  EXPECT_EQ(Links(DatasetOf(StoreID("TABLE"))), std::vector<std::string>{"80"});
  // Filed under its table id, so that the table reaches it.
  OrvaneMLRecordDataset* filed = OrvaneStaticVars::GetOrCreateDataset("12", "DatasetID", false, nullptr, nullptr);
  EXPECT_EQ(filed, stiffness);
}

TEST_F(MatLabelsTest, TwoPairsAreRenamedEach) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nKX 45 KY 50\nKX 45 KY 50\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  // KY is the Y stiffness once the material constrains stiffness, which the
  // first line's KX does only when its card is made.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"KSX", "45", "KY", "50"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"KSX", "45", "KSY", "50"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("KSX"))), "45");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("KSY"))), "50");
}

TEST_F(MatLabelsTest, MinusInAValueKeepsItsSign) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nALPHA -1.5\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(section.getCardList()[1]->getName(), "ParamDetails");
  EXPECT_EQ(Fields(section.getCardList()[1]), EachFourTimes({"ALPHA", "-1.5"}));
  EXPECT_EQ(StringText(DatasetOf("ALPHA")), "-1.5");
  EXPECT_TRUE(Links(DatasetOf("ALPHA")).empty());
}

TEST_F(MatLabelsTest, AmpersandAnywhereMakesAReference) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nALPHA 1e-5 &3&\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(section.getCardList()[1]->getName(), "ParamDetailsWithRef");
  // Two words at most: the second runs to the end of the line from its first character.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"ALPHA", "1e-5 &3&"}));
  EXPECT_EQ(Links(DatasetOf("ALPHA")), std::vector<std::string>{"1e-5 &3&"});
}

TEST_F(MatLabelsTest, ThreeWordsLeaveTheFourthValueEmpty) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nTMELT 1480 TANNEAL\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(Fields(section.getCardList()[1]), EachFourTimes({"TMELT", "1480", "TANNEAL"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("TMELT"))), "1480");
  OrvaneMLRecordDataset* anneal = DatasetOf(StoreID("TANNEAL"));
  ASSERT_NE(anneal, nullptr);
  EXPECT_EQ(ConstantText(anneal), "<none>");
}

TEST_F(MatLabelsTest, ModelNumberBecomesItsText) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nMODEL 3\nMODEL 11 PISOTROPIC 0.4\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(Fields(section.getCardList()[1]), EachFourTimes({"MODEL", "Isotropic"}));
  // Four words: no model line, the number stays.
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"MODEL", "11", "PISOTROPIC", "0.4"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("PISOTROPIC"))), "0.4");
}

TEST_F(MatLabelsTest, ModulusAndDensityNames) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nE -&1&\nRHO 7.85e-06\nFIN LABELS\nLABELS :\nE 210000\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  // A reference line keeps E; a plain one makes it EX.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"E", "1"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), EachFourTimes({"MECHRHO", "7.85e-06"}));
  EXPECT_EQ(Links(DatasetOf(StoreID("E"))), std::vector<std::string>{"1"});
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("MECHRHO"))), "7.85e-06");

  ImportObject& second = file.Read("LABELS :", runMatLabelsImport, 1);
  EXPECT_EQ(Fields(second.getCardList()[1]), EachFourTimes({"EX", "210000"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("EX"))), "210000");
}

TEST_F(MatLabelsTest, DensityKeepsItsNameWithPhases) {
  CardFile file(std::string(kMechanicalPhases) + "\nLABELS :\nRHO 7.85e-06\nKZ 1e+06\nFIN LABELS\n");
  file.Read(kMechanicalPhases, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(Fields(section.getCardList()[1]), EachFourTimes({"RHO", "7.85e-06"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), EachFourTimes({"KSZ", "1e+06"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("RHO"))), "7.85e-06");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("KSZ"))), "1e+06");
}

TEST_F(MatLabelsTest, StrainDirectionsByReferenceOrAsCoefficient) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nLX -&20&\nLY -&20&\nLX 1.65e-05\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"LX", "20"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"LY", "20"}));
  EXPECT_EQ(Fields(section.getCardList()[5]), EachFourTimes({"IG", "1.65e-05"}));
  std::map<std::string, std::vector<std::string>>& directions = OrvaneStaticVars::GetLXLYLZMap();
  EXPECT_EQ(directions["LX"], std::vector<std::string>{"20"});
  EXPECT_EQ(directions["LY"], std::vector<std::string>{"20"});
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("IG"))), "1.65e-05");
}

TEST_F(MatLabelsTest, StatusReferenceGetsTheRunningNumber) {
  CardFile file(std::string(kMechanical) + "\nLABELS :\nSTATUS -&50&\nFIN LABELS\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  const int number = GetStatusCounter();
  ImportObject& section = file.Read("LABELS :", runMatLabelsImport);
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"STATUS", std::to_string(number)}));
  EXPECT_EQ(Links(DatasetOf(StoreID("STATUS"))), std::vector<std::string>{std::to_string(number)});
  EXPECT_EQ(GetStatusCounter(), number + 1);
}

}  // namespace
