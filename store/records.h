#pragma once

// The record tree of the material store.  Importers make records with `new`
// and attach them to one another; a record owns what is attached to it (the
// Add operations and the value pointers of a dataset) and frees it with
// itself.  Lists keep the order of the calls, which is the order of the XML.
// Every Set copies its text; numbers stay text, as the card file spelled them.
//
// Members that callers read or set directly are public and named m_<What>;
// docs/store.md lists them.  Records can't be copied: a copy would free what
// its source still owns.

#include <string>
#include <vector>

#include "core/export.h"

class OrvaneMLRecordLookupMetadata;
class OrvaneMLRecordLocalFunction;

class QUILLON_API OrvaneMLRecordObject {
 public:
  OrvaneMLRecordObject() = default;
  virtual ~OrvaneMLRecordObject();
  OrvaneMLRecordObject(const OrvaneMLRecordObject&) = delete;
  OrvaneMLRecordObject& operator=(const OrvaneMLRecordObject&) = delete;

  // Hooks of value records; a record that keeps no such thing takes the
  // object and frees it, so that handing one over never leaks.
  virtual void AddLookupMetadata(OrvaneMLRecordLookupMetadata* metadata);
  virtual void SetLocalFunction(std::vector<OrvaneMLRecordLocalFunction*>& functions);

  // Elements of a loaded database that no record class stands for, each kept
  // as its XML text so that a later save writes it back behind the record's
  // own children.
  std::vector<std::string> m_ForeignElements;
};

class QUILLON_API OrvaneMLRecordLookupMetadata : public OrvaneMLRecordObject {};
class QUILLON_API OrvaneMLRecordLocalFunction : public OrvaneMLRecordObject {};

class QUILLON_API OrvaneMLRecordValue : public OrvaneMLRecordObject {
 public:
  void SetValueAsString(const char* text);
  const char* GetValueAsString() const { return m_Value.c_str(); }

  std::string m_Value;
};

class QUILLON_API OrvaneMLRecordValueList : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordValueList() override;
  void AddValue(OrvaneMLRecordValue* value);

  std::vector<OrvaneMLRecordValue*> m_Values;
};

// A condition under which a value holds: an identifier and its value text.
class QUILLON_API OrvaneMLRecordParameterFixed : public OrvaneMLRecordObject {
 public:
  const char* GetIDref() const { return m_IDref.c_str(); }
  void SetIDref(const char* idref);
  const char* GetValue() const { return m_Value.c_str(); }
  void SetValue(const char* value);

  std::string m_IDref;
  std::string m_Value;
};

// Conditions that hold together.  The phase post-processing of an import
// writes these into the document; a loaded database keeps them.
class QUILLON_API OrvaneMLRecordParameterFixedGroup : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordParameterFixedGroup() override;
  void AddParameterFixed(OrvaneMLRecordParameterFixed* parameter);
  void AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group);

  std::vector<OrvaneMLRecordParameterFixed*> m_ParameterFixed;
  std::vector<OrvaneMLRecordParameterFixedGroup*> m_ParameterFixedGroups;
};

// An axis holds one value list.  A second AddValueList pours its values into
// the list already held, so no value is lost and the axis stays single.
class QUILLON_API OrvaneMLRecordDataAxis : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordDataAxis() override;
  void AddValueList(OrvaneMLRecordValueList* list);

  OrvaneMLRecordValueList* m_ValueList = nullptr;
};

class QUILLON_API OrvaneMLRecordParameterAxis : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordParameterAxis() override;
  const char* GetIDref() const { return m_IDref.c_str(); }
  void SetIDref(const char* idref);
  void AddValueList(OrvaneMLRecordValueList* list);

  std::string m_IDref;
  OrvaneMLRecordValueList* m_ValueList = nullptr;
};

class QUILLON_API OrvaneMLRecordCurveInfo : public OrvaneMLRecordObject {
 public:
  void SetScaleXAsString(const char* text);
  const char* GetScaleXAsString() const { return m_ScaleX.c_str(); }

  std::string m_ScaleX;
};

class QUILLON_API OrvaneMLRecordCurve : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordCurve() override;
  void SetLabel(const char* label);
  const char* GetLabel() const { return m_Label.c_str(); }
  // Replaces (and frees) the curve info held before.
  void SetCurveInfo(OrvaneMLRecordCurveInfo* info);
  void AddDataAxis(OrvaneMLRecordDataAxis* axis);
  void AddParameterAxis(OrvaneMLRecordParameterAxis* axis);
  void AddParameterFixed(OrvaneMLRecordParameterFixed* parameter);
  void AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group);

  std::string m_Label;
  OrvaneMLRecordCurveInfo* m_CurveInfo = nullptr;  // null if none; owned
  std::vector<OrvaneMLRecordDataAxis*> m_DataAxes;
  std::vector<OrvaneMLRecordParameterAxis*> m_ParameterAxes;
  std::vector<OrvaneMLRecordParameterFixed*> m_ParameterFixed;
  std::vector<OrvaneMLRecordParameterFixedGroup*> m_ParameterFixedGroups;
};

class QUILLON_API OrvaneMLRecordConstant : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordConstant() override;
  void SetValueAsString(const char* text);
  const char* GetValueAsString() const { return m_Value.c_str(); }
  // A constant may stand without a value (an "Initial hardness" line without
  // a number makes one); that differs from an empty value.
  bool HasValue() const { return m_HasValue; }
  void AddParameterFixed(OrvaneMLRecordParameterFixed* parameter);
  void AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group);

  std::string m_Value;
  bool m_HasValue = false;
  std::vector<OrvaneMLRecordParameterFixed*> m_ParameterFixed;
  std::vector<OrvaneMLRecordParameterFixedGroup*> m_ParameterFixedGroups;
};

class QUILLON_API OrvaneMLRecordFloat : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordFloat() override;
  void AddCurve(OrvaneMLRecordCurve* curve);
  void AddConstant(OrvaneMLRecordConstant* constant);
  void AddLookupMetadata(OrvaneMLRecordLookupMetadata* metadata) override;
  // Takes the functions over (the caller's vector is emptied) in place of
  // those held before.
  void SetLocalFunction(std::vector<OrvaneMLRecordLocalFunction*>& functions) override;

  std::vector<OrvaneMLRecordCurve*> m_Curves;
  std::vector<OrvaneMLRecordConstant*> m_Constants;
  std::vector<OrvaneMLRecordLookupMetadata*> m_LookupMetadata;
  std::vector<OrvaneMLRecordLocalFunction*> m_LocalFunctions;
};

class QUILLON_API OrvaneMLRecordFloatItem : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordFloatItem() override;
  void AddConstant(OrvaneMLRecordConstant* constant);

  std::vector<OrvaneMLRecordConstant*> m_Constants;
};

class QUILLON_API OrvaneMLRecordFloatList : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordFloatList() override;
  void AddFloatItem(OrvaneMLRecordFloatItem* item);
  void AddParameterFixed(OrvaneMLRecordParameterFixed* parameter);
  void AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group);

  std::vector<OrvaneMLRecordFloatItem*> m_FloatItems;
  std::vector<OrvaneMLRecordParameterFixed*> m_ParameterFixed;
  std::vector<OrvaneMLRecordParameterFixedGroup*> m_ParameterFixedGroups;
};

class QUILLON_API OrvaneMLRecordString : public OrvaneMLRecordObject {
 public:
  const char* GetValue() const { return m_Value.c_str(); }
  void SetValue(const char* value);

  std::string m_Value;
};

class QUILLON_API OrvaneMLRecordInteger : public OrvaneMLRecordObject {
 public:
  void SetValue(int value) { m_Value = value; }
  int GetValue() const { return m_Value; }

  int m_Value = 0;
};

// A reference from a dataset to the table (dataset id) that holds its data.
class QUILLON_API OrvaneMLRecordLink : public OrvaneMLRecordObject {
 public:
  const char* GetDatasetIDref() const { return m_DatasetIDref.c_str(); }
  void SetDatasetIDref(const char* id);

  std::string m_DatasetIDref;
};

// One parameter of a material: its identifier (IDref), the table id it
// carries (DatasetID, as text), links to tables, and at most one value of each
// kind.  Callers set the value pointers themselves; the dataset frees what
// they point to when it goes.  Replacing a pointer leaves the old value to the
// caller.
class QUILLON_API OrvaneMLRecordDataset : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordDataset() override;
  const char* GetIDref() const { return m_IDref.c_str(); }
  void SetIDref(const char* idref);
  const char* GetDatasetID() const { return m_DatasetID.c_str(); }
  void SetDatasetID(const char* id);
  void AddLink(OrvaneMLRecordLink* link);
  void AddParameterFixedGroup(OrvaneMLRecordParameterFixedGroup* group);

  // True once a model or a dataset list has taken the dataset over.  A
  // dataset has one owner: a second owner's Add leaves it where it is.
  bool IsAttached() const { return m_Attached; }

  std::string m_IDref;
  std::string m_DatasetID;
  std::vector<OrvaneMLRecordLink*> m_Links;
  OrvaneMLRecordFloat* m_Float = nullptr;
  OrvaneMLRecordString* m_String = nullptr;
  OrvaneMLRecordFloatList* m_FloatList = nullptr;
  OrvaneMLRecordInteger* m_Integer = nullptr;
  std::vector<OrvaneMLRecordParameterFixedGroup*> m_ParameterFixedGroups;

 private:
  friend class OrvaneMLRecordMatModel;
  friend class OrvaneMLRecordDatasets;
  bool m_Attached = false;
};

// A list of datasets that owns them: the datasets of a material that belong
// to no model (table data, for the most part).
class QUILLON_API OrvaneMLRecordDatasets : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordDatasets() override;
  // Takes the dataset over, unless it is null or already has an owner.
  virtual void AddDataset(OrvaneMLRecordDataset* dataset);
  std::vector<OrvaneMLRecordDataset*>& GetDataset() { return m_Datasets; }

  std::vector<OrvaneMLRecordDataset*> m_Datasets;

 protected:
  // Lists a dataset without taking it over; for lists that only look at
  // datasets owned elsewhere.
  void ListWithoutOwning(OrvaneMLRecordDataset* dataset);
  // Takes the dataset over and marks it so; what AddDataset does when the
  // list owns its entries.
  void Own(OrvaneMLRecordDataset* dataset);
  bool m_OwnsDatasets = true;
};

class OrvaneMLRecordSubModels;

// A model of a material, such as "Mechanical_Weld", told apart from its
// siblings of the same IDref by its instance id.
class QUILLON_API OrvaneMLRecordMatModel : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordMatModel() override;
  const char* GetIDref() const { return m_IDref.c_str(); }
  void SetIDref(const char* idref);
  const char* GetInstanceID() const { return m_InstanceID.c_str(); }
  void SetInstanceID(const char* id);
  // Takes the dataset over, unless it is null or already has an owner.
  void AddDataset(OrvaneMLRecordDataset* dataset);
  // The sub-models record, made on first use.
  OrvaneMLRecordSubModels* GetOrCreateSubModels();

  std::string m_IDref;
  std::string m_InstanceID;
  std::vector<OrvaneMLRecordDataset*> m_Datasets;
  OrvaneMLRecordSubModels* m_SubModels = nullptr;  // null if none; owned
};

// The child models of a model.  Callers append to m_Models directly; the
// record owns what the list holds.
class QUILLON_API OrvaneMLRecordSubModels : public OrvaneMLRecordObject {
 public:
  ~OrvaneMLRecordSubModels() override;
  void AddModel(OrvaneMLRecordMatModel* model);

  std::vector<OrvaneMLRecordMatModel*> m_Models;
};

class QUILLON_API OrvaneMLRecordMetadata : public OrvaneMLRecordObject {
 public:
  void SetName(const char* name);
  const char* GetName() const { return m_Name.c_str(); }
  void SetOwnerName(const char* name);
  const char* GetOwnerName() const { return m_OwnerName.c_str(); }

  std::string m_Name;
  std::string m_OwnerName;
};

// A material: its identifier, metadata, models, and the datasets that belong
// to no model.
class QUILLON_API OrvaneMLRecordMaterial : public OrvaneMLRecordObject {
 public:
  OrvaneMLRecordMaterial();
  explicit OrvaneMLRecordMaterial(const char* id);
  ~OrvaneMLRecordMaterial() override;
  const char* GetID() const { return m_ID.c_str(); }
  void SetID(const char* id);
  void AddMetadata(OrvaneMLRecordMetadata* metadata);
  void AddModel(OrvaneMLRecordMatModel* model);

  std::string m_ID;
  std::vector<OrvaneMLRecordMetadata*> m_Metadata;
  std::vector<OrvaneMLRecordMatModel*> m_Models;
  OrvaneMLRecordDatasets* m_Datasets;  // never null; owned
};

// A folder of materials.  It lists materials but doesn't own them: the
// database owns every material, so that a material can move between folders
// ("Class" sections name the folder after the material exists).
class QUILLON_API OrvaneMLRecordMaterials : public OrvaneMLRecordObject {
 public:
  OrvaneMLRecordMaterials() = default;
  explicit OrvaneMLRecordMaterials(const char* name);
  const char* GetName() const { return m_Name.c_str(); }
  void SetName(const char* name);
  // Lists the material once; a material already listed stays where it is.
  void AddMaterial(OrvaneMLRecordMaterial* material);
  void RemoveMaterial(OrvaneMLRecordMaterial* material);
  bool Holds(const OrvaneMLRecordMaterial* material) const;

  std::string m_Name;
  std::vector<OrvaneMLRecordMaterial*> m_Materials;
};
