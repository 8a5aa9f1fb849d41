// Reactions and grain lines on the whole import road: the sample card files
// through the driver, saved as a database, read back, and every reaction and
// grain line of the file found in it.

#include <gtest/gtest.h>
#include "xpath_test_support.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "import/sectionentries.h"
#include "import_test_support.h"
#include "sections/grain.h"
#include "sections/reaction.h"
#include "store/orvanegeneric.h"

using namespace importtest;

namespace {

using Strings = std::vector<std::string>;

// A kinetic key of a reaction: its dataset and the tables it links to.
struct Key {
  const char* idref;
  Strings links;
};

// A grain size curve: its table and the size it holds for.
struct GrainCurve {
  const char* table;
  const char* size;
};

// What one reaction line (with its "*" lines) leaves in the database.
struct ExpectedReaction {
  const char* parent;
  const char* product;
  const char* path;
  const char* model;
  const char* parameters;  // null: no isothermal parameters (martensite)
  std::vector<Key> keys;
  std::vector<GrainCurve> grains;
  const char* ms;  // null unless a martensite line
  const char* km;
};

// The words of reaction and grain lines as the store receives them.
const std::set<std::string> kReactionWords = {"KT",  "KP", "FX", "FP",   "NX",    "PEQ",    "TAU",      "FCA",
                                              "FCAK", "FCB", "MS", "KM", "TMIN", "Q",     "POWER", "GRAINC",
                                              "AUSTENITE", "Parent_phase", "Product_phase", "Thermal_path"};

class XmlFile {
 public:
  explicit XmlFile(const std::string& path) : m_Document(xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET)) {}
  ~XmlFile() { xmlFreeDoc(m_Document); }
  XmlFile(const XmlFile&) = delete;
  XmlFile& operator=(const XmlFile&) = delete;

  bool Loaded() const { return m_Document != nullptr; }

  Strings Select(const std::string& path) const { return xpathtest::SelectTexts(m_Document, path); }

  std::string One(const std::string& path) const {
    Strings texts = Select(path);
    EXPECT_EQ(texts.size(), 1u) << path;
    return texts.empty() ? "<none>" : texts.front();
  }

  size_t Count(const std::string& path) const { return Select(path).size(); }

 private:
  xmlDocPtr m_Document;
};

std::string Record(const std::string& material) { return "/MaterialDatabase/Record[@ID='" + material + "']"; }

class ReactionsImportTest : public testing::Test {
 protected:
  void SetUp() override { CardsetImport::m_PhaseIndexNameMap.clear(); }

  // Imports a corpus file as a host does, saves the database and reads it back.
  std::string ImportAndSave(const char* name) {
    FreshStore();
    const std::string database = ScratchDir() + "/reactions.xml";
    m_Run = ImportAsAHost(CorpusPath(name), database);
    EXPECT_GT(m_Run.visited, 1) << name;
    EXPECT_EQ(m_Run.message, "") << name;
    EXPECT_NE(m_Run.document, nullptr) << name;
    EXPECT_TRUE(OrvaneStaticVars::SaveDatabase(database.c_str())) << OrvaneStaticVars::GetLastError();
    return database;
  }

  // Card words of reaction and grain lines that the mapping did not know.
  static Strings UnmappedReactionWords() {
    Strings words;
    for (const std::string& warning : OrvaneGenericLog::GetDBWarnings()) {
      if (warning.find("is not in the mapping") == std::string::npos) continue;
      const size_t open = warning.find('"');
      const size_t close = warning.find('"', open + 1);
      const std::string word = warning.substr(open + 1, close - open - 1);
      if (kReactionWords.count(word) != 0) words.push_back(word);
    }
    return words;
  }

  // The sections the driver read of one keyword type, in file order.
  std::vector<ImportObject*> SectionsOf(unsigned type) {
    std::vector<ImportObject*> found;
    for (ImportObject* section : m_Run.driver->m_Sections)
      if (section->getKeywordType() == type) found.push_back(section);
    return found;
  }

  static void CheckReactions(const XmlFile& file, const std::string& material, const std::string& model,
                             const std::string& definition, const std::vector<ExpectedReaction>& expected) {
    const std::string owner = Record(material) + "/Model[@IDref='" + model + "']";
    EXPECT_EQ(file.One(owner + "/Dataset[@IDref='Number of Reactions']/Integer"), std::to_string(expected.size()));
    EXPECT_EQ(file.Count(owner + "/SubModels/Model[@IDref='" + definition + "']"), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
      const ExpectedReaction& reaction = expected[i];
      const std::string at =
          owner + "/SubModels/Model[@IDref='" + definition + "'][@InstanceID='" + std::to_string(i + 1) + "']";
      SCOPED_TRACE(material + " reaction " + std::to_string(i + 1));
      EXPECT_EQ(file.One(at + "/Dataset[@IDref='Parent_phase']/String"), reaction.parent);
      EXPECT_EQ(file.One(at + "/Dataset[@IDref='Product_phase']/String"), reaction.product);
      EXPECT_EQ(file.One(at + "/Dataset[@IDref='Thermal_path']/String"), reaction.path);
      EXPECT_EQ(file.One(at + "/Dataset[@IDref='Reaction_model']/String"), reaction.model);
      if (reaction.parameters != nullptr) {
        EXPECT_EQ(file.One(at + "/Dataset[@IDref='Isothermal_parameters']/String"), reaction.parameters);
      } else {
        EXPECT_EQ(file.Count(at + "/Dataset[@IDref='Isothermal_parameters']"), 0u);
      }
      for (const Key& key : reaction.keys) {
        // An empty table id is a link without id.
        Strings links;
        for (const std::string& link : file.Select(at + "/Dataset[@IDref='" + key.idref + "']/Link"))
          links.push_back(link);
        Strings ids = file.Select(at + "/Dataset[@IDref='" + key.idref + "']/Link/@DatasetIDref");
        EXPECT_EQ(links.size(), key.links.size()) << key.idref;
        Strings wanted;
        for (const std::string& link : key.links)
          if (!link.empty()) wanted.push_back(link);
        EXPECT_EQ(ids, wanted) << key.idref;
      }
      for (const GrainCurve& grain : reaction.grains) {
        const std::string curve = Record(material) + "/Datasets/Dataset[@DatasetID='" + grain.table + "']/Float/Curve";
        EXPECT_EQ(file.One(curve + "/ParameterFixed[@IDref='Grain_size']/Value"), grain.size) << grain.table;
        EXPECT_EQ(file.One(curve + "/@Label"), std::string("Curve") + grain.table);
      }
      if (reaction.ms != nullptr) {
        EXPECT_EQ(file.One(at + "/Dataset[@IDref='MS_constant']/Float/Constant/Value"), reaction.ms);
        EXPECT_EQ(file.One(at + "/Dataset[@IDref='KM_constant']/Float/Constant/Value"), reaction.km);
      }
    }
  }

  HostImport m_Run;
};

TEST_F(ReactionsImportTest, DispatchTableReadsReactionsAndGrain) {
  const std::vector<SectionEntryRow>& rows = SectionEntryRows();
  EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const SectionEntryRow& row) {
    return row.keywordType == KW_REACTION && row.entry == runReactionImport;
  }));
  EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const SectionEntryRow& row) {
    return row.keywordType == KW_GRAIN && row.entry == runGrainImport;
  }));
}

TEST_F(ReactionsImportTest, ThermometalSteelReactionsAndGrain) {
  const XmlFile file(ImportAndSave("16MnCr5_thermometal.mat"));
  ASSERT_TRUE(file.Loaded());
  const std::string steel = "W_16MnCr5";

  const std::vector<ExpectedReaction> expected = {
      {"Ferrite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"100"}}, {"TAU_table_index", {"110"}}, {"N_table_index", {"120"}}}, {}, nullptr, nullptr},
      {"Bainite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"100"}}, {"TAU_table_index", {"130"}}, {"N_table_index", {"120"}}}, {}, nullptr, nullptr},
      {"Martensite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"100"}}, {"TAU_table_index", {"140"}}, {"N_table_index", {"120"}}}, {}, nullptr, nullptr},
      {"Tempered Bainite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"100"}}, {"TAU_table_index", {"140"}}, {"N_table_index", {"120"}}}, {}, nullptr, nullptr},
      {"Austenite", "Ferrite", "Cooling", "KJMA", "K,KP",
       {{"K_table_index", {"200"}}, {"KP_table_index", {"210"}}, {"F_table_index", {"220"}}, {"FP_table_index", {"230"}}},
       {}, nullptr, nullptr},
      {"Austenite", "Bainite", "Cooling", "KJMA", "K,KP",
       {{"K_table_index", {"240", "250"}}, {"KP_table_index", {"260"}}, {"F_table_index", {"270"}}},
       {{"240", "0.01"}, {"250", "0.05"}}, nullptr, nullptr},
      {"Austenite", "Martensite", "Cooling", "Koistinen Marburger", nullptr,
       {{"FCAKoistinen", {"300"}}, {"FCB", {"310"}}}, {}, "385", "0.011"},
      {"Martensite", "Tempered Bainite", "Heating", "KJMA", "K,KP",
       {{"K_table_index", {"320"}}, {"KP_table_index", {"330"}}}, {}, nullptr, nullptr},
  };
  CheckReactions(file, steel, "Metallurgy_Weld", "ReactionDefinition", expected);

  // The grain line, in the metallurgy model.
  const std::string metallurgy = Record(steel) + "/Model[@IDref='Metallurgy_Weld']";
  EXPECT_EQ(file.One(metallurgy + "/Dataset[@IDref='Tmin']/Float/Constant/Value"), "900");
  EXPECT_EQ(file.One(metallurgy + "/Dataset[@IDref='QConstant']/Float/Constant/Value"), "280000");
  EXPECT_EQ(file.One(metallurgy + "/Dataset[@IDref='PowerConstant']/Float/Constant/Value"), "2");
  EXPECT_EQ(file.One(metallurgy + "/Dataset[@IDref='CConstant']/Float/Constant/Value"), "2e+06");
  EXPECT_EQ(file.One(metallurgy + "/Dataset[@IDref='AUSTENITE']/Integer"), "6");

  // The sections as read: one reaction section of 9 lines, one grain line.
  std::vector<ImportObject*> reactions = SectionsOf(KW_REACTION);
  ASSERT_EQ(reactions.size(), 1u);
  EXPECT_EQ(reactions[0]->getCardList().size(), 18u);
  std::vector<ImportObject*> grains = SectionsOf(KW_GRAIN);
  ASSERT_EQ(grains.size(), 1u);
  ASSERT_EQ(grains[0]->getCardList().size(), 1u);
  EXPECT_EQ(Field(grains[0]->getCardList()[0], "C"), "GRAINC");
  EXPECT_EQ(grains[0]->getCardList()[0]->intValue("GrainPhaseIndex"), 6);

  EXPECT_EQ(UnmappedReactionWords(), Strings{});
}

TEST_F(ReactionsImportTest, MetallurgyFileReactionsGoToTheMetallurgyMaterial) {
  const XmlFile file(ImportAndSave("METALLURGY.mat"));
  ASSERT_TRUE(file.Loaded());
  EXPECT_EQ(file.One(Record("MetallurgyMat") + "/@Folder"), "Weld");

  const std::vector<ExpectedReaction> expected = {
      {"Ferrite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"100"}}, {"TAU_table_index", {"110"}}, {"N_table_index", {"120"}}}, {}, nullptr, nullptr},
      {"Bainite", "Austenite", "Heating", "KJMA", "PEQ,TAU",
       {{"PEQ_table_index", {"130"}}, {"TAU_table_index", {"140"}}, {"N_table_index", {"150"}}}, {}, nullptr, nullptr},
      {"Austenite", "Ferrite", "Cooling", "KJMA", "K,KP",
       {{"K_table_index", {"160"}}, {"KP_table_index", {"170"}}, {"F_table_index", {"180"}}, {"FP_table_index", {"190"}}},
       {}, nullptr, nullptr},
      // The "*" line as the writer cuts it, two blanks behind the star: its
      // empty first token is one more, empty, table id of F.
      {"Austenite", "Bainite", "Cooling", "KJMA", "K,KP",
       {{"K_table_index", {"200", "210"}},
        {"KP_table_index", {"220"}},
        {"F_table_index", {"230", ""}},
        {"FP_table_index", {"240"}}},
       {{"200", "0.01"}, {"210", "0.05"}}, nullptr, nullptr},
      {"Austenite", "Martensite", "Cooling", "Koistinen Marburger", nullptr,
       {{"FCAKoistinen", {"250"}}, {"FCB", {"260"}}}, {}, "400", "0.011"},
  };
  CheckReactions(file, "MetallurgyMat", "Metallurgy_Weld", "ReactionDefinition", expected);
  EXPECT_EQ(UnmappedReactionWords(), Strings{});
}

TEST_F(ReactionsImportTest, TemperingReactionsGoToTheTemperingModel) {
  const XmlFile file(ImportAndSave("42CrMo4_tempering.mat"));
  ASSERT_TRUE(file.Loaded());
  const std::string steel = "W_42CrMo4";

  const std::vector<ExpectedReaction> expected = {
      {"Martensite", "Tempered Martensite", "Heating", "KJMA", "K,KP",
       {{"K_table_index", {"400"}}, {"KP_table_index", {"410"}}}, {}, nullptr, nullptr},
      {"Bainite", "Tempered Martensite", "Heating", "KJMA", "K,KP",
       {{"K_table_index", {"420"}}, {"KP_table_index", {"430"}}}, {}, nullptr, nullptr},
  };
  CheckReactions(file, steel, "Tempering_Weld", "TemperReactionModel", expected);
  // Nothing of the tempering block reaches the metallurgy model.
  EXPECT_EQ(file.Count(Record(steel) + "/Model[@IDref='Metallurgy_Weld']//Dataset"), 0u);
  EXPECT_EQ(file.Count(Record(steel) + "//Model[@IDref='ReactionDefinition']"), 0u);
  EXPECT_EQ(UnmappedReactionWords(), Strings{});
}

TEST_F(ReactionsImportTest, EveryReactionOfTheMultiMaterialFileFindsItsMapping) {
  const XmlFile file(ImportAndSave("case_hardening_steels.mat"));
  ASSERT_TRUE(file.Loaded());
  // Two thermometal blocks of three reactions each, the last a martensite one.
  const Strings counts =
      file.Select("/MaterialDatabase/Record/Model[@IDref='Metallurgy_Weld']/Dataset[@IDref='Number of Reactions']/Integer");
  EXPECT_EQ(counts, (Strings{"3", "3"}));
  EXPECT_EQ(file.Count("//Model[@IDref='ReactionDefinition']/Dataset[@IDref='Reaction_model'][String='Koistinen Marburger']"),
            2u);
  EXPECT_EQ(UnmappedReactionWords(), Strings{});
}

}  // namespace
