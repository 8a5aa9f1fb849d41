#include "sections/mattables.h"

#include <cstdlib>
#include <cstring>

#include "import/converters.h"
#include "import/tableconverters.h"
#include "store/orvane.h"

// A table step is a line step that cuts a word of the array other than the
// first, and empties the word it has used up.  Emptying is part of the
// grammar: a line without a slash doesn't overwrite the second word, so
// whatever the previous line's steps left there decides what such a line is
// (the text lines of a function table live on that).
struct MatTablesStep {
  LineStep line;
  unsigned word;        // the word cut into the array
  int usedWord;         // the word emptied after the step; -1 for none
  unsigned wantedWords; // slots emptied behind the words found
  // The member that keeps a number of the line (the table type, the count of
  // values) and the word it is read from, before that word is emptied; null
  // for none.
  int MatTables::*keptNumber;
  unsigned keptWord;
};

namespace {

// End keywords are prefixes, compared without case; the markers of the
// enclosing block close the section too.
const char kEndKeywords[] = "FIN TABLES,FIN TABL,FIN TABLE,FIN MATERIAUX,FIN NOM";

const char* const kLineNames[] = {"TableID", "TableValueStr"};
const unsigned kLineTypes[] = {1, 5};
const char* const kPhaseNames[] = {"TableRefID"};
const unsigned kPhaseTypes[] = {1};
const char* const kConstantNames[] = {"Constant1", "Constant2", "Constant3"};
const char* const kDetailsNames[] = {"TStr", "TableType", "ValueStr"};
const unsigned kDetailsTypes[] = {5, 1, 5};
const char* const kType1And7Names[] = {"NumTableValues", "ValuesStr"};
const unsigned kType1And7Types[] = {1, 5};
const char* const kType8Names[] = {"ValuesStr"};
const char* const kType9Names[] = {"NumTableValues", "XScaleFactor", "ValuesStr"};
const unsigned kType9Types[] = {1, 5, 5};
const char* const kDataNames[] = {"DataStr"};
const char* const kRefNames[] = {"RefDataStr"};

// The line's own id makes its table the current dataset, for the steps
// behind; the line's converter has still seen the previous line's table.
void MakeTableCurrent(ImportBase& reader) {
  // The empty line at the end of an unclosed section has no id.
  if (reader.numWords == 0) return;
  OrvaneStaticVars::GetOrCreateDataset(reader.words[0], "DatasetID", false, nullptr, nullptr);
}

// Cut at every slash: the id, the text behind the first slash, and any text
// behind a further slash as a word of its own.
const LineStep kTableLineData = {LineRead::Words, false, "/", kEndKeywords, "TableLineData",
                                 FieldList{kLineNames, kLineTypes, 2}, ImportFortranTableLine, 0,
                                 MakeTableCurrent, false};

// The minus sign and the ampersands of the reference marks are separators.
const MatTablesStep kTablePhaseDetails = {
    {LineRead::SplitHeld, true, " -&", nullptr, "TablePhaseDetails", FieldList{kPhaseNames, kPhaseTypes, 1},
     ImportTablePhaseDetails, 0, nullptr, false},
    1, 1, 1, nullptr, 0};
const MatTablesStep kTableConstantDetails = {
    {LineRead::SplitHeld, false, " ", nullptr, "TableConstantDetails", TextFields(kConstantNames),
     ImportTableConstants, 0, nullptr, false},
    1, 1, 3, nullptr, 0};
const MatTablesStep kTableDetails = {
    {LineRead::SplitHeld, false, " ", nullptr, "TableDetails", FieldList{kDetailsNames, kDetailsTypes, 3}, nullptr,
     0, nullptr, false},
    1, 1, 3, &MatTables::m_TableType, 1};
const MatTablesStep kTableDetailsForType1And7 = {
    {LineRead::SplitHeld, false, " ", nullptr, "TableDetailsForType1And7",
     FieldList{kType1And7Names, kType1And7Types, 2}, nullptr, 0, nullptr, false},
    2, 2, 2, &MatTables::m_NumTableValues, 0};
const MatTablesStep kTableDetailsType8 = {
    {LineRead::SplitHeld, false, " ", nullptr, "TableDetailsType8", TextFields(kType8Names), nullptr, 0, nullptr,
     false},
    2, 2, 1, nullptr, 0};
// The scale stays on this card, the section's last when the values come.
const MatTablesStep kTableDetailsType9 = {
    {LineRead::SplitHeld, false, " ", nullptr, "TableDetailsType9", FieldList{kType9Names, kType9Types, 3},
     nullptr, 0, nullptr, false},
    2, -1, 3, &MatTables::m_NumTableValues, 0};
const MatTablesStep kTableData = {{LineRead::SplitHeld, true, " ", nullptr, "TableData", TextFields(kDataNames),
                               ImportTableCurveData, 0, nullptr, false},
                              1, 1, 1, nullptr, 0};
const MatTablesStep kTableDataType8 = {{LineRead::SplitHeld, true, " ", nullptr, "TableDataType8",
                                    TextFields(kDataNames), ImportTableCoefficients, 0, nullptr, false},
                                   0, 0, 1, nullptr, 0};
const MatTablesStep kTableDataType9 = {{LineRead::SplitHeld, true, " ", nullptr, "TableDataType9",
                                    TextFields(kDataNames), ImportTableCurveData, 0, nullptr, false},
                                   2, 2, 2, nullptr, 0};
const MatTablesStep kTableRef = {{LineRead::SplitHeld, true, " -&", nullptr, "TableRef", TextFields(kRefNames),
                              ImportTableRef, 0, nullptr, false},
                             1, 1, 1, nullptr, 0};

bool StartsWith(const std::string& text, const char* prefix) {
  return std::strncmp(text.c_str(), prefix, std::strlen(prefix)) == 0;
}

bool Contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

bool IsNumber(const std::string& text) { return OrvaneStaticVars::IsValidNumber(text.c_str()); }

}  // namespace

MatTables::MatTables(DataLine* dataLine, ImportObject* importObject)
    : ImportBase(dataLine, importObject), m_TableType(0), m_NumTableValues(0) {}
MatTables::~MatTables() = default;

void MatTables::runTableStep(const MatTablesStep& step) {
  char** slots = dataLine->getWordArray();
  // The line step cuts the first word; the word the step works on is put
  // there, which the cut overwrites anyway.
  if (step.word != 0) OverwriteWord(slots[0], slots[step.word]);
  runLineStep(step.line);
  if (numWords == 0 && dataLine->isFlagOn(DataLine::kEndFlagBit)) return;
  for (unsigned slot = numWords; slot < step.wantedWords; ++slot) slots[slot][0] = '\0';
  if (step.keptNumber != nullptr) this->*step.keptNumber = std::atoi(slots[step.keptWord]);
  if (step.usedWord >= 0) slots[step.usedWord][0] = '\0';
}

unsigned MatTables::importMatTables() {
  m_TableType = 0;
  for (;;) {
    readTableLineData();
    if (numWords == 0) return 0;

    const bool startsWithT = StartsWith(TableValueStr, "T");
    if (StartsWith(TableValueStr, "-&") || (Contains(TableValueStr, "-&") && !startsWithT)) {
      readTablePhaseDetails();
    } else if (!Contains(TableValueStr, "-&") && !startsWithT && IsNumber(TableValueStr)) {
      // The whole text must be one number, so a line of several constants
      // is no constant line.
      readTableConstantDetails();
    } else if (startsWithT) {
      readTableDetails();
    }
    if (numWords == 0) return 0;
    if (!startsWithT) continue;

    switch (m_TableType) {
      case 1:
      case 7: readTableDetailsForType1And7(); break;
      case 8: readTableDetailsType8(); break;
      case 9: readTableDetailsType9(); break;
      default: continue;  // an unknown type reads no values
    }
    if (numWords == 0) return 0;

    switch (m_TableType) {
      case 7: readTableRef(); break;
      case 1: readTableData(); break;
      case 8: readTableDataType8(); break;
      case 9: readTableDataType9(); break;
      default: break;
    }
    if (numWords == 0) return 0;
  }
}

void MatTables::readTableLineData() {
  runLineStep(kTableLineData);
  if (numWords == 0 && dataLine->isFlagOn(DataLine::kEndFlagBit)) return;
  // A line without a slash leaves the second word as the last line left it.
  TableValueStr = dataLine->getWordArray()[1];
}

void MatTables::readTablePhaseDetails() { runTableStep(kTablePhaseDetails); }
void MatTables::readTableConstantDetails() { runTableStep(kTableConstantDetails); }
void MatTables::readTableDetails() { runTableStep(kTableDetails); }
void MatTables::readTableDetailsForType1And7() { runTableStep(kTableDetailsForType1And7); }
void MatTables::readTableDetailsType8() { runTableStep(kTableDetailsType8); }
void MatTables::readTableDetailsType9() { runTableStep(kTableDetailsType9); }
void MatTables::readTableData() { runTableStep(kTableData); }
void MatTables::readTableDataType8() { runTableStep(kTableDataType8); }
void MatTables::readTableDataType9() { runTableStep(kTableDataType9); }
void MatTables::readTableRef() { runTableStep(kTableRef); }

unsigned runMatTablesImport(DataLine* dataLine, ImportObject* importObject) {
  MatTables reader(dataLine, importObject);
  return reader.importMatTables();
}
