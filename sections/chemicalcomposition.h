#pragma once

#include "sections/importbase.h"

// "Chemical Composition:": a table of element ranges.  Import accepts the
// section and reads none of it; its lines reach the store as comment text.
// The two line forms stay here because they are the forms the export writes.
class QUILLON_API ChemicalComposition : public ImportBase {
 public:
  ChemicalComposition(DataLine* dataLine, ImportObject* importObject);
  ChemicalComposition(const ChemicalComposition&) = default;
  ChemicalComposition& operator=(const ChemicalComposition&) = default;
  ~ChemicalComposition() override;

  unsigned importChemicalComposition();
  // "0.10 - 0.20 % C"
  void readComposition();
  // "0.50 % Si"
  void readCompositionWithMax();
};
