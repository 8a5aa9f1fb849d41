// Pairs of a parameter value (the X axis, usually temperature) and a data
// value, appended to the first curve of the table's dataset.  A table may run
// over several lines, and a line end may cut a pair: the lengths of the two
// axes tell where the next word belongs.

#include <strings.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "core/card.h"
#include "core/importobject.h"
#include "import/cardsetimport.h"
#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/orvaneml.h"

namespace {

// The scale of X that a type 9 table gave on its details card, the section's
// last card when the values come.
std::string ScaleFromLastCard(ImportObject* section) {
  if (section == nullptr || section->getCardList().empty()) return std::string();
  Card* last = section->getCardList().back();
  if (last == nullptr || last->findField("XScaleFactor") == nullptr) return std::string();
  return last->stringValue("XScaleFactor");
}

OrvaneMLRecordParameterAxis* NewParameterAxis(const char* idref) {
  auto* axis = new OrvaneMLRecordParameterAxis;
  if (idref != nullptr) axis->SetIDref(idref);
  axis->AddValueList(new OrvaneMLRecordValueList);
  return axis;
}

OrvaneMLRecordDataAxis* NewDataAxis() {
  auto* axis = new OrvaneMLRecordDataAxis;
  axis->AddValueList(new OrvaneMLRecordValueList);
  return axis;
}

std::string CurveLabel(const OrvaneMLRecordDataset& dataset) {
  if (!dataset.m_DatasetID.empty()) return "Curve" + dataset.m_DatasetID;
  if (!dataset.m_Links.empty()) return "Curve" + dataset.m_Links.front()->m_DatasetIDref;
  return "Curve";
}

// A new curve for a dataset without values: its axes, its label, the phases
// of the lists that name the table, and the scale of X.
OrvaneMLRecordCurve* NewCurve(OrvaneMLRecordDataset* dataset, const std::map<int, std::vector<int>>& lists,
                              ImportObject* section) {
  auto* curve = new OrvaneMLRecordCurve;
  curve->SetLabel(CurveLabel(*dataset).c_str());
  curve->AddDataAxis(NewDataAxis());
  std::vector<std::string> conditions;
  std::string axisText;
  const char* axis = Orvane::GetDependentParamID(dataset->m_IDref.c_str(), conditions, &axisText, 1);
  curve->AddParameterAxis(NewParameterAxis(axis != nullptr ? axisText.c_str() : nullptr));
  if (!conditions.empty()) {
    const int tableId = std::atoi(dataset->m_DatasetID.c_str());
    for (const auto& list : lists) {
      for (size_t k = 0; k < list.second.size(); ++k) {
        if (list.second[k] != tableId) continue;
        AddCurveFixedParameter("Selected_Phases", curve, tables::PhaseName(static_cast<int>(k + 1)).c_str());
      }
    }
  }
  const std::string scale = ScaleFromLastCard(section);
  if (!scale.empty()) {
    auto* info = new OrvaneMLRecordCurveInfo;
    info->SetScaleXAsString(scale.c_str());
    curve->SetCurveInfo(info);
  }
  auto* values = new OrvaneMLRecordFloat;
  values->AddCurve(curve);
  dataset->m_Float = values;
  return curve;
}

}  // namespace

void ImportTableCurveData(char** words, unsigned* numWords, int /*context*/, ImportObject* importObject) {
  const unsigned n = *numWords;
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetCurrentDataset();
  if (n == 0 || dataset == nullptr) return;

  // Creep models are read only under the mechanical model.
  if (strcasecmp(OrvaneStaticVars::GetActiveModel(), "mechanical") != 0) CardsetImport::m_CreepFlag = 0;
  dataset = tables::TableDataTarget(dataset);
  if (dataset == nullptr) return;

  std::map<int, std::vector<int>> lists;
  GetDatasetLinkMap(dataset, lists);

  bool newAxis = false;
  OrvaneMLRecordCurve* curve = nullptr;
  if (dataset->m_Float == nullptr) {
    curve = NewCurve(dataset, lists, importObject);
    newAxis = true;
  } else {
    curve = dataset->m_Float->m_Curves.front();
    if (curve->m_DataAxes.empty()) {
      curve->AddDataAxis(NewDataAxis());
      newAxis = true;
    }
    if (curve->m_ParameterAxes.empty()) {
      std::vector<std::string> conditions;
      curve->AddParameterAxis(
          NewParameterAxis(Orvane::GetDependentParamID(dataset->m_IDref.c_str(), conditions, nullptr, 0)));
      newAxis = true;
    }
  }

  OrvaneMLRecordValueList* parameters = tables::ValuesOf(curve->m_ParameterAxes.front());
  OrvaneMLRecordValueList* data = tables::ValuesOf(curve->m_DataAxes.front());
  const size_t stored = parameters->m_Values.size() + data->m_Values.size();

  // The first word completes a pair that the last line end cut.
  const bool completesPair = !(n % 2 == 0 && stored % 2 == 0) && !newAxis && stored % 2 == 1;
  for (unsigned i = 0; i < n; ++i) {
    tables::StarToExponent(words[i]);
    const bool toData = completesPair ? (i % 2 == 0) : (i % 2 == 1);
    tables::AppendValue(toData ? data : parameters, words[i]);
  }
}
