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

#include "section_test_support.h"

namespace {
using namespace sectiontest;


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
