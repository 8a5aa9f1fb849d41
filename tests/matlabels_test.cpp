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

#include "section_test_support.h"

namespace {
using namespace sectiontest;


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
