#pragma once

#include <string>

#include "sections/importbase.h"

struct MetallurgyTableStep;

// "TABLE" or "TABLES" in the metallurgy block of a material: the tables the
// reactions refer to.  "id / type values" starts a table of type 1 (pairs)
// or 2 (triples); a line "* values" continues the last one.
class QUILLON_API MetallurgyTable : public ImportBase {
 public:
  MetallurgyTable(DataLine* dataLine, ImportObject* importObject);
  MetallurgyTable(const MetallurgyTable&) = default;
  MetallurgyTable& operator=(const MetallurgyTable&) = default;
  ~MetallurgyTable() override;

  unsigned importMetallurgyTable();
  void readLineData();
  void readStarLineData();
  void readTableLineData();
  void readTableData();
  void readXYData();
  void readXYZData();

  // The line in hand, whole.
  std::string m_LineData;
  // The text behind the slash of the last table line.
  std::string m_TableDataStr;
  // The type of the last table line; star lines keep it.
  int m_TableType;
  // The values behind the type.
  std::string m_XYDataStr;

 private:
  bool runTableStep(const MetallurgyTableStep& step);
};
