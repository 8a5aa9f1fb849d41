#include <strings.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "import/reactionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

bool Holds(const char* line, const char* text) { return std::strstr(line, text) != nullptr; }

// A string dataset made straight in the definition: the store's model list
// still points at the definition before this one while the line is converted.
void AddString(OrvaneMLRecordMatModel* definition, const char* idref, const char* value) {
  OrvaneMLRecordDataset* dataset = new OrvaneMLRecordDataset();
  dataset->SetIDref(idref);
  dataset->m_String = new OrvaneMLRecordString();
  dataset->m_String->SetValue(value);
  definition->AddDataset(dataset);
}

// The count of reactions stands in the model itself, beside the definitions.
void SetReactionCount(OrvaneMLRecordMatModel* model, int count) {
  OrvaneMLRecordDataset* dataset = nullptr;
  for (OrvaneMLRecordDataset* candidate : model->m_Datasets) {
    if (candidate != nullptr && std::strcmp(candidate->GetIDref(), "Number of Reactions") == 0) {
      dataset = candidate;
      break;
    }
  }
  if (dataset == nullptr) {
    dataset = new OrvaneMLRecordDataset();
    dataset->SetIDref("Number of Reactions");
    model->AddDataset(dataset);
  }
  if (dataset->m_Integer == nullptr) dataset->m_Integer = new OrvaneMLRecordInteger();
  dataset->m_Integer->SetValue(count);
}

OrvaneMLRecordMatModel* LastDefinition(OrvaneMLRecordSubModels* children, const char* definitionName) {
  for (auto it = children->m_Models.rbegin(); it != children->m_Models.rend(); ++it) {
    if (*it != nullptr && std::strcmp((*it)->GetIDref(), definitionName) == 0) return *it;
  }
  return nullptr;
}

int CountDefinitions(OrvaneMLRecordSubModels* children, const char* definitionName) {
  int count = 0;
  for (OrvaneMLRecordMatModel* child : children->m_Models) {
    if (child != nullptr && std::strcmp(child->GetIDref(), definitionName) == 0) ++count;
  }
  return count;
}

OrvaneMLRecordMatModel* NewDefinition(OrvaneMLRecordMatModel* model, OrvaneMLRecordSubModels* children,
                                      const char* definitionName, const char* line) {
  const int count = CountDefinitions(children, definitionName);
  char instance[16];
  std::snprintf(instance, sizeof instance, "%d", count + 1);
  OrvaneMLRecordMatModel* definition = new OrvaneMLRecordMatModel();
  definition->SetIDref(definitionName);
  definition->SetInstanceID(instance);
  OrvaneStaticVars::SetInstanceID(instance);
  children->AddModel(definition);
  SetReactionCount(model, count + 1);

  // The kinetic model shows in the line itself: a martensite start and rate
  // mean the Koistinen Marburger law, anything else the KJMA law, whose
  // isothermal parameters are an equilibrium and a delay or a rate and an
  // exponent.
  if (Holds(line, "MS") || Holds(line, "KM") || Holds(line, "ms") || Holds(line, "km")) {
    AddString(definition, "Reaction_model", "Koistinen Marburger");
  } else {
    AddString(definition, "Reaction_model", "KJMA");
    const bool equilibrium =
        Holds(line, "PEQ") || Holds(line, "TAU") || Holds(line, "peq") || Holds(line, "tau");
    AddString(definition, "Isothermal_parameters", equilibrium ? "PEQ,TAU" : "K,KP");
  }
  return definition;
}

// The store finds a reaction's datasets through its model list: the
// definition in hand takes the place of the one before.
void MakeDefinitionCurrent(OrvaneMLRecordMatModel* definition, const char* definitionName) {
  std::vector<OrvaneMLRecordMatModel*>& models = OrvaneStaticVars::GetMatModelList();
  for (OrvaneMLRecordMatModel*& entry : models) {
    if (entry != nullptr && std::strcmp(entry->GetIDref(), definitionName) == 0) {
      entry = definition;
      return;
    }
  }
  models.push_back(definition);
}

}  // namespace

void ConvertReactionLine(char** words, unsigned* numWords, int, ImportObject*) {
  // A reaction section cut off by the end of the file ends on an empty line,
  // which is no reaction.
  if (words == nullptr || numWords == nullptr || *numWords == 0) return;
  const char* line = words[0];

  const bool tempering = strcasecmp(OrvaneStaticVars::GetActiveModel(), "tempering") == 0;
  const char* modelName = tempering ? "Tempering_Weld" : "Metallurgy_Weld";
  const char* definitionName = tempering ? "TemperReactionModel" : "ReactionDefinition";

  OrvaneMLRecordMatModel* model = OrvaneStaticVars::GetOrCreateMatModel(modelName, false);
  if (model == nullptr) return;
  OrvaneMLRecordSubModels* children = model->GetOrCreateSubModels();

  // A "*" line goes on with the reaction of the line before.
  OrvaneMLRecordMatModel* definition = line[0] == '*' ? LastDefinition(children, definitionName) : nullptr;
  if (definition == nullptr) definition = NewDefinition(model, children, definitionName, line);
  MakeDefinitionCurrent(definition, definitionName);
}
