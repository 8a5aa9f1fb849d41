#pragma once

#include <string>

#include "sections/importbase.h"

// "Phases:" (the phase list of a comment block) and "Phases" (the wizard
// region's phase table): numbered phases with their texts, "1: Ferrite" or
// "Phase 1: Ferrite".
class QUILLON_API Phases : public ImportBase {
 public:
  Phases(DataLine* dataLine, ImportObject* importObject);
  Phases(const Phases&) = default;
  Phases& operator=(const Phases&) = default;
  ~Phases() override;

  unsigned importPhases();
  void readPhasesLineData();
  void readPhases();

  // The line just read; a phase line starts with a digit or with "Phase".
  std::string lastLine;
};
