#include "sections/initialhardness.h"

#include "import/sectionconverters.h"

namespace {

const char* const kFields[] = {"PhaseName", "Hardness"};

const LineStep kHardnessInfo = {LineRead::Words, false, " ", "EndInitial hardness", "HardnessInfo",
                                TextFields(kFields), ConvertPhaseLine, 1, nullptr, false};

}  // namespace

InitialHardness::InitialHardness(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject) {}
InitialHardness::~InitialHardness() = default;

unsigned InitialHardness::importInitialHardness() { return runSectionLoop(kHardnessInfo); }
void InitialHardness::readHardnessInfo() { runLineStep(kHardnessInfo); }

unsigned runInitialHardnessImport(DataLine* dataLine, ImportObject* importObject) {
  InitialHardness reader(dataLine, importObject);
  return reader.importInitialHardness();
}
