#include "sections/materialtype.h"

namespace {

// The type folder lives only in the section's cards.
const char* const kFields[] = {"FolderName"};
const LineStep kMaterialType = {LineRead::Words, false, "", "EndMaterialType", "MaterialType",
                                TextFields(kFields), nullptr, 0, nullptr, false};

}  // namespace

MaterialType::MaterialType(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
MaterialType::~MaterialType() = default;

unsigned MaterialType::importMaterialType() { return runSectionLoop(kMaterialType); }
void MaterialType::readMaterialType() { runLineStep(kMaterialType); }

unsigned runMaterialTypeImport(DataLine* dataLine, ImportObject* importObject) {
  MaterialType reader(dataLine, importObject);
  return reader.importMaterialType();
}
