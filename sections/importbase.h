#pragma once

// The frame every import section reader shares: one line step, told once, and
// driven by a row of data per line form (read kind, wanted words, delimiters,
// end keywords, card name, fields, converter, store calls after the card).

#include <string>

#include "core/card.h"
#include "core/dataline.h"
#include "core/export.h"
#include "core/importobject.h"

class ImportBase;

// A converter runs on the raw words before the card is built, so that a word it
// rewrites in place reaches the card too.
using Converter = void (*)(char** words, unsigned* numWords, int context, ImportObject* importObject);
// Store calls made once the line's card is in the section.
using AfterCard = void (*)(ImportBase& reader);

// How a line step gets its words from the DataLine.
enum class LineRead {
  Words,       // readNextCardAsWords: the next non-blank line, cut at the delimiters
  RawLine,     // readRawData: the next line as it stands, blank lines included
  SplitHeld,   // splitIntoWords on word 0: the line already held, no new line read
};

// The names and types of a card's fields.  Types are those of Card::addFields.
struct FieldList {
  const char* const* names;
  const unsigned* types;
  unsigned count;
};

// Every field of a section reader's card is text (type 5) unless a row says otherwise.
QUILLON_API extern const unsigned kTextFieldTypes[32];

template <unsigned N>
constexpr FieldList TextFields(const char* const (&names)[N]) {
  static_assert(N <= 32, "a card has at most 32 text fields");
  return FieldList{names, kTextFieldTypes, N};
}

// One line form of a section.
struct LineStep {
  LineRead read;
  bool splitAll;            // SplitHeld only: store every token instead of a rest-of-line word
  const char* delimiters;   // null means the blank
  const char* endKeywords;  // comma separated prefixes, compared without case; null means none
  const char* cardName;
  FieldList fields;         // the wanted word count is the field count
  Converter converter;      // null when the line form has none
  int converterContext;
  AfterCard afterCard;      // null when the line form makes no store call
  bool clearHeldLine;       // split steps on the held line empty word 0 after the card,
                            // which ends the split loop of one-line sections
};

class QUILLON_API ImportBase {
 public:
  ImportBase(DataLine* dataLine, ImportObject* importObject);
  ImportBase(const ImportBase&) = default;
  ImportBase& operator=(const ImportBase&) = default;
  virtual ~ImportBase();

  unsigned numWords;
  unsigned numFields;
  char** words;
  ImportObject* importObject;
  DataLine* dataLine;
  Card* currentCard;

  // The common line step.  When lastLine is given it receives word 0 of the line
  // read (emptied first), which the readers use to choose the next grammar.
  void runLineStep(const LineStep& step, std::string* lastLine = nullptr);
  // The common section loop: the line step until a step leaves numWords at 0.
  unsigned runSectionLoop(const LineStep& step, std::string* lastLine = nullptr);
};

// The entry functions: each reads one section with a reader of its own, on the
// stack, and returns what importXxx returned (the driver does not look at it).
QUILLON_API unsigned runMatListImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runCommentsImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runTypicalAppsImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runLabelExplanationImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMaterialDetailsImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMatClassImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMaterialTypeImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runDefMaterialImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runChemicalCompositionImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runChimieImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runCompositionImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runGrainImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runInitialHardnessImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMateriauxImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMatLabelsImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMatTablesImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMetallurgyImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runMetallurgyTableImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runPhaseInfoImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runPhaseInfoIfWireImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runPhasesImport(DataLine* dataLine, ImportObject* importObject);
QUILLON_API unsigned runReactionImport(DataLine* dataLine, ImportObject* importObject);
