// The record tree: ownership, order of children, copies of texts, and the XML
// element each record becomes.

#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "store/database.h"
#include "store/orvaneml.h"

namespace {

static_assert(!std::is_copy_constructible_v<OrvaneMLRecordDataset>, "a copy would free what its source owns");
static_assert(!std::is_copy_assignable_v<OrvaneMLRecordMatModel>, "a copy would free what its source owns");
static_assert(std::is_base_of_v<OrvaneMLRecordObject, OrvaneMLRecordFloat>, "every record is a record object");
static_assert(std::has_virtual_destructor_v<OrvaneMLRecordObject>, "records are freed through the base");

TEST(Records, SetCopiesTheTextSoTheCallersBufferMayChange) {
  char buffer[16];
  std::strcpy(buffer, "Density");
  OrvaneMLRecordDataset dataset;
  dataset.SetIDref(buffer);
  std::strcpy(buffer, "changed");
  EXPECT_STREQ("Density", dataset.GetIDref());
}

TEST(Records, SetWithNullGivesAnEmptyText) {
  OrvaneMLRecordParameterFixed fixed;
  fixed.SetIDref("Selected_Phases");
  fixed.SetIDref(nullptr);
  fixed.SetValue(nullptr);
  EXPECT_STREQ("", fixed.GetIDref());
  EXPECT_STREQ("", fixed.GetValue());
}

TEST(Records, AddKeepsTheOrderOfTheCallsAndIgnoresNull) {
  OrvaneMLRecordValueList list;
  for (const char* text : {"3", "1", "2"}) {
    auto* value = new OrvaneMLRecordValue;
    value->SetValueAsString(text);
    list.AddValue(value);
  }
  list.AddValue(nullptr);
  ASSERT_EQ(3u, list.m_Values.size());
  EXPECT_STREQ("3", list.m_Values[0]->GetValueAsString());
  EXPECT_STREQ("1", list.m_Values[1]->GetValueAsString());
  EXPECT_STREQ("2", list.m_Values[2]->GetValueAsString());
}

TEST(Records, NumbersStayTextAsTheCardFileSpelledThem) {
  OrvaneMLRecordConstant constant;
  constant.SetValueAsString("1.50e3");
  EXPECT_STREQ("1.50e3", constant.GetValueAsString());
}

TEST(Records, AConstantHasNoValueUntilOneIsSetEvenAnEmptyOne) {
  OrvaneMLRecordConstant constant;
  EXPECT_FALSE(constant.HasValue());
  constant.SetValueAsString("");
  EXPECT_TRUE(constant.HasValue());
}

TEST(Records, ADatasetOwnsItsValuesAndLinks) {
  // Freed with the dataset; the sanitizer build reports a leak otherwise.
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->m_Float = new OrvaneMLRecordFloat;
  dataset->m_Float->AddConstant(new OrvaneMLRecordConstant);
  dataset->m_String = new OrvaneMLRecordString;
  dataset->m_FloatList = new OrvaneMLRecordFloatList;
  dataset->m_Integer = new OrvaneMLRecordInteger;
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("7");
  dataset->AddLink(link);
  ASSERT_EQ(1u, dataset->m_Links.size());
  EXPECT_STREQ("7", dataset->m_Links[0]->GetDatasetIDref());
  delete dataset;
}

TEST(Records, ADatasetHasOneOwnerAndASecondAddLeavesItWhereItIs) {
  OrvaneMLRecordMatModel first;
  OrvaneMLRecordMatModel second;
  auto* dataset = new OrvaneMLRecordDataset;
  EXPECT_FALSE(dataset->IsAttached());
  first.AddDataset(dataset);
  second.AddDataset(dataset);
  first.AddDataset(dataset);
  EXPECT_TRUE(dataset->IsAttached());
  EXPECT_EQ(1u, first.m_Datasets.size());
  EXPECT_TRUE(second.m_Datasets.empty());
}

TEST(Records, ADatasetListOwnsWhatItIsGivenInOrder) {
  OrvaneMLRecordDatasets datasets;
  auto* a = new OrvaneMLRecordDataset;
  auto* b = new OrvaneMLRecordDataset;
  datasets.AddDataset(a);
  datasets.AddDataset(b);
  datasets.AddDataset(nullptr);
  ASSERT_EQ(2u, datasets.GetDataset().size());
  EXPECT_EQ(a, datasets.GetDataset()[0]);
  EXPECT_EQ(b, datasets.GetDataset()[1]);
  EXPECT_TRUE(a->IsAttached());
}

TEST(Records, AnAxisKeepsOneValueListAndASecondOneGivesUpItsValues) {
  OrvaneMLRecordParameterAxis axis;
  auto* first = new OrvaneMLRecordValueList;
  first->AddValue(new OrvaneMLRecordValue);
  auto* second = new OrvaneMLRecordValueList;
  second->AddValue(new OrvaneMLRecordValue);
  second->m_Values[0]->SetValueAsString("20.");
  axis.AddValueList(first);
  axis.AddValueList(second);
  ASSERT_EQ(first, axis.m_ValueList);
  ASSERT_EQ(2u, axis.m_ValueList->m_Values.size());
  EXPECT_STREQ("20.", axis.m_ValueList->m_Values[1]->GetValueAsString());
}

TEST(Records, ACurveInfoReplacesTheOneBefore) {
  OrvaneMLRecordCurve curve;
  auto* first = new OrvaneMLRecordCurveInfo;
  auto* second = new OrvaneMLRecordCurveInfo;
  second->SetScaleXAsString("2.5");
  curve.SetCurveInfo(first);
  curve.SetCurveInfo(second);
  ASSERT_EQ(second, curve.m_CurveInfo);
  EXPECT_STREQ("2.5", curve.m_CurveInfo->GetScaleXAsString());
}

TEST(Records, AFloatKeepsLookupMetadataAndTakesLocalFunctionsOver) {
  OrvaneMLRecordFloat value;
  value.AddLookupMetadata(new OrvaneMLRecordLookupMetadata);
  std::vector<OrvaneMLRecordLocalFunction*> functions{new OrvaneMLRecordLocalFunction,
                                                      new OrvaneMLRecordLocalFunction};
  value.SetLocalFunction(functions);
  EXPECT_EQ(1u, value.m_LookupMetadata.size());
  EXPECT_EQ(2u, value.m_LocalFunctions.size());
  EXPECT_TRUE(functions.empty());
}

TEST(Records, ARecordThatKeepsNoLocalFunctionsStillTakesThemOver) {
  OrvaneMLRecordString text;
  OrvaneMLRecordObject& record = text;
  std::vector<OrvaneMLRecordLocalFunction*> functions{new OrvaneMLRecordLocalFunction};
  record.SetLocalFunction(functions);
  record.AddLookupMetadata(new OrvaneMLRecordLookupMetadata);
  EXPECT_TRUE(functions.empty());
}

TEST(Records, AModelMakesItsSubModelsRecordOnFirstUse) {
  OrvaneMLRecordMatModel model;
  EXPECT_EQ(nullptr, model.m_SubModels);
  OrvaneMLRecordSubModels* subModels = model.GetOrCreateSubModels();
  EXPECT_EQ(subModels, model.GetOrCreateSubModels());
  auto* child = new OrvaneMLRecordMatModel;
  child->SetIDref("Phase_details_model");
  child->SetInstanceID("2");
  subModels->m_Models.push_back(child);
  EXPECT_STREQ("2", model.m_SubModels->m_Models[0]->GetInstanceID());
}

TEST(Records, AMaterialAlwaysHasItsOwnDatasetList) {
  OrvaneMLRecordMaterial material("S355");
  ASSERT_NE(nullptr, material.m_Datasets);
  EXPECT_STREQ("S355", material.GetID());
  material.AddMetadata(new OrvaneMLRecordMetadata);
  material.m_Metadata[0]->SetName(material.GetID());
  material.m_Metadata[0]->SetOwnerName("Halvern");
  EXPECT_STREQ("Halvern", material.m_Metadata[0]->GetOwnerName());
}

TEST(Records, AFolderListsAMaterialOnce) {
  OrvaneMLRecordMaterial material("A");
  OrvaneMLRecordMaterials folder("Steels");
  folder.AddMaterial(&material);
  folder.AddMaterial(&material);
  EXPECT_EQ(1u, folder.m_Materials.size());
  EXPECT_TRUE(folder.Holds(&material));
  folder.RemoveMaterial(&material);
  EXPECT_FALSE(folder.Holds(&material));
}

// ---- The XML element of each record ----

class RecordXml : public ::testing::Test {
 protected:
  void SetUp() override { m_Document = xmlNewDoc(reinterpret_cast<const xmlChar*>("1.0")); }
  void TearDown() override { xmlFreeDoc(m_Document); }

  xmlNodePtr Build(const OrvaneMLRecordMaterial& material, const char* folder) {
    auto* node = static_cast<xmlNodePtr>(quillon::BuildMaterialElement(m_Document, material, folder));
    xmlDocSetRootElement(m_Document, node);
    return node;
  }

  static std::string Name(xmlNodePtr node) { return reinterpret_cast<const char*>(node->name); }
  static std::string Attribute(xmlNodePtr node, const char* name) {
    xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    std::string text = value != nullptr ? reinterpret_cast<const char*>(value) : "<none>";
    xmlFree(value);
    return text;
  }
  static std::string Content(xmlNodePtr node) {
    xmlChar* value = xmlNodeGetContent(node);
    std::string text = reinterpret_cast<const char*>(value);
    xmlFree(value);
    return text;
  }
  static xmlNodePtr Child(xmlNodePtr node, int index) {
    int seen = 0;
    for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
      if (child->type != XML_ELEMENT_NODE) continue;
      if (seen++ == index) return child;
    }
    return nullptr;
  }

  xmlDocPtr m_Document = nullptr;
};

TEST_F(RecordXml, AMaterialIsARecordWithItsDatasetsBeforeItsModels) {
  OrvaneMLRecordMaterial material("S355");
  material.AddMetadata(new OrvaneMLRecordMetadata);
  material.AddModel(new OrvaneMLRecordMatModel);
  material.m_Models[0]->SetIDref("Mechanical_Weld");
  material.m_Datasets->AddDataset(new OrvaneMLRecordDataset);
  xmlNodePtr record = Build(material, "Steels");
  EXPECT_EQ("Record", Name(record));
  EXPECT_EQ("S355", Attribute(record, "ID"));
  EXPECT_EQ("Steels", Attribute(record, "Folder"));
  EXPECT_EQ("Metadata", Name(Child(record, 0)));
  EXPECT_EQ("Datasets", Name(Child(record, 1)));
  EXPECT_EQ("Model", Name(Child(record, 2)));
  EXPECT_EQ("Mechanical_Weld", Attribute(Child(record, 2), "IDref"));
}

TEST_F(RecordXml, IdentifiersAreAttributesAndEmptyOnesAreLeftOut) {
  OrvaneMLRecordMaterial material("M");
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref("Thermal_strains");
  material.m_Datasets->AddDataset(dataset);
  auto* withTable = new OrvaneMLRecordDataset;
  withTable->SetIDref("Thermal_strains");
  withTable->SetDatasetID("12");
  material.m_Datasets->AddDataset(withTable);
  xmlNodePtr record = Build(material, nullptr);
  EXPECT_EQ("<none>", Attribute(record, "Folder"));
  xmlNodePtr datasets = Child(record, 0);
  EXPECT_EQ("Thermal_strains", Attribute(Child(datasets, 0), "IDref"));
  EXPECT_EQ("<none>", Attribute(Child(datasets, 0), "DatasetID"));
  EXPECT_EQ("12", Attribute(Child(datasets, 1), "DatasetID"));
}

TEST_F(RecordXml, ValuesAreElementTextAndAConditionHasAValueChild) {
  OrvaneMLRecordMaterial material("M");
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->m_String = new OrvaneMLRecordString;
  dataset->m_String->SetValue("one ;two ;");
  dataset->m_Integer = new OrvaneMLRecordInteger;
  dataset->m_Integer->SetValue(6);
  dataset->m_Float = new OrvaneMLRecordFloat;
  auto* constant = new OrvaneMLRecordConstant;
  constant->SetValueAsString("7800");
  auto* fixed = new OrvaneMLRecordParameterFixed;
  fixed->SetIDref("Selected_Phases");
  fixed->SetValue("Ferrite");
  constant->AddParameterFixed(fixed);
  dataset->m_Float->AddConstant(constant);
  material.m_Datasets->AddDataset(dataset);
  xmlNodePtr element = Child(Child(Build(material, nullptr), 0), 0);
  EXPECT_EQ("String", Name(Child(element, 0)));
  EXPECT_EQ("one ;two ;", Content(Child(element, 0)));
  EXPECT_EQ("Integer", Name(Child(element, 1)));
  EXPECT_EQ("6", Content(Child(element, 1)));
  xmlNodePtr constantNode = Child(Child(element, 2), 0);
  EXPECT_EQ("Constant", Name(constantNode));
  EXPECT_EQ("Value", Name(Child(constantNode, 0)));
  EXPECT_EQ("7800", Content(Child(constantNode, 0)));
  xmlNodePtr fixedNode = Child(constantNode, 1);
  EXPECT_EQ("ParameterFixed", Name(fixedNode));
  EXPECT_EQ("Selected_Phases", Attribute(fixedNode, "IDref"));
  EXPECT_EQ("Value", Name(Child(fixedNode, 0)));
  EXPECT_EQ("Ferrite", Content(Child(fixedNode, 0)));
}

TEST_F(RecordXml, ACurveHoldsItsInfoAxesAndConditionsInThatOrder) {
  OrvaneMLRecordMaterial material("M");
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->m_Float = new OrvaneMLRecordFloat;
  auto* curve = new OrvaneMLRecordCurve;
  curve->SetLabel("Curve12");
  curve->AddParameterFixed(new OrvaneMLRecordParameterFixed);
  auto* parameterAxis = new OrvaneMLRecordParameterAxis;
  parameterAxis->SetIDref("Temperature");
  parameterAxis->AddValueList(new OrvaneMLRecordValueList);
  curve->AddParameterAxis(parameterAxis);
  curve->AddDataAxis(new OrvaneMLRecordDataAxis);
  curve->SetCurveInfo(new OrvaneMLRecordCurveInfo);
  curve->m_CurveInfo->SetScaleXAsString("0.5");
  dataset->m_Float->AddCurve(curve);
  material.m_Datasets->AddDataset(dataset);
  xmlNodePtr curveNode = Child(Child(Child(Child(Build(material, nullptr), 0), 0), 0), 0);
  EXPECT_EQ("Curve12", Attribute(curveNode, "Label"));
  EXPECT_EQ("CurveInfo", Name(Child(curveNode, 0)));
  EXPECT_EQ("0.5", Attribute(Child(curveNode, 0), "ScaleX"));
  EXPECT_EQ("DataAxis", Name(Child(curveNode, 1)));
  EXPECT_EQ("ParameterAxis", Name(Child(curveNode, 2)));
  EXPECT_EQ("Temperature", Attribute(Child(curveNode, 2), "IDref"));
  EXPECT_EQ("ValueList", Name(Child(Child(curveNode, 2), 0)));
  EXPECT_EQ("ParameterFixed", Name(Child(curveNode, 3)));
}

TEST_F(RecordXml, SubModelsAreModelsInsideASubModelsElement) {
  OrvaneMLRecordMaterial material("M");
  auto* generic = new OrvaneMLRecordMatModel;
  generic->SetIDref("GenericInfo_Weld");
  auto* phase = new OrvaneMLRecordMatModel;
  phase->SetIDref("Phase_details_model");
  phase->SetInstanceID("3");
  auto* name = new OrvaneMLRecordDataset;
  name->SetIDref("Phase_name");
  phase->AddDataset(name);
  generic->GetOrCreateSubModels()->m_Models.push_back(phase);
  material.AddModel(generic);
  xmlNodePtr model = Child(Build(material, nullptr), 1);
  xmlNodePtr subModels = Child(model, 0);
  EXPECT_EQ("SubModels", Name(subModels));
  xmlNodePtr phaseNode = Child(subModels, 0);
  EXPECT_EQ("Model", Name(phaseNode));
  EXPECT_EQ("3", Attribute(phaseNode, "InstanceID"));
  EXPECT_EQ("Dataset", Name(Child(phaseNode, 0)));
}

TEST_F(RecordXml, AMaterialReadBackFromItsElementIsTheSame) {
  OrvaneMLRecordMaterial material("M");
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref("KSX");
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref("12");
  dataset->AddLink(link);
  dataset->AddParameterFixedGroup(new OrvaneMLRecordParameterFixedGroup);
  material.m_Datasets->AddDataset(dataset);
  xmlNodePtr node = Build(material, nullptr);
  std::string error;
  OrvaneMLRecordMaterial* read = quillon::ReadMaterialElement(node, error);
  ASSERT_NE(nullptr, read);
  ASSERT_EQ(1u, read->m_Datasets->m_Datasets.size());
  OrvaneMLRecordDataset* back = read->m_Datasets->m_Datasets[0];
  EXPECT_STREQ("KSX", back->GetIDref());
  ASSERT_EQ(1u, back->m_Links.size());
  EXPECT_STREQ("12", back->m_Links[0]->GetDatasetIDref());
  EXPECT_EQ(1u, back->m_ParameterFixedGroups.size());
  delete read;
}

TEST_F(RecordXml, ARecordWithoutIdentifierIsRefused) {
  xmlNodePtr node = xmlNewDocNode(m_Document, nullptr, reinterpret_cast<const xmlChar*>("Record"), nullptr);
  xmlDocSetRootElement(m_Document, node);
  std::string error;
  EXPECT_EQ(nullptr, quillon::ReadMaterialElement(node, error));
  EXPECT_NE(std::string::npos, error.find("without ID"));
}

}  // namespace
