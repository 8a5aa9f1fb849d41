#include "sections/chemicalcomposition.h"

namespace {

const char* const kRangeFields[] = {"Min", "Max", "Element"};
const char* const kMaxFields[] = {"Max", "Element"};

const LineStep kComposition = {LineRead::Words, false, "%-", "Phases:", "Composition",
                               TextFields(kRangeFields), nullptr, 0, nullptr, false};
const LineStep kCompositionWithMax = {LineRead::Words, false, "%", "Phases:", "CompositionWithMax",
                                      TextFields(kMaxFields), nullptr, 0, nullptr, false};

// Which line form the word count of the last read asks for next.
enum class NextForm { Range, Max, None };

NextForm FormFor(unsigned numWords) {
  if (numWords == 3) return NextForm::Range;
  if (numWords == 2) return NextForm::Max;
  return NextForm::None;
}

}  // namespace

ChemicalComposition::ChemicalComposition(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject) {}
ChemicalComposition::~ChemicalComposition() = default;

// A fresh reader has read nothing, so its word count chooses no form and the
// section is left unread.
unsigned ChemicalComposition::importChemicalComposition() {
  do {
    switch (FormFor(numWords)) {
      case NextForm::Range:
        readComposition();
        break;
      case NextForm::Max:
        readCompositionWithMax();
        break;
      case NextForm::None:
        break;
    }
  } while (numWords != 0 && FormFor(numWords) != NextForm::None);
  return 0;
}

void ChemicalComposition::readComposition() { runLineStep(kComposition); }
void ChemicalComposition::readCompositionWithMax() { runLineStep(kCompositionWithMax); }

unsigned runChemicalCompositionImport(DataLine* dataLine, ImportObject* importObject) {
  ChemicalComposition reader(dataLine, importObject);
  return reader.importChemicalComposition();
}
