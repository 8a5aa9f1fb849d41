// XML to records: the mirror of databasewriter.cpp.  Each element reads the
// children it knows, in any order; a child it doesn't know is kept as XML
// text on its record and written back on the next save, so a file that a
// newer writer or another tool extended loses nothing by passing through.

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <string>

#include "store/database.h"

namespace quillon {

namespace {

bool IsElement(xmlNodePtr node) { return node != nullptr && node->type == XML_ELEMENT_NODE; }

bool NameIs(xmlNodePtr node, const char* name) {
  return xmlStrcmp(node->name, reinterpret_cast<const xmlChar*>(name)) == 0;
}

bool HasAttribute(xmlNodePtr node, const char* name) {
  return xmlHasProp(node, reinterpret_cast<const xmlChar*>(name)) != nullptr;
}

std::string Attribute(xmlNodePtr node, const char* name) {
  xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
  if (value == nullptr) return std::string();
  std::string text(reinterpret_cast<const char*>(value));
  xmlFree(value);
  return text;
}

// The element's own text: its text and CDATA children, joined.  Indentation
// of a hand-edited file lies between elements and never reaches a value.
std::string Text(xmlNodePtr node) {
  std::string text;
  for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
    if ((child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) && child->content != nullptr) {
      text += reinterpret_cast<const char*>(child->content);
    }
  }
  return text;
}

std::string Serialize(xmlNodePtr node) {
  xmlBufferPtr buffer = xmlBufferCreate();
  xmlNodeDump(buffer, node->doc, node, 0, 0);
  std::string text(reinterpret_cast<const char*>(xmlBufferContent(buffer)),
                   static_cast<size_t>(xmlBufferLength(buffer)));
  xmlBufferFree(buffer);
  return text;
}

struct ChildRule {
  const char* name;
  std::function<void(xmlNodePtr)> read;
};

// Reads the element children of `node` by name; what no rule names is kept
// on `record` as foreign XML.
void ReadChildren(xmlNodePtr node, OrvaneMLRecordObject& record, std::initializer_list<ChildRule> rules) {
  for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
    if (!IsElement(child)) continue;
    bool known = false;
    for (const ChildRule& rule : rules) {
      if (NameIs(child, rule.name)) {
        rule.read(child);
        known = true;
        break;
      }
    }
    if (!known) record.m_ForeignElements.push_back(Serialize(child));
  }
}

template <typename Record>
Record* ReadLeaf(xmlNodePtr node) {
  Record* record = new Record;
  ReadChildren(node, *record, {});
  return record;
}

OrvaneMLRecordValueList* ReadValueList(xmlNodePtr node) {
  auto* list = new OrvaneMLRecordValueList;
  ReadChildren(node, *list, {{"Value", [list](xmlNodePtr child) {
                                auto* value = ReadLeaf<OrvaneMLRecordValue>(child);
                                value->SetValueAsString(Text(child).c_str());
                                list->AddValue(value);
                              }}});
  return list;
}

OrvaneMLRecordParameterFixed* ReadParameterFixed(xmlNodePtr node) {
  auto* parameter = new OrvaneMLRecordParameterFixed;
  parameter->SetIDref(Attribute(node, "IDref").c_str());
  bool valueSeen = false;
  ReadChildren(node, *parameter, {{"Value", [parameter, &valueSeen](xmlNodePtr child) {
                                     // One value per condition; a further one is kept as it stood.
                                     if (valueSeen) {
                                       parameter->m_ForeignElements.push_back(Serialize(child));
                                       return;
                                     }
                                     parameter->SetValue(Text(child).c_str());
                                     valueSeen = true;
                                   }}});
  return parameter;
}

OrvaneMLRecordParameterFixedGroup* ReadParameterFixedGroup(xmlNodePtr node) {
  auto* group = new OrvaneMLRecordParameterFixedGroup;
  ReadChildren(node, *group,
               {{"ParameterFixed", [group](xmlNodePtr child) { group->AddParameterFixed(ReadParameterFixed(child)); }},
                {"ParameterFixedGroup",
                 [group](xmlNodePtr child) { group->AddParameterFixedGroup(ReadParameterFixedGroup(child)); }}});
  return group;
}

// The two condition rules shared by every record that carries conditions.
template <typename Record>
ChildRule FixedRule(Record* record) {
  return {"ParameterFixed", [record](xmlNodePtr child) { record->AddParameterFixed(ReadParameterFixed(child)); }};
}
template <typename Record>
ChildRule GroupRule(Record* record) {
  return {"ParameterFixedGroup",
          [record](xmlNodePtr child) { record->AddParameterFixedGroup(ReadParameterFixedGroup(child)); }};
}

OrvaneMLRecordConstant* ReadConstant(xmlNodePtr node) {
  auto* constant = new OrvaneMLRecordConstant;
  ReadChildren(node, *constant,
               {{"Value",
                 [constant](xmlNodePtr child) {
                   if (constant->HasValue()) {
                     constant->m_ForeignElements.push_back(Serialize(child));
                     return;
                   }
                   constant->SetValueAsString(Text(child).c_str());
                 }},
                FixedRule(constant), GroupRule(constant)});
  return constant;
}

template <typename Axis>
Axis* ReadAxis(xmlNodePtr node) {
  auto* axis = new Axis;
  ReadChildren(node, *axis, {{"ValueList", [axis](xmlNodePtr child) { axis->AddValueList(ReadValueList(child)); }}});
  return axis;
}

OrvaneMLRecordCurve* ReadCurve(xmlNodePtr node) {
  auto* curve = new OrvaneMLRecordCurve;
  curve->SetLabel(Attribute(node, "Label").c_str());
  ReadChildren(node, *curve,
               {{"CurveInfo",
                 [curve](xmlNodePtr child) {
                   auto* info = ReadLeaf<OrvaneMLRecordCurveInfo>(child);
                   info->SetScaleXAsString(Attribute(child, "ScaleX").c_str());
                   curve->SetCurveInfo(info);
                 }},
                {"DataAxis", [curve](xmlNodePtr child) { curve->AddDataAxis(ReadAxis<OrvaneMLRecordDataAxis>(child)); }},
                {"ParameterAxis",
                 [curve](xmlNodePtr child) {
                   auto* axis = ReadAxis<OrvaneMLRecordParameterAxis>(child);
                   axis->SetIDref(Attribute(child, "IDref").c_str());
                   curve->AddParameterAxis(axis);
                 }},
                FixedRule(curve), GroupRule(curve)});
  return curve;
}

OrvaneMLRecordFloat* ReadFloat(xmlNodePtr node) {
  auto* value = new OrvaneMLRecordFloat;
  ReadChildren(node, *value,
               {{"Curve", [value](xmlNodePtr child) { value->AddCurve(ReadCurve(child)); }},
                {"Constant", [value](xmlNodePtr child) { value->AddConstant(ReadConstant(child)); }},
                {"LookupMetadata",
                 [value](xmlNodePtr child) { value->AddLookupMetadata(ReadLeaf<OrvaneMLRecordLookupMetadata>(child)); }},
                {"LocalFunction", [value](xmlNodePtr child) {
                   value->m_LocalFunctions.push_back(ReadLeaf<OrvaneMLRecordLocalFunction>(child));
                 }}});
  return value;
}

OrvaneMLRecordFloatList* ReadFloatList(xmlNodePtr node) {
  auto* list = new OrvaneMLRecordFloatList;
  ReadChildren(node, *list,
               {{"FloatItem",
                 [list](xmlNodePtr child) {
                   auto* item = new OrvaneMLRecordFloatItem;
                   ReadChildren(child, *item, {{"Constant", [item](xmlNodePtr grandchild) {
                                                  item->AddConstant(ReadConstant(grandchild));
                                                }}});
                   list->AddFloatItem(item);
                 }},
                FixedRule(list), GroupRule(list)});
  return list;
}

// A dataset holds at most one value of each kind; a second one of a kind is
// kept as foreign XML rather than dropped.
template <typename Value>
void ReadSingleValue(OrvaneMLRecordDataset* dataset, Value*& slot, xmlNodePtr child,
                     const std::function<Value*(xmlNodePtr)>& read) {
  if (slot != nullptr) {
    dataset->m_ForeignElements.push_back(Serialize(child));
    return;
  }
  slot = read(child);
}

OrvaneMLRecordDataset* ReadDataset(xmlNodePtr node) {
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref(Attribute(node, "IDref").c_str());
  dataset->SetDatasetID(Attribute(node, "DatasetID").c_str());
  ReadChildren(
      node, *dataset,
      {{"Link",
        [dataset](xmlNodePtr child) {
          auto* link = ReadLeaf<OrvaneMLRecordLink>(child);
          link->SetDatasetIDref(Attribute(child, "DatasetIDref").c_str());
          dataset->AddLink(link);
        }},
       {"String",
        [dataset](xmlNodePtr child) {
          ReadSingleValue<OrvaneMLRecordString>(dataset, dataset->m_String, child, [](xmlNodePtr at) {
            auto* value = ReadLeaf<OrvaneMLRecordString>(at);
            value->SetValue(Text(at).c_str());
            return value;
          });
        }},
       {"Integer",
        [dataset](xmlNodePtr child) {
          ReadSingleValue<OrvaneMLRecordInteger>(dataset, dataset->m_Integer, child, [](xmlNodePtr at) {
            auto* value = ReadLeaf<OrvaneMLRecordInteger>(at);
            value->SetValue(std::atoi(Text(at).c_str()));
            return value;
          });
        }},
       {"Float",
        [dataset](xmlNodePtr child) {
          ReadSingleValue<OrvaneMLRecordFloat>(dataset, dataset->m_Float, child, ReadFloat);
        }},
       {"FloatList",
        [dataset](xmlNodePtr child) {
          ReadSingleValue<OrvaneMLRecordFloatList>(dataset, dataset->m_FloatList, child, ReadFloatList);
        }},
       GroupRule(dataset)});
  return dataset;
}

OrvaneMLRecordMatModel* ReadModel(xmlNodePtr node) {
  auto* model = new OrvaneMLRecordMatModel;
  model->SetIDref(Attribute(node, "IDref").c_str());
  model->SetInstanceID(Attribute(node, "InstanceID").c_str());
  ReadChildren(node, *model,
               {{"Dataset", [model](xmlNodePtr child) { model->AddDataset(ReadDataset(child)); }},
                {"SubModels", [model](xmlNodePtr child) {
                   OrvaneMLRecordSubModels* subModels = model->GetOrCreateSubModels();
                   ReadChildren(child, *subModels, {{"Model", [subModels](xmlNodePtr grandchild) {
                                                       subModels->AddModel(ReadModel(grandchild));
                                                     }}});
                 }}});
  return model;
}

}  // namespace

OrvaneMLRecordMaterial* ReadMaterialElement(void* element, std::string& error) {
  xmlNodePtr node = static_cast<xmlNodePtr>(element);
  if (!IsElement(node) || !HasAttribute(node, "ID")) {
    error = "a Record without ID";
    if (node != nullptr) error += " at line " + std::to_string(xmlGetLineNo(node));
    return nullptr;
  }
  auto* material = new OrvaneMLRecordMaterial(Attribute(node, "ID").c_str());
  ReadChildren(node, *material,
               {{"Metadata",
                 [material](xmlNodePtr child) {
                   auto* metadata = ReadLeaf<OrvaneMLRecordMetadata>(child);
                   metadata->SetName(Attribute(child, "Name").c_str());
                   metadata->SetOwnerName(Attribute(child, "OwnerName").c_str());
                   material->AddMetadata(metadata);
                 }},
                {"Datasets",
                 [material](xmlNodePtr child) {
                   OrvaneMLRecordDatasets* datasets = material->m_Datasets;
                   ReadChildren(child, *datasets, {{"Dataset", [datasets](xmlNodePtr grandchild) {
                                                      datasets->AddDataset(ReadDataset(grandchild));
                                                    }}});
                 }},
                {"Model", [material](xmlNodePtr child) { material->AddModel(ReadModel(child)); }}});
  return material;
}

bool MaterialDatabase::LoadDocument(void* document, std::string& error) {
  Clear();
  xmlNodePtr root = xmlDocGetRootElement(static_cast<xmlDocPtr>(document));
  if (root == nullptr || !NameIs(root, dbxml::kRoot)) {
    error = std::string("the root element is not ") + dbxml::kRoot;
    return false;
  }
  if (HasAttribute(root, "Version") && Attribute(root, "Version") != dbxml::kFormatVersion) {
    error = "format version " + Attribute(root, "Version") + " is not known (this library reads version " +
            dbxml::kFormatVersion + ")";
    return false;
  }
  for (xmlNodePtr child = root->children; child != nullptr; child = child->next) {
    if (!IsElement(child)) continue;
    if (NameIs(child, "Folder")) {
      const std::string name = Attribute(child, "Name");
      if (name.empty()) {
        error = "a Folder without Name at line " + std::to_string(xmlGetLineNo(child));
        Clear();
        return false;
      }
      ReadChildren(child, *GetOrCreateFolder(name), {});
    } else if (NameIs(child, "Record")) {
      OrvaneMLRecordMaterial* material = ReadMaterialElement(child, error);
      if (material == nullptr) {
        Clear();
        return false;
      }
      if (FindMaterial(material->m_ID) != nullptr) {
        error = "material " + material->m_ID + " stands twice (line " + std::to_string(xmlGetLineNo(child)) + ")";
        delete material;
        Clear();
        return false;
      }
      m_Materials.push_back(material);
      const std::string folder = Attribute(child, "Folder");
      if (!folder.empty()) GetOrCreateFolder(folder)->AddMaterial(material);
    } else {
      m_ForeignElements.push_back(Serialize(child));
    }
  }
  return true;
}

bool MaterialDatabase::LoadFile(const std::string& path, std::string& error) {
  Clear();
  xmlDocPtr document = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  if (document == nullptr) {
    const xmlError* last = xmlGetLastError();
    error = path + ": not a readable XML file";
    if (last != nullptr && last->message != nullptr) {
      std::string message = last->message;
      while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
      error += " (line " + std::to_string(last->line) + ": " + message + ")";
    }
    return false;
  }
  // A database has no use for a document type: refusing one means no entity
  // of a foreign file is ever declared, let alone expanded.
  if (document->intSubset != nullptr || document->extSubset != nullptr) {
    xmlFreeDoc(document);
    error = path + ": a material database must not have a document type declaration";
    return false;
  }
  std::string reason;
  const bool loaded = LoadDocument(document, reason);
  xmlFreeDoc(document);
  if (!loaded) error = path + ": " + reason;
  return loaded;
}

}  // namespace quillon
