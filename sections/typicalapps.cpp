#include "sections/typicalapps.h"

namespace {

// Free text up to the label explanation that follows it in the comment block.
const char* const kFields[] = {"Description"};
const LineStep kAppsDescr = {LineRead::Words, false, nullptr, "Labels:", "AppsDescr",
                             TextFields(kFields), nullptr, 0, nullptr, false};

}  // namespace

TypicalApps::TypicalApps(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
TypicalApps::~TypicalApps() = default;

unsigned TypicalApps::importTypicalApps() { return runSectionLoop(kAppsDescr); }
void TypicalApps::readAppsDescr() { runLineStep(kAppsDescr); }

unsigned runTypicalAppsImport(DataLine* dataLine, ImportObject* importObject) {
  TypicalApps reader(dataLine, importObject);
  return reader.importTypicalApps();
}
