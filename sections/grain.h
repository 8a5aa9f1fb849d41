#pragma once

#include "sections/importbase.h"

// "GRAIN": the grain growth data of a material, all on the keyword line,
//   GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6
// as five pairs of a dataset word and its value.  The driver leaves the line
// in word 0; no further line belongs to the section.
class QUILLON_API Grain : public ImportBase {
 public:
  Grain(DataLine* dataLine, ImportObject* importObject);
  Grain(const Grain&) = default;
  Grain& operator=(const Grain&) = default;
  ~Grain() override;

  unsigned importGrain();
  void readGRAINDetails();
};
