#pragma once

#include <string>

#include "sections/importbase.h"

// "MATERIAUX :": a first line (METALLURGY), the phase count "PHASE n", then
// variable lines such as "RHO(1) = RHO(2) = 7.8*-6" or "KX(1) = TABLE 10".
// Each variable line is read whole, then split into words and converted.
class QUILLON_API Materiaux : public ImportBase {
 public:
  Materiaux(DataLine* dataLine, ImportObject* importObject);
  Materiaux(const Materiaux&) = default;
  Materiaux& operator=(const Materiaux&) = default;
  ~Materiaux() override;

  unsigned importMateriaux();
  void readMetallurgy();
  // The phase count of the "PHASE n" line; 0 at the end of the section or
  // without a number.
  int readPhase();
  void readVarLineData();
  void readSplitLineData();

  // The line just read.
  std::string lastLine;
};

// The split of a variable line held in word 0, which "MATERIAL" blocks share.
QUILLON_API const LineStep& SplitLineDataStep();
