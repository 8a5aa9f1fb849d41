#pragma once

// Strings, paths, environment variables and host messages.  Wide text is
// converted to and from narrow text as UTF-8 without looking at the process
// locale.  A narrow byte that is not part of valid UTF-8 becomes the wide
// character U+DC00 plus that byte, and turns back into the same byte, so text
// in another 8-bit encoding survives a round trip unchanged.

#include <string>

#include "core/export.h"

// A wide-character string.  The `mode` arguments are accepted and ignored.
class QUILLON_API BkString {
 public:
  BkString();
  BkString(const char* text, int mode = 0);
  BkString(const wchar_t* text, int mode = 0);
  BkString(const BkString& other);
  BkString& operator=(const BkString& other);
  ~BkString();

  // Null sets an empty text.
  BkString& operator=(const char* text);
  BkString& operator=(const wchar_t* text);
  // Null appends nothing.
  BkString& operator+=(const char* text);

  operator const wchar_t*() const;

  // Position of `text` at or after `from`, exact case; negative if absent, if
  // `text` is null or if `from` is negative or past the end.
  int Find(const wchar_t* text, int from = 0) const;

  // The text as UTF-8, valid while this object lives and is not changed.
  char* GetAnsiBuffer();

  unsigned char IsEmpty() const;

 private:
  void SetText(std::wstring text);

  std::wstring m_Text;
  std::string m_Ansi;          // UTF-8 form, made on demand
  bool m_AnsiCurrent = false;  // whether m_Ansi still matches m_Text
};

// A path and the file it names.  Both "/" and "\\" separate directories.
class QUILLON_API BkFileUtl {
 public:
  // `mode` is accepted and ignored.  A null path is an empty path.
  BkFileUtl(const char* path, unsigned char mode = 0);
  virtual ~BkFileUtl();

  // The part after the last separator; the whole path when it has none.
  const wchar_t* GetFileName();
  // Everything up to and including the last separator, that separator as the
  // path wrote it ("C:\\data\\" or "/tmp/x/"), so a file name can be appended
  // as it stands.  Empty when the path has no directory part.
  const wchar_t* GetPath();

  // Copies the file named by this object to `path`, replacing a file there.
  // Non-zero on success; 0 if the source can't be read or the target written.
  unsigned char CopyIn(const wchar_t* path) const;

  // Non-zero if `path` names an existing directory.
  static unsigned char IsDirectoryName(const wchar_t* path);

 private:
  std::wstring m_Path;
  std::wstring m_FileName;
  std::wstring m_Directory;
};

// The value of an environment variable as wide text; null when it is unset
// (an empty value gives an empty text).  The pointer stays valid until the
// next call for the same name.  `mode` is accepted and ignored.
QUILLON_API const wchar_t* BkVariableGetValue(const wchar_t* name, int mode = 1);

// "1", "true", "yes", "on" give 1 and "0", "false", "no", "off" give 0,
// without regard to case and blanks around them; any other value, an unset
// variable or a null name give `fallback`.
QUILLON_API int BkVariableGetBoolean(const wchar_t* name, int fallback);

// Shows a message in the host.  Without a handler the text goes to standard
// error as UTF-8, with a line feed added if it has none.  Null text is ignored.
QUILLON_API void BkOutputMessage(int kind, const wchar_t* text);

// Installs the host's message handler; null restores the default.
QUILLON_API void BkSetMessageHandler(void (*handler)(int kind, const wchar_t* text));

// A scope object held around text conversions; the conversions here need no
// set-up, so it does nothing.
class QUILLON_API BkConversionAllocator {
 public:
  BkConversionAllocator();
  ~BkConversionAllocator();
  BkConversionAllocator(const BkConversionAllocator&) = delete;
  BkConversionAllocator& operator=(const BkConversionAllocator&) = delete;
};
