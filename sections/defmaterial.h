#pragma once

#include "sections/importbase.h"

class QUILLON_API DefMaterial : public ImportBase {
 public:
  DefMaterial(DataLine* dataLine, ImportObject* importObject);
  DefMaterial(const DefMaterial&) = default;
  DefMaterial& operator=(const DefMaterial&) = default;
  ~DefMaterial() override;

  unsigned importDefMaterial();
  void readNVPairDetails();
};
