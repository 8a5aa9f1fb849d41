#include <cstring>
#include <string>
#include <strings.h>

#include "import/converters.h"
#include "import/phasehelpers.h"
#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// The value holds for the phase named for number `phase`.
OrvaneMLRecordParameterFixed* PhaseCondition(const char* phase) {
  char text[kWordCapacity] = {0};
  ResolvePhaseDescription(phase, text, "Phase_name", nullptr);
  OrvaneMLRecordParameterFixed* condition = new OrvaneMLRecordParameterFixed();
  condition->SetValue(text);
  condition->SetIDref("Selected_Phases");
  return condition;
}

void ReplaceFloat(OrvaneMLRecordDataset* dataset, OrvaneMLRecordFloat* value) {
  if (dataset->m_Float != value) delete dataset->m_Float;
  dataset->m_Float = value;
}

// NAME(p) = NAME(q) = ... = value: one constant, valid for each phase named.
// The phase numbers are every second word, between the names.
void StoreConstant(char** words, unsigned n) {
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(words[0], "IDref", false, nullptr, nullptr);

  // "1.5*3" is the card file's way of writing 1.5e3; only the first "*" is meant.
  if (char* star = std::strchr(words[n - 1], '*')) *star = 'e';

  if (dataset == nullptr) return;
  OrvaneMLRecordFloat* value = new OrvaneMLRecordFloat();
  ReplaceFloat(dataset, value);
  OrvaneMLRecordConstant* constant = new OrvaneMLRecordConstant();
  value->AddConstant(constant);
  constant->SetValueAsString(words[n - 1]);
  for (unsigned i = 1; i < n - 1; i += 2) constant->AddParameterFixed(PhaseCondition(words[i]));
}

// NAME(p) = ... = TABLE id: the data is in table `id`.  With phase numbers
// (an even word count) the phases become conditions of the table's curve.
void StoreLink(char** words, unsigned n, const char* id) {
  const char* table = words[n - 1];
  OrvaneStaticVars::GetOrCreateLinkDataset(words[0], table);

  OrvaneMLRecordDataset* dataset = nullptr;
  if (n % 2 == 0) {
    dataset = OrvaneStaticVars::FindDataset(table, id);
    if (dataset != nullptr && dataset->m_Float != nullptr && !dataset->m_Float->m_Curves.empty()) {
      OrvaneMLRecordCurve* curve = dataset->m_Float->m_Curves.front();
      for (unsigned i = 1; i < n - 2; i += 2) curve->AddParameterFixed(PhaseCondition(words[i]));
      return;
    }
  }
  if (dataset == nullptr) {
    OrvaneMLRecordDatasets* datasets = OrvaneStaticVars::GetDatasetsPtr();
    if (datasets == nullptr) return;
    dataset = new OrvaneMLRecordDataset();
    // A card word the store has no identifier for leaves the dataset without one.
    dataset->SetIDref(id != nullptr ? id : "");
    datasets->AddDataset(dataset);
    OrvaneStaticVars::AddDataset(dataset, table);
  }
  if (n % 2 != 0) return;

  dataset->SetDatasetID(table);
  OrvaneMLRecordCurve* curve = new OrvaneMLRecordCurve();
  curve->SetLabel((std::string("Curve") + table).c_str());
  OrvaneMLRecordFloat* value = new OrvaneMLRecordFloat();
  value->AddCurve(curve);
  ReplaceFloat(dataset, value);
  for (unsigned i = 1; i < n - 2; i += 2) curve->AddParameterFixed(PhaseCondition(words[i]));
}

}  // namespace

void ConvertVariableLine(char** words, unsigned* numWords, int context, ImportObject* importObject) {
  const unsigned n = *numWords;
  if (n < 2) return;
  ConvertVariableNames(words, numWords, context, importObject);
  const char* id = OrvaneStaticVars::GetOrvaneMLID(words[0]);
  // The store's text may not outlive the next store call.
  const std::string idText = id != nullptr ? id : "";
  const bool link = strcasecmp(words[n - 2], "TABLE") == 0 || strcasecmp(words[n - 2], "EX") == 0;
  if (link)
    StoreLink(words, n, id != nullptr ? idText.c_str() : nullptr);
  else
    StoreConstant(words, n);
}
