// Variable sections: "MATERIAUX :" blocks and the "MATERIAL m PHASE n" blocks
// of metallurgy files, with their variable lines, phase counts and links.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <csignal>
#include <cstdlib>
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
#include "sections/materiaux.h"
#include "sections/metallurgy.h"
#include "sections/phases.h"

#include "section_test_support.h"

namespace {
using namespace sectiontest;


const char kThermal[] = "NOM : W S1 thermometal_cp mm";
const char kThermalOther[] = "NOM : X S1 thermometal_cp mm";

// The selected phases of a constant or curve, in order.
template <typename Record>
std::vector<std::string> Phases(Record* record) {
  std::vector<std::string> phases;
  for (OrvaneMLRecordParameterFixed* condition : record->m_ParameterFixed) {
    EXPECT_EQ(condition->m_IDref, "Selected_Phases");
    phases.push_back(condition->m_Value);
  }
  return phases;
}

OrvaneMLRecordConstant* FirstConstant(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Float == nullptr || dataset->m_Float->m_Constants.empty()) return nullptr;
  return dataset->m_Float->m_Constants.front();
}

// The dataset of the material's own list (a table's) with this dataset id.
OrvaneMLRecordDataset* TableDataset(const std::string& id) {
  for (OrvaneMLRecordDataset* dataset : OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets)
    if (dataset->m_DatasetID == id) return dataset;
  return nullptr;
}

bool HasLink(OrvaneMLRecordDataset* dataset, const std::string& table) {
  if (dataset == nullptr) return false;
  for (OrvaneMLRecordLink* link : dataset->m_Links)
    if (link->m_DatasetIDref == table) return true;
  return false;
}

class MateriauxTest : public StoreTest {
 protected:
  void TearDown() override {
    // The phase count switch belongs to the solution object, which outlives the test.
    SetSolutionFlags(0);
    StoreTest::TearDown();
  }

  static void SetSolutionFlags(int64_t flags) {
    std::string text;
    Orvane* orvane = Orvane::_ApplnGetOrvanePtr(Orvane::_ApplnGetOrvaneConfigPtr()->GetActiveSolution(), text);
    ASSERT_NE(orvane, nullptr);
    orvane->SetIOFlag(flags);
  }
};

TEST_F(MateriauxTest, ConstantWithPhaseConditions) {
  CardFile file(std::string(kThermal) +
                "\nMATERIAUX :\nMETALLURGY\nPHASE 6\nRHO(1) = RHO(2) = RHO(3) =  RHO(5)  = 7.83*-6\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);

  const std::vector<std::string> expected = {"Metallurgy", "Phase", "VarLineData", "SplitLineData"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[0]), std::vector<std::string>{"METALLURGY"});
  EXPECT_EQ(Fields(section.getCardList()[1]), (std::vector<std::string>{"PHASE", "6"}));
  EXPECT_EQ(section.getCardList()[1]->getVarValues()[1]->type, static_cast<unsigned>(Data::INTEGER_TAG));
  EXPECT_EQ(Fields(section.getCardList()[2]),
            std::vector<std::string>{"RHO(1) = RHO(2) = RHO(3) =  RHO(5)  = 7.83*-6"});
  // One field per word; the exponent mark is rewritten before the card is made.
  const std::vector<std::string> words = {"RHO", "1", "RHO", "2", "RHO", "3", "RHO", "5", "7.83e-6"};
  EXPECT_EQ(Fields(section.getCardList()[3]), words);
  EXPECT_EQ(section.getCardList()[3]->getVarNames()[8], "DataValueStr");

  OrvaneMLRecordConstant* constant = FirstConstant(DatasetOf(StoreID("RHO")));
  ASSERT_NE(constant, nullptr);
  EXPECT_EQ(constant->m_Value, "7.83e-6");
  // Without a phase list the phases are named by the table, by number.
  const std::vector<std::string> phases = {"Ferrite", "Pearlite", "Bainite", "Tempered Bainite"};
  EXPECT_EQ(Phases(constant), phases);
}

TEST_F(MateriauxTest, PhaseConditionsUseTheStoredNames) {
  CardFile file(std::string(kThermalOther) +
                "\nPhases:\n1: Bainite\n2: Martensite\n3: Austenite\nEndPhases\nMATERIAUX :\nMETALLURGY\n"
                "PHASE 3\nKX(1) = KX(3) = 0.046\nFIN MATERIAUX\n");
  file.Read(kThermalOther, runMaterialDetailsImport);
  file.Read("Phases:", runPhasesImport);
  file.Read("MATERIAUX :", runMateriauxImport);
  OrvaneMLRecordConstant* constant = FirstConstant(DatasetOf(StoreID("KX")));
  ASSERT_NE(constant, nullptr);
  EXPECT_EQ(constant->m_Value, "0.046");
  EXPECT_EQ(Phases(constant), (std::vector<std::string>{"Bainite", "Austenite"}));
}

TEST_F(MateriauxTest, TwoWordConstantHasNoCondition) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 1\nRHO 7800\nH 2.5*5\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  OrvaneMLRecordConstant* density = FirstConstant(DatasetOf(StoreID("RHO")));
  ASSERT_NE(density, nullptr);
  EXPECT_EQ(density->m_Value, "7800");
  EXPECT_TRUE(density->m_ParameterFixed.empty());
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("H"))), "2.5e5");
  // The last split finds the held line emptied by its own pass: no card.
  EXPECT_EQ(section.getCardList().size(), 6u);
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"RHO", "7800"}));
}

TEST_F(MateriauxTest, OnlyTheFirstStarIsAnExponent) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 1\nC(1) = 1.5*3*2\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  // C in a variable line is the heat capacity, "CX".
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"CX", "1", "1.5e3*2"}));
  OrvaneMLRecordConstant* constant = FirstConstant(DatasetOf(StoreID("CX")));
  ASSERT_NE(constant, nullptr);
  EXPECT_EQ(constant->m_Value, "1.5e3*2");
  EXPECT_EQ(Phases(constant), std::vector<std::string>{"Ferrite"});
}

TEST_F(MateriauxTest, EvenLinkLinesShareTheCurveOfTheirTable) {
  CardFile file(std::string(kThermal) +
                "\nMATERIAUX :\nMETALLURGY\nPHASE 2\nKX(1) = TABLE 7\nKX(2) TABLE 7\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  file.Read("MATERIAUX :", runMateriauxImport);

  const std::string id = StoreID("KX");
  EXPECT_TRUE(HasLink(DatasetOf(id), "7"));
  OrvaneMLRecordDataset* table = TableDataset("7");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->m_IDref, id);
  ASSERT_NE(table->m_Float, nullptr);
  ASSERT_EQ(table->m_Float->m_Curves.size(), 1u);
  OrvaneMLRecordCurve* curve = table->m_Float->m_Curves[0];
  EXPECT_EQ(curve->m_Label, "Curve7");
  // The second line adds its phase to the curve the first line made.
  EXPECT_EQ(Phases(curve), (std::vector<std::string>{"Ferrite", "Pearlite"}));
}

TEST_F(MateriauxTest, OddLinkLineMakesADatasetAndStops) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 1\nLAMBDA TABLE 7\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  const size_t before = OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets.size();
  file.Read("MATERIAUX :", runMateriauxImport);

  EXPECT_TRUE(HasLink(DatasetOf("LAMBDA"), "7"));
  std::vector<OrvaneMLRecordDataset*>& own = OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets;
  ASSERT_EQ(own.size(), before + 1);
  OrvaneMLRecordDataset* made = own.back();
  // An unknown word has no store identifier; the dataset gets no table id and no curve.
  EXPECT_EQ(made->m_IDref, "");
  EXPECT_EQ(made->m_DatasetID, "");
  EXPECT_EQ(made->m_Float, nullptr);
  EXPECT_EQ(OrvaneStaticVars::FindDataset("7", nullptr), nullptr);
}

TEST_F(MateriauxTest, ModulusWordBeforeTheTableMakesALink) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 1\nMODULUS E 12\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  EXPECT_EQ(Fields(section.getCardList()[3]), (std::vector<std::string>{"MODULUS", "EX", "12"}));
  EXPECT_TRUE(HasLink(DatasetOf("MODULUS"), "12"));
  EXPECT_EQ(FirstConstant(DatasetOf("MODULUS")), nullptr);
}

TEST_F(MateriauxTest, BlockEndingAtItsPhaseLineSplitsThePhaseWord) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 6\nFIN MATERIAUX\nRHO 1\n");
  file.Read(kThermal, runMaterialDetailsImport);
  const size_t before = AllDatasets().size();
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  // The end line leaves the words of "PHASE 6" in place, and the split that
  // always follows takes the word "PHASE" for a variable line of one word.
  const std::vector<std::string> expected = {"Metallurgy", "Phase", "SplitLineData"};
  ASSERT_EQ(CardNames(section), expected);
  EXPECT_EQ(Fields(section.getCardList()[2]), std::vector<std::string>{"PHASE"});
  EXPECT_EQ(AllDatasets().size(), before);
}

TEST_F(MateriauxTest, ReactionEndsTheBlock) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 1\nH 5\nreaction\nRHO 7\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  EXPECT_EQ(section.getCardList().size(), 4u);
  EXPECT_EQ(DatasetOf(StoreID("RHO")), nullptr);
}

TEST_F(MateriauxTest, ReadPhaseGivesTheCount) {
  CardFile file("MATERIAUX :\nMETALLURGY\nPHASE 6\nFIN MATERIAUX\n");
  file.Line().readNextCard();
  ImportObject section("MATERIAUX :");
  Materiaux reader(&file.Line(), &section);
  reader.readMetallurgy();
  EXPECT_EQ(reader.lastLine, "METALLURGY");
  EXPECT_EQ(reader.readPhase(), 6);
  // At the end of the section there is no count and no card.
  EXPECT_EQ(reader.readPhase(), 0);
  EXPECT_EQ(section.getCardList().size(), 2u);
}

TEST_F(MateriauxTest, PhaseCountWithoutNumberIsZero) {
  CardFile file("MATERIAUX :\nMETALLURGY\nPHASE\n");
  file.Line().readNextCard();
  ImportObject section("MATERIAUX :");
  Materiaux reader(&file.Line(), &section);
  reader.readMetallurgy();
  EXPECT_EQ(reader.readPhase(), 0);
  EXPECT_EQ(reader.numWords, 1u);
}

// A section whose loop would never end is left; run in a child process with a
// time limit so that a hang fails the test instead of the run.
void ExpectEndsInTime(const std::string& text, const std::string& keyword, SectionEntry entry) {
  EXPECT_EXIT(
      {
        alarm(5);
        {
          CardFile file(text);
          file.Read(keyword, entry);
        }
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(MateriauxTest, ZeroPhasesLeaveTheSection) {
  const std::string text = std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 0\nRHO 7800\nFIN MATERIAUX\n";
  ExpectEndsInTime(text, "MATERIAUX :", runMateriauxImport);
  if (HasFailure()) return;
  CardFile file(text);
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAUX :", runMateriauxImport);
  EXPECT_EQ(CardNames(section), (std::vector<std::string>{"Metallurgy", "Phase"}));
  EXPECT_EQ(DatasetOf(StoreID("RHO")), nullptr);
}

TEST_F(MateriauxTest, ZeroPhasesInAMetallurgyHeaderLeaveTheSection) {
  ExpectEndsInTime("MATERIAL 1 PHASE 0\nRHO 7800\nEND\n", "MATERIAL 1 PHASE 0", runMetallurgyImport);
  ExpectEndsInTime("MATERIAL\nRHO 7800\nEND\n", "MATERIAL", runMetallurgyImport);
  if (HasFailure()) return;
  CardFile file("MATERIAL\nRHO 7800\nEND\n");
  ImportObject& section = file.Read("MATERIAL", runMetallurgyImport);
  ASSERT_EQ(CardNames(section), std::vector<std::string>{"Metallurgy"});
  // One word under four fields: each field is made from it.
  EXPECT_EQ(Fields(section.getCardList()[0]), (std::vector<std::string>{"MATERIAL", "0", "MATERIAL", "0"}));
}

TEST_F(MateriauxTest, PhaseCountDatasetOnlyWhereTheSolutionKeepsIt) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nPHASE 6\nFIN MATERIAUX\n"
                                        "MATERIAUX :\nMETALLURGY\nphase 4\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  file.Read("MATERIAUX :", runMateriauxImport);
  EXPECT_TRUE(DatasetsOf("Number of Phases").empty());

  SetSolutionFlags(0x400000);
  file.Read("MATERIAUX :", runMateriauxImport);
  std::vector<OrvaneMLRecordDataset*> counts = DatasetsOf("Number of Phases");
  ASSERT_EQ(counts.size(), 1u);
  ASSERT_NE(counts[0]->m_Integer, nullptr);
  EXPECT_EQ(counts[0]->m_Integer->m_Value, 6);
  EXPECT_EQ(DatasetIn(OrvaneStaticVars::FindModelByID("PhaseDetails"), "Number of Phases"), counts[0]);

  // A count the material has already is kept; the word is compared without case.
  file.Read("MATERIAUX :", runMateriauxImport, 1);
  EXPECT_EQ(DatasetsOf("Number of Phases").size(), 1u);
  EXPECT_EQ(counts[0]->m_Integer->m_Value, 6);
}

TEST_F(MateriauxTest, OtherPhaseCountBitCountsToo) {
  CardFile file(std::string(kThermal) + "\nMATERIAUX :\nMETALLURGY\nphase 4\nFIN MATERIAUX\n");
  file.Read(kThermal, runMaterialDetailsImport);
  SetSolutionFlags(0x100000);
  file.Read("MATERIAUX :", runMateriauxImport);
  std::vector<OrvaneMLRecordDataset*> counts = DatasetsOf("Number of Phases");
  ASSERT_EQ(counts.size(), 1u);
  EXPECT_EQ(counts[0]->m_Integer->m_Value, 4);
}

TEST_F(MateriauxTest, MetallurgyBlockReadsUpToItsTables) {
  CardFile file(std::string(kThermal) +
                "\nMATERIAL 1 PHASE 6\nKX(1) = KX(2) = TABLE 10\nRHO(1) = 7.8*-6\nTABLES :\nH 5\nEND\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("MATERIAL 1 PHASE 6", runMetallurgyImport);

  const std::vector<std::string> expected = {"Metallurgy", "VarLineData", "SplitLineData", "VarLineData",
                                             "SplitLineData"};
  ASSERT_EQ(CardNames(section), expected);
  Card* header = section.getCardList()[0];
  EXPECT_EQ(Fields(header), (std::vector<std::string>{"MATERIAL", "1", "PHASE", "6"}));
  EXPECT_EQ(header->getVarNames(), (std::vector<std::string>{"MatKW", "NumMat", "PhaseKW", "NumPhase"}));
  EXPECT_EQ(header->getVarValues()[3]->type, static_cast<unsigned>(Data::INTEGER_TAG));
  EXPECT_EQ(Fields(section.getCardList()[2]),
            (std::vector<std::string>{"KX", "1", "KX", "2", "TABLE", "10"}));
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("RHO"))), "7.8e-6");
  EXPECT_EQ(ConstantText(DatasetOf(StoreID("H"))), "<none>");
}

TEST_F(MateriauxTest, MetallurgyHeaderGivesThePhaseCountOnce) {
  CardFile file("MATERIAL 1 PHASE 6\nH 5\nEND\n");
  ImportObject section("MATERIAL");
  file.Line().readNextCard();
  Metallurgy reader(&file.Line(), &section);
  EXPECT_EQ(reader.readMetallurgy(), 6);
  EXPECT_EQ(reader.lastLine, "MATERIAL");
  // The header emptied itself: a second pass finds the end of the section.
  EXPECT_EQ(reader.readMetallurgy(), 0);
  EXPECT_EQ(section.getCardList().size(), 1u);
}

TEST_F(MateriauxTest, MetallurgyEndKeywordsArePrefixes) {
  for (const char* closing : {"END", "REACTION", "TABLE", "ENDING(1) = 5", "table 3"}) {
    SCOPED_TRACE(closing);
    CardFile file(std::string("MATERIAL 1 PHASE 2\nH 5\n") + closing + "\nRHO 7\n");
    ImportObject section("MATERIAL");
    file.Line().readNextCard();
    Metallurgy reader(&file.Line(), &section);
    EXPECT_EQ(reader.importMetallurgy(), 0u);
    EXPECT_EQ(CardNames(section), (std::vector<std::string>{"Metallurgy", "VarLineData", "SplitLineData"}));
    EXPECT_EQ(section.getCardList()[0]->intValue("NumPhase"), 2);
  }
}

}  // namespace
