#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "core/export.h"

// Where every section of a card file starts. One pass over the whole file at construction, before
// anything is parsed; the import driver then seeks to each recorded offset in turn.
class QUILLON_API DataLoc {
public:
    // Scans `stream` from its start; the stream is left at its end.
    explicit DataLoc(FILE* stream);

    // Cuts `text` in place behind its first word. The first character is taken as it is, so that a
    // keyword may start with any character; the word goes on over letters and "_".
    void getKeyword(char* text);

    // Trimmed keyword lines in file order; "NOM :" and "GRAIN" lines whole, with their words.
    std::vector<std::string> keywords;
    // For each keyword, the offset of the start of its raw line, in step with `keywords`.
    std::vector<long> offsets;
    // Every "<closing keyword> not found in <material>" line, in the order found.
    std::string warnings;
    // The last "NOM :" or "GRAIN" line seen; empty before the first.
    std::string currentName;

private:
    void record(const char* trimmedLine, long offset);
};
