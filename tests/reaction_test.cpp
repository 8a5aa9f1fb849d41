// "REACTION" sections read line by line through the real line reader: the
// cards of each line form, and the reaction definitions, keys, tables and
// grain size curves that the converters leave in the store.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "import/reactionconverters.h"
#include "import_test_support.h"
#include "sections/reaction.h"

using namespace importtest;

namespace {

class ReactionTest : public testing::Test {
 protected:
  void SetUp() override {
    FreshStore();
    CardsetImport::m_PhaseIndexNameMap.clear();
    OrvaneStaticVars::SetActiveModel("thermometal_cp");
    OrvaneStaticVars::SetCurrentMaterialType("W");
    m_Material = OrvaneStaticVars::GetOrCreateMaterial("W_Steel");
    ASSERT_NE(m_Material, nullptr);
  }
  void TearDown() override { CardsetImport::m_PhaseIndexNameMap.clear(); }

  // The reaction section of these lines, read as the driver reads it.
  static std::unique_ptr<SectionRun> Read(const std::string& lines) {
    return std::unique_ptr<SectionRun>(new SectionRun("REACTION\n" + lines, KW_REACTION, runReactionImport));
  }

  OrvaneMLRecordMatModel* Model(const std::string& idref) {
    for (OrvaneMLRecordMatModel* model : m_Material->m_Models)
      if (model->m_IDref == idref) return model;
    return nullptr;
  }

  std::vector<OrvaneMLRecordMatModel*> Definitions(const std::string& model = "Metallurgy_Weld",
                                                   const std::string& definition = "ReactionDefinition") {
    std::vector<OrvaneMLRecordMatModel*> found;
    OrvaneMLRecordMatModel* owner = Model(model);
    if (owner == nullptr || owner->m_SubModels == nullptr) return found;
    for (OrvaneMLRecordMatModel* child : owner->m_SubModels->m_Models)
      if (child->m_IDref == definition) found.push_back(child);
    return found;
  }

  OrvaneMLRecordMatModel* Definition(size_t index) {
    std::vector<OrvaneMLRecordMatModel*> all = Definitions();
    return index < all.size() ? all[index] : nullptr;
  }

  int ReactionCount(const std::string& model = "Metallurgy_Weld") {
    OrvaneMLRecordDataset* count = In(Model(model), "Number of Reactions");
    return count != nullptr && count->m_Integer != nullptr ? count->m_Integer->m_Value : -1;
  }

  // The material's own datasets of this identifier that carry a grain size curve.
  std::vector<OrvaneMLRecordDataset*> GrainCurves(const std::string& idref) {
    std::vector<OrvaneMLRecordDataset*> found;
    for (OrvaneMLRecordDataset* dataset : m_Material->m_Datasets->m_Datasets)
      if (dataset->m_IDref == idref && dataset->m_Float != nullptr && !dataset->m_Float->m_Curves.empty())
        found.push_back(dataset);
    return found;
  }

  static OrvaneMLRecordDataset* In(OrvaneMLRecordMatModel* model, const std::string& idref) {
    if (model == nullptr) return nullptr;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
      if (dataset->m_IDref == idref) return dataset;
    return nullptr;
  }

  static std::string Text(OrvaneMLRecordDataset* dataset) {
    if (dataset == nullptr) return "<no dataset>";
    return dataset->m_String != nullptr ? dataset->m_String->m_Value : "<no string>";
  }

  static std::string Constant(OrvaneMLRecordDataset* dataset) {
    if (dataset == nullptr || dataset->m_Float == nullptr || dataset->m_Float->m_Constants.empty())
      return "<no constant>";
    return dataset->m_Float->m_Constants.front()->m_Value;
  }

  static std::vector<std::string> Links(OrvaneMLRecordDataset* dataset) {
    std::vector<std::string> links;
    if (dataset == nullptr) return links;
    for (OrvaneMLRecordLink* link : dataset->m_Links) links.push_back(link->m_DatasetIDref);
    return links;
  }

  static std::string GrainSize(OrvaneMLRecordDataset* dataset) {
    OrvaneMLRecordCurve* curve = dataset->m_Float->m_Curves.front();
    if (curve->m_ParameterFixed.empty()) return "<no condition>";
    EXPECT_EQ(curve->m_ParameterFixed.front()->m_IDref, "Grain_size");
    return curve->m_ParameterFixed.front()->m_Value;
  }

  static std::string Label(OrvaneMLRecordDataset* dataset) { return dataset->m_Float->m_Curves.front()->m_Label; }

  OrvaneMLRecordMaterial* m_Material = nullptr;
};

using Strings = std::vector<std::string>;

// ---- Line forms and their cards ----------------------------------------

TEST(ReactionLineKindTest, StarFirstThenStateThenMartensite) {
  EXPECT_EQ(ClassifyReactionLine("* KP TABLE 7"), ReactionLineKind::Continued);
  // The star wins over everything the rest of the line holds.
  EXPECT_EQ(ClassifyReactionLine("* 1 2 heating MS 3 KM 4"), ReactionLineKind::Continued);
  EXPECT_EQ(ClassifyReactionLine("1 2 K TABLE 7"), ReactionLineKind::NoState);
  EXPECT_EQ(ClassifyReactionLine("1 2 heating K TABLE 7"), ReactionLineKind::WithState);
  EXPECT_EQ(ClassifyReactionLine("1 2 HEATING K TABLE 7"), ReactionLineKind::WithState);
  EXPECT_EQ(ClassifyReactionLine("1 2 COOLING K TABLE 7"), ReactionLineKind::WithState);
  // The state words are found as spelled, anywhere: "Cooling" and "Heating" are none.
  EXPECT_EQ(ClassifyReactionLine("1 2 Cooling K TABLE 7"), ReactionLineKind::NoState);
  EXPECT_EQ(ClassifyReactionLine("1 2 Heating K TABLE 7"), ReactionLineKind::NoState);
  EXPECT_EQ(ClassifyReactionLine("1 2 preheating K TABLE 7"), ReactionLineKind::WithState);
  EXPECT_EQ(ClassifyReactionLine("2 3 cooling MS 350. KM 0.01 FCA TABLE 4 FCB TABLE 5"),
            ReactionLineKind::Martensite);
  EXPECT_EQ(ClassifyReactionLine("2 3 cooling km 0.01"), ReactionLineKind::Martensite);
  // A martensite start without a state word is read as a line without state.
  EXPECT_EQ(ClassifyReactionLine("2 3 MS 350. KM 0.01"), ReactionLineKind::NoState);
  // "Ms" is neither spelling.
  EXPECT_EQ(ClassifyReactionLine("2 3 cooling Ms 350."), ReactionLineKind::WithState);
  EXPECT_EQ(ClassifyReactionLine(""), ReactionLineKind::NoState);
  EXPECT_EQ(ClassifyReactionLine(nullptr), ReactionLineKind::NoState);
}

TEST_F(ReactionTest, HeatingLineIsKjmaWithRateParametersAndLinksKtToItsTable) {
  auto run = Read("1 2 heating K TABLE 7\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 2u);
  EXPECT_EQ(cards[0]->getName(), "REACTIONDataLine");
  EXPECT_EQ(Field(cards[0], "DataLine"), "1 2 heating K TABLE 7");
  EXPECT_EQ(cards[1]->getName(), "REACTIONDetails");
  EXPECT_EQ(cards[1]->intValue("PhaseID1"), 1);
  EXPECT_EQ(cards[1]->intValue("PhaseID2"), 2);
  EXPECT_EQ(Field(cards[1], "State"), "heating");
  EXPECT_EQ(Field(cards[1], "TableDetailsStr"), "K TABLE 7");

  ASSERT_EQ(Definitions().size(), 1u);
  OrvaneMLRecordMatModel* definition = Definition(0);
  EXPECT_EQ(definition->m_InstanceID, "1");
  EXPECT_EQ(ReactionCount(), 1);
  EXPECT_EQ(Text(In(definition, "Reaction_model")), "KJMA");
  EXPECT_EQ(Text(In(definition, "Isothermal_parameters")), "K,KP");
  EXPECT_EQ(Text(In(definition, "Parent_phase")), "Ferrite");
  EXPECT_EQ(Text(In(definition, "Product_phase")), "Pearlite");
  EXPECT_EQ(Text(In(definition, "Thermal_path")), "Heating");
  EXPECT_EQ(Links(In(definition, "K_table_index")), Strings{"7"});
  // Table 7 reaches the key's dataset.
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("7", "DatasetID", false, nullptr, nullptr),
            In(definition, "K_table_index"));
}

TEST_F(ReactionTest, CapitalisedStateIsNoStateAndThePathIsHeatingAndCooling) {
  auto run = Read("1 2 Cooling K TABLE 7\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 2u);
  EXPECT_EQ(cards[1]->getName(), "REACTIONDetailsWithNoState");
  EXPECT_EQ(cards[1]->intValue("PhaseID1"), 1);
  EXPECT_EQ(cards[1]->intValue("PhaseID2"), 2);
  EXPECT_EQ(Field(cards[1], "TableDetailsStr"), "Cooling K TABLE 7");

  OrvaneMLRecordMatModel* definition = Definition(0);
  ASSERT_NE(definition, nullptr);
  EXPECT_EQ(Text(In(definition, "Thermal_path")), "Heating and Cooling");
  EXPECT_EQ(Links(In(definition, "K_table_index")), Strings{"7"});
  // "Cooling" is no key: it continues what the line before left open, which
  // here is the thermal path just made, and it is taken for a table id.
  EXPECT_EQ(Links(In(definition, "Thermal_path")), Strings{"Cooling"});
}

TEST_F(ReactionTest, MartensiteLineIsKoistinenMarburgerWithValuesAndBothFactorTables) {
  auto run = Read("2 3 cooling MS 350. KM 0.01 FCA TABLE 4 FCB TABLE 5\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 2u);
  Card* card = cards[1];
  EXPECT_EQ(card->getName(), "MSKMDetails");
  EXPECT_EQ(card->numVars(), 13u);
  EXPECT_EQ(card->intValue("PhaseID1"), 2);
  EXPECT_EQ(card->intValue("PhaseID2"), 3);
  EXPECT_EQ(Field(card, "State"), "cooling");
  EXPECT_EQ(Field(card, "MS"), "MS");
  EXPECT_EQ(Field(card, "MSValue"), "350.");
  EXPECT_EQ(Field(card, "KM"), "KM");
  EXPECT_EQ(Field(card, "KMValue"), "0.01");
  // The factor behind a martensite start is stored, and carded, as FCAK.
  EXPECT_EQ(Field(card, "FCA"), "FCAK");
  EXPECT_EQ(Field(card, "TABLE1"), "TABLE");
  EXPECT_EQ(card->intValue("TABLEID1"), 4);
  EXPECT_EQ(Field(card, "FCB"), "FCB");
  EXPECT_EQ(card->intValue("TABLEID2"), 5);

  OrvaneMLRecordMatModel* definition = Definition(0);
  ASSERT_NE(definition, nullptr);
  EXPECT_EQ(Text(In(definition, "Reaction_model")), "Koistinen Marburger");
  EXPECT_EQ(In(definition, "Isothermal_parameters"), nullptr);
  EXPECT_EQ(Text(In(definition, "Parent_phase")), "Pearlite");
  EXPECT_EQ(Text(In(definition, "Product_phase")), "Bainite");
  EXPECT_EQ(Text(In(definition, "Thermal_path")), "Cooling");
  EXPECT_EQ(Constant(In(definition, "MS_constant")), "350.");
  EXPECT_EQ(Constant(In(definition, "KM_constant")), "0.01");
  EXPECT_EQ(Links(In(definition, "FCAKoistinen")), Strings{"4"});
  EXPECT_EQ(Links(In(definition, "FCB")), Strings{"5"});
  // The correction factor of the KJMA law is not touched.
  EXPECT_EQ(In(definition, "FCA"), nullptr);
}

TEST_F(ReactionTest, LowerCaseStartAndRateAlsoRenameFcaButOnlyTheExactWord) {
  auto run = Read("2 3 cooling ms 350. km 0.01 FCA TABLE 4 FCB TABLE 5\n"
                  "2 3 cooling MS 350. KM 0.01 fca TABLE 4 FCB TABLE 5\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 4u);
  EXPECT_EQ(Field(cards[1], "FCA"), "FCAK");
  EXPECT_EQ(Field(cards[3], "FCA"), "fca");
}

TEST_F(ReactionTest, FcaBeforeTheStartIsNotRenamed) {
  auto run = Read("2 3 cooling FCA TABLE 4 MS 350. KM 0.01 FCA TABLE 5\nTABLE\n");
  ASSERT_EQ(run->cards().size(), 2u);
  Card* card = run->cards()[1];
  // Only an FCA behind "ms" or "km" is the martensite factor; word 3 stays.
  EXPECT_EQ(Field(card, "MS"), "FCA");
  EXPECT_EQ(Field(card, "FCB"), "FCAK");
}

TEST_F(ReactionTest, TwoGrainSizesOnOneLineGiveTwoCurves) {
  auto run = Read("1 2 cooling K G 10. TABLE 8 G 20. TABLE 9\nTABLE\n");
  OrvaneMLRecordMatModel* definition = Definition(0);
  ASSERT_NE(definition, nullptr);
  EXPECT_EQ(Links(In(definition, "K_table_index")), (Strings{"8", "9"}));

  std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
  ASSERT_EQ(curves.size(), 2u);
  EXPECT_EQ(GrainSize(curves[0]), "10.");
  EXPECT_EQ(curves[0]->m_DatasetID, "8");
  EXPECT_EQ(Label(curves[0]), "Curve8");
  EXPECT_EQ(GrainSize(curves[1]), "20.");
  EXPECT_EQ(curves[1]->m_DatasetID, "9");
  EXPECT_EQ(Label(curves[1]), "Curve9");
  // Each table reaches the curve of its grain size.
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("8", "DatasetID", false, nullptr, nullptr), curves[0]);
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("9", "DatasetID", false, nullptr, nullptr), curves[1]);
}

TEST_F(ReactionTest, GrainSizeWordBehindTheSizeIsPassedOverWhateverItSays) {
  auto run = Read("1 2 cooling K G 10. XYZ 8\nTABLE\n");
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"8"});
  std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_EQ(GrainSize(curves[0]), "10.");
}

TEST_F(ReactionTest, GrainSizeOpenAtTheLineEndIsFilledByTheStarLine) {
  auto run = Read("1 2 cooling K G\n* 10. TABLE 8\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 4u);
  EXPECT_EQ(cards[3]->getName(), "ContinuedREACTIONDetails");
  EXPECT_EQ(Field(cards[3], "Star"), "*");
  EXPECT_EQ(Field(cards[3], "TableDetailsStr"), "10. TABLE 8");

  // The star line continues the reaction: no second definition.
  EXPECT_EQ(Definitions().size(), 1u);
  EXPECT_EQ(ReactionCount(), 1);
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"8"});
  std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_EQ(GrainSize(curves[0]), "10.");
  EXPECT_EQ(curves[0]->m_DatasetID, "8");
  EXPECT_EQ(Label(curves[0]), "Curve8");
}

TEST_F(ReactionTest, SplitGrainLineEndsLikeTheWholeLine) {
  std::vector<std::string> whole;
  std::vector<std::string> split;
  for (const char* lines : {"1 2 cooling K G 10. TABLE 8\n", "1 2 cooling K G\n* 10. TABLE 8\n"}) {
    SetUp();
    auto run = Read(std::string(lines) + "TABLE\n");
    std::vector<std::string>& into = whole.empty() ? whole : split;
    std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
    ASSERT_EQ(curves.size(), 1u) << lines;
    into = Links(In(Definition(0), "K_table_index"));
    into.push_back(GrainSize(curves[0]));
    into.push_back(curves[0]->m_DatasetID);
    into.push_back(Label(curves[0]));
  }
  EXPECT_EQ(whole, split);
  EXPECT_EQ(whole, (Strings{"8", "10.", "8", "Curve8"}));
}

TEST_F(ReactionTest, GrainSizeWithoutTableTakesTheTableFromTheStarLine) {
  auto run = Read("1 2 cooling K G 10.\n* TABLE 8\nTABLE\n");
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"8"});
  std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_EQ(GrainSize(curves[0]), "10.");
  EXPECT_EQ(curves[0]->m_DatasetID, "8");
}

TEST_F(ReactionTest, StarLineOnItsOwnHasNoDetails) {
  auto run = Read("1 2 heating K TABLE 7\n*\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 4u);
  EXPECT_EQ(cards[2]->getName(), "REACTIONDataLine");
  EXPECT_EQ(cards[3]->getName(), "ContinuedREACTIONDetails");
  EXPECT_EQ(Field(cards[3], "Star"), "*");
  EXPECT_EQ(Definitions().size(), 1u);
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"7"});
  EXPECT_TRUE(GrainCurves("K_table_index").empty());
}

TEST_F(ReactionTest, StarLineContinuesTheLastReactionWithNewKeys) {
  auto run = Read("6 3 COOLING K TABLE 240\n* KP TABLE 260 F TABLE 270\nTABLE\n");
  ASSERT_EQ(Definitions().size(), 1u);
  OrvaneMLRecordMatModel* definition = Definition(0);
  EXPECT_EQ(Links(In(definition, "K_table_index")), Strings{"240"});
  EXPECT_EQ(Links(In(definition, "KP_table_index")), Strings{"260"});
  EXPECT_EQ(Links(In(definition, "F_table_index")), Strings{"270"});
}

TEST_F(ReactionTest, TwoBlanksBehindTheStarGiveAnEmptyTableIdBeforeTheKey) {
  auto run = Read("6 3 COOLING K TABLE 220 F TABLE 230\n*  FP TABLE 240\nTABLE\n");
  std::vector<Card*>& cards = run->cards();
  ASSERT_EQ(cards.size(), 4u);
  // The split leaves the second blank at the head of the details.
  EXPECT_EQ(Field(cards[3], "TableDetailsStr"), " FP TABLE 240");
  OrvaneMLRecordMatModel* definition = Definition(0);
  // The empty first token is a table id of the dataset in hand, F's.
  EXPECT_EQ(Links(In(definition, "F_table_index")), (Strings{"230", ""}));
  EXPECT_EQ(Links(In(definition, "FP_table_index")), Strings{"240"});
  EXPECT_EQ(Links(In(definition, "K_table_index")), Strings{"220"});
}

TEST_F(ReactionTest, UnknownTokenIsATableIdOfTheKeyInHand) {
  auto run = Read("1 2 heating K TABLE 7 8\nTABLE\n");
  OrvaneMLRecordDataset* rate = In(Definition(0), "K_table_index");
  EXPECT_EQ(Links(rate), (Strings{"7", "8"}));
  // It closes the key's dataset as the open end of a line would.
  EXPECT_EQ(rate->m_DatasetID, "8");
}

TEST_F(ReactionTest, StarLineWithoutAnyOpenDatasetMakesNothing) {
  // The first line of a material, a "*" line, has no reaction to continue:
  // it makes one, and its tokens find nothing to belong to.
  auto run = Read("* 10. TABLE 8\nTABLE\n");
  ASSERT_EQ(run->cards().size(), 2u);
  ASSERT_EQ(Definitions().size(), 1u);
  EXPECT_EQ(ReactionCount(), 1);
  EXPECT_EQ(Text(In(Definition(0), "Reaction_model")), "KJMA");
  EXPECT_EQ(Definition(0)->m_Datasets.size(), 2u);  // the model and its parameters
  EXPECT_TRUE(m_Material->m_Datasets->m_Datasets.empty());
}

TEST_F(ReactionTest, WordBehindAKeyIsPassedOverWhateverItSays) {
  auto run = Read("1 2 heating K FOO 7 KP BAR 9\nTABLE\n");
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"7"});
  EXPECT_EQ(Links(In(Definition(0), "KP_table_index")), Strings{"9"});
}

TEST_F(ReactionTest, KeyAtTheEndTouchesItsDatasetWithoutTable) {
  auto run = Read("1 2 heating PEQ\nTABLE\n");
  OrvaneMLRecordDataset* equilibrium = In(Definition(0), "PEQ_table_index");
  ASSERT_NE(equilibrium, nullptr);
  EXPECT_TRUE(Links(equilibrium).empty());
  EXPECT_EQ(Text(In(Definition(0), "Isothermal_parameters")), "PEQ,TAU");
}

TEST_F(ReactionTest, KeyAndTableWordWithoutIdEndTheWalk) {
  auto run = Read("1 2 heating K TABLE\nTABLE\n");
  OrvaneMLRecordDataset* rate = In(Definition(0), "K_table_index");
  ASSERT_NE(rate, nullptr);
  EXPECT_TRUE(Links(rate).empty());
}

TEST_F(ReactionTest, KeysAreComparedWithoutCaseAndOneLetterKeysGetTheirStoreWords) {
  auto run = Read("1 6 heating peq TABLE 1 tau TABLE 2 n TABLE 3\n6 1 cooling k TABLE 4 f TABLE 5 FCA TABLE 6\n"
                  "TABLE\n");
  ASSERT_EQ(Definitions().size(), 2u);
  // "peq" and "tau" in lower case still choose the equilibrium parameters.
  EXPECT_EQ(Text(In(Definition(0), "Isothermal_parameters")), "PEQ,TAU");
  EXPECT_EQ(Links(In(Definition(0), "N_table_index")), Strings{"3"});
  EXPECT_EQ(Text(In(Definition(1), "Isothermal_parameters")), "K,KP");
  EXPECT_EQ(Links(In(Definition(1), "K_table_index")), Strings{"4"});
  EXPECT_EQ(Links(In(Definition(1), "F_table_index")), Strings{"5"});
  // Outside a martensite line FCA keeps its own meaning.
  EXPECT_EQ(Links(In(Definition(1), "FCA")), Strings{"6"});
  EXPECT_EQ(Text(In(Definition(0), "Parent_phase")), "Ferrite");
  EXPECT_EQ(Text(In(Definition(0), "Product_phase")), "Austenite");
  // Keys other than the one-letter ones reach the store as written, where
  // the card words are compared exactly.
  EXPECT_EQ(In(Definition(0), "PEQ_table_index"), nullptr);
  EXPECT_EQ(Links(FindDatasetOf(m_Material, "peq")), Strings{"1"});
}

TEST_F(ReactionTest, EachLineIsANewDefinitionNumberedInOrder) {
  auto run = Read("1 6 HEATING PEQ TABLE 100\n3 6 HEATING PEQ TABLE 100\n6 1 COOLING K TABLE 200\nGRAIN x\n");
  std::vector<OrvaneMLRecordMatModel*> all = Definitions();
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]->m_InstanceID, "1");
  EXPECT_EQ(all[1]->m_InstanceID, "2");
  EXPECT_EQ(all[2]->m_InstanceID, "3");
  EXPECT_EQ(ReactionCount(), 3);
  EXPECT_STREQ(OrvaneStaticVars::GetInstanceID(), "3");
  EXPECT_EQ(Text(In(all[1], "Parent_phase")), "Bainite");
  EXPECT_EQ(Links(In(all[1], "PEQ_table_index")), Strings{"100"});
  EXPECT_EQ(Links(In(all[2], "K_table_index")), Strings{"200"});
  // One count, in the model beside its definitions.
  int counts = 0;
  for (OrvaneMLRecordDataset* dataset : Model("Metallurgy_Weld")->m_Datasets)
    counts += dataset->m_IDref == "Number of Reactions" ? 1 : 0;
  EXPECT_EQ(counts, 1);
  // The store's model list points at the last definition.
  EXPECT_EQ(OrvaneStaticVars::FindModelByID("ReactionDefinition"), all[2]);
}

TEST_F(ReactionTest, NextSectionKeywordsCloseTheSectionWithoutRegardToCase) {
  for (const char* end : {"TABLE", "TABLES", "TABLES :", "GRAIN TMIN 900", "table", "Grain"}) {
    SetUp();
    auto run = Read(std::string("1 2 heating K TABLE 7\n") + end + "\n3 4 heating K TABLE 8\n");
    EXPECT_EQ(run->cards().size(), 2u) << end;
    EXPECT_EQ(Definitions().size(), 1u) << end;
  }
}

TEST_F(ReactionTest, SectionCutOffByTheEndOfTheFileMakesNoExtraReaction) {
  auto run = Read("1 2 heating K TABLE 7\n");
  std::vector<Card*>& cards = run->cards();
  // The empty line of the end of the file leaves an empty line card.
  ASSERT_EQ(cards.size(), 3u);
  EXPECT_EQ(cards[2]->getName(), "REACTIONDataLine");
  EXPECT_EQ(cards[2]->numVars(), 0u);
  EXPECT_EQ(Definitions().size(), 1u);
  EXPECT_EQ(ReactionCount(), 1);
}

TEST_F(ReactionTest, TemperingReactionsGoToTheTemperingModel) {
  OrvaneStaticVars::SetActiveModel("tempering");
  auto run = Read("4 5 HEATING K TABLE 400 KP TABLE 410\n3 5 HEATING K TABLE 420 KP TABLE 430\nTABLE\n");
  std::vector<OrvaneMLRecordMatModel*> tempering = Definitions("Tempering_Weld", "TemperReactionModel");
  ASSERT_EQ(tempering.size(), 2u);
  EXPECT_EQ(ReactionCount("Tempering_Weld"), 2);
  EXPECT_TRUE(Definitions().empty());
  EXPECT_EQ(In(Model("Metallurgy_Weld"), "Number of Reactions"), nullptr);
  EXPECT_EQ(tempering[0]->m_InstanceID, "1");
  EXPECT_EQ(Text(In(tempering[0], "Parent_phase")), "Martensite");
  EXPECT_EQ(Text(In(tempering[0], "Product_phase")), "Tempered Bainite");
  EXPECT_EQ(Text(In(tempering[0], "Thermal_path")), "Heating");
  EXPECT_EQ(Text(In(tempering[0], "Reaction_model")), "KJMA");
  EXPECT_EQ(Links(In(tempering[0], "K_table_index")), Strings{"400"});
  EXPECT_EQ(Links(In(tempering[1], "KP_table_index")), Strings{"430"});
  EXPECT_EQ(Text(In(tempering[1], "Parent_phase")), "Bainite");
  EXPECT_EQ(OrvaneStaticVars::FindModelByID("TemperReactionModel"), tempering[1]);
}

TEST_F(ReactionTest, TemperingModelNameIsComparedWithoutCase) {
  OrvaneStaticVars::SetActiveModel("TEMPERING");
  auto run = Read("4 5 HEATING K TABLE 400\nTABLE\n");
  EXPECT_EQ(Definitions("Tempering_Weld", "TemperReactionModel").size(), 1u);
  EXPECT_EQ(ReactionCount("Tempering_Weld"), 1);
  EXPECT_EQ(In(Model("Metallurgy_Weld"), "Number of Reactions"), nullptr);
}

TEST_F(ReactionTest, MetallurgyFileWithoutModelNameRunsUnderTheMetallurgyModel) {
  OrvaneStaticVars::SetActiveModel("");
  auto run = Read("6 1 COOLING K TABLE 160\nTABLE\n");
  EXPECT_STREQ(OrvaneStaticVars::GetActiveModel(), "Metallurgy_Weld");
  ASSERT_EQ(Definitions().size(), 1u);
  EXPECT_EQ(Text(In(Definition(0), "Parent_phase")), "Austenite");
  EXPECT_EQ(Links(In(Definition(0), "K_table_index")), Strings{"160"});
}

TEST_F(ReactionTest, PhaseNamesComeFromTheLinkFileThenFromTheMaterialsOwnPhases) {
  CardsetImport::m_PhaseIndexNameMap[1] = "carbide";
  CardsetImport::m_PhaseIndexNameMap[6] = "Austenite";
  // The material names its phase 6 itself, which wins over the link file.
  OrvaneMLRecordMatModel* generic = Model("GenericInfo_Weld");
  ASSERT_NE(generic, nullptr);
  OrvaneMLRecordMatModel* phase = new OrvaneMLRecordMatModel();
  phase->SetIDref("Phase_details_model");
  phase->SetInstanceID("6");
  OrvaneMLRecordDataset* name = new OrvaneMLRecordDataset();
  name->SetIDref("Phase_name");
  name->m_String = new OrvaneMLRecordString();
  name->m_String->SetValue("Gamma");
  phase->AddDataset(name);
  generic->GetOrCreateSubModels()->AddModel(phase);
  OrvaneStaticVars::GetMatModelList().push_back(phase);

  auto run = Read("1 6 heating PEQ TABLE 1\nTABLE\n");
  EXPECT_EQ(Text(In(Definition(0), "Parent_phase")), "carbide");
  EXPECT_EQ(Text(In(Definition(0), "Product_phase")), "Gamma");
}

TEST_F(ReactionTest, HeatingWordOfAnotherCaseIsStillNoStateAndItsMartensiteKeysStillChooseTheModel) {
  auto run = Read("1 2 Heating MS 350.\nTABLE\n");
  ASSERT_EQ(run->cards().size(), 2u);
  EXPECT_EQ(run->cards()[1]->getName(), "REACTIONDetailsWithNoState");
  EXPECT_EQ(Text(In(Definition(0), "Reaction_model")), "Koistinen Marburger");
}

// ---- The converters on their own ---------------------------------------

TEST_F(ReactionTest, LineConverterIgnoresAnEmptyCount) {
  char text[64] = "1 2 heating K TABLE 7";
  char* words[] = {text};
  unsigned count = 0;
  ConvertReactionLine(words, &count);
  EXPECT_TRUE(Definitions().empty());
  count = 1;
  ConvertReactionLine(words, &count);
  EXPECT_EQ(Definitions().size(), 1u);
}

TEST_F(ReactionTest, LineConverterWithoutMaterialMakesNothing) {
  FreshStore();
  char text[64] = "1 2 heating K TABLE 7";
  char* words[] = {text};
  unsigned count = 1;
  ConvertReactionLine(words, &count);
  ParseReactionTableDetails("K TABLE 7 K G 1 TABLE 2");
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
}

TEST_F(ReactionTest, GrainCurveWithoutTokensBehindTheMarkLeavesTheSizeOpen) {
  char text[64] = "1 2 cooling K";
  char* words[] = {text};
  unsigned count = 1;
  ConvertReactionLine(words, &count);
  OrvaneMLRecordDataset* rate = OrvaneStaticVars::GetOrCreateDataset("KT", "IDref", false, nullptr, nullptr);
  ASSERT_NE(rate, nullptr);

  std::vector<std::string> tokens = {"G"};
  size_t index = 0;
  EXPECT_FALSE(AddGrainSizeCurve(rate, nullptr, tokens, index));
  EXPECT_EQ(index, 0u);
  tokens = {"G", "10."};
  EXPECT_FALSE(AddGrainSizeCurve(rate, nullptr, tokens, index));
  tokens = {"G", "20.", "TABLE", "9"};
  EXPECT_TRUE(AddGrainSizeCurve(rate, nullptr, tokens, index));
  std::vector<OrvaneMLRecordDataset*> curves = GrainCurves("K_table_index");
  ASSERT_EQ(curves.size(), 3u);
  EXPECT_EQ(GrainSize(curves[0]), "");
  EXPECT_EQ(GrainSize(curves[1]), "10.");
  EXPECT_EQ(GrainSize(curves[2]), "20.");
  EXPECT_EQ(curves[1]->m_DatasetID, "");
  EXPECT_EQ(Label(curves[1]), "");
  EXPECT_EQ(Links(rate), Strings{"9"});

  // The open end of a line: the size first, then the table two tokens on.
  tokens = {"15.", "TABLE"};
  index = 0;
  EXPECT_FALSE(AddGrainSizeCurve(rate, curves[0], tokens, index));
  EXPECT_EQ(index, 2u);
  EXPECT_EQ(GrainSize(curves[0]), "15.");
  tokens = {"11"};
  index = 0;
  EXPECT_TRUE(AddGrainSizeCurve(rate, curves[0], tokens, index));
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(curves[0]->m_DatasetID, "11");
  EXPECT_EQ(Label(curves[0]), "Curve11");
  EXPECT_EQ(Links(rate), (Strings{"9", "11"}));
  EXPECT_FALSE(AddGrainSizeCurve(nullptr, nullptr, tokens, index));
}

TEST_F(ReactionTest, LinkReactionTableFilesTheDatasetUnderTheId) {
  char text[64] = "1 2 cooling K";
  char* words[] = {text};
  unsigned count = 1;
  ConvertReactionLine(words, &count);
  OrvaneMLRecordDataset* rate = OrvaneStaticVars::GetOrCreateDataset("KT", "IDref", false, nullptr, nullptr);
  const std::vector<std::string> tokens = {"K", "TABLE", "31"};
  LinkReactionTable(rate, tokens, 2);
  LinkReactionTable(rate, tokens, 2);
  LinkReactionTable(rate, tokens, 3);
  LinkReactionTable(nullptr, tokens, 2);
  // A new link each time it is asked.
  EXPECT_EQ(Links(rate), (Strings{"31", "31"}));
  EXPECT_EQ(OrvaneStaticVars::GetOrCreateDataset("31", "DatasetID", false, nullptr, nullptr), rate);
}

TEST_F(ReactionTest, NothingToParseInAnEmptyText) {
  char text[64] = "1 2 cooling K";
  char* words[] = {text};
  unsigned count = 1;
  ConvertReactionLine(words, &count);
  const size_t before = Definition(0)->m_Datasets.size();
  ParseReactionTableDetails("");
  ParseReactionTableDetails(nullptr);
  EXPECT_EQ(Definition(0)->m_Datasets.size(), before);
}

}  // namespace
