// The solution object and the parameter model.  The configuration, the
// object per solution, its flag word and its active database work now; the
// parameter model answers "nothing" (no category list, no parameter) until
// the export road is built on the stored records.  GetDependentParamID serves
// the import already: it tells the table readers the axis of a curve.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/storestate.h"

namespace {

std::string Text(const char* text) { return text != nullptr ? std::string(text) : std::string(); }

template <typename Pointer>
void DeleteAll(std::vector<Pointer*>& pointers) {
  for (Pointer* pointer : pointers) delete pointer;
  pointers.clear();
}

std::map<std::string, std::unique_ptr<Orvane>>& Solutions() {
  static std::map<std::string, std::unique_ptr<Orvane>> solutions;
  return solutions;
}

}  // namespace

// ---- Orvane ----

Orvane::Orvane(const char* solution) : m_Solution(Text(solution)) {}
Orvane::~Orvane() = default;

OrvaneConfig* Orvane::_ApplnGetOrvaneConfigPtr() { return _ApplnCreateOrvaneConfigPtr(); }

OrvaneConfig* Orvane::_ApplnCreateOrvaneConfigPtr() {
  static OrvaneConfig config;
  return &config;
}

Orvane* Orvane::_ApplnGetOrvanePtr(const char* solution, std::string& /*text*/) {
  if (solution == nullptr) return nullptr;
  std::unique_ptr<Orvane>& object = Solutions()[solution];
  if (!object) object.reset(new Orvane(solution));
  return object.get();
}

int Orvane::CallMaterialModel(const char* /*folderClass*/, const char* /*which*/, const char* /*extra*/) { return 0; }

void Orvane::SetActiveDB(const char* name) { m_ActiveDB = Text(name); }

int Orvane::SetActiveXMLNode(const char* /*materialId*/, const char* /*db*/,
                             std::multimap<std::string, std::vector<std::string>>* /*map*/, int /*a*/, int /*b*/) {
  return 0;
}

int Orvane::GetFolderFromMatID(const char* id, const char* /*db*/, std::string& folder) {
  if (id == nullptr) return 0;
  for (OrvaneMLRecordMaterial* material : OrvaneStaticVars::GetMaterials()) {
    if (material->m_ID != id) continue;
    const OrvaneMLRecordMaterials* holder = OrvaneStaticVars::GetFolderOfMaterial(material);
    if (holder == nullptr) return 0;
    folder = holder->m_Name;
    return 1;
  }
  return 0;
}

const char* Orvane::GetFolderClassFromName(const char* /*db*/, const char* /*folder*/, int /*mode*/) { return ""; }

OrvaneParamArray* Orvane::GetParamList(const char* /*category*/, const char* /*sub*/) { return nullptr; }

OrvaneParameter* Orvane::Find(const char* /*name*/) { return nullptr; }

OrvaneParameter* Orvane::FindByID(const char* /*id*/, std::vector<OrvaneParameter*>* /*list*/) { return nullptr; }

void Orvane::GetActiveTabName(std::string& name) { name = m_ActiveTab; }

void Orvane::AddDependencyParameters(OrvaneParameter* /*parameter*/, int /*a*/, bool /*b*/) {}

const char* Orvane::GetFixedDependentChoice(const char* /*id*/, std::vector<std::string>* /*names*/) {
  return nullptr;
}

const char* Orvane::GetDependentParamID(const char* idref, std::vector<std::string>& names, std::string* text,
                                        int /*flag*/) {
  names.clear();
  if (idref == nullptr || idref[0] == '\0') return nullptr;
  const quillon::MappingParameter* row = quillon::FindRowByID(idref, OrvaneStaticVars::GetActiveModel());
  if (row == nullptr) return nullptr;
  // The conditions a value may carry hold also where the value has no axis
  // (a table of constants names its phases).
  OrvaneGenericAPI::strtoken(row->fixedParamIDs.c_str(), ',', names);
  if (row->dependentParamID.empty()) return nullptr;
  if (text != nullptr) *text = row->dependentParamID;
  return row->dependentParamID.c_str();
}

// ---- Parameter model ----

OrvaneCurveFixedParamData::OrvaneCurveFixedParamData(const char* name, const char* value)
    : m_Name(Text(name)), m_Value(Text(value)) {}

void OrvaneCurve::GetCurveFactors(std::vector<double>& factors) { factors = m_Factors; }

OrvaneParamGenericDependent::OrvaneParamGenericDependent(OrvaneParamGenericDependent& source)
    : m_ID(source.m_ID), m_Type(source.m_Type), m_Name(source.m_Name), m_Values(source.m_Values) {
  for (OrvaneCurveFixedParamData* data : source.m_FixedParamValues) {
    m_FixedParamValues.push_back(new OrvaneCurveFixedParamData(data->GetName(), data->GetValue()));
  }
}

OrvaneParamGenericDependent::~OrvaneParamGenericDependent() { DeleteAll(m_FixedParamValues); }

void OrvaneParamGenericDependent::SetName(const char* name) { m_Name = Text(name); }

bool OrvaneParamGenericDependent::IsCurveValuesExists() { return m_Type == 1 && !m_Values.empty(); }

OrvaneParameter::OrvaneParameter(OrvaneParameter& source, int /*mode*/)
    : m_ID(source.m_ID),
      m_DataType(source.m_DataType),
      m_Flags(source.m_Flags),
      m_Values(source.m_Values),
      m_SelectedChoice(source.m_SelectedChoice),
      m_Choices(source.m_Choices),
      m_CheckBox(source.m_CheckBox),
      m_CardinalityIndex(source.m_CardinalityIndex),
      m_LinkIDs(source.m_LinkIDs),
      m_ModuleIDPath(source.m_ModuleIDPath),
      m_TabName(source.m_TabName) {
  for (OrvaneParamGenericDependent* dependent : source.m_Dependents) {
    m_Dependents.push_back(new OrvaneParamGenericDependent(*dependent));
  }
  for (OrvaneParameter* fixed : source.m_FixedParameters) {
    m_FixedParameters.push_back(new OrvaneParameter(*fixed, 0));
  }
}

OrvaneParameter::~OrvaneParameter() {
  DeleteAll(m_Dependents);
  DeleteAll(m_FixedParameters);
}

const char* OrvaneParameter::GetValue(int index) {
  if (m_Values.empty()) return "";
  if (index < 0) return m_Values.front().c_str();
  return static_cast<size_t>(index) < m_Values.size() ? m_Values[static_cast<size_t>(index)].c_str() : "";
}

void OrvaneParameter::SetValue(const char* text, int index) {
  const size_t at = index < 0 ? 0 : static_cast<size_t>(index);
  if (m_Values.size() <= at) m_Values.resize(at + 1);
  m_Values[at] = Text(text);
}

int OrvaneParameter::GetIntValue() { return std::atoi(GetValue(-1)); }
double OrvaneParameter::GetFloatValue() { return std::atof(GetValue(-1)); }

bool OrvaneParameter::IsEmpty() {
  for (const std::string& value : m_Values) {
    if (!value.empty()) return false;
  }
  return true;
}

bool OrvaneParameter::IsValueExists(bool /*strict*/) { return !IsEmpty() || !m_SelectedChoice.empty(); }

int OrvaneParameter::IsValueSame() {
  for (const std::string& value : m_Values) {
    if (value != m_Values.front()) return 0;
  }
  return 1;
}

int OrvaneParameter::SetSelectedChoice(const char* text) {
  const std::string choice = Text(text);
  for (const std::string& known : m_Choices) {
    if (known == choice) {
      m_SelectedChoice = choice;
      return 1;
    }
  }
  return 0;
}

void OrvaneParameter::CreateStringChoiceListFromDependecy() {}

void OrvaneParameter::AddOrSetSelectedChoiceForOpal(const char* text) {
  if (SetSelectedChoice(text) != 0) return;
  m_Choices.push_back(Text(text));
  m_SelectedChoice = Text(text);
}

OrvaneParamGenericDependent* OrvaneParameter::GetDependentFromSelectedChoice(int /*mode*/) {
  return m_Dependents.empty() ? nullptr : m_Dependents.front();
}

void OrvaneParameter::GetDependentListFromChoice(const char* /*choice*/,
                                                 std::vector<OrvaneParamGenericDependent*>& /*list*/,
                                                 const char* /*extra*/) {}

void OrvaneParameter::GetApplicable2ndDependents(std::map<std::string, std::string>& /*map*/, const char* /*choice*/,
                                                 std::vector<std::string>* /*list*/) {}

int OrvaneParameter::GetCurveLabelFromFixedParameterList(std::string& /*label*/, int& /*index*/,
                                                         std::vector<std::string>* /*names*/, int* /*extra*/) {
  return 0;
}

OrvaneParamArray::~OrvaneParamArray() { DeleteAll(m_Parameters); }

OrvaneParameter* OrvaneParamArray::FindByID(const char* id, OrvaneParameter* from, const char* /*tab*/) {
  if (id == nullptr) return nullptr;
  bool searching = from == nullptr;
  for (OrvaneParameter* parameter : m_Parameters) {
    if (!searching) {
      searching = parameter == from;
      continue;
    }
    if (parameter->m_ID == id) return parameter;
  }
  return nullptr;
}

OrvaneFreeDataset::~OrvaneFreeDataset() { DeleteAll(m_Parameters); }

OrvaneParameter* OrvaneFreeDataset::Find(int id, const char* name, OrvaneParameter* /*from*/, iterator* position) {
  for (auto it = m_Parameters.begin(); it != m_Parameters.end(); ++it) {
    OrvaneParameter* parameter = *it;
    const bool linked = std::find(parameter->m_LinkIDs.begin(), parameter->m_LinkIDs.end(), id) !=
                        parameter->m_LinkIDs.end();
    if (!linked || (name != nullptr && parameter->m_ID != name)) continue;
    if (position != nullptr) *position = it;
    return parameter;
  }
  return nullptr;
}
