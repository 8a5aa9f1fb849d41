// The renaming of variable words: the STATUS counter, MODEL texts and the rule
// table, by section keyword, active model and the line being read.

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
#include <initializer_list>
#include <map>

#include "sections/matlabels.h"
#include "sections/phases.h"

#include "section_test_support.h"

namespace {

// What the counter held when the library was loaded, before any test ran.
const int kStatusCounterAtLoad = GetStatusCounter();
using namespace sectiontest;


// The words of one line in slots of the line reader's size.
class Line {
 public:
  Line(std::initializer_list<const char*> words) : m_Slots(words.size() + 2, std::vector<char>(2050, 0)) {
    size_t i = 0;
    for (const char* word : words) std::strcpy(m_Slots[i++].data(), word);
    count = static_cast<unsigned>(words.size());
    for (std::vector<char>& slot : m_Slots) m_Words.push_back(slot.data());
  }
  char** words() { return m_Words.data(); }
  std::string operator[](size_t i) const { return m_Slots[i].data(); }
  unsigned count = 0;

 private:
  std::vector<std::vector<char>> m_Slots;
  std::vector<char*> m_Words;
};

// A section of the given keyword; `lastLine`, when given, is the text of a
// "LabelDetails" card already in it, as a "LABELS :" line has when renamed.
class Section {
 public:
  explicit Section(const char* keyword, const char* lastLine = nullptr) : object(keyword) {
    if (lastLine != nullptr) {
      Card* card = new Card("LabelDetails");
      card->addField("StrValue", new CharArray(lastLine, 10));
      object.addCard(card);
    }
  }
  ImportObject object;
};

class VariableNamesTest : public StoreTest {
 protected:
  // A material of this name and card model, as a "NOM :" line makes it.
  void Material(const char* model, const char* name = "W_S1") {
    OrvaneStaticVars::SetCurrentMaterialType("W");
    OrvaneStaticVars::GetOrCreateMaterial(name);
    OrvaneStaticVars::SetActiveModel(model);
  }

  // The words of `line` after renaming under `keyword`.
  std::vector<std::string> Renamed(std::initializer_list<const char*> words, const char* keyword,
                                   const char* lastLine = nullptr) {
    Line line(words);
    Section section(keyword, lastLine);
    ConvertVariableNames(line.words(), &line.count, 0, &section.object);
    std::vector<std::string> out;
    for (size_t i = 0; i < words.size(); ++i) out.push_back(line[i]);
    return out;
  }

  std::string One(const char* word, const char* keyword, const char* lastLine = nullptr) {
    return Renamed({word, "1"}, keyword, lastLine)[0];
  }
};

using Words = std::vector<std::string>;

TEST_F(VariableNamesTest, StatusCounterStartsAtFiftyThousand) { EXPECT_EQ(kStatusCounterAtLoad, 50000); }

TEST_F(VariableNamesTest, EveryStatusLineGetsTheNextNumber) {
  Material("mechanical");
  const int first = GetStatusCounter();
  EXPECT_EQ(Renamed({"STATUS", "0"}, "LABELS :"), (Words{"STATUS", std::to_string(first)}));
  EXPECT_EQ(Renamed({"STATUS", "0"}, "LABELS :"), (Words{"STATUS", std::to_string(first + 1)}));
  // Lower case is no status line.
  EXPECT_EQ(Renamed({"status", "3"}, "LABELS :"), (Words{"status", "3"}));
  EXPECT_EQ(GetStatusCounter(), first + 2);
}

TEST_F(VariableNamesTest, StatusCountsOnAcrossMaterials) {
  const std::string text =
      "NOM : W A mechanical mm\nLABELS :\nSTATUS 0\nSTATUS 0\nFIN LABELS\nFIN NOM\n"
      "NOM : W B mechanical mm\nLABELS :\nNU 0.3\nFIN LABELS\nFIN NOM\n"
      "NOM : W C mechanical mm\nLABELS :\nSTATUS 0\nFIN LABELS\nFIN NOM\n";
  CardFile file(text);
  const int first = GetStatusCounter();
  file.Read("NOM : W A mechanical mm", runMaterialDetailsImport);
  ImportObject& a = file.Read("LABELS :", runMatLabelsImport, 0);
  file.Read("NOM : W B mechanical mm", runMaterialDetailsImport);
  file.Read("LABELS :", runMatLabelsImport, 1);
  file.Read("NOM : W C mechanical mm", runMaterialDetailsImport);
  ImportObject& c = file.Read("LABELS :", runMatLabelsImport, 2);

  // A pair line of two words fills each of its four fields with each word:
  // the number stands from the fifth field on.
  EXPECT_EQ(Fields(a.getCardList()[1])[4], std::to_string(first));
  EXPECT_EQ(Fields(a.getCardList()[3])[4], std::to_string(first + 1));
  EXPECT_EQ(Fields(c.getCardList()[1])[4], std::to_string(first + 2));
  EXPECT_EQ(StringText(DatasetOf(StoreID("STATUS"))), std::to_string(first + 2));
}

TEST_F(VariableNamesTest, ModelLinesTakeTheirText) {
  Material("mechanical");
  EXPECT_EQ(Renamed({"MODEL", "1"}, "LABELS :")[1], "Perfect plasticity");
  EXPECT_EQ(Renamed({"MODEL", "2"}, "LABELS :")[1], "Kinematic");
  EXPECT_EQ(Renamed({"MODEL", "3"}, "LABELS :")[1], "Isotropic");
  EXPECT_EQ(Renamed({"MODEL", "4"}, "LABELS :")[1], "Non-linear kinematic");
  EXPECT_EQ(Renamed({"MODEL", "5"}, "LABELS :")[1], "Combined");
  EXPECT_EQ(Renamed({"MODEL", "6"}, "LABELS :")[1], "6");
  // A line of three words is no model line: the word rules apply, and only to words.
  EXPECT_EQ(Renamed({"MODEL", "1", "K"}, "LABELS :"), (Words{"MODEL", "1", "KT"}));
  // A model line goes through no other rule.
  EXPECT_EQ(Renamed({"MODEL", "K"}, "LABELS :"), (Words{"MODEL", "K"}));
}

TEST_F(VariableNamesTest, EveryWordOfTheLineIsRenamed) {
  Material("mechanical");
  EXPECT_EQ(Renamed({"A", "K", "F", "N"}, "LABELS :"), (Words{"A", "KT", "FX", "NX"}));
  EXPECT_EQ(Renamed({"K", "1250", "N", "0.48"}, "LABELS :"), (Words{"KT", "1250", "NX", "0.48"}));
}

TEST_F(VariableNamesTest, DensityIsMechanicalOnlyInLabels) {
  Material("mechanical");
  EXPECT_EQ(One("RHO", "LABELS :"), "MECHRHO");
  EXPECT_EQ(One("rho", "LABELS :"), "MECHRHO");
  EXPECT_EQ(One("RHO", "MATERIAUX :"), "RHO");
  OrvaneStaticVars::SetActiveModel("mechanical_phases");
  EXPECT_EQ(One("RHO", "LABELS :"), "RHO");
  OrvaneStaticVars::SetActiveModel("thermometal");
  EXPECT_EQ(One("RHO", "LABELS :"), "RHO");
}

TEST_F(VariableNamesTest, CarbonBySection) {
  Material("diffusion");
  EXPECT_EQ(Renamed({"c", "0.2"}, "MATERIAUX :"), (Words{"CX", "0.2"}));
  EXPECT_EQ(One("C", "LABELS :"), "CX");
  EXPECT_EQ(One("C", "GRAIN TMIN 900"), "GRAINC");
  EXPECT_EQ(One("C", "CHIMIE :"), "CHIMIEC");
  EXPECT_EQ(One("C", "TABLES :"), "C");
  OrvaneStaticVars::SetActiveModel("mechanical");
  EXPECT_EQ(One("C", "CHIMIE :"), "C");
}

TEST_F(VariableNamesTest, NitrogenOnlyInTheChemistryOfDiffusion) {
  Material("diffusion");
  EXPECT_EQ(One("N", "CHIMIE :"), "CHIMIEN");
  EXPECT_EQ(One("N", "LABELS :"), "NX");
  OrvaneStaticVars::SetActiveModel("Diffusion");
  EXPECT_EQ(One("N", "CHIMIE :"), "NX");
}

TEST_F(VariableNamesTest, ConductivityXByModel) {
  Material("mechanical");
  EXPECT_EQ(One("KX", "LABELS :"), "KSX");
  EXPECT_EQ(One("kx", "MATERIAUX :"), "KSX");
  EXPECT_EQ(One("KX", "TABLES :"), "KX");
  OrvaneStaticVars::SetActiveModel("mechanical_phases");
  EXPECT_EQ(One("KX", "LABELS :"), "KSX");
  OrvaneStaticVars::SetActiveModel("diffusion");
  EXPECT_EQ(One("KX", "LABELS :"), "DX");
  OrvaneStaticVars::SetActiveModel("thermometal_cp");
  EXPECT_EQ(One("KX", "MATERIAUX :"), "KX");

  // A thermal model with reduced integration has its own conductivity.
  OrvaneMLRecordMatModel* thermal = OrvaneStaticVars::FindModelByID("Thermal_Weld");
  ASSERT_NE(thermal, nullptr);
  OrvaneMLRecordMatModel* reduced = new OrvaneMLRecordMatModel();
  reduced->SetIDref("ReducedIntegration");
  thermal->GetOrCreateSubModels()->AddModel(reduced);
  EXPECT_EQ(One("KX", "MATERIAUX :"), "KXX");
}

TEST_F(VariableNamesTest, ConductivityYByModel) {
  Material("mechanical");
  EXPECT_EQ(One("KY", "TABLES :"), "KY");
  // A mechanical KY is the Y stiffness on a reference line ...
  EXPECT_EQ(One("KY", "LABELS :", "KY -&3&"), "KSY");
  EXPECT_EQ(One("KY", "LABELS :", "KY 5"), "KY");
  // ... or once the material constrains stiffness.
  OrvaneMLRecordMatModel* special = nullptr;
  for (OrvaneMLRecordMatModel* model : AllModels(OrvaneStaticVars::GetCurrentMaterial()))
    if (model->m_IDref == "SpecialPropertyModel") special = model;
  ASSERT_NE(special, nullptr);
  OrvaneMLRecordDataset* stiffness = new OrvaneMLRecordDataset();
  stiffness->SetIDref("ConstraintStiffness");
  special->AddDataset(stiffness);
  EXPECT_EQ(One("KY", "LABELS :", "KY 5"), "KSY");

  OrvaneStaticVars::SetActiveModel("diffusion");
  EXPECT_EQ(One("KY", "LABELS :"), "DY");
}

TEST_F(VariableNamesTest, ThermalConductivityYMakesTheConductivityOrthotropic) {
  Material("thermometal_cp");
  OrvaneMLRecordDataset* conductivity =
      OrvaneStaticVars::GetOrCreateDataset("KX", "IDref", false, nullptr, nullptr);
  ASSERT_NE(conductivity, nullptr);
  ASSERT_EQ(conductivity->m_IDref, "Thermal_conductivity_weld");
  EXPECT_EQ(One("KY", "MATERIAUX :"), "KYX");
  EXPECT_EQ(conductivity->m_IDref, "Thermal_conductivity_weld_X");

  // The exact spelling "diffusion" is the diffusion model here; any other is thermal.
  OrvaneStaticVars::SetActiveModel("Diffusion");
  EXPECT_EQ(One("KY", "MATERIAUX :"), "KYX");
}

TEST_F(VariableNamesTest, ThermalConductivityYStaysWithAYoungsModulus) {
  Material("thermometal_cp");
  OrvaneMLRecordDataset* modulus = new OrvaneMLRecordDataset();
  modulus->SetIDref("Youngs_modulus_weld");
  OrvaneStaticVars::AddDataset(modulus, nullptr);
  EXPECT_EQ(One("KY", "MATERIAUX :"), "KY");
}

TEST_F(VariableNamesTest, ConductivityZHasNoSectionCondition) {
  Material("mechanical");
  EXPECT_EQ(Renamed({"KY", "1", "KZ", "2"}, "TABLES :"), (Words{"KY", "1", "KSZ", "2"}));
  OrvaneStaticVars::SetActiveModel("diffusion");
  EXPECT_EQ(One("KZ", "TABLES :"), "DZ");
  OrvaneStaticVars::SetActiveModel("thermometal");
  EXPECT_EQ(One("KZ", "MATERIAUX :"), "KZ");
}

TEST_F(VariableNamesTest, ModulusStaysOnlyOnAReferenceLine) {
  Material("mechanical");
  // No card in the section yet: EX.
  EXPECT_EQ(One("E", "LABELS :"), "EX");
  EXPECT_EQ(One("E", "LABELS :", "E 210000"), "EX");
  EXPECT_EQ(One("e", "LABELS :", "e -&1&"), "e");
  EXPECT_EQ(One("E", "LABELS :", "E -&1&"), "E");
}

TEST_F(VariableNamesTest, ModulusOfSlidePlanesAndTransitionsIsAlwaysConstant) {
  for (const char* name : {"W_SLIDEPLANE_NOFRICTION", "W_SLIDEPLANE_WITHFRICTION", "W_Trans2"}) {
    SCOPED_TRACE(name);
    Material("mechanical", name);
    EXPECT_EQ(One("E", "LABELS :", "E -&1&"), "EX");
  }
  Material("mechanical", "W_trans");
  EXPECT_EQ(One("E", "LABELS :", "E -&1&"), "E");
}

TEST_F(VariableNamesTest, StrainDirections) {
  Material("mechanical");
  EXPECT_EQ(Renamed({"LX", "$1"}, "LABELS :"), (Words{"IG", "$1"}));
  EXPECT_TRUE(OrvaneStaticVars::GetLXLYLZMap().empty());
  EXPECT_EQ(Renamed({"LX", "1"}, "LABELS :", "LX 1"), (Words{"IG", "1"}));
  EXPECT_TRUE(OrvaneStaticVars::GetLXLYLZMap().empty());

  EXPECT_EQ(Renamed({"LX", "20"}, "LABELS :", "LX -&20&"), (Words{"LX", "20"}));
  // Without a line card LX is kept as a direction.
  EXPECT_EQ(Renamed({"LX", "21"}, "MATERIAUX :"), (Words{"LX", "21"}));
  // LY and LZ keep their direction whatever the line, but not behind a "$".
  EXPECT_EQ(Renamed({"LY", "22"}, "LABELS :", "LY 22"), (Words{"LY", "22"}));
  EXPECT_EQ(Renamed({"LZ", "$22"}, "LABELS :", "LZ -&22&"), (Words{"IG", "$22"}));
  // Only the upper-case spellings of LY and LZ are directions.
  EXPECT_EQ(Renamed({"ly", "23"}, "LABELS :", "ly 23"), (Words{"ly", "23"}));

  std::map<std::string, std::vector<std::string>>& directions = OrvaneStaticVars::GetLXLYLZMap();
  EXPECT_EQ(directions["LX"], (std::vector<std::string>{"20", "21"}));
  EXPECT_EQ(directions["LY"], std::vector<std::string>{"22"});
  EXPECT_EQ(directions.count("LZ"), 0u);
}

TEST_F(VariableNamesTest, DirectionDatasetTakesTheFirstTwoWords) {
  Material("mechanical");
  EXPECT_EQ(Renamed({"A", "7", "LY", "8"}, "LABELS :", "A 7 LY 8"), (Words{"A", "7", "LY", "8"}));
  EXPECT_EQ(OrvaneStaticVars::GetLXLYLZMap()["A"], std::vector<std::string>{"7"});
}

TEST_F(VariableNamesTest, NothingHappensWithoutWords) {
  Material("mechanical");
  Line line({"STATUS", "9"});
  line.count = 0;
  Section section("LABELS :");
  const int counter = GetStatusCounter();
  ConvertVariableNames(line.words(), &line.count, 0, &section.object);
  EXPECT_EQ(line[1], "9");
  EXPECT_EQ(GetStatusCounter(), counter);
}

TEST_F(VariableNamesTest, MaterialOfTwoPhasesHasItsSecondFictive) {
  const char nom[] = "NOM : X S1 mechanical mm";
  CardFile file(std::string(nom) + "\nPhases:\n1: Bainite\n2: Martensite\nEndPhases\n");
  file.Read(nom, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  EXPECT_EQ(StringText(DatasetIn(PhaseModel("2"), "Phase_name")), "Martensite");
  EXPECT_EQ(One("NU", "LABELS :"), "NU");
  EXPECT_EQ(StringText(DatasetIn(PhaseModel("2"), "Phase_name")), "Fictive Phase");
  EXPECT_EQ(StringText(DatasetIn(PhaseModel("1"), "Phase_name")), "Bainite");
}

TEST_F(VariableNamesTest, MaterialOfThreePhasesKeepsItsNames) {
  const char nom[] = "NOM : X S1 mechanical mm";
  CardFile file(std::string(nom) + "\nPhases:\n1: Bainite\n2: Martensite\n3: Austenite\nEndPhases\n");
  file.Read(nom, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  EXPECT_EQ(One("NU", "LABELS :"), "NU");
  EXPECT_EQ(StringText(DatasetIn(PhaseModel("2"), "Phase_name")), "Martensite");
}

TEST_F(VariableNamesTest, VariableLineRenamesBeforeStoring) {
  Material("thermometal_cp");
  Line line({"c", "1", "C", "2", "900"});
  Section section("MATERIAUX :");
  ConvertVariableLine(line.words(), &line.count, 0, &section.object);
  EXPECT_EQ(line[0], "CX");
  EXPECT_EQ(line[2], "CX");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("CX"))), "900");
  // A line of one word converts nothing.
  Line single({"K"});
  ConvertVariableLine(single.words(), &single.count, 0, &section.object);
  EXPECT_EQ(single[0], "K");
}

}  // namespace
