#include <string>
#include <strings.h>

#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// Solutions that keep the phase count of a material as a dataset of its own.
constexpr int64_t kPhaseCountFlags = 0x500000;

bool SolutionKeepsPhaseCount() {
  OrvaneConfig* config = Orvane::_ApplnGetOrvaneConfigPtr();
  if (config == nullptr) return false;
  std::string text;
  Orvane* orvane = Orvane::_ApplnGetOrvanePtr(config->GetActiveSolution(), text);
  return orvane != nullptr && orvane->CheckIOFlag(kPhaseCountFlags) != 0;
}

// A count given by the phase details of the material wins over the card file's.
bool PhaseCountKnown() {
  OrvaneMLRecordMatModel* model = OrvaneStaticVars::FindModelByID("PhaseDetails");
  if (model == nullptr) return false;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
    if (dataset != nullptr && std::string(dataset->GetIDref()) == "Number of Phases") return true;
  return false;
}

}  // namespace

void ConvertPhaseCount(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  if (*numWords < 2) return;
  if (!SolutionKeepsPhaseCount()) return;
  if (PhaseCountKnown()) return;
  if (strcasecmp(words[0], "PHASE") == 0)
    OrvaneStaticVars::GetOrCreateDataset("PHAS", "IDref", true, words[1], nullptr);
}
