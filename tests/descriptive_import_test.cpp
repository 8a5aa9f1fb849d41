// The descriptive sections on the whole import road: corpus files through the
// driver, and what they leave in the store's document and saved database.

#include <gtest/gtest.h>
#include "xpath_test_support.h"

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "import/sectionconverters.h"
#include "import/sectionentries.h"
#include "import_test_support.h"
#include "sections/chemicalcomposition.h"
#include "sections/chimie.h"
#include "sections/composition.h"
#include "sections/initialhardness.h"
#include "sections/materiaux.h"
#include "sections/matlabels.h"
#include "sections/metallurgy.h"
#include "sections/phaseinfo.h"
#include "sections/phaseinfoifwire.h"
#include "sections/phases.h"
#include "store/dombridge.h"

using namespace importtest;

namespace {

struct Reader {
  unsigned type;
  SectionEntry entry;
};

const Reader kDescriptiveReaders[] = {
    {KW_CHEMICAL_COMPOSITION, runChemicalCompositionImport},
    {KW_PHASES, runPhasesImport},
    {KW_MAT_LABELS, runMatLabelsImport},
    {KW_MATERIAUX, runMateriauxImport},
    {KW_COMPOSITION, runCompositionImport},
    {KW_PHASE_INFO, runPhaseInfoImport},
    {KW_PHASE_INFO_IF_WIRE, runPhaseInfoIfWireImport},
    {KW_INITIAL_HARDNESS, runInitialHardnessImport},
    {KW_METALLURGY, runMetallurgyImport},
    {KW_CHIMIE, runChimieImport},
};

// The texts of the nodes (elements or attributes) an XPath expression selects.
std::vector<std::string> Select(void* document, const std::string& path) {
  return xpathtest::SelectTexts(document, path);
}

std::string One(void* document, const std::string& path) {
  std::vector<std::string> texts = Select(document, path);
  EXPECT_EQ(texts.size(), 1u) << path;
  return texts.empty() ? "<none>" : texts.front();
}

std::string Material(const std::string& id) { return "/*/Record[@ID='" + id + "']"; }

std::string Phase(const std::string& material, int phase) {
  return Material(material) + "//Model[@IDref='Phase_details_model'][@InstanceID='" + std::to_string(phase) + "']";
}

// A dataset of a material, wherever it stands, by its identifier.
std::string Dataset(const std::string& material, const std::string& idref) {
  return Material(material) + "//Dataset[@IDref='" + idref + "']";
}

// A parameter's dataset in one of the material's models, leaving out the
// material's own table datasets, which may carry the same identifier.
std::string ModelDataset(const std::string& material, const std::string& idref) {
  return Material(material) + "/Model//Dataset[@IDref='" + idref + "']";
}

class DescriptiveImportTest : public testing::Test {
 protected:
  // Imports a corpus file the way a host does; the document belongs to the store.
  void* Import(const char* name) {
    FreshStore();
    m_Run = ImportAsAHost(CorpusPath(name), ScratchDir() + "/descriptive.xml");
    EXPECT_GT(m_Run.visited, 1) << name;
    EXPECT_EQ(m_Run.message, "") << name;
    EXPECT_NE(m_Run.document, nullptr) << name;
    return m_Run.document;
  }

  HostImport m_Run;
};

TEST_F(DescriptiveImportTest, DispatchTableReadsTheDescriptiveSections) {
  for (const Reader& reader : kDescriptiveReaders) {
    const std::vector<SectionEntryRow>& rows = SectionEntryRows();
    const bool listed = std::any_of(rows.begin(), rows.end(), [&](const SectionEntryRow& row) {
      return row.keywordType == reader.type && row.entry == reader.entry;
    });
    EXPECT_TRUE(listed) << "keyword type " << reader.type;
  }
}

TEST_F(DescriptiveImportTest, WeldSteelPhasesHardnessProportionsAndComposition) {
  void* document = Import("S355J2G3.mat");
  const std::string steel = "W_S355J2G3";

  EXPECT_EQ(Select(document, Material(steel) + "//Model[@IDref='Phase_details_model']").size(), 6u);
  EXPECT_EQ(One(document, Phase(steel, 1) + "/Dataset[@IDref='Phase_description']/String"),
            "Ferrite / Pearlite & Initial Material");
  EXPECT_EQ(One(document, Phase(steel, 1) + "/Dataset[@IDref='Phase_name']/String"), "Ferrite");
  // The empty entry of phase 2 gives the filler of a weld.
  EXPECT_EQ(One(document, Phase(steel, 2) + "/Dataset[@IDref='Phase_description']/String"),
            "Not Yet Existing Filler Material");
  EXPECT_EQ(One(document, Phase(steel, 2) + "/Dataset[@IDref='Phase_name']/String"), "Fictive Phase");
  EXPECT_EQ(One(document, Phase(steel, 6) + "/Dataset[@IDref='Phase_name']/String"), "Austenite");
  // The wizard's "Phases" block comes after the list and changes nothing.
  EXPECT_EQ(Select(document, Material(steel) + "//Dataset[@IDref='Phase_name']").size(), 6u);

  EXPECT_EQ(One(document, Phase(steel, 1) + "/Dataset[@IDref='Initial_hardness']//Value"), "165");
  EXPECT_EQ(One(document, Phase(steel, 3) + "/Dataset[@IDref='Initial_hardness']//Value"), "290");
  EXPECT_EQ(One(document, Phase(steel, 6) + "/Dataset[@IDref='Initial_hardness']//Value"), "180");
  EXPECT_EQ(Select(document, Dataset(steel, "Initial_hardness")).size(), 4u);

  EXPECT_EQ(One(document, Phase(steel, 2) + "/Dataset[@IDref='Phase_Info_if_wire']//Value"), "1");
  EXPECT_EQ(One(document, Phase(steel, 5) + "/Dataset[@IDref='Phase_Info_if_wire']//Value"), "0");
  EXPECT_EQ(One(document, Phase(steel, 1) + "/Dataset[@IDref='Phase_Info']//Value"), "1");
  EXPECT_EQ(One(document, Phase(steel, 4) + "/Dataset[@IDref='Phase_Info']//Value"), "0");

  EXPECT_EQ(One(document, Dataset(steel, "C_weight_content") + "//Value"), "0.17");
  EXPECT_EQ(One(document, Dataset(steel, "Cu_weight_content") + "//Value"), "0.15");
}

TEST_F(DescriptiveImportTest, WeldSteelLabels) {
  const int status = GetStatusCounter();
  void* document = Import("S355J2G3.mat");
  const std::string steel = "W_S355J2G3";
  EXPECT_EQ(One(document, Dataset(steel, "Hardening_model") + "/String"), "Isotropic");
  EXPECT_EQ(One(document, Dataset(steel, "Poissons_ratio_weld") + "//Value"), "0.3");
  EXPECT_EQ(One(document, Dataset(steel, "Mechanical_density") + "//Value"), "7.85e-06");
  EXPECT_EQ(One(document, Dataset(steel, "Melting_temperature") + "//Value"), "1480");
  EXPECT_EQ(One(document, Dataset(steel, "Annealing_temperature") + "//Value"), "900");
  EXPECT_EQ(One(document, ModelDataset(steel, "Youngs_modulus_weld") + "/Link/@DatasetIDref"), "1");
  EXPECT_EQ(One(document, ModelDataset(steel, "Thermal_strains") + "/Link/@DatasetIDref"), "20");
  EXPECT_EQ(One(document, ModelDataset(steel, "TABLE") + "/Link/@DatasetIDref"), "80");
  // The status line takes the process's running number instead of the file's 50.
  EXPECT_EQ(One(document, ModelDataset(steel, "FortranStatus") + "/Link/@DatasetIDref"), std::to_string(status));
}

TEST_F(DescriptiveImportTest, PhaseListInPhaseWordFormWithTempering) {
  void* document = Import("42CrMo4_tempering.mat");
  const std::string steel = "W_42CrMo4";
  EXPECT_EQ(Select(document, Material(steel) + "//Model[@IDref='Phase_details_model']").size(), 6u);
  EXPECT_EQ(One(document, Phase(steel, 5) + "/Dataset[@IDref='Phase_name']/String"), "Tempered Martensite");
  EXPECT_EQ(One(document, Phase(steel, 4) + "/Dataset[@IDref='Initial_hardness']//Value"), "620");
  EXPECT_EQ(One(document, Phase(steel, 2) + "/Dataset[@IDref='Phase_Info']//Value"), "0");
  EXPECT_EQ(One(document, Phase(steel, 5) + "/Dataset[@IDref='Phase_Info']//Value"), "0.7");
  EXPECT_EQ(One(document, Dataset(steel, "ConstraintStiffness_Z") + "//Value"), "1e+06");
  // RHO keeps its name in a model with phases.
  EXPECT_EQ(One(document, Dataset(steel, "Mechanical_density") + "//Value"), "7.85e-06");
}

TEST_F(DescriptiveImportTest, ThermalVariableLinesWithPhasesAndTables) {
  void* document = Import("16MnCr5_thermometal.mat");
  const std::string steel = "W_16MnCr5";
  // The last constant line of a word is the one that stays.
  const std::string density = Dataset(steel, "Density_weld") + "/Float/Constant";
  EXPECT_EQ(One(document, density + "/Value"), "7.98e-6");
  EXPECT_EQ(Select(document, density + "/ParameterFixed[@IDref='Selected_Phases']/Value"),
            std::vector<std::string>{"Austenite"});
  // Each table of a link line carries its phases on its curve.
  const std::string conductivity = Material(steel) + "//Dataset[@IDref='Thermal_conductivity_weld'][@DatasetID='10']";
  EXPECT_EQ(Select(document, conductivity + "/Float/Curve[@Label='Curve10']/ParameterFixed/Value"),
            (std::vector<std::string>{"Ferrite", "Pearlite", "Bainite"}));
  const std::string heat = Material(steel) + "//Dataset[@IDref='Specific_heat_capacity_weld'][@DatasetID='21']";
  EXPECT_EQ(Select(document, heat + "/Float/Curve[@Label='Curve21']/ParameterFixed/Value"),
            (std::vector<std::string>{"Martensite", "Tempered Bainite"}));
  // The link datasets of the words name their tables.
  EXPECT_EQ(Select(document, Material(steel) + "//Model[@IDref='ThermalPropertyModel']"
                                               "/Dataset[@IDref='Thermal_conductivity_weld']/Link/@DatasetIDref"),
            (std::vector<std::string>{"10", "11", "12"}));
}

TEST_F(DescriptiveImportTest, ChemistryAndDiffusionLabels) {
  void* document = Import("case_hardening_steels.mat");
  EXPECT_EQ(One(document, Dataset("W_20MnCr5", "Chimie_C") + "//Value"), "0.2");
  EXPECT_EQ(One(document, Dataset("W_20MnCr5", "Chimie_N") + "//Value"), "0.012");
  EXPECT_EQ(One(document, Dataset("W_20MnCr5", "Chimie_SI") + "//Value"), "0.25");
  EXPECT_EQ(One(document, Dataset("W_18CrNiMo7-6", "Chimie_C") + "//Value"), "0.18");
  EXPECT_EQ(One(document, Dataset("W_18CrNiMo7-6", "Chimie_MO") + "//Value"), "0.3");
  EXPECT_EQ(One(document, ModelDataset("W_20MnCr5", "DiffusionCoefficient") + "/Link/@DatasetIDref"), "5");
  EXPECT_EQ(One(document, Dataset("W_20MnCr5", "Carbon_surface_content") + "//Value"), "0.8");
  EXPECT_EQ(One(document, Dataset("W_18CrNiMo7-6", "Enthalpy_weld") + "/Link[1]/@DatasetIDref"), "30");
}

TEST_F(DescriptiveImportTest, CrlfFileWithCompositionAndConstantsOnly) {
  void* document = Import("AlMg4.5Mn.mat");
  const std::string alloy = "W_AlMg4.5Mn";
  EXPECT_EQ(One(document, Dataset(alloy, "Mg_weight_content") + "//Value"), "4.5");
  EXPECT_EQ(One(document, Dataset(alloy, "Zn_weight_content") + "//Value"), "0.1");
  EXPECT_EQ(One(document, Dataset(alloy, "Hardening_model") + "/String"), "Non-linear kinematic");
  EXPECT_EQ(One(document, Dataset(alloy, "Density_weld") + "//Constant/Value"), "2.66e-6");
  EXPECT_EQ(One(document, Dataset(alloy, "Thermal_conductivity_weld") + "//Constant/Value"), "0.121");
  EXPECT_EQ(One(document, Dataset(alloy, "Specific_heat_capacity_weld") + "//Constant/Value"), "900");
  EXPECT_EQ(One(document, Dataset(alloy, "Specific_heat_capacity_weld") + "//ParameterFixed/Value"), "Ferrite");
}

TEST_F(DescriptiveImportTest, StainlessSteelsRenamedLabels) {
  void* document = Import("stainless_steels.mat");
  const std::string first = "W_X2CrNiMo17-12-2";
  EXPECT_EQ(One(document, Dataset(first, "Thermal_expansion_coefficient") + "//Value"), "1.65e-05");
  EXPECT_EQ(Select(document, Dataset(first, "Thermal_strains")).size(), 0u);
  EXPECT_EQ(One(document, Dataset(first, "Hardening_coefficient") + "//Value"), "1250");
  EXPECT_EQ(One(document, Dataset(first, "Hardening_exponent") + "//Value"), "0.48");
  EXPECT_EQ(One(document, Dataset("W_X5CrNi18-10", "Cr_weight_content") + "//Value"), "18.1");
  // The ranges table of the third material is no composition of the store.
  EXPECT_EQ(Select(document, Dataset("W_X2CrNiMoN22-5-3", "Cr_weight_content")).size(), 0u);
}

TEST_F(DescriptiveImportTest, MixedHardeningModelAndNickelComposition) {
  void* document = Import("NiCr19Fe19Nb5Mo3.mat");
  const std::string alloy = "W_NiCr19Fe19Nb5Mo3";
  EXPECT_EQ(One(document, Dataset(alloy, "Hardening_model") + "/String"), "Mixed isotropic-kinematic");
  EXPECT_EQ(One(document, Dataset(alloy, "Hardening_model_combined") + "//Value"), "0.4");
  EXPECT_EQ(One(document, Dataset(alloy, "Nb_weight_content") + "//Value"), "5.1");
}

TEST_F(DescriptiveImportTest, DistortionMaterialsKeepTheirLabels) {
  void* document = Import("S460M_DE.mat");
  EXPECT_EQ(One(document, Dataset("DEW_S460M", "Annealing_temperature") + "//Value"), "1000");
  EXPECT_EQ(One(document, Dataset("DE_S690QL", "Annealing_temperature") + "//Value"), "1000");
  EXPECT_EQ(One(document, ModelDataset("DE_S690QL", "Youngs_modulus_weld") + "/Link/@DatasetIDref"), "1");
}

TEST_F(DescriptiveImportTest, SavedDatabaseHoldsWhatTheSectionsStored) {
  Import("42CrMo4_tempering.mat");
  const std::string path = ScratchDir() + "/descriptive_saved.xml";
  std::remove(path.c_str());
  ASSERT_TRUE(OrvaneStaticVars::SaveDatabase(path.c_str())) << OrvaneStaticVars::GetLastError();
  void* saved = DomParseFile(path.c_str());
  ASSERT_NE(saved, nullptr);
  const std::string steel = "W_42CrMo4";
  EXPECT_EQ(One(saved, Phase(steel, 1) + "/Dataset[@IDref='Phase_description']/String"),
            "Ferrite / Pearlite & Initial Material");
  EXPECT_EQ(One(saved, Phase(steel, 2) + "/Dataset[@IDref='Phase_name']/String"), "Fictive Phase");
  EXPECT_EQ(One(saved, Dataset(steel, "ConstraintStiffness_Z") + "//Value"), "1e+06");
  // LX, LY and LZ are one identifier in the store; each reference line adds its link.
  EXPECT_EQ(Select(saved, ModelDataset(steel, "Thermal_strains") + "/Link/@DatasetIDref"),
            (std::vector<std::string>{"20", "20", "20"}));
  DomFreeDocument(saved);
  std::remove(path.c_str());
}

TEST_F(DescriptiveImportTest, SectionsKeepTheirCards) {
  Import("42CrMo4_tempering.mat");
  // The tempering block ends at its reactions right behind its phase count.
  ImportObject* materiaux = nullptr;
  for (ImportObject* section : m_Run.driver->m_Sections)
    if (section->getKeywordType() == KW_MATERIAUX) materiaux = section;
  ASSERT_NE(materiaux, nullptr);
  std::vector<std::string> names;
  for (Card* card : materiaux->getCardList()) names.push_back(card->getName());
  EXPECT_EQ(names, (std::vector<std::string>{"Metallurgy", "Phase", "SplitLineData"}));
  EXPECT_EQ(Field(materiaux->getCardList()[2], "DataValueStr"), "PHASE");
}

}  // namespace
