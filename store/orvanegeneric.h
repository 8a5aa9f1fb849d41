#pragma once

// The store's small text helpers and its warning log.

#include <map>
#include <string>
#include <vector>

#include "core/export.h"

class QUILLON_API OrvaneGeneric {
 public:
  // Rows that SplitIntoWords fills unless told otherwise.  A caller's buffer
  // must have at least this many rows of 128 characters, or the caller passes
  // its own row count.
  static constexpr int kSplitMaxRows = 64;
  static constexpr int kSplitRowSize = 128;

  // Ends the text after its last non-blank character (in place) and gives the
  // first non-blank one.  Blanks are the space, tab, line feed, carriage
  // return, vertical tab and form feed.  Null gives null.
  static char* Trim(char* text);

  // Cuts `text` at each `separator` and copies the pieces, each ended by a
  // terminator, into `rows`; the result is the number of pieces.
  // - Empty pieces (two separators in a row, or one at either end) are not
  //   pieces: "a,,b" gives "a" and "b", and "  x " cut at blanks gives "x".
  //   Callers split model lists at commas and "Phase 1" at blanks, where an
  //   empty piece would only be noise.
  // - Pieces keep their own blanks: only the separator cuts.
  // - A piece longer than 127 characters keeps its first 127; the rest of it
  //   is dropped (it does not become a piece of its own).
  // - Past `maxRows` pieces the rest of the text is ignored.
  // Null text or rows give 0.
  static int SplitIntoWords(const char* text, char separator, char (*rows)[128],
                            int maxRows = kSplitMaxRows);

  // True if the whole text is one decimal number: optional blanks, an optional
  // "+" or "-", digits with at most one ".", at least one digit, then
  // optionally "e" or "E", an optional sign and at least one digit, then
  // optional blanks.  So "12", " 12 ", "-1.5e3", ".5", "5." and "+3" are
  // numbers; "", "   ", "1e", "12abc", "1.2.3", "nan", "inf", "0x10" and the
  // card file's "1*-5" are not.  The text is not changed.
  static bool IsValidNumber(char* text);

  // The number as it is written, blanks around it removed, with one blank in
  // front, so it can be appended to a card line as a word of its own:
  // "1.5E-05" and "  1.5E-05 " both give " 1.5E-05".  `out` is replaced.  A
  // null or blank text gives an empty `out`.
  static void GetFormatOfNumberWithSpace(const char* text, std::string& out);

  // Parses the XML file at `path` and, for every element (any name, document
  // order) carrying both the attribute `key` and the attribute `first`,
  // inserts value(key) -> [value(first), value(second) or "" if absent].
  // Rows are added to what `map` already holds; rows of one key keep the
  // file's order.  Non-zero on success; 0 on an unreadable or malformed file or a null
  // argument, and `map` is then left as it was.
  static int GetMappingFromXMLFile(const char* path,
                                   std::multimap<std::string, std::vector<std::string>>& map,
                                   const char* key, const char* first, const char* second);

  // Every element carrying both attributes `a` and `b` gives
  // map[value(a)] = value(b); the first element of a value of `a` wins, and
  // so does an entry `map` already held.
  // Non-zero on success; on failure 0, `map` unchanged and `text` set to a
  // reason that names the file.
  static int GetMappingInfoFromXMLFile(const char* path, const char* a, const char* b,
                                       std::map<std::string, std::string>& map,
                                       std::string& text);
};

class QUILLON_API OrvaneGenericAPI {
 public:
  // Appends the pieces of `text` cut at `separator` to `out` and gives how
  // many it appended.  As with SplitIntoWords, empty pieces are skipped and
  // pieces keep their blanks; there is no length limit.  Null text gives 0.
  static int strtoken(const char* text, char separator, std::vector<std::string>& out);

  // Every occurrence of `from`, left to right and not overlapping, replaced by
  // `to`; replaced text is not searched again.  An empty `from` gives the text
  // unchanged.
  static std::string ReplaceAllOccurrencesOfString(std::string text, const std::string& from,
                                                   const std::string& to);
};

// The store's warning log: kept in memory for the host to read.
class QUILLON_API OrvaneGenericLog {
 public:
  // Appends a copy of the text; null is ignored.
  static void AddDBWarning(const char* text);
  static const std::vector<std::string>& GetDBWarnings();
  static void ClearDBWarnings();
};
