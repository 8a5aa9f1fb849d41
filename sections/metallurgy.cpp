#include "sections/metallurgy.h"

#include <cstdlib>

#include "sections/materiaux.h"

namespace {

const char* const kHeaderFieldNames[] = {"MatKW", "NumMat", "PhaseKW", "NumPhase"};
const unsigned kHeaderFieldTypes[] = {5, 1, 5, 1};
const char* const kVarLineFields[] = {"DataStr"};

const LineStep kMetallurgy = {LineRead::SplitHeld, false, " ", nullptr, "Metallurgy",
                              FieldList{kHeaderFieldNames, kHeaderFieldTypes, 4}, nullptr, 0, nullptr, true};
// Only the start of a line counts: "TABLES :" ends the block too.
const LineStep kVarLineData = {LineRead::Words, false, " ", "REACTION,TABLE,TABLES,END", "VarLineData",
                               TextFields(kVarLineFields), nullptr, 0, nullptr, false};

}  // namespace

Metallurgy::Metallurgy(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Metallurgy::~Metallurgy() = default;

unsigned Metallurgy::importMetallurgy() {
  const int phases = readMetallurgy();
  // Without phases no variable line is read and the word count would never
  // change again: the section is left.
  if (phases == 0) return 0;
  do {
    readVarLineData();
    readSplitLineData();
  } while (numWords != 0);
  return 0;
}

int Metallurgy::readMetallurgy() {
  runLineStep(kMetallurgy, &lastLine);
  if (numWords == 0 && dataLine->isFlagOn(DataLine::kEndFlagBit)) return 0;
  return numWords >= 4 ? std::atoi(words[3]) : 0;
}

void Metallurgy::readVarLineData() { runLineStep(kVarLineData, &lastLine); }
void Metallurgy::readSplitLineData() { runLineStep(SplitLineDataStep()); }

unsigned runMetallurgyImport(DataLine* dataLine, ImportObject* importObject) {
  Metallurgy reader(dataLine, importObject);
  return reader.importMetallurgy();
}
