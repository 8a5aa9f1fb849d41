#include "sections/comments.h"

#include "import/converters.h"

namespace {

// Free text, line by line as it stands in the file; all store work is in the converter.
const char* const kFields[] = {"Comments"};
const LineStep kDescription = {LineRead::RawLine, false, nullptr, "FIN COMMENTAIRES", "Description",
                               TextFields(kFields), ConvertComments, 0, nullptr, false};

}  // namespace

Comments::Comments(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
Comments::~Comments() = default;

unsigned Comments::importComments() { return runSectionLoop(kDescription); }
void Comments::readDescription() { runLineStep(kDescription); }

unsigned runCommentsImport(DataLine* dataLine, ImportObject* importObject) {
  Comments reader(dataLine, importObject);
  return reader.importComments();
}
