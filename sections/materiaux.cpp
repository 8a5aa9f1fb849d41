#include "sections/materiaux.h"

#include <cstdlib>

#include "import/sectionconverters.h"

namespace {

const char* const kMetallurgyFields[] = {"MetallurgyWord"};
const char* const kPhaseFieldNames[] = {"PhaseWord", "NumPhase"};
const unsigned kPhaseFieldTypes[] = {5, 1};
const char* const kVarLineFields[] = {"DataStr"};
const char* const kSplitFields[] = {"DataValueStr"};

const LineStep kMetallurgy = {LineRead::Words, false, " ", "REACTION,FIN MATERIAUX,FIN NOM", "Metallurgy",
                              TextFields(kMetallurgyFields), nullptr, 0, nullptr, false};
const LineStep kPhase = {LineRead::Words, false, " ", "REACTION,FIN MATERIAUX", "Phase",
                         FieldList{kPhaseFieldNames, kPhaseFieldTypes, 2}, ConvertPhaseCount, 0, nullptr, false};
const LineStep kVarLineData = {LineRead::Words, false, " ", "REACTION,FIN MATERIAUX", "VarLineData",
                               TextFields(kVarLineFields), nullptr, 0, nullptr, false};

// One field declared, every word of the line stored: the card gets a
// "DataValueStr" field per word.
const LineStep kSplitLineData = {LineRead::SplitHeld, true, "=() ", nullptr, "SplitLineData",
                                 TextFields(kSplitFields), ConvertVariableLine, 0, nullptr, true};

}  // namespace

const LineStep& SplitLineDataStep() { return kSplitLineData; }

Materiaux::Materiaux(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Materiaux::~Materiaux() = default;

unsigned Materiaux::importMateriaux() {
  readMetallurgy();
  const int phases = readPhase();
  // Without phases no variable line is read and the word count would never
  // change again: the section is left.
  if (phases == 0) return 0;
  do {
    readVarLineData();
    readSplitLineData();
  } while (numWords != 0);
  return 0;
}

void Materiaux::readMetallurgy() { runLineStep(kMetallurgy, &lastLine); }

int Materiaux::readPhase() {
  runLineStep(kPhase, &lastLine);
  if (numWords == 0 && dataLine->isFlagOn(DataLine::kEndFlagBit)) return 0;
  return numWords >= 2 ? std::atoi(words[1]) : 0;
}

void Materiaux::readVarLineData() { runLineStep(kVarLineData, &lastLine); }
void Materiaux::readSplitLineData() { runLineStep(kSplitLineData); }

unsigned runMateriauxImport(DataLine* dataLine, ImportObject* importObject) {
  Materiaux reader(dataLine, importObject);
  return reader.importMateriaux();
}
