// Composition sections: the element list of the comment block, the chemistry
// block and the ranges table that import leaves unread.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
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
#include "sections/chemicalcomposition.h"
#include "sections/chimie.h"
#include "sections/composition.h"

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
const char kDiffusion[] = "NOM : W S1 diffusion mm";

// After a section the reader has consumed its closing line: the next line read
// is the one behind it.
std::string LineAfterSection(CardFile& file) {
  file.Line().clearFlag(DataLine::kEndFlagBit);
  unsigned n = 1;
  char** words = file.Line().readNextCardAsWords(n, "", nullptr);
  return n == 0 ? std::string() : std::string(words[0]);
}

using CompositionTest = StoreTest;

TEST_F(CompositionTest, ElementLineGivesThreeCardsAndADataset) {
  CardFile file(std::string(kMechanical) + "\nComposition\n%C 0.20\nEndComposition\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Composition", runCompositionImport);

  const std::vector<std::string> expected = {"ElementsLine", "ElementDetailsSplit", "ElementDetails"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[0]), std::vector<std::string>{"%C 0.20"});
  // The split at "%" leaves one word for two fields: both hold it.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"C 0.20", "C 0.20"}));
  EXPECT_EQ(Fields(section.getCardList()[2]), (std::vector<std::string>{"C", "0.20"}));
  EXPECT_EQ(section.getCardList()[2]->getVarNames(), (std::vector<std::string>{"Element", "Value"}));

  const std::string id = StoreID("C");
  ASSERT_FALSE(id.empty());
  EXPECT_EQ(ConstantText(DatasetOf(id)), "0.20");
}

TEST_F(CompositionTest, WizardLayoutWithBlanksAndTabs) {
  CardFile file(std::string(kMechanical) +
                "\nComposition\n  %  Mn         1.45\n%\tSi\t0.35\nBase: iron\n  %  Cr  0.08\nEndComposition\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Composition", runCompositionImport);

  EXPECT_EQ(ConstantText(DatasetOf(StoreID("Mn"))), "1.45");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("Si"))), "0.35");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("Cr"))), "0.08");
  // A line without "%" is text only.
  const std::vector<std::string> expected = {"ElementsLine", "ElementDetailsSplit", "ElementDetails",
                                             "ElementsLine", "ElementDetailsSplit", "ElementDetails",
                                             "ElementsLine",
                                             "ElementsLine", "ElementDetailsSplit", "ElementDetails"};
  EXPECT_EQ(CardNames(section), expected);
}

TEST_F(CompositionTest, ImmediateEndGivesNoCards) {
  CardFile file(std::string(kMechanical) + "\nComposition\nEndComposition\n%C 0.2\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Composition", runCompositionImport);
  EXPECT_TRUE(section.getCardList().empty());
  EXPECT_EQ(DatasetOf(StoreID("C")), nullptr);
}

TEST_F(CompositionTest, PhaseListEndsTheSectionAndIsConsumed) {
  CardFile file(std::string(kMechanical) + "\nComposition\n%C 0.2\nPhases:\n1: Ferrite\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Composition", runCompositionImport);
  EXPECT_EQ(section.getCardList().size(), 3u);
  EXPECT_EQ(LineAfterSection(file), "1: Ferrite");
}

TEST_F(CompositionTest, PhasesFormAndFreeTextOnPhasesEndTheSection) {
  for (const char* closing : {"Phases", "phases", "Phases of this steel", "FIN COMMENTAIRES", "endcomposition"}) {
    SCOPED_TRACE(closing);
    OrvaneStaticVars::Init(nullptr);
    CardFile file(std::string(kMechanical) + "\nComposition\n%C 0.2\n" + closing + "\n%Mn 1.1\nEndComposition\n");
    file.Read(kMechanical, runMaterialDetailsImport);
    ImportObject& section = file.Read("Composition", runCompositionImport);
    EXPECT_EQ(section.getCardList().size(), 3u);
    EXPECT_EQ(DatasetOf(StoreID("Mn")), nullptr);
    EXPECT_EQ(LineAfterSection(file), "%Mn 1.1");
  }
}

TEST_F(CompositionTest, PercentAloneEndsTheSection) {
  CardFile file(std::string(kMechanical) + "\nComposition\n%\n%C 0.2\nEndComposition\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Composition", runCompositionImport);

  const std::vector<std::string> expected = {"ElementsLine", "ElementDetailsSplit"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(section.getCardList()[1]->numVars(), 0u);
  EXPECT_EQ(DatasetOf(StoreID("C")), nullptr);
}

TEST_F(CompositionTest, ChimieNamesFollowTheModel) {
  CardFile file(std::string(kDiffusion) + "\nCHIMIE :\nC 0.2\nN 0.012\nMN 1.25\nfin chimie\nCR 1.15\n");
  file.Read(kDiffusion, runMaterialDetailsImport);
  ImportObject& section = file.Read("CHIMIE :", runChimieImport);

  ASSERT_EQ(section.getCardList().size(), 3u);
  EXPECT_EQ(section.getCardList()[0]->getName(), "ChimieInfo");
  EXPECT_EQ(Fields(section.getCardList()[0]), (std::vector<std::string>{"CHIMIEC", "0.2"}));
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"CHIMIEN", "0.012"}));
  EXPECT_EQ(Fields(section.getCardList()[2]), (std::vector<std::string>{"MN", "1.25"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("CHIMIEC"))), "0.2");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("CHIMIEN"))), "0.012");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("MN"))), "1.25");
  EXPECT_EQ(DatasetOf(StoreID("CR")), nullptr);
}

TEST_F(CompositionTest, ChimieOutsideDiffusionKeepsC) {
  CardFile file(std::string(kMechanical) + "\nCHIMIE :\nC 0.2\nN 0.01\nFIN CHIMIE\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("CHIMIE :", runChimieImport);
  EXPECT_EQ(Fields(section.getCardList()[0]), (std::vector<std::string>{"C", "0.2"}));
  // N outside the diffusion model is the hardening exponent's word.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"NX", "0.01"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("C"))), "0.2");
}

TEST_F(CompositionTest, ChemicalCompositionIsLeftUnread) {
  CardFile file(std::string(kMechanical) +
                "\nChemical Composition:\n0.14 - 0.20 % C\n1.20 - 1.60 % Mn\n0.55 % Si\nPhases:\n1: Ferrite\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("Chemical Composition:", runChemicalCompositionImport);
  EXPECT_TRUE(section.getCardList().empty());
  EXPECT_EQ(DatasetOf(StoreID("C")), nullptr);
  // Nothing was read: the next line is the first of the table.
  unsigned n = 1;
  char** words = file.Line().readNextCardAsWords(n, "", nullptr);
  EXPECT_STREQ(words[0], "0.14 - 0.20 % C");
}

TEST_F(CompositionTest, ChemicalCompositionLineFormsStayReadable) {
  CardFile file("Chemical Composition:\n0.10 - 0.20 % C\n0.50 % Si\nPhases:\n");
  ImportObject section("Chemical Composition:");
  file.Line().readNextCard();
  ChemicalComposition reader(&file.Line(), &section);
  reader.readComposition();
  EXPECT_EQ(reader.numWords, 3u);
  reader.readCompositionWithMax();
  EXPECT_EQ(reader.numWords, 2u);
  reader.readCompositionWithMax();
  EXPECT_EQ(reader.numWords, 0u);
  const std::vector<std::string> expected = {"Composition", "CompositionWithMax"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[0]), (std::vector<std::string>{"0.10", "0.20", "C"}));
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"0.50", "Si"}));
  EXPECT_EQ(section.getCardList()[1]->getVarNames(), (std::vector<std::string>{"Max", "Element"}));
}

TEST_F(CompositionTest, ChemicalCompositionLoopRunsTheFormItsCountAsks) {
  CardFile file("Chemical Composition:\n0.10 - 0.20 % C\n0.30 - 0.40 % Mn\n0.50 % Si\n0.60 % Cr\nPhases:\n");
  ImportObject section("Chemical Composition:");
  file.Line().readNextCard();
  ChemicalComposition reader(&file.Line(), &section);
  reader.numWords = 3;
  EXPECT_EQ(reader.importChemicalComposition(), 0u);
  // Ranges while lines give three words; the first line of two words is read
  // as a range and makes the next read the other form.
  const std::vector<std::string> expected = {"Composition", "Composition", "Composition", "CompositionWithMax"};
  EXPECT_EQ(CardNames(section), expected);
}

}  // namespace
