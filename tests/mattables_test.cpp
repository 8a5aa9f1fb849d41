// "TABLES :": how each table line is told apart, cut and carded, and what
// each kind of line leaves in the store.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "import/sectionconverters.h"
#include "import/tableconverters.h"
#include "sections/matlabels.h"
#include "sections/mattables.h"
#include "store/orvanegeneric.h"
#include "table_test_support.h"

namespace {

using namespace tabletest;
using Texts_ = std::vector<std::string>;

const char kMechanical[] = "NOM : W S1 mechanical mm";

class MatTablesTest : public TablesTest {
 protected:
  // A mechanical material with the labels and tables given; the section of
  // the tables is read last and handed back.
  ImportObject& Read(const std::string& labels, const std::string& tables) {
    m_File = std::make_unique<CardFile>(std::string(kMechanical) + "\nLABELS :\n" + labels + "FIN LABELS\nTABLES :\n" +
                                        tables + "FIN TABLES\nFIN NOM\n");
    m_File->Read(kMechanical, runMaterialDetailsImport);
    m_File->Read("LABELS :", runMatLabelsImport);
    return m_File->Read("TABLES :", runMatTablesImport);
  }
  // Tables of a material whose labels say nothing.
  ImportObject& ReadTables(const std::string& tables) { return Read("", tables); }

  std::unique_ptr<CardFile> m_File;
};

Texts_ Names(ImportObject& section) { return CardNames(section); }

Card* CardAt(ImportObject& section, size_t index) {
  EXPECT_LT(index, section.getCardList().size());
  return index < section.getCardList().size() ? section.getCardList()[index] : nullptr;
}

// ---- Type 1 ----

TEST_F(MatTablesTest, ATypeOneLineGivesItsFourCardsAndACurveOfPairs) {
  ImportObject& section = ReadTables("12 / T 1 2 20. 1. 100. 2.\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsForType1And7", "TableData"}));
  EXPECT_EQ(FieldNames(CardAt(section, 0)), (Texts_{"TableID", "TableValueStr"}));
  EXPECT_EQ(Fields(CardAt(section, 0)), (Texts_{"12", "T 1 2 20. 1. 100. 2."}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"T", "1", "2 20. 1. 100. 2."}));
  EXPECT_EQ(FieldNames(CardAt(section, 2)), (Texts_{"NumTableValues", "ValuesStr"}));
  EXPECT_EQ(Fields(CardAt(section, 2)), (Texts_{"2", "20. 1. 100. 2."}));
  EXPECT_EQ(FieldNames(CardAt(section, 3)), (Texts_{"DataStr", "DataStr", "DataStr", "DataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"20.", "1.", "100.", "2."}));

  OrvaneMLRecordCurve* curve = CurveOf(Table("12"));
  ASSERT_NE(curve, nullptr);
  EXPECT_EQ(curve->m_Label, "Curve12");
  EXPECT_EQ(ParameterValues(curve), (Texts_{"20.", "100."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"1.", "2."}));
}

TEST_F(MatTablesTest, TheCountOfATableNeitherBoundsNorChecksItsValues) {
  ImportObject& section = ReadTables("12 / T 1 1 20. 1. 100. 2. 300. 3.\n");
  EXPECT_EQ(Fields(CardAt(section, 2))[0], "1");
  EXPECT_EQ(ParameterValues(CurveOf(Table("12"))), (Texts_{"20.", "100.", "300."}));
}

TEST_F(MatTablesTest, ATableOverTwoLinesKeepsAPairCutByTheLineEnd) {
  ReadTables("12 / T 1 2 20. 1. 100.\n12 / T 1 2 2. 300. 3.\n");
  ASSERT_EQ(Tables("12").size(), 1u);
  OrvaneMLRecordCurve* curve = CurveOf(Table("12"));
  EXPECT_EQ(ParameterValues(curve), (Texts_{"20.", "100.", "300."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"1.", "2.", "3."}));
}

TEST_F(MatTablesTest, StarExponentsBecomeExponentsInTheStoreAndOnTheCard) {
  ImportObject& section = ReadTables("12 / T 1 2 1.5*3 1*-5 2*3*4 7\n");
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"1.5e3", "1e-5", "2e3*4", "7"}));
  EXPECT_EQ(ParameterValues(CurveOf(Table("12"))), (Texts_{"1.5e3", "2e3*4"}));
  EXPECT_EQ(DataValues(CurveOf(Table("12"))), (Texts_{"1e-5", "7"}));
}

TEST_F(MatTablesTest, ATableOfALabelGoesToADatasetOfTheParameterBesideTheOtherTables) {
  ImportObject& section = Read("E -&12&\n", "12 / T 1 2 20. 210000. 800. 115000.\n");
  ASSERT_EQ(section.getCardList().size(), 4u);
  OrvaneMLRecordDataset* table = Table("12");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->m_IDref, "Youngs_modulus_weld");
  OrvaneMLRecordCurve* curve = CurveOf(table);
  ASSERT_NE(curve, nullptr);
  ASSERT_EQ(curve->m_ParameterAxes.size(), 1u);
  EXPECT_EQ(curve->m_ParameterAxes[0]->m_IDref, "Temperature");
  EXPECT_EQ(ParameterValues(curve), (Texts_{"20.", "800."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"210000.", "115000."}));
  // The parameter keeps its link and no values of its own.
  std::vector<OrvaneMLRecordDataset*> parameter = DatasetsOf("Youngs_modulus_weld");
  ASSERT_EQ(parameter.size(), 2u);
  EXPECT_EQ(LinksOf(parameter[0]), (Texts_{"12"}));
  EXPECT_EQ(parameter[0]->m_Float, nullptr);
  // The parameter's one table counts as the table of the first phase.
  EXPECT_EQ(Conditions(curve), (Texts_{"Selected_Phases=" + PhaseNameOf(1)}));
}

TEST_F(MatTablesTest, ATableWhoseFloatHasNoCurveLosesItsDataButKeepsItsCards) {
  m_File = std::make_unique<CardFile>(std::string(kMechanical) + "\nTABLES :\n12 / T 1 1 20. 1.\nFIN TABLES\n");
  m_File->Read(kMechanical, runMaterialDetailsImport);
  OrvaneMLRecordDataset* table = OrvaneStaticVars::GetOrCreateDataset("12", "DatasetID", false, nullptr, nullptr);
  ASSERT_NE(table, nullptr);
  table->m_Float = new OrvaneMLRecordFloat;
  ImportObject& section = m_File->Read("TABLES :", runMatTablesImport);
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsForType1And7", "TableData"}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"20.", "1."}));
  EXPECT_TRUE(table->m_Float->m_Curves.empty());
  const std::vector<std::string>& warnings = OrvaneGenericLog::GetDBWarnings();
  EXPECT_NE(std::find(warnings.begin(), warnings.end(), "Dataset is missing and data ignored"), warnings.end());
}

// ---- Lines that do not reach a table ----

TEST_F(MatTablesTest, AnUnknownTableTypeLeavesTheLineAndTheDetailsCardOnly) {
  ImportObject& section = ReadTables("12 / T 5 3\n13 / T 1 2 1. 2.\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableLineData", "TableDetails",
                                    "TableDetailsForType1And7", "TableData"}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"T", "5", "3"}));
  ASSERT_NE(Table("12"), nullptr);
  EXPECT_EQ(Table("12")->m_Float, nullptr);
}

TEST_F(MatTablesTest, OnlyTheFirstCharacterDecidesATypeLine) {
  ImportObject& section = ReadTables("12 / Table 5 2\n13 / T 1 1 1. 2.\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableLineData", "TableDetails",
                                    "TableDetailsForType1And7", "TableData"}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"Table", "5", "2"}));
}

TEST_F(MatTablesTest, AConstantLineGivesOneCardWhoseWordFillsTheThreeFields) {
  ImportObject& section = ReadTables("12 / 3.5\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableConstantDetails"}));
  // One word under three field names fills each of them.
  EXPECT_EQ(FieldNames(CardAt(section, 1)), (Texts_{"Constant1", "Constant2", "Constant3"}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"3.5", "3.5", "3.5"}));
}

TEST_F(MatTablesTest, SeveralConstantsAreNoNumberAsAWholeAndNoConstantLine) {
  ImportObject& section = Read("TABLE &12&\n", "12 / 0.35 0.65\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData"}));
  ASSERT_NE(Table("12"), nullptr);
  EXPECT_EQ(Table("12")->m_FloatList, nullptr);
}

TEST_F(MatTablesTest, ATextWithoutSlashAfterATypeOneLineIsOnlyItsLineCard) {
  ImportObject& section = ReadTables("12 / T 1 2 20. 1. 100. 2.\n300 3\n");
  ASSERT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsForType1And7", "TableData",
                                    "TableLineData"}));
  // One word for the two fields of the card fills both.
  EXPECT_EQ(Fields(CardAt(section, 4)), (Texts_{"300", "300 3"}));
  EXPECT_EQ(ParameterValues(CurveOf(Table("12"))), (Texts_{"20.", "100."}));
  EXPECT_EQ(Table("300 3"), nullptr);
}

TEST_F(MatTablesTest, TextBehindASecondSlashTakesNoPart) {
  ImportObject& section = ReadTables("12 / T 1 2 20. 1. / 100. 2.\n");
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"T", "1", "2 20. 1."}));
  EXPECT_EQ(ParameterValues(CurveOf(Table("12"))), (Texts_{"20."}));
  EXPECT_EQ(DataValues(CurveOf(Table("12"))), (Texts_{"1."}));
}

TEST_F(MatTablesTest, ATypeLineWithoutValuesEndsTheSection) {
  ImportObject& section = ReadTables("12 / T 1\n13 / T 1 2 1. 2.\n");
  // The count step finds nothing to cut, and a step that reads nothing ends
  // the section: line 13 is not read.
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails"}));
  EXPECT_EQ(Table("13"), nullptr);
}

// ---- Phase references and families of curves ----

TEST_F(MatTablesTest, ATypeSevenLineWithReferenceMarksGoesToTheTypeSevenSteps) {
  ImportObject& section = ReadTables("12 / T 7 2 100. -&3& 200. -&4&\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsForType1And7", "TableRef"}));
  EXPECT_EQ(FieldNames(CardAt(section, 3)), (Texts_{"RefDataStr", "RefDataStr", "RefDataStr", "RefDataStr"}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"100.", "3", "200.", "4"}));
  EXPECT_EQ(LinksOf(Table("12")), (Texts_{"3", "4"}));
  OrvaneMLRecordCurve* three = CurveOf(Table("3"));
  ASSERT_NE(three, nullptr);
  EXPECT_EQ(three->m_Label, "Curve3");
  EXPECT_EQ(Conditions(three).front(), "TEMP=1.000000e+02");
  EXPECT_EQ(Conditions(CurveOf(Table("4"))).front(), "TEMP=2.000000e+02");
}

TEST_F(MatTablesTest, AFamilyMemberGetsItsValuesFromItsOwnLine) {
  ReadTables("12 / T 7 2 100. &3& 200. &4&\n3 / T 1 2 0. 10. 0.1 20.\n4 / T 9 2 0.01 0. 5. 2. 6.\n");
  OrvaneMLRecordCurve* three = CurveOf(Table("3"));
  EXPECT_EQ(ParameterValues(three), (Texts_{"0.", "0.1"}));
  EXPECT_EQ(DataValues(three), (Texts_{"10.", "20."}));
  OrvaneMLRecordCurve* four = CurveOf(Table("4"));
  EXPECT_EQ(ParameterValues(four), (Texts_{"0.", "2."}));
  // Made by the family line, the curve has no scale of X.
  EXPECT_EQ(four->m_CurveInfo, nullptr);
}

TEST_F(MatTablesTest, InReferenceLinesTheMinusSignIsASeparator) {
  // A negative exponent falls apart into two words and shifts the pairs; a
  // negative value loses its sign.
  ImportObject& section = ReadTables("12 / T 7 2 1.5e-2 -&3& -200. -&4&\n");
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"1.5e", "2", "3", "200.", "4"}));
  EXPECT_EQ(LinksOf(Table("12")), (Texts_{"2", "200."}));
  EXPECT_EQ(Conditions(CurveOf(Table("2"))).front(), "TEMP=1.500000e+00");
  EXPECT_EQ(Table("4"), nullptr);
}

TEST_F(MatTablesTest, ALineOfReferencesIsAPhaseListEvenAfterANumber) {
  ImportObject& section = ReadTables("12 / 1. -&3&\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TablePhaseDetails"}));
  EXPECT_EQ(FieldNames(CardAt(section, 1)), (Texts_{"TableRefID", "TableRefID"}));
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"1", "3"}));
  EXPECT_EQ(LinksOf(Table("12")), (Texts_{"1.", "3"}));
}

TEST_F(MatTablesTest, InAPhaseListTheMinusSignIsASeparatorToo) {
  ImportObject& section = ReadTables("12 / 2.5e-1 -&3&\n");
  EXPECT_EQ(Fields(CardAt(section, 1)), (Texts_{"2", "1", "3"}));
  EXPECT_EQ(LinksOf(Table("12")), (Texts_{"2.5e", "1", "3"}));
}

TEST_F(MatTablesTest, APhaseListGivesEachTableItsPhase) {
  Read("YIELD -&40&\n", "40 / -&41& -&42&\n41 / T 1 2 20. 355. 800. 55.\n42 / T 1 1 20. 420.\n");
  OrvaneMLRecordDataset* list = Table("40");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->m_IDref, "Yield_stress_weld");
  EXPECT_EQ(LinksOf(list), (Texts_{"41", "42"}));
  EXPECT_EQ(Table("41")->m_IDref, "Yield_stress_weld");
  EXPECT_EQ(Conditions(CurveOf(Table("41"))), (Texts_{"Selected_Phases=" + PhaseNameOf(1)}));
  EXPECT_EQ(Conditions(CurveOf(Table("42"))), (Texts_{"Selected_Phases=" + PhaseNameOf(2)}));
  EXPECT_EQ(DataValues(CurveOf(Table("42"))), (Texts_{"420."}));
}

// ---- Function tables ----

TEST_F(MatTablesTest, AFunctionTableTakesTheNextNumberAndItsTextLines) {
  const int number = GetFortranTableCounter();
  ImportObject& section = ReadTables("1 / T 1 1 0. 0.\n50 / FORTRAN\n    Y = A * X\n    Z = Y\n    END\n");
  EXPECT_EQ(GetFortranTableCounter(), number + 1);
  ASSERT_EQ(section.getCardList().size(), 8u);
  EXPECT_EQ(Fields(CardAt(section, 4)), (Texts_{std::to_string(number), "FORTRAN"}));
  // The text lines are read as lines of one word, which fills both fields.
  EXPECT_EQ(Fields(CardAt(section, 5)), (Texts_{"0", "Y = A * X"}));
  EXPECT_EQ(Names(section)[7], "TableLineData");
  EXPECT_EQ(Table("50"), nullptr);
  OrvaneMLRecordDataset* function = Table(std::to_string(number));
  ASSERT_NE(function, nullptr);
  ASSERT_NE(function->m_String, nullptr);
  EXPECT_EQ(function->m_String->m_Value, "FORTRAN;Y = A * X;Z = Y;END");
}

TEST_F(MatTablesTest, AFunctionLineWithASlashIsATableLineAndEndsTheFunctionText) {
  const int number = GetFortranTableCounter();
  ReadTables("1 / T 1 1 0. 0.\n50 / FORTRAN\nY = A / X\nZ = Y\nEND\n");
  OrvaneMLRecordDataset* function = Table(std::to_string(number));
  ASSERT_NE(function, nullptr);
  // The slash line cut the word that carried "FORTRAN": nothing is kept.
  EXPECT_EQ(function->m_String, nullptr);
}

TEST_F(MatTablesTest, ANumberLineInAFunctionStartsAnotherFunction) {
  const int number = GetFortranTableCounter();
  ReadTables("1 / T 1 1 0. 0.\n50 / FORTRAN\nY = 1\n51\nZ = 2\nEND\n");
  EXPECT_EQ(GetFortranTableCounter(), number + 2);
  EXPECT_EQ(Table(std::to_string(number))->m_String->m_Value, "FORTRAN;Y = 1;");
  EXPECT_EQ(Table(std::to_string(number + 1))->m_String->m_Value, "FORTRAN;Z = 2;END");
  EXPECT_EQ(Table("51"), nullptr);
}

TEST_F(MatTablesTest, TheLineBehindAFunctionsEndIsReadAsATableLineAgain) {
  ReadTables("1 / T 1 1 0. 0.\n50 / FORTRAN\nEND\n2 / T 1 1 5. 6.\n");
  EXPECT_EQ(DataValues(CurveOf(Table("2"))), (Texts_{"6."}));
}

// ---- Other table types ----

TEST_F(MatTablesTest, ATypeNineLineKeepsItsScaleOnTheCardAndTheCurve) {
  ImportObject& section = ReadTables("63 / T 9 2 0.01 0. 0. 2. 18.\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsType9", "TableDataType9"}));
  EXPECT_EQ(FieldNames(CardAt(section, 2)), (Texts_{"NumTableValues", "XScaleFactor", "ValuesStr"}));
  EXPECT_EQ(Fields(CardAt(section, 2)), (Texts_{"2", "0.01", "0. 0. 2. 18."}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"0.", "0.", "2.", "18."}));
  OrvaneMLRecordCurve* curve = CurveOf(Table("63"));
  ASSERT_NE(curve, nullptr);
  ASSERT_NE(curve->m_CurveInfo, nullptr);
  EXPECT_EQ(curve->m_CurveInfo->m_ScaleX, "0.01");
  EXPECT_EQ(ParameterValues(curve), (Texts_{"0.", "2."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"0.", "18."}));
}

TEST_F(MatTablesTest, ATypeNineLineOfOneValueLeavesNoSecondWordForTheNextLine) {
  // The values step asks for two words: with one value the second word is
  // emptied, so a following line without slash finds nothing there.
  ImportObject& section = ReadTables("63 / T 9 1 0.01 5.\n7\n");
  EXPECT_EQ(Names(section).back(), "TableLineData");
  EXPECT_EQ(Names(section).size(), 5u);
}

TEST_F(MatTablesTest, ATypeEightLineGivesItsCoefficients) {
  ImportObject& section = ReadTables("6 / T 8 47 155000 -1.6\n");
  EXPECT_EQ(Names(section), (Texts_{"TableLineData", "TableDetails", "TableDetailsType8", "TableDataType8"}));
  EXPECT_EQ(Fields(CardAt(section, 2)), (Texts_{"47 155000 -1.6"}));
  EXPECT_EQ(Fields(CardAt(section, 3)), (Texts_{"47", "155000", "-1.6"}));
  EXPECT_EQ(ItemTexts(Table("6")), (Texts_{"47", "155000", "-1.6"}));
}

// ---- The end of the section ----

TEST_F(MatTablesTest, TheMarkersOfTheEnclosingBlockEndTheSection) {
  for (const char* end : {"FIN MATERIAUX", "fin nom", "FIN TABL", "fin table 3"}) {
    CardFile file(std::string(kMechanical) + "\nTABLES :\n1 / T 1 1 2. 3.\n" + end + "\n2 / T 1 1 4. 5.\n");
    file.Read(kMechanical, runMaterialDetailsImport);
    ImportObject& section = file.Read("TABLES :", runMatTablesImport);
    EXPECT_EQ(section.getCardList().size(), 4u) << end;
    EXPECT_EQ(Table("2"), nullptr) << end;
  }
}

TEST_F(MatTablesTest, ASectionWithoutEndRunsToTheEndOfTheFile) {
  CardFile file(std::string(kMechanical) + "\nTABLES :\n1 / T 1 1 2. 3.\n\n2 / T 1 1 4. 5.\n");
  file.Read(kMechanical, runMaterialDetailsImport);
  ImportObject& section = file.Read("TABLES :", runMatTablesImport);
  // Blank lines are passed over; at the end of the file the line step still
  // leaves an empty line card.
  EXPECT_EQ(section.getCardList().size(), 9u);
  EXPECT_EQ(section.getCardList().back()->numVars(), 0u);
  EXPECT_EQ(DataValues(CurveOf(Table("2"))), (Texts_{"5."}));
  // The line of no words names no table.
  EXPECT_EQ(Table("4."), nullptr);
}

TEST_F(MatTablesTest, AnEmptySectionHasNoCard) {
  EXPECT_TRUE(ReadTables("").getCardList().empty());
}

}  // namespace
