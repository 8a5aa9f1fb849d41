#include "sections/phaseinfoifwire.h"

#include <cctype>

#include "import/sectionconverters.h"

namespace {

const char* const kLineFields[] = {"LineStr"};
const char* const kInfoFields[] = {"PhaseID", "PhaseInfoIfWire"};

const LineStep kPhaseInfoLineData = {LineRead::Words,
                                     false,
                                     " ",
                                     "EndInitial phases proportions if wire",
                                     "PhaseInfoLineData",
                                     TextFields(kLineFields),
                                     nullptr,
                                     0,
                                     nullptr,
                                     false};
const LineStep kPhaseInfoIfWire = {LineRead::SplitHeld, false, ":", nullptr, "PhaseInfoIfWire",
                                   TextFields(kInfoFields), ConvertPhaseLine, 1, nullptr, true};

}  // namespace

PhaseInfoIfWire::PhaseInfoIfWire(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject) {}
PhaseInfoIfWire::~PhaseInfoIfWire() = default;

unsigned PhaseInfoIfWire::importPhaseInfoIfWire() {
  for (;;) {
    readPhaseInfoLineData();
    if (numWords == 0) break;
    if (!lastLine.empty() && std::isdigit(static_cast<unsigned char>(lastLine[0]))) readPhaseInfoIfWire();
    if (numWords == 0) break;
  }
  return 0;
}

void PhaseInfoIfWire::readPhaseInfoLineData() { runLineStep(kPhaseInfoLineData, &lastLine); }
void PhaseInfoIfWire::readPhaseInfoIfWire() { runLineStep(kPhaseInfoIfWire); }

unsigned runPhaseInfoIfWireImport(DataLine* dataLine, ImportObject* importObject) {
  PhaseInfoIfWire reader(dataLine, importObject);
  return reader.importPhaseInfoIfWire();
}
