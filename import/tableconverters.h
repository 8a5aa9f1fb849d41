#pragma once

// The converters of table lines: they turn the words of one line of a
// "TABLES :" or metallurgy "TABLE" section into datasets, curves and
// constants of the record store.  All of them work on the store's current
// dataset and do nothing on a line without words or when no dataset is
// current.  Like every converter they run before the line's card is built, so
// a word they rewrite in place reaches the card too.

#include <map>
#include <vector>

#include "core/export.h"

class ImportObject;
class OrvaneMLRecordCurve;
class OrvaneMLRecordDataset;

// A line whose second word is "FORTRAN": with a number in front it opens a
// function table and takes the next function table number in place of the
// file's id; with text in front it is one line of the function.
QUILLON_API void ImportFortranTableLine(char** words, unsigned* numWords, int context, ImportObject* importObject);

// A list of tables, one a phase: thermal strains by phase and direction, the
// phase tables of a parameter, and the tables of a creep model (21 or 31).
QUILLON_API void ImportTablePhaseDetails(char** words, unsigned* numWords, int context, ImportObject* importObject);

// One to three constants of a coefficient table.
QUILLON_API void ImportTableConstants(char** words, unsigned* numWords, int context, ImportObject* importObject);

// The three coefficients of a "T 8" table, copied for the Y and Z directions.
QUILLON_API void ImportTableCoefficients(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Pairs of parameter and data value appended to the table's curve; a pair cut
// by a line end is completed by the next line.
QUILLON_API void ImportTableCurveData(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Triples of parameter value, data value and enthalpy change.
QUILLON_API void ImportTableXYZData(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Pairs of parameter value and table id of a "T 7" family of curves.
QUILLON_API void ImportTableRef(char** words, unsigned* numWords, int context, ImportObject* importObject);

// Adds the condition `id` = `value` to the curve unless it holds it already; a
// value holding "," gives one condition per piece.
QUILLON_API void AddCurveFixedParameter(const char* id, OrvaneMLRecordCurve* curve, const char* value);

// With `elementSwitch` the value names the element of the coefficients
// ("Element_name"); without, it is one more coefficient.
QUILLON_API void AddDiffusionCoefficient(const char* value, OrvaneMLRecordDataset* dataset, bool elementSwitch);

// The tables that the datasets of the same IDref as `dataset` link to, by the
// table id of the linking dataset; the first dataset of an id wins.
QUILLON_API void GetDatasetLinkMap(OrvaneMLRecordDataset* dataset, std::map<int, std::vector<int>>& map);

// Fills CardsetImport::m_PhaseIndexIDrefMap once, from the link map of
// `dataset`: which phases each table of a family serves.
QUILLON_API void BuildPhaseIndexIDrefMap(OrvaneMLRecordDataset* dataset);

// The number the next function table receives.  It starts at 50000 when the
// library loads and is never reset, in step with the number of "STATUS" lines.
QUILLON_API int GetFortranTableCounter();
