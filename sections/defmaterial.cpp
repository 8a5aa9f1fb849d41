#include "sections/defmaterial.h"

#include "store/orvane.h"

namespace {

// name = value pairs.  There is no end keyword: the section runs to the end of
// the file, and the driver's seek to each located section keeps that harmless.
const char* const kFields[] = {"ParamID", "ParamValue"};

void StorePair(ImportBase& reader) {
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[1], dataset, 0);
}

const LineStep kNVPairDetails = {LineRead::Words, false, "=", nullptr, "NVPairDetails",
                                 TextFields(kFields), nullptr, 0, StorePair, false};

}  // namespace

DefMaterial::DefMaterial(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
DefMaterial::~DefMaterial() = default;

unsigned DefMaterial::importDefMaterial() { return runSectionLoop(kNVPairDetails); }
void DefMaterial::readNVPairDetails() { runLineStep(kNVPairDetails); }

unsigned runDefMaterialImport(DataLine* dataLine, ImportObject* importObject) {
  DefMaterial reader(dataLine, importObject);
  return reader.importDefMaterial();
}
