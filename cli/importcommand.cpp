#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/check.h"
#include "cli/commands.h"
#include "cli/materiallist.h"
#include "import/cardsetimport.h"
#include "store/basekit.h"
#include "store/dombridge.h"
#include "store/orvane.h"

namespace quillon {
namespace cli {

namespace {

// The card file that host messages are about; the library's message call carries no context.
std::string g_MessageFile;

void PrintLines(const std::string& prefix, const std::string& text) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty()) continue;
        std::fprintf(stderr, "%s%s\n", prefix.c_str(), line.c_str());
    }
}

void PrintHostMessage(int /*kind*/, const wchar_t* text) {
    if (text == nullptr) return;
    BkString wide(text, 0);
    PrintLines("quillon: " + g_MessageFile + ": warning: ", wide.GetAnsiBuffer());
}

// The import reports sections left open only to a host that names a resources folder.
void EnableHostMessages() {
    const char* value = std::getenv("KORA_RESOURCES_PATH");
    if (value == nullptr || value[0] == '\0') ::setenv("KORA_RESOURCES_PATH", ".", 1);
}

bool IsReadableFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    std::fclose(file);
    return true;
}

enum class DatabaseFile { kAbsent, kEmpty, kContent, kNotAFile };

DatabaseFile Classify(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return DatabaseFile::kAbsent;
    if (!S_ISREG(status.st_mode)) return DatabaseFile::kNotAFile;
    return status.st_size == 0 ? DatabaseFile::kEmpty : DatabaseFile::kContent;
}

}  // namespace

int RunImport(const ImportOptions& options) {
    const std::string& file = options.file;
    const std::string& database = options.database;

    if (!IsReadableFile(file)) {
        PrintError(file, "could not open file");
        return kExitFailure;
    }

    // The library's line reader ends the whole process on an over-long line, so such a file must
    // never reach it.
    std::vector<Finding> findings;
    if (!CheckCardFile(file, findings)) {
        PrintError(file, "could not open file");
        return kExitFailure;
    }
    bool refused = false;
    for (const Finding& finding : findings) {
        if (finding.kind != FindingKind::kOverlongLine) continue;
        std::fprintf(stderr, "%s\n", FormatFinding(file, finding).c_str());
        refused = true;
    }
    if (refused) {
        PrintError(file, "not imported: lines of " + std::to_string(kLongestLine + 1) +
                             " characters or more cannot be read; " + database + " is unchanged");
        return kExitFailure;
    }

    const DatabaseFile before = Classify(database);
    if (before == DatabaseFile::kNotAFile) {
        PrintError(database, "could not read database");
        return kExitFailure;
    }

    EnableHostMessages();
    g_MessageFile = file;
    BkSetMessageHandler(PrintHostMessage);

    CardsetImport importer(file.c_str(), database.c_str());

    // A database that exists but could not be loaded would be replaced by this file alone.
    const std::string storeError = OrvaneStaticVars::GetLastError();
    if (before == DatabaseFile::kContent && std::string(OrvaneStaticVars::GetLoadedDatabasePath()).empty()) {
        PrintError(database, "could not read database");
        PrintLines("quillon: " + database + ": ", storeError);
        PrintError(database, "left unchanged; nothing imported");
        BkSetMessageHandler(nullptr);
        return kExitFailure;
    }
    if (!storeError.empty()) PrintLines("quillon: warning: ", storeError);

    std::set<std::string> known;
    for (const OrvaneMLRecordMaterial* material : OrvaneStaticVars::GetMaterials())
        if (material != nullptr) known.insert(material->GetID());

    void* document = nullptr;
    std::string message;
    const int sections = importer.ImportMaterialList(&document, message, options.distortion);
    BkSetMessageHandler(nullptr);

    if (sections == 1 && message == "Could not open file") {
        PrintError(file, "could not open file");
        return kExitFailure;
    }
    if (document == nullptr) {
        PrintError(file, "not imported" + (message.empty() ? std::string() : ": " + message));
        return kExitFailure;
    }

    if (DomSaveDocument(document, database.c_str()) == 0) {
        PrintError(database, "could not write database");
        return kExitFailure;
    }

    const std::vector<MaterialLine> materials = ReadMaterialLines(document);
    std::size_t added = 0;
    for (const auto& material : materials)
        if (known.count(material.id) == 0) ++added;

    std::printf("imported %s into %s\n", file.c_str(), database.c_str());
    for (const auto& material : materials)
        std::printf("%s%s\n", FormatMaterialLine(material).c_str(), known.count(material.id) == 0 ? "\tnew" : "");
    std::printf("materials in the database (all of them): %zu, new: %zu\n", materials.size(), added);
    std::printf("sections read: %d\n", sections);
    const std::string duplicates = importer.GetWarningMessage();
    if (!duplicates.empty()) std::printf("%s", duplicates.c_str());
    std::fflush(stdout);
    return kExitOk;
}

}  // namespace cli
}  // namespace quillon
