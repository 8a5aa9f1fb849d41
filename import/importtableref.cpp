// "id / T 7 n p1 &r1& p2 &r2& ...": a family of curves, one table per value
// of a second parameter (the temperature).  Each referenced table gets its
// dataset and curve here, with the temperature and the phases of the family
// as conditions; its values come with its own table line.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

void ImportTableRef(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  const unsigned n = *numWords;
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
  if (n == 0 || current == nullptr) return;

  BuildPhaseIndexIDrefMap(current);
  std::vector<int> phases;
  auto found = CardsetImport::m_PhaseIndexIDrefMap.find(std::atoi(current->m_DatasetID.c_str()));
  if (found != CardsetImport::m_PhaseIndexIDrefMap.end()) phases = found->second;

  // A value left without its table id at the end of the line has no curve.
  for (unsigned i = 0; i + 1 < n; i += 2) {
    char* value = words[i];
    const char* tableId = words[i + 1];
    tables::StarToExponent(value);
    tables::AddLinkTo(current, tableId);

    auto* table = new OrvaneMLRecordDataset;
    table->SetIDref(current->m_IDref.c_str());
    table->SetDatasetID(tableId);
    OrvaneStaticVars::GetDatasetsPtr()->AddDataset(table);
    OrvaneStaticVars::AddDataset(table, tableId);

    auto* curve = new OrvaneMLRecordCurve;
    curve->SetLabel((std::string("Curve") + tableId).c_str());
    char temperature[64];
    std::snprintf(temperature, sizeof temperature, "%10.6e", std::atof(value));
    curve->AddParameterFixed(tables::NewFixedParameter("TEMP", temperature));
    for (int phase : phases)
      curve->AddParameterFixed(tables::NewFixedParameter("Selected_Phases", tables::PhaseName(phase).c_str()));
    auto* values = new OrvaneMLRecordFloat;
    values->AddCurve(curve);
    table->m_Float = values;
  }
}
