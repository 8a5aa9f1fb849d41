#pragma once

#include <map>
#include <string>

#include "core/export.h"

// The identity of a section throughout the system: the keyword type of an imported or exported
// section, the key of the import dispatch and of the export order. Unscoped, so that the numbers
// mix freely with the unsigned keyword types that sections carry.
enum KeywordTypeNumber : unsigned {
    KW_MATLIST = 1,
    KW_COMMENTS = 2,
    KW_CHEMICAL_COMPOSITION = 3,
    KW_PHASES = 4,
    KW_TYPICAL_APPS = 5,
    KW_LABEL_EXPLANATION = 6,
    KW_MAT_LABELS = 7,
    KW_MAT_TABLES = 8,
    KW_MATERIAUX = 9,
    KW_METALLURGY_TABLE = 10,
    KW_MATERIAL_DETAILS = 11,
    KW_MAT_CLASS = 12,
    KW_MATERIAL_TYPE = 13,
    KW_REACTION = 14,
    KW_COMPOSITION = 15,
    KW_DEF_MATERIAL = 16,
    KW_PHASE_INFO = 17,
    KW_PHASE_INFO_IF_WIRE = 18,
    KW_INITIAL_HARDNESS = 19,
    KW_METALLURGY = 20,
    KW_CHIMIE = 21,
    KW_GRAIN = 22,
};

// The tables are ordered maps with the byte-wise order of std::string, so iterating them visits
// capitals first. They are built once when the library loads, before any other static object of
// the library, and never change afterwards.

// Section openers that the locator accepts, each with the text that closes it ("" for none).
// Some closing texts are spelled differently from the keyword of the same name elsewhere
// ("Typical Applications:" here, "Typical applications:" as a keyword type): both are kept as
// files in the field write them.
QUILLON_API extern const std::map<std::string, std::string> KeywordPairTable;

// Openers whose closing keyword a well-formed file shows before the next material.
QUILLON_API extern const std::map<std::string, std::string> BalancedKeywordTable;

// Keyword to keyword type number; some keywords share a number ("Phases:" and "Phases").
QUILLON_API extern const std::map<std::string, unsigned> KeywordTypeTable;
