// "id / T 8 c1 c2 c3": three coefficients of a conductivity or diffusion
// table.  The X table of the line gets them, and datasets of the Y and Z
// identifiers are made beside it, so each direction has its own copy; in a
// diffusion model the element comes from the position of the table in its
// list (first: carbon, second of two: nitrogen).

#include <strings.h>

#include <string>

#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// The first dataset of the same identifier that lists this table.
OrvaneMLRecordDataset* FindListOf(const OrvaneMLRecordDataset& table) {
  for (OrvaneMLRecordDataset* dataset : OrvaneStaticVars::GetDatasetsPtr()->GetDataset()) {
    if (dataset == nullptr || dataset->m_IDref != table.m_IDref) continue;
    for (OrvaneMLRecordLink* link : dataset->m_Links)
      if (link != nullptr && link->m_DatasetIDref == table.m_DatasetID) return dataset;
  }
  return nullptr;
}

OrvaneMLRecordDataset* NewDataset(const char* idref, const std::string& tableId) {
  auto* dataset = new OrvaneMLRecordDataset;
  dataset->SetIDref(idref);
  dataset->SetDatasetID(tableId.c_str());
  return dataset;
}

// A copy of the list for another direction: its links, its table id, the
// direction's identifier.
void CopyListFor(const OrvaneMLRecordDataset* list, const char* idref) {
  if (list == nullptr) return;
  OrvaneMLRecordDataset* copy = NewDataset(idref, list->m_DatasetID);
  for (OrvaneMLRecordLink* link : list->m_Links) tables::AddLinkTo(copy, link->m_DatasetIDref.c_str());
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(copy);
}

// The table of this line for another direction, with the first coefficient.
OrvaneMLRecordDataset* MakeDirection(const char* idref, const std::string& tableId, const char* first) {
  OrvaneMLRecordDataset* dataset = NewDataset(idref, tableId);
  OrvaneStaticVars::CreateDatasetBasedOnType(first, dataset, 1);
  OrvaneStaticVars::GetDatasetsPtr()->AddDataset(dataset);
  return dataset;
}

}  // namespace

void AddDiffusionCoefficient(const char* value, OrvaneMLRecordDataset* dataset, bool elementSwitch) {
  if (dataset == nullptr || dataset->m_FloatList == nullptr) return;
  OrvaneMLRecordFloatList* list = dataset->m_FloatList;
  if (elementSwitch) {
    list->AddParameterFixed(tables::NewFixedParameter("Element_name", value));
    return;
  }
  auto* constant = new OrvaneMLRecordConstant;
  constant->SetValueAsString(value);
  auto* item = new OrvaneMLRecordFloatItem;
  item->AddConstant(constant);
  list->AddFloatItem(item);
  if (list->m_ParameterFixed.empty()) {
    list->AddParameterFixed(tables::NewFixedParameter("DiffCoeffs", "Coeff1"));
    list->AddParameterFixed(tables::NewFixedParameter("DiffCoeffs", "Coeff2"));
    list->AddParameterFixed(tables::NewFixedParameter("DiffCoeffs", "Coeff3"));
  }
}

void ImportTableCoefficients(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  const unsigned n = *numWords;
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
  if (n == 0 || current == nullptr) return;

  OrvaneMLRecordDataset* list = FindListOf(*current);
  OrvaneStaticVars::CreateDatasetBasedOnType(words[0], current, 1);

  const bool diffusion = strcasecmp(OrvaneStaticVars::GetActiveModel(), "diffusion") == 0;
  const char* yIDref = diffusion ? "DiffusionCoefficientY" : "Thermal_conductivity_weld_Y";
  const char* zIDref = diffusion ? "DiffusionCoefficientZ" : "Thermal_conductivity_weld_Z";
  const std::string tableId = current->m_DatasetID;

  OrvaneMLRecordDataset* y = nullptr;
  OrvaneMLRecordDataset* z = nullptr;
  if (n >= 2) {
    AddDiffusionCoefficient(words[1], current, false);
    CopyListFor(list, yIDref);
    y = MakeDirection(yIDref, tableId, words[0]);
    AddDiffusionCoefficient(words[1], y, false);
  }
  if (n >= 3) {
    AddDiffusionCoefficient(words[2], current, false);
    AddDiffusionCoefficient(words[2], y, false);
    CopyListFor(list, zIDref);
    z = MakeDirection(zIDref, tableId, words[0]);
    AddDiffusionCoefficient(words[1], z, false);
    AddDiffusionCoefficient(words[2], z, false);
  }

  if (!diffusion || list == nullptr || list->m_Links.empty()) return;
  std::string element;
  if (list->m_Links.front()->m_DatasetIDref == tableId)
    element = "Carbon";
  else if (list->m_Links.size() == 2)
    element = "Nitrogen";
  if (element.empty()) return;
  AddDiffusionCoefficient(element.c_str(), current, true);
  AddDiffusionCoefficient(element.c_str(), y, true);
  AddDiffusionCoefficient(element.c_str(), z, true);
}
