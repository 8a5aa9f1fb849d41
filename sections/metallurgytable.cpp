#include "sections/metallurgytable.h"

#include <cstdlib>

#include "import/converters.h"
#include "import/tableconverters.h"
#include "store/orvane.h"

// A line step on a word of the array other than the first.
struct MetallurgyTableStep {
  LineStep line;
  unsigned word;  // the word cut into the array
};

namespace {

// The metallurgy block ends the tables; end keywords are prefixes, compared
// without case.
const char kEndKeywords[] = "FIN MATERIAUX,FIN NOM";

const char* const kLineNames[] = {"LineDataStr"};
const char* const kStarNames[] = {"Star", "StarDataStr"};
const char* const kTableLineNames[] = {"TableID", "TableDataStr"};
const unsigned kTableLineTypes[] = {1, 5};
const char* const kTableDataNames[] = {"TableType", "XYDataStr"};
const unsigned kTableDataTypes[] = {1, 5};
const char* const kValueNames[] = {"DataStr"};

// The table of this id becomes current, so that the line's values and those
// of the star lines behind it land in it.
void MakeTableCurrent(ImportBase& reader) {
  OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "DatasetID", false, nullptr, nullptr);
  reader.words[0][0] = '\0';
}

// The whole line as one word.
const LineStep kLineData = {LineRead::Words, false, " ", kEndKeywords, "LineData", TextFields(kLineNames),
                            nullptr, 0, nullptr, false};
const MetallurgyTableStep kStarLineData = {{LineRead::SplitHeld, false, " ", nullptr, "StarLineData",
                                            TextFields(kStarNames), nullptr, 0, nullptr, false},
                                           0};
const MetallurgyTableStep kTableLineData = {{LineRead::SplitHeld, false, "/", nullptr, "TableLineData",
                                             FieldList{kTableLineNames, kTableLineTypes, 2}, nullptr, 0,
                                             MakeTableCurrent, false},
                                            0};
const MetallurgyTableStep kTableData = {{LineRead::SplitHeld, false, " ", nullptr, "TableData",
                                         FieldList{kTableDataNames, kTableDataTypes, 2}, nullptr, 0, nullptr,
                                         false},
                                        1};
const MetallurgyTableStep kXYData = {{LineRead::SplitHeld, true, " ", nullptr, "XYData", TextFields(kValueNames),
                                      ImportTableCurveData, 0, nullptr, false},
                                     1};
const MetallurgyTableStep kXYZData = {{LineRead::SplitHeld, true, " ", nullptr, "XYZData",
                                       TextFields(kValueNames), ImportTableXYZData, 0, nullptr, false},
                                      1};

}  // namespace

MetallurgyTable::MetallurgyTable(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject), m_TableType(0) {}
MetallurgyTable::~MetallurgyTable() = default;

bool MetallurgyTable::runTableStep(const MetallurgyTableStep& step) {
  char** slots = dataLine->getWordArray();
  // The line step cuts the first word; the word the step works on is put
  // there, which the cut overwrites anyway.
  if (step.word != 0) OverwriteWord(slots[0], slots[step.word]);
  runLineStep(step.line);
  return !(numWords == 0 && dataLine->isFlagOn(DataLine::kEndFlagBit));
}

unsigned MetallurgyTable::importMetallurgyTable() {
  for (;;) {
    readLineData();
    if (numWords == 0) return 0;
    const bool star = !m_LineData.empty() && m_LineData[0] == '*';
    if (star)
      readStarLineData();
    else
      readTableLineData();
    if (numWords != 0 && !star) readTableData();
    if (star || numWords != 0) {
      // A star line goes on with the type and the table of the line before.
      if (m_TableType == 1)
        readXYData();
      else if (m_TableType == 2)
        readXYZData();
    }
    if (numWords == 0) return 0;
  }
}

void MetallurgyTable::readLineData() { runLineStep(kLineData, &m_LineData); }

void MetallurgyTable::readStarLineData() { runTableStep(kStarLineData); }

void MetallurgyTable::readTableLineData() {
  if (runTableStep(kTableLineData)) m_TableDataStr = dataLine->getWordArray()[1];
}

void MetallurgyTable::readTableData() {
  if (!runTableStep(kTableData)) return;
  char** slots = dataLine->getWordArray();
  m_TableType = std::atoi(slots[0]);
  m_XYDataStr = slots[1];
}

void MetallurgyTable::readXYData() { runTableStep(kXYData); }

void MetallurgyTable::readXYZData() { runTableStep(kXYZData); }

unsigned runMetallurgyTableImport(DataLine* dataLine, ImportObject* importObject) {
  MetallurgyTable reader(dataLine, importObject);
  return reader.importMetallurgyTable();
}
