#pragma once

// The converters of "REACTION" lines.  Each reaction line makes one reaction
// definition in the metallurgy model of the material ("ReactionDefinition"
// in "Metallurgy_Weld", or "TemperReactionModel" in "Tempering_Weld" for the
// card model "tempering"); its details then fill that definition: parent and
// product phase, thermal path, and one dataset per kinetic key, linked to the
// metallurgy tables that hold its values, one table per grain size where the
// line gives sizes.

#include <cstddef>
#include <string>
#include <vector>

#include "core/export.h"

class ImportObject;
class OrvaneMLRecordDataset;

// The whole line, in word 0: makes the next reaction definition (a "*" line
// continues the last one) and makes it the definition the store fills next.
// A count of 0 is the end of the file and makes nothing.
QUILLON_API void ConvertReactionLine(char** words, unsigned* numWords, int context = 0,
                                     ImportObject* importObject = nullptr);

// The split line: phases and thermal path from words 0 to 2, "FCA" of a
// martensite line renamed "FCAK", then the table details of the line.
QUILLON_API void ConvertReactionDetails(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Walks the blank-separated tokens of the details text: keys with their
// tables ("K TABLE 7"), with tables per grain size ("K G 10. TABLE 8 G 20.
// TABLE 9"), and tokens that continue the line before.
QUILLON_API void ParseReactionTableDetails(const char* details);

// One grain size curve of `dataset` from the "G" at tokens[index]; or, with
// `last` (the open end of the line before), the rest of it from tokens[index].
// Moves `index` as far as it read; false when the line ran out before the
// table id.
QUILLON_API bool AddGrainSizeCurve(OrvaneMLRecordDataset* dataset, OrvaneMLRecordDataset* last,
                                   const std::vector<std::string>& tokens, size_t& index);

// Links `dataset` to the table tokens[index] and files it under that id.
QUILLON_API void LinkReactionTable(OrvaneMLRecordDataset* dataset, const std::vector<std::string>& tokens,
                                   size_t index);
