#pragma once

#include "sections/importbase.h"

class QUILLON_API MaterialType : public ImportBase {
 public:
  MaterialType(DataLine* dataLine, ImportObject* importObject);
  MaterialType(const MaterialType&) = default;
  MaterialType& operator=(const MaterialType&) = default;
  ~MaterialType() override;

  unsigned importMaterialType();
  void readMaterialType();
};
