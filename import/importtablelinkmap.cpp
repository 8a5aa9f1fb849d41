// Which tables a list of tables links to, and which phases the tables of a
// family of curves serve.

#include <cstdlib>
#include <map>
#include <vector>

#include "import/cardsetimport.h"
#include "import/phasehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

void GetDatasetLinkMap(OrvaneMLRecordDataset* dataset, std::map<int, std::vector<int>>& map) {
  if (dataset == nullptr) return;
  for (OrvaneMLRecordDataset* other : OrvaneStaticVars::GetDatasetsPtr()->GetDataset()) {
    if (other == nullptr || other->m_IDref != dataset->m_IDref || other->m_Links.empty()) continue;
    const int key = std::atoi(other->m_DatasetID.c_str());
    if (map.count(key) != 0) continue;
    std::vector<int>& links = map[key];
    for (OrvaneMLRecordLink* link : other->m_Links) links.push_back(std::atoi(link->m_DatasetIDref.c_str()));
  }
}

namespace {

// Appends `index` to the phases of table `tableId`.
void GivePhase(int tableId, int index) { CardsetImport::m_PhaseIndexIDrefMap[tableId].push_back(index); }

}  // namespace

void BuildPhaseIndexIDrefMap(OrvaneMLRecordDataset* dataset) {
  if (!CardsetImport::m_PhaseIndexIDrefMap.empty()) return;
  std::map<int, std::vector<int>> links;
  GetDatasetLinkMap(dataset, links);
  std::vector<std::string> descriptions;
  const int phaseCount = GetPhaseLists(descriptions, nullptr);
  int index = 1;

  if (links.size() == 1) {
    const std::vector<int>& tables = links.begin()->second;
    if (tables.size() == 1) {
      GivePhase(tables[0], index++);
    } else if (tables.size() == 2) {
      GivePhase(tables[0], index++);
      // Two tables: the first phase and the last one, unless the running
      // index has come that far already.
      GivePhase(tables[1], index >= phaseCount - 1 ? index : phaseCount);
    }
    return;
  }

  // A list whose table is itself a list: the inner list gives the phases.
  for (const auto& entry : links) {
    for (int table : entry.second) {
      auto inner = links.find(table);
      if (inner == links.end()) continue;
      for (int phaseTable : inner->second) GivePhase(phaseTable, index++);
      if (entry.second.size() == 2) GivePhase(entry.second[1], index);
      return;
    }
  }
}
