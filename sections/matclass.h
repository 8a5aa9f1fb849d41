#pragma once

#include "sections/importbase.h"

class QUILLON_API MatClass : public ImportBase {
 public:
  MatClass(DataLine* dataLine, ImportObject* importObject);
  MatClass(const MatClass&) = default;
  MatClass& operator=(const MatClass&) = default;
  ~MatClass() override;

  unsigned importMatClass();
  void readMatClass();
};
