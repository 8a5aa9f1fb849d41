#pragma once

// Which reader reads which keyword type: the driver's dispatch table, one row
// per reader class.

#include <vector>

#include "core/export.h"
#include "import/cardsetimport.h"

struct SectionEntryRow {
  unsigned keywordType;
  SectionEntry entry;
};

QUILLON_API const std::vector<SectionEntryRow>& SectionEntryRows();
