#include "sections/matlist.h"

#include "import/converters.h"
#include "store/orvane.h"

namespace {

// MatType MaterialID MatModelID Units
const char* const kFields[] = {"MatType", "MaterialID", "MatModelID", "Units"};

// The converter has joined type and identifier in word 1: card and material agree.
void MakeMaterial(ImportBase& reader) { OrvaneStaticVars::GetOrCreateMaterial(reader.words[1]); }

const LineStep kMatListDetails = {LineRead::Words, false, " ", "FIN LISTE", "MatListDetails",
                                  TextFields(kFields), ConvertMaterialName, 0, MakeMaterial, false};

}  // namespace

MatList::MatList(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
MatList::~MatList() = default;

unsigned MatList::importMatList() { return runSectionLoop(kMatListDetails); }
void MatList::readMatListDetails() { runLineStep(kMatListDetails); }

unsigned runMatListImport(DataLine* dataLine, ImportObject* importObject) {
  MatList reader(dataLine, importObject);
  return reader.importMatList();
}
