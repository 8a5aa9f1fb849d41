// "id / c1 [c2 [c3]]": the constants of a coefficient table.  The first one
// the store takes as the table's first value; the others follow it in the
// float list, which then names the kind of each value and the phases the
// table serves.

#include <map>
#include <string>
#include <vector>

#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// Table id text to the name of the phase it serves; made anew from each
// dataset with links on the way.
std::multimap<std::string, std::string> tablePhases;

bool TakesConstants(const std::string& idref) {
  return idref == "Yield_Carbon_Coeff" || idref == "Strain_Carbon_Coeff" || idref == "TABLE" || idref == "Gama" ||
         idref == "Penalty_Coefficient";
}

// "Carbon" for the first table of a list, "Nitrogen" for the second of two.
std::string ElementOf(const OrvaneMLRecordDataset& list, const std::string& tableId) {
  if (list.m_Links.empty()) return std::string();
  if (list.m_Links.front()->m_DatasetIDref == tableId) return "Carbon";
  return list.m_Links.size() == 2 ? "Nitrogen" : std::string();
}

void AppendConstant(OrvaneMLRecordFloatList* list, const char* text) {
  auto* constant = new OrvaneMLRecordConstant;
  constant->SetValueAsString(text);
  auto* item = new OrvaneMLRecordFloatItem;
  item->AddConstant(constant);
  list->AddFloatItem(item);
}

}  // namespace

void ImportTableConstants(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
  if (*numWords == 0 || current == nullptr) return;
  const std::string idref = current->m_IDref;
  if (!TakesConstants(idref)) return;

  const bool penalty = idref == "Penalty_Coefficient";
  const char* typeId = penalty ? "PenaltyConstTypes" : "ConstTypes";
  const char* const valueNames[3] = {penalty ? "Initial penalty coefficient" : "Const1",
                                     penalty ? "Minimal penetration" : "Const2",
                                     penalty ? "Maximum penetration" : nullptr};

  OrvaneStaticVars::CreateDatasetBasedOnType(words[0], current, 1);

  std::vector<OrvaneMLRecordDataset*> collected;
  for (OrvaneMLRecordDataset* dataset : OrvaneStaticVars::GetDatasetsPtr()->GetDataset())
    if (dataset != nullptr && dataset->m_IDref == idref) collected.push_back(dataset);

  bool gama = false;
  for (OrvaneMLRecordDataset* dataset : collected) {
    if (!dataset->m_Links.empty()) {
      tablePhases.clear();
      for (size_t k = 0; k < dataset->m_Links.size(); ++k) {
        const std::string name = tables::PhaseName(static_cast<int>(k + 1));
        if (!name.empty()) tablePhases.emplace(dataset->m_Links[k]->m_DatasetIDref, name);
      }
      if (idref == "Gama") gama = true;
    }

    // Only the table of this line takes the line's constants.
    if (dataset->m_DatasetID != current->m_DatasetID || dataset->m_FloatList == nullptr) continue;
    OrvaneMLRecordFloatList* list = dataset->m_FloatList;
    if (gama) {
      const std::string element = ElementOf(*collected.front(), dataset->m_DatasetID);
      if (!element.empty()) list->AddParameterFixed(tables::NewFixedParameter("Element_name", element.c_str()));
    }
    if (list->m_FloatItems.empty() || list->m_FloatItems.front()->m_Constants.empty()) continue;

    AppendConstant(list, words[1]);
    if (valueNames[2] != nullptr) AppendConstant(list, words[2]);
    if (!tablePhases.empty() && idref != "Gama") {
      auto range = tablePhases.equal_range(dataset->m_DatasetID);
      for (auto entry = range.first; entry != range.second; ++entry)
        list->AddParameterFixed(tables::NewFixedParameter("Selected_Phases", entry->second.c_str()));
    }
    for (const char* name : valueNames)
      if (name != nullptr) list->AddParameterFixed(tables::NewFixedParameter(typeId, name));
  }
}
