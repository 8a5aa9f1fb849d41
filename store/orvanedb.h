#pragma once

// The store's configuration: which solution is active and where the parameter
// mapping of a solution lives.  Both come from the environment so that a host
// can point the store at its own mapping without rebuilding the library.
//
//   QUILLON_SOLUTION     the active solution; "Oriel Joint" when unset or empty.
//   QUILLON_MAPPING_FILE one mapping file used for every solution.
//   QUILLON_MAPPING_DIR  a folder searched for "<solution>.xml".
//
// Without either of the last two (or when the folder has no file for the
// solution) the mapping shipped with the library is used.  docs/mapping.md
// describes the file format and the order of the search.

#include <string>

#include "core/export.h"

class QUILLON_API OrvaneConfig {
 public:
  OrvaneConfig() = default;

  // The name of the active solution, as Orvane::_ApplnGetOrvanePtr takes it.
  // The text is owned by this object and stays valid until the next call.
  const char* GetActiveSolution();

  // The path of the mapping file of `solution` (null or empty means the
  // active solution).  Always names a file path; whether it can be read is
  // for the loader to find out.
  void GetMappingXMLFile(const char* solution, std::string& path);

  // The solution used when QUILLON_SOLUTION is unset.
  static const char* DefaultSolution();

 private:
  std::string m_ActiveSolution;
};
