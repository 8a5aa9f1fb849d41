#include "sections/phases.h"

#include <cctype>
#include <strings.h>

#include "import/sectionconverters.h"

namespace {

// The list stands among the other blocks of a comment; any of them ends it.
const char kEndKeywords[] =
    "EndPhases,Properties formatted for wizards usage,Composition,EndComposition,Phases,FIN COMMENTAIRES";

const char* const kLineFields[] = {"LineStr"};
const char* const kPhaseFields[] = {"PhaseID", "PhaseName"};

const LineStep kPhasesLineData = {LineRead::Words, false, " ", kEndKeywords, "PhasesLineData",
                                  TextFields(kLineFields), nullptr, 0, nullptr, false};
const LineStep kPhases = {LineRead::SplitHeld, false, ":", nullptr, "Phases",
                          TextFields(kPhaseFields), ConvertPhaseLine, 1, nullptr, true};

bool IsPhaseLine(const std::string& line) {
  return (!line.empty() && std::isdigit(static_cast<unsigned char>(line[0]))) ||
         strncasecmp(line.c_str(), "Phase", 5) == 0;
}

}  // namespace

Phases::Phases(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Phases::~Phases() = default;

unsigned Phases::importPhases() {
  for (;;) {
    readPhasesLineData();
    if (numWords == 0) break;
    if (IsPhaseLine(lastLine)) readPhases();
    // The converter ends a list that has all its phases.
    if (numWords == 0) break;
  }
  return 0;
}

void Phases::readPhasesLineData() { runLineStep(kPhasesLineData, &lastLine); }
void Phases::readPhases() { runLineStep(kPhases); }

unsigned runPhasesImport(DataLine* dataLine, ImportObject* importObject) {
  Phases reader(dataLine, importObject);
  return reader.importPhases();
}
