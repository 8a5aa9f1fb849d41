#pragma once

#include <string>

#include "sections/importbase.h"

// "MATERIAL m PHASE n": the variable lines of a metallurgy file, up to its
// reactions, tables or END.  The header is the keyword line itself, held in
// word 0.
class QUILLON_API Metallurgy : public ImportBase {
 public:
  Metallurgy(DataLine* dataLine, ImportObject* importObject);
  Metallurgy(const Metallurgy&) = default;
  Metallurgy& operator=(const Metallurgy&) = default;
  ~Metallurgy() override;

  unsigned importMetallurgy();
  // The phase count of the header; 0 when the header has no fourth word.
  int readMetallurgy();
  void readVarLineData();
  void readSplitLineData();

  // The line just read.
  std::string lastLine;
};
