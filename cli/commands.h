#pragma once

// The subcommands of the tool, each returning the process's exit code.

#include <string>

namespace quillon {
namespace cli {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;  // findings, an unreadable file, a refused or failed import
constexpr int kExitUsage = 2;    // the command line itself is wrong

// The database file that import uses when none is named: in the current directory.
constexpr const char* kDefaultDatabase = "materials.xml";

struct ImportOptions {
    std::string file;
    std::string database = kDefaultDatabase;
    bool distortion = false;
};

int RunImport(const ImportOptions& options);
int RunList(const std::string& database);
int RunCheck(const std::string& file);

// "quillon: WHAT: text" on standard error, the form of every diagnostic of the tool.
void PrintError(const std::string& what, const std::string& text);

}  // namespace cli
}  // namespace quillon
