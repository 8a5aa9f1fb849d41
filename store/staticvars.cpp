// The import side of the facade: the store's life cycle, folders, materials,
// models and the small lookups.  The datasets are in staticvarsdatasets.cpp,
// the export side in staticvarsexport.cpp.

#include <libxml/tree.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>

#include "store/dombridge.h"
#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/storestate.h"

using quillon::State;
using quillon::StoreState;

namespace {

std::string Text(const char* text) { return text != nullptr ? std::string(text) : std::string(); }

bool IsEmpty(const char* text) { return text == nullptr || text[0] == '\0'; }

// What a database path names: nothing (a store name), an empty file (a store
// not yet written), or a file to load.
enum class StoreFile { kNone, kEmpty, kContent };

StoreFile Classify(const char* storeName) {
  struct stat info;
  if (IsEmpty(storeName) || stat(storeName, &info) != 0 || !S_ISREG(info.st_mode)) return StoreFile::kNone;
  return info.st_size == 0 ? StoreFile::kEmpty : StoreFile::kContent;
}

void LoadDatabase(StoreState& state, const char* storeName) {
  const StoreFile kind = Classify(storeName);
  if (kind == StoreFile::kNone) return;
  state.loadedPath = storeName;
  if (kind == StoreFile::kEmpty) return;
  std::string error;
  if (state.database.LoadFile(storeName, error)) return;
  state.loadedPath.clear();
  state.failedPath = storeName;
  quillon::AddStoreError(state, "The material database could not be loaded: " + error +
                                    ". The store starts empty; saving over that file is refused.");
}

std::string Serialize(void* document) {
  xmlChar* bytes = nullptr;
  int size = 0;
  xmlDocDumpMemory(static_cast<xmlDocPtr>(document), &bytes, &size);
  if (bytes == nullptr) return std::string();
  std::string text(reinterpret_cast<const char*>(bytes), size > 0 ? static_cast<size_t>(size) : 0);
  xmlFree(bytes);
  return text;
}

bool SameFile(const std::string& a, const std::string& b) {
  struct stat first;
  struct stat second;
  if (stat(a.c_str(), &first) != 0 || stat(b.c_str(), &second) != 0) return a == b;
  return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

OrvaneMLRecordMatModel* FindInModelList(const char* idref) {
  if (IsEmpty(idref)) return nullptr;
  for (OrvaneMLRecordMatModel* model : State().modelList) {
    if (model != nullptr && model->m_IDref == idref) return model;
  }
  return nullptr;
}

}  // namespace

void OrvaneStaticVars::Init(const char* storeName) {
  StoreState& state = State();
  quillon::ResetFacade(state);
  state.database.Clear();
  state.loadedPath.clear();
  state.failedPath.clear();
  state.lastError.clear();
  OrvaneGenericLog::ClearDBWarnings();
  quillon::LoadMappings(state);
  LoadDatabase(state, storeName);
}

const char* OrvaneStaticVars::GetLastError() { return State().lastError.c_str(); }

const char* OrvaneStaticVars::GetLoadedDatabasePath() { return State().loadedPath.c_str(); }

bool OrvaneStaticVars::SaveDatabase(const char* path) {
  StoreState& state = State();
  if (IsEmpty(path)) {
    state.lastError = "No path to save the material database to.";
    return false;
  }
  if (!state.failedPath.empty() && SameFile(path, state.failedPath)) {
    state.lastError = std::string("Refused to save over ") + path +
                      ": it could not be loaded, and saving would lose what it holds.";
    return false;
  }
  void* document = nullptr;
  GetXMLDocument(&document);
  if (DomSaveDocument(document, path) == 0) {
    state.lastError = std::string("The material database could not be written to ") + path + ".";
    return false;
  }
  return true;
}

OrvaneMLRecordMaterials* OrvaneStaticVars::GetOrCreateMaterials(const char* name) {
  if (IsEmpty(name)) return nullptr;
  StoreState& state = State();
  state.currentFolder = state.database.GetOrCreateFolder(name);
  // A "Class" section names the folder of the material it stands in, which
  // exists by then; the last folder named wins.
  if (state.currentMaterial != nullptr) state.database.FileMaterial(state.currentFolder, state.currentMaterial);
  return state.currentFolder;
}

OrvaneMLRecordMaterials* OrvaneStaticVars::GetCurrentMaterials() { return State().currentFolder; }

OrvaneMLRecordMaterial* OrvaneStaticVars::GetOrCreateMaterial(const char* id) {
  if (IsEmpty(id)) return nullptr;
  StoreState& state = State();
  OrvaneMLRecordMaterial* material = state.database.FindMaterial(id);
  if (material == nullptr) {
    material = state.database.AddMaterial(id);
    quillon::GiveMappedModels(material);
  }
  state.currentMaterial = material;
  state.datasetsAtHand.m_Material = material;
  // A material that no "Class" section filed yet joins the folder in force.
  if (state.currentFolder != nullptr && state.database.FolderOf(material) == nullptr) {
    state.database.FileMaterial(state.currentFolder, material);
  }
  quillon::FlattenModels(material, state.modelList);
  return material;
}

OrvaneMLRecordMaterial* OrvaneStaticVars::GetCurrentMaterial() { return State().currentMaterial; }

void OrvaneStaticVars::AddMaterialToMaterials(OrvaneMLRecordMaterials* folder, OrvaneMLRecordMaterial* material) {
  if (folder == nullptr || material == nullptr) return;
  State().database.FileMaterial(folder, material);
}

OrvaneMLRecordMaterials* OrvaneStaticVars::GetFolderOfMaterial(const OrvaneMLRecordMaterial* material) {
  return State().database.FolderOf(material);
}

const std::vector<OrvaneMLRecordMaterial*>& OrvaneStaticVars::GetMaterials() { return State().database.Materials(); }

void OrvaneStaticVars::SetCurrentMaterialType(const char* type) { State().materialType = Text(type); }
const char* OrvaneStaticVars::GetCurrentMaterialType() { return State().materialType.c_str(); }
void OrvaneStaticVars::SetActiveModel(const char* name) { State().activeModel = Text(name); }
const char* OrvaneStaticVars::GetActiveModel() { return State().activeModel.c_str(); }
void OrvaneStaticVars::SetActiveKW(const char* line) { State().activeKW = Text(line); }
const char* OrvaneStaticVars::GetActiveKW() { return State().activeKW.c_str(); }

OrvaneMLRecordMatModel* OrvaneStaticVars::GetOrCreateMatModel(const char* name, bool create) {
  if (IsEmpty(name)) return nullptr;
  if (OrvaneMLRecordMatModel* model = FindInModelList(name)) return model;
  // A model that every material gets is made on demand even when the caller
  // only asks: callers take these for granted.  Models the import makes
  // itself (phases, reactions) are not: asking for one must not invent it.
  if (!create && !quillon::IsMadeWithMaterial(name)) return nullptr;
  // A model asked to be made takes the instance id the store was last told.
  return quillon::ResolveModel(name, create ? State().instanceID : std::string());
}

OrvaneMLRecordMatModel* OrvaneStaticVars::FindModelByID(const char* id) { return FindInModelList(id); }

std::vector<OrvaneMLRecordMatModel*>& OrvaneStaticVars::GetMatModelList() { return State().modelList; }

void OrvaneStaticVars::SetInstanceID(const char* id) { State().instanceID = Text(id); }
const char* OrvaneStaticVars::GetInstanceID() { return State().instanceID.c_str(); }

void OrvaneStaticVars::AddLXLYLZDataset(const char* name, const char* datasetId) {
  if (IsEmpty(name)) return;
  State().strainDirections[name].push_back(Text(datasetId));
}

std::map<std::string, std::vector<std::string>>& OrvaneStaticVars::GetLXLYLZMap() { return State().strainDirections; }

void OrvaneStaticVars::GetMMAT2020PhaseNameFromIndex(const char* index, std::string& name) {
  name.clear();
  if (IsEmpty(index)) return;
  OrvaneMLRecordMatModel* generic = FindInModelList("GenericInfo_Weld");
  if (generic == nullptr || generic->m_SubModels == nullptr) return;
  for (OrvaneMLRecordMatModel* phase : generic->m_SubModels->m_Models) {
    if (phase == nullptr || phase->m_IDref != "Phase_details_model" || phase->m_InstanceID != index) continue;
    for (OrvaneMLRecordDataset* dataset : phase->m_Datasets) {
      if (dataset->m_IDref != "Phase_name" || dataset->m_String == nullptr) continue;
      const std::string& value = dataset->m_String->m_Value;
      if (value.find_first_not_of(" \t") != std::string::npos) {
        name = value;
        return;
      }
    }
  }
}

const char* OrvaneStaticVars::GetOrvaneMLID(const char* cardName) {
  if (IsEmpty(cardName)) return nullptr;
  const std::string word = std::string(cardName) == "PHASE" ? std::string("Phase_name") : std::string(cardName);
  const std::string& cardModel = State().activeModel;
  const quillon::MappingParameter* row = quillon::FindRowByCardWord(word, cardModel);
  if (row == nullptr) row = quillon::FindRowByID(word, cardModel);
  return row != nullptr ? row->orvaneMLID.c_str() : nullptr;
}

bool OrvaneStaticVars::IsValidNumber(const char* text) {
  if (text == nullptr) return false;
  std::string copy(text);
  return OrvaneGeneric::IsValidNumber(copy.data());
}

void OrvaneStaticVars::GetXMLDocument(void** document) {
  if (document == nullptr) return;
  StoreState& state = State();
  void* fresh = state.database.BuildDocument();
  std::string text = Serialize(fresh);
  // Unchanged records keep the document handed out before, with whatever
  // the driver did to it since.
  if (state.document != nullptr && text == state.documentText) {
    xmlFreeDoc(static_cast<xmlDocPtr>(fresh));
    *document = state.document;
    return;
  }
  DomFreeDocument(state.document);
  state.document = fresh;
  state.documentText = std::move(text);
  *document = fresh;
}

const quillon::Mapping& OrvaneStaticVars::GetMapping() { return State().mapping; }
