#include "sections/reaction.h"

#include <cstring>

#include "import/reactionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// The next section's keyword line closes the reactions.
const char kEndKeywords[] = "TABLE,TABLES,TABLES :,GRAIN";

const char* const kLineFields[] = {"DataLine"};
const char* const kContinuedFields[] = {"Star", "TableDetailsStr"};
const char* const kNoStateFields[] = {"PhaseID1", "PhaseID2", "TableDetailsStr"};
const unsigned kNoStateTypes[] = {1, 1, 5};
const char* const kStateFields[] = {"PhaseID1", "PhaseID2", "State", "TableDetailsStr"};
const unsigned kStateTypes[] = {1, 1, 5, 5};
const char* const kMartensiteFields[] = {"PhaseID1", "PhaseID2", "State", "MS",     "MSValue", "KM",      "KMValue",
                                         "FCA",      "TABLE1",   "TABLEID1", "FCB", "TABLE2",  "TABLEID2"};
const unsigned kMartensiteTypes[] = {1, 1, 5, 5, 5, 5, 5, 5, 5, 1, 5, 5, 1};

// Words of a martensite line: start temperature and rate as values, the two
// factors as links to their tables.
constexpr unsigned kMsWord = 3;
constexpr unsigned kKmWord = 5;
constexpr unsigned kFcaWord = 7;
constexpr unsigned kFcaTableWord = 9;
constexpr unsigned kFcbWord = 10;
constexpr unsigned kFcbTableWord = 12;

void StoreMartensite(ImportBase& reader) {
  char** words = reader.words;
  for (unsigned key : {kMsWord, kKmWord}) {
    OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(words[key], "IDref", false, nullptr, nullptr);
    OrvaneStaticVars::CreateDatasetBasedOnType(words[key + 1], dataset, 0);
  }
  const unsigned factors[][2] = {{kFcaWord, kFcaTableWord}, {kFcbWord, kFcbTableWord}};
  for (const auto& factor : factors) {
    OrvaneMLRecordDataset* dataset =
        OrvaneStaticVars::GetOrCreateDataset(words[factor[0]], "IDref", false, nullptr, nullptr);
    if (dataset == nullptr) continue;
    OrvaneMLRecordLink* link = new OrvaneMLRecordLink();
    link->SetDatasetIDref(words[factor[1]]);
    dataset->AddLink(link);
    OrvaneStaticVars::AddDataset(dataset, words[factor[1]]);
  }
}

// The whole line in word 0; its converter makes the reaction definition.
const LineStep kDataLine = {LineRead::Words, false, " ", kEndKeywords, "REACTIONDataLine",
                            TextFields(kLineFields), ConvertReactionLine, 0, nullptr, false};

// The splits of the held line; the last word takes the rest of the line.
const LineStep kContinued = {LineRead::SplitHeld, false, " ", nullptr, "ContinuedREACTIONDetails",
                             TextFields(kContinuedFields), ConvertReactionDetails, 0, nullptr, true};
const LineStep kNoState = {LineRead::SplitHeld, false, " ", nullptr, "REACTIONDetailsWithNoState",
                           FieldList{kNoStateFields, kNoStateTypes, 3}, ConvertReactionDetails, 0, nullptr, true};
const LineStep kWithState = {LineRead::SplitHeld, false, " ", nullptr, "REACTIONDetails",
                             FieldList{kStateFields, kStateTypes, 4}, ConvertReactionDetails, 0, nullptr, true};
const LineStep kMartensite = {LineRead::SplitHeld, false, " ", nullptr, "MSKMDetails",
                              FieldList{kMartensiteFields, kMartensiteTypes, 13}, ConvertReactionDetails, 0,
                              StoreMartensite, true};

bool Holds(const char* line, const char* text) { return std::strstr(line, text) != nullptr; }

}  // namespace

ReactionLineKind ClassifyReactionLine(const char* line) {
  if (line == nullptr) return ReactionLineKind::NoState;
  if (line[0] == '*') return ReactionLineKind::Continued;
  const bool state =
      Holds(line, "heating") || Holds(line, "HEATING") || Holds(line, "cooling") || Holds(line, "COOLING");
  if (!state) return ReactionLineKind::NoState;
  if (Holds(line, "MS") || Holds(line, "ms") || Holds(line, "KM") || Holds(line, "km"))
    return ReactionLineKind::Martensite;
  return ReactionLineKind::WithState;
}

Reaction::Reaction(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Reaction::~Reaction() = default;

unsigned Reaction::importReaction() {
  for (;;) {
    readREACTIONDataLine();
    if (numWords == 0) break;
    switch (ClassifyReactionLine(lastLine.c_str())) {
      case ReactionLineKind::Continued: readContinuedREACTIONDetails(); break;
      case ReactionLineKind::NoState: readREACTIONDetailsWithNoState(); break;
      case ReactionLineKind::WithState: readREACTIONDetails(); break;
      case ReactionLineKind::Martensite: readMSKMDetails(); break;
    }
  }
  return 0;
}

void Reaction::readREACTIONDataLine() { runLineStep(kDataLine, &lastLine); }
void Reaction::readContinuedREACTIONDetails() { runLineStep(kContinued); }
void Reaction::readREACTIONDetails() { runLineStep(kWithState); }
void Reaction::readREACTIONDetailsWithNoState() { runLineStep(kNoState); }
void Reaction::readMSKMDetails() { runLineStep(kMartensite); }

unsigned runReactionImport(DataLine* dataLine, ImportObject* importObject) {
  Reaction reader(dataLine, importObject);
  return reader.importReaction();
}
