// The export side of the facade.  The export road is not built yet, so these
// answer "nothing" in the forms the export readers accept: no card, no
// parameter list, an empty identifier map.  docs/store.md tells how they will
// answer from the stored records and the mapping.

#include <string>

#include "store/orvane.h"
#include "store/storestate.h"

using quillon::State;

bool OrvaneStaticVars::InitExport(const char* mappingFile) {
  if (mappingFile == nullptr || mappingFile[0] == '\0') return false;
  std::string error;
  return State().exportMapping.LoadFile(mappingFile, error);
}

void OrvaneStaticVars::SetActiveMatName(const char* id) { State().activeMaterialName = id != nullptr ? id : ""; }

const char* OrvaneStaticVars::GetActiveMatName() { return State().activeMaterialName.c_str(); }

void OrvaneStaticVars::ClearCopyOfActiveMaterialProperties() {}

void OrvaneStaticVars::NextCard(std::string& /*keyword*/, unsigned& count, const char** /*names*/,
                                const char** /*defaults*/, char*** /*values*/) {
  count = 0;
}

OrvaneParamArray* OrvaneStaticVars::GetValidParameters(const char* /*keyword*/) { return nullptr; }

std::map<std::string, std::string>& OrvaneStaticVars::GetOrvaneMLCardsetIDMap() { return State().cardsetIDMap; }

const char* OrvaneStaticVars::GetChoiceFromOrvaneML(OrvaneParameter* parameter) {
  if (parameter == nullptr) return "";
  // The card file writes a choice by its code where the mapping gives one.
  quillon::StoreState& state = State();
  const quillon::Mapping& mapping = state.exportMapping.Parameters().empty() ? state.mapping : state.exportMapping;
  const quillon::MappingParameter* row = mapping.FindByID(parameter->ID());
  if (row != nullptr) {
    for (const quillon::MappingChoice& choice : row->choices) {
      if (choice.name == parameter->SelectedChoice()) return choice.cardCode.c_str();
    }
  }
  return parameter->SelectedChoice();
}
