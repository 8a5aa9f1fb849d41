#pragma once

// Small pieces the table converters share; internal to the library.

#include <string>

class OrvaneMLRecordDataAxis;
class OrvaneMLRecordDataset;
class OrvaneMLRecordParameterAxis;
class OrvaneMLRecordParameterFixed;
class OrvaneMLRecordValueList;

namespace tables {

// The card file writes "1.5*3" for 1.5e3 and "1*-5" for 1e-5; only the first
// "*" of a word stands for the exponent.
void StarToExponent(char* word);

// The name of phase `number` of the material at hand, or an empty text.
std::string PhaseName(int number);

OrvaneMLRecordParameterFixed* NewFixedParameter(const char* id, const char* value);

// Appends a link to table `tableId`.
void AddLinkTo(OrvaneMLRecordDataset* dataset, const char* tableId);

// The value list of an axis, made when the axis has none yet.
OrvaneMLRecordValueList* ValuesOf(OrvaneMLRecordDataAxis* axis);
OrvaneMLRecordValueList* ValuesOf(OrvaneMLRecordParameterAxis* axis);

// Appends one value, as written, to a value list.
void AppendValue(OrvaneMLRecordValueList* list, const char* text);

// The dataset a line of table data fills, or null when there is none.  While a
// creep model is read its tables are reached by their own id, whatever dataset
// the line made current; a value that holds no curve yet can take no points,
// which is reported to the store's log.
OrvaneMLRecordDataset* TableDataTarget(OrvaneMLRecordDataset* dataset);

}  // namespace tables
