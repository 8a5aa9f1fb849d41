#pragma once

#include <string>

#include "sections/importbase.h"

// "Initial phases proportions": the starting share of each phase, "1 : 0.35".
class QUILLON_API PhaseInfo : public ImportBase {
 public:
  PhaseInfo(DataLine* dataLine, ImportObject* importObject);
  PhaseInfo(const PhaseInfo&) = default;
  PhaseInfo& operator=(const PhaseInfo&) = default;
  ~PhaseInfo() override;

  unsigned importPhaseInfo();
  void readPhaseInfoLineData();
  void readPhaseInfo();

  // The line just read; a share line starts with a digit.
  std::string lastLine;
};
