#include "sections/materialdetails.h"

#include "import/converters.h"
#include "store/orvane.h"

namespace {

// NOM : MatType MaterialID MatModelID Units -- the keyword line itself, held in word 0.
const char* const kFields[] = {"NameKW", "MatType", "MaterialID", "MatModelID", "Units"};

void MakeMaterial(ImportBase& reader) { OrvaneStaticVars::GetOrCreateMaterial(reader.words[2]); }

// Emptying the held line after the card ends the section after its one card.
const LineStep kMatName = {LineRead::SplitHeld, false, ": ", nullptr, "MatName",
                           TextFields(kFields), ConvertMaterialName, 1, MakeMaterial, true};

}  // namespace

MaterialDetails::MaterialDetails(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
MaterialDetails::~MaterialDetails() = default;

unsigned MaterialDetails::importMaterialDetails() { return runSectionLoop(kMatName); }
void MaterialDetails::readMatName() { runLineStep(kMatName); }

unsigned runMaterialDetailsImport(DataLine* dataLine, ImportObject* importObject) {
  MaterialDetails reader(dataLine, importObject);
  return reader.importMaterialDetails();
}
