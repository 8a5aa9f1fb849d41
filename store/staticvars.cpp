// The import side of the facade: the store's life cycle, folders, materials,
// models and the small lookups.  The datasets are in staticvarsdatasets.cpp,
// the export side in staticvarsexport.cpp.

#include <libxml/tree.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
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

// Two independent 64-bit hashes over a stream of bytes, eight bytes at a step.
class Digest {
 public:
  void Add(const void* data, size_t size) {
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    while (size >= sizeof(uint64_t)) {
      uint64_t word;
      std::memcpy(&word, bytes, sizeof word);
      Mix(word);
      bytes += sizeof word;
      size -= sizeof word;
    }
    if (size > 0) {
      uint64_t word = 0;
      std::memcpy(&word, bytes, size);
      Mix(word ^ (uint64_t{size} << 59));
    }
  }
  // A text with its length, so that neighbouring texts cannot trade bytes.
  void AddText(const xmlChar* text) {
    const size_t size = text != nullptr ? xmlStrlen(text) : 0;
    Add(&size, sizeof size);
    if (size != 0) Add(text, size);
  }
  void AddMark(unsigned char mark) { Add(&mark, 1); }
  std::string Result() const {
    std::string result(2 * sizeof(uint64_t), '\0');
    std::memcpy(&result[0], &m_First, sizeof m_First);
    std::memcpy(&result[sizeof m_First], &m_Second, sizeof m_Second);
    return result;
  }

 private:
  void Mix(uint64_t word) {
    m_First = (m_First ^ word) * 0x100000001b3ULL;
    m_First ^= m_First >> 32;
    m_Second = (m_Second + word) * 0x9e3779b97f4a7c15ULL;
    m_Second ^= m_Second >> 29;
  }

  uint64_t m_First = 0xcbf29ce484222325ULL;
  uint64_t m_Second = 0x84222325cbf29ce4ULL;
};

// A fingerprint of everything a serialisation of the document would show: each node's kind,
// name and content and each attribute with its value, in document order, with the nesting. The
// same records build the same tree and so the same fingerprint. It stands in for the text of the
// whole document, which costs as much memory as the document's file and a tenth of an import's
// time to make.
std::string Fingerprint(void* document) {
  Digest digest;
  xmlNodePtr node = document != nullptr ? static_cast<xmlDocPtr>(document)->children : nullptr;
  while (node != nullptr) {
    digest.AddMark(static_cast<unsigned char>(node->type));
    digest.AddText(node->name);
    digest.AddText(node->content);
    if (node->type == XML_ELEMENT_NODE) {
      if (node->ns != nullptr) digest.AddText(node->ns->href);
      for (xmlNsPtr declared = node->nsDef; declared != nullptr; declared = declared->next) {
        digest.AddMark('#');
        digest.AddText(declared->prefix);
        digest.AddText(declared->href);
      }
      for (xmlAttrPtr attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
        digest.AddMark('@');
        digest.AddText(attribute->name);
        if (attribute->ns != nullptr) digest.AddText(attribute->ns->href);
        for (xmlNodePtr value = attribute->children; value != nullptr; value = value->next)
          digest.AddText(value->content);
      }
    }
    // Depth first, without recursion: down, else across, else up and across.
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
      digest.AddMark('(');
      node = node->children;
      continue;
    }
    while (node != nullptr && node->next == nullptr) {
      node = node->parent;
      if (node == nullptr || node->type == XML_DOCUMENT_NODE) {
        node = nullptr;
        break;
      }
      digest.AddMark(')');
    }
    if (node != nullptr) node = node->next;
  }
  return digest.Result();
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
  std::string fingerprint = Fingerprint(fresh);
  // Unchanged records keep the document handed out before, with whatever
  // the driver did to it since.
  if (state.document != nullptr && fingerprint == state.documentFingerprint) {
    xmlFreeDoc(static_cast<xmlDocPtr>(fresh));
    *document = state.document;
    return;
  }
  DomFreeDocument(state.document);
  state.document = fresh;
  state.documentFingerprint = std::move(fingerprint);
  *document = fresh;
}

const quillon::Mapping& OrvaneStaticVars::GetMapping() { return State().mapping; }
