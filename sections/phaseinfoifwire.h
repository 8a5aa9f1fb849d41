#pragma once

#include <string>

#include "sections/importbase.h"

// "Initial phases proportions if wire": the starting share of each phase when
// the material is a filler wire.
class QUILLON_API PhaseInfoIfWire : public ImportBase {
 public:
  PhaseInfoIfWire(DataLine* dataLine, ImportObject* importObject);
  PhaseInfoIfWire(const PhaseInfoIfWire&) = default;
  PhaseInfoIfWire& operator=(const PhaseInfoIfWire&) = default;
  ~PhaseInfoIfWire() override;

  unsigned importPhaseInfoIfWire();
  void readPhaseInfoLineData();
  void readPhaseInfoIfWire();

  // The line just read; a share line starts with a digit.
  std::string lastLine;
};
