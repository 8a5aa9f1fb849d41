#pragma once

// The state behind the static facade OrvaneStaticVars: one record store per
// process, as the drivers expect (they run one at a time, in one thread).
// Internal to the store's sources.

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "store/database.h"
#include "store/mapping.h"
#include "store/records.h"

namespace quillon {

// The datasets of the material at hand: every dataset the store made or found
// since the last ClearDatasets, those filed under a table id, and those that
// callers add through GetDatasetsPtr, in order of first appearance.  It owns
// nothing itself: a dataset added here that has no owner yet goes to the
// material's own dataset list (or, before any material exists, to a list of
// orphans that lives until the next Init), so that the list can be forgotten
// at each "NOM :" without losing data.
class DatasetsAtHand : public OrvaneMLRecordDatasets {
 public:
  DatasetsAtHand() { m_OwnsDatasets = false; }
  ~DatasetsAtHand() override;

  void AddDataset(OrvaneMLRecordDataset* dataset) override;
  // Lists a dataset that already has an owner.
  void Note(OrvaneMLRecordDataset* dataset) { ListWithoutOwning(dataset); }
  void Forget() { m_Datasets.clear(); }
  void FreeOrphans();
  // The datasets at hand that belong to no model: those of the material's
  // own list (table data) and the orphans.
  std::set<const OrvaneMLRecordDataset*> TableDatasets() const;

  OrvaneMLRecordMaterial* m_Material = nullptr;  // where new datasets go

 private:
  OrvaneMLRecordDatasets m_Orphans;
};

// Where a dataset of an identifier goes: its store identifier, its model and
// its value type, from the mapping.
struct DatasetPlacement {
  std::string idref;
  std::string model;
  const MappingParameter* row = nullptr;  // null for a word the mapping doesn't know
};

struct StoreState {
  MaterialDatabase database;
  std::string loadedPath;
  std::string lastError;
  std::string failedPath;  // a database file that could not be loaded

  Mapping mapping;         // of the active solution, or the built-in one
  Mapping builtinMapping;  // rows the import relies on, consulted second

  OrvaneMLRecordMaterials* currentFolder = nullptr;
  OrvaneMLRecordMaterial* currentMaterial = nullptr;
  OrvaneMLRecordDataset* currentDataset = nullptr;
  std::string materialType;
  std::string activeModel;
  std::string activeKW;
  std::string instanceID;

  DatasetsAtHand datasetsAtHand;
  std::vector<std::pair<std::string, OrvaneMLRecordDataset*>> filedTables;  // table id -> dataset
  std::vector<OrvaneMLRecordMatModel*> modelList;
  std::map<std::string, std::vector<std::string>> strainDirections;
  std::set<std::string> reportedWords;

  void* document = nullptr;  // the last document handed out
  std::string documentFingerprint;  // of that document as built, before any edit

  // Export side.
  Mapping exportMapping;
  std::string activeMaterialName;
  std::map<std::string, std::string> cardsetIDMap;
};

StoreState& State();

// Records a reason for GetLastError and in the warning log.
void AddStoreError(StoreState& state, const std::string& text);
// Loads the built-in mapping and the mapping of the active solution (the
// built-in one in its place when that can't be read).
void LoadMappings(StoreState& state);
// True for a model (or sub-model) that every new material gets.
bool IsMadeWithMaterial(const std::string& idref);

// Resets the import state (not the database) and frees the document.
void ResetFacade(StoreState& state);

// The built-in mapping: the models every material gets when the solution's
// mapping can't be read, and the rows of the store's own identifiers that the
// import's phase, reaction and material readers rely on.
const char* BuiltinMappingXml();

// Mapping rows: the solution's mapping first, then the built-in rows.
const MappingParameter* FindRowByCardWord(const std::string& word, const std::string& cardModel);
const MappingParameter* FindRowByID(const std::string& idref, const std::string& cardModel);
const MappingModel* FindModelRow(const std::string& idref);
const MappingModel* FindOwnerRow(const std::string& subModelIDref);
const MappingModel* DefaultModelRow(const std::string& cardModel);

// The models of a material and their sub-models, depth first, in order.
void FlattenModels(OrvaneMLRecordMaterial* material, std::vector<OrvaneMLRecordMatModel*>& models);
// Gives a new material the models of the mapping.
void GiveMappedModels(OrvaneMLRecordMaterial* material);
// The first model of the model list with this IDref; made (under the model
// that declares it, or at the top of the current material) when absent.
// Null only without a current material.
OrvaneMLRecordMatModel* ResolveModel(const std::string& idref, const std::string& instanceID);

// The dataset placement of an identifier as a card word (create false) or as
// a store identifier (create true).
DatasetPlacement PlaceDataset(const std::string& id, bool asStoreIdentifier);

// Lists a dataset among those at hand and makes it current.
void MakeCurrent(OrvaneMLRecordDataset* dataset);

}  // namespace quillon
