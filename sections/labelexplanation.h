#pragma once

#include "sections/importbase.h"

class QUILLON_API LabelExplanation : public ImportBase {
 public:
  LabelExplanation(DataLine* dataLine, ImportObject* importObject);
  LabelExplanation(const LabelExplanation&) = default;
  LabelExplanation& operator=(const LabelExplanation&) = default;
  ~LabelExplanation() override;

  unsigned importLabelExplanation();
  void readMatLabels();
};
