#pragma once

#include <string>

#include "sections/importbase.h"

// "LABELS :": parameter lines of a material model.  A line holds one or two
// "name value" pairs, or one name with a table reference "-&id&" or "&id&".
// Each line is read whole first, and its text decides how it is split.
class QUILLON_API MatLabels : public ImportBase {
 public:
  MatLabels(DataLine* dataLine, ImportObject* importObject);
  MatLabels(const MatLabels&) = default;
  MatLabels& operator=(const MatLabels&) = default;
  ~MatLabels() override;

  unsigned importMatLabels();
  void readLabelDetails();
  void readParamDetails();
  void readParamDetailsWithRef();

  // The line just read.
  std::string lastLine;
};
