#include "sections/matclass.h"

#include "store/orvane.h"

namespace {

// Each line names a folder of materials; the last one stays current.
const char* const kFields[] = {"FolderName"};
void MakeFolder(ImportBase& reader) { OrvaneStaticVars::GetOrCreateMaterials(reader.words[0]); }
const LineStep kMatClass = {LineRead::Words, false, "", "EndClass", "MatClass",
                            TextFields(kFields), nullptr, 0, MakeFolder, false};

}  // namespace

MatClass::MatClass(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
MatClass::~MatClass() = default;

unsigned MatClass::importMatClass() { return runSectionLoop(kMatClass); }
void MatClass::readMatClass() { runLineStep(kMatClass); }

unsigned runMatClassImport(DataLine* dataLine, ImportObject* importObject) {
  MatClass reader(dataLine, importObject);
  return reader.importMatClass();
}
