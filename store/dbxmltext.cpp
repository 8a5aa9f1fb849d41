#include "store/dbxmltext.h"

namespace quillon {

namespace {

const char kReplacementCharacter[] = "\xEF\xBF\xBD";

// Length of the well-formed UTF-8 sequence at `at` (1 to 4), or 0 when the
// bytes there are no such sequence (overlong forms and surrogates included).
size_t Utf8SequenceLength(const std::string& text, size_t at) {
  const unsigned char lead = static_cast<unsigned char>(text[at]);
  size_t length = 0;
  unsigned minimum = 0;
  unsigned code = 0;
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, minimum = 0x80, code = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, minimum = 0x800, code = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, minimum = 0x10000, code = lead & 0x07;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    const unsigned char next = static_cast<unsigned char>(text[at + i]);
    if ((next & 0xC0) != 0x80) return 0;
    code = (code << 6) | (next & 0x3F);
  }
  if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  // U+FFFE and U+FFFF are no XML characters either.
  if (code == 0xFFFE || code == 0xFFFF) return 0;
  return length;
}

bool IsXmlControlAllowed(unsigned char byte) { return byte == '\t' || byte == '\n' || byte == '\r'; }

void AppendLatin1(std::string& out, unsigned char byte) {
  out += static_cast<char>(0xC0 | (byte >> 6));
  out += static_cast<char>(0x80 | (byte & 0x3F));
}

}  // namespace

std::string XmlSafeText(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  size_t at = 0;
  while (at < text.size()) {
    const unsigned char byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x20 && !IsXmlControlAllowed(byte)) {
      out += kReplacementCharacter;
      ++at;
      continue;
    }
    const size_t length = Utf8SequenceLength(text, at);
    if (length == 0) {
      AppendLatin1(out, byte);
      ++at;
      continue;
    }
    out.append(text, at, length);
    at += length;
  }
  return out;
}

}  // namespace quillon
