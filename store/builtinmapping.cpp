// The mapping the store carries in itself.  Its models stand in when the
// solution's mapping file can't be read, so that materials still get their
// usual models; its rows are consulted behind the solution's rows, because
// the import's phase, reaction and creep readers make datasets under the
// store's own identifiers and need them in the right models whatever mapping
// a host supplies.

#include <string>

#include "store/storestate.h"

namespace quillon {

namespace {

const char kModels[] = R"(
  <Models>
    <Model IDref="GenericInfo_Weld" Category="Generic Info">
      <SubModel IDref="Phase_details_model" Create="false"/>
    </Model>
    <Model IDref="PhaseDetails" Category="Generic Info"/>
    <Model IDref="Mechanical_Weld" Category="Mechanical" CardModels="mechanical,mechanical_phases">
      <SubModel IDref="SpecialPropertyModel"/>
      <SubModel IDref="CreepModel"/>
      <SubModel IDref="CreepRuptureModel" Create="false"/>
      <SubModel IDref="CreepRuptureModel21" Create="false"/>
    </Model>
    <Model IDref="Thermal_Weld" Category="Thermo-Physical" CardModels="thermometal">
      <SubModel IDref="ThermalPropertyModel"/>
    </Model>
    <Model IDref="Metallurgy_Weld" Category="Metallurgy" CardModels="Metallurgy_Weld">
      <SubModel IDref="ReactionDefinition" Create="false"/>
    </Model>
    <Model IDref="Tempering_Weld" Category="Tempering" CardModels="tempering">
      <SubModel IDref="TemperReactionModel" Create="false"/>
    </Model>
    <Model IDref="Diffusion_Weld" Category="Diffusion" CardModels="diffusion"/>
  </Models>
)";

struct Row {
  const char* id;
  const char* cardWord;    // empty for rows the import reaches by identifier only
  const char* cardModels;  // empty: any card model
  const char* model;
  const char* dataType;
};

const Row kRows[] = {
    {"Material_type", "", "", "GenericInfo_Weld", "string"},
    // A general row stands before the rows of particular card models: a card
    // model that no row lists falls back on the first row of the identifier.
    {"CategoryComments", "", "", "GenericInfo_Weld", "string"},
    {"CategoryComments", "", "mechanical,mechanical_phases", "Mechanical_Weld", "string"},
    {"CategoryComments", "", "thermometal", "Thermal_Weld", "string"},
    {"CategoryComments", "", "diffusion", "Diffusion_Weld", "string"},
    {"CategoryComments", "", "tempering", "Tempering_Weld", "string"},
    {"Phase_name", "PHASE", "", "Phase_details_model", "string"},
    {"Phase_description", "", "", "Phase_details_model", "string"},
    {"Phase_Info", "", "", "Phase_details_model", "float"},
    {"Phase_Info_if_wire", "", "", "Phase_details_model", "float"},
    {"Initial_hardness", "", "", "Phase_details_model", "float"},
    {"Number of Phases", "PHAS", "", "PhaseDetails", "integer"},
    {"ttt_diagram_user_material", "", "", "Metallurgy_Weld", "string"},
    {"CREEP", "", "", "CreepRuptureModel", "curve"},
    {"CREEP21", "", "", "CreepRuptureModel21", "curve"},
    {"Number of Reactions", "", "", "Metallurgy_Weld", "integer"},
    {"Number of Reactions", "", "tempering", "Tempering_Weld", "integer"},
};

// The datasets of one reaction: in the reaction definition of the
// metallurgy model, or of the tempering model for the card model "tempering".
struct ReactionRow {
  const char* id;
  const char* cardWord;
  const char* dataType;
};

const ReactionRow kReactionRows[] = {
    {"Parent_phase", "", "string"},  {"Product_phase", "", "string"}, {"Thermal_path", "", "string"},
    {"Reaction_model", "", "string"}, {"Isothermal_parameters", "", "string"},
    {"MS_constant", "MS", "float"},  {"KM_constant", "KM", "float"},
    {"PEQ_table_index", "PEQ", "curve"}, {"TAU_table_index", "TAU", "curve"},
    {"K_table_index", "KT", "curve"},   {"KP_table_index", "KP", "curve"},
    {"F_table_index", "FX", "curve"},   {"FP_table_index", "FP", "curve"},
    {"N_table_index", "NX", "curve"},   {"FCAKoistinen", "FCAK", "curve"},
    {"FCB", "FCB", "curve"},
};

std::string Escape(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string ParameterElement(const char* id, const char* cardWord, const char* cardModels, const char* model,
                             const char* dataType) {
  std::string element = "    <Parameter OrvaneMLID=\"" + Escape(id) + "\"";
  if (cardWord[0] != '\0') element += " CardsetID=\"" + Escape(cardWord) + "\"";
  if (cardModels[0] != '\0') element += " CardsetModel=\"" + Escape(cardModels) + "\"";
  element += " Model=\"" + Escape(model) + "\" DataType=\"" + Escape(dataType) + "\"/>\n";
  return element;
}

std::string BuildXml() {
  std::string xml = "<Mapping solution=\"built-in\" version=\"1\">";
  xml += kModels;
  xml += "  <Sections/>\n  <Parameters>\n";
  for (const Row& row : kRows) xml += ParameterElement(row.id, row.cardWord, row.cardModels, row.model, row.dataType);
  for (const ReactionRow& row : kReactionRows) {
    xml += ParameterElement(row.id, row.cardWord, "", "ReactionDefinition", row.dataType);
    xml += ParameterElement(row.id, row.cardWord, "tempering", "TemperReactionModel", row.dataType);
  }
  xml += "  </Parameters>\n</Mapping>\n";
  return xml;
}

}  // namespace

const char* BuiltinMappingXml() {
  static const std::string xml = BuildXml();
  return xml.c_str();
}

}  // namespace quillon
