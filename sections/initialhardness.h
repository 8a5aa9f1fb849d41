#pragma once

#include "sections/importbase.h"

// "Initial hardness": the starting hardness of each phase, "Ferrite 165", the
// phase given by its name or a word of its description.
class QUILLON_API InitialHardness : public ImportBase {
 public:
  InitialHardness(DataLine* dataLine, ImportObject* importObject);
  InitialHardness(const InitialHardness&) = default;
  InitialHardness& operator=(const InitialHardness&) = default;
  ~InitialHardness() override;

  unsigned importInitialHardness();
  void readHardnessInfo();
};
