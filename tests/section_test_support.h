#pragma once

// Shared by the descriptive section tests: a card file read section by section
// the way the import driver reads it, a fresh store per test, and views of the
// cards and of what reached the store.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/card.h"
#include "core/dataline.h"
#include "core/importobject.h"
#include "core/keywords.h"
#include "import/cardsetimport.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace sectiontest {

// ---- Reading sections the way the import driver does ---------------------

// A card file written to a temporary file and read through the real line
// reader.  Each Read seeks to a keyword line, reads it again as the driver
// does and hands the section to a reader's entry function.
class CardFile {
 public:
  explicit CardFile(const std::string& text) : m_Text(text) {
    char path[] = "/tmp/quillon_descriptive_XXXXXX";
    const int handle = mkstemp(path);
    EXPECT_GE(handle, 0);
    EXPECT_EQ(write(handle, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(handle);
    m_Path = path;
    m_File = std::fopen(path, "rb");
    m_Line = new DataLine(m_File);
  }
  ~CardFile() {
    delete m_Line;
    std::fclose(m_File);
    unlink(m_Path.c_str());
  }
  CardFile(const CardFile&) = delete;
  CardFile& operator=(const CardFile&) = delete;

  // The section of the `occurrence`-th line that reads `keywordLine` once trimmed.
  ImportObject& Read(const std::string& keywordLine, SectionEntry entry, unsigned occurrence = 0) {
    std::fseek(m_File, OffsetOf(keywordLine, occurrence), SEEK_SET);
    m_Line->clearFlag(DataLine::kEndFlagBit);
    CardsetImport::m_CurrentPhaseIndex = 1;
    m_Line->readNextCard();
    Generic::RemoveLeadingAndTrailingBlanks(m_Line->line);
    OrvaneStaticVars::SetActiveKW(m_Line->line);
    m_Line->clearFlag(DataLine::kEndFlagBit);
    unsigned type = 0;
    if (std::strncmp(m_Line->line, "NOM :", 5) == 0) {
      OrvaneStaticVars::ClearDatasets();
      type = KW_MATERIAL_DETAILS;
    } else if (KeywordTypeTable.count(m_Line->line) != 0) {
      type = KeywordTypeTable.at(m_Line->line);
    }
    m_Sections.push_back(std::make_unique<ImportObject>(m_Line->line, type));
    entry(m_Line, m_Sections.back().get());
    return *m_Sections.back();
  }

  DataLine& Line() { return *m_Line; }

 private:
  long OffsetOf(const std::string& keywordLine, unsigned occurrence) const {
    size_t start = 0;
    while (start < m_Text.size()) {
      size_t end = m_Text.find('\n', start);
      if (end == std::string::npos) end = m_Text.size();
      std::string line = m_Text.substr(start, end - start);
      const size_t first = line.find_first_not_of(" \t\r");
      const size_t last = line.find_last_not_of(" \t\r");
      line = first == std::string::npos ? std::string() : line.substr(first, last - first + 1);
      if (line == keywordLine && occurrence-- == 0) return static_cast<long>(start);
      start = end + 1;
    }
    ADD_FAILURE() << "no line " << keywordLine;
    return 0;
  }

  std::string m_Text;
  std::string m_Path;
  FILE* m_File = nullptr;
  DataLine* m_Line = nullptr;
  std::vector<std::unique_ptr<ImportObject>> m_Sections;
};

// Every test starts on an empty store with cards and converters switched on,
// as an import has them.
class StoreTest : public testing::Test {
 protected:
  void SetUp() override {
    Card::setFlag(Card::BUILD_CARDS | Card::RUN_CONVERTERS);
    char path[] = "/tmp/quillon_store_XXXXXX";
    const int handle = mkstemp(path);
    close(handle);
    unlink(path);  // a name that no file has: the store starts empty
    m_StorePath = path;
    OrvaneStaticVars::Init(m_StorePath.c_str());
  }
  void TearDown() override { unlink(m_StorePath.c_str()); }

 private:
  std::string m_StorePath;
};

// ---- Looking at cards ------------------------------------------------------

inline std::string FieldText(Data* value) {
  if (value == nullptr) return "<null>";
  switch (value->type) {
    case Data::CHARARRAY_TAG: return static_cast<CharArray*>(value)->payload;
    case Data::INTEGER_TAG: return std::to_string(static_cast<Integer*>(value)->payload);
    case Data::UINTEGER_TAG: return std::to_string(static_cast<UInteger*>(value)->payload);
    case Data::BLANK_TAG: return "<blank>";
    default: return "<type " + std::to_string(value->type) + ">";
  }
}

inline std::vector<std::string> Fields(Card* card) {
  std::vector<std::string> texts;
  for (Data* value : card->getVarValues()) texts.push_back(FieldText(value));
  return texts;
}

inline std::vector<std::string> CardNames(ImportObject& section) {
  std::vector<std::string> names;
  for (Card* card : section.getCardList()) names.push_back(card->getName());
  return names;
}

// ---- Looking at the store ----------------------------------------------------

inline void CollectModels(OrvaneMLRecordMatModel* model, std::vector<OrvaneMLRecordMatModel*>& out) {
  if (model == nullptr) return;
  out.push_back(model);
  if (model->m_SubModels == nullptr) return;
  for (OrvaneMLRecordMatModel* child : model->m_SubModels->m_Models) CollectModels(child, out);
}

inline std::vector<OrvaneMLRecordMatModel*> AllModels(OrvaneMLRecordMaterial* material) {
  std::vector<OrvaneMLRecordMatModel*> models;
  if (material == nullptr) return models;
  for (OrvaneMLRecordMatModel* model : material->m_Models) CollectModels(model, models);
  return models;
}

// Every dataset of the material, in its models and in its own list.
inline std::vector<OrvaneMLRecordDataset*> AllDatasets(OrvaneMLRecordMaterial* material = nullptr) {
  if (material == nullptr) material = OrvaneStaticVars::GetCurrentMaterial();
  std::vector<OrvaneMLRecordDataset*> datasets;
  if (material == nullptr) return datasets;
  for (OrvaneMLRecordMatModel* model : AllModels(material))
    datasets.insert(datasets.end(), model->m_Datasets.begin(), model->m_Datasets.end());
  datasets.insert(datasets.end(), material->m_Datasets->m_Datasets.begin(), material->m_Datasets->m_Datasets.end());
  return datasets;
}

inline std::vector<OrvaneMLRecordDataset*> DatasetsOf(const std::string& idref) {
  std::vector<OrvaneMLRecordDataset*> found;
  for (OrvaneMLRecordDataset* dataset : AllDatasets())
    if (dataset->m_IDref == idref) found.push_back(dataset);
  return found;
}

inline OrvaneMLRecordDataset* DatasetOf(const std::string& idref) {
  std::vector<OrvaneMLRecordDataset*> found = DatasetsOf(idref);
  return found.empty() ? nullptr : found.front();
}

// The identifier the store gives a card word under the active model.
inline std::string StoreID(const char* cardWord) {
  const char* id = OrvaneStaticVars::GetOrvaneMLID(cardWord);
  return id != nullptr ? id : "";
}

inline std::string ConstantText(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_Float == nullptr || dataset->m_Float->m_Constants.empty()) return "<none>";
  return dataset->m_Float->m_Constants.front()->m_Value;
}

inline std::string StringText(OrvaneMLRecordDataset* dataset) {
  if (dataset == nullptr || dataset->m_String == nullptr) return "<none>";
  return dataset->m_String->m_Value;
}

// The phase models of the material at hand, in order.
inline std::vector<OrvaneMLRecordMatModel*> PhaseModels() {
  std::vector<OrvaneMLRecordMatModel*> phases;
  for (OrvaneMLRecordMatModel* model : AllModels(OrvaneStaticVars::GetCurrentMaterial()))
    if (model->m_IDref == "Phase_details_model") phases.push_back(model);
  return phases;
}

inline OrvaneMLRecordMatModel* PhaseModel(const std::string& instance) {
  for (OrvaneMLRecordMatModel* model : PhaseModels())
    if (model->m_InstanceID == instance) return model;
  return nullptr;
}

inline OrvaneMLRecordDataset* DatasetIn(OrvaneMLRecordMatModel* model, const std::string& idref) {
  if (model == nullptr) return nullptr;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets)
    if (dataset->m_IDref == idref) return dataset;
  return nullptr;
}

}  // namespace sectiontest
