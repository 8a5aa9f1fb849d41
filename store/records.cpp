#include "store/records.h"

#include <algorithm>

namespace {

// Set operations take what callers have at hand, null included.
std::string CopyText(const char* text) { return text != nullptr ? std::string(text) : std::string(); }

template <typename Record>
void DeleteAll(std::vector<Record*>& records) {
  for (Record* record : records) delete record;
  records.clear();
}

template <typename Record>
void Append(std::vector<Record*>& records, Record* record) {
  if (record != nullptr) records.push_back(record);
}

}  // namespace

OrvaneMLRecordObject::~OrvaneMLRecordObject() = default;

void OrvaneMLRecordObject::AddLookupMetadata(OrvaneMLRecordLookupMetadata* metadata) { delete metadata; }

void OrvaneMLRecordObject::SetLocalFunction(std::vector<OrvaneMLRecordLocalFunction*>& functions) {
  DeleteAll(functions);
}

void OrvaneMLRecordValue::SetValueAsString(const char* text) { m_Value = CopyText(text); }

OrvaneMLRecordValueList::~OrvaneMLRecordValueList() { DeleteAll(m_Values); }
void OrvaneMLRecordValueList::AddValue(OrvaneMLRecordValue* value) { Append(m_Values, value); }

void OrvaneMLRecordParameterFixed::SetIDref(const char* idref) { m_IDref = CopyText(idref); }
void OrvaneMLRecordParameterFixed::SetValue(const char* value) { m_Value = CopyText(value); }

OrvaneMLRecordParameterFixedGroup::~OrvaneMLRecordParameterFixedGroup() {
  DeleteAll(m_ParameterFixed);
  DeleteAll(m_ParameterFixedGroups);
}
void OrvaneMLRecordParameterFixedGroup::AddParameterFixed(OrvaneMLRecordParameterFixed* parameter) {
  Append(m_ParameterFixed, parameter);
}
void OrvaneMLRecordParameterFixedGroup::AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group) {
  if (group != this) Append(m_ParameterFixedGroups, group);
}

namespace {

// An axis keeps a single list: a further list gives up its values to it.
void AddToSingleValueList(OrvaneMLRecordValueList*& held, OrvaneMLRecordValueList* list) {
  if (list == nullptr || list == held) return;
  if (held == nullptr) {
    held = list;
    return;
  }
  held->m_Values.insert(held->m_Values.end(), list->m_Values.begin(), list->m_Values.end());
  list->m_Values.clear();
  delete list;
}

}  // namespace

OrvaneMLRecordDataAxis::~OrvaneMLRecordDataAxis() { delete m_ValueList; }
void OrvaneMLRecordDataAxis::AddValueList(OrvaneMLRecordValueList* list) { AddToSingleValueList(m_ValueList, list); }

OrvaneMLRecordParameterAxis::~OrvaneMLRecordParameterAxis() { delete m_ValueList; }
void OrvaneMLRecordParameterAxis::SetIDref(const char* idref) { m_IDref = CopyText(idref); }
void OrvaneMLRecordParameterAxis::AddValueList(OrvaneMLRecordValueList* list) {
  AddToSingleValueList(m_ValueList, list);
}

void OrvaneMLRecordCurveInfo::SetScaleXAsString(const char* text) { m_ScaleX = CopyText(text); }

OrvaneMLRecordCurve::~OrvaneMLRecordCurve() {
  delete m_CurveInfo;
  DeleteAll(m_DataAxes);
  DeleteAll(m_ParameterAxes);
  DeleteAll(m_ParameterFixed);
  DeleteAll(m_ParameterFixedGroups);
}
void OrvaneMLRecordCurve::SetLabel(const char* label) { m_Label = CopyText(label); }
void OrvaneMLRecordCurve::SetCurveInfo(OrvaneMLRecordCurveInfo* info) {
  if (info == m_CurveInfo) return;
  delete m_CurveInfo;
  m_CurveInfo = info;
}
void OrvaneMLRecordCurve::AddDataAxis(OrvaneMLRecordDataAxis* axis) { Append(m_DataAxes, axis); }
void OrvaneMLRecordCurve::AddParameterAxis(OrvaneMLRecordParameterAxis* axis) { Append(m_ParameterAxes, axis); }
void OrvaneMLRecordCurve::AddParameterFixed(OrvaneMLRecordParameterFixed* parameter) {
  Append(m_ParameterFixed, parameter);
}
void OrvaneMLRecordCurve::AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group) {
  Append(m_ParameterFixedGroups, group);
}

OrvaneMLRecordConstant::~OrvaneMLRecordConstant() {
  DeleteAll(m_ParameterFixed);
  DeleteAll(m_ParameterFixedGroups);
}
void OrvaneMLRecordConstant::SetValueAsString(const char* text) {
  m_Value = CopyText(text);
  m_HasValue = true;
}
void OrvaneMLRecordConstant::AddParameterFixed(OrvaneMLRecordParameterFixed* parameter) {
  Append(m_ParameterFixed, parameter);
}
void OrvaneMLRecordConstant::AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group) {
  Append(m_ParameterFixedGroups, group);
}

OrvaneMLRecordFloat::~OrvaneMLRecordFloat() {
  DeleteAll(m_Curves);
  DeleteAll(m_Constants);
  DeleteAll(m_LookupMetadata);
  DeleteAll(m_LocalFunctions);
}
void OrvaneMLRecordFloat::AddCurve(OrvaneMLRecordCurve* curve) { Append(m_Curves, curve); }
void OrvaneMLRecordFloat::AddConstant(OrvaneMLRecordConstant* constant) { Append(m_Constants, constant); }
void OrvaneMLRecordFloat::AddLookupMetadata(OrvaneMLRecordLookupMetadata* metadata) {
  Append(m_LookupMetadata, metadata);
}
void OrvaneMLRecordFloat::SetLocalFunction(std::vector<OrvaneMLRecordLocalFunction*>& functions) {
  if (&functions == &m_LocalFunctions) return;
  DeleteAll(m_LocalFunctions);
  for (OrvaneMLRecordLocalFunction* function : functions) Append(m_LocalFunctions, function);
  functions.clear();
}

OrvaneMLRecordFloatItem::~OrvaneMLRecordFloatItem() { DeleteAll(m_Constants); }
void OrvaneMLRecordFloatItem::AddConstant(OrvaneMLRecordConstant* constant) { Append(m_Constants, constant); }

OrvaneMLRecordFloatList::~OrvaneMLRecordFloatList() {
  DeleteAll(m_FloatItems);
  DeleteAll(m_ParameterFixed);
  DeleteAll(m_ParameterFixedGroups);
}
void OrvaneMLRecordFloatList::AddFloatItem(OrvaneMLRecordFloatItem* item) { Append(m_FloatItems, item); }
void OrvaneMLRecordFloatList::AddParameterFixed(OrvaneMLRecordParameterFixed* parameter) {
  Append(m_ParameterFixed, parameter);
}
void OrvaneMLRecordFloatList::AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group) {
  Append(m_ParameterFixedGroups, group);
}

void OrvaneMLRecordString::SetValue(const char* value) { m_Value = CopyText(value); }

void OrvaneMLRecordLink::SetDatasetIDref(const char* id) { m_DatasetIDref = CopyText(id); }

OrvaneMLRecordDataset::~OrvaneMLRecordDataset() {
  DeleteAll(m_Links);
  delete m_Float;
  delete m_String;
  delete m_FloatList;
  delete m_Integer;
  DeleteAll(m_ParameterFixedGroups);
}
void OrvaneMLRecordDataset::SetIDref(const char* idref) { m_IDref = CopyText(idref); }
void OrvaneMLRecordDataset::SetDatasetID(const char* id) { m_DatasetID = CopyText(id); }
void OrvaneMLRecordDataset::AddLink(OrvaneMLRecordLink* link) { Append(m_Links, link); }
void OrvaneMLRecordDataset::AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group) {
  Append(m_ParameterFixedGroups, group);
}

OrvaneMLRecordDatasets::~OrvaneMLRecordDatasets() {
  if (m_OwnsDatasets) DeleteAll(m_Datasets);
}
void OrvaneMLRecordDatasets::AddDataset(OrvaneMLRecordDataset* dataset) {
  if (m_OwnsDatasets) {
    Own(dataset);
  } else {
    ListWithoutOwning(dataset);
  }
}
void OrvaneMLRecordDatasets::Own(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Attached) return;
  dataset->m_Attached = true;
  m_Datasets.push_back(dataset);
}
void OrvaneMLRecordDatasets::ListWithoutOwning(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr) return;
  if (std::find(m_Datasets.begin(), m_Datasets.end(), dataset) != m_Datasets.end()) return;
  m_Datasets.push_back(dataset);
}

OrvaneMLRecordMatModel::~OrvaneMLRecordMatModel() {
  DeleteAll(m_Datasets);
  delete m_SubModels;
}
void OrvaneMLRecordMatModel::SetIDref(const char* idref) { m_IDref = CopyText(idref); }
void OrvaneMLRecordMatModel::SetInstanceID(const char* id) { m_InstanceID = CopyText(id); }
void OrvaneMLRecordMatModel::AddDataset(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Attached) return;
  dataset->m_Attached = true;
  m_Datasets.push_back(dataset);
}
OrvaneMLRecordSubModels* OrvaneMLRecordMatModel::GetOrCreateSubModels() {
  if (m_SubModels == nullptr) m_SubModels = new OrvaneMLRecordSubModels;
  return m_SubModels;
}

OrvaneMLRecordSubModels::~OrvaneMLRecordSubModels() { DeleteAll(m_Models); }
void OrvaneMLRecordSubModels::AddModel(OrvaneMLRecordMatModel* model) { Append(m_Models, model); }

void OrvaneMLRecordMetadata::SetName(const char* name) { m_Name = CopyText(name); }
void OrvaneMLRecordMetadata::SetOwnerName(const char* name) { m_OwnerName = CopyText(name); }

OrvaneMLRecordMaterial::OrvaneMLRecordMaterial() : m_Datasets(new OrvaneMLRecordDatasets) {}
OrvaneMLRecordMaterial::OrvaneMLRecordMaterial(const char* id)
    : m_ID(CopyText(id)), m_Datasets(new OrvaneMLRecordDatasets) {}
OrvaneMLRecordMaterial::~OrvaneMLRecordMaterial() {
  DeleteAll(m_Metadata);
  DeleteAll(m_Models);
  delete m_Datasets;
}
void OrvaneMLRecordMaterial::SetID(const char* id) { m_ID = CopyText(id); }
void OrvaneMLRecordMaterial::AddMetadata(OrvaneMLRecordMetadata* metadata) { Append(m_Metadata, metadata); }
void OrvaneMLRecordMaterial::AddModel(OrvaneMLRecordMatModel* model) { Append(m_Models, model); }

OrvaneMLRecordMaterials::OrvaneMLRecordMaterials(const char* name) : m_Name(CopyText(name)) {}
void OrvaneMLRecordMaterials::SetName(const char* name) { m_Name = CopyText(name); }
void OrvaneMLRecordMaterials::AddMaterial(OrvaneMLRecordMaterial* material) {
  if (material != nullptr && !Holds(material)) m_Materials.push_back(material);
}
void OrvaneMLRecordMaterials::RemoveMaterial(OrvaneMLRecordMaterial* material) {
  m_Materials.erase(std::remove(m_Materials.begin(), m_Materials.end(), material), m_Materials.end());
}
bool OrvaneMLRecordMaterials::Holds(const OrvaneMLRecordMaterial* material) const {
  return std::find(m_Materials.begin(), m_Materials.end(), material) != m_Materials.end();
}
