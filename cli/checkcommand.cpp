#include <cstdio>
#include <vector>

#include "cli/check.h"
#include "cli/commands.h"

namespace quillon {
namespace cli {

int RunCheck(const std::string& file) {
    std::vector<Finding> findings;
    if (!CheckCardFile(file, findings)) {
        PrintError(file, "could not open file");
        return kExitFailure;
    }
    for (const Finding& finding : findings) std::printf("%s\n", FormatFinding(file, finding).c_str());
    std::fflush(stdout);
    return findings.empty() ? kExitOk : kExitFailure;
}

}  // namespace cli
}  // namespace quillon
