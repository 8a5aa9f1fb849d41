// The import side of the store's facade, the solution object and the
// export side's "nothing" answers.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "store/mapping.h"
#include "store/orvane.h"
#include "store/orvaneml.h"
#include "store_test_support.h"

namespace {

using storetest::StoreTest;

bool Contains(const std::vector<std::string>& texts, const std::string& part) {
  for (const std::string& text : texts) {
    if (text.find(part) != std::string::npos) return true;
  }
  return false;
}

int CountContaining(const std::vector<std::string>& texts, const std::string& part) {
  int count = 0;
  for (const std::string& text : texts) count += text.find(part) != std::string::npos ? 1 : 0;
  return count;
}

OrvaneMLRecordDataset* FindIn(OrvaneMLRecordMatModel* model, const char* idref) {
  if (model == nullptr) return nullptr;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
    if (std::strcmp(dataset->GetIDref(), idref) == 0) return dataset;
  }
  return nullptr;
}

OrvaneMLRecordMatModel* AddPhaseModel(const char* instance) {
  OrvaneMLRecordMatModel* generic = OrvaneStaticVars::GetOrCreateMatModel("GenericInfo_Weld", false);
  auto* phase = new OrvaneMLRecordMatModel;
  phase->SetIDref("Phase_details_model");
  phase->SetInstanceID(instance);
  generic->GetOrCreateSubModels()->m_Models.push_back(phase);
  return phase;
}

// Puts `model` in the model list in place of the first entry of its IDref,
// or appends it, as the phase and reaction readers do.
void PutInModelList(OrvaneMLRecordMatModel* model) {
  std::vector<OrvaneMLRecordMatModel*>& list = OrvaneStaticVars::GetMatModelList();
  for (OrvaneMLRecordMatModel*& entry : list) {
    if (std::strcmp(entry->GetIDref(), model->GetIDref()) == 0) {
      entry = model;
      return;
    }
  }
  list.push_back(model);
}

// ---- Before any Init ----

// Defined first, so that it also runs first when the whole program runs in one
// process.
TEST(StoreBeforeInit, GivesMaterialsTheModelsOfTheShippedMapping) {
  unsetenv("QUILLON_MAPPING_FILE");
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetOrCreateMaterial("Early");
  ASSERT_NE(nullptr, material);
  EXPECT_NE(nullptr, OrvaneStaticVars::FindModelByID("Mechanical_Weld"));
  EXPECT_NE(nullptr, OrvaneStaticVars::FindModelByID("ThermalPropertyModel"));
  OrvaneStaticVars::Init(nullptr);
}

// ---- Folders and materials ----

TEST_F(StoreTest, NoFolderIsCurrentBeforeOneIsMade) { EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterials()); }

TEST_F(StoreTest, AFolderAskedForTwiceIsTheSameAndBecomesCurrent) {
  OrvaneMLRecordMaterials* steels = OrvaneStaticVars::GetOrCreateMaterials("Steels");
  OrvaneMLRecordMaterials* alloys = OrvaneStaticVars::GetOrCreateMaterials("Alloys");
  EXPECT_EQ(alloys, OrvaneStaticVars::GetCurrentMaterials());
  EXPECT_EQ(steels, OrvaneStaticVars::GetOrCreateMaterials("Steels"));
  EXPECT_EQ(steels, OrvaneStaticVars::GetCurrentMaterials());
  EXPECT_STREQ("Steels", steels->GetName());
}

TEST_F(StoreTest, AFolderWithoutNameIsNone) {
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMaterials(""));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMaterials(nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterials());
}

TEST_F(StoreTest, AMaterialMadeTwiceIsTheSameAndBecomesCurrent) {
  OrvaneMLRecordMaterial* first = OrvaneStaticVars::GetOrCreateMaterial("Steel_S355");
  OrvaneMLRecordMaterial* other = OrvaneStaticVars::GetOrCreateMaterial("Steel_S460");
  EXPECT_EQ(other, OrvaneStaticVars::GetCurrentMaterial());
  EXPECT_EQ(first, OrvaneStaticVars::GetOrCreateMaterial("Steel_S355"));
  EXPECT_EQ(first, OrvaneStaticVars::GetCurrentMaterial());
  EXPECT_STREQ("Steel_S355", first->GetID());
  EXPECT_EQ(2u, OrvaneStaticVars::GetMaterials().size());
}

TEST_F(StoreTest, AMaterialWithoutIdentifierIsNone) {
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMaterial(""));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMaterial(nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterial());
}

TEST_F(StoreTest, AClassNamedAfterTheMaterialFilesItAndTheLastOneWins) {
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetOrCreateMaterial("S355");
  OrvaneMLRecordMaterials* first = OrvaneStaticVars::GetOrCreateMaterials("Structural");
  OrvaneMLRecordMaterials* second = OrvaneStaticVars::GetOrCreateMaterials("Weldable");
  EXPECT_FALSE(first->Holds(material));
  EXPECT_TRUE(second->Holds(material));
  EXPECT_EQ(second, OrvaneStaticVars::GetFolderOfMaterial(material));
}

TEST_F(StoreTest, AMaterialWithoutFolderJoinsTheFolderInForce) {
  OrvaneStaticVars::GetOrCreateMaterial("A");
  OrvaneMLRecordMaterials* steels = OrvaneStaticVars::GetOrCreateMaterials("Steels");
  OrvaneMLRecordMaterial* next = OrvaneStaticVars::GetOrCreateMaterial("B");
  EXPECT_EQ(steels, OrvaneStaticVars::GetFolderOfMaterial(next));
}

TEST_F(StoreTest, AddingAMaterialToAFolderMovesIt) {
  OrvaneMLRecordMaterials* weld = OrvaneStaticVars::GetOrCreateMaterials("Weld");
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetOrCreateMaterial("MetallurgyMat");
  OrvaneMLRecordMaterials* other = OrvaneStaticVars::GetOrCreateMaterials("Other");
  OrvaneStaticVars::AddMaterialToMaterials(weld, material);
  EXPECT_TRUE(weld->Holds(material));
  EXPECT_FALSE(other->Holds(material));
  OrvaneStaticVars::AddMaterialToMaterials(nullptr, material);
  EXPECT_TRUE(weld->Holds(material));
}

TEST_F(StoreTest, TextsOfTheFacadeAreKeptAsGiven) {
  OrvaneStaticVars::SetCurrentMaterialType("W");
  OrvaneStaticVars::SetActiveModel("");
  OrvaneStaticVars::SetActiveKW("LABELS :");
  OrvaneStaticVars::SetInstanceID("4");
  EXPECT_STREQ("W", OrvaneStaticVars::GetCurrentMaterialType());
  EXPECT_STREQ("", OrvaneStaticVars::GetActiveModel());
  EXPECT_STREQ("LABELS :", OrvaneStaticVars::GetActiveKW());
  EXPECT_STREQ("4", OrvaneStaticVars::GetInstanceID());
  OrvaneStaticVars::SetActiveModel(nullptr);
  EXPECT_STREQ("", OrvaneStaticVars::GetActiveModel());
}

// ---- Models ----

TEST_F(StoreTest, ANewMaterialHasTheModelsOfTheMapping) {
  StartMaterial("S355", "mechanical");
  for (const char* name : {"GenericInfo_Weld", "PhaseDetails", "Mechanical_Weld", "Thermal_Weld",
                           "Metallurgy_Weld", "Tempering_Weld", "SpecialPropertyModel", "ThermalPropertyModel"}) {
    EXPECT_NE(nullptr, OrvaneStaticVars::GetOrCreateMatModel(name, false)) << name;
    EXPECT_NE(nullptr, OrvaneStaticVars::FindModelByID(name)) << name;
  }
}

TEST_F(StoreTest, SubModelsStandInsideTheirModel) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordMatModel* thermal = OrvaneStaticVars::FindModelByID("Thermal_Weld");
  ASSERT_NE(nullptr, thermal->m_SubModels);
  ASSERT_EQ(1u, thermal->m_SubModels->m_Models.size());
  EXPECT_EQ(OrvaneStaticVars::FindModelByID("ThermalPropertyModel"), thermal->m_SubModels->m_Models[0]);
}

TEST_F(StoreTest, OptionalSubModelsAreNotMadeWithTheMaterial) {
  StartMaterial("S355", "mechanical");
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindModelByID("Phase_details_model"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindModelByID("ReactionDefinition"));
}

TEST_F(StoreTest, AModelTheMappingDoesNotKnowIsNoneUnlessMade) {
  StartMaterial("S355", "mechanical");
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel("NoSuchModel", false));
  OrvaneMLRecordMatModel* made = OrvaneStaticVars::GetOrCreateMatModel("NoSuchModel", true);
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(made, OrvaneStaticVars::GetOrCreateMatModel("NoSuchModel", false));
  EXPECT_EQ(made, OrvaneStaticVars::GetCurrentMaterial()->m_Models.back());
}

TEST_F(StoreTest, AModelTheImportMakesItselfIsNotInventedByAsking) {
  StartMaterial("S355", "mechanical");
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel("Phase_details_model", false));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel("ReactionDefinition", false));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindModelByID("Phase_details_model"));
}

TEST_F(StoreTest, AModelEveryMaterialGetsIsMadeWhenAMaterialLacksIt) {
  OrvaneMLRecordMaterial* material = StartMaterial("Loaded", "mechanical");
  for (auto it = material->m_Models.begin(); it != material->m_Models.end(); ++it) {
    if (std::strcmp((*it)->GetIDref(), "Tempering_Weld") == 0) {
      delete *it;
      material->m_Models.erase(it);
      break;
    }
  }
  OrvaneStaticVars::GetOrCreateMaterial("Loaded");
  ASSERT_EQ(nullptr, OrvaneStaticVars::FindModelByID("Tempering_Weld"));
  OrvaneMLRecordMatModel* made = OrvaneStaticVars::GetOrCreateMatModel("Tempering_Weld", false);
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(made, material->m_Models.back());
  EXPECT_EQ(made, OrvaneStaticVars::FindModelByID("Tempering_Weld"));
}

TEST_F(StoreTest, ModelsAreNoneWithoutMaterialOrName) {
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel("Mechanical_Weld", false));
  StartMaterial("S355", "mechanical");
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel("", true));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateMatModel(nullptr, true));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindModelByID(nullptr));
}

TEST_F(StoreTest, TheModelListHoldsModelsAndSubModelsInOrder) {
  StartMaterial("S355", "mechanical");
  const std::vector<OrvaneMLRecordMatModel*>& list = OrvaneStaticVars::GetMatModelList();
  ASSERT_GE(list.size(), 8u);
  EXPECT_STREQ("GenericInfo_Weld", list[0]->GetIDref());
  EXPECT_STREQ("PhaseDetails", list[1]->GetIDref());
  EXPECT_STREQ("Mechanical_Weld", list[2]->GetIDref());
  EXPECT_STREQ("SpecialPropertyModel", list[3]->GetIDref());
}

TEST_F(StoreTest, AReplacedModelListEntryTakesTheNextDatasetAtOnce) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordMatModel* phase1 = AddPhaseModel("1");
  OrvaneMLRecordMatModel* phase2 = AddPhaseModel("2");
  PutInModelList(phase1);
  OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, "Ferrite", "1");
  PutInModelList(phase2);
  OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, "Bainite", "2");
  ASSERT_NE(nullptr, FindIn(phase1, "Phase_description"));
  ASSERT_NE(nullptr, FindIn(phase2, "Phase_description"));
  EXPECT_STREQ("Ferrite", FindIn(phase1, "Phase_description")->m_String->GetValue());
  EXPECT_STREQ("Bainite", FindIn(phase2, "Phase_description")->m_String->GetValue());
  EXPECT_EQ(1u, phase1->m_Datasets.size());
}

TEST_F(StoreTest, AnAppendedModelListEntryIsFoundByItsIDref) {
  StartMaterial("S355", "thermometal");
  OrvaneMLRecordMatModel* metallurgy = OrvaneStaticVars::GetOrCreateMatModel("Metallurgy_Weld", false);
  auto* reaction = new OrvaneMLRecordMatModel;
  reaction->SetIDref("ReactionDefinition");
  reaction->SetInstanceID("1");
  metallurgy->GetOrCreateSubModels()->m_Models.push_back(reaction);
  PutInModelList(reaction);
  OrvaneMLRecordDataset* parent = OrvaneStaticVars::GetOrCreateDataset("Parent_phase", "IDref", true, "Austenite", nullptr);
  EXPECT_EQ(parent, FindIn(reaction, "Parent_phase"));
  EXPECT_EQ(reaction, OrvaneStaticVars::FindModelByID("ReactionDefinition"));
}

TEST_F(StoreTest, APhaseDatasetWithoutPhaseModelMakesOneNumberedByTheText) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* name = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "3");
  OrvaneMLRecordMatModel* phase = OrvaneStaticVars::FindModelByID("Phase_details_model");
  ASSERT_NE(nullptr, phase);
  EXPECT_STREQ("3", phase->GetInstanceID());
  EXPECT_EQ(name, FindIn(phase, "Phase_name"));
  OrvaneMLRecordMatModel* generic = OrvaneStaticVars::FindModelByID("GenericInfo_Weld");
  ASSERT_NE(nullptr, generic->m_SubModels);
  EXPECT_EQ(phase, generic->m_SubModels->m_Models.back());
}

// ---- Datasets by IDref ----

TEST_F(StoreTest, TheCardNamePhaseBecomesPhaseName) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "1");
  ASSERT_NE(nullptr, dataset);
  EXPECT_STREQ("Phase_name", dataset->GetIDref());
  EXPECT_STREQ("1", dataset->GetDatasetID());
  EXPECT_STREQ("Phase_name", OrvaneStaticVars::GetOrvaneMLID("PHASE"));
}

TEST_F(StoreTest, EmptyOrNullIdentifiersGiveNoneAndLeaveTheCurrentDataset) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("", "IDref", false, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset(nullptr, "IDref", true, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("", "DatasetID", false, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("E", nullptr, false, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("E", "Label", false, nullptr, nullptr));
  EXPECT_EQ(current, OrvaneStaticVars::GetCurrentDataset());
  OrvaneStaticVars::CreateDatasetBasedOnType("", nullptr, 0);
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDataset(nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDatasetByIDref(""));
}

TEST_F(StoreTest, NoDatasetWithoutMaterial) {
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentDataset());
}

TEST_F(StoreTest, ACardWordIsTranslatedForTheActiveCardModel) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* young = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_STREQ("Youngs_modulus_weld", young->GetIDref());
  EXPECT_EQ(young, FindIn(OrvaneStaticVars::FindModelByID("Mechanical_Weld"), "Youngs_modulus_weld"));
  OrvaneStaticVars::SetActiveModel("thermometal_cp");
  OrvaneMLRecordDataset* thermal = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_STREQ("Youngs_modulus_thermal", thermal->GetIDref());
  EXPECT_EQ(thermal, FindIn(OrvaneStaticVars::FindModelByID("ThermalPropertyModel"), "Youngs_modulus_thermal"));
}

TEST_F(StoreTest, AWordAskedForTwiceGivesTheSameDatasetAndMakesItCurrent) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* first = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::GetOrCreateDataset("MODEL", "IDref", false, nullptr, nullptr);
  OrvaneMLRecordDataset* again = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_EQ(first, again);
  EXPECT_EQ(first, OrvaneStaticVars::GetCurrentDataset());
}

TEST_F(StoreTest, CreateGivesTheDatasetOfThatIdentifierAsNewWithTheValueGiven) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* first = OrvaneStaticVars::GetOrCreateDataset("Material_type", "IDref", true, "W", nullptr);
  ASSERT_NE(nullptr, first->m_String);
  EXPECT_STREQ("Weld", first->m_String->GetValue());
  first->m_Float = new OrvaneMLRecordFloat;
  OrvaneMLRecordDataset* again = OrvaneStaticVars::GetOrCreateDataset("Material_type", "IDref", true, "DE", nullptr);
  EXPECT_EQ(first, again);
  EXPECT_EQ(nullptr, again->m_Float);
  EXPECT_STREQ("DE", again->m_String->GetValue());
  EXPECT_EQ(again, OrvaneStaticVars::GetCurrentDataset());
  EXPECT_EQ(1u, OrvaneStaticVars::FindModelByID("GenericInfo_Weld")->m_Datasets.size());
}

TEST_F(StoreTest, CreateKeepsDatasetsOfOtherTableIdsApart) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* one = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "1");
  OrvaneMLRecordDataset* two = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "2");
  OrvaneMLRecordDataset* plain = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, nullptr);
  EXPECT_NE(one, two);
  EXPECT_NE(one, plain);
  EXPECT_STREQ("1", one->GetDatasetID());
  EXPECT_STREQ("2", two->GetDatasetID());
  EXPECT_STREQ("", plain->GetDatasetID());
  EXPECT_EQ(one, OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "1"));
}

TEST_F(StoreTest, ASecondCommentBlockOfAModelReplacesTheValue) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* first = OrvaneStaticVars::GetOrCreateDataset("CategoryComments", "IDref", true, "zero\r\n", nullptr);
  OrvaneMLRecordDataset* second = OrvaneStaticVars::GetOrCreateDataset("CategoryComments", "IDref", true, "one\r\n", nullptr);
  EXPECT_EQ(first, second);
  EXPECT_STREQ("one\r\n", second->m_String->GetValue());
}

TEST_F(StoreTest, ACommentDatasetIsCurrentWithItsFirstLineAsValue) {
  StartMaterial("S355", "mechanical");
  OrvaneStaticVars::GetOrCreateDataset("CategoryComments", "IDref", true, "first line\r\n", nullptr);
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
  ASSERT_NE(nullptr, current);
  ASSERT_NE(nullptr, current->m_String);
  EXPECT_STREQ("first line\r\n", current->m_String->GetValue());
}

TEST_F(StoreTest, AnUnknownCardWordIsKeptUnderItsNameInTheCardModelsDefaultModel) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset("ZZTOP", "IDref", false, nullptr, nullptr);
  ASSERT_NE(nullptr, dataset);
  EXPECT_STREQ("ZZTOP", dataset->GetIDref());
  EXPECT_EQ(dataset, FindIn(OrvaneStaticVars::FindModelByID("Mechanical_Weld"), "ZZTOP"));
  OrvaneStaticVars::SetActiveModel("thermometal_enth");
  OrvaneMLRecordDataset* thermal = OrvaneStaticVars::GetOrCreateDataset("QQ", "IDref", false, nullptr, nullptr);
  EXPECT_EQ(thermal, FindIn(OrvaneStaticVars::FindModelByID("Thermal_Weld"), "QQ"));
}

TEST_F(StoreTest, AnUnknownCardWordIsReportedOnce) {
  StartMaterial("S355", "mechanical");
  OrvaneStaticVars::GetOrCreateDataset("ZZTOP", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::GetOrCreateDataset("ZZTOP", "IDref", false, nullptr, nullptr);
  StartMaterial("S460", "mechanical");
  OrvaneStaticVars::GetOrCreateDataset("ZZTOP", "IDref", false, nullptr, nullptr);
  EXPECT_EQ(1, CountContaining(OrvaneGenericLog::GetDBWarnings(), "\"ZZTOP\""));
}

TEST_F(StoreTest, AStoreIdentifierMadeWithCreateIsNotReported) {
  StartMaterial("S355", "mechanical");
  OrvaneStaticVars::GetOrCreateDataset("Some_internal_id", "IDref", true, nullptr, nullptr);
  EXPECT_FALSE(Contains(OrvaneGenericLog::GetDBWarnings(), "Some_internal_id"));
}

// ---- Datasets by table id ----

TEST_F(StoreTest, AWordThatIsNoNumberIsNoTableIdAndLeavesTheCurrentDataset) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* function = OrvaneStaticVars::GetOrCreateDataset("50000", "DatasetID", false, nullptr, nullptr);
  ASSERT_NE(nullptr, function);
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("Y = A*X", "DatasetID", false, nullptr, nullptr));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateDataset("END", "DatasetID", false, nullptr, nullptr));
  EXPECT_EQ(function, OrvaneStaticVars::GetCurrentDataset());
}

TEST_F(StoreTest, ATableIdThatNamesNoDatasetIsKeptInADatasetOfItsOwn) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* seven = OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr);
  OrvaneMLRecordDataset* eight = OrvaneStaticVars::GetOrCreateDataset("8", "DatasetID", false, nullptr, nullptr);
  ASSERT_NE(nullptr, seven);
  ASSERT_NE(nullptr, eight);
  EXPECT_NE(seven, eight);
  EXPECT_STREQ("UnreferencedTable", seven->GetIDref());
  EXPECT_STREQ("7", seven->GetDatasetID());
  EXPECT_EQ(seven, OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr));
  EXPECT_EQ(seven, OrvaneStaticVars::GetCurrentDataset());
  // Such datasets belong to the material itself.
  EXPECT_EQ(seven, OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets[0]);
}

TEST_F(StoreTest, ATableIdFindsTheDatasetThatCarriesIt) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* phase = OrvaneStaticVars::GetOrCreateDataset("Phase_description", "IDref", true, nullptr, "12");
  OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_EQ(phase, OrvaneStaticVars::GetOrCreateDataset("12", "DatasetID", false, nullptr, nullptr));
  EXPECT_EQ(phase, OrvaneStaticVars::GetCurrentDataset());
}

TEST_F(StoreTest, ADatasetFiledUnderATableIdIsReachedByThatId) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* stiffness = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("12");
  stiffness->AddLink(link);
  OrvaneStaticVars::AddDataset(stiffness, "12");
  EXPECT_STREQ("", stiffness->GetDatasetID());
  EXPECT_EQ(stiffness, OrvaneStaticVars::GetOrCreateDataset("12", "DatasetID", false, nullptr, nullptr));
}

TEST_F(StoreTest, ADatasetMadeByTheCallerAndFiledJoinsTheMaterial) {
  StartMaterial("S355", "thermometal");
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref("Density_weld");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(dataset);
  OrvaneStaticVars::AddDataset(dataset, "7");
  std::vector<OrvaneMLRecordDataset*>& own = OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets;
  ASSERT_EQ(1u, own.size());
  EXPECT_EQ(dataset, own[0]);
  EXPECT_EQ(dataset, OrvaneStaticVars::GetDatasetsPtr()->GetDataset().back());
  EXPECT_EQ(dataset, OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr));
}

TEST_F(StoreTest, ADatasetAddedBeforeAnyMaterialIsListedUntilInit) {
  auto* early = new OrvaneMLRecordDataset;
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(early);
  OrvaneStaticVars::AddDataset(early, "3");
  EXPECT_EQ(early, OrvaneStaticVars::GetOrCreateDataset("3", "DatasetID", false, nullptr, nullptr));
  OrvaneStaticVars::Init("no database");
  EXPECT_TRUE(OrvaneStaticVars::GetDatasetsPtr()->GetDataset().empty());
}

TEST_F(StoreTest, TheDatasetListHoldsWhatWasMadeFoundOrAddedInOrder) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* young = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  auto* table = new OrvaneMLRecordDataset;
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(table);
  OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  std::vector<OrvaneMLRecordDataset*>& list = OrvaneStaticVars::GetDatasetsPtr()->GetDataset();
  ASSERT_EQ(2u, list.size());
  EXPECT_EQ(young, list[0]);
  EXPECT_EQ(table, list[1]);
}

TEST_F(StoreTest, ClearDatasetsForgetsTheListAndTheTableIdsButNotTheData) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* old = OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr);
  OrvaneStaticVars::ClearDatasets();
  EXPECT_TRUE(OrvaneStaticVars::GetDatasetsPtr()->GetDataset().empty());
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentDataset());
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDataset("7", nullptr));
  OrvaneMLRecordDataset* fresh = OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr);
  EXPECT_NE(old, fresh);
  EXPECT_EQ(2u, OrvaneStaticVars::GetCurrentMaterial()->m_Datasets->m_Datasets.size());
}

TEST_F(StoreTest, FindDatasetLooksByTableIdAndByIDrefWhenGiven) {
  StartMaterial("S355", "mechanical");
  auto* a = new OrvaneMLRecordDataset;
  a->SetIDref("Thermal_strains");
  a->SetDatasetID("6");
  auto* b = new OrvaneMLRecordDataset;
  b->SetIDref("Yield");
  b->SetDatasetID("6");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(a);
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(b);
  EXPECT_EQ(a, OrvaneStaticVars::FindDataset("6", nullptr));
  EXPECT_EQ(b, OrvaneStaticVars::FindDataset("6", "Yield"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDataset("6", "Other"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDataset("9", nullptr));
  EXPECT_EQ(b, OrvaneStaticVars::FindDatasetByIDref("Yield"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::FindDatasetByIDref("Youngs_modulus_weld"));
  OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  EXPECT_NE(nullptr, OrvaneStaticVars::FindDatasetByIDref("Youngs_modulus_weld"));
}

TEST_F(StoreTest, TheLinkDatasetGetsOneLinkToItsTable) {
  StartMaterial("S355", "thermometal");
  OrvaneMLRecordDataset* first = OrvaneStaticVars::GetOrCreateLinkDataset("RHO", "7");
  OrvaneMLRecordDataset* again = OrvaneStaticVars::GetOrCreateLinkDataset("RHO", "7");
  ASSERT_NE(nullptr, first);
  EXPECT_EQ(first, again);
  EXPECT_STREQ("Density_weld", first->GetIDref());
  ASSERT_EQ(1u, first->m_Links.size());
  EXPECT_STREQ("7", first->m_Links[0]->GetDatasetIDref());
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrCreateLinkDataset("", "7"));
}

// ---- Values by type ----

class ValueByType : public StoreTest {
 protected:
  OrvaneMLRecordDataset* Dataset(const char* idref) {
    StartMaterial("S355", "mechanical");
    auto* dataset = new OrvaneMLRecordDataset;
    dataset->SetIDref(idref);
    OrvaneStaticVars::GetDatasetsPtr()->AddDataset(dataset);
    return dataset;
  }
};

TEST_F(ValueByType, AFloatParameterGetsAConstantAndAgainReplacesIt) {
  OrvaneMLRecordDataset* dataset = Dataset("Youngs_modulus_weld");
  OrvaneStaticVars::CreateDatasetBasedOnType("210000.", dataset, 0);
  OrvaneStaticVars::CreateDatasetBasedOnType("200000.", dataset, 0);
  ASSERT_NE(nullptr, dataset->m_Float);
  ASSERT_EQ(1u, dataset->m_Float->m_Constants.size());
  EXPECT_STREQ("200000.", dataset->m_Float->m_Constants[0]->GetValueAsString());
  EXPECT_EQ(nullptr, dataset->m_String);
}

TEST_F(ValueByType, AnIntegerParameterGetsAnInteger) {
  OrvaneMLRecordDataset* dataset = Dataset("Number of Phases");
  OrvaneStaticVars::CreateDatasetBasedOnType("6", dataset, 0);
  ASSERT_NE(nullptr, dataset->m_Integer);
  EXPECT_EQ(6, dataset->m_Integer->GetValue());
}

TEST_F(ValueByType, AStringParameterGetsItsText) {
  OrvaneMLRecordDataset* dataset = Dataset("Label_text");
  OrvaneStaticVars::CreateDatasetBasedOnType("12", dataset, 0);
  ASSERT_NE(nullptr, dataset->m_String);
  EXPECT_STREQ("12", dataset->m_String->GetValue());
  EXPECT_EQ(nullptr, dataset->m_Float);
}

TEST_F(ValueByType, AChoiceIsNamedByItsCardCodeOrByNameOrKeptAsWritten) {
  OrvaneMLRecordDataset* dataset = Dataset("Hardening_model");
  OrvaneStaticVars::CreateDatasetBasedOnType("2", dataset, 0);
  ASSERT_NE(nullptr, dataset->m_String);
  EXPECT_STREQ("Kinematic", dataset->m_String->GetValue());
  OrvaneStaticVars::CreateDatasetBasedOnType("isotropic", dataset, 0);
  EXPECT_STREQ("Isotropic", dataset->m_String->GetValue());
  OrvaneStaticVars::CreateDatasetBasedOnType("11", dataset, 0);
  EXPECT_STREQ("11", dataset->m_String->GetValue());
}

TEST_F(ValueByType, ALinkParameterLinksToTheTableAndIsFiledUnderIt) {
  OrvaneMLRecordDataset* dataset = Dataset("Table_link");
  OrvaneStaticVars::CreateDatasetBasedOnType("9", dataset, 0);
  ASSERT_EQ(1u, dataset->m_Links.size());
  EXPECT_STREQ("9", dataset->m_Links[0]->GetDatasetIDref());
  EXPECT_EQ(dataset, OrvaneStaticVars::GetOrCreateDataset("9", "DatasetID", false, nullptr, nullptr));
}

TEST_F(ValueByType, AnUnknownParameterKeepsItsTextAndANumberAlsoAsConstant) {
  OrvaneMLRecordDataset* number = Dataset("ZZ_number");
  OrvaneStaticVars::CreateDatasetBasedOnType("0.20", number, 0);
  ASSERT_NE(nullptr, number->m_String);
  EXPECT_STREQ("0.20", number->m_String->GetValue());
  ASSERT_NE(nullptr, number->m_Float);
  EXPECT_STREQ("0.20", number->m_Float->m_Constants[0]->GetValueAsString());
  auto* text = new OrvaneMLRecordDataset;
  text->SetIDref("ZZ_text");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(text);
  OrvaneStaticVars::CreateDatasetBasedOnType("Austenite", text, 0);
  EXPECT_STREQ("Austenite", text->m_String->GetValue());
  EXPECT_EQ(nullptr, text->m_Float);
}

TEST_F(ValueByType, TheFirstWordOfATableLineIsAFloatListItem) {
  OrvaneMLRecordDataset* dataset = Dataset("Yield_Carbon_Coeff");
  OrvaneStaticVars::CreateDatasetBasedOnType("1.5", dataset, 1);
  OrvaneStaticVars::CreateDatasetBasedOnType("2.5", dataset, 1);
  ASSERT_NE(nullptr, dataset->m_FloatList);
  ASSERT_EQ(2u, dataset->m_FloatList->m_FloatItems.size());
  EXPECT_STREQ("1.5", dataset->m_FloatList->m_FloatItems[0]->m_Constants[0]->GetValueAsString());
  EXPECT_EQ(nullptr, dataset->m_Float);
}

TEST_F(ValueByType, AnEmptyValueOrNoDatasetChangesNothing) {
  OrvaneMLRecordDataset* dataset = Dataset("Youngs_modulus_weld");
  OrvaneStaticVars::CreateDatasetBasedOnType("", dataset, 0);
  OrvaneStaticVars::CreateDatasetBasedOnType(nullptr, dataset, 0);
  OrvaneStaticVars::CreateDatasetBasedOnType("1", nullptr, 0);
  EXPECT_EQ(nullptr, dataset->m_Float);
  EXPECT_EQ(nullptr, dataset->m_String);
}

TEST_F(ValueByType, ALabelLineOfOnePairMakesNoSecondDataset) {
  StartMaterial("S355", "mechanical");
  OrvaneMLRecordDataset* empty = OrvaneStaticVars::GetOrCreateDataset("", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType("", empty, 0);
  EXPECT_EQ(nullptr, empty);
  EXPECT_TRUE(OrvaneStaticVars::GetDatasetsPtr()->GetDataset().empty());
}

// ---- Smaller lookups ----

TEST_F(StoreTest, StrainDirectionsCollectTheirTableIds) {
  OrvaneStaticVars::AddLXLYLZDataset("LX", "5");
  OrvaneStaticVars::AddLXLYLZDataset("LX", "6");
  OrvaneStaticVars::AddLXLYLZDataset("LY", "7");
  std::map<std::string, std::vector<std::string>>& map = OrvaneStaticVars::GetLXLYLZMap();
  EXPECT_EQ((std::vector<std::string>{"5", "6"}), map["LX"]);
  EXPECT_EQ((std::vector<std::string>{"7"}), map["LY"]);
  OrvaneStaticVars::ClearDatasets();
  EXPECT_TRUE(OrvaneStaticVars::GetLXLYLZMap().empty());
}

TEST_F(StoreTest, ThePhaseNameOfANumberIsTheStoredOneOrNone) {
  StartMaterial("S355", "mechanical");
  std::string name = "stale";
  OrvaneStaticVars::GetMMAT2020PhaseNameFromIndex("2", name);
  EXPECT_EQ("", name);
  OrvaneMLRecordMatModel* phase = AddPhaseModel("2");
  PutInModelList(phase);
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "2");
  dataset->m_String = new OrvaneMLRecordString;
  dataset->m_String->SetValue("Bainite");
  OrvaneStaticVars::GetMMAT2020PhaseNameFromIndex("2", name);
  EXPECT_EQ("Bainite", name);
  OrvaneStaticVars::GetMMAT2020PhaseNameFromIndex("3", name);
  EXPECT_EQ("", name);
}

TEST_F(StoreTest, TheStoreIdentifierOfACardWordOrNone) {
  OrvaneStaticVars::SetActiveModel("mechanical");
  EXPECT_STREQ("Youngs_modulus_weld", OrvaneStaticVars::GetOrvaneMLID("E"));
  OrvaneStaticVars::SetActiveModel("thermometal");
  EXPECT_STREQ("Youngs_modulus_thermal", OrvaneStaticVars::GetOrvaneMLID("E"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrvaneMLID("ZZTOP"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrvaneMLID(""));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetOrvaneMLID(nullptr));
}

TEST_F(StoreTest, OnlyAWholeNumberIsAValidNumber) {
  EXPECT_TRUE(OrvaneStaticVars::IsValidNumber("12"));
  EXPECT_TRUE(OrvaneStaticVars::IsValidNumber("-1.5e3"));
  EXPECT_FALSE(OrvaneStaticVars::IsValidNumber("12 13"));
  EXPECT_FALSE(OrvaneStaticVars::IsValidNumber("1*-5"));
  EXPECT_FALSE(OrvaneStaticVars::IsValidNumber(""));
  EXPECT_FALSE(OrvaneStaticVars::IsValidNumber(nullptr));
}

TEST_F(StoreTest, TheAxisOfACurveComesFromTheMapping) {
  std::vector<std::string> names{"stale"};
  std::string text;
  EXPECT_STREQ("Temperature", Orvane::GetDependentParamID("Density_weld", names, &text, 1));
  EXPECT_EQ("Temperature", text);
  EXPECT_EQ((std::vector<std::string>{"Selected_Phases"}), names);
  EXPECT_EQ(nullptr, Orvane::GetDependentParamID("Youngs_modulus_weld", names, nullptr, 0));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(nullptr, Orvane::GetDependentParamID(nullptr, names, nullptr, 0));
}

// ---- Mapping in force ----

TEST_F(StoreTest, AMappingThatCannotBeReadLeavesTheBuiltInModelsAndSaysSo) {
  storetest::WriteFile(m_MappingPath, "<Mapping><Models>");
  OrvaneStaticVars::Init(nullptr);
  EXPECT_NE(std::string::npos, std::string(OrvaneStaticVars::GetLastError()).find("mapping"));
  EXPECT_TRUE(Contains(OrvaneGenericLog::GetDBWarnings(), "mapping"));
  StartMaterial("S355", "mechanical");
  for (const char* name : {"GenericInfo_Weld", "Mechanical_Weld", "Thermal_Weld", "Metallurgy_Weld",
                           "Tempering_Weld", "PhaseDetails", "ThermalPropertyModel"}) {
    EXPECT_NE(nullptr, OrvaneStaticVars::GetOrCreateMatModel(name, false)) << name;
  }
  OrvaneMLRecordDataset* name = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, "1");
  EXPECT_EQ(name, FindIn(OrvaneStaticVars::FindModelByID("Phase_details_model"), "Phase_name"));
}

TEST(ShippedMapping, GivesNewMaterialsTheUsualModels) {
  unsetenv("QUILLON_MAPPING_FILE");
  unsetenv("QUILLON_MAPPING_DIR");
  OrvaneStaticVars::Init(nullptr);
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  OrvaneStaticVars::SetActiveModel("mechanical");
  OrvaneStaticVars::GetOrCreateMaterial("S355");
  for (const char* name : {"GenericInfo_Weld", "Mechanical_Weld", "Thermal_Weld", "Metallurgy_Weld",
                           "Tempering_Weld", "PhaseDetails", "ThermalPropertyModel"}) {
    EXPECT_NE(nullptr, OrvaneStaticVars::GetOrCreateMatModel(name, false)) << name;
  }
  OrvaneStaticVars::Init(nullptr);
}

TEST_F(StoreTest, InitForgetsEverything) {
  StartMaterial("S355", "mechanical");
  OrvaneStaticVars::GetOrCreateMaterials("Steels");
  OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::AddLXLYLZDataset("LX", "5");
  OrvaneStaticVars::SetInstanceID("3");
  OrvaneStaticVars::Init("still no database");
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterial());
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterials());
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentDataset());
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
  EXPECT_TRUE(OrvaneStaticVars::GetMatModelList().empty());
  EXPECT_TRUE(OrvaneStaticVars::GetLXLYLZMap().empty());
  EXPECT_TRUE(OrvaneStaticVars::GetDatasetsPtr()->GetDataset().empty());
  EXPECT_STREQ("", OrvaneStaticVars::GetInstanceID());
  EXPECT_STREQ("", OrvaneStaticVars::GetActiveModel());
}

// ---- Solution object ----

TEST(SolutionObject, OneObjectPerSolutionName) {
  std::string text;
  Orvane* joint = Orvane::_ApplnGetOrvanePtr("Oriel Joint", text);
  ASSERT_NE(nullptr, joint);
  EXPECT_EQ(joint, Orvane::_ApplnGetOrvanePtr("Oriel Joint", text));
  EXPECT_NE(joint, Orvane::_ApplnGetOrvanePtr("Other", text));
  EXPECT_STREQ("Oriel Joint", joint->GetSolutionName());
  EXPECT_EQ(nullptr, Orvane::_ApplnGetOrvanePtr(nullptr, text));
}

TEST(SolutionObject, TheFlagWordIsTheFirstMemberAndCheckIOFlagMasksIt) {
  std::string text;
  Orvane* object = Orvane::_ApplnGetOrvanePtr("Flag test", text);
  EXPECT_EQ(0, object->CheckIOFlag(0x100000));
  object->SetIOFlag(0x100000 | 0x1000);
  EXPECT_EQ(0x100000, object->CheckIOFlag(0x100000));
  EXPECT_EQ(0x1000, object->CheckIOFlag(0x1000 | 0x400000));
  EXPECT_EQ(0, object->CheckIOFlag(0x40000000));
  EXPECT_EQ(0x101000, *reinterpret_cast<int64_t*>(object));
  object->SetIOFlag(0);
}

TEST(SolutionObject, TheConfigurationIsOneObject) {
  OrvaneConfig* config = Orvane::_ApplnGetOrvaneConfigPtr();
  ASSERT_NE(nullptr, config);
  EXPECT_EQ(config, Orvane::_ApplnCreateOrvaneConfigPtr());
  EXPECT_NE(nullptr, config->GetActiveSolution());
}

TEST(SolutionObject, TheActiveDatabaseIsKept) {
  std::string text;
  Orvane* object = Orvane::_ApplnGetOrvanePtr("DB test", text);
  object->SetActiveDB("materials.xml");
  EXPECT_STREQ("materials.xml", object->GetActiveDB());
}

TEST(SolutionObject, TheParameterModelAnswersNothingYet) {
  std::string text;
  Orvane* object = Orvane::_ApplnGetOrvanePtr("Oriel Joint", text);
  EXPECT_EQ(nullptr, object->GetParamList("Mechanical", nullptr));
  EXPECT_EQ(nullptr, object->Find("Density"));
  EXPECT_EQ(nullptr, object->FindByID("Density_weld", nullptr));
  EXPECT_EQ(0, object->SetActiveXMLNode("S355", "db", nullptr, 0, 0));
  EXPECT_EQ(nullptr, object->GetFreeDataset()->Find(1, nullptr, nullptr, nullptr));
}

// ---- Export side ----

TEST_F(StoreTest, TheExportSideAnswersNothingYet) {
  std::string keyword = "LABELS :";
  unsigned count = 4;
  const char* names[] = {"a"};
  const char* defaults[] = {""};
  char** values = nullptr;
  OrvaneStaticVars::NextCard(keyword, count, names, defaults, &values);
  EXPECT_EQ(0u, count);
  EXPECT_EQ(nullptr, values);
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetValidParameters("LABELS :"));
  EXPECT_TRUE(OrvaneStaticVars::GetOrvaneMLCardsetIDMap().empty());
  OrvaneStaticVars::SetActiveMatName("S355");
  EXPECT_STREQ("S355", OrvaneStaticVars::GetActiveMatName());
  EXPECT_TRUE(OrvaneStaticVars::InitExport(m_MappingPath.c_str()));
  EXPECT_FALSE(OrvaneStaticVars::InitExport("/no/such/mapping.xml"));
}

TEST_F(StoreTest, TheChoiceOfAParameterIsWrittenByItsCardCode) {
  OrvaneParameter parameter;
  parameter.m_ID = "Hardening_model";
  parameter.m_SelectedChoice = "Kinematic";
  EXPECT_STREQ("2", OrvaneStaticVars::GetChoiceFromOrvaneML(&parameter));
  parameter.m_SelectedChoice = "Mixed";
  EXPECT_STREQ("Mixed", OrvaneStaticVars::GetChoiceFromOrvaneML(&parameter));
  EXPECT_STREQ("", OrvaneStaticVars::GetChoiceFromOrvaneML(nullptr));
}

}  // namespace
