// The list, name and text sections: their cards and what reaches the store.

#include <gtest/gtest.h>

#include <string>

#include "import/converters.h"
#include "import_test_support.h"
#include "sections/importbase.h"

using namespace importtest;

namespace {

std::string CurrentMaterialID() {
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetCurrentMaterial();
  return material != nullptr ? material->GetID() : "<none>";
}

std::string CommentText(const std::string& materialID) {
  OrvaneMLRecordMaterial* material = FindMaterial(materialID);
  if (material == nullptr) return "<no material>";
  OrvaneMLRecordDataset* dataset = FindDatasetOf(material, "CategoryComments");
  if (dataset == nullptr || dataset->m_String == nullptr) return "<no comments>";
  return dataset->m_String->GetValue();
}

}  // namespace

// ---- LISTE : ----

TEST(MatListSection, EmptyListMakesNoCardAndNoMaterial) {
  FreshStore();
  SectionRun run("LISTE :\nfin liste\n", KW_MATLIST, runMatListImport);
  EXPECT_TRUE(run.cards().empty());
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
}

TEST(MatListSection, EndKeywordIsAPrefixComparedWithoutCase) {
  FreshStore();
  SectionRun run("LISTE :\nW A mech mm\nFIN LISTE xyz\nW B mech mm\n", KW_MATLIST, runMatListImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("W_A", Field(run.cards()[0], "MaterialID"));
}

TEST(MatListSection, TypeAndIdentifierAreJoinedInCardAndMaterial) {
  FreshStore();
  CardsetImport::m_DistortionFlag = 0;
  SectionRun run("LISTE :\nSteel S355 mech SI\nFIN LISTE\n", KW_MATLIST, runMatListImport);
  ASSERT_EQ(1u, run.cards().size());
  Card* card = run.cards()[0];
  EXPECT_EQ("MatListDetails", card->getName());
  EXPECT_EQ("Steel", Field(card, "MatType"));
  EXPECT_EQ("Steel_S355", Field(card, "MaterialID"));
  EXPECT_EQ("mech", Field(card, "MatModelID"));
  EXPECT_EQ("SI", Field(card, "Units"));
  EXPECT_NE(nullptr, FindMaterial("Steel_S355"));
  EXPECT_STREQ("mech", OrvaneStaticVars::GetActiveModel());
}

TEST(MatListSection, DistortionPutsDEInFrontOfTheType) {
  FreshStore();
  CardsetImport::m_DistortionFlag = 1;
  SectionRun run("LISTE :\nSteel S355 mech SI\ndeSteel S460 mech SI\nDESteel S690 mech SI\nFIN LISTE\n", KW_MATLIST,
                 runMatListImport);
  CardsetImport::m_DistortionFlag = 0;
  ASSERT_EQ(3u, run.cards().size());
  EXPECT_EQ("DESteel_S355", Field(run.cards()[0], "MaterialID"));
  EXPECT_EQ("Steel", Field(run.cards()[0], "MatType"));  // only the name changes
  EXPECT_EQ("deSteel_S460", Field(run.cards()[1], "MaterialID"));
  EXPECT_EQ("DESteel_S690", Field(run.cards()[2], "MaterialID"));
  EXPECT_NE(nullptr, FindMaterial("DESteel_S355"));
}

TEST(MatListSection, ListLineAlwaysGetsTheTypeInFront) {
  FreshStore();
  SectionRun run("LISTE :\nW W_S355 mech mm\nFIN LISTE\n", KW_MATLIST, runMatListImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("W_W_S355", Field(run.cards()[0], "MaterialID"));
}

TEST(MatListSection, OneWordLineIsNotConvertedAndLeavesTheOtherFieldsBlank) {
  FreshStore();
  SectionRun run("LISTE :\nLonely\nFIN LISTE\n", KW_MATLIST, runMatListImport);
  ASSERT_EQ(1u, run.cards().size());
  Card* card = run.cards()[0];
  // One word under four fields: the word goes into each of the four fields.
  EXPECT_EQ(4u, card->numVars());
  EXPECT_EQ("Lonely", Field(card, "MatType"));
  EXPECT_EQ("Lonely", Field(card, "MaterialID"));
  EXPECT_EQ(nullptr, FindMaterial("Lonely_Lonely"));
}

TEST(MatListSection, ListCutOffByTheEndOfTheFileLeavesOneEmptyCard) {
  FreshStore();
  SectionRun run("LISTE :\nW A mech mm\n", KW_MATLIST, runMatListImport);
  ASSERT_EQ(2u, run.cards().size());
  EXPECT_EQ("MatListDetails", run.cards()[1]->getName());
  EXPECT_EQ(0u, run.cards()[1]->numVars());
}

// ---- NOM : ----

TEST(MaterialDetailsSection, IdentifierStartingWithTheTypeIsTheWholeName) {
  FreshStore();
  SectionRun run("NOM : Steel Steel_S355 mech SI\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("MatName", run.cards()[0]->getName());
  EXPECT_EQ("Steel_S355", Field(run.cards()[0], "MaterialID"));
  EXPECT_EQ("Steel_S355", CurrentMaterialID());
}

TEST(MaterialDetailsSection, TypeAndIdentifierAreJoinedLikeTheList) {
  FreshStore();
  SectionRun run("NOM : Steel S355 mech SI\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("NOM", Field(run.cards()[0], "NameKW"));
  EXPECT_EQ("Steel", Field(run.cards()[0], "MatType"));
  EXPECT_EQ("Steel_S355", Field(run.cards()[0], "MaterialID"));
  EXPECT_EQ("mech", Field(run.cards()[0], "MatModelID"));
  EXPECT_EQ("SI", Field(run.cards()[0], "Units"));
  EXPECT_STREQ("Steel", OrvaneStaticVars::GetCurrentMaterialType());
  EXPECT_STREQ("mech", OrvaneStaticVars::GetActiveModel());
  EXPECT_NE(nullptr, FindDatasetOf(FindMaterial("Steel_S355"), "Material_type"));
}

TEST(MaterialDetailsSection, StartComparisonIgnoresCase) {
  FreshStore();
  SectionRun run("NOM : W w_s355 mech SI\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  EXPECT_EQ("w_s355", CurrentMaterialID());
}

TEST(MaterialDetailsSection, ThreeWordsMakeTheMaterialWithoutAnActiveModel) {
  FreshStore();
  OrvaneStaticVars::SetActiveModel("before");
  SectionRun run("NOM : Steel S355\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  EXPECT_EQ("Steel_S355", CurrentMaterialID());
  EXPECT_STREQ("before", OrvaneStaticVars::GetActiveModel());
}

TEST(MaterialDetailsSection, FifthWordTakesTheRestOfTheLineFromWhereTheCountSaysItStarts) {
  FreshStore();
  SectionRun run("NOM : W S355 mech mm and more\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  ASSERT_EQ(1u, run.cards().size());
  // One separator is counted per word, but " : " holds three: the rest of the
  // line starts two characters early, on the "h" of "mech".
  EXPECT_EQ("h mm and more", Field(run.cards()[0], "Units"));
}

TEST(MaterialDetailsSection, DistortionPrefixesTheTypeBeforeJoining) {
  FreshStore();
  CardsetImport::m_DistortionFlag = 1;
  SectionRun run("NOM : W S460M mechanical mm\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  CardsetImport::m_DistortionFlag = 0;
  EXPECT_EQ("DEW_S460M", CurrentMaterialID());
  EXPECT_STREQ("W", OrvaneStaticVars::GetCurrentMaterialType());  // stored before the prefix
  EXPECT_EQ("DEW", Field(run.cards()[0], "MatType"));
}

TEST(MaterialDetailsSection, ReadsExactlyOneCardAndSetsTheEndFlag) {
  FreshStore();
  SectionRun run("NOM : W A mech mm\nLABELS :\n", KW_MATERIAL_DETAILS, runMaterialDetailsImport);
  EXPECT_EQ(1u, run.cards().size());
  EXPECT_TRUE(run.dataLine().isFlagOn(3));
}

// ---- COMMENTAIRES : ----

TEST(CommentsSection, LinesAreJoinedWithSemicolonsAndReturnsBecomeBlanks) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun first("COMMENTAIRES :\r\nzero\r\nFIN COMMENTAIRES\r\n", KW_COMMENTS, runCommentsImport);
  SectionRun run("COMMENTAIRES :\r\none\r\ntwo\r\nFIN COMMENTAIRES\r\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ("one ;two ;", CommentText("W_A"));
}

TEST(CommentsSection, SingleLineKeepsItsLineEndAndTagsTheOwner) {
  FreshStore();
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\nonly line\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ("only line\n", CommentText("W_A"));
  ASSERT_EQ(1u, material->m_Metadata.size());
  EXPECT_STREQ("W_A", material->m_Metadata[0]->GetName());
  EXPECT_STREQ("Halvern", material->m_Metadata[0]->GetOwnerName());
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("Description", run.cards()[0]->getName());
  EXPECT_EQ("only line\n", Field(run.cards()[0], "Comments"));
}

TEST(CommentsSection, FirstBlockSecondLineStartsTheJoinedText) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\none\ntwo\nthree\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ("one;two;three;", CommentText("W_A"));
}

TEST(CommentsSection, RepeatedLineIsStoredOnce) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\nalpha\nbeta\nalpha\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  // The third line's raw text "alpha\n" is no longer in the flattened text, so
  // only an exact earlier occurrence is dropped: here "alpha;" holds no line feed.
  const std::string text = CommentText("W_A");
  EXPECT_EQ(3u, run.cards().size());
  EXPECT_EQ("alpha;beta;alpha;", text);
}

TEST(CommentsSection, FragmentOfEarlierTextIsDropped) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  OrvaneStaticVars::GetOrCreateMaterial("W_A")->AddMetadata(new OrvaneMLRecordMetadata());
  SectionRun run("COMMENTAIRES :\nalpha beta\nbeta\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ("alpha beta;beta;", CommentText("W_A"));
}

TEST(CommentsSection, BlankLineIsALineWithABlankField) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\none\n\ntwo\n\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  ASSERT_EQ(4u, run.cards().size());
  EXPECT_EQ(0u, run.cards()[1]->numVars());
  ASSERT_EQ(1u, run.cards()[1]->getBlankFields().size());
  EXPECT_EQ("Comments", run.cards()[1]->getBlankFields()[0]);
  // A blank line adds a ";" each time the text no longer holds a raw line end;
  // right behind the block's first line it still does (that line is stored
  // uncleaned), so the first blank line adds nothing.
  EXPECT_EQ("one;two;;", CommentText("W_A"));
}

TEST(CommentsSection, EndKeywordInAnyCaseEndsTheBlock) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\none\nfin commentaires\ntwo\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ(1u, run.cards().size());
  EXPECT_TRUE(run.dataLine().isFlagOn(3));
}

TEST(CommentsSection, EndOfFileInsideTheBlockEndsTheSection) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("COMMENTAIRES :\none\ntwo\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ(2u, run.cards().size());
  EXPECT_EQ("one;two;", CommentText("W_A"));
}

TEST(CommentsSection, WithoutAMaterialOnlyTheDatasetIsTouched) {
  FreshStore();
  SectionRun run("COMMENTAIRES :\none\ntwo\nFIN COMMENTAIRES\n", KW_COMMENTS, runCommentsImport);
  EXPECT_EQ(2u, run.cards().size());
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
}

// ---- Class, MaterialType, Typical applications:, Labels: ----

TEST(MatClassSection, EveryLineIsAFolderAndTheLastStaysCurrent) {
  FreshStore();
  SectionRun run("Class\nLow alloy steels\nStructural steels\nEndClass\n", KW_MAT_CLASS, runMatClassImport);
  ASSERT_EQ(2u, run.cards().size());
  EXPECT_EQ("Low alloy steels", Field(run.cards()[0], "FolderName"));
  ASSERT_NE(nullptr, OrvaneStaticVars::GetCurrentMaterials());
  EXPECT_STREQ("Structural steels", OrvaneStaticVars::GetCurrentMaterials()->GetName());
}

TEST(MatClassSection, EmptyClassMakesNoFolderAndFinNomFallsBackOnUnSorted) {
  FreshStore();
  const std::string path = WriteCardFile("noclass.mat", "NOM : W A mech mm\nClass\nEndClass\nFIN NOM\n");
  CardsetImport driver(path.c_str(), (ScratchDir() + "/noclass.xml").c_str());
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  ASSERT_NE(nullptr, OrvaneStaticVars::GetCurrentMaterials());
  EXPECT_STREQ("UnSorted", OrvaneStaticVars::GetCurrentMaterials()->GetName());
}

TEST(MaterialTypeSection, KeepsTheWholeLineInItsCardOnly) {
  FreshStore();
  SectionRun run("MaterialType\nAluminium  alloys\nEndMaterialType\n", KW_MATERIAL_TYPE, runMaterialTypeImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("MaterialType", run.cards()[0]->getName());
  EXPECT_EQ("Aluminium  alloys", Field(run.cards()[0], "FolderName"));
  EXPECT_EQ(nullptr, OrvaneStaticVars::GetCurrentMaterials());
}

TEST(TypicalAppsSection, EndsAtTheLabelExplanation) {
  FreshStore();
  SectionRun run("Typical applications:\nWelded frames, cranes\nLabels:\nE: modulus\n", KW_TYPICAL_APPS,
                 runTypicalAppsImport);
  ASSERT_EQ(1u, run.cards().size());
  EXPECT_EQ("AppsDescr", run.cards()[0]->getName());
  EXPECT_EQ("Welded frames, cranes", Field(run.cards()[0], "Description"));
}

TEST(LabelExplanationSection, EndsWithTheCommentBlockInAnyCase) {
  FreshStore();
  SectionRun run("Labels:\nE: Young modulus\nNU: Poisson\nfin commentaires\n", KW_LABEL_EXPLANATION,
                 runLabelExplanationImport);
  ASSERT_EQ(2u, run.cards().size());
  EXPECT_EQ("MatLabels", run.cards()[0]->getName());
  EXPECT_EQ("E: Young modulus", Field(run.cards()[0], "LabelDescr"));
}

// ---- DEF_MATERIAL ----

TEST(DefMaterialSection, PairsAreTrimmedAndStoredAsDatasets) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  OrvaneStaticVars::SetActiveModel("mechanical");
  SectionRun run("DEF_MATERIAL\nKX = 1\nKY=2\n", KW_DEF_MATERIAL, runDefMaterialImport);
  ASSERT_GE(run.cards().size(), 2u);
  EXPECT_EQ("NVPairDetails", run.cards()[0]->getName());
  EXPECT_EQ("KX", Field(run.cards()[0], "ParamID"));
  EXPECT_EQ("1", Field(run.cards()[0], "ParamValue"));
  EXPECT_EQ("KY", Field(run.cards()[1], "ParamID"));
  EXPECT_EQ("2", Field(run.cards()[1], "ParamValue"));
}

TEST(DefMaterialSection, RunsToTheEndOfTheFileAndEndsWithOneEmptyCard) {
  FreshStore();
  OrvaneStaticVars::GetOrCreateMaterial("W_A");
  SectionRun run("DEF_MATERIAL\nKX = 1\nFIN NOM\nNOM : W B mech mm\n", KW_DEF_MATERIAL, runDefMaterialImport);
  // Every later line is a pair too, then the end of the file gives a card without fields.
  ASSERT_EQ(4u, run.cards().size());
  EXPECT_EQ("FIN NOM", Field(run.cards()[1], "ParamID"));
  EXPECT_EQ("NOM : W B mech mm", Field(run.cards()[2], "ParamID"));
  EXPECT_EQ(0u, run.cards()[3]->numVars());
}

// ---- The converter on its own ----

TEST(ConvertMaterialNameConverter, FewerThanTwoWordsChangeNothing) {
  FreshStore();
  char word0[kWordCapacity] = "Steel";
  char word1[kWordCapacity] = "S355";
  char* words[] = {word0, word1};
  unsigned count = 1;
  ConvertMaterialName(words, &count, 0, nullptr);
  EXPECT_STREQ("S355", word1);
  EXPECT_TRUE(OrvaneStaticVars::GetMaterials().empty());
}

TEST(ConvertMaterialNameConverter, NameLineRecognisedOnlyByCapitalNOM) {
  FreshStore();
  char word0[kWordCapacity] = "nom";
  char word1[kWordCapacity] = "W";
  char word2[kWordCapacity] = "S355";
  char* words[] = {word0, word1, word2};
  unsigned count = 3;
  ConvertMaterialName(words, &count, 0, nullptr);
  // A list line: word 1 becomes "nom_W", and word 2 names the active model.
  EXPECT_STREQ("nom_W", word1);
  EXPECT_STREQ("S355", OrvaneStaticVars::GetActiveModel());
}
