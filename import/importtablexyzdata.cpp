// Triples of a metallurgy table of type 2: parameter value, data value and
// enthalpy change, appended to the three axes of the table's curve.  A line
// end may cut a triple; the lengths of the axes tell where the next word
// belongs.

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/orvaneml.h"

namespace {

const char kEnthalpyAxis[] = "EnthalpyChange";

OrvaneMLRecordParameterAxis* NewParameterAxis(const char* idref) {
  auto* axis = new OrvaneMLRecordParameterAxis;
  if (idref != nullptr) axis->SetIDref(idref);
  axis->AddValueList(new OrvaneMLRecordValueList);
  return axis;
}

const char* DependentAxisOf(const OrvaneMLRecordDataset& dataset, std::vector<std::string>& conditions) {
  return Orvane::GetDependentParamID(dataset.m_IDref.c_str(), conditions, nullptr, 1);
}

}  // namespace

void ImportTableXYZData(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  const unsigned n = *numWords;
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetCurrentDataset();
  if (n == 0 || dataset == nullptr) return;

  dataset = tables::TableDataTarget(dataset);
  if (dataset == nullptr) return;

  std::map<int, std::vector<int>> lists;
  GetDatasetLinkMap(dataset, lists);

  OrvaneMLRecordCurve* curve = nullptr;
  std::vector<std::string> conditions;
  if (dataset->m_Float == nullptr) {
    curve = new OrvaneMLRecordCurve;
    curve->SetLabel(("Curve" + (dataset->m_DatasetID.empty() && !dataset->m_Links.empty()
                                    ? dataset->m_Links.front()->m_DatasetIDref
                                    : dataset->m_DatasetID))
                        .c_str());
    auto* values = new OrvaneMLRecordFloat;
    values->AddCurve(curve);
    dataset->m_Float = values;
    const char* axis = DependentAxisOf(*dataset, conditions);
    if (!conditions.empty()) {
      const int tableId = std::atoi(dataset->m_DatasetID.c_str());
      for (const auto& list : lists) {
        for (size_t k = 0; k < list.second.size(); ++k)
          if (list.second[k] == tableId)
            AddCurveFixedParameter("Selected_Phases", curve, tables::PhaseName(static_cast<int>(k + 1)).c_str());
      }
    }
    curve->AddDataAxis(new OrvaneMLRecordDataAxis);
    curve->AddParameterAxis(NewParameterAxis(axis));
    curve->AddParameterAxis(NewParameterAxis(kEnthalpyAxis));
  } else {
    curve = dataset->m_Float->m_Curves.front();
    if (curve->m_DataAxes.empty()) curve->AddDataAxis(new OrvaneMLRecordDataAxis);
    if (curve->m_ParameterAxes.empty()) curve->AddParameterAxis(NewParameterAxis(DependentAxisOf(*dataset, conditions)));
    if (curve->m_ParameterAxes.size() == 1) curve->AddParameterAxis(NewParameterAxis(kEnthalpyAxis));
  }

  OrvaneMLRecordValueList* first = tables::ValuesOf(curve->m_ParameterAxes[0]);
  OrvaneMLRecordValueList* data = tables::ValuesOf(curve->m_DataAxes.front());
  OrvaneMLRecordValueList* enthalpy = tables::ValuesOf(curve->m_ParameterAxes[1]);
  const size_t stored = first->m_Values.size() + data->m_Values.size() + enthalpy->m_Values.size();
  for (unsigned i = 0; i < n; ++i) {
    tables::StarToExponent(words[i]);
    OrvaneMLRecordValueList* target[3] = {first, data, enthalpy};
    tables::AppendValue(target[(i + stored) % 3], words[i]);
  }
}
