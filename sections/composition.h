#pragma once

#include <string>

#include "sections/importbase.h"

// "Composition": the elements of a material with their values, inside the
// comment block.  Lines that start with "%" are elements; other lines are kept
// as text only.
class QUILLON_API Composition : public ImportBase {
 public:
  Composition(DataLine* dataLine, ImportObject* importObject);
  Composition(const Composition&) = default;
  Composition& operator=(const Composition&) = default;
  ~Composition() override;

  unsigned importComposition();
  void readElementsLine();
  void readElementDetailsSplit();
  void readElementDetails();

  // The line just read; it decides whether the line is an element.
  std::string lastLine;
};
