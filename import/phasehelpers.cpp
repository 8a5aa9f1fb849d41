#include "import/phasehelpers.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "core/importobject.h"
#include "import/converters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

const char* const PhaseNames8[8] = {"Ferrite",          "Pearlite",           "Bainite",   "Martensite",
                                    "Tempered Bainite", "Tempered Martensite", "Austenite", "Fictive Phase"};

const char* const PhaseNames7[7] = {"Ferrite",          "Pearlite",           "Bainite", "Martensite",
                                    "Tempered Bainite", "Tempered Martensite", "Austenite"};

const char* const PhaseDescriptions11[11] = {"Ferrite / Pearlite & Initial Material",
                                             "Not Yet Existing Filler Material",
                                             "Bainite",
                                             "Martensite",
                                             "Tempered Bainite",
                                             "Tempered Martensite",
                                             "Austenite",
                                             "White Martensite",
                                             "Upper Bainite (soft)",
                                             "Lower Bainite (hard)",
                                             "Black Martensite After Low Temperature Tempering"};

namespace {

const char kGenericInfoModel[] = "GenericInfo_Weld";
const char kPhaseModel[] = "Phase_details_model";
const char kPhaseName[] = "Phase_name";
const char kPhaseDescription[] = "Phase_description";

// Phase 6 is the austenite of every material, whatever the tables say.
constexpr int kAusteniteNumber = 6;
// The second phase of a weld type is the filler material that does not exist yet.
constexpr int kFictiveNumber = 2;

bool Equal(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

std::string Trimmed(const char* text) {
  std::vector<char> buffer(text, text + std::strlen(text) + 1);
  return OrvaneGeneric::Trim(buffer.data());
}

bool IsBlank(const char* text) {
  for (const char* c = text; *c != '\0'; ++c)
    if (!std::isspace(static_cast<unsigned char>(*c))) return false;
  return true;
}

// The two sides of a "left | right" text; false unless it cuts into exactly two pieces.
bool SplitAtBar(const char* text, std::string& left, std::string& right) {
  if (std::strchr(text, '|') == nullptr) return false;
  char parts[OrvaneGeneric::kSplitMaxRows][128];
  if (OrvaneGeneric::SplitIntoWords(text, '|', parts) != 2) return false;
  left = Trimmed(parts[0]);
  right = Trimmed(parts[1]);
  return true;
}

std::vector<OrvaneMLRecordMatModel*>* PhaseModelList() {
  OrvaneMLRecordMatModel* generic = OrvaneStaticVars::GetOrCreateMatModel(kGenericInfoModel, false);
  if (generic == nullptr || generic->m_SubModels == nullptr) return nullptr;
  return &generic->m_SubModels->m_Models;
}

bool IsPhaseModel(const OrvaneMLRecordMatModel* model) { return model != nullptr && Equal(model->GetIDref(), kPhaseModel); }

OrvaneMLRecordMatModel* PhaseModelOf(const char* id) {
  std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList();
  if (models == nullptr) return nullptr;
  for (OrvaneMLRecordMatModel* model : *models)
    if (IsPhaseModel(model) && Equal(model->GetInstanceID(), id)) return model;
  return nullptr;
}

const char* StringValue(const OrvaneMLRecordDataset* dataset) {
  return dataset->m_String != nullptr ? dataset->m_String->GetValue() : "";
}

bool Contains(const std::vector<std::string>& list, const char* text) {
  for (const std::string& entry : list)
    if (entry == text) return true;
  return false;
}

}  // namespace

bool IsWeldMaterialType() {
  const char* type = OrvaneStaticVars::GetCurrentMaterialType();
  return type != nullptr && (type[0] == 'W' || type[0] == 'w');
}

int ResolvePhaseDescription(const char* id, char* desc, const char* idref, std::string* out) {
  const int n = std::atoi(id);
  if (n == kFictiveNumber && Equal(idref, "PHASE") && IsWeldMaterialType()) {
    OverwriteWord(desc, "Fictive Phase");
    return 0;
  }

  // A phase whose text is stored already keeps it.
  if (std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList()) {
    for (OrvaneMLRecordMatModel* model : *models) {
      if (!IsPhaseModel(model) || !Equal(model->GetInstanceID(), id)) continue;
      for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
        if (dataset == nullptr || !Equal(dataset->GetIDref(), idref) || dataset->m_String == nullptr) continue;
        if (IsBlank(dataset->m_String->GetValue())) continue;
        OverwriteWord(desc, dataset->m_String->GetValue());
        return 1;
      }
    }
  }

  // "description | name": the name goes out, and the description stays whole
  // when its left part is the name of another phase already.
  std::string left;
  std::string right;
  if (Equal(idref, kPhaseDescription) && SplitAtBar(desc, left, right)) {
    if (out != nullptr) *out = right;
    if (!IsPhaseNameUsed(left.c_str())) OverwriteWord(desc, left.c_str());
    return 0;
  }

  const bool descriptions = Equal(idref, kPhaseDescription);
  const char* const* table = descriptions ? PhaseDescriptions11 : PhaseNames7;
  const int size = descriptions ? 11 : 7;

  // A text names a table entry when it equals it, without case, or is part of
  // it, with case: "Bain" is Bainite, "bain" is not.
  if (desc[0] != '\0') {
    for (int i = 0; i < size; ++i) {
      if (strcasecmp(desc, table[i]) == 0 || std::strstr(table[i], desc) != nullptr) {
        OverwriteWord(desc, table[i]);
        return 0;
      }
    }
  }

  std::vector<std::string> descriptionList;
  std::vector<std::string> names;
  GetPhaseLists(descriptionList, &names);

  // By number: the table's entry for the phase, or the next one when a phase
  // of that name exists already.
  if (n >= 1 && n - 1 < size) {
    if (!Contains(names, table[n - 1]))
      OverwriteWord(desc, table[n - 1]);
    else if (n < size)
      OverwriteWord(desc, table[n]);
  }

  if (n == kAusteniteNumber) {
    OverwriteWord(desc, "Austenite");
    return 0;
  }
  if (desc[0] != '\0') return 0;

  for (int i = 0; i < size; ++i) {
    if (!Contains(names, table[i])) {
      OverwriteWord(desc, table[i]);
      break;
    }
  }
  return 0;
}

void GetPhaseName(const char* id, const char* text, std::string& name) {
  const int limit = IsWeldMaterialType() ? 7 : 8;
  for (int i = 0; i < limit; ++i) {
    if (std::strchr(text, ' ') == nullptr || strcasecmp(text, PhaseNames8[i]) == 0) {
      name = text;
      break;
    }
  }

  const int n = std::atoi(id);
  std::string left;
  std::string right;
  if (SplitAtBar(text, left, right)) {
    name = left;
    return;
  }
  if (n == kAusteniteNumber) {
    name = "Austenite";
    return;
  }
  if (n == kFictiveNumber && IsWeldMaterialType()) {
    name = "Fictive Phase";
    return;
  }
  if (name.empty() && n >= 1 && n - 1 < limit) name = PhaseNames8[n - 1];

  // Two phases never keep the same name while the table has a free one.
  if (n < limit) {
    for (int i = n < 0 ? 0 : n; i < limit && IsPhaseNameUsed(name.c_str()); ++i) name = PhaseNames8[i];
  }
}

void EnsurePhaseDetailsModel(char** words, unsigned* numWords, unsigned index, ImportObject* /*importObject*/,
                             bool create) {
  if (*numWords == 0) return;
  OrvaneMLRecordMatModel* generic = OrvaneStaticVars::GetOrCreateMatModel(kGenericInfoModel, false);
  if (generic == nullptr) return;
  OrvaneMLRecordSubModels* subModels = generic->GetOrCreateSubModels();

  const char* id = words[index];
  OrvaneMLRecordMatModel* phaseModel = nullptr;
  for (OrvaneMLRecordMatModel* model : subModels->m_Models) {
    if (IsPhaseModel(model) && Equal(model->GetInstanceID(), id)) {
      phaseModel = model;
      break;
    }
  }
  if (phaseModel == nullptr) {
    if (!create) return;
    phaseModel = new OrvaneMLRecordMatModel();
    phaseModel->SetIDref(kPhaseModel);
    phaseModel->SetInstanceID(id);
    OrvaneStaticVars::SetInstanceID(id);
    subModels->AddModel(phaseModel);
  }

  // The store fills the phase model that its model list names.
  std::vector<OrvaneMLRecordMatModel*>& list = OrvaneStaticVars::GetMatModelList();
  for (OrvaneMLRecordMatModel*& entry : list) {
    if (IsPhaseModel(entry)) {
      entry = phaseModel;
      return;
    }
  }
  list.push_back(phaseModel);
}

OrvaneMLRecordMatModel* FindPhaseModel(const char* name) {
  std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList();
  if (models == nullptr) return nullptr;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (!IsPhaseModel(model)) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
      if (dataset != nullptr && Equal(dataset->GetIDref(), kPhaseName) && dataset->m_String != nullptr &&
          Equal(dataset->m_String->GetValue(), name))
        return model;
  }
  for (OrvaneMLRecordMatModel* model : *models) {
    if (!IsPhaseModel(model)) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
      if (dataset != nullptr && Equal(dataset->GetIDref(), kPhaseDescription) && dataset->m_String != nullptr &&
          std::strstr(dataset->m_String->GetValue(), name) != nullptr)
        return model;
  }
  return nullptr;
}

int GetPhaseLists(std::vector<std::string>& descriptions, std::vector<std::string>* names) {
  std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList();
  if (models == nullptr) return 0;
  int count = 0;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (!IsPhaseModel(model)) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
      if (dataset == nullptr) continue;
      if (Equal(dataset->GetIDref(), kPhaseDescription)) {
        descriptions.push_back(StringValue(dataset));
        ++count;
      } else if (names != nullptr && Equal(dataset->GetIDref(), kPhaseName)) {
        names->push_back(StringValue(dataset));
      }
    }
  }
  return count;
}

bool HasPhaseName(const char* id) {
  OrvaneMLRecordMatModel* model = PhaseModelOf(id);
  if (model == nullptr) return false;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
    if (dataset != nullptr && Equal(dataset->GetIDref(), kPhaseName)) return true;
  return false;
}

bool IsPhaseNameUsed(const char* name) {
  std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList();
  if (models == nullptr) return false;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (!IsPhaseModel(model)) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
      if (dataset != nullptr && Equal(dataset->GetIDref(), kPhaseName) && dataset->m_String != nullptr &&
          Equal(dataset->m_String->GetValue(), name))
        return true;
  }
  return false;
}

void FixFictivePhaseName() {
  std::vector<std::string> descriptions;
  if (GetPhaseLists(descriptions, nullptr) != 2) return;
  std::vector<OrvaneMLRecordMatModel*>* models = PhaseModelList();
  int seen = 0;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (!IsPhaseModel(model)) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
      if (dataset == nullptr || !Equal(dataset->GetIDref(), kPhaseName)) continue;
      if (++seen != 2) continue;
      if (dataset->m_String == nullptr) dataset->m_String = new OrvaneMLRecordString();
      dataset->m_String->SetValue("Fictive Phase");
      return;
    }
  }
}
