// The rework of the finished document at the end of an import: the order of
// the phase models, the merge of a table's curve and constant datasets, and
// the grouping of thermal strain conditions.

#include <gtest/gtest.h>
#include "xpath_test_support.h"
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "store/dombridge.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

std::string ScratchPath(const std::string& name) {
  const char* base = std::getenv("TMPDIR");
  return std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/quillon_phasedetails_" +
         std::to_string(getpid()) + "_" + name;
}

// A document parsed from compact text, freed through the bridge since the
// rework leaves detached nodes in it.
class Document {
 public:
  explicit Document(const std::string& text)
      : m_Doc(xmlReadMemory(text.data(), static_cast<int>(text.size()), "test.xml", nullptr,
                            XML_PARSE_NONET | XML_PARSE_NOBLANKS)) {}
  ~Document() { DomFreeDocument(m_Doc); }
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  xmlDocPtr get() const { return m_Doc; }

  std::vector<xmlNodePtr> Select(const std::string& path) const { return xpathtest::SelectNodes(m_Doc, path); }

  xmlNodePtr One(const std::string& path) const {
    std::vector<xmlNodePtr> nodes = Select(path);
    EXPECT_EQ(1u, nodes.size()) << path;
    return nodes.empty() ? nullptr : nodes.front();
  }

  std::string Dump(const std::string& path) const { return DumpNode(One(path)); }

  std::string DumpNode(xmlNodePtr node) const {
    if (node == nullptr) return "<no node>";
    xmlBufferPtr buffer = xmlBufferCreate();
    xmlNodeDump(buffer, m_Doc, node, 0, 0);
    std::string text(reinterpret_cast<const char*>(xmlBufferContent(buffer)));
    xmlBufferFree(buffer);
    return text;
  }

  std::string All() const { return DumpNode(xmlDocGetRootElement(m_Doc)); }

 private:
  xmlDocPtr m_Doc;
};

// Empty when `document` is valid against the store's schema, else the
// validator's messages.
std::string SchemaErrors(xmlDocPtr document) {
  const std::string schemaPath = std::string(QUILLON_SOURCE_DIR) + "/data/database.rng";
  xmlRelaxNGParserCtxtPtr parser = xmlRelaxNGNewParserCtxt(schemaPath.c_str());
  xmlRelaxNGPtr schema = xmlRelaxNGParse(parser);
  xmlRelaxNGFreeParserCtxt(parser);
  if (schema == nullptr) return "the schema does not parse";
  std::string errors;
  xmlRelaxNGValidCtxtPtr validator = xmlRelaxNGNewValidCtxt(schema);
  xmlRelaxNGSetValidStructuredErrors(
      validator,
      [](void* sink, xmlErrorPtr error) {
        if (error != nullptr && error->message != nullptr) *static_cast<std::string*>(sink) += error->message;
      },
      &errors);
  const int result = xmlRelaxNGValidateDoc(validator, document);
  xmlRelaxNGFreeValidCtxt(validator);
  xmlRelaxNGFree(schema);
  if (result == 0) return std::string();
  return errors.empty() ? "invalid" : errors;
}

// --- Pieces of documents in the store's shape --------------------------------

std::string Condition(const std::string& idref, const std::string& value) {
  return "<ParameterFixed IDref=\"" + idref + "\"><Value>" + value + "</Value></ParameterFixed>";
}

std::string Phase(const std::string& value) { return Condition("Selected_Phases", value); }
std::string Strain(const std::string& value) { return Condition("StrainType", value); }
std::string Group(const std::string& conditions) { return "<ParameterFixedGroup>" + conditions + "</ParameterFixedGroup>"; }

const char* kAxes =
    "<DataAxis><ValueList><Value>355</Value><Value>120</Value></ValueList></DataAxis>"
    "<ParameterAxis IDref=\"Temperature\"><ValueList><Value>20</Value><Value>800</Value></ValueList></ParameterAxis>";

std::string Attributes(const std::string& idref, const std::string& datasetId) {
  return " IDref=\"" + idref + "\" DatasetID=\"" + datasetId + "\"";
}

std::string CurveBody(const std::string& label, const std::string& conditions) {
  return "<Float><Curve Label=\"" + label + "\">" + kAxes + conditions + "</Curve></Float>";
}

std::string ConstantBody(const std::string& value, const std::string& conditions) {
  return "<Float><Constant><Value>" + value + "</Value>" + conditions + "</Constant></Float>";
}

// A table read as a curve (with a data axis).
std::string CurveDataset(const std::string& idref, const std::string& datasetId, const std::string& label,
                         const std::string& conditions, const std::string& after = "") {
  return "<Dataset" + Attributes(idref, datasetId) + ">" + CurveBody(label, conditions) + after + "</Dataset>";
}

// A table read as a constant (no data axis).
std::string ConstantDataset(const std::string& idref, const std::string& datasetId, const std::string& value,
                            const std::string& conditions) {
  return "<Dataset" + Attributes(idref, datasetId) + ">" + ConstantBody(value, conditions) + "</Dataset>";
}

std::string PhaseModel(const std::string& instance, const std::string& name) {
  return "<Model IDref=\"Phase_details_model\" InstanceID=\"" + instance +
         "\"><Dataset IDref=\"Phase_name\" DatasetID=\"" + instance + "\"><String>" + name +
         "</String></Dataset></Model>";
}

std::string GenericInfo(const std::string& subModels) {
  return "<Model IDref=\"GenericInfo_Weld\"><Dataset IDref=\"Material_type\"><String>Weld</String></Dataset>"
         "<SubModels>" +
         subModels + "</SubModels></Model>";
}

std::string RecordXml(const std::string& id, const std::string& datasets, const std::string& models = "") {
  return "<Record ID=\"" + id + "\"><Datasets>" + datasets + "</Datasets>" + models + "</Record>";
}

std::string Database(const std::string& records) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><MaterialDatabase Version=\"1\">" + records +
         "</MaterialDatabase>";
}

std::string Database1(const std::string& datasets, const std::string& models = "") {
  return Database(RecordXml("W_TEST", datasets, models));
}

// Every test gets a driver over an empty store, as the import would have it.
class PhaseDetails : public ::testing::Test {
 protected:
  PhaseDetails() : m_Store(ScratchPath("absent-store.xml")) {
    std::remove(m_Store.c_str());
    m_Driver = new CardsetImport("unused.mat", m_Store.c_str());
  }
  ~PhaseDetails() override { delete m_Driver; }

  void Rework(const Document& document) { m_Driver->ProcessDomdocForPhaseDetails(document.get()); }

  std::string m_Store;
  CardsetImport* m_Driver = nullptr;
};

// --- The document as a whole ---------------------------------------------------

TEST_F(PhaseDetails, NullDocumentDoesNothing) {
  m_Driver->ProcessDomdocForPhaseDetails(nullptr);
  SUCCEED();
}

TEST_F(PhaseDetails, DocumentWithoutRootElementIsLeftAlone) {
  xmlDocPtr empty = xmlNewDoc(reinterpret_cast<const xmlChar*>("1.0"));
  m_Driver->ProcessDomdocForPhaseDetails(empty);
  EXPECT_EQ(nullptr, xmlDocGetRootElement(empty));
  DomFreeDocument(empty);
}

// --- Order of the phase models -----------------------------------------------

TEST_F(PhaseDetails, PhaseModelsEndInAscendingNumericOrderAsTheLastChildren) {
  Document doc(Database1(
      "", GenericInfo(PhaseModel("10", "Austenite") + PhaseModel("2", "Bainite") + "<Model IDref=\"Other\"/>" +
                      PhaseModel("1", "Ferrite")) +
              "<Model IDref=\"Mechanical_Weld\"/>"));
  Rework(doc);
  EXPECT_EQ("<SubModels><Model IDref=\"Other\"/>" + PhaseModel("1", "Ferrite") + PhaseModel("2", "Bainite") +
                PhaseModel("10", "Austenite") + "</SubModels>",
            doc.Dump("//Model[@IDref='GenericInfo_Weld']/SubModels"));
  // The models around them keep their places.
  EXPECT_EQ(1u, doc.Select("/MaterialDatabase/Record/Model[2][@IDref='Mechanical_Weld']").size());
}

TEST_F(PhaseDetails, RecordWithoutPhaseModelsIsLeftAsItWas) {
  const std::string text = Database1(
      ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")),
      GenericInfo("<Model IDref=\"Other\" InstanceID=\"3\"/><Model IDref=\"Another\" InstanceID=\"1\"/>") +
          "<Model IDref=\"Mechanical_Weld\"/>");
  Document doc(text);
  Document untouched(text);
  Rework(doc);
  EXPECT_EQ(untouched.All(), doc.All());
}

TEST_F(PhaseDetails, OfTwoPhaseModelsWithTheSameNumberOnlyTheFirstStays) {
  // atoi makes "03" the same number as "3".
  Document doc(Database1("", GenericInfo(PhaseModel("3", "First") + PhaseModel("1", "Ferrite") +
                                         PhaseModel("03", "Second"))));
  Rework(doc);
  EXPECT_EQ("<SubModels>" + PhaseModel("1", "Ferrite") + PhaseModel("3", "First") + "</SubModels>",
            doc.Dump("//SubModels"));
}

TEST_F(PhaseDetails, PhaseModelWithoutInstanceIdIsLost) {
  Document doc(Database1(
      "", GenericInfo(PhaseModel("2", "Bainite") +
                      "<Model IDref=\"Phase_details_model\"><Dataset IDref=\"Phase_name\"><String>Nameless</String>"
                      "</Dataset></Model>" +
                      PhaseModel("1", "Ferrite"))));
  Rework(doc);
  EXPECT_EQ("<SubModels>" + PhaseModel("1", "Ferrite") + PhaseModel("2", "Bainite") + "</SubModels>",
            doc.Dump("//SubModels"));
  EXPECT_TRUE(doc.Select("//String[text()='Nameless']").empty());
}

TEST_F(PhaseDetails, PhaseModelsOfOtherParentsJoinTheParentOfTheFirstOne) {
  Document doc(Database1("", GenericInfo(PhaseModel("3", "Bainite")) +
                                 "<Model IDref=\"Mechanical_Weld\"><SubModels>" + PhaseModel("1", "Ferrite") +
                                 "</SubModels></Model>"));
  Rework(doc);
  EXPECT_EQ("<SubModels>" + PhaseModel("1", "Ferrite") + PhaseModel("3", "Bainite") + "</SubModels>",
            doc.Dump("//Model[@IDref='GenericInfo_Weld']/SubModels"));
  EXPECT_EQ("<SubModels/>", doc.Dump("//Model[@IDref='Mechanical_Weld']/SubModels"));
}

TEST_F(PhaseDetails, EachRecordOrdersItsOwnPhaseModels) {
  Document doc(Database(RecordXml("W_A", "", GenericInfo(PhaseModel("2", "A2") + PhaseModel("1", "A1"))) +
                        RecordXml("W_B", "", GenericInfo(PhaseModel("5", "B5") + PhaseModel("4", "B4")))));
  Rework(doc);
  EXPECT_EQ("<SubModels>" + PhaseModel("1", "A1") + PhaseModel("2", "A2") + "</SubModels>",
            doc.Dump("//Record[@ID='W_A']//SubModels"));
  EXPECT_EQ("<SubModels>" + PhaseModel("4", "B4") + PhaseModel("5", "B5") + "</SubModels>",
            doc.Dump("//Record[@ID='W_B']//SubModels"));
}

// --- Curve and constant of one table -----------------------------------------

TEST_F(PhaseDetails, TwoDatasetsOfOneKeyWithoutDataAxisBothStay) {
  const std::string datasets = ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                               ConstantDataset("Yield_stress", "21", "300", Phase("Bainite"));
  Document doc(Database1(datasets));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + datasets + "</Datasets>", doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, TwoDatasetsOfOneKeyBothWithDataAxisBothStay) {
  const std::string datasets = CurveDataset("Yield_stress", "21", "CurveA", Phase("Ferrite")) +
                               CurveDataset("Yield_stress", "21", "CurveB", Phase("Bainite"));
  Document doc(Database1(datasets));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + datasets + "</Datasets>", doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, SecondWithDataAxisStaysAloneWithTheConditionsOfBothInGroups) {
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                         CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite"))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "Curve21", Group(Phase("Bainite")) + Group(Phase("Ferrite"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
  EXPECT_EQ("", SchemaErrors(doc.get()));
}

TEST_F(PhaseDetails, FirstWithDataAxisStaysAndTakesTheConditionsOfTheSecond) {
  Document doc(Database1(CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite") + Condition("Grain_size", "8")) +
                         ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite") + Condition("Grain_size", "9"))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "Curve21",
                             Group(Phase("Bainite") + Condition("Grain_size", "8")) +
                                 Group(Phase("Ferrite") + Condition("Grain_size", "9"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
  EXPECT_EQ("", SchemaErrors(doc.get()));
}

TEST_F(PhaseDetails, KeptConditionsStaySingleWhenTheCountsDiffer) {
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite") + Phase("Bainite")) +
                         CurveDataset("Yield_stress", "21", "Curve21", Phase("Martensite"))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "Curve21",
                             Phase("Martensite") + Group(Phase("Ferrite") + Phase("Bainite"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, KeptDatasetWithoutConditionsTakesTheGroupItself) {
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                         CurveDataset("Yield_stress", "21", "Curve21", "")));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + CurveDataset("Yield_stress", "21", "Curve21", "", Group(Phase("Ferrite"))) + "</Datasets>",
            doc.Dump("//Datasets"));
  EXPECT_EQ("", SchemaErrors(doc.get()));
}

TEST_F(PhaseDetails, DroppedDatasetWithoutConditionsAddsNoGroup) {
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", "") +
                         CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite"))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite")) + "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, GroupsAlreadyThereNeitherCountAsConditionsNorMoveAndTakeTheNewGroupBesideThem) {
  // The kept dataset states one condition of its own and holds one in a group
  // of an earlier rework; only the single one counts, so against two dropped
  // conditions nothing of it moves, and the new group joins the old one.
  Document doc(Database1(
      ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite") + Condition("Grain_size", "10")) +
      CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite"), Group(Phase("Martensite")))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite"),
                             Group(Phase("Martensite")) + Group(Phase("Ferrite") + Condition("Grain_size", "10"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
  EXPECT_EQ("", SchemaErrors(doc.get()));
}

TEST_F(PhaseDetails, ThirdDatasetIsComparedWithTheFirstEvenThoughItWasTakenOut) {
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                         CurveDataset("Yield_stress", "21", "CurveB", Phase("Bainite")) +
                         CurveDataset("Yield_stress", "21", "CurveC", Phase("Martensite"))));
  Rework(doc);
  // Both curves stay, and each took the conditions of the taken-out constant.
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "CurveB", Group(Phase("Bainite")) + Group(Phase("Ferrite"))) +
                CurveDataset("Yield_stress", "21", "CurveC", Group(Phase("Martensite")) + Group(Phase("Ferrite"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, ThirdDatasetWithoutDataAxisStaysBesideTheMergedCurve) {
  // Compared with the first constant, not with the curve that was kept.
  const std::string third = ConstantDataset("Yield_stress", "21", "300", Phase("Martensite"));
  Document doc(Database1(ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                         CurveDataset("Yield_stress", "21", "CurveB", Phase("Bainite")) + third));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "21", "CurveB", Group(Phase("Bainite")) + Group(Phase("Ferrite"))) +
                third + "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, KeptDatasetIsAlsoFoundUnderItsIdrefAlone) {
  // A dataset whose DatasetID is empty has the IDref alone as its key, and so
  // meets the dataset kept by the merge before it.
  Document doc(Database1(ConstantDataset("Yield_stress", "5", "355", Phase("Ferrite")) +
                         CurveDataset("Yield_stress", "5", "Curve5", Phase("Bainite")) +
                         ConstantDataset("Yield_stress", "", "300", Phase("Martensite"))));
  Rework(doc);
  EXPECT_EQ("<Datasets>" +
                CurveDataset("Yield_stress", "5", "Curve5",
                             Group(Phase("Bainite")) + Group(Phase("Ferrite")) + Group(Phase("Martensite"))) +
                "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, DatasetsLackingDatasetIdOrIdrefArePassedOver) {
  const std::string datasets =
      "<Dataset IDref=\"Yield_stress\">" + ConstantBody("355", Phase("Ferrite")) + "</Dataset>" +
      "<Dataset IDref=\"Yield_stress\">" + CurveBody("CurveA", Phase("Bainite")) + "</Dataset>" +
      "<Dataset DatasetID=\"21\">" + ConstantBody("355", Phase("Ferrite")) + "</Dataset>" + "<Dataset DatasetID=\"21\">" +
      CurveBody("CurveB", Phase("Bainite")) + "</Dataset>";
  Document doc(Database1(datasets));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + datasets + "</Datasets>", doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, OnlyTheRecordsOwnFirstDatasetsListIsMerged) {
  const std::string pair = ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                           CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite"));
  const std::string text = Database(
      "<Record ID=\"W_TEST\"><Datasets/><Datasets>" + pair + "</Datasets><Model IDref=\"Mechanical_Weld\">" + pair +
      "</Model></Record>");
  Document doc(text);
  Document untouched(text);
  Rework(doc);
  EXPECT_EQ(untouched.All(), doc.All());
}

TEST_F(PhaseDetails, EachRecordMergesItsOwnDatasets) {
  Document doc(Database(RecordXml("W_A", ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite"))) +
                        RecordXml("W_B", CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite")))));
  Rework(doc);
  EXPECT_EQ(1u, doc.Select("//Record[@ID='W_A']/Datasets/Dataset").size());
  EXPECT_EQ(1u, doc.Select("//Record[@ID='W_B']/Datasets/Dataset").size());
  EXPECT_TRUE(doc.Select("//ParameterFixedGroup").empty());
}

// --- Thermal strains -----------------------------------------------------------

std::string StrainDataset(const std::string& datasetId, const std::string& conditions) {
  return CurveDataset("Thermal_strains", datasetId, "Curve" + datasetId, conditions);
}

TEST_F(PhaseDetails, TwoValuesOfEachConditionBecomeThreeGroupsWhenOnePairIsCoveredElsewhere) {
  const std::string covering = StrainDataset("21", Phase("Austenite") + Strain("Total"));
  Document doc(Database1(
      StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total")) + covering));
  Rework(doc);
  EXPECT_EQ(StrainDataset("20", Group(Phase("Ferrite") + Strain("Thermal")) + Group(Phase("Ferrite") + Strain("Total")) +
                                    Group(Phase("Austenite") + Strain("Thermal"))),
            doc.Dump("//Dataset[@DatasetID='20']"));
  EXPECT_EQ(3u, doc.Select("//Dataset[@DatasetID='20']//ParameterFixedGroup").size());
  EXPECT_TRUE(doc.Select("//Dataset[@DatasetID='20']//Curve/ParameterFixed").empty());
  EXPECT_EQ(covering, doc.Dump("//Dataset[@DatasetID='21']"));
  EXPECT_EQ("", SchemaErrors(doc.get()));
}

TEST_F(PhaseDetails, ExactlyTwoConditionsStayAsTheyStandAndCoverTheirPairEvenWhenSeenFirst) {
  const std::string covering = StrainDataset("19", Phase("Ferrite") + Strain("Thermal"));
  Document doc(Database1(
      covering + StrainDataset("20", Phase("Ferrite") + Phase("Austenite") + Strain("Thermal") + Strain("Total"))));
  Rework(doc);
  EXPECT_EQ(covering, doc.Dump("//Dataset[@DatasetID='19']"));
  EXPECT_EQ(StrainDataset("20", Group(Phase("Ferrite") + Strain("Total")) +
                                    Group(Phase("Austenite") + Strain("Thermal")) +
                                    Group(Phase("Austenite") + Strain("Total"))),
            doc.Dump("//Dataset[@DatasetID='20']"));
}

TEST_F(PhaseDetails, WithoutCoveringPairsEveryCombinationBecomesAGroup) {
  Document doc(Database1(
      StrainDataset("20", Phase("Ferrite") + Phase("Bainite") + Phase("Austenite") + Strain("Thermal") + Strain("Total"))));
  Rework(doc);
  EXPECT_EQ(6u, doc.Select("//Dataset[@DatasetID='20']//Curve/ParameterFixedGroup").size());
  EXPECT_EQ(12u, doc.Select("//Dataset[@DatasetID='20']//ParameterFixedGroup/ParameterFixed").size());
  EXPECT_TRUE(doc.Select("//Curve/ParameterFixed").empty());
}

TEST_F(PhaseDetails, APairCoversOnlyInTheOrderOfTheFirstConditionNames) {
  // The covering dataset names its conditions the other way round, so its
  // pair (Total, Austenite) matches no combination.
  Document doc(Database1(
      StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total")) +
      StrainDataset("21", Strain("Total") + Phase("Austenite"))));
  Rework(doc);
  EXPECT_EQ(4u, doc.Select("//Dataset[@DatasetID='20']//ParameterFixedGroup").size());
}

TEST_F(PhaseDetails, StrainDatasetsNamingThreeConditionsAreLeftAlone) {
  const std::string text = Database1(
      StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Condition("Grain_size", "10")) +
      StrainDataset("21", Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total")));
  Document doc(text);
  Document untouched(text);
  Rework(doc);
  EXPECT_EQ(untouched.All(), doc.All());
}

TEST_F(PhaseDetails, StrainConditionsAreCountedPerRecord) {
  // W_A names the two conditions; W_B's dataset of three conditions names
  // three of its own and is left alone.
  const std::string untouchedB = StrainDataset("30", Phase("Ferrite") + Strain("Thermal") + Condition("Grain_size", "10"));
  Document doc(Database(RecordXml("W_A", StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Strain("Total"))) +
                        RecordXml("W_B", untouchedB)));
  Rework(doc);
  EXPECT_EQ(2u, doc.Select("//Record[@ID='W_A']//ParameterFixedGroup").size());
  EXPECT_EQ(untouchedB, doc.Dump("//Record[@ID='W_B']//Dataset"));
}

TEST_F(PhaseDetails, OnlyThermalStrainsDatasetsAreRegrouped) {
  const std::string four = Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total");
  const std::string text = Database1(CurveDataset("Yield_stress", "20", "Curve20", four) +
                                     CurveDataset("thermal_strains", "21", "Curve21", four));
  Document doc(text);
  Document untouched(text);
  Rework(doc);
  EXPECT_EQ(untouched.All(), doc.All());
}

TEST_F(PhaseDetails, StrainTableMergedWithItsCurveKeepsTheMergedGroups) {
  // The constant is listed for grouping before its curve turns up; the merge
  // then takes it out, so the grouping works on the taken-out copy only.
  const std::string four = Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total");
  Document doc(Database1(ConstantDataset("Thermal_strains", "20", "0", four) +
                         CurveDataset("Thermal_strains", "20", "Curve20", four)));
  Rework(doc);
  EXPECT_EQ("<Datasets>" + CurveDataset("Thermal_strains", "20", "Curve20", Group(four) + Group(four)) + "</Datasets>",
            doc.Dump("//Datasets"));
}

TEST_F(PhaseDetails, ASecondReworkChangesNothing) {
  // The database file holds records an earlier import reworked; they come
  // back through every later import.
  Document doc(Database1(
      StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") + Strain("Total")) +
          StrainDataset("21", Phase("Austenite") + Strain("Total")) +
          ConstantDataset("Yield_stress", "30", "355", Phase("Ferrite")) +
          CurveDataset("Yield_stress", "30", "Curve30", Phase("Bainite")),
      GenericInfo(PhaseModel("2", "Bainite") + PhaseModel("1", "Ferrite"))));
  Rework(doc);
  const std::string once = doc.All();
  ASSERT_EQ(3u, doc.Select("//Dataset[@DatasetID='20']//ParameterFixedGroup").size());
  Rework(doc);
  EXPECT_EQ(once, doc.All());
}

// --- Grouping called on its own --------------------------------------------------

class ConditionGrouping : public PhaseDetails {
 protected:
  ConditionGrouping()
      : m_Doc(Database1(ConstantDataset("Thermal_strains", "20", "0",
                                        Condition("A", "1") + Condition("A", "2") + Condition("B", "x") +
                                            Condition("B", "y") + "<ParameterFixed IDref=\"A\"/>"))) {}

  XMLObject Conditions() { return XMLObject(m_Doc.One("//Constant"), "ParameterFixed"); }

  Document m_Doc;
};

TEST_F(ConditionGrouping, PairsFirstListWithSecondLessCoveredPairsAndTakesTheSinglesOut) {
  std::multimap<std::string, std::string> covered{{"1", "x"}, {"1", "y"}, {"", "x"}};
  m_Driver->CreateParamFixedGroup({Conditions()}, covered, {"A", "B"}, m_Doc.get());
  // A condition without a Value reads as empty text, so ("", "x") covers it.
  EXPECT_EQ("<Constant><Value>0</Value>" + Group(Condition("A", "2") + Condition("B", "x")) +
                Group(Condition("A", "2") + Condition("B", "y")) +
                Group("<ParameterFixed IDref=\"A\"/>" + Condition("B", "y")) + "</Constant>",
            m_Doc.Dump("//Constant"));
}

TEST_F(ConditionGrouping, WithOtherThanTwoNamesTheConditionsGoWithoutGroups) {
  m_Driver->CreateParamFixedGroup({Conditions()}, {}, {"A", "B", "C"}, m_Doc.get());
  EXPECT_EQ("<Constant><Value>0</Value></Constant>", m_Doc.Dump("//Constant"));
}

TEST_F(ConditionGrouping, WithoutDocumentNothingIsTakenAway) {
  const std::string before = m_Doc.All();
  m_Driver->CreateParamFixedGroup({Conditions()}, {}, {"A", "B"}, nullptr);
  EXPECT_EQ(before, m_Doc.All());
}

TEST_F(ConditionGrouping, EmptyListChangesNothing) {
  const std::string before = m_Doc.All();
  m_Driver->CreateParamFixedGroup({XMLObject(nullptr, "ParameterFixed")}, {}, {"A", "B"}, m_Doc.get());
  EXPECT_EQ(before, m_Doc.All());
}

// --- A whole import --------------------------------------------------------------

// For every record: its phase models share one parent, stand behind all its
// other children, and ascend by InstanceID.  Answers the numbers per record.
std::map<std::string, std::vector<int>> CheckPhaseModels(const Document& doc) {
  std::map<std::string, std::vector<int>> numbers;
  for (xmlNodePtr record : doc.Select("/MaterialDatabase/Record")) {
    xmlChar* id = xmlGetProp(record, reinterpret_cast<const xmlChar*>("ID"));
    const std::string recordId = reinterpret_cast<const char*>(id);
    xmlFree(id);
    std::vector<xmlNodePtr> models = doc.Select("/MaterialDatabase/Record[@ID='" + recordId +
                                                "']//Model[@IDref='Phase_details_model']");
    if (models.empty()) continue;
    xmlNodePtr parent = models.front()->parent;
    std::vector<xmlNodePtr> tail;
    for (xmlNodePtr child = parent->children; child != nullptr; child = child->next)
      if (child->type == XML_ELEMENT_NODE) tail.push_back(child);
    EXPECT_GE(tail.size(), models.size()) << recordId;
    if (tail.size() < models.size()) continue;
    tail.erase(tail.begin(), tail.end() - static_cast<long>(models.size()));
    EXPECT_EQ(tail, models) << recordId << ": phase models are not the last children of one parent";
    for (xmlNodePtr model : models) {
      xmlChar* instance = xmlGetProp(model, reinterpret_cast<const xmlChar*>("InstanceID"));
      numbers[recordId].push_back(instance != nullptr ? std::atoi(reinterpret_cast<const char*>(instance)) : -1);
      xmlFree(instance);
    }
  }
  return numbers;
}

std::string DumpDocument(void* document) {
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(static_cast<xmlDocPtr>(document), &text, &size);
  std::string result(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
  xmlFree(text);
  return result;
}

TEST(PhaseDetailsImport, ImportedAndLoadedRecordsComeOutReworkedAndValid) {
  // The database already holds a record whose phase models and tables are in
  // the order the converters leave them; the import hands it back reworked
  // together with the new material.
  const std::string dbPath = ScratchPath("database.xml");
  {
    std::ofstream out(dbPath, std::ios::binary | std::ios::trunc);
    out << Database("<Folder Name=\"Old\"/>" +
                    RecordXml("W_OLD",
                              ConstantDataset("Yield_stress", "21", "355", Phase("Ferrite")) +
                                  CurveDataset("Yield_stress", "21", "Curve21", Phase("Bainite")) +
                                  StrainDataset("20", Phase("Ferrite") + Strain("Thermal") + Phase("Austenite") +
                                                          Strain("Total")),
                              GenericInfo(PhaseModel("10", "Austenite") + PhaseModel("2", "Bainite") +
                                          PhaseModel("1", "Ferrite"))));
  }
  CardsetImport driver((std::string(QUILLON_CORPUS_DIR) + "/S355J2G3.mat").c_str(), dbPath.c_str());
  ASSERT_STREQ("", OrvaneStaticVars::GetLastError());
  void* document = nullptr;
  std::string message;
  EXPECT_GT(driver.ImportMaterialList(&document, message, false), 0);
  ASSERT_NE(nullptr, document);
  Document view(DumpDocument(document));

  std::map<std::string, std::vector<int>> numbers = CheckPhaseModels(view);
  EXPECT_EQ((std::vector<int>{1, 2, 10}), numbers["W_OLD"]);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6}), numbers["W_S355J2G3"]);
  EXPECT_EQ(1u, view.Select("//Record[@ID='W_OLD']/Datasets/Dataset[@IDref='Yield_stress']").size());
  EXPECT_EQ(4u, view.Select("//Record[@ID='W_OLD']//Dataset[@IDref='Thermal_strains']//ParameterFixedGroup").size());
  EXPECT_EQ("", SchemaErrors(static_cast<xmlDocPtr>(document)));
  std::remove(dbPath.c_str());
}

TEST(PhaseDetailsImport, PhaseSectionsOfACorpusFileGiveOrderedPhaseModels) {
  const std::string dbPath = ScratchPath("absent-import.xml");
  std::remove(dbPath.c_str());
  CardsetImport driver((std::string(QUILLON_CORPUS_DIR) + "/42CrMo4_tempering.mat").c_str(), dbPath.c_str());
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  ASSERT_NE(nullptr, document);
  Document view(DumpDocument(document));
  std::map<std::string, std::vector<int>> numbers = CheckPhaseModels(view);
  ASSERT_EQ(1u, numbers.size());
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6}), numbers.begin()->second);
  EXPECT_EQ("", SchemaErrors(static_cast<xmlDocPtr>(document)));
}

}  // namespace
