#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "import/cardsetimport.h"
#include "import/converters.h"
#include "import/phasehelpers.h"
#include "import/reactionconverters.h"
#include "import/sectionconverters.h"
#include "store/orvane.h"

namespace {

// The name of phase number `word`: from the link file when it named the
// phase, else from the phase tables; a name the material gives the phase
// itself wins over both.
std::string PhaseName(const char* word) {
  std::string name;
  const auto linked = CardsetImport::m_PhaseIndexNameMap.find(std::atoi(word));
  if (linked != CardsetImport::m_PhaseIndexNameMap.end()) {
    name = linked->second;
  } else {
    char text[kWordCapacity] = {0};
    ResolvePhaseDescription(word, text, "Phase_name", nullptr);
    name = text;
  }
  std::string own;
  OrvaneStaticVars::GetMMAT2020PhaseNameFromIndex(word, own);
  if (!own.empty()) name = own;
  return name;
}

// The state word is the third word when it stands alone; "Cooling K TABLE 7"
// (a line whose state is not spelled as the reader looks for it) is neither.
const char* ThermalPath(const char* word) {
  if (strcasecmp(word, "heating") == 0) return "Heating";
  if (strcasecmp(word, "cooling") == 0) return "Cooling";
  return "Heating and Cooling";
}

// In a martensite line the factor behind the start and rate is the
// Koistinen Marburger one: "FCA" there is stored as "FCAK".  "FCB" keeps its
// name.
void RenameMartensiteFactor(char** words, unsigned count) {
  bool martensite = false;
  for (unsigned i = 0; i < count; ++i) {
    if (strcasecmp(words[i], "ms") == 0 || strcasecmp(words[i], "km") == 0) {
      martensite = true;
    } else if (martensite && std::strcmp(words[i], "FCA") == 0) {
      OverwriteWord(words[i], "FCAK");
      return;
    }
  }
}

}  // namespace

void ConvertReactionDetails(char** words, unsigned* numWords, int context, ImportObject* importObject) {
  if (words == nullptr || numWords == nullptr || *numWords == 0) return;
  // A metallurgy file has no "NOM :" line to name the model.
  if (OrvaneStaticVars::GetActiveModel()[0] == '\0') OrvaneStaticVars::SetActiveModel("Metallurgy_Weld");
  const unsigned count = *numWords;

  if (count >= 3) {
    const std::string parent = PhaseName(words[0]);
    const std::string product = PhaseName(words[1]);
    const char* path = ThermalPath(words[2]);
    OrvaneStaticVars::GetOrCreateDataset("Parent_phase", "IDref", true, parent.c_str(), nullptr);
    OrvaneStaticVars::GetOrCreateDataset("Product_phase", "IDref", true, product.c_str(), nullptr);
    OrvaneStaticVars::GetOrCreateDataset("Thermal_path", "IDref", true, path, nullptr);
  }

  RenameMartensiteFactor(words, count);

  // The details are the last word of each split; a martensite line (13
  // words) has its tables in words of their own.
  if (std::strcmp(words[0], "*") == 0 && count >= 2) {
    ParseReactionTableDetails(words[1]);
  } else if (count == 4) {
    ParseReactionTableDetails(words[3]);
  } else if (count == 3) {
    ParseReactionTableDetails(words[2]);
  }

  ConvertVariableNames(words, numWords, context, importObject);
}
