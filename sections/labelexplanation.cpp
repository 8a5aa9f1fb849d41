#include "sections/labelexplanation.h"

namespace {

// The card name "MatLabels" is this section's own, not that of the LABELS section.
const char* const kFields[] = {"LabelDescr"};
const LineStep kMatLabels = {LineRead::Words, false, ":", "FIN COMMENTAIRES", "MatLabels",
                             TextFields(kFields), nullptr, 0, nullptr, false};

}  // namespace

LabelExplanation::LabelExplanation(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject) {}
LabelExplanation::~LabelExplanation() = default;

unsigned LabelExplanation::importLabelExplanation() { return runSectionLoop(kMatLabels); }
void LabelExplanation::readMatLabels() { runLineStep(kMatLabels); }

unsigned runLabelExplanationImport(DataLine* dataLine, ImportObject* importObject) {
  LabelExplanation reader(dataLine, importObject);
  return reader.importLabelExplanation();
}
