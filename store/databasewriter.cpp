// Records to XML.  Each record class is the element of its name without the
// "OrvaneMLRecord" prefix ("Record" for a material); identifiers are
// attributes named as their setters, values are element text.  Children come
// in a fixed order per element, so the same records always give the same
// bytes; docs/store.md shows the layout.

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <string>

#include "store/database.h"
#include "store/dbxmltext.h"

namespace quillon {

namespace {

const xmlChar* X(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

xmlNodePtr AddElement(xmlNodePtr parent, const char* name) { return xmlNewChild(parent, nullptr, X(name), nullptr); }

// Empty identifiers are left out: the phase post-processing passes over a
// dataset without "DatasetID", which is what a dataset without a table is.
void SetAttribute(xmlNodePtr node, const char* name, const std::string& value) {
  if (value.empty()) return;
  xmlNewProp(node, X(name), X(XmlSafeText(value).c_str()));
}

void SetText(xmlNodePtr node, const std::string& text) {
  if (text.empty()) return;
  xmlAddChild(node, xmlNewText(X(XmlSafeText(text).c_str())));
}

xmlNodePtr AddTextElement(xmlNodePtr parent, const char* name, const std::string& text) {
  xmlNodePtr node = AddElement(parent, name);
  SetText(node, text);
  return node;
}

void WriteForeign(xmlNodePtr parent, const std::vector<std::string>& elements) {
  for (const std::string& text : elements) {
    xmlDocPtr fragment = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", XML_PARSE_NONET);
    if (fragment == nullptr) continue;
    xmlNodePtr root = xmlDocGetRootElement(fragment);
    if (root != nullptr) xmlAddChild(parent, xmlDocCopyNode(root, parent->doc, 1));
    xmlFreeDoc(fragment);
  }
}

template <typename Record, typename Writer>
void WriteAll(xmlNodePtr parent, const std::vector<Record*>& records, Writer write) {
  for (const Record* record : records) {
    if (record != nullptr) write(parent, *record);
  }
}

void WriteValueList(xmlNodePtr parent, const OrvaneMLRecordValueList& list) {
  xmlNodePtr node = AddElement(parent, "ValueList");
  WriteAll(node, list.m_Values, [](xmlNodePtr at, const OrvaneMLRecordValue& value) {
    WriteForeign(AddTextElement(at, "Value", value.m_Value), value.m_ForeignElements);
  });
  WriteForeign(node, list.m_ForeignElements);
}

void WriteParameterFixed(xmlNodePtr parent, const OrvaneMLRecordParameterFixed& parameter) {
  xmlNodePtr node = AddElement(parent, "ParameterFixed");
  SetAttribute(node, "IDref", parameter.m_IDref);
  // Always a Value child, also when empty: the post-processing reads it.
  AddTextElement(node, "Value", parameter.m_Value);
  WriteForeign(node, parameter.m_ForeignElements);
}

void WriteParameterFixedGroup(xmlNodePtr parent, const OrvaneMLRecordParameterFixedGroup& group) {
  xmlNodePtr node = AddElement(parent, "ParameterFixedGroup");
  WriteAll(node, group.m_ParameterFixed, WriteParameterFixed);
  WriteAll(node, group.m_ParameterFixedGroups, WriteParameterFixedGroup);
  WriteForeign(node, group.m_ForeignElements);
}

void WriteConditions(xmlNodePtr node, const std::vector<OrvaneMLRecordParameterFixed*>& fixed,
                     const std::vector<OrvaneMLRecordParameterFixedGroup*>& groups) {
  WriteAll(node, fixed, WriteParameterFixed);
  WriteAll(node, groups, WriteParameterFixedGroup);
}

void WriteConstant(xmlNodePtr parent, const OrvaneMLRecordConstant& constant) {
  xmlNodePtr node = AddElement(parent, "Constant");
  if (constant.m_HasValue) AddTextElement(node, "Value", constant.m_Value);
  WriteConditions(node, constant.m_ParameterFixed, constant.m_ParameterFixedGroups);
  WriteForeign(node, constant.m_ForeignElements);
}

void WriteDataAxis(xmlNodePtr parent, const OrvaneMLRecordDataAxis& axis) {
  xmlNodePtr node = AddElement(parent, "DataAxis");
  if (axis.m_ValueList != nullptr) WriteValueList(node, *axis.m_ValueList);
  WriteForeign(node, axis.m_ForeignElements);
}

void WriteParameterAxis(xmlNodePtr parent, const OrvaneMLRecordParameterAxis& axis) {
  xmlNodePtr node = AddElement(parent, "ParameterAxis");
  SetAttribute(node, "IDref", axis.m_IDref);
  if (axis.m_ValueList != nullptr) WriteValueList(node, *axis.m_ValueList);
  WriteForeign(node, axis.m_ForeignElements);
}

void WriteCurve(xmlNodePtr parent, const OrvaneMLRecordCurve& curve) {
  xmlNodePtr node = AddElement(parent, "Curve");
  SetAttribute(node, "Label", curve.m_Label);
  if (curve.m_CurveInfo != nullptr) {
    xmlNodePtr info = AddElement(node, "CurveInfo");
    SetAttribute(info, "ScaleX", curve.m_CurveInfo->m_ScaleX);
    WriteForeign(info, curve.m_CurveInfo->m_ForeignElements);
  }
  WriteAll(node, curve.m_DataAxes, WriteDataAxis);
  WriteAll(node, curve.m_ParameterAxes, WriteParameterAxis);
  WriteConditions(node, curve.m_ParameterFixed, curve.m_ParameterFixedGroups);
  WriteForeign(node, curve.m_ForeignElements);
}

void WriteEmptyRecord(xmlNodePtr parent, const char* name, const OrvaneMLRecordObject& record) {
  WriteForeign(AddElement(parent, name), record.m_ForeignElements);
}

void WriteFloat(xmlNodePtr parent, const OrvaneMLRecordFloat& value) {
  xmlNodePtr node = AddElement(parent, "Float");
  WriteAll(node, value.m_Curves, WriteCurve);
  WriteAll(node, value.m_Constants, WriteConstant);
  WriteAll(node, value.m_LookupMetadata, [](xmlNodePtr at, const OrvaneMLRecordLookupMetadata& record) {
    WriteEmptyRecord(at, "LookupMetadata", record);
  });
  WriteAll(node, value.m_LocalFunctions, [](xmlNodePtr at, const OrvaneMLRecordLocalFunction& record) {
    WriteEmptyRecord(at, "LocalFunction", record);
  });
  WriteForeign(node, value.m_ForeignElements);
}

void WriteFloatList(xmlNodePtr parent, const OrvaneMLRecordFloatList& list) {
  xmlNodePtr node = AddElement(parent, "FloatList");
  WriteAll(node, list.m_FloatItems, [](xmlNodePtr at, const OrvaneMLRecordFloatItem& item) {
    xmlNodePtr itemNode = AddElement(at, "FloatItem");
    WriteAll(itemNode, item.m_Constants, WriteConstant);
    WriteForeign(itemNode, item.m_ForeignElements);
  });
  WriteConditions(node, list.m_ParameterFixed, list.m_ParameterFixedGroups);
  WriteForeign(node, list.m_ForeignElements);
}

void WriteDataset(xmlNodePtr parent, const OrvaneMLRecordDataset& dataset) {
  xmlNodePtr node = AddElement(parent, "Dataset");
  SetAttribute(node, "IDref", dataset.m_IDref);
  SetAttribute(node, "DatasetID", dataset.m_DatasetID);
  WriteAll(node, dataset.m_Links, [](xmlNodePtr at, const OrvaneMLRecordLink& link) {
    xmlNodePtr linkNode = AddElement(at, "Link");
    SetAttribute(linkNode, "DatasetIDref", link.m_DatasetIDref);
    WriteForeign(linkNode, link.m_ForeignElements);
  });
  if (dataset.m_String != nullptr) {
    WriteForeign(AddTextElement(node, "String", dataset.m_String->m_Value), dataset.m_String->m_ForeignElements);
  }
  if (dataset.m_Integer != nullptr) {
    WriteForeign(AddTextElement(node, "Integer", std::to_string(dataset.m_Integer->m_Value)),
                 dataset.m_Integer->m_ForeignElements);
  }
  if (dataset.m_Float != nullptr) WriteFloat(node, *dataset.m_Float);
  if (dataset.m_FloatList != nullptr) WriteFloatList(node, *dataset.m_FloatList);
  WriteAll(node, dataset.m_ParameterFixedGroups, WriteParameterFixedGroup);
  WriteForeign(node, dataset.m_ForeignElements);
}

void WriteModel(xmlNodePtr parent, const OrvaneMLRecordMatModel& model) {
  xmlNodePtr node = AddElement(parent, "Model");
  SetAttribute(node, "IDref", model.m_IDref);
  SetAttribute(node, "InstanceID", model.m_InstanceID);
  WriteAll(node, model.m_Datasets, WriteDataset);
  if (model.m_SubModels != nullptr) {
    xmlNodePtr subModels = AddElement(node, "SubModels");
    WriteAll(subModels, model.m_SubModels->m_Models, WriteModel);
    WriteForeign(subModels, model.m_SubModels->m_ForeignElements);
  }
  WriteForeign(node, model.m_ForeignElements);
}

}  // namespace

void* BuildMaterialElement(void* document, const OrvaneMLRecordMaterial& material, const char* folder) {
  xmlNodePtr record = xmlNewDocNode(static_cast<xmlDocPtr>(document), nullptr, X("Record"), nullptr);
  // The identifier is written even when empty: it is what names a record.
  xmlNewProp(record, X("ID"), X(XmlSafeText(material.m_ID).c_str()));
  SetAttribute(record, "Folder", folder != nullptr ? folder : "");
  WriteAll(record, material.m_Metadata, [](xmlNodePtr at, const OrvaneMLRecordMetadata& metadata) {
    xmlNodePtr node = AddElement(at, "Metadata");
    SetAttribute(node, "Name", metadata.m_Name);
    SetAttribute(node, "OwnerName", metadata.m_OwnerName);
    WriteForeign(node, metadata.m_ForeignElements);
  });
  // The material's own datasets come before its models, so that the first
  // "Datasets" below a record, in document order, is always the record's:
  // that is the one the phase post-processing merges in.
  xmlNodePtr datasets = AddElement(record, "Datasets");
  WriteAll(datasets, material.m_Datasets->m_Datasets, WriteDataset);
  WriteForeign(datasets, material.m_Datasets->m_ForeignElements);
  WriteAll(record, material.m_Models, WriteModel);
  WriteForeign(record, material.m_ForeignElements);
  return record;
}

void* MaterialDatabase::BuildDocument() const {
  xmlDocPtr document = xmlNewDoc(X("1.0"));
  xmlNodePtr root = xmlNewDocNode(document, nullptr, X(dbxml::kRoot), nullptr);
  xmlDocSetRootElement(document, root);
  xmlNewProp(root, X("Version"), X(dbxml::kFormatVersion));
  for (const OrvaneMLRecordMaterials* folder : m_Folders) {
    xmlNodePtr node = AddElement(root, "Folder");
    xmlNewProp(node, X("Name"), X(XmlSafeText(folder->m_Name).c_str()));
    WriteForeign(node, folder->m_ForeignElements);
  }
  for (const OrvaneMLRecordMaterial* material : m_Materials) {
    const OrvaneMLRecordMaterials* folder = FolderOf(material);
    xmlNodePtr record = static_cast<xmlNodePtr>(
        BuildMaterialElement(document, *material, folder != nullptr ? folder->m_Name.c_str() : nullptr));
    xmlAddChild(root, record);
  }
  WriteForeign(root, m_ForeignElements);
  return document;
}

}  // namespace quillon
