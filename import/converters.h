#pragma once

// The converters of the import road: each runs on the raw words of one line,
// before its card is built, writes what it learns to the record store, and may
// rewrite words in place (a word slot holds 2050 bytes) so the card sees the
// rewritten text.

#include "core/export.h"

class ImportObject;

// Word slots of the line reader hold 2050 bytes; rewritten words are cut to fit.
constexpr unsigned kWordCapacity = 2050;

QUILLON_API void ConvertMaterialName(char** words, unsigned* numWords, int context, ImportObject* importObject);
QUILLON_API void ConvertComments(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Copies text over a word slot, cut to the slot's capacity.
QUILLON_API void OverwriteWord(char* word, const char* text);
