#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>

#include "core/card.h"
#include "core/importobject.h"
#include "import/converters.h"
#include "import/phasehelpers.h"
#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// Every "STATUS" line of the process gets a number of its own; the count goes
// on across materials and imports.
int statusCounter = 50000;

// The texts of the hardening models, by the number a "MODEL n" line gives.
const char* const kModelTexts[] = {"Perfect plasticity", "Kinematic", "Isotropic", "Non-linear kinematic",
                                   "Combined"};

// What steers the renaming of one line.
struct LineContext {
  std::string keyword;
  std::string model;
  bool hasLastString = false;
  std::string lastString;  // the "StrValue" of the section's last card: in "LABELS :" the line itself

  bool KeywordIs(const char* text) const { return keyword == text; }
  bool LabelsOrMateriaux() const { return KeywordIs("LABELS :") || KeywordIs("MATERIAUX :"); }
  // Model names compare without case, except where a rule asks for the exact spelling.
  bool ModelIs(const char* text) const { return strcasecmp(model.c_str(), text) == 0; }
  bool ModelEquals(const char* text) const { return model == text; }
  bool Mechanical() const { return ModelIs("mechanical") || ModelIs("mechanical_phases"); }
  bool LastStringHasTableRef() const { return hasLastString && lastString.find("-&") != std::string::npos; }
};

bool Named(const char* word, const char* name) { return strcasecmp(word, name) == 0; }

std::vector<OrvaneMLRecordMatModel*>* SubModelsOf(const char* modelId) {
  OrvaneMLRecordMatModel* model = OrvaneStaticVars::FindModelByID(modelId);
  if (model == nullptr || model->m_SubModels == nullptr) return nullptr;
  return &model->m_SubModels->m_Models;
}

// A mechanical model that constrains stiffness gives KY its spring meaning.
bool HasConstraintStiffness() {
  std::vector<OrvaneMLRecordMatModel*>* models = SubModelsOf("Mechanical_Weld");
  if (models == nullptr) return false;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (model == nullptr || std::strcmp(model->GetIDref(), "SpecialPropertyModel") != 0) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
      if (dataset != nullptr && std::strcmp(dataset->GetIDref(), "ConstraintStiffness") == 0) return true;
  }
  return false;
}

// KY as a conductivity: the material's conductivity becomes the X one of an
// orthotropic pair.
void MakeConductivityOrthotropic() {
  std::vector<OrvaneMLRecordMatModel*>* models = SubModelsOf("Thermal_Weld");
  if (models == nullptr) return;
  for (OrvaneMLRecordMatModel* model : *models) {
    if (model == nullptr || std::strcmp(model->GetIDref(), "ThermalPropertyModel") != 0) continue;
    for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
      if (dataset != nullptr && std::strcmp(dataset->GetIDref(), "Thermal_conductivity_weld") == 0) {
        dataset->SetIDref("Thermal_conductivity_weld_X");
        return;
      }
    }
    return;
  }
}

bool HasReducedIntegration() {
  std::vector<OrvaneMLRecordMatModel*>* models = SubModelsOf("Thermal_Weld");
  if (models == nullptr) return false;
  for (OrvaneMLRecordMatModel* model : *models)
    if (model != nullptr && std::strcmp(model->GetIDref(), "ReducedIntegration") == 0) return true;
  return false;
}

// E is a link to a table ("E") only on a reference line of a material that is
// no slide plane or transition; otherwise it is the modulus "EX".
const char* RenameE(const LineContext& line) {
  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetCurrentMaterial();
  const std::string name = material != nullptr ? material->GetID() : "";
  if (name.find("SLIDEPLANE_NOFRICTION") != std::string::npos ||
      name.find("SLIDEPLANE_WITHFRICTION") != std::string::npos || name.find("Trans") != std::string::npos ||
      !line.LastStringHasTableRef())
    return "EX";
  return nullptr;
}

// The new text of word `i`, or null when it stays.
const char* RenameWord(char** words, unsigned numWords, unsigned i, const LineContext& line) {
  const char* word = words[i];

  if (Named(word, "RHO")) {
    if (line.ModelIs("mechanical") && line.KeywordIs("LABELS :")) return "MECHRHO";
    return nullptr;
  }
  if (Named(word, "C")) {
    if (line.LabelsOrMateriaux()) return "CX";
    if (line.keyword.compare(0, 5, "GRAIN") == 0) return "GRAINC";
    if (line.KeywordIs("CHIMIE :") && line.ModelIs("diffusion")) return "CHIMIEC";
    return nullptr;
  }
  if (Named(word, "KY")) {
    if (!line.LabelsOrMateriaux()) return nullptr;
    if (line.Mechanical()) return line.LastStringHasTableRef() || HasConstraintStiffness() ? "KSY" : nullptr;
    if (line.ModelEquals("diffusion")) return "DY";
    if (OrvaneStaticVars::FindDatasetByIDref("Youngs_modulus_weld") != nullptr) return nullptr;
    MakeConductivityOrthotropic();
    return "KYX";
  }
  if (Named(word, "KX")) {
    if (!line.LabelsOrMateriaux()) return nullptr;
    if (line.Mechanical()) return "KSX";
    if (line.ModelIs("diffusion")) return "DX";
    return HasReducedIntegration() ? "KXX" : nullptr;
  }
  if (Named(word, "E")) return RenameE(line);
  if (Named(word, "K")) return "KT";
  if (Named(word, "F")) return "FX";
  if (Named(word, "N")) {
    if (line.KeywordIs("CHIMIE :") && line.ModelEquals("diffusion")) return "CHIMIEN";
    return "NX";
  }
  const bool lx = Named(word, "LX");
  if (lx || std::strcmp(word, "LY") == 0 || std::strcmp(word, "LZ") == 0) {
    // A thermal strain direction is kept only as a reference to a table, and
    // never when it is commented out.
    bool keep = true;
    if (lx && line.hasLastString) keep = line.LastStringHasTableRef();
    if (!keep || (i + 1 < numWords && words[i + 1][0] == '$')) return "IG";
    OrvaneStaticVars::AddLXLYLZDataset(words[0], words[1]);
    return nullptr;
  }
  if (Named(word, "KZ")) {
    if (line.Mechanical()) return "KSZ";
    if (line.ModelEquals("diffusion")) return "DZ";
    return nullptr;
  }
  return nullptr;
}

}  // namespace

int GetStatusCounter() { return statusCounter; }

void ConvertVariableNames(char** words, unsigned* numWords, int /*context*/, ImportObject* importObject) {
  if (*numWords == 0) return;

  if (std::strcmp(words[0], "STATUS") == 0) {
    OverwriteWord(words[1], std::to_string(statusCounter).c_str());
    ++statusCounter;
  }

  FixFictivePhaseName();

  if (Named(words[0], "MODEL") && *numWords == 2) {
    const int number = std::atoi(words[1]);
    if (number >= 1 && number <= 5) OverwriteWord(words[1], kModelTexts[number - 1]);
    return;
  }

  LineContext line;
  line.keyword = importObject->getKeyword();
  const char* model = OrvaneStaticVars::GetActiveModel();
  line.model = model != nullptr ? model : "";
  std::vector<Card*>& cards = importObject->getCardList();
  if (!cards.empty() && cards.back() != nullptr && cards.back()->findField("StrValue") != nullptr) {
    line.hasLastString = true;
    line.lastString = cards.back()->stringValue("StrValue");
  }

  for (unsigned i = 0; i < *numWords; ++i) {
    const char* renamed = RenameWord(words, *numWords, i, line);
    if (renamed != nullptr) OverwriteWord(words[i], renamed);
  }
}
