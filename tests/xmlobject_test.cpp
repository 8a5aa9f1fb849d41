#include "store/xmlobject.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "store/dombridge.h"

namespace {

namespace fs = std::filesystem;

// <Root>
//   <Record id="r1">
//     <Model id="m1"><Model id="m1a"/></Model>
//     <Datasets><Dataset id="d1"><Model id="m1b"/></Dataset></Datasets>
//   </Record>
//   <Record id="r2"><Model id="m2"/></Record>
//   <model id="lower"/>
// </Root>
const char* const kNestedDocument =
    "<Root>\n"
    "  <Record id=\"r1\">\n"
    "    <Model id=\"m1\"><Model id=\"m1a\"/></Model>\n"
    "    <Datasets><Dataset id=\"d1\"><Model id=\"m1b\"/></Dataset></Datasets>\n"
    "  </Record>\n"
    "  <Record id=\"r2\"><Model id=\"m2\"/></Record>\n"
    "  <model id=\"lower\"/>\n"
    "</Root>\n";

std::string IdOf(void* node) {
  char* value = DomGetAttVal(node, "id");
  std::string id = value != nullptr ? value : "<none>";
  DomStringRelease(value);
  return id;
}

std::vector<std::string> IdsOf(const XMLObject& nodes) {
  std::vector<std::string> ids;
  for (int i = 0; i < nodes.GetCount(); ++i) ids.push_back(IdOf(nodes.GetNode(i)));
  return ids;
}

class XMLObjectTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "quillon-xmlobject-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    m_Dir = pattern;
    const std::string file = m_Dir + "/nested.xml";
    std::ofstream(file) << kNestedDocument;
    m_Doc = DomParseFile(file.c_str());
    ASSERT_NE(m_Doc, nullptr);
    m_Root = DomGetRootElement(m_Doc);
  }
  void TearDown() override {
    DomFreeDocument(m_Doc);
    std::error_code ignored;
    fs::remove_all(m_Dir, ignored);
  }

  std::string m_Dir;
  void* m_Doc = nullptr;
  void* m_Root = nullptr;
};

TEST_F(XMLObjectTest, HoldsEveryDescendantOfTheNameInDocumentOrder) {
  XMLObject models(m_Root, "Model");
  EXPECT_EQ(IdsOf(models), (std::vector<std::string>{"m1", "m1a", "m1b", "m2"}));
}

TEST_F(XMLObjectTest, DirectChildrenComeInDocumentOrder) {
  XMLObject records(m_Root, "Record");
  ASSERT_EQ(records.GetCount(), 2);
  EXPECT_EQ(IdOf(records.GetNode(0)), "r1");
  EXPECT_EQ(IdOf(records.GetNode(1)), "r2");
}

TEST_F(XMLObjectTest, LeavesTheParentItselfOut) {
  XMLObject records(m_Root, "Record");
  void* outerModel = XMLObject(records.GetNode(0), "Model").GetNode(0);
  XMLObject inner(outerModel, "Model");
  EXPECT_EQ(IdsOf(inner), (std::vector<std::string>{"m1a"}));
  EXPECT_EQ(XMLObject(m_Root, "Root").GetCount(), 0);
}

TEST_F(XMLObjectTest, LooksOnlyBelowTheParentGiven) {
  XMLObject records(m_Root, "Record");
  EXPECT_EQ(IdsOf(XMLObject(records.GetNode(1), "Model")), (std::vector<std::string>{"m2"}));
}

TEST_F(XMLObjectTest, NamesCompareWithRegardToCase) {
  EXPECT_EQ(IdsOf(XMLObject(m_Root, "model")), (std::vector<std::string>{"lower"}));
}

TEST_F(XMLObjectTest, AbsentNameGivesCountZero) {
  XMLObject none(m_Root, "ParameterFixed");
  EXPECT_EQ(none.GetCount(), 0);
  EXPECT_EQ(none.GetNode(0), nullptr);
}

TEST_F(XMLObjectTest, NodeOutOfRangeIsNull) {
  XMLObject records(m_Root, "Record");
  EXPECT_EQ(records.GetNode(-1), nullptr);
  EXPECT_EQ(records.GetNode(2), nullptr);
  EXPECT_NE(records.GetNode(1), nullptr);
}

TEST_F(XMLObjectTest, CopyHoldsTheSameNodes) {
  XMLObject models(m_Root, "Model");
  XMLObject copy(models);
  ASSERT_EQ(copy.GetCount(), models.GetCount());
  for (int i = 0; i < models.GetCount(); ++i) EXPECT_EQ(copy.GetNode(i), models.GetNode(i));
  XMLObject assigned(nullptr, "Model");
  assigned = models;
  EXPECT_EQ(assigned.GetNode(3), models.GetNode(3));
}

TEST_F(XMLObjectTest, KeepsItsNodesAfterTheyAreTakenOutOfTheTree) {
  XMLObject models(m_Root, "Model");
  void* first = models.GetNode(0);
  DomDeleteElement(first);
  EXPECT_EQ(models.GetCount(), 4);
  EXPECT_EQ(models.GetNode(0), first);
  // A fresh view no longer finds the subtree that was taken out.
  EXPECT_EQ(IdsOf(XMLObject(m_Root, "Model")), (std::vector<std::string>{"m1b", "m2"}));
  // The detached subtree can still be searched.
  EXPECT_EQ(IdsOf(XMLObject(first, "Model")), (std::vector<std::string>{"m1a"}));
}

TEST_F(XMLObjectTest, NullParentOrNameGivesAnEmptyList) {
  EXPECT_EQ(XMLObject(nullptr, "Model").GetCount(), 0);
  EXPECT_EQ(XMLObject(m_Root, nullptr).GetCount(), 0);
}

TEST_F(XMLObjectTest, DocumentAsParentFindsTheRootElementToo) {
  EXPECT_EQ(XMLObject(m_Doc, "Root").GetCount(), 1);
}

TEST_F(XMLObjectTest, EveryElementIsVisitedOnceInDocumentOrder) {
  std::vector<std::string> names;
  quillon::ForEachElement(m_Root, [&](void* element) { names.push_back(DomGetNodeName(element)); });
  EXPECT_EQ(names, (std::vector<std::string>{"Root", "Record", "Model", "Model", "Datasets",
                                             "Dataset", "Model", "Record", "Model", "model"}));
}

}  // namespace
