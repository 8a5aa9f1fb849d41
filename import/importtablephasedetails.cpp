// A list of tables, one a phase ("id / -&r1& -&r2& ..."): each word is the
// table of the next phase.  For thermal strains the phase tables are made at
// once, with their phase and strain directions as conditions; for a creep
// model (a first word 21 or 31 on the creep dataset) the tables are those of
// the model's parameters, each under its own identifier.

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

const char kCreepDataset[] = "CreepLogHardeningCoefficient";
const char kThermalStrains[] = "Thermal_strains";

// The parameters of the two creep models, in the order of their tables.
const char* const kCreep21Names[] = {"CreepHardeningCoefficientK", "CreepHardeningExponentM",
                                     "CreepSensitivityExponentN"};
const char* const kCreep31Names[] = {"CreepLogHardeningCoefficient", "CreepSensitivityExponent", "CreepH",
                                     "CreepLogC", "CreepConstantP"};

bool Is(const std::string& text, const char* other) { return text == other; }

// The child model of "Mechanical_Weld" that holds the creep dataset.
OrvaneMLRecordMatModel* FindCreepModel() {
  OrvaneMLRecordMatModel* mechanical = OrvaneStaticVars::GetOrCreateMatModel("Mechanical_Weld", false);
  if (mechanical == nullptr || mechanical->m_SubModels == nullptr) return nullptr;
  for (OrvaneMLRecordMatModel* child : mechanical->m_SubModels->m_Models) {
    if (child == nullptr) continue;
    for (OrvaneMLRecordDataset* dataset : child->m_Datasets)
      if (dataset != nullptr && Is(dataset->m_IDref, kCreepDataset)) return child;
  }
  return nullptr;
}

// The strain directions (LX, LY, LZ) whose label lines name this table.
std::string StrainTypeOf(const std::string& tableId) {
  std::string type;
  for (const auto& direction : OrvaneStaticVars::GetLXLYLZMap()) {
    bool named = false;
    for (const std::string& id : direction.second) named = named || id == tableId;
    if (!named) continue;
    if (!type.empty()) type += ",";
    type += direction.first;
  }
  return type;
}

void NamePhase(OrvaneMLRecordCurve* curve, int phase, const std::string& strainType) {
  AddCurveFixedParameter("Selected_Phases", curve, tables::PhaseName(phase).c_str());
  if (!strainType.empty()) AddCurveFixedParameter("StrainType", curve, strainType.c_str());
}

}  // namespace

void ImportTablePhaseDetails(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  const unsigned n = *numWords;
  OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
  if (n == 0 || current == nullptr) return;

  CardsetImport::m_CreepFlag = 0;
  int phase = 1;
  std::string datasetTag = "CREEP";
  OrvaneMLRecordMatModel* creepModel = FindCreepModel();
  const char* const* names = kCreep31Names;
  unsigned nameCount = 5;
  unsigned nameIndex = 0;

  std::string strainType;
  if (Is(current->m_IDref, kThermalStrains)) strainType = StrainTypeOf(current->m_DatasetID);

  for (unsigned i = 0; i < n; ++i) {
    const char* word = words[i];
    if (std::strcmp(word, "31") == 0 && Is(current->m_IDref, kCreepDataset)) {
      CardsetImport::m_CreepFlag = 31;
      names = kCreep31Names;
      nameCount = 5;
      if (creepModel != nullptr) creepModel->SetIDref("CreepRuptureModel");
      continue;
    }
    if (std::strcmp(word, "21") == 0 && Is(current->m_IDref, kCreepDataset)) {
      CardsetImport::m_CreepFlag = 21;
      names = kCreep21Names;
      nameCount = 3;
      // The model's code stands first; further along the list has no name of
      // its own, and the datasets keep theirs.
      const std::string tableId = current->m_DatasetID;
      OrvaneMLRecordDataset* found = OrvaneStaticVars::FindDataset(tableId.c_str(), nullptr);
      if (i < nameCount) {
        current->SetIDref(names[i]);
        if (found != nullptr) found->SetIDref(names[i]);
      }
      if (found != nullptr) current = found;
      if (creepModel != nullptr) creepModel->SetIDref("CreepRuptureModel21");
      datasetTag = "CREEP21";
      continue;
    }

    if (CardsetImport::m_CreepFlag == 0 || nameIndex == 0) {
      tables::AddLinkTo(current, word);
    } else if (nameIndex < nameCount) {
      // Each creep parameter after the first has a dataset of its own in the
      // creep model, which links to its table.
      OrvaneMLRecordDataset* parameter =
          OrvaneStaticVars::GetOrCreateDataset(datasetTag.c_str(), "IDref", true, nullptr, nullptr);
      if (parameter != nullptr) {
        parameter->SetIDref(names[nameIndex]);
        tables::AddLinkTo(parameter, word);
      }
    }

    OrvaneMLRecordDataset* found = OrvaneStaticVars::FindDataset(word, current->m_IDref.c_str());
    if (found != nullptr && CardsetImport::m_CreepFlag == 0 && found->m_Float != nullptr &&
        !found->m_Float->m_Curves.empty()) {
      NamePhase(found->m_Float->m_Curves.front(), phase, strainType);
      ++phase;
      continue;
    }

    auto* table = new OrvaneMLRecordDataset;
    if (CardsetImport::m_CreepFlag != 0 && nameIndex < nameCount) {
      table->SetIDref(names[nameIndex]);
      ++nameIndex;
    } else {
      table->SetIDref(current->m_IDref.c_str());
    }
    table->SetDatasetID(word);
    OrvaneStaticVars::GetDatasetsPtr()->AddDataset(table);
    OrvaneStaticVars::AddDataset(table, word);
    if (Is(current->m_IDref, kThermalStrains)) {
      auto* curve = new OrvaneMLRecordCurve;
      curve->SetLabel((std::string("Curve") + word).c_str());
      NamePhase(curve, phase, strainType);
      auto* value = new OrvaneMLRecordFloat;
      value->AddCurve(curve);
      table->m_Float = value;
      ++phase;
    }
  }
}
