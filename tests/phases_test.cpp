// Phase sections: the phase list and table, proportions, hardness, and the
// phase helpers they share with the variable lines.

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
#include "sections/initialhardness.h"
#include "sections/phaseinfo.h"
#include "sections/phaseinfoifwire.h"
#include "sections/phases.h"

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

const char kWeldMaterial[] = "NOM : W S1 mechanical mm";
const char kOtherMaterial[] = "NOM : X S1 mechanical mm";

std::string Description(const std::string& phase) {
  return StringText(DatasetIn(PhaseModel(phase), "Phase_description"));
}

std::string Name(const std::string& phase) { return StringText(DatasetIn(PhaseModel(phase), "Phase_name")); }

std::string Resolved(const char* id, const char* text, const char* idref, std::string* out = nullptr) {
  char buffer[2050] = {0};
  std::strcpy(buffer, text);
  ResolvePhaseDescription(id, buffer, idref, out);
  return buffer;
}

// The Phase_name datasets of the material, by their dataset id.
std::string NameByDatasetID(const std::string& id) {
  for (OrvaneMLRecordDataset* dataset : DatasetsOf("Phase_name"))
    if (dataset->m_DatasetID == id) return StringText(dataset);
  return "<none>";
}

using PhasesTest = StoreTest;

TEST_F(PhasesTest, ListLinesNamePhasesInOrder) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n 1 : Ferrite\n 2 : \n 3 : Bainite\n 4 : Martensite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  ASSERT_EQ(PhaseModels().size(), 4u);
  EXPECT_EQ(Description("1"), "Ferrite / Pearlite & Initial Material");
  EXPECT_EQ(Name("1"), "Ferrite");
  // An empty entry takes the table's text of its number; a weld's phase 2 is fictive.
  EXPECT_EQ(Description("2"), "Not Yet Existing Filler Material");
  EXPECT_EQ(Name("2"), "Fictive Phase");
  EXPECT_EQ(Description("3"), "Bainite");
  EXPECT_EQ(Name("3"), "Bainite");
  EXPECT_EQ(Name("4"), "Martensite");
  EXPECT_EQ(DatasetIn(PhaseModel("3"), "Phase_name")->m_DatasetID, "3");

  const std::vector<std::string> expected = {"PhasesLineData", "Phases", "PhasesLineData", "Phases",
                                             "PhasesLineData", "Phases", "PhasesLineData", "Phases"};
  EXPECT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[0]), std::vector<std::string>{"1 : Ferrite"});
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "Ferrite"}));
  // "2 :" has one word for two fields, which then both hold it.
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"2", "2"}));
}

TEST_F(PhasesTest, SevenNumberedLinesStoreSixAndEndTheList) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Pearlite\n3: Bainite\n4: Martensite\n5: Tempered Bainite\n"
                "6: Austenite\n7: White Martensite\n8: Never read\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  std::vector<std::string> descriptions;
  EXPECT_EQ(GetPhaseLists(descriptions, nullptr), 6);
  EXPECT_EQ(PhaseModels().size(), 6u);
  EXPECT_EQ(PhaseModel("7"), nullptr);
  // Seven line cards and seven split cards; the seventh split card has no field.
  ASSERT_EQ(section.getCardList().size(), 14u);
  Card* last = section.getCardList().back();
  EXPECT_EQ(last->getName(), "Phases");
  EXPECT_EQ(last->numVars(), 0u);
  EXPECT_EQ(Fields(section.getCardList()[12]), std::vector<std::string>{"7: White Martensite"});
}

TEST_F(PhasesTest, ListRenumbersItsLines) {
  CardFile file(std::string(kWeldMaterial) + "\nPhases:\n5: Austenite\n9: Bainite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(Description("1"), "Austenite");
  EXPECT_EQ(Name("1"), "Austenite");
  EXPECT_EQ(Description("2"), "Bainite");
  EXPECT_EQ(PhaseModel("5"), nullptr);
  EXPECT_EQ(PhaseModel("9"), nullptr);
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "Austenite"}));
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"2", "Bainite"}));
  EXPECT_EQ(CardsetImport::m_CurrentPhaseIndex, 3);
}

TEST_F(PhasesTest, PhaseWordFormGivesTheNumber) {
  CardFile file(std::string(kWeldMaterial) + "\nPhases:\nPhase 1: Ferrite\nPhase 2: Fictive Phase\n"
                                             "Phase 3: Bainite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(PhaseModels().size(), 3u);
  EXPECT_EQ(Name("1"), "Ferrite");
  EXPECT_EQ(Description("2"), "Not Yet Existing Filler Material");
  EXPECT_EQ(Name("2"), "Fictive Phase");
  EXPECT_EQ(Name("3"), "Bainite");
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "Ferrite"}));
  // The list keeps its keyword: a number in the "Phase n" form is no shared text.
  EXPECT_EQ(section.getKeyword(), "Phases:");
}

TEST_F(PhasesTest, LinesThatAreNoPhaseStayLineCards) {
  CardFile file(std::string(kWeldMaterial) + "\nPhases:\nMicrostructure after rolling\n1: Ferrite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  const std::vector<std::string> expected = {"PhasesLineData", "PhasesLineData", "Phases"};
  EXPECT_EQ(CardNames(section), expected);
  EXPECT_EQ(PhaseModels().size(), 1u);
}

TEST_F(PhasesTest, WeldPhaseTwoIsFictiveWithoutText) {
  CardFile file(std::string(kWeldMaterial) + "\nInitial phases proportions\n2 : 0.5\nEndInitial phases proportions\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  EXPECT_EQ(Resolved("2", "", "PHASE"), "Fictive Phase");
  // Only the name kind of lookup knows the fictive phase.
  EXPECT_EQ(Resolved("2", "", "Phase_name"), "Pearlite");

  // Proportions name the phases of a material without a phase list.
  file.Read("Initial phases proportions", runPhaseInfoImport);
  EXPECT_EQ(NameByDatasetID("2"), "Fictive Phase");
  EXPECT_EQ(ConstantText(DatasetOf("Phase_Info")), "0.5");
}

TEST_F(PhasesTest, OtherTypesHaveNoFictivePhase) {
  CardFile file(std::string(kOtherMaterial) + "\n");
  file.Read(kOtherMaterial, runMaterialDetailsImport);
  EXPECT_FALSE(IsWeldMaterialType());
  EXPECT_EQ(Resolved("2", "", "PHASE"), "Pearlite");
  std::string name;
  GetPhaseName("2", "", name);
  EXPECT_EQ(name, "Pearlite");
}

TEST_F(PhasesTest, BarSplitsDescriptionAndName) {
  CardFile file(std::string(kWeldMaterial) + "\nPhases:\n1: Ferrite / Pearlite | FP\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(Description("1"), "Ferrite / Pearlite");
  EXPECT_EQ(Name("1"), "FP");
  // The card keeps the line's own text.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "Ferrite / Pearlite | FP"}));
}

TEST_F(PhasesTest, BarDescriptionStaysWholeWhenItsLeftIsANameInUse) {
  CardFile file(std::string(kOtherMaterial) +
                "\nPhases:\n1: Austenite / Ferrite | Ferrite / Pearlite\n2: Ferrite / Pearlite | FP\nEndPhases\n");
  file.Read(kOtherMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(Description("1"), "Austenite / Ferrite");
  EXPECT_EQ(Name("1"), "Ferrite / Pearlite");
  EXPECT_EQ(Description("2"), "Ferrite / Pearlite | FP");
  std::string name;
  EXPECT_EQ(Resolved("3", "Ferrite / Pearlite | X", "Phase_description", &name), "Ferrite / Pearlite | X");
  EXPECT_EQ(name, "X");
}

TEST_F(PhasesTest, TableEntriesMatchWithoutCaseOrAsPartWithCase) {
  CardFile file(std::string(kOtherMaterial) + "\nPhases:\n1: Bain\n2: bain\n3: bainite\nEndPhases\n");
  file.Read(kOtherMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(Description("1"), "Bainite");
  // "bain" is no part of any entry (the search keeps case), so phase 2 takes its number's entry.
  EXPECT_EQ(Description("2"), "Not Yet Existing Filler Material");
  EXPECT_EQ(Description("3"), "Bainite");
  // Without a number the text stays as it was.
  EXPECT_EQ(Resolved("0", "bain", "Phase_description"), "bain");
  EXPECT_EQ(Resolved("0", "Bain", "Phase_description"), "Bainite");
  EXPECT_EQ(Resolved("0", "BAINITE", "Phase_description"), "Bainite");
}

TEST_F(PhasesTest, PhaseSixIsAustenite) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Fictive Phase\n3: Bainite\n4: Martensite\n5: Tempered Martensite\n"
                "6: Unobtainium\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(Description("6"), "Austenite");
  EXPECT_EQ(Name("6"), "Austenite");
  EXPECT_EQ(Resolved("6", "Unobtainium", "PHASE"), "Austenite");
  // A stored phase answers with its own text.
  char buffer[2050] = "anything";
  EXPECT_EQ(ResolvePhaseDescription("5", buffer, "Phase_description", nullptr), 1);
  EXPECT_STREQ(buffer, "Tempered Martensite");
}

TEST_F(PhasesTest, SharedTextTurnsTheListIntoThePhasesForm) {
  CardFile file(std::string(kOtherMaterial) + "\nPhases:\n1 2: Bainite\nEndPhases\n");
  file.Read(kOtherMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Phases:", runPhasesImport);

  EXPECT_EQ(section.getKeyword(), "Phases");
  EXPECT_EQ(section.getKeywordType(), static_cast<unsigned>(KW_PHASES));
  EXPECT_TRUE(DatasetsOf("Phase_description").empty());
  ASSERT_EQ(DatasetsOf("Phase_name").size(), 2u);
  EXPECT_EQ(NameByDatasetID("1"), "Bainite");
  // The second phase takes the next name the table has free.
  EXPECT_EQ(NameByDatasetID("2"), "Martensite");
  EXPECT_EQ(PhaseModel("2"), nullptr);
  // The card still declares two words, now the two numbers.
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "2"}));
}

TEST_F(PhasesTest, PhasesFormCountsOnlyForAMaterialWithoutPhases) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases\n 1 : Ferrite | Ferrite / Pearlite & Initial Material\nEndPhases\n"
                "Phases:\n1: Martensite\nEndPhases\nPhases\n 1 : Bainite | Bainite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& table = file.Read("Phases", runPhasesImport);
  EXPECT_EQ(table.getKeywordType(), static_cast<unsigned>(KW_PHASES));
  // The "Phases" form names phases and gives no description.
  EXPECT_EQ(NameByDatasetID("1"), "Ferrite");
  EXPECT_TRUE(DatasetsOf("Phase_description").empty());

  file.Read("Phases:", runPhasesImport);
  std::vector<std::string> descriptions;
  EXPECT_EQ(GetPhaseLists(descriptions, nullptr), 1);
  const size_t names = DatasetsOf("Phase_name").size();

  // Once a description exists, a "Phases" block changes nothing.
  file.Read("Phases", runPhasesImport, 1);
  EXPECT_EQ(DatasetsOf("Phase_name").size(), names);
  EXPECT_EQ(GetPhaseLists(descriptions, nullptr), 1);
}

TEST_F(PhasesTest, EmptyProportionIsZero) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Bainite\nEndPhases\n"
                "Initial phases proportions\n1 : 0.4\n2:\nEndInitial phases proportions\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  ImportObject& section = file.Read("Initial phases proportions", runPhaseInfoImport);

  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("1"), "Phase_Info")), "0.4");
  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("2"), "Phase_Info")), "0");
  const std::vector<std::string> expected = {"PhaseInfoLineData", "PhaseInfo", "PhaseInfoLineData", "PhaseInfo"};
  EXPECT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"1", "0.4"}));
  // "2:" splits into one word, which both fields then hold.
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"2", "2"}));
}

TEST_F(PhasesTest, ProportionLinesMustStartWithADigit) {
  CardFile file(std::string(kWeldMaterial) + "\nInitial phases proportions\nPhase 1 : 0.5\n"
                                             "EndInitial phases proportions\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Initial phases proportions", runPhaseInfoImport);
  EXPECT_EQ(CardNames(section), std::vector<std::string>{"PhaseInfoLineData"});
  EXPECT_TRUE(DatasetsOf("Phase_Info").empty());
}

TEST_F(PhasesTest, WireProportionsDoNotNamePhases) {
  CardFile file(std::string(kWeldMaterial) +
                "\nInitial phases proportions if wire\n 1 : 0\n 2 : 1\n 3 :\n"
                "EndInitial phases proportions if wire\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  ImportObject& section = file.Read("Initial phases proportions if wire", runPhaseInfoIfWireImport);

  const std::vector<OrvaneMLRecordDataset*> shares = DatasetsOf("Phase_Info_if_wire");
  ASSERT_EQ(shares.size(), 3u);
  EXPECT_EQ(ConstantText(shares[0]), "0");
  EXPECT_EQ(ConstantText(shares[1]), "1");
  EXPECT_EQ(ConstantText(shares[2]), "0");
  EXPECT_EQ(shares[2]->m_DatasetID, "3");
  EXPECT_TRUE(DatasetsOf("Phase_name").empty());
  EXPECT_EQ(section.getCardList()[1]->getName(), "PhaseInfoIfWire");
  EXPECT_EQ(section.getCardList()[1]->getVarNames()[1], "PhaseInfoIfWire");
}

TEST_F(PhasesTest, WireProportionsGoToTheirPhases) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Bainite\nEndPhases\n"
                "Initial phases proportions if wire\n 1 : 0\n 2 : 1\nEndInitial phases proportions if wire\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  file.Read("Initial phases proportions if wire", runPhaseInfoIfWireImport);
  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("1"), "Phase_Info_if_wire")), "0");
  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("2"), "Phase_Info_if_wire")), "1");
}

TEST_F(PhasesTest, SecondListForTheSameMaterialOnlyRenumbers) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Bainite\nEndPhases\nPhases:\n7: Martensite\n9: Austenite\nEndPhases\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  ImportObject& second = file.Read("Phases:", runPhasesImport, 1);

  EXPECT_EQ(PhaseModels().size(), 2u);
  EXPECT_EQ(DatasetsOf("Phase_description").size(), 2u);
  EXPECT_EQ(DatasetsOf("Phase_name").size(), 2u);
  EXPECT_EQ(Description("2"), "Bainite");
  EXPECT_EQ(Name("2"), "Fictive Phase");
  EXPECT_EQ(Fields(second.getCardList()[1]), (std::vector<std::string>{"1", "Martensite"}));
  EXPECT_EQ(Fields(second.getCardList()[3]), (std::vector<std::string>{"2", "Austenite"}));
}

TEST_F(PhasesTest, HardnessFindsThePhaseByNameOrDescription) {
  CardFile file(std::string(kWeldMaterial) +
                "\nPhases:\n1: Ferrite\n2: Fictive Phase\n3: Tempered Martensite\nEndPhases\n"
                "Initial hardness\nFerrite 165\nTempered Martensite 350\nUnknown 100\nFictive\n"
                "EndInitial hardness\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  ImportObject& section = file.Read("Initial hardness", runInitialHardnessImport);

  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("1"), "Initial_hardness")), "165");
  EXPECT_EQ(ConstantText(DatasetIn(PhaseModel("3"), "Initial_hardness")), "350");
  // "Fictive" is no phase name, and no description holds it (phase 2 is
  // described as the filler material): dropped, as "Unknown" is.
  EXPECT_EQ(DatasetsOf("Initial_hardness").size(), 2u);
  ASSERT_EQ(section.getCardList().size(), 4u);
  EXPECT_EQ(section.getCardList()[0]->getName(), "HardnessInfo");
  // Three words under two fields: each word fills both.
  EXPECT_EQ(section.getCardList()[1]->numVars(), 6u);
}

TEST_F(PhasesTest, HardnessWithoutNumberLeavesTheConstantWithoutValue) {
  CardFile file(std::string(kWeldMaterial) + "\nPhases:\n1: Ferrite\nEndPhases\nInitial hardness\nFerrite soft\n"
                                             "EndInitial hardness\n");
  file.Read(kWeldMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  file.Read("Initial hardness", runInitialHardnessImport);
  OrvaneMLRecordDataset* hardness = DatasetIn(PhaseModel("1"), "Initial_hardness");
  ASSERT_NE(hardness, nullptr);
  ASSERT_NE(hardness->m_Float, nullptr);
  ASSERT_EQ(hardness->m_Float->m_Constants.size(), 1u);
  EXPECT_FALSE(hardness->m_Float->m_Constants[0]->HasValue());
}

TEST_F(PhasesTest, NamesStayUniqueWhileTheTableHasOne) {
  CardFile file(std::string(kOtherMaterial) + "\nPhases:\n1: Ferrite\nEndPhases\n");
  file.Read(kOtherMaterial, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  EXPECT_TRUE(IsPhaseNameUsed("Ferrite"));
  EXPECT_FALSE(IsPhaseNameUsed("ferrite"));
  EXPECT_TRUE(HasPhaseName("1"));
  EXPECT_FALSE(HasPhaseName("2"));
  std::string name;
  GetPhaseName("1", "", name);
  EXPECT_EQ(name, "Pearlite");
  name.clear();
  GetPhaseName("3", "Ferrite / Pearlite | FP", name);
  EXPECT_EQ(name, "Ferrite / Pearlite");
  EXPECT_EQ(FindPhaseModel("Ferrite"), PhaseModel("1"));
  EXPECT_EQ(FindPhaseModel("Initial"), PhaseModel("1"));
  EXPECT_EQ(FindPhaseModel("Bainite"), nullptr);
}

TEST_F(PhasesTest, PhaseTablesHoldTheirTexts) {
  EXPECT_STREQ(PhaseNames8[7], "Fictive Phase");
  EXPECT_STREQ(PhaseNames7[6], "Austenite");
  EXPECT_STREQ(PhaseDescriptions11[0], "Ferrite / Pearlite & Initial Material");
  EXPECT_STREQ(PhaseDescriptions11[10], "Black Martensite After Low Temperature Tempering");
}

}  // namespace
