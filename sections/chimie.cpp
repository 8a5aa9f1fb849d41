#include "sections/chimie.h"

#include "import/sectionconverters.h"
#include "store/orvane.h"

namespace {

const char* const kFields[] = {"ChimieName", "ChimieValue"};

// The name has its store spelling by now ("C" of a diffusion model is "CHIMIEC").
void StoreValue(ImportBase& reader) {
  OrvaneMLRecordDataset* dataset =
      OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[1], dataset, 0);
}

const LineStep kChimieInfo = {LineRead::Words, false, " ", "FIN CHIMIE", "ChimieInfo",
                              TextFields(kFields), ConvertVariableNames, 0, StoreValue, false};

}  // namespace

Chimie::Chimie(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Chimie::~Chimie() = default;

unsigned Chimie::importChimie() { return runSectionLoop(kChimieInfo); }
void Chimie::readChimieInfo() { runLineStep(kChimieInfo); }

unsigned runChimieImport(DataLine* dataLine, ImportObject* importObject) {
  Chimie reader(dataLine, importObject);
  return reader.importChimie();
}
