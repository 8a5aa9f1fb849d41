#include "core/keywords.h"

// Other static tables of the library are built from these at load time, possibly in other
// translation units, so these must exist first: init_priority orders them ahead of every
// static object of default priority in the whole library.
#define QUILLON_BUILT_FIRST __attribute__((init_priority(200)))

QUILLON_BUILT_FIRST const std::map<std::string, std::string> KeywordPairTable = {
    {"LISTE :", "FIN LISTE"},
    {"NOM :", "FIN NOM"},
    {"COMMENTAIRES :", "FIN COMMENTAIRES"},
    {"Chemical Composition:", "Phases:"},
    {"Phases:", "Typical Applications:"},
    {"Class", "EndClass"},
    {"Composition", "EndComposition"},
    {"Phases", "EndPhases"},
    {"Initial hardness", "EndInitial hardness"},
    {"Initial phases proportions if wire", "EndInitial phases proportions if wire"},
    {"Initial phases proportions", "EndInitial phases proportions"},
    {"Units", "EndUnits"},
    {"MaterialType", "EndMaterialType"},
    {"LABELS :", "FIN LABELS"},
    {"TABLES :", "FIN TABLES"},
    {"MATERIAUX :", ""},
    {"METALLURGY", "REACTION"},
    {"REACTION", ""},
    {"TABLE", "FIN MATERIAUX"},
    {"TABLES", "FIN MATERIAUX"},
    {"FIN NOM", ""},
    {"DEF_MATERIAL", ""},
    {"MATERIAL", ""},
    {"CHIMIE :", "FIN CHIMIE"},
    {"GRAIN", ""},
};

QUILLON_BUILT_FIRST const std::map<std::string, std::string> BalancedKeywordTable = {
    {"LISTE :", "FIN LISTE"},
    {"NOM :", "FIN NOM"},
    {"COMMENTAIRES :", "FIN COMMENTAIRES"},
    {"Class", "EndClass"},
    {"Composition", "EndComposition"},
    {"Phases", "EndPhases"},
    {"Initial hardness", "EndInitial hardness"},
    {"Initial phases proportions if wire", "EndInitial phases proportions if wire"},
    {"Initial phases proportions", "EndInitial phases proportions"},
    {"Units", "EndUnits"},
    {"MaterialType", "EndMaterialType"},
    {"LABELS :", "FIN LABELS"},
    {"TABLES :", "FIN TABLES"},
    {"MATERIAUX :", "FIN MATERIAUX"},
    {"CHIMIE :", "FIN CHIMIE"},
};

QUILLON_BUILT_FIRST const std::map<std::string, unsigned> KeywordTypeTable = {
    {"LISTE :", KW_MATLIST},
    {"COMMENTAIRES :", KW_COMMENTS},
    {"Chemical Composition:", KW_CHEMICAL_COMPOSITION},
    {"Phases:", KW_PHASES},
    {"Phases", KW_PHASES},
    {"Typical applications:", KW_TYPICAL_APPS},
    {"Labels:", KW_LABEL_EXPLANATION},
    {"LABELS :", KW_MAT_LABELS},
    {"TABLES :", KW_MAT_TABLES},
    {"MATERIAUX :", KW_MATERIAUX},
    {"TABLE", KW_METALLURGY_TABLE},
    {"TABLES", KW_METALLURGY_TABLE},
    {"NOM :", KW_MATERIAL_DETAILS},
    {"Class", KW_MAT_CLASS},
    {"MaterialType", KW_MATERIAL_TYPE},
    {"REACTION", KW_REACTION},
    {"Composition", KW_COMPOSITION},
    {"DEF_MATERIAL", KW_DEF_MATERIAL},
    {"Initial phases proportions", KW_PHASE_INFO},
    {"Initial phases proportions if wire", KW_PHASE_INFO_IF_WIRE},
    {"Initial hardness", KW_INITIAL_HARDNESS},
    {"MATERIAL", KW_METALLURGY},
    {"CHIMIE :", KW_CHIMIE},
    {"GRAIN", KW_GRAIN},
};
