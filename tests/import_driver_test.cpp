// The import driver: opening, locating, duplicates, dispatch, return values.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "import_test_support.h"

using namespace importtest;

namespace {

const char* kOneMaterial =
    "LISTE :\n"
    "W S355 mechanical mm\n"
    "FIN LISTE\n"
    "\n"
    "NOM : W S355 mechanical mm\n"
    "COMMENTAIRES :\n"
    "Plate\n"
    "FIN COMMENTAIRES\n"
    "FIN NOM\n";

int Import(const std::string& path, bool distortion, std::string& message) {
  FreshStore();
  const std::string db = ScratchDir() + "/driver.xml";
  std::remove(db.c_str());
  CardsetImport driver(path.c_str(), db.c_str());
  void* document = nullptr;
  return driver.ImportMaterialList(&document, message, distortion);
}

}  // namespace

TEST(ImportDriver, MissingFileAnswersOneWithCouldNotOpenFile) {
  std::string message;
  CardsetImport driver((ScratchDir() + "/absent.mat").c_str(), (ScratchDir() + "/absent.xml").c_str());
  void* document = reinterpret_cast<void*>(0x1);
  EXPECT_EQ(1, driver.ImportMaterialList(&document, message, false));
  EXPECT_EQ("Could not open file", message);
  EXPECT_EQ(nullptr, document);
}

TEST(ImportDriver, ReturnsTheNumberOfLocatedSectionsVisited) {
  std::string message;
  // LISTE :, NOM :, COMMENTAIRES :, FIN NOM
  EXPECT_EQ(4, Import(WriteCardFile("one.mat", kOneMaterial), false, message));
  EXPECT_EQ("", message);
}

TEST(ImportDriver, FileWithoutSectionsAnswersZeroAndStillHandsOutTheDocument) {
  FreshStore();
  CardsetImport driver(WriteCardFile("empty.mat", "just text\n").c_str(), (ScratchDir() + "/e.xml").c_str());
  void* document = nullptr;
  std::string message;
  EXPECT_EQ(0, driver.ImportMaterialList(&document, message, false));
  EXPECT_NE(nullptr, document);
}

TEST(ImportDriver, DistortionNameIsFoundInTheFileNameWithExactCase) {
  std::string message;
  const std::string dir = ScratchDir();
  Import(dir + "/steel_DE.mat", false, message);  // need not exist: the name decides first
  EXPECT_EQ(1, CardsetImport::m_DistortionFlag);
  Import(dir + "/steel_de.mat", false, message);
  EXPECT_EQ(1, CardsetImport::m_DistortionFlag);
  Import(dir + "/steel_De.mat", false, message);
  EXPECT_EQ(0, CardsetImport::m_DistortionFlag);
  Import(dir + "/steel_dE.MAT", false, message);
  EXPECT_EQ(0, CardsetImport::m_DistortionFlag);
}

TEST(ImportDriver, DistortionNameMayStandInADirectoryOfThePath) {
  std::string message;
  Import(ScratchDir() + "/set_de.mat/steel.mat", false, message);
  EXPECT_EQ(1, CardsetImport::m_DistortionFlag);
}

TEST(ImportDriver, DistortionArgumentWinsWhateverTheName) {
  std::string message;
  Import(ScratchDir() + "/plain.mat", true, message);
  EXPECT_EQ(1, CardsetImport::m_DistortionFlag);
}

TEST(ImportDriver, SecondImportResetsTheDistortionFlag) {
  std::string message;
  Import(ScratchDir() + "/a_DE.mat", false, message);
  ASSERT_EQ(1, CardsetImport::m_DistortionFlag);
  Import(ScratchDir() + "/b.mat", false, message);
  EXPECT_EQ(0, CardsetImport::m_DistortionFlag);
}

TEST(ImportDriver, FinNomWithoutAClassFilesTheMaterialUnderUnSorted) {
  std::string message;
  Import(WriteCardFile("unsorted.mat", kOneMaterial), false, message);
  OrvaneMLRecordMaterials* folder = OrvaneStaticVars::GetCurrentMaterials();
  ASSERT_NE(nullptr, folder);
  EXPECT_STREQ("UnSorted", folder->GetName());
}

TEST(ImportDriver, ClassSectionNamesTheFolderSoFinNomMakesNoUnSorted) {
  std::string message;
  Import(WriteCardFile("classed.mat",
                       "NOM : W S355 mechanical mm\nCOMMENTAIRES :\nClass\nLow alloy steels\nEndClass\n"
                       "FIN COMMENTAIRES\nFIN NOM\n"),
         false, message);
  OrvaneMLRecordMaterials* folder = OrvaneStaticVars::GetCurrentMaterials();
  ASSERT_NE(nullptr, folder);
  EXPECT_STREQ("Low alloy steels", folder->GetName());
}

TEST(ImportDriver, TwoEqualMaterialsGiveOneDuplicateLine) {
  FreshStore();
  const std::string path = WriteCardFile(
      "dup2.mat", "NOM : W A mech mm\nFIN NOM\nNOM : W A mech mm\nCOMMENTAIRES :\nx\nFIN COMMENTAIRES\nFIN NOM\n");
  CardsetImport driver(path.c_str(), (ScratchDir() + "/d.xml").c_str());
  void* document = nullptr;
  std::string message;
  // The duplicate goes out with everything up to its FIN NOM: 2 sections remain.
  EXPECT_EQ(2, driver.ImportMaterialList(&document, message, false));
  EXPECT_STREQ("The following duplicates are ignored while reading\nNOM : W A mech mm = 1\n",
               driver.GetWarningMessage());
}

TEST(ImportDriver, ThreeEqualMaterialsCountTwo) {
  FreshStore();
  const std::string path =
      WriteCardFile("dup3.mat", "NOM : W A mech mm\nFIN NOM\nNOM : W A mech mm\nFIN NOM\nNOM : W A mech mm\nFIN NOM\n");
  CardsetImport driver(path.c_str(), (ScratchDir() + "/d.xml").c_str());
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  EXPECT_STREQ("The following duplicates are ignored while reading\nNOM : W A mech mm = 2\n",
               driver.GetWarningMessage());
}

TEST(ImportDriver, NoDuplicatesLeaveTheWarningEmpty) {
  FreshStore();
  CardsetImport driver(WriteCardFile("nodup.mat", kOneMaterial).c_str(), (ScratchDir() + "/d.xml").c_str());
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  EXPECT_STREQ("", driver.GetWarningMessage());
}

TEST(ImportDriver, DuplicateWithoutFinNomStays) {
  FreshStore();
  CardsetImport driver(nullptr, nullptr);
  std::vector<std::string> keywords = {"NOM : W A", "FIN NOM", "NOM : W A", "LABELS :"};
  std::vector<long> offsets = {0, 10, 20, 30};
  driver.RemoveDuplicateMaterialCards(keywords, offsets);
  EXPECT_EQ(4u, keywords.size());
  EXPECT_EQ(4u, offsets.size());
  EXPECT_STREQ("", driver.GetWarningMessage());
}

TEST(ImportDriver, DuplicateRemovalKeepsWhatStandsBehindItsFinNom) {
  FreshStore();
  CardsetImport driver(nullptr, nullptr);
  std::vector<std::string> keywords = {"NOM : W A", "FIN NOM", "NOM : W A", "LABELS :", "FIN NOM", "GRAIN 1"};
  std::vector<long> offsets = {0, 10, 20, 30, 40, 50};
  driver.RemoveDuplicateMaterialCards(keywords, offsets);
  EXPECT_EQ((std::vector<std::string>{"NOM : W A", "FIN NOM", "GRAIN 1"}), keywords);
  EXPECT_EQ((std::vector<long>{0, 10, 50}), offsets);
}

namespace {

std::vector<unsigned> g_dispatched;
unsigned RecordMaterialTables(DataLine*, ImportObject*) {
  g_dispatched.push_back(KW_MAT_TABLES);
  return 0;
}
unsigned RecordMetallurgyTables(DataLine*, ImportObject*) {
  g_dispatched.push_back(KW_METALLURGY_TABLE);
  return 0;
}

std::vector<unsigned> DispatchOf(const std::string& text) {
  FreshStore();
  CardsetImport driver(WriteCardFile("dispatch.mat", text).c_str(), (ScratchDir() + "/d.xml").c_str());
  driver.m_ImportFunctions[KW_MAT_TABLES] = RecordMaterialTables;
  driver.m_ImportFunctions[KW_METALLURGY_TABLE] = RecordMetallurgyTables;
  g_dispatched.clear();
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  return g_dispatched;
}

}  // namespace

TEST(ImportDriver, TablesBehindReactionAreMetallurgyTables) {
  EXPECT_EQ(std::vector<unsigned>{KW_METALLURGY_TABLE},
            DispatchOf("NOM : W A thermometal mm\nMATERIAUX :\nREACTION\nTABLES :\n1 2\nFIN MATERIAUX\nFIN NOM\n"));
}

TEST(ImportDriver, TablesBehindAnythingElseAreMaterialTables) {
  EXPECT_EQ(std::vector<unsigned>{KW_MAT_TABLES},
            DispatchOf("NOM : W A mechanical mm\nLABELS :\nE 1\nFIN LABELS\nTABLES :\n1 2\nFIN TABLES\nFIN NOM\n"));
}

TEST(ImportDriver, MetallurgyFileInAnyCaseMakesWeldAndMetallurgyMatFirst) {
  std::string message;
  const std::string path = WriteCardFile("MeTaLLurgY.MaT", "MATERIAL 1 PHASE 6\nEND\n");
  Import(path, false, message);
  OrvaneMLRecordMaterial* material = FindMaterial("MetallurgyMat");
  ASSERT_NE(nullptr, material);
  OrvaneMLRecordMaterials* folder = OrvaneStaticVars::GetFolderOfMaterial(material);
  ASSERT_NE(nullptr, folder);
  EXPECT_STREQ("Weld", folder->GetName());
  EXPECT_EQ(material, OrvaneStaticVars::GetMaterials().front());
}

TEST(ImportDriver, EveryVisitedSectionIsKeptWithItsKeywordAndType) {
  FreshStore();
  CardsetImport driver(WriteCardFile("kept.mat", kOneMaterial).c_str(), (ScratchDir() + "/d.xml").c_str());
  void* document = nullptr;
  std::string message;
  driver.ImportMaterialList(&document, message, false);
  ASSERT_EQ(3u, driver.m_Sections.size());  // FIN NOM is visited but not dispatched
  EXPECT_EQ("LISTE :", driver.m_Sections[0]->getKeyword());
  EXPECT_EQ(static_cast<unsigned>(KW_MATLIST), driver.m_Sections[0]->getKeywordType());
  EXPECT_EQ("NOM : W S355 mechanical mm", driver.m_Sections[1]->getKeyword());
  EXPECT_EQ(static_cast<unsigned>(KW_MATERIAL_DETAILS), driver.m_Sections[1]->getKeywordType());
  EXPECT_EQ(static_cast<unsigned>(KW_COMMENTS), driver.m_Sections[2]->getKeywordType());
}

TEST(ImportDriver, LocatorWarningsReachTheHostOnlyWithAResourcesPath) {
  static std::vector<std::wstring> messages;
  BkSetMessageHandler([](int kind, const wchar_t* text) {
    if (kind == 2) messages.push_back(text);
  });
  const std::string path = WriteCardFile(
      "open.mat", "NOM : W A mech mm\nCOMMENTAIRES :\ntext\nNOM : W B mech mm\nFIN NOM\n");
  std::string message;
  unsetenv("KORA_RESOURCES_PATH");
  messages.clear();
  Import(path, false, message);
  EXPECT_TRUE(messages.empty());
  setenv("KORA_RESOURCES_PATH", "/opt/resources", 1);
  Import(path, false, message);
  unsetenv("KORA_RESOURCES_PATH");
  BkSetMessageHandler(nullptr);
  ASSERT_EQ(1u, messages.size());
  EXPECT_EQ(L"FIN COMMENTAIRES not found in NOM : W A mech mm\n", messages[0]);
}

TEST(ImportDriver, ImportsEveryCorpusFileAndVisitsItsSections) {
  for (const char* name : {"S355J2G3.mat", "16MnCr5_thermometal.mat", "case_hardening_steels.mat", "AlMg4.5Mn.mat",
                           "NiCr19Fe19Nb5Mo3.mat", "S460M_DE.mat", "METALLURGY.mat", "42CrMo4_tempering.mat",
                           "stainless_steels.mat"}) {
    std::string message;
    const int visited = Import(CorpusPath(name), false, message);
    EXPECT_GT(visited, 1) << name;
    EXPECT_EQ("", message) << name;
    void* document = nullptr;
    OrvaneStaticVars::GetXMLDocument(&document);
    EXPECT_NE(nullptr, document) << name;
    EXPECT_FALSE(OrvaneStaticVars::GetMaterials().empty()) << name;
  }
}
