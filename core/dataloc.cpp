#include "core/dataloc.h"

#include <cctype>
#include <cstring>
#include <map>

#include "core/dataline.h"
#include "core/keywords.h"

namespace {

// The locator's line buffer. A longer line reaches the scan in pieces, and each piece is judged as
// a line of its own.
constexpr int kLocatorLineSize = 1024;

// Material headers are told by their first five characters only, so "GRAIN" lines with more
// letters behind and "NOM :" lines with their words both count.
constexpr size_t kHeaderPrefixLength = 5;

enum SectionState { kOpen = 0, kClosed = 1 };

bool IsMaterialHeader(const char* line) {
    return std::strncmp(line, "NOM :", kHeaderPrefixLength) == 0 ||
           std::strncmp(line, "GRAIN", kHeaderPrefixLength) == 0;
}

bool IsGrainLine(const char* line) { return std::strncmp(line, "GRAIN", kHeaderPrefixLength) == 0; }

}  // namespace

DataLoc::DataLoc(FILE* stream) {
    if (stream == nullptr) return;

    // Closing keyword -> state. An ordered map, so that the reports at a header come out in the
    // order of the closing keywords, not in the order the sections were opened.
    std::map<std::string, int> openEnds;
    for (const auto& pair : BalancedKeywordTable) openEnds[pair.second] = kClosed;

    std::rewind(stream);
    char line[kLocatorLineSize];
    while (std::fgets(line, kLocatorLineSize, stream) != nullptr) {
        const long rawLength = static_cast<long>(std::strlen(line));
        Generic::RemoveLeadingAndTrailingBlanks(line);
        if (line[0] == '\0') continue;
        const long offset = std::ftell(stream) - rawLength;

        if (IsMaterialHeader(line)) {
            // A GRAIN line sits inside a material, so it must not close the sections of it; only the
            // next "NOM :" line may report what was left open.
            if (!IsGrainLine(line)) {
                for (auto& end : openEnds) {
                    if (end.second != kOpen) continue;
                    warnings += end.first;
                    warnings += " not found in ";
                    warnings += currentName;
                    warnings += '\n';
                    end.second = kClosed;
                }
            }
            record(line, offset);
            currentName = line;
            continue;
        }

        // Keyword lines are whole-line and exact: a keyword with words behind it is data.
        if (KeywordPairTable.count(line) != 0) {
            record(line, offset);
            const auto balanced = BalancedKeywordTable.find(line);
            if (balanced != BalancedKeywordTable.end()) openEnds[balanced->second] = kOpen;
            continue;
        }

        const auto end = openEnds.find(line);
        if (end != openEnds.end()) end->second = kClosed;
    }
}

void DataLoc::record(const char* trimmedLine, long offset) {
    offsets.push_back(offset);
    keywords.emplace_back(trimmedLine);
}

void DataLoc::getKeyword(char* text) {
    if (text == nullptr || text[0] == '\0') return;
    char* cursor = text + 1;
    while (std::isalpha(static_cast<unsigned char>(*cursor)) || *cursor == '_') ++cursor;
    *cursor = '\0';
}
