#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>
#include <vector>

#include "core/importobject.h"
#include "core/keywords.h"
#include "import/cardsetimport.h"
#include "import/converters.h"
#include "import/phasehelpers.h"
#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// No more phases than this are read from a "Phases:" list.
constexpr int kMaxListedPhases = 6;

bool Equal(const std::string& a, const char* b) { return a == b; }

// Pieces of a word cut at blanks, as the store's splitter gives them.
std::vector<std::string> SplitAtBlanks(const char* text) {
  char parts[OrvaneGeneric::kSplitMaxRows][128];
  const int count = OrvaneGeneric::SplitIntoWords(text, ' ', parts);
  return std::vector<std::string>(parts, parts + count);
}

// A float value with one constant, the form of every phase share and hardness.
OrvaneMLRecordFloat* NewFloatWithConstant(OrvaneMLRecordConstant*& constant) {
  OrvaneMLRecordFloat* value = new OrvaneMLRecordFloat();
  constant = new OrvaneMLRecordConstant();
  value->AddConstant(constant);
  return value;
}

void SetFloat(OrvaneMLRecordDataset* dataset, OrvaneMLRecordFloat* value) {
  delete dataset->m_Float;
  dataset->m_Float = value;
}

void SetString(OrvaneMLRecordDataset* dataset, const char* text) {
  OrvaneMLRecordString* value = new OrvaneMLRecordString();
  value->SetValue(text);
  delete dataset->m_String;
  dataset->m_String = value;
}

// The phase name dataset of phase `id`, unless the phase has a name already.
void NamePhase(const char* id, const std::string& name) {
  if (HasPhaseName(id)) return;
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset("PHASE", "IDref", true, nullptr, id);
  if (dataset == nullptr) return;
  dataset->SetDatasetID(id);
  SetString(dataset, name.c_str());
}

// "Ferrite 165": the hardness goes to the phase found by name or description;
// the number is the first word that reads as one, so a name of two words works.
void StoreHardness(char** words, unsigned numWords) {
  OrvaneMLRecordMatModel* model = FindPhaseModel(words[0]);
  if (model == nullptr) return;
  OrvaneMLRecordDataset* dataset = new OrvaneMLRecordDataset();
  dataset->SetIDref("Initial_hardness");
  OrvaneMLRecordConstant* constant = nullptr;
  OrvaneMLRecordFloat* value = NewFloatWithConstant(constant);
  for (unsigned i = 1; i < numWords; ++i) {
    if (OrvaneGeneric::IsValidNumber(words[i])) {
      constant->SetValueAsString(words[i]);
      break;
    }
  }
  dataset->m_Float = value;
  model->AddDataset(dataset);
}

// A line of "Phases:" or "Phases": description (list only) and name of each
// phase number of the line.
void NamePhases(char** words, unsigned m, ImportObject* importObject) {
  const std::string& keyword = importObject->getKeyword();
  const bool list = Equal(keyword, "Phases:");
  const char* idref = list ? "Phase_description" : "PHASE";

  // The text is resolved in a buffer of its own: on a line of one word it is
  // also the phase number, which must survive.
  char text[kWordCapacity];
  OverwriteWord(text, words[m - 1]);

  // A list numbers its phases by the order of its lines, whatever the file says.
  if (list) {
    if (std::atoi(words[0]) != CardsetImport::m_CurrentPhaseIndex)
      OverwriteWord(words[0], std::to_string(CardsetImport::m_CurrentPhaseIndex).c_str());
    ++CardsetImport::m_CurrentPhaseIndex;
  }

  unsigned numbers = m < 2 ? 1 : m - 1;
  std::string name;
  for (unsigned position = 0; position < numbers; ++position) {
    const char* id = words[position];
    if (ResolvePhaseDescription(id, text, idref, &name) == 1) continue;
    EnsurePhaseDetailsModel(words, &numbers, position, importObject, list);
    if (list) {
      OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(idref, "IDref", true, nullptr, nullptr);
      if (dataset != nullptr) {
        dataset->SetDatasetID(id);
        SetString(dataset, text);
      }
    }
    GetPhaseName(id, text, name);
    NamePhase(id, name);
  }
}

// "1 : 0.35": the starting share of a phase; an empty share is 0.
void StoreProportion(char** words, unsigned* numWords, ImportObject* importObject, int knownPhases) {
  const bool wire = strcasecmp(importObject->getKeyword().c_str(), "Initial phases proportions if wire") == 0;
  const char* idref = wire ? "Phase_Info_if_wire" : "Phase_Info";

  EnsurePhaseDetailsModel(words, numWords, 0, importObject, false);
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(idref, "IDref", true, nullptr, words[0]);
  OrvaneMLRecordConstant* constant = nullptr;
  OrvaneMLRecordFloat* value = NewFloatWithConstant(constant);
  if (words[1][0] == '\0') OverwriteWord(words[1], "0");
  constant->SetValueAsString(words[1]);
  if (dataset != nullptr)
    SetFloat(dataset, value);
  else
    delete value;

  // Without a phase list the proportions are what names the phases.
  if (!wire && knownPhases == 0 && !HasPhaseName(words[0])) {
    std::string name;
    GetPhaseName(words[0], "", name);
    NamePhase(words[0], name);
  }
}

}  // namespace

void ConvertPhaseLine(char** words, unsigned* numWords, int /*context*/, ImportObject* importObject) {
  if (*numWords == 0) return;
  std::string& keyword = importObject->getKeyword();

  if (strcasecmp(keyword.c_str(), "Initial hardness") == 0) {
    StoreHardness(words, *numWords);
    return;
  }

  std::vector<std::string> descriptions;
  const int count = GetPhaseLists(descriptions, nullptr);
  // The list that meets the limit ends its section on this line.
  if (Equal(keyword, "Phases:") && count >= kMaxListedPhases) {
    *numWords = 0;
    return;
  }
  // "Phases" only names the phases of a material that has none yet.
  if (Equal(keyword, "Phases") && count >= 1) return;

  if (!OrvaneGeneric::IsValidNumber(words[0])) {
    if (strncasecmp(words[0], "Phase", 5) == 0 && *numWords == 2) {
      const std::vector<std::string> parts = SplitAtBlanks(words[0]);
      if (parts.size() == 2) OverwriteWord(words[0], parts[1].c_str());
    }
    // "1 2: Bainite" in a list: phases sharing a text, which the list form
    // can't hold, so the rest of the section is read as the other form.
    bool sharedText = false;
    if ((Equal(keyword, "Phases") || Equal(keyword, "Phases:")) && *numWords == 2 &&
        SplitAtBlanks(words[0]).size() == 2) {
      sharedText = true;
      keyword = "Phases";
      importObject->getKeywordType() = KeywordTypeTable.at("Phases");
    }
    if (!OrvaneGeneric::IsValidNumber(words[0]) && !sharedText) return;
  }

  unsigned m = *numWords;
  if (*numWords == 2 && std::strchr(words[0], ' ') != nullptr) {
    const std::vector<std::string> parts = SplitAtBlanks(words[0]);
    for (const std::string& part : parts)
      if (!std::isdigit(static_cast<unsigned char>(part[0]))) return;
    const std::string text = words[1];
    const unsigned k = static_cast<unsigned>(parts.size());
    for (unsigned j = 0; j < k; ++j) OverwriteWord(words[j], parts[j].c_str());
    OverwriteWord(words[k], text.c_str());
    m = k + 1;
  }

  if (Equal(keyword, "Phases") || Equal(keyword, "Phases:")) {
    NamePhases(words, m, importObject);
    return;
  }
  if (strcasecmp(keyword.c_str(), "Initial phases proportions if wire") == 0 ||
      strcasecmp(keyword.c_str(), "Initial phases proportions") == 0) {
    StoreProportion(words, numWords, importObject, count);
    return;
  }
}
