#pragma once

#include "sections/importbase.h"

class QUILLON_API TypicalApps : public ImportBase {
 public:
  TypicalApps(DataLine* dataLine, ImportObject* importObject);
  TypicalApps(const TypicalApps&) = default;
  TypicalApps& operator=(const TypicalApps&) = default;
  ~TypicalApps() override;

  unsigned importTypicalApps();
  void readAppsDescr();
};
