#include "store/orvanedb.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "store/mapping.h"

namespace {

// An unset variable and one set to the empty text mean the same: not given.
const char* EnvironmentValue(const char* name) {
  const char* value = std::getenv(name);
  return (value != nullptr && value[0] != '\0') ? value : nullptr;
}

// A solution name becomes a file name inside the mapping folder; a name that
// could step out of that folder is not looked up there at all.
bool IsPlainFileStem(const std::string& name) {
  if (name.empty() || name == "." || name == "..") return false;
  return name.find('/') == std::string::npos && name.find('\\') == std::string::npos;
}

bool IsReadableFile(const std::string& path) { return access(path.c_str(), R_OK) == 0; }

}  // namespace

const char* OrvaneConfig::DefaultSolution() { return "Oriel Joint"; }

const char* OrvaneConfig::GetActiveSolution() {
  const char* fromEnvironment = EnvironmentValue("QUILLON_SOLUTION");
  m_ActiveSolution = fromEnvironment != nullptr ? fromEnvironment : DefaultSolution();
  return m_ActiveSolution.c_str();
}

void OrvaneConfig::GetMappingXMLFile(const char* solution, std::string& path) {
  // One file for every solution is the bluntest override, so it wins.
  if (const char* file = EnvironmentValue("QUILLON_MAPPING_FILE")) {
    path = file;
    return;
  }
  if (const char* folder = EnvironmentValue("QUILLON_MAPPING_DIR")) {
    const std::string name =
        (solution != nullptr && solution[0] != '\0') ? std::string(solution) : GetActiveSolution();
    if (IsPlainFileStem(name)) {
      std::string candidate = folder;
      if (candidate.back() != '/') candidate += '/';
      candidate += name;
      candidate += ".xml";
      // A folder that knows only some solutions leaves the others on the
      // shipped mapping rather than on a file that isn't there.
      if (IsReadableFile(candidate)) {
        path = candidate;
        return;
      }
    }
  }
  path = quillon::Mapping::ShippedPath();
}
