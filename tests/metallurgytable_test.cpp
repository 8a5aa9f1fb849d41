// The tables of a metallurgy block ("TABLE" or "TABLES"): table lines of type
// 1 and 2, star lines that continue them, and the curves they fill.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "sections/metallurgytable.h"
#include "table_test_support.h"

namespace {

using namespace tabletest;
using Texts_ = std::vector<std::string>;

const char kThermal[] = "NOM : W S1 thermometal_cp mm";

class MetallurgyTableTest : public TablesTest {
 protected:
  ImportObject& Read(const std::string& lines, const char* keyword = "TABLE") {
    m_File = std::make_unique<CardFile>(std::string(kThermal) + "\nMATERIAUX :\n" + keyword + "\n" + lines +
                                        "FIN MATERIAUX\nFIN NOM\n");
    m_File->Read(kThermal, runMaterialDetailsImport);
    return m_File->Read(keyword, runMetallurgyTableImport);
  }

  std::unique_ptr<CardFile> m_File;
};

Card* CardAt(ImportObject& section, size_t index) {
  EXPECT_LT(index, section.getCardList().size());
  return index < section.getCardList().size() ? section.getCardList()[index] : nullptr;
}

TEST_F(MetallurgyTableTest, ATypeOneLineGivesItsCardsAndPairs) {
  ImportObject& section = Read(" 10 / 1 20 0.046 200 0.045\n");
  EXPECT_EQ(CardNames(section), (Texts_{"LineData", "TableLineData", "TableData", "XYData"}));
  EXPECT_EQ(FieldNames(CardAt(section, 0)), (Texts_{"LineDataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 0)), (Texts_{"10 / 1 20 0.046 200 0.045"}));
  EXPECT_EQ(FieldNames(CardAt(section, 1)), (Texts_{"TableID", "TableDataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"10", "1 20 0.046 200 0.045"}));
  EXPECT_EQ(FieldNames(CardAt(section, 2)), (Texts_{"TableType", "XYDataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 2)), (Texts_{"1", "20 0.046 200 0.045"}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"20", "0.046", "200", "0.045"}));
  OrvaneMLRecordCurve* curve = CurveOf(Table("10"));
  ASSERT_NE(curve, nullptr);
  EXPECT_EQ(curve->m_Label, "Curve10");
  EXPECT_EQ(ParameterValues(curve), (Texts_{"20", "200"}));
  EXPECT_EQ(DataValues(curve), (Texts_{"0.046", "0.045"}));
}

TEST_F(MetallurgyTableTest, AStarLineCompletesThePairThatTheLineEndCut) {
  ImportObject& section = Read("5 / 1 20. 1. 100.\n* 2.\n");
  EXPECT_EQ(CardNames(section),
            (Texts_{"LineData", "TableLineData", "TableData", "XYData", "LineData", "StarLineData", "XYData"}));
  EXPECT_EQ(FieldNames(CardAt(section, 5)), (Texts_{"Star", "StarDataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 5)), (Texts_{"*", "2."}));
  OrvaneMLRecordCurve* curve = CurveOf(Table("5"));
  EXPECT_EQ(ParameterValues(curve), (Texts_{"20.", "100."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"1.", "2."}));
}

TEST_F(MetallurgyTableTest, ATypeTwoLineGivesOnePointOnThreeAxes) {
  ImportObject& section = Read("5 / 2 1. 2. 3.\n");
  EXPECT_EQ(CardNames(section).back(), "XYZData");
  OrvaneMLRecordCurve* curve = CurveOf(Table("5"));
  ASSERT_NE(curve, nullptr);
  ASSERT_EQ(curve->m_ParameterAxes.size(), 2u);
  EXPECT_EQ(curve->m_ParameterAxes[1]->m_IDref, "EnthalpyChange");
  EXPECT_EQ(ParameterValues(curve, 0), (Texts_{"1."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"2."}));
  EXPECT_EQ(ParameterValues(curve, 1), (Texts_{"3."}));
}

TEST_F(MetallurgyTableTest, StarLinesContinueTriplesAndTakeStarExponents) {
  Read("200 / 2 500 1*-5 75000 550\n* 2*-4 75000\n");
  OrvaneMLRecordCurve* curve = CurveOf(Table("200"));
  EXPECT_EQ(ParameterValues(curve, 0), (Texts_{"500", "550"}));
  EXPECT_EQ(DataValues(curve), (Texts_{"1e-5", "2e-4"}));
  EXPECT_EQ(ParameterValues(curve, 1), (Texts_{"75000", "75000"}));
}

TEST_F(MetallurgyTableTest, AStarLineBeforeAnyTableHasTypeZeroAndTwoCards) {
  ImportObject& section = Read("* 1. 2.\n7 / 1 3. 4.\n");
  EXPECT_EQ(CardNames(section), (Texts_{"LineData", "StarLineData", "LineData", "TableLineData", "TableData",
                                        "XYData"}));
  EXPECT_EQ(DataValues(CurveOf(Table("7"))), (Texts_{"4."}));
}

TEST_F(MetallurgyTableTest, AStarGluedToItsFirstValueLosesThatValue) {
  ImportObject& section = Read("5 / 1 20. 1.\n*1. 2.\n");
  EXPECT_EQ(Fields(CardAt(section, 5)), (Texts_{"*1.", "2."}));
  EXPECT_EQ(Fields(CardAt(section, 6)), (Texts_{"2."}));
  EXPECT_EQ(ParameterValues(CurveOf(Table("5"))), (Texts_{"20.", "2."}));
}

TEST_F(MetallurgyTableTest, AnotherTableTypeLeavesOnlyTheCards) {
  ImportObject& section = Read("5 / 3 1. 2.\n6 / 1 1. 2.\n");
  EXPECT_EQ(CardNames(section), (Texts_{"LineData", "TableLineData", "TableData", "LineData", "TableLineData",
                                        "TableData", "XYData"}));
  ASSERT_NE(Table("5"), nullptr);
  EXPECT_EQ(Table("5")->m_Float, nullptr);
}

TEST_F(MetallurgyTableTest, AStarLineKeepsTheTableOfTheLineBefore) {
  Read("5 / 1 1. 2.\n6 / 1 3. 4.\n* 5. 6.\n");
  EXPECT_EQ(DataValues(CurveOf(Table("5"))), (Texts_{"2."}));
  EXPECT_EQ(DataValues(CurveOf(Table("6"))), (Texts_{"4.", "6."}));
}

TEST_F(MetallurgyTableTest, ALineWithoutValuesEndsTheSection) {
  // Nothing behind the type leaves no word to cut, which ends the section.
  ImportObject& section = Read("5 / 1\n6 / 1 1. 2.\n");
  EXPECT_EQ(CardNames(section), (Texts_{"LineData", "TableLineData", "TableData"}));
  EXPECT_EQ(Table("6"), nullptr);
  ImportObject& star = Read("5 / 1 1. 2.\n*\n6 / 1 1. 2.\n");
  EXPECT_EQ(CardNames(star).back(), "StarLineData");
  EXPECT_EQ(Table("6"), nullptr);
}

TEST_F(MetallurgyTableTest, TheBlockEndsTheTablesAndAnEndWordEndsThemToo) {
  ImportObject& section = Read("5 / 1 1. 2.\n");
  EXPECT_EQ(section.getCardList().size(), 4u);
  // "END" of a metallurgy file is no table line and no end keyword: it is
  // cut as one, names no table, and leaves nothing to read behind it.
  ImportObject& end = Read("5 / 1 1. 2.\nEND\n6 / 1 1. 2.\n", "TABLES");
  EXPECT_EQ(CardNames(end), (Texts_{"LineData", "TableLineData", "TableData", "XYData", "LineData",
                                    "TableLineData"}));
  EXPECT_EQ(Table("6"), nullptr);
  EXPECT_EQ(DataValues(CurveOf(Table("5"))), (Texts_{"2."}));
}

TEST_F(MetallurgyTableTest, FinNomInAnyCaseEndsTheTables) {
  CardFile file(std::string(kThermal) + "\nTABLE\n5 / 1 1. 2.\nfin nom\n6 / 1 1. 2.\n");
  file.Read(kThermal, runMaterialDetailsImport);
  ImportObject& section = file.Read("TABLE", runMetallurgyTableImport);
  EXPECT_EQ(section.getCardList().size(), 4u);
  EXPECT_EQ(Table("6"), nullptr);
}

}  // namespace
