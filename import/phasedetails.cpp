// The rework of the finished document at the end of every import.
//
// The converters fill the store line by line, in file order, so the document
// they leave is not yet in the shape a material wants:
//   1. phase models stand in the order of their first use;
//   2. a table may exist twice under one "DatasetID" and "IDref", once with a
//      data axis (a curve) and once without; the two become one dataset whose
//      conditions lie in "ParameterFixedGroup" elements, one group per source;
//   3. a "Thermal_strains" dataset may list several values of each of its two
//      conditions; it becomes one group per combination of values, less the
//      combinations other strain datasets of the material already cover.
//
// The document holds every record of the store, also those loaded from the
// database file and reworked by an earlier import, so each step must leave
// such a record as it finds it.

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "import/cardsetimport.h"
#include "store/dombridge.h"
#include "store/orvaneml.h"

namespace {

constexpr const char* kRecord = "Record";
constexpr const char* kModel = "Model";
constexpr const char* kPhaseModel = "Phase_details_model";
constexpr const char* kDatasets = "Datasets";
constexpr const char* kDataset = "Dataset";
constexpr const char* kDataAxis = "DataAxis";
constexpr const char* kFixed = "ParameterFixed";
constexpr const char* kFixedGroup = "ParameterFixedGroup";
constexpr const char* kValue = "Value";
constexpr const char* kThermalStrains = "Thermal_strains";

// No more condition lists than this are sorted out of one strain dataset;
// only the first two are ever paired.
constexpr std::size_t kMaxConditionLists = 6;

bool HasName(void* node, const char* name) {
  const char* own = DomGetNodeName(node);
  return own != nullptr && std::strcmp(own, name) == 0;
}

// False, leaving `value` alone, when the attribute is absent; an attribute
// that is present but empty reads as "".
bool ReadAttribute(void* node, const char* name, std::string& value) {
  char* text = DomGetAttVal(node, name);
  if (text == nullptr) return false;
  value = text;
  DomStringRelease(text);
  return true;
}

bool AttributeIs(void* node, const char* name, const char* expected) {
  std::string value;
  return ReadAttribute(node, name, value) && value == expected;
}

std::vector<void*> NodesOf(const XMLObject& object) {
  std::vector<void*> nodes;
  for (int i = 0; i < object.GetCount(); ++i) nodes.push_back(object.GetNode(i));
  return nodes;
}

// XMLObject gathers descendants; where one element's own children are meant
// ("the Datasets of a record", "the Dataset elements of that list", "the first
// Value of a condition") anything deeper must not count.
std::vector<void*> ChildrenNamed(void* parent, const char* name) {
  std::vector<void*> children;
  for (void* node : NodesOf(XMLObject(parent, name)))
    if (DomGetParentNode(node) == parent) children.push_back(node);
  return children;
}

// True when `node` stands inside a group somewhere between it and `top`.
bool InsideGroup(void* node, void* top) {
  for (void* at = DomGetParentNode(node); at != nullptr && at != top; at = DomGetParentNode(at))
    if (HasName(at, kFixedGroup)) return true;
  return false;
}

// The text of the first "Value" of a condition.  A condition the store wrote
// always has one; one without reads as empty text.
std::string FirstValueText(void* condition) {
  std::vector<void*> values = ChildrenNamed(condition, kValue);
  if (values.empty()) return std::string();
  char* text = DomGetTextNodeValue(values.front());
  std::string result = text != nullptr ? text : "";
  DomStringRelease(text);
  return result;
}

// The conditions a dataset states on its own: its "ParameterFixed" elements
// wherever they stand below it (curve, constant, float list), but not those
// already inside a "ParameterFixedGroup", which an earlier rework made and
// which must neither be regrouped nor be taken apart.
//
// The grouping step keeps these lists as XMLObjects, which only ever gather
// every element of a name below a node.  So for a dataset that holds groups,
// the top groups are lifted out for the moment of gathering and put back
// under the parent they came from.  Groups are the last children of whatever
// holds them (the store writes them behind the single conditions and the
// rework only appends them), so putting them back at the end restores the
// order of the elements.
XMLObject OwnConditions(void* document, void* dataset) {
  std::vector<void*> topGroups;
  for (void* group : NodesOf(XMLObject(dataset, kFixedGroup)))
    if (!InsideGroup(group, dataset)) topGroups.push_back(group);
  if (topGroups.empty()) return XMLObject(dataset, kFixed);

  std::vector<std::pair<void*, void*>> lifted;  // group, its parent
  for (void* group : topGroups) {
    lifted.emplace_back(group, DomGetParentNode(group));
    DomDeleteElement(group);
  }
  XMLObject own(dataset, kFixed);
  for (const auto& [group, parent] : lifted) DomAppendChild(document, parent, group);
  return own;
}

void* NewGroup(void* document, void* parent) {
  void* group = DomCreateNewElement(document, kFixedGroup);
  DomAppendChild(document, parent, group);
  return group;
}

// Stage 1.  Every phase model of the record goes behind the other children of
// the parent of the first one met, in ascending numeric order of "InstanceID"
// (atoi, so "2" before "10").  Of two with the same number the first one met
// stays; one without "InstanceID" has no place in that order and is dropped.
void OrderPhaseModels(void* document, void* record) {
  void* parent = nullptr;
  bool first = true;
  std::map<int, void*> byNumber;
  // Phase models are sub-models, so every "Model" below the record counts,
  // not only its own children.
  for (void* model : NodesOf(XMLObject(record, kModel))) {
    if (!AttributeIs(model, "IDref", kPhaseModel)) continue;
    if (first) {
      parent = DomGetParentNode(model);
      first = false;
    }
    std::string instance;
    if (ReadAttribute(model, "InstanceID", instance)) byNumber.emplace(std::atoi(instance.c_str()), model);
    DomDeleteElement(model);
  }
  for (const auto& [number, model] : byNumber) DomAppendChild(document, parent, model);
}

// What stage 2 gathers over the datasets of one record.
struct RecordWork {
  std::map<std::string, void*> seenDatasets;
  std::multimap<std::string, std::string> valuePairs;
  std::vector<std::string> paramIDs;
  std::vector<XMLObject> fixedLists;
};

// Two datasets under one key, one with a data axis and one without: the one
// with the axis stays and takes the other's conditions in a group of their
// own.  Two alike (both with an axis, or both without) are different tables
// that only share a key, and both stay.
void MergeDatasets(void* document, void* older, void* newer, const std::string& idref, RecordWork& work) {
  const bool olderHasAxis = XMLObject(older, kDataAxis).GetCount() > 0;
  const bool newerHasAxis = XMLObject(newer, kDataAxis).GetCount() > 0;
  if (olderHasAxis == newerHasAxis) return;
  void* keep = olderHasAxis ? older : newer;
  void* drop = olderHasAxis ? newer : older;

  const std::vector<void*> keepFixed = NodesOf(OwnConditions(document, keep));
  const std::vector<void*> dropFixed = NodesOf(OwnConditions(document, drop));
  if (!dropFixed.empty()) {
    // A kept dataset without conditions of its own takes the group itself.
    void* parent = keepFixed.empty() ? keep : DomGetParentNode(keepFixed.front());
    // Only when both sides state as many conditions do the kept ones move
    // into a group of their own; otherwise they stay single.
    if (keepFixed.size() == dropFixed.size()) {
      void* group = NewGroup(document, parent);
      for (void* condition : keepFixed) {
        DomDeleteElement(condition);
        DomAppendChild(document, group, condition);
      }
    }
    // The first group in document order is never inside another one, so the
    // first descendant of that name is the first of the kept dataset's groups.
    XMLObject groups(keep, kFixedGroup);
    if (groups.GetCount() > 0) parent = DomGetParentNode(groups.GetNode(0));
    void* group = NewGroup(document, parent);
    for (void* condition : dropFixed) DomAppendChild(document, group, DomCloneNodeNew(document, condition, 1));
  }
  // The entry under the long key keeps the dataset first seen, whatever
  // became of it, so a third dataset of that key is compared with that one.
  work.seenDatasets[idref] = keep;
  DomDeleteElement(drop);
}

// A "Thermal_strains" dataset seen for the first time.  The first strain
// datasets name the two conditions; a dataset with exactly those two states
// one combination that is covered, one with more is left for the grouping.
void CollectStrains(void* document, void* dataset, RecordWork& work) {
  XMLObject fixed = OwnConditions(document, dataset);
  const int count = fixed.GetCount();
  if (count == 0) return;

  if (work.paramIDs.size() < 2) {
    for (void* condition : NodesOf(fixed)) {
      std::string id;
      if (!ReadAttribute(condition, "IDref", id)) continue;
      bool known = false;
      for (const std::string& entry : work.paramIDs) known = known || entry == id;
      if (!known) work.paramIDs.push_back(id);
    }
  }
  if (count == 2 && work.paramIDs.size() == 2) {
    work.valuePairs.emplace(FirstValueText(fixed.GetNode(0)), FirstValueText(fixed.GetNode(1)));
  } else if (work.paramIDs.size() == 2 && count > 2) {
    work.fixedLists.push_back(fixed);
  }
}

}  // namespace

void CardsetImport::ProcessDomdocForPhaseDetails(void* document) {
  if (document == nullptr) return;
  void* root = DomGetRootElement(document);
  if (root == nullptr) return;

  for (void* record : NodesOf(XMLObject(root, kRecord))) OrderPhaseModels(document, record);

  for (void* record : NodesOf(XMLObject(root, kRecord))) {
    // The record's own list of datasets, where the table data stands; the
    // datasets of its models are never merged or regrouped.
    std::vector<void*> lists = ChildrenNamed(record, kDatasets);
    if (lists.empty()) continue;

    RecordWork work;
    for (void* dataset : ChildrenNamed(lists.front(), kDataset)) {
      std::string datasetId;
      std::string idref;
      if (!ReadAttribute(dataset, "DatasetID", datasetId) || !ReadAttribute(dataset, "IDref", idref)) continue;
      const std::string key = datasetId + idref;
      auto seen = work.seenDatasets.find(key);
      if (seen == work.seenDatasets.end()) {
        work.seenDatasets.emplace(key, dataset);
        if (idref == kThermalStrains) CollectStrains(document, dataset, work);
      } else {
        MergeDatasets(document, seen->second, dataset, idref, work);
      }
    }
    if (!work.fixedLists.empty()) CreateParamFixedGroup(work.fixedLists, work.valuePairs, work.paramIDs, document);
  }
}

// Each list of conditions of one strain dataset becomes one group per pair of
// a value of the first condition with a value of the second, in that order,
// less the pairs in `valuePairs`; then the single conditions go.  With any
// other number of condition names no pair can be formed and the conditions
// simply go.  Without a document nothing could be built, so nothing is taken
// away either.
void CardsetImport::CreateParamFixedGroup(std::vector<XMLObject> fixedLists,
                                          std::multimap<std::string, std::string> valuePairs,
                                          std::vector<std::string> paramIDs, void* document) {
  if (document == nullptr) return;
  const std::size_t listCount = paramIDs.size() < kMaxConditionLists ? paramIDs.size() : kMaxConditionLists;

  for (const XMLObject& fixed : fixedLists) {
    const std::vector<void*> conditions = NodesOf(fixed);
    std::vector<std::vector<void*>> byName(listCount);
    for (void* condition : conditions) {
      std::string id;
      if (!ReadAttribute(condition, "IDref", id)) continue;
      for (std::size_t k = 0; k < listCount; ++k)
        if (paramIDs[k] == id) byName[k].push_back(condition);
    }

    if (paramIDs.size() == 2 && !conditions.empty()) {
      void* parent = DomGetParentNode(conditions.front());
      for (void* first : byName[0]) {
        const std::string firstText = FirstValueText(first);
        for (void* second : byName[1]) {
          const std::string secondText = FirstValueText(second);
          bool covered = false;
          auto range = valuePairs.equal_range(firstText);
          for (auto pair = range.first; pair != range.second && !covered; ++pair)
            covered = pair->second == secondText;
          if (covered) continue;
          void* group = NewGroup(document, parent);
          DomAppendChild(document, group, DomCloneNodeNew(document, first, 1));
          DomAppendChild(document, group, DomCloneNodeNew(document, second, 1));
        }
      }
    }
    for (void* condition : conditions) DomDeleteElement(condition);
  }
}
