#include "store/orvanegeneric.h"

#include <cctype>
#include <cstring>

#include "store/dombridge.h"
#include "store/xmlobject.h"

namespace {

bool IsBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

const char* SkipBlanks(const char* at) {
  while (IsBlank(*at)) ++at;
  return at;
}

const char* SkipDigits(const char* at, int& count) {
  for (; IsDigit(*at); ++at) ++count;
  return at;
}

// Calls `piece(start, length)` for every non-empty run of text between
// separators; both splitters share this so they cut alike.
template <typename Piece>
void ForEachPiece(const char* text, char separator, Piece piece) {
  const char* start = text;
  for (const char* at = text;; ++at) {
    if (*at != separator && *at != '\0') continue;
    if (at > start && !piece(start, static_cast<std::size_t>(at - start))) return;
    if (*at == '\0') return;
    start = at + 1;
  }
}

std::string AttributeOrEmpty(void* element, const char* name) {
  if (name == nullptr) return std::string();
  char* value = DomGetAttVal(element, name);
  if (value == nullptr) return std::string();
  std::string copy = value;
  DomStringRelease(value);
  return copy;
}

bool HasAttribute(void* element, const char* name) {
  char* value = DomGetAttVal(element, name);
  DomStringRelease(value);
  return value != nullptr;
}

// Parses the file and calls `row` for every element of it in document order.
bool ForEachElementOfFile(const char* path, std::string& reason,
                          const std::function<void(void* element)>& row) {
  void* doc = quillon::DomParseFileWithReason(path, reason);
  if (doc == nullptr) return false;
  quillon::ForEachElement(DomGetRootElement(doc), row);
  DomFreeDocument(doc);
  return true;
}

std::vector<std::string>& WarningLog() {
  static std::vector<std::string> warnings;
  return warnings;
}

}  // namespace

char* OrvaneGeneric::Trim(char* text) {
  if (text == nullptr) return nullptr;
  char* start = text;
  while (IsBlank(*start)) ++start;
  char* end = start + std::strlen(start);
  while (end > start && IsBlank(end[-1])) --end;
  *end = '\0';
  return start;
}

int OrvaneGeneric::SplitIntoWords(const char* text, char separator, char (*rows)[128],
                                  int maxRows) {
  if (text == nullptr || rows == nullptr || maxRows <= 0) return 0;
  int count = 0;
  ForEachPiece(text, separator, [&](const char* start, std::size_t length) {
    constexpr std::size_t kLongest = kSplitRowSize - 1;
    const std::size_t kept = length < kLongest ? length : kLongest;
    std::memcpy(rows[count], start, kept);
    rows[count][kept] = '\0';
    ++count;
    return count < maxRows;
  });
  return count;
}

bool OrvaneGeneric::IsValidNumber(char* text) {
  if (text == nullptr) return false;
  const char* at = SkipBlanks(text);
  if (*at == '+' || *at == '-') ++at;
  int digits = 0;
  at = SkipDigits(at, digits);
  if (*at == '.') at = SkipDigits(at + 1, digits);
  if (digits == 0) return false;
  if (*at == 'e' || *at == 'E') {
    ++at;
    if (*at == '+' || *at == '-') ++at;
    int exponentDigits = 0;
    at = SkipDigits(at, exponentDigits);
    if (exponentDigits == 0) return false;
  }
  return *SkipBlanks(at) == '\0';
}

void OrvaneGeneric::GetFormatOfNumberWithSpace(const char* text, std::string& out) {
  out.clear();
  if (text == nullptr) return;
  const char* start = SkipBlanks(text);
  const char* end = start + std::strlen(start);
  while (end > start && IsBlank(end[-1])) --end;
  if (end == start) return;
  out.reserve(static_cast<std::size_t>(end - start) + 1);
  out.push_back(' ');
  out.append(start, end);
}

int OrvaneGeneric::GetMappingFromXMLFile(
    const char* path, std::multimap<std::string, std::vector<std::string>>& map, const char* key,
    const char* first, const char* second) {
  if (path == nullptr || key == nullptr || first == nullptr) return 0;
  std::string reason;
  // A multimap puts a row behind the rows of its key already there, so rows
  // of one key keep the file's order.
  const bool read = ForEachElementOfFile(path, reason, [&](void* element) {
    if (!HasAttribute(element, key) || !HasAttribute(element, first)) return;
    map.emplace(AttributeOrEmpty(element, key),
                std::vector<std::string>{AttributeOrEmpty(element, first),
                                         AttributeOrEmpty(element, second)});
  });
  if (!read) return 0;
  return 1;
}

int OrvaneGeneric::GetMappingInfoFromXMLFile(const char* path, const char* a, const char* b,
                                             std::map<std::string, std::string>& map,
                                             std::string& text) {
  if (path == nullptr || a == nullptr || b == nullptr) {
    text = "No mapping file or attribute names given";
    return 0;
  }
  std::string reason;
  const bool read = ForEachElementOfFile(path, reason, [&](void* element) {
    if (!HasAttribute(element, a) || !HasAttribute(element, b)) return;
    map.emplace(AttributeOrEmpty(element, a), AttributeOrEmpty(element, b));
  });
  if (!read) {
    text = reason;
    return 0;
  }
  return 1;
}

int OrvaneGenericAPI::strtoken(const char* text, char separator, std::vector<std::string>& out) {
  if (text == nullptr) return 0;
  int count = 0;
  ForEachPiece(text, separator, [&](const char* start, std::size_t length) {
    out.emplace_back(start, length);
    ++count;
    return true;
  });
  return count;
}

std::string OrvaneGenericAPI::ReplaceAllOccurrencesOfString(std::string text,
                                                            const std::string& from,
                                                            const std::string& to) {
  if (from.empty()) return text;
  std::string::size_type at = text.find(from);
  while (at != std::string::npos) {
    text.replace(at, from.size(), to);
    at = text.find(from, at + to.size());
  }
  return text;
}

void OrvaneGenericLog::AddDBWarning(const char* text) {
  if (text != nullptr) WarningLog().emplace_back(text);
}

const std::vector<std::string>& OrvaneGenericLog::GetDBWarnings() { return WarningLog(); }

void OrvaneGenericLog::ClearDBWarnings() { WarningLog().clear(); }
