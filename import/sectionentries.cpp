#include "import/sectionentries.h"

#include "core/keywords.h"
#include "sections/chemicalcomposition.h"
#include "sections/chimie.h"
#include "sections/composition.h"
#include "sections/grain.h"
#include "sections/importbase.h"
#include "sections/initialhardness.h"
#include "sections/materiaux.h"
#include "sections/matlabels.h"
#include "sections/mattables.h"
#include "sections/metallurgy.h"
#include "sections/metallurgytable.h"
#include "sections/phaseinfo.h"
#include "sections/phaseinfoifwire.h"
#include "sections/phases.h"
#include "sections/reaction.h"

const std::vector<SectionEntryRow>& SectionEntryRows() {
  static const std::vector<SectionEntryRow> rows = {
      {KW_MATLIST, runMatListImport},
      {KW_COMMENTS, runCommentsImport},
      {KW_TYPICAL_APPS, runTypicalAppsImport},
      {KW_LABEL_EXPLANATION, runLabelExplanationImport},
      {KW_MATERIAL_DETAILS, runMaterialDetailsImport},
      {KW_MAT_CLASS, runMatClassImport},
      {KW_MATERIAL_TYPE, runMaterialTypeImport},
      {KW_DEF_MATERIAL, runDefMaterialImport},
      {KW_CHEMICAL_COMPOSITION, runChemicalCompositionImport},
      {KW_PHASES, runPhasesImport},
      {KW_MAT_LABELS, runMatLabelsImport},
      {KW_MATERIAUX, runMateriauxImport},
      {KW_COMPOSITION, runCompositionImport},
      {KW_PHASE_INFO, runPhaseInfoImport},
      {KW_PHASE_INFO_IF_WIRE, runPhaseInfoIfWireImport},
      {KW_INITIAL_HARDNESS, runInitialHardnessImport},
      {KW_METALLURGY, runMetallurgyImport},
      {KW_CHIMIE, runChimieImport},
      {KW_MAT_TABLES, runMatTablesImport},
      {KW_METALLURGY_TABLE, runMetallurgyTableImport},
      {KW_REACTION, runReactionImport},
      {KW_GRAIN, runGrainImport},
  };
  return rows;
}
