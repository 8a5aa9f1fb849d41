// The parameter mapping: its loader, its lookups, and the mapping shipped in
// data/mapping.xml measured against the schema, the keyword tables, the
// export order it produces and the words of the sample card files.

#include "store/mapping.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/card.h"
#include "core/importobject.h"
#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

using quillon::Mapping;
using quillon::MappingModel;
using quillon::MappingParameter;

const std::string kShippedMapping = std::string(QUILLON_SOURCE_DIR) + "/data/mapping.xml";
const std::string kShippedSchema = std::string(QUILLON_SOURCE_DIR) + "/data/mapping.rng";

// Wraps rows in the document frame so that each test shows only what it is about.
std::string Document(const std::string& models, const std::string& sections,
                     const std::string& parameters) {
  return "<Mapping solution=\"Test\" version=\"1\">\n<Models>" + models + "</Models>\n<Sections>" +
         sections + "</Sections>\n<Parameters>" + parameters + "</Parameters>\n</Mapping>\n";
}

Mapping LoadedFrom(const std::string& xml) {
  Mapping mapping;
  std::string error;
  EXPECT_TRUE(mapping.LoadMemory(xml, error)) << error;
  return mapping;
}

std::string TemporaryFile(const std::string& content) {
  char path[] = "/tmp/quillon_mapping_XXXXXX";
  int fd = mkstemp(path);
  EXPECT_GE(fd, 0);
  if (fd >= 0) {
    EXPECT_EQ(write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
    close(fd);
  }
  return path;
}

// ---------------------------------------------------------------------------
// Loader

TEST(MappingLoader, ReadsEveryAttributeOfAParameterRow) {
  Mapping mapping = LoadedFrom(Document(
      "", "",
      "<Parameter OrvaneMLID=\"Density_weld\" CardsetID=\"RHO\" CardsetKW=\"MATERIAUX :\" "
      "CardsetModel=\"thermometal,tempering\" CardsetKWParent=\"NOM :\" StartID=\"40\" "
      "Category=\"Thermo-Physical\" Model=\"Thermal_Weld\" DataType=\"curve\" "
      "DependentParamID=\"Temperature\" FixedParamIDs=\"Selected_Phases\" Label=\"Density\"/>"));
  ASSERT_EQ(mapping.Parameters().size(), 1u);
  const MappingParameter& row = mapping.Parameters()[0];
  EXPECT_EQ(row.orvaneMLID, "Density_weld");
  EXPECT_EQ(row.cardsetID, "RHO");
  EXPECT_EQ(row.cardsetKW, "MATERIAUX :");
  EXPECT_EQ(row.cardsetModel, "thermometal,tempering");
  EXPECT_EQ(row.cardsetKWParent, "NOM :");
  EXPECT_EQ(row.startID, "40");
  EXPECT_EQ(row.category, "Thermo-Physical");
  EXPECT_EQ(row.model, "Thermal_Weld");
  EXPECT_EQ(row.dataType, "curve");
  EXPECT_EQ(row.dependentParamID, "Temperature");
  EXPECT_EQ(row.fixedParamIDs, "Selected_Phases");
  EXPECT_EQ(row.label, "Density");
  EXPECT_TRUE(row.choices.empty());
}

TEST(MappingLoader, AbsentAttributesReadAsEmptyTexts) {
  Mapping mapping = LoadedFrom(Document("", "", "<Parameter OrvaneMLID=\"CategoryComments\"/>"));
  ASSERT_EQ(mapping.Parameters().size(), 1u);
  const MappingParameter& row = mapping.Parameters()[0];
  EXPECT_EQ(row.orvaneMLID, "CategoryComments");
  EXPECT_EQ(row.cardsetID, "");
  EXPECT_EQ(row.startID, "");
  EXPECT_EQ(row.dataType, "");
}

TEST(MappingLoader, ReadsChoicesInOrderAndDefaultsTheCardCodeToTheName) {
  Mapping mapping = LoadedFrom(Document(
      "", "",
      "<Parameter OrvaneMLID=\"Hardening_model\" CardsetID=\"MODEL\" DataType=\"choice\">"
      "<Choice Name=\"Kinematic\" CardsetCode=\"2\"/><Choice Name=\"Isotropic\" CardsetCode=\"3\"/>"
      "<Choice Name=\"Austenite\"/><Choice Name=\"Both\" CardsetCode=\"\"/></Parameter>"));
  ASSERT_EQ(mapping.Parameters().size(), 1u);
  const auto& choices = mapping.Parameters()[0].choices;
  ASSERT_EQ(choices.size(), 4u);
  EXPECT_EQ(choices[0].name, "Kinematic");
  EXPECT_EQ(choices[0].cardCode, "2");
  EXPECT_EQ(choices[1].name, "Isotropic");
  EXPECT_EQ(choices[1].cardCode, "3");
  EXPECT_EQ(choices[2].cardCode, "Austenite");
  EXPECT_EQ(choices[3].cardCode, "") << "an empty code given on purpose stays empty";
}

TEST(MappingLoader, ReadsModelsWithSubModelsInFileOrderAndKeepsOptionalOnesApart) {
  Mapping mapping = LoadedFrom(Document(
      "<Model IDref=\"GenericInfo_Weld\" Category=\"Generic Info\"/>"
      "<Model IDref=\"Thermal_Weld\" Category=\"Thermo-Physical\" CardModels=\"thermometal\">"
      "<SubModel IDref=\"ThermalPropertyModel\"/><SubModel IDref=\"ReducedIntegration\" Create=\"false\"/>"
      "<SubModel IDref=\"Second\" Create=\"true\"/></Model>",
      "", ""));
  ASSERT_EQ(mapping.Models().size(), 2u);
  EXPECT_EQ(mapping.Models()[0].idref, "GenericInfo_Weld");
  EXPECT_EQ(mapping.Models()[0].category, "Generic Info");
  EXPECT_EQ(mapping.Models()[0].cardModels, "");
  const MappingModel& thermal = mapping.Models()[1];
  EXPECT_EQ(thermal.idref, "Thermal_Weld");
  EXPECT_EQ(thermal.cardModels, "thermometal");
  EXPECT_EQ(thermal.subModels, (std::vector<std::string>{"ThermalPropertyModel", "Second"}));
  EXPECT_EQ(thermal.optionalSubModels, (std::vector<std::string>{"ReducedIntegration"}));
}

TEST(MappingLoader, ReadsSectionRowsAndTheDocumentAttributes) {
  Mapping mapping = LoadedFrom(Document(
      "",
      "<Section CardsetKW=\"LABELS :\" CardsetKWParent=\"NOM :\" CardsetModel=\"mechanical\"/>"
      "<Section CardsetKW=\"TABLES :\" CardsetKWParent=\"LABELS :\"/>",
      ""));
  EXPECT_EQ(mapping.Solution(), "Test");
  EXPECT_EQ(mapping.Version(), "1");
  EXPECT_EQ(mapping.SourcePath(), "") << "a mapping read from memory has no path";
  ASSERT_EQ(mapping.Sections().size(), 2u);
  EXPECT_EQ(mapping.Sections()[0].cardsetKW, "LABELS :");
  EXPECT_EQ(mapping.Sections()[0].cardsetKWParent, "NOM :");
  EXPECT_EQ(mapping.Sections()[0].cardsetModel, "mechanical");
  EXPECT_EQ(mapping.Sections()[1].cardsetModel, "");
}

TEST(MappingLoader, PassesOverElementsItDoesNotKnow) {
  Mapping mapping = LoadedFrom(
      "<Mapping><Notes><Parameter OrvaneMLID=\"NotARow\"/></Notes>"
      "<Parameters><Comment text=\"x\"/><Parameter OrvaneMLID=\"A\"/></Parameters></Mapping>");
  ASSERT_EQ(mapping.Parameters().size(), 1u);
  EXPECT_EQ(mapping.Parameters()[0].orvaneMLID, "A");
}

TEST(MappingLoader, MalformedXmlFailsWithTheLineOfTheFault) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("<Mapping>\n<Parameters>\n<Parameter OrvaneMLID=\"A\">\n"
                                  "</Parameters>\n</Mapping>\n",
                                  error));
  EXPECT_EQ(error.rfind("<memory>:4:", 0), 0u) << error;
}

TEST(MappingLoader, MalformedFileFailsNamingTheFileAndLine) {
  const std::string path = TemporaryFile("<Mapping>\n\n<Models>\n</Mapping>\n");
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadFile(path, error));
  EXPECT_EQ(error.rfind(path + ":4:", 0), 0u) << error;
  std::remove(path.c_str());
}

TEST(MappingLoader, MissingFileFailsNamingThePath) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadFile("/nonexistent/quillon/mapping.xml", error));
  EXPECT_NE(error.find("/nonexistent/quillon/mapping.xml"), std::string::npos) << error;
}

TEST(MappingLoader, DirectoryIsNoMappingFile) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadFile("/tmp", error));
  EXPECT_NE(error.find("/tmp"), std::string::npos) << error;
}

TEST(MappingLoader, EmptyDocumentFails) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("", error));
  EXPECT_FALSE(error.empty());
}

TEST(MappingLoader, FailedLoadLeavesTheMappingEmpty) {
  Mapping mapping;
  std::string error;
  ASSERT_TRUE(mapping.LoadFile(kShippedMapping, error)) << error;
  ASSERT_FALSE(mapping.Parameters().empty());
  EXPECT_FALSE(mapping.LoadMemory("<Mapping><Parameters><Parameter OrvaneMLID=\"A\"/>"
                                  "<Parameter/></Parameters></Mapping>",
                                  error));
  EXPECT_TRUE(mapping.Parameters().empty()) << "rows read before the fault are dropped too";
  EXPECT_TRUE(mapping.Models().empty());
  EXPECT_TRUE(mapping.Sections().empty());
  EXPECT_EQ(mapping.Solution(), "");
  EXPECT_EQ(mapping.SourcePath(), "");
}

TEST(MappingLoader, RootOtherThanMappingIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("<Parameters/>", error));
  EXPECT_NE(error.find("<Parameters>"), std::string::npos) << error;
}

TEST(MappingLoader, RowWithoutItsIdentifierIsRefusedWithItsLine) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("<Mapping>\n<Parameters>\n<Parameter CardsetID=\"RHO\"/>\n"
                                  "</Parameters>\n</Mapping>",
                                  error));
  EXPECT_EQ(error, "<memory>:3: <Parameter> has no OrvaneMLID attribute");
}

TEST(MappingLoader, EmptyRequiredAttributeIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("<Mapping><Models><Model IDref=\"\"/></Models></Mapping>", error));
  EXPECT_NE(error.find("empty IDref"), std::string::npos) << error;
}

TEST(MappingLoader, SectionWithoutParentIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<Mapping><Sections><Section CardsetKW=\"LABELS :\"/></Sections></Mapping>", error));
  EXPECT_NE(error.find("CardsetKWParent"), std::string::npos) << error;
}

TEST(MappingLoader, UnknownDataTypeIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<Mapping><Parameters><Parameter OrvaneMLID=\"A\" DataType=\"double\"/></Parameters></Mapping>",
      error));
  EXPECT_NE(error.find("double"), std::string::npos) << error;
}

TEST(MappingLoader, StartIdThatIsNoTableNumberIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<Mapping><Parameters><Parameter OrvaneMLID=\"A\" StartID=\"ten\"/></Parameters></Mapping>",
      error));
  EXPECT_NE(error.find("StartID"), std::string::npos) << error;
}

TEST(MappingLoader, SubModelCreateMustBeTrueOrFalse) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<Mapping><Models><Model IDref=\"M\"><SubModel IDref=\"S\" Create=\"no\"/></Model></Models></Mapping>",
      error));
  EXPECT_NE(error.find("Create"), std::string::npos) << error;
}

TEST(MappingLoader, ChoiceWithoutNameIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<Mapping><Parameters><Parameter OrvaneMLID=\"A\"><Choice CardsetCode=\"1\"/></Parameter>"
      "</Parameters></Mapping>",
      error));
  EXPECT_NE(error.find("Name"), std::string::npos) << error;
}

TEST(MappingLoader, UnsupportedVersionIsRefused) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory("<Mapping version=\"2\"/>", error));
  EXPECT_NE(error.find("version"), std::string::npos) << error;
}

TEST(MappingLoader, DocumentTypeDeclarationsAreRefusedSoEntitiesNeverExpand) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<!DOCTYPE Mapping [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">]>"
      "<Mapping><Parameters><Parameter OrvaneMLID=\"&b;\"/></Parameters></Mapping>",
      error));
  EXPECT_NE(error.find("document type"), std::string::npos) << error;
  EXPECT_TRUE(mapping.Parameters().empty());
}

TEST(MappingLoader, ExternalEntitiesAreNeverFetched) {
  Mapping mapping;
  std::string error;
  EXPECT_FALSE(mapping.LoadMemory(
      "<!DOCTYPE Mapping SYSTEM \"http://example.invalid/mapping.dtd\"><Mapping/>", error));
  EXPECT_TRUE(mapping.Models().empty());
}

TEST(MappingLoader, LoadFileRemembersThePath) {
  Mapping mapping;
  std::string error;
  ASSERT_TRUE(mapping.LoadFile(kShippedMapping, error)) << error;
  EXPECT_EQ(mapping.SourcePath(), kShippedMapping);
}

// ---------------------------------------------------------------------------
// Lookups

TEST(MappingLookup, ListsCardModelComparesWholeCommaSeparatedWords) {
  MappingParameter row;
  row.cardsetModel = "mechanical,mechanical_phases";
  EXPECT_TRUE(row.ListsCardModel("mechanical"));
  EXPECT_TRUE(row.ListsCardModel("mechanical_phases"));
  EXPECT_FALSE(row.ListsCardModel("mechanical_ph"));
  EXPECT_FALSE(row.ListsCardModel("mech"));
  EXPECT_FALSE(row.ListsCardModel("Mechanical")) << "card models compare with case";
  EXPECT_FALSE(row.ListsCardModel(""));
  EXPECT_FALSE(row.ListsCardModel("mechanical,mechanical_phases"));
  row.cardsetModel = "mechanical, thermometal";
  EXPECT_FALSE(row.ListsCardModel("thermometal")) << "words are not trimmed";
  row.cardsetModel = "";
  EXPECT_FALSE(row.ListsCardModel(""));
}

TEST(MappingLookup, CardModelStemIsTheTextBeforeTheFirstUnderscore) {
  EXPECT_EQ(Mapping::CardModelStem("thermometal_cp"), "thermometal");
  EXPECT_EQ(Mapping::CardModelStem("mechanical_phases_x"), "mechanical");
  EXPECT_EQ(Mapping::CardModelStem("diffusion"), "diffusion");
  EXPECT_EQ(Mapping::CardModelStem("_cp"), "");
}

// Three rows of one card word: the preference order decides between them.
const char* const kThreeRhoRows =
    "<Parameter OrvaneMLID=\"Mechanical_density\" CardsetID=\"RHO\" CardsetModel=\"mechanical\"/>"
    "<Parameter OrvaneMLID=\"Density_weld\" CardsetID=\"RHO\" CardsetModel=\"thermometal\"/>"
    "<Parameter OrvaneMLID=\"Density_cp\" CardsetID=\"RHO\" CardsetModel=\"thermometal_cp\"/>";

TEST(MappingLookup, FindByCardWordPrefersTheRowListingTheCardModel) {
  Mapping mapping = LoadedFrom(Document("", "", kThreeRhoRows));
  ASSERT_NE(mapping.FindByCardWord("RHO", "thermometal"), nullptr);
  EXPECT_EQ(mapping.FindByCardWord("RHO", "thermometal")->orvaneMLID, "Density_weld");
  EXPECT_EQ(mapping.FindByCardWord("RHO", "thermometal_cp")->orvaneMLID, "Density_cp")
      << "the card model itself beats its stem";
}

TEST(MappingLookup, FindByCardWordFallsBackOnTheStemOfTheCardModel) {
  Mapping mapping = LoadedFrom(Document("", "", kThreeRhoRows));
  const MappingParameter* row = mapping.FindByCardWord("RHO", "thermometal_enth");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->orvaneMLID, "Density_weld");
}

TEST(MappingLookup, FindByCardWordFallsBackOnTheFirstRowOfTheWord) {
  Mapping mapping = LoadedFrom(Document("", "", kThreeRhoRows));
  EXPECT_EQ(mapping.FindByCardWord("RHO", "diffusion")->orvaneMLID, "Mechanical_density");
  EXPECT_EQ(mapping.FindByCardWord("RHO", "")->orvaneMLID, "Mechanical_density");
  EXPECT_EQ(mapping.FindByCardWord("RHO", "tempering_x")->orvaneMLID, "Mechanical_density");
}

TEST(MappingLookup, FindByCardWordComparesWordsExactly) {
  Mapping mapping = LoadedFrom(Document("", "", kThreeRhoRows));
  EXPECT_EQ(mapping.FindByCardWord("rho", "mechanical"), nullptr);
  EXPECT_EQ(mapping.FindByCardWord("RH", "mechanical"), nullptr);
  EXPECT_EQ(mapping.FindByCardWord("RHO ", "mechanical"), nullptr);
  EXPECT_EQ(mapping.FindByCardWord("KX", "mechanical"), nullptr);
}

TEST(MappingLookup, EmptyCardWordFindsNoStoreOnlyRow) {
  Mapping mapping = LoadedFrom(Document(
      "", "", "<Parameter OrvaneMLID=\"CategoryComments\" CardsetModel=\"mechanical\"/>"));
  EXPECT_EQ(mapping.FindByCardWord("", "mechanical"), nullptr);
}

TEST(MappingLookup, FindByIdGivesTheFirstRowOfTheIdentifier) {
  Mapping mapping = LoadedFrom(Document(
      "", "",
      "<Parameter OrvaneMLID=\"Thermal_strains\" CardsetID=\"LX\"/>"
      "<Parameter OrvaneMLID=\"Thermal_strains\" CardsetID=\"LY\"/>"));
  ASSERT_NE(mapping.FindByID("Thermal_strains"), nullptr);
  EXPECT_EQ(mapping.FindByID("Thermal_strains")->cardsetID, "LX");
  EXPECT_EQ(mapping.FindByID("thermal_strains"), nullptr);
  EXPECT_EQ(mapping.FindByID("Unknown"), nullptr);
  EXPECT_EQ(mapping.FindByID(""), nullptr);
}

TEST(MappingLookup, FindByIdUnderACardModelUsesTheSamePreferences) {
  Mapping mapping = LoadedFrom(Document(
      "", "",
      "<Parameter OrvaneMLID=\"CategoryComments\" CardsetModel=\"mechanical\" Model=\"Mechanical_Weld\"/>"
      "<Parameter OrvaneMLID=\"CategoryComments\" CardsetModel=\"thermometal\" Model=\"Thermal_Weld\"/>"));
  EXPECT_EQ(mapping.FindByID("CategoryComments", "thermometal_cp")->model, "Thermal_Weld");
  EXPECT_EQ(mapping.FindByID("CategoryComments", "mechanical")->model, "Mechanical_Weld");
  EXPECT_EQ(mapping.FindByID("CategoryComments", "diffusion")->model, "Mechanical_Weld");
  EXPECT_EQ(mapping.FindByID("Other", "mechanical"), nullptr);
}

TEST(MappingLookup, DefaultModelForCardModelTakesTheListingModelThenTheStem) {
  Mapping mapping = LoadedFrom(Document(
      "<Model IDref=\"Mechanical_Weld\" CardModels=\"mechanical,mechanical_phases\"/>"
      "<Model IDref=\"Thermal_Weld\" CardModels=\"thermometal\"/>"
      "<Model IDref=\"Cp_Weld\" CardModels=\"thermometal_cp\"/>",
      "", ""));
  ASSERT_NE(mapping.DefaultModelForCardModel("mechanical_phases"), nullptr);
  EXPECT_EQ(mapping.DefaultModelForCardModel("mechanical_phases")->idref, "Mechanical_Weld");
  EXPECT_EQ(mapping.DefaultModelForCardModel("thermometal_cp")->idref, "Cp_Weld");
  EXPECT_EQ(mapping.DefaultModelForCardModel("thermometal_enth")->idref, "Thermal_Weld");
  EXPECT_EQ(mapping.DefaultModelForCardModel("diffusion"), nullptr);
  EXPECT_EQ(mapping.DefaultModelForCardModel(""), nullptr);
}

TEST(MappingLookup, FindsModelsAndTheOwnersOfSubModels) {
  Mapping mapping = LoadedFrom(Document(
      "<Model IDref=\"Thermal_Weld\"><SubModel IDref=\"ThermalPropertyModel\"/>"
      "<SubModel IDref=\"ReducedIntegration\" Create=\"false\"/></Model>",
      "", ""));
  ASSERT_NE(mapping.FindModel("Thermal_Weld"), nullptr);
  EXPECT_EQ(mapping.FindModel("ThermalPropertyModel"), nullptr) << "sub-models are no models";
  EXPECT_EQ(mapping.FindOwnerOfSubModel("ThermalPropertyModel")->idref, "Thermal_Weld");
  EXPECT_EQ(mapping.FindOwnerOfSubModel("ReducedIntegration")->idref, "Thermal_Weld");
  EXPECT_EQ(mapping.FindOwnerOfSubModel("Thermal_Weld"), nullptr);
  EXPECT_TRUE(mapping.DeclaresModel("Thermal_Weld"));
  EXPECT_TRUE(mapping.DeclaresModel("ReducedIntegration"));
  EXPECT_FALSE(mapping.DeclaresModel("Mechanical_Weld"));
}

TEST(MappingLookup, ShippedPathIsTheDataFolderOfTheSourceTree) {
  EXPECT_EQ(Mapping::ShippedPath(), kShippedMapping);
}

// ---------------------------------------------------------------------------
// The shipped mapping

class ShippedMapping : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(m_Mapping.LoadFile(Mapping::ShippedPath(), error)) << error;
  }
  Mapping m_Mapping;
};

// Keys of the keyword type table: the export turns each keyword of its order
// into a type by this table, and a keyword without a type shifts every later
// section onto the wrong reader.
const std::set<std::string> kKeywordsWithType = {
    "LISTE :", "COMMENTAIRES :", "Chemical Composition:", "Phases:", "Phases",
    "Typical applications:", "Labels:", "LABELS :", "TABLES :", "MATERIAUX :", "TABLE",
    "TABLES", "NOM :", "Class", "MaterialType", "REACTION", "Composition", "DEF_MATERIAL",
    "Initial phases proportions", "Initial phases proportions if wire", "Initial hardness",
    "MATERIAL", "CHIMIE :", "GRAIN"};

// Every card model a row may name: the fourth word of a "NOM :" line, and
// the name under which a metallurgy file's reactions run.
const std::set<std::string> kCardModels = {"mechanical", "mechanical_phases", "thermometal",
                                           "diffusion", "tempering", "Metallurgy_Weld"};

std::vector<std::string> SplitAtCommas(const std::string& list) {
  std::vector<std::string> words;
  std::stringstream stream(list);
  std::string word;
  while (std::getline(stream, word, ',')) words.push_back(word);
  return words;
}

TEST_F(ShippedMapping, IsTheMappingOfTheSolutionOrielJoint) {
  EXPECT_EQ(m_Mapping.Solution(), "Oriel Joint");
  EXPECT_EQ(m_Mapping.Version(), "1");
  EXPECT_GT(m_Mapping.Parameters().size(), 100u);
}

TEST_F(ShippedMapping, ValidatesAgainstTheSchema) {
  xmlRelaxNGParserCtxtPtr parser = xmlRelaxNGNewParserCtxt(kShippedSchema.c_str());
  ASSERT_NE(parser, nullptr);
  xmlRelaxNGPtr schema = xmlRelaxNGParse(parser);
  ASSERT_NE(schema, nullptr) << "data/mapping.rng does not parse";
  xmlDocPtr document = xmlReadFile(kShippedMapping.c_str(), nullptr, XML_PARSE_NONET);
  ASSERT_NE(document, nullptr);
  xmlRelaxNGValidCtxtPtr validator = xmlRelaxNGNewValidCtxt(schema);
  std::vector<std::string> complaints;
  xmlRelaxNGSetValidStructuredErrors(
      validator,
      [](void* list, xmlErrorPtr error) {
        static_cast<std::vector<std::string>*>(list)->push_back(
            std::to_string(error->line) + ": " + (error->message ? error->message : ""));
      },
      &complaints);
  EXPECT_EQ(xmlRelaxNGValidateDoc(validator, document), 0);
  for (const std::string& complaint : complaints) ADD_FAILURE() << "mapping.xml:" << complaint;
  complaints.clear();

  // The schema must be able to say no, or the check above proves nothing.
  const std::string wrongText =
      "<Mapping><Parameters><Parameter OrvaneMLID=\"A\" DataType=\"double\"/></Parameters></Mapping>";
  xmlDocPtr wrong = xmlReadMemory(wrongText.data(), static_cast<int>(wrongText.size()), "wrong.xml",
                                  nullptr, XML_PARSE_NONET);
  ASSERT_NE(wrong, nullptr);
  EXPECT_NE(xmlRelaxNGValidateDoc(validator, wrong), 0);
  const std::string blankText =
      "<Mapping><Sections><Section CardsetKW=\"A\" CardsetKWParent=\"B\" CardsetModel=\"x, y\"/>"
      "</Sections></Mapping>";
  xmlDocPtr blankModel = xmlReadMemory(blankText.data(), static_cast<int>(blankText.size()),
                                       "blank.xml", nullptr, XML_PARSE_NONET);
  ASSERT_NE(blankModel, nullptr);
  EXPECT_NE(xmlRelaxNGValidateDoc(validator, blankModel), 0);
  EXPECT_EQ(complaints.size(), 2u);

  xmlFreeDoc(blankModel);
  xmlFreeDoc(wrong);
  xmlFreeDoc(document);
  xmlRelaxNGFreeValidCtxt(validator);
  xmlRelaxNGFree(schema);
  xmlRelaxNGFreeParserCtxt(parser);
}

TEST_F(ShippedMapping, DeclaresTheModelsEveryMaterialGetsInOrder) {
  std::vector<std::string> models;
  for (const MappingModel& model : m_Mapping.Models()) models.push_back(model.idref);
  EXPECT_EQ(models, (std::vector<std::string>{"GenericInfo_Weld", "PhaseDetails", "Mechanical_Weld",
                                              "Thermal_Weld", "Metallurgy_Weld", "Tempering_Weld",
                                              "Diffusion_Weld"}));
  const MappingModel* thermal = m_Mapping.FindModel("Thermal_Weld");
  ASSERT_NE(thermal, nullptr);
  EXPECT_EQ(thermal->subModels, (std::vector<std::string>{"ThermalPropertyModel"}));
  // Made per phase and per reaction by the import, or by the host: a copy
  // made with the material would shift the instance numbers or rename "KX".
  for (const char* optional : {"Phase_details_model", "ReactionDefinition", "TemperReactionModel",
                               "ReducedIntegration", "CreepRuptureModel", "CreepRuptureModel21"}) {
    const MappingModel* owner = m_Mapping.FindOwnerOfSubModel(optional);
    ASSERT_NE(owner, nullptr) << optional;
    EXPECT_NE(std::find(owner->optionalSubModels.begin(), owner->optionalSubModels.end(), optional),
              owner->optionalSubModels.end())
        << optional;
  }
  EXPECT_EQ(m_Mapping.FindOwnerOfSubModel("SpecialPropertyModel")->idref, "Mechanical_Weld");
}

TEST_F(ShippedMapping, EveryParameterNamesADeclaredModel) {
  for (const MappingParameter& row : m_Mapping.Parameters()) {
    EXPECT_FALSE(row.model.empty()) << row.orvaneMLID;
    EXPECT_TRUE(m_Mapping.DeclaresModel(row.model)) << row.orvaneMLID << " in " << row.model;
  }
}

TEST_F(ShippedMapping, EveryRowHasACategoryDataTypeAndKnownCardModels) {
  for (const MappingParameter& row : m_Mapping.Parameters()) {
    EXPECT_FALSE(row.category.empty()) << row.orvaneMLID;
    EXPECT_FALSE(row.dataType.empty()) << row.orvaneMLID;
    EXPECT_FALSE(row.cardsetModel.empty()) << row.orvaneMLID;
    for (const std::string& model : SplitAtCommas(row.cardsetModel)) {
      EXPECT_EQ(kCardModels.count(model), 1u) << row.orvaneMLID << ": " << model;
    }
    EXPECT_EQ(row.dataType == "choice", !row.choices.empty()) << row.orvaneMLID;
  }
  for (const auto& section : m_Mapping.Sections()) {
    for (const std::string& model : SplitAtCommas(section.cardsetModel)) {
      EXPECT_EQ(kCardModels.count(model), 1u) << section.cardsetKW << ": " << model;
    }
  }
}

TEST_F(ShippedMapping, NoCardWordStandsForTwoIdentifiersInOneCardModel) {
  // One "CREEP" line stands for the whole creep family on export; the import
  // finds the first row of the word.  No other word may be shared.
  const std::set<std::string> familyWords = {"CREEP", "CREEP21"};
  std::map<std::pair<std::string, std::string>, std::string> seen;
  for (const MappingParameter& row : m_Mapping.Parameters()) {
    if (row.cardsetID.empty() || familyWords.count(row.cardsetID) != 0) continue;
    for (const std::string& model : SplitAtCommas(row.cardsetModel)) {
      auto inserted = seen.emplace(std::make_pair(row.cardsetID, model), row.orvaneMLID);
      EXPECT_EQ(inserted.first->second, row.orvaneMLID)
          << row.cardsetID << " in " << model << " stands for " << inserted.first->second
          << " and " << row.orvaneMLID;
    }
  }
  EXPECT_EQ(m_Mapping.FindByCardWord("CREEP", "mechanical")->orvaneMLID,
            "CreepLogHardeningCoefficient");
}

TEST_F(ShippedMapping, RowsOfOneIdentifierAgreeOnTheirFirstTableNumber) {
  // The export reads StartID by identifier and keeps the first it meets.
  std::map<std::string, std::string> startIDs;
  for (const MappingParameter& row : m_Mapping.Parameters()) {
    auto inserted = startIDs.emplace(row.orvaneMLID, row.startID);
    EXPECT_EQ(inserted.first->second, row.startID) << row.orvaneMLID;
  }
}

TEST_F(ShippedMapping, EverySectionKeywordAndParentHasAKeywordType) {
  ASSERT_FALSE(m_Mapping.Sections().empty());
  for (const auto& section : m_Mapping.Sections()) {
    EXPECT_EQ(kKeywordsWithType.count(section.cardsetKW), 1u) << section.cardsetKW;
    EXPECT_EQ(kKeywordsWithType.count(section.cardsetKWParent), 1u) << section.cardsetKWParent;
  }
  for (const MappingParameter& row : m_Mapping.Parameters()) {
    EXPECT_EQ(kKeywordsWithType.count(row.cardsetKW), 1u) << row.orvaneMLID << ": " << row.cardsetKW;
    EXPECT_TRUE(row.cardsetKWParent.empty()) << row.orvaneMLID << " would also be read as a section";
  }
}

TEST_F(ShippedMapping, HasARowForEveryStoreIdentifierTheSystemNames) {
  const char* const named[] = {
      "Material_type", "CategoryComments", "base", "Phase_name", "Phase_description", "Phase_Info",
      "Phase_Info_if_wire", "Initial_hardness", "Number of Phases", "NUM_PHASES", "MATID",
      "Density_weld", "Enthalpy_weld", "Thermal_conductivity_weld", "Specific_heat_capacity_weld",
      "Thermal_conductivity_weld_X", "Thermal_conductivity_weld_Y", "Thermal_conductivity_weld_Z",
      "DiffusionCoefficient", "DiffusionCoefficientY", "DiffusionCoefficientZ", "Youngs_modulus_weld",
      "Thermal_strains", "Hardening_model_combined", "Hardening_slope_curve", "FortranStatus",
      "TABLE", "Yield_Carbon_Coeff", "Strain_Carbon_Coeff", "Gama", "Penalty_Coefficient",
      "ConstraintStiffness", "CreepLogHardeningCoefficient", "CreepSensitivityExponent", "CreepH",
      "CreepLogC", "CreepConstantP", "CreepHardeningCoefficientK", "CreepHardeningExponentM",
      "CreepSensitivityExponentN", "CreepModelType", "AustenitePhaseIndex", "Number of Reactions",
      "Reaction_model", "Isothermal_parameters", "DefinitionType", "Parent_phase", "Product_phase",
      "Thermal_path", "MS_constant", "KM_constant", "PEQ_table_index", "TAU_table_index", "TIME_01",
      "TIME_99", "K_table_index", "KP_table_index", "N_table_index", "F_table_index",
      "FP_table_index", "FCA", "FCAKoistinen", "FCB", "EKTemperature_Nose", "EKTime_NoseEnd", "EKTs",
      "EKQ", "EKK", "EKm", "EKautoTshift", "ttt_diagram_selection", "ttt_diagram_user_material",
      "Tmin", "QConstant", "PowerConstant", "CConstant", "AUSTENITE", "CREEP", "CREEP21"};
  for (const char* id : named) EXPECT_NE(m_Mapping.FindByID(id), nullptr) << id;
}

TEST_F(ShippedMapping, CommentsLiveInTheModelOfEachCardModel) {
  const std::pair<const char*, const char*> expected[] = {{"mechanical", "Mechanical"},
                                                          {"mechanical_phases", "Mechanical"},
                                                          {"thermometal_cp", "Thermo-Physical"},
                                                          {"diffusion", "Diffusion"},
                                                          {"tempering", "Tempering"}};
  for (const auto& [cardModel, category] : expected) {
    const MappingParameter* row = m_Mapping.FindByID("CategoryComments", cardModel);
    ASSERT_NE(row, nullptr) << cardModel;
    EXPECT_EQ(row->category, category) << cardModel;
    EXPECT_EQ(row->cardsetKW, "COMMENTAIRES :");
  }
}

TEST_F(ShippedMapping, TheCardNamePhaseIsThePhaseName) {
  const MappingParameter* row = m_Mapping.FindByCardWord("PHASE", "mechanical");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->orvaneMLID, "Phase_name");
  EXPECT_EQ(row->model, "Phase_details_model");
  EXPECT_EQ(m_Mapping.FindByCardWord("PHAS", "thermometal_cp")->orvaneMLID, "Number of Phases");
  EXPECT_EQ(m_Mapping.FindByCardWord("PHAS", "thermometal_cp")->model, "PhaseDetails");
}

TEST_F(ShippedMapping, HardeningModelCodesAreTheCardFileNumbers) {
  const MappingParameter* row = m_Mapping.FindByCardWord("MODEL", "mechanical");
  ASSERT_NE(row, nullptr);
  // The import writes the names for 1 to 5 in place of the numbers; the
  // export writes the codes back, and 11 goes with PISOTROPIC.
  const std::map<std::string, std::string> expected = {{"Perfect plasticity", "1"},
                                                       {"Kinematic", "2"},
                                                       {"Isotropic", "3"},
                                                       {"Non-linear kinematic", "4"},
                                                       {"Combined", "5"}};
  std::map<std::string, std::string> codes;
  for (const auto& choice : row->choices) codes[choice.name] = choice.cardCode;
  for (const auto& [name, code] : expected) EXPECT_EQ(codes[name], code) << name;
  bool hasCode11 = false;
  for (const auto& choice : row->choices) hasCode11 = hasCode11 || choice.cardCode == "11";
  EXPECT_TRUE(hasCode11);
  EXPECT_EQ(m_Mapping.FindByCardWord("PISOTROPIC", "mechanical")->orvaneMLID,
            "Hardening_model_combined");
}

TEST_F(ShippedMapping, TablesStartWhereTheSampleFilesNumberThem) {
  const std::map<std::string, std::string> expected = {
      {"Youngs_modulus_weld", "1"}, {"Thermal_strains", "20"}, {"Yield_stress_weld", "40"},
      {"FortranStatus", "50"}, {"Hardening_slope_curve", "60"}, {"TABLE", "80"},
      {"Yield_Carbon_Coeff", "81"}, {"DiffusionCoefficient", "5"},
      {"Thermal_conductivity_weld", "10"}, {"Specific_heat_capacity_weld", "20"},
      {"Enthalpy_weld", "30"}, {"PEQ_table_index", "100"}, {"TAU_table_index", "110"},
      {"N_table_index", "120"}, {"K_table_index", "200"}, {"KP_table_index", "210"},
      {"F_table_index", "220"}, {"FP_table_index", "230"}, {"FCAKoistinen", "300"},
      {"FCB", "310"}, {"CreepLogHardeningCoefficient", "201"}};
  for (const auto& [id, start] : expected) {
    ASSERT_NE(m_Mapping.FindByID(id), nullptr) << id;
    EXPECT_EQ(m_Mapping.FindByID(id)->startID, start) << id;
  }
}

TEST_F(ShippedMapping, ReactionKeysOfAMetallurgyFileReachTheCalibrationIdentifiers) {
  // A metallurgy file has no "NOM :" line; its reactions run under the model
  // name "Metallurgy_Weld", and the calibration read looks for these names.
  const std::map<std::string, std::string> expected = {
      {"PEQ", "PEQ_table_index"}, {"TAU", "TAU_table_index"}, {"KT", "K_table_index"},
      {"KP", "KP_table_index"},   {"NX", "N_table_index"},     {"FX", "F_table_index"},
      {"FP", "FP_table_index"},   {"FCA", "FCA"},              {"TIME_01", "TIME_01"},
      {"TIME_99", "TIME_99"}};
  for (const auto& [word, id] : expected) {
    const MappingParameter* row = m_Mapping.FindByCardWord(word, "Metallurgy_Weld");
    ASSERT_NE(row, nullptr) << word;
    EXPECT_EQ(row->orvaneMLID, id) << word;
    EXPECT_TRUE(row->ListsCardModel("Metallurgy_Weld")) << word;
  }
  // The same letters mean other things in a mechanical model.
  EXPECT_EQ(m_Mapping.FindByCardWord("KT", "mechanical")->orvaneMLID, "Hardening_coefficient");
  EXPECT_EQ(m_Mapping.FindByCardWord("NX", "mechanical")->orvaneMLID, "Hardening_exponent");
  EXPECT_EQ(m_Mapping.FindByCardWord("KT", "tempering")->model, "TemperReactionModel");
  EXPECT_EQ(m_Mapping.FindByCardWord("KT", "thermometal_cp")->model, "ReactionDefinition");
}

TEST_F(ShippedMapping, ReactionRowsStartAtTheParentPhaseFollowedByProductPathAndModel) {
  // The export takes the three rows behind "Parent_phase" by position.
  for (const char* category : {"Metallurgy", "Tempering"}) {
    std::vector<std::string> ids;
    for (const MappingParameter& row : m_Mapping.Parameters()) {
      if (row.category == category) ids.push_back(row.orvaneMLID);
    }
    auto parent = std::find(ids.begin(), ids.end(), "Parent_phase");
    ASSERT_NE(parent, ids.end()) << category;
    ASSERT_GE(ids.end() - parent, 4) << category;
    EXPECT_EQ(parent[1], "Product_phase") << category;
    EXPECT_EQ(parent[2], "Thermal_path") << category;
    EXPECT_EQ(parent[3], "Reaction_model") << category;
  }
}

// ---------------------------------------------------------------------------
// The export order the shipped sections produce, worked out the way the
// export driver does: rows by keyword in byte order, a keyword standing
// before its parent moved behind it with its children known so far, and
// "TABLES :" put right behind "LABELS :" (or dropped without it).

bool ListsWord(const std::string& list, const std::string& word) {
  for (const std::string& piece : SplitAtCommas(list)) {
    if (piece == word) return true;
  }
  return false;
}

void MoveToEnd(std::vector<std::string>& list, const std::string& word) {
  list.erase(std::find(list.begin(), list.end(), word));
  list.push_back(word);
}

std::vector<std::string> ExportOrder(const Mapping& mapping, const std::string& model) {
  std::multimap<std::string, std::pair<std::string, std::string>> sections;
  for (const auto& section : mapping.Sections()) {
    sections.emplace(section.cardsetKW,
                     std::make_pair(section.cardsetKWParent, section.cardsetModel));
  }
  std::map<std::string, std::vector<std::string>> children;
  std::vector<std::string> keywords;
  auto position = [&](const std::string& word) {
    return std::find(keywords.begin(), keywords.end(), word);
  };
  for (const auto& [keyword, row] : sections) {
    const std::string& parent = row.first;
    auto& siblings = children[parent];
    if (std::find(siblings.begin(), siblings.end(), keyword) == siblings.end()) {
      siblings.push_back(keyword);
    }
    bool applies = ListsWord(row.second, model);
    for (const MappingParameter& parameter : mapping.Parameters()) {
      if (!parameter.cardsetID.empty() && parameter.cardsetKW == keyword &&
          ListsWord(parameter.cardsetModel, model)) {
        applies = true;
      }
    }
    if (!applies) continue;
    if (position(parent) == keywords.end()) keywords.push_back(parent);
    if (position(keyword) == keywords.end()) {
      keywords.push_back(keyword);
    } else if (position(keyword) < position(parent)) {
      MoveToEnd(keywords, keyword);
      for (const std::string& child : children[keyword]) {
        if (position(child) != keywords.end()) MoveToEnd(keywords, child);
      }
    }
  }
  if (position("TABLES :") != keywords.end()) {
    keywords.erase(position("TABLES :"));
    if (position("LABELS :") != keywords.end()) keywords.insert(position("LABELS :") + 1, "TABLES :");
  }
  return keywords;
}

TEST_F(ShippedMapping, ExportOrderOfEachModelFollowsTheCardFileLayout) {
  using Order = std::vector<std::string>;
  EXPECT_EQ(ExportOrder(m_Mapping, "mechanical"),
            (Order{"NOM :", "COMMENTAIRES :", "LABELS :", "TABLES :", "DEF_MATERIAL"}));
  EXPECT_EQ(ExportOrder(m_Mapping, "diffusion"),
            (Order{"NOM :", "COMMENTAIRES :", "CHIMIE :", "LABELS :", "TABLES :"}));
  EXPECT_EQ(ExportOrder(m_Mapping, "thermometal"),
            (Order{"NOM :", "COMMENTAIRES :", "MATERIAUX :", "REACTION", "GRAIN", "TABLE"}));
  EXPECT_EQ(ExportOrder(m_Mapping, "tempering"),
            (Order{"NOM :", "COMMENTAIRES :", "MATERIAUX :", "REACTION", "TABLE"}));
  EXPECT_TRUE(ExportOrder(m_Mapping, "unknown").empty());
}

// ---------------------------------------------------------------------------
// Words as the import hands them to the store.  The import renames the words
// of a line before the store sees them, by section keyword, card model, the
// text of a label line and what the store already holds; the tests below run
// the import's own renaming (ConvertVariableNames), so that the mapping is
// measured against it and not against a copy of its rules.

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
  return text;
}

// What the store may already hold when a line is renamed.
struct Held {
  bool constraintStiffness = false;  // a constraint stiffness stored by an earlier label line
  bool youngsModulus = false;        // a Young's modulus stored earlier in the block
  bool reducedIntegration = false;   // the host gave the thermal model "ReducedIntegration"
  const char* materialName = "W_Sample";
};

// The words of a line after the import's renaming, in a fresh store holding
// one material of `cardModel` with what `held` says.  `labelText` is the
// text of a "LABELS :" line, which the renaming reads from the line's card;
// other sections give none.
std::vector<std::string> RenamedLine(const std::vector<std::string>& words, const std::string& keyword,
                                     const std::string& cardModel, const char* labelText, const Held& held = {}) {
  const std::string noStore = "/tmp/quillon_mapping_renaming_" + std::to_string(getpid()) + ".xml";
  std::remove(noStore.c_str());
  OrvaneStaticVars::Init(noStore.c_str());
  OrvaneStaticVars::SetCurrentMaterialType("W");
  OrvaneStaticVars::GetOrCreateMaterial(held.materialName);
  OrvaneStaticVars::SetActiveModel(cardModel.c_str());
  if (held.constraintStiffness) {
    OrvaneMLRecordMatModel* mechanical = OrvaneStaticVars::FindModelByID("Mechanical_Weld");
    EXPECT_NE(mechanical, nullptr);
    if (mechanical != nullptr && mechanical->m_SubModels != nullptr) {
      for (OrvaneMLRecordMatModel* sub : mechanical->m_SubModels->m_Models) {
        if (sub->m_IDref != "SpecialPropertyModel") continue;
        auto* stiffness = new OrvaneMLRecordDataset;
        stiffness->SetIDref("ConstraintStiffness");
        sub->AddDataset(stiffness);
      }
    }
  }
  if (held.youngsModulus) OrvaneStaticVars::GetOrCreateDataset("Youngs_modulus_weld", "IDref", true, nullptr, nullptr);
  if (held.reducedIntegration) {
    OrvaneMLRecordMatModel* thermal = OrvaneStaticVars::FindModelByID("Thermal_Weld");
    EXPECT_NE(thermal, nullptr);
    if (thermal != nullptr) {
      auto* reduced = new OrvaneMLRecordMatModel;
      reduced->SetIDref("ReducedIntegration");
      thermal->GetOrCreateSubModels()->AddModel(reduced);
    }
  }

  ImportObject section(keyword.c_str());
  if (labelText != nullptr) {
    Card* card = new Card("LabelDetails");
    card->addField("StrValue", new CharArray(labelText, 10));
    section.addCard(card);
  }
  // Slots of the line reader's size, as the converters expect.
  std::vector<std::vector<char>> slots(words.size() + 2, std::vector<char>(2050, 0));
  std::vector<char*> pointers;
  for (size_t i = 0; i < slots.size(); ++i) {
    if (i < words.size()) std::snprintf(slots[i].data(), slots[i].size(), "%s", words[i].c_str());
    pointers.push_back(slots[i].data());
  }
  unsigned count = static_cast<unsigned>(words.size());
  ConvertVariableNames(pointers.data(), &count, 0, &section);
  std::vector<std::string> renamed;
  for (size_t i = 0; i < words.size(); ++i) renamed.push_back(slots[i].data());
  return renamed;
}

std::string Trimmed(const std::string& text) {
  const char* blanks = " \t\r\n";
  size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> WordsOf(const std::string& text, const std::string& separators) {
  std::vector<std::string> words;
  std::string word;
  for (char c : text) {
    if (separators.find(c) != std::string::npos) {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.size() >= prefix.size() && strncasecmp(text.c_str(), prefix.c_str(), prefix.size()) == 0;
}

// One word of a sample file that the store must be able to place.
struct CardWord {
  std::string file;
  std::string cardModel;
  std::string keyword;
  std::string word;
};

std::vector<std::string> CorpusCardFiles() {
  std::vector<std::string> files;
  for (const char* name : {"16MnCr5_thermometal.mat", "42CrMo4_tempering.mat", "AlMg4.5Mn.mat",
                           "METALLURGY.mat", "NiCr19Fe19Nb5Mo3.mat", "S355J2G3.mat",
                           "S460M_DE.mat", "case_hardening_steels.mat", "stainless_steels.mat"}) {
    files.push_back(std::string(QUILLON_CORPUS_DIR) + "/" + name);
  }
  return files;
}

// The parameter words of "LABELS :", "MATERIAUX :" and "CHIMIE :" sections,
// after renaming, with the card model of their "NOM :" block.
std::vector<CardWord> ParameterWordsOf(const std::string& path) {
  std::vector<CardWord> found;
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.good()) << path;
  std::string raw, cardModel, section;
  int lineInSection = 0;
  while (std::getline(in, raw)) {
    const std::string line = Trimmed(raw);
    if (line.empty()) continue;
    if (line.compare(0, 5, "NOM :") == 0) {
      std::vector<std::string> words = WordsOf(line.substr(5), " ");
      cardModel = words.size() > 2 ? words[2] : "";
      section.clear();
      continue;
    }
    if (line == "LABELS :" || line == "MATERIAUX :" || line == "CHIMIE :") {
      section = line;
      lineInSection = 0;
      continue;
    }
    if (section.empty()) continue;
    const bool ends = (section == "LABELS :" && StartsWith(line, "FIN LABELS")) ||
                      (section == "CHIMIE :" && StartsWith(line, "FIN CHIMIE")) ||
                      (section == "MATERIAUX :" &&
                       (StartsWith(line, "REACTION") || StartsWith(line, "FIN MATERIAUX")));
    if (ends) {
      section.clear();
      continue;
    }
    ++lineInSection;
    // The words of the line as its reader splits them, and the positions
    // of the parameter names among them.
    std::vector<std::string> words;
    std::vector<size_t> names;
    if (section == "LABELS :") {
      if (line.find('&') != std::string::npos) {
        words = WordsOf(line, " -&");
        names.push_back(0);
      } else {
        words = WordsOf(line, " ");
        if (words.size() == 2 && Upper(words[0]) == "MODEL") {
          names.push_back(0);  // a model line: its value is the model's name
        } else {
          for (size_t i = 0; i < words.size(); i += 2) names.push_back(i);
        }
      }
    } else if (section == "MATERIAUX :") {
      if (lineInSection <= 2) continue;  // the METALLURGY and PHASE lines
      words = WordsOf(line, "=() ");
      names.push_back(0);
    } else {
      words = WordsOf(line, " ");
      names.push_back(0);
    }
    const std::vector<std::string> renamed =
        RenamedLine(words, section, cardModel, section == "LABELS :" ? line.c_str() : nullptr);
    for (size_t name : names) found.push_back({path, cardModel, section, renamed[name]});
  }
  return found;
}

TEST_F(ShippedMapping, EveryParameterWordOfTheSampleFilesHasARowForItsCardModel) {
  size_t checked = 0;
  std::set<std::string> sectionsSeen;
  for (const std::string& path : CorpusCardFiles()) {
    for (const CardWord& entry : ParameterWordsOf(path)) {
      ++checked;
      sectionsSeen.insert(entry.keyword);
      const MappingParameter* row = m_Mapping.FindByCardWord(entry.word, entry.cardModel);
      ASSERT_NE(row, nullptr) << entry.word << " (" << entry.keyword << ", " << entry.cardModel
                              << ") of " << entry.file;
      EXPECT_TRUE(row->ListsCardModel(entry.cardModel) ||
                  row->ListsCardModel(Mapping::CardModelStem(entry.cardModel)))
          << entry.word << " found only by falling back on " << row->orvaneMLID << ", in "
          << entry.file;
      EXPECT_EQ(row->cardsetKW, entry.keyword) << entry.word << " in " << entry.file;
    }
  }
  EXPECT_EQ(sectionsSeen, (std::set<std::string>{"CHIMIE :", "LABELS :", "MATERIAUX :"}));
  EXPECT_GE(checked, 90u) << "the scan of the sample files found too few words";
}

std::string Renamed(const std::string& line, const std::string& keyword, const std::string& cardModel,
                    const Held& held = {}) {
  const bool labels = keyword == "LABELS :";
  const std::vector<std::string> words = WordsOf(line, labels && line.find('&') != std::string::npos ? " -&"
                                                       : keyword == "MATERIAUX :"                     ? "=() "
                                                                                                      : " ");
  return RenamedLine(words, keyword, cardModel, labels ? line.c_str() : nullptr, held)[0];
}

TEST(ImportRenaming, TheHelperDrivesEveryBranchOfTheImportsRenaming) {
  Held stiffness, modulus, reduced, slidePlane;
  stiffness.constraintStiffness = true;
  modulus.youngsModulus = true;
  reduced.reducedIntegration = true;
  slidePlane.materialName = "W_SLIDEPLANE_NOFRICTION";
  EXPECT_EQ(Renamed("RHO 7.85e-06", "LABELS :", "mechanical"), "MECHRHO");
  EXPECT_EQ(Renamed("RHO 7.85e-06", "LABELS :", "mechanical_phases"), "RHO");
  EXPECT_EQ(Renamed("C(1) = 900", "MATERIAUX :", "thermometal_cp"), "CX");
  EXPECT_EQ(Renamed("c(1) = 900", "MATERIAUX :", "thermometal_cp"), "CX");
  EXPECT_EQ(Renamed("C 900", "LABELS :", "mechanical"), "CX");
  EXPECT_EQ(Renamed("C 0.2", "CHIMIE :", "diffusion"), "CHIMIEC");
  EXPECT_EQ(Renamed("N 0.01", "CHIMIE :", "diffusion"), "CHIMIEN");
  EXPECT_EQ(Renamed("N 0.48", "LABELS :", "mechanical"), "NX");
  EXPECT_EQ(Renamed("K 1250", "LABELS :", "mechanical"), "KT");
  EXPECT_EQ(Renamed("F 0.1", "LABELS :", "diffusion"), "FX");
  EXPECT_EQ(Renamed("KX -&5&", "LABELS :", "diffusion"), "DX");
  EXPECT_EQ(Renamed("KX -&12&", "LABELS :", "mechanical"), "KSX");
  EXPECT_EQ(Renamed("KZ 1e+06", "LABELS :", "mechanical_phases"), "KSZ");
  // KY of the mechanical labels: a spring only on a reference line or once
  // a constraint stiffness is stored.
  EXPECT_EQ(Renamed("KY 50", "LABELS :", "mechanical"), "KY");
  EXPECT_EQ(Renamed("KY 50", "LABELS :", "mechanical", stiffness), "KSY");
  EXPECT_EQ(Renamed("KY -&8&", "LABELS :", "mechanical"), "KSY");
  // KY of a thermal block: the Y conductivity unless a Young's modulus is stored.
  EXPECT_EQ(Renamed("KY(1) = TABLE 50", "MATERIAUX :", "thermometal_cp"), "KYX");
  EXPECT_EQ(Renamed("KY(1) = TABLE 50", "MATERIAUX :", "thermometal_cp", modulus), "KY");
  EXPECT_EQ(Renamed("KX(1) = TABLE 10", "MATERIAUX :", "thermometal_cp"), "KX");
  EXPECT_EQ(Renamed("KX(1) = TABLE 10", "MATERIAUX :", "thermometal_cp", reduced), "KXX");
  EXPECT_EQ(Renamed("LX 1.65e-05", "LABELS :", "mechanical"), "IG");
  EXPECT_EQ(Renamed("LX -&20&", "LABELS :", "mechanical"), "LX");
  EXPECT_EQ(Renamed("LY $3", "LABELS :", "mechanical"), "IG");
  EXPECT_EQ(Renamed("LX(1) = TABLE 20", "MATERIAUX :", "thermometal_cp"), "LX");
  EXPECT_EQ(Renamed("E -&1&", "LABELS :", "mechanical"), "E");
  EXPECT_EQ(Renamed("E -&1&", "LABELS :", "mechanical", slidePlane), "EX");
  EXPECT_EQ(Renamed("E 210000", "LABELS :", "mechanical"), "EX");
  EXPECT_EQ(Renamed("E(1) = TABLE 1", "MATERIAUX :", "tempering"), "EX");
  EXPECT_EQ(Renamed("MODEL 3", "LABELS :", "mechanical"), "MODEL");
}

// Every word the renaming can give in a section a card model writes finds a
// row of that card model, for that section, in that card model's store
// model.  A word without one would be filed by another card model's row, in
// another model, or kept under its own name.
struct WordContext {
  const char* cardModel;
  const char* keyword;
  std::set<std::string> expected;  // every word the renaming gives there
};

TEST_F(ShippedMapping, EveryWordTheRenamingGivesHasARowInTheStoreModelOfItsCardModel) {
  const std::vector<std::string> labelWords = {"RHO", "C", "KX", "KY", "KZ", "E", "K", "F", "N", "LX", "LY", "LZ"};
  const std::vector<std::string> variableWords = {"RHO", "C", "KX", "KY", "KZ", "H", "E", "LX", "LY", "LZ"};
  const std::vector<std::string> chemistryWords = {"C", "N", "MN", "CR", "SI", "NI", "MO", "CU", "AL", "TI", "NB", "CO"};
  const std::set<std::string> thermalWords = {"RHO", "CX", "KX", "KXX", "KY", "KYX", "KZ", "H", "EX", "LX", "LY", "LZ", "IG"};
  const WordContext contexts[] = {
      {"mechanical", "LABELS :",
       {"MECHRHO", "CX", "KSX", "KSY", "KY", "KSZ", "E", "EX", "KT", "FX", "NX", "LX", "LY", "LZ", "IG"}},
      {"mechanical_phases", "LABELS :",
       {"RHO", "CX", "KSX", "KSY", "KY", "KSZ", "E", "EX", "KT", "FX", "NX", "LX", "LY", "LZ", "IG"}},
      {"diffusion", "LABELS :",
       {"RHO", "CX", "DX", "DY", "DZ", "E", "EX", "KT", "FX", "NX", "LX", "LY", "LZ", "IG"}},
      {"diffusion", "CHIMIE :",
       {"CHIMIEC", "CHIMIEN", "MN", "CR", "SI", "NI", "MO", "CU", "AL", "TI", "NB", "CO"}},
      {"thermometal_cp", "MATERIAUX :", thermalWords},
      {"thermometal_enth", "MATERIAUX :", thermalWords},
      {"tempering", "MATERIAUX :", thermalWords},
  };
  std::vector<Held> settings(4);
  settings[1].constraintStiffness = true;
  settings[2].youngsModulus = true;
  settings[3].reducedIntegration = true;

  for (const WordContext& context : contexts) {
    const std::string keyword = context.keyword;
    const std::vector<std::string>& vocabulary =
        keyword == "LABELS :" ? labelWords : keyword == "MATERIAUX :" ? variableWords : chemistryWords;
    // Each line form a word can stand in: a value, a reference to a table,
    // a value behind "$".
    std::vector<std::pair<std::vector<std::string>, std::string>> forms;
    for (const std::string& word : vocabulary) {
      if (keyword == "LABELS :") {
        forms.push_back({{word, "5"}, word + " 5"});
        forms.push_back({{word, "12"}, word + " -&12&"});
        forms.push_back({{word, "$5"}, word + " $5"});
      } else if (keyword == "MATERIAUX :") {
        forms.push_back({{word, "1", "5"}, ""});
        forms.push_back({{word, "1", "TABLE", "10"}, ""});
        forms.push_back({{word, "$5"}, ""});
      } else {
        forms.push_back({{word, "0.2"}, ""});
      }
    }
    std::set<std::string> given;
    for (const Held& held : settings) {
      for (const auto& [words, text] : forms) {
        const std::string word =
            RenamedLine(words, keyword, context.cardModel, text.empty() ? nullptr : text.c_str(), held)[0];
        if (!given.insert(word).second) continue;
        const std::string where = word + " (" + keyword + ", " + context.cardModel + ")";
        const MappingParameter* row = m_Mapping.FindByCardWord(word, context.cardModel);
        if (row == nullptr) {
          ADD_FAILURE() << where << " has no row";
          continue;
        }
        EXPECT_TRUE(row->ListsCardModel(context.cardModel) ||
                    row->ListsCardModel(Mapping::CardModelStem(context.cardModel)))
            << where << " falls back on the row of " << row->orvaneMLID << " for " << row->cardsetModel;
        EXPECT_EQ(row->cardsetKW, keyword) << where;
        const MappingModel* owner = m_Mapping.FindModel(row->model) != nullptr
                                        ? m_Mapping.FindModel(row->model)
                                        : m_Mapping.FindOwnerOfSubModel(row->model);
        const MappingModel* home = m_Mapping.DefaultModelForCardModel(context.cardModel);
        ASSERT_NE(home, nullptr) << context.cardModel;
        ASSERT_NE(owner, nullptr) << where << ": " << row->model;
        EXPECT_EQ(owner->idref, home->idref) << where << " is kept in " << row->model;
      }
    }
    EXPECT_EQ(given, context.expected) << keyword << ", " << context.cardModel;
  }
}

// The keys of a reaction line, as the reaction reader names them, in the
// reaction model of each card model that has reactions.
TEST_F(ShippedMapping, ReactionKeysHaveRowsInTheReactionModelOfEachCardModel) {
  const char* const keys[] = {"KT", "KP", "FX", "FP", "NX", "PEQ", "TAU", "FCA", "MS", "KM", "FCAK", "FCB"};
  const std::pair<const char*, const char*> models[] = {{"thermometal_cp", "ReactionDefinition"},
                                                        {"thermometal_enth", "ReactionDefinition"},
                                                        {"Metallurgy_Weld", "ReactionDefinition"},
                                                        {"tempering", "TemperReactionModel"}};
  for (const auto& [cardModel, definition] : models) {
    for (const char* key : keys) {
      const MappingParameter* row = m_Mapping.FindByCardWord(key, cardModel);
      ASSERT_NE(row, nullptr) << key << " (" << cardModel << ")";
      EXPECT_TRUE(row->ListsCardModel(cardModel) || row->ListsCardModel(Mapping::CardModelStem(cardModel)))
          << key << " (" << cardModel << ") falls back on " << row->cardsetModel;
      EXPECT_EQ(row->cardsetKW, "REACTION") << key << " (" << cardModel << ")";
      EXPECT_EQ(row->model, definition) << key << " (" << cardModel << ")";
    }
  }
}

// The grain line's words stand at fixed places and are its identifiers, as
// written; C is renamed.
TEST_F(ShippedMapping, GrainWordsHaveRowsAsTheGrainLineWritesThem) {
  const std::vector<std::vector<std::string>> lines = {
      {"GRAIN", "TMIN", "900", "Q", "280000", "POWER", "2", "C", "2e+06", "AUSTENITE", "6"},
      {"GRAIN", "Tmin", "700.", "Q", "2.5", "POWER", "3", "C", "1.0", "Austenite", "1"}};
  const std::vector<std::string> ids = {"Tmin", "QConstant", "PowerConstant", "CConstant", "AUSTENITE"};
  for (const std::vector<std::string>& line : lines) {
    const std::vector<std::string> renamed = RenamedLine(line, "GRAIN", "thermometal_cp", nullptr);
    EXPECT_EQ(renamed[7], "GRAINC");
    for (size_t i = 1; i < 10; i += 2) {
      const MappingParameter* row = m_Mapping.FindByCardWord(renamed[i], "thermometal_cp");
      ASSERT_NE(row, nullptr) << renamed[i];
      EXPECT_EQ(row->orvaneMLID, ids[i / 2]) << renamed[i];
      EXPECT_EQ(row->cardsetKW, "GRAIN") << renamed[i];
      EXPECT_TRUE(row->ListsCardModel("thermometal")) << renamed[i];
    }
  }
}

// The creep list table renames the creep model after the model's code; the
// family has rows in the model it ends in, and the tags it is made under.
TEST_F(ShippedMapping, TheCreepFamilyHasRowsInTheModelsTheCreepTableNames) {
  const std::pair<const char*, const char*> family[] = {
      {"CREEP", "CreepRuptureModel"},
      {"CreepLogHardeningCoefficient", "CreepRuptureModel"},
      {"CreepSensitivityExponent", "CreepRuptureModel"},
      {"CreepH", "CreepRuptureModel"},
      {"CreepLogC", "CreepRuptureModel"},
      {"CreepConstantP", "CreepRuptureModel"},
      {"CREEP21", "CreepRuptureModel21"},
      {"CreepHardeningCoefficientK", "CreepRuptureModel21"},
      {"CreepHardeningExponentM", "CreepRuptureModel21"},
      {"CreepSensitivityExponentN", "CreepRuptureModel21"}};
  for (const auto& [id, model] : family) {
    bool found = false;
    for (const MappingParameter& row : m_Mapping.Parameters()) {
      found = found || (row.orvaneMLID == id && row.model == model && row.ListsCardModel("mechanical"));
    }
    EXPECT_TRUE(found) << id << " in " << model;
  }
  // The import finds the family's first row by the card word, in the model
  // every material has.
  EXPECT_EQ(m_Mapping.FindByCardWord("CREEP", "mechanical")->model, "CreepModel");
  EXPECT_EQ(m_Mapping.FindByID("CREEP", "mechanical")->model, "CreepRuptureModel");
}

// Reaction keys and grain words, the other words of the samples that become
// datasets by their card word.
TEST_F(ShippedMapping, ReactionKeysAndGrainWordsOfTheSampleFilesHaveRows) {
  const std::map<std::string, std::string> keyNames = {{"K", "KT"},     {"KP", "KP"},   {"F", "FX"},
                                                       {"FP", "FP"},    {"N", "NX"},    {"PEQ", "PEQ"},
                                                       {"TAU", "TAU"},  {"FCA", "FCA"}, {"MS", "MS"},
                                                       {"KM", "KM"},    {"FCB", "FCB"}};
  size_t checked = 0;
  for (const std::string& path : CorpusCardFiles()) {
    std::ifstream in(path, std::ios::binary);
    std::string raw, cardModel = "Metallurgy_Weld";
    bool inReaction = false;
    while (std::getline(in, raw)) {
      const std::string line = Trimmed(raw);
      if (line.compare(0, 5, "NOM :") == 0) {
        std::vector<std::string> words = WordsOf(line.substr(5), " ");
        cardModel = words.size() > 2 ? words[2] : "";
        continue;
      }
      if (line.compare(0, 5, "GRAIN") == 0) {
        inReaction = false;
        const std::vector<std::string> words = RenamedLine(WordsOf(line, " "), "GRAIN", cardModel, nullptr);
        for (size_t i = 1; i < words.size() && i < 10; i += 2) {
          const std::string& word = words[i];
          const MappingParameter* row = m_Mapping.FindByCardWord(word, cardModel);
          ++checked;
          ASSERT_NE(row, nullptr) << word << " of " << path;
          EXPECT_EQ(row->cardsetKW, "GRAIN") << word;
        }
        continue;
      }
      if (line == "REACTION") {
        inReaction = true;
        continue;
      }
      if (StartsWith(line, "TABLE")) inReaction = false;
      if (!inReaction) continue;
      const bool martensite = line.find("MS") != std::string::npos || line.find("KM") != std::string::npos;
      for (const std::string& token : WordsOf(line, " ")) {
        auto key = keyNames.find(Upper(token));
        if (key == keyNames.end()) continue;
        const std::string word = (martensite && key->second == "FCA") ? "FCAK" : key->second;
        const MappingParameter* row = m_Mapping.FindByCardWord(word, cardModel);
        ++checked;
        ASSERT_NE(row, nullptr) << word << " (" << cardModel << ") of " << path;
        EXPECT_EQ(row->cardsetKW, "REACTION") << word;
        EXPECT_TRUE(row->ListsCardModel(cardModel) ||
                    row->ListsCardModel(Mapping::CardModelStem(cardModel)))
            << word << " (" << cardModel << ") of " << path;
      }
    }
  }
  EXPECT_GE(checked, 60u);
}

}  // namespace
