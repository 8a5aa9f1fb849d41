#pragma once

#include "sections/importbase.h"

class QUILLON_API MatList : public ImportBase {
 public:
  MatList(DataLine* dataLine, ImportObject* importObject);
  MatList(const MatList&) = default;
  MatList& operator=(const MatList&) = default;
  ~MatList() override;

  unsigned importMatList();
  void readMatListDetails();
};
