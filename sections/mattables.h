#pragma once

#include <string>

#include "sections/importbase.h"

struct MatTablesStep;

// "TABLES :": every numeric table of one material.  Each line is read once,
// cut at its slashes, and the text behind the first slash decides what kind
// of table line it is; the step of that kind re-splits the word the previous
// step left its remainder in.
class QUILLON_API MatTables : public ImportBase {
 public:
  MatTables(DataLine* dataLine, ImportObject* importObject);
  MatTables(const MatTables&) = default;
  MatTables& operator=(const MatTables&) = default;
  ~MatTables() override;

  unsigned importMatTables();
  void readTableLineData();
  void readTablePhaseDetails();
  void readTableConstantDetails();
  void readTableDetails();
  void readTableDetailsForType1And7();
  void readTableDetailsType8();
  void readTableDetailsType9();
  void readTableData();
  void readTableDataType8();
  void readTableDataType9();
  void readTableRef();

  // The text behind the first slash of the line in hand, kept as read while
  // the word array is cut again.
  std::string TableValueStr;
  // The type of the last "T" line; it stays for the steps of the same line.
  int m_TableType;
  // The count a type 1, 7 or 9 line gives; kept, never checked.
  int m_NumTableValues;

 private:
  // One step on the word array: the line step, then the number the step
  // keeps and the emptying of the word it has used up, unless the section
  // ended under it.
  void runTableStep(const MatTablesStep& step);
};
