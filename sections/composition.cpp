#include "sections/composition.h"

#include "store/orvane.h"

namespace {

// The section also ends where the phase list of the same comment block begins,
// so a composition without its closing keyword still ends.
const char kEndKeywords[] = "EndComposition,FIN COMMENTAIRES,Phases,Phases:";

const char* const kElementsLineFields[] = {"DataLineStr"};
const char* const kSplitFields[] = {"PercentStr", "ElementDataStr"};
const char* const kElementFields[] = {"Element", "Value"};

// "%C 0.20": the element is a dataset of the material, the value its text.
void StoreElement(ImportBase& reader) {
  OrvaneMLRecordDataset* dataset =
      OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[1], dataset, 0);
}

const LineStep kElementsLine = {LineRead::Words, false, " ", kEndKeywords, "ElementsLine",
                                TextFields(kElementsLineFields), nullptr, 0, nullptr, false};

// The "%" goes; what stands behind it stays whole for the next split, so this
// step leaves the held line alone.
const LineStep kElementDetailsSplit = {LineRead::SplitHeld, false, "%", nullptr, "ElementDetailsSplit",
                                       TextFields(kSplitFields), nullptr, 0, nullptr, false};

// The held line is emptied after the card: the element line is done with.
const LineStep kElementDetails = {LineRead::SplitHeld, true, " \t", nullptr, "ElementDetails",
                                  TextFields(kElementFields), nullptr, 0, StoreElement, true};

bool IsElementLine(const std::string& line) { return !line.empty() && line[0] == '%'; }

}  // namespace

Composition::Composition(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Composition::~Composition() = default;

unsigned Composition::importComposition() {
  for (;;) {
    readElementsLine();
    if (numWords == 0) break;
    if (IsElementLine(lastLine)) readElementDetailsSplit();
    // A line of nothing but "%" ends the section here.
    if (numWords == 0) break;
    if (IsElementLine(lastLine)) readElementDetails();
    if (numWords == 0) break;
  }
  return 0;
}

void Composition::readElementsLine() { runLineStep(kElementsLine, &lastLine); }
void Composition::readElementDetailsSplit() { runLineStep(kElementDetailsSplit); }
void Composition::readElementDetails() { runLineStep(kElementDetails); }

unsigned runCompositionImport(DataLine* dataLine, ImportObject* importObject) {
  Composition reader(dataLine, importObject);
  return reader.importComposition();
}
