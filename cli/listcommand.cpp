#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "cli/commands.h"
#include "cli/materiallist.h"
#include "store/database.h"
#include "store/dombridge.h"

namespace quillon {
namespace cli {

int RunList(const std::string& database) {
    struct stat status {};
    // A directory would parse as nothing and so read as an empty database: refuse it outright.
    if (::stat(database.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        PrintError(database, "could not read database");
        return kExitFailure;
    }
    // The store takes an empty file for a database not yet written, and so does the listing.
    if (status.st_size == 0) return kExitOk;

    std::string reason;
    void* document = quillon::DomParseFileWithReason(database.c_str(), reason);
    const char* root = DomGetNodeName(DomGetRootElement(document));
    if (root == nullptr || std::strcmp(root, dbxml::kRoot) != 0) {
        PrintError(database, "could not read database");
        if (document == nullptr && !reason.empty()) std::fprintf(stderr, "quillon: %s\n", reason.c_str());
        DomFreeDocument(document);
        return kExitFailure;
    }
    for (const MaterialLine& material : ReadMaterialLines(document))
        std::printf("%s\n", FormatMaterialLine(material).c_str());
    DomFreeDocument(document);
    std::fflush(stdout);
    return kExitOk;
}

}  // namespace cli
}  // namespace quillon
