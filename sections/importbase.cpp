#include "sections/importbase.h"

const unsigned kTextFieldTypes[32] = {5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5,
                                      5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5};

namespace {

// Card flag values: build cards (4), run converters (16).  Bit 3 of the DataLine
// flags marks the end of the section.
constexpr unsigned kBuildCards = 4;
constexpr unsigned kRunConverters = 16;
constexpr unsigned kEndOfSectionBit = 3;

}  // namespace

ImportBase::ImportBase(DataLine* line, ImportObject* section)
    : numWords(0), numFields(0), words(nullptr), importObject(section), dataLine(line), currentCard(nullptr) {}

ImportBase::~ImportBase() {
  numWords = 0;
  numFields = 0;
  words = nullptr;
  importObject = nullptr;
  dataLine = nullptr;
  currentCard = nullptr;
}

void ImportBase::runLineStep(const LineStep& step, std::string* lastLine) {
  // Local tables, as Card::addFields takes them.
  const char* names[32];
  unsigned types[32];
  for (unsigned i = 0; i < step.fields.count; ++i) {
    names[i] = step.fields.names[i];
    types[i] = step.fields.types[i];
  }
  numWords = numFields = step.fields.count;

  switch (step.read) {
    case LineRead::Words:
      words = dataLine->readNextCardAsWords(numWords, step.delimiters, step.endKeywords);
      break;
    case LineRead::RawLine:
      words = dataLine->readRawData(numWords, step.endKeywords);
      // At end of file the raw read gives no words and leaves the count alone:
      // a section cut off by the end of the file ends there, without a card.
      if (words == nullptr) {
        numWords = 0;
        if (lastLine != nullptr) lastLine->clear();
        return;
      }
      break;
    case LineRead::SplitHeld: {
      unsigned wordIndex = 0;
      words = dataLine->splitIntoWords(wordIndex, step.delimiters, numWords, step.splitAll);
      break;
    }
  }
  if (lastLine != nullptr) {
    lastLine->clear();
    if (words != nullptr) *lastLine = words[0];
  }

  if (numWords == 0 && dataLine->isFlagOn(kEndOfSectionBit)) return;

  if (Card::isFlagOn(kRunConverters) && step.converter != nullptr)
    step.converter(words, &numWords, step.converterContext, importObject);

  if (Card::isFlagOn(kBuildCards)) {
    Card* card = new Card(step.cardName);
    currentCard = card;
    card->addFields(numFields, types, names, numWords, words);
    importObject->addCard(card);
    if (step.afterCard != nullptr) step.afterCard(*this);
    if (step.clearHeldLine && words != nullptr) words[0][0] = 0;
  }
}

unsigned ImportBase::runSectionLoop(const LineStep& step, std::string* lastLine) {
  runLineStep(step, lastLine);
  while (numWords != 0) runLineStep(step, lastLine);
  return 0;
}
