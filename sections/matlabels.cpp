#include "sections/matlabels.h"

#include "import/sectionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

const char* const kLabelFields[] = {"StrValue"};
// Two pairs may share a line, so the names repeat within the card.
const char* const kParamFields[] = {"ParamLabel", "ParamValue", "ParamLabel", "ParamValue"};
const char* const kRefFields[] = {"ParamLabel", "TableID"};

// Both pairs are stored; on a line of one pair the second is two empty words.
void StorePairs(ImportBase& reader) {
  OrvaneMLRecordDataset* dataset =
      OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[1], dataset, 0);
  dataset = OrvaneStaticVars::GetOrCreateDataset(reader.words[2], "IDref", false, nullptr, nullptr);
  OrvaneStaticVars::CreateDatasetBasedOnType(reader.words[3], dataset, 0);
}

// The parameter's data is in the table of that id.
void StoreReference(ImportBase& reader) {
  OrvaneMLRecordDataset* dataset =
      OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "IDref", false, nullptr, nullptr);
  if (dataset == nullptr) return;
  OrvaneMLRecordLink* link = new OrvaneMLRecordLink();
  dataset->AddLink(link);
  link->SetDatasetIDref(reader.words[1]);
  OrvaneStaticVars::AddDataset(dataset, reader.words[1]);
}

const LineStep kLabelDetails = {LineRead::Words, false, " ", "FIN LABELS", "LabelDetails",
                                TextFields(kLabelFields), nullptr, 0, nullptr, false};
// Split at blanks only: a value keeps its minus sign.
const LineStep kParamDetails = {LineRead::SplitHeld, false, " ", nullptr, "ParamDetails",
                                TextFields(kParamFields), ConvertVariableNames, 2, StorePairs, true};
// Split at blank, minus and ampersand: "KX -&12&" gives KX and 12.
const LineStep kParamDetailsWithRef = {LineRead::SplitHeld, false, " -&", nullptr, "ParamDetailsWithRef",
                                       TextFields(kRefFields), ConvertVariableNames, 0, StoreReference, true};

}  // namespace

MatLabels::MatLabels(DataLine* dataLine, ImportObject* importObject) : ImportBase(dataLine, importObject) {}
MatLabels::~MatLabels() = default;

unsigned MatLabels::importMatLabels() {
  do {
    // The line's own card is the section's last card while its words are
    // renamed, which is how the renaming sees the whole line.
    readLabelDetails();
    if (numWords == 0) break;
    if (lastLine.find("-&") != std::string::npos || lastLine.find('&') != std::string::npos)
      readParamDetailsWithRef();
    else
      readParamDetails();
  } while (numWords != 0);
  return 0;
}

void MatLabels::readLabelDetails() { runLineStep(kLabelDetails, &lastLine); }
void MatLabels::readParamDetails() { runLineStep(kParamDetails); }
void MatLabels::readParamDetailsWithRef() { runLineStep(kParamDetailsWithRef); }

unsigned runMatLabelsImport(DataLine* dataLine, ImportObject* importObject) {
  MatLabels reader(dataLine, importObject);
  return reader.importMatLabels();
}
