#pragma once

#include "sections/importbase.h"

class QUILLON_API MaterialDetails : public ImportBase {
 public:
  MaterialDetails(DataLine* dataLine, ImportObject* importObject);
  MaterialDetails(const MaterialDetails&) = default;
  MaterialDetails& operator=(const MaterialDetails&) = default;
  ~MaterialDetails() override;

  unsigned importMaterialDetails();
  void readMatName();
};
