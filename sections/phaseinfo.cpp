#include "sections/phaseinfo.h"

#include <cctype>

#include "import/sectionconverters.h"

namespace {

const char* const kLineFields[] = {"LineStr"};
const char* const kInfoFields[] = {"PhaseID", "PhaseInfo"};

const LineStep kPhaseInfoLineData = {LineRead::Words, false, " ", "EndInitial phases proportions", "PhaseInfoLineData",
                                     TextFields(kLineFields), nullptr, 0, nullptr, false};
const LineStep kPhaseInfo = {LineRead::SplitHeld, false, ":", nullptr, "PhaseInfo",
                             TextFields(kInfoFields), ConvertPhaseLine, 1, nullptr, true};

}  // namespace

PhaseInfo::PhaseInfo(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
PhaseInfo::~PhaseInfo() = default;

unsigned PhaseInfo::importPhaseInfo() {
  for (;;) {
    readPhaseInfoLineData();
    if (numWords == 0) break;
    if (!lastLine.empty() && std::isdigit(static_cast<unsigned char>(lastLine[0]))) readPhaseInfo();
    if (numWords == 0) break;
  }
  return 0;
}

void PhaseInfo::readPhaseInfoLineData() { runLineStep(kPhaseInfoLineData, &lastLine); }
void PhaseInfo::readPhaseInfo() { runLineStep(kPhaseInfo); }

unsigned runPhaseInfoImport(DataLine* dataLine, ImportObject* importObject) {
  PhaseInfo reader(dataLine, importObject);
  return reader.importPhaseInfo();
}
