#pragma once

// Shared by the import road's test programs: card files written to scratch
// paths, one section read through the real line reader and reader, and a
// fresh empty store per test.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "core/card.h"
#include "core/dataline.h"
#include "core/importobject.h"
#include "core/keywords.h"
#include "import/cardsetimport.h"
#include "store/orvane.h"
#include "store/basekit.h"
#include "store/orvaneml.h"

namespace importtest {

inline std::string ScratchDir() {
  const char* base = std::getenv("TMPDIR");
  std::string dir = std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/quillon_import_" +
                    std::to_string(getpid());
  mkdir(dir.c_str(), 0700);
  return dir;
}

inline std::string WriteCardFile(const std::string& name, const std::string& text) {
  const std::string path = ScratchDir() + "/" + name;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  return path;
}

inline std::string CorpusPath(const std::string& name) { return std::string(QUILLON_CORPUS_DIR) + "/" + name; }

// An empty store, with the shipped mapping, and the card flags a driver sets.
inline void FreshStore() {
  const std::string none = ScratchDir() + "/no-such-database.xml";
  std::remove(none.c_str());
  OrvaneStaticVars::Init(none.c_str());
  Card::setFlag(20);
}

// One import as a host makes it: a driver over `cardFile` whose store name is
// `database` (removed first, so that the store starts empty), and what the
// import gave back. The driver, and with it every section and card, lives as
// long as the run.
struct HostImport {
  std::unique_ptr<CardsetImport> driver;
  void* document = nullptr;
  std::string message;
  int visited = 0;
};

inline HostImport ImportAsAHost(const std::string& cardFile, const std::string& database) {
  std::remove(database.c_str());
  HostImport run;
  run.driver = std::make_unique<CardsetImport>(cardFile.c_str(), database.c_str());
  run.visited = run.driver->ImportMaterialList(&run.document, run.message, false);
  return run;
}

// Reads one section the way the driver does: the keyword line is read again
// and left in word 0, then the entry function runs over the lines behind it.
class SectionRun {
 public:
  SectionRun(const std::string& text, unsigned keywordType, SectionEntry entry) {
    path_ = WriteCardFile("section.mat", text);
    file_ = std::fopen(path_.c_str(), "rb");
    line_ = new DataLine(file_);
    char* keyword = line_->readNextCard();
    Generic::RemoveLeadingAndTrailingBlanks(keyword);
    line_->clearFlag(3);
    unsigned type = keywordType;
    section_ = new ImportObject(keyword, type);
    entry(line_, section_);
  }
  ~SectionRun() {
    delete section_;
    delete line_;
    std::fclose(file_);
  }
  SectionRun(const SectionRun&) = delete;
  SectionRun& operator=(const SectionRun&) = delete;

  ImportObject& section() { return *section_; }
  std::vector<Card*>& cards() { return section_->getCardList(); }
  DataLine& dataLine() { return *line_; }

 private:
  std::string path_;
  FILE* file_ = nullptr;
  DataLine* line_ = nullptr;
  ImportObject* section_ = nullptr;
};

inline std::string Field(Card* card, const char* name) {
  Data* value = card->findField(name);
  if (value == nullptr) return "<none>";
  char* text = nullptr;
  value->value(&text);
  return text != nullptr ? text : "<null>";
}

inline OrvaneMLRecordMaterial* FindMaterial(const std::string& id) {
  for (OrvaneMLRecordMaterial* material : OrvaneStaticVars::GetMaterials())
    if (id == material->GetID()) return material;
  return nullptr;
}

// The datasets of a material, wherever the store filed them.
inline std::vector<OrvaneMLRecordDataset*> DatasetsOf(OrvaneMLRecordMaterial* material) {
  std::vector<OrvaneMLRecordDataset*> all(material->m_Datasets->m_Datasets.begin(),
                                          material->m_Datasets->m_Datasets.end());
  std::vector<OrvaneMLRecordMatModel*> models(material->m_Models.begin(), material->m_Models.end());
  for (size_t i = 0; i < models.size(); ++i) {
    all.insert(all.end(), models[i]->m_Datasets.begin(), models[i]->m_Datasets.end());
    if (models[i]->m_SubModels != nullptr)
      models.insert(models.end(), models[i]->m_SubModels->m_Models.begin(), models[i]->m_SubModels->m_Models.end());
  }
  return all;
}

inline OrvaneMLRecordDataset* FindDatasetOf(OrvaneMLRecordMaterial* material, const std::string& idref) {
  for (OrvaneMLRecordDataset* dataset : DatasetsOf(material))
    if (idref == dataset->GetIDref()) return dataset;
  return nullptr;
}

}  // namespace importtest
