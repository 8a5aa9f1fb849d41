#pragma once

// The card file checker behind `quillon check`, and the guard that `quillon import` runs first.
// It reads a file on its own, without a record store, and names every line that the import would
// read otherwise than its writer most likely meant: sections left open, materials given twice,
// lines the library cannot hold, keywords misspelt by case or blanks, and a DEF_MATERIAL block
// that swallows what follows it.

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace quillon {
namespace cli {

// The longest line, after trimming, that the library's line helpers accept. One character more and
// they end the whole process, so the import must never be started on such a file.
constexpr std::size_t kLongestLine = 8191;

enum class FindingKind {
    kUnclosedAtMaterial,  // an opened section still open at the next "NOM :" line
    kUnclosedAtEnd,       // an opened section still open at the end of the file
    kDuplicateMaterial,   // a "NOM :" line that repeats an earlier one
    kOverlongLine,        // a line of kLongestLine + 1 characters or more after trimming
    kKeywordLookalike,    // a keyword spelt with other case or other blanks
    kDefMaterialNotLast,  // located sections behind a DEF_MATERIAL block
};

struct Finding {
    unsigned long line = 0;  // 1-based line of the file the finding is about
    FindingKind kind = FindingKind::kOverlongLine;
    std::string message;
    // For kUnclosedAtMaterial: the line the import's own locator writes for it, without its line
    // feed ("FIN COMMENTAIRES not found in NOM : ..."). Empty for every other kind.
    std::string locatorText;
};

// Checks a card file read from `in` (opened in binary mode: a carriage return is part of its line
// until trimmed). Findings come sorted by line; findings on one line keep the order they were made.
std::vector<Finding> CheckCardStream(std::istream& in);

// The same for a text held in memory.
std::vector<Finding> CheckCardText(const std::string& text);

// Checks the file at `path`. False, with `findings` empty, when the file cannot be opened for
// reading or is a directory.
bool CheckCardFile(const std::string& path, std::vector<Finding>& findings);

// "FILE:LINE: message", without a line feed.
std::string FormatFinding(const std::string& file, const Finding& finding);

}  // namespace cli
}  // namespace quillon
