// The datasets side of the facade: where a card word's dataset lives, how
// table ids reach their datasets, and how a value text becomes a value.
// docs/store.md states the rules; the comments here say why they are so.

#include <strings.h>

#include <cstdlib>
#include <set>
#include <string>

#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/storestate.h"

using quillon::State;
using quillon::StoreState;

namespace {

bool IsEmpty(const char* text) { return text == nullptr || text[0] == '\0'; }

bool Equals(const char* a, const char* b) { return a != nullptr && b != nullptr && std::string(a) == b; }

// The card file's name of the phase name; the phase readers search for the
// store's name.
std::string StoreWord(const char* id) { return std::string(id) == "PHASE" ? std::string("Phase_name") : std::string(id); }

void ReportUnknownWordOnce(const std::string& word, const quillon::DatasetPlacement& placement) {
  StoreState& state = State();
  if (!state.reportedWords.insert(word).second) return;
  const std::string text = "Card word \"" + word + "\" (card model \"" + state.activeModel +
                           "\") is not in the mapping; its data is kept in dataset \"" + placement.idref +
                           "\" of model \"" + placement.model + "\".";
  OrvaneGenericLog::AddDBWarning(text.c_str());
}

OrvaneMLRecordDataset* FindInModel(OrvaneMLRecordMatModel* model, const std::string& idref,
                                   const std::string* datasetId) {
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
    if (dataset == nullptr || dataset->m_IDref != idref) continue;
    if (datasetId == nullptr || dataset->m_DatasetID == *datasetId) return dataset;
  }
  return nullptr;
}

// A dataset asked for with create true is given to the caller as new: its
// values go, so that what the caller sets next replaces them instead of
// leaking them.
void DropValues(OrvaneMLRecordDataset* dataset) {
  delete dataset->m_Float;
  delete dataset->m_String;
  delete dataset->m_FloatList;
  delete dataset->m_Integer;
  dataset->m_Float = nullptr;
  dataset->m_String = nullptr;
  dataset->m_FloatList = nullptr;
  dataset->m_Integer = nullptr;
}

OrvaneMLRecordDataset* ByIDref(const char* id, bool create, const char* value, const char* text) {
  StoreState& state = State();
  if (state.currentMaterial == nullptr) return nullptr;
  const std::string word = StoreWord(id);
  // With create true the callers name a store identifier ("Material_type",
  // "Phase_description"); with create false a word of the card file.
  const quillon::DatasetPlacement placement = quillon::PlaceDataset(word, create);
  if (placement.row == nullptr && !create) ReportUnknownWordOnce(word, placement);
  // A model made here for a phase dataset takes the phase number that the
  // phase readers pass as text.
  const std::string tableId = !IsEmpty(text) ? std::string(text) : std::string();
  OrvaneMLRecordMatModel* model =
      quillon::ResolveModel(placement.model, tableId.empty() ? state.instanceID : tableId);
  if (model == nullptr) return nullptr;
  // One dataset per identifier and table id in a model: a second comment
  // block of the same model, or the type of a material named again, replaces
  // the value; phases named under their numbers stay apart.
  OrvaneMLRecordDataset* dataset = FindInModel(model, placement.idref, create ? &tableId : nullptr);
  if (dataset != nullptr && create) DropValues(dataset);
  if (dataset == nullptr) {
    dataset = new OrvaneMLRecordDataset;
    dataset->SetIDref(placement.idref.c_str());
    dataset->SetDatasetID(tableId.c_str());
    model->AddDataset(dataset);
  }
  if (!IsEmpty(value)) OrvaneStaticVars::CreateDatasetBasedOnType(value, dataset, 0);
  quillon::MakeCurrent(dataset);
  return dataset;
}

// The first dataset at hand with this table id; with `tables` given, only
// those of the material's own list (table data) count.
OrvaneMLRecordDataset* FindAtHandByDatasetID(const std::string& id,
                                             const std::set<const OrvaneMLRecordDataset*>* tables) {
  for (OrvaneMLRecordDataset* dataset : State().datasetsAtHand.m_Datasets) {
    if (dataset->m_DatasetID != id) continue;
    if (tables == nullptr || tables->count(dataset) != 0) return dataset;
  }
  return nullptr;
}

// The table sections: there a table id always means a table, never the
// phase number that phase datasets carry as theirs.
bool InTableSection() {
  const std::string& keyword = State().activeKW;
  return keyword == "TABLES :" || keyword == "TABLE" || keyword == "TABLES";
}

OrvaneMLRecordDataset* FindFiled(const std::string& id) {
  for (const auto& filed : State().filedTables) {
    if (filed.first == id) return filed.second;
  }
  return nullptr;
}

void File(const std::string& id, OrvaneMLRecordDataset* dataset) {
  StoreState& state = State();
  for (const auto& filed : state.filedTables) {
    if (filed.first == id && filed.second == dataset) return;
  }
  state.filedTables.emplace_back(id, dataset);
}

// A dataset of the material's own list for a table that nothing named yet.
OrvaneMLRecordDataset* MakeTableDataset(const std::string& id, const char* idref) {
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref(IsEmpty(idref) ? "UnreferencedTable" : idref);
  dataset->SetDatasetID(id.c_str());
  State().datasetsAtHand.AddDataset(dataset);
  File(id, dataset);
  return dataset;
}

OrvaneMLRecordDataset* ByDatasetID(const char* id, bool create, const char* value, const char* text) {
  const std::string tableId(id);
  OrvaneMLRecordDataset* dataset = nullptr;
  if (create) {
    dataset = MakeTableDataset(tableId, text);
    if (!IsEmpty(value)) OrvaneStaticVars::CreateDatasetBasedOnType(value, dataset, 0);
    quillon::MakeCurrent(dataset);
    return dataset;
  }
  // The table reader asks with every line's first word, the text lines of a
  // function table among them: a word that is no table id must leave the
  // function's dataset current.
  if (!OrvaneStaticVars::IsValidNumber(id)) return nullptr;
  const std::set<const OrvaneMLRecordDataset*> tables = State().datasetsAtHand.TableDatasets();
  // A table made already: by a list of tables, a family of curves, a
  // variable line, or an earlier line of the same table.
  dataset = FindAtHandByDatasetID(tableId, &tables);
  if (dataset == nullptr && InTableSection()) {
    // A parameter that refers to the table keeps its link; the table's
    // values go to a dataset of the parameter's identifier and the table's
    // id, beside the other tables of the material.
    OrvaneMLRecordDataset* filed = FindFiled(tableId);
    if (filed != nullptr)
      dataset = tables.count(filed) != 0 ? filed : MakeTableDataset(tableId, filed->m_IDref.c_str());
  } else if (dataset == nullptr) {
    dataset = FindAtHandByDatasetID(tableId, nullptr);
    if (dataset == nullptr) dataset = FindFiled(tableId);
  }
  // A table that no line referred to still keeps its values, apart from
  // every other table's.
  if (dataset == nullptr) dataset = MakeTableDataset(tableId, nullptr);
  quillon::MakeCurrent(dataset);
  return dataset;
}

OrvaneMLRecordConstant* FirstConstant(OrvaneMLRecordDataset* dataset) {
  if (dataset->m_Float == nullptr) dataset->m_Float = new OrvaneMLRecordFloat;
  if (dataset->m_Float->m_Constants.empty()) dataset->m_Float->AddConstant(new OrvaneMLRecordConstant);
  return dataset->m_Float->m_Constants.front();
}

OrvaneMLRecordString* StringValue(OrvaneMLRecordDataset* dataset) {
  if (dataset->m_String == nullptr) dataset->m_String = new OrvaneMLRecordString;
  return dataset->m_String;
}

// The store's text of a choice: the choice whose card code the file wrote,
// else the one so named (without regard to case), else the text as written.
std::string ChoiceName(const quillon::MappingParameter& row, const char* value) {
  for (const quillon::MappingChoice& choice : row.choices) {
    if (choice.cardCode == value) return choice.name;
  }
  for (const quillon::MappingChoice& choice : row.choices) {
    if (strcasecmp(choice.name.c_str(), value) == 0) return choice.name;
  }
  return value;
}

void AddLinkOnce(OrvaneMLRecordDataset* dataset, const char* tableId) {
  for (const OrvaneMLRecordLink* link : dataset->m_Links) {
    if (link != nullptr && link->m_DatasetIDref == tableId) return;
  }
  auto* link = new OrvaneMLRecordLink;
  link->SetDatasetIDref(tableId);
  dataset->AddLink(link);
}

}  // namespace

void OrvaneStaticVars::ClearDatasets() {
  StoreState& state = State();
  state.datasetsAtHand.Forget();
  state.filedTables.clear();
  // Table ids and strain directions count within one "NOM :" block.
  state.strainDirections.clear();
  state.currentDataset = nullptr;
}

OrvaneMLRecordDataset* OrvaneStaticVars::GetOrCreateDataset(const char* id, const char* key, bool create,
                                                            const char* value, const char* text) {
  if (IsEmpty(id) || key == nullptr) return nullptr;
  if (Equals(key, "IDref")) return ByIDref(id, create, value, text);
  if (Equals(key, "DatasetID")) return ByDatasetID(id, create, value, text);
  return nullptr;
}

OrvaneMLRecordDataset* OrvaneStaticVars::GetOrCreateLinkDataset(const char* id, const char* tableId) {
  OrvaneMLRecordDataset* dataset = GetOrCreateDataset(id, "IDref", false, nullptr, nullptr);
  if (dataset != nullptr && !IsEmpty(tableId)) AddLinkOnce(dataset, tableId);
  return dataset;
}

OrvaneMLRecordDataset* OrvaneStaticVars::GetCurrentDataset() { return State().currentDataset; }

void OrvaneStaticVars::CreateDatasetBasedOnType(const char* value, OrvaneMLRecordDataset* dataset, int mode) {
  if (dataset == nullptr || IsEmpty(value)) return;
  if (mode == 1) {
    // The first word of a table line: the first value of a coefficient list.
    if (dataset->m_FloatList == nullptr) dataset->m_FloatList = new OrvaneMLRecordFloatList;
    auto* constant = new OrvaneMLRecordConstant;
    constant->SetValueAsString(value);
    auto* item = new OrvaneMLRecordFloatItem;
    item->AddConstant(constant);
    dataset->m_FloatList->AddFloatItem(item);
    return;
  }
  const quillon::MappingParameter* row = quillon::FindRowByID(dataset->m_IDref, State().activeModel);
  const std::string type = row != nullptr ? row->dataType : std::string();
  // A "STATUS" value is the number of the function table behind it (the
  // import numbers both): the parameter refers to that table, so that the
  // function's lines reach a table of the parameter.
  if ((row != nullptr && row->cardsetID == "STATUS") || dataset->m_IDref == "STATUS") {
    AddLinkOnce(dataset, value);
    AddDataset(dataset, value);
  }
  if (type == "float" || type == "curve") {
    FirstConstant(dataset)->SetValueAsString(value);
  } else if (type == "integer") {
    if (dataset->m_Integer == nullptr) dataset->m_Integer = new OrvaneMLRecordInteger;
    dataset->m_Integer->SetValue(std::atoi(value));
  } else if (type == "string") {
    StringValue(dataset)->SetValue(value);
  } else if (type == "choice") {
    StringValue(dataset)->SetValue(ChoiceName(*row, value).c_str());
  } else if (type == "link") {
    AddLinkOnce(dataset, value);
    AddDataset(dataset, value);
  } else {
    // A parameter the mapping doesn't know keeps its text, and a number is
    // a constant as well, so that nothing depends on guessing its type.
    StringValue(dataset)->SetValue(value);
    if (IsValidNumber(value)) FirstConstant(dataset)->SetValueAsString(value);
  }
}

void OrvaneStaticVars::AddDataset(OrvaneMLRecordDataset* dataset, const char* tableId) {
  if (dataset == nullptr) return;
  State().datasetsAtHand.AddDataset(dataset);
  if (!IsEmpty(tableId)) File(tableId, dataset);
}

OrvaneMLRecordDatasets* OrvaneStaticVars::GetDatasetsPtr() { return &State().datasetsAtHand; }

OrvaneMLRecordDataset* OrvaneStaticVars::FindDataset(const char* datasetId, const char* idref) {
  if (IsEmpty(datasetId)) return nullptr;
  // Tables first: phase datasets carry their phase number as table id.
  const std::set<const OrvaneMLRecordDataset*> tables = State().datasetsAtHand.TableDatasets();
  for (int pass = 0; pass < 2; ++pass) {
    for (OrvaneMLRecordDataset* dataset : State().datasetsAtHand.m_Datasets) {
      if (dataset->m_DatasetID != datasetId) continue;
      if (pass == 0 && tables.count(dataset) == 0) continue;
      if (idref == nullptr || dataset->m_IDref == idref) return dataset;
    }
  }
  return nullptr;
}

OrvaneMLRecordDataset* OrvaneStaticVars::FindDatasetByIDref(const char* idref) {
  if (IsEmpty(idref)) return nullptr;
  for (OrvaneMLRecordDataset* dataset : State().datasetsAtHand.m_Datasets) {
    if (dataset->m_IDref == idref) return dataset;
  }
  return nullptr;
}
