// The shipped mapping measured against what the import really does with the
// sample card files: every corpus file goes through the driver, and every
// card word the readers hand to the store must find a row of the mapping for
// the card model of its "NOM :" block, so that no word is kept under its own
// name and none is filed in the model of another card model.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "import/sectionconverters.h"
#include "import_test_support.h"
#include "store/mapping.h"
#include "store/orvanegeneric.h"

using namespace importtest;
using quillon::Mapping;
using quillon::MappingParameter;

namespace {

const char* const kCorpusCardFiles[] = {"16MnCr5_thermometal.mat", "42CrMo4_tempering.mat", "AlMg4.5Mn.mat",
                                        "METALLURGY.mat",          "NiCr19Fe19Nb5Mo3.mat",  "S355J2G3.mat",
                                        "S460M_DE.mat",            "case_hardening_steels.mat",
                                        "stainless_steels.mat"};

// A file without a "NOM :" line is a metallurgy file; its reactions run under
// this name.
const char kMetallurgyFileModel[] = "Metallurgy_Weld";

// Identifiers the store gives datasets of its own accord: a table that no
// line refers to yet.
const std::set<std::string> kStoreOwnIdentifiers = {"UnreferencedTable"};

std::string Trimmed(const std::string& text) {
  const char* blanks = " \t\r\n";
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// A "NOM :" block of a card file: its card model and its lines, the
// "NOM :" line and the closing "FIN NOM" included.
struct Block {
  std::string cardModel;
  std::string text;
};

// The list section and the "NOM :" blocks of a card file, in file order.
struct CardFile {
  std::string list;
  std::vector<Block> blocks;
};

CardFile SplitIntoBlocks(const std::string& text) {
  CardFile file;
  std::istringstream in(text);
  std::string raw;
  bool inList = false;
  Block* block = nullptr;
  while (std::getline(in, raw)) {
    const std::string line = Trimmed(raw);
    if (line.compare(0, 7, "LISTE :") == 0) inList = true;
    if (inList) {
      file.list += raw + "\n";
      if (line.compare(0, 9, "FIN LISTE") == 0) inList = false;
      continue;
    }
    if (line.compare(0, 5, "NOM :") == 0) {
      const std::vector<std::string> words = WordsOf(line.substr(5));
      file.blocks.push_back({words.size() > 2 ? words[2] : "", ""});
      block = &file.blocks.back();
    }
    if (block == nullptr) continue;
    block->text += raw + "\n";
    if (line.compare(0, 7, "FIN NOM") == 0) block = nullptr;
  }
  return file;
}

// One dataset of a material with the model that holds it ("" for the
// material's own list).
struct PlacedDataset {
  std::string material;
  std::string model;
  std::string idref;
};

void CollectFromModel(const std::string& material, OrvaneMLRecordMatModel* model,
                      std::vector<PlacedDataset>& out) {
  if (model == nullptr) return;
  for (OrvaneMLRecordDataset* dataset : model->m_Datasets) {
    if (dataset != nullptr) out.push_back({material, model->m_IDref, dataset->m_IDref});
  }
  if (model->m_SubModels == nullptr) return;
  for (OrvaneMLRecordMatModel* child : model->m_SubModels->m_Models) CollectFromModel(material, child, out);
}

std::vector<PlacedDataset> EveryDataset() {
  std::vector<PlacedDataset> out;
  for (OrvaneMLRecordMaterial* material : OrvaneStaticVars::GetMaterials()) {
    if (material == nullptr) continue;
    for (OrvaneMLRecordDataset* dataset : material->m_Datasets->m_Datasets) {
      if (dataset != nullptr) out.push_back({material->m_ID, "", dataset->m_IDref});
    }
    for (OrvaneMLRecordMatModel* model : material->m_Models) CollectFromModel(material->m_ID, model, out);
  }
  return out;
}

// The card words the store kept under their own names, from its warnings.
std::vector<std::string> UnmappedWordWarnings() {
  std::vector<std::string> found;
  for (const std::string& warning : OrvaneGenericLog::GetDBWarnings()) {
    if (warning.find("is not in the mapping") != std::string::npos) found.push_back(warning);
  }
  return found;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += "\n  " + line;
  return text;
}

bool ServesCardModel(const MappingParameter& row, const std::string& cardModel) {
  return row.ListsCardModel(cardModel) || row.ListsCardModel(Mapping::CardModelStem(cardModel));
}

// Whether the shipped mapping has a row that puts the identifier into this
// model for one of the card models.  A dataset of the material's own list is
// table data: it only needs a row of its identifier for the card model.
bool PlacedByARow(const PlacedDataset& placed, const std::set<std::string>& cardModels) {
  if (kStoreOwnIdentifiers.count(placed.idref) != 0) return true;
  for (const MappingParameter& row : OrvaneStaticVars::GetMapping().Parameters()) {
    if (row.orvaneMLID != placed.idref) continue;
    if (!placed.model.empty() && row.model != placed.model) continue;
    for (const std::string& cardModel : cardModels) {
      if (ServesCardModel(row, cardModel)) return true;
    }
  }
  return false;
}

class MappingCoverage : public ::testing::Test {
 protected:
  void SetUp() override {
    // The shipped mapping, whatever the environment of the run says.
    unsetenv("QUILLON_MAPPING_FILE");
    unsetenv("QUILLON_MAPPING_DIR");
    unsetenv("QUILLON_SOLUTION");
  }
  // Imports a card file the way a host does, with an empty scratch database
  // (the driver's start of the store also empties the store's warning log).
  void Import(const std::string& path) {
    m_Run = ImportAsAHost(path, ScratchDir() + "/coverage.xml");
    ASSERT_EQ(OrvaneStaticVars::GetMapping().SourcePath(), Mapping::ShippedPath());
  }

  // The datasets of the last import that no row places where they are.
  std::vector<std::string> Misplaced(const std::set<std::string>& cardModels) {
    std::vector<std::string> misplaced;
    for (const PlacedDataset& placed : EveryDataset()) {
      if (!PlacedByARow(placed, cardModels)) {
        misplaced.push_back(placed.material + ": \"" + placed.idref + "\" in model \"" +
                            (placed.model.empty() ? std::string("(material's own list)") : placed.model) + "\"");
      }
    }
    return misplaced;
  }

  HostImport m_Run;
};

TEST_F(MappingCoverage, EveryCorpusFileImportsWithoutAWordTheMappingLacks) {
  for (const char* name : kCorpusCardFiles) {
    SCOPED_TRACE(name);
    Import(CorpusPath(name));
    EXPECT_FALSE(EveryDataset().empty()) << "the import stored nothing";
    EXPECT_TRUE(UnmappedWordWarnings().empty()) << Joined(UnmappedWordWarnings());
  }
}

TEST_F(MappingCoverage, EveryDatasetOfACorpusFileSitsWhereARowOfItsCardModelsPutsIt) {
  size_t datasets = 0;
  for (const char* name : kCorpusCardFiles) {
    SCOPED_TRACE(name);
    const CardFile file = SplitIntoBlocks(ReadFile(CorpusPath(name)));
    std::set<std::string> cardModels;
    for (const Block& block : file.blocks) cardModels.insert(block.cardModel);
    if (cardModels.empty()) cardModels.insert(kMetallurgyFileModel);
    Import(CorpusPath(name));
    datasets += EveryDataset().size();
    EXPECT_TRUE(Misplaced(cardModels).empty()) << Joined(Misplaced(cardModels));
  }
  // Labels, variable lines, tables, reactions and grain of nine files.
  EXPECT_GE(datasets, 400u) << "the imports stored too little for the check to mean much";
}

// A file of several card models mixes their datasets in one material; each
// "NOM :" block read alone shows which of them its own card model placed.
TEST_F(MappingCoverage, EveryNomBlockAloneFilesItsDatasetsUnderItsOwnCardModel) {
  size_t blocks = 0;
  for (const char* name : kCorpusCardFiles) {
    const CardFile file = SplitIntoBlocks(ReadFile(CorpusPath(name)));
    for (size_t i = 0; i < file.blocks.size(); ++i) {
      const Block& block = file.blocks[i];
      SCOPED_TRACE(std::string(name) + ", block " + std::to_string(i + 1) + " (" + block.cardModel + ")");
      Import(WriteCardFile("coverage_block.mat", file.list + "\n" + block.text));
      ++blocks;
      EXPECT_TRUE(UnmappedWordWarnings().empty()) << Joined(UnmappedWordWarnings());
      EXPECT_TRUE(Misplaced({block.cardModel}).empty()) << Joined(Misplaced({block.cardModel}));
    }
  }
  EXPECT_EQ(blocks, 18u) << "the corpus has eighteen \"NOM :\" blocks";
}

}  // namespace
