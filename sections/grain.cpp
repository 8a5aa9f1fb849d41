#include "sections/grain.h"

#include "import/sectionconverters.h"
#include "store/orvane.h"

namespace {

const char* const kFieldNames[] = {"GRAINKeyWord", "Tmin",  "TMINValue", "Q",     "QValue",         "POWER",
                                   "POWERValue",   "C",     "CValue",    "GrainPhaseName", "GrainPhaseIndex"};
// The card keeps the whole number of the exponent and of the phase index; the
// store gets the words as written.
const unsigned kFieldTypes[] = {5, 5, 5, 5, 5, 5, 1, 5, 5, 5, 1};

// The words at the odd positions are the dataset words themselves, whatever
// they read, each followed by its value.
void StorePairs(ImportBase& reader) {
  for (unsigned word = 1; word < 11; word += 2) {
    OrvaneMLRecordDataset* dataset =
        OrvaneStaticVars::GetOrCreateDataset(reader.words[word], "IDref", false, nullptr, nullptr);
    OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[word + 1], dataset, 0);
  }
}

// Eleven fields; the last takes the rest of the line.  The renaming runs
// first, so "C" reaches card and store as "GRAINC".
const LineStep kGrainDetails = {LineRead::SplitHeld, false, " ", nullptr, "GRAINDetails",
                                FieldList{kFieldNames, kFieldTypes, 11}, ConvertVariableNames, 7, StorePairs, true};

}  // namespace

Grain::Grain(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Grain::~Grain() = default;

// The section is its keyword line: nothing further is read.
unsigned Grain::importGrain() {
  readGRAINDetails();
  return 0;
}

void Grain::readGRAINDetails() { runLineStep(kGrainDetails); }

unsigned runGrainImport(DataLine* dataLine, ImportObject* importObject) {
  Grain reader(dataLine, importObject);
  reader.readGRAINDetails();
  return 0;
}
