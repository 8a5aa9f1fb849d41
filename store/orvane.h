#pragma once

// The material store as the drivers see it: the static facade
// `OrvaneStaticVars` (the state the import's section readers work on, and the
// export's view of a material), the solution object `Orvane`, and the
// parameter model that the export reads.  docs/store.md describes how each
// operation answers.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/export.h"
#include "store/orvanedb.h"
#include "store/records.h"

namespace quillon {
class Mapping;
}

class OrvaneParameter;
class OrvaneParamArray;

class QUILLON_API OrvaneStaticVars {
 public:
  // ---- Import side ----

  // Prepares the store for an import.  A storeName that is the path of an
  // existing database file loads it, so that the import adds to it; any other
  // name (or null) starts an empty store.  A file that can't be read as a
  // database also starts an empty store, and GetLastError says why: a host
  // must not save over it without asking.  Always resets the facade state and
  // loads the mapping of the active solution.
  static void Init(const char* storeName);
  // Why the last Init could not load its database (or the mapping); empty
  // when all went well.
  static const char* GetLastError();
  // The database file that the last Init loaded; empty when it started empty.
  static const char* GetLoadedDatabasePath();
  // Writes all that is stored to `path`, atomically.  Refuses (false, with
  // GetLastError) to write over a file that the last Init failed to load.
  static bool SaveDatabase(const char* path);

  static OrvaneMLRecordMaterials* GetOrCreateMaterials(const char* name);
  static OrvaneMLRecordMaterials* GetCurrentMaterials();
  static OrvaneMLRecordMaterial* GetOrCreateMaterial(const char* id);
  static OrvaneMLRecordMaterial* GetCurrentMaterial();
  static void AddMaterialToMaterials(OrvaneMLRecordMaterials* folder, OrvaneMLRecordMaterial* material);
  // The folder a material is filed in, or null.
  static OrvaneMLRecordMaterials* GetFolderOfMaterial(const OrvaneMLRecordMaterial* material);
  // Every material, in the order they were made (or loaded).
  static const std::vector<OrvaneMLRecordMaterial*>& GetMaterials();

  static void SetCurrentMaterialType(const char* type);
  static const char* GetCurrentMaterialType();
  static void SetActiveModel(const char* name);
  static const char* GetActiveModel();
  static void SetActiveKW(const char* line);
  static const char* GetActiveKW();

  static void ClearDatasets();
  static OrvaneMLRecordDataset* GetOrCreateDataset(const char* id, const char* key, bool create,
                                                   const char* value, const char* text);
  static OrvaneMLRecordDataset* GetOrCreateLinkDataset(const char* id, const char* tableId);
  static OrvaneMLRecordDataset* GetCurrentDataset();
  static void CreateDatasetBasedOnType(const char* value, OrvaneMLRecordDataset* dataset, int mode);
  static void AddDataset(OrvaneMLRecordDataset* dataset, const char* tableId);
  static OrvaneMLRecordDatasets* GetDatasetsPtr();
  static OrvaneMLRecordDataset* FindDataset(const char* datasetId, const char* idref);
  static OrvaneMLRecordDataset* FindDatasetByIDref(const char* idref);

  static OrvaneMLRecordMatModel* GetOrCreateMatModel(const char* name, bool create);
  static OrvaneMLRecordMatModel* FindModelByID(const char* id);
  static std::vector<OrvaneMLRecordMatModel*>& GetMatModelList();
  static void SetInstanceID(const char* id);
  static const char* GetInstanceID();

  static void AddLXLYLZDataset(const char* name, const char* datasetId);
  static std::map<std::string, std::vector<std::string>>& GetLXLYLZMap();
  static void GetMMAT2020PhaseNameFromIndex(const char* index, std::string& name);
  static const char* GetOrvaneMLID(const char* cardName);
  static bool IsValidNumber(const char* text);

  // The DOM document (libxml2, as void*) of all that is stored.  The store
  // owns it; it stays valid, with any edits made to it, until the next
  // GetXMLDocument that finds the records changed, or the next Init.
  static void GetXMLDocument(void** document);

  // The mapping in force since the last Init (the built-in one when the
  // solution's file could not be read).
  static const quillon::Mapping& GetMapping();

  // ---- Export side (answers "nothing" until the export road is built) ----

  static bool InitExport(const char* mappingFile);
  static void SetActiveMatName(const char* id);
  static const char* GetActiveMatName();
  static void ClearCopyOfActiveMaterialProperties();
  static void NextCard(std::string& keyword, unsigned& count, const char** names, const char** defaults,
                       char*** values);
  static OrvaneParamArray* GetValidParameters(const char* keyword);
  static std::map<std::string, std::string>& GetOrvaneMLCardsetIDMap();
  static const char* GetChoiceFromOrvaneML(OrvaneParameter* parameter);
};

// ---- Parameter model: the store's view of a material as an editable form ----

class QUILLON_API OrvaneCurveFixedParamData {
 public:
  OrvaneCurveFixedParamData(const char* name, const char* value);
  const char* GetName() const { return m_Name.c_str(); }
  const char* GetValue() const { return m_Value.c_str(); }

 private:
  std::string m_Name;
  std::string m_Value;
};

class QUILLON_API OrvaneCurveParameterData {
 public:
  std::vector<double>& GetValueList() { return m_Values; }

 private:
  std::vector<double> m_Values;
};

class QUILLON_API OrvaneCurve {
 public:
  void GetCurveFactors(std::vector<double>& factors);

  std::vector<double> m_Factors;
};

// A value of a parameter that depends on its choice: a constant ("Const%d")
// or a curve ("Curve%d").
class QUILLON_API OrvaneParamGenericDependent {
 public:
  OrvaneParamGenericDependent() = default;
  OrvaneParamGenericDependent(OrvaneParamGenericDependent& source);
  virtual ~OrvaneParamGenericDependent();

  int GetID() { return m_ID; }
  void SetID(int id) { m_ID = id; }
  const char* GetName() { return m_Name.c_str(); }
  void SetName(const char* name);
  int GetType() { return m_Type; }
  bool IsCurveValuesExists();
  std::vector<OrvaneCurveFixedParamData*>& GetFixedParamValueList() { return m_FixedParamValues; }

  int m_ID = 0;
  int m_Type = 0;  // 0 constant, 1 curve
  std::string m_Name;
  std::vector<double> m_Values;
  std::vector<OrvaneCurveFixedParamData*> m_FixedParamValues;  // owned
};

class QUILLON_API OrvaneParameter {
 public:
  OrvaneParameter() = default;
  OrvaneParameter(OrvaneParameter& source, int mode);
  virtual ~OrvaneParameter();

  const char* ID() { return m_ID.c_str(); }
  int DataType() { return m_DataType; }
  const char* GetValue(int index);
  void SetValue(const char* text, int index);
  int GetIntValue();
  double GetFloatValue();
  bool IsEmpty();
  bool IsValueExists(bool strict);
  int IsValueSame();

  const char* SelectedChoice() { return m_SelectedChoice.c_str(); }
  int SetSelectedChoice(const char* text);
  std::vector<std::string>& GetStringChoiceList() { return m_Choices; }
  void CreateStringChoiceListFromDependecy();
  void AddOrSetSelectedChoiceForOpal(const char* text);
  bool GetCheckBoxStatus() { return m_CheckBox; }

  int GetCurCardinalityIndex() { return m_CardinalityIndex; }
  int* GetIndexPtr() { return &m_CardinalityIndex; }
  std::vector<int>& GetLinkIDList() { return m_LinkIDs; }

  std::vector<OrvaneParamGenericDependent*>& GetDependencies() { return m_Dependents; }
  OrvaneParamGenericDependent* GetDependentFromSelectedChoice(int mode);
  void GetDependentListFromChoice(const char* choice, std::vector<OrvaneParamGenericDependent*>& list,
                                  const char* extra);
  void GetApplicable2ndDependents(std::map<std::string, std::string>& map, const char* choice,
                                  std::vector<std::string>* list);
  std::vector<OrvaneParameter*>& GetDependencyFixedParamList() { return m_FixedParameters; }
  int GetCurveLabelFromFixedParameterList(std::string& label, int& index, std::vector<std::string>* names,
                                          int* extra);
  const char* GetModuleIDPath() { return m_ModuleIDPath.c_str(); }
  const char* GetTabName() { return m_TabName.c_str(); }

  std::string m_ID;
  int m_DataType = 4;
  int m_Flags = 0;
  std::vector<std::string> m_Values;
  std::string m_SelectedChoice;
  std::vector<std::string> m_Choices;
  bool m_CheckBox = false;
  int m_CardinalityIndex = 0;
  std::vector<int> m_LinkIDs;
  std::vector<OrvaneParamGenericDependent*> m_Dependents;  // owned
  std::vector<OrvaneParameter*> m_FixedParameters;         // owned
  std::string m_ModuleIDPath;
  std::string m_TabName;

 private:
  OrvaneParameter(const OrvaneParameter&) = delete;
  OrvaneParameter& operator=(const OrvaneParameter&) = delete;
};

// Parameters in line order.
class QUILLON_API OrvaneParamArray {
 public:
  OrvaneParamArray() = default;
  ~OrvaneParamArray();
  OrvaneParamArray(const OrvaneParamArray&) = delete;
  OrvaneParamArray& operator=(const OrvaneParamArray&) = delete;

  unsigned Length() { return static_cast<unsigned>(m_Parameters.size()); }
  OrvaneParameter* Get(unsigned index) { return index < m_Parameters.size() ? m_Parameters[index] : nullptr; }
  std::vector<OrvaneParameter*>& GetList() { return m_Parameters; }
  OrvaneParameter* FindByID(const char* id, OrvaneParameter* from, const char* tab);

  std::vector<OrvaneParameter*> m_Parameters;  // owned
};

// Datasets of a material that no parameter of the form holds, reached by the
// link ids of parameters.
class QUILLON_API OrvaneFreeDataset {
 public:
  typedef std::vector<OrvaneParameter*>::iterator iterator;

  OrvaneFreeDataset() = default;
  ~OrvaneFreeDataset();
  OrvaneFreeDataset(const OrvaneFreeDataset&) = delete;
  OrvaneFreeDataset& operator=(const OrvaneFreeDataset&) = delete;

  OrvaneParameter* Find(int id, const char* name, OrvaneParameter* from, iterator* position);

  std::vector<OrvaneParameter*> m_Parameters;  // owned
};

// The application's model of one solution.  The flag word is the FIRST
// member (hosts and the drivers read it directly), so the class has no
// virtual function.
class QUILLON_API Orvane {
 public:
  int64_t m_IOFlag = 0;

  explicit Orvane(const char* solution);
  ~Orvane();
  Orvane(const Orvane&) = delete;
  Orvane& operator=(const Orvane&) = delete;

  // Both give the one configuration object, made on first use.
  static OrvaneConfig* _ApplnGetOrvaneConfigPtr();
  static OrvaneConfig* _ApplnCreateOrvaneConfigPtr();
  // One object per solution name, made on first use; null for a null name.
  // `text` is only passed through.
  static Orvane* _ApplnGetOrvanePtr(const char* solution, std::string& text);

  int64_t CheckIOFlag(int64_t mask) { return m_IOFlag & mask; }
  void SetIOFlag(int64_t flags) { m_IOFlag = flags; }
  const char* GetSolutionName() const { return m_Solution.c_str(); }

  int CallMaterialModel(const char* folderClass, const char* which, const char* extra);
  void SetActiveDB(const char* name);
  const char* GetActiveDB() { return m_ActiveDB.c_str(); }
  int SetActiveXMLNode(const char* materialId, const char* db,
                       std::multimap<std::string, std::vector<std::string>>* map, int a, int b);
  int GetFolderFromMatID(const char* id, const char* db, std::string& folder);
  const char* GetFolderClassFromName(const char* db, const char* folder, int mode);
  OrvaneParamArray* GetParamList(const char* category, const char* sub);
  OrvaneParameter* Find(const char* name);
  OrvaneParameter* FindByID(const char* id, std::vector<OrvaneParameter*>* list);
  void GetActiveTabName(std::string& name);
  void AddDependencyParameters(OrvaneParameter* parameter, int a, bool b);
  const char* GetFixedDependentChoice(const char* id, std::vector<std::string>* names);
  OrvaneFreeDataset* GetFreeDataset() { return &m_FreeDataset; }

  // The parameter axis IDref of a dataset's curves (the mapping's
  // DependentParamID), or null; `names` gets the identifiers of the conditions
  // its values may carry (FixedParamIDs).  `text`, when given, gets the axis
  // IDref too.
  static const char* GetDependentParamID(const char* idref, std::vector<std::string>& names, std::string* text,
                                         int flag);

 private:
  std::string m_Solution;
  std::string m_ActiveDB;
  std::string m_ActiveTab;
  OrvaneFreeDataset m_FreeDataset;
};
