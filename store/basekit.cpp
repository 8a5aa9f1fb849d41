#include "store/basekit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

namespace {

// Bytes that are not valid UTF-8 are carried through wide text as U+DC00 plus
// the byte, a range that valid UTF-8 never produces, so they come back out
// unchanged (card files written in an 8-bit code page survive the trip).
constexpr wchar_t kRawByteBase = 0xDC00;
constexpr wchar_t kReplacement = 0xFFFD;

// The length of the UTF-8 sequence that starts at `text` and its code point,
// or 0 when the bytes there are no valid sequence (overlong forms, surrogates
// and values past U+10FFFF included).
int DecodeSequence(const unsigned char* text, wchar_t& codePoint) {
  const unsigned char lead = text[0];
  int length;
  unsigned long value;
  unsigned long smallest;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, value = lead & 0x1Fu, smallest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, value = lead & 0x0Fu, smallest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, value = lead & 0x07u, smallest = 0x10000;
  } else {
    return 0;
  }
  for (int i = 1; i < length; ++i) {
    if ((text[i] & 0xC0u) != 0x80u) return 0;  // also stops at the terminator
    value = (value << 6) | (text[i] & 0x3Fu);
  }
  if (value < smallest || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
  codePoint = static_cast<wchar_t>(value);
  return length;
}

std::wstring WideFromUtf8(const char* text) {
  std::wstring wide;
  if (text == nullptr) return wide;
  const auto* at = reinterpret_cast<const unsigned char*>(text);
  while (*at != 0) {
    if (*at < 0x80) {
      wide.push_back(static_cast<wchar_t>(*at++));
      continue;
    }
    wchar_t codePoint = 0;
    const int length = DecodeSequence(at, codePoint);
    if (length == 0) {
      wide.push_back(static_cast<wchar_t>(kRawByteBase + *at++));
    } else {
      wide.push_back(codePoint);
      at += length;
    }
  }
  return wide;
}

void AppendUtf8(std::string& out, wchar_t character) {
  auto value = static_cast<unsigned long>(character);
  if (value >= static_cast<unsigned long>(kRawByteBase) + 0x80 &&
      value <= static_cast<unsigned long>(kRawByteBase) + 0xFF) {
    out.push_back(static_cast<char>(value - kRawByteBase));
    return;
  }
  if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) value = kReplacement;
  if (value < 0x80) {
    out.push_back(static_cast<char>(value));
  } else if (value < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (value >> 6)));
    out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
  } else if (value < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (value >> 12)));
    out.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (value >> 18)));
    out.push_back(static_cast<char>(0x80 | ((value >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
  }
}

std::string Utf8FromWide(const wchar_t* text) {
  std::string narrow;
  if (text == nullptr) return narrow;
  for (const wchar_t* at = text; *at != 0; ++at) AppendUtf8(narrow, *at);
  return narrow;
}

std::string::size_type LastSeparator(const std::wstring& path) { return path.find_last_of(L"/\\"); }

// Writes all of `size` bytes, through short writes and interrupted calls.
bool WriteAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t written = write(fd, data, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    data += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool CopyContents(int from, int to) {
  char buffer[65536];
  for (;;) {
    const ssize_t got = read(from, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) return true;
    if (!WriteAll(to, buffer, static_cast<std::size_t>(got))) return false;
  }
}

bool SameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsBlankByte(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string LowerAsciiTrimmed(const char* text) {
  const char* start = text;
  while (IsBlankByte(*start)) ++start;
  const char* end = start + std::strlen(start);
  while (end > start && IsBlankByte(end[-1])) --end;
  std::string result;
  for (const char* at = start; at < end; ++at) {
    const char c = *at;
    result.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
  }
  return result;
}

void (*g_MessageHandler)(int, const wchar_t*) = nullptr;

void WriteMessageToStandardError(const wchar_t* text) {
  std::string line = Utf8FromWide(text);
  if (line.empty() || line.back() != '\n') line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

// ---- BkString --------------------------------------------------------------

BkString::BkString() = default;
BkString::BkString(const char* text, int) : m_Text(WideFromUtf8(text)) {}
BkString::BkString(const wchar_t* text, int) : m_Text(text != nullptr ? text : L"") {}
BkString::BkString(const BkString& other) : m_Text(other.m_Text) {}
BkString::~BkString() = default;

BkString& BkString::operator=(const BkString& other) {
  if (this != &other) SetText(other.m_Text);
  return *this;
}

BkString& BkString::operator=(const char* text) {
  SetText(WideFromUtf8(text));
  return *this;
}

BkString& BkString::operator=(const wchar_t* text) {
  SetText(text != nullptr ? std::wstring(text) : std::wstring());
  return *this;
}

BkString& BkString::operator+=(const char* text) {
  if (text != nullptr && *text != '\0') SetText(m_Text + WideFromUtf8(text));
  return *this;
}

BkString::operator const wchar_t*() const { return m_Text.c_str(); }

int BkString::Find(const wchar_t* text, int from) const {
  if (text == nullptr || from < 0 || static_cast<std::size_t>(from) > m_Text.size()) return -1;
  const std::wstring::size_type at = m_Text.find(text, static_cast<std::size_t>(from));
  return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

char* BkString::GetAnsiBuffer() {
  // Converted once per text, so a pointer handed out earlier stays good for
  // as long as the text doesn't change.
  if (!m_AnsiCurrent) {
    m_Ansi = Utf8FromWide(m_Text.c_str());
    m_AnsiCurrent = true;
  }
  return m_Ansi.data();
}

unsigned char BkString::IsEmpty() const { return m_Text.empty() ? 1 : 0; }

void BkString::SetText(std::wstring text) {
  m_Text = std::move(text);
  m_AnsiCurrent = false;
}

// ---- BkFileUtl -------------------------------------------------------------

BkFileUtl::BkFileUtl(const char* path, unsigned char) : m_Path(WideFromUtf8(path)) {
  const std::wstring::size_type cut = LastSeparator(m_Path);
  if (cut == std::wstring::npos) {
    m_FileName = m_Path;
  } else {
    m_Directory = m_Path.substr(0, cut + 1);
    m_FileName = m_Path.substr(cut + 1);
  }
}

BkFileUtl::~BkFileUtl() = default;

const wchar_t* BkFileUtl::GetFileName() { return m_FileName.c_str(); }

const wchar_t* BkFileUtl::GetPath() { return m_Directory.c_str(); }

unsigned char BkFileUtl::CopyIn(const wchar_t* path) const {
  if (path == nullptr || *path == 0 || m_Path.empty()) return 0;
  const std::string source = Utf8FromWide(m_Path.c_str());
  const std::string target = Utf8FromWide(path);

  const int from = open(source.c_str(), O_RDONLY);
  if (from < 0) return 0;
  struct stat sourceInfo;
  struct stat targetInfo;
  if (fstat(from, &sourceInfo) != 0 || !S_ISREG(sourceInfo.st_mode)) {
    close(from);
    return 0;
  }
  // Opening the source itself for writing would truncate it before the copy.
  if (stat(target.c_str(), &targetInfo) == 0 && SameFile(sourceInfo, targetInfo)) {
    close(from);
    return 1;
  }
  const int to = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (to < 0) {
    close(from);
    return 0;
  }
  bool ok = CopyContents(from, to);
  ok = (close(to) == 0) && ok;
  close(from);
  if (!ok) unlink(target.c_str());
  return ok ? 1 : 0;
}

unsigned char BkFileUtl::IsDirectoryName(const wchar_t* path) {
  if (path == nullptr || *path == 0) return 0;
  struct stat info;
  if (stat(Utf8FromWide(path).c_str(), &info) != 0) return 0;
  return S_ISDIR(info.st_mode) ? 1 : 0;
}

// ---- Variables and messages ------------------------------------------------

const wchar_t* BkVariableGetValue(const wchar_t* name, int) {
  if (name == nullptr || *name == 0) return nullptr;
  // One slot per name, so a value handed out stays put while other names are
  // looked up.
  static std::map<std::wstring, std::wstring> values;
  const char* value = std::getenv(Utf8FromWide(name).c_str());
  if (value == nullptr) {
    values.erase(name);
    return nullptr;
  }
  std::wstring& slot = values[name];
  slot = WideFromUtf8(value);
  return slot.c_str();
}

int BkVariableGetBoolean(const wchar_t* name, int fallback) {
  if (name == nullptr || *name == 0) return fallback;
  const char* value = std::getenv(Utf8FromWide(name).c_str());
  if (value == nullptr) return fallback;
  struct Word {
    const char* text;
    int truth;
  };
  static const Word kWords[] = {{"1", 1},  {"true", 1},  {"yes", 1}, {"on", 1},
                                {"0", 0},  {"false", 0}, {"no", 0},  {"off", 0}};
  const std::string word = LowerAsciiTrimmed(value);
  for (const Word& known : kWords) {
    if (word == known.text) return known.truth;
  }
  return fallback;
}

void BkOutputMessage(int kind, const wchar_t* text) {
  if (text == nullptr) return;
  if (g_MessageHandler != nullptr) {
    g_MessageHandler(kind, text);
    return;
  }
  WriteMessageToStandardError(text);
}

void BkSetMessageHandler(void (*handler)(int kind, const wchar_t* text)) {
  g_MessageHandler = handler;
}

BkConversionAllocator::BkConversionAllocator() = default;
BkConversionAllocator::~BkConversionAllocator() = default;
