#pragma once

#include "sections/importbase.h"

class QUILLON_API Comments : public ImportBase {
 public:
  Comments(DataLine* dataLine, ImportObject* importObject);
  Comments(const Comments&) = default;
  Comments& operator=(const Comments&) = default;
  ~Comments() override;

  unsigned importComments();
  void readDescription();
};
