// The converters of table lines, each on its own: words in, records of the
// store out.

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "core/importobject.h"
#include "import/cardsetimport.h"
#include "import/phasehelpers.h"
#include "import/tableconverters.h"
#include "store/orvanegeneric.h"
#include "table_test_support.h"

namespace {

using namespace tabletest;
using Texts_ = std::vector<std::string>;

const int kFunctionCounterAtLoad = GetFortranTableCounter();

// The words of one line, in slots as large as the line reader's, with empty
// slots behind them as the reader leaves them.
class Line {
 public:
  Line(std::initializer_list<std::string> words) : m_Slots(words.size() + 4, std::vector<char>(2050, 0)) {
    size_t i = 0;
    for (const std::string& word : words) std::strcpy(m_Slots[i++].data(), word.c_str());
    for (std::vector<char>& slot : m_Slots) m_Pointers.push_back(slot.data());
    m_Count = static_cast<unsigned>(words.size());
  }
  char** words() { return m_Pointers.data(); }
  unsigned* count() { return &m_Count; }
  std::string operator[](size_t i) const { return m_Slots[i].data(); }

 private:
  std::vector<std::vector<char>> m_Slots;
  std::vector<char*> m_Pointers;
  unsigned m_Count = 0;
};

using ConverterFn = void (*)(char**, unsigned*, int, ImportObject*);

void Convert(ConverterFn converter, Line& line, ImportObject* section = nullptr) {
  converter(line.words(), line.count(), 0, section);
}

class ConvertersTest : public TablesTest {
 protected:
  void Material(const char* cardModel) {
    OrvaneStaticVars::ClearDatasets();
    OrvaneStaticVars::SetActiveModel(cardModel);
    OrvaneStaticVars::GetOrCreateMaterial("W_S1");
  }

  // A parameter of the labels that refers to table `id`, as a label line
  // makes it.
  OrvaneMLRecordDataset* Label(const char* word, const char* id) {
    OrvaneStaticVars::SetActiveKW("LABELS :");
    OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(word, "IDref", false, nullptr, nullptr);
    EXPECT_NE(dataset, nullptr) << word;
    auto* link = new OrvaneMLRecordLink;
    link->SetDatasetIDref(id);
    dataset->AddLink(link);
    OrvaneStaticVars::AddDataset(dataset, id);
    return dataset;
  }

  // The table of this id made current, as a table line does.
  OrvaneMLRecordDataset* TableLine(const char* id) {
    OrvaneStaticVars::SetActiveKW("TABLES :");
    return OrvaneStaticVars::GetOrCreateDataset(id, "DatasetID", false, nullptr, nullptr);
  }

  // Phase `number` with its name and description, as the phase sections make it.
  void AddPhase(int number, const char* name) {
    Line line({std::to_string(number)});
    EnsurePhaseDetailsModel(line.words(), line.count(), 0, nullptr, true);
    OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, name, line[0].c_str());
    OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, name, line[0].c_str());
  }

  void SixPhases() {
    const char* names[] = {"Ferrite", "Fictive Phase", "Bainite", "Martensite", "Tempered Martensite", "Austenite"};
    for (int i = 0; i < 6; ++i) AddPhase(i + 1, names[i]);
  }

  bool Warned(const std::string& text) {
    for (const std::string& warning : OrvaneGenericLog::GetDBWarnings())
      if (warning == text) return true;
    return false;
  }
};

OrvaneMLRecordMatModel* ModelNamed(const std::string& idref) {
  for (OrvaneMLRecordMatModel* model : AllModels(OrvaneStaticVars::GetCurrentMaterial()))
    if (model->m_IDref == idref) return model;
  return nullptr;
}

Texts_ IDrefsIn(OrvaneMLRecordMatModel* model) {
  Texts_ ids;
  if (model == nullptr) return ids;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets) ids.push_back(dataset->m_IDref);
  return ids;
}

// ---- Function tables ----

TEST_F(ConvertersTest, FunctionTablesAreNumberedFromFiftyThousand) { EXPECT_EQ(kFunctionCounterAtLoad, 50000); }

TEST_F(ConvertersTest, ANumberBeforeFortranTakesTheNextFunctionNumber) {
  Material("mechanical");
  TableLine("1");
  const int number = GetFortranTableCounter();
  Line first({"50", "FORTRAN"});
  Convert(ImportFortranTableLine, first);
  EXPECT_EQ(first[0], std::to_string(number));
  Line second({"7.5", "FORTRAN"});
  Convert(ImportFortranTableLine, second);
  EXPECT_EQ(second[0], std::to_string(number + 1));
  EXPECT_EQ(GetFortranTableCounter(), number + 2);
  // The numbered line itself stores nothing.
  EXPECT_EQ(Table("1")->m_String, nullptr);
}

TEST_F(ConvertersTest, TextLinesJoinWithSemicolonsAndEndWithoutOne) {
  Material("mechanical");
  OrvaneMLRecordDataset* function = TableLine("50000");
  for (const char* text : {"SIGY0 = 355.", "SIGY = MAX(SIGY0, 5.)", "END"}) {
    Line line({text, "FORTRAN"});
    Convert(ImportFortranTableLine, line);
  }
  ASSERT_NE(function->m_String, nullptr);
  EXPECT_EQ(function->m_String->m_Value, "FORTRAN;SIGY0 = 355.;SIGY = MAX(SIGY0, 5.);END");
}

TEST_F(ConvertersTest, AFunctionOfOnlyEndKeepsTheSemicolonOfItsFirstLine) {
  Material("mechanical");
  OrvaneMLRecordDataset* function = TableLine("50000");
  Line line({"END", "FORTRAN"});
  Convert(ImportFortranTableLine, line);
  EXPECT_EQ(function->m_String->m_Value, "FORTRAN;END;");
}

TEST_F(ConvertersTest, OnlyTheExactWordFortranMakesAFunctionLine) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("50000");
  const int number = GetFortranTableCounter();
  for (const char* second : {"fortran", "FORTRANX", "FORTRA", ""}) {
    Line text({"Y = 1", second});
    Convert(ImportFortranTableLine, text);
    Line id({"12", second});
    Convert(ImportFortranTableLine, id);
    EXPECT_EQ(id[0], "12") << second;
  }
  EXPECT_EQ(table->m_String, nullptr);
  EXPECT_EQ(GetFortranTableCounter(), number);
}

TEST_F(ConvertersTest, AFunctionLineWithoutWordsOrCurrentDatasetDoesNothing) {
  Material("mechanical");
  const int number = GetFortranTableCounter();
  Line none({"50", "FORTRAN"});
  *none.count() = 0;
  TableLine("1");
  Convert(ImportFortranTableLine, none);
  EXPECT_EQ(none[0], "50");
  OrvaneStaticVars::ClearDatasets();
  Line noDataset({"50", "FORTRAN"});
  Convert(ImportFortranTableLine, noDataset);
  EXPECT_EQ(noDataset[0], "50");
  EXPECT_EQ(GetFortranTableCounter(), number);
}

// ---- Lists of tables ----

TEST_F(ConvertersTest, ThermalStrainTablesAreMadeWithTheirPhaseAndDirections) {
  Material("mechanical");
  SixPhases();
  Label("LX", "20");
  OrvaneStaticVars::AddLXLYLZDataset("LX", "20");
  OrvaneStaticVars::AddLXLYLZDataset("LY", "20");
  OrvaneStaticVars::AddLXLYLZDataset("LZ", "30");
  OrvaneMLRecordDataset* list = TableLine("20");
  ASSERT_EQ(list->m_IDref, "Thermal_strains");
  Line line({"21", "22", "23"});
  Convert(ImportTablePhaseDetails, line);

  EXPECT_EQ(LinksOf(list), (Texts_{"21", "22", "23"}));
  const char* phases[] = {"Ferrite", "Fictive Phase", "Bainite"};
  for (int i = 0; i < 3; ++i) {
    const std::string id = std::to_string(21 + i);
    OrvaneMLRecordDataset* table = Table(id);
    ASSERT_NE(table, nullptr) << id;
    EXPECT_EQ(table->m_IDref, "Thermal_strains");
    OrvaneMLRecordCurve* curve = CurveOf(table);
    ASSERT_NE(curve, nullptr) << id;
    EXPECT_EQ(curve->m_Label, "Curve" + id);
    // The directions of the list come one condition each.
    EXPECT_EQ(Conditions(curve), (Texts_{std::string("Selected_Phases=") + phases[i], "StrainType=LX",
                                         "StrainType=LY"}));
  }
}

TEST_F(ConvertersTest, AThermalStrainListReadAgainNamesItsTablesOnce) {
  Material("mechanical");
  SixPhases();
  Label("LX", "20");
  OrvaneStaticVars::AddLXLYLZDataset("LX", "20");
  TableLine("20");
  Line first({"21", "22"});
  Convert(ImportTablePhaseDetails, first);
  TableLine("20");
  Line again({"21", "22"});
  Convert(ImportTablePhaseDetails, again);
  EXPECT_EQ(Tables("21").size(), 1u);
  EXPECT_EQ(Conditions(CurveOf(Table("22"))), (Texts_{"Selected_Phases=Fictive Phase", "StrainType=LX"}));
}

TEST_F(ConvertersTest, AListOfOtherTablesMakesTheirDatasetsWithoutValues) {
  Material("mechanical");
  SixPhases();
  Label("YIELD", "40");
  OrvaneMLRecordDataset* list = TableLine("40");
  Line line({"41", "42"});
  Convert(ImportTablePhaseDetails, line);
  EXPECT_EQ(LinksOf(list), (Texts_{"41", "42"}));
  ASSERT_NE(Table("42"), nullptr);
  EXPECT_EQ(Table("42")->m_IDref, "Yield_stress_weld");
  EXPECT_EQ(Table("42")->m_Float, nullptr);
  EXPECT_EQ(CardsetImport::m_CreepFlag, 0);
}

TEST_F(ConvertersTest, CreepModelThirtyOneGivesEachTableItsParameter) {
  Material("mechanical");
  OrvaneMLRecordDataset* creep = Label("CREEP", "20000");
  ASSERT_EQ(creep->m_IDref, "CreepLogHardeningCoefficient");
  OrvaneMLRecordMatModel* model = ModelNamed("CreepModel");
  ASSERT_NE(model, nullptr);
  OrvaneMLRecordDataset* list = TableLine("20000");
  Line line({"31", "201", "202", "203", "204", "205"});
  Convert(ImportTablePhaseDetails, line);

  EXPECT_EQ(CardsetImport::m_CreepFlag, 31);
  EXPECT_EQ(model->m_IDref, "CreepRuptureModel");
  EXPECT_EQ(LinksOf(list), (Texts_{"201"}));
  const char* names[] = {"CreepLogHardeningCoefficient", "CreepSensitivityExponent", "CreepH", "CreepLogC",
                         "CreepConstantP"};
  for (int i = 0; i < 5; ++i) {
    OrvaneMLRecordDataset* table = Table(std::to_string(201 + i));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->m_IDref, names[i]);
  }
  // The parameters after the first have datasets of their own in the model,
  // each linked to its table.
  EXPECT_EQ(IDrefsIn(model), (Texts_{"CreepLogHardeningCoefficient", "CreepSensitivityExponent", "CreepH",
                                     "CreepLogC", "CreepConstantP"}));
  EXPECT_EQ(LinksOf(model->m_Datasets[2]), (Texts_{"203"}));
}

TEST_F(ConvertersTest, CreepModelTwentyOneRenamesTheListAndHasThreeParameters) {
  Material("mechanical");
  Label("CREEP", "20000");
  OrvaneMLRecordMatModel* model = ModelNamed("CreepModel");
  OrvaneMLRecordDataset* list = TableLine("20000");
  Line line({"21", "201", "202", "203", "204"});
  Convert(ImportTablePhaseDetails, line);

  EXPECT_EQ(CardsetImport::m_CreepFlag, 21);
  EXPECT_EQ(model->m_IDref, "CreepRuptureModel21");
  EXPECT_EQ(list->m_IDref, "CreepHardeningCoefficientK");
  EXPECT_EQ(Table("201")->m_IDref, "CreepHardeningCoefficientK");
  EXPECT_EQ(Table("202")->m_IDref, "CreepHardeningExponentM");
  EXPECT_EQ(Table("203")->m_IDref, "CreepSensitivityExponentN");
  // Past the three names: no link is made, and the table takes the list's name.
  EXPECT_EQ(Table("204")->m_IDref, "CreepHardeningCoefficientK");
  Texts_ ids = IDrefsIn(model);
  EXPECT_EQ(Texts_(ids.begin() + 1, ids.end()), (Texts_{"CreepHardeningExponentM", "CreepSensitivityExponentN"}));
}

TEST_F(ConvertersTest, ACreepCodeFurtherAlongTheListRenamesNothing) {
  Material("mechanical");
  Label("CREEP", "20000");
  OrvaneMLRecordDataset* list = TableLine("20000");
  Line line({"201", "202", "203", "21"});
  Convert(ImportTablePhaseDetails, line);
  EXPECT_EQ(CardsetImport::m_CreepFlag, 21);
  EXPECT_EQ(list->m_IDref, "CreepLogHardeningCoefficient");
  EXPECT_EQ(LinksOf(list), (Texts_{"201", "202", "203"}));
}

TEST_F(ConvertersTest, EveryListStartsWithoutCreep) {
  Material("mechanical");
  Label("CREEP", "20000");
  TableLine("20000");
  Line creep({"31", "201"});
  Convert(ImportTablePhaseDetails, creep);
  ASSERT_EQ(CardsetImport::m_CreepFlag, 31);
  Label("YIELD", "40");
  TableLine("40");
  Line list({"41"});
  Convert(ImportTablePhaseDetails, list);
  EXPECT_EQ(CardsetImport::m_CreepFlag, 0);
}

// ---- Conditions of a curve ----

TEST_F(ConvertersTest, AConditionWithCommasGivesOnePerPieceAndNoTwins) {
  OrvaneMLRecordCurve curve;
  AddCurveFixedParameter("StrainType", &curve, "LX,LY");
  AddCurveFixedParameter("StrainType", &curve, "LY");
  AddCurveFixedParameter("Selected_Phases", &curve, "LY");
  AddCurveFixedParameter("StrainType", &curve, "LX,,LZ");
  EXPECT_EQ(Conditions(&curve), (Texts_{"StrainType=LX", "StrainType=LY", "Selected_Phases=LY", "StrainType=LZ"}));
}

// ---- Constants ----

TEST_F(ConvertersTest, ConstantsOfATableOfConstants) {
  Material("mechanical");
  SixPhases();
  Label("TABLE", "80");
  OrvaneMLRecordDataset* table = TableLine("80");
  Line line({"0.35", "0.65", ""});
  *line.count() = 2;
  Convert(ImportTableConstants, line);
  EXPECT_EQ(table->m_IDref, "TABLE");
  EXPECT_EQ(ItemTexts(table), (Texts_{"0.35", "0.65"}));
  EXPECT_EQ(Conditions(table->m_FloatList),
            (Texts_{"Selected_Phases=Ferrite", "ConstTypes=Const1", "ConstTypes=Const2"}));
}

TEST_F(ConvertersTest, OneConstantStillAppendsTheEmptySecond) {
  Material("mechanical");
  Label("CYIELD", "81");
  OrvaneMLRecordDataset* table = TableLine("81");
  Line line({"1650", "", ""});
  *line.count() = 1;
  Convert(ImportTableConstants, line);
  EXPECT_EQ(ItemTexts(table), (Texts_{"1650", ""}));
}

TEST_F(ConvertersTest, PenaltyConstantsHaveThreeNames) {
  Material("mechanical");
  Label("PENALTY", "84");
  OrvaneMLRecordDataset* table = TableLine("84");
  Line line({"1e5", "0.01", "0.5"});
  Convert(ImportTableConstants, line);
  EXPECT_EQ(ItemTexts(table), (Texts_{"1e5", "0.01", "0.5"}));
  Texts_ conditions = Conditions(table->m_FloatList);
  EXPECT_EQ(Texts_(conditions.end() - 3, conditions.end()),
            (Texts_{"PenaltyConstTypes=Initial penalty coefficient", "PenaltyConstTypes=Minimal penetration",
                    "PenaltyConstTypes=Maximum penetration"}));
}

TEST_F(ConvertersTest, ExpansionTablesNameTheirElementAndNoPhase) {
  Material("mechanical");
  SixPhases();
  OrvaneMLRecordDataset* gama = Label("GAMA", "6");
  auto* second = new OrvaneMLRecordLink;
  second->SetDatasetIDref("7");
  gama->AddLink(second);
  OrvaneStaticVars::AddDataset(gama, "7");
  OrvaneMLRecordDataset* carbon = TableLine("6");
  Line first({"1.2", "0.3", ""});
  *first.count() = 2;
  Convert(ImportTableConstants, first);
  OrvaneMLRecordDataset* nitrogen = TableLine("7");
  Line again({"1.4", "0.2", ""});
  *again.count() = 2;
  Convert(ImportTableConstants, again);
  EXPECT_EQ(Conditions(carbon->m_FloatList),
            (Texts_{"Element_name=Carbon", "ConstTypes=Const1", "ConstTypes=Const2"}));
  EXPECT_EQ(Conditions(nitrogen->m_FloatList),
            (Texts_{"Element_name=Nitrogen", "ConstTypes=Const1", "ConstTypes=Const2"}));
  EXPECT_EQ(ItemTexts(nitrogen), (Texts_{"1.4", "0.2"}));
}

TEST_F(ConvertersTest, OtherTablesTakeNoConstants) {
  Material("mechanical");
  Label("E", "1");
  OrvaneMLRecordDataset* table = TableLine("1");
  Line line({"210000", "", ""});
  *line.count() = 1;
  Convert(ImportTableConstants, line);
  EXPECT_EQ(table->m_FloatList, nullptr);
  EXPECT_EQ(table->m_Float, nullptr);
}

// ---- Coefficients ----

TEST_F(ConvertersTest, DiffusionCoefficientsGoToAllThreeDirectionsWithTheirElement) {
  Material("diffusion");
  Label("DX", "5");
  OrvaneMLRecordDataset* list = TableLine("5");
  ASSERT_EQ(list->m_IDref, "DiffusionCoefficient");
  Line tables_({"6", "7"});
  Convert(ImportTablePhaseDetails, tables_);
  OrvaneMLRecordDataset* carbon = TableLine("6");
  Line line({"47", "155000", "-1.6"});
  Convert(ImportTableCoefficients, line);
  OrvaneMLRecordDataset* nitrogen = TableLine("7");
  Line other({"91", "168600", "0"});
  Convert(ImportTableCoefficients, other);

  EXPECT_EQ(ItemTexts(carbon), (Texts_{"47", "155000", "-1.6"}));
  EXPECT_EQ(Conditions(carbon->m_FloatList), (Texts_{"DiffCoeffs=Coeff1", "DiffCoeffs=Coeff2", "DiffCoeffs=Coeff3",
                                                     "Element_name=Carbon"}));
  EXPECT_EQ(Conditions(nitrogen->m_FloatList).back(), "Element_name=Nitrogen");
  for (const char* direction : {"DiffusionCoefficientY", "DiffusionCoefficientZ"}) {
    std::vector<OrvaneMLRecordDataset*> datasets = DatasetsOf(direction);
    // The list for the direction, then the table of each line.
    ASSERT_EQ(datasets.size(), 4u) << direction;
    EXPECT_EQ(datasets[0]->m_DatasetID, "5");
    EXPECT_EQ(LinksOf(datasets[0]), (Texts_{"6", "7"}));
    EXPECT_EQ(datasets[1]->m_DatasetID, "6");
    EXPECT_EQ(ItemTexts(datasets[1]), (Texts_{"47", "155000", "-1.6"}));
    EXPECT_EQ(Conditions(datasets[1]->m_FloatList).back(), "Element_name=Carbon");
    EXPECT_EQ(Conditions(datasets[3]->m_FloatList).back(), "Element_name=Nitrogen");
  }
}

TEST_F(ConvertersTest, ConductivityCoefficientsHaveNoElementAndTwoWordsNoZ) {
  Material("thermometal");
  OrvaneMLRecordDataset* table = TableLine("9");
  Line line({"45", "0.5"});
  Convert(ImportTableCoefficients, line);
  EXPECT_EQ(ItemTexts(table), (Texts_{"45", "0.5"}));
  std::vector<OrvaneMLRecordDataset*> y = DatasetsOf("Thermal_conductivity_weld_Y");
  ASSERT_EQ(y.size(), 1u);
  EXPECT_EQ(y[0]->m_DatasetID, "9");
  EXPECT_EQ(ItemTexts(y[0]), (Texts_{"45", "0.5"}));
  EXPECT_TRUE(DatasetsOf("Thermal_conductivity_weld_Z").empty());
  EXPECT_EQ(Conditions(table->m_FloatList), (Texts_{"DiffCoeffs=Coeff1", "DiffCoeffs=Coeff2", "DiffCoeffs=Coeff3"}));
}

TEST_F(ConvertersTest, ACoefficientNeedsAFloatListAndNamesItsKindsOnce) {
  OrvaneMLRecordDataset dataset;
  AddDiffusionCoefficient("1", &dataset, false);
  EXPECT_EQ(dataset.m_FloatList, nullptr);
  dataset.m_FloatList = new OrvaneMLRecordFloatList;
  AddDiffusionCoefficient("1", &dataset, false);
  AddDiffusionCoefficient("2", &dataset, false);
  AddDiffusionCoefficient("Carbon", &dataset, true);
  EXPECT_EQ(ItemTexts(&dataset), (Texts_{"1", "2"}));
  EXPECT_EQ(Conditions(dataset.m_FloatList), (Texts_{"DiffCoeffs=Coeff1", "DiffCoeffs=Coeff2", "DiffCoeffs=Coeff3",
                                                     "Element_name=Carbon"}));
}

// ---- Curves ----

TEST_F(ConvertersTest, ATableWithAFloatButNoCurveLosesItsDataWithAWarning) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("12");
  table->m_Float = new OrvaneMLRecordFloat;
  Line line({"20.", "1."});
  Convert(ImportTableCurveData, line);
  EXPECT_TRUE(table->m_Float->m_Curves.empty());
  EXPECT_TRUE(Warned("Dataset is missing and data ignored"));
}

TEST_F(ConvertersTest, StarExponentsAreStoredAsExponents) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("12");
  Line line({"1.5*3", "1*-5", "2*3*4", "-3*2"});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(line[0], "1.5e3");
  EXPECT_EQ(ParameterValues(CurveOf(table)), (Texts_{"1.5e3", "2e3*4"}));
  EXPECT_EQ(DataValues(CurveOf(table)), (Texts_{"1e-5", "-3e2"}));
}

TEST_F(ConvertersTest, APairCutByALineEndIsCompletedByTheNextLine) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("12");
  Line first({"20.", "1.", "100."});
  Convert(ImportTableCurveData, first);
  Line second({"2."});
  Convert(ImportTableCurveData, second);
  EXPECT_EQ(ParameterValues(CurveOf(table)), (Texts_{"20.", "100."}));
  EXPECT_EQ(DataValues(CurveOf(table)), (Texts_{"1.", "2."}));
}

TEST_F(ConvertersTest, OddLinesOneAfterTheOtherKeepThePairing) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("12");
  Line first({"1", "2", "3"});
  Convert(ImportTableCurveData, first);
  Line second({"4", "5", "6"});
  Convert(ImportTableCurveData, second);
  Line third({"7", "8"});
  Convert(ImportTableCurveData, third);
  EXPECT_EQ(ParameterValues(CurveOf(table)), (Texts_{"1", "3", "5", "7"}));
  EXPECT_EQ(DataValues(CurveOf(table)), (Texts_{"2", "4", "6", "8"}));
}

TEST_F(ConvertersTest, AnAxisMadeForTheLineStartsTheLineOnTheParameterAxis) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("12");
  auto* curve = new OrvaneMLRecordCurve;
  auto* axis = new OrvaneMLRecordParameterAxis;
  auto* values = new OrvaneMLRecordValueList;
  auto* value = new OrvaneMLRecordValue;
  value->SetValueAsString("0.");
  values->AddValue(value);
  axis->AddValueList(values);
  curve->AddParameterAxis(axis);
  table->m_Float = new OrvaneMLRecordFloat;
  table->m_Float->AddCurve(curve);
  // One value stored and a data axis still to make: the new axis makes the
  // line start a pair of its own.
  Line line({"5.", "6."});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(ParameterValues(curve), (Texts_{"0.", "5."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"6."}));
}

TEST_F(ConvertersTest, ANewCurveIsLabelledByItsTableAndGetsTheParametersAxis) {
  Material("mechanical");
  Label("NU", "3");
  OrvaneMLRecordDataset* table = TableLine("3");
  Line line({"20.", "0.3"});
  Convert(ImportTableCurveData, line);
  OrvaneMLRecordCurve* curve = CurveOf(table);
  ASSERT_NE(curve, nullptr);
  EXPECT_EQ(curve->m_Label, "Curve3");
  EXPECT_EQ(curve->m_ParameterAxes[0]->m_IDref, "Temperature");
  // No conditions named in the mapping: no phase.
  EXPECT_TRUE(curve->m_ParameterFixed.empty());
}

TEST_F(ConvertersTest, ADatasetWithoutTableIdLabelsItsCurveByItsFirstLink) {
  Material("mechanical");
  OrvaneMLRecordDataset* parameter = Label("E", "7");
  OrvaneStaticVars::SetActiveKW("LABELS :");
  ASSERT_EQ(OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr), parameter);
  Line line({"20.", "1."});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(CurveOf(parameter)->m_Label, "Curve7");
}

TEST_F(ConvertersTest, AnUnknownTableHasAnAxisWithoutIdentifier) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("99");
  ASSERT_EQ(table->m_IDref, "UnreferencedTable");
  Line line({"1", "2"});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(CurveOf(table)->m_ParameterAxes[0]->m_IDref, "");
}

TEST_F(ConvertersTest, TheScaleOfXComesFromTheSectionsLastCard) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("63");
  ImportObject section("TABLES :");
  Card* details = new Card("TableDetailsType9");
  details->addField("XScaleFactor", new CharArray("0.01", 10));
  section.addCard(details);
  Line line({"0.", "0."});
  Convert(ImportTableCurveData, line, &section);
  ASSERT_NE(CurveOf(table)->m_CurveInfo, nullptr);
  EXPECT_EQ(CurveOf(table)->m_CurveInfo->m_ScaleX, "0.01");
  section.addCard(new Card("TableData"));
  OrvaneMLRecordDataset* other = TableLine("64");
  Convert(ImportTableCurveData, line, &section);
  EXPECT_EQ(CurveOf(other)->m_CurveInfo, nullptr);
}

TEST_F(ConvertersTest, TablesOfAListAreTheirPhases) {
  Material("mechanical");
  SixPhases();
  Label("YIELD", "40");
  TableLine("40");
  Line list({"41", "42", "43"});
  Convert(ImportTablePhaseDetails, list);
  TableLine("43");
  Line line({"20.", "355."});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(Conditions(CurveOf(Table("43"))), (Texts_{"Selected_Phases=Bainite"}));
}

TEST_F(ConvertersTest, WithCreepATableIsTakenByItsIdOnlyInAMechanicalModel) {
  Material("mechanical");
  OrvaneMLRecordDataset* table = TableLine("201");
  CardsetImport::m_CreepFlag = 31;
  Line line({"550", "-18.5"});
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(DataValues(CurveOf(table)), (Texts_{"-18.5"}));
  EXPECT_EQ(CardsetImport::m_CreepFlag, 31);

  // A dataset without a table id is no creep table: nothing is stored.
  OrvaneMLRecordDataset* parameter = Label("NU", "5");
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(parameter->m_Float, nullptr);

  OrvaneStaticVars::SetActiveModel("mechanical_phases");
  Convert(ImportTableCurveData, line);
  EXPECT_EQ(CardsetImport::m_CreepFlag, 0);
  EXPECT_NE(parameter->m_Float, nullptr);
}

// ---- Triples ----

TEST_F(ConvertersTest, TriplesGoToTheParameterTheDataAndTheEnthalpyAxis) {
  Material("thermometal");
  OrvaneMLRecordDataset* table = TableLine("5");
  Line line({"1.", "2.", "3.", "4."});
  Convert(ImportTableXYZData, line);
  Line rest({"5.", "6*2"});
  Convert(ImportTableXYZData, rest);
  OrvaneMLRecordCurve* curve = CurveOf(table);
  ASSERT_NE(curve, nullptr);
  ASSERT_EQ(curve->m_ParameterAxes.size(), 2u);
  EXPECT_EQ(curve->m_ParameterAxes[1]->m_IDref, "EnthalpyChange");
  EXPECT_EQ(ParameterValues(curve, 0), (Texts_{"1.", "4."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"2.", "5."}));
  EXPECT_EQ(ParameterValues(curve, 1), (Texts_{"3.", "6e2"}));
}

TEST_F(ConvertersTest, ACurveWithOneParameterAxisGetsTheEnthalpyAxis) {
  Material("thermometal");
  OrvaneMLRecordDataset* table = TableLine("5");
  Line pair({"1.", "2."});
  Convert(ImportTableCurveData, pair);
  Line triple({"3.", "4.", "5."});
  Convert(ImportTableXYZData, triple);
  OrvaneMLRecordCurve* curve = CurveOf(table);
  ASSERT_EQ(curve->m_ParameterAxes.size(), 2u);
  // Two values stored: the first word stands third in its triple.
  EXPECT_EQ(ParameterValues(curve, 1), (Texts_{"3."}));
  EXPECT_EQ(ParameterValues(curve, 0), (Texts_{"1.", "4."}));
  EXPECT_EQ(DataValues(curve), (Texts_{"2.", "5."}));
}

// ---- Families of curves ----

TEST_F(ConvertersTest, AFamilyMakesOneCurveATemperatureWithItsPhases) {
  Material("mechanical");
  SixPhases();
  Label("SLOPE", "60");
  OrvaneMLRecordDataset* family = TableLine("60");
  Line line({"20", "61", "1.5*3", "62", "900"});
  Convert(ImportTableRef, line);
  EXPECT_EQ(line[2], "1.5e3");
  EXPECT_EQ(LinksOf(family), (Texts_{"61", "62"}));
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap[60], (std::vector<int>{1}));
  OrvaneMLRecordDataset* member = Table("62");
  ASSERT_NE(member, nullptr);
  EXPECT_EQ(member->m_IDref, "Hardening_slope_curve");
  EXPECT_EQ(CurveOf(member)->m_Label, "Curve62");
  EXPECT_EQ(Conditions(CurveOf(member)), (Texts_{"TEMP=1.500000e+03", "Selected_Phases=Ferrite"}));
  EXPECT_EQ(Conditions(CurveOf(Table("61"))), (Texts_{"TEMP=2.000000e+01", "Selected_Phases=Ferrite"}));
  // The value without its table makes nothing.
  EXPECT_EQ(Table("900"), nullptr);
}

// ---- Link maps and phases of tables ----

TEST_F(ConvertersTest, TheLinkMapKeysEveryListOfTheIdentifierByItsTableId) {
  Material("mechanical");
  Label("YIELD", "40");
  OrvaneMLRecordDataset* list = TableLine("40");
  Line line({"41", "42"});
  Convert(ImportTablePhaseDetails, line);
  auto* twin = new OrvaneMLRecordDataset;
  twin->SetIDref("Yield_stress_weld");
  twin->SetDatasetID("40");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("99");
  twin->AddLink(link);
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(twin);
  Label("E", "1");
  std::map<int, std::vector<int>> map;
  GetDatasetLinkMap(list, map);
  EXPECT_EQ(map, (std::map<int, std::vector<int>>{{0, {40}}, {40, {41, 42}}}));
}

TEST_F(ConvertersTest, OneListOfOneTableServesTheFirstPhase) {
  Material("mechanical");
  Label("SLOPE", "60");
  BuildPhaseIndexIDrefMap(TableLine("60"));
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap, (std::map<int, std::vector<int>>{{60, {1}}}));
}

TEST_F(ConvertersTest, OneListOfTwoTablesServesTheFirstAndTheLastPhase) {
  Material("mechanical");
  SixPhases();
  OrvaneMLRecordDataset* slope = Label("SLOPE", "60");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("70");
  slope->AddLink(link);
  BuildPhaseIndexIDrefMap(TableLine("60"));
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap, (std::map<int, std::vector<int>>{{60, {1}}, {70, {6}}}));
}

TEST_F(ConvertersTest, WithTwoPhasesTheSecondTableServesTheRunningIndex) {
  Material("mechanical");
  AddPhase(1, "Ferrite");
  AddPhase(2, "Austenite");
  OrvaneMLRecordDataset* slope = Label("SLOPE", "60");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("70");
  slope->AddLink(link);
  BuildPhaseIndexIDrefMap(TableLine("60"));
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap, (std::map<int, std::vector<int>>{{60, {1}}, {70, {2}}}));
}

TEST_F(ConvertersTest, AListOfFamiliesGivesEachFamilyItsPhase) {
  Material("mechanical");
  SixPhases();
  OrvaneMLRecordDataset* slope = Label("SLOPE", "60");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("90");
  slope->AddLink(link);
  TableLine("60");
  Line list({"61", "62", "63"});
  Convert(ImportTablePhaseDetails, list);
  BuildPhaseIndexIDrefMap(TableLine("61"));
  // The inner list gives the phases; the outer list's second table the
  // running index behind them.
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap,
            (std::map<int, std::vector<int>>{{61, {1}}, {62, {2}}, {63, {3}}, {90, {4}}}));
}

TEST_F(ConvertersTest, ThePhasesOfTablesAreWorkedOutOnce) {
  Material("mechanical");
  CardsetImport::m_PhaseIndexIDrefMap[5] = {3};
  Label("SLOPE", "60");
  BuildPhaseIndexIDrefMap(TableLine("60"));
  EXPECT_EQ(CardsetImport::m_PhaseIndexIDrefMap, (std::map<int, std::vector<int>>{{5, {3}}}));
}

TEST_F(ConvertersTest, ListsThatReferToNoOtherListServeNoPhase) {
  Material("mechanical");
  OrvaneMLRecordDataset* slope = Label("SLOPE", "60");
  auto* twin = new OrvaneMLRecordDataset;
  twin->SetIDref("Hardening_slope_curve");
  twin->SetDatasetID("80");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("81");
  twin->AddLink(link);
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(twin);
  BuildPhaseIndexIDrefMap(slope);
  EXPECT_TRUE(CardsetImport::m_PhaseIndexIDrefMap.empty());
}

}  // namespace
