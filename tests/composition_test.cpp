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

#include "section_test_support.h"

namespace {
using namespace sectiontest;


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
