#pragma once

// Shared by the table tests: a material of a card model made the way the
// driver makes it, and views of the tables that reached the store.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "import/phasehelpers.h"
#include "section_test_support.h"
#include "sections/materialdetails.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace tabletest {

using namespace sectiontest;

// A fresh store, with the driver's per-material state emptied as a "NOM :"
// line empties it.
class TablesTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    CardsetImport::m_PhaseIndexIDrefMap.clear();
    CardsetImport::m_CreepFlag = 0;
  }
  void TearDown() override {
    CardsetImport::m_PhaseIndexIDrefMap.clear();
    CardsetImport::m_CreepFlag = 0;
    StoreTest::TearDown();
  }
};

// The table datasets of the material at hand (its own list) with this id.
inline std::vector<OrvaneMLRecordDataset*> Tables(const std::string& id) {
  std::vector<OrvaneMLRecordDataset*> found;
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetCurrentMaterial();
  if (material == nullptr) return found;
  for (OrvaneMLRecordDataset* dataset : material->m_Datasets->m_Datasets)
    if (dataset->m_DatasetID == id) found.push_back(dataset);
  return found;
}

inline OrvaneMLRecordDataset* Table(const std::string& id) {
  std::vector<OrvaneMLRecordDataset*> found = Tables(id);
  return found.empty() ? nullptr : found.front();
}

inline OrvaneMLRecordCurve* CurveOf(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Float == nullptr || dataset->m_Float->m_Curves.empty()) return nullptr;
  return dataset->m_Float->m_Curves.front();
}

inline std::vector<std::string> Texts(OrvaneMLRecordValueList* list) {
  std::vector<std::string> texts;
  if (list == nullptr) return texts;
  for (OrvaneMLRecordValue* value : list->m_Values) texts.push_back(value->m_Value);
  return texts;
}

// The values of the first parameter axis (`axis` 0), a further one, or the data axis.
inline std::vector<std::string> ParameterValues(OrvaneMLRecordCurve* curve, size_t axis = 0) {
  if (curve == nullptr || curve->m_ParameterAxes.size() <= axis) return {"<no axis>"};
  return Texts(curve->m_ParameterAxes[axis]->m_ValueList);
}

inline std::vector<std::string> DataValues(OrvaneMLRecordCurve* curve) {
  if (curve == nullptr || curve->m_DataAxes.empty()) return {"<no axis>"};
  return Texts(curve->m_DataAxes.front()->m_ValueList);
}

// "IDref=value" of each condition, in order.
template <typename Record>
std::vector<std::string> Conditions(Record* record) {
  std::vector<std::string> texts;
  if (record == nullptr) return texts;
  for (OrvaneMLRecordParameterFixed* fixed : record->m_ParameterFixed)
    texts.push_back(fixed->m_IDref + "=" + fixed->m_Value);
  return texts;
}

inline std::vector<std::string> LinksOf(OrvaneMLRecordDataset* dataset) {
  std::vector<std::string> links;
  if (dataset == nullptr) return links;
  for (OrvaneMLRecordLink* link : dataset->m_Links) links.push_back(link->m_DatasetIDref);
  return links;
}

// The first constant of each float item.
inline std::vector<std::string> ItemTexts(OrvaneMLRecordDataset* dataset) {
  std::vector<std::string> texts;
  if (dataset == nullptr || dataset->m_FloatList == nullptr) return texts;
  for (OrvaneMLRecordFloatItem* item : dataset->m_FloatList->m_FloatItems)
    texts.push_back(item->m_Constants.empty() ? "<none>" : item->m_Constants.front()->m_Value);
  return texts;
}

// The name the material at hand gives phase `number`.
inline std::string PhaseNameOf(int number) {
  char name[2050] = {0};
  ResolvePhaseDescription(std::to_string(number).c_str(), name, "Phase_name", nullptr);
  return name;
}

// The names of a card's fields, in order.
inline std::vector<std::string> FieldNames(Card* card) { return card->getVarNames(); }

}  // namespace tabletest
