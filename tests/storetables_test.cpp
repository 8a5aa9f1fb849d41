// What the store answers the table readers: which dataset a table id
// reaches, the tables of parameters and of function numbers, and the axis
// and conditions of a parameter's curves.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "store/orvane.h"
#include "store/orvaneml.h"
#include "store_test_support.h"

namespace {

const char kMapping[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<Mapping solution="Tables Test" version="1">
  <Models>
    <Model IDref="GenericInfo_Weld" Category="Generic Info">
      <SubModel IDref="Phase_details_model" Create="false"/>
    </Model>
    <Model IDref="Mechanical_Weld" Category="Mechanical" CardModels="mechanical"/>
  </Models>
  <Parameters>
    <Parameter OrvaneMLID="Youngs_modulus_weld" CardsetID="E" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="curve" DependentParamID="Temperature" FixedParamIDs="Selected_Phases"/>
    <Parameter OrvaneMLID="Hardening_slope_curve" CardsetID="SLOPE" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="curve" DependentParamID="Plastic_strain"
               FixedParamIDs="Selected_Phases,TEMP"/>
    <Parameter OrvaneMLID="TABLE" CardsetID="TABLE" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="link" FixedParamIDs="ConstTypes,Selected_Phases"/>
    <Parameter OrvaneMLID="FortranStatus" CardsetID="STATUS" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="string"/>
    <Parameter OrvaneMLID="Phase_description" CardsetKW="Phases" Model="Phase_details_model" DataType="string"/>
  </Parameters>
</Mapping>
)";

class StoreTablesTest : public storetest::StoreTest {
 protected:
  const char* MappingXml() const override { return kMapping; }
  void SetUp() override {
    StoreTest::SetUp();
    StartMaterial("W_S1", "mechanical");
  }

  // A parameter's dataset that a label line links to table `id`.
  OrvaneMLRecordDataset* Parameter(const char* word, const char* id) {
    OrvaneStaticVars::SetActiveKW("LABELS :");
    OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(word, "IDref", false, nullptr, nullptr);
    auto* link = new OrvaneMLRecordLink;
    link->SetDatasetIDref(id);
    dataset->AddLink(link);
    OrvaneStaticVars::AddDataset(dataset, id);
    return dataset;
  }

  static OrvaneMLRecordDataset* TableLine(const char* id, const char* keyword = "TABLES :") {
    OrvaneStaticVars::SetActiveKW(keyword);
    return OrvaneStaticVars::GetOrCreateDataset(id, "DatasetID", false, nullptr, nullptr);
  }

  static std::vector<OrvaneMLRecordDataset*>& Own() {
    return OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets;
  }
};

TEST_F(StoreTablesTest, InATableSectionAParametersTableIsADatasetOfItsOwn) {
  OrvaneMLRecordDataset* parameter = nullptr;
  for (const char* keyword : {"TABLES :", "TABLE", "TABLES"}) {
    OrvaneStaticVars::ClearDatasets();
    parameter = Parameter("E", "12");
    OrvaneMLRecordDataset* table = TableLine("12", keyword);
    ASSERT_NE(table, nullptr) << keyword;
    EXPECT_NE(table, parameter) << keyword;
    EXPECT_EQ(table->m_IDref, "Youngs_modulus_weld") << keyword;
    EXPECT_EQ(table->m_DatasetID, "12") << keyword;
    EXPECT_EQ(table, Own().back()) << keyword;
    EXPECT_EQ(table, OrvaneStaticVars::GetCurrentDataset()) << keyword;
    // The next line of the same table reaches the same dataset.
    EXPECT_EQ(TableLine("12", keyword), table) << keyword;
  }
  EXPECT_EQ(parameter->m_DatasetID, "");
  ASSERT_EQ(parameter->m_Links.size(), 3u);
}

TEST_F(StoreTablesTest, OutsideTableSectionsAFiledParameterIsReachedItself) {
  OrvaneMLRecordDataset* parameter = Parameter("E", "12");
  OrvaneStaticVars::SetActiveKW("LABELS :");
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("12", "DatasetID", false, nullptr, nullptr), parameter);
}

TEST_F(StoreTablesTest, ATableMadeByAReaderIsReachedBeforeTheParameter) {
  Parameter("SLOPE", "61");
  auto* member = new OrvaneMLRecordDataset;
  member->SetIDref("Hardening_slope_curve");
  member->SetDatasetID("61");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(member);
  OrvaneStaticVars::AddDataset(member, "61");
  EXPECT_EQ(TableLine("61"), member);
}

TEST_F(StoreTablesTest, AFiledTableOfTheMaterialIsReachedItself) {
  auto* table = new OrvaneMLRecordDataset;
  table->SetIDref("Youngs_modulus_weld");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(table);
  OrvaneStaticVars::AddDataset(table, "7");
  EXPECT_EQ(TableLine("7"), table);
}

TEST_F(StoreTablesTest, PhaseNumbersAreNoTableIdsInTableSections) {
  OrvaneStaticVars::SetActiveKW("Phases");
  OrvaneMLRecordDataset* phase =
      OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, "Ferrite", "1");
  ASSERT_EQ(phase->m_DatasetID, "1");
  OrvaneMLRecordDataset* table = TableLine("1");
  EXPECT_NE(table, phase);
  EXPECT_EQ(table->m_IDref, "UnreferencedTable");
  // Elsewhere the phase's number still reaches it.
  OrvaneStaticVars::SetActiveKW("LABELS :");
  OrvaneStaticVars::ClearDatasets();
  OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, "Ferrite", "1");
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("1", "DatasetID", false, nullptr, nullptr)->m_IDref,
            "Phase_description");
}

TEST_F(StoreTablesTest, FindDatasetTakesTablesBeforePhaseDatasets) {
  OrvaneMLRecordDataset* phase =
      OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, "Ferrite", "1");
  EXPECT_EQ(OrvaneStaticVars::FindDataset("1", nullptr), phase);
  OrvaneMLRecordDataset* table = TableLine("1");
  EXPECT_EQ(OrvaneStaticVars::FindDataset("1", nullptr), table);
  EXPECT_EQ(OrvaneStaticVars::FindDataset("1", "Phase_description"), phase);
}

TEST_F(StoreTablesTest, AFunctionTextLineLeavesTheFunctionsTableCurrent) {
  OrvaneMLRecordDataset* function = TableLine("50000");
  EXPECT_EQ(TableLine("SIGY = MAX(SIGY0, 5.)"), nullptr);
  EXPECT_EQ(TableLine("END"), nullptr);
  EXPECT_EQ(OrvaneStaticVars::GetCurrentDataset(), function);
}

TEST_F(StoreTablesTest, AStatusValueNamesTheTableOfItsFunction) {
  OrvaneStaticVars::SetActiveKW("LABELS :");
  OrvaneMLRecordDataset* status = OrvaneStaticVars::GetOrCreateDataset("STATUS", "IDref", false, nullptr, nullptr);
  ASSERT_EQ(status->m_IDref, "FortranStatus");
  OrvaneStaticVars::CreateDatasetBasedOnType("50007", status, 0);
  ASSERT_NE(status->m_String, nullptr);
  EXPECT_EQ(status->m_String->m_Value, "50007");
  ASSERT_EQ(status->m_Links.size(), 1u);
  EXPECT_EQ(status->m_Links[0]->m_DatasetIDref, "50007");
  OrvaneMLRecordDataset* function = TableLine("50007");
  EXPECT_NE(function, status);
  EXPECT_EQ(function->m_IDref, "FortranStatus");
  EXPECT_EQ(function->m_DatasetID, "50007");
}

TEST_F(StoreTablesTest, AStatusWordTheMappingLacksStillNamesItsFunction) {
  unsetenv("QUILLON_MAPPING_FILE");
  storetest::WriteFile(m_MappingPath, "<Mapping version=\"1\"><Models><Model IDref=\"Mechanical_Weld\" "
                                      "CardModels=\"mechanical\"/></Models></Mapping>");
  setenv("QUILLON_MAPPING_FILE", m_MappingPath.c_str(), 1);
  OrvaneStaticVars::Init("no database of this name");
  OrvaneStaticVars::SetActiveModel("mechanical");
  OrvaneStaticVars::GetOrCreateMaterial("W_S1");
  OrvaneStaticVars::SetActiveKW("LABELS :");
  OrvaneMLRecordDataset* status = OrvaneStaticVars::GetOrCreateDataset("STATUS", "IDref", false, nullptr, nullptr);
  ASSERT_EQ(status->m_IDref, "STATUS");
  OrvaneStaticVars::CreateDatasetBasedOnType("50001", status, 0);
  EXPECT_EQ(TableLine("50001")->m_IDref, "STATUS");
}

TEST_F(StoreTablesTest, OtherValuesNameNoTable) {
  OrvaneStaticVars::SetActiveKW("LABELS :");
  OrvaneMLRecordDataset* modulus = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType("12", modulus, 0);
  EXPECT_TRUE(modulus->m_Links.empty());
  EXPECT_EQ(TableLine("12")->m_IDref, "UnreferencedTable");
}

TEST_F(StoreTablesTest, TheAxisAndConditionsOfAParametersCurves) {
  std::vector<std::string> names{"stale"};
  std::string text;
  EXPECT_STREQ(Orvane::GetDependentParamID("Hardening_slope_curve", names, &text, 1), "Plastic_strain");
  EXPECT_EQ(text, "Plastic_strain");
  EXPECT_EQ(names, (std::vector<std::string>{"Selected_Phases", "TEMP"}));
  // A table of constants has no axis, but names its conditions.
  text = "kept";
  EXPECT_EQ(Orvane::GetDependentParamID("TABLE", names, &text, 1), nullptr);
  EXPECT_EQ(names, (std::vector<std::string>{"ConstTypes", "Selected_Phases"}));
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(Orvane::GetDependentParamID("UnreferencedTable", names, nullptr, 0), nullptr);
  EXPECT_TRUE(names.empty());
}

TEST(ShippedMappingAxes, TemperatureForMostCurvesAndPlasticStrainForHardening) {
  unsetenv("QUILLON_MAPPING_FILE");
  OrvaneStaticVars::Init("no database of this name");
  OrvaneStaticVars::SetActiveModel("mechanical");
  std::vector<std::string> names;
  for (const char* idref : {"Youngs_modulus_weld", "Thermal_strains", "Yield_stress_weld",
                            "CreepLogHardeningCoefficient"})
    EXPECT_STREQ(Orvane::GetDependentParamID(idref, names, nullptr, 1), "Temperature") << idref;
  EXPECT_STREQ(Orvane::GetDependentParamID("Hardening_slope_curve", names, nullptr, 1), "Plastic_strain");
  OrvaneStaticVars::SetActiveModel("thermometal_cp");
  EXPECT_STREQ(Orvane::GetDependentParamID("Thermal_conductivity_weld", names, nullptr, 1), "Temperature");
  EXPECT_STREQ(Orvane::GetDependentParamID("K_table_index", names, nullptr, 1), "Temperature");
  OrvaneStaticVars::Init(nullptr);
}

}  // namespace
