#include <algorithm>
#include <cstring>
#include <string>
#include <strings.h>

#include "import/cardsetimport.h"
#include "import/converters.h"
#include "store/orvane.h"

namespace {

// A distortion file prefixes material types with "DE", unless they have it already.
bool WantsDistortionPrefix(const std::string& type) {
  return CardsetImport::m_DistortionFlag != 0 && strncasecmp(type.c_str(), "de", 2) != 0;
}

// A list line: MatType MaterialID MatModelID Units.  The type always goes in
// front of the identifier, even when the identifier already starts with it.
void ConvertListLine(char** words, unsigned numWords) {
  std::string name = words[0];
  if (WantsDistortionPrefix(name)) name = "DE" + name;
  name += "_";
  name += words[1];
  OverwriteWord(words[1], name.c_str());
  if (numWords > 2) OrvaneStaticVars::SetActiveModel(words[2]);
}

// A name line: NOM : MatType MaterialID MatModelID Units.  Here an identifier
// that already starts with the type is taken as the whole name.
void ConvertNameLine(char** words, unsigned numWords) {
  std::string name = words[1];
  OrvaneStaticVars::SetCurrentMaterialType(name.c_str());
  if (WantsDistortionPrefix(name)) {
    name = "DE" + name;
    OverwriteWord(words[1], name.c_str());
  }
  name += "_";
  if (strncasecmp(words[2], words[1], std::strlen(words[1])) == 0)
    name = words[2];
  else
    name += words[2];
  OrvaneStaticVars::GetOrCreateMaterial(name.c_str());
  OrvaneStaticVars::GetOrCreateDataset("Material_type", "IDref", true, words[1], nullptr);
  OverwriteWord(words[2], name.c_str());
  if (numWords > 3) OrvaneStaticVars::SetActiveModel(words[3]);
}

}  // namespace

void OverwriteWord(char* word, const char* text) {
  const size_t length = std::min<size_t>(std::strlen(text), kWordCapacity - 1);
  std::memmove(word, text, length);
  word[length] = 0;
}

void ConvertMaterialName(char** words, unsigned* numWords, int /*context*/, ImportObject* /*importObject*/) {
  if (*numWords < 2) return;
  if (std::strncmp(words[0], "NOM", 3) == 0)
    ConvertNameLine(words, *numWords);
  else
    ConvertListLine(words, *numWords);
}
