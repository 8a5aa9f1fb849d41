#pragma once

#include <string>

#include "sections/importbase.h"

// "REACTION": one phase transformation per line, from a parent phase to a
// product phase, on heating or cooling, with the tables of its kinetic model:
//   1 6 HEATING PEQ TABLE 100 TAU TABLE 110 N TABLE 120
//   6 3 COOLING K G 0.01 TABLE 240 G 0.05 TABLE 250
//   * KP TABLE 260 F TABLE 270
//   6 4 COOLING MS 385 KM 0.011 FCA TABLE 300 FCB TABLE 310
// Each line is read whole first, which makes its reaction definition in the
// store, and then split by the form the whole line shows.
class QUILLON_API Reaction : public ImportBase {
 public:
  Reaction(DataLine* dataLine, ImportObject* importObject);
  Reaction(const Reaction&) = default;
  Reaction& operator=(const Reaction&) = default;
  ~Reaction() override;

  unsigned importReaction();
  void readREACTIONDataLine();
  void readContinuedREACTIONDetails();
  void readREACTIONDetails();
  void readREACTIONDetailsWithNoState();
  void readMSKMDetails();

  // The line in hand, whole.
  std::string lastLine;
};

// How the whole line is split: a "*" line continues the line before; a line
// without a state word ("heating", "HEATING", "cooling", "COOLING", spelled
// just so) has none; a line with a state word and "MS", "ms", "KM" or "km" is
// a martensite line.  The tests look anywhere in the line.
enum class ReactionLineKind { Continued, NoState, WithState, Martensite };
QUILLON_API ReactionLineKind ClassifyReactionLine(const char* line);
