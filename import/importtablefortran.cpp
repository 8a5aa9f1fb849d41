// Function tables: "id / FORTRAN" opens one, the lines behind it (which have
// no slash, so the line reader leaves the second word at "FORTRAN") are its
// text, kept in the String of the function's dataset as "FORTRAN;" and each
// line followed by ";", the closing "END" without.

#include <cstring>
#include <string>

#include "import/converters.h"
#include "import/tableconverters.h"
#include "store/orvane.h"
#include "store/orvanegeneric.h"
#include "store/orvaneml.h"

namespace {

// Every function table of the process gets a number of its own, counted like
// the "STATUS" lines that refer to them; never reset.
int functionTableCounter = 50000;

bool IsNumber(const char* word) {
  std::string copy(word);
  return OrvaneGeneric::IsValidNumber(copy.data());
}

}  // namespace

int GetFortranTableCounter() { return functionTableCounter; }

void ImportFortranTableLine(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  if (*numWords == 0) return;
  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetCurrentDataset();
  if (dataset == nullptr) return;
  // Exactly "FORTRAN", terminator included.
  if (std::strcmp(words[1], "FORTRAN") != 0) return;

  if (IsNumber(words[0])) {
    // A new function: the file's id gives way to the running number, which
    // the card and the dataset lookup of this line then see.
    OverwriteWord(words[0], std::to_string(functionTableCounter).c_str());
    ++functionTableCounter;
    return;
  }

  if (dataset->m_String == nullptr) {
    dataset->m_String = new OrvaneMLRecordString;
    dataset->m_String->SetValue((std::string("FORTRAN;") + words[0] + ";").c_str());
    return;
  }
  std::string text = dataset->m_String->GetValue();
  text += words[0];
  if (std::strcmp(words[0], "END") != 0) text += ";";
  dataset->m_String->SetValue(text.c_str());
}
