// quillon: moves material data from card files (.mat) into an XML material database, lists what a
// database holds, and checks card files for lines the import would misread.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

#include "cli/commands.h"

namespace quillon {
namespace cli {

void PrintError(const std::string& what, const std::string& text) {
    std::fprintf(stderr, "quillon: %s: %s\n", what.c_str(), text.c_str());
}

}  // namespace cli
}  // namespace quillon

namespace {

const char* const kDescription =
    "quillon - material card files (.mat) and the XML material database.\n"
    "\n"
    "A card file holds a list of materials and, for each material and model, sections of\n"
    "comments, chemistry, labelled parameters, tables and metallurgical reactions, each opened\n"
    "by a keyword line (\"LISTE :\", \"NOM :\", \"COMMENTAIRES :\", \"LABELS :\", ...).\n"
    "The tool reads such files into a material database, lists the database, and checks\n"
    "card files before they are imported.";

const char* const kFooter =
    "Examples:\n"
    "  quillon check S355J2G3.mat\n"
    "  quillon import S355J2G3.mat                      (into ./materials.xml)\n"
    "  quillon import case_hardening_steels.mat --db steels.xml\n"
    "  quillon import S460M.mat --db steels.xml --distortion\n"
    "  quillon list --db steels.xml\n"
    "\n"
    "Exit codes:\n"
    "  0  success; for check: the file is clean\n"
    "  1  check reported findings, a file could not be read, or an import was refused or failed\n"
    "     (the database is then left as it was)\n"
    "  2  usage error: unknown command or option, missing argument\n"
    "\n"
    "Diagnostics go to standard error as \"quillon: FILE: message\"; check findings go to\n"
    "standard output as \"FILE:LINE: message\".";

const char* const kImportDescription =
    "Read a card file into the database. The file is checked first (see check): a file with a\n"
    "line of 8192 characters or more is refused, since the reader cannot hold such a line.\n"
    "An existing database is loaded first and the file's materials are added to it; the\n"
    "database is then written whole through a temporary file, so a failed import never leaves\n"
    "it half written. Standard output gets every material now in the database (all of them,\n"
    "not only the file's), their count and the number of sections read, then the report of\n"
    "repeated materials that were skipped. Sections left open in a material are reported on\n"
    "standard error as \"quillon: FILE: warning: ...\".";

const char* const kListDescription =
    "List the materials of a database, one per line: identifier, folder, material type and\n"
    "the models that hold data.";

const char* const kCheckDescription =
    "Check a card file without touching any database. Each finding is printed as\n"
    "FILE:LINE: message:\n"
    "  - a section opened and not closed before the next material or the end of the file\n"
    "    (reported at its opening keyword);\n"
    "  - a material given twice (the import keeps the first one);\n"
    "  - a line of 8192 characters or more after trimming (the import refuses the file);\n"
    "  - a keyword written with other case or other blanks (\"MATERIAUX:\", \"nom :\"), which\n"
    "    the import does not recognise;\n"
    "  - a DEF_MATERIAL block followed by other sections, which it would read as pairs.\n"
    "Exits 0 when the file is clean, 1 when anything was reported.";

}  // namespace

int main(int argc, char** argv) {
    using namespace quillon::cli;

    CLI::App app(kDescription, "quillon");
    app.footer(kFooter);
    app.require_subcommand(1);

    ImportOptions importOptions;
    CLI::App* import = app.add_subcommand("import", kImportDescription);
    import->add_option("FILE", importOptions.file, "card file (.mat) to import")->required();
    import->add_option("--db", importOptions.database,
                       std::string("database file; default: ") + kDefaultDatabase + " in the current directory");
    import->add_flag("--distortion", importOptions.distortion,
                     "treat the file as a distortion material file: material types get the prefix DE\n"
                     "(files whose name holds _DE.mat or _de.mat are treated so anyway)");

    std::string listDatabase;
    CLI::App* list = app.add_subcommand("list", kListDescription);
    list->add_option("--db", listDatabase, "database file to list")->required();

    std::string checkFile;
    CLI::App* check = app.add_subcommand("check", kCheckDescription);
    check->add_option("FILE", checkFile, "card file (.mat) to check")->required();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kExitOk : kExitUsage;
    }

    if (import->parsed()) return RunImport(importOptions);
    if (list->parsed()) return RunList(listDatabase);
    if (check->parsed()) return RunCheck(checkFile);
    return kExitUsage;
}
