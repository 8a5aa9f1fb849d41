#pragma once

// The parameter mapping of a solution: which card word stands for which store
// identifier, in which card models and sections, in which store model, with
// which data type, choices and first table number.  The default store reads it
// on the import road (card word to dataset) and the export road reads the same
// rows the other way.  The file format is documented in docs/mapping.md.

#include <string>
#include <vector>

#include "core/export.h"

namespace quillon {

// One choice of a choice parameter: the store's text and the card file's code.
struct MappingChoice {
  std::string name;      // as the store keeps it, e.g. "Isotropic"
  std::string cardCode;  // as the card file writes it, e.g. "1"
};

// One <Parameter> row.
struct QUILLON_API MappingParameter {
  std::string orvaneMLID;        // OrvaneMLID: the store IDref of the dataset
  std::string cardsetID;         // CardsetID: the card word, e.g. "RHO"
  std::string cardsetKW;         // CardsetKW: the section keyword, e.g. "LABELS :"
  std::string cardsetModel;      // CardsetModel: card models, comma separated
  std::string cardsetKWParent;   // CardsetKWParent: rarely set on parameters
  std::string startID;           // StartID: first table number, empty if none
  std::string category;          // Category: "Mechanical", "Thermo-Physical", ...
  std::string model;             // Model: IDref of the store model holding the dataset
  std::string dataType;          // DataType: "float", "string", "integer", "choice", "curve", "link"
  std::string dependentParamID;  // DependentParamID: IDref of the parameter axis, e.g. "Temperature"
  std::string label;             // Label: display name, empty if none
  std::vector<MappingChoice> choices;
  std::string fixedParamIDs;     // FixedParamIDs: conditions a value may carry, comma separated

  // True when `cardModel` is one of the comma-separated words of cardsetModel.
  bool ListsCardModel(const std::string& cardModel) const;
};

// One <Section> row: a keyword, the keyword it stands under, its card models.
struct MappingSection {
  std::string cardsetKW;
  std::string cardsetKWParent;
  std::string cardsetModel;
};

// One <Model> row: a model every new material gets, with its sub-models.
struct MappingModel {
  std::string idref;                   // IDref, e.g. "Mechanical_Weld"
  std::string category;                // Category
  std::string cardModels;              // CardModels: card models whose unknown words land here
  std::vector<std::string> subModels;  // IDrefs of <SubModel> children, in file order
  // IDrefs of <SubModel Create="false"> children: declared so that rows may
  // name them, but made by the import (per phase, per reaction) or by the
  // host, never with a new material.
  std::vector<std::string> optionalSubModels;
};

class QUILLON_API Mapping {
 public:
  // Reads a mapping file; false with a reason (file and line where known) on failure.
  // A failed load leaves the object empty.
  bool LoadFile(const std::string& path, std::string& error);
  bool LoadMemory(const std::string& xml, std::string& error);

  const std::string& Solution() const { return m_Solution; }
  const std::string& SourcePath() const { return m_SourcePath; }
  const std::string& Version() const { return m_Version; }
  const std::vector<MappingModel>& Models() const { return m_Models; }
  const std::vector<MappingSection>& Sections() const { return m_Sections; }
  const std::vector<MappingParameter>& Parameters() const { return m_Parameters; }

  // The row of a card word under a card model ("mechanical", "thermometal_cp", ...).
  // Card words compare exactly.  Preference: a row whose CardsetModel lists the
  // card model; then one that lists the card model's stem (the text before its
  // first "_", so "thermometal_cp" finds "thermometal"); then the first row of
  // that card word in file order.  Null when the word has no row.
  const MappingParameter* FindByCardWord(const std::string& cardWord,
                                         const std::string& cardModel) const;
  // The first row of a store identifier, or null.
  const MappingParameter* FindByID(const std::string& orvaneMLID) const;
  // The row of a store identifier under a card model, with the preference
  // order of FindByCardWord; rows of one identifier differ by model and
  // category ("CategoryComments" lives in every model).
  const MappingParameter* FindByID(const std::string& orvaneMLID,
                                   const std::string& cardModel) const;
  // The model whose CardModels lists the card model (or its stem), or null.
  const MappingModel* DefaultModelForCardModel(const std::string& cardModel) const;
  // The model of this IDref, or null.
  const MappingModel* FindModel(const std::string& idref) const;
  // The model that declares this IDref as a sub-model (made or optional), or null.
  const MappingModel* FindOwnerOfSubModel(const std::string& idref) const;
  // True when the IDref is a model, a sub-model or an optional sub-model.
  bool DeclaresModel(const std::string& idref) const;
  // The text of a card model before its first "_" ("thermometal_cp" gives
  // "thermometal"); the whole text when it has none.
  static std::string CardModelStem(const std::string& cardModel);

  // The mapping shipped with the library (data/mapping.xml).
  static std::string ShippedPath();

 private:
  bool Parse(const std::string& xml, const std::string& name, std::string& error);
  void Clear();

  std::string m_Solution;
  std::string m_SourcePath;
  std::string m_Version;
  std::vector<MappingModel> m_Models;
  std::vector<MappingSection> m_Sections;
  std::vector<MappingParameter> m_Parameters;
};

}  // namespace quillon
