// The database file: the document the store hands out, saving and loading,
// what a file that can't be loaded does, and the schema.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <libxml/tree.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "import/cardsetimport.h"
#include "store/dombridge.h"
#include "store/orvane.h"
#include "store/orvaneml.h"
#include "store_test_support.h"

namespace {

using storetest::FileExists;
using storetest::ReadFile;
using storetest::ScratchPath;
using storetest::StoreTest;
using storetest::WriteFile;

const std::string kSchema = std::string(QUILLON_SOURCE_DIR) + "/data/database.rng";

std::string Attribute(void* node, const char* name) {
  char* value = DomGetAttVal(node, name);
  std::string text = value != nullptr ? value : "<none>";
  DomStringRelease(value);
  return text;
}

// Null when the document is valid, else the schema's first complaint.
std::string SchemaErrors(xmlDocPtr document) {
  xmlRelaxNGParserCtxtPtr parser = xmlRelaxNGNewParserCtxt(kSchema.c_str());
  xmlRelaxNGPtr schema = xmlRelaxNGParse(parser);
  xmlRelaxNGFreeParserCtxt(parser);
  if (schema == nullptr) return "the schema does not parse";
  xmlRelaxNGValidCtxtPtr validator = xmlRelaxNGNewValidCtxt(schema);
  // The tests look at the result; the validator's own report would only be noise.
  xmlRelaxNGSetValidStructuredErrors(validator, [](void*, xmlErrorPtr) {}, nullptr);
  const int result = xmlRelaxNGValidateDoc(validator, document);
  xmlRelaxNGFreeValidCtxt(validator);
  xmlRelaxNGFree(schema);
  return result == 0 ? std::string() : "invalid (" + std::to_string(result) + ")";
}

std::string FileSchemaErrors(const std::string& path) {
  xmlDocPtr document = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET);
  if (document == nullptr) return "not XML";
  std::string errors = SchemaErrors(document);
  xmlFreeDoc(document);
  return errors;
}

OrvaneMLRecordParameterFixed* Condition(const char* idref, const char* value) {
  auto* fixed = new OrvaneMLRecordParameterFixed;
  fixed->SetIDref(idref);
  fixed->SetValue(value);
  return fixed;
}

OrvaneMLRecordValueList* Values(std::initializer_list<const char*> texts) {
  auto* list = new OrvaneMLRecordValueList;
  for (const char* text : texts) {
    auto* value = new OrvaneMLRecordValue;
    value->SetValueAsString(text);
    list->AddValue(value);
  }
  return list;
}

class Database : public StoreTest {
 protected:
  void TearDown() override {
    for (const std::string& path : m_Scratch) std::remove(path.c_str());
    StoreTest::TearDown();
  }

  std::string Scratch(const std::string& name) {
    m_Scratch.push_back(ScratchPath(name));
    return m_Scratch.back();
  }

  // Every kind of record, made through the facade as an import makes it.
  void FillStore();

  std::vector<std::string> m_Scratch;
};

void Database::FillStore() {
  // A material that only a list line named: it stays in no folder.
  OrvaneStaticVars::GetOrCreateMaterial("Listed_only");
  StartMaterial("Steel_S355", "mechanical");
  OrvaneStaticVars::GetOrCreateDataset("Material_type", "IDref", true, "W", nullptr);
  OrvaneStaticVars::GetOrCreateDataset("CategoryComments", "IDref", true, "one \r\ncaf\xE9 \x01", nullptr);
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetCurrentMaterial();
  material->AddMetadata(new OrvaneMLRecordMetadata);
  material->m_Metadata[0]->SetName(material->GetID());
  material->m_Metadata[0]->SetOwnerName("Halvern");
  OrvaneStaticVars::GetOrCreateMaterials("Structural");
  OrvaneStaticVars::GetOrCreateMaterials("Weldable");

  OrvaneMLRecordMatModel* generic = OrvaneStaticVars::GetOrCreateMatModel("GenericInfo_Weld", false);
  for (const char* instance : {"10", "2"}) {
    auto* phase = new OrvaneMLRecordMatModel;
    phase->SetIDref("Phase_details_model");
    phase->SetInstanceID(instance);
    generic->GetOrCreateSubModels()->m_Models.push_back(phase);
    OrvaneStaticVars::GetMatModelList().push_back(phase);
  }
  OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, "Bainite", "10");

  OrvaneMLRecordDataset* young = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType("210000.", young, 0);
  young->m_Float->m_Constants[0]->AddParameterFixed(Condition("Selected_Phases", "Ferrite"));
  OrvaneStaticVars::CreateDatasetBasedOnType(
      "2", OrvaneStaticVars::GetOrCreateDataset("MODEL", "IDref", false, nullptr, nullptr), 0);
  OrvaneStaticVars::CreateDatasetBasedOnType("6",
                                             OrvaneStaticVars::GetOrCreateDataset("PHAS", "IDref", false, nullptr, nullptr), 0);

  OrvaneMLRecordDataset* linked = OrvaneStaticVars::GetOrCreateLinkDataset("TXT", "12");
  OrvaneStaticVars::AddDataset(linked, "12");
  auto* table = new OrvaneMLRecordDataset;
  table->SetIDref("Label_text");
  table->SetDatasetID("12");
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(table);
  table->m_Float = new OrvaneMLRecordFloat;
  auto* curve = new OrvaneMLRecordCurve;
  curve->SetLabel("Curve12");
  curve->SetCurveInfo(new OrvaneMLRecordCurveInfo);
  curve->m_CurveInfo->SetScaleXAsString("1.0");
  auto* data = new OrvaneMLRecordDataAxis;
  data->AddValueList(Values({"1.5e3", "2.", "-3"}));
  curve->AddDataAxis(data);
  auto* parameter = new OrvaneMLRecordParameterAxis;
  parameter->SetIDref("Temperature");
  parameter->AddValueList(Values({"20.", "100.", "1*-5"}));
  curve->AddParameterAxis(parameter);
  curve->AddParameterFixed(Condition("Selected_Phases", "Ferrite"));
  curve->AddParameterFixed(Condition("StrainType", "LX,LY"));
  table->m_Float->AddCurve(curve);
  table->m_Float->AddConstant(new OrvaneMLRecordConstant);

  OrvaneMLRecordDataset* coefficients = OrvaneStaticVars::GetOrCreateDataset("13", "DatasetID", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType("0.5", coefficients, 1);
  coefficients->m_FloatList->AddParameterFixed(Condition("DiffCoeffs", "Coeff1"));
  coefficients->m_FloatList->AddParameterFixedGroup(new OrvaneMLRecordParameterFixedGroup);
  coefficients->m_FloatList->m_ParameterFixedGroups[0]->AddParameterFixed(Condition("Element_name", "Carbon"));

  OrvaneMLRecordDataset* function = OrvaneStaticVars::GetOrCreateDataset("50000", "DatasetID", false, nullptr, nullptr);
  function->m_String = new OrvaneMLRecordString;
  function->m_String->SetValue("FORTRAN;Y = A * X;END");

  StartMaterial("Alloy <718> & \"Co\"", "thermometal_cp");
  OrvaneStaticVars::GetOrCreateMaterials("Nickel");
  OrvaneStaticVars::CreateDatasetBasedOnType("8190",
                                             OrvaneStaticVars::GetOrCreateDataset("RHO", "IDref", false, nullptr, nullptr), 0);
}

// ---- The document handed out ----

TEST_F(Database, TheDocumentHoldsFoldersThenOneRecordPerMaterial) {
  FillStore();
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  void* root = DomGetRootElement(document);
  ASSERT_NE(nullptr, root);
  EXPECT_STREQ("MaterialDatabase", DomGetNodeName(root));
  EXPECT_EQ("1", Attribute(root, "Version"));
  XMLObject folders(root, "Folder");
  ASSERT_EQ(3, folders.GetCount());
  EXPECT_EQ("Structural", Attribute(folders.GetNode(0), "Name"));
  XMLObject records(root, "Record");
  ASSERT_EQ(3, records.GetCount());
  EXPECT_EQ("Listed_only", Attribute(records.GetNode(0), "ID"));
  EXPECT_EQ("<none>", Attribute(records.GetNode(0), "Folder"));
  EXPECT_EQ("Steel_S355", Attribute(records.GetNode(1), "ID"));
  EXPECT_EQ("Weldable", Attribute(records.GetNode(1), "Folder"));
  EXPECT_EQ("Alloy <718> & \"Co\"", Attribute(records.GetNode(2), "ID"));
  EXPECT_EQ("Nickel", Attribute(records.GetNode(2), "Folder"));
}

TEST_F(Database, TheFirstDatasetsBelowARecordAreTheRecordsOwn) {
  FillStore();
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  void* record = XMLObject(DomGetRootElement(document), "Record").GetNode(1);
  XMLObject datasets(record, "Datasets");
  ASSERT_GE(datasets.GetCount(), 1);
  EXPECT_EQ(record, DomGetParentNode(datasets.GetNode(0)));
  XMLObject tables(datasets.GetNode(0), "Dataset");
  ASSERT_EQ(3, tables.GetCount());
  EXPECT_EQ("Label_text", Attribute(tables.GetNode(0), "IDref"));
  EXPECT_EQ("12", Attribute(tables.GetNode(0), "DatasetID"));
  EXPECT_EQ(1, XMLObject(tables.GetNode(0), "DataAxis").GetCount());
  EXPECT_EQ("UnreferencedTable", Attribute(tables.GetNode(1), "IDref"));
}

TEST_F(Database, PhaseModelsAreModelsOfTheRecordWithTheirInstanceIds) {
  FillStore();
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  void* record = XMLObject(DomGetRootElement(document), "Record").GetNode(1);
  XMLObject models(record, "Model");
  std::vector<std::string> phases;
  for (int i = 0; i < models.GetCount(); ++i) {
    if (Attribute(models.GetNode(i), "IDref") == "Phase_details_model") {
      phases.push_back(Attribute(models.GetNode(i), "InstanceID"));
    }
  }
  EXPECT_EQ((std::vector<std::string>{"10", "2"}), phases);
}

TEST_F(Database, AConditionCarriesItsValueInAValueChild) {
  FillStore();
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  void* record = XMLObject(DomGetRootElement(document), "Record").GetNode(1);
  void* table = XMLObject(XMLObject(record, "Datasets").GetNode(0), "Dataset").GetNode(0);
  XMLObject fixed(table, "ParameterFixed");
  ASSERT_EQ(2, fixed.GetCount());
  EXPECT_EQ("StrainType", Attribute(fixed.GetNode(1), "IDref"));
  char* value = DomGetTextNodeValue(XMLObject(fixed.GetNode(1), "Value").GetNode(0));
  EXPECT_STREQ("LX,LY", value);
  DomStringRelease(value);
}

TEST_F(Database, UnchangedRecordsGiveTheSameDocumentWithItsEdits) {
  FillStore();
  void* first = nullptr;
  OrvaneStaticVars::GetXMLDocument(&first);
  void* root = DomGetRootElement(first);
  DomAppendChild(first, root, DomCreateNewElement(first, "Edited"));
  void* second = nullptr;
  OrvaneStaticVars::GetXMLDocument(&second);
  EXPECT_EQ(first, second);
  EXPECT_EQ(1, XMLObject(DomGetRootElement(second), "Edited").GetCount());
}

TEST_F(Database, ChangedRecordsGiveAFreshDocument) {
  FillStore();
  void* first = nullptr;
  OrvaneStaticVars::GetXMLDocument(&first);
  OrvaneStaticVars::GetOrCreateMaterial("Added_later");
  void* second = nullptr;
  OrvaneStaticVars::GetXMLDocument(&second);
  XMLObject records(DomGetRootElement(second), "Record");
  ASSERT_EQ(4, records.GetCount());
  EXPECT_EQ("Added_later", Attribute(records.GetNode(3), "ID"));
}

TEST_F(Database, AChangeOfOneAttributeValueGivesAFreshDocument) {
  FillStore();
  void* first = nullptr;
  OrvaneStaticVars::GetXMLDocument(&first);
  OrvaneMLRecordMaterial* material = nullptr;
  for (OrvaneMLRecordMaterial* candidate : OrvaneStaticVars::GetMaterials())
    if (candidate != nullptr && std::string(candidate->GetID()) == "Steel_S355") material = candidate;
  ASSERT_NE(nullptr, material);
  ASSERT_FALSE(material->m_Metadata.empty());
  // Same records, same length of text: only the bytes of one attribute differ.
  material->m_Metadata[0]->SetOwnerName("Halverm");
  void* second = nullptr;
  OrvaneStaticVars::GetXMLDocument(&second);
  ASSERT_NE(first, second);
  XMLObject metadata(DomGetRootElement(second), "Metadata");
  ASSERT_EQ(1, metadata.GetCount());
  EXPECT_EQ("Halverm", Attribute(metadata.GetNode(0), "OwnerName"));
  // And asked again with nothing changed, the same document comes back.
  void* third = nullptr;
  OrvaneStaticVars::GetXMLDocument(&third);
  EXPECT_EQ(second, third);
}

TEST_F(Database, NoDocumentIsWrittenThroughANullPointer) {
  OrvaneStaticVars::GetXMLDocument(nullptr);
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  ASSERT_NE(nullptr, document);
  EXPECT_EQ(0, XMLObject(DomGetRootElement(document), "Record").GetCount());
}

// ---- Save and load ----

TEST_F(Database, SavedLoadedAndSavedAgainTheFileIsByteIdentical) {
  FillStore();
  const std::string first = Scratch("first.xml");
  const std::string second = Scratch("second.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(first.c_str()));
  OrvaneStaticVars::Init(first.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  EXPECT_STREQ(first.c_str(), OrvaneStaticVars::GetLoadedDatabasePath());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(second.c_str()));
  EXPECT_EQ(ReadFile(first), ReadFile(second));
  EXPECT_GT(ReadFile(first).size(), 1000u);
}

TEST_F(Database, TheDocumentSavedByTheHostLoadsAndSavesTheSame) {
  FillStore();
  const std::string first = Scratch("host.xml");
  const std::string second = Scratch("again.xml");
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  ASSERT_NE(0, DomSaveDocument(document, first.c_str()));
  OrvaneStaticVars::Init(first.c_str());
  void* reloaded = nullptr;
  OrvaneStaticVars::GetXMLDocument(&reloaded);
  ASSERT_NE(0, DomSaveDocument(reloaded, second.c_str()));
  EXPECT_EQ(ReadFile(first), ReadFile(second));
}

TEST_F(Database, SavedFilesValidateAgainstTheSchema) {
  FillStore();
  const std::string first = Scratch("valid1.xml");
  const std::string second = Scratch("valid2.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(first.c_str()));
  OrvaneStaticVars::Init(first.c_str());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(second.c_str()));
  EXPECT_EQ("", FileSchemaErrors(first));
  EXPECT_EQ("", FileSchemaErrors(second));
}

TEST_F(Database, TheSchemaRefusesARecordWithoutIdentifier) {
  const std::string path = Scratch("invalid.xml");
  WriteFile(path, "<MaterialDatabase><Record/></MaterialDatabase>");
  EXPECT_NE("", FileSchemaErrors(path));
}

TEST_F(Database, LoadedRecordsHoldTheSavedValues) {
  FillStore();
  const std::string path = Scratch("values.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  OrvaneStaticVars::Init(path.c_str());
  OrvaneStaticVars::SetActiveModel("mechanical");
  OrvaneMLRecordMaterial* steel = OrvaneStaticVars::GetOrCreateMaterial("Steel_S355");
  OrvaneMLRecordDataset* young = OrvaneStaticVars::GetOrCreateDataset("E", "IDref", false, nullptr, nullptr);
  ASSERT_NE(nullptr, young);
  ASSERT_NE(nullptr, young->m_Float);
  EXPECT_STREQ("210000.", young->m_Float->m_Constants[0]->GetValueAsString());
  ASSERT_EQ(1u, young->m_Float->m_Constants[0]->m_ParameterFixed.size());
  OrvaneMLRecordDataset* table = steel->m_Datasets->m_Datasets[0];
  OrvaneMLRecordCurve* curve = table->m_Float->m_Curves[0];
  EXPECT_STREQ("Curve12", curve->GetLabel());
  EXPECT_STREQ("1*-5", curve->m_ParameterAxes[0]->m_ValueList->m_Values[2]->GetValueAsString());
  EXPECT_FALSE(table->m_Float->m_Constants[0]->HasValue());
  OrvaneMLRecordDataset* comments = OrvaneStaticVars::GetOrCreateMatModel("Mechanical_Weld", false)->m_Datasets[0];
  ASSERT_NE(nullptr, comments->m_String);
  EXPECT_EQ(std::string("one \r\ncaf\xC3\xA9 \xEF\xBF\xBD"), comments->m_String->GetValue());
}

TEST_F(Database, InitWithANameThatIsNoFileStartsEmpty) {
  OrvaneStaticVars::Init(Scratch("missing.xml").c_str());
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
  EXPECT_STREQ("", OrvaneStaticVars::GetLastError());
  EXPECT_STREQ("", OrvaneStaticVars::GetLoadedDatabasePath());
}

TEST_F(Database, InitOnAnExistingFileThenImportingAddsToIt) {
  FillStore();
  const std::string path = Scratch("grow.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  OrvaneStaticVars::Init(path.c_str());
  ASSERT_EQ(3u, OrvaneStaticVars::GetMaterials().size());
  OrvaneMLRecordMaterial* steel = OrvaneStaticVars::GetMaterials()[1];
  EXPECT_EQ(steel, OrvaneStaticVars::GetOrCreateMaterial("Steel_S355"));
  EXPECT_EQ(steel, OrvaneStaticVars::GetOrCreateMaterial("Steel_S355"));
  OrvaneMLRecordMaterials* weldable = OrvaneStaticVars::GetFolderOfMaterial(steel);
  ASSERT_NE(nullptr, weldable);
  EXPECT_EQ(weldable, OrvaneStaticVars::GetOrCreateMaterials("Weldable"));
  OrvaneStaticVars::GetOrCreateMaterial("New_material");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  OrvaneStaticVars::Init(path.c_str());
  ASSERT_EQ(4u, OrvaneStaticVars::GetMaterials().size());
  EXPECT_STREQ("Steel_S355", OrvaneStaticVars::GetMaterials()[1]->GetID());
  EXPECT_STREQ("New_material", OrvaneStaticVars::GetMaterials()[3]->GetID());
}

TEST_F(Database, AMalformedFileStartsEmptySaysWhyAndIsNotSavedOver) {
  const std::string path = Scratch("broken.xml");
  const std::string text = "<MaterialDatabase><Record ID=\"A\"></MaterialDatabase>";
  WriteFile(path, text);
  OrvaneStaticVars::Init(path.c_str());
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
  const std::string error = OrvaneStaticVars::GetLastError();
  EXPECT_NE(std::string::npos, error.find(path));
  EXPECT_NE(std::string::npos, error.find("line 1"));
  OrvaneStaticVars::GetOrCreateMaterial("Imported");
  EXPECT_FALSE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  EXPECT_EQ(text, ReadFile(path));
  const std::string elsewhere = Scratch("rescued.xml");
  EXPECT_TRUE(OrvaneStaticVars::SaveDatabase(elsewhere.c_str()));
  EXPECT_NE(std::string::npos, ReadFile(elsewhere).find("Imported"));
}

TEST_F(Database, AFileOfAnotherKindIsNotLoaded) {
  const std::string path = Scratch("other.xml");
  for (const char* text : {"<Mapping/>", "<MaterialDatabase Version=\"9\"/>",
                           "<MaterialDatabase><Record ID=\"A\"/><Record ID=\"A\"/></MaterialDatabase>",
                           "<MaterialDatabase><Record/></MaterialDatabase>",
                           "<MaterialDatabase><Folder/></MaterialDatabase>",
                           "<!DOCTYPE MaterialDatabase [<!ENTITY e \"x\">]><MaterialDatabase/>"}) {
    WriteFile(path, text);
    OrvaneStaticVars::Init(path.c_str());
    EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty()) << text;
    EXPECT_STRNE("", OrvaneStaticVars::GetLastError()) << text;
  }
}

TEST_F(Database, AnEmptyFileIsAnEmptyStoreThatMayBeWritten) {
  const std::string path = Scratch("empty.xml");
  WriteFile(path, "");
  OrvaneStaticVars::Init(path.c_str());
  EXPECT_STREQ("", OrvaneStaticVars::GetLastError());
  OrvaneStaticVars::GetOrCreateMaterial("First");
  EXPECT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  EXPECT_NE(std::string::npos, ReadFile(path).find("First"));
}

TEST_F(Database, SavingNeedsAPath) {
  EXPECT_FALSE(OrvaneStaticVars::SaveDatabase(nullptr));
  EXPECT_FALSE(OrvaneStaticVars::SaveDatabase(""));
  EXPECT_FALSE(OrvaneStaticVars::SaveDatabase("/no/such/folder/db.xml"));
}

TEST_F(Database, GroupsOfConditionsWrittenIntoTheDocumentAreKept) {
  FillStore();
  void* document = nullptr;
  OrvaneStaticVars::GetXMLDocument(&document);
  // As the phase post-processing does: conditions moved into a group.
  void* record = XMLObject(DomGetRootElement(document), "Record").GetNode(1);
  void* table = XMLObject(XMLObject(record, "Datasets").GetNode(0), "Dataset").GetNode(0);
  XMLObject fixed(table, "ParameterFixed");
  void* curve = DomGetParentNode(fixed.GetNode(0));
  void* group = DomCreateNewElement(document, "ParameterFixedGroup");
  DomAppendChild(document, curve, group);
  for (int i = 0; i < fixed.GetCount(); ++i) {
    DomDeleteElement(fixed.GetNode(i));
    DomAppendChild(document, group, fixed.GetNode(i));
  }
  DomAppendChild(document, table, DomCreateNewElement(document, "ParameterFixedGroup"));
  const std::string edited = Scratch("edited.xml");
  const std::string saved = Scratch("saved.xml");
  ASSERT_NE(0, DomSaveDocument(document, edited.c_str()));
  EXPECT_EQ("", FileSchemaErrors(edited));
  OrvaneStaticVars::Init(edited.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  OrvaneMLRecordDataset* loaded = OrvaneStaticVars::GetMaterials()[1]->m_Datasets->m_Datasets[0];
  OrvaneMLRecordCurve* loadedCurve = loaded->m_Float->m_Curves[0];
  EXPECT_TRUE(loadedCurve->m_ParameterFixed.empty());
  ASSERT_EQ(1u, loadedCurve->m_ParameterFixedGroups.size());
  EXPECT_EQ(2u, loadedCurve->m_ParameterFixedGroups[0]->m_ParameterFixed.size());
  EXPECT_EQ(1u, loaded->m_ParameterFixedGroups.size());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(saved.c_str()));
  EXPECT_EQ(ReadFile(edited), ReadFile(saved));
}

TEST_F(Database, ElementsTheFormatDoesNotKnowAreWrittenBack) {
  const std::string path = Scratch("foreign.xml");
  const std::string saved = Scratch("foreign_saved.xml");
  WriteFile(path,
            "<MaterialDatabase Version=\"1\">\n"
            "  <Record ID=\"A\">\n"
            "    <Datasets>\n"
            "      <Dataset IDref=\"X\"><Note kind=\"a\">kept <b>as is</b></Note></Dataset>\n"
            "    </Datasets>\n"
            "  </Record>\n"
            "  <Extension/>\n"
            "</MaterialDatabase>\n");
  OrvaneStaticVars::Init(path.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(saved.c_str()));
  const std::string text = ReadFile(saved);
  EXPECT_NE(std::string::npos, text.find("<Note kind=\"a\">kept <b>as is</b></Note>"));
  EXPECT_NE(std::string::npos, text.find("<Extension/>"));
}

TEST_F(Database, BlanksAndLineEndsOfValuesSurviveARoundTrip) {
  StartMaterial("S355", "mechanical");
  const char* texts[] = {" ", "\n  indented\n", "\ttab\r\n", "  "};
  for (const char* text : texts) {
    OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset("TXT", "IDref", true, nullptr, text);
    dataset->m_String = new OrvaneMLRecordString;
    dataset->m_String->SetValue(text);
  }
  const std::string first = Scratch("blanks.xml");
  const std::string second = Scratch("blanks_again.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(first.c_str()));
  OrvaneStaticVars::Init(first.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  OrvaneStaticVars::SetActiveModel("mechanical");
  OrvaneStaticVars::GetOrCreateMaterial("S355");
  const std::vector<OrvaneMLRecordDataset*>& datasets = OrvaneStaticVars::FindModelByID("Mechanical_Weld")->m_Datasets;
  ASSERT_EQ(4u, datasets.size());
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_STREQ(texts[i], datasets[i]->m_String->GetValue()) << i;
    EXPECT_STREQ(texts[i], datasets[i]->GetDatasetID()) << i;
  }
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(second.c_str()));
  EXPECT_EQ(ReadFile(first), ReadFile(second));
}

TEST_F(Database, TextThatIsNoUtf8IsSavedAsLatin1AndReadsBack) {
  StartMaterial("Caf\xE9", "mechanical");
  const std::string path = Scratch("latin1.xml");
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str()));
  EXPECT_NE(std::string::npos, ReadFile(path).find("Caf\xC3\xA9"));
  OrvaneStaticVars::Init(path.c_str());
  ASSERT_EQ(1u, OrvaneStaticVars::GetMaterials().size());
  EXPECT_STREQ("Caf\xC3\xA9", OrvaneStaticVars::GetMaterials()[0]->GetID());
}
// ---- Imports of the sample card files ----

// Imports run under the mapping shipped with the library, as a host's would.
class CorpusImport : public Database {
 protected:
  void SetUp() override {
    Database::SetUp();
    unsetenv("QUILLON_MAPPING_FILE");
  }
};

class ImportedCorpus : public CorpusImport, public ::testing::WithParamInterface<const char*> {};

TEST_P(ImportedCorpus, SavesValidatesLoadsAndSavesTheSameBytes) {
  const std::string card = std::string(QUILLON_CORPUS_DIR) + "/" + GetParam();
  ASSERT_TRUE(FileExists(card)) << card;
  const std::string imported = Scratch("imported.xml");
  const std::string again = Scratch("imported_again.xml");
  {
    CardsetImport driver(card.c_str(), "corpus test store");
    void* document = nullptr;
    std::string message;
    driver.ImportMaterialList(&document, message, false);
    ASSERT_NE(nullptr, document) << message;
    EXPECT_GE(XMLObject(DomGetRootElement(document), "Record").GetCount(), 1);
    ASSERT_NE(0, DomSaveDocument(document, imported.c_str()));
  }
  EXPECT_EQ("", FileSchemaErrors(imported));
  OrvaneStaticVars::Init(imported.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(again.c_str()));
  EXPECT_EQ(ReadFile(imported), ReadFile(again));
}

INSTANTIATE_TEST_SUITE_P(SampleFiles, ImportedCorpus,
                         ::testing::Values("S355J2G3.mat", "16MnCr5_thermometal.mat", "case_hardening_steels.mat",
                                           "AlMg4.5Mn.mat", "NiCr19Fe19Nb5Mo3.mat", "S460M_DE.mat", "METALLURGY.mat",
                                           "42CrMo4_tempering.mat", "stainless_steels.mat"));

TEST_F(CorpusImport, AMetallurgyFileIsFiledUnderWeldAsOneMaterial) {
  const std::string card = std::string(QUILLON_CORPUS_DIR) + "/METALLURGY.mat";
  CardsetImport driver(card.c_str(), "corpus test store");
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  XMLObject records(DomGetRootElement(document), "Record");
  ASSERT_EQ(1, records.GetCount());
  EXPECT_EQ("MetallurgyMat", Attribute(records.GetNode(0), "ID"));
  EXPECT_EQ("Weld", Attribute(records.GetNode(0), "Folder"));
}

TEST_F(CorpusImport, AMaterialWithoutClassIsFiledUnsortedAndTheNextClassWins) {
  const std::string card = std::string(QUILLON_CORPUS_DIR) + "/stainless_steels.mat";
  CardsetImport driver(card.c_str(), "corpus test store");
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  XMLObject records(DomGetRootElement(document), "Record");
  ASSERT_EQ(3, records.GetCount());
  EXPECT_EQ("UnSorted", Attribute(records.GetNode(0), "Folder"));
  EXPECT_NE("UnSorted", Attribute(records.GetNode(1), "Folder"));
  EXPECT_NE("<none>", Attribute(records.GetNode(2), "Folder"));
}

}  // namespace
