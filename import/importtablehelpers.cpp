#include <cstring>
#include <string>

#include "import/cardsetimport.h"
#include "import/converters.h"
#include "import/phasehelpers.h"
#include "import/tablehelpers.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace tables {

void StarToExponent(char* word) {
  if (word == nullptr) return;
  if (char* star = std::strchr(word, '*')) *star = 'e';
}

std::string PhaseName(int number) {
  char name[kWordCapacity] = {0};
  ResolvePhaseDescription(std::to_string(number).c_str(), name, "Phase_name", nullptr);
  return name;
}

OrvaneMLRecordParameterFixed* NewFixedParameter(const char* id, const char* value) {
  auto* fixed = new OrvaneMLRecordParameterFixed;
  fixed->SetIDref(id);
  fixed->SetValue(value);
  return fixed;
}

void AddLinkTo(OrvaneMLRecordDataset* dataset, const char* tableId) {
  if (dataset == nullptr) return;
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref(tableId);
  dataset->AddLink(link);
}

OrvaneMLRecordValueList* ValuesOf(OrvaneMLRecordDataAxis* axis) {
  if (axis->m_ValueList == nullptr) axis->AddValueList(new OrvaneMLRecordValueList);
  return axis->m_ValueList;
}

OrvaneMLRecordValueList* ValuesOf(OrvaneMLRecordParameterAxis* axis) {
  if (axis->m_ValueList == nullptr) axis->AddValueList(new OrvaneMLRecordValueList);
  return axis->m_ValueList;
}

void AppendValue(OrvaneMLRecordValueList* list, const char* text) {
  auto* value = new OrvaneMLRecordValue;
  value->SetValueAsString(text);
  list->AddValue(value);
}

OrvaneMLRecordDataset* TableDataTarget(OrvaneMLRecordDataset* dataset) {
  if (CardsetImport::m_CreepFlag != 0) {
    const std::string tableId = dataset->m_DatasetID;
    dataset = OrvaneStaticVars::FindDataset(tableId.c_str(), nullptr);
    if (dataset == nullptr) return nullptr;
  }
  if (dataset->m_Float != nullptr && dataset->m_Float->m_Curves.empty()) {
    OrvaneGenericLog::AddDBWarning("Dataset is missing and data ignored");
    return nullptr;
  }
  return dataset;
}

}  // namespace tables
