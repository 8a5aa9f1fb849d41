#include "store/storestate.h"

#include <libxml/tree.h>

#include "store/dombridge.h"
#include "store/orvane.h"
#include "store/orvanegeneric.h"

namespace quillon {

namespace {

// Deeper than any mapping declares models; a mapping whose models declare
// one another in a ring stops here instead of recursing for ever.
constexpr int kMaxModelDepth = 8;

struct StateHolder {
  StoreState state;
  // A host that uses the store before its first Init still finds the models
  // and rows of the active solution.
  StateHolder() { LoadMappings(state); }
  ~StateHolder() {
    // The document may carry nodes detached through the DOM bridge, which
    // only the bridge knows how to free.
    DomFreeDocument(state.document);
    state.document = nullptr;
  }
};

}  // namespace

StoreState& State() {
  static StateHolder holder;
  return holder.state;
}

DatasetsAtHand::~DatasetsAtHand() = default;

void DatasetsAtHand::AddDataset(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr) return;
  if (!dataset->IsAttached()) {
    if (m_Material != nullptr) {
      m_Material->m_Datasets->AddDataset(dataset);
    } else {
      m_Orphans.AddDataset(dataset);
    }
  }
  ListWithoutOwning(dataset);
}

void DatasetsAtHand::FreeOrphans() {
  for (OrvaneMLRecordDataset* dataset : m_Orphans.m_Datasets) delete dataset;
  m_Orphans.m_Datasets.clear();
}

std::set<const OrvaneMLRecordDataset*> DatasetsAtHand::TableDatasets() const {
  std::set<const OrvaneMLRecordDataset*> own(m_Orphans.m_Datasets.begin(), m_Orphans.m_Datasets.end());
  if (m_Material != nullptr) {
    const std::vector<OrvaneMLRecordDataset*>& list = m_Material->m_Datasets->m_Datasets;
    own.insert(list.begin(), list.end());
  }
  std::set<const OrvaneMLRecordDataset*> tables;
  for (const OrvaneMLRecordDataset* dataset : m_Datasets)
    if (own.count(dataset) != 0) tables.insert(dataset);
  return tables;
}

void AddStoreError(StoreState& state, const std::string& text) {
  if (!state.lastError.empty()) state.lastError += "\n";
  state.lastError += text;
  OrvaneGenericLog::AddDBWarning(text.c_str());
}

void LoadMappings(StoreState& state) {
  std::string ignored;
  state.builtinMapping.LoadMemory(BuiltinMappingXml(), ignored);
  OrvaneConfig* config = Orvane::_ApplnCreateOrvaneConfigPtr();
  const char* active = config->GetActiveSolution();
  const std::string solution = active != nullptr ? active : "";
  std::string path;
  config->GetMappingXMLFile(solution.c_str(), path);
  std::string error;
  if (state.mapping.LoadFile(path, error)) return;
  AddStoreError(state, "The mapping of solution \"" + solution + "\" could not be read (" + error +
                           "); the store uses its built-in models and rows.");
  state.mapping.LoadMemory(BuiltinMappingXml(), ignored);
}

bool IsMadeWithMaterial(const std::string& idref) {
  StoreState& state = State();
  const Mapping& source = state.mapping.Models().empty() ? state.builtinMapping : state.mapping;
  for (const MappingModel& model : source.Models()) {
    if (model.idref == idref) return true;
    for (const std::string& sub : model.subModels) {
      if (sub == idref) return true;
    }
  }
  return false;
}

void ResetFacade(StoreState& state) {
  state.currentFolder = nullptr;
  state.currentMaterial = nullptr;
  state.currentDataset = nullptr;
  state.materialType.clear();
  state.activeModel.clear();
  state.activeKW.clear();
  state.instanceID.clear();
  state.datasetsAtHand.Forget();
  state.datasetsAtHand.FreeOrphans();
  state.datasetsAtHand.m_Material = nullptr;
  state.filedTables.clear();
  state.modelList.clear();
  state.strainDirections.clear();
  state.reportedWords.clear();
  DomFreeDocument(state.document);
  state.document = nullptr;
  state.documentFingerprint.clear();
  state.activeMaterialName.clear();
  state.cardsetIDMap.clear();
}

const MappingParameter* FindRowByCardWord(const std::string& word, const std::string& cardModel) {
  StoreState& state = State();
  if (const MappingParameter* row = state.mapping.FindByCardWord(word, cardModel)) return row;
  return state.builtinMapping.FindByCardWord(word, cardModel);
}

const MappingParameter* FindRowByID(const std::string& idref, const std::string& cardModel) {
  StoreState& state = State();
  if (const MappingParameter* row = state.mapping.FindByID(idref, cardModel)) return row;
  return state.builtinMapping.FindByID(idref, cardModel);
}

const MappingModel* FindModelRow(const std::string& idref) {
  StoreState& state = State();
  if (const MappingModel* row = state.mapping.FindModel(idref)) return row;
  return state.builtinMapping.FindModel(idref);
}

const MappingModel* FindOwnerRow(const std::string& subModelIDref) {
  StoreState& state = State();
  if (const MappingModel* row = state.mapping.FindOwnerOfSubModel(subModelIDref)) return row;
  return state.builtinMapping.FindOwnerOfSubModel(subModelIDref);
}

const MappingModel* DefaultModelRow(const std::string& cardModel) {
  StoreState& state = State();
  if (const MappingModel* row = state.mapping.DefaultModelForCardModel(cardModel)) return row;
  return state.builtinMapping.DefaultModelForCardModel(cardModel);
}

namespace {

void FlattenInto(OrvaneMLRecordMatModel* model, std::vector<OrvaneMLRecordMatModel*>& models, int depth) {
  if (model == nullptr || depth > kMaxModelDepth * 4) return;
  models.push_back(model);
  if (model->m_SubModels == nullptr) return;
  for (OrvaneMLRecordMatModel* child : model->m_SubModels->m_Models) FlattenInto(child, models, depth + 1);
}

OrvaneMLRecordMatModel* NewModel(const std::string& idref, const std::string& instanceID) {
  auto* model = new OrvaneMLRecordMatModel;
  model->SetIDref(idref.c_str());
  model->SetInstanceID(instanceID.c_str());
  return model;
}

OrvaneMLRecordMatModel* ResolveModelAt(const std::string& idref, const std::string& instanceID, int depth) {
  StoreState& state = State();
  for (OrvaneMLRecordMatModel* model : state.modelList) {
    if (model != nullptr && model->m_IDref == idref) return model;
  }
  if (state.currentMaterial == nullptr || idref.empty()) return nullptr;
  const MappingModel* owner = FindOwnerRow(idref);
  OrvaneMLRecordMatModel* parent = nullptr;
  if (owner != nullptr && owner->idref != idref && depth < kMaxModelDepth) {
    parent = ResolveModelAt(owner->idref, std::string(), depth + 1);
  }
  OrvaneMLRecordMatModel* made = NewModel(idref, instanceID);
  if (parent != nullptr) {
    parent->GetOrCreateSubModels()->AddModel(made);
  } else {
    state.currentMaterial->AddModel(made);
  }
  state.modelList.push_back(made);
  return made;
}

}  // namespace

void FlattenModels(OrvaneMLRecordMaterial* material, std::vector<OrvaneMLRecordMatModel*>& models) {
  models.clear();
  if (material == nullptr) return;
  for (OrvaneMLRecordMatModel* model : material->m_Models) FlattenInto(model, models, 0);
}

void GiveMappedModels(OrvaneMLRecordMaterial* material) {
  StoreState& state = State();
  // A host mapping without models still leaves materials their usual ones.
  const Mapping& source = state.mapping.Models().empty() ? state.builtinMapping : state.mapping;
  for (const MappingModel& row : source.Models()) {
    OrvaneMLRecordMatModel* model = NewModel(row.idref, std::string());
    for (const std::string& sub : row.subModels) model->GetOrCreateSubModels()->AddModel(NewModel(sub, std::string()));
    material->AddModel(model);
  }
}

OrvaneMLRecordMatModel* ResolveModel(const std::string& idref, const std::string& instanceID) {
  return ResolveModelAt(idref, instanceID, 0);
}

DatasetPlacement PlaceDataset(const std::string& id, bool asStoreIdentifier) {
  StoreState& state = State();
  const MappingParameter* row = nullptr;
  if (asStoreIdentifier) {
    row = FindRowByID(id, state.activeModel);
    if (row == nullptr) row = FindRowByCardWord(id, state.activeModel);
  } else {
    row = FindRowByCardWord(id, state.activeModel);
    if (row == nullptr) row = FindRowByID(id, state.activeModel);
  }
  DatasetPlacement placement;
  placement.row = row;
  placement.idref = row != nullptr ? row->orvaneMLID : id;
  if (row != nullptr && !row->model.empty()) {
    placement.model = row->model;
  } else if (const MappingModel* fallback = DefaultModelRow(state.activeModel)) {
    placement.model = fallback->idref;
  } else {
    placement.model = "GenericInfo_Weld";
  }
  return placement;
}

void MakeCurrent(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr) return;
  StoreState& state = State();
  state.datasetsAtHand.AddDataset(dataset);
  state.currentDataset = dataset;
}

}  // namespace quillon
