#pragma once

// The converters of the descriptive sections: phases, phase counts, variable
// lines and the renaming of variable names.  Like every converter they run on
// the raw words of one line before its card is built, write what they learn to
// the record store, and may rewrite words in place.

#include "core/export.h"

class ImportObject;

// Phase lines of "Phases:", "Phases", the two proportion sections and
// "Initial hardness"; the section keyword steers what the line means.
QUILLON_API void ConvertPhaseLine(char** words, unsigned* numWords, int context, ImportObject* importObject);

// The "PHASE n" line of a "MATERIAUX :" block.
QUILLON_API void ConvertPhaseCount(char** words, unsigned* numWords, int context, ImportObject* importObject);

// A variable line split at "=", parentheses and blanks: a constant with its
// phase conditions, or a link to a table.
QUILLON_API void ConvertVariableLine(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Turns the file's short variable names into the store's identifiers, by
// section keyword and active model.
QUILLON_API void ConvertVariableNames(char** words, unsigned* numWords, int context, ImportObject* importObject);

// The value the next "STATUS" line receives.  It starts at 50000 when the
// library loads and is never reset, so every status line of the process gets a
// number of its own.
QUILLON_API int GetStatusCounter();
