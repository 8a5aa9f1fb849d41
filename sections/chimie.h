#pragma once

#include "sections/importbase.h"

// "CHIMIE :": named chemistry values, "name value" a line.
class QUILLON_API Chimie : public ImportBase {
 public:
  Chimie(DataLine* dataLine, ImportObject* importObject);
  Chimie(const Chimie&) = default;
  Chimie& operator=(const Chimie&) = default;
  ~Chimie() override;

  unsigned importChimie();
  void readChimieInfo();
};
