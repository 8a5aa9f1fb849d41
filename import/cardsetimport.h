#pragma once

// The import driver: one card file into the record store, once.

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "core/export.h"

class DataLine;
class DataLoc;
class ImportObject;
class XMLObject;

// The entry function of a section reader: reads the section at hand into `section`.
using SectionEntry = unsigned (*)(DataLine* dataLine, ImportObject* section);

class QUILLON_API CardsetImport {
 public:
  CardsetImport(const char* fileName, const char* storeName);
  // Copies share file, locator, reader and sections with their source: only one
  // of them may be destroyed.
  CardsetImport(const CardsetImport&) = default;
  CardsetImport& operator=(const CardsetImport&) = default;
  ~CardsetImport();

  void initQuillonTypesAndFunctions();
  int ImportMaterialList(void** document, std::string& message, bool distortion);
  void RemoveDuplicateMaterialCards(std::vector<std::string>& keywords, std::vector<long>& offsets);
  const char* GetWarningMessage();

  int ReadLinkDatFile(const char* path, std::string& message);
  void ReadMatRefFile(const char* path, std::string& message);
  void ProcessDomdocForPhaseDetails(void* document);
  void CreateParamFixedGroup(std::vector<XMLObject> fixedLists, std::multimap<std::string, std::string> valuePairs,
                             std::vector<std::string> paramIDs, void* document);

  std::string m_FileName;
  std::string m_WarningMessage;
  FILE* m_File;
  DataLoc* m_DataLoc;
  DataLine* m_DataLine;
  std::map<unsigned, SectionEntry> m_ImportFunctions;
  std::vector<ImportObject*> m_Sections;

  // Process-wide state of the readers and converters; kept between drivers
  // unless a step below resets it.
  static int m_DistortionFlag;
  static int m_CurrentPhaseIndex;
  static int m_CreepFlag;
  static std::map<int, std::vector<int>> m_PhaseIndexIDrefMap;
  static std::map<int, std::string> m_PhaseIndexNameMap;

 private:
  void VisitSection(size_t position, unsigned& sectionCount);
  bool RunCalibrationBranch(std::string& message, int& result);
};
