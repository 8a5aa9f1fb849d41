#pragma once

// Text as an XML file can carry it.  Card files are 8-bit text of no stated
// encoding, while the database is UTF-8: bytes that don't form UTF-8 are read
// as Latin-1 (the usual encoding of such files), and the control characters
// that XML 1.0 can't hold at all become U+FFFD, so that a saved database can
// always be read back.  Valid UTF-8 with tab, line feed and carriage return
// passes unchanged.

#include <string>

namespace quillon {

std::string XmlSafeText(const std::string& text);

}  // namespace quillon
