#include "store/dombridge.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlmemory.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "quillon-dom-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) m_Path = pattern;
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    if (!m_Path.empty()) fs::remove_all(m_Path, ignored);
  }
  std::string File(const std::string& name) const { return (fs::path(m_Path) / name).string(); }
  const std::string& Path() const { return m_Path; }

 private:
  std::string m_Path;
};

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Copies a bridge text and gives it back, so assertions can compare strings.
std::string Take(char* text) {
  std::string copy = text != nullptr ? text : "<null>";
  DomStringRelease(text);
  return copy;
}

const char* const kRecordDocument =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Root>\n"
    "  <Record name=\"r1\">\n"
    "    <Model IDref=\"Phase_details_model\" InstanceID=\"10\"/>\n"
    "    <Datasets>\n"
    "      <Dataset IDref=\"Thermal_strains\" DatasetID=\"1\">\n"
    "        <ParameterFixed IDref=\"Temperature\"><Value>20</Value></ParameterFixed>\n"
    "      </Dataset>\n"
    "    </Datasets>\n"
    "  </Record>\n"
    "  <Other/>\n"
    "</Root>\n";

xmlNodePtr FirstElementNamed(xmlNodePtr from, const char* name) {
  for (xmlNodePtr node = from; node != nullptr; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    if (std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0) return node;
    if (xmlNodePtr inner = FirstElementNamed(node->children, name)) return inner;
  }
  return nullptr;
}

class DomBridgeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteText(m_Dir.File("records.xml"), kRecordDocument);
    m_Doc = DomParseFile(m_Dir.File("records.xml").c_str());
    ASSERT_NE(m_Doc, nullptr);
  }
  void TearDown() override { DomFreeDocument(m_Doc); }

  void* Find(const char* name) const {
    return FirstElementNamed(static_cast<xmlDocPtr>(m_Doc)->children, name);
  }

  TemporaryDirectory m_Dir;
  void* m_Doc = nullptr;
};

TEST_F(DomBridgeTest, RootElementIsTheDocumentElement) {
  void* root = DomGetRootElement(m_Doc);
  ASSERT_NE(root, nullptr);
  EXPECT_STREQ(DomGetNodeName(root), "Root");
}

TEST_F(DomBridgeTest, ParentOfTheRootElementIsNull) {
  EXPECT_EQ(DomGetParentNode(DomGetRootElement(m_Doc)), nullptr);
}

TEST_F(DomBridgeTest, ParentOfANestedElementIsTheElementAroundIt) {
  void* dataset = Find("Dataset");
  ASSERT_NE(dataset, nullptr);
  EXPECT_EQ(DomGetParentNode(dataset), Find("Datasets"));
  EXPECT_STREQ(DomGetNodeName(DomGetParentNode(DomGetParentNode(dataset))), "Record");
}

TEST_F(DomBridgeTest, PresentAttributeGivesItsValue) {
  EXPECT_EQ(Take(DomGetAttVal(Find("Dataset"), "IDref")), "Thermal_strains");
  EXPECT_EQ(Take(DomGetAttVal(Find("Model"), "InstanceID")), "10");
}

TEST_F(DomBridgeTest, AbsentAttributeGivesNull) {
  EXPECT_EQ(DomGetAttVal(Find("Dataset"), "InstanceID"), nullptr);
  EXPECT_EQ(DomGetAttVal(Find("Other"), "IDref"), nullptr);
}

TEST_F(DomBridgeTest, TextValueIsTheTextContentOfTheElement) {
  EXPECT_EQ(Take(DomGetTextNodeValue(Find("Value"))), "20");
  EXPECT_EQ(Take(DomGetTextNodeValue(Find("ParameterFixed"))), "20");
  EXPECT_EQ(Take(DomGetTextNodeValue(Find("Other"))), "");
}

TEST_F(DomBridgeTest, CreatedElementStandsNowhereUntilAppended) {
  void* group = DomCreateNewElement(m_Doc, "ParameterFixedGroup");
  ASSERT_NE(group, nullptr);
  EXPECT_STREQ(DomGetNodeName(group), "ParameterFixedGroup");
  EXPECT_EQ(DomGetParentNode(group), nullptr);
}

TEST_F(DomBridgeTest, CreatingAnElementWithAnImpossibleNameFails) {
  EXPECT_EQ(DomCreateNewElement(m_Doc, "two words"), nullptr);
  EXPECT_EQ(DomCreateNewElement(m_Doc, ""), nullptr);
}

TEST_F(DomBridgeTest, AppendedChildBecomesTheLastChild) {
  void* dataset = Find("Dataset");
  void* group = DomCreateNewElement(m_Doc, "ParameterFixedGroup");
  DomAppendChild(m_Doc, dataset, group);
  EXPECT_EQ(DomGetParentNode(group), dataset);
  EXPECT_EQ(static_cast<xmlNodePtr>(dataset)->last, group);
}

TEST_F(DomBridgeTest, AppendingAChildThatStandsElsewhereMovesIt) {
  void* model = Find("Model");
  void* other = Find("Other");
  DomAppendChild(m_Doc, other, model);
  EXPECT_EQ(DomGetParentNode(model), other);
  EXPECT_EQ(FirstElementNamed(static_cast<xmlNodePtr>(Find("Record"))->children, "Model"),
            nullptr);
  EXPECT_EQ(static_cast<xmlNodePtr>(other)->children, model);
}

TEST_F(DomBridgeTest, AppendingAnElementBelowItselfIsRefused) {
  void* record = Find("Record");
  void* dataset = Find("Dataset");
  DomAppendChild(m_Doc, dataset, record);
  EXPECT_EQ(DomGetParentNode(record), DomGetRootElement(m_Doc));
  DomAppendChild(m_Doc, record, record);
  EXPECT_EQ(DomGetParentNode(record), DomGetRootElement(m_Doc));
}

TEST_F(DomBridgeTest, TextNodesAreNeitherMovedNorCloned) {
  xmlNodePtr blank = static_cast<xmlNodePtr>(Find("Dataset"))->children;
  ASSERT_EQ(blank->type, XML_TEXT_NODE);
  void* other = Find("Other");
  DomAppendChild(m_Doc, other, blank);
  EXPECT_EQ(blank->parent, Find("Dataset"));
  EXPECT_EQ(static_cast<xmlNodePtr>(other)->children, nullptr);
  EXPECT_EQ(DomCloneNodeNew(m_Doc, blank, 1), nullptr);
}

TEST_F(DomBridgeTest, DocumentKeepsASingleRootElement) {
  void* second = DomCreateNewElement(m_Doc, "Second");
  DomAppendChild(m_Doc, m_Doc, second);
  EXPECT_EQ(DomGetParentNode(second), nullptr);
  EXPECT_EQ(static_cast<xmlNodePtr>(second)->parent, nullptr);
  EXPECT_STREQ(DomGetNodeName(DomGetRootElement(m_Doc)), "Root");

  // With the root taken out, an element may take its place.
  DomDeleteElement(DomGetRootElement(m_Doc));
  DomAppendChild(m_Doc, m_Doc, second);
  EXPECT_EQ(DomGetRootElement(m_Doc), second);
}

TEST_F(DomBridgeTest, DeepCloneCopiesTheSubtreeAndStaysIndependentOfItsSource) {
  void* dataset = Find("Dataset");
  void* copy = DomCloneNodeNew(m_Doc, dataset, 1);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, dataset);
  EXPECT_EQ(DomGetParentNode(copy), nullptr);
  EXPECT_EQ(Take(DomGetAttVal(copy, "IDref")), "Thermal_strains");

  // Changing and emptying the source leaves the copy as it was.
  xmlSetProp(static_cast<xmlNodePtr>(dataset), BAD_CAST "IDref", BAD_CAST "Changed");
  DomDeleteElement(Find("ParameterFixed"));
  EXPECT_EQ(Take(DomGetAttVal(copy, "IDref")), "Thermal_strains");
  EXPECT_EQ(Take(DomGetTextNodeValue(FirstElementNamed(static_cast<xmlNodePtr>(copy)->children,
                                                      "Value"))),
            "20");
  xmlNodePtr copiedFixed = FirstElementNamed(static_cast<xmlNodePtr>(copy)->children,
                                             "ParameterFixed");
  ASSERT_NE(copiedFixed, nullptr);
  EXPECT_EQ(Take(DomGetAttVal(copiedFixed, "IDref")), "Temperature");
  EXPECT_EQ(DomGetParentNode(copiedFixed), copy);
}

TEST_F(DomBridgeTest, ShallowCloneKeepsAttributesButNoChildren) {
  void* copy = DomCloneNodeNew(m_Doc, Find("Dataset"), 0);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Take(DomGetAttVal(copy, "DatasetID")), "1");
  EXPECT_EQ(static_cast<xmlNodePtr>(copy)->children, nullptr);
}

TEST_F(DomBridgeTest, DeletedElementStaysReadableAndCanBeAppendedElsewhere) {
  void* fixed = Find("ParameterFixed");
  void* dataset = Find("Dataset");
  DomDeleteElement(fixed);
  EXPECT_EQ(DomGetParentNode(fixed), nullptr);
  EXPECT_EQ(FirstElementNamed(static_cast<xmlNodePtr>(dataset)->children, "ParameterFixed"),
            nullptr);
  EXPECT_EQ(Take(DomGetAttVal(fixed, "IDref")), "Temperature");
  EXPECT_EQ(Take(DomGetTextNodeValue(fixed)), "20");

  void* group = DomCreateNewElement(m_Doc, "ParameterFixedGroup");
  DomAppendChild(m_Doc, dataset, group);
  DomAppendChild(m_Doc, group, fixed);
  EXPECT_EQ(DomGetParentNode(fixed), group);
  EXPECT_EQ(DomGetParentNode(group), dataset);
}

TEST_F(DomBridgeTest, DeletingTheRootElementDetachesIt) {
  void* root = DomGetRootElement(m_Doc);
  DomDeleteElement(root);
  EXPECT_EQ(DomGetRootElement(m_Doc), nullptr);
  EXPECT_STREQ(DomGetNodeName(root), "Root");
}

TEST_F(DomBridgeTest, DeletingTwiceKeepsTheNodeDetachedOnce) {
  void* model = Find("Model");
  DomDeleteElement(model);
  DomDeleteElement(model);
  EXPECT_EQ(DomGetParentNode(model), nullptr);
  // The free in TearDown runs under the sanitizers: a double free would show there.
}

TEST_F(DomBridgeTest, ElementMovedFromAnotherDocumentBelongsToTheNewOne) {
  WriteText(m_Dir.File("other.xml"), "<Other><Moved a=\"1\"><Inner/></Moved></Other>");
  void* otherDoc = DomParseFile(m_Dir.File("other.xml").c_str());
  ASSERT_NE(otherDoc, nullptr);
  void* moved = FirstElementNamed(static_cast<xmlDocPtr>(otherDoc)->children, "Moved");
  DomDeleteElement(moved);
  DomAppendChild(m_Doc, DomGetRootElement(m_Doc), moved);
  DomFreeDocument(otherDoc);  // must neither free the moved node nor keep a hold on it
  EXPECT_EQ(static_cast<xmlNodePtr>(moved)->doc, m_Doc);
  EXPECT_EQ(Take(DomGetAttVal(moved, "a")), "1");
  EXPECT_EQ(DomGetParentNode(moved), DomGetRootElement(m_Doc));
}

// Counts the blocks libxml2 holds, to see that detached nodes are given back.
long g_LiveBlocks = 0;
void CountingFree(void* block) {
  if (block != nullptr) --g_LiveBlocks;
  std::free(block);
}
void* CountingMalloc(size_t size) {
  void* block = std::malloc(size);
  if (block != nullptr) ++g_LiveBlocks;
  return block;
}
void* CountingRealloc(void* block, size_t size) {
  void* moved = std::realloc(block, size);
  if (block == nullptr && moved != nullptr) ++g_LiveBlocks;
  return moved;
}
char* CountingStrdup(const char* text) {
  char* copy = strdup(text);
  if (copy != nullptr) ++g_LiveBlocks;
  return copy;
}

class CountingAllocator {
 public:
  CountingAllocator() {
    xmlMemGet(&m_Free, &m_Malloc, &m_Realloc, &m_Strdup);
    xmlMemSetup(CountingFree, CountingMalloc, CountingRealloc, CountingStrdup);
  }
  ~CountingAllocator() { xmlMemSetup(m_Free, m_Malloc, m_Realloc, m_Strdup); }

 private:
  xmlFreeFunc m_Free = nullptr;
  xmlMallocFunc m_Malloc = nullptr;
  xmlReallocFunc m_Realloc = nullptr;
  xmlStrdupFunc m_Strdup = nullptr;
};

TEST(DomBridgeMemory, FreeingTheDocumentAlsoFreesTheNodesLeftDetached) {
  TemporaryDirectory dir;
  WriteText(dir.File("records.xml"), kRecordDocument);
  xmlInitParser();
  DomFreeDocument(DomParseFile(dir.File("records.xml").c_str()));  // settle the parser's own state

  CountingAllocator counting;
  const long before = g_LiveBlocks;
  void* doc = DomParseFile(dir.File("records.xml").c_str());
  ASSERT_NE(doc, nullptr);
  void* root = DomGetRootElement(doc);
  void* dataset = FirstElementNamed(static_cast<xmlNodePtr>(root), "Dataset");
  void* copy = DomCloneNodeNew(doc, dataset, 1);                  // never attached
  void* loose = DomCreateNewElement(doc, "Loose");                // never attached
  DomAppendChild(doc, loose, DomCreateNewElement(doc, "Inside"));  // freed with its parent
  DomDeleteElement(FirstElementNamed(static_cast<xmlNodePtr>(root), "Model"));
  void* reattached = FirstElementNamed(static_cast<xmlNodePtr>(root), "Other");
  DomDeleteElement(reattached);
  DomAppendChild(doc, dataset, reattached);  // attached again: freed once, with the tree
  ASSERT_NE(copy, nullptr);
  ASSERT_NE(loose, nullptr);
  EXPECT_GT(g_LiveBlocks, before);
  DomFreeDocument(doc);
  EXPECT_EQ(g_LiveBlocks, before);
}

TEST(DomBridgeFiles, SaveIndentsElementsBuiltWithoutLayout) {
  TemporaryDirectory dir;
  WriteText(dir.File("bare.xml"), "<Root/>");
  void* doc = DomParseFile(dir.File("bare.xml").c_str());
  ASSERT_NE(doc, nullptr);
  void* group = DomCreateNewElement(doc, "ParameterFixedGroup");
  DomAppendChild(doc, DomGetRootElement(doc), group);
  DomAppendChild(doc, group, DomCreateNewElement(doc, "ParameterFixed"));
  ASSERT_NE(DomSaveDocument(doc, dir.File("saved.xml").c_str()), 0);
  DomFreeDocument(doc);
  EXPECT_EQ(ReadText(dir.File("saved.xml")),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<Root>\n"
            "  <ParameterFixedGroup>\n"
            "    <ParameterFixed/>\n"
            "  </ParameterFixedGroup>\n"
            "</Root>\n");
}

TEST(DomBridgeFiles, SaveThenParseThenSaveIsByteIdentical) {
  TemporaryDirectory dir;
  WriteText(dir.File("bare.xml"), "<Root><Record name=\"r\">text<Mixed/> kept </Record></Root>");
  void* doc = DomParseFile(dir.File("bare.xml").c_str());
  ASSERT_NE(doc, nullptr);
  void* root = DomGetRootElement(doc);
  void* group = DomCreateNewElement(doc, "ParameterFixedGroup");
  DomAppendChild(doc, root, group);
  DomAppendChild(doc, group, DomCreateNewElement(doc, "ParameterFixed"));
  DomAppendChild(doc, group, DomCloneNodeNew(doc, group, 1));
  ASSERT_NE(DomSaveDocument(doc, dir.File("first.xml").c_str()), 0);
  DomFreeDocument(doc);

  // The layout of the first save comes back as blank text, which the second
  // save writes out as it stands.
  void* again = DomParseFile(dir.File("first.xml").c_str());
  ASSERT_NE(again, nullptr);
  ASSERT_NE(DomSaveDocument(again, dir.File("second.xml").c_str()), 0);
  DomFreeDocument(again);

  const std::string first = ReadText(dir.File("first.xml"));
  EXPECT_NE(first.find("<Record name=\"r\">text<Mixed/> kept </Record>"), std::string::npos)
      << first;
  EXPECT_NE(first.find("\n  <ParameterFixedGroup>\n    <ParameterFixed/>\n"), std::string::npos)
      << first;
  EXPECT_EQ(ReadText(dir.File("second.xml")), first);
}

TEST(DomBridgeFiles, SavingAParsedFileTwiceGivesTheSameBytes) {
  TemporaryDirectory dir;
  WriteText(dir.File("records.xml"), kRecordDocument);
  void* doc = DomParseFile(dir.File("records.xml").c_str());
  ASSERT_NE(doc, nullptr);
  ASSERT_NE(DomSaveDocument(doc, dir.File("first.xml").c_str()), 0);
  DomFreeDocument(doc);
  void* again = DomParseFile(dir.File("first.xml").c_str());
  ASSERT_NE(again, nullptr);
  ASSERT_NE(DomSaveDocument(again, dir.File("second.xml").c_str()), 0);
  DomFreeDocument(again);
  EXPECT_EQ(ReadText(dir.File("first.xml")), kRecordDocument);
  EXPECT_EQ(ReadText(dir.File("second.xml")), kRecordDocument);
}

TEST(DomBridgeFiles, SaveWritesNonAsciiTextAsUtf8) {
  TemporaryDirectory dir;
  WriteText(dir.File("latin.xml"),
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<Root name=\"\xE9\"/>\n");
  void* doc = DomParseFile(dir.File("latin.xml").c_str());
  ASSERT_NE(doc, nullptr);
  ASSERT_NE(DomSaveDocument(doc, dir.File("utf8.xml").c_str()), 0);
  DomFreeDocument(doc);
  const std::string saved = ReadText(dir.File("utf8.xml"));
  EXPECT_NE(saved.find("encoding=\"UTF-8\""), std::string::npos);
  EXPECT_NE(saved.find("name=\"\xC3\xA9\""), std::string::npos) << saved;
}

TEST(DomBridgeFiles, SaveReplacesTheFileAndLeavesNoTemporaryFileBehind) {
  TemporaryDirectory dir;
  WriteText(dir.File("records.xml"), "<Old/>\n");
  WriteText(dir.File("source.xml"), "<New/>\n");
  void* doc = DomParseFile(dir.File("source.xml").c_str());
  ASSERT_NE(doc, nullptr);
  ASSERT_NE(DomSaveDocument(doc, dir.File("records.xml").c_str()), 0);
  DomFreeDocument(doc);
  EXPECT_EQ(ReadText(dir.File("records.xml")), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<New/>\n");
  int files = 0;
  for (const auto& entry : fs::directory_iterator(dir.Path())) {
    (void)entry;
    ++files;
  }
  EXPECT_EQ(files, 2);
}

TEST(DomBridgeFiles, SaveIntoAMissingDirectoryFails) {
  TemporaryDirectory dir;
  WriteText(dir.File("source.xml"), "<New/>");
  void* doc = DomParseFile(dir.File("source.xml").c_str());
  ASSERT_NE(doc, nullptr);
  EXPECT_EQ(DomSaveDocument(doc, dir.File("missing/records.xml").c_str()), 0);
  EXPECT_EQ(DomSaveDocument(doc, dir.Path().c_str()), 0);  // a directory can't be replaced
  DomFreeDocument(doc);
  int files = 0;
  for (const auto& entry : fs::directory_iterator(dir.Path())) {
    (void)entry;
    ++files;
  }
  EXPECT_EQ(files, 1);  // no temporary file left over from the failed rename
}

void EndProcessBeforeRename(const char*) { _exit(3); }

TEST(DomBridgeFiles, SaveInterruptedBeforeTheRenameLeavesTheOldFileIntact) {
  TemporaryDirectory dir;
  const std::string target = dir.File("records.xml");
  WriteText(target, kRecordDocument);
  const std::string before = ReadText(target);

  WriteText(dir.File("source.xml"), "<Replacement><Much>more text than before</Much></Replacement>");
  void* doc = DomParseFile(dir.File("source.xml").c_str());
  ASSERT_NE(doc, nullptr);
  EXPECT_EXIT(
      {
        quillon::SetSaveInterruptHookForTesting(EndProcessBeforeRename);
        DomSaveDocument(doc, target.c_str());
        std::exit(0);
      },
      ::testing::ExitedWithCode(3), "");
  DomFreeDocument(doc);

  EXPECT_EQ(ReadText(target), before);
  // The complete temporary file is the only trace of the interrupted save.
  int temporaries = 0;
  for (const auto& entry : fs::directory_iterator(dir.Path())) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("records.xml.tmp", 0) == 0) {
      ++temporaries;
      EXPECT_NE(ReadText(entry.path().string()).find("<Replacement>"), std::string::npos);
    }
  }
  EXPECT_EQ(temporaries, 1);
}

TEST(DomBridgeFiles, MalformedFileParsesToNull) {
  TemporaryDirectory dir;
  WriteText(dir.File("broken.xml"), "<Root><Record></Root>");
  EXPECT_EQ(DomParseFile(dir.File("broken.xml").c_str()), nullptr);
  WriteText(dir.File("empty.xml"), "");
  EXPECT_EQ(DomParseFile(dir.File("empty.xml").c_str()), nullptr);
}

TEST(DomBridgeFiles, MissingFileParsesToNullWithAReasonNamingIt) {
  TemporaryDirectory dir;
  const std::string path = dir.File("absent.xml");
  std::string reason;
  EXPECT_EQ(quillon::DomParseFileWithReason(path.c_str(), reason), nullptr);
  EXPECT_NE(reason.find(path), std::string::npos) << reason;
}

TEST(DomBridgeFiles, MalformedFileReasonNamesTheFileAndLine) {
  TemporaryDirectory dir;
  const std::string path = dir.File("broken.xml");
  WriteText(path, "<Root>\n<Record>\n</Root>\n\n\n");
  std::string reason;
  EXPECT_EQ(quillon::DomParseFileWithReason(path.c_str(), reason), nullptr);
  EXPECT_NE(reason.find(path), std::string::npos) << reason;
  EXPECT_NE(reason.find("line 3"), std::string::npos) << reason;
}

TEST(DomBridgeFiles, ExternalEntityIsNeitherLoadedNorExpanded) {
  TemporaryDirectory dir;
  WriteText(dir.File("secret.txt"), "TOPSECRET");
  WriteText(dir.File("entity.xml"),
            "<?xml version=\"1.0\"?>\n"
            "<!DOCTYPE Root [<!ENTITY leak SYSTEM \"secret.txt\">]>\n"
            "<Root><Value>&leak;</Value></Root>\n");
  void* doc = DomParseFile(dir.File("entity.xml").c_str());
  ASSERT_NE(doc, nullptr);
  void* value = FirstElementNamed(static_cast<xmlNodePtr>(DomGetRootElement(doc)), "Value");
  EXPECT_EQ(Take(DomGetTextNodeValue(value)).find("TOPSECRET"), std::string::npos);
  ASSERT_NE(DomSaveDocument(doc, dir.File("saved.xml").c_str()), 0);
  DomFreeDocument(doc);
  const std::string saved = ReadText(dir.File("saved.xml"));
  EXPECT_EQ(saved.find("TOPSECRET"), std::string::npos);
  EXPECT_NE(saved.find("&leak;"), std::string::npos) << saved;
}

TEST(DomBridgeFiles, ExternalDtdIsNotFetched) {
  TemporaryDirectory dir;
  // A DTD that would add a default attribute if it were read.
  WriteText(dir.File("defaults.dtd"), "<!ATTLIST Root added CDATA \"fromDtd\">");
  WriteText(dir.File("local.xml"),
            "<?xml version=\"1.0\"?>\n<!DOCTYPE Root SYSTEM \"defaults.dtd\">\n<Root/>\n");
  WriteText(dir.File("remote.xml"),
            "<?xml version=\"1.0\"?>\n"
            "<!DOCTYPE Root SYSTEM \"http://192.0.2.1/never.dtd\">\n<Root/>\n");
  void* local = DomParseFile(dir.File("local.xml").c_str());
  ASSERT_NE(local, nullptr);
  EXPECT_EQ(DomGetAttVal(DomGetRootElement(local), "added"), nullptr);
  DomFreeDocument(local);
  void* remote = DomParseFile(dir.File("remote.xml").c_str());
  ASSERT_NE(remote, nullptr);
  EXPECT_STREQ(DomGetNodeName(DomGetRootElement(remote)), "Root");
  DomFreeDocument(remote);
}

TEST(DomBridgeNulls, EveryFunctionToleratesNullArguments) {
  EXPECT_EQ(DomGetRootElement(nullptr), nullptr);
  EXPECT_EQ(DomGetParentNode(nullptr), nullptr);
  EXPECT_EQ(DomGetNodeName(nullptr), nullptr);
  EXPECT_EQ(DomGetAttVal(nullptr, "IDref"), nullptr);
  EXPECT_EQ(DomGetTextNodeValue(nullptr), nullptr);
  DomStringRelease(nullptr);
  EXPECT_EQ(DomCreateNewElement(nullptr, "Model"), nullptr);
  DomAppendChild(nullptr, nullptr, nullptr);
  EXPECT_EQ(DomCloneNodeNew(nullptr, nullptr, 1), nullptr);
  DomDeleteElement(nullptr);
  EXPECT_EQ(DomParseFile(nullptr), nullptr);
  DomFreeDocument(nullptr);
  EXPECT_EQ(DomSaveDocument(nullptr, "/tmp/never-written.xml"), 0);
}

TEST_F(DomBridgeTest, NullNamesAndNodesAreRefusedOnALiveDocument) {
  EXPECT_EQ(DomGetAttVal(Find("Model"), nullptr), nullptr);
  EXPECT_EQ(DomCreateNewElement(m_Doc, nullptr), nullptr);
  EXPECT_EQ(DomCloneNodeNew(m_Doc, nullptr, 1), nullptr);
  DomAppendChild(m_Doc, Find("Model"), nullptr);
  DomAppendChild(m_Doc, nullptr, Find("Other"));
  EXPECT_EQ(DomGetParentNode(Find("Other")), DomGetRootElement(m_Doc));
  EXPECT_EQ(DomSaveDocument(m_Doc, nullptr), 0);
}

}  // namespace
