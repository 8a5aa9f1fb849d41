#include <string>

#include "core/importobject.h"
#include "import/converters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// The owner tag of a material's metadata, written when its first comment line arrives.
constexpr const char* kOwnerName = "Halvern";

// Line ends leave the stored text: a carriage return becomes a blank and a line
// feed ";", so "one\r\ntwo\r\n" is kept as "one ;two ;".
void FlattenLineEnds(std::string& text) {
  for (char& c : text) {
    if (c == '\r') c = ' ';
  }
  for (char& c : text) {
    if (c == '\n') c = ';';
  }
}

}  // namespace

// Builds the material's comment text, one raw line at a time.  The first line
// of a block becomes the value of the comment dataset as it stands; the
// material's first line also gives the material its metadata and goes no
// further.  Later lines are appended unless the text holds them already.
void ConvertComments(char** words, unsigned* numWords, int /*context*/, ImportObject* importObject) {
  if (*numWords == 0) return;
  if (importObject->getCardList().empty())
    OrvaneStaticVars::GetOrCreateDataset("CategoryComments", "IDref", true, words[0], nullptr);

  OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetCurrentMaterial();
  if (material == nullptr) return;
  if (material->m_Metadata.empty()) {
    OrvaneMLRecordMetadata* metadata = new OrvaneMLRecordMetadata();
    material->AddMetadata(metadata);
    metadata->SetName(material->GetID());
    metadata->SetOwnerName(kOwnerName);
    return;
  }

  OrvaneMLRecordDataset* dataset = OrvaneStaticVars::GetCurrentDataset();
  if (dataset == nullptr || dataset->m_String == nullptr) return;
  std::string text = dataset->m_String->GetValue();
  if (text.find(words[0]) == std::string::npos) text += words[0];
  FlattenLineEnds(text);
  dataset->m_String->SetValue(text.c_str());
}
