#include "import/cardsetimport.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

#include "core/card.h"
#include "core/dataline.h"
#include "core/dataloc.h"
#include "core/importobject.h"
#include "core/keywords.h"
#include "import/sectionentries.h"
#include "store/basekit.h"
#include "store/crtkit.h"
#include "store/orvane.h"
#include "store/orvanedb.h"
#include "store/orvaneml.h"

int CardsetImport::m_DistortionFlag = 0;
int CardsetImport::m_CurrentPhaseIndex = 1;
int CardsetImport::m_CreepFlag = 0;
std::map<int, std::vector<int>> CardsetImport::m_PhaseIndexIDrefMap;
std::map<int, std::string> CardsetImport::m_PhaseIndexNameMap;

namespace {

constexpr unsigned kEndOfSectionBit = 3;
constexpr unsigned kBuildCardsAndConvert = 20;  // card flag values 4 and 16
constexpr int kCalibrationLayoutFlag = 0x100000;

bool StartsWith(const char* text, const char* prefix) { return std::strncmp(text, prefix, std::strlen(prefix)) == 0; }

std::string Narrow(const wchar_t* text) {
  if (text == nullptr) return std::string();
  BkString converted(text, 0);
  return converted.GetAnsiBuffer();
}

}  // namespace

CardsetImport::CardsetImport(const char* fileName, const char* storeName)
    : m_FileName(fileName != nullptr ? fileName : ""),
      m_File(nullptr),
      m_DataLoc(nullptr),
      m_DataLine(nullptr) {
  initQuillonTypesAndFunctions();
  OrvaneStaticVars::Init(storeName);
}

CardsetImport::~CardsetImport() {
  if (m_File != nullptr) CkFClose(m_File, "cardsetimport", 37);
  delete m_DataLoc;
  delete m_DataLine;
  for (ImportObject* section : m_Sections) delete section;
}

void CardsetImport::initQuillonTypesAndFunctions() {
  for (const SectionEntryRow& row : SectionEntryRows()) m_ImportFunctions[row.keywordType] = row.entry;
}

const char* CardsetImport::GetWarningMessage() { return m_WarningMessage.c_str(); }

int CardsetImport::ImportMaterialList(void** document, std::string& message, bool distortion) {
  *document = nullptr;
  unsigned sectionCount = 0;
  m_DistortionFlag = distortion ? 1 : 0;
  if (!distortion &&
      (m_FileName.find("_DE.mat") != std::string::npos || m_FileName.find("_de.mat") != std::string::npos))
    m_DistortionFlag = 1;

  m_File = CkFOpen(m_FileName.c_str(), "rb", "cardsetimport", 76);
  if (m_File == nullptr) {
    message = "Could not open file";
    return 1;
  }

  BkString resourcesPath(BkVariableGetValue(L"KORA_RESOURCES_PATH", 1), 0);

  m_DataLoc = new DataLoc(m_File);
  if (!m_DataLoc->warnings.empty() && !resourcesPath.IsEmpty()) {
    BkString warnings(m_DataLoc->warnings.c_str(), 0);
    BkOutputMessage(2, warnings);
  }

  RemoveDuplicateMaterialCards(m_DataLoc->keywords, m_DataLoc->offsets);

  m_DataLine = new DataLine(m_File);
  Card::setFlag(kBuildCardsAndConvert);

  std::string lowerName = m_FileName;
  std::transform(lowerName.begin(), lowerName.end(), lowerName.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lowerName.find("metallurgy.mat") != std::string::npos) {
    OrvaneMLRecordMaterials* materials = OrvaneStaticVars::GetOrCreateMaterials("Weld");
    OrvaneMLRecordMaterial* material = OrvaneStaticVars::GetOrCreateMaterial("MetallurgyMat");
    OrvaneStaticVars::AddMaterialToMaterials(materials, material);
  }

  int calibrationResult = 0;
  if (RunCalibrationBranch(message, calibrationResult)) return calibrationResult;

  for (size_t i = 0; i < m_DataLoc->keywords.size(); ++i) {
    std::rewind(m_File);
    if (std::fseek(m_File, m_DataLoc->offsets[i], SEEK_SET) != 0) break;
    VisitSection(i, sectionCount);
  }

  OrvaneStaticVars::GetXMLDocument(document);
  ProcessDomdocForPhaseDetails(*document);
  return static_cast<int>(sectionCount);
}

// The calibration branch reads the link and reference files beside a
// METALLURGY.mat; true when the import must stop with `result`.
bool CardsetImport::RunCalibrationBranch(std::string& message, int& result) {
  OrvaneConfig* config = Orvane::_ApplnGetOrvaneConfigPtr();
  if (config == nullptr) return false;
  std::string text;
  Orvane* orvane = Orvane::_ApplnGetOrvanePtr(config->GetActiveSolution(), text);
  const int allowed = BkVariableGetBoolean(L"ORVANE_ALLOW_MATERIAL_CALIBRATION", 0);
  if (orvane == nullptr || orvane->CheckIOFlag(kCalibrationLayoutFlag) == 0 || !allowed) return false;

  BkFileUtl file(m_FileName.c_str(), 0);
  BkString fileName(file.GetFileName(), 0);
  if (fileName.Find(L"METALLURGY.mat", 0) < 0) return false;

  const std::string directory = Narrow(file.GetPath());
  if (ReadLinkDatFile((directory + "METALLURGYLINK.dat").c_str(), message) == 0) {
    result = 0;
    return true;
  }
  ReadMatRefFile((directory + "TTTref.dat").c_str(), message);
  return false;
}

void CardsetImport::VisitSection(size_t position, unsigned& sectionCount) {
  m_DataLine->clearFlag(kEndOfSectionBit);
  m_CurrentPhaseIndex = 1;

  m_DataLine->readNextCard();
  char* line = m_DataLine->line;
  Generic::RemoveLeadingAndTrailingBlanks(line);
  ++sectionCount;

  // A "TABLES :" block right behind a "REACTION" line holds metallurgy tables.
  if (std::strcmp(line, "TABLES :") == 0 && position > 0 &&
      strcasecmp(m_DataLoc->keywords[position - 1].c_str(), "reaction") == 0)
    std::strcpy(line, "TABLE");

  OrvaneStaticVars::SetActiveKW(line);
  m_DataLine->clearFlag(kEndOfSectionBit);

  unsigned type = 0;
  if (StartsWith(line, "NOM :")) {
    OrvaneStaticVars::ClearDatasets();
    m_PhaseIndexIDrefMap.clear();
    type = KW_MATERIAL_DETAILS;
  } else if (StartsWith(line, "FIN NOM")) {
    if (OrvaneStaticVars::GetCurrentMaterials() == nullptr) OrvaneStaticVars::GetOrCreateMaterials("UnSorted");
    return;
  } else if (StartsWith(line, "GRAIN")) {
    type = KW_GRAIN;
  } else {
    auto found = KeywordTypeTable.find(line);
    if (found == KeywordTypeTable.end()) return;
    type = found->second;
  }

  auto entry = m_ImportFunctions.find(type);
  if (entry == m_ImportFunctions.end()) return;
  ImportObject* section = new ImportObject(line, type);
  entry->second(m_DataLine, section);
  m_Sections.push_back(section);
}

void CardsetImport::RemoveDuplicateMaterialCards(std::vector<std::string>& keywords, std::vector<long>& offsets) {
  m_WarningMessage.clear();
  for (size_t i = 0; i < keywords.size(); ++i) {
    if (!StartsWith(keywords[i].c_str(), "NOM :")) continue;
    std::vector<char> copy(keywords[i].begin(), keywords[i].end());
    copy.push_back('\0');
    const std::string name = OrvaneGeneric::Trim(copy.data());

    long count = 0;
    for (;;) {
      auto duplicate = std::find(keywords.begin() + static_cast<long>(i) + 1, keywords.end(), name);
      if (duplicate == keywords.end()) break;
      auto finNom = std::find(duplicate, keywords.end(), std::string("FIN NOM"));
      if (finNom == keywords.end()) break;
      const long first = duplicate - keywords.begin();
      const long last = finNom - keywords.begin() + 1;
      keywords.erase(keywords.begin() + first, keywords.begin() + last);
      offsets.erase(offsets.begin() + first, offsets.begin() + last);
      ++count;
    }
    if (count != 0) m_WarningMessage += name + " = " + std::to_string(count) + "\n";
  }
  if (!m_WarningMessage.empty())
    m_WarningMessage = "The following duplicates are ignored while reading\n" + m_WarningMessage;
}
