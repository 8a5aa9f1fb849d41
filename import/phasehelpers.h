#pragma once

// The phases of a material live in the store under "GenericInfo_Weld": one
// "Phase_details_model" sub-model per phase, whose instance id is the phase
// number as text, holding the phase's description ("Phase_description") and
// its name ("Phase_name").  These helpers find, name and make them; the phase
// sections, the variable lines and the table and reaction converters share
// them.

#include <string>
#include <vector>

#include "core/export.h"

class ImportObject;
class OrvaneMLRecordMatModel;

// Phase number n stands at position n-1 of each table.
QUILLON_API extern const char* const PhaseNames8[8];
QUILLON_API extern const char* const PhaseNames7[7];
QUILLON_API extern const char* const PhaseDescriptions11[11];

// A material type counts as a weld type when it starts with "W" or "w"; a
// weld type has 7 phase names, its second phase being the fictive one.
QUILLON_API bool IsWeldMaterialType();

// Resolves the description (or, for the "PHASE" and "Phase_name" kinds, the
// name) of phase `id` in place in `desc`, which holds at least 2050 bytes.
// `out` (may be null) receives the name of a "description | name" text.
// Answers 1 when the phase already has a non-blank text of kind `idref` in the
// store (and `desc` is then that text), otherwise 0.
QUILLON_API int ResolvePhaseDescription(const char* id, char* desc, const char* idref, std::string* out);

// The name of phase `id`, from its line text and the name tables, such that
// two phases don't share a name while the table has a free one.  `name` is
// read as well as written.
QUILLON_API void GetPhaseName(const char* id, const char* text, std::string& name);

// Finds (or, with `create`, makes) the phase model whose instance id is
// words[index], and makes it the store's current phase model, which the next
// GetOrCreateDataset fills.  Does nothing when *numWords is 0, or when the
// model is missing and `create` is false.
QUILLON_API void EnsurePhaseDetailsModel(char** words, unsigned* numWords, unsigned index,
                                         ImportObject* importObject, bool create);

// The phase model whose name equals `name`, or else whose description holds
// it; null if none.
QUILLON_API OrvaneMLRecordMatModel* FindPhaseModel(const char* name);

// Appends every phase description (and, if `names` is given, every phase name)
// in the order of phase models and datasets; answers the number of
// descriptions.
QUILLON_API int GetPhaseLists(std::vector<std::string>& descriptions, std::vector<std::string>* names);

// True when the phase model of instance id `id` has a name.
QUILLON_API bool HasPhaseName(const char* id);

// True when some phase model has a name equal to `name`.
QUILLON_API bool IsPhaseNameUsed(const char* name);

// A material of exactly two phases has its second phase fictive.
QUILLON_API void FixFictivePhaseName();
